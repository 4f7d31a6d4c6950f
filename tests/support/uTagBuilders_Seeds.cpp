// SPDX-License-Identifier: GPL-3.0-or-later
#include "uTagBuilders.h"

namespace Kestrune::Kit {

using namespace Qt::StringLiterals;

namespace {

const QByteArray Png("\x89PNG\r\n\x1A\n0123", 12);

QByteArray Id3Frames(int major)
{
    const QByteArray comment = Id3Text(0, QByteArray("engnote\0words", 13));
    return Id3Frame(major, "TIT2", Id3Text(3, "Title")) + Id3Frame(major, "TPE1", Id3Text(0, "Artist")) +
           Id3Frame(major, "TALB",
                    QByteArray("\x01\xFF\xFE"
                               "A\0l\0",
                               7)) +
           Id3Frame(major, "TRCK", Id3Text(0, "3/12")) + Id3Frame(major, "TCON", Id3Text(0, "(17)Rock")) +
           Id3Frame(major, "COMM", comment) + Id3Frame(major, "TXXX", Id3Text(0, QByteArray("Key\0Value", 9))) +
           Id3Frame(major, "POPM", QByteArray("a@b\0\x80\0\0\0\x01", 9)) +
           Id3Frame(major, "APIC", Id3Picture("image/png", 3, "front", Png));
}

QByteArray Id3Small() { return Id3v2(3, Id3Frames(3)); }

QByteArray FlacSmall()
{
    return "fLaC" + FlacBlock(0, FlacStreamInfo(44100, 2, 16, 44100)) +
           FlacBlock(4, VorbisComments({"TITLE=Title", "ARTIST=A", "TRACKNUMBER=3/12"})) +
           FlacBlock(6, FlacPicture(3, "image/png", "front", Png, 3, 2, 24)) + FlacBlock(1, {}, true) + "sound";
}

QByteArray OggFlacSmall()
{
    const QByteArray first = QByteArray("\x7F"
                                        "FLAC\x01\0\0\x01",
                                        9) +
                             "fLaC" + FlacBlock(0, FlacStreamInfo(44100, 2, 16, 44100));
    return OggPage(OggFirst, 0, 7, first) + OggPage(0, 0, 7, FlacBlock(4, VorbisComments({"TITLE=Title"}))) +
           OggPage(0, 0, 7, FlacBlock(6, FlacPicture(3, "image/png", "", Png), true)) +
           OggPage(OggLast, 44100, 7, QByteArray("\xFF\xF8sound", 7));
}

QByteArray SpeexSmall()
{
    const QByteArray head = "Speex   " + QByteArray(20, '1') + LE32(1) + LE32(80) + LE32(16000) + LE32(1) + LE32(4) +
                            LE32(1) + LE32(0xFFFFFFFF) + LE32(320) + QByteArray(20, '\0');
    return OggStream(head, VorbisComments({"TITLE=Title"}), 32000);
}

QByteArray TheoraSmall()
{
    const QByteArray head = QByteArray("\x80theora\x03\x02\x01", 10) + QByteArray(12, '\0') + BE32(25) + BE32(1) +
                            QByteArray(10, '\0') + BE16(6 << 5);
    return OggStream(head, QByteArray("\x81theora") + VorbisComments({"TITLE=Title"}), 3 << 6 | 22);
}

QByteArray WavSmall(const QByteArray& id)
{
    const QByteArray info = RiffChunk("LIST", "INFO" + RiffChunk("INAM", "Title") + RiffChunk("ITRK", "3/12"));
    const QByteArray bext = RiffChunk("bext", QByteArray("Description").leftJustified(256, '\0') + QByteArray(82, '0') +
                                                  LE64(5) + LE16(2) + QByteArray(64, '\1') + LE16(0xF6A0) + LE16(500) +
                                                  LE16(0x7FFF) + LE16(1) + LE16(2) + QByteArray(180, '\0') + "A=PCM");
    const QByteArray cart = RiffChunk("cart", QByteArray("0101Cart title").leftJustified(2048, '\0') + "text");
    const QByteArray ds64 = id == "RIFF" ? QByteArray() : RiffChunk("ds64", LE64(0) + LE64(1000) + LE64(500) + LE32(0));
    return Riff("WAVE",
                ds64 + WavFmt(1, 1, 8000, 16) + bext + cart + RiffChunk("data", QByteArray(1000, 's')) + info +
                    RiffChunk("id3 ", Id3Small()),
                id);
}

QByteArray Mp4Small(bool movieLast)
{
    const QByteArray items = Mp4Atom("aART", Mp4Data(1, "Artist")) + Mp4Atom("\xA9nam", Mp4Data(1, "Title")) +
                             Mp4Atom("trkn", Mp4Data(0, QByteArray("\0\0\0\3\0\x0C\0\0", 8))) +
                             Mp4Atom("gnre", Mp4Data(0, BE16(18))) + Mp4Atom("cpil", Mp4Data(21, "\x01")) +
                             Mp4Atom("covr", Mp4Data(14, Png) + Mp4Data(14, Png)) + Mp4FreeForm("Label", "L");
    return Mp4File(items, Mp4Atom("Xtra", Mp4Xtra("WM/Mood", 8, Utf16(u"calm"_s, false))), movieLast);
}

QByteArray AsfSmall()
{
    return AsfFile(AsfContent({u"Title"_s, u"Artist"_s, u""_s, u"Words"_s, u""_s}) +
                   AsfExtended({AsfAttribute(u"WM/TrackNumber"_s, 3, LE32(3)),
                                AsfAttribute(u"WM/PartOfSet"_s, 0, Utf16(u"1/2"_s, false))},
                               2) +
                   AsfMetadata(u"WM/Picture"_s, 1, AsfPicture(3, u"image/png"_s, u"front"_s, Png)));
}

// A setup header of two modes, a short and a long one; the sound begins in the middle of a stream.
QByteArray OggVorbisPart()
{
    QByteArray bits = QByteArray("100000") + QByteArray(41, '0') + '1' + QByteArray(40, '0') + '1';
    QByteArray setup = QByteArray("\x05vorbis", 7) + "books";
    bits += QByteArray(7 - (bits.size() + 7) % 8, '0');
    for (qsizetype at = 0; at < bits.size(); at += 8) {
        int byte = 0;
        for (int i = 0; i < 8; ++i)
            byte |= (bits[at + i] - '0') << i;
        setup += static_cast<char>(byte);
    }
    return OggPage(OggFirst, 0, 7, VorbisIdentification(2, 44100, 96000)) +
           OggPage(0, 0, 7, "\x03vorbis" + VorbisComments({"TITLE=Title"}) + '\1') + OggPage(0, 0, 7, setup) +
           OggPage(0, ~quint64(0), 7, QByteArray(255, '\2'), false) +
           OggPage(OggContinued, ~quint64(0), 7, QByteArray(20, '\2')) + OggPage(0, 441000, 7, QByteArray(20, '\0')) +
           OggPage(OggLast, 441000 - (2048 + 256) / 4 + 44100, 7, QByteArray(20, '\0'));
}

QByteArray WavPackSmall()
{
    const QByteArray rate("\x27\x02\x40\x1F\0\0", 6); // 8,000 by a sub-block
    return WavPackBlock(16000, 0, 8000, 15u << 23 | 0x1800 | 1, rate + "sound") +
           WavPackBlock(16000, 8000, 8000, 15u << 23 | 0x1800 | 1, "sound") + ApeTag({ApeItem("Title", "Title")});
}

} // namespace

QList<TTagSeed> TagSeeds()
{
    const QByteArray v1 = Id3v1({"Title", "Artist", "Album", "2004", "Comment", 5, 17});
    const QByteArray ape = ApeTag({ApeItem("Title", "Title"), ApeItem("Artist", QByteArray("A\0B", 3)),
                                   ApeItem("Cover Art (Front)", QByteArray("front.png\0", 10) + Png, 2)});
    const QByteArray id3 = Id3Small();
    const QByteArray picture = "METADATA_BLOCK_PICTURE=" + FlacPicture(3, "image/png", "", Png).toBase64();
    return {
        {"ape", "a.mp3", "sound" + ape},
        {"ape", "b.mp3", "sound" + ape + Lyrics3v2({{"LYR", "words"}}) + v1},
        {"flac", "a.flac", FlacSmall()},
        {"flac", "b.flac", id3 + FlacSmall() + v1},
        {"id3v1", "a.mp3", "sound" + Lyrics3v1("words") + v1},
        {"id3v1", "b.mp3", "sound" + Lyrics3v2({{"IND", "110"}, {"LYR", "words"}, {"EAL", "Album"}}) + v1},
        {"id3v2", "a.mp3", id3 + XingFrames("Xing", 3, 3, 1700) + v1},
        {"id3v2", "b.mp3", Id3v2(4, Id3Frames(4), 0x80, 20) + MpegFrames(3)},
        {"id3v2", "c.mp3",
         Id3v2(2, Id3Frame(2, "TT2", Id3Text(0, "Title")) + Id3Frame(2, "PIC", QByteArray("\0PNG\3\0", 6) + Png))},
        {"id3v2", "d.mp3", Id3v2(3, Unsynchronise(Id3Frames(3)), 0x80) + VbriFrames(2, 2, 1200)},
        {"id3v2", "e.mp3", Id3v2(3, Id3Frame(3, "TIT2", BE32(6) + qCompress(Id3Text(0, "Title")).mid(4), 0x80))},
        {"id3v2", "a.aiff",
         Aiff("AIFC", AiffComm(1, 8000, 16, 8000, "sowt") + AiffChunk("SSND", "sound") + AiffChunk("ID3 ", id3))},
        {"id3v2", "a.dsf", Dsf(2, 2822400, 8, "sound", id3)},
        {"id3v2", "a.dff", Dff(2, 2822400, "sound", id3)},
        {"mp4", "a.m4a", Mp4Small(false)},
        {"mp4", "b.m4a", Mp4Small(true)},
        {"mp4", "c.m4a",
         Mp4File({}, {}, false, Mp4SampleEntry("ac-3", 2, 48000, Mp4Atom("dac3", QByteArray("\x10\x3D\xC0", 3))))},
        {"mp4", "d.m4a",
         Mp4File({}, {}, false, Mp4SampleEntry("ec-3", 2, 0, Mp4Atom("dec3", QByteArray("\x0C\0\x20\x0F\0", 5))))},
        {"mp4", "e.m4a",
         Mp4File({}, {}, false,
                 Mp4SampleEntry("fLaC", 2, 48000,
                                Mp4Atom("dfLa", BE32(0) + FlacBlock(0, FlacStreamInfo(96000, 2, 24, 96000), true))))},
        {"mp4", "f.m4a",
         Mp4File({}, {}, false,
                 Mp4SampleEntry("mp4a", 2, 22050, Mp4Esds(QByteArray("\x13\x88\x56\xE5\xA5\x48\x80", 7))))},
        {"ogg", "a.ogg", OggVorbis({"TITLE=Title", picture.data(), "TRACKNUMBER=3/12"})},
        {"ogg", "a.opus", OggOpus({"TITLE=Title", QByteArray("COVERART=") + Png.toBase64()})},
        {"ogg", "b.ogg", OggVorbisPart()},
        {"ogg", "a.oga", OggFlacSmall()},
        {"ogg", "a.spx", SpeexSmall()},
        {"ogg", "a.ogv", TheoraSmall()},
        {"wav", "a.wav", WavSmall("RIFF")},
        {"wav", "b.wav", WavSmall("RF64")},
        {"wma", "a.wma", AsfSmall()},
        {"wavpack", "a.wv", WavPackSmall()},
        {"musepack", "a.mpc", Musepack8(88200, 200, "sound") + ape},
        {"musepack", "b.mpc", id3 + Musepack7(100, 1, 500, "sound") + v1},
        {"musepack", "c.mpc", Musepack6(5, 100, 128, "sound")},
        {"monkey", "a.ape", MonkeyNew(3, 294912, 1000, 24, 2, 96000) + ape},
        {"monkey", "b.ape", MonkeyOld(3950, 2000, 2, 44100, 3, 1000) + v1},
    };
}

} // namespace Kestrune::Kit
