// SPDX-License-Identifier: GPL-3.0-or-later
#include "uContainerInfo.h"

#include <algorithm>
#include <cmath>

namespace Kestrune {

namespace {

constexpr quint16 FormatPCM = 1;
constexpr quint16 FormatFloat = 3;
constexpr quint16 FormatExtensible = 0xFFFE;
constexpr double MaximumRate = 100'000'000; // far above every sampling rate in use, far below trouble

QByteArray ChunkBytes(TByteSource& source, const TChunk& chunk, qint64 most)
{
    return source.Read(chunk.Offset, std::min(chunk.Size, most));
}

// Where a container holds a part twice, the first one counts: writers that do not find it append another.
void TakeFirst(TTagPlace& place, const TChunk& chunk)
{
    if (place.Size == 0)
        place = {chunk.Offset, chunk.Size};
}

void ReadFmt(QByteArrayView bytes, TWAVInfo& info, quint32& bytesPerSec)
{
    TByteReader reader(bytes);
    info.FormatTag = reader.U16LE();
    info.Audio.Channels = reader.U16LE();
    info.Audio.SamplesPerSec = CheckedInt(reader.U32LE());
    bytesPerSec = reader.U32LE();
    reader.Skip(2);
    info.Audio.BitsPerSample = reader.U16LE();
    if (info.FormatTag == FormatExtensible && reader.Left() >= 10) {
        reader.Skip(8);
        info.FormatTag = reader.U16LE();
    }
}

void DeriveWAVTimes(TWAVInfo& info, quint32 bytesPerSec, quint64 factSamples)
{
    TAudioAttributes& audio = info.Audio;
    const bool plain = info.FormatTag == FormatPCM || info.FormatTag == FormatFloat;
    if (plain && bytesPerSec == 0)
        bytesPerSec = static_cast<quint32>(
            CheckedInt(static_cast<quint64>(audio.SamplesPerSec) * static_cast<quint64>(audio.Channels) *
                       static_cast<quint64>((audio.BitsPerSample + 7) / 8)));
    // "fact" is right for compressed sound only: writers of plain sound leave rubbish in it.
    if (!plain && factSamples > 0 && audio.SamplesPerSec > 0) {
        audio.PlayTime = static_cast<double>(factSamples) / audio.SamplesPerSec;
        audio.SampleCount = static_cast<qint64>(std::min<quint64>(factSamples, INT64_MAX));
    } else if (bytesPerSec > 0) {
        audio.PlayTime = static_cast<double>(info.DataSize) / bytesPerSec;
        audio.SampleCount = SampleCountOf(audio.PlayTime, audio.SamplesPerSec);
    }
    audio.BitRate = bytesPerSec > 0 ? static_cast<qint64>(bytesPerSec) * 8 : BitRateOf(info.DataSize, audio.PlayTime);
}

qint64 DataSizeOf(const TChunk& chunk, quint64 size64)
{
    // A recorder that was cut off leaves 0 or all ones: then the file's own size counts, as it does for a size
    // beyond the file.
    if (chunk.Claimed == 0xFFFFFFFF && size64 > 0)
        return static_cast<qint64>(std::min<quint64>(size64, static_cast<quint64>(chunk.Size)));
    return chunk.Size;
}

void ReadComm(QByteArrayView bytes, bool compressed, TAIFFInfo& info)
{
    TByteReader reader(bytes);
    info.Audio.Channels = reader.U16BE();
    info.Audio.SampleCount = reader.U32BE();
    info.Audio.BitsPerSample = reader.U16BE();
    const double rate = ReadExtended(reader.Bytes(10));
    info.Audio.SamplesPerSec = static_cast<int>(std::llround(rate));
    if (compressed && reader.Left() >= 4)
        info.Compression = TFourCC(reader.Bytes(4));
    if (rate > 0)
        info.Audio.PlayTime = static_cast<double>(info.Audio.SampleCount) / rate;
}

TDSFChannelType DSFChannelTypeFrom(quint32 number)
{
    constexpr TDSFChannelType types[] = {dsfctUnknown, dsfctMono,      dsfctStereo,    dsfct3Channels,
                                         dsfctQuad,    dsfct4Channels, dsfct5Channels, dsfct51Channels};
    return number < std::size(types) ? types[number] : dsfctUnknown;
}

// Properties of the sound: sampling rate, channels, compression.
void ReadDFFProperties(TByteSource& source, const TChunk& prop, TDFFInfo& info)
{
    if (source.Read(prop.Offset, 4) != "SND ")
        return;
    TChunkWalker walker(source, prop.Offset + 4, prop.Offset + prop.Size, cfBig64);
    for (TChunk chunk; walker.Next(chunk);) {
        const QByteArray bytes = ChunkBytes(source, chunk, 16);
        TByteReader reader(bytes);
        if (chunk.ID == TFourCC("FS  "))
            info.Audio.SamplesPerSec = CheckedInt(reader.U32BE());
        else if (chunk.ID == TFourCC("CHNL"))
            info.Audio.Channels = reader.U16BE();
        else if (chunk.ID == TFourCC("CMPR"))
            info.Compression = TFourCC(reader.Bytes(4));
    }
}

// DST sound: the number of frames and of frames a second stand in its first chunk.
double DSTSeconds(TByteSource& source, const TChunk& dst)
{
    TChunkWalker walker(source, dst.Offset, dst.Offset + dst.Size, cfBig64);
    TChunk chunk;
    if (!walker.Next(chunk) || chunk.ID != TFourCC("FRTE"))
        return 0;
    const QByteArray bytes = ChunkBytes(source, chunk, 6);
    TByteReader reader(bytes);
    const quint32 frames = reader.U32BE();
    const quint16 rate = reader.U16BE();
    return rate > 0 ? static_cast<double>(frames) / rate : 0;
}

void DeriveDFFTimes(TDFFInfo& info, qint64 dsdSize, qint64 dstSize, double dstSeconds)
{
    TAudioAttributes& audio = info.Audio;
    audio.BitsPerSample = 1;
    if (dstSeconds > 0) {
        audio.PlayTime = dstSeconds;
        audio.SampleCount = SampleCountOf(dstSeconds, audio.SamplesPerSec);
        audio.BitRate = BitRateOf(dstSize, dstSeconds);
        return;
    }
    audio.BitRate = static_cast<qint64>(audio.SamplesPerSec) * audio.Channels;
    if (audio.Channels > 0)
        audio.SampleCount = dsdSize / audio.Channels * 8;
    if (audio.SamplesPerSec > 0)
        audio.PlayTime = static_cast<double>(audio.SampleCount) / audio.SamplesPerSec;
}

} // namespace

double ReadExtended(QByteArrayView bytes)
{
    TByteReader reader(bytes);
    const quint16 head = reader.U16BE();
    const quint64 mantissa = reader.U64BE();
    if (reader.Failed() || (head & 0x8000) != 0 || mantissa == 0 || head == 0x7FFF)
        return 0;
    const double value = std::ldexp(static_cast<double>(mantissa), static_cast<int>(head) - 16383 - 63);
    return value <= MaximumRate ? value : 0;
}

TSourceFileType ContainerAt(TByteSource& source, qint64 position)
{
    char bytes[16] = {};
    const qint64 count = source.ReadAt(position, bytes, 16);
    if (count < 12)
        return sftUnknown;
    const TFourCC id(QByteArrayView(bytes, 4));
    const TFourCC form(QByteArrayView(bytes + 8, 4));
    if (id == TFourCC("RIFF") && form == TFourCC("WAVE"))
        return sftWAVE;
    if ((id == TFourCC("RF64") || id == TFourCC("BW64")) && form == TFourCC("WAVE"))
        return sftRF64;
    if (id == TFourCC("FORM") && (form == TFourCC("AIFF") || form == TFourCC("AIFC")))
        return sftAIFF;
    if (id == TFourCC("DSD "))
        return sftDSF;
    if (id == TFourCC("FRM8") && TFourCC(QByteArrayView(bytes + 12, 4)) == TFourCC("DSD "))
        return sftDFF;
    return sftUnknown;
}

bool ReadWAVInfo(TByteSource& source, qint64 position, TWAVInfo& info)
{
    info = {};
    quint32 bytesPerSec = 0;
    quint64 size64 = 0;
    quint64 factSamples = 0;
    bool found = false;
    TChunkWalker walker(source, position + 12, source.Size(), cfLittle32);
    for (TChunk chunk; walker.Next(chunk);) {
        if (chunk.ID == TFourCC("fmt ") && !found) {
            ReadFmt(ChunkBytes(source, chunk, 40), info, bytesPerSec);
            found = true;
        } else if (chunk.ID == TFourCC("ds64")) {
            const QByteArray bytes = ChunkBytes(source, chunk, 28);
            TByteReader reader(bytes);
            reader.Skip(8);
            size64 = reader.U64LE();
        } else if (chunk.ID == TFourCC("fact")) {
            const QByteArray bytes = ChunkBytes(source, chunk, 4);
            factSamples = TByteReader(bytes).U32LE();
        } else if (chunk.ID == TFourCC("data")) {
            info.DataSize = DataSizeOf(chunk, size64);
            // Chunks may follow data of more than 4 GiB: go on behind its true end.
            if (chunk.Claimed == 0xFFFFFFFF && size64 > 0)
                walker.SkipTo(chunk.Offset + info.DataSize + info.DataSize % 2);
        } else if (chunk.ID == TFourCC("id3 ") || chunk.ID == TFourCC("ID3 ")) {
            TakeFirst(info.ID3, chunk);
        } else if (chunk.ID == TFourCC("bext")) {
            TakeFirst(info.Bext, chunk);
        } else if (chunk.ID == TFourCC("cart")) {
            TakeFirst(info.Cart, chunk);
        } else if (chunk.ID == TFourCC("LIST") && chunk.Size > 4 && source.Read(chunk.Offset, 4) == "INFO") {
            info.InfoLists.push_back({chunk.Offset, chunk.Size});
        }
    }
    DeriveWAVTimes(info, bytesPerSec, factSamples);
    return found;
}

bool ReadAIFFInfo(TByteSource& source, qint64 position, TAIFFInfo& info)
{
    info = {};
    const bool compressed = source.Read(position + 8, 4) == "AIFC";
    bool found = false;
    qint64 soundSize = 0;
    TChunkWalker walker(source, position + 12, source.Size(), cfBig32);
    for (TChunk chunk; walker.Next(chunk);) {
        if (chunk.ID == TFourCC("COMM") && !found) {
            ReadComm(ChunkBytes(source, chunk, 22), compressed, info);
            found = true;
        } else if (chunk.ID == TFourCC("SSND")) {
            soundSize = std::max<qint64>(chunk.Size - 8, 0);
        } else if (chunk.ID == TFourCC("ID3 ") || chunk.ID == TFourCC("id3 ")) {
            TakeFirst(info.ID3, chunk);
        }
    }
    const TAudioAttributes& audio = info.Audio;
    info.Audio.BitRate = compressed && soundSize > 0
                             ? BitRateOf(soundSize, audio.PlayTime)
                             : static_cast<qint64>(audio.SamplesPerSec) * audio.Channels * audio.BitsPerSample;
    return found;
}

bool ReadDSFInfo(TByteSource& source, qint64 position, TDSFInfo& info)
{
    info = {};
    const QByteArray bytes = source.Read(position, 28 + 52);
    TByteReader reader(bytes);
    reader.Skip(20);
    const quint64 pointer = reader.U64LE();
    if (pointer > 0 && pointer < static_cast<quint64>(source.Size()) - static_cast<quint64>(position)) {
        info.ID3.Offset = position + static_cast<qint64>(pointer);
        info.ID3.Size = source.Size() - info.ID3.Offset;
    }
    if (reader.Bytes(4) != "fmt ")
        return false;
    reader.Skip(16);
    TAudioAttributes& audio = info.Audio;
    info.ChannelType = DSFChannelTypeFrom(reader.U32LE());
    audio.Channels = CheckedInt(reader.U32LE());
    audio.SamplesPerSec = CheckedInt(reader.U32LE());
    audio.BitsPerSample = CheckedInt(reader.U32LE());
    const quint64 samples = reader.U64LE();
    if (reader.Failed() || audio.Channels > 64) {
        audio = {};
        return false;
    }
    audio.SampleCount = static_cast<qint64>(std::min<quint64>(samples, INT64_MAX));
    if (audio.SamplesPerSec > 0)
        audio.PlayTime = static_cast<double>(audio.SampleCount) / audio.SamplesPerSec;
    // Bits per sample tells the order of the bits in a byte (1 or 8); the stream has one bit a sample.
    audio.BitsPerSample = 1;
    audio.BitRate = static_cast<qint64>(audio.SamplesPerSec) * audio.Channels;
    return true;
}

bool ReadDFFInfo(TByteSource& source, qint64 position, TDFFInfo& info)
{
    info = {};
    bool found = false;
    qint64 dsdSize = 0;
    qint64 dstSize = 0;
    double dstSeconds = 0;
    TChunkWalker walker(source, position + 16, source.Size(), cfBig64);
    for (TChunk chunk; walker.Next(chunk);) {
        if (chunk.ID == TFourCC("PROP") && !found) {
            ReadDFFProperties(source, chunk, info);
            found = true;
        } else if (chunk.ID == TFourCC("DSD ")) {
            dsdSize = chunk.Size;
        } else if (chunk.ID == TFourCC("DST ")) {
            dstSize = chunk.Size;
            dstSeconds = DSTSeconds(source, chunk);
        } else if (chunk.ID == TFourCC("ID3 ")) {
            TakeFirst(info.ID3, chunk);
        }
    }
    DeriveDFFTimes(info, dsdSize, dstSize, dstSeconds);
    return found;
}

} // namespace Kestrune
