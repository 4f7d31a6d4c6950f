// SPDX-License-Identifier: GPL-3.0-or-later
#include "uServicePackage.h"

#include "uInfoGrabber.h"
#include "uServiceFiles.h"
#include "uTHSettings.h"
#include "uXSLTranformation.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <unistd.h>
#include <zip.h>

#include <algorithm>
#include <memory>
#include <vector>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

const QString VersionKey = u"ServicesVer"_s;
const QString LastUpdatedKey = u"Last Updated"_s;
const QString AutoUpdateKey = u"Auto Update"_s;
const QString IntervalKey = u"Auto Update Interval"_s;
constexpr double Never = -1.0;

constexpr zip_int64_t MostEntries = 5000;
constexpr zip_uint64_t LargestFile = 32 * 1024 * 1024;
constexpr zip_uint64_t LargestPackage = 128 * 1024 * 1024;

// Moments are kept as days since 1899-12-30, in local time.
const QDateTime Epoch(QDate(1899, 12, 30), QTime(0, 0), Qt::UTC);
constexpr double DayMilliseconds = 86'400'000.0;

QDateTime FromDays(double days)
{
    const QDateTime utc = Epoch.addMSecs(static_cast<qint64>(std::clamp(days, 0.0, 3'000'000.0) * DayMilliseconds));
    return QDateTime(utc.date(), utc.time());
}

double ToDays(const QDateTime& when)
{
    const QDateTime local = when.toLocalTime();
    return static_cast<double>(Epoch.msecsTo(QDateTime(local.date(), local.time(), Qt::UTC))) / DayMilliseconds;
}

struct TEntry {
    zip_uint64_t Index = 0;
    QString Name; ///< path inside the folder, joined by "/"
    bool IsFolder = false;
    zip_uint64_t Size = 0;
};

struct TZipCloser {
    void operator()(zip_t* archive) const { zip_discard(archive); }
};
using TZip = std::unique_ptr<zip_t, TZipCloser>;

// A name that would be written outside of the folder, on any system, is a reason to refuse the package.
bool IsSafeName(const QString& name)
{
    if (name.isEmpty() || name.startsWith(u'/') || name.contains(u'\\') || name.contains(u':') ||
        name.contains(QChar::Null))
        return false;
    const QStringList parts = name.split(u'/');
    return std::ranges::none_of(parts, [](const QString& part) { return part == "."_L1 || part == ".."_L1; });
}

bool IsLinkOrDevice(zip_t& archive, zip_uint64_t index)
{
    zip_uint8_t system = 0;
    zip_uint32_t attributes = 0;
    if (zip_file_get_external_attributes(&archive, index, 0, &system, &attributes) != 0 || system != ZIP_OPSYS_UNIX)
        return false;
    const zip_uint32_t kind = (attributes >> 16) & 0170000;
    return kind != 0 && kind != 0100000 && kind != 0040000;
}

// What is wrong with the package, or empty.
QString ListEntries(zip_t& archive, std::vector<TEntry>& entries)
{
    const zip_int64_t count = zip_get_num_entries(&archive, 0);
    if (count <= 0 || count > MostEntries)
        return u"the package has %1 entries"_s.arg(count);
    zip_uint64_t total = 0;
    for (zip_int64_t i = 0; i < count; ++i) {
        const auto index = static_cast<zip_uint64_t>(i);
        zip_stat_t stat;
        if (zip_stat_index(&archive, index, 0, &stat) != 0 || !(stat.valid & ZIP_STAT_NAME) ||
            !(stat.valid & ZIP_STAT_SIZE))
            return u"an entry cannot be read"_s;
        TEntry entry{index, QString::fromUtf8(stat.name), false, stat.size};
        if (!IsSafeName(entry.Name) || IsLinkOrDevice(archive, index))
            return u"the entry \"%1\" leads out of the folder"_s.arg(entry.Name);
        entry.IsFolder = entry.Name.endsWith(u'/');
        total += stat.size;
        if (stat.size > LargestFile || total > LargestPackage)
            return u"the entry \"%1\" is too large"_s.arg(entry.Name);
        entries.push_back(std::move(entry));
    }
    return {};
}

// The size that was told is not trusted: reading ends at the bound.
QString UnpackFile(zip_t& archive, const TEntry& entry, const QString& path)
{
    const QString failure = u"the entry \"%1\" is damaged"_s.arg(entry.Name);
    const std::unique_ptr<zip_file_t, decltype(&zip_fclose)> source(zip_fopen_index(&archive, entry.Index, 0),
                                                                    &zip_fclose);
    QFile file(path);
    if (!source)
        return failure;
    if (!QDir().mkpath(QFileInfo(path).absolutePath()) || !file.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        return u"%1: %2"_s.arg(path, file.errorString());
    QByteArray chunk(65536, Qt::Uninitialized);
    zip_uint64_t done = 0;
    for (;;) {
        const zip_int64_t read = zip_fread(source.get(), chunk.data(), static_cast<zip_uint64_t>(chunk.size()));
        if (read < 0)
            return failure;
        if (read == 0)
            break;
        done += static_cast<zip_uint64_t>(read);
        if (done > entry.Size)
            return failure;
        if (file.write(chunk.constData(), read) != read)
            return u"%1: %2"_s.arg(path, file.errorString());
    }
    if (done != entry.Size)
        return failure;
    return file.flush() && ::fsync(file.handle()) == 0 ? QString() : u"%1: %2"_s.arg(path, file.errorString());
}

// A folder that stands around all of the package is no part of it.
void TakeOffTopFolder(std::vector<TEntry>& entries)
{
    const QString top = entries.front().Name.section(u'/', 0, 0) + u'/';
    const bool isAround = std::ranges::all_of(entries, [&](const TEntry& entry) { return entry.Name.startsWith(top); });
    if (!isAround)
        return;
    std::erase_if(entries, [&](const TEntry& entry) { return entry.Name == top; });
    for (TEntry& entry : entries)
        entry.Name.remove(0, top.size());
}

// Unpacks all entries into the folder; what is wrong, or empty.
QString Unpack(zip_t& archive, const std::vector<TEntry>& entries, const QString& folder, const std::stop_token& stop)
{
    for (const TEntry& entry : entries) {
        const QString path = folder + u'/' + entry.Name;
        QString error;
        if (entry.IsFolder)
            QDir().mkpath(path);
        else
            error = UnpackFile(archive, entry, path);
        if (stop.stop_requested())
            error = u"stopped"_s;
        if (!error.isEmpty())
            return error;
    }
    return {};
}

void KeepDelivery(const std::vector<TEntry>& entries, const QString& made, const QString& folder, int version)
{
    TServiceDelivery delivery;
    delivery.Version = version;
    delivery.Template = TServiceDelivery::Read(folder).Template;
    for (const TEntry& entry : entries) {
        QFile file(made + u'/' + entry.Name);
        if (!entry.IsFolder && file.open(QIODevice::ReadOnly))
            delivery.Files[entry.Name] = QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha256).toHex();
    }
    QFile::remove(made + u"/.delivered"_s);
    delivery.Write(made); // without it the user's hand is suspected, no more
}

} // namespace

