// SPDX-License-Identifier: GPL-3.0-or-later
#include "ID3v2Library.h"
#include "uTagBuilders.h"
#include "uTestFiles.h"

#include <gtest/gtest.h>

namespace Kestrune {

using namespace Qt::StringLiterals;
using namespace Kit;

namespace {

QByteArray TitleFrame(int major, const QByteArray& title = "Title")
{
    return Id3Frame(major, major == 2 ? "TT2" : "TIT2", Id3Text(0, title));
}

TID3v2Tag LoadId3(const QByteArray& bytes)
{
    TMemorySource source(bytes);
    TID3v2Tag tag;
    tag.Load(source);
    tag.RemoveUnsynchronisationOnAllFrames();
    tag.DeCompressAllFrames();
    return tag;
}

QString TextOf(const TID3v2Tag& tag, TFrameID id)
{
    const int index = tag.Frames.FrameExists(id);
    return index < 0 ? QString() : tag.Frames.Items()[static_cast<size_t>(index)].GetUnicodeText();
}

QByteArray Zlib(const QByteArray& bytes) { return qCompress(bytes).mid(4); }

} // namespace

TEST(ID3v2Tag, ReadsATextFrameInEveryVersionAndForm)
{
    const QByteArray text = Id3Text(0, "Title");
    const QByteArray packed = Zlib(text);
    const QByteArray wide = QByteArray("\x01\xFF\xFE", 3) + Utf16(u"Title"_s, false);
    const auto size = static_cast<quint32>(text.size());
    struct TCase {
        const char* Name;
        QByteArray Bytes;
    };
    const QByteArray extended3 = BE32(6) + BE16(0) + BE32(0);
    const QByteArray extended3Crc = BE32(10) + BE16(0x8000) + BE32(0) + BE32(0);
    const QByteArray extended4 = SyncSafe32(6) + QByteArray("\x01\x00", 2);
    const QByteArray itunes = "TALB" + BE32(200) + BE16(0) + Id3Text(0, QByteArray(199, 'a'));
    const QByteArray first = Id3v2(3, TitleFrame(3));
    const QByteArray second = Id3v2(3, TitleFrame(3, "Other"));
    const TCase cases[] = {
        {"version 2", Id3v2(2, TitleFrame(2))},
        {"version 3", Id3v2(3, TitleFrame(3))},
        {"version 4", Id3v2(4, TitleFrame(4))},
        {"padding", Id3v2(4, TitleFrame(4), 0, 300)},
        {"after an unknown frame", Id3v2(3, Id3Frame(3, "XYZW", "abc") + TitleFrame(3))},
        {"after an empty frame", Id3v2(3, Id3Frame(3, "TALB", {}) + TitleFrame(3))},
        {"after an invalid identifier", Id3v2(3, Id3Frame(3, "a!#?", "abc") + TitleFrame(3))},
        {"after an invalid encoding", Id3v2(3, Id3Frame(3, "TALB", Id3Text(9, "abc")) + TitleFrame(3))},
        {"three letters in version 3", Id3v2(3, Id3Frame(3, QByteArray("TT2\0", 4), text))},
        {"extended header 3", Id3v2(3, extended3 + TitleFrame(3), 0x40)},
        {"extended header 3 with checksum", Id3v2(3, extended3Crc + TitleFrame(3), 0x40)},
        {"extended header 4", Id3v2(4, extended4 + TitleFrame(4), 0x40)},
        {"extended header announced but missing", Id3v2(3, TitleFrame(3), 0x40)},
        {"footer", Id3v2(4, TitleFrame(4), 0x10) + "3DI" + QByteArray("\x04\0\x10", 3) + SyncSafe32(16)},
        {"version 3 unsynchronised", Id3v2(3, Unsynchronise(Id3Frame(3, "TIT2", wide)), 0x80)},
        {"version 4 unsynchronised", Id3v2(4, Id3Frame(4, "TIT2", Unsynchronise(wide), 0x02), 0x80)},
        {"version 4 unsynchronised by the tag's flag only", Id3v2(4, Id3Frame(4, "TIT2", Unsynchronise(wide)), 0x80)},
        {"unsynchronisation claimed, not done", Id3v2(3, Id3Frame(3, "TIT2", wide), 0x80)},
        {"version 3 compressed", Id3v2(3, Id3Frame(3, "TIT2", BE32(size) + packed, 0x80))},
        {"version 4 compressed", Id3v2(4, Id3Frame(4, "TIT2", SyncSafe32(size) + packed, 0x09))},
        {"version 4 compressed without length", Id3v2(4, Id3Frame(4, "TIT2", packed, 0x08))},
        {"version 4 compressed, length without flag", Id3v2(4, Id3Frame(4, "TIT2", SyncSafe32(size) + packed, 0x08))},
        {"version 3 grouped", Id3v2(3, Id3Frame(3, "TIT2", "\x55" + text, 0x20))},
        {"version 4 grouped with length", Id3v2(4, Id3Frame(4, "TIT2", "\x55" + SyncSafe32(size) + text, 0x41))},
        {"plain frame size in version 4", Id3v2(4, itunes + TitleFrame(4))},
        {"encrypted frame before", Id3v2(4, Id3Frame(4, "TIT2", "\x01secret", 0x04) + TitleFrame(4))},
        {"size beyond the file", Id3v2(3, TitleFrame(3), 0, 0, 100000)},
        {"frame beyond the tag behind it", Id3v2(3, TitleFrame(3) + "TALB" + BE32(0x7FFFFFFF) + BE16(0) + "abc")},
        {"junk before", "junk" + Id3v2(3, TitleFrame(3)) + MpegFrames(3)},
        {"WAVE chunk", Riff("WAVE", WavFmt(1, 2, 8000, 16) + RiffChunk("id3 ", Id3v2(3, TitleFrame(3))))},
        {"AIFF chunk", Aiff("AIFF", AiffComm(1, 8000, 16, 8000) + AiffChunk("ID3 ", Id3v2(4, TitleFrame(4))))},
        {"first of two WAVE chunks", Riff("WAVE", RiffChunk("id3 ", first) + RiffChunk("ID3 ", second))},
        {"first of two AIFF chunks", Aiff("AIFF", AiffChunk("ID3 ", first) + AiffChunk("ID3 ", second))},
        {"first of two DSDIFF chunks", Dff(2, 2822400, "sound", first) + DffChunk("ID3 ", second)},
        {"DSF", Dsf(2, 2822400, 8, "sound", Id3v2(3, TitleFrame(3)))},
        {"DSDIFF", Dff(2, 2822400, "sound", Id3v2(3, TitleFrame(3)))},
    };
    for (const TCase& c : cases) {
        SCOPED_TRACE(c.Name);
        const TID3v2Tag tag = LoadId3(c.Bytes);
        EXPECT_TRUE(tag.Loaded);
        EXPECT_EQ(TextOf(tag, "TIT2"), u"Title"_s);
    }
}

TEST(ID3v2Tag, MarksSkippedFrames)
{
    const TID3v2Tag tag = LoadId3(Id3v2(4, Id3Frame(4, "TALB", {}) + Id3Frame(4, "TPE1", Id3Text(7, "x")) +
                                               Id3Frame(4, "TPE2", "\x01x", 0x04) + Id3Frame(4, "a!#?", "x") +
                                               Id3Frame(4, "TCOM", "damaged", 0x08) + "TIT2" + SyncSafe32(99999)));
    QList<int> errors;
    for (const TID3v2FrameFault& fault : tag.Frames.Faults())
        errors.append(static_cast<int>(fault.Error));
    const QList<int> expected = {static_cast<int>(id3v2feNoContent), static_cast<int>(id3v2feInvalidTextEncoding),
                                 static_cast<int>(id3v2feInvalidFlags), static_cast<int>(id3v2feInvalidFrameID),
                                 static_cast<int>(id3v2feContentToLarge)};
    EXPECT_EQ(errors, expected);
    EXPECT_TRUE(tag.Frames.Items().empty());
    EXPECT_TRUE(tag.Loaded);
}

TEST(ID3v2Tag, InflatesAtMost12MiB)
{
    const QByteArray bomb = Zlib(QByteArray(13 * 1024 * 1024, 'x'));
    const QByteArray half = Zlib(QByteArray(8 * 1024 * 1024, '\0'));
    const auto frame = [](const char* id, const QByteArray& packed) {
        return Id3Frame(3, id, BE32(10) + packed, 0x80);
    };
    const TID3v2Tag tag =
        LoadId3(Id3v2(3, frame("TALB", bomb) + frame("TPE1", half) + frame("TPE2", half) + TitleFrame(3)));
    EXPECT_EQ(tag.Frames.FrameExists("TALB"), -1);
    EXPECT_NE(tag.Frames.FrameExists("TPE1"), -1);
    EXPECT_EQ(tag.Frames.FrameExists("TPE2"), -1); // all frames share the bound
    EXPECT_EQ(TextOf(tag, "TIT2"), u"Title"_s);
}

TEST(ID3v2Tag, ReadsPictures)
{
    const QByteArray jpeg("\xFF\xD8\xFF\xE0\xFF\x00\x00\xFF\xFF\xFE"
                          "data\xFF",
                          15);
    const QByteArray content = Id3Picture("image/jpeg", 4, "back", jpeg);
    const QByteArray wideText = QByteArray("\xFF\xFE", 2) + Utf16(u"\u00FCber"_s, false) + QByteArray(2, '\0');
    const QByteArray wide = QByteArray("\x01image/jpeg\0\x04", 13) + wideText + jpeg;
    struct TCase {
        const char* Name;
        QByteArray Bytes;
        QString Description;
    };
    const TCase cases[] = {
        {"version 2",
         Id3v2(2, Id3Frame(2, "PIC",
                           QByteArray("\0JPG\x04"
                                      "back\0",
                                      10) +
                               jpeg)),
         u"back"_s},
        {"version 3", Id3v2(3, Id3Frame(3, "APIC", content)), u"back"_s},
        {"version 3 unsynchronised", Id3v2(3, Unsynchronise(Id3Frame(3, "APIC", content)), 0x80), u"back"_s},
        {"version 4 unsynchronised", Id3v2(4, Id3Frame(4, "APIC", Unsynchronise(content), 0x02)), u"back"_s},
        {"UTF-16 description", Id3v2(3, Id3Frame(3, "APIC", wide)), u"\u00FCber"_s},
    };
    for (const TCase& c : cases) {
        SCOPED_TRACE(c.Name);
        const TID3v2Tag tag = LoadId3(c.Bytes);
        ASSERT_EQ(tag.Frames.FrameTypeCount("APIC"), 1);
        const auto picture = tag.Frames.Items()[0].GetUnicodeCoverPictureStream();
        ASSERT_TRUE(picture);
        EXPECT_TRUE(picture->Data == jpeg);
        EXPECT_EQ(picture->CoverType, 4);
        EXPECT_EQ(picture->MIMEType, u"image/jpeg"_s);
        EXPECT_EQ(picture->Description, c.Description);
    }
}

TEST(ID3v2Tag, ReadsCountersOfAnyLength)
{
    const std::pair<QByteArray, quint64> cases[] = {
        {BE32(258), 258}, {BE64(1ull << 40), 1ull << 40}, {QByteArray(12, '\xFF'), ~0ull}, {QByteArray("\x07", 1), 7}};
    for (const auto& [bytes, expected] : cases)
        EXPECT_EQ(LoadId3(Id3v2(3, Id3Frame(3, "PCNT", bytes))).Frames.Items().at(0).GetPlayCount(), expected);
    const TID3v2Tag tag = LoadId3(Id3v2(3, Id3Frame(3, "POPM", QByteArray("a@b\0\xC4", 5) + BE32(9))));
    const auto popularimeter = tag.Frames.Items().at(0).GetPopularimeter();
    ASSERT_TRUE(popularimeter);
    EXPECT_EQ(popularimeter->Rating, 196);
    EXPECT_EQ(popularimeter->Counter, 9u);
    EXPECT_EQ(popularimeter->Email, u"a@b"_s);
}

TEST(ID3v2Tag, ReadsTheAttributesOfContainers)
{
    const QByteArray sound(32000, 'x');
    const QByteArray extensible =
        RiffChunk("fmt ", LE16(0xFFFE) + LE16(2) + LE32(8000) + LE32(48000) + LE16(6) + LE16(24) + LE16(22) + LE16(24) +
                              LE32(3) + LE16(1) + QByteArray(14, '\0'));
    const QByteArray adpcm = RiffChunk("fmt ", LE16(2) + LE16(1) + LE32(8000) + LE32(4000) + LE16(256) + LE16(4));
    const QByteArray ds64 = RiffChunk("ds64", LE64(0) + LE64(16000) + LE64(8000) + LE32(0));
    const QByteArray dst = "FRM8" + BE64(9999) + "DSD " +
                           DffChunk("PROP", "SND " + DffChunk("FS  ", BE32(2822400)) + DffChunk("CHNL", BE16(2))) +
                           DffChunk("DST ", DffChunk("FRTE", BE32(150) + BE16(75)) + sound);
    struct TCase {
        const char* Name;
        QByteArray Bytes;
        TSourceFileType Type;
        TAudioAttributes Expected;
    };
    const TCase cases[] = {
        {"WAVE",
         Riff("WAVE", WavFmt(1, 2, 8000, 16) + RiffChunk("data", sound)),
         sftWAVE,
         {2, 8000, 16, 1.0, 8000, 256000}},
        {"data before fmt",
         Riff("WAVE", RiffChunk("data", sound) + WavFmt(1, 1, 16000, 16)),
         sftWAVE,
         {1, 16000, 16, 1.0, 16000, 256000}},
        {"extensible",
         Riff("WAVE", extensible + RiffChunk("data", sound)),
         sftWAVE,
         {2, 8000, 24, 2 / 3.0, 5333, 384000}},
        {"fact of compressed sound",
         Riff("WAVE", adpcm + RiffChunk("fact", LE32(4000)) + RiffChunk("data", sound)),
         sftWAVE,
         {1, 8000, 4, 0.5, 4000, 32000}},
        {"data size of a recording cut off",
         Riff("WAVE", WavFmt(1, 1, 16000, 16) + "data" + LE32(0xFFFFFFFF) + sound),
         sftWAVE,
         {1, 16000, 16, 1.0, 16000, 256000}},
        {"RF64",
         Riff("WAVE", ds64 + WavFmt(1, 1, 8000, 16) + "data" + LE32(0xFFFFFFFF) + sound, "RF64"),
         sftRF64,
         {1, 8000, 16, 1.0, 8000, 128000}},
        {"AIFF",
         Aiff("AIFF", AiffComm(2, 66150, 16, 44100) + AiffChunk("SSND", sound)),
         sftAIFF,
         {2, 44100, 16, 1.5, 66150, 1411200}},
        {"AIFF-C",
         Aiff("AIFC", AiffComm(1, 16000, 16, 8000, "ima4") + AiffChunk("SSND", sound)),
         sftAIFF,
         {1, 8000, 16, 2.0, 16000, 127968}},
        {"DSF", Dsf(2, 2822400, 2822400, sound), sftDSF, {2, 2822400, 1, 1.0, 2822400, 5644800}},
        {"DSDIFF", Dff(2, 128000, sound), sftDFF, {2, 128000, 1, 1.0, 128000, 256000}},
        {"DSDIFF with DST", dst, sftDFF, {2, 2822400, 1, 2.0, 5644800, 128072}},
        {"behind a tag",
         Id3v2(3, TitleFrame(3)) + Riff("WAVE", WavFmt(1, 2, 8000, 16) + RiffChunk("data", sound)),
         sftWAVE,
         {2, 8000, 16, 1.0, 8000, 256000}},
    };
    for (const TCase& c : cases) {
        SCOPED_TRACE(c.Name);
        const TID3v2Tag tag = LoadId3(c.Bytes);
        const TAudioAttributes audio = tag.AudioAttributes();
        EXPECT_EQ(tag.SourceFileType(), c.Type);
        EXPECT_EQ(audio.Channels, c.Expected.Channels);
        EXPECT_EQ(audio.SamplesPerSec, c.Expected.SamplesPerSec);
        EXPECT_EQ(audio.BitsPerSample, c.Expected.BitsPerSample);
        EXPECT_NEAR(audio.PlayTime, c.Expected.PlayTime, 0.001);
        EXPECT_EQ(audio.SampleCount, c.Expected.SampleCount);
        EXPECT_EQ(audio.BitRate, c.Expected.BitRate);
    }
}

TEST(ID3v2Tag, ExtendedNumbersOutsideAllRatesAreNone)
{
    EXPECT_DOUBLE_EQ(ReadExtended(QByteArray("\x40\x0E\xAC\x44\0\0\0\0\0\0", 10)), 44100);
    EXPECT_DOUBLE_EQ(ReadExtended(QByteArray("\x40\x0D\xFA\0\0\0\0\0\0\0", 10)), 32000);
    for (const char* bytes : {"\xC0\x0E\xAC\x44", "\x7F\xFF\x80\x00", "\x7F\xFE\xFF\xFF", "\x40\x0E\x00\x00"})
        EXPECT_EQ(ReadExtended(QByteArray(bytes, 4) + QByteArray(6, '\0')), 0);
    EXPECT_EQ(ReadExtended("short"), 0);
}

} // namespace Kestrune
