// SPDX-License-Identifier: GPL-3.0-or-later
#include "uFilter.h"

#include "uColumnNames.h"

#include <QStringList>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

const TFieldDef* FieldByName(const std::vector<TFieldDef>& fields, const QString& name)
{
    const auto found = std::ranges::find_if(
        fields, [&](const TFieldDef& field) { return field.Name.compare(name, Qt::CaseInsensitive) == 0; });
    return found == fields.end() ? nullptr : &*found;
}

// Computed fields stand for an expression over stored ones.
QString FieldExpression(const TFieldDef& field, const std::vector<TFieldDef>& fields)
{
    if (!field.Expression.isEmpty())
        return field.Expression;
    if (field.Name == Col::Rating_Calc) {
        const TFieldDef* rating = FieldByName(fields, Col::Rating);
        return rating ? u"(%1 / 2.0)"_s.arg(rating->Expression) : QString();
    }
    return {};
}

QString OperatorText(TFilterOp op)
{
    switch (op) {
    case foEquals: return u"="_s;
    case foNotEquals: return u"<>"_s;
    case foLess: return u"<"_s;
    case foLessOrEqual: return u"<="_s;
    case foGreater: return u">"_s;
    case foGreaterOrEqual: return u">="_s;
    case foLike: return u"LIKE"_s;
    case foNotLike: return u"NOT LIKE"_s;
    case foIsNull: return u"IS NULL"_s;
    case foIsNotNull: return u"IS NOT NULL"_s;
    case foContains:
    case foBeginsWith:
    case foEndsWith: return u"LIKE"_s;
    case foNotContains: return u"NOT LIKE"_s;
    default: break;
    }
    return u"="_s;
}

// Plain text as a pattern: the wildcards in it are escaped.
QString PatternOf(TFilterOp op, const QString& text)
{
    QString escaped = text;
    for (const QChar c : {u'\\', u'%', u'_'})
        escaped.replace(c, QString(u'\\') + c);
    return (op == foBeginsWith ? QString() : u"%"_s) + escaped + (op == foEndsWith ? QString() : u"%"_s);
}

bool IsPlainText(TFilterOp op)
{
    return op == foContains || op == foNotContains || op == foBeginsWith || op == foEndsWith;
}

QString PeriodToSQL(const QString& expression, const TVariant& value, std::vector<TVariant>& values)
{
    const int number = value.toInt();
    if (number < 0 || number >= FilterPeriodCount)
        return {};
    const auto [first, last] = DaysOfPeriod(static_cast<TFilterPeriod>(number), QDate::currentDate());
    values.push_back(first.toString(Qt::ISODate));
    if (!last.isValid())
        return expression + u" >= ?"_s;
    // Up to the start of the next day, since a column may hold the time as well.
    values.push_back(last.addDays(1).toString(Qt::ISODate));
    return u"%1 >= ? AND %1 < ?"_s.arg(expression);
}

QString BetweenToSQL(const QString& expression, const TVariant& value, std::vector<TVariant>& values)
{
    const QVariantList ends = value.toList();
    if (ends.size() != 2)
        return {};
    const QString collate = ends[0].typeId() == QMetaType::QString ? u" COLLATE KRN_NOCASE"_s : QString();
    values.push_back(ends[0]);
    values.push_back(ends[1]);
    return u"%1 >= ?%2 AND %1 <= ?%2"_s.arg(expression, collate);
}

QString CriterionToSQL(const TFilterCriterion& criterion, const std::vector<TFieldDef>& fields,
                       std::vector<TVariant>& values)
{
    const TFieldDef* field = FieldByName(fields, criterion.Column);
    const QString expression = field ? FieldExpression(*field, fields) : QString();
    if (expression.isEmpty())
        return {};
    const QString term = expression + u' ' + OperatorText(criterion.Op);
    if (criterion.Op == foIsNull || criterion.Op == foIsNotNull)
        return term;
    if (criterion.Op == foNoLetter)
        return u"krn_no_letter(%1)"_s.arg(expression);
    if (criterion.Op == foInPeriod)
        return PeriodToSQL(expression, criterion.Value, values);
    if (criterion.Op == foBetween)
        return BetweenToSQL(expression, criterion.Value, values);
    if (criterion.Op == foIsHit) {
        values.push_back(criterion.Value);
        return u"krn_hit(%1, ?)"_s.arg(expression);
    }
    if (criterion.Op == foOfStatus) {
        values.push_back(criterion.Value);
        return expression + u" IN (SELECT ID FROM Releases2 WHERE Status = ? COLLATE KRN_NOCASE)"_s;
    }
    if (IsPlainText(criterion.Op)) {
        values.push_back(PatternOf(criterion.Op, criterion.Value.toString()));
        return term + u" ? ESCAPE '\\'"_s;
    }
    values.push_back(criterion.Value);
    const bool comparesText =
        criterion.Op != foLike && criterion.Op != foNotLike && criterion.Value.typeId() == QMetaType::QString;
    return comparesText ? term + u" ? COLLATE KRN_NOCASE"_s : term + u" ?"_s;
}

