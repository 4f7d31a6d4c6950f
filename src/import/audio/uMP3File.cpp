// SPDX-License-Identifier: GPL-3.0-or-later
#include "uMP3File.h"

#include "TagsLibrary.h"
#include "uAudioLength.h"
#include "uByteReader.h"
#include "uFilePath.h"
#include "uFolderNames.h"
#include "uObjs.h"
#include "uSourceValues.h"
#include "uTHTypes.h"

#include <QStringList>

#include <algorithm>
#include <limits>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

// The tag names of a field, in order of preference: the first with a value is used.
template <typename T>
struct TFieldNames {
    T TKRN_MP3_Track::*Field;
    QStringList Names;
};

const std::vector<TFieldNames<QString>>& TextFields()
{
    using K = TKRN_MP3_Track;
    static const std::vector<TFieldNames<QString>> fields{
        {&K::Artist, {u"ARTIST"_s}},
        {&K::Title, {u"TITLE"_s}},
        {&K::Album, {u"ALBUM"_s}},
        {&K::Genre, {u"GENRE"_s, u"STYLE"_s}},
        {&K::EAN, {u"BARCODE"_s, u"ISBN"_s}},
        {&K::ASIN, {u"ASIN"_s}},
        {&K::CatalogNo, {u"CATALOGNUMBER"_s, u"CATALOGID"_s, u"DISCOGS_CATALOG"_s}},
        {&K::Country,
         {u"COUNTRY"_s, u"RELEASECOUNTRY"_s, u"DISCOGS_COUNTRY"_s, u"MusicBrainz Album Release Country"_s}},
        {&K::DiscogsID, {u"DISCOGS_RELEASE_ID"_s}},
        {&K::MusicBrainzTrackID, {u"MUSICBRAINZ_TRACKID"_s, u"MUSICBRAINZ TRACK ID"_s}},
        {&K::MusicBrainzAlbumID, {u"MUSICBRAINZ_ALBUMID"_s, u"MUSICBRAINZ ALBUM ID"_s}},
        {&K::Comments, {u"COMMENT"_s, u"NOTES"_s}},
        {&K::Lyrics, {u"LYRICS"_s}},
        {&K::lLabel, {u"LABEL"_s, u"ORGANIZATION"_s, u"PUBLISHER"_s, u"DISCOGS_LABEL"_s}},
        {&K::Composer, {u"COMPOSER"_s}},
        {&K::Conductor, {u"CONDUCTOR"_s}},
        {&K::Styles, {u"STYLE"_s, u"STYLES"_s, u"DISCOGS_STYLE"_s}},
        {&K::Artists, {u"ARTISTS"_s, u"DISCOGS_ARTISTS"_s}},
    };
    return fields;
}

const std::vector<TFieldNames<int>>& NumberFields()
{
    using K = TKRN_MP3_Track;
    static const std::vector<TFieldNames<int>> fields{
        {&K::Year,
         {u"YEAR"_s, u"ORIGINALYEAR"_s, u"DISCOGS_RELEASED"_s, u"RECORDINGDATE"_s, u"RECORD DATE"_s, u"DATE"_s}},
        {&K::No, {u"TRACKNUMBER"_s, u"TRACK"_s, u"DISCOGS_ORIGINAL_TRACK_NUMBER"_s}},
        {&K::TotalTracks, {u"TOTALTRACKS"_s, u"TRACKTOTAL"_s}},
        {&K::DiscNo, {u"DISCNUMBER"_s}},
        {&K::DiscCount, {u"TOTALDISCS"_s, u"DISCTOTAL"_s}},
        {&K::BPM, {u"BPM"_s}},
    };
    return fields;
}

QString FirstTag(const TTags& tags, const QStringList& names)
{
    for (const QString& name : names) {
        if (QString value = tags.GetTag(name); !value.isEmpty())
            return value;
    }
    return {};
}

void FillFromTags(TKRN_MP3_Track& track, const TTags& tags)
{
    static const QStringList dates{u"ORIGINALDATE"_s, u"DISCOGS_RELEASED"_s, u"DATE"_s};
    for (const auto& [field, names] : TextFields())
        track.*field = FirstTag(tags, names);
    for (const auto& [field, names] : NumberFields()) {
        if (const QString text = FirstTag(tags, names); !text.isEmpty())
            track.*field = ParseLenientNumber(text);
    }
    track.ReleaseDate = ParseTagDate(FirstTag(tags, dates));
    track.IsRemix = track.Title.contains("remix"_L1, Qt::CaseInsensitive);
}

