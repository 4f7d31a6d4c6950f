// SPDX-License-Identifier: GPL-3.0-or-later
#include "uCueSheet.h"
#include "uTestFiles.h"

#include <QStringEncoder>

#include <gtest/gtest.h>

#include <vector>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

// "1|Title|Artist|12.000|file" per track.
QString Shown(const TCueSheet& sheet)
{
    QStringList lines;
    for (const TCueTrack& t : sheet.Tracks)
        lines += u"%1|%2|%3|%4|%5"_s.arg(t.No).arg(t.Title, t.Artist, QString::number(t.StartSec, 'f', 3), t.FileName);
    return lines.join(u'\n');
}

// "1|Title|duration|locator|name of the file" per track, and a line between albums.
QString Shown(const std::vector<TKRN_MP3_Tracks>& albums)
{
    QStringList lines;
    for (const TKRN_MP3_Tracks& tracks : albums) {
        if (!lines.isEmpty())
            lines += u"--"_s;
        for (const TKRN_MP3_Track& t : tracks)
            lines += u"%1|%2|%3|%4|%5"_s.arg(t.No)
                         .arg(t.Title)
                         .arg(t.DurationSec)
                         .arg(t.FileType, t.FilePath.sliced(t.FilePath.lastIndexOf(u'/') + 1));
    }
    return lines.join(u'\n');
}

TKRN_MP3_Track Source(const char* path, int duration, const char* type = "")
{
    TKRN_MP3_Track track;
    track.FilePath = QString::fromUtf8(path);
    track.FileType = QString::fromUtf8(type);
    track.DurationSec = duration;
    return track;
}

} // namespace

TEST(CueSheet, LinesAreRead)
{
    const struct {
        const char *Name, *Text, *Tracks;
    } rows[] = {
        {"a plain sheet", "FILE \"a b.wav\" WAVE\n TRACK 01 AUDIO\n TITLE \"One\"\n PERFORMER Who\n INDEX 01 01:02:37",
         "1|One|Who|62.493|a b.wav"},
        {"carriage returns and tabs", "FILE\ta.wav\tWAVE\r\n\tTRACK\t01 AUDIO\r\n\t\tINDEX 01 00:10:00\r\n",
         "1|||10.000|a.wav"},
        {"carriage returns alone", "FILE a.wav WAVE\rTRACK 1 AUDIO\rTITLE A\rINDEX 01 00:01:00", "1|A||1.000|a.wav"},
        {"gaps at the end of the file before",
         "FILE 1.wav WAVE\nTRACK 1 AUDIO\nINDEX 01 00:00:00\nTRACK 2 AUDIO\nINDEX 00 03:00:00\n"
         "FILE 2.wav WAVE\nINDEX 01 00:00:00\nTRACK 3 AUDIO\nINDEX 00 02:00:00\nFILE 3.wav WAVE\nINDEX 01 00:01:00",
         "1|||0.000|1.wav\n2|||0.000|2.wav\n3|||1.000|3.wav"},
        {"only INDEX 01 counts",
         "TRACK 1 AUDIO\nINDEX 00 00:01:00\nINDEX 01 00:02:00\nINDEX 02 00:03:00\nINDEX 1 00:09:00", "1|||2.000|"},
        {"a missing INDEX 01", "TRACK 1 AUDIO\nINDEX 00 00:01:00", "1|||0.000|"},
        {"INDEX before any track", "INDEX 01 00:05:00\nTRACK 1 AUDIO", "1|||0.000|"},
        {"times of two parts, one part, none",
         "TRACK 1 AUDIO\nINDEX 01 3:30\nTRACK 2 AUDIO\nINDEX 01 77\nTRACK 3 AUDIO\nINDEX 01 aa:bb:cc",
         "1|||210.000|\n2|||0.000|\n3|||0.000|"},
        {"more than 99 minutes", "TRACK 1 AUDIO\nINDEX 01 123:00:74", "1|||7380.987|"},
        {"numbers that are none", "TRACK xx AUDIO\nTITLE A\nTRACK 0 AUDIO\nTRACK -3 AUDIO\nTRACK 7 AUDIO\nTITLE B",
         "7|B||0.000|"},
        {"a file without closing quote", "FILE \"a b.wav WAVE\nTRACK 1 AUDIO", "1|||0.000|a b.wav WAVE"},
        {"words without a value", "FILE\nTITLE\nTRACK\nTRACK 1 AUDIO\nTITLE", "1|||0.000|"},
        {"one pair of quotes is taken off", "TRACK 1 AUDIO\nTITLE \"\"\"So\"\" they say\"\nPERFORMER \"",
         "1|\"\"So\"\" they say|\"|0.000|"},
        {"keywords in any case", "file A.wav WAVE\ntrack 1 audio\ntitle x", "1|x||0.000|A.wav"},
        {"nothing", "", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Name);
        EXPECT_EQ(Shown(ParseCueSheet(QString::fromUtf8(row.Text))), QString::fromUtf8(row.Tracks));
    }
}

