// SPDX-License-Identifier: GPL-3.0-or-later
#include "uMP4Reader.h"

#include "uFilePath.h"
#include "uMP4Boxes.h"

#include <algorithm>

namespace Kestrune {

namespace {

constexpr qint64 LargestTable = 64 * 1024 * 1024;

// A table of equal entries behind a count (and what stands before that).
class TTable {
public:
    TTable(TByteSource& file, const TMP4Box& box, int head, int entry) : FEntry(entry)
    {
        const qint64 length = std::min(box.End - box.Offset, LargestTable);
        FBytes = file.Read(box.Offset, length);
        TByteReader reader(FBytes);
        reader.Seek(head - 4);
        const qint64 stated = reader.U32BE();
        FCount = reader.Failed() ? 0 : std::min(stated, (FBytes.size() - head) / entry);
        FHead = head;
    }
    qint64 Count() const { return FCount; }
    quint64 At(qint64 index, int field = 0, int width = 4) const
    {
        TByteReader reader(FBytes);
        reader.Seek(FHead + index * FEntry + field);
        return width == 8 ? reader.U64BE() : reader.U32BE();
    }

private:
    QByteArray FBytes;
    qint64 FCount = 0;
    int FHead = 0;
    int FEntry;
};

} // namespace

bool TMP4Reader::Open(const QString& filePath) { return Open(TFileSource::Open(TextToPath(filePath))); }

bool TMP4Reader::Open(std::shared_ptr<TByteSource> file)
{
    Close();
    if (!file || file->Read(4, 4) != "ftyp")
        return false;
    FFile = std::move(file);
    if (const auto movie = FindMP4Box(*FFile, 0, FFile->Size(), "moov")) {
        TMP4Walker walker(*FFile, movie->Offset, movie->End);
        for (TMP4Box box; walker.Next(box);)
            if (box.Name == TFourCC("trak"))
                TakeTrack(box.Offset, box.End);
    }
    if (!FTracks.empty())
        return true;
    Close();
    return false;
}

void TMP4Reader::Close()
{
    FFile.reset();
    FTracks.clear();
}

void TMP4Reader::TakeTrack(qint64 start, qint64 end)
{
    const auto media = FindMP4Box(*FFile, start, end, "mdia");
    const auto handler = media ? FindMP4Box(*FFile, media->Offset, media->End, "hdlr") : std::nullopt;
    if (!handler || FFile->Read(handler->Offset + 8, 4) != "soun")
        return;
    const auto info = FindMP4Box(*FFile, media->Offset, media->End, "minf");
    const auto table = info ? FindMP4Box(*FFile, info->Offset, info->End, "stbl") : std::nullopt;
    const auto description = table ? FindMP4Box(*FFile, table->Offset, table->End, "stsd") : std::nullopt;
    if (!description)
        return;
    TMP4Walker entries(*FFile, description->Offset + 8, description->End);
    TMP4Box entry;
    if (!entries.Next(entry))
        return;
    TMP4AudioTrack track;
    track.Codec = entry.Name;
    const QByteArray bytes = FFile->Read(entry.Offset, 28);
    TByteReader reader(bytes);
    reader.Skip(16);
    track.Channels = reader.U16BE();
    reader.Skip(6);
    track.SampleRate = reader.U16BE();
    quint32 timeScale = 0;
    if (const auto header = FindMP4Box(*FFile, media->Offset, media->End, "mdhd"))
        track.DurationSec = ReadMP4Time(*FFile, *header, timeScale);
    track.TableOffset = table->Offset;
    track.TableEnd = table->End;
    FTracks.push_back(track);
}

int TMP4Reader::TrueHDTrack() const
{
    const auto found = std::ranges::find_if(FTracks, &TMP4AudioTrack::IsTrueHD);
    return found == FTracks.end() ? -1 : static_cast<int>(found - FTracks.begin());
}

bool TMP4Reader::ExtractTrack(int index, QByteArray& out) const
{
    out.clear();
    if (!FFile || index < 0 || index >= static_cast<int>(FTracks.size()))
        return false;
    const TMP4AudioTrack& track = FTracks[static_cast<size_t>(index)];
    const auto find = [&](TFourCC name) { return FindMP4Box(*FFile, track.TableOffset, track.TableEnd, name); };
    const auto sizesBox = find("stsz");
    const auto chunksBox = find("stsc");
    const auto wideBox = find("co64");
    const auto placesBox = wideBox ? wideBox : find("stco");
    if (!sizesBox || !chunksBox || !placesBox)
        return false;
    const QByteArray sizeHead = FFile->Read(sizesBox->Offset, 12);
    TByteReader head(sizeHead);
    head.Skip(4);
    const quint32 fixedSize = head.U32BE();
    const qint64 stated = head.U32BE();
    const TTable sizes(*FFile, *sizesBox, 12, 4);
    const TTable chunks(*FFile, *chunksBox, 8, 12);
    const TTable places(*FFile, *placesBox, 8, wideBox ? 8 : 4);
    const qint64 samples = fixedSize != 0 ? stated : sizes.Count();
    qint64 sample = 0;
    qint64 run = 0; // of the table that says how many samples a chunk has
    for (qint64 chunk = 0; chunk < places.Count() && sample < samples && out.size() < FFile->Size(); ++chunk) {
        while (run + 1 < chunks.Count() && static_cast<qint64>(chunks.At(run + 1)) <= chunk + 1)
            ++run;
        const qint64 count = chunks.Count() > 0 ? static_cast<qint64>(chunks.At(run, 4)) : 0;
        qint64 length = 0;
        for (qint64 i = 0; i < count && sample < samples && length < FFile->Size(); ++i, ++sample)
            length += fixedSize != 0 ? fixedSize : static_cast<qint64>(sizes.At(sample));
        out += FFile->Read(static_cast<qint64>(places.At(chunk, 0, wideBox ? 8 : 4)), length);
    }
    return !out.isEmpty();
}

} // namespace Kestrune
