// SPDX-License-Identifier: GPL-3.0-or-later
#include "uM2TSReader.h"
#include "uMP4Reader.h"
#include "uMediaKit.h"

namespace Kestrune {

using namespace Qt::StringLiterals;
using namespace Kit;

TEST(M2TSReader, KnowsCodecAndLengthOfRealStreams)
{
    const QStringList bluray{u"-mpegts_m2ts_mode"_s, u"1"_s, u"-f"_s, u"mpegts"_s};
    const QStringList plain{u"-f"_s, u"mpegts"_s};
    const struct {
        const char* Name;
        QStringList Arguments;
        TM2TSCodec Codec;
    } rows[] = {
        {"AC-3, Blu-ray packets", QStringList{u"-c:a"_s, u"ac3"_s} + bluray, mcAC3},
        {"AC-3, plain packets", QStringList{u"-c:a"_s, u"ac3"_s} + plain, mcAC3},
        {"E-AC-3", QStringList{u"-c:a"_s, u"eac3"_s} + bluray, mcEAC3},
        {"TrueHD", QStringList{u"-c:a"_s, u"truehd"_s, u"-strict"_s, u"-2"_s} + bluray, mcTrueHD},
        {"LPCM", QStringList{u"-c:a"_s, u"pcm_bluray"_s} + bluray, mcLPCM},
        {"DTS", QStringList{u"-c:a"_s, u"dca"_s, u"-strict"_s, u"-2"_s} + bluray, mcDTS},
        {"MPEG", QStringList{u"-c:a"_s, u"mp2"_s} + plain, mcMPEG},
        {"AAC", QStringList{u"-c:a"_s, u"aac"_s} + plain, mcAAC},
    };
    const TTempDir dir;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Name);
        const QString file =
            EncodedTone(dir, row.Arguments.contains(u"1"_s) ? u"a.m2ts"_s : u"a.ts"_s, 12, row.Arguments);
        TM2TSReader reader;
        ASSERT_TRUE(reader.Open(file));
        EXPECT_EQ(M2TSCodecName(reader.AudioCodec()), M2TSCodecName(row.Codec));
        EXPECT_NEAR(reader.DurationSec(), 12.0, 0.1);
        EXPECT_EQ(reader.IsPlayable(), row.Codec == mcAC3 || row.Codec == mcTrueHD);
    }
}

TEST(M2TSReader, AWindowOfAFileIsReadLikeAFile)
{
    const TTempDir dir;
    const QByteArray stream = ReadAll(
        EncodedTone(dir, u"a.m2ts"_s, 3, {u"-c:a"_s, u"ac3"_s, u"-mpegts_m2ts_mode"_s, u"1"_s, u"-f"_s, u"mpegts"_s}));
    const QString image = dir.Write(u"image"_s, QByteArray(5000, 'i') + stream + QByteArray(70000, 'j'));
    TM2TSReader reader;
    ASSERT_TRUE(reader.OpenWindow(image, 5000, stream.size()));
    EXPECT_NEAR(reader.DurationSec(), 3.0, 0.1);
    EXPECT_FALSE(reader.OpenWindow(image, 0, 5000));
    EXPECT_FALSE(reader.OpenWindow(image, 1000000, 5000));
    EXPECT_FALSE(reader.Open(dir.File(u"nowhere"_s)));
    EXPECT_FALSE(reader.Open(dir.Write(u"text"_s, QByteArray(100000, 'x'))));
}

