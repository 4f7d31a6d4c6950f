// SPDX-License-Identifier: GPL-3.0-or-later
#include "uMediaKit.h"
#include "uSACDReader.h"

namespace Kestrune {

using namespace Qt::StringLiterals;
using namespace Kit;

namespace {

QByteArray Noise(qsizetype size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    quint32 state = 12345;
    for (char& byte : bytes) {
        state = state * 1664525 + 1013904223;
        byte = static_cast<char>(state >> 24);
    }
    return bytes;
}

char Mirrored(char byte)
{
    int out = 0;
    for (int bit = 0; bit < 8; ++bit)
        out |= (byte >> bit & 1) << (7 - bit);
    return static_cast<char>(out);
}

} // namespace

TEST(SACDReader, ListsAlbumAndTracks)
{
    const QByteArray image = SacdImage(
        {{.Title = "One", .Performer = "Singer", .Composer = "Maker", .Minutes = 3, .Seconds = 25, .Frames = 30},
         {.Minutes = 61},
         {.Title = "Caf\xC3\xA9\tNoir", .Seconds = 59, .Frames = 74}},
        {.Title = "Album", .Artist = "Band", .DiscNo = 2, .DiscCount = 3, .Hybrid = true, .SecondText = true});
    const TLogged log;
    TSACDReader reader;
    EXPECT_TRUE(TSACDReader::IsSACDImage(*InMemory(image)));
    ASSERT_TRUE(reader.Open(InMemory(image)));
    const TSACDAlbumInfo& album = reader.Album();
    EXPECT_EQ(album.Title, u"Album"_s);
    EXPECT_EQ(album.Artist, u"Band"_s);
    EXPECT_EQ(album.CatalogNumber, u"CAT-1"_s);
    EXPECT_EQ((std::array{album.DiscNo, album.DiscCount, album.Year, album.Month, album.Day}),
              (std::array{2, 3, 2004, 5, 17}));
    EXPECT_TRUE(album.IsHybrid);
    ASSERT_EQ(reader.Tracks().size(), 3U);
    EXPECT_EQ(reader.Tracks()[0].Title, u"One"_s);
    EXPECT_EQ(reader.Tracks()[0].Artist, u"Singer"_s) << "from the performer";
    EXPECT_EQ(reader.Tracks()[0].Composer, u"Maker"_s);
    EXPECT_DOUBLE_EQ(reader.Tracks()[0].DurationSec, 3 * 60 + 25 + 30 / 75.0);
    EXPECT_TRUE(reader.Tracks()[1].Title.isEmpty());
    EXPECT_DOUBLE_EQ(reader.Tracks()[1].DurationSec, 3660.0);
    EXPECT_EQ(reader.Tracks()[2].Title, u"Café Noir"_s) << "a control character becomes a blank";
    EXPECT_TRUE(log.Has(u"[SACD] MasterTOC: catalog=\"CAT-1\" disc=2/3 hybrid=1 area1=LSN544+5 area2=LSN0+0 "
                        "date=2004-5-17"_s))
        << log.All().toStdString();
    EXPECT_TRUE(log.Has(u"[SACD] MasterText: title=\"Album\" artist=\"Band\" publisher=\"\""_s));
    EXPECT_TRUE(log.Has(u"[SACD] AreaTOC: rate=2822400 channels=2 dst=0 tracks=3 area_size=9"_s));
    EXPECT_TRUE(log.Has(u"[SACD] Sub-sector at +1: \"SACDTTxt\""_s));
    EXPECT_TRUE(log.Has(u"[SACD] Sub-sector at +4: \"SACDTRL2\""_s));
}

TEST(SACDReader, TextsAreReadInTheirCharacterSet)
{
    const struct {
        int Charset;
        QByteArray Bytes;
        QString Expected;
    } rows[] = {{2, "caf\xE9", u"café"_s},          {3, "\x83\x65\x83\x58\x83\x67", u"テスト"_s},
                {4, "\xC7\xD1\xB1\xB9", u"한국"_s}, {5, "\xD6\xD0\xCE\xC4", u"中文"_s},
                {6, "\xA4\xA4\xA4\xE5", u"中文"_s}, {3, "\xE3\x83\x86", u"テ"_s}, // valid UTF-8 goes first
                {7, "  trimmed ", u"trimmed"_s}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Charset);
        TSACDReader reader;
        ASSERT_TRUE(
            reader.Open(InMemory(SacdImage({{.Title = row.Bytes}}, {.Title = row.Bytes, .Charset = row.Charset}))));
        EXPECT_EQ(reader.Tracks()[0].Title, row.Expected);
        EXPECT_EQ(reader.Album().Title, row.Expected);
    }
}

