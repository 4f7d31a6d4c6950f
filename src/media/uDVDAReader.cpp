// SPDX-License-Identifier: GPL-3.0-or-later
#include "uDVDAReader.h"

#include "uDebugLog.h"
#include "uFields.h"
#include "uFilePath.h"
#include "uProgramStream.h"

#include <algorithm>
#include <exception>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

const QString IFOName = u"AUDIO_TS/ATS_01_0.IFO"_s;
constexpr qint64 LargestIFO = 64 * 1024 * 1024;
constexpr qint64 SmallestIFO = 2048;
constexpr double TicksPerSecond = 90000.0;
constexpr quint8 SubStreamLPCM = 0xA0, SubStreamMLP = 0xA1;

void LogDVDA(const QString& text) { DebugLog(u"[DVDA] "_s + text); }

bool Fits(const QByteArray& bytes, qint64 offset, qint64 length)
{
    return offset >= 0 && offset + length <= bytes.size();
}

QString Hex(quint32 value, int digits) { return u"%1"_s.arg(value, digits, 16, QChar(u'0')).toUpper(); }

} // namespace

bool TDVDAReader::IsDVDAImage(const QString& path)
{
    TISOReader iso;
    if (!iso.Open(path))
        return false;
    const auto ifo = iso.FindFile(IFOName);
    return ifo && ifo->Size > 0;
}

bool TDVDAReader::Open(const QString& isoPath) { return Open(TFileSource::Open(TextToPath(isoPath)), isoPath); }

bool TDVDAReader::Open(std::shared_ptr<TByteSource> image, const QString& name)
{
    Close();
    try {
        TISOReader iso;
        if (!iso.Open(image)) {
            LogDVDA(u"Not an ISO9660 image: "_s + name);
            return false;
        }
        const auto ifo = iso.FindFile(IFOName);
        if (!ifo) {
            LogDVDA(u"AUDIO_TS/ATS_01_0.IFO not found"_s);
            return false;
        }
        FStream = std::move(image);
        FAlbumTitle = iso.VolumeLabel();
        if (CollectExtents(iso))
            ParseIFO(FStream->Read(ifo->Offset, std::min<qint64>(ifo->Size, LargestIFO)));
    } catch (const std::exception& failure) {
        LogDVDA(u"Open error: "_s + QString::fromUtf8(failure.what()));
        FTracks.clear();
    }
    const bool found = !FTracks.empty();
    if (!found)
        Close();
    return found;
}

void TDVDAReader::Close() { *this = TDVDAReader(); }

bool TDVDAReader::CollectExtents(const TISOReader& iso)
{
    qint64 bytes = 0;
    for (int n = 1; n <= 9; ++n) {
        if (const auto file = iso.FindFile(u"AUDIO_TS/ATS_01_%1.AOB"_s.arg(n))) {
            FExtents.push_back({file->Offset, file->Size});
            FAOBTotalSectors += file->Size / DiscSectorSize;
            bytes += file->Size;
        }
    }
    if (FExtents.empty()) {
        LogDVDA(u"No ATS_01_*.AOB files found"_s);
        return false;
    }
    LogDVDA(u"AOB space: %1 extents, %2 sectors (%3 bytes)"_s.arg(FExtents.size()).arg(FAOBTotalSectors).arg(bytes));
    if (std::ranges::any_of(
            iso.Files(), [](const TISOFile& file) { return file.Name.startsWith("ATS_02_"_L1, Qt::CaseInsensitive); }))
        LogDVDA(u"Extra title sets present (ATS_02+), only ATS_01 is read"_s);
    return true;
}

void TDVDAReader::ParseIFO(const QByteArray& ifo)
{
    if (ifo.size() < SmallestIFO || !ifo.startsWith("DVDAUDIO-ATS")) {
        LogDVDA(u"ATS IFO signature mismatch"_s);
        return;
    }
    const quint32 sector = TFields(ifo).U32BE(0xCC);
    const qint64 table = sector * DiscSectorSize;
    if (!Fits(ifo, table, 8)) {
        LogDVDA(u"ATS_PGCI sector %1 out of range"_s.arg(sector));
        return;
    }
    const int titles = TFields(ifo).U16BE(table);
    if (titles < 1 || titles > 99)
        return LogDVDA(u"Implausible number of titles %1"_s.arg(titles));
    LogDVDA(u"ATS_PGCI at IFO sector %1, %2 title(s)"_s.arg(sector).arg(titles));
    for (int title = 0; title < titles; ++title)
        ParseTitle(ifo, table, title);
    for (TDVDATrack& track : FTracks)
        Sniff(track);
    if (FTracks.empty())
        LogDVDA(u"No tracks found in ATS_01_0.IFO"_s);
}

void TDVDAReader::ParseTitle(const QByteArray& ifo, qint64 table, int title)
{
    const qint64 entry = table + 8 * title + 8;
    const quint8 type = Fits(ifo, entry, 8) ? static_cast<quint8>(ifo[entry]) : 0;
    if ((type & 0x80) == 0) {
        LogDVDA(u"Title %1: unexpected type $%2"_s.arg(title + 1).arg(Hex(type, 2)));
        return;
    }
    const qint64 record = table + TFields(ifo).U32BE(entry + 4);
    if (!Fits(ifo, record, 16)) {
        LogDVDA(u"Title %1 record out of range"_s.arg(title + 1));
        return;
    }
    const int tracks = static_cast<quint8>(ifo[record + 2]);
    const int indexes = static_cast<quint8>(ifo[record + 3]);
    LogDVDA(u"Title %1: %2 tracks, %3 indexes, length %4 s"_s.arg(title + 1).arg(tracks).arg(indexes).arg(
        TFields(ifo).U32BE(record + 4) / TicksPerSecond, 0, 'f', 1));
    if (tracks != indexes)
        LogDVDA(u"Title %1: track/index count mismatch, mapping ordinally"_s.arg(title + 1));
    const qint64 sectors = record + TFields(ifo).U16BE(record + 12);
    for (int i = 0; i < tracks; ++i) {
        const qint64 track = record + 16 + 20 * i;
        if (!Fits(ifo, track, 20) || !Fits(ifo, sectors + 12 * i, 12)) {
            LogDVDA(u"Title %1 track %2: record out of range"_s.arg(title + 1).arg(i + 1));
            return;
        }
        TakeTrack(ifo, track, sectors + 12 * i, title);
    }
}

