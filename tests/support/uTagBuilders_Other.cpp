// SPDX-License-Identifier: GPL-3.0-or-later
#include "uTagBuilders.h"

namespace Kestrune::Kit {

namespace {

QByteArray SizedLE32(const QByteArray& bytes) { return LE32(static_cast<quint32>(bytes.size())) + bytes; }

QByteArray ApeEdge(quint32 size, quint32 count, quint32 flags)
{
    return "APETAGEX" + LE32(2000) + LE32(size) + LE32(count) + LE32(flags) + QByteArray(8, '\0');
}

QByteArray AsfText(const QString& text) { return Utf16(text, false) + QByteArray(2, '\0'); }

constexpr char AsfHeaderId[] = "3026b2758e66cf11a6d900aa0062ce6c";
constexpr char AsfFileId[] = "a1dcab8c47a9cf118ee400c00c205365";
constexpr char AsfStreamId[] = "9107dcb7b7a9cf118ee600c00c205365";
constexpr char AsfAudioId[] = "409e69f84d5bcf11a8fd00805f5c442b";

} // namespace

QByteArray ApeItem(const QByteArray& key, const QByteArray& value, quint32 flags)
{
    return LE32(static_cast<quint32>(value.size())) + LE32(flags) + key + '\0' + value;
}

QByteArray ApeTag(const QList<QByteArray>& items, int sizeDelta)
{
    const QByteArray body = items.join();
    const auto size = static_cast<quint32>(body.size() + 32 + sizeDelta);
    const auto count = static_cast<quint32>(items.size());
    return ApeEdge(size, count, 0xA0000000) + body + ApeEdge(size, count, 0x80000000);
}

QByteArray OggPage(quint8 flags, quint64 granule, quint32 serial, const QByteArray& packet, bool complete)
{
    QByteArray lacing(packet.size() / 255, '\xFF');
    if (complete)
        lacing += static_cast<char>(packet.size() % 255);
    return QByteArray("OggS\0", 5) + static_cast<char>(flags) + LE64(granule) + LE32(serial) + LE32(0) + LE32(0) +
           static_cast<char>(lacing.size()) + lacing + packet;
}

QByteArray OggStream(const QByteArray& identification, const QByteArray& comments, quint64 granule, quint32 serial)
{
    constexpr qsizetype most = 255 * 250;
    QByteArray out = OggPage(OggFirst, 0, serial, identification);
    qsizetype at = 0;
    for (; comments.size() - at > most; at += most)
        out += OggPage(at > 0 ? OggContinued : 0, ~quint64(0), serial, comments.mid(at, most), false);
    out += OggPage(at > 0 ? OggContinued : 0, 0, serial, comments.mid(at));
    return out + OggPage(OggLast, granule, serial, QByteArray(1000, 's'));
}

QByteArray VorbisIdentification(int channels, int rate, int nominal)
{
    return QByteArray("\x01vorbis", 7) + LE32(0) + static_cast<char>(channels) + LE32(static_cast<quint32>(rate)) +
           LE32(0) + LE32(static_cast<quint32>(nominal)) + LE32(0) + QByteArray("\xB8\x01", 2);
}

QByteArray OpusIdentification(int channels, int preSkip)
{
    return QByteArray("OpusHead\x01", 9) + static_cast<char>(channels) + LE16(static_cast<quint32>(preSkip)) +
           LE32(44100) + LE16(0) + '\0';
}

QByteArray OggVorbis(const QList<QByteArray>& comments)
{
    return OggStream(VorbisIdentification(2, 44100, 96000), "\x03vorbis" + VorbisComments(comments) + '\x01', 88200);
}

QByteArray OggOpus(const QList<QByteArray>& comments)
{
    return OggStream(OpusIdentification(2, 312), "OpusTags" + VorbisComments(comments), 48000 + 312);
}

QByteArray Mp4Atom(const QByteArray& name, const QByteArray& content)
{
    return BE32(static_cast<quint32>(content.size() + 8)) + name + content;
}

QByteArray Mp4Data(quint32 type, const QByteArray& value) { return Mp4Atom("data", BE32(type) + BE32(0) + value); }

QByteArray Mp4FreeForm(const QByteArray& name, const QByteArray& text)
{
    return Mp4Atom("----",
                   Mp4Atom("mean", BE32(0) + "com.apple.iTunes") + Mp4Atom("name", BE32(0) + name) + Mp4Data(1, text));
}

QByteArray Mp4Xtra(const QByteArray& name, quint16 type, const QByteArray& value)
{
    const QByteArray entry = BE32(static_cast<quint32>(name.size())) + name + BE32(1) +
                             BE32(static_cast<quint32>(value.size() + 6)) + BE16(type) + value;
    return BE32(static_cast<quint32>(entry.size() + 4)) + entry;
}

QByteArray Mp4Esds(const QByteArray& config)
{
    return Mp4Atom("esds", BE32(0) + QByteArray("\x03\x19\0\0\0\x04\x11\x40\x15\0\0\0", 12) + BE32(0) + BE32(64000) +
                               '\x05' + static_cast<char>(config.size()) + config);
}

QByteArray Mp4SampleEntry(const QByteArray& name, int channels, int rate, const QByteArray& codec)
{
    return Mp4Atom(name, QByteArray(6, '\0') + BE16(1) + QByteArray(8, '\0') + BE16(static_cast<quint32>(channels)) +
                             BE16(16) + BE32(0) + BE16(static_cast<quint32>(rate)) + BE16(0) + codec);
}

QByteArray Mp4File(const QByteArray& items, const QByteArray& userData, bool movieLast, const QByteArray& sampleEntry)
{
    const QByteArray entry =
        sampleEntry.isEmpty() ? Mp4SampleEntry("mp4a", 2, 44100, Mp4Esds("\x12\x10")) : sampleEntry;
    const QByteArray table = Mp4Atom("stbl", Mp4Atom("stsd", BE32(0) + BE32(1) + entry));
    const QByteArray media = Mp4Atom("mdhd", BE32(0) + BE32(0) + BE32(0) + BE32(44100) + BE32(44100) + BE32(0)) +
                             Mp4Atom("hdlr", BE32(0) + BE32(0) + "soun" + QByteArray(13, '\0')) +
                             Mp4Atom("minf", table);
    const QByteArray meta = Mp4Atom(
        "meta", BE32(0) + Mp4Atom("hdlr", BE32(0) + BE32(0) + "mdir" + QByteArray(13, '\0')) + Mp4Atom("ilst", items));
    const QByteArray movie =
        Mp4Atom("moov", Mp4Atom("mvhd", BE32(0) + BE32(0) + BE32(0) + BE32(1000) + BE32(1000) + QByteArray(80, '\0')) +
                            Mp4Atom("trak", Mp4Atom("mdia", media)) + Mp4Atom("udta", meta + userData));
    const QByteArray sound = Mp4Atom("mdat", QByteArray(8000, 's'));
    return Mp4Atom("ftyp", "M4A " + BE32(0)) + (movieLast ? sound + movie : movie + sound);
}

QByteArray AsfObject(const char* id, const QByteArray& content)
{
    return QByteArray::fromHex(id) + LE64(static_cast<quint64>(content.size() + 24)) + content;
}

QByteArray AsfContent(const QStringList& texts)
{
    QByteArray sizes;
    QByteArray body;
    for (const QString& text : texts) {
        sizes += LE16(static_cast<quint32>(AsfText(text).size()));
        body += AsfText(text);
    }
    return AsfObject("3326b2758e66cf11a6d900aa0062ce6c", sizes + body);
}

QByteArray AsfAttribute(const QString& name, quint16 type, const QByteArray& value)
{
    return LE16(static_cast<quint32>(AsfText(name).size())) + AsfText(name) + LE16(type) +
           LE16(static_cast<quint32>(value.size())) + value;
}

QByteArray AsfExtended(const QList<QByteArray>& attributes, quint16 count)
{
    return AsfObject("40a4d0d207e3d21197f000a0c95ea850", LE16(count) + attributes.join());
}

QByteArray AsfMetadata(const QString& name, quint16 type, const QByteArray& value)
{
    const QByteArray record = LE16(0) + LE16(0) + LE16(static_cast<quint32>(AsfText(name).size())) + LE16(type) +
                              LE32(static_cast<quint32>(value.size())) + AsfText(name) + value;
    const QByteArray library = AsfObject("941c23449894d149a1411d134e457054", LE16(1) + record);
    return AsfObject("b503bf5f2ea9cf118ee300c00c205365", QByteArray(18, '\0') + SizedLE32(library));
}

QByteArray AsfPicture(int type, const QString& mime, const QString& description, const QByteArray& picture)
{
    return QByteArray(1, static_cast<char>(type)) + LE32(static_cast<quint32>(picture.size())) + AsfText(mime) +
           AsfText(description) + picture;
}

QByteArray AsfFile(const QByteArray& objects)
{
    const QByteArray file = AsfObject(AsfFileId, QByteArray(40, '\0') + LE64(35'000'000) + LE64(0) + LE64(1000) +
                                                     LE32(2) + LE32(0) + LE32(0) + LE32(64000));
    const QByteArray wave = LE16(0x161) + LE16(2) + LE32(44100) + LE32(8000) + LE16(4) + LE16(16) + LE16(0);
    const QByteArray stream = AsfObject(AsfStreamId, QByteArray::fromHex(AsfAudioId) + QByteArray(16 + 8, '\0') +
                                                         LE32(18) + LE32(0) + LE16(1) + LE32(0) + wave);
    const QByteArray body = LE32(3) + QByteArray("\x01\x02", 2) + file + stream + objects;
    return AsfObject(AsfHeaderId, body) + "sound";
}

QByteArray WavPackBlock(quint32 total, quint32 index, quint32 samples, quint32 flags, const QByteArray& body)
{
    return "wvpk" + LE32(static_cast<quint32>(24 + body.size())) + LE16(0x410) + LE16(0) + LE32(total) + LE32(index) +
           LE32(samples) + LE32(flags) + LE32(0) + body;
}

QByteArray Musepack8(quint32 samples, quint32 silence, const QByteArray& sound)
{
    const auto number = [](quint32 value) {
        QByteArray out(1, static_cast<char>(value & 0x7F));
        for (value >>= 7; value > 0; value >>= 7)
            out.prepend(static_cast<char>((value & 0x7F) | 0x80));
        return out;
    };
    const QByteArray content = LE32(0) + '\x08' + number(samples) + number(silence) + QByteArray("\x1F\x13", 2);
    return "MPCKSH" + number(static_cast<quint32>(content.size() + 3)) + content + "AP" + sound;
}

QByteArray Musepack7(quint32 frames, int rateIndex, int lastFrame, const QByteArray& sound)
{
    const quint32 last = lastFrame > 0 ? 0x80000000 | static_cast<quint32>(lastFrame) << 20 : 0;
    return QByteArray("MP+\x07", 4) + LE32(frames) + LE32(static_cast<quint32>(rateIndex) << 16) + QByteArray(8, '\0') +
           LE32(last) + sound;
}

QByteArray Musepack6(int version, quint32 frames, int kilobits, const QByteArray& sound)
{
    const quint32 first = static_cast<quint32>(kilobits) << 23 | static_cast<quint32>(version) << 11 | 1;
    return LE32(first) + LE32(version >= 5 ? frames : frames << 16) + sound;
}

QByteArray MonkeyNew(quint32 frames, quint32 blocks, quint32 finalBlocks, int bits, int channels, int rate)
{
    return "MAC " + LE16(3990) + LE16(0) + LE32(52) + LE32(24) + QByteArray(36, '\0') + LE16(2000) + LE16(0) +
           LE32(blocks) + LE32(finalBlocks) + LE32(frames) + LE16(static_cast<quint32>(bits)) +
           LE16(static_cast<quint32>(channels)) + LE32(static_cast<quint32>(rate)) + QByteArray(100, 's');
}

QByteArray MonkeyOld(int version, int level, int channels, int rate, quint32 frames, quint32 finalBlocks)
{
    return "MAC " + LE16(static_cast<quint32>(version)) + LE16(static_cast<quint32>(level)) + LE16(0) +
           LE16(static_cast<quint32>(channels)) + LE32(static_cast<quint32>(rate)) + LE32(44) + LE32(0) + LE32(frames) +
           LE32(finalBlocks) + QByteArray(100, 's');
}

} // namespace Kestrune::Kit
