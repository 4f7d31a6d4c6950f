// SPDX-License-Identifier: GPL-3.0-or-later
#include "uDebugLog.h"
#include "uISOReader.h"
#include "uSACDReader.h"

#include <algorithm>
#include <array>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype DSFBlock = 4096;
constexpr quint8 AudioPacket = 2; // data type of a packet (Scarlet Book, part 2, audio sectors)

void LogDSF(const QString& text) { DebugLog(u"[SACD] "_s + text); }

// The sound of a track as it lies on the disc: bytes of both channels in turn.
struct TDSDFrames {
    QByteArray Bytes;
    int Frames = 0;
};

// An audio sector begins with a byte of counts, two bytes per packet (start of frame, kind, length) and the times of
// the frames that begin in it; the packets follow.
void TakeSector(const QByteArray& sector, TDSDFrames& frames)
{
    TByteReader reader(sector);
    const quint8 head = reader.U8();
    const int packets = head >> 5;
    const int starts = head >> 2 & 7;
    const bool compressed = (head & 1) != 0;
    std::array<quint16, 7> infos = {};
    for (int i = 0; i < packets; ++i)
        infos[static_cast<size_t>(i)] = reader.U16BE();
    reader.Skip(starts * (compressed ? 4 : 3));
    for (int i = 0; i < packets && !reader.Failed(); ++i) {
        const quint16 info = infos[static_cast<size_t>(i)];
        const QByteArrayView bytes = reader.Bytes(info & 0x7FF);
        if ((info >> 11 & 7) != AudioPacket)
            continue;
        if ((info & 0x8000) != 0) {
            // What stands before the first frame belongs to the track before; channels begin anew with each frame.
            if (frames.Frames == 0)
                frames.Bytes.clear();
            frames.Bytes.chop(frames.Bytes.size() % 2);
            ++frames.Frames;
        }
        frames.Bytes.append(bytes);
    }
}

char ReversedBits(char byte)
{
    quint8 value = static_cast<quint8>(byte);
    value = static_cast<quint8>((value & 0xF0) >> 4 | (value & 0x0F) << 4);
    value = static_cast<quint8>((value & 0xCC) >> 2 | (value & 0x33) << 2);
    return static_cast<char>((value & 0xAA) >> 1 | (value & 0x55) << 1);
}

class TLittleEndian {
public:
    void Text(const char* text) { FBytes += text; }
    void U32(quint32 value) { Put(value, 4); }
    void U64(quint64 value) { Put(value, 8); }
    QByteArray& Bytes() { return FBytes; }

private:
    void Put(quint64 value, int count)
    {
        for (; count > 0; --count, value >>= 8)
            FBytes += static_cast<char>(value & 0xFF);
    }
    QByteArray FBytes;
};

QByteArray BuildDSF(const QByteArray& interleaved, quint32 rate)
{
    constexpr quint32 channels = 2;
    constexpr qsizetype headSize = 28 + 52 + 12;
    const qsizetype perChannel = interleaved.size() / channels;
    const qsizetype blocks = (perChannel + DSFBlock - 1) / DSFBlock;
    const qsizetype soundSize = blocks * DSFBlock * channels;
    TLittleEndian file;
    file.Text("DSD ");
    file.U64(28);
    file.U64(static_cast<quint64>(headSize + soundSize));
    file.U64(0); // no tag
    file.Text("fmt ");
    file.U64(52);
    file.U32(1); // version
    file.U32(0); // DSD raw
    file.U32(2); // stereo
    file.U32(channels);
    file.U32(rate);
    file.U32(1); // lowest bit first
    file.U64(static_cast<quint64>(perChannel) * 8);
    file.U32(static_cast<quint32>(DSFBlock));
    file.U32(0);
    file.Text("data");
    file.U64(static_cast<quint64>(12 + soundSize));
    QByteArray& bytes = file.Bytes();
    bytes.resize(headSize + soundSize, '\0');
    for (qsizetype i = 0; i < perChannel; ++i)
        for (qsizetype channel = 0; channel < 2; ++channel)
            bytes[headSize + (i / DSFBlock * 2 + channel) * DSFBlock + i % DSFBlock] =
                ReversedBits(interleaved[2 * i + channel]);
    return bytes;
}

} // namespace

bool TSACDReader::ExtractTrackToDSF(int trackIdx, QByteArray& dsfBuf) const
{
    dsfBuf.clear();
    if (!FStream || trackIdx < 0 || trackIdx >= static_cast<int>(FTracks.size()))
        return false;
    const TSACDTrackInfo& track = FTracks[static_cast<size_t>(trackIdx)];
    if (track.DSTEncoded) {
        LogDSF(u"DST-encoded track not supported (needs DST decoder)"_s);
        return false;
    }
    if (track.Channels != 2) {
        LogDSF(u"Unsupported channel count %1 (stereo only)"_s.arg(track.Channels));
        return false;
    }
    TDSDFrames frames;
    const qint64 sectors = FStream->Size() / DiscSectorSize;
    const qint64 end = std::min<qint64>(qint64(track.StartLSN) + track.LengthLSN, sectors);
    QByteArray sector(DiscSectorSize, Qt::Uninitialized);
    for (qint64 at = track.StartLSN; at < end; ++at) {
        if (FStream->ReadAt(at * DiscSectorSize, sector.data(), DiscSectorSize) != DiscSectorSize)
            break;
        TakeSector(sector, frames);
    }
    frames.Bytes.chop(frames.Bytes.size() % 2);
    LogDSF(u"Extract track=%1 sectors=%2 frames=%3 ch0=%4 ch1=%5"_s.arg(track.TrackNo)
               .arg(track.LengthLSN)
               .arg(frames.Frames)
               .arg(frames.Bytes.size() / 2)
               .arg(frames.Bytes.size() / 2));
    if (frames.Bytes.isEmpty())
        return false;
    dsfBuf = BuildDSF(frames.Bytes, track.DSDRate);
    LogDSF(u"Built DSF for track %1: %2 bytes"_s.arg(track.TrackNo).arg(dsfBuf.size()));
    return true;
}

} // namespace Kestrune
