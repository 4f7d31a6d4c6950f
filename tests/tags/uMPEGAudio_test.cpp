// SPDX-License-Identifier: GPL-3.0-or-later
#include "ID3v2Library.h"
#include "uMPEGAudio.h"
#include "uTagBuilders.h"
#include "uTestFiles.h"

#include <gtest/gtest.h>

namespace Kestrune {

using namespace Qt::StringLiterals;
using namespace Kit;

TEST(MPEGAudio, ParsesHeaders)
{
    struct TCase {
        quint32 Header;
        TMPEGVersion Version;
        TMPEGLayer Layer;
        TMPEGChannelMode Mode;
        int BitRate, SampleRate, Samples, Size;
    };
    const TCase cases[] = {
        {0xFFFB9064, tmpegv1, tmpegl3, tmpegcmJointStereo, 128000, 44100, 1152, 417},
        {0xFFFB9264, tmpegv1, tmpegl3, tmpegcmJointStereo, 128000, 44100, 1152, 418},
        {0xFFFDA484, tmpegv1, tmpegl2, tmpegcmDualChannel, 192000, 48000, 1152, 576},
        {0xFFFFC0C4, tmpegv1, tmpegl1, tmpegcmMono, 384000, 44100, 384, 416},
        {0xFFF35804, tmpegv2, tmpegl3, tmpegcmStereo, 40000, 16000, 576, 180},
        {0xFFE318C4, tmpegv25, tmpegl3, tmpegcmMono, 8000, 8000, 576, 72},
    };
    for (const TCase& c : cases) {
        SCOPED_TRACE(testing::Message() << std::hex << c.Header);
        TMPEGFrame frame;
        ASSERT_TRUE(ParseMPEGFrame(c.Header, frame));
        EXPECT_EQ(frame.Version, c.Version);
        EXPECT_EQ(frame.Layer, c.Layer);
        EXPECT_EQ(frame.ChannelMode, c.Mode);
        EXPECT_EQ(frame.BitRate, c.BitRate);
        EXPECT_EQ(frame.SampleRate, c.SampleRate);
        EXPECT_EQ(frame.Samples, c.Samples);
        EXPECT_EQ(frame.Size, c.Size);
    }
    TMPEGFrame frame;
    for (const quint32 bad : {0xFFF99064u, 0xFFEB9064u, 0xFFFB0064u, 0xFFFBF064u, 0xFFFB9C64u, 0xFF7B9064u})
        EXPECT_FALSE(ParseMPEGFrame(bad, frame));
}

TEST(MPEGAudio, TimesFilesWithTagsJunkAndRateHeaders)
{
    const QByteArray id3 = Id3v2(3, Id3Frame(3, "TIT2", Id3Text(0, "Title")), 0, 500);
    const QByteArray tail = Lyrics3v1("words of some length") + Id3v1({"T", {}, {}, {}, {}, 0, 0});
    // A header in the junk whose successor is missing must not be taken for the start.
    const QByteArray junk = QByteArray(700, 'j') + QByteArray("\xFF\xFB\x90\x64", 4) + QByteArray(300, 'j');
    struct TCase {
        const char* Name;
        QByteArray Bytes;
        double PlayTime;
        qint64 BitRate;
    };
    const double second = 1152 / 44100.0;
    const TCase cases[] = {
        {"plain", MpegFrames(100), 100 * second, 128000},
        {"tags at both ends", id3 + MpegFrames(100) + tail, 100 * second, 128000},
        {"two tags at the start", id3 + id3 + MpegFrames(100), 100 * second, 128000},
        {"junk before", junk + MpegFrames(100), 100 * second, 128000},
        {"junk between tag and sound", id3 + junk + MpegFrames(100) + tail, 100 * second, 128000},
        {"Info", XingFrames("Info", 100, 100, 41900), 100 * second, 127032},
        {"Xing with tags", id3 + XingFrames("Xing", 50, 1000, 417 + 417960) + tail, 1000 * second, 128000},
        {"Xing without counts", XingFrames("Xing", 100, 0, 0), 101 * second, 128000},
        {"VBRI", VbriFrames(50, 500, 417 + 208980), 500 * second, 128000},
        {"one frame", MpegFrames(1), second, 128000},
    };
    for (const TCase& c : cases) {
        SCOPED_TRACE(c.Name);
        TMemorySource source(c.Bytes);
        TID3v2Tag tag;
        tag.LyricsTagSize = c.Bytes.contains("LYRICS") ? 40 : 0;
        tag.Load(source);
        EXPECT_EQ(tag.SourceFileType(), sftMPEG);
        const TAudioAttributes audio = tag.AudioAttributes();
        EXPECT_NEAR(audio.PlayTime, c.PlayTime, 0.01);
        EXPECT_NEAR(static_cast<double>(audio.BitRate), static_cast<double>(c.BitRate), 100);
        EXPECT_EQ(audio.Channels, 2);
        EXPECT_EQ(audio.SamplesPerSec, 44100);
    }
}

TEST(MPEGAudio, FindsNoFramesInOtherFiles)
{
    const QByteArray frames = MpegFrames(10);
    for (const QByteArray& magic : {QByteArray("fLaC"), QByteArray("OggS"), QByteArray("TTA1"), QByteArray("wvpk"),
                                    QByteArray("\0\0\0\x20"
                                               "ftyp",
                                               8),
                                    QByteArray("MAC ")}) {
        TMemorySource source(magic + QByteArray(100, 'x') + frames);
        TID3v2Tag tag;
        tag.Load(source);
        EXPECT_EQ(tag.SourceFileType(), sftUnknown);
        EXPECT_EQ(tag.AudioAttributes().PlayTime, 0);
    }
}

TEST(MPEGAudio, SearchIsBoundedAndLengthFrameIsUsedOnDemand)
{
    TMemorySource far(QByteArray(70000, 'x') + MpegFrames(10));
    TID3v2Tag tag;
    tag.MPEGSearchLength = 65536;
    tag.Load(far);
    EXPECT_EQ(tag.SourceFileType(), sftUnknown);
    tag.MPEGSearchLength = 80000;
    tag.Load(far);
    EXPECT_EQ(tag.SourceFileType(), sftMPEG);

    TMemorySource timed(Id3v2(3, Id3Frame(3, "TLEN", Id3Text(0, "90500"))) + MpegFrames(10));
    tag.UseTLENForPlaytime = true;
    tag.Load(timed);
    EXPECT_DOUBLE_EQ(tag.AudioAttributes().PlayTime, 90.5);
}

} // namespace Kestrune
