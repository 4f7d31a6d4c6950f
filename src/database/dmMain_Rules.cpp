// SPDX-License-Identifier: GPL-3.0-or-later
#include "dmMain.h"
#include "uColumnNames.h"
#include "uDefaults.h"
#include "uTHStrings.h"

#include <QDateTime>

#include <algorithm>
#include <span>
#include <utility>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

// Kept for its second: each of a release's rows has it twice, and making it costs more than writing a row.
QString NowText()
{
    static qint64 second = -1;
    static QString text;
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    if (std::exchange(second, now) != now)
        text = QDateTime::fromSecsSinceEpoch(now).toString(u"yyyy-MM-dd hh:mm:ss"_s);
    return text;
}

// `Rating` follows `Rating_Calc` when that is set, so a rating that somebody else gave meanwhile stays.
void PostTime(TDataset& cursor) { cursor.SetValue(Col::LastModified, NowText()); }

void SetAdded(TDataset& cursor) { cursor.SetValue(Col::DateAdded, NowText()); }

bool IsZero(const TVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::QDate: return !value.toDate().isValid();
    case QMetaType::QDateTime: return !value.toDateTime().isValid();
    case QMetaType::QString: return value.toString() == "0"_L1;
    default: return !VarIsNull(value) && value.toDouble() == 0.0;
    }
}

void ClearZero(TDataset& cursor, const QString& field)
{
    if (!cursor.IsChanged(cursor.FieldIndex(field)))
        return;
    if (const TVariant value = cursor.Value(field); !VarIsNull(value) && IsZero(value))
        cursor.SetValue(field, TVariant());
}

void NewRelease(TDataset& cursor)
{
    cursor.SetValue(Col::ReleaseName, GetLanguageString(u"cSReleasesFieldReleaseName"_s));
    SetAdded(cursor);
}

void PostRelease(TDataset& cursor)
{
    PostTime(cursor);
    for (const TColumnName field : {Col::ReleaseDate, Col::ReleaseYear, Col::DateAdded})
        ClearZero(cursor, field);
}

void NewTrack(TDataset& cursor, const TVariant& release)
{
    cursor.SetValue(Col::ReleaseId, release);
    cursor.SetValue(Col::TrackLength, 0.0);
    SetAdded(cursor);
}

} // namespace

QByteArray TDataModuleMain::ThumbnailOf(const QByteArray& largePicture) const
{
    const int height = Defaults().LargeHeight;
    if (FReleaseInWork) {
        // The worker that gathered the release may have made it already, by the same function.
        if (const TCoverPicture* front = FReleaseInWork->GetPicByType(cptFrontLarge))
            return front->Thumbnail(height);
    }
    return MakeThumbnail(largePicture, height);
}

void TDataModuleMain::SetRules()
{
    qReleasesMain.AfterInsert = NewRelease;
    qReleasesMain.BeforePost = PostRelease;
    for (TReleaseCursors* cursors : {&FEdited, &FStored})
        SetReleaseRules(*cursors);
    qReleaseInfo.AfterPost = [this](TDataset& cursor) {
        if (OnReleaseInfoAfterPost)
            OnReleaseInfoAfterPost(cursor);
    };
    qTracksAll.AfterInsert = [this](TDataset& cursor) {
        NewTrack(cursor, FSession ? qReleaseInfo.Param() : TVariant(qReleasesMain.CurrentKey()));
    };
    qTracksAll.BeforePost = PostTime;
}

void TDataModuleMain::SetReleaseRules(TReleaseCursors& cursors)
{
    cursors.Info.AfterInsert = NewRelease;
    cursors.Info.BeforePost = PostRelease;
    cursors.Info.OnFieldChanged = [this](TDataset& cursor, int field) {
        if (field != cursor.FieldIndex(Col::LargePicture))
            return;
        const QByteArray thumb = ThumbnailOf(cursor.Value(field).toByteArray());
        // A thumbnail that came with the release is better than none for a picture that does not decode.
        if (!thumb.isEmpty() || !FReleaseInWork)
            cursor.SetValue(Col::ThumbPicture, thumb.isEmpty() ? TVariant() : TVariant(thumb));
    };
    cursors.Tracks.AfterInsert = [&tracks = cursors.Tracks](TDataset& cursor) { NewTrack(cursor, tracks.Param()); };
    cursors.Tracks.BeforePost = PostTime;
    const auto setParent = [](TDetailDataset& children, const QString& column) {
        children.AfterInsert = [&children, column](TDataset& cursor) {
            if (const TVariant parent = children.Param(); parent.toLongLong() > 0)
                cursor.SetValue(column, parent);
        };
    };
    setParent(cursors.Credits, Col::ReleaseId);
    setParent(cursors.Pictures, Col::ReleaseId);
    setParent(cursors.TrackCredits, Col::TrackId);
}

} // namespace Kestrune