TFilterGroup::TId NextFilterId()
{
    static TFilterGroup::TId last = 0;
    return ++last;
}

} // namespace

std::pair<QDate, QDate> DaysOfPeriod(TFilterPeriod period, const QDate& today)
{
    const QDate month(today.year(), today.month(), 1);
    const QDate year(today.year(), 1, 1);
    switch (period) {
    case fpToday: return {today, today};
    case fpYesterday: return {today.addDays(-1), today.addDays(-1)};
    case fpLast7Days: return {today.addDays(-6), today};
    case fpLast30Days: return {today.addDays(-29), today};
    case fpLast365Days: return {today.addDays(-364), today};
    case fpThisMonth: return {month, month.addMonths(1).addDays(-1)};
    case fpLastMonth: return {month.addMonths(-1), month.addDays(-1)};
    case fpThisYear: return {year, year.addYears(1).addDays(-1)};
    case fpLastYear: return {year.addYears(-1), year.addDays(-1)};
    case fpFuture: break;
    }
    return {today.addDays(1), QDate()};
}

bool TFilterNode::IsEmpty() const { return Criteria.empty() && std::ranges::all_of(Groups, &TFilterNode::IsEmpty); }

TFilterGroup::TId TFilterGroup::Add(TFilterCriterion criterion)
{
    FItems.push_back({NextFilterId(), std::move(criterion), nullptr});
    return FItems.back().Id;
}

TFilterGroup& TFilterGroup::AddGroup(TFilterLogic logic, bool negated)
{
    FItems.push_back({0, {}, std::make_unique<TFilterGroup>()});
    TFilterGroup& group = *FItems.back().Group;
    group.FLogic = logic;
    group.FNegated = negated;
    return group;
}

TFilterGroup::TId TFilterGroup::AddTree(const TFilterNode& node)
{
    FItems.push_back({NextFilterId(), {}, std::make_unique<TFilterGroup>()});
    FItems.back().Group->Take(node);
    return FItems.back().Id;
}

void TFilterGroup::Take(const TFilterNode& node)
{
    FLogic = node.Logic;
    FNegated = node.Negated;
    for (const TFilterCriterion& criterion : node.Criteria)
        Add(criterion);
    for (const TFilterNode& group : node.Groups)
        AddTree(group);
}

bool TFilterGroup::Remove(TId id)
{
    if (id != 0 && std::erase_if(FItems, [id](const TItem& item) { return item.Id == id; }) > 0)
        return true;
    return std::ranges::any_of(FItems, [id](const TItem& item) { return item.Group && item.Group->Remove(id); });
}

void TFilterGroup::Clear() { FItems.clear(); }

QString TFilterGroup::ToSQL(const std::vector<TFieldDef>& fields, std::vector<TVariant>& values) const
{
    QStringList terms;
    for (const TItem& item : FItems) {
        const QString term =
            item.Group ? item.Group->ToSQL(fields, values) : CriterionToSQL(item.Criterion, fields, values);
        if (!term.isEmpty())
            terms.append(u'(' + term + u')');
    }
    if (terms.isEmpty())
        return {};
    const QString joined = terms.join(FLogic == flAll ? u" AND "_s : u" OR "_s);
    // A negated group also holds where its conditions meet null, as "not" means to a reader.
    return FNegated ? u"NOT ifnull(("_s + joined + u"), 0)"_s : joined;
}

QString ValueExpression(const QString& column, const std::vector<TFieldDef>& fields)
{
    const TFieldDef* field = FieldByName(fields, column);
    return field ? FieldExpression(*field, fields) : QString();
}

QString SortExpression(const QString& column, const std::vector<TFieldDef>& fields, const QStringList& articleColumns)
{
    const QString expression = ValueExpression(column, fields);
    const TFieldDef* field = FieldByName(fields, column);
    if (expression.isEmpty() || !field->IsText())
        return expression;
    if (field->Name.startsWith("Custom"_L1)) // numbers and texts alike: numbers first, by value
        return expression + u" COLLATE KRN_NOCASE"_s;
    const bool articles = articleColumns.contains(field->Name, Qt::CaseInsensitive);
    return (articles ? u"krn_article_key(%1)"_s : u"krn_key(%1)"_s).arg(expression);
}

QString SortToSQL(const std::vector<TSortItem>& sort, const std::vector<TFieldDef>& fields,
                  const QStringList& articleColumns, const QString& keyExpression)
{
    QStringList terms;
    for (const TSortItem& item : sort) {
        const QString expression = SortExpression(item.Column, fields, articleColumns);
        if (!expression.isEmpty())
            terms.append(expression + (item.Descending ? u" DESC"_s : QString()));
    }
    terms.append(keyExpression);
    return terms.join(u", "_s);
}

} // namespace Kestrune
