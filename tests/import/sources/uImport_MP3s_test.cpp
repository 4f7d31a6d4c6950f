// SPDX-License-Identifier: GPL-3.0-or-later
#include "uFilePath.h"
#include "uImportKit.h"
#include "uObjs.h"

#include <filesystem>
#include <functional>
#include <stdexcept>
#include <utility>
#include <vector>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

using TTagList = QList<std::pair<const char*, QString>>;

class ImportFolders : public Kit::TImportCollection {
protected:
    QString Music(const QString& name = {}) const { return FMusic.Path() + (name.isEmpty() ? name : u'/' + name); }
    void Flac(const QString& name, int seconds, const QList<QByteArray>& comments = {}, const QByteArray& picture = {})
    {
        FMusic.Write(name, Kit::FlacFile(seconds, comments, picture));
    }
    // A file with sound, encoded as its extension tells.
    void Encode(const QString& name, double seconds, const TTagList& tags)
    {
        QStringList arguments{u"-v"_s, u"error"_s,
                              u"-f"_s, u"lavfi"_s,
                              u"-i"_s, u"sine=frequency=330:sample_rate=44100:duration=%1"_s.arg(seconds)};
        for (const auto& [key, value] : tags)
            arguments += {u"-metadata"_s, QString::fromUtf8(key) + u'=' + value};
        QByteArray output;
        ASSERT_TRUE(Kit::RunProgram(u"ffmpeg"_s, arguments + QStringList{FMusic.File(name)}, &output))
            << output.constData();
    }

    void Run(const QString& input = {}, const std::function<void(TKRNImporter_MP3s&)>& prepare = {})
    {
        TKRNImporter_MP3s importer(FData);
        importer.SetOptions(TMP3ScanOptions::New());
        importer.SetInputPath(input.isEmpty() ? Music() : input);
        importer.SetOnDone([this](TKRNImporter&, int releases, int files) { FDone = {releases, files}; });
        importer.SetOnError([this](TKRNImporter&, const QString& error) { FErrors += error; });
        importer.SetOnItemError([this](TKRNImporter&, const QString& file, const QString& error) {
            FErrors += file.sliced(file.lastIndexOf(u'/') + 1) + u": "_s + error;
        });
        if (prepare)
            prepare(importer);
        importer.Start();
        importer.WaitFor();
    }
    // The keys that a listing gives, without the root.
    QStringList Listed(const std::function<void(TKRNImporter_MP3s&)>& prepare = {})
    {
        QStringList keys;
        Run({}, [&](TKRNImporter_MP3s& importer) {
            importer.SetJobType(ijtGetReleasesList);
            importer.SetOnReleaseFound([&](TKRNImporter&, const std::vector<TReleaseFoundItem>& items) {
                for (const TReleaseFoundItem& item : items)
                    keys += WithoutRoot(VarToStr(item.ReleaseID));
            });
            if (prepare)
                prepare(importer);
        });
        return keys;
    }
    QString WithoutRoot(QString text) const { return text.replace(FMusic.Path() + u'/', QString()); }
    QString Releases()
    {
        return WithoutRoot(
            Rows(u"SELECT Artist, ReleaseName, ReleaseYear, DiscCount, FolderPath FROM Releases2 ORDER BY ID"_s));
    }
    // "disc.number Title artist seconds locator" per track, in the order stored.
    QString Tracks()
    {
        return Rows(
            u"SELECT DiscNo || '.' || TrackNo || ' ' || ifnull(TrackTitle, '') || ' ' || ifnull(Artist, '')"
            " || ' ' || CAST(round(TrackLength * 86400) AS INTEGER) || ' ' || ifnull(FileType, '') FROM Tracks2 ORDER BY ID"_s);
    }

    Kit::TTempDir FMusic;
    std::pair<int, int> FDone{-1, -1};
    QStringList FErrors;
};

} // namespace