TEST(CueSheet, TheHeadDescribesTheAlbum)
{
    const TCueSheet sheet = ParseCueSheet(uR"(REM GENRE "Art Rock"
rem date 1973
REM COMMENT made by hand
REM DISCID 123
PERFORMER "The Band"
TITLE "The Album"
FILE "one.wav" WAVE
  TRACK 01 AUDIO
FILE "two.wav" WAVE
  TRACK 02 AUDIO
FILE "one.wav" WAVE
  TRACK 03 AUDIO
    REM DATE "soon"
    TITLE "Third")"_s);
    EXPECT_EQ(sheet.Genre, u"Art Rock"_s);
    EXPECT_EQ(sheet.Comment, u"made by hand"_s);
    EXPECT_EQ(sheet.AlbumArtist, u"The Band"_s);
    EXPECT_EQ(sheet.AlbumTitle, u"The Album"_s);
    EXPECT_EQ(sheet.FileNames, (QStringList{u"one.wav"_s, u"two.wav"_s}));
    EXPECT_EQ(Shown(sheet), u"1|||0.000|one.wav\n2|||0.000|two.wav\n3|Third||0.000|one.wav"_s);
    EXPECT_EQ(sheet.Year, 0) << "a date that is no number counts as none, wherever it stands";
    EXPECT_EQ(ParseCueSheet(u"REM DATE \"1973\""_s).Year, 1973);
}

TEST(CueSheet, TextsOfAllEncodingsAreRead)
{
    const QString text = u"TITLE \"Caf\u00E9 \u20AC\"\nTRACK 1 AUDIO"_s;
    const auto encoded = [&](QStringConverter::Encoding encoding, const char* mark) {
        return QByteArray(mark) + QByteArray(QStringEncoder(encoding)(text));
    };
    const struct {
        const char* Name;
        QByteArray Bytes;
    } rows[] = {
        {"UTF-8", encoded(QStringConverter::Utf8, "")},
        {"UTF-8 with mark", encoded(QStringConverter::Utf8, "\xEF\xBB\xBF")},
        {"UTF-16 little endian", encoded(QStringConverter::Utf16LE, "\xFF\xFE")},
        {"UTF-16 big endian", encoded(QStringConverter::Utf16BE, "\xFE\xFF")},
        {"UTF-16 little endian, no mark", encoded(QStringConverter::Utf16LE, "")},
        {"UTF-16 big endian, no mark", encoded(QStringConverter::Utf16BE, "")},
        {"Windows-1252", "TITLE \"Caf\xE9 \x80\"\nTRACK 1 AUDIO"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Name);
        EXPECT_EQ(DecodeCueText(row.Bytes), text);
    }
    EXPECT_EQ(DecodeCueText("caf\xC3"), u"caf\u00C3"_s) << "a cut UTF-8 character";
    EXPECT_EQ(DecodeCueText(""), QString());
    EXPECT_EQ(DecodeCueText("\xFF"), u"\u00FF"_s);
}

