// SPDX-License-Identifier: GPL-3.0-or-later
#include "uMP3Release.h"

#include "uFindCovers.h"
#include "uFolderNames.h"
#include "uReleasePictures.h"
#include "uReleaseValues.h"

#include <algorithm>
#include <utility>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

// The folder above the tracks is the release's when its discs lie there, or when the only disc has no name of its own.
TCoverFolders FoldersOf(const TKRN_MP3_Tracks& tracks)
{
    TCoverFolders folders;
    for (const TKRN_MP3_Track& track : tracks) {
        const QString folder = FolderOf(track.FilePath);
        if (folders.Own.isEmpty() || (folders.Own.back() != folder && !folders.Own.contains(folder)))
            folders.Own += folder;
    }
    folders.ParentIsRelease = ParseDiscFolderName(FileNameOf(folders.Own.front())).IsBare;
    if (folders.ParentIsRelease || folders.Own.size() > 1)
        folders.Parent = FolderOf(folders.Own.front());
    return folders;
}

QString ReleaseFolderOf(const TCoverFolders& folders)
{
    return folders.Parent.isEmpty() ? folders.Own.front() : folders.Parent;
}

// Upper and lower case make different artists.
QString ReleaseArtistOf(const TKRN_MP3_Tracks& tracks, const QString& various)
{
    const QString& first = tracks.front().Artist;
    const bool mixed =
        std::ranges::any_of(tracks, [&](const auto& t) { return !t.Artist.isEmpty() && t.Artist != first; });
    return mixed ? various : first;
}

void SetFields(TAlbumRelease& release, const TKRN_MP3_Tracks& tracks, const TMP3ScanOptions& options)
{
    const TKRN_MP3_Track& first = tracks.front();
    SetText(release, u"Artist"_s, ReleaseArtistOf(tracks, options.VariousArtists));
    release.SetItem2(u"ReleaseName"_s, first.Album);
    SetText(release, u"ReleaseYear"_s, QString::number(first.Year));
    SetDate(release, u"ReleaseDate"_s, first.ReleaseDate);
    SetText(release, u"CatalogNo"_s, first.CatalogNo);
    SetText(release, u"Label"_s, first.lLabel);
    SetText(release, u"Barcode"_s, first.EAN);
    SetText(release, u"ASIN"_s, first.ASIN);
    SetText(release, u"DiscogsID"_s, first.DiscogsID);
    SetText(release, u"MusicBrainzID"_s, first.MusicBrainzAlbumID);
    SetText(release, u"CountryCode"_s, first.Country);
    SetText(release, u"Genre"_s, first.Genre);
    SetText(release, u"Genres"_s, first.Styles);
    SetText(release, u"Artists"_s, first.Artists);
    SetText(release, u"DataProvider"_s, u"MP3 Scan"_s);
    SetText(release, u"Quantity"_s, u"1"_s);
    SetText(release, u"MediaType"_s, options.Digital);
    SetText(release, u"FolderPath"_s, ReleaseFolderOf(FoldersOf(tracks)));
    const auto lastDisc = std::ranges::max_element(tracks, {}, &TKRN_MP3_Track::DiscNo);
    SetNumber(release, u"DiscCount"_s, std::max(1, lastDisc->DiscNo));
}

TAlbumTrack AlbumTrackOf(const TKRN_MP3_Track& from)
{
    TAlbumTrack track;
    track.TrackNo = from.No;
    track.TrackName = from.Title;
    track.TrackArtist = from.Artist;
    track.TrackGenre = from.Genre;
    track.DurationSec = from.DurationSec;
    track.DiscNo = from.DiscNo == 0 ? 1 : from.DiscNo;
    track.DiscCount = from.DiscCount == 0 ? 1 : from.DiscCount;
    track.Bitrate = from.Bitrate;
    track.BPM = from.BPM;
    track.Lyrics = from.Lyrics;
    track.Comments = from.Comments;
    track.Filepath = from.FilePath;
    track.Filetype = from.FileType;
    track.Side = from.Side;
    track.Composer = from.Composer;
    track.Composition = from.Composition;
    track.Conductor = from.Conductor;
    track.Orchestra = from.Orchestra;
    track.Chorus = from.Chorus;
    track.IsRemix = from.IsRemix;
    track.IsBlank = from.IsBlank;
    track.IsHidden = from.IsHidden;
    track.IsInstrumental = from.IsInstrumental;
    return track;
}

void AddFoundPictures(TAlbumRelease& release, const TCoverFolders& folders, const TMP3ScanOptions& options)
{
    const TFoundCovers found = FindCovers(folders);
    if (!release.GetPicByType(cptFrontLarge))
        AddPictureFile(release, cptFrontLarge, found.Front);
    if (options.BackCover)
        AddPictureFile(release, cptBackLarge, found.Back);
    if (options.MediaCover)
        AddPictureFile(release, cptMediaLarge, found.Media);
    if (!options.OtherImages)
        return;
    for (const QString& other : found.Others) {
        if (other != found.Front && other != found.Back && other != found.Media)
            AddPictureFile(release, cptOther, other);
    }
}

void AddPictures(TAlbumRelease& release, const TKRN_MP3_Tracks& tracks, const TMP3ScanOptions& options)
{
    const auto covered = std::ranges::find_if(tracks, [](const auto& t) { return !t.Cover.isEmpty(); });
    if (covered != tracks.end())
        AddPictureBytes(release, cptFrontLarge, covered->Cover);
    if (options.FindCovers)
        AddFoundPictures(release, FoldersOf(tracks), options);
    if (TCoverPicture* front = release.GetPicByType(cptFrontLarge))
        front->PrepareThumbnail(options.ThumbHeight);
}

} // namespace

std::optional<TAlbumRelease> CreateReleaseFromTracks(const TKRN_MP3_Tracks& tracks, const TMP3ScanOptions& options)
{
    if (tracks.empty())
        return std::nullopt;
    TAlbumRelease release;
    SetFields(release, tracks, options);
    if (options.Pictures)
        AddPictures(release, tracks, options);
    release.Tracks.reserve(tracks.size());
    for (const TKRN_MP3_Track& track : tracks)
        release.Tracks.push_back(AlbumTrackOf(track));
    return release;
}

} // namespace Kestrune
