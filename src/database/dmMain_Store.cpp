// SPDX-License-Identifier: GPL-3.0-or-later
#include "dmMain.h"
#include "uColumnNames.h"
#include "uFieldValues.h"
#include "uTHStrings.h"
#include "uThreads.h"

#include <QScopeGuard>

#include <array>
#include <span>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

struct TPictureColumn {
    TCoverPictureType Type;
    TColumnName Column;
};

constexpr TPictureColumn ThumbColumns[] = {
    {cptFrontThumb, Col::ThumbPicture}, {cptBackThumb, Col::ThumbPictureBack}, {cptMediaThumb, Col::ThumbPictureMedia}};
constexpr TPictureColumn LargeColumns[] = {
    {cptFrontLarge, Col::LargePicture}, {cptBackLarge, Col::LargePictureBack}, {cptMediaLarge, Col::LargePictureMedia}};

struct TTrackText {
    TColumnName Column;
    QString TAlbumTrack::*Field;
};

constexpr TTrackText TrackTexts[] = {
    {Col::TrackTitle, &TAlbumTrack::TrackName}, {Col::FilePath, &TAlbumTrack::Filepath},
    {Col::FileType, &TAlbumTrack::Filetype},    {Col::Lyrics, &TAlbumTrack::Lyrics},
    {Col::Comments, &TAlbumTrack::Comments},    {Col::Side, &TAlbumTrack::Side},
    {Col::Composer, &TAlbumTrack::Composer},    {Col::Composition, &TAlbumTrack::Composition},
    {Col::Conductor, &TAlbumTrack::Conductor},  {Col::Orchestra, &TAlbumTrack::Orchestra},
    {Col::Chorus, &TAlbumTrack::Chorus},
};

struct TTrackFlag {
    TColumnName Column;
    bool TAlbumTrack::*Field;
};

constexpr TTrackFlag TrackFlags[] = {
    {Col::IsRemix, &TAlbumTrack::IsRemix},   {Col::IsCover, &TAlbumTrack::IsCover},
    {Col::IsLive, &TAlbumTrack::IsLive},     {Col::IsBlank, &TAlbumTrack::IsBlank},
    {Col::IsHidden, &TAlbumTrack::IsHidden}, {Col::IsInstrumental, &TAlbumTrack::IsInstrumental},
};

TVariant TextOrNull(const QString& text) { return text.isEmpty() ? TVariant() : TVariant(text); }

void CopyPictures(const TAlbumRelease& release, TDataset& cursor, std::span<const TPictureColumn> columns)
{
    for (const TPictureColumn& column : columns) {
        const TCoverPicture* picture = release.GetPicByType(column.Type);
        if (picture && picture->HasImage())
            cursor.SetValue(column.Column, picture->Bytes());
    }
}

// The fields of the track cursor, looked up once for all tracks of a release.
struct TTrackFieldIndex {
    explicit TTrackFieldIndex(const TDataset& cursor)
    {
        const auto at = [&](const QString& name) { return cursor.FieldIndex(name); };
        Artist = at(Col::Artist);
        TrackNo = at(Col::TrackNo);
        DiscNo = at(Col::DiscNo);
        TrackLength = at(Col::TrackLength);
        Bitrate = at(Col::Bitrate);
        Rating = at(Col::Rating);
        Genre = at(Col::Genre);
        BPM = at(Col::BPM);
        for (size_t i = 0; i < std::size(TrackTexts); ++i)
            Texts[i] = at(TrackTexts[i].Column);
        for (size_t i = 0; i < std::size(TrackFlags); ++i)
            Flags[i] = at(TrackFlags[i].Column);
    }
    int Artist, TrackNo, DiscNo, TrackLength, Bitrate, Rating, Genre, BPM;
    std::array<int, std::size(TrackTexts)> Texts;
    std::array<int, std::size(TrackFlags)> Flags;
};

void FillTrack(TDataset& cursor, const TTrackFieldIndex& fields, const TAlbumTrack& track, const QString& releaseArtist,
               const QString& releaseGenre)
{
    cursor.SetValue(fields.Artist, TextOrNull(track.TrackArtist.isEmpty() ? releaseArtist : track.TrackArtist));
    cursor.SetValue(fields.TrackNo, track.TrackNo);
    cursor.SetValue(fields.DiscNo, track.DiscNo);
    for (size_t i = 0; i < std::size(TrackTexts); ++i)
        cursor.SetValue(fields.Texts[i], TextOrNull(track.*TrackTexts[i].Field));
    for (size_t i = 0; i < std::size(TrackFlags); ++i)
        cursor.SetValue(fields.Flags[i], track.*TrackFlags[i].Field);
    cursor.SetValue(fields.TrackLength, track.DurationFrac > 0 ? track.DurationFrac : track.DurationSec / 86400.0);
    if (track.Bitrate > 0)
        cursor.SetValue(fields.Bitrate, track.Bitrate);
    cursor.SetValue(fields.Rating, track.Rating >= 1 ? TVariant(track.Rating) : ApplyDefaultValue(0, Col::Rating));
    cursor.SetValue(fields.Genre, TextOrNull(track.TrackGenre.isEmpty() ? releaseGenre : track.TrackGenre));
    cursor.SetValue(fields.BPM, track.BPM != 0 ? TVariant(track.BPM) : ApplyDefaultValue(TVariant(), Col::BPM));
}

