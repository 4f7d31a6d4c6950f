// SPDX-License-Identifier: GPL-3.0-or-later
// Releases stored per second against bare SQLite with the same rows and settings on the same disk: bench_store FOLDER
// [PAIRS]. Both sides commit each release by itself.
#include "dmMain.h"
#include "uBench.h"
#include "uDefaults.h"
#include "uScriptedPrompt.h"
#include "uTestFiles.h"

#include <QFile>
#include <QGuiApplication>

#include <sqlite3.h>

using namespace Kestrune;
using namespace Qt::StringLiterals;

namespace {

constexpr int Releases = 1000;
constexpr int TracksEach = 12;

TAlbumRelease MakeRelease(int number, const QByteArray& cover)
{
    TAlbumRelease release;
    release.SetItem2(u"Artist"_s, u"Artist %1"_s.arg(number % 300));
    release.SetItem2(u"ReleaseName"_s, u"Release number %1"_s.arg(number));
    release.SetItem2(u"ReleaseYear"_s, 1960 + number % 60);
    release.SetItem2(u"Genre"_s, u"Rock"_s);
    release.SetItem2(u"Label"_s, u"Label %1"_s.arg(number % 40));
    release.SetItem2(u"CatalogNo"_s, u"CAT %1"_s.arg(number));
    release.SetItem2(u"MediaType"_s, u"CD"_s);
    release.SetItem2(u"DataProvider"_s, u"MP3 Scan"_s);
    release.SetItem2(u"FolderPath"_s, u"/music/artist %1/release %2"_s.arg(number % 300).arg(number));
    TCoverPicture& picture = release.AddPicture(cptFrontLarge);
    picture.LoadFromBytes(cover);
    picture.PrepareThumbnail(Defaults().LargeHeight);
    for (int i = 1; i <= TracksEach; ++i) {
        TAlbumTrack track;
        track.TrackNo = i;
        track.DiscNo = 1;
        track.TrackName = u"Track title number %1"_s.arg(i);
        track.DurationSec = 200 + i;
        track.Bitrate = 320;
        track.Filepath = u"/music/artist %1/release %2/%3 - track.mp3"_s.arg(number % 300).arg(number).arg(i);
        release.Tracks.push_back(std::move(track));
    }
    return release;
}

void CheckCode(int code, sqlite3* connection)
{
    if (code != SQLITE_OK && code != SQLITE_DONE && code != SQLITE_ROW)
        qFatal("%s", sqlite3_errmsg(connection));
}

// The rows of a table as the gateway stored them, to be written again by hand.
struct TRows {
    QByteArray Insert;
    int Columns = 0;
    std::vector<std::vector<TVariant>> Rows;
};

TRows ReadRows(TSQLiteConnection& connection, const QString& table)
{
    TRows rows;
    TSQLiteStatement select = connection.Prepare(u"SELECT * FROM %1 ORDER BY ID"_s.arg(table));
    rows.Columns = select.ColumnCount();
    while (select.Step()) {
        std::vector<TVariant> row;
        for (int i = 0; i < rows.Columns; ++i)
            row.push_back(select.Column(i));
        rows.Rows.push_back(std::move(row));
    }
    // Only the columns that hold anything, as a program written for these rows would name them.
    QStringList names;
    std::vector<int> used;
    for (int i = 0; i < rows.Columns; ++i) {
        if (!rows.Rows.empty() && !VarIsNull(rows.Rows[0][static_cast<size_t>(i)])) {
            names << u'"' + select.ColumnName(i) + u'"';
            used.push_back(i);
        }
    }
    for (auto& row : rows.Rows) {
        std::vector<TVariant> kept;
        for (const int i : used)
            kept.push_back(row[static_cast<size_t>(i)]);
        row = std::move(kept);
    }
    rows.Columns = static_cast<int>(used.size());
    rows.Insert = u"INSERT INTO %1 (%2) VALUES (%3)"_s
                      .arg(table, names.join(u','), QString(u"?,"_s).repeated(names.size()).chopped(1))
                      .toUtf8();
    return rows;
}

void BindRow(sqlite3_stmt* statement, const std::vector<TVariant>& row)
{
    for (size_t i = 0; i < row.size(); ++i) {
        const int index = static_cast<int>(i) + 1;
        const TVariant& value = row[i];
        switch (value.typeId()) {
        case QMetaType::LongLong: sqlite3_bind_int64(statement, index, value.toLongLong()); break;
        case QMetaType::Double: sqlite3_bind_double(statement, index, value.toDouble()); break;
        case QMetaType::QByteArray: {
            const QByteArray bytes = value.toByteArray();
            sqlite3_bind_blob(statement, index, bytes.constData(), static_cast<int>(bytes.size()), SQLITE_TRANSIENT);
            break;
        }
        case QMetaType::QString: {
            const QByteArray text = value.toString().toUtf8();
            sqlite3_bind_text(statement, index, text.constData(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
            break;
        }
        default: sqlite3_bind_null(statement, index);
        }
    }
}

double StoreBare(const QString& path, const TRows& releases, const TRows& tracks)
{
    sqlite3* connection = nullptr;
    CheckCode(sqlite3_open(path.toUtf8().constData(), &connection), connection);
    CheckCode(sqlite3_exec(connection,
                           "PRAGMA journal_mode=WAL; PRAGMA synchronous=FULL; PRAGMA foreign_keys=ON;"
                           "PRAGMA secure_delete=OFF; PRAGMA cache_size=-16384",
                           nullptr, nullptr, nullptr),
              connection);
    sqlite3_stmt* release = nullptr;
    sqlite3_stmt* track = nullptr;
    CheckCode(sqlite3_prepare_v2(connection, releases.Insert.constData(), -1, &release, nullptr), connection);
    CheckCode(sqlite3_prepare_v2(connection, tracks.Insert.constData(), -1, &track, nullptr), connection);
    const double time = Bench::Measure([&] {
        for (size_t i = 0; i < releases.Rows.size(); ++i) {
            CheckCode(sqlite3_exec(connection, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr), connection);
            BindRow(release, releases.Rows[i]);
            CheckCode(sqlite3_step(release), connection);
            sqlite3_reset(release);
            for (size_t t = 0; t < TracksEach; ++t) {
                BindRow(track, tracks.Rows[i * TracksEach + t]);
                CheckCode(sqlite3_step(track), connection);
                sqlite3_reset(track);
            }
            CheckCode(sqlite3_exec(connection, "COMMIT", nullptr, nullptr, nullptr), connection);
        }
    });
    sqlite3_finalize(release);
    sqlite3_finalize(track);
    sqlite3_close(connection);
    return time;
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const QString folder = QCoreApplication::arguments().value(1, u"."_s);
    const int pairs = QCoreApplication::arguments().value(2, u"5"_s).toInt();
    const QByteArray cover = Kit::MakePicture(500, 500, "JPG");
    std::vector<TAlbumRelease> releases;
    for (int i = 0; i < Releases; ++i)
        releases.push_back(MakeRelease(i, cover));
    const QString path = folder + u"/bench_store.db"_s;
    const auto clean = [&] {
        for (const QString& suffix : {u""_s, u"-wal"_s, u"-shm"_s})
            QFile::remove(path + suffix);
    };
    Kit::TScriptedPrompt prompt;
    std::vector<double> ratios;
    for (int pair = 0; pair < pairs; ++pair) {
        clean();
        TDataModuleMain data(prompt);
        data.CreateNewDB(path, data.GetNewDatabaseSQL());
        data.ConnectToDB(path);
        data.DisableControlsAll();
        const double ours = Bench::Measure([&] {
            for (const TAlbumRelease& release : releases)
                data.AddAlbumReleaseToDB(release, true);
        });
        data.Disconnect();
        TSQLiteConnection connection;
        connection.Open(path, somReadOnly);
        const TRows releaseRows = ReadRows(connection, u"Releases2"_s);
        const TRows trackRows = ReadRows(connection, u"Tracks2"_s);
        connection.Close();
        clean();
        data.CreateNewDB(path, data.GetNewDatabaseSQL());
        data.ConnectToDB(path); // for its indices
        data.Disconnect();
        const double bare = StoreBare(path, releaseRows, trackRows);
        ratios.push_back(bare / ours);
        Bench::Print(u"ours %1 releases/s, bare %2 releases/s, ratio %3"_s.arg(Releases / ours * 1000, 0, 'f', 0)
                         .arg(Releases / bare * 1000, 0, 'f', 0)
                         .arg(bare / ours, 0, 'f', 2));
    }
    clean();
    Bench::Print(u"median ratio %1 (%2 bytes of cover)"_s.arg(Bench::Median(ratios), 0, 'f', 2).arg(cover.size()));
    return 0;
}