void TDVDAReader::TakeTrack(const QByteArray& ifo, qint64 entry, qint64 sectors, int title)
{
    TDVDATrack track;
    track.TrackNo = static_cast<int>(FTracks.size()) + 1;
    track.TitleNo = title + 1;
    track.FirstPTS = TFields(ifo).U32BE(entry + 6);
    track.DurationSec = TFields(ifo).U32BE(entry + 10) / TicksPerSecond;
    track.FirstSector = TFields(ifo).U32BE(sectors + 4);
    track.LastSector = TFields(ifo).U32BE(sectors + 8);
    if (ifo[sectors] != 1)
        LogDVDA(u"Track %1: unexpected sector entry flags $%2"_s.arg(track.TrackNo)
                    .arg(Hex(TFields(ifo).U32BE(sectors), 8)));
    if (track.LastSector < track.FirstSector || track.LastSector >= FAOBTotalSectors) {
        LogDVDA(u"Track %1: sector range %2..%3 outside AOB space (%4), skipped"_s.arg(track.TrackNo)
                    .arg(track.FirstSector)
                    .arg(track.LastSector)
                    .arg(FAOBTotalSectors));
        return;
    }
    FTracks.push_back(track);
}

QByteArray TDVDAReader::ReadSector(quint32 sector) const
{
    qint64 within = sector;
    for (const TAOBExtent& extent : FExtents) {
        const qint64 count = extent.SizeBytes / DiscSectorSize;
        if (within < count) {
            QByteArray bytes = FStream->Read(extent.ISOOffset + within * DiscSectorSize, DiscSectorSize);
            if (bytes.size() < DiscSectorSize)
                LogDVDA(u"AOB read error at sector %1: %2"_s.arg(sector).arg(u"the image ends before it"_s));
            return bytes;
        }
        within -= count;
    }
    LogDVDA(u"AOB read error at sector %1: %2"_s.arg(sector).arg(u"past the AOB space"_s));
    return {};
}

void TDVDAReader::Sniff(TDVDATrack& track)
{
    int subStream = -1;
    const QByteArray sector = ReadSector(track.FirstSector);
    WalkPrivateStream1(sector, [&](QByteArrayView payload) {
        subStream = static_cast<quint8>(payload[0]);
        return false;
    });
    if (subStream < 0)
        LogDVDA(u"Track %1: no private_stream_1 packet in first sector"_s.arg(track.TrackNo));
    else if (subStream == SubStreamMLP)
        track.IsMLP = true;
    else if (subStream != SubStreamLPCM)
        LogDVDA(
            u"Track %1: unknown sub-stream id $%2"_s.arg(track.TrackNo).arg(Hex(static_cast<quint32>(subStream), 2)));
}

bool TDVDAReader::ExtractTrackMLP(int trackIndex, QByteArray& buffer)
{
    buffer.clear();
    if (!FStream || trackIndex < 0 || trackIndex >= static_cast<int>(FTracks.size()))
        return false;
    TDVDATrack& track = FTracks[static_cast<size_t>(trackIndex)];
    if (!track.IsMLP) {
        LogDVDA(u"Track %1 is not MLP (LPCM?), extraction skipped"_s.arg(track.TrackNo));
        return false;
    }
    try {
        QByteArray payload;
        for (quint32 sector = track.FirstSector; sector <= track.LastSector; ++sector) {
            const QByteArray bytes = ReadSector(sector);
            if (bytes.isEmpty())
                break;
            WalkPrivateStream1(bytes, [&](QByteArrayView packet) {
                // The sub-stream's own head: identifier, two bytes, and the length of what follows of it.
                const qsizetype head = packet.size() < 4 ? packet.size() : 4 + static_cast<quint8>(packet[3]);
                if (head < packet.size() && static_cast<quint8>(packet[0]) == SubStreamMLP)
                    payload.append(packet.sliced(head));
                return true;
            });
        }
        if (payload.isEmpty()) {
            LogDVDA(u"Track %1: no MLP payload found"_s.arg(track.TrackNo));
            return false;
        }
        const qint64 sync = FindMLPSync(payload);
        if (sync < 0) {
            LogDVDA(u"Track %1: no MLP major sync found"_s.arg(track.TrackNo));
            return false;
        }
        buffer = payload.mid(sync);
        track.SampleRate = MLPSampleRate(buffer);
        LogDVDA(u"Track %1: extracted %2 MLP bytes (sync at +%3, %4 Hz, %5 sectors)"_s.arg(track.TrackNo)
                    .arg(buffer.size())
                    .arg(sync)
                    .arg(track.SampleRate)
                    .arg(track.LastSector - track.FirstSector + 1));
        return true;
    } catch (const std::exception& failure) {
        LogDVDA(u"Extract error, track %1: %2"_s.arg(track.TrackNo).arg(QString::fromUtf8(failure.what())));
        return false;
    }
}

} // namespace Kestrune
