// SPDX-License-Identifier: GPL-3.0-or-later
#include "uCueSheet.h"
#include "uCueSources.h"
#include "uFolderNames.h"
#include "uTHTypes.h"
#include "uTrackLocator.h"

#include <QHash>

#include <algorithm>
#include <iterator>
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

// What one sheet makes of the scanned tracks.
struct TCut {
    TKRN_MP3_Tracks Tracks;
    std::vector<size_t> Sources; // which of the scanned tracks these are parts of
};

TCueNames NamesIn(const TCueSheet& sheet)
{
    TCueNames names;
    for (const TCueTrack& track : sheet.Tracks) {
        double& lastStart = names[track.FileName];
        lastStart = std::max(lastStart, track.StartSec);
    }
    return names;
}

TCut CutBySheet(const TCueSheet& sheet, const TCueSources& sources, const TKRN_MP3_Tracks& scanned)
{
    TCut cut;
    const QHash<QString, size_t> files = sources.Resolve(NamesIn(sheet), sheet.Folder);
    for (size_t i = 0; i < sheet.Tracks.size(); ++i) {
        const auto source = files.constFind(sheet.Tracks[i].FileName);
        if (source == files.constEnd() || *source >= scanned.size())
            continue;
        cut.Tracks.push_back(CutTrack(sheet, i, scanned[*source]));
        cut.Sources.push_back(*source);
    }
    if (!cut.Tracks.empty())
        cut.Tracks.front().Cover = scanned[cut.Sources.front()].Cover;
    return cut;
}

// The files of a folder one after the other as their sheets cut them, gathered by the name of the album.
class TAlbums {
public:
    void Add(TKRN_MP3_Tracks tracks)
    {
        const auto known = FByName.constFind(tracks.front().Album.toCaseFolded());
        if (known != FByName.constEnd())
            return Append(FAlbums[*known], std::move(tracks));
        FByName.insert(tracks.front().Album.toCaseFolded(), FAlbums.size());
        FAlbums.push_back(std::move(tracks));
    }

    // A file without sheet belongs to the only album there is, else to the one that its tags name.
    void AddUncut(TKRN_MP3_Tracks tracks)
    {
        if (tracks.empty())
            return;
        if (FAlbums.size() == 1)
            return Append(FAlbums.front(), std::move(tracks));
        TKRN_MP3_Tracks rest;
        for (TKRN_MP3_Track& track : tracks) {
            const auto known = FByName.constFind(track.Album.toCaseFolded());
            (known == FByName.constEnd() ? rest : FAlbums[*known]).push_back(std::move(track));
        }
        if (!rest.empty())
            FAlbums.push_back(std::move(rest));
    }

    std::vector<TKRN_MP3_Tracks> Take() { return std::move(FAlbums); }

private:
    static void Append(TKRN_MP3_Tracks& album, TKRN_MP3_Tracks tracks)
    {
        std::ranges::move(tracks, std::back_inserter(album));
    }

    std::vector<TKRN_MP3_Tracks> FAlbums;
    QHash<QString, size_t> FByName;
};

std::vector<TCueSource> SourcesOf(const TKRN_MP3_Tracks& scanned, const QStringList& otherFiles)
{
    std::vector<TCueSource> sources;
    for (const TKRN_MP3_Track& track : scanned)
        sources.push_back({CueNameOf(track), track.DurationSec});
    for (const QString& name : otherFiles)
        sources.push_back({name, 0});
    return sources;
}

} // namespace

std::vector<TKRN_MP3_Tracks> CutIntoAlbums(const std::vector<TCueSheet>& sheets, TKRN_MP3_Tracks scanned,
                                           const QStringList& otherFiles)
{
    TAlbums albums;
    const TCueSources sources(SourcesOf(scanned, otherFiles));
    std::vector<bool> covered(scanned.size(), false);
    for (const TCueSheet& sheet : sheets) {
        if (sheet.Tracks.size() < 2)
            continue;
        TCut cut = CutBySheet(sheet, sources, scanned);
        // Rippers write several sheets for the same files: the first one is enough.
        if (cut.Tracks.empty() || std::ranges::any_of(cut.Sources, [&](size_t i) { return covered[i]; }))
            continue;
        for (const size_t i : cut.Sources)
            covered[i] = true;
        albums.Add(std::move(cut.Tracks));
    }
    TKRN_MP3_Tracks uncut;
    for (size_t i = 0; i < scanned.size(); ++i)
        if (!covered[i])
            uncut.push_back(std::move(scanned[i]));
    albums.AddUncut(std::move(uncut));
    return albums.Take();
}

} // namespace Kestrune
