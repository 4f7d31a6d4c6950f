// SPDX-License-Identifier: GPL-3.0-or-later
#include "uMPEGplus.h"

#include <algorithm>

namespace Kestrune {

namespace {

constexpr int MusepackRates[] = {44100, 48000, 37800, 32000};
constexpr qint64 MusepackFrameSamples = 1152;
constexpr qint64 DecoderDelay = 576; // half a frame that no stream before the exact ones accounts for

// Number of SV8: seven bits a byte, most significant first.
quint64 ReadMusepackNumber(TByteReader& reader)
{
    quint64 value = 0;
    for (int i = 0; i < 9; ++i) {
        const quint8 byte = reader.U8();
        value = value << 7 | (byte & 0x7F);
        if ((byte & 0x80) == 0)
            break;
    }
    return value;
}

} // namespace

bool TMPEGplus::Load(TByteSource& source, qint64 headTagSize, qint64 tailTagSize)
{
    *this = {};
    const QByteArray header = source.Read(headTagSize, 32);
    if (header.startsWith("MPCK"))
        Valid = LoadSV8(source, headTagSize + 4);
    else if (header.startsWith("MP+"))
        Valid = LoadSV7(header);
    else
        Valid = LoadSV4To6(header);
    if (!Valid) {
        *this = {};
        return false;
    }
    if (Audio.SamplesPerSec > 0)
        Audio.PlayTime = static_cast<double>(Audio.SampleCount) / Audio.SamplesPerSec;
    if (Audio.BitRate == 0)
        Audio.BitRate = BitRateOf(source.Size() - headTagSize - tailTagSize, Audio.PlayTime);
    return true;
}

// Packets of two letters and a size that counts these too; the stream header "SH" is among the first.
bool TMPEGplus::LoadSV8(TByteSource& source, qint64 position)
{
    for (int packets = 0; packets < 64; ++packets) {
        const QByteArray bytes = source.Read(position, 64);
        TByteReader reader(bytes);
        const QByteArrayView key = reader.Bytes(2);
        const quint64 size = ReadMusepackNumber(reader);
        if (reader.Failed() || size < static_cast<quint64>(reader.Position()) ||
            size > static_cast<quint64>(source.Size() - position))
            return false;
        if (key == "SH") {
            reader.Skip(4);
            StreamVersion = reader.U8();
            const quint64 samples = ReadMusepackNumber(reader);
            const quint64 silence = ReadMusepackNumber(reader);
            const quint8 rate = reader.U8();
            const quint8 channels = reader.U8();
            if (reader.Failed() || rate >> 5 >= static_cast<int>(std::size(MusepackRates)))
                return false;
            Audio.SampleCount = static_cast<qint64>(std::min<quint64>(samples - std::min(samples, silence), INT64_MAX));
            Audio.SamplesPerSec = MusepackRates[rate >> 5];
            Audio.Channels = (channels >> 4) + 1;
            return true;
        }
        if (key == "AP" || key == "SE")
            return false;
        position += static_cast<qint64>(size);
    }
    return false;
}

bool TMPEGplus::LoadSV7(QByteArrayView header)
{
    TByteReader reader(header);
    reader.Skip(3);
    StreamVersion = reader.U8() & 15;
    const quint32 frames = reader.U32LE();
    const quint32 flags = reader.U32LE();
    reader.Skip(8);
    const quint32 last = reader.U32LE();
    if (reader.Failed() || StreamVersion < 7)
        return false;
    Audio.SamplesPerSec = MusepackRates[flags >> 16 & 3];
    Audio.Channels = 2;
    const bool exact = (last & 0x80000000) != 0;
    Audio.SampleCount = exact ? (static_cast<qint64>(frames) - 1) * MusepackFrameSamples + (last >> 20 & 0x7FF)
                              : static_cast<qint64>(frames) * MusepackFrameSamples - DecoderDelay;
    Audio.SampleCount = std::max<qint64>(Audio.SampleCount, 0);
    return true;
}

// No magic: the version in the first word must be 4 to 6, and the other fields as these encoders wrote them.
bool TMPEGplus::LoadSV4To6(QByteArrayView header)
{
    TByteReader reader(header);
    const quint32 first = reader.U32LE();
    const quint32 second = reader.U32LE();
    const int version = static_cast<int>(first >> 11 & 0x3FF);
    const quint32 blockSize = first & 0x3F;
    if (reader.Failed() || version < 4 || version > 6 || blockSize == 0 || (version > 4 && blockSize != 1))
        return false;
    StreamVersion = version;
    qint64 frames = version >= 5 ? second : second >> 16;
    if (version < 6) // the last frame of these versions is unusable
        frames = std::max<qint64>(frames - 1, 0);
    Audio.SamplesPerSec = 44100;
    Audio.Channels = 2;
    Audio.SampleCount = std::max<qint64>(frames * MusepackFrameSamples - DecoderDelay, 0);
    Audio.BitRate = static_cast<qint64>(first >> 23 & 0x1FF) * 1000;
    return true;
}

} // namespace Kestrune
