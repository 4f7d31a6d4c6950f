// SPDX-License-Identifier: GPL-3.0-or-later
#include "uDesktopWatch.h"

#include "uDebugLog.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QGuiApplication>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

const auto PortalService = u"org.freedesktop.portal.Desktop"_s;
const auto PortalPath = u"/org/freedesktop/portal/desktop"_s;
const auto PortalInterface = u"org.freedesktop.portal.Settings"_s;
const auto AppearanceSpace = u"org.freedesktop.appearance"_s;

bool StartPaletteIsDark()
{
    const QPalette palette = QGuiApplication::palette();
    return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

} // namespace

TDesktopWatch::TDesktopWatch(QObject* parent) : QObject(parent)
{
    FLook.Dark = StartPaletteIsDark();
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return;
    bus.connect(PortalService, PortalPath, PortalInterface, u"SettingChanged"_s, this,
                SLOT(portalSettingChanged(QString, QString, QDBusVariant)));
    for (const QString& key : {u"color-scheme"_s, u"contrast"_s, u"reduced-motion"_s})
        AskPortal(key);
}

void TDesktopWatch::AskPortal(const QString& key)
{
    QDBusMessage call = QDBusMessage::createMethodCall(PortalService, PortalPath, PortalInterface, u"Read"_s);
    call << AppearanceSpace << key;
    auto* watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, key, watcher] {
        watcher->deleteLater();
        const QDBusPendingReply<QDBusVariant> reply = *watcher;
        if (reply.isError())
            return DebugLog(u"[Theme] the settings portal does not tell "_s + key);
        TakeSetting(AppearanceSpace, key, reply.value().variant());
    });
}

void TDesktopWatch::portalSettingChanged(const QString& space, const QString& key, const QDBusVariant& value)
{
    TakeSetting(space, key, value.variant());
}

void TDesktopWatch::TakeSetting(const QString& space, const QString& key, const QVariant& value)
{
    if (space != AppearanceSpace)
        return;
    // Read answers with a variant inside a variant, the signal with a plain one.
    const QVariant plain = value.canConvert<QDBusVariant>() ? value.value<QDBusVariant>().variant() : value;
    bool isNumber = false;
    const uint number = plain.toUInt(&isNumber);
    if (!isNumber)
        return;
    const TDesktopLook before = FLook;
    if (key == "color-scheme"_L1)
        FLook.Dark = number == 0 ? StartPaletteIsDark() && FLook.Dark : number == 1;
    else if (key == "contrast"_L1)
        FLook.HighContrast = number == 1;
    else if (key == "reduced-motion"_L1)
        FReducedMotion = number == 1;
    if (FLook != before)
        Q_EMIT changed();
}

} // namespace Kestrune