TEST_F(ImportFolders, RealFilesAreStoredWithTheirTags)
{
    const TTagList album{{"artist", u"Die \u00C4rzte"_s},
                         {"album", u"Album \u2116 1"_s},
                         {"genre", u"Punk"_s},
                         {"date", u"2004-05-01"_s},
                         {"disc", u"2/3"_s},
                         {"publisher", u"Label"_s}};
    Encode(u"A/01.mp3"_s, 1.2, album + TTagList{{"title", u"Eins"_s}, {"track", u"1/2"_s}});
    Encode(u"A/02.mp3"_s, 2.7, album + TTagList{{"title", u"Zwei (Remix)"_s}, {"track", u"2/2"_s}});
    Encode(u"B/x.flac"_s, 3.2, album + TTagList{{"title", u"Drei"_s}, {"track", u"7"_s}, {"CATALOGNUMBER", u"C 1"_s}});
    Run();
    EXPECT_EQ(FDone, std::pair(2, 3));
    EXPECT_EQ(FErrors, QStringList());
    EXPECT_EQ(Releases(), u"Die \u00C4rzte|Album \u2116 1|2004|2|A\nDie \u00C4rzte|Album \u2116 1|2004|2|B"_s);
    EXPECT_EQ(Tracks(),
              u"2.1 Eins Die \u00C4rzte 1 \n2.2 Zwei (Remix) Die \u00C4rzte 3 \n2.7 Drei Die \u00C4rzte 3 "_s);
    EXPECT_EQ(
        Rows(u"SELECT Label, CatalogNO, Genre, MediaType, DataProvider, Quantity, No FROM Releases2 ORDER BY ID"_s),
        u"Label||Punk|Digital|MP3 Scan|1|1\nLabel|C 1|Punk|Digital|MP3 Scan|1|2"_s);
    EXPECT_EQ(Rows(u"SELECT IsRemix, Bitrate BETWEEN 60 AND 130, Genre FROM Tracks2 WHERE TrackNo = 2"_s),
              u"1|1|Punk"_s);
}

// A file of each kind, of three seconds where the kind tells its length.
TEST_F(ImportFolders, EveryKindOfFileHasItsLength)
{
    const QByteArray layer1 = (QByteArray("\xFF\xFF\xC0\x44", 4) + QByteArray(412, '\0')).repeated(345);
    const QByteArray monkey = Kit::MonkeyNew(2, 100000, 32300, 16, 2, 44100);
    const QByteArray musepack = Kit::Musepack8(132500, 200, QByteArray(5000, 's'));
    const QByteArray oldMusepack = Kit::Musepack7(115, 0, 576, QByteArray(5000, 's'));
    const std::pair<const char*, QByteArray> built[] = {
        {"mp1", layer1},
        {"ape", monkey},
        {"mpc", musepack},
        {"dsf", Kit::Dsf(2, 2822400, 3 * 2822400, "sound")},
        {"dff", Kit::Dff(2, 2822400, QByteArray(3 * 2822400 / 4, 'i'))},
        {"mac", monkey},
        {"mp+", oldMusepack},
        {"mpp", oldMusepack},
        {"ofr", "OFR " + QByteArray(200, 'o')},
        {"ofs", "OFR " + QByteArray(200, 'o')},
    };
    const std::pair<const char*, QStringList> encoded[] = {
        {"mp2", {}},
        {"mp3", {}},
        {"m4a", {}},
        {"m4b", {u"-f"_s, u"ipod"_s}},
        {"alac", {u"-c:a"_s, u"alac"_s, u"-f"_s, u"ipod"_s}},
        {"ogg", {u"-c:a"_s, u"libvorbis"_s}},
        {"oga", {}},
        {"opus", {}},
        {"flac", {}},
        {"fla", {u"-f"_s, u"flac"_s}},
        {"wv", {}},
        {"tta", {}},
        {"wma", {}},
        {"wav", {}},
        {"aif", {}},
        {"aiff", {}},
        {"aac", {}},
        {"ac3", {}},
    };
    for (const auto& [extension, bytes] : built)
        FMusic.Write(u"Band - Kinds (1999)/"_s + QString::fromLatin1(extension) + u'.' + QString::fromLatin1(extension),
                     bytes);
    for (const auto& [extension, arguments] : encoded) {
        const QString name = QString::fromLatin1(extension);
        ASSERT_TRUE(Kit::RunProgram(
            u"ffmpeg"_s,
            QStringList{u"-v"_s, u"error"_s, u"-f"_s, u"lavfi"_s, u"-i"_s, u"sine=sample_rate=44100:duration=3"_s} +
                arguments + QStringList{FMusic.File(u"Band - Kinds (1999)/%1.%1"_s.arg(name))}))
            << extension;
    }
    Run();
    EXPECT_EQ(Releases(), u"Band|Kinds|1999|1|Band - Kinds (1999)"_s);
    const QStringList rows =
        Rows(u"SELECT TrackTitle, round(TrackLength * 86400) FROM Tracks2 ORDER BY TrackTitle"_s).split(u'\n');
    ASSERT_EQ(rows.size(), 28);
    const QStringList without{u"aac"_s, u"ac3"_s, u"mac"_s, u"mp+"_s, u"mpp"_s, u"ofr"_s, u"ofs"_s};
    for (const QString& row : rows) {
        const QString kind = row.section(u'|', 0, 0);
        EXPECT_EQ(row.section(u'|', 1).toDouble(), without.contains(kind) ? 0.0 : 3.0) << kind.toStdString();
    }
}

