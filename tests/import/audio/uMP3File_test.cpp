// SPDX-License-Identifier: GPL-3.0-or-later
#include "uImportKit.h"
#include "uMP3File.h"
#include "uMP3Release.h"

#include <functional>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

TMP3ScanOptions Options()
{
    Defaults() = MakeDefaults();
    return TMP3ScanOptions::FromSettings();
}

TKRN_MP3_Track Scanned(const QString& path, const TMP3ScanOptions& options = Options())
{
    return std::get<TScannedFile>(ProcessFile(path, options, true)).Track;
}

} // namespace

TEST(MP3File, TheFirstTagWithAValueIsUsed)
{
    using K = TKRN_MP3_Track;
    const auto text = [](QString K::*field) { return [field](const K& track) { return track.*field; }; };
    const auto number = [](int K::*field) { return [field](const K& t) { return QString::number(t.*field); }; };
    const auto date = [](const K& track) { return track.ReleaseDate.toString(Qt::ISODate); };
    const struct {
        QList<QByteArray> Comments;
        std::function<QString(const K&)> Field;
        const char* Expected;
    } rows[] = {
        {{"DATE=2004-05-01"}, number(&K::Year), "2004"},
        {{"DATE=2004", "RECORD DATE=2003", "RECORDINGDATE=2002", "DISCOGS_RELEASED=2001", "ORIGINALYEAR=2000"},
         number(&K::Year),
         "2000"},
        {{"YEAR=none", "DATE=2004"}, number(&K::Year), "0"}, // a value all the same
        {{"YEAR=", "DATE=2004"}, number(&K::Year), "2004"},
        {{"DATE=2004-05-01", "ORIGINALDATE=1999"}, date, ""},
        {{"DATE=01 May 2004", "ORIGINALDATE="}, date, "2004-05-01"},
        {{"DISCOGS_RELEASED=2001-02-03", "DATE=2004-05-01"}, date, "2001-02-03"},
        {{"TRACKNUMBER=3/12"}, number(&K::No), "3"},
        {{"TRACKNUMBER=3/12"}, number(&K::TotalTracks), "12"},
        {{"DISCOGS_ORIGINAL_TRACK_NUMBER=A1"}, number(&K::No), "0"},
        {{"TRACKTOTAL=9"}, number(&K::TotalTracks), "9"},
        {{"DISCNUMBER=2"}, number(&K::DiscNo), "2"},
        {{}, number(&K::DiscCount), "1"},
        {{"DISCTOTAL=3", "TOTALDISCS="}, number(&K::DiscCount), "3"},
        {{"BPM=128.5"}, number(&K::BPM), "128"},
        {{"STYLE=Dub"}, text(&K::Genre), "Dub"},
        {{"STYLE=Dub", "GENRE=Reggae"}, text(&K::Genre), "Reggae"},
        {{"DISCOGS_STYLE=a", "STYLES=b"}, text(&K::Styles), "b"},
        {{"isbn=1"}, text(&K::EAN), "1"},
        {{"DISCOGS_CATALOG=a", "CATALOGID=b"}, text(&K::CatalogNo), "b"},
        {{"MusicBrainz Album Release Country=GB", "DISCOGS_COUNTRY=UK"}, text(&K::Country), "UK"},
        {{"MUSICBRAINZ ALBUM ID=x"}, text(&K::MusicBrainzAlbumID), "x"},
        {{"NOTES=n"}, text(&K::Comments), "n"},
        {{"DISCOGS_LABEL=a", "PUBLISHER=b", "ORGANIZATION=c"}, text(&K::lLabel), "c"},
        {{"DISCOGS_ARTISTS=a"}, text(&K::Artists), "a"},
        {{"ALBUMARTIST=a"}, text(&K::Artist), ""},
        {{"TITLE=a", "TITLE=b"}, text(&K::Title), "a"},
        {{"TITLE=x (ReMiX)"}, [](const K& track) { return track.IsRemix ? u"yes"_s : u"no"_s; }, "yes"},
    };
    const Kit::TTempDir dir;
    for (const auto& row : rows) {
        const QString path = dir.Write(u"folder/x.flac"_s, Kit::FlacFile(7, row.Comments));
        EXPECT_EQ(row.Field(Scanned(path)), QString::fromUtf8(row.Expected)) << row.Comments.join(", ").constData();
    }
}

TEST(MP3File, LengthAndBitRateComeFromTheSound)
{
    const Kit::TTempDir dir;
    const TKRN_MP3_Track mp3 = Scanned(dir.Write(u"x.mp3"_s, Kit::MpegFrames(115)));
    EXPECT_EQ(mp3.DurationSec, 3);
    EXPECT_EQ(mp3.Bitrate, 128);
    const QByteArray tta = "TTA1" + Kit::LE16(1) + Kit::LE16(2) + Kit::LE16(16) + Kit::LE32(8000) + Kit::LE32(80000);
    EXPECT_EQ(Scanned(dir.Write(u"x.tta"_s, tta + QByteArray(9, 'x'))).DurationSec, 10);
    EXPECT_EQ(Scanned(dir.Write(u"empty.mp3"_s, {})).Title, u"empty"_s) << "a file without tags is a track";
}

