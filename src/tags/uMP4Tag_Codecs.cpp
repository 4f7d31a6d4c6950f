// SPDX-License-Identifier: GPL-3.0-or-later
#include "uFlacTag.h"
#include "uMP4Tag_p.h"

#include <algorithm>

namespace Kestrune {

namespace {

// Kinds of AAC streams.
constexpr quint32 BandReplication = 5;
constexpr quint32 ParametricStereo = 29;

// Length of a descriptor (ISO/IEC 14496-1, section 8.3.3): seven bits a byte, at most four.
quint32 DescriptorLength(TByteReader& reader)
{
    quint32 length = 0;
    for (int i = 0; i < 4; ++i) {
        const quint8 byte = reader.U8();
        length = length << 7 | (byte & 0x7F);
        if ((byte & 0x80) == 0)
            break;
    }
    return length;
}

// Reads numbers of some bits, the first one highest; zero past the end.
class TBitReader {
public:
    explicit TBitReader(QByteArrayView bytes) : FBytes(bytes) {}
    quint32 Take(int count)
    {
        quint32 value = 0;
        for (; count > 0; --count, ++FPosition) {
            const qsizetype byte = FPosition / 8;
            const int bit = byte < FBytes.size() ? FBytes[byte] >> (7 - FPosition % 8) & 1 : 0;
            value = value << 1 | static_cast<quint32>(bit);
        }
        return value;
    }
    qsizetype Left() const { return FBytes.size() * 8 - FPosition; }

private:
    QByteArrayView FBytes;
    qsizetype FPosition = 0;
};

quint32 AacObjectType(TBitReader& bits)
{
    const quint32 type = bits.Take(5);
    return type == 31 ? 32 + bits.Take(6) : type;
}

int AacSampleRate(TBitReader& bits)
{
    constexpr int rates[] = {96000, 88200, 64000, 48000, 44100, 32000, 24000, 22050, 16000, 12000, 11025, 8000, 7350};
    const quint32 index = bits.Take(4);
    if (index == 15)
        return static_cast<int>(bits.Take(24));
    return index < std::size(rates) ? rates[index] : 0;
}

// What stands behind the configuration for players that know of it: the rate with band replication, and whether one
// channel is coded for two. In between are fields of many lengths; the mark is looked for instead.
void ReadAacExtension(TBitReader bits, bool isMono, TAudioAttributes& audio)
{
    constexpr quint32 rateMark = 0x2B7;
    constexpr quint32 stereoMark = 0x548;
    constexpr int markBits = 11;
    for (; bits.Left() > markBits + 5; bits.Take(1)) {
        TBitReader extension = bits;
        if (extension.Take(markBits) != rateMark || AacObjectType(extension) != BandReplication)
            continue;
        const int rate = extension.Take(1) != 0 ? AacSampleRate(extension) : 0;
        if (rate > 0)
            audio.SamplesPerSec = rate;
        if (rate > 0 && isMono && extension.Take(markBits) == stereoMark && extension.Take(1) != 0)
            audio.Channels = 2;
        return;
    }
}

// The configuration of an AAC stream (ISO/IEC 14496-3, section 1.6.2.1): rate and channels as they are played, where
// the sample description often states two channels for one.
void ReadAacConfig(QByteArrayView bytes, TAudioAttributes& audio)
{
    TBitReader bits(bytes);
    const quint32 type = AacObjectType(bits);
    int rate = AacSampleRate(bits);
    const int layout = static_cast<int>(bits.Take(4));
    if (type == BandReplication || type == ParametricStereo)
        rate = AacSampleRate(bits);
    if (type == 0 || rate <= 0)
        return;
    audio.SamplesPerSec = rate;
    if (layout > 0 && layout < 8)
        audio.Channels = type == ParametricStereo ? 2 : layout == 7 ? 8 : layout;
    if (type != BandReplication && type != ParametricStereo)
        ReadAacExtension(bits, layout == 1, audio);
}

// An "esds" atom (ISO/IEC 14496-1, section 7.2.6): average bit rate, and the configuration of AAC.
void ReadElementaryStream(QByteArrayView bytes, TAudioAttributes& audio)
{
    TByteReader reader(bytes);
    reader.Skip(4);
    if (reader.U8() != 3)
        return;
    DescriptorLength(reader);
    reader.Skip(2);
    const quint8 flags = reader.U8();
    reader.Skip((flags & 0x80) != 0 ? 2 : 0);
    if ((flags & 0x40) != 0)
        reader.Skip(reader.U8());
    reader.Skip((flags & 0x20) != 0 ? 2 : 0);
    if (reader.U8() != 4)
        return;
    DescriptorLength(reader);
    const quint8 kind = reader.U8();
    reader.Skip(1 + 3); // stream type, buffer size
    reader.U32BE();     // highest bit rate
    audio.BitRate = reader.U32BE();
    if (kind != 0x40 || reader.U8() != 5)
        return;
    const QByteArrayView config = reader.Bytes(std::min<qint64>(DescriptorLength(reader), reader.Left()));
    if (config.size() >= 2)
        ReadAacConfig(config, audio);
}

void ReadAlacCookie(QByteArrayView bytes, TAudioAttributes& audio)
{
    TByteReader reader(bytes);
    reader.Skip(4 + 4 + 1);
    const quint8 bits = reader.U8();
    reader.Skip(3);
    const quint8 channels = reader.U8();
    reader.Skip(2 + 4);
    const quint32 bitRate = reader.U32BE();
    const quint32 rate = reader.U32BE();
    if (reader.Failed())
        return;
    audio.BitsPerSample = bits;
    audio.Channels = channels;
    audio.BitRate = CheckedInt(bitRate);
    audio.SamplesPerSec = CheckedInt(rate);
}

constexpr int AC3Rates[] = {48000, 44100, 32000};

// Channels of an AC-3 stream by its audio coding mode and the flag of the low frequencies.
int AC3Channels(quint32 mode, quint32 lowFrequencies)
{
    constexpr int channels[] = {2, 1, 2, 3, 3, 4, 4, 5};
    return channels[mode & 7] + static_cast<int>(lowFrequencies);
}

// A "dac3" atom (ETSI TS 102 366, annex F.4).
void ReadAC3(QByteArrayView bytes, TAudioAttributes& audio)
{
    constexpr qint64 kilobits[] = {32,  40,  48,  56,  64,  80,  96,  112, 128, 160,
                                   192, 224, 256, 320, 384, 448, 512, 576, 640};
    TBitReader bits(bytes);
    const quint32 rate = bits.Take(2);
    bits.Take(5 + 3); // stream identification, kind of service
    const quint32 mode = bits.Take(3);
    const quint32 lowFrequencies = bits.Take(1);
    const quint32 code = bits.Take(5);
    if (bits.Left() < 0 || rate >= std::size(AC3Rates) || code >= std::size(kilobits))
        return;
    audio.SamplesPerSec = AC3Rates[rate];
    audio.Channels = AC3Channels(mode, lowFrequencies);
    audio.BitRate = kilobits[code] * 1000;
}

// A "dec3" atom (annex F.6): the data rate of all substreams, then the first of these, which plays by itself. With
// others that depend on it there are more channels: then the sample description tells how many.
void ReadEAC3(QByteArrayView bytes, TAudioAttributes& audio)
{
    TBitReader bits(bytes);
    const quint32 kilobits = bits.Take(13);
    bits.Take(3); // number of substreams
    const quint32 rate = bits.Take(2);
    bits.Take(5 + 1 + 1 + 3);
    const quint32 mode = bits.Take(3);
    const quint32 lowFrequencies = bits.Take(1);
    if (bits.Left() < 0)
        return;
    audio.BitRate = static_cast<qint64>(kilobits) * 1000;
    if (rate < std::size(AC3Rates))
        audio.SamplesPerSec = AC3Rates[rate];
    bits.Take(3);
    const int channels = AC3Channels(mode, lowFrequencies);
    audio.Channels = bits.Take(4) == 0 ? channels : std::max(channels, audio.Channels);
}

// A "dfLa" atom: version and flags, then the metadata blocks of the stream, STREAMINFO first. Rates above 65,535 have
// no room in the sample description.
void ReadFlacBlocks(QByteArrayView bytes, TAudioAttributes& audio)
{
    constexpr qsizetype start = 4 + 4;
    TFlacStreamInfo info;
    if (bytes.size() <= start || (bytes[4] & 0x7F) != 0 || !info.Parse(bytes.sliced(start)))
        return;
    audio.SamplesPerSec = info.Audio.SamplesPerSec;
    audio.Channels = info.Audio.Channels;
    audio.BitsPerSample = info.Audio.BitsPerSample;
}

} // namespace

void ReadMP4Codec(TByteSource& source, const TMP4Box& entry, qint64 inner, TAudioAttributes& audio)
{
    struct TCodec {
        TFourCC Entry;
        TFourCC Box;
        void (*Read)(QByteArrayView bytes, TAudioAttributes& audio);
    };
    static constexpr TCodec codecs[] = {{"alac", "alac", ReadAlacCookie},
                                        {"ac-3", "dac3", ReadAC3},
                                        {"ec-3", "dec3", ReadEAC3},
                                        {"fLaC", "dfLa", ReadFlacBlocks}};
    constexpr qint64 most = 64; // what is read of a description
    const auto codec = std::ranges::find(codecs, entry.Name, &TCodec::Entry);
    if (codec != std::end(codecs)) {
        if (const auto box = FindMP4Box(source, inner, entry.End, codec->Box))
            codec->Read(source.Read(box->Offset, std::min(box->End - box->Offset, most)), audio);
        return;
    }
    auto descriptor = FindMP4Box(source, inner, entry.End, "esds");
    if (!descriptor) {
        if (const auto wave = FindMP4Box(source, inner, entry.End, "wave"))
            descriptor = FindMP4Box(source, wave->Offset, wave->End, "esds");
    }
    if (descriptor)
        ReadElementaryStream(source.Read(descriptor->Offset, most), audio);
}

} // namespace Kestrune