TEST_F(ImportFolders, FoldersBecomeReleases)
{
    using TFiles = QList<std::pair<QString, QList<QByteArray>>>;
    const auto file = [](const char* name, QList<QByteArray> comments = {}) {
        return std::pair(QString::fromUtf8(name), std::move(comments));
    };
    const struct {
        const char* Name;
        TFiles Files;
        const char *Releases, *Tracks;
    } rows[] = {
        {"names instead of tags",
         {file("Artist - Album (1999)/01 - Title.flac")},
         "Artist|Album|1999|1|Artist - Album (1999)",
         "1.1 Title Artist 9 "},
        {"the artist and year of the file's name",
         {file("Some Album/Who - What (1987).flac"), file("Some Album/x.flac")},
         "Who|Some Album|1987|1|Some Album",
         "1.0 Who - What (1987) Who 9 \n1.0 x Who 9 "},
        {"discs of one album",
         {file("Box/CD1/01 A.flac", {"ALBUM=Box"}), file("Box/CD2/01 B.flac", {"ALBUM=Box"})},
         "|Box||2|Box",
         "1.1 A  9 \n2.1 B  9 "},
        {"a lone disc", {file("Box/Disc 2/01 A.flac", {"ALBUM=Box"})}, "|Box||2|Box", "2.1 A  9 "},
        {"a lone disc with a name of its own",
         {file("Solo - Best CD1/01 A.flac"), file("Other/01 B.flac", {"ALBUM=Other"})},
         "|Other||1|Other\nSolo|Best CD1||1|Solo - Best CD1",
         "1.1 B  9 \n1.1 A Solo 9 "},
        {"first discs of two albums",
         {file("A CD1/01 A.flac", {"ALBUM=A"}), file("B CD2/01 B.flac", {"ALBUM=B"})},
         "|A||1|A CD1\n|B||2|B CD2",
         "1.1 A  9 \n2.1 B  9 "},
        {"the tag's disc before the folder's",
         {file("Box/CD1/01 A.flac", {"ALBUM=Box", "DISCNUMBER=4"})},
         "|Box||4|Box",
         "4.1 A  9 "},
        {"ABCD 2 is no disc", {file("Box/ABCD 2/01 A.flac", {"ALBUM=Box"})}, "|Box||1|Box/ABCD 2", "1.1 A  9 "},
        {"several artists",
         {file("M/1.flac", {"ARTIST=abba", "ALBUM=M", "TITLE=a"}),
          file("M/2.flac", {"ARTIST=ABBA", "ALBUM=M", "TITLE=b"})},
         "Various Artists|M||1|M",
         "1.0 a abba 9 \n1.0 b ABBA 9 "},
        {"album artists are not asked",
         {file("M/1.flac", {"ARTIST=a", "ALBUMARTIST=z", "ALBUM=M", "TITLE=a"}),
          file("M/2.flac", {"ARTIST=a", "ALBUMARTIST=y", "ALBUM=M", "TITLE=b"})},
         "a|M||1|M",
         "1.0 a a 9 \n1.0 b a 9 "},
        {"files beside folders",
         {file("1.flac", {"ARTIST=a", "ALBUM=top", "TITLE=t"}), file("s/2.flac", {"ARTIST=b", "ALBUM=sub", "TITLE=u"})},
         "b|sub||1|s\na|top||1|<root>",
         "1.0 u b 9 \n1.0 t a 9 "},
    };
    int i = 0;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Name);
        const QString root = u"case%1"_s.arg(i++);
        for (const auto& [name, comments] : row.Files)
            Flac(root + u'/' + name, 9, comments);
        FData.ExecSQL(u"DELETE FROM Tracks2; DELETE FROM Releases2"_s);
        Run(Music(root));
        EXPECT_EQ(Releases().replace(root + u'/', QString()).replace(root, u"<root>"_s),
                  QString::fromUtf8(row.Releases));
        EXPECT_EQ(Tracks(), QString::fromUtf8(row.Tracks));
        EXPECT_EQ(FDone.second, row.Files.size());
    }
}