TEST(MP3File, AStreamIsNamedByItsPath)
{
    const Kit::TTempDir dir;
    const QString path = dir.Write(u"Who - What [2001]/05 - Where.m2ts"_s, "x");
    TMP3ScanOptions options = Options();
    options.ReadStreamLength = [](const QString&) { return 61.5; };
    const TKRN_MP3_Track track = Scanned(path, options);
    EXPECT_EQ(track.Artist + track.Album + track.Title, u"WhoWhatWhere"_s);
    EXPECT_EQ(track.Year, 2001);
    EXPECT_EQ(track.No, 5);
    EXPECT_EQ(track.DurationSec, 62);
    EXPECT_EQ(Scanned(path).DurationSec, 0);
}

TEST(MP3File, AFileThatCannotBeReadGivesASentence)
{
    const Kit::TTempDir dir;
    for (const QString& path : {dir.File(u"gone.mp3"_s), dir.Write(u"x.txt"_s, "x"), dir.Path()})
        EXPECT_TRUE(std::holds_alternative<TFileFailure>(ProcessFile(path, Options(), true))) << path.toStdString();
}

TEST(MP3Release, OptionsChooseThePictures)
{
    const Kit::TTempDir dir;
    const char* names[] = {"front.png", "back.png", "cd.png", "1.png", "2.png"};
    for (int i = 0; i < 5; ++i)
        dir.Write(QString::fromUtf8(names[i]), Kit::MakePicture(10 + i, 10, "PNG"));
    TKRN_MP3_Track track;
    track.FilePath = dir.File(u"x.mp3"_s);
    const struct {
        const char* Name;
        bool Find, Back, Media, Other;
        QByteArray Cover;
        const char* Expected; // type:width
    } rows[] = {
        {"none", false, true, true, true, {}, ""},
        {"all", true, true, true, true, {}, "1:10 3:11 5:12 6:13 6:14"},
        {"front alone", true, false, false, false, {}, "1:10"},
        {"tag before the folder", true, true, false, false, Kit::MakePicture(20, 10, "JPG"), "1:20 3:11"},
        {"tag alone", false, true, true, true, Kit::MakePicture(20, 10, "JPG"), "1:20"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Name);
        TMP3ScanOptions options = Options();
        options.FindCovers = row.Find;
        options.BackCover = row.Back;
        options.MediaCover = row.Media;
        options.OtherImages = row.Other;
        track.Cover = row.Cover;
        QStringList shown;
        const auto release = CreateReleaseFromTracks({track}, options);
        for (const auto& picture : release->Pictures)
            shown += u"%1:%2"_s.arg(static_cast<int>(picture->PictureType())).arg(picture->Size().width());
        EXPECT_EQ(shown.join(u' '), QString::fromUtf8(row.Expected));
    }
}

TEST(MP3Release, TheFirstTrackSpeaksForTheRelease)
{
    TKRN_MP3_Track first, second;
    first.FilePath = u"/m/Album/CD 1/x.mp3"_s;
    first.Album = u"Album"_s;
    first.ReleaseDate = QDate(2004, 5, 1);
    first.Country = u"UK"_s;
    second.FilePath = u"/m/Album/CD 2/x.mp3"_s;
    second.Artist = u"Late"_s;
    second.Year = 1999;
    second.DiscNo = 3;
    second.DiscCount = 0;
    EXPECT_FALSE(CreateReleaseFromTracks({}, Options()));
    const auto release = CreateReleaseFromTracks({first, second}, Options());
    const struct {
        QString Key;
        TVariant Value;
    } rows[] = {{u"Artist"_s, u"Various Artists"_s},
                {u"ReleaseName"_s, u"Album"_s},
                {u"ReleaseYear"_s, u"0"_s},
                {u"ReleaseDate"_s, u"2004-05-01"_s},
                {u"CountryCode"_s, u"UK"_s},
                {u"FolderPath"_s, u"/m/Album"_s},
                {u"DiscCount"_s, 3},
                {u"Quantity"_s, u"1"_s}};
    for (const auto& row : rows)
        EXPECT_TRUE(VarEquals((*release)[row.Key], row.Value)) << VarToStr((*release)[row.Key]).toStdString();
    EXPECT_EQ(release->Tracks[0].DiscNo, 1);
    EXPECT_EQ(release->Tracks[1].DiscCount, 1);
    TKRN_MP3_Track nameless;
    nameless.FilePath = u"/x.mp3"_s;
    const auto bare = CreateReleaseFromTracks({nameless}, Options());
    EXPECT_FALSE(VarIsNull((*bare)[u"ReleaseName"_s])) << "an empty name is a name";
    EXPECT_EQ(VarToStr((*bare)[u"FolderPath"_s]), u"/"_s);
}

} // namespace Kestrune
