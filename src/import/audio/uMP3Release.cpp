// SPDX-License-Identifier: GPL-3.0-or-later
#include "uMP3Release.h"

#include "uColumnNames.h"
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
    SetText(release, Col::Artist, ReleaseArtistOf(tracks, options.VariousArtists));
    release.SetItem2(Col::ReleaseName, first.Album);
    SetText(release, Col::ReleaseYear, QString::number(first.Year));
    SetDate(release, Col::ReleaseDate, first.ReleaseDate);
    SetText(release, Col::CatalogNO, first.CatalogNo);
    SetText(release, Col::Label, first.lLabel);
    SetText(release, Col::Barcode, first.EAN);
    SetText(release, Col::ASIN, first.ASIN);
    SetText(release, Col::DiscogsID, first.DiscogsID);
    SetText(release, Col::MusicBrainzID, first.MusicBrainzAlbumID);
    SetText(release, Col::CountryCode, first.Country);
    SetText(release, Col::Genre, first.Genre);
    SetText(release, Col::Genres, first.Styles);
    SetText(release, Col::Artists, first.Artists);
    SetText(release, Col::DataProvider, u"MP3 Scan"_s);
    SetText(release, Col::Quantity, u"1"_s);
    SetText(release, Col::MediaType, options.Digital);
    SetText(release, Col::FolderPath, ReleaseFolderOf(FoldersOf(tracks)));
    const auto lastDisc = std::ranges::max_element(tracks, {}, &TKRN_MP3_Track::DiscNo);
    SetNumber(release, Col::DiscCount, std::max(1, lastDisc->DiscNo));
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