TEST_F(ImportFolders, CueSheetsCutTheirFiles)
{
    const QByteArray three = "PERFORMER P\nTITLE T\nFILE \"a.wav\" WAVE\nTRACK 1 AUDIO\nTITLE A\nINDEX 01 00:00:00\n"
                             "TRACK 2 AUDIO\nTITLE B\nINDEX 01 00:10:00\nTRACK 3 AUDIO\nTITLE C\nINDEX 01 00:30:38\n";
    const QString cut = u"1.1 A P 10 CUE:0:10\n1.2 B P 21 CUE:10:31\n1.3 C P 14 CUE:31:45"_s;
    const QList<QByteArray> tags{"ARTIST=a", "ALBUM=T", "TITLE=t"};
    const struct {
        const char* Name;
        std::function<void(const QString& root)> Make;
        QString Tracks;
    } rows[] = {
        {"beside the file",
         [&](const QString& root) {
             Flac(root + u"/all.flac"_s, 45, tags);
             FMusic.Write(root + u"/all.CUE"_s, three);
         },
         cut},
        {"inside the file",
         [&](const QString& root) { Flac(root + u"/all.flac"_s, 45, tags + QList<QByteArray>{"CUESHEET=" + three}); },
         cut},
        {"inside one of two files",
         [&](const QString& root) {
             Flac(root + u"/a.flac"_s, 45, tags + QList<QByteArray>{"CUESHEET=" + three});
             Flac(root + u"/b.flac"_s, 45, tags + QList<QByteArray>{"CUESHEET=" + three});
         },
         u"1.0 t a 45 \n1.0 t a 45 "_s},
        {"the one beside goes before the one inside",
         [&](const QString& root) {
             Flac(root + u"/all.flac"_s, 45, tags + QList<QByteArray>{"CUESHEET=" + three});
             FMusic.Write(root + u"/one.cue"_s, "FILE a WAVE\nTRACK 1 AUDIO\nTITLE A\n");
         },
         u"1.0 t a 45 "_s},
        {"one track is none",
         [&](const QString& root) {
             Flac(root + u"/all.flac"_s, 45, tags);
             FMusic.Write(root + u"/all.cue"_s, "FILE all.flac WAVE\nTRACK 1 AUDIO\nTITLE A\n");
         },
         u"1.0 t a 45 "_s},
        {"a sheet left beside the split files",
         [&](const QString& root) {
             Flac(root + u"/1.flac"_s, 45, tags);
             Flac(root + u"/2.flac"_s, 45, tags);
             FMusic.Write(root + u"/x.cue"_s, QByteArray(three).replace("a.wav", "a.flac"));
         },
         u"1.0 t a 45 \n1.0 t a 45 "_s},
        {"each disc by its own sheet",
         [&](const QString& root) {
             Flac(root + u"/CD1/a.flac"_s, 45, tags);
             Flac(root + u"/CD2/a.flac"_s, 45, tags);
             Flac(root + u"/CD3/b.flac"_s, 50, tags);
             FMusic.Write(root + u"/CD1/a.cue"_s, three);
             FMusic.Write(root + u"/CD2/a.cue"_s, QByteArray(three).replace("TITLE T", "TITLE \"T, disc 2\""));
         },
         cut + u'\n' + QString(cut).replace(u"1."_s, u"2."_s) + u"\n3.0 t a 50 "_s},
        {"each disc by the sheet inside its file",
         [&](const QString& root) {
             Flac(root + u"/CD1/a.flac"_s, 45, tags + QList<QByteArray>{"CUESHEET=" + three});
             Flac(root + u"/CD2/b.flac"_s, 50, tags);
         },
         cut + u"\n2.0 t a 50 "_s},
        {"a file that no sheet covers",
         [&](const QString& root) {
             Flac(root + u"/a.flac"_s, 45, tags);
             Flac(root + u"/bonus.flac"_s, 50, tags);
             FMusic.Write(root + u"/x.cue"_s, three);
         },
         cut + u"\n1.0 t a 50 "_s},
    };
    int i = 0;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Name);
        const QString root = u"case%1"_s.arg(i++);
        row.Make(root);
        FData.ExecSQL(u"DELETE FROM Tracks2; DELETE FROM Releases2"_s);
        Run(Music(root));
        EXPECT_EQ(Tracks(), row.Tracks);
        EXPECT_EQ(FDone.first, 1);
    }
}

