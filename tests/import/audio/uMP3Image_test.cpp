// SPDX-License-Identifier: GPL-3.0-or-later
#include "uDebugLog.h"
#include "uImageBuilders.h"
#include "uImportKit.h"
#include "uMP3Image.h"

namespace Kestrune {

using namespace Qt::StringLiterals;
using namespace Kit;

namespace {

class ImportImages : public TImportCollection {
protected:
    // Imports the folder of the music and gives "no|title|artist|seconds|locator|disc" per track.
    QString Tracks()
    {
        TKRNImporter_MP3s importer(FData);
        importer.SetOptions(TMP3ScanOptions::New());
        importer.SetInputPath(FMusic.Path());
        importer.SetOnDone([this](TKRNImporter&, int releases, int) { FReleases = releases; });
        importer.SetOnItemError([this](TKRNImporter&, const QString& file, const QString& error) {
            FFailures += file.sliced(file.lastIndexOf(u'/') + 1) + u": "_s + error;
        });
        importer.Start();
        importer.WaitFor();
        return Rows(u"SELECT TrackNo, TrackTitle, ifnull(Artist, ''), round(TrackLength * 86400), FileType, DiscNo "
                    "FROM Tracks2 ORDER BY ReleaseId, ID"_s)
            .replace(u".0|"_s, u"|"_s);
    }
    QString Release()
    {
        return Rows(u"SELECT ifnull(Artist, ''), ReleaseName, ifnull(ReleaseYear, 0), DiscCount, ifnull(CatalogNO, '') "
                    "FROM Releases2"_s);
    }

    TTempDir FMusic;
    int FReleases = -1;
    QStringList FFailures;
};

QByteArray Ac3Stream(const TTempDir& dir, int seconds)
{
    const QString path = dir.File(u"a.m2ts"_s);
    EXPECT_TRUE(
        RunProgram(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-y"_s, u"-f"_s, u"lavfi"_s, u"-i"_s,
                                 u"sine=sample_rate=48000:duration=%1"_s.arg(seconds), u"-c:a"_s, u"ac3"_s, u"-b:a"_s,
                                 u"64k"_s, u"-mpegts_m2ts_mode"_s, u"1"_s, u"-f"_s, u"mpegts"_s, path}));
    return ReadAll(path);
}

} // namespace

TEST_F(ImportImages, SuperAudioCD)
{
    FMusic.Write(
        u"Some Folder/disc.iso"_s,
        SacdImage({{.Title = "One", .Performer = "Singer", .Minutes = 3, .Seconds = 25, .Frames = 60}, {.Minutes = 1}},
                  {.Title = "Album", .Artist = "Band", .DiscNo = 2, .DiscCount = 3}));
    EXPECT_EQ(Tracks(), u"1|One|Singer|206|SACD:1|2\n2|Track 02|Band|60|SACD:2|2"_s);
    EXPECT_EQ(Release(), u"Various Artists|Album|2004|2|CAT-1"_s);
    EXPECT_EQ(FReleases, 1);
}

TEST_F(ImportImages, DVDAudio)
{
    const QByteArray ifo = DvdaIfo({{{200.6, 0, 0}, {10, 1, 1}}, {{61, 0, 1}}});
    FMusic.Write(u"x/Band - Disc (1999).dvd-a.iso"_s,
                 IsoImage("LABEL", {{"AUDIO_TS/ATS_01_0.IFO", ifo},
                                    {"AUDIO_TS/ATS_01_1.AOB", AobSectors(QByteArray(3000, 'm'))}}));
    EXPECT_EQ(Tracks(), u"1|Track 01|Band|201|DVDA:1|1\n2|Track 02|Band|10|DVDA:2|1\n3|Track 03|Band|61|DVDA:3|1"_s);
    EXPECT_EQ(Release(), u"Band|Disc|1999|1|"_s);
}

