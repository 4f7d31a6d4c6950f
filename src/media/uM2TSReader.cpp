// SPDX-License-Identifier: GPL-3.0-or-later
#include "uM2TSReader.h"

#include "uFilePath.h"
#include "uM2TSTables.h"
#include "uProgramStream.h"

#include <algorithm>
#include <array>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int TSPacketSize = 188;
constexpr int BlurayPacketSize = 192; // with four bytes of arrival time before each packet
constexpr char SyncByte = 0x47;
constexpr int SyncsAsked = 5;
constexpr qint64 HeadLength = 16 * 1024 * 1024;
constexpr qint64 TailLength = 1024 * 1024; // the first look; four times as much each time
constexpr qint64 LongestTail = 64 * 1024 * 1024;
constexpr double TicksOfSecond = 90000.0;
constexpr qint64 TimeWrap = qint64(1) << 33;
constexpr int CoreExtension = 0x76; // stream_id_extension of the AC-3 that goes along with TrueHD

struct TTSPacket {
    quint16 PID = 0;
    bool Starts = false; // a section or PES packet begins in it
    QByteArrayView Payload;
};

// False for packets that carry nothing we can read.
bool ParsePacket(QByteArrayView bytes, TTSPacket& packet)
{
    TByteReader reader(bytes);
    if (reader.U8() != SyncByte)
        return false;
    const quint16 flags = reader.U16BE();
    const quint8 control = reader.U8();
    packet.PID = flags & 0x1FFF;
    packet.Starts = (flags & 0x4000) != 0;
    if ((flags & 0x8000) != 0 || (control & 0xC0) != 0 || (control & 0x10) == 0) // broken, scrambled, empty
        return false;
    if ((control & 0x20) != 0)
        reader.Skip(reader.U8());
    packet.Payload = reader.Rest();
    return !reader.Failed() && !packet.Payload.isEmpty();
}

// Seconds that the last access unit of a stream lasts.
double UnitLength(TM2TSCodec codec)
{
    switch (codec) {
    case mcAC3:
    case mcEAC3: return 0.032;
    case mcDTS:
    case mcDTSHD: return 512 / 48000.0;
    case mcMPEG: return 0.024;
    case mcAAC: return 1024 / 48000.0;
    default: return 0;
    }
}

} // namespace

QString M2TSCodecName(TM2TSCodec codec)
{
    static const std::array names{u"unknown"_s, u"LPCM"_s,   u"AC-3"_s, u"E-AC-3"_s, u"DTS"_s,
                                  u"DTS-HD"_s,  u"TrueHD"_s, u"MPEG"_s, u"AAC"_s};
    return names[static_cast<size_t>(codec)];
}

bool TM2TSReader::Open(const QString& filePath) { return Open(TFileSource::Open(TextToPath(filePath))); }

bool TM2TSReader::OpenWindow(const QString& filePath, qint64 offset, qint64 length)
{
    Close();
    std::unique_ptr<TByteSource> file = TFileSource::Open(TextToPath(filePath));
    if (!file)
        return false;
    auto window = std::make_shared<TWindowSource>(*file, offset, length);
    const bool opened = Open(window);
    FFile = std::move(file);
    if (!opened)
        Close();
    return opened;
}

bool TM2TSReader::Open(std::shared_ptr<TByteSource> stream)
{
    Close();
    FStream = std::move(stream);
    if (!FStream || !FindPackets() || !ReadTables()) {
        Close();
        return false;
    }
    ReadDuration();
    return true;
}

void TM2TSReader::Close()
{
    FStream.reset();
    FFile.reset();
    FStart = 0;
    FPacketSize = 0;
    FStreams.clear();
    FDuration = 0;
}

bool TM2TSReader::FindPackets()
{
    const QByteArray head = FStream->Read(0, BlurayPacketSize * (SyncsAsked + 1));
    for (const int size : {BlurayPacketSize, TSPacketSize}) {
        for (int start = size - TSPacketSize; start < size + 4 && start < head.size(); ++start) {
            int syncs = 0;
            qsizetype at = start;
            for (; at < head.size() && head[at] == SyncByte; at += size)
                ++syncs;
            if (syncs >= SyncsAsked || (syncs > 0 && at >= head.size())) {
                FStart = start;
                FPacketSize = size;
                return true;
            }
        }
    }
    return false;
}

void TM2TSReader::ForEachPacket(qint64 from, qint64 to, const TPacketHandler& handler) const
{
    constexpr qint64 packetsAtOnce = 1024;
    for (qint64 at = from; at < to;) {
        const QByteArray bytes = FStream->Read(at, std::min(packetsAtOnce * FPacketSize, to - at));
        qsizetype p = 0;
        for (; p + TSPacketSize <= bytes.size(); p += FPacketSize)
            if (!handler(QByteArrayView(bytes).sliced(p, TSPacketSize)))
                return;
        if (bytes.size() < packetsAtOnce * FPacketSize)
            return;
        at += p;
    }
}

