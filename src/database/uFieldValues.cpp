// SPDX-License-Identifier: GPL-3.0-or-later
#include "uFieldValues.h"

#include "uArticles.h"
#include "uColumnNames.h"
#include "uDataSet.h"
#include "uDefaults.h"
#include "uObjs.h"

#include <QDateTime>

#include <algorithm>
#include <span>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

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

bool CountsAsEmpty(const TVariant& value)
{
    if (VarIsNullOrEmpty(value))
        return true;
    return value.typeId() != QMetaType::QString && value.canConvert<double>() && value.toDouble() == 0.0;
}

} // namespace

bool IsFieldAssignable(const TFieldDef& field)
{
    return !field.AutoIncrement && !field.ReadOnly && field.Kind != fkBlob && field.Name != Col::Rating &&
           field.Name != "Release"_L1;
}

TVariant ToFieldValue(const TFieldDef& field, const TVariant& value)
{
    return VarIsNullOrEmpty(value) ? TVariant() : ConvertToKind(value, field.Kind);
}

void AssignFieldValue(TDataset& dataSet, int field, const TVariant& value)
{
    if (field < 0)
        return;
    const TFieldDef& def = dataSet.Fields()[static_cast<size_t>(field)];
    if (IsFieldAssignable(def))
        dataSet.SetValue(field, ToFieldValue(def, value));
}

TVariant ApplyDefaultValue(const TVariant& value, const QString& fieldName)
{
    if (!CountsAsEmpty(value))
        return value;
    const auto rows = std::span(DefaultRows);
    const auto row = std::ranges::find_if(rows, [&](const TDefaultRow& entry) { return fieldName == entry.Field; });
    return row == rows.end() ? value : row->Value(Defaults().Values);
}

QString DisplayText(const QString& fieldName, const QString& text)
{
    const TDefaults& settings = Defaults();
    const bool covered = (fieldName == Col::Artist && settings.ArticlesFieldArtist) ||
                         (fieldName == Col::ReleaseName && settings.ArticlesFieldReleaseName);
    return settings.ArticlesEnabled && covered
               ? ApplyArticleDisplay(text, settings.ArticlesList, settings.ArticlesDisplayMode)
               : text;
}

} // namespace Kestrune
