// SPDX-License-Identifier: GPL-3.0-or-later
#include "dmMain.h"
#include "uColumnNames.h"
#include "uDefaults.h"
#include "uFieldEditors.h"
#include "uFieldText.h"
#include "uTHStrings.h"
#include "uViewFilters.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int SavedFilterVersion = 1;
constexpr int DeepestNode = 16; // what a hand-made file may not exceed
constexpr qsizetype LongestFilter = 100000;

// Names of the operators in saved filters: they stay when the enumeration changes.
constexpr std::pair<TFilterOp, const char*> OpNames[] = {
    {foEquals, "eq"},         {foNotEquals, "ne"},      {foLess, "lt"},         {foLessOrEqual, "le"},
    {foGreater, "gt"},        {foGreaterOrEqual, "ge"}, {foLike, "like"},       {foNotLike, "notlike"},
    {foIsNull, "null"},       {foIsNotNull, "notnull"}, {foContains, "has"},    {foNotContains, "hasnot"},
    {foBeginsWith, "begins"}, {foEndsWith, "ends"},     {foBetween, "between"}, {foInPeriod, "period"}};

QJsonValue ValueToJson(const TVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::Bool: return value.toBool();
    case QMetaType::Int:
    case QMetaType::LongLong: return value.toLongLong();
    case QMetaType::Double: return value.toDouble();
    case QMetaType::QVariantList: {
        QJsonArray list;
        for (const QVariant& item : value.toList())
            list.append(ValueToJson(item));
        return list;
    }
    default: return VarToStr(value);
    }
}

TVariant ValueFromJson(const QJsonValue& value, TFieldKind kind)
{
    if (value.isArray()) {
        QVariantList list;
        for (const QJsonValue& item : value.toArray())
            list.append(ValueFromJson(item, kind));
        return list;
    }
    if (value.isBool())
        return value.toBool();
    if (value.isDouble())
        return kind == fkFloat ? TVariant(value.toDouble()) : TVariant(value.toInteger());
    const QString text = value.toString();
    if (kind == fkDate)
        return QDate::fromString(text, Qt::ISODate).isValid() ? TVariant(QDate::fromString(text, Qt::ISODate))
                                                              : TVariant(text);
    return text;
}

QJsonObject NodeToJson(const TFilterNode& node)
{
    QJsonArray criteria;
    for (const TFilterCriterion& criterion : node.Criteria) {
        const auto name = std::ranges::find(OpNames, criterion.Op, &std::pair<TFilterOp, const char*>::first);
        if (name == std::end(OpNames))
            continue;
        criteria.append(QJsonObject{{u"column"_s, criterion.Column},
                                    {u"op"_s, QString::fromLatin1(name->second)},
                                    {u"value"_s, ValueToJson(criterion.Value)},
                                    {u"text"_s, criterion.DisplayText}});
    }
    QJsonArray groups;
    for (const TFilterNode& group : node.Groups)
        groups.append(NodeToJson(group));
    return {
        {u"any"_s, node.Logic == flAny}, {u"not"_s, node.Negated}, {u"criteria"_s, criteria}, {u"groups"_s, groups}};
}

TFieldKind KindOfColumn(const QString& column)
{
    for (const auto columns : {ReleaseColumns(), TrackColumns()})
        for (const TColumnDef& def : columns)
            if (column.compare(def.Name.View(), Qt::CaseInsensitive) == 0)
                return def.Kind;
    return fkFloat;
}

bool NodeFromJson(const QJsonObject& object, TFilterNode& node, int depth)
{
    if (depth > DeepestNode)
        return false;
    node.Logic = object[u"any"_s].toBool() ? flAny : flAll;
    node.Negated = object[u"not"_s].toBool();
    for (const QJsonValue& item : object[u"criteria"_s].toArray()) {
        const QJsonObject entry = item.toObject();
        const QByteArray op = entry[u"op"_s].toString().toLatin1();
        const auto name = std::ranges::find_if(OpNames, [&](const auto& known) { return op == known.second; });
        const QString column = entry[u"column"_s].toString();
        if (name == std::end(OpNames) || column.isEmpty())
            return false;
        node.Criteria.push_back(
            {column, name->first, ValueFromJson(entry[u"value"_s], KindOfColumn(column)), entry[u"text"_s].toString()});
    }
    for (const QJsonValue& item : object[u"groups"_s].toArray()) {
        node.Groups.emplace_back();
        if (!NodeFromJson(item.toObject(), node.Groups.back(), depth + 1))
            return false;
    }
    return true;
}