bool TM2TSReader::ReadTables()
{
    TM2TSTables tables(FPacketSize == BlurayPacketSize);
    ForEachPacket(FStart, std::min(FStart + HeadLength, FStream->Size()), [&](QByteArrayView bytes) {
        TTSPacket packet;
        return !ParsePacket(bytes, packet) || tables.Take(packet.PID, packet.Starts, packet.Payload);
    });
    FStreams = tables.Streams();
    return !FStreams.empty();
}

const TM2TSStream* TM2TSReader::FindStream(TM2TSCodec codec) const
{
    const auto found = std::ranges::find(FStreams, codec, &TM2TSStream::Codec);
    return found == FStreams.end() ? nullptr : &*found;
}

const TM2TSStream* TM2TSReader::Chosen() const
{
    for (const TM2TSCodec codec : {mcTrueHD, mcAC3})
        if (const TM2TSStream* stream = FindStream(codec))
            return stream;
    return FStreams.empty() ? nullptr : &FStreams.front();
}

TM2TSCodec TM2TSReader::AudioCodec() const
{
    const TM2TSStream* stream = Chosen();
    return stream ? stream->Codec : mcUnknown;
}

std::optional<qint64> TM2TSReader::TimeStampIn(qint64 from, qint64 to, bool last) const
{
    std::optional<qint64> found;
    const quint16 pid = Chosen()->PID;
    ForEachPacket(from, to, [&](QByteArrayView bytes) {
        TTSPacket packet;
        TPESHeader header;
        if (ParsePacket(bytes, packet) && packet.PID == pid && packet.Starts &&
            ParsePESHeader(packet.Payload, header) && header.PTS >= 0)
            found = header.PTS;
        return last || !found;
    });
    return found;
}

void TM2TSReader::ReadDuration()
{
    const qint64 end = FStream->Size();
    const auto first = TimeStampIn(FStart, std::min(FStart + HeadLength, end), false);
    if (!first)
        return;
    std::optional<qint64> last;
    for (qint64 tail = TailLength; !last && tail <= LongestTail; tail *= 4) {
        const qint64 packets = std::max<qint64>(end - FStart - tail, 0) / FPacketSize;
        last = TimeStampIn(FStart + packets * FPacketSize, end, true);
        if (packets == 0)
            break;
    }
    if (!last)
        return;
    const qint64 ticks = *last >= *first ? *last - *first : *last + TimeWrap - *first;
    FDuration = static_cast<double>(ticks) / TicksOfSecond + UnitLength(AudioCodec());
}

bool TM2TSReader::Extract(quint16 pid, const std::function<void(int extensionID, QByteArrayView payload)>& take) const
{
    QByteArray pes;
    bool any = false;
    const auto finish = [&] {
        TPESHeader header;
        if (ParsePESHeader(pes, header) && header.Length < pes.size()) {
            take(header.ExtensionID, QByteArrayView(pes).sliced(header.Length));
            any = true;
        }
        pes.clear();
    };
    ForEachPacket(FStart, FStream->Size(), [&](QByteArrayView bytes) {
        TTSPacket packet;
        if (!ParsePacket(bytes, packet) || packet.PID != pid)
            return true;
        if (packet.Starts)
            finish();
        if (packet.Starts || !pes.isEmpty())
            pes.append(packet.Payload);
        return true;
    });
    finish();
    return any;
}

namespace {

bool IsCore(int extensionID, QByteArrayView payload)
{
    return extensionID == CoreExtension || (extensionID < 0 && payload.startsWith(QByteArrayView("\x0B\x77", 2)));
}

} // namespace

bool TM2TSReader::ExtractTrueHD(QByteArray& out) const
{
    out.clear();
    const TM2TSStream* stream = FStream ? FindStream(mcTrueHD) : nullptr;
    if (!stream)
        return false;
    Extract(stream->PID, [&](int extensionID, QByteArrayView payload) {
        if (!IsCore(extensionID, payload))
            out.append(payload);
    });
    const qint64 sync = FindMLPSync(out);
    if (sync < 0) {
        out.clear();
        return false;
    }
    out.remove(0, sync);
    return true;
}

bool TM2TSReader::ExtractAC3Core(QByteArray& out) const
{
    out.clear();
    if (!FStream)
        return false;
    if (const TM2TSStream* stream = FindStream(mcAC3)) {
        Extract(stream->PID, [&](int, QByteArrayView payload) { out.append(payload); });
    } else if (const TM2TSStream* carrier = FindStream(mcTrueHD)) {
        Extract(carrier->PID, [&](int extensionID, QByteArrayView payload) {
            if (IsCore(extensionID, payload))
                out.append(payload);
        });
    }
    const qsizetype sync = out.indexOf(QByteArrayView("\x0B\x77", 2));
    out = sync < 0 ? QByteArray() : out.mid(sync);
    return !out.isEmpty();
}

} // namespace Kestrune
