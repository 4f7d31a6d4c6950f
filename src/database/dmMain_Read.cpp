// SPDX-License-Identifier: GPL-3.0-or-later
#include "dmMain.h"
#include "uColumnNames.h"
#include "uDefaults.h"

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

struct TPictureSource {
    TColumnName Column;
    TCoverPictureType Type;
};

constexpr TPictureSource PictureSources[] = {
    {Col::LargePicture, cptFrontLarge}, {Col::LargePictureBack, cptBackLarge}, {Col::LargePictureMedia, cptMediaLarge},
    {Col::ThumbPicture, cptFrontThumb}, {Col::ThumbPictureBack, cptBackThumb}, {Col::ThumbPictureMedia, cptMediaThumb},
};

std::vector<TAlbumCredit> ReadCredits(TDataset& cursor)
{
    std::vector<TAlbumCredit> credits;
    const int musician = cursor.FieldIndex(Col::Musician);
    const int instrument = cursor.FieldIndex(Col::Instrument);
    for (int row = 0; row < cursor.RecordCount(); ++row)
        credits.push_back(
            TAlbumCredit::Make(VarToStr(cursor.ValueAt(row, musician)), VarToStr(cursor.ValueAt(row, instrument))));
    return credits;
}

// Live, blank, hidden and instrumental marks and the rating of a track are not carried over.
TAlbumTrack ReadTrack(const TDataset& cursor, int row)
{
    const auto value = [&](const QString& name) { return cursor.ValueAt(row, cursor.FieldIndex(name)); };
    const auto text = [&](const QString& name) { return VarToStr(value(name)); };
    const auto number = [&](const QString& name) { return static_cast<int>(VarToInt64(value(name)).toLongLong()); };
    TAlbumTrack track;
    track.TrackNo = number(Col::TrackNo);
    track.TrackName = text(Col::TrackTitle);
    track.TrackArtist = text(Col::Artist);
    track.TrackGenre = text(Col::Genre);
    track.DurationSec = static_cast<int>(RoundHalfEven(value(Col::TrackLength).toDouble() * 86400.0));
    track.DiscNo = number(Col::DiscNo);
    track.BPM = number(Col::BPM);
    track.Bitrate = number(Col::Bitrate);
    track.Lyrics = text(Col::Lyrics);
    track.Comments = text(Col::Comments);
    track.Filepath = text(Col::FilePath);
    track.Filetype = text(Col::FileType);
    track.Side = text(Col::Side);
    track.Composer = text(Col::Composer);
    track.Composition = text(Col::Composition);
    track.Conductor = text(Col::Conductor);
    track.Orchestra = text(Col::Orchestra);
    track.Chorus = text(Col::Chorus);
    track.IsRemix = VarToBool(value(Col::IsRemix));
    track.IsCover = VarToBool(value(Col::IsCover));
    return track;
}

} // namespace

TAlbumRelease TDataModuleMain::CurrentReleaseToAlbumRelease() { return ToAlbumRelease(FEdited); }

TAlbumRelease TDataModuleMain::ToAlbumRelease(TReleaseCursors& cursors)
{
    TAlbumRelease release;
    for (int i = 0; i < static_cast<int>(cursors.Info.Fields().size()); ++i) {
        const TFieldDef& field = cursors.Info.Fields()[static_cast<size_t>(i)];
        if (field.AutoIncrement || field.ReadOnly || field.Kind == fkBlob)
            continue;
        if (const TVariant value = cursors.Info.Value(i); !VarIsNull(value))
            release.SetItem2(field.Name, value);
    }
    for (const TPictureSource& source : PictureSources) {
        const TVariant bytes = cursors.Info.Value(source.Column);
        if (!VarIsNull(bytes))
            release.AddPicture(source.Type).LoadStored(bytes.toByteArray());
    }
    for (int row = 0; row < cursors.Tracks.RecordCount(); ++row) {
        release.Tracks.push_back(ReadTrack(cursors.Tracks, row));
        cursors.TrackCredits.SetParam(cursors.Tracks.KeyAt(row));
        release.Tracks.back().Credits = ReadCredits(cursors.TrackCredits);
    }
    release.Credits = ReadCredits(cursors.Credits);
    const int picture = cursors.Pictures.FieldIndex(Col::Picture);
    for (int row = 0; row < cursors.Pictures.RecordCount(); ++row) {
        const TVariant bytes = cursors.Pictures.ValueAt(row, picture);
        if (!VarIsNull(bytes))
            release.AddPicture(cptOther).LoadStored(bytes.toByteArray());
    }
    return release;
}

} // namespace Kestrune