TEST_F(ImportFolders, TwoImagesWithSheetsInOneFolderAreTwoReleases)
{
    const auto sheet = [](const QByteArray& name) {
        return "PERFORMER P\nTITLE " + name + "\nFILE " + name +
               ".wav WAVE\nTRACK 1 AUDIO\nINDEX 01 00:00:00\n"
               "TRACK 2 AUDIO\nINDEX 01 00:10:00\n";
    };
    for (const char* name : {"a", "b"}) {
        Flac(u"x/%1.flac"_s.arg(QString::fromUtf8(name)), 30);
        FMusic.Write(u"x/%1.cue"_s.arg(QString::fromUtf8(name)), sheet(name));
    }
    Run();
    EXPECT_EQ(Releases(), u"P|a||1|x\nP|b||1|x"_s);
    EXPECT_EQ(Tracks(), u"1.1  P 10 CUE:0:10\n1.2  P 20 CUE:10:30\n1.1  P 10 CUE:0:10\n1.2  P 20 CUE:10:30"_s);
    EXPECT_EQ(Listed(), (QStringList{u"x"_s, u"x/b.flac"_s})) << "the keys";
}

TEST_F(ImportFolders, ACueSheetMayStartWithTheFileThatIsNotTheFirst)
{
    const QByteArray first = Kit::MakePicture(10, 10, "PNG", 1), second = Kit::MakePicture(20, 20, "PNG", 2);
    Flac(u"a.flac"_s, 9, {}, first);
    Flac(u"b.flac"_s, 9, {}, second);
    FMusic.Write(u"x.cue"_s, "FILE b.flac WAVE\nTRACK 1 AUDIO\nFILE a.flac WAVE\nTRACK 2 AUDIO\n");
    Run();
    EXPECT_EQ(Rows(u"SELECT hex(LargePicture) FROM Releases2 ORDER BY ID"_s),
              QString::fromLatin1(second.toHex().toUpper()));
}

TEST_F(ImportFolders, PicturesComeFromTheTagsThenFromTheFolder)
{
    const QByteArray tag = Kit::MakePicture(30, 40, "JPG", 1), front = Kit::MakePicture(20, 20, "PNG", 2),
                     back = Kit::MakePicture(21, 20, "JPG", 3), disc = Kit::MakePicture(22, 20, "BMP", 4);
    FMusic.Write(u"tagged/folder.png"_s, front);
    FMusic.Write(u"tagged/my CD.bmp"_s, disc);
    Flac(u"tagged/1.flac"_s, 1);
    Flac(u"tagged/2.flac"_s, 1, {}, tag);
    FMusic.Write(u"unknown/folder.png"_s, front);
    FMusic.Write(u"unknown/Scans/back.jpg"_s, back);
    Flac(u"unknown/1.flac"_s, 1, {}, QByteArray("RIFF\x10\0\0\0WEBPVP8 ", 16));
    FMusic.Write(u"broken/folder.png"_s, "no picture");
    Flac(u"broken/1.flac"_s, 1, {}, QByteArray("\xFF\xD8 broken"));
    Flac(u"Solo - Best CD1/1.flac"_s, 1); // not the picture of the album beside it
    Run();
    EXPECT_EQ(WithoutRoot(Rows(u"SELECT FolderPath, length(LargePicture), length(LargePictureBack),"
                               " length(LargePictureMedia) FROM Releases2 ORDER BY ID"_s)),
              u"broken|||\nSolo - Best CD1|||\ntagged|%1||%2\nunknown|%3|%4|"_s.arg(tag.size())
                  .arg(disc.size())
                  .arg(front.size())
                  .arg(back.size()));
    const QString thumb = Rows(u"SELECT hex(ThumbPicture) FROM Releases2 WHERE LargePicture IS NOT NULL LIMIT 1"_s);
    EXPECT_EQ(thumb, QString::fromLatin1(MakeThumbnail(tag, Defaults().LargeHeight).toHex().toUpper()));
}

