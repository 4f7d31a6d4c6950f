// SPDX-License-Identifier: GPL-3.0-or-later
#include "uWAVPackfile.h"

#include <algorithm>
#include <iterator>
#include <optional>

namespace Kestrune {

namespace {

constexpr qint64 WavPackHeaderSize = 32;
constexpr quint32 FlagMono = 0x4;
constexpr quint32 FlagHybrid = 0x8;
constexpr quint32 FlagInitial = 0x800;
constexpr quint32 FlagFinal = 0x1000;
constexpr quint32 FlagDSD = 0x80000000;
constexpr int WavPackRates[] = {6000,  8000,  9600,  11025, 12000, 16000, 22050, 24000,
                                32000, 44100, 48000, 64000, 88200, 96000, 192000};

struct TWavPackBlock {
    qint64 Body = 0;
    qint64 End = 0;
    quint16 Version = 0;
    qint64 TotalSamples = -1; // -1 unknown
    qint64 Index = 0;         // of the block's first sample
    quint32 Samples = 0;
    quint32 Flags = 0;
};

std::optional<TWavPackBlock> ParseWavPackBlock(QByteArrayView bytes, qint64 position)
{
    TByteReader reader(bytes);
    if (bytes.size() < WavPackHeaderSize || reader.Bytes(4) != "wvpk")
        return std::nullopt;
    TWavPackBlock block;
    const quint32 size = reader.U32LE();
    block.Version = reader.U16LE();
    const quint8 indexHigh = reader.U8();
    const quint8 totalHigh = reader.U8();
    const quint32 total = reader.U32LE();
    const quint32 index = reader.U32LE();
    block.Samples = reader.U32LE();
    block.Flags = reader.U32LE();
    if (block.Version < 0x402 || block.Version > 0x410 || size < WavPackHeaderSize - 8)
        return std::nullopt;
    // 40 bits; one high step is 2^32 - 1, since all ones below mean an unknown total
    if (total != 0xFFFFFFFF)
        block.TotalSamples = total + (static_cast<qint64>(totalHigh) << 32) - totalHigh;
    block.Index = index + (static_cast<qint64>(indexHigh) << 32);
    block.Body = position + WavPackHeaderSize;
    block.End = position + 8 + size;
    return block;
}

std::optional<TWavPackBlock> ReadWavPackBlock(TByteSource& source, qint64 position)
{
    char bytes[WavPackHeaderSize];
    return ParseWavPackBlock({bytes, source.ReadAt(position, bytes, WavPackHeaderSize)}, position);
}

struct TWavPackExtra {
    int Rate = 0;
    int DSDFactor = 1;
};

// Sub-blocks with a sampling rate outside the table and with the factor of a DSD rate.
TWavPackExtra ReadWavPackSubBlocks(TByteSource& source, const TWavPackBlock& block)
{
    constexpr qint64 far = 4096; // the small ones come first
    TWavPackExtra extra;
    const QByteArray bytes = source.Read(block.Body, std::min(block.End - block.Body, far));
    TByteReader reader(bytes);
    while (reader.Left() >= 2) {
        const quint8 id = reader.U8();
        qint64 size = reader.U8();
        if ((id & 0x80) != 0)
            size |= static_cast<qint64>(reader.U16LE()) << 8;
        TByteReader content(reader.Bytes(std::min(size * 2, reader.Left())));
        if ((id & 0x3F) == 0x27 && size * 2 >= 3) {
            const int low = content.U16LE();
            extra.Rate = low | content.U8() << 16;
        } else if ((id & 0x3F) == 0x0E) {
            const int shift = content.U8();
            extra.DSDFactor = shift < 8 ? 1 << shift : 1;
        }
    }
    return extra;
}

// Samples up to the end of the last block, for a stream whose total was not written.
qint64 SamplesFromEnd(TByteSource& source, qint64 end)
{
    constexpr qint64 far = 1 << 20;
    const qint64 start = std::max<qint64>(0, end - far);
    const QByteArray bytes = source.Read(start, end - start);
    for (qsizetype at = bytes.lastIndexOf("wvpk"); at >= 0; at = at > 0 ? bytes.lastIndexOf("wvpk", at - 1) : -1)
        if (const auto block = ParseWavPackBlock(QByteArrayView(bytes).sliced(at), start + at);
            block && block->Samples > 0)
            return block->Index + block->Samples;
    return 0;
}

} // namespace

bool TWAVPackfile::Load(TByteSource& source, qint64 tagSize)
{
    *this = {};
    const auto first = ReadWavPackBlock(source, 0);
    if (!first)
        return false;
    Version = first->Version;
    IsDSD = (first->Flags & FlagDSD) != 0;
    IsHybrid = (first->Flags & FlagHybrid) != 0;
    const TWavPackExtra extra = ReadWavPackSubBlocks(source, *first);
    const quint32 rateIndex = first->Flags >> 23 & 15;
    Audio.SamplesPerSec = rateIndex < std::size(WavPackRates) ? WavPackRates[rateIndex] : extra.Rate;
    Audio.BitsPerSample = static_cast<int>((first->Flags & 3) + 1) * 8 - static_cast<int>(first->Flags >> 13 & 31);
    // More than two channels stand in several blocks of one or two each.
    auto block = first;
    for (int i = 0; i < 256 && block; ++i) {
        Audio.Channels += (block->Flags & FlagMono) != 0 ? 1 : 2;
        if ((block->Flags & FlagFinal) != 0)
            break;
        block = ReadWavPackBlock(source, block->End);
        if (block && (block->Flags & FlagInitial) != 0)
            break;
    }
    Audio.SampleCount =
        first->TotalSamples >= 0 ? first->TotalSamples : SamplesFromEnd(source, source.Size() - tagSize);
    if (Audio.SamplesPerSec > 0)
        Audio.PlayTime = static_cast<double>(Audio.SampleCount) / Audio.SamplesPerSec;
    if (IsDSD) {
        // The stream counts bytes of eight samples.
        const qint64 factor = 8 * static_cast<qint64>(extra.DSDFactor);
        Audio.SamplesPerSec = CheckedInt(static_cast<quint64>(Audio.SamplesPerSec) * static_cast<quint64>(factor));
        Audio.PlayTime /= extra.DSDFactor;
        Audio.SampleCount *= 8;
        Audio.BitsPerSample = 1;
    }
    Audio.BitRate = BitRateOf(source.Size() - tagSize, Audio.PlayTime);
    Valid = true;
    return true;
}

} // namespace Kestrune
