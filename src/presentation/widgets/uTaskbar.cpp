// SPDX-License-Identifier: GPL-3.0-or-later
#include "uTaskbar.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QGuiApplication>
#include <QVariantMap>

namespace Kestrune {

using namespace Qt::StringLiterals;

void SetTaskbarProgress(std::optional<double> share)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return;
    QDBusMessage message =
        QDBusMessage::createSignal(u"/org/kestrune/Taskbar"_s, u"com.canonical.Unity.LauncherEntry"_s, u"Update"_s);
    const QString desktopFile = QGuiApplication::desktopFileName();
    message << u"application://%1.desktop"_s.arg(desktopFile.isEmpty() ? u"kestrune"_s : desktopFile)
            << QVariantMap{{u"progress-visible"_s, share.has_value()}, {u"progress"_s, share.value_or(0.0)}};
    bus.send(message);
}

} // namespace Kestrune