TServiceUpdates TServiceUpdates::Read(const TTHCustomSettings& store)
{
    TServiceUpdates updates;
    updates.Version = store.ReadInteger(VersionKey, -1);
    const double days = store.ReadDouble(LastUpdatedKey, Never);
    if (days != Never)
        updates.LastUpdated = FromDays(days);
    updates.AutoUpdate = store.ReadBoolean(AutoUpdateKey, true);
    updates.Interval = std::clamp(store.ReadInteger(IntervalKey, 0), 0, 3);
    return updates;
}

void WriteServicesVersion(TTHCustomSettings& store, int version) { store.WriteInteger(VersionKey, -1, version); }

void WriteLastUpdated(TTHCustomSettings& store, const QDateTime& when)
{
    store.WriteDouble(LastUpdatedKey, Never, ToDays(when));
}

bool IsServicesUpdateDue(const TServiceUpdates& updates, const QString& definitionsPath, const QDateTime& now)
{
    constexpr int leastDays[] = {-1, 2, 6, 29}; // due with more whole days than these
    if (!QFile::exists(definitionsPath))
        return true;
    if (!updates.AutoUpdate)
        return false;
    if (!updates.LastUpdated.isValid() || updates.Interval == 0)
        return true;
    const auto days = static_cast<qint64>(std::abs(ToDays(now) - ToDays(updates.LastUpdated)) + 1e-9);
    return days > leastDays[std::clamp(updates.Interval, 0, 3)];
}

std::optional<int> ParseServicesVersion(const QString& text)
{
    bool ok = false;
    const int version = text.trimmed().toInt(&ok);
    return ok ? std::optional(version) : std::nullopt;
}

QString ServicesVersionURL(const QString& endpoint)
{
    return endpoint + (endpoint.endsWith(u'/') ? QString() : u"/"_s) + u"Services.ver"_s;
}

QString ServicesZipURL(const QString& endpoint)
{
    return endpoint + (endpoint.endsWith(u'/') ? QString() : u"/"_s) + u"Services.zip"_s;
}

bool CheckServicePackage(const QString& folder, QString& error, const std::stop_token& stop)
{
    constexpr qsizetype mostStylesheets = 200;
    TInfoGrabber package;
    QStringList stylesheets;
    try {
        package.Read(folder + u"/infograbber.xml"_s);
        stylesheets = package.StylesheetNames();
        if (!package.HasSearch())
            throw EInfoGrabberError(u"no service takes part in a search"_s);
        if (stylesheets.size() > mostStylesheets)
            throw EInfoGrabberError(u"the package has %1 stylesheets"_s.arg(stylesheets.size()));
        for (const QString& name : stylesheets) {
            QString reason;
            if (stop.stop_requested())
                throw EInfoGrabberError(u"stopped"_s);
            if (!CompilesXSL(ReadStylesheet(folder, name), &reason))
                throw EInfoGrabberError(u"%1: %2"_s.arg(name, reason));
        }
    } catch (const EInfoGrabberError& failure) {
        error = QString::fromUtf8(failure.what());
        return false;
    }
    return true;
}

bool InstallServicePackage(const QString& zipPath, const QString& folder, int version, QString& error,
                           const std::stop_token& stop)
{
    int code = 0;
    const TZip archive(zip_open(QFile::encodeName(zipPath).constData(), ZIP_RDONLY | ZIP_CHECKCONS, &code));
    if (!archive) {
        error = u"the package is no ZIP archive, or it is damaged"_s;
        return false;
    }
    std::vector<TEntry> entries;
    error = ListEntries(*archive, entries);
    if (!error.isEmpty())
        return false;
    TakeOffTopFolder(entries);
    // A link that the user made in place of the folder stays one.
    const QFileInfo info(folder);
    const QString target = info.exists() ? info.canonicalFilePath() : info.absoluteFilePath();
    QTemporaryDir aside(ServiceAsidePrefix(target) + u"XXXXXX"_s);
    if (!aside.isValid()) {
        error = aside.errorString();
        return false;
    }
    error = Unpack(*archive, entries, aside.path(), stop);
    if (!error.isEmpty() || !CheckServicePackage(aside.path(), error, stop))
        return false;
    KeepDelivery(entries, aside.path(), target, version);
    return CarryOver(target, aside.path(), error) && ReplaceFolder(aside.path(), target, error);
}

} // namespace Kestrune
