// SPDX-License-Identifier: GPL-3.0-or-later
#include "uCueSheet.h"
#include "uFolderNames.h"
#include "uTHTypes.h"
#include "uTrackLocator.h"

#include <QHash>

#include <algorithm>
#include <limits>
#include <utility>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

const QString& FirstFilled(const QString& a, const QString& b, const QString& c = {})
{
    return !a.isEmpty() ? a : !b.isEmpty() ? b : c;
}

// What a cue sheet calls the file of a scanned track.
QString CueNameOf(const TKRN_MP3_Track& track)
{
    const TTrackLocator locator = TTrackLocator::Parse(track.FileType);
    if (locator.Kind != lkISO)
        return FileNameOf(track.FilePath);
    return locator.InnerPath.startsWith(u'/') ? locator.InnerPath.sliced(1) : locator.InnerPath;
}

// Finds the scanned track that a cue track is a part of: by name, else the last one of the same extension (sheets
// often name the file before its conversion), else the only one there is.
class TCueSources {
public:
    explicit TCueSources(const TKRN_MP3_Tracks& scanned) : FScanned(scanned)
    {
        for (size_t i = scanned.size(); i-- > 0;)
            FByName[CueNameOf(scanned[i]).toCaseFolded()] = i; // the first of equal names stays
        for (size_t i = 0; i < scanned.size(); ++i)
            FByExtension[ExtensionOf(CueNameOf(scanned[i]))] = i; // the last one stays
    }

    const TKRN_MP3_Track* Find(const QString& fileName) const
    {
        if (const auto named = FByName.constFind(fileName.toCaseFolded()); named != FByName.constEnd())
            return &FScanned[*named];
        if (const auto kin = FByExtension.constFind(ExtensionOf(fileName)); kin != FByExtension.constEnd())
            return &FScanned[*kin];
        return FScanned.size() == 1 ? &FScanned.front() : nullptr;
    }

private:
    const TKRN_MP3_Tracks& FScanned;
    QHash<QString, size_t> FByName;
    QHash<QString, size_t> FByExtension;
};

int RoundedSeconds(double seconds)
{
    // A time of many digits would leave the range of an int; an hour count of a cue sheet never does.
    constexpr double most = std::numeric_limits<int>::max() / 2;
    return static_cast<int>(RoundHalfEven(std::clamp(seconds, 0.0, most)));
}

int CueDuration(const TCueSheet& sheet, size_t index, int sourceDuration)
{
    const TCueTrack& track = sheet.Tracks[index];
    const int start = RoundedSeconds(track.StartSec);
    if (index + 1 < sheet.Tracks.size() && sheet.Tracks[index + 1].FileName == track.FileName)
        return std::max(0, RoundedSeconds(sheet.Tracks[index + 1].StartSec) - start);
    const int rest = sourceDuration - start;
    if (rest < 1 && index > 0)
        return RoundedSeconds(static_cast<double>(start) / static_cast<double>(index)); // the average so far
    return std::max(0, rest);
}

TKRN_MP3_Track InheritedFrom(const TKRN_MP3_Track& source)
{
    TKRN_MP3_Track track;
    track.Bitrate = source.Bitrate;
    track.DiscNo = source.DiscNo;
    track.DiscCount = source.DiscCount;
    track.EAN = source.EAN;
    track.ASIN = source.ASIN;
    track.lLabel = source.lLabel;
    track.CatalogNo = source.CatalogNo;
    track.Country = source.Country;
    track.DiscogsID = source.DiscogsID;
    track.MusicBrainzAlbumID = source.MusicBrainzAlbumID;
    track.Comments = source.Comments;
    track.ReleaseDate = source.ReleaseDate;
    track.Styles = source.Styles;
    track.Artists = source.Artists;
    track.Composer = source.Composer;
    track.Conductor = source.Conductor;
    track.FilePath = source.FilePath;
    return track;
}

TKRN_MP3_Track CutTrack(const TCueSheet& sheet, size_t index, const TKRN_MP3_Track& source)
{
    const TCueTrack& cue = sheet.Tracks[index];
    TKRN_MP3_Track track = InheritedFrom(source);
    track.No = cue.No;
    track.Title = cue.Title;
    track.Artist = FirstFilled(cue.Artist, sheet.AlbumArtist, source.Artist);
    track.Album = FirstFilled(sheet.AlbumTitle, source.Album);
    track.Genre = FirstFilled(sheet.Genre, source.Genre);
    track.Year = sheet.Year > 0 ? sheet.Year : source.Year;
    track.DurationSec = CueDuration(sheet, index, source.DurationSec);
    const int start = RoundedSeconds(cue.StartSec);
    track.FileType = TTrackLocator::Parse(source.FileType).Cut(start, start + track.DurationSec).Text();
    track.IsRemix = track.Title.contains("remix"_L1, Qt::CaseInsensitive);
    track.TotalTracks = static_cast<int>(sheet.Tracks.size());
    return track;
}

} // namespace

TKRN_MP3_Tracks ApplyCueSheet(const TCueSheet& sheet, const TKRN_MP3_Tracks& scanned)
{
    TKRN_MP3_Tracks result;
    const TCueSources sources(scanned);
    for (size_t i = 0; i < sheet.Tracks.size(); ++i) {
        const TKRN_MP3_Track* source = sources.Find(sheet.Tracks[i].FileName);
        if (!source)
            continue;
        result.push_back(CutTrack(sheet, i, *source));
        if (result.size() == 1)
            result.front().Cover = source->Cover;
    }
    return result;
}

} // namespace Kestrune
