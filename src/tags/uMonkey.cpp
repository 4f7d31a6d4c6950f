// SPDX-License-Identifier: GPL-3.0-or-later
#include "uMonkey.h"

namespace Kestrune {

namespace {

constexpr int FirstNewVersion = 3980;
constexpr quint16 Flag8Bit = 1;
constexpr quint16 Flag24Bit = 8;
constexpr int ExtraHigh = 4000;

quint32 OldBlocksPerFrame(int version, int level)
{
    if (version >= 3950)
        return 73728 * 4;
    return version >= 3900 || (version >= 3800 && level == ExtraHigh) ? 73728 : 9216;
}

} // namespace

bool TMonkey::Load(TByteSource& source, qint64 headTagSize, qint64 tailTagSize)
{
    *this = {};
    const QByteArray header = source.Read(headTagSize, 76);
    TByteReader reader(header);
    if (reader.Bytes(4) != "MAC ")
        return false;
    Version = reader.U16LE();
    Valid = !reader.Failed() && (Version >= FirstNewVersion ? LoadNew(source, headTagSize) : LoadOld(header));
    if (!Valid) {
        *this = {};
        return false;
    }
    if (Audio.SamplesPerSec > 0)
        Audio.PlayTime = static_cast<double>(Audio.SampleCount) / Audio.SamplesPerSec;
    Audio.BitRate = BitRateOf(source.Size() - headTagSize - tailTagSize, Audio.PlayTime);
    return true;
}

// A descriptor tells its own length; the header follows it.
bool TMonkey::LoadNew(TByteSource& source, qint64 position)
{
    const QByteArray descriptor = source.Read(position + 8, 4);
    const quint32 size = TByteReader(descriptor).U32LE();
    const QByteArray bytes = source.Read(position + size, 24);
    TByteReader reader(bytes);
    CompressionLevel = reader.U16LE();
    reader.Skip(2);
    const quint32 blocks = reader.U32LE();
    const quint32 finalBlocks = reader.U32LE();
    const quint32 total = reader.U32LE();
    Audio.BitsPerSample = reader.U16LE();
    Audio.Channels = reader.U16LE();
    Audio.SamplesPerSec = CheckedInt(reader.U32LE());
    SetFrames(total, blocks, finalBlocks);
    return !reader.Failed();
}

bool TMonkey::LoadOld(QByteArrayView header)
{
    TByteReader reader(header);
    reader.Skip(6);
    CompressionLevel = reader.U16LE();
    const quint16 flags = reader.U16LE();
    Audio.Channels = reader.U16LE();
    Audio.SamplesPerSec = CheckedInt(reader.U32LE());
    reader.Skip(8);
    const quint32 total = reader.U32LE();
    const quint32 finalBlocks = reader.U32LE();
    Audio.BitsPerSample = (flags & Flag8Bit) != 0 ? 8 : (flags & Flag24Bit) != 0 ? 24 : 16;
    SetFrames(total, OldBlocksPerFrame(Version, CompressionLevel), finalBlocks);
    return !reader.Failed();
}

void TMonkey::SetFrames(quint32 total, quint32 blocksPerFrame, quint32 finalBlocks)
{
    // The product of two lies may reach 2^64.
    const quint64 whole = static_cast<quint64>(total > 0 ? total - 1 : 0) * blocksPerFrame;
    if (total > 0 && whole < quint64(1) << 62)
        Audio.SampleCount = static_cast<qint64>(whole) + finalBlocks;
}

} // namespace Kestrune
