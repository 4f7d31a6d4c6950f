// SPDX-License-Identifier: GPL-3.0-or-later
#include "TagsLibrary.h"
#include "uTagBuilders.h"
#include "uTestFiles.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

namespace Kestrune {

using namespace Qt::StringLiterals;
using namespace Kit;

namespace {

struct TEncoding {
    const char* FileName;
    QStringList Arguments;
    int Rate;
    int Channels;
    bool HasTitle = true; ///< the title reaches the unified list
    double Length = 3.3;  ///< what the file tells
};

// A tone of 3.3 s, encoded by ffmpeg with a title and an album.
QString Encode(const TTempDir& dir, const TEncoding& encoding)
{
    const QString path = dir.File(QString::fromUtf8(encoding.FileName));
    QStringList arguments = {u"-v"_s,
                             u"error"_s,
                             u"-y"_s,
                             u"-f"_s,
                             u"lavfi"_s,
                             u"-i"_s,
                             u"sine=frequency=440:duration=3.3:sample_rate=44100"_s,
                             u"-ac"_s,
                             QString::number(encoding.Channels),
                             u"-ar"_s,
                             QString::number(encoding.Rate),
                             u"-metadata"_s,
                             u"title=T\u00EDtle"_s,
                             u"-metadata"_s,
                             u"album=Album"_s};
    arguments += encoding.Arguments;
    QByteArray output;
    EXPECT_TRUE(RunProgram(u"ffmpeg"_s, arguments << path, &output)) << output.toStdString();
    return path;
}

} // namespace

TEST(TagsEncoded, RealSoundIsTimedWithinATenthOfASecond)
{
    const QStringList mp3 = {u"-c:a"_s, u"libmp3lame"_s};
    const QStringList fragments = {u"-c:a"_s, u"aac"_s, u"-movflags"_s};
    // Frames of MPEG count whole: at 8,000 Hz the encoder's delay and padding show. AIFF is told in whole seconds.
    const TEncoding encodings[] = {
        {"cbr.mp3", mp3 + QStringList{u"-b:a"_s, u"96k"_s, u"-write_xing"_s, u"0"_s}, 44100, 2},
        {"info.mp3", mp3 + QStringList{u"-b:a"_s, u"64k"_s, u"-write_id3v1"_s, u"1"_s}, 44100, 1},
        {"vbr.mp3", mp3 + QStringList{u"-q:a"_s, u"5"_s, u"-id3v2_version"_s, u"3"_s}, 44100, 2},
        {"mpeg2.mp3", mp3 + QStringList{u"-q:a"_s, u"5"_s}, 22050, 1},
        {"mpeg25.mp3", mp3 + QStringList{u"-b:a"_s, u"16k"_s}, 8000, 1, true, 48 * 576 / 8000.0},
        {"abr.mp3", mp3 + QStringList{u"-abr"_s, u"1"_s, u"-b:a"_s, u"96k"_s}, 32000, 2},
        {"slow.mp3", mp3 + QStringList{u"-b:a"_s, u"16k"_s}, 16000, 1, true, 95 * 576 / 16000.0},
        {"quick.mp3", mp3 + QStringList{u"-b:a"_s, u"320k"_s}, 48000, 2},
        {"layer2.mp2", {u"-c:a"_s, u"mp2"_s}, 48000, 2, false},
        {"a.flac", {}, 96000, 2},
        {"a.ogg", {u"-c:a"_s, u"libvorbis"_s}, 44100, 2},
        {"a.opus", {u"-c:a"_s, u"libopus"_s}, 48000, 2},
        {"flac.oga", {u"-c:a"_s, u"flac"_s}, 44100, 2},
        {"a.m4a", {u"-c:a"_s, u"aac"_s}, 44100, 2, false},
        {"mono.m4a", {u"-c:a"_s, u"aac"_s}, 22050, 1, false},
        {"six.m4a", {u"-c:a"_s, u"aac"_s}, 48000, 6, false},
        {"fragments.m4a", fragments + QStringList{u"+frag_keyframe+empty_moov"_s}, 44100, 2, false},
        {"dash.m4a", fragments + QStringList{u"+dash+default_base_moof+empty_moov"_s}, 48000, 1, false},
        {"alac.m4a", {u"-c:a"_s, u"alac"_s, u"-movflags"_s, u"+faststart"_s}, 48000, 2, false},
        {"a.wav", {}, 44100, 2},
        {"rf64.wav", {u"-rf64"_s, u"always"_s}, 44100, 2},
        {"float.wav", {u"-c:a"_s, u"pcm_f32le"_s}, 48000, 2},
        {"adpcm.wav", {u"-c:a"_s, u"adpcm_ms"_s}, 44100, 2},
        {"a.aiff", {u"-write_id3v2"_s, u"1"_s}, 44100, 2, true, 3.0},
        {"a.wma", {u"-c:a"_s, u"wmav2"_s}, 44100, 2},
        {"a.wv", {u"-c:a"_s, u"wavpack"_s}, 44100, 2},
    };
    const TTempDir dir;
    for (const TEncoding& encoding : encodings) {
        SCOPED_TRACE(encoding.FileName);
        TTags tags;
        tags.ParseWavPackAudioAttributes = true;
        const QString path = Encode(dir, encoding);
        ASSERT_EQ(tags.LoadFromFile(path), 0);
        const TSourceAudioAttributes& audio = tags.SourceAudioAttributes();
        EXPECT_NEAR(audio.PlayTime(), encoding.Length, 0.1);
        EXPECT_EQ(audio.SamplesPerSec(), encoding.Rate);
        EXPECT_EQ(audio.Channels(), encoding.Channels);
        EXPECT_GT(audio.BitRate(), 8000);
        EXPECT_EQ(tags.GetTag(u"TITLE"_s), encoding.HasTitle ? u"T\u00EDtle"_s : QString());
    }
}

TEST(TagsEncoded, PartsOfOggStreamsAreTimedByWhatTheyHold)
{
    // Pages of a second each; the first three seconds of the sound are left out.
    const TTempDir dir;
    const QStringList longer = {u"-af"_s, u"apad=whole_dur=10"_s, u"-page_duration"_s, u"1000000"_s, u"-c:a"_s};
    for (const TEncoding& encoding : {TEncoding{"a.ogg", longer + QStringList{u"libvorbis"_s}, 44100, 2},
                                      TEncoding{"a.opus", longer + QStringList{u"libopus"_s}, 48000, 1}}) {
        SCOPED_TRACE(encoding.FileName);
        const QByteArray whole = ReadAll(Encode(dir, encoding));
        QByteArray part;
        double start = 0;
        for (qsizetype at = 0, next = 0; at < whole.size(); at = next) {
            next = whole.indexOf("OggS", at + 1);
            next = next < 0 ? whole.size() : next;
            qint64 granule = 0;
            std::memcpy(&granule, whole.constData() + at + 6, sizeof granule);
            const double seconds = static_cast<double>(granule) / encoding.Rate;
            if (seconds == 0 || seconds > 3.5)
                part += whole.mid(at, next - at);
            else
                start = seconds;
        }
        EXPECT_GT(start, 1);
        TTags tags;
        ASSERT_EQ(tags.LoadFromFile(dir.Write(QString::fromUtf8(encoding.FileName), part)), 0);
        EXPECT_NEAR(tags.SourceAudioAttributes().PlayTime(), 10 - start, 0.05);
    }
}

TEST(TagsEncoded, JunkAndTagsAroundTheSoundDoNotCount)
{
    const TTempDir dir;
    const QString path =
        Encode(dir, {"a.mp3", {u"-b:a"_s, u"32k"_s, u"-write_xing"_s, u"0"_s, u"-id3v2_version"_s, u"0"_s}, 44100, 1});
    const QByteArray sound = ReadAll(path);
    const QByteArray ape = ApeTag({ApeItem("Cover Art (Front)", QByteArray("x\0", 2) + QByteArray(40000, 'p'), 2)});
    const QByteArray file = Id3v2(3, Id3Frame(3, "APIC", Id3Picture("image/png", 3, "", QByteArray(50000, '\xFF')))) +
                            QByteArray(3000, 'j') + sound + ape + Lyrics3v2({{"LYR", QByteArray(9000, 'l')}}) +
                            Id3v1({"T"});
    TTags tags;
    ASSERT_EQ(tags.LoadFromFile(dir.Write(u"b.mp3"_s, file)), 0);
    EXPECT_NEAR(tags.SourceAudioAttributes().PlayTime(), 3.3, 0.1);
    EXPECT_EQ(tags.SourceAudioAttributes().BitRate(), 32000);
}

} // namespace Kestrune
