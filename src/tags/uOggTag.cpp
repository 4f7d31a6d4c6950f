// SPDX-License-Identifier: GPL-3.0-or-later
#include "uOggTag.h"

#include "ID3v2Library.h"
#include "uFilePath.h"
#include "uFlacTag.h"
#include "uOggPages.h"

#include <algorithm>
#include <optional>

namespace Kestrune {

namespace {

constexpr int MostHeaderPackets = 1024; // a file of empty packets must not keep us busy

TOggFormat FormatOfPacket(QByteArrayView packet)
{
    static constexpr std::pair<QByteArrayView, TOggFormat> magics[] = {{QByteArrayView("\x01vorbis", 7), ofVorbis},
                                                                       {QByteArrayView("OpusHead", 8), ofOpus},
                                                                       {QByteArrayView("\x7F"
                                                                                       "FLAC",
                                                                                       5),
                                                                        ofFlac},
                                                                       {QByteArrayView("Speex   ", 8), ofSpeex},
                                                                       {QByteArrayView("\x80theora", 7), ofTheora}};
    for (const auto& [magic, format] : magics)
        if (packet.startsWith(magic))
            return format;
    return ofUnknown;
}

} // namespace

void TOpusTag::Clear()
{
    const bool parse = ParseCoverArts;
    *this = {};
    ParseCoverArts = parse;
}

int TOpusTag::LoadFromFile(const QString& fileName)
{
    Clear();
    const auto source = TFileSource::Open(TextToPath(fileName));
    return source ? Load(*source) : TagResultNoFile;
}

int TOpusTag::Load(TByteSource& source)
{
    Clear();
    const qint64 start = ID3v2TagSize(source, 0);
    // The first pages name the streams, one each.
    qint64 position = start;
    std::optional<TOggPage> chosen;
    for (int i = 0; i < 64; ++i) {
        const auto page = ReadOggPage(source, position);
        if (!page || !page->First)
            break;
        const TOggFormat format = FormatOfPacket(source.Read(page->Body, 8));
        if (format != ofUnknown && (!chosen || Format == ofTheora)) {
            Format = format;
            chosen = page;
        }
        if (Format != ofUnknown && Format != ofTheora)
            break;
        position = page->End;
    }
    if (!chosen)
        return TagResultNoTag;
    FSerial = chosen->Serial;
    TOggPacketReader packets(source, chosen->Offset, FSerial);
    const auto first = packets.Next();
    if (!first || !ReadIdentification(*first))
        return TagResultCorrupt;
    int most = MostHeaderPackets;
    for (auto packet = packets.Next(); packet && ReadHeader(*packet) && --most > 0; packet = packets.Next()) {
    }
    FStart = StartOfSound(source, packets, *first);
    ReadTimes(source, packets.Position());
    return Loaded ? TagResultOk : TagResultNoTag;
}

TOggStart TOpusTag::StartOfSound(TByteSource& source, TOggPacketReader& packets, QByteArrayView identification) const
{
    constexpr qint64 largestSetup = 1024 * 1024;
    if (Format == ofOpus)
        return OpusStart(source, packets.Position(), FSerial);
    if (Format != ofVorbis)
        return {};
    const TVorbisModes modes(identification, packets.Next(largestSetup).value_or(QByteArray()));
    return VorbisStart(source, packets.Position(), FSerial, modes);
}

bool TOpusTag::ReadIdentification(QByteArrayView packet)
{
    switch (Format) {
    case ofVorbis: ReadVorbis(packet); return true;
    case ofOpus: ReadOpus(packet); return true;
    case ofSpeex: ReadSpeex(packet); return true;
    case ofTheora: ReadTheora(packet); return true;
    case ofFlac: {
        // "FLAC" mapping: versions and count of headers, then "fLaC" and the first metadata block
        TFlacStreamInfo info;
        if (packet.size() < 17 + 18 || !info.Parse(packet.sliced(17)))
            return false;
        Audio = info.Audio;
        return true;
    }
    case ofUnknown: break;
    }
    return false;
}

void TOpusTag::ReadVorbis(QByteArrayView packet)
{
    TByteReader reader(packet);
    reader.Skip(11);
    Audio.Channels = reader.U8();
    Audio.SamplesPerSec = CheckedInt(reader.U32LE());
    const int most = CheckedInt(reader.U32LE());
    const int nominal = CheckedInt(reader.U32LE());
    const int least = CheckedInt(reader.U32LE());
    // The nominal rate is what the encoder aimed at; without it the middle of its bounds is the best guess.
    Audio.BitRate = nominal > 0 ? nominal : (static_cast<qint64>(most) + least) / 2;
    FHasRate = Audio.BitRate > 0;
}

void TOpusTag::ReadOpus(QByteArrayView packet)
{
    TByteReader reader(packet);
    reader.Skip(9);
    Audio.Channels = reader.U8();
    FPreSkip = reader.U16LE();
    Audio.SamplesPerSec = 48000; // whatever the source had, the stream is coded and timed at this rate
}

void TOpusTag::ReadSpeex(QByteArrayView packet)
{
    TByteReader reader(packet);
    reader.Skip(36);
    Audio.SamplesPerSec = CheckedInt(reader.U32LE());
    reader.Skip(8);
    Audio.Channels = CheckedInt(reader.U32LE());
    Audio.BitRate = CheckedInt(reader.U32LE()); // all ones when unknown
    FHasRate = Audio.BitRate > 0;
    if (Audio.Channels > 2)
        Audio.Channels = 0;
}

void TOpusTag::ReadTheora(QByteArrayView packet)
{
    TByteReader reader(packet);
    reader.Skip(22);
    const quint32 numerator = reader.U32BE();
    const quint32 denominator = reader.U32BE();
    reader.Skip(6);                        // aspect
    reader.Skip(1);                        // colour space
    reader.Skip(3);                        // bit rate
    const quint16 packed = reader.U16BE(); // 6 bits of quality, 5 of the key frame shift
    if (reader.Failed() || denominator == 0)
        return;
    FFrameRate = static_cast<double>(numerator) / denominator;
    FGranuleShift = packed >> 5 & 31;
}

bool TOpusTag::ReadHeader(QByteArrayView packet)
{
    const auto comments = [&](qsizetype from) {
        Comments.Parse(packet.sliced(from), ParseCoverArts);
        Loaded = true;
    };
    switch (Format) {
    case ofVorbis:
        if (packet.startsWith("\x03vorbis"))
            comments(7);
        return false;
    case ofTheora:
        if (packet.startsWith("\x81theora"))
            comments(7);
        return false;
    case ofOpus:
        if (packet.startsWith("OpusTags"))
            comments(8);
        return false;
    case ofSpeex: comments(0); return false;
    case ofFlac: {
        if (packet.size() < 4 || static_cast<quint8>(packet[0]) == 0xFF)
            return false;
        const int type = packet[0] & 0x7F;
        if (type == 4)
            comments(4);
        else if (type == 6 && ParseCoverArts)
            if (auto picture = ParseFlacPicture(packet.sliced(4)))
                Comments.Pictures.push_back(std::move(*picture));
        return (packet[0] & 0x80) == 0;
    }
    case ofUnknown: break;
    }
    return false;
}

double TOpusTag::GranuleSeconds(qint64 granule) const
{
    switch (Format) {
    case ofOpus: return static_cast<double>(std::max<qint64>(granule - FPreSkip, 0)) / 48000;
    case ofTheora: {
        const qint64 key = granule >> FGranuleShift;
        const qint64 frames = key + (granule - (key << FGranuleShift));
        return FFrameRate > 0 ? static_cast<double>(frames) / FFrameRate : 0;
    }
    default: return Audio.SamplesPerSec > 0 ? static_cast<double>(granule) / Audio.SamplesPerSec : 0;
    }
}

void TOpusTag::ReadTimes(TByteSource& source, qint64 soundStart)
{
    if (Audio.PlayTime == 0) {
        qint64 granule = LastOggGranule(source, FSerial);
        if (FStart.Granule < granule) // else it is the only page, or the positions began anew
            granule -= std::max<qint64>(FStart.Granule - FStart.Samples, 0);
        Audio.PlayTime = GranuleSeconds(granule);
        if (Format != ofTheora)
            Audio.SampleCount = Format == ofOpus ? std::max<qint64>(granule - FPreSkip, 0) : granule;
    }
    if (!FHasRate)
        Audio.BitRate = BitRateOf(source.Size() - soundStart, Audio.PlayTime);
}

} // namespace Kestrune
