// SPDX-License-Identifier: GPL-3.0-or-later
#include "uMP4Tag_p.h"

#include <algorithm>

namespace Kestrune {

namespace {

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
    ReadMP4Codec(source, entry, entry.Offset + 28 + extra, audio);
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
