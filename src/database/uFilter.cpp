// SPDX-License-Identifier: GPL-3.0-or-later
#include "uFilter.h"

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
    if (field.Name == "Rating_Calc"_L1) {
        const TFieldDef* rating = FieldByName(fields, u"Rating"_s);
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
    }
    return u"="_s;
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

QString SortToSQL(const std::vector<TSortItem>& sort, const std::vector<TFieldDef>& fields,
                  const QStringList& articleColumns, const QString& keyExpression)
{
    QStringList terms;
    for (const TSortItem& item : sort) {
        const TFieldDef* field = FieldByName(fields, item.Column);
        QString expression = field ? FieldExpression(*field, fields) : QString();
        if (expression.isEmpty())
            continue;
        if (field->Name.startsWith("Custom"_L1)) { // numbers and texts alike: numbers first, by value
            expression += u" COLLATE KRN_NOCASE"_s;
        } else if (field->IsText()) {
            const bool articles = articleColumns.contains(field->Name, Qt::CaseInsensitive);
            expression = (articles ? u"krn_article_key(%1)"_s : u"krn_key(%1)"_s).arg(expression);
        }
        terms.append(expression + (item.Descending ? u" DESC"_s : QString()));
    }
    terms.append(keyExpression);
    return terms.join(u", "_s);
}

} // namespace Kestrune