TEST_F(ImportFolders, CancelLeavesWholeReleases)
{
    constexpr int folders = 12;
    for (int i = 0; i < folders; ++i) {
        Flac(u"%1/1.flac"_s.arg(10 + i), 1, {}, Kit::MakePicture(50, 50, "PNG", i));
        Flac(u"%1/2.flac"_s.arg(10 + i), 1);
    }
    for (const int wanted : {0, 7, 1, 11, 4, 9, 2, 5, 12, 3}) {
        SCOPED_TRACE(wanted);
        FData.ExecSQL(u"DELETE FROM Tracks2; DELETE FROM Releases2"_s);
        QStringList stored;
        Run({}, [&](TKRNImporter_MP3s& importer) {
            if (wanted == 0)
                importer.Terminate();
            importer.SetOnReleaseStored([&](TKRNImporter& self, qint64 id, const QString& name) {
                stored += QString::number(id) + u' ' + name;
                if (stored.size() == wanted)
                    self.Terminate();
            });
        });
        EXPECT_EQ(FDone, std::pair(wanted, wanted * 2)) << "the job still reports what it managed";
        EXPECT_EQ(Rows(u"SELECT ID || ' ' || ifnull(Artist, '') || ' - ' || ReleaseName FROM Releases2 ORDER BY ID"_s),
                  stored.join(u'\n'));
        EXPECT_EQ(Rows(u"SELECT count(*) FROM Tracks2"_s), QString::number(wanted * 2));
        EXPECT_EQ(Rows(u"PRAGMA integrity_check"_s), u"ok"_s);
    }
}

TEST_F(ImportFolders, AFailedStoreEndsTheJobAndKeepsWhatWasStored)
{
    for (int i = 1; i <= 3; ++i)
        Flac(u"%1/1.flac"_s.arg(i), 1, {}, i == 2 ? Kit::MakePicture(600, 600, "BMP") : QByteArray());
    const qint64 pages = FData.ExecSQLAndGetID(u"PRAGMA page_count"_s);
    FData.ExecSQLAndGetID(u"PRAGMA max_page_count = %1"_s.arg(pages + 20));
    Run();
    EXPECT_EQ(FErrors.size(), 1);
    EXPECT_EQ(FDone, std::pair(-1, -1)) << "no end is reported";
    EXPECT_EQ(Rows(u"SELECT ReleaseName, (SELECT count(*) FROM Tracks2) FROM Releases2 ORDER BY ID"_s), u"1|1"_s);
    FData.ExecSQLAndGetID(u"PRAGMA max_page_count = 100000"_s);
    Run(Music(u"2"_s));
    EXPECT_EQ(FDone.first, 1) << "and the collection is usable as before";
}

TEST_F(ImportFolders, ProgressCountsFilesAndNamesThem)
{
    FMusic.Write(u"a.iso"_s, "x");
    FMusic.Write(u"b.iso.wv"_s, "x");
    Flac(u"c.flac"_s, 1, {"ARTIST=A", "ALBUM=B", "TITLE=T"});
    FMusic.Write(u"d.m2ts"_s, "x");
    QString log;
    Run({}, [&](TKRNImporter_MP3s& importer) {
        importer.SetOnProgress([&](TKRNImporter&, int position, int count, bool isRelease, const QString& text) {
            log += u"[%1/%2 %3 %4]"_s.arg(position).arg(count).arg(isRelease).arg(text);
        });
    });
    EXPECT_EQ(log, u"[3/4 0 a.iso\nb.iso.wv\nA - B - T][4/4 0  - %1 - d]"_s.arg(
                       FMusic.Path().sliced(FMusic.Path().lastIndexOf(u'/') + 1)));
    EXPECT_EQ(FDone, std::pair(1, 4)) << "images that no reader opens are no releases";
}

