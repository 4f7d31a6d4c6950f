// SPDX-License-Identifier: GPL-3.0-or-later
#include "uTHSettings.h"

#include "uDebugLog.h"
#include "uFilePath.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QStringDecoder>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

// QSettings skips what it cannot read. Only a file that is text through and through is trusted.
bool IsReadableIni(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray bytes = file.readAll();
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder(bytes);
    if (decoder.hasError() || text.contains(QChar(u'\0')))
        return false;
    const QSettings store(path, QSettings::IniFormat);
    store.allKeys();
    return store.status() == QSettings::NoError;
}

// Keys of services stand in it. Each save gives the new file the permissions of the old one, so it is made beforehand.
void KeepPrivate(const QString& path)
{
    const int handle = ::open(TextToPath(path).c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (handle < 0)
        return;
    ::fchmod(handle, S_IRUSR | S_IWUSR);
    ::close(handle);
}

QString PutAside(const QString& path)
{
    for (int i = 1; i < 1000; ++i) {
        const QString aside = u"%1.broken-%2"_s.arg(path).arg(i);
        if (!QFile::exists(aside))
            return QFile::rename(path, aside) ? aside : QString();
    }
    return {};
}

} // namespace

TTHIniSettings::TTHIniSettings(const QString& path)
{
    QDir().mkpath(QFileInfo(path).path());
    if (QFile::exists(path) && !IsReadableIni(path)) {
        FBrokenFile = PutAside(path);
        FKeepsBroken = FBrokenFile.isEmpty();
        if (FKeepsBroken) // it cannot be renamed, so it must not be written over either
            FBrokenFile = path;
        DebugLog(u"[Settings] unreadable settings file put aside as %1"_s.arg(FBrokenFile));
    }
    if (!FKeepsBroken)
        KeepPrivate(path);
    FStore = std::make_unique<QSettings>(FKeepsBroken ? QString() : path, QSettings::IniFormat);
    FStore->setAtomicSyncRequired(true);
}

TTHIniSettings::~TTHIniSettings() = default;

int TTHIniSettings::ReadInteger(const QString& key, int absent) const
{
    bool ok = false;
    const int value = FStore->value(key).toString().toInt(&ok);
    return ok ? value : absent;
}

QString TTHIniSettings::ReadString(const QString& key, const QString& absent) const
{
    const QVariant value = FStore->value(key);
    if (!value.isValid())
        return absent;
    // An unquoted comma in a hand-edited file makes the value a list.
    return value.typeId() == QMetaType::QStringList ? value.toStringList().join(u", "_s) : value.toString();
}

bool TTHIniSettings::ReadBoolean(const QString& key, bool absent) const
{
    const QString text = FStore->value(key).toString().toLower();
    if (text == "true"_L1 || text == "1"_L1)
        return true;
    return text == "false"_L1 || text == "0"_L1 ? false : absent;
}

double TTHIniSettings::ReadDouble(const QString& key, double absent) const
{
    bool ok = false;
    const double value = FStore->value(key).toString().toDouble(&ok);
    return ok ? value : absent;
}

void TTHIniSettings::WriteInteger(const QString& key, int, int value) { FStore->setValue(key, value); }
void TTHIniSettings::WriteString(const QString& key, const QString&, const QString& value)
{
    FStore->setValue(key, value);
}
void TTHIniSettings::WriteBoolean(const QString& key, bool, bool value) { FStore->setValue(key, value); }
void TTHIniSettings::WriteDouble(const QString& key, double, double value) { FStore->setValue(key, value); }

TSettingValues TTHIniSettings::AllValues() const
{
    TSettingValues values;
    for (const QString& key : FStore->allKeys())
        values[key] = ReadString(key, {});
    return values;
}

void TTHIniSettings::TakeValues(const TSettingValues& values)
{
    for (const auto& [key, value] : values)
        FStore->setValue(key, value);
}

bool TTHIniSettings::Flush()
{
    if (FKeepsBroken)
        return false;
    FStore->sync();
    return FStore->status() == QSettings::NoError;
}

} // namespace Kestrune