TEST(CueSheet, SheetsThatBearTheNameOfAnAudioFileComeFirst)
{
    const Kit::TTempDir dir;
    for (const QString& name : {u"Album.flac"_s, u"Disc.iso"_s, u"b.ape"_s, u"0.cue/x"_s, u"a.CUE"_s, u"album.Cue"_s,
                                u"B.ape.cue"_s, u"disc.cue"_s, u"c.txt"_s})
        dir.Write(name, {});
    const TCueFolder folder = ListCueFolder(dir.Path());
    QStringList names;
    for (const QString& path : folder.Sheets)
        names += path.sliced(dir.Path().size() + 1);
    EXPECT_EQ(names, (QStringList{u"album.Cue"_s, u"B.ape.cue"_s, u"a.CUE"_s, u"disc.cue"_s}));
    EXPECT_EQ(folder.AudioFiles, (QStringList{u"Album.flac"_s, u"b.ape"_s}));
}

TEST(CueSheet, AHugeFileIsNoSheet)
{
    const Kit::TTempDir dir;
    EXPECT_FALSE(LoadCueSheet(dir.Write(u"big.cue"_s, QByteArray(1024 * 1024 + 1, 'x'))));
    EXPECT_FALSE(LoadCueSheet(dir.File(u"missing.cue"_s)));
    EXPECT_TRUE(LoadCueSheet(dir.Write(u"empty.cue"_s, {})));
}

TEST(CueSheet, TracksAreCutFromTheirFiles)
{
    const char* three = "FILE \"a.wav\" WAVE\nTRACK 1 AUDIO\nTITLE A\nINDEX 01 00:00:00\n"
                        "TRACK 2 AUDIO\nTITLE B\nINDEX 01 00:10:00\nTRACK 3 AUDIO\nTITLE C\nINDEX 01 00:30:38\n";
    const char* twoFiles = "FILE one.flac WAVE\nTRACK 1 AUDIO\nTITLE A\nINDEX 01 00:02:00\n"
                           "FILE two.flac WAVE\nTRACK 2 AUDIO\nTITLE B\nINDEX 01 00:00:00\n";
    const struct {
        const char *Name, *Text;
        TKRN_MP3_Tracks Scanned;
        const char* Expected;
        QStringList Others{};
    } rows[] = {
        {"a single file by any name",
         three,
         {Source("/m/x.flac", 45)},
         "1|A|10|CUE:0:10|x.flac\n2|B|21|CUE:10:31|x.flac\n3|C|14|CUE:31:45|x.flac"},
        {"an unknown length gives the average",
         three,
         {Source("/m/x.flac", 0)},
         "1|A|10|CUE:0:10|x.flac\n2|B|21|CUE:10:31|x.flac\n3|C|16|CUE:31:47|x.flac"},
        {"a single file that is too short for the sheet", three, {Source("/m/x.flac", 30)}, "0||30||x.flac"},
        {"a single track beside files that could not be read",
         three,
         {Source("/m/x.flac", 45)},
         "0||45||x.flac",
         {u"y.flac"_s}},
        {"a named file that could not be read", three, {Source("/m/x.wav", 45)}, "0||45||x.wav", {u"a.wav"_s}},
        {"the name goes before the extension",
         twoFiles,
         {Source("/m/ONE.FLAC", 12), Source("/m/two.flac", 20), Source("/m/z.flac", 30)},
         "1|A|10|CUE:2:12|ONE.FLAC\n2|B|20|CUE:0:20|two.flac\n0||30||z.flac"},
        {"paths of any system",
         "FILE \"C:\\Rip\\One.wav\" WAVE\nTRACK 1 AUDIO\nFILE ../x/two.wav WAVE\nTRACK 2 AUDIO",
         {Source("/m/one.wav", 12), Source("/m/two.wav", 20), Source("/m/three.wav", 30)},
         "1||12|CUE:0:12|one.wav\n2||20|CUE:0:20|two.wav\n0||30||three.wav"},
        {"names before their conversion",
         "FILE 1.wav WAVE\nTRACK 1 AUDIO\nFILE d\\2.wav WAVE\nTRACK 2 AUDIO",
         {Source("/m/1.flac", 12), Source("/m/2.flac", 20)},
         "1||12|CUE:0:12|1.flac\n2||20|CUE:0:20|2.flac"},
        {"a track that is named as the lost image",
         three,
         {Source("/m/a.flac", 25), Source("/m/b.flac", 30)},
         "0||25||a.flac\n0||30||b.flac"},
        {"the only file of the extension",
         three,
         {Source("/m/y.wav", 50), Source("/m/z.mp3", 1)},
         "1|A|10|CUE:0:10|y.wav\n2|B|21|CUE:10:31|y.wav\n3|C|19|CUE:31:50|y.wav\n0||1||z.mp3"},
        {"files that were split already",
         three,
         {Source("/m/1.wav", 90), Source("/m/2.wav", 90)},
         "0||90||1.wav\n0||90||2.wav"},
        {"no source", three, {Source("/m/x.mp3", 9), Source("/m/y.mp3", 50)}, "0||9||x.mp3\n0||50||y.mp3"},
        {"only some have a source",
         "FILE a.mp3 MP3\nTRACK 1 AUDIO\nTITLE A\nFILE b.ogg MP3\nTRACK 2 AUDIO\nTITLE B\n",
         {Source("/m/b.ogg", 8), Source("/m/c.wav", 7)},
         "2|B|8|CUE:0:8|b.ogg\n0||7||c.wav"},
        {"a file answers to one name",
         "FILE a.wav WAVE\nTRACK 1 AUDIO\nINDEX 01 00:40:00\nFILE b.wav WAVE\nTRACK 2 AUDIO",
         {Source("/m/a.wav", 30)},
         "1||0|CUE:40:40|a.wav"},
        {"times that go back",
         "FILE a.wav WAVE\nTRACK 1 AUDIO\nINDEX 01 00:20:00\nTRACK 2 AUDIO\nINDEX 01 00:05:00\n",
         {Source("/m/a.wav", 30)},
         "1||0|CUE:20:20|a.wav\n2||25|CUE:5:30|a.wav"},
        {"a file inside of an image",
         "FILE a.wav WAVE\nTRACK 1 AUDIO\nTRACK 2 AUDIO\nINDEX 01 00:05:00\n",
         {Source("/m/disc.iso", 30, "ISO:/A.WAV"), Source("/m/disc.iso", 9, "ISO:/B.WAV")},
         "1||5|ISO:/A.WAV:0:5|disc.iso\n2||25|ISO:/A.WAV:5:30|disc.iso\n0||9|ISO:/B.WAV|disc.iso"},
        {"equal names in folders of an image",
         "FILE CD2\\A.WAV WAVE\nTRACK 1 AUDIO\nTRACK 2 AUDIO\nINDEX 01 00:05:00\n",
         {Source("/m/disc.iso", 30, "ISO:/CD1/A.WAV"), Source("/m/disc.iso", 9, "ISO:/CD2/A.WAV")},
         "1||5|ISO:/CD2/A.WAV:0:5|disc.iso\n2||4|ISO:/CD2/A.WAV:5:9|disc.iso\n0||30|ISO:/CD1/A.WAV|disc.iso"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Name);
        EXPECT_EQ(Shown(CutIntoAlbums({ParseCueSheet(QString::fromUtf8(row.Text))}, row.Scanned, row.Others)),
                  QString::fromUtf8(row.Expected));
    }
}

