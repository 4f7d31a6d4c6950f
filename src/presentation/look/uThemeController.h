// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uTheme.h"

#include <QObject>

namespace Kestrune {

class TDesktopWatch;
class TThemeStyle;

/// Applies the theme settings to the whole program: owns the watch of the desktop and feeds the style, which it
/// installs in the application. A change repaints at once.
class TThemeController : public QObject {
    Q_OBJECT
public:
    /// Call once, after the QApplication was made: the desktop's own palette is read before ours replaces it.
    explicit TThemeController(QObject* parent = nullptr);

    /// The settings ThemeIndex and ColorSchemeAccentIndex; values out of range fall back to 4 and 0.
    void Apply(int themeIndex, int accentIndex);

    TDesktopWatch& Desktop() { return *FDesktop; }

Q_SIGNALS:
    void themeChanged();

private:
    void Refresh();

    TDesktopWatch* FDesktop; // child
    TThemeStyle* FStyle;     // owned by the application
    int FThemeIndex = ThemeFollowDesktop;
    int FAccentIndex = 0;
};

} // namespace Kestrune