TEST(M2TSReader, ExtractedStreamsAreTheEncodersOwn)
{
    const TTempDir dir;
    const QStringList trueHD{u"-c:a"_s, u"truehd"_s, u"-strict"_s, u"-2"_s};
    const struct {
        QString Raw;
        QStringList Codec;
        bool TrueHD;
    } rows[] = {{u"a.ac3"_s, {u"-c:a"_s, u"ac3"_s}, false}, {u"a.thd"_s, trueHD, true}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Raw.toStdString());
        const QByteArray raw = ReadAll(EncodedTone(dir, row.Raw, 2, row.Codec));
        TM2TSReader reader;
        ASSERT_TRUE(reader.Open(EncodedTone(
            dir, u"a.m2ts"_s, 2, row.Codec + QStringList{u"-mpegts_m2ts_mode"_s, u"1"_s, u"-f"_s, u"mpegts"_s})));
        QByteArray out;
        ASSERT_TRUE(row.TrueHD ? reader.ExtractTrueHD(out) : reader.ExtractAC3Core(out));
        EXPECT_EQ(out, raw);
        EXPECT_FALSE(row.TrueHD ? reader.ExtractAC3Core(out) : reader.ExtractTrueHD(out));
        EXPECT_TRUE(out.isEmpty());
    }
}

TEST(M2TSReader, TrueHDAndItsCoreAreToldApart)
{
    const QByteArray sync = QByteArray("\x10\x20\0\0\xF8\x72\x6F\xBA", 8) + QByteArray(200, 't');
    const QByteArray core = QByteArray("\x0B\x77", 2) + QByteArray(300, 'c');
    const QByteArray withExtension = TransportStream(0x83, {{9000, sync}}, 0x72) +
                                     TransportStream(0x83, {{9000, core}}, 0x76) +
                                     TransportStream(0x83, {{18000, sync}}, 0x72);
    const QByteArray without = TransportStream(0x83, {{9000, sync}, {9000, core}, {18000, sync}});
    for (const QByteArray& stream : {withExtension, without}) {
        TM2TSReader reader;
        ASSERT_TRUE(reader.Open(InMemory(stream)));
        EXPECT_EQ(reader.AudioCodec(), mcTrueHD);
        EXPECT_NEAR(reader.DurationSec(), 0.1, 0.001);
        QByteArray out;
        ASSERT_TRUE(reader.ExtractTrueHD(out));
        EXPECT_EQ(out, sync + sync);
        ASSERT_TRUE(reader.ExtractAC3Core(out));
        EXPECT_EQ(out, core);
    }
}

TEST(M2TSReader, TimeStampsMayWrap)
{
    const qint64 end = (qint64(1) << 33) - 90000;
    TM2TSReader reader;
    ASSERT_TRUE(reader.Open(InMemory(TransportStream(0x83, {{end, "a"}, {0, "b"}, {89 * 90000, "c"}}))));
    EXPECT_NEAR(reader.DurationSec(), 90.0, 0.001);
}

TEST(MP4Reader, ListsTracksAndTakesTrueHDOut)
{
    const TTempDir dir;
    const QStringList trueHD{u"-c:a"_s, u"truehd"_s, u"-strict"_s, u"-2"_s};
    const QByteArray raw = ReadAll(EncodedTone(dir, u"a.thd"_s, 2, trueHD));
    const struct {
        QStringList Arguments;
        TFourCC Codec;
    } rows[] = {{{u"-c:a"_s, u"aac"_s}, "mp4a"},
                {{u"-c:a"_s, u"alac"_s}, "alac"},
                {{u"-c:a"_s, u"ac3"_s}, "ac-3"},
                {trueHD, "mlpa"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.Codec.Text()));
        TMP4Reader reader;
        ASSERT_TRUE(reader.Open(EncodedTone(dir, u"a.mp4"_s, 2, row.Arguments)));
        ASSERT_EQ(reader.Tracks().size(), 1U);
        EXPECT_EQ(reader.Tracks()[0].Codec, row.Codec);
        EXPECT_NEAR(reader.Tracks()[0].DurationSec, 2.0, 0.1);
        const bool isTrueHD = row.Codec == TFourCC("mlpa");
        EXPECT_EQ(reader.TrueHDTrack(), isTrueHD ? 0 : -1);
        QByteArray out;
        ASSERT_TRUE(reader.ExtractTrack(0, out));
        EXPECT_EQ(out == raw, isTrueHD);
        EXPECT_FALSE(reader.ExtractTrack(1, out));
    }
    TMP4Reader reader;
    EXPECT_FALSE(reader.Open(dir.Write(u"x.mp4"_s, "no movie")));
}

} // namespace Kestrune