TEST(CueSheet, EachSheetCutsTheFilesThatItNames)
{
    const auto sheet = [](const char* file, const char* album) {
        return ParseCueSheet(u"TITLE \"%1\"\nFILE \"%2\" WAVE\nTRACK 1 AUDIO\nTRACK 2 AUDIO\nINDEX 01 00:10:00"_s.arg(
            QString::fromUtf8(album), QString::fromUtf8(file)));
    };
    TKRN_MP3_Track tagged = Source("/m/d.flac", 5);
    tagged.Album = u"Second"_s;
    const TKRN_MP3_Tracks images{Source("/m/a.flac", 30), Source("/m/b.flac", 40)};
    const QString a = u"1||10|CUE:0:10|a.flac\n2||20|CUE:10:30|a.flac"_s;
    const QString b = u"1||10|CUE:0:10|b.flac\n2||30|CUE:10:40|b.flac"_s;
    const struct {
        const char* Name;
        std::vector<TCueSheet> Sheets;
        TKRN_MP3_Tracks Scanned;
        QString Expected;
    } rows[] = {
        {"two albums", {sheet("a.flac", "First"), sheet("b.flac", "Second")}, images, a + u"\n--\n"_s + b},
        {"two discs of an album", {sheet("a.flac", "First"), sheet("b.flac", "first")}, images, a + u'\n' + b},
        {"several sheets for a file",
         {sheet("a.flac", "First"), sheet("a.wav", "Other"), sheet("A.FLAC", "Third")},
         images,
         a + u"\n0||40||b.flac"_s},
        {"a file by its tags",
         {sheet("a.flac", "First"), sheet("b.flac", "Second")},
         {images[0], images[1], Source("/m/c.flac", 4), tagged},
         a + u"\n--\n"_s + b + u"\n0||5||d.flac\n--\n0||4||c.flac"_s},
        {"no sheet", {}, images, u"0||30||a.flac\n0||40||b.flac"_s},
        {"nothing scanned", {sheet("a.flac", "First")}, {}, {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Name);
        EXPECT_EQ(Shown(CutIntoAlbums(row.Sheets, row.Scanned)), row.Expected);
    }
}

TEST(CueSheet, WhatTheSheetLeavesOutComesFromTheFile)
{
    TKRN_MP3_Track source = Source("/m/a.wav", 30);
    source.Artist = u"File artist"_s;
    source.Album = u"File album"_s;
    source.Genre = u"File genre"_s;
    source.Title = u"File title"_s;
    source.Year = 1990;
    source.DiscNo = 2;
    source.DiscCount = 3;
    source.lLabel = u"Label"_s;
    source.Lyrics = u"Lyrics"_s;
    source.Cover = "picture";
    const auto apply = [&](const char* head) {
        const QByteArray text = QByteArray(head) +
                                "FILE a.wav WAVE\nTRACK 1 AUDIO\nTITLE \"A (Club REMIX)\"\nPERFORMER Own\n"
                                "TRACK 2 AUDIO\nTITLE B\n";
        return CutIntoAlbums({ParseCueSheet(QString::fromUtf8(text))}, {source}).front();
    };
    const TKRN_MP3_Tracks bare = apply("");
    const TKRN_MP3_Tracks full = apply("REM GENRE G\nREM DATE 1973\nPERFORMER P\nTITLE T\n");
    ASSERT_EQ(bare.size(), 2u);
    ASSERT_EQ(full.size(), 2u);
    EXPECT_EQ(bare[0].Artist + bare[1].Artist, u"OwnFile artist"_s);
    EXPECT_EQ(full[0].Artist + full[1].Artist, u"OwnP"_s);
    EXPECT_EQ(bare[0].Album + full[0].Album, u"File albumT"_s);
    EXPECT_EQ(bare[0].Genre + full[0].Genre, u"File genreG"_s);
    EXPECT_EQ(bare[0].Year, 1990);
    EXPECT_EQ(full[0].Year, 1973);
    EXPECT_EQ(full[1].DiscNo * 10 + full[1].DiscCount, 23);
    EXPECT_EQ(full[1].lLabel, u"Label"_s);
    EXPECT_EQ(full[1].Lyrics, QString()) << "lyrics belong to one track";
    EXPECT_EQ(full[0].Cover + full[1].Cover, QByteArray("picture")) << "only the first track shows it";
    EXPECT_TRUE(full[0].IsRemix && !full[1].IsRemix);
    EXPECT_EQ(full[0].TotalTracks, 2);
}

TEST(CueSheet, RealSheetsReadAsTheyShould)
{
    if (Kit::SamplesFolder().isEmpty())
        GTEST_SKIP() << "no samples";
    const QString folder = Kit::SamplesFolder() + u"/cue/"_s;
    int checked = 0;
    for (const QString& line : QString::fromUtf8(Kit::ReadAll(folder + u"expected.tsv"_s)).split(u'\n')) {
        const QStringList cells = line.split(u'\t');
        if (cells.size() < 4 || !cells[2].startsWith("track["_L1) || cells[1] == "CDImage.cue"_L1)
            continue;
        const auto sheet = LoadCueSheet(folder + cells[1]);
        ASSERT_TRUE(sheet);
        const auto index = cells[2].sliced(6).chopped(1).toLongLong();
        EXPECT_EQ(Shown(*sheet).split(u'\n').value(index), cells[3]) << cells[1].toStdString();
        ++checked;
    }
    EXPECT_GT(checked, 30);
}

} // namespace Kestrune