QString CriterionText(const std::vector<TFieldDef>& fields, const TFilterCriterion& criterion)
{
    const auto field = std::ranges::find_if(
        fields, [&](const TFieldDef& def) { return def.Name.compare(criterion.Column, Qt::CaseInsensitive) == 0; });
    const QString caption = field == fields.end() ? criterion.Column : ColumnLabel(*field, Defaults());
    QStringList parts{caption, FilterOpText(criterion.Op)};
    if (criterion.Op == foInPeriod)
        parts << FilterPeriodText(static_cast<TFilterPeriod>(criterion.Value.toInt()));
    else if (criterion.Op != foIsNull && criterion.Op != foIsNotNull)
        parts << criterion.DisplayText;
    return parts.join(u' ');
}

struct TPrefix {
    QLatin1StringView Text;
    TFilterOp Op;
};

// The longer ones first.
constexpr TPrefix Prefixes[] = {{"<="_L1, foLessOrEqual}, {">="_L1, foGreaterOrEqual}, {"<>"_L1, foNotEquals},
                                {"<"_L1, foLess},         {">"_L1, foGreater},         {"="_L1, foEquals}};

// A value as the column holds it: by the shown text of a list first, else as typed.
std::optional<TVariant> TypedValue(TDataModuleMain& data, const TFieldDef& field, const QString& text)
{
    if (EditorKindOf(field) == ekChoice)
        for (const TValueAndText& item : EditorItems(data, field))
            if (item.Text.compare(text, Qt::CaseInsensitive) == 0)
                return TVariant(item.Value);
    const std::optional<TVariant> value = ParseFieldText(field, text);
    return value && VarIsNull(*value) ? std::nullopt : value;
}

// Dates lie in the file as text.
TVariant Stored(const TVariant& value)
{
    return value.typeId() == QMetaType::QDate ? TVariant(value.toDate().toString(Qt::ISODate)) : value;
}

} // namespace