int SecondsOf(double length)
{
    constexpr double most = std::numeric_limits<int>::max();
    return static_cast<int>(RoundHalfEven(std::clamp(length, 0.0, most)));
}

void FillFromAudio(TKRN_MP3_Track& track, const TTags& tags, TByteSource& file)
{
    constexpr qint64 most = std::numeric_limits<int>::max();
    track.Bitrate = static_cast<int>(std::clamp<qint64>(tags.SourceAudioAttributes().BitRate() / 1000, 0, most));
    track.DurationSec = SecondsOf(tags.SourceAudioAttributes().PlayTime());
    const QString extension = ExtensionOf(track.FilePath);
    if (track.DurationSec == 0 && extension == ".tta"_L1)
        track.DurationSec = TTADurationSec(file);
    if (track.DurationSec == 0 && extension == ".opus"_L1)
        track.DurationSec = OpusDurationSec(file);
}

void TakeCover(TKRN_MP3_Track& track, const TTags& tags)
{
    if (tags.CoverArtCount() == 0 || tags.CoverArts().front()->PictureFormat == tpfUnknown)
        return;
    // A picture that cannot be decoded is none: a later file or a picture beside the files may have a better one.
    TCoverPicture picture;
    if (picture.LoadFromBytes(tags.CoverArts().front()->Stream))
        track.Cover = picture.Bytes();
}

void FillAlbumFromNames(TKRN_MP3_Track& track)
{
    TAlbumName album = ParseAlbumFolderName(FileNameOf(FolderOf(track.FilePath)));
    if (album.Artist.isEmpty()) {
        const TAlbumName fromFile = ParseAlbumFolderName(StemOf(track.FilePath));
        album.Artist = fromFile.Artist;
        if (album.Year == 0)
            album.Year = fromFile.Year;
    }
    if (track.Artist.isEmpty())
        track.Artist = album.Artist;
    if (track.Album.isEmpty())
        track.Album = album.Album;
    if (track.Year == 0)
        track.Year = album.Year;
}

void FillTitleFromName(TKRN_MP3_Track& track)
{
    const TTrackName name = ParseTrackFileName(track.FilePath);
    track.Title = name.Title;
    if (track.No == 0)
        track.No = name.No;
}

// A transport stream holds no tags: everything comes from the names.
TKRN_MP3_Track ProcessStream(const QString& filePath, const TMP3ScanOptions& options)
{
    TKRN_MP3_Track track;
    track.FilePath = filePath;
    if (options.ReadStreamLength)
        track.DurationSec = SecondsOf(options.ReadStreamLength(filePath));
    FillTitleFromName(track);
    const TAlbumName album = ParseAlbumFolderName(FileNameOf(FolderOf(filePath)));
    track.Artist = album.Artist;
    track.Album = album.Album;
    track.Year = album.Year;
    return track;
}

} // namespace

std::variant<TScannedFile, TFileFailure> ProcessFile(const QString& filePath, const TMP3ScanOptions& options,
                                                     bool wantCover)
{
    // The tag reader takes a file that it cannot open for one without tags.
    const auto file = TFileSource::Open(TextToPath(filePath));
    if (!file || !IsSupportedAudio(filePath))
        return TFileFailure{options.UnreadableFile};
    if (ExtensionOf(filePath) == ".m2ts"_L1)
        return TScannedFile{ProcessStream(filePath, options), {}};
    TTags tags;
    tags.ParseWavPackAudioAttributes = true;
    tags.ParseMusePackAudioAttributes = true;
    tags.ParseMonkeyAudioAttributes = true;
    tags.ParseCoverArts = wantCover;
    if (tags.LoadFromFile(filePath) != 0)
        return TFileFailure{options.UnreadableFile};
    TKRN_MP3_Track track;
    track.FilePath = filePath;
    FillFromTags(track, tags);
    FillFromAudio(track, tags, *file);
    if (wantCover)
        TakeCover(track, tags);
    if (track.Album.isEmpty() || track.Artist.isEmpty())
        FillAlbumFromNames(track);
    if (track.Title.isEmpty())
        FillTitleFromName(track);
    return TScannedFile{std::move(track), tags.GetTag(u"CUESHEET"_s)};
}

} // namespace Kestrune
