// SPDX-License-Identifier: GPL-3.0-or-later
// The command-line program as a user runs it: as a process of its own, with settings of its own.
#include "uCliKit.h"
#include "uImageBuilders.h"
#include "uOldFiles.h"
#include "uSQLite.h"
#include "uTagBuilders.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QRegularExpression>

#include <csignal>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

class Cli : public TCliTest {
protected:
    // Copies one encoded clip under many names: each folder is a release by its name.
    QString MakeMusic(int folders, int filesEach)
    {
        const QString clip = FDir.File(u"clip.mp3"_s);
        EXPECT_TRUE(Kit::RunProgram(
            u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-f"_s, u"lavfi"_s, u"-i"_s, u"sine=duration=1"_s, u"-y"_s, clip}));
        const QByteArray bytes = Kit::ReadAll(clip);
        for (int folder = 0; folder < folders; ++folder)
            for (int file = 1; file <= filesEach; ++file)
                FDir.Write(
                    u"music/Artist %1 - Album %1 (2001)/%2 - Song.mp3"_s.arg(folder).arg(file, 2, 10, QChar(u'0')),
                    bytes);
        return FDir.File(u"music"_s);
    }
};

} // namespace

TEST_F(Cli, HelpAndVersionAtEveryLevel)
{
    const std::pair<QStringList, QByteArray> cases[] = {{{u"--help"_s}, "add-folder"},
                                                        {{u"--version"_s}, "kestrune-cli "},
                                                        {{u"list"_s, u"--help"_s}, "--letter"},
                                                        {{u"new"_s, u"--version"_s}, "kestrune-cli "}};
    for (const auto& [arguments, text] : cases) {
        const TCliResult result = Run(arguments);
        EXPECT_EQ(result.Code, 0) << arguments.join(u' ').toStdString();
        EXPECT_TRUE(result.Out.contains(text)) << arguments.join(u' ').toStdString();
    }
}

TEST_F(Cli, TheFirstFormatIsConvertedWhenItIsAskedFor)
{
    Kit::MakeOldCollection(FPath, u"1000"_s);
    const TCliResult refused = Run({u"info"_s, FPath});
    EXPECT_EQ(refused.Code, 1);
    EXPECT_TRUE(refused.Err.contains("--convert"));
    const TCliResult converted = Run({u"info"_s, FPath, u"--convert"_s});
    EXPECT_EQ(converted.Code, 0);
    EXPECT_TRUE(converted.Out.contains("version\t3001"));
}

TEST_F(Cli, ExitCodesTellFailureFromWrongUsage)
{
    ASSERT_EQ(Run({u"new"_s, FPath}).Code, 0);
    const QString text = FDir.Write(u"t.db"_s, QByteArray(5000, 'x'));
    const std::pair<QStringList, int> cases[] = {
        {{}, 2},
        {{u"nonsense"_s}, 2},
        {{u"new"_s}, 2},
        {{u"new"_s, FPath}, 1},
        {{u"new"_s, FDir.Path() + u"/no/such/folder/x.db"_s}, 1},
        {{u"info"_s, FDir.File(u"none.db"_s)}, 1},
        {{u"info"_s, text}, 1},
        {{u"info"_s, FPath, u"more"_s}, 2},
        {{u"info"_s, FPath, u"--strange"_s}, 2},
        {{u"show"_s, FPath, u"1"_s}, 1},
        {{u"show"_s, FPath, u"one"_s}, 2},
        {{u"list"_s, FPath, u"--sort"_s, u"Nothing"_s}, 2},
        {{u"list"_s, FPath, u"--search"_s, u"x"_s, u"--by"_s, u"Nothing"_s}, 2},
        {{u"list"_s, FPath, u"--limit"_s, u"many"_s}, 2},
        {{u"add-folder"_s, FPath, FDir.File(u"nowhere"_s)}, 1},
        {{u"discid"_s}, 2},
        {{u"discid"_s, u"1 1 20000 150"_s}, 2},
        {{u"discid"_s, u"--toc"_s, u"1 1 20000 150"_s, u"--device"_s, u"/dev/null"_s}, 2},
        {{u"discid"_s, u"--toc"_s, u"1 1 20000 150"_s, u"more"_s}, 2},
        {{u"discid"_s, u"--toc"_s, u"1 1 20000 \a\n"_s}, 2},
        {{u"discid"_s, u"--device"_s, u"/dev/null"_s}, 1},
        {{u"discid"_s, u"--device"_s, FDir.File(u"no\ndrive"_s), u"--json"_s}, 1},
        {{u"search"_s}, 2},
        {{u"search"_s, u"--barcode"_s, u" "_s}, 2},
        {{u"search"_s, u"--barcode"_s, u"1"_s, u"--artist"_s, u"A"_s}, 2},
        {{u"search"_s, u"--toc"_s, u"1 1 20000 150"_s, u"--device"_s, u"/dev/null"_s}, 2},
        {{u"search"_s, u"--catno"_s, u"1"_s, u"--replay"_s, FPath, u"--record"_s, FPath}, 2},
        {{u"search"_s, u"--catno"_s, u"1"_s, u"--package"_s, FDir.File(u"no\npackage"_s)}, 1},
    };
    for (const auto& [arguments, code] : cases) {
        const TCliResult result = Run(arguments);
        EXPECT_EQ(result.Code, code) << arguments.join(u' ').toStdString();
        EXPECT_EQ(result.Err.count('\n'), 1) << "one sentence: " << result.Err.toStdString();
        EXPECT_TRUE(result.Out.isEmpty());
    }
}

TEST_F(Cli, TagsNamesEachFileThatCannotBeRead)
{
    const QByteArray note = Kit::Id3Text(0, QByteArray("engno\x1Bte\0one\r\ntwo\x9B[2J", 21));
    const QByteArray picture = Kit::Id3Picture("image/png", 4, "sle\aeve", "\x89PNG");
    const QString good =
        FDir.Write(u"a\x1B.mp3"_s, Kit::Id3v2(3, Kit::Id3Frame(3, "COMM", note) + Kit::Id3Frame(3, "APIC", picture)));
    const QString none = FDir.File(u"no\nfile.mp3"_s);
    const QStringList files{none, good, FDir.Path()};
    const TCliResult text = Run(QStringList{u"tags"_s} + files);
    EXPECT_EQ(text.Code, 1);
    const QByteArray expected = "  COMMENT [eng, no te]\tone \n  \ttwo [2J\n"
                                "  Cover art 1\tCover (back), png, 4 bytes, sle eve\n"
                                "  0.000 s, 0 Hz, 0 channels, 0 bit/s\n";
    EXPECT_EQ(text.Out, FDir.Path().toUtf8() + "/a .mp3\n" + expected);
    EXPECT_EQ(text.Err, "kestrune-cli: " + FDir.Path().toUtf8() + "/no file.mp3: there is no such file\n" +
                            "kestrune-cli: " + FDir.Path().toUtf8() + ": cannot be read\n");

    const TCliResult json = Run(QStringList{u"tags"_s, u"--json"_s} + files);
    EXPECT_EQ(json.Code, 1);
    EXPECT_EQ(json.Err, text.Err);
    EXPECT_FALSE(QString::fromUtf8(json.Out).contains(QChar(0x9B)));
    const QJsonArray array = json.Json().array();
    ASSERT_EQ(array.size(), 3);
    EXPECT_EQ(array[0][u"result"_s].toInt(), 5);
    EXPECT_EQ(array[1][u"tags"_s][0][u"value"_s].toString(), u"one\r\ntwo\u009B[2J"_s);
    EXPECT_EQ(Run({u"tags"_s, good}).Code, 0);

    QProcess both; // each file is told before the next is looked at
    Prepare(both, {u"tags"_s, u"--json"_s, good, none});
    both.setProcessChannelMode(QProcess::MergedChannels);
    both.start();
    both.waitForFinished();
    const QByteArray told = both.readAllStandardOutput();
    EXPECT_LT(told.indexOf("COMMENT"), told.indexOf("there is no such file"));
}

TEST_F(Cli, AFolderGoesInAndComesOut)
{
    const QString music = MakeMusic(3, 2);
    Run({u"new"_s, FPath});
    const TCliResult added = Run({u"add-folder"_s, FPath, music, u"--json"_s});
    ASSERT_EQ(added.Code, 0) << added.Err.toStdString();
    const QList<QByteArray> lines = added.Out.trimmed().split('\n');
    ASSERT_EQ(lines.size(), 4);
    EXPECT_EQ(lines[0], "stored 1 Artist 0 - Album 0");
    const QJsonObject summary = QJsonDocument::fromJson(lines.back()).object();
    EXPECT_EQ(summary[u"releases"_s].toInt(), 3);
    EXPECT_EQ(summary[u"tracks"_s].toInt(), 6);
    EXPECT_EQ(summary[u"files"_s].toInt(), 6);
    EXPECT_TRUE(summary[u"errors"_s].isArray());

    const QJsonObject info = Run({u"info"_s, FPath, u"--json"_s}).Json().object();
    EXPECT_EQ(info[u"version"_s].toInt(), 3001);
    EXPECT_EQ(info[u"releases"_s].toInt(), 3);
    EXPECT_GT(info[u"fileBytes"_s].toInt(), 4096);

    const QJsonArray list =
        Run({u"list"_s, FPath, u"--json"_s, u"--sort"_s, u"-Artist"_s, u"--limit"_s, u"2"_s}).Json().array();
    ASSERT_EQ(list.size(), 2);
    EXPECT_EQ(list[0][u"Artist"_s].toString(), u"Artist 2"_s);
    EXPECT_EQ(list[0][u"TotalTracksCount"_s].toInt(), 2);
    EXPECT_TRUE(list[0][u"CatalogNO"_s].isNull());
    EXPECT_EQ(Run({u"list"_s, FPath, u"--json"_s, u"--search"_s, u"album 1"_s}).Json().array().size(), 1);
    EXPECT_EQ(Run({u"list"_s, FPath, u"--json"_s, u"--status"_s, u"Wanted item"_s}).Json().array().size(), 0);
    EXPECT_EQ(Run({u"list"_s, FPath, u"--json"_s, u"--letter"_s, u"a"_s, u"--tracks"_s}).Json().array().size(), 6);

    const QJsonObject show = Run({u"show"_s, FPath, u"2"_s, u"--json"_s}).Json().object();
    EXPECT_EQ(show[u"release"_s][u"ReleaseName"_s].toString(), u"Album 1"_s);
    EXPECT_EQ(show[u"release"_s][u"ReleaseYear"_s].toInt(), 2001);
    EXPECT_EQ(show[u"tracks"_s].toArray().size(), 2);
    EXPECT_TRUE(show[u"credits"_s].isArray() && show[u"pictures"_s].isArray() && show[u"loans"_s].isArray());
}

TEST_F(Cli, ASourceIsListedAndImportedByKey)
{
    const QString music = MakeMusic(3, 2);
    Run({u"new"_s, FPath});
    const QStringList call{u"import"_s, FPath, u"--from"_s, u"MP3s"_s, music, u"--json"_s};
    const TCliResult listed = Run(call + QStringList{u"--list"_s});
    ASSERT_EQ(listed.Code, 0) << listed.Err.toStdString();
    const QJsonArray found = listed.Json().object()[u"releases"_s].toArray();
    ASSERT_EQ(found.size(), 3);
    EXPECT_EQ(found[1][u"release"_s].toString(), u"Album 1"_s);
    EXPECT_EQ(found[1][u"tracks"_s].toInt(), 2);
    EXPECT_EQ(Run({u"info"_s, FPath, u"--json"_s}).Json().object()[u"releases"_s].toInt(), 0)
        << "listing stores nothing";
    const QStringList keys{u"--ids"_s, found[2][u"id"_s].toString(), found[0][u"id"_s].toString()};
    ASSERT_EQ(Run(call + keys).Code, 0);
    const QJsonArray stored = Run({u"list"_s, FPath, u"--json"_s, u"--sort"_s, u"Artist"_s}).Json().array();
    ASSERT_EQ(stored.size(), 2);
    EXPECT_EQ(stored[0][u"Artist"_s].toString(), u"Artist 0"_s);
    EXPECT_EQ(stored[1][u"Artist"_s].toString(), u"Artist 2"_s);
    EXPECT_EQ(Run(call + QStringList{u"--list"_s, u"--option"_s, u"covers=no"_s}).Code, 0);
    for (const QString& option : {u"covers=maybe"_s, u"colours=yes"_s, u"covers"_s})
        EXPECT_EQ(Run(call + QStringList{u"--option"_s, option}).Code, 2) << option.toStdString();
    EXPECT_EQ(Run({u"import"_s, FPath, u"--from"_s, u"Nobody"_s, music}).Code, 2);
    EXPECT_EQ(Run({u"import"_s, FPath, music}).Code, 2);
}

TEST_F(Cli, AnImageIsShownAndTakenApart)
{
    const QString image = FDir.Write(u"Band - X.iso"_s,
                                     Kit::IsoImage("LABEL", {{"DIR/A.FLA", QByteArray(3000, 'a')}, {"B.TXT", "text"}}));
    const QJsonObject json = Run({u"image"_s, image, u"--json"_s}).Json().object();
    EXPECT_EQ(json[u"kind"_s].toString(), u"iso9660"_s);
    EXPECT_EQ(json[u"label"_s].toString(), u"LABEL"_s);
    ASSERT_EQ(json[u"files"_s].toArray().size(), 3);
    EXPECT_TRUE(json[u"files"_s][0][u"isDir"_s].toBool());
    EXPECT_EQ(json[u"files"_s][1][u"size"_s].toInt(), 3000);
    EXPECT_EQ(json[u"tracks"_s][0][u"locator"_s].toString(), u"ISO:DIR/A.FLA"_s);
    const QString out = FDir.File(u"out"_s);
    ASSERT_EQ(Run({u"image"_s, image, u"--extract"_s, u"b.txt"_s, u"--out"_s, out}).Code, 0);
    EXPECT_EQ(Kit::ReadAll(out), "text");
    ASSERT_EQ(Run({u"image"_s, image, u"--extract-track"_s, u"1"_s, u"--out"_s, out}).Code, 0);
    EXPECT_EQ(Kit::ReadAll(out), QByteArray(3000, 'a'));
    EXPECT_EQ(Run({u"image"_s, image, u"--extract"_s, u"none"_s, u"--out"_s, out}).Code, 1);
    EXPECT_EQ(Run({u"image"_s, image, u"--extract-track"_s, u"2"_s, u"--out"_s, out}).Code, 1);
    EXPECT_EQ(Run({u"image"_s, image, u"--extract"_s, u"b.txt"_s}).Code, 2);
    const QString sacd =
        FDir.Write(u"s.iso"_s, Kit::SacdImage({{.Title = "One", .Sound = QByteArray(9408, 's')}}, {.Title = "T"}));
    const QJsonObject disc = Run({u"image"_s, sacd, u"--json"_s}).Json().object();
    EXPECT_EQ(disc[u"kind"_s].toString(), u"sacd"_s);
    EXPECT_EQ(disc[u"album"_s][u"title"_s].toString(), u"T"_s);
    ASSERT_EQ(Run({u"image"_s, sacd, u"--extract-track"_s, u"1"_s, u"--out"_s, out}).Code, 0);
    EXPECT_TRUE(Kit::ReadAll(out).startsWith("DSD "));
    EXPECT_EQ(Run({u"image"_s, FDir.Write(u"n.iso"_s, "n"), u"--json"_s}).Json().object()[u"kind"_s].toString(),
              u"none"_s);
}

TEST_F(Cli, ADiscIsIdentifiedByItsNumbers)
{
    const QStringList call{u"discid"_s, u"--toc"_s, u"1 8 212043 150 33290 52565 73478 98850 136148 169153 187458"_s};
    const TCliResult text = Run(call);
    EXPECT_EQ(text.Code, 0) << text.Err.toStdString();
    EXPECT_EQ(text.Out.toStdString(), "DISCID\tDNlrvGROpc28aJtprTzehV.XE7o-\n"
                                      "TOC\t96 96 820A CD55 11F06 18222 213D4 294C1 2DC42 33C4B\n"
                                      "TOC_Microsoft\t8 96 820A CD55 11F06 18222 213D4 294C1 2DC42 33C4B\n"
                                      "TOC_DECIMAL\t1+8+212043+150+33290+52565+73478+98850+136148+169153+187458\n");
    const QJsonObject json = Run(call + QStringList{u"--json"_s}).Json().object();
    ASSERT_EQ(json.size(), 4);
    QByteArray lines;
    for (const QString& key : {u"DISCID"_s, u"TOC"_s, u"TOC_Microsoft"_s, u"TOC_DECIMAL"_s})
        lines += key.toUtf8() + '\t' + json[key].toString().toUtf8() + '\n';
    EXPECT_EQ(lines, text.Out);
}

TEST_F(Cli, AKilledImportHoldsEveryReleaseItHadPrinted)
{
    const QString music = MakeMusic(120, 3);
    for (const int printed : {1, 17, 60}) {
        SCOPED_TRACE(printed);
        const QString path = FDir.File(u"killed%1.db"_s.arg(printed));
        Run({u"new"_s, path});
        QProcess process;
        Prepare(process, {u"add-folder"_s, path, music});
        process.start();
        QByteArray out;
        while (out.count("stored ") < printed && process.waitForReadyRead(60000))
            out += process.readAllStandardOutput();
        ::kill(static_cast<pid_t>(process.processId()), SIGKILL);
        process.waitForFinished();
        out += process.readAllStandardOutput();

        TSQLiteConnection connection;
        connection.Open(path);
        EXPECT_EQ(connection.Scalar(u"PRAGMA integrity_check"_s).toString(), u"ok"_s);
        const QRegularExpression pattern(u"stored (\\d+) (.*)\\n"_s);
        int found = 0;
        for (auto match = pattern.globalMatch(QString::fromUtf8(out)); match.hasNext(); ++found) {
            const qint64 id = match.next().captured(1).toLongLong();
            EXPECT_EQ(connection.Scalar(u"SELECT count(*) FROM Tracks2 WHERE ReleaseId = ?"_s, {id}).toInt(), 3);
        }
        EXPECT_GE(found, printed);
        EXPECT_EQ(connection
                      .Scalar(u"SELECT count(*) FROM Releases2 R WHERE "
                              "(SELECT count(*) FROM Tracks2 WHERE ReleaseId = R.ID) <> 3"_s)
                      .toInt(),
                  0)
            << "whole releases only";
        connection.Close();
        EXPECT_EQ(Run({u"info"_s, path}).Code, 0);
    }
}

TEST_F(Cli, ExportsWhatTheListOptionsChoose)
{
    ASSERT_EQ(Run({u"new"_s, FPath}).Code, 0);
    ASSERT_EQ(Run({u"add-folder"_s, FPath, MakeMusic(3, 2)}).Code, 0);
    const QString out = FDir.File(u"out.csv"_s);
    const QStringList base{u"export"_s, FPath, u"--format"_s, u"csv"_s, u"--out"_s, out};
    const std::tuple<QStringList, QByteArray> cases[] = {
        {{u"--columns"_s, u"ReleaseName, Artist"_s, u"--sort"_s, u"-ReleaseName"_s},
         "Release name,Artist\r\nAlbum 2,Artist 2\r\nAlbum 1,Artist 1\r\nAlbum 0,Artist 0\r\n"},
        {{u"--columns"_s, u"Artist"_s, u"--by"_s, u"ReleaseName"_s, u"--search"_s, u"m 1"_s}, "Artist\r\nArtist 1\r\n"},
        {{u"--tracks"_s, u"--columns"_s, u"TrackNo,ReleaseName"_s, u"--letter"_s, u"Z"_s},
         "Track No,Release name\r\n"}};
    for (const auto& [options, text] : cases) {
        const TCliResult result = Run(base + options);
        EXPECT_EQ(result.Code, 0) << result.Err.toStdString();
        EXPECT_EQ(Kit::ReadAll(out).toStdString(), text.toStdString()) << options.join(u' ').toStdString();
    }
    for (const QString& format : {u"html"_s, u"xlsx"_s, u"txt"_s, u"xml"_s, u"pdf"_s}) {
        const QString file = FDir.File(u"o."_s + format);
        EXPECT_EQ(Run({u"export"_s, FPath, u"--format"_s, format, u"--out"_s, file, u"--group"_s, u"Artist"_s}).Code,
                  0);
        EXPECT_GT(Kit::ReadAll(file).size(), 100) << format.toStdString();
    }
    for (const QStringList& bad :
         {QStringList{u"--columns"_s, u"Gone"_s}, {u"--format"_s, u"doc"_s}, {u"--sort"_s, u"Gone"_s}})
        EXPECT_EQ(Run(base + bad).Code, 2) << bad.join(u' ').toStdString();
    const TCliResult unwritable =
        Run({u"export"_s, FPath, u"--format"_s, u"csv"_s, u"--out"_s, FDir.Path() + u"/no/x.csv"_s});
    EXPECT_EQ(unwritable.Code, 1);
    EXPECT_FALSE(unwritable.Err.isEmpty());
}

} // namespace Kestrune