void StoreCredits(TDataset& cursor, const std::vector<TAlbumCredit>& credits)
{
    for (const TAlbumCredit& credit : credits) {
        cursor.Append();
        cursor.SetValue(Col::Musician, TextOrNull(credit.Musician));
        cursor.SetValue(Col::Instrument, TextOrNull(credit.Credit));
        cursor.Post();
    }
}

qint64 StoreMainRow(TSQLiteConnection& connection, TDetailDataset& cursor, const TAlbumRelease& release,
                    bool assignNewNo)
{
    cursor.SetParamOfNew(TVariant());
    cursor.Append();
    for (int i = 0; i < static_cast<int>(cursor.Fields().size()); ++i) {
        const TVariant value = ApplyDefaultValue(TVariant(), cursor.Fields()[static_cast<size_t>(i)].Name);
        if (!VarIsNull(value))
            AssignFieldValue(cursor, i, value);
    }
    for (const auto& [key, value] : release.Items()) {
        const int field = cursor.FieldIndex(key);
        // A release without a name keeps the text that asks for one.
        const bool keepsText =
            field >= 0 && cursor.Fields()[static_cast<size_t>(field)].Required && VarIsNullOrEmpty(value);
        if (field >= 0 && !keepsText)
            AssignFieldValue(cursor, field, value);
    }
    if (assignNewNo || VarIsNull(cursor.Value(Col::No)))
        cursor.SetValue(Col::No, connection.Scalar(u"select ifnull(max(no)+1, 1) as No from releases2"_s));
    // The thumbnails that came first: the large front picture makes its own.
    CopyPictures(release, cursor, ThumbColumns);
    CopyPictures(release, cursor, LargeColumns);
    cursor.Post();
    return cursor.CurrentKey();
}

void StorePictures(TDetailDataset& cursor, const TAlbumRelease& release)
{
    for (const auto& picture : release.Pictures) {
        const bool dot = !picture->Size().isEmpty() && picture->Size().width() <= 1;
        if (picture->PictureType() != cptOther || !picture->HasImage() || dot)
            continue;
        cursor.Append();
        cursor.SetValue(Col::Picture, picture->Bytes());
        cursor.Post();
    }
}

void StoreTracks(TReleaseCursors& cursors, const TAlbumRelease& release)
{
    if (release.Tracks.empty())
        return;
    const TTrackFieldIndex fields(cursors.Tracks);
    const QString artist = VarToStr(release.GetItem2(Col::Artist));
    const QString genre = VarToStr(ApplyDefaultValue(release.GetItem2(Col::Genre), Col::Genre));
    for (const TAlbumTrack& track : release.Tracks) {
        cursors.Tracks.Append();
        FillTrack(cursors.Tracks, fields, track, artist, genre);
        cursors.Tracks.Post();
        if (track.Credits.empty())
            continue;
        cursors.TrackCredits.SetParamOfNew(cursors.Tracks.CurrentKey());
        StoreCredits(cursors.TrackCredits, track.Credits);
    }
}

} // namespace

void TDataModuleMain::AddAlbumReleaseToDB(const TAlbumRelease& release, bool assignNewNo)
{
    Q_ASSERT(OnMainThread());
    if (!HasData())
        throw EDatabaseError(GetLanguageString(u"cSNoCollectionOpen"_s));
    if (IsReadOnly())
        throw EDatabaseError(GetLanguageString(u"cSCollectionReadOnly"_s));
    FAddingReleases = true;
    FReleaseInWork = &release;
    const auto finish = qScopeGuard([this] {
        for (TDetailDataset* cursor : FStored.All())
            cursor->Invalidate(); // also what was in work when it failed
        FReleaseInWork = nullptr;
        FAddingReleases = false;
    });
    TSQLiteTransaction transaction(FConnection);
    FLastAddedReleaseID = StoreMainRow(FConnection, FStored.Info, release, assignNewNo);
    FStored.SelectNew(FLastAddedReleaseID);
    StorePictures(FStored.Pictures, release);
    StoreCredits(FStored.Credits, release.Credits);
    StoreTracks(FStored, release);
    transaction.Commit();
    qReleasesMain.TakeIn(FLastAddedReleaseID);
}

} // namespace Kestrune
