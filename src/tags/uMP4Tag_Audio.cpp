// SPDX-License-Identifier: GPL-3.0-or-later
#include "uMP4Tag_p.h"

#include <algorithm>

namespace Kestrune {

namespace {

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

// The configuration of an AAC stream (ISO/IEC 14496-3, section 1.6.2.1): rate and channels as they are played, where
// the sample description often states two channels for one.
void ReadAacConfig(QByteArrayView bytes, TAudioAttributes& audio)
{
    constexpr quint32 bandReplication = 5;
    constexpr quint32 parametricStereo = 29;
    TBitReader bits(bytes);
    const quint32 type = AacObjectType(bits);
    int rate = AacSampleRate(bits);
    const int layout = static_cast<int>(bits.Take(4));
    if (type == bandReplication || type == parametricStereo)
        rate = AacSampleRate(bits);
    if (type == 0 || rate <= 0)
        return;
    audio.SamplesPerSec = rate;
    if (layout > 0 && layout < 8)
        audio.Channels = type == parametricStereo ? 2 : layout == 7 ? 8 : layout;
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

// The first sample description of a sound track. QuickTime has longer forms (versions 1 and 2) of the same head.
void ReadSampleEntry(TByteSource& source, const TMP4Box& stsd, TAudioAttributes& audio)
{
    TMP4Walker walker(source, stsd.Offset + 8, stsd.End);
    TMP4Box entry;
    if (!walker.Next(entry))
        return;
    const QByteArray bytes = source.Read(entry.Offset, std::min<qint64>(entry.End - entry.Offset, 64));
    TByteReader reader(bytes);
    reader.Skip(8);
    const quint16 version = reader.U16BE();
    reader.Skip(6);
    audio.Channels = reader.U16BE();
    audio.BitsPerSample = reader.U16BE();
    reader.Skip(4);
    audio.SamplesPerSec = reader.U16BE();
    const qint64 extra = version == 1 ? 16 : version == 2 ? 36 : 0;
    const qint64 inner = entry.Offset + 28 + extra;
    if (entry.Name == TFourCC("alac")) {
        if (const auto cookie = FindMP4Box(source, inner, entry.End, "alac"))
            ReadAlacCookie(source.Read(cookie->Offset, 28), audio);
        return;
    }
    auto descriptor = FindMP4Box(source, inner, entry.End, "esds");
    if (!descriptor) {
        if (const auto wave = FindMP4Box(source, inner, entry.End, "wave"))
            descriptor = FindMP4Box(source, wave->Offset, wave->End, "esds");
    }
    if (descriptor)
        ReadElementaryStream(source.Read(descriptor->Offset, 64), audio);
}

// Bytes of all samples of a track, from its sample size table; 0 when it does not tell or is unreasonably long.
qint64 SampleBytes(TByteSource& source, const TMP4Box& stsz)
{
    constexpr qint64 mostTable = 8 * 1024 * 1024;
    const QByteArray head = source.Read(stsz.Offset, 12);
    TByteReader reader(head);
    reader.Skip(4);
    const quint32 size = reader.U32BE();
    const quint32 count = reader.U32BE();
    if (reader.Failed())
        return 0;
    if (size != 0) // two lies multiply beyond any file
        return static_cast<qint64>(
            std::min<quint64>(static_cast<quint64>(size) * count, static_cast<quint64>(source.Size())));
    const qint64 length = std::min<qint64>(static_cast<qint64>(count) * 4, stsz.End - stsz.Offset - 12);
    if (length > mostTable)
        return 0;
    const QByteArray table = source.Read(stsz.Offset + 12, length);
    TByteReader sizes(table);
    qint64 sum = 0;
    while (sizes.Left() >= 4)
        sum += sizes.U32BE();
    return sum;
}

// Durations of the samples in one run of a fragment. A run without a table of durations has the default one for each,
// and no more samples than there are bytes in the file.
quint64 RunUnits(TByteSource& source, const TMP4Box& run, quint32 defaultDuration)
{
    const QByteArray head = source.Read(run.Offset, 8);
    TByteReader reader(head);
    const quint32 flags = reader.U32BE() & 0xFFFFFF;
    const quint64 count = reader.U32BE();
    if (reader.Failed())
        return 0;
    if ((flags & 0x100) == 0)
        return std::min<quint64>(count, static_cast<quint64>(source.Size())) * defaultDuration;
    const qint64 skip = ((flags & 1) != 0 ? 4 : 0) + ((flags & 4) != 0 ? 4 : 0);
    int width = 0; // bytes per sample
    for (const quint32 field : {0x100U, 0x200U, 0x400U, 0x800U})
        width += (flags & field) != 0 ? 4 : 0;
    const qint64 start = run.Offset + 8 + skip;
    const quint64 room = static_cast<quint64>(std::max<qint64>(run.End - start, 0));
    const QByteArray table =
        source.Read(start, static_cast<qint64>(std::min<quint64>(count * static_cast<quint64>(width), room)));
    TByteReader samples(table);
    quint64 units = 0;
    while (samples.Left() >= width) {
        units += samples.U32BE();
        samples.Skip(width - 4);
    }
    return units;
}

// The units of the wanted track in one "traf" atom.
quint64 FragmentUnits(TByteSource& source, const TMP4Box& track, const TMP4Fragments& fragments)
{
    quint32 duration = fragments.DefaultDuration;
    quint64 units = 0;
    TMP4Walker walker(source, track.Offset, track.End);
    for (TMP4Box box; walker.Next(box);) {
        if (box.Name == TFourCC("tfhd")) {
            const QByteArray bytes = source.Read(box.Offset, 24);
            TByteReader reader(bytes);
            const quint32 flags = reader.U32BE();
            if (reader.U32BE() != fragments.TrackID)
                return 0;
            reader.Skip(((flags & 1) != 0 ? 8 : 0) + ((flags & 2) != 0 ? 4 : 0));
            if ((flags & 8) != 0)
                duration = reader.U32BE();
        } else if (box.Name == TFourCC("trun")) {
            units += RunUnits(source, box, duration);
        }
    }
    return units;
}

} // namespace

std::optional<TAudioAttributes> ReadMP4Track(TByteSource& source, const TMP4Box& track, TMP4Fragments& fragments)
{
    const auto media = FindMP4Box(source, track.Offset, track.End, "mdia");
    const auto handler = media ? FindMP4Box(source, media->Offset, media->End, "hdlr") : std::nullopt;
    if (!handler || source.Read(handler->Offset + 8, 4) != "soun")
        return std::nullopt;
    TAudioAttributes audio;
    quint32 timeScale = 0;
    if (const auto header = FindMP4Box(source, media->Offset, media->End, "mdhd"))
        audio.PlayTime = ReadMP4Time(source, *header, timeScale);
    const auto info = FindMP4Box(source, media->Offset, media->End, "minf");
    const auto table = info ? FindMP4Box(source, info->Offset, info->End, "stbl") : std::nullopt;
    if (table) {
        if (const auto description = FindMP4Box(source, table->Offset, table->End, "stsd"))
            ReadSampleEntry(source, *description, audio);
        const auto sizes = audio.BitRate == 0 ? FindMP4Box(source, table->Offset, table->End, "stsz") : std::nullopt;
        if (sizes)
            audio.BitRate = BitRateOf(SampleBytes(source, *sizes), audio.PlayTime);
    }
    fragments.TimeScale = timeScale;
    if (const auto header = FindMP4Box(source, track.Offset, track.End, "tkhd")) {
        const QByteArray bytes = source.Read(header->Offset, 24);
        TByteReader reader(bytes);
        const bool wide = reader.U8() == 1;
        reader.Skip(3 + (wide ? 16 : 8));
        fragments.TrackID = reader.U32BE();
    }
    // Rates above 65,535 do not fit into the description; the units of time count samples.
    if (audio.SamplesPerSec == 0)
        audio.SamplesPerSec = CheckedInt(timeScale);
    return audio;
}

quint32 ReadMP4DefaultDuration(TByteSource& source, const TMP4Box& extends, quint32 trackID)
{
    TMP4Walker walker(source, extends.Offset, extends.End);
    for (TMP4Box box; walker.Next(box);) {
        const QByteArray bytes = box.Name == TFourCC("trex") ? source.Read(box.Offset, 20) : QByteArray();
        TByteReader reader(bytes);
        reader.Skip(4);
        const quint32 track = reader.U32BE();
        reader.Skip(4);
        const quint32 duration = reader.U32BE();
        if (!reader.Failed() && track == trackID)
            return duration;
    }
    return 0;
}

double ReadMP4FragmentTime(TByteSource& source, const TMP4Fragments& fragments)
{
    if (fragments.TimeScale == 0)
        return 0;
    quint64 units = 0;
    TMP4Walker movie(source, 0, source.Size());
    for (TMP4Box fragment; movie.Next(fragment);) {
        if (fragment.Name != TFourCC("moof"))
            continue;
        TMP4Walker tracks(source, fragment.Offset, fragment.End);
        for (TMP4Box track; tracks.Next(track);)
            if (track.Name == TFourCC("traf"))
                units += FragmentUnits(source, track, fragments);
    }
    return static_cast<double>(units) / fragments.TimeScale;
}

} // namespace Kestrune
