// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QPalette>

#include <array>

namespace Kestrune {

enum class TThemeKind : quint8 { tkLight, tkDark, tkLightContrast, tkDarkContrast };
using enum TThemeKind;

inline constexpr int AccentCount = 6;        ///< Petrol, Chestnut, Indigo, Plum, Moss, Graphite
inline constexpr int ThemeFollowDesktop = 4; ///< the ThemeIndex that follows the desktop

/// All colours of one look. Names say the use, not the hue.
struct TTheme {
    TThemeKind Kind = tkLight;
    int Accent = 0;
    QColor Window;  ///< ribbon, bars, panes
    QColor View;    ///< ground of covers and tables
    QColor Raised;  ///< cards, fields, menus, buttons
    QColor Sunken;  ///< status line, ground of segments
    QColor Hover;   ///< under the mouse
    QColor Line;    ///< hairlines, edges of buttons
    QColor Track;   ///< ground of seek and progress bars
    QColor Outline; ///< edges of fields and check boxes
    QColor Text, Text2, Text3, Disabled;
    QColor AccentFill; ///< chosen, primary, links, focus ring
    QColor AccentHover, OnAccent, AccentSoft;
    QColor Star;
    QColor Ok, OkSoft, Warn, WarnSoft, Error, ErrorSoft;
    std::array<QColor, 8> CoverGrounds; ///< muted grounds of drawn covers

    bool IsDark() const { return Kind == tkDark || Kind == tkDarkContrast; }
    bool IsHighContrast() const { return Kind == tkLightContrast || Kind == tkDarkContrast; }
    /// Width in dip of the ring round selected items; 0 where a soft fill shows the selection.
    int SelectionRing() const { return IsHighContrast() ? 3 : 0; }
};

/// What the desktop asks for.
struct TDesktopLook {
    bool Dark = false;
    bool HighContrast = false;
    bool operator==(const TDesktopLook&) const = default;
};

/// The look for a kind and an accent index; an index out of range counts as 0.
TTheme MakeTheme(TThemeKind kind, int accentIndex);

/// Kind for a ThemeIndex: 0 light, 1 dark, 2 and 3 the same with high contrast, everything else follows the desktop.
TThemeKind ThemeKindFor(int themeIndex, const TDesktopLook& desktop);

/// The theme that own painting uses: the one in force, plain light before there is one.
const TTheme& CurrentTheme();

/// Puts a theme, which must live as long, in force; null is plain light.
void SetCurrentTheme(const TTheme* theme);

/// The palette that carries the look to Qt's own widgets.
QPalette MakePalette(const TTheme& theme);

/// `share` (0 to 1) of `top` over `ground`, opaque.
QColor Mix(const QColor& ground, const QColor& top, double share);

/// Contrast of two opaque colours, 1 to 21 (WCAG 2.1, section 1.4.3).
double ContrastRatio(const QColor& a, const QColor& b);

/// The plain colour of an accent in light or dark, as for the swatches of the options.
QColor AccentColor(int accentIndex, bool dark);

} // namespace Kestrune
