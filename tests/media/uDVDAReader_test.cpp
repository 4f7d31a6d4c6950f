// SPDX-License-Identifier: GPL-3.0-or-later
#include "uDVDAReader.h"
#include "uMediaKit.h"
#include "uProgramStream.h"

namespace Kestrune {

using namespace Qt::StringLiterals;
using namespace Kit;

namespace {

QByteArray Disc(const QByteArray& ifo, const QByteArray& aob1, const QByteArray& aob2 = {}, bool secondSet = false)
{
    QList<TImageFile> files{{"AUDIO_TS/ATS_01_0.IFO", ifo}, {"AUDIO_TS/ATS_01_1.AOB", aob1}};
    if (!aob2.isEmpty())
        files << TImageFile{"AUDIO_TS/ATS_01_2.AOB", aob2};
    if (secondSet)
        files << TImageFile{"AUDIO_TS/ATS_02_0.IFO", ifo};
    return IsoImage("THE ALBUM", files);
}

} // namespace

TEST(DVDAReader, ListsTheTracksOfAllTitles)
{
    // Two files of 3 and 2 sectors are one space of five; the second title has linear PCM.
    const QByteArray mlp = AobSectors(QByteArray(3 * 1900, 'm'));
    const QByteArray pcm = AobSectors(QByteArray(2 * 1900, 'p'), 0xA0);
    const QByteArray ifo = DvdaIfo({{{200.5, 0, 1}, {10, 2, 2}, {5, 4, 9}, {5, 2, 1}}, {{61, 3, 4}}});
    const TLogged log;
    TDVDAReader reader;
    ASSERT_TRUE(reader.Open(InMemory(Disc(ifo, mlp, pcm, true)), u"image"_s));
    EXPECT_EQ(reader.AlbumTitle(), u"THE ALBUM"_s);
    ASSERT_EQ(reader.Tracks().size(), 3U) << "ranges outside the space are dropped and the numbers close up";
    const TDVDATrack& last = reader.Tracks()[2];
    EXPECT_EQ(last.TrackNo, 3);
    EXPECT_EQ(last.TitleNo, 2);
    EXPECT_DOUBLE_EQ(reader.Tracks()[0].DurationSec, 200.5);
    EXPECT_EQ(reader.Tracks()[0].FirstPTS, 900U);
    EXPECT_TRUE(reader.Tracks()[0].IsMLP);
    EXPECT_FALSE(last.IsMLP);
    for (const QString& line :
         {u"[DVDA] AOB space: 2 extents, 5 sectors (10240 bytes)"_s,
          u"[DVDA] Extra title sets present (ATS_02+), only ATS_01 is read"_s,
          u"[DVDA] ATS_PGCI at IFO sector 1, 2 title(s)"_s, u"[DVDA] Title 1: 4 tracks, 4 indexes, length 220.5 s"_s,
          u"[DVDA] Track 3: sector range 4..9 outside AOB space (5), skipped"_s,
          u"[DVDA] Track 3: sector range 2..1 outside AOB space (5), skipped"_s})
        EXPECT_TRUE(log.Has(line)) << line.toStdString() << "\n" << log.All().toStdString();
    QByteArray out;
    EXPECT_FALSE(reader.ExtractTrackMLP(2, out));
    EXPECT_TRUE(log.Has(u"[DVDA] Track 3 is not MLP (LPCM?), extraction skipped"_s));
    EXPECT_FALSE(reader.ExtractTrackMLP(0, out));
    EXPECT_TRUE(log.Has(u"[DVDA] Track 1: no MLP major sync found"_s));
    EXPECT_FALSE(reader.ExtractTrackMLP(7, out));
}

TEST(DVDAReader, AnExtractedStreamDecodesToTheSameSamples)
{
    const TTempDir dir;
    const QString mlpFile =
        EncodedTone(dir, u"a.mlp"_s, 2, {u"-c:a"_s, u"mlp"_s, u"-strict"_s, u"-2"_s, u"-sample_fmt"_s, u"s16"_s});
    const QByteArray mlp = ReadAll(mlpFile);
    // Something of the track before stands in front; both must survive the change of files in the middle.
    const QByteArray sectors = AobSectors(QByteArray(37, 'x') + mlp);
    const qint64 half = sectors.size() / 2048 / 2 * 2048;
    const auto count = static_cast<quint32>(sectors.size() / 2048);
    const TLogged log;
    TDVDAReader reader;
    const QByteArray ifo = DvdaIfo({{{2, 0, count - 1}}});
    ASSERT_TRUE(reader.Open(InMemory(Disc(ifo, sectors.left(half), sectors.mid(half))), u"image"_s));
    QByteArray out;
    ASSERT_TRUE(reader.ExtractTrackMLP(0, out)) << log.All().toStdString();
    EXPECT_EQ(out, mlp);
    EXPECT_EQ(reader.Tracks()[0].SampleRate, 48000);
    EXPECT_TRUE(log.Has(
        u"[DVDA] Track 1: extracted %1 MLP bytes (sync at +37, 48000 Hz, %2 sectors)"_s.arg(mlp.size()).arg(count)))
        << log.All().toStdString();
    const QByteArray expected = RawSound(dir, mlpFile);
    ASSERT_GT(expected.size(), 300000);
    EXPECT_EQ(RawSound(dir, dir.Write(u"b.mlp"_s, out)), expected);
}

TEST(DVDAReader, TellsWhyAnImageIsNotUnderstood)
{
    const QByteArray aob = AobSectors(QByteArray(100, 'm'));
    const QByteArray good = DvdaIfo({{{1, 0, 0}}});
    QByteArray farTable = good;
    farTable.replace(0xCC, 4, BE32(77));
    QByteArray farRecord = good;
    farRecord.replace(2048 + 12, 4, BE32(0xFFFFF));
    QByteArray wrongType = good;
    wrongType[2048 + 8] = 1;
    QByteArray manyTracks = good;
    manyTracks[2048 + 16 + 2] = '\xC8';
    const struct {
        QByteArray Image;
        QString Line;
    } rows[] = {
        {QByteArray(100000, 'x'), u"[DVDA] Not an ISO9660 image: image"_s},
        {IsoImage("X", {{"A.TXT", "a"}}), u"[DVDA] AUDIO_TS/ATS_01_0.IFO not found"_s},
        {IsoImage("X", {{"AUDIO_TS/ATS_01_0.IFO", good}}), u"[DVDA] No ATS_01_*.AOB files found"_s},
        {Disc("DVDAUDIO", aob), u"[DVDA] ATS IFO signature mismatch"_s},
        {Disc(farTable, aob), u"[DVDA] ATS_PGCI sector 77 out of range"_s},
        {Disc(farRecord, aob), u"[DVDA] Title 1 record out of range"_s},
        {Disc(wrongType, aob), u"[DVDA] Title 1: unexpected type $01"_s},
        {Disc(DvdaIfo({{{1, 3, 3}}}), aob), u"[DVDA] No tracks found in ATS_01_0.IFO"_s},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Line.toStdString());
        const TLogged log;
        TDVDAReader reader;
        EXPECT_FALSE(reader.Open(InMemory(row.Image), u"image"_s));
        EXPECT_TRUE(log.Has(row.Line)) << log.All().toStdString();
    }
    const TLogged log;
    TDVDAReader reader;
    EXPECT_TRUE(reader.Open(InMemory(Disc(manyTracks, QByteArray(2048, '\0'))), u"image"_s));
    EXPECT_TRUE(log.Has(u"[DVDA] Title 1: track/index count mismatch, mapping ordinally"_s));
    EXPECT_TRUE(log.Has(u"[DVDA] Track 1: no private_stream_1 packet in first sector"_s));
    EXPECT_TRUE(reader.Open(InMemory(Disc(good, AobSectors("x", 0x80))), u"image"_s));
    EXPECT_TRUE(log.Has(u"[DVDA] Track 1: unknown sub-stream id $80"_s));
}

} // namespace Kestrune
