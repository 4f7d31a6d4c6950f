// SPDX-License-Identifier: GPL-3.0-or-later
#include "TagsLibrary.h"
#include "uMPEGplus.h"
#include "uMonkey.h"
#include "uStreamSniffer.h"
#include "uTagBuilders.h"
#include "uTestFiles.h"
#include "uWAVPackfile.h"

#include <gtest/gtest.h>

namespace Kestrune {

using namespace Qt::StringLiterals;
using namespace Kit;

namespace {

QStringList SortedLines(const TTags& tags)
{
    QStringList lines;
    for (const auto& tag : tags.Tags())
        lines.append(tag->Name + u'=' + tag->Value);
    lines.sort();
    return lines;
}

int LoadAll(TTags& tags, const QString& path)
{
    tags.ParseWavPackAudioAttributes = true;
    tags.ParseMusePackAudioAttributes = true;
    tags.ParseMonkeyAudioAttributes = true;
    return tags.LoadFromFile(path);
}

struct TFormatCase {
    const char* Name;
    const char* FileName;
    QByteArray Bytes;
    QStringList Lines; ///< sorted
};

void CheckLines(const std::vector<TFormatCase>& cases)
{
    const TTempDir dir;
    for (const TFormatCase& c : cases) {
        SCOPED_TRACE(c.Name);
        TTags tags;
        ASSERT_EQ(LoadAll(tags, dir.Write(QString::fromUtf8(c.FileName), c.Bytes)), 0);
        EXPECT_EQ(SortedLines(tags), c.Lines);
        tags.LoadTags();
        EXPECT_EQ(SortedLines(tags), c.Lines) << "after a second merge";
    }
}

QByteArray Info(const QByteArray& chunks)
{
    return Riff("WAVE", WavFmt(1, 1, 8000, 8) + RiffChunk("LIST", "INFO" + chunks) + RiffChunk("data", "sound"));
}

QByteArray Items(const QByteArray& name, quint32 type, const QByteArray& value)
{
    return Mp4Atom(name, Mp4Data(type, value));
}

QByteArray AsfOne(const QString& name, quint16 type, const QByteArray& value)
{
    return AsfFile(AsfExtended({AsfAttribute(name, type, value)}, 1));
}

QByteArray SeedOf(const char* fileName)
{
    for (const TTagSeed& seed : TagSeeds())
        if (qstrcmp(seed.FileName, fileName) == 0)
            return seed.Bytes;
    return {};
}

} // namespace

TEST(TagsFormats, APEv2)
{
    const QByteArray ape =
        ApeTag({ApeItem("Title", "T\xC3\xADtle"), ApeItem("Track", "3/12"), ApeItem("Binary", "x", 2),
                ApeItem("Artist", QByteArray("A\0B", 3)), ApeItem("Link", "http://a", 4),
                ApeItem("TMCL", QByteArray("cello=C\0viola=D", 15))});
    const QStringList lines = {
        u"Artist=A"_s,       u"Artist=B"_s,      u"Link=http://a"_s,   u"TMCL=cello=C\nviola=D"_s,
        u"TOTALTRACKS=12"_s, u"TRACKNUMBER=3"_s, u"Title=T\u00EDtle"_s};
    QStringList withId3v1 = lines + QStringList{u"GENRE=Rock"_s};
    withId3v1.sort();
    const QByteArray v1 = Id3v1({"Weaker", "Weaker", {}, {}, {}, 9, 17});
    CheckLines({
        {"at the end", "a.mpc", "sound" + ape, lines},
        {"before ID3v1", "a.mp3", "sound" + ape + v1, withId3v1},
        {"before Lyrics3", "a.mp3", "sound" + ape + Lyrics3v2({{"LYR", "x"}}) + v1, withId3v1},
        {"at the start", "a.ape", ape + QByteArray(100, 's'), lines},
        {"size beyond the file", "a.ape", "sound" + ApeTag({ApeItem("Title", "x")}, 1000), {}},
        {"item beyond the tag",
         "a.ape",
         ApeTag({ApeItem("Title", "x"), LE32(99999) + LE32(0) + QByteArray("Album\0y", 7)}),
         {u"Title=x"_s}},
        {"key without end", "a.ape", ApeTag({ApeItem("Title", "x"), LE32(1) + LE32(0) + "Album"}), {u"Title=x"_s}},
    });
}

TEST(TagsFormats, OggOfEveryCodec)
{
    const QByteArray large = "LYRICS=" + QByteArray(150000, 'x');
    std::vector<TFormatCase> cases = {
        {"Vorbis",
         "a.ogg",
         OggVorbis({"TITLE=T", "artist=A", "TRACK=3/12"}),
         {u"TITLE=T"_s, u"TOTALTRACKS=12"_s, u"TRACKNUMBER=3"_s, u"artist=A"_s}},
        {"comments over several pages",
         "a.opus",
         OggOpus({large, "TITLE=T"}),
         {QString::fromLatin1(large), u"TITLE=T"_s}},
        {"behind an ID3v2 tag",
         "a.ogg",
         Id3v2(3, Id3Frame(3, "TIT2", Id3Text(0, "weaker"))) + OggVorbis({"TITLE=T"}),
         {u"TITLE=T"_s}},
        {"video first",
         "a.ogv",
         OggPage(OggFirst, 0, 1, QByteArray("\x80theora", 7) + QByteArray(40, '\0')) +
             OggPage(OggFirst, 0, 2, VorbisIdentification(2, 44100, 96000)) +
             OggPage(0, 0, 1, QByteArray("\x81theora") + VorbisComments({"TITLE=video"})) +
             OggPage(0, 0, 2, "\x03vorbis" + VorbisComments({"TITLE=sound"})),
         {u"TITLE=sound"_s}},
        {"cut in the comments", "a.ogg", OggVorbis({"TITLE=T", "ALBUM=A"}).left(125), {u"TITLE=T"_s}},
    };
    for (const char* name : {"a.oga", "a.spx", "a.ogv"})
        for (const TTagSeed& seed : TagSeeds())
            if (qstrcmp(seed.FileName, name) == 0)
                cases.push_back({name, name, seed.Bytes, {u"TITLE=Title"_s}});
    CheckLines(cases);
}

TEST(TagsFormats, WaveTexts)
{
    CheckLines({
        {"mapped",
         "a.wav",
         Info(RiffChunk("INAM", "T") + RiffChunk("IART", "caf\xE9") + RiffChunk("ITRK", "3/12") +
              RiffChunk("IXYZ", "x")),
         {u"ARTIST=caf\u00E9"_s, u"TITLE=T"_s, u"TOTALTRACKS=12"_s, u"TRACKNUMBER=3"_s}},
        {"no padding",
         "a.wav",
         Info("INAM" + LE32(3) + "abc" + RiffChunk("IPRD", "Al")),
         {u"ALBUM=Al"_s, u"TITLE=abc"_s}},
        {"zero too many",
         "a.wav",
         Info(RiffChunk("INAM", QByteArray("abcd\0", 5)) + QByteArray(1, '\0') + RiffChunk("IPRD", "Al")),
         {u"ALBUM=Al"_s, u"TITLE=abcd"_s}},
        {"size beyond the list", "a.wav", Info("INAM" + LE32(0xFFFFFFF0) + "abc"), {u"TITLE=abc"_s}},
        {"two lists",
         "a.wav",
         Riff("WAVE", RiffChunk("LIST", "INFO" + RiffChunk("INAM", "T")) +
                          RiffChunk("LIST", "INFO" + RiffChunk("INAM", "U") + RiffChunk("IART", "A"))),
         {u"ARTIST=A"_s, u"TITLE=T"_s}},
        {"over the ID3v2 chunk",
         "a.wav",
         Info(RiffChunk("INAM", "T")) + RiffChunk("id3 ", Id3v2(3, Id3Frame(3, "TIT2", Id3Text(0, "weaker")) +
                                                                       Id3Frame(3, "TALB", Id3Text(0, "B")))),
         {u"ALBUM=B"_s, u"TITLE=T"_s}},
    });
    for (const TTagSeed& seed : TagSeeds()) {
        if (qstrcmp(seed.Reader, "wav") != 0)
            continue;
        const TTempDir dir;
        TTags tags;
        LoadAll(tags, dir.Write(u"a.wav"_s, seed.Bytes));
        EXPECT_EQ(tags.GetTag(u"BEXT Description"_s), u"Description"_s);
        EXPECT_EQ(tags.GetTag(u"BEXT TimeReference"_s), u"5"_s);
        EXPECT_EQ(tags.GetTag(u"BEXT LoudnessValue"_s), u"-24.00"_s);
        EXPECT_EQ(tags.GetTag(u"BEXT LoudnessRange"_s), u"5.00"_s);
        EXPECT_EQ(tags.Exists(u"BEXT MaxTruePeakLevel"_s), -1); // marked as unused
        EXPECT_EQ(tags.GetTag(u"BEXT CodingHistory"_s), u"A=PCM"_s);
        EXPECT_EQ(tags.GetTag(u"CART Version"_s), u"0101"_s);
        EXPECT_EQ(tags.GetTag(u"CART Title"_s), u"Cart title"_s);
        EXPECT_EQ(tags.GetTag(u"CART TagText"_s), u"text"_s);
    }
}

TEST(TagsFormats, MP4)
{
    const QByteArray rating =
        Mp4Atom("Xtra", Mp4Xtra("WM/SharedUserRating", 19, LE64(50)) + Mp4Xtra("WM/Other", 8, "x\0") +
                            Mp4Xtra("WM/Mood", 8, Utf16(u"calm"_s, false)));
    CheckLines({
        {"text atoms of the family 0xA9 stay out",
         "a.m4a",
         Mp4File(Items("\xA9nam", 1, "T") + Items("aART", 1, "A") + Items("\xA9gen", 1, "Own genre")),
         {u"ALBUMARTIST=A"_s, u"GENRE=Own genre"_s}},
        {"numbers",
         "a.m4a",
         Mp4File(Items("tmpo", 21, BE16(120)) + Items("cpil", 21, "\x01") +
                     Items("trkn", 0, QByteArray("\0\0\0\3\0\x0C\0\0", 8)) +
                     Items("disk", 0, QByteArray("\0\0\0\1\0\0", 6)) + Items("gnre", 0, BE16(18)) +
                     Items("stik", 21, "\x01") + Items("sfID", 21, BE32(143443)),
                 {}, true),
         {u"BPM=120"_s, u"DISCNUMBER=1"_s, u"GENRE=Rock"_s, u"ITUNESCOUNTRYID=143443"_s, u"MEDIA=Music"_s,
          u"PARTOFCOMPILATION=1"_s, u"PURCHASECOUNTRY=Germany"_s, u"TOTALTRACKS=12"_s, u"TRACKNUMBER=3"_s}},
        {"derived values replace free ones",
         "a.m4a",
         Mp4File(Mp4FreeForm("track", "9") + Mp4FreeForm("Label", "L") +
                 Items("trkn", 0, QByteArray("\0\0\0\3\0\0\0\0", 8))),
         {u"Label=L"_s, u"TRACKNUMBER=3"_s}},
        {"Xtra", "a.m4a", Mp4File({}, rating), {u"Mood=calm"_s, u"SharedUserRating=129"_s}},
        {"two item lists and two Xtra atoms",
         "a.m4a",
         Mp4File(Items("aART", 1, "A") + Mp4FreeForm("N", "v"),
                 Mp4Atom("meta", BE32(0) + Mp4Atom("ilst", Items("aART", 1, "B") + Mp4FreeForm("N", "w") +
                                                               Mp4FreeForm("M", "x"))) +
                     rating + rating),
         {u"ALBUMARTIST=A"_s, u"M=x"_s, u"Mood=calm"_s, u"N=v"_s, u"SharedUserRating=129"_s}},
        {"an atom that claims 4 GiB",
         "a.m4a",
         Mp4File(Items("aART", 1, "A") + BE32(0xFFFFFFF0) + "desc" + Mp4Data(1, "D")),
         {u"ALBUMARTIST=A"_s, u"DESCRIPTION=D"_s}},
        {"an atom smaller than its header",
         "a.m4a",
         Mp4File(Items("aART", 1, "A") + BE32(3) + "desc"),
         {u"ALBUMARTIST=A"_s}},
    });
}

TEST(TagsFormats, WindowsMedia)
{
    const auto wide = [](const QString& text) { return Utf16(text, false); };
    CheckLines({
        {"content description",
         "a.wma",
         AsfFile(AsfContent({u"T"_s, u"A"_s, u"C"_s, u"D"_s, u"R"_s})),
         {u"ARTIST=A"_s, u"COMMENT=D"_s, u"COPYRIGHT=C"_s, u"Rating=R"_s, u"TITLE=T"_s}},
        {"number of total",
         "a.wma",
         AsfOne(u"WM/TrackNumber"_s, 0, wide(u"3/12"_s)),
         {u"TOTALTRACKS=12"_s, u"TRACKNUMBER=3"_s}},
        {"older track number", "a.wma", AsfOne(u"WM/Track"_s, 3, LE32(2)), {u"TRACKNUMBER=3"_s}},
        {"left out", "a.wma", AsfOne(u"WMFSDKVersion"_s, 0, wide(u"9"_s)), {}},
        {"own name", "a.wma", AsfOne(u"My Field"_s, 2, LE32(1)), {u"My Field=1"_s}},
        {"rating", "a.wma", AsfOne(u"WM/SharedUserRating"_s, 3, LE32(99)), {u"RATING=255"_s}},
        {"stated twice",
         "a.wma",
         AsfFile(AsfExtended({AsfAttribute(u"WM/TrackNumber"_s, 0, wide(u"3/12"_s))}, 1) +
                 AsfMetadata(u"WM/TrackNumber"_s, 0, wide(u"3/12"_s))),
         {u"TOTALTRACKS=12"_s, u"TRACKNUMBER=3"_s}},
        {"identifier",
         "a.wma",
         AsfFile(AsfMetadata(u"Id"_s, 6, LE32(0x01234567) + LE16(0x89AB) + LE16(0xCDEF) + "abcdefgh")),
         {u"Id={01234567-89ab-cdef-6162-636465666768}"_s}},
        {"identifier cut off", "a.wma", AsfFile(AsfMetadata(u"Id"_s, 6, "short")), {}},
        {"count lies",
         "a.wma",
         AsfFile(AsfExtended({AsfAttribute(u"WM/Year"_s, 0, wide(u"2001"_s))}, 60000)),
         {u"YEAR=2001"_s}},
        {"behind an ID3v2 tag it is not read",
         "a.wma",
         Id3v2(3, Id3Frame(3, "TIT2", Id3Text(0, "T"))) + AsfOne(u"WM/Year"_s, 0, "2\0"),
         {u"TITLE=T"_s}},
        {"a frame mark near the start speaks for MPEG",
         "a.wma",
         AsfOne(u"A"_s, 1, QByteArray("\xFF\xFB", 2)) + AsfContent({u"T"_s, u""_s, u""_s, u""_s, u""_s}),
         {}},
    });
}

TEST(TagsFormats, PicturesOfEveryFormat)
{
    const TTempDir dir;
    int withPictures = 0;
    for (const TTagSeed& seed : TagSeeds()) {
        if (!seed.Bytes.contains("\x89PNG") && !seed.Bytes.contains(QByteArray("\x89PNG\r\n\x1A\n0123", 12).toBase64()))
            continue;
        SCOPED_TRACE(testing::Message() << seed.Reader << " " << seed.FileName);
        TTags tags;
        LoadAll(tags, dir.Write(QString::fromUtf8(seed.FileName), seed.Bytes));
        ASSERT_GT(tags.CoverArtCount(), 0);
        for (const auto& art : tags.CoverArts()) {
            EXPECT_TRUE(art->Stream == QByteArray("\x89PNG\r\n\x1A\n0123", 12));
            EXPECT_EQ(art->PictureFormat, tpfPNG);
            EXPECT_EQ(art->MIMEType, u"image/png"_s);
            EXPECT_EQ(art->CoverType, 3);
        }
        ++withPictures;
        tags.ParseCoverArts = false;
        tags.LoadFromFile(dir.File(QString::fromUtf8(seed.FileName)));
        EXPECT_EQ(tags.CoverArtCount(), 0);
    }
    EXPECT_GE(withPictures, 15);
    TTags tags;
    LoadAll(tags, dir.Write(u"a.mpc"_s, ApeTag({ApeItem("cover art (back)", QByteArray("b.jpg\0\xFF\xD8", 8), 2)})));
    ASSERT_EQ(tags.CoverArtCount(), 1);
    EXPECT_EQ(tags.CoverArts()[0]->Name, u"cover art (back)"_s);
    EXPECT_EQ(tags.CoverArts()[0]->Description, u"b.jpg"_s);
    EXPECT_EQ(tags.CoverArts()[0]->CoverType, 4);
    EXPECT_EQ(tags.CoverArts()[0]->Stream.size(), 2);
}

TEST(TagsFormats, PicturesOfNoBytesAreNone)
{
    const QByteArray block = FlacPicture(3, "image/png", "x", {});
    const std::pair<const char*, QByteArray> cases[] = {
        {"a.mp3", Id3v2(3, Id3Frame(3, "APIC", Id3Picture("image/png", 3, "x", {})))},
        {"b.mp3", Id3v2(2, Id3Frame(2, "PIC", QByteArray("\0PNG\3x\0", 7)))},
        {"a.flac", "fLaC" + FlacBlock(0, FlacStreamInfo(44100, 2, 16, 44100)) + FlacBlock(6, block, true)},
        {"a.ogg", OggVorbis({"METADATA_BLOCK_PICTURE=" + block.toBase64(), "COVERART="})},
        {"a.ape", ApeTag({ApeItem("Cover Art (Front)", QByteArray("x\0", 2), 2)})},
        {"a.m4a", Mp4File(Items("covr", 13, {}))},
        {"a.wma", AsfFile(AsfMetadata(u"WM/Picture"_s, 1, AsfPicture(3, u"image/png"_s, u"x"_s, {})))},
    };
    const TTempDir dir;
    for (const auto& [name, bytes] : cases) {
        TTags tags;
        ASSERT_EQ(LoadAll(tags, dir.Write(QString::fromUtf8(name), bytes)), 0);
        EXPECT_EQ(tags.CoverArtCount(), 0) << name;
    }
}

TEST(TagsFormats, AttributesOfEveryFormat)
{
    struct TCase {
        const char* Name;
        const char* FileName;
        QByteArray Bytes;
        TAudioAttributes Expected;
    };
    const QByteArray sound(10000, 's');
    const quint32 stereo = 0x1800 | 1 | 9u << 23; // one block, 16 bits, 44,100
    const QByteArray unknown =
        WavPackBlock(0xFFFFFFFF, 0, 44100, stereo, sound) + WavPackBlock(0xFFFFFFFF, 44100, 44100, stereo, sound);
    const QByteArray six = WavPackBlock(44100, 0, 44100, stereo & ~0x1000u, "1") +
                           WavPackBlock(44100, 0, 44100, stereo & ~0x1800u, "2") +
                           WavPackBlock(44100, 0, 44100, (stereo & ~0x800u) | 4, "3");
    const QByteArray dsd =
        WavPackBlock(352800, 0, 1000, (stereo & 0x1803) | 12u << 23 | 0x80000000, QByteArray("\x0E\x01\x02\0", 4));
    const QByteArray ape = ApeTag({ApeItem("Title", QByteArray(5000, 'x'))});
    const auto mp4 = [](const char* entry, int channels, int rate, const char* box, const QByteArray& hex) {
        return Mp4File({}, {}, false, Mp4SampleEntry(entry, channels, rate, Mp4Atom(box, QByteArray::fromHex(hex))));
    };
    const auto aac = [](const char* hex) {
        return Mp4File({}, {}, false, Mp4SampleEntry("mp4a", 2, 22050, Mp4Esds(QByteArray::fromHex(hex))));
    };
    const TCase cases[] = {
        {"Vorbis", "a.ogg", OggVorbis({}), {2, 44100, 0, 2.0, 88200, 96000}},
        {"Opus", "a.opus", OggOpus({}), {2, 48000, 0, 1.0, 48000, -1}},
        {"Opus from the middle of a stream",
         "a.opus",
         OggOpus({}).chopped(1000 + 4 + 27) + OggPage(0, 480000, 7, QByteArray("\xFC", 1) + sound) +
             OggPage(OggLast, 528312 - 960, 7, sound),
         {2, 48000, 0, 1.0, 48000, -1}},
        {"Vorbis from the middle of a stream", "a.ogg", SeedOf("b.ogg"), {2, 44100, 0, 1.0, 44100, 96000}},
        {"MP4", "a.m4a", Mp4File({}), {2, 44100, 16, 1.0, 44100, 64000}},
        {"AC-3 in MP4", "a.m4a", mp4("ac-3", 2, 48000, "dac3", "10 3d c0"), {6, 48000, 16, 1.0, 48000, 384000}},
        {"AC-3 of an unknown rate", "a.m4a", mp4("ac-3", 2, 48000, "dac3", "d0 3d c0"), {2, 48000, 16, 1.0, 48000, -1}},
        {"E-AC-3 in MP4", "a.m4a", mp4("ec-3", 2, 0, "dec3", "0c 00 20 0f 00"), {6, 48000, 16, 1.0, 48000, 384000}},
        {"FLAC in MP4",
         "a.m4a",
         mp4("fLaC", 2, 48000, "dfLa", (BE32(0) + FlacBlock(0, FlacStreamInfo(96000, 6, 24, 96000), true)).toHex()),
         {6, 96000, 24, 1.0, 96000, -1}},
        {"AAC with band replication behind", "a.m4a", aac("13 88 56 e5 a0"), {1, 44100, 16, 1.0, 44100, 64000}},
        {"AAC with parametric stereo behind", "a.m4a", aac("13 88 56 e5 a5 48 80"), {2, 44100, 16, 1.0, 44100, 64000}},
        {"AAC with the mark and no replication", "a.m4a", aac("13 88 56 e5 00"), {1, 22050, 16, 1.0, 22050, 64000}},
        {"AAC with band replication before", "a.m4a", aac("2b 8a 08 00"), {1, 44100, 16, 1.0, 44100, 64000}},
        {"Windows Media", "a.wma", AsfFile({}), {2, 44100, 16, 2.5, 110250, 64000}},
        {"WavPack", "a.wv", WavPackBlock(44100, 0, 44100, stereo, sound) + ape, {2, 44100, 16, 1.0, 44100, 80256}},
        {"WavPack without total", "a.wv", unknown, {2, 44100, 16, 2.0, 88200, 80256}},
        {"WavPack of five channels", "a.wv", six, {5, 44100, 16, 1.0, 44100, -1}},
        {"WavPack of DSD", "a.wv", dsd, {2, 2822400, 1, 1.0, 2822400, -1}},
        {"Musepack 8", "a.mpc", Musepack8(88400, 200, sound), {2, 44100, 0, 2.0, 88200, -1}},
        {"Musepack 7", "a.mpc", Musepack7(101, 1, 576, sound) + ape, {2, 48000, 0, 2.412, 115776, 33254}},
        {"Musepack 7 inexact", "a.mpc", Musepack7(101, 0, 0, sound), {2, 44100, 0, 2.625, 115776, -1}},
        {"Musepack 6", "a.mpc", Musepack6(6, 101, 128, sound), {2, 44100, 0, 2.625, 115776, 128000}},
        {"Musepack 5", "a.mpc", Musepack6(5, 102, 128, sound), {2, 44100, 0, 2.625, 115776, 128000}},
        {"Musepack 4", "a.mpc", Musepack6(4, 102, 128, sound), {2, 44100, 0, 2.625, 115776, 128000}},
        {"Monkey new", "a.ape", MonkeyNew(2, 96000, 96000, 24, 2, 96000), {2, 96000, 24, 2.0, 192000, -1}},
        {"Monkey 3.95", "a.ape", MonkeyOld(3950, 2000, 2, 44100, 2, 588), {2, 44100, 16, 6.7, 295500, -1}},
        {"Monkey 3.8 extra high", "a.ape", MonkeyOld(3800, 4000, 1, 44100, 2, 272), {1, 44100, 16, 1.678, 74000, -1}},
        {"Monkey 3.8", "a.ape", MonkeyOld(3800, 2000, 1, 44100, 2, 784), {1, 44100, 16, 0.2268, 10000, -1}},
    };
    const TTempDir dir;
    for (const TCase& c : cases) {
        SCOPED_TRACE(c.Name);
        TTags tags;
        LoadAll(tags, dir.Write(QString::fromUtf8(c.FileName), c.Bytes));
        const TSourceAudioAttributes& audio = tags.SourceAudioAttributes();
        EXPECT_EQ(audio.Channels(), c.Expected.Channels);
        EXPECT_EQ(audio.SamplesPerSec(), c.Expected.SamplesPerSec);
        EXPECT_EQ(audio.BitsPerSample(), c.Expected.BitsPerSample);
        EXPECT_NEAR(audio.PlayTime(), c.Expected.PlayTime, 0.001);
        EXPECT_EQ(audio.SampleCount(), c.Expected.SampleCount);
        if (c.Expected.BitRate >= 0) {
            EXPECT_NEAR(static_cast<double>(audio.BitRate()), static_cast<double>(c.Expected.BitRate), 2000);
        }
    }
    TTags plain; // without the options nobody looks
    plain.LoadFromFile(dir.Write(u"a.wv"_s, unknown));
    EXPECT_EQ(plain.SourceAudioAttributes().PlayTime(), 0);
}

TEST(TagsFormats, SnifferKnowsTheStreams)
{
    const std::pair<QByteArray, TStreamType> cases[] = {{"RIFF", stWAV},
                                                        {"RF64", stRF64},
                                                        {"MAC ", stMonkey},
                                                        {"OFR ", stOptimFROG},
                                                        {"MP+\7", stMusepack},
                                                        {"MPCK", stMusepack},
                                                        {"fLaC", stFlac},
                                                        {"DSD ", stDSF},
                                                        {Dff(2, 2822400, "x"), stDFF},
                                                        {OggVorbis({}), stOggVorbis},
                                                        {OggOpus({}), stOpus},
                                                        {Aiff("AIFF", {}), stAIFF},
                                                        {Aiff("AIFC", {}), stAIFC},
                                                        {Mp4File({}), stMP4},
                                                        {WavPackBlock(1, 0, 1, 0x1801, {}), stWAVPack},
                                                        {MpegFrames(2), stMPEG},
                                                        {QByteArray(1024, 'x') + MpegFrames(2), stMPEG},
                                                        {QByteArray(1026, 'x') + MpegFrames(2), stUnknown},
                                                        {AsfFile({}), stUnknown},
                                                        {{}, stUnknown}};
    for (const auto& [bytes, type] : cases) {
        SCOPED_TRACE(bytes.left(8).toStdString());
        TMemorySource source(bytes);
        EXPECT_EQ(SniffStream(source), type);
        TMemorySource tagged(Id3v2(3, {}, 0, 50) + bytes);
        EXPECT_EQ(SniffStream(tagged), type);
    }
}

TEST(TagsFormats, EveryPrefixOfEveryFormatIsReadWithoutHarm)
{
    const TTempDir dir;
    for (const TTagSeed& seed : TagSeeds()) {
        SCOPED_TRACE(testing::Message() << seed.Reader << " " << seed.FileName);
        TTags whole;
        const QString name = QString::fromUtf8(seed.FileName);
        const QString path = dir.Write(name, seed.Bytes);
        LoadAll(whole, path);
        EXPECT_GT(whole.Count() + whole.SourceAudioAttributes().Channels(), 0);
        int most = 0;
        for (qsizetype length = seed.Bytes.size(); length-- > 0;) {
            if (length > 600 && length % 17 != 0)
                continue;
            std::filesystem::resize_file(path.toStdString(), static_cast<std::uintmax_t>(length));
            TTags tags;
            ASSERT_EQ(LoadAll(tags, path), 0);
            for (const auto& tag : tags.Tags()) {
                const int index = whole.Exists(tag->Name);
                // a value that was cut must be a beginning of the whole one, not something else
                ASSERT_GE(index, 0) << tag->Name.toStdString() << "=" << tag->Value.toStdString() << " at " << length;
            }
            most = std::max(most, tags.Count());
        }
        if (whole.Count() > 1 && qstrcmp(seed.Reader, "id3v2") == 0) {
            EXPECT_GT(most, 0) << "what came before the cut is kept";
        }
    }
}

} // namespace Kestrune
