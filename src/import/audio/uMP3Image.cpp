// SPDX-License-Identifier: GPL-3.0-or-later
#include "uMP3Image.h"

#include "TagsLibrary.h"
#include "uByteReader.h"
#include "uCueSheet.h"
#include "uDVDAReader.h"
#include "uDebugLog.h"
#include "uFilePath.h"
#include "uFindCovers.h"
#include "uISOReader.h"
#include "uM2TSReader.h"
#include "uSACDReader.h"
#include "uTHTypes.h"
#include "uTrackLocator.h"
#include "uUDFReader.h"

#include <QBuffer>

#include <algorithm>
#include <iterator>
#include <utility>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr double ShortestStream = 30.0; // seconds; menus and trailers are shorter
constexpr quint32 LargestCueFile = 1024 * 1024;
constexpr qint64 LargestCueFiles = 8 * 1024 * 1024;
constexpr quint32 LargestPicture = 64 * 1024 * 1024;

QString NumberedTitle(int number) { return u"Track %1"_s.arg(number, 2, 10, QChar(u'0')); }

int RoundedLength(double seconds) { return static_cast<int>(RoundHalfEven(std::clamp(seconds, 0.0, 1e9))); }

TKRN_MP3_Tracks SACDTracks(const QString& image)
{
    TSACDReader reader;
    TKRN_MP3_Tracks tracks;
    if (!reader.Open(image))
        return tracks;
    const TSACDAlbumInfo& album = reader.Album();
    for (const TSACDTrackInfo& info : reader.Tracks()) {
        TKRN_MP3_Track& track = tracks.emplace_back();
        track.FilePath = image;
        track.FileType = TTrackLocator::OfSACD(info.TrackNo).Text();
        track.No = info.TrackNo;
        track.Title = info.Title.isEmpty() ? NumberedTitle(info.TrackNo) : info.Title;
        track.Artist = info.Artist.isEmpty() ? album.Artist : info.Artist;
        track.Album = album.Title;
        track.DurationSec = RoundedLength(info.DurationSec);
        track.DiscNo = album.DiscNo;
        track.DiscCount = album.DiscCount;
        track.Year = std::max(album.Year, 0);
        track.CatalogNo = album.CatalogNumber;
        track.Genre = album.Genre;
        track.TotalTracks = static_cast<int>(reader.Tracks().size());
        DebugLog(u"[SACD] track %1: title=\"%2\" dur=%3 blank=%4 hidden=%5 instr=%6"_s.arg(track.No)
                     .arg(track.Title)
                     .arg(track.DurationSec)
                     .arg(track.IsBlank ? 1 : 0)
                     .arg(track.IsHidden ? 1 : 0)
                     .arg(track.IsInstrumental ? 1 : 0));
    }
    return tracks;
}

// What tracks of an image without texts have in common.
TKRN_MP3_Track NamedTrack(const QString& image, const TAlbumName& name, const TTrackLocator& locator, int number)
{
    TKRN_MP3_Track track;
    track.FilePath = image;
    track.FileType = locator.Text();
    track.No = number;
    track.Artist = name.Artist;
    track.Album = name.Album;
    track.Year = std::max(name.Year, 0);
    return track;
}

TKRN_MP3_Tracks DVDATracks(const QString& image)
{
    TDVDAReader reader;
    TKRN_MP3_Tracks tracks;
    if (!reader.Open(image))
        return tracks;
    const TAlbumName name = ParseImageName(image);
    int number = 0;
    for (const TDVDATrack& info : reader.Tracks()) {
        TKRN_MP3_Track& track =
            tracks.emplace_back(NamedTrack(image, name, TTrackLocator::OfDVDA(++number), info.TrackNo));
        track.Title = NumberedTitle(info.TrackNo);
        track.DurationSec = RoundedLength(info.DurationSec);
        track.DiscNo = 1;
    }
    DebugLog(u"[DVDA] %1 tracks listed from %2"_s.arg(tracks.size()).arg(image));
    return tracks;
}

bool IsBlurayStream(const TUDFFile& file)
{
    return file.Path.startsWith("BDMV/STREAM/"_L1, Qt::CaseInsensitive) && ExtensionOf(file.Path) == ".m2ts"_L1;
}

TKRN_MP3_Tracks BlurayTracks(const QString& image)
{
    TUDFReader reader;
    TKRN_MP3_Tracks tracks;
    if (!reader.Open(image))
        return tracks;
    std::vector<TUDFFile> streams;
    std::ranges::copy_if(reader.Files(), std::back_inserter(streams), IsBlurayStream);
    std::ranges::sort(streams, {}, &TUDFFile::Path);
    const TAlbumName name = ParseImageName(image);
    for (const TUDFFile& file : streams) {
        if (file.Extents.size() > 1) {
            DebugLog(u"[BDISO] Skipping fragmented stream file: "_s + file.Path);
            continue;
        }
        TM2TSReader stream;
        if (file.Extents.empty() || !stream.OpenWindow(image, file.Extents.front().Offset, file.Size) ||
            !stream.IsPlayable() || stream.DurationSec() < ShortestStream)
            continue;
        const int number = static_cast<int>(tracks.size()) + 1;
        TKRN_MP3_Track& track =
            tracks.emplace_back(NamedTrack(image, name, TTrackLocator::InBluray(file.Path), number));
        track.Title = NumberedTitle(number);
        track.DurationSec = RoundedLength(stream.DurationSec());
        track.DiscNo = 1;
    }
    DebugLog(u"[BDISO] %1 tracks listed from %2"_s.arg(tracks.size()).arg(image));
    return tracks;
}

