// SPDX-License-Identifier: GPL-3.0-or-later
#include "uTagBuilders.h"

namespace Kestrune::Kit {

namespace {

QByteArray Number(quint64 value, int bytes, bool bigEndian)
{
    QByteArray out;
    for (int i = 0; i < bytes; ++i)
        out += static_cast<char>(value >> 8 * (bigEndian ? bytes - 1 - i : i));
    return out;
}

QByteArray Padded(const QByteArray& text, int size) { return text.leftJustified(size, '\0', true); }

QByteArray MpegHeader() { return QByteArray("\xFF\xFB\x90\x44", 4); } // joint stereo

} // namespace

QByteArray BE16(quint32 value) { return Number(value, 2, true); }
QByteArray BE24(quint32 value) { return Number(value, 3, true); }
QByteArray BE32(quint32 value) { return Number(value, 4, true); }
QByteArray BE64(quint64 value) { return Number(value, 8, true); }
QByteArray LE16(quint32 value) { return Number(value, 2, false); }
QByteArray LE32(quint32 value) { return Number(value, 4, false); }
QByteArray LE64(quint64 value) { return Number(value, 8, false); }

QByteArray SyncSafe32(quint32 value)
{
    QByteArray out;
    for (int shift = 21; shift >= 0; shift -= 7)
        out += static_cast<char>(value >> shift & 0x7F);
    return out;
}

QByteArray Utf16(const QString& text, bool bigEndian)
{
    QByteArray out;
    for (const QChar c : text)
        out += Number(c.unicode(), 2, bigEndian);
    return out;
}

QByteArray Id3v1(const TId3v1Fields& fields)
{
    QByteArray tag = "TAG" + Padded(fields.Title, 30) + Padded(fields.Artist, 30) + Padded(fields.Album, 30) +
                     Padded(fields.Year, 4) + Padded(fields.Comment, 30) + static_cast<char>(fields.Genre);
    if (fields.Track > 0) {
        tag[125] = 0;
        tag[126] = static_cast<char>(fields.Track);
    }
    return tag;
}

QByteArray Lyrics3v1(const QByteArray& text) { return "LYRICSBEGIN" + text + "LYRICSEND"; }

QByteArray Lyrics3v2(std::initializer_list<std::pair<const char*, QByteArray>> fields)
{
    QByteArray tag = "LYRICSBEGIN";
    for (const auto& [id, text] : fields)
        tag += id + QByteArray::number(text.size()).rightJustified(5, '0') + text;
    return tag + QByteArray::number(tag.size()).rightJustified(6, '0') + "LYRICS200";
}

QByteArray Id3v2(int major, const QByteArray& frames, quint8 flags, int padding, int sizeDelta)
{
    const QByteArray body = frames + QByteArray(padding, '\0');
    QByteArray header = "ID3";
    header += static_cast<char>(major);
    header += '\0';
    header += static_cast<char>(flags);
    return header + SyncSafe32(static_cast<quint32>(body.size() + sizeDelta)) + body;
}

QByteArray Id3Frame(int major, const QByteArray& id, const QByteArray& content, quint16 flags)
{
    const auto size = static_cast<quint32>(content.size());
    if (major == 2)
        return id + BE24(size) + content;
    return id + (major == 4 ? SyncSafe32(size) : BE32(size)) + BE16(flags) + content;
}

QByteArray Id3Text(quint8 encoding, const QByteArray& text)
{
    return QByteArray(1, static_cast<char>(encoding)) + text;
}

QByteArray Id3Picture(const QByteArray& mime, int type, const QByteArray& description, const QByteArray& picture)
{
    return QByteArray(1, '\0') + mime + '\0' + static_cast<char>(type) + description + '\0' + picture;
}

QByteArray Unsynchronise(const QByteArray& bytes)
{
    QByteArray out;
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        out += bytes[i];
        const auto next = static_cast<quint8>(i + 1 < bytes.size() ? bytes[i + 1] : 0);
        if (static_cast<quint8>(bytes[i]) == 0xFF && (next >= 0xE0 || next == 0))
            out += '\0';
    }
    return out;
}

QByteArray MpegFrames(int count)
{
    QByteArray out;
    int remainder = 0; // 128,000 bits in 1,152 samples fill 417.96 bytes: most frames are padded by one
    for (int i = 0; i < count; ++i) {
        remainder += 144 * 128000 % 44100;
        const bool padded = remainder >= 44100;
        remainder -= padded ? 44100 : 0;
        QByteArray frame = MpegHeader();
        frame[2] = static_cast<char>(0x90 | (padded ? 2 : 0));
        out += frame + QByteArray(413 + (padded ? 1 : 0), '\0');
    }
    return out;
}

QByteArray XingFrames(const QByteArray& magic, int count, quint32 statedFrames, quint32 statedBytes)
{
    const QByteArray first =
        MpegHeader() + QByteArray(32, '\0') + magic + BE32(3) + BE32(statedFrames) + BE32(statedBytes);
    return first.leftJustified(417, '\0') + MpegFrames(count);
}

QByteArray VbriFrames(int count, quint32 statedFrames, quint32 statedBytes)
{
    const QByteArray first = MpegHeader() + QByteArray(32, '\0') + "VBRI" + BE16(1) + BE16(0) + BE16(75) +
                             BE32(statedBytes) + BE32(statedFrames);
    return first.leftJustified(417, '\0') + MpegFrames(count);
}