TEST_F(ImportImages, FilesOfAnISOImageWithCoverAndSheet)
{
    const QByteArray picture = MakePicture(60, 60, "JPG");
    const QByteArray sheet = "TITLE \"Sheet Album\"\nPERFORMER \"Sheet Band\"\nFILE \"ALL.WAV\" WAVE\n"
                             "TRACK 01 AUDIO\nTITLE \"A\"\nINDEX 01 00:00:00\n"
                             "TRACK 02 AUDIO\nTITLE \"B\"\nINDEX 01 03:00:00\n";
    FMusic.Write(u"plain/Band - Files (2001).iso"_s, IsoImage("", {{"CD/01.FLA", "a"},
                                                                   {"CD/02.MP3", "b"},
                                                                   {"X.ISO", "c"},
                                                                   {"NOTES.TXT", "d"},
                                                                   {"SCAN.JPG", "no picture"},
                                                                   {"MYFRONT.JPG", picture}}));
    EXPECT_EQ(Tracks(), u"1|CD/01|Band|0|ISO:CD/01.FLA|1\n2|CD/02|Band|0|ISO:CD/02.MP3|1"_s);
    EXPECT_EQ(Release(), u"Band|Files|2001|1|"_s);
    EXPECT_EQ(Rows(u"SELECT length(LargePicture) FROM Releases2"_s), QString::number(picture.size()));
    const TKRN_MP3_Tracks cut =
        ProcessISO(FMusic.Write(u"cue/x.iso"_s, IsoImage("Artist - Label", {{"ALL.WAV", "w"},
                                                                            {"A.CUE", sheet},
                                                                            {"MORE/ALL.WAV", "w"},
                                                                            {"MORE/B.CUE", sheet},
                                                                            {"MORE/REST.WAV", "w"}})),
                   true)
            .Tracks;
    ASSERT_EQ(cut.size(), 5U);
    EXPECT_EQ(cut[3].FileType, u"ISO:MORE/ALL.WAV:180:360"_s) << "each folder by its own sheet";
    EXPECT_EQ(cut[4].FileType, u"ISO:MORE/REST.WAV"_s) << "and the file without one stays";
    EXPECT_EQ(cut[0].FileType, u"ISO:ALL.WAV:0:180"_s);
    EXPECT_EQ(cut[1].FileType, u"ISO:ALL.WAV:180:360"_s) << "the average length so far";
    EXPECT_EQ(cut[0].Album, u"Sheet Album"_s);
}

TEST_F(ImportImages, AnImageThatGivesNothingIsListedWithItsReason)
{
    FMusic.Write(u"a/noise.iso"_s, QByteArray(100000, 'x'));
    FMusic.Write(u"b/texts.iso"_s, IsoImage("LABEL", {{"NOTES.TXT", "d"}}));
    FMusic.Write(u"c/film.iso"_s, UdfImage({{"BDMV/STREAM/00001.m2ts", "short"}}));
    EXPECT_EQ(Tracks(), QString());
    EXPECT_EQ(FFailures, (QStringList{u"noise.iso: The file is no disc image of a known kind."_s,
                                      u"texts.iso: The disc image holds no audio that can be read."_s,
                                      u"film.iso: The disc image holds no audio that can be read."_s}));
    EXPECT_EQ(ProcessISO(FMusic.Path() + u"/none.iso"_s, true).Failure, imfUnreadable);
}

TEST_F(ImportImages, BlurayStreamsOfHalfAMinuteAndMore)
{
    const QByteArray longer = Ac3Stream(FDir, 31);
    const QByteArray shorter = Ac3Stream(FDir, 29);
    QStringList log;
    SetDebugLogSink([&](const QString& line) { log += line.mid(line.indexOf(u']') + 2); });
    const QString image =
        FMusic.Write(u"Band - Concert (2010)/BD.iso"_s, UdfImage({{"BDMV/STREAM/00002.m2ts", longer},
                                                                  {"BDMV/STREAM/00001.m2ts", shorter},
                                                                  {"BDMV/STREAM/00003.m2ts", longer, 2},
                                                                  {"BDMV/STREAM/00004.m2ts", longer},
                                                                  {"OTHER/00005.m2ts", longer}},
                                                                 {.Metadata = true}));
    EXPECT_EQ(Tracks(), u"1|Track 01|Band|31|BDISO:BDMV/STREAM/00002.m2ts|1\n"
                        "2|Track 02|Band|31|BDISO:BDMV/STREAM/00004.m2ts|1"_s);
    SetDebugLogSink({});
    EXPECT_EQ(Release(), u"Band|Concert|2010|1|"_s);
    EXPECT_TRUE(log.contains(u"[BDISO] Skipping fragmented stream file: BDMV/STREAM/00003.m2ts"_s));
    EXPECT_TRUE(log.contains(u"[BDISO] 2 tracks listed from "_s + image));
}

TEST_F(ImportImages, ATransportStreamHasItsLength)
{
    FMusic.Write(u"Band - Clips/07 - Song.m2ts"_s, Ac3Stream(FDir, 4));
    EXPECT_EQ(Tracks(), u"7|Song|Band|4||1"_s);
}

TEST(ImageNames, GiveArtistAlbumAndYear)
{
    const struct {
        QString Path, Expected;
    } rows[] = {{u"/m/Band - Album (1999).iso"_s, u"Band/Album/1999"_s},
                {u"/m/Band - Album [2001].dvd-a.iso"_s, u"Band/Album/2001"_s},
                {u"/m/Singer - Other (1980)/disc (1999).iso"_s, u"Singer/Other/1999"_s},
                {u"/m/Singer - Other (1980)/disc.iso"_s, u"Singer/Other/1980"_s},
                {u"/m/Box (1970)/disc.iso"_s, u"/disc/1970"_s},
                {u"/m/Box/(1999).iso"_s, u"/(1999)/1999"_s}};
    for (const auto& row : rows) {
        const TAlbumName name = ParseImageName(row.Path);
        EXPECT_EQ(u"%1/%2/%3"_s.arg(name.Artist, name.Album).arg(name.Year), row.Expected) << row.Path.toStdString();
    }
}

} // namespace Kestrune
