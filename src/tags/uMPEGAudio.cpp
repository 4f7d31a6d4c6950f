// SPDX-License-Identifier: GPL-3.0-or-later
#include "uMPEGAudio.h"

#include "uTagTypes.h"

#include <algorithm>
#include <cmath>

namespace Kestrune {

namespace {

// Kilobits per second by [MPEG 1 layers 1, 2, 3; MPEG 2 layer 1; MPEG 2 layers 2 and 3][index]; 0 is free format.
constexpr int MPEGBitRates[5][16] = {
    {0, 32, 64, 96, 128, 160, 192, 224, 256, 288, 320, 352, 384, 416, 448, -1},
    {0, 32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384, -1},
    {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, -1},
    {0, 32, 48, 56, 64, 80, 96, 112, 128, 144, 160, 176, 192, 224, 256, -1},
    {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160, -1},
};

constexpr int MPEGSampleRates[3] = {44100, 48000, 32000};

int BitRateRow(TMPEGVersion version, int layer)
{
    if (version == tmpegv1)
        return layer - 1;
    return layer == 1 ? 3 : 4;
}

int SamplesPerFrame(TMPEGVersion version, int layer)
{
    if (layer == 1)
        return 384;
    return layer == 3 && version != tmpegv1 ? 576 : 1152;
}

int FrameSize(const TMPEGFrame& frame)
{
    const int padding = frame.Padding ? 1 : 0;
    if (frame.Layer == tmpegl1)
        return (12 * frame.BitRate / frame.SampleRate + padding) * 4;
    return frame.Samples / 8 * frame.BitRate / frame.SampleRate + padding;
}

// Fields that every frame of one stream shares.
bool SameStream(const TMPEGFrame& a, const TMPEGFrame& b)
{
    return a.Version == b.Version && a.Layer == b.Layer && a.SampleRate == b.SampleRate;
}

// A part of the file in memory: junk may hold a header at every third byte, each of which asks for its successors.
struct TPart {
    qint64 Start = 0;
    QByteArray Bytes;
};

quint32 HeaderAt(const TPart& part, qint64 position)
{
    const qint64 at = position - part.Start;
    return at + 4 <= part.Bytes.size() ? TByteReader(QByteArrayView(part.Bytes).sliced(at, 4)).U32BE() : 0;
}

// Whether `count` frames follow the one at `position`, as far as the audio goes. The first successor must be there.
bool HasSuccessors(const TPart& part, qint64 position, qint64 audioEnd, TMPEGFrame frame, int count)
{
    const TMPEGFrame first = frame;
    for (int i = 0; i < count; ++i) {
        position += frame.Size;
        if (position + 4 > audioEnd)
            return i > 0;
        if (!ParseMPEGFrame(HeaderAt(part, position), frame) || !SameStream(first, frame))
            return false;
    }
    return true;
}

// A file of a single frame has no successor to ask: it must fill the audio part exactly.
bool IsOnlyFrame(qint64 position, qint64 start, qint64 audioEnd, const TMPEGFrame& frame)
{
    return position == start && position + frame.Size == audioEnd;
}

bool FindFirstFrame(TByteSource& source, qint64 start, qint64 searchLength, qint64 audioEnd, TMPEGInfo& info)
{
    constexpr qint64 step = 4096;
    constexpr qint64 successors = 2 * 2881 + 4; // two of the largest frames: layer 2, 160 kbit/s at 8,000 Hz
    const qint64 last = std::min(start + searchLength, audioEnd - 4);
    for (qint64 base = start; base <= last; base += step) {
        const TPart part{base, source.Read(base, step + successors)};
        const QByteArray& bytes = part.Bytes;
        const qsizetype count = std::min({step, bytes.size() - 3, last - base + 1});
        for (qsizetype i = 0; i < count; ++i) {
            i = bytes.indexOf('\xFF', i);
            if (i < 0 || i >= count)
                break;
            TMPEGFrame frame;
            if (!ParseMPEGFrame(TByteReader(QByteArrayView(bytes).sliced(i, 4)).U32BE(), frame))
                continue;
            const qint64 position = base + i;
            // Junk holds a header-like pair now and then, a third one in its place hardly ever.
            if (!HasSuccessors(part, position, audioEnd, frame, position == start ? 1 : 2) &&
                !IsOnlyFrame(position, start, audioEnd, frame))
                continue;
            info.Frame = frame;
            info.Position = position;
            return true;
        }
    }
    return false;
}

int SideInfoSize(const TMPEGFrame& frame)
{
    const bool mono = frame.ChannelMode == tmpegcmMono;
    if (frame.Version == tmpegv1)
        return mono ? 17 : 32;
    return mono ? 9 : 17;
}

// The header that encoders put into the first frame in place of audio: magic, flags, then the count of frames (flag 1)
// and of bytes (flag 2).
bool ReadXing(QByteArrayView frame, qsizetype offset, TMPEGInfo& info)
{
    if (offset > frame.size())
        return false;
    TByteReader reader(frame.sliced(offset));
    const QByteArrayView magic = reader.Bytes(4);
    if (magic != "Xing" && magic != "Info")
        return false;
    const quint32 flags = reader.U32BE();
    const quint32 frames = flags & 1 ? reader.U32BE() : 0;
    const quint32 bytes = flags & 2 ? reader.U32BE() : 0;
    if (reader.Failed())
        return false;
    info.VBR = magic == "Xing";
    info.FrameCount = frames;
    info.ByteCount = bytes;
    return true;
}

// The header of another encoder, 32 bytes after the frame header: version, delay, quality, bytes, frames.
bool ReadVBRI(QByteArrayView frame, TMPEGInfo& info)
{
    TByteReader reader(frame);
    reader.Skip(4 + 32);
    if (reader.Bytes(4) != "VBRI")
        return false;
    reader.Skip(6);
    const quint32 bytes = reader.U32BE();
    const quint32 frames = reader.U32BE();
    if (reader.Failed())
        return false;
    info.VBR = true;
    info.FrameCount = frames;
    info.ByteCount = bytes;
    return true;
}

void ReadRateHeader(TByteSource& source, TMPEGInfo& info)
{
    if (info.Frame.Layer != tmpegl3)
        return;
    const QByteArray frame = source.Read(info.Position, std::min(info.Frame.Size, 256));
    const qsizetype offset = 4 + SideInfoSize(info.Frame);
    if (!ReadXing(frame, offset, info) && !ReadXing(frame, offset + 2, info))
        ReadVBRI(frame, info);
}

void DeriveTimes(TMPEGInfo& info, qint64 audioEnd)
{
    const TMPEGFrame& frame = info.Frame;
    const qint64 audioSize = std::max<qint64>(audioEnd - info.Position, 0);
    if (info.FrameCount == 0) {
        info.BitRate = frame.BitRate;
        info.PlayTime = static_cast<double>(audioSize) * 8 / frame.BitRate;
        info.SampleCount = SampleCountOf(info.PlayTime, frame.SampleRate);
        return;
    }
    info.SampleCount = static_cast<qint64>(info.FrameCount) * frame.Samples;
    info.PlayTime = static_cast<double>(info.SampleCount) / frame.SampleRate;
    // The frame of the header counts among the bytes, not among the frames.
    const qint64 bytes = info.ByteCount > 0 ? static_cast<qint64>(info.ByteCount) : audioSize;
    info.BitRate = BitRateOf(bytes - frame.Size, info.PlayTime);
    if (info.BitRate == 0)
        info.BitRate = frame.BitRate;
}

TMPEGVersion VersionFromBits(quint32 bits)
{
    switch (bits) {
    case 0: return tmpegv25;
    case 2: return tmpegv2;
    case 3: return tmpegv1;
    default: return tmpegvUnknown;
    }
}

TMPEGChannelMode ChannelModeFromBits(quint32 bits)
{
    switch (bits) {
    case 0: return tmpegcmStereo;
    case 1: return tmpegcmJointStereo;
    case 2: return tmpegcmDualChannel;
    default: return tmpegcmMono;
    }
}

TMPEGModeExtension ModeExtensionFromBits(quint32 bits)
{
    switch (bits) {
    case 0: return tmpegmeNone;
    case 1: return tmpegmeIntensity;
    case 2: return tmpegmeMS;
    default: return tmpegmeIntensityMS;
    }
}

TMPEGEmphasis EmphasisFromBits(quint32 bits)
{
    switch (bits) {
    case 0: return tmpegeNo;
    case 1: return tmpege5015;
    case 3: return tmpegeCCITJ17;
    default: return tmpegeUnknown;
    }
}

} // namespace

bool ParseMPEGFrame(quint32 header, TMPEGFrame& frame)
{
    const TMPEGVersion version = VersionFromBits(header >> 19 & 3);
    const int layer = 4 - static_cast<int>(header >> 17 & 3);
    const quint32 rateIndex = header >> 10 & 3;
    if (header >> 21 != 0x7FF || version == tmpegvUnknown || layer == 4 || rateIndex == 3)
        return false;
    const int bitRate = MPEGBitRates[BitRateRow(version, layer)][header >> 12 & 15];
    if (bitRate <= 0)
        return false;
    frame.Version = version;
    frame.Layer = layer == 1 ? tmpegl1 : layer == 2 ? tmpegl2 : tmpegl3;
    frame.Protected = (header >> 16 & 1) == 0;
    frame.BitRate = bitRate * 1000;
    frame.SampleRate = MPEGSampleRates[rateIndex] / (version == tmpegv1 ? 1 : version == tmpegv2 ? 2 : 4);
    frame.Padding = (header >> 9 & 1) != 0;
    frame.ChannelMode = ChannelModeFromBits(header >> 6 & 3);
    frame.ModeExtension =
        frame.ChannelMode == tmpegcmJointStereo ? ModeExtensionFromBits(header >> 4 & 3) : tmpegmeNone;
    frame.Copyrighted = (header >> 3 & 1) != 0;
    frame.Original = (header >> 2 & 1) != 0;
    frame.Emphasis = EmphasisFromBits(header & 3);
    frame.Samples = SamplesPerFrame(version, layer);
    frame.Size = FrameSize(frame);
    return true;
}

bool ReadMPEGInfo(TByteSource& source, qint64 start, qint64 searchLength, qint64 audioEnd, TMPEGInfo& info)
{
    info = {};
    if (!FindFirstFrame(source, start, searchLength, audioEnd, info))
        return false;
    ReadRateHeader(source, info);
    DeriveTimes(info, audioEnd);
    return true;
}

int MPEGChannels(TMPEGChannelMode mode)
{
    switch (mode) {
    case tmpegcmMono: return 1;
    case tmpegcmDualChannel:
    case tmpegcmJointStereo:
    case tmpegcmStereo: return 2;
    case tmpegcmUnknown: break;
    }
    return 0;
}

} // namespace Kestrune
