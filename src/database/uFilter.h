// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uColumns.h"
#include "uTHTypes.h"

#include <QDate>
#include <QString>
#include <QStringList>

#include <memory>
#include <utility>
#include <vector>

namespace Kestrune {

/// How a criterion compares.
enum class TFilterOp : quint8 {
    foEquals,
    foNotEquals,
    foLess,
    foLessOrEqual,
    foGreater,
    foGreaterOrEqual,
    foLike, ///< the value is a pattern with % and _
    foNotLike,
    foIsNull,
    foIsNotNull,
    foContains, ///< the value is plain text: % and _ mean themselves, here and in the next three
    foNotContains,
    foBeginsWith,
    foEndsWith,
    foBetween,  ///< the value is a list of two, both included
    foInPeriod, ///< the value names a TFilterPeriod, counted from today
    foNoLetter, ///< begins with something that is no letter
    foOfStatus, ///< the key column is that of a release with the status in the value
    foIsHit     ///< the key column is among the hits of the search in everything with the number in the value
};
using enum TFilterOp;

/// Spans of days relative to today, for columns that hold dates.
enum class TFilterPeriod : quint8 {
    fpToday,
    fpYesterday,
    fpLast7Days,
    fpLast30Days,
    fpLast365Days,
    fpThisMonth,
    fpLastMonth,
    fpThisYear,
    fpLastYear,
    fpFuture
};
using enum TFilterPeriod;
inline constexpr int FilterPeriodCount = 10;

/// First and last day of a period; the future has no last day.
std::pair<QDate, QDate> DaysOfPeriod(TFilterPeriod period, const QDate& today);

/// One condition on one column. Texts compare without regard to case.
struct TFilterCriterion {
    QString Column;
    TFilterOp Op = foEquals;
    TVariant Value;
    QString DisplayText;
};

/// Whether all or any of a group's conditions must hold.
enum class TFilterLogic : quint8 { flAll, flAny };
using enum TFilterLogic;

/// A tree of conditions as plain data, as the filter builder makes and the settings keep it.
struct TFilterNode {
    TFilterLogic Logic = flAll;
    bool Negated = false;
    std::vector<TFilterCriterion> Criteria;
    std::vector<TFilterNode> Groups;
    bool IsEmpty() const;
};

/// A tree of conditions. The root of a list cursor's filter is a group whose criteria must all hold.
class TFilterGroup {
public:
    using TId = quint64;

    /// Adds a criterion and gives the handle by which it is removed.
    TId Add(TFilterCriterion criterion);
    /// Adds a nested group and gives it; it stays valid until this group is cleared or changed.
    TFilterGroup& AddGroup(TFilterLogic logic, bool negated = false);
    /// Adds a whole tree as one nested group, removed by one handle.
    TId AddTree(const TFilterNode& node);
    /// True when the criterion was there, at any depth.
    bool Remove(TId id);
    void Clear();
    bool IsEmpty() const { return FItems.empty(); }

    /// A condition in SQL with its values in order; empty when nothing is asked for. Criteria on columns that are not
    /// among the fields are passed over.
    QString ToSQL(const std::vector<TFieldDef>& fields, std::vector<TVariant>& values) const;

private:
    void Take(const TFilterNode& node);

    struct TItem {
        TId Id = 0;
        TFilterCriterion Criterion;
        std::unique_ptr<TFilterGroup> Group; ///< set for a nested group
    };

    TFilterLogic FLogic = flAll;
    bool FNegated = false;
    std::vector<TItem> FItems;
};

/// One column to sort by.
struct TSortItem {
    QString Column;
    bool Descending = false;
    bool operator==(const TSortItem&) const = default;
};

/// The expression by which a column is ordered; empty for an unknown column.
QString SortExpression(const QString& column, const std::vector<TFieldDef>& fields, const QStringList& articleColumns);
/// The expression of a column's own value; empty for an unknown column.
QString ValueExpression(const QString& column, const std::vector<TFieldDef>& fields);

/// ORDER BY terms; `articleColumns` sort without their article. The key stands last, so that equal rows keep their
/// place. Unknown columns are passed over.
QString SortToSQL(const std::vector<TSortItem>& sort, const std::vector<TFieldDef>& fields,
                  const QStringList& articleColumns, const QString& keyExpression);

} // namespace Kestrune
