// SPDX-License-Identifier: GPL-3.0-or-later
#include "uDBValidator.h"

#include "uByteReader.h"
#include "uFilePath.h"
#include "uGuardedFiles.h"
#include "uSQLite.h"
#include "uTHStrings.h"

#include <QStringList>

#include <filesystem>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 SmallestFile = 4096;
const QByteArray SQLiteMagic("SQLite format 3\0", 16);

// A way of looking at a file that leaves it, and what lies beside it, as it is.
enum class TLook : quint8 { AsItLies, WithItsLog, WithoutIndex, WithJournal };

TLook LookAt(const std::filesystem::path& file)
{
    std::error_code error;
    const auto there = [&](const char* suffix) { return std::filesystem::exists(file.native() + suffix, error); };
    if (there("-journal"))
        return TLook::WithJournal; // what a killed program left half done has to be undone before it can be read
    if (!there("-wal"))
        return TLook::AsItLies;
    return there("-shm") ? TLook::WithItsLog : TLook::WithoutIndex;
}

void OpenToLook(TSQLiteConnection& connection, const QString& path, TLook look)
{
    switch (look) {
    case TLook::AsItLies: connection.Open(path, somImmutable); break;
    case TLook::WithItsLog: connection.Open(path, somReadOnly); break;
    case TLook::WithoutIndex:
        // In this mode the index of the log is made in memory, not as a file; the log itself is left to its owner.
        connection.Open(path, somReadWrite);
        connection.LeaveLogAlone();
        connection.Exec(u"PRAGMA locking_mode = EXCLUSIVE"_s);
        break;
    case TLook::WithJournal: connection.Open(path, somReadWrite); break;
    }
}

bool HoldsCollection(const QString& path, TLook look)
{
    static const QStringList current{u"Releases2"_s,  u"Tracks2"_s,        u"Friends2"_s, u"Loans2"_s,
                                     u"Musicians2"_s, u"OtherPictures2"_s, u"version"_s};
    static const QStringList first{u"Releases"_s,  u"Tracks"_s,        u"Friends"_s, u"Loans"_s,
                                   u"Musicians"_s, u"OtherPictures"_s, u"version"_s};
    int currentCount = 0;
    int firstCount = 0;
    TSQLiteConnection connection;
    connection.SetLockWait(0);
    OpenToLook(connection, path, look);
    TSQLiteStatement names = connection.Prepare(u"SELECT name FROM sqlite_master WHERE type='table'"_s);
    while (names.Step()) {
        const QString name = names.Column(0).toString();
        currentCount += current.contains(name) ? 1 : 0;
        firstCount += first.contains(name) ? 1 : 0;
    }
    return currentCount >= current.size() || firstCount >= first.size();
}

} // namespace

TDBValidationResult ValidateDatabaseFile(const QString& path)
{
    std::error_code error;
    const std::filesystem::path file = TextToPath(path);
    if (path.isEmpty() || !std::filesystem::is_regular_file(file, error))
        return dvrNotFound;
    const auto size = static_cast<qint64>(std::filesystem::file_size(file, error));
    if (error)
        return dvrNotFound;
    if (size < SmallestFile)
        return dvrEmpty;
    if (!IsGuardedFile(file)) { // one that is open here is known to be a database, and nobody else may read it
        const auto source = TFileSource::Open(file);
        if (!source || source->Read(0, SQLiteMagic.size()) != SQLiteMagic)
            return dvrNotSQLite;
    }
    for (const TLook look : {LookAt(file), TLook::AsItLies}) {
        try {
            return HoldsCollection(path, look) ? dvrOK : dvrNotCollection;
        } catch (const EDatabaseError& failure) {
            // What another process has locked cannot be looked into now: opening it tells the user why.
            if (failure.IsLocked())
                return dvrOK;
            if (!failure.NeedsWritableFolder())
                return dvrNotCollection;
        }
    }
    return dvrNotCollection;
}

QString DatabaseValidationMessage(TDBValidationResult result)
{
    switch (result) {
    case dvrNotFound: return GetLanguageString(u"cSDBFileNotFound"_s);
    case dvrEmpty: return GetLanguageString(u"cSDBFileEmpty"_s);
    case dvrNotSQLite: return GetLanguageString(u"cSDBFileNotSQLite"_s);
    case dvrNotCollection: return GetLanguageString(u"cSDBFileNotKRN"_s);
    case dvrOK: break;
    }
    return {};
}

} // namespace Kestrune
