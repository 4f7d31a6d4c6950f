// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uTheme.h"

#include <QObject>
#include <QVariant>

class QDBusVariant;

namespace Kestrune {

/// Knows whether the desktop asks for dark colours and high contrast: through the settings portal of the
/// freedesktop.org desktop (namespace org.freedesktop.appearance, keys color-scheme and contrast) where there is
/// one, else by the lightness of the palette that the program started with.
class TDesktopWatch : public QObject {
    Q_OBJECT
public:
    /// Reads the state once; the portal's answer may arrive later and is then told by changed().
    explicit TDesktopWatch(QObject* parent = nullptr);

    const TDesktopLook& Look() const { return FLook; }
    /// True when the desktop switched animations off, as far as the portal tells.
    bool ReducedMotion() const { return FReducedMotion; }

    /// Takes one setting over, as the portal sends it. Other namespaces and keys, and values that are no numbers, are
    /// ignored. Public for tests.
    void TakeSetting(const QString& space, const QString& key, const QVariant& value);

Q_SIGNALS:
    void changed();

private Q_SLOTS:
    void portalSettingChanged(const QString& space, const QString& key, const QDBusVariant& value);

private:
    void AskPortal(const QString& key);

    TDesktopLook FLook;
    bool FReducedMotion = false;
};

} // namespace Kestrune