QByteArray VorbisComments(const QList<QByteArray>& comments, const QByteArray& vendor)
{
    QByteArray out = LE32(static_cast<quint32>(vendor.size())) + vendor + LE32(static_cast<quint32>(comments.size()));
    for (const QByteArray& comment : comments)
        out += LE32(static_cast<quint32>(comment.size())) + comment;
    return out;
}

QByteArray FlacBlock(int type, const QByteArray& content, bool last)
{
    return QByteArray(1, static_cast<char>(type | (last ? 0x80 : 0))) + BE24(static_cast<quint32>(content.size())) +
           content;
}

QByteArray FlacStreamInfo(int rate, int channels, int bits, quint64 samples)
{
    const quint64 packed = static_cast<quint64>(rate) << 44 | static_cast<quint64>(channels - 1) << 41 |
                           static_cast<quint64>(bits - 1) << 36 | samples;
    return BE16(4096) + BE16(4096) + BE24(0) + BE24(0) + BE64(packed) + QByteArray(16, '\0');
}

QByteArray FlacPicture(int type, const QByteArray& mime, const QByteArray& description, const QByteArray& picture,
                       int width, int height, int depth, int colors)
{
    QByteArray out = BE32(static_cast<quint32>(type)) + BE32(static_cast<quint32>(mime.size())) + mime +
                     BE32(static_cast<quint32>(description.size())) + description;
    for (const int number : {width, height, depth, colors})
        out += BE32(static_cast<quint32>(number));
    return out + BE32(static_cast<quint32>(picture.size())) + picture;
}

QByteArray RiffChunk(const QByteArray& id, const QByteArray& content)
{
    return id + LE32(static_cast<quint32>(content.size())) + content + QByteArray(content.size() % 2, '\0');
}

QByteArray Riff(const QByteArray& form, const QByteArray& chunks, const QByteArray& id)
{
    return id + LE32(id == "RIFF" ? static_cast<quint32>(chunks.size() + 4) : 0xFFFFFFFF) + form + chunks;
}

QByteArray WavFmt(int format, int channels, int rate, int bits)
{
    const int block = channels * bits / 8;
    return RiffChunk("fmt ", LE16(static_cast<quint32>(format)) + LE16(static_cast<quint32>(channels)) +
                                 LE32(static_cast<quint32>(rate)) + LE32(static_cast<quint32>(rate * block)) +
                                 LE16(static_cast<quint32>(block)) + LE16(static_cast<quint32>(bits)));
}

QByteArray AiffChunk(const QByteArray& id, const QByteArray& content)
{
    return id + BE32(static_cast<quint32>(content.size())) + content + QByteArray(content.size() % 2, '\0');
}

QByteArray Aiff(const QByteArray& form, const QByteArray& chunks)
{
    return "FORM" + BE32(static_cast<quint32>(chunks.size() + 4)) + form + chunks;
}

QByteArray AiffComm(int channels, quint32 frames, int bits, int rate, const QByteArray& compression)
{
    // The rate as an extended number: exponent so that the top bit of the mantissa is set.
    quint64 mantissa = static_cast<quint64>(rate);
    quint32 exponent = 16383 + 63;
    for (; mantissa >> 63 == 0; --exponent)
        mantissa <<= 1;
    QByteArray content = BE16(static_cast<quint32>(channels)) + BE32(frames) + BE16(static_cast<quint32>(bits)) +
                         BE16(exponent) + BE64(mantissa);
    if (!compression.isEmpty())
        content += compression + QByteArray(2, '\0');
    return AiffChunk("COMM", content);
}

QByteArray Dsf(int channels, int rate, quint64 samples, const QByteArray& sound, const QByteArray& id3)
{
    const QByteArray fmt = "fmt " + LE64(52) + LE32(1) + LE32(0) + LE32(static_cast<quint32>(channels)) +
                           LE32(static_cast<quint32>(channels)) + LE32(static_cast<quint32>(rate)) + LE32(1) +
                           LE64(samples) + LE32(4096) + LE32(0);
    const QByteArray data = "data" + LE64(12 + static_cast<quint64>(sound.size())) + sound;
    const auto size = static_cast<quint64>(28 + fmt.size() + data.size());
    return "DSD " + LE64(28) + LE64(size + static_cast<quint64>(id3.size())) + LE64(id3.isEmpty() ? 0 : size) + fmt +
           data + id3;
}

QByteArray DffChunk(const QByteArray& id, const QByteArray& content)
{
    return id + BE64(static_cast<quint64>(content.size())) + content + QByteArray(content.size() % 2, '\0');
}

QByteArray Dff(int channels, int rate, const QByteArray& sound, const QByteArray& id3)
{
    const QByteArray prop = "SND " + DffChunk("FS  ", BE32(static_cast<quint32>(rate))) +
                            DffChunk("CHNL", BE16(static_cast<quint32>(channels)) + "SLFTSRGT") +
                            DffChunk("CMPR", "DSD " + QByteArray(1, 14) + "not compressed" + '\0');
    QByteArray body = "DSD " + DffChunk("FVER", BE32(0x01050000)) + DffChunk("PROP", prop) + DffChunk("DSD ", sound);
    if (!id3.isEmpty())
        body += DffChunk("ID3 ", id3);
    return "FRM8" + BE64(static_cast<quint64>(body.size())) + body;
}

} // namespace Kestrune::Kit