TEST_F(ImportFolders, ADiscImageIsAReleaseOfItsOwn)
{
    FMusic.Write(u"x/four.iso"_s, "x");
    FMusic.Write(u"x/one.iso"_s, "x");
    FMusic.Write(u"x/two.iso"_s, "x");
    FMusic.Write(u"x/three.iso"_s, "x");
    Flac(u"x/z.flac"_s, 1, {"ALBUM=Files"});
    const auto prepare = [](TKRNImporter_MP3s& importer) {
        TMP3ScanOptions options = TMP3ScanOptions::FromSettings();
        options.ReadDiscImage = [](const QString& image, bool) -> TImageTracks {
            if (image.endsWith("two.iso"_L1))
                throw std::runtime_error("bad image");
            if (image.endsWith("three.iso"_L1))
                return {{}, imfUnknown};
            TKRN_MP3_Track track;
            track.FilePath = image;
            track.FileType = u"SACD:1"_s;
            track.Album = image.endsWith("one.iso"_L1) ? u"One"_s : u"Four"_s;
            return {{track}};
        };
        importer.SetOptions(options.Clone());
    };
    Run({}, prepare);
    EXPECT_EQ(Rows(u"SELECT ReleaseName FROM Releases2 ORDER BY ID"_s), u"Four\nOne\nFiles"_s);
    EXPECT_EQ(FErrors,
              (QStringList{u"three.iso: The file is no disc image of a known kind."_s, u"two.iso: bad image"_s}));
    EXPECT_EQ(FDone, std::pair(3, 5));
    EXPECT_EQ(Listed(prepare), (QStringList{u"x/four.iso"_s, u"x/one.iso"_s, u"x"_s})) << "each has its own key";
}

TEST_F(ImportFolders, NamesThatAreNoUtf8SurviveTheWholeRoad)
{
    const std::filesystem::path folder = TextToPath(Music()) / "caf\xE9";
    std::filesystem::create_directory(folder);
    Flac(u"x.flac"_s, 5);
    std::filesystem::rename(TextToPath(Music(u"x.flac"_s)), folder / "01 - \xFF.flac");
    Run();
    const QString stored = Rows(u"SELECT FilePath FROM Tracks2"_s);
    EXPECT_EQ(TextToPath(stored), folder / "01 - \xFF.flac");
    EXPECT_EQ(TextToPath(Rows(u"SELECT FolderPath FROM Releases2 ORDER BY ID"_s)), folder);
    EXPECT_EQ(Rows(u"SELECT TrackLength * 86400 > 4.9 FROM Tracks2"_s), u"1"_s);
    std::filesystem::remove_all(folder);
}

TEST_F(ImportFolders, AListingStoresNothingAndItsKeysSelect)
{
    Flac(u"a/1.flac"_s, 1, {"ARTIST=A", "ALBUM=X", "DATE=1999"});
    Flac(u"b/1.flac"_s, 1, {"ARTIST=B", "ALBUM=Y"});
    std::vector<TReleaseFoundItem> found;
    Run({}, [&](TKRNImporter_MP3s& importer) {
        importer.SetJobType(ijtGetReleasesList);
        importer.SetOnReleaseFound([&](TKRNImporter&, const std::vector<TReleaseFoundItem>& items) { found = items; });
    });
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(found[0].Artist + found[0].ReleaseName + found[0].ReleaseYear, u"AX1999"_s);
    EXPECT_EQ(found[1].TracksCount, 1);
    EXPECT_EQ(Rows(u"SELECT count(*) FROM Releases2 ORDER BY ID"_s), u"0"_s);
    Run({}, [&](TKRNImporter_MP3s& importer) { importer.SetIDsArray({found[1].ReleaseID}); });
    EXPECT_EQ(Rows(u"SELECT ReleaseName FROM Releases2 ORDER BY ID"_s), u"Y"_s);
}

TEST_F(ImportFolders, WhatTagsLeaveOutTheDefaultsOfTheUserFill)
{
    Defaults().Values.Genre = u"Jazz"_s;
    Defaults().Values.Country = u"FR"_s;
    Flac(u"a/1.flac"_s, 1, {"ALBUM=A"});
    Flac(u"b/1.flac"_s, 1, {"ALBUM=B", "GENRE=Dub", "COUNTRY=JM"});
    Run();
    EXPECT_EQ(Rows(u"SELECT ReleaseName, Genre, CountryCode FROM Releases2 ORDER BY ID"_s), u"A|Jazz|FR\nB|Dub|JM"_s);
}

TEST_F(ImportFolders, AnImportMayBeRepeated)
{
    Flac(u"a/1.flac"_s, 1);
    Run();
    Run(Music(u"a/1.flac"_s));
    Run(Music(u"none"_s));
    EXPECT_EQ(FDone, std::pair(0, 0));
    EXPECT_EQ(Rows(u"SELECT ReleaseName, No FROM Releases2 ORDER BY ID"_s), u"a|1\na|2"_s);
}

} // namespace Kestrune
