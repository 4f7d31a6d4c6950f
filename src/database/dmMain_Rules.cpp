// SPDX-License-Identifier: GPL-3.0-or-later
#include "dmMain.h"
#include "uColumnNames.h"
#include "uDefaults.h"
#include "uTHStrings.h"

#include <QDateTime>

#include <algorithm>
#include <span>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

QString NowText() { return QDateTime::currentDateTime().toString(u"yyyy-MM-dd hh:mm:ss"_s); }

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

// A date-time as the file keeps it, or null.
TVariant DateTimeValue(const TVariant& value)
{
    QDateTime time = value.toDateTime();
    for (const auto& format : {u"yyyy-MM-dd hh:mm:ss"_s, u"yyyy-MM-ddThh:mm:ss"_s}) {
        if (!time.isValid())
            time = QDateTime::fromString(VarToStr(value), format);
    }
    if (!time.isValid())
        time = ParseReleaseDate(VarToStr(value)).startOfDay();
    return time.isValid() ? TVariant(time.toString(u"yyyy-MM-dd hh:mm:ss"_s)) : TVariant();
}

TVariant ConvertToKind(const TVariant& value, TFieldKind kind)
{
    switch (kind) {
    case fkString:
    case fkMemo: return VarToStr(value);
    case fkInteger: return VarToInt64(value);
    case fkFloat: return VarToDouble(value);
    case fkBoolean: return VarToBool(value);
    case fkDate: {
        const bool withTime = value.typeId() == QMetaType::QDateTime;
        const QDate date = withTime ? value.toDateTime().date() : ParseReleaseDate(VarToStr(value));
        return date.isValid() ? TVariant(date) : TVariant();
    }
    case fkDateTime: return DateTimeValue(value);
    case fkBlob: break;
    }
    return {};
}

struct TDefaultRow {
    TColumnName Field;
    TVariant (*Value)(const TDefaultValues& values);
};

constexpr TDefaultRow DefaultRows[] = {
    {Col::Currency, [](const TDefaultValues& values) { return TVariant(values.Currency); }},
    {Col::Quantity, [](const TDefaultValues& values) { return TVariant(values.Quantity); }},
    {Col::CountryCode, [](const TDefaultValues& values) { return TVariant(values.Country); }},
    {Col::MediaType, [](const TDefaultValues& values) { return TVariant(values.MediaType); }},
    {Col::Rating_Calc, [](const TDefaultValues& values) { return TVariant(values.Rating / 2.0); }},
    {Col::Condition, [](const TDefaultValues& values) { return TVariant(values.Condition); }},
    {Col::ConditionMedia, [](const TDefaultValues& values) { return TVariant(values.MediaCondition); }},
    {Col::Status, [](const TDefaultValues& values) { return TVariant(values.Status); }},
    {Col::OwnerId, [](const TDefaultValues& values) { return TVariant(values.Owner); }},
    {Col::Channels, [](const TDefaultValues& values) { return TVariant(values.Channels); }},
    {Col::Genre, [](const TDefaultValues& values) { return TVariant(values.Genre); }},
    {Col::Spars, [](const TDefaultValues& values) { return TVariant(values.Spars); }},
    {Col::PurchaseStore, [](const TDefaultValues& values) { return TVariant(values.PurchaseStore); }},
    {Col::Location, [](const TDefaultValues& values) { return TVariant(values.Location); }},
    {Col::IsLive, [](const TDefaultValues& values) { return TVariant(values.IsLive); }},
    {Col::IsRare, [](const TDefaultValues& values) { return TVariant(values.IsRare); }},
};

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

bool CountsAsEmpty(const TVariant& value)
{
    if (VarIsNullOrEmpty(value))
        return true;
    return value.typeId() != QMetaType::QString && value.canConvert<double>() && value.toDouble() == 0.0;
}

} // namespace

bool TDataModuleMain::IsFieldAssignable(const TFieldDef& field)
{
    return !field.AutoIncrement && !field.ReadOnly && field.Kind != fkBlob && field.Name != Col::Rating &&
           field.Name != "Release"_L1;
}

TVariant TDataModuleMain::ToFieldValue(const TFieldDef& field, const TVariant& value)
{
    return VarIsNullOrEmpty(value) ? TVariant() : ConvertToKind(value, field.Kind);
}

void TDataModuleMain::AssignFieldValue(TDataset& dataSet, int field, const TVariant& value)
{
    if (field < 0)
        return;
    const TFieldDef& def = dataSet.Fields()[static_cast<size_t>(field)];
    if (IsFieldAssignable(def))
        dataSet.SetValue(field, ToFieldValue(def, value));
}

TVariant TDataModuleMain::ApplyDefaultValue(const TVariant& value, const QString& fieldName)
{
    if (!CountsAsEmpty(value))
        return value;
    const auto rows = std::span(DefaultRows);
    const auto row = std::ranges::find_if(rows, [&](const TDefaultRow& entry) { return fieldName == entry.Field; });
    return row == rows.end() ? value : row->Value(Defaults().Values);
}

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