// The bytes of a small file of the image; empty when it is larger than `most`.
QByteArray SmallFile(const TISOReader& reader, const TISOFile& file, quint32 most)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    return file.Size <= most && reader.ExtractToStream(file, buffer) ? buffer.data() : QByteArray();
}

// Many entries of a broken directory may share the same bytes, so that all sheets together are bounded as well.
std::vector<TCueSheet> InnerSheets(const TISOReader& reader)
{
    std::vector<TCueSheet> sheets;
    qint64 room = LargestCueFiles;
    for (const TISOFile& file : reader.Files()) {
        if (file.IsDir || ExtensionOf(file.Name) != ".cue"_L1)
            continue;
        room -= file.Size;
        if (room < 0)
            break;
        sheets.push_back(ParseCueSheet(DecodeCueText(SmallFile(reader, file, LargestCueFile))));
        sheets.back().Folder = FolderOf(file.FullPath);
    }
    return sheets;
}

TKRN_MP3_Tracks CutByInnerSheets(const TISOReader& reader, TKRN_MP3_Tracks tracks)
{
    TKRN_MP3_Tracks cut;
    for (TKRN_MP3_Tracks& album : CutIntoAlbums(InnerSheets(reader), std::move(tracks)))
        std::ranges::move(album, std::back_inserter(cut));
    return cut;
}

QByteArray InnerCover(const TISOReader& reader)
{
    const TISOFile* chosen = nullptr;
    for (const TISOFile& file : reader.Files()) {
        if (file.IsDir || !IsCoverImage(file.Name))
            continue;
        const QString stem = StemOf(file.Name).toLower();
        if (stem == "cover"_L1 || stem == "folder"_L1 || stem.startsWith("front"_L1) || stem.endsWith("front"_L1)) {
            chosen = &file;
            break;
        }
        if (!chosen)
            chosen = &file;
    }
    const QByteArray bytes = chosen ? SmallFile(reader, *chosen, LargestPicture) : QByteArray();
    return PictureStreamType(bytes) == tpfUnknown ? QByteArray() : bytes;
}

TKRN_MP3_Tracks ISOTracks(const TISOReader& reader, const QString& image, bool pictures)
{
    TAlbumName name = ParseAlbumFolderName(reader.VolumeLabel());
    if (name.Album.isEmpty())
        name = ParseAlbumFolderName(StemOf(image));
    TKRN_MP3_Tracks tracks;
    for (const TISOFile& file : reader.Files()) {
        if (file.IsDir || !IsSupportedAudio(file.Name) || ExtensionOf(file.Name) == ".iso"_L1)
            continue;
        const int number = static_cast<int>(tracks.size()) + 1;
        TKRN_MP3_Track& track =
            tracks.emplace_back(NamedTrack(image, name, TTrackLocator::InISO(file.FullPath), number));
        track.Title = file.FullPath.chopped(ExtensionOf(file.FullPath).size());
    }
    tracks = CutByInnerSheets(reader, std::move(tracks));
    if (pictures && !tracks.empty() && tracks.front().Cover.isEmpty())
        tracks.front().Cover = InnerCover(reader);
    return tracks;
}

} // namespace

TAlbumName ParseImageName(const QString& image)
{
    QString stem = StemOf(image);
    if (stem.endsWith(".dvd-a"_L1, Qt::CaseInsensitive))
        stem.chop(6);
    TAlbumName name = ParseAlbumFolderName(stem);
    if (name.Artist.isEmpty()) {
        const TAlbumName folder = ParseAlbumFolderName(FileNameOf(FolderOf(image)));
        if (!folder.Artist.isEmpty()) {
            name.Artist = folder.Artist;
            name.Album = folder.Album;
            if (name.Year == 0)
                name.Year = folder.Year;
        } else if (folder.Year > 0) {
            name.Year = folder.Year;
        }
    }
    if (name.Album.isEmpty())
        name.Album = stem;
    return name;
}

double TransportStreamSeconds(const QString& file)
{
    TM2TSReader reader;
    return reader.Open(file) ? reader.DurationSec() : 0.0;
}

TImageTracks ProcessISO(const QString& image, bool pictures)
{
    const auto orWithoutAudio = [](TKRN_MP3_Tracks tracks) {
        const TImageFailure failure = tracks.empty() ? imfWithoutAudio : imfNone;
        return TImageTracks{std::move(tracks), failure};
    };
    if (!TFileSource::Open(TextToPath(image)))
        return {{}, imfUnreadable};
    if (TSACDReader::IsSACDImage(image)) {
        if (TKRN_MP3_Tracks tracks = SACDTracks(image); !tracks.empty())
            return {std::move(tracks)};
        DebugLog(u"[SACD] Reader produced no tracks, falling back to ISO 9660"_s);
    }
    if (TDVDAReader::IsDVDAImage(image)) {
        if (TKRN_MP3_Tracks tracks = DVDATracks(image); !tracks.empty())
            return {std::move(tracks)};
        DebugLog(u"[DVDA] Reader produced no tracks, falling back to ISO 9660"_s);
    }
    TISOReader reader;
    if (reader.Open(image))
        return orWithoutAudio(ISOTracks(reader, image, pictures));
    if (TUDFReader::IsUDFImage(image))
        return orWithoutAudio(BlurayTracks(image));
    return {{}, imfUnknown};
}

} // namespace Kestrune
