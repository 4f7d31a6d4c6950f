// SPDX-License-Identifier: GPL-3.0-or-later
#include "uDBValidator.h"

#include "uByteReader.h"
#include "uFilePath.h"
#include "uSQLite.h"
#include "uTHStrings.h"

#include <QStringList>

#include <filesystem>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 SmallestFile = 4096;
const QByteArray SQLiteMagic("SQLite format 3\0", 16);

bool HoldsCollection(const QString& path, TSQLiteOpenMode mode)
{
    static const QStringList current{u"Releases2"_s,  u"Tracks2"_s,        u"Friends2"_s, u"Loans2"_s,
                                     u"Musicians2"_s, u"OtherPictures2"_s, u"version"_s};
    static const QStringList first{u"Releases"_s,  u"Tracks"_s,        u"Friends"_s, u"Loans"_s,
                                   u"Musicians"_s, u"OtherPictures"_s, u"version"_s};
    int currentCount = 0;
    int firstCount = 0;
    TSQLiteConnection connection;
    // Only looked at: a database of another program keeps its journal and the mode that it has.
    connection.Open(path, mode);
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
    const auto source = TFileSource::Open(file);
    if (!source || source->Read(0, SQLiteMagic.size()) != SQLiteMagic)
        return dvrNotSQLite;
    for (const TSQLiteOpenMode mode : {somReadOnly, somImmutable}) {
        try {
            return HoldsCollection(path, mode) ? dvrOK : dvrNotCollection;
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