QString FilterSetToText(const TFilterSet& set)
{
    QJsonObject columns;
    for (const auto& [column, text] : set.Columns)
        columns.insert(column, text);
    const QJsonObject object{{u"version"_s, SavedFilterVersion},
                             {u"status"_s, set.Status},
                             {u"letter"_s, set.Letter},
                             {u"letterField"_s, set.LetterField},
                             {u"keywordColumn"_s, set.KeywordColumn},
                             {u"keyword"_s, set.KeywordText},
                             {u"everything"_s, set.Everything},
                             {u"columns"_s, columns},
                             {u"builder"_s, NodeToJson(set.Builder)}};
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

std::optional<TFilterSet> FilterSetFromText(const QString& text)
{
    const QJsonObject object =
        text.size() > LongestFilter ? QJsonObject() : QJsonDocument::fromJson(text.toUtf8()).object();
    TFilterSet set;
    if (object[u"version"_s].toInt() != SavedFilterVersion ||
        !NodeFromJson(object[u"builder"_s].toObject(), set.Builder, 0))
        return {};
    set.Status = object[u"status"_s].toString();
    set.Letter = object[u"letter"_s].toString().left(1);
    set.LetterField = object[u"letterField"_s].toInt() == 1 ? 1 : 0;
    set.KeywordColumn = object[u"keywordColumn"_s].toString();
    set.KeywordText = object[u"keyword"_s].toString();
    set.Everything = object[u"everything"_s].toString();
    const QJsonObject columns = object[u"columns"_s].toObject();
    for (auto it = columns.begin(); it != columns.end(); ++it)
        set.Columns[it.key()] = it.value().toString();
    return set;
}

std::optional<TFilterCriterion> ColumnCriterion(TDataModuleMain& data, const TFieldDef& field, const QString& text)
{
    const QString trimmed = text.trimmed();
    const auto prefix = std::ranges::find_if(Prefixes, [&](const TPrefix& p) { return trimmed.startsWith(p.Text); });
    if (prefix != std::end(Prefixes)) {
        const QString rest = trimmed.mid(prefix->Text.size()).trimmed();
        if (rest.isEmpty() && (prefix->Op == foEquals || prefix->Op == foNotEquals))
            return TFilterCriterion{field.Name, prefix->Op == foEquals ? foIsNull : foIsNotNull, {}, text};
        const std::optional<TVariant> value = TypedValue(data, field, rest);
        return value ? std::optional(TFilterCriterion{field.Name, prefix->Op, Stored(*value), text}) : std::nullopt;
    }
    if (const qsizetype dots = trimmed.indexOf(".."_L1); dots > 0 && !field.IsText()) {
        const auto from = TypedValue(data, field, trimmed.left(dots));
        const auto to = TypedValue(data, field, trimmed.mid(dots + 2));
        if (!from || !to)
            return {};
        return TFilterCriterion{field.Name, foBetween, QVariantList{Stored(*from), Stored(*to)}, text};
    }
    const TEditorKind kind = EditorKindOf(field);
    if (kind == ekChoice) {
        const std::optional<TVariant> value = TypedValue(data, field, trimmed);
        return value ? std::optional(TFilterCriterion{field.Name, foEquals, *value, text}) : std::nullopt;
    }
    if (field.IsText() || field.Kind == fkDateTime)
        return TFilterCriterion{field.Name, foContains, trimmed, text};
    const std::optional<TVariant> value = TypedValue(data, field, trimmed);
    return value ? std::optional(TFilterCriterion{field.Name, foEquals, Stored(*value), text}) : std::nullopt;
}

QString CaptionOfColumn(const QString& column)
{
    for (const auto columns : {ReleaseColumns(), TrackColumns()})
        for (const TColumnDef& def : columns)
            if (column.compare(def.Name.View(), Qt::CaseInsensitive) == 0)
                return GetLanguageString(QString::fromLatin1(def.LabelKey));
    return column;
}

QString FilterOpText(TFilterOp op)
{
    switch (op) {
    case foEquals: return GetLanguageString(u"cSFilterOpEquals"_s);
    case foNotEquals: return GetLanguageString(u"cSFilterOpNotEquals"_s);
    case foLess: return GetLanguageString(u"cSFilterOpLess"_s);
    case foLessOrEqual: return GetLanguageString(u"cSFilterOpLessOrEqual"_s);
    case foGreater: return GetLanguageString(u"cSFilterOpGreater"_s);
    case foGreaterOrEqual: return GetLanguageString(u"cSFilterOpGreaterOrEqual"_s);
    case foLike: return GetLanguageString(u"cSFilterOpLike"_s);
    case foNotLike: return GetLanguageString(u"cSFilterOpNotLike"_s);
    case foIsNull: return GetLanguageString(u"cSFilterOpIsNull"_s);
    case foIsNotNull: return GetLanguageString(u"cSFilterOpIsNotNull"_s);
    case foContains: return GetLanguageString(u"cSFilterOpContains"_s);
    case foNotContains: return GetLanguageString(u"cSFilterOpNotContains"_s);
    case foBeginsWith: return GetLanguageString(u"cSFilterOpBeginsWith"_s);
    case foEndsWith: return GetLanguageString(u"cSFilterOpEndsWith"_s);
    case foBetween: return GetLanguageString(u"cSFilterOpBetween"_s);
    case foInPeriod: return GetLanguageString(u"cSFilterOpInPeriod"_s);
    default: return {};
    }
}

QString FilterPeriodText(TFilterPeriod period)
{
    switch (period) {
    case fpToday: return GetLanguageString(u"cSPeriodToday"_s);
    case fpYesterday: return GetLanguageString(u"cSPeriodYesterday"_s);
    case fpLast7Days: return GetLanguageString(u"cSPeriodLast7Days"_s);
    case fpLast30Days: return GetLanguageString(u"cSPeriodLast30Days"_s);
    case fpLast365Days: return GetLanguageString(u"cSPeriodLast365Days"_s);
    case fpThisMonth: return GetLanguageString(u"cSPeriodThisMonth"_s);
    case fpLastMonth: return GetLanguageString(u"cSPeriodLastMonth"_s);
    case fpThisYear: return GetLanguageString(u"cSPeriodThisYear"_s);
    case fpLastYear: return GetLanguageString(u"cSPeriodLastYear"_s);
    case fpFuture: return GetLanguageString(u"cSPeriodFuture"_s);
    }
    return {};
}

std::vector<TFilterOp> FilterOpsOf(const TFieldDef& field)
{
    if (field.Kind == fkBoolean)
        return {foEquals, foNotEquals, foIsNull, foIsNotNull};
    if (field.IsText() && field.Name != Col::CountryCode)
        return {foContains, foNotContains, foEquals,  foNotEquals, foBeginsWith,
                foEndsWith, foLike,        foNotLike, foIsNull,    foIsNotNull};
    if (field.IsText() || IsFriendField(field.Name))
        return {foEquals, foNotEquals, foIsNull, foIsNotNull};
    std::vector<TFilterOp> ops{foEquals,         foNotEquals, foLess,   foLessOrEqual, foGreater,
                               foGreaterOrEqual, foBetween,   foIsNull, foIsNotNull};
    if (field.Kind == fkDate || field.Kind == fkDateTime)
        ops.insert(ops.begin(), foInPeriod);
    return ops;
}

QString FilterSummary(const std::vector<TFieldDef>& fields, const TFilterNode& node)
{
    QStringList parts;
    for (const TFilterCriterion& criterion : node.Criteria)
        parts << CriterionText(fields, criterion);
    for (const TFilterNode& group : node.Groups)
        if (!group.IsEmpty())
            parts << u'(' + FilterSummary(fields, group) + u')';
    const QString word = GetLanguageString(node.Logic == flAny ? u"cSFilterOr"_s : u"cSFilterAnd"_s);
    const QString joined = parts.join(u' ' + word + u' ');
    return node.Negated ? GetLanguageString(u"cSFilterNot"_s).arg(joined) : joined;
}

} // namespace Kestrune