TEST(SACDReader, ValuesOutOfRangeBecomeUnknown)
{
    TSACDReader reader;
    ASSERT_TRUE(reader.Open(InMemory(SacdImage({{}}, {.Year = 0, .DiscNo = 0, .DiscCount = 100, .Channels = 7}))));
    EXPECT_EQ(reader.Album().Year, 0);
    EXPECT_EQ(reader.Album().DiscNo, 1);
    EXPECT_EQ(reader.Album().DiscCount, 1);
    EXPECT_EQ(reader.Tracks()[0].Channels, 2);
}

TEST(SACDReader, ATrackBecomesADSFFileWithTheSameBits)
{
    const QByteArray sound = Noise(9408 * 5);
    const QByteArray image = SacdImage({{.Sound = Noise(9408)}, {.Title = "Two", .Sound = sound}});
    TSACDReader reader;
    ASSERT_TRUE(reader.Open(InMemory(image)));
    const TLogged log;
    QByteArray dsf;
    ASSERT_TRUE(reader.ExtractTrackToDSF(1, dsf));
    EXPECT_TRUE(log.Has(u"[SACD] Extract track=2 sectors=25 frames=5 ch0=23520 ch1=23520"_s))
        << log.All().toStdString();
    EXPECT_TRUE(log.Has(u"[SACD] Built DSF for track 2: %1 bytes"_s.arg(dsf.size())));
    ASSERT_EQ(dsf.size(), 92 + 2 * 6 * 4096);
    QByteArray expected(dsf.size() - 92, '\0');
    for (qsizetype i = 0; i < sound.size(); ++i) {
        const qsizetype within = i / 2;
        expected[(within / 4096 * 2 + i % 2) * 4096 + within % 4096] = Mirrored(sound[i]);
    }
    EXPECT_EQ(dsf.mid(92), expected);
    const TTempDir dir;
    QByteArray output;
    ASSERT_TRUE(
        RunProgram(u"ffprobe"_s,
                   {u"-v"_s, u"error"_s, u"-show_entries"_s, u"stream=codec_name,sample_rate,channels,duration"_s,
                    u"-of"_s, u"csv=p=0"_s, dir.Write(u"a.dsf"_s, dsf)},
                   &output));
    EXPECT_EQ(output.trimmed(), "dsd_lsbf_planar,352800,2,0.069660") << "whole blocks";
}

TEST(SACDReader, TellsWhatCannotBeExtracted)
{
    const TLogged log;
    QByteArray dsf;
    TSACDReader reader;
    ASSERT_TRUE(reader.Open(InMemory(SacdImage({{.Sound = Noise(9408)}}, {.Compressed = true}))));
    EXPECT_TRUE(reader.Tracks()[0].DSTEncoded);
    EXPECT_FALSE(reader.ExtractTrackToDSF(0, dsf));
    EXPECT_TRUE(log.Has(u"[SACD] DST-encoded track not supported (needs DST decoder)"_s));
    ASSERT_TRUE(reader.Open(InMemory(SacdImage({{.Sound = Noise(9408)}}, {.Channels = 5}))));
    EXPECT_FALSE(reader.ExtractTrackToDSF(0, dsf));
    EXPECT_TRUE(log.Has(u"[SACD] Unsupported channel count 5 (stereo only)"_s));
    EXPECT_FALSE(reader.ExtractTrackToDSF(1, dsf));
    EXPECT_FALSE(reader.ExtractTrackToDSF(-1, dsf));
}

TEST(SACDReader, TellsWhyAnImageIsNotUnderstood)
{
    QByteArray image = SacdImage({{}});
    const TLogged log;
    TSACDReader reader;
    EXPECT_FALSE(reader.Open(InMemory(image.left(0xFF7FF))));
    QByteArray noArea = image;
    noArea.replace(544 * 2048, 8, "NOTHING!");
    EXPECT_FALSE(reader.Open(InMemory(noArea)));
    EXPECT_TRUE(log.Has(u"[SACD] Area TOC signature mismatch"_s));
    QByteArray noMaster = image;
    noMaster.replace(510 * 2048, 8, "NOTHING!");
    EXPECT_FALSE(reader.Open(InMemory(noMaster)));
    EXPECT_TRUE(log.Has(u"[SACD] Master TOC signature mismatch"_s));
    QByteArray unknown = image;
    unknown.replace(546 * 2048, 8, "UNKNOWN!");
    EXPECT_TRUE(reader.Open(InMemory(unknown))) << "what was read before is kept";
    EXPECT_TRUE(log.Has(u"[SACD] Unknown sub-sector magic, stopping walker"_s));
}

} // namespace Kestrune
