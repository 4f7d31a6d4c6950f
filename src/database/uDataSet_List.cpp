// SPDX-License-Identifier: GPL-3.0-or-later
#include "uDataSet.h"
#include "uKeyOrder.h"

#include <QSet>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int CachedRecords = 2000;
constexpr int BlockSize = 48;
constexpr qsizetype RecordReach = 2 * 4096; // bytes of the file that reading one record touches
constexpr size_t KnownOrders = 4;
constexpr size_t KnownKeys = 4'000'000; // over all known orders

} // namespace

TListDataset::TListDataset(TSQLiteConnection& connection, TDatasetDef def) : TDataset(connection, std::move(def))
{
    FCache.setMaxCost(CachedRecords);
}

void TListDataset::Open()
{
    Connection().Cached(Rows().RowRefreshSQL()); // a file that lacks a column is refused here, not while it is painted
    SetState(dsBrowse);
    ReadKeys();
    SetRecNo(FKeys.empty() ? -1 : 0);
    NotifyReset();
}

void TListDataset::Close()
{
    TDataset::Close();
    FKeys.clear();
    FGroups.clear();
    FKnownOrders.clear();
    ForgetRows();
    FCache.clear();
    FFilter.Clear();
    FFilterActive = false;
    NotifyReset();
}

void TListDataset::Refresh()
{
    if (!Active())
        return;
    Cancel();
    FCache.clear();
    ApplyFilter();
}

void TListDataset::ApplyFilter()
{
    if (!Active())
        return;
    Post(); // the record in work may leave the list
    const qint64 key = CurrentKey();
    ReadKeys();
    const auto found = std::ranges::find(FKeys, key);
    const int row = found == FKeys.end() ? -1 : static_cast<int>(found - FKeys.begin());
    SetRecNo(row >= 0 ? row : (FKeys.empty() ? -1 : 0));
    // What the user asked for is shown also while releases are being added.
    Q_EMIT dataReset();
    Q_EMIT currentChanged();
}

void TListDataset::SetSort(std::vector<TSortItem> sort)
{
    FSort = std::move(sort);
    ApplyFilter();
}

void TListDataset::SetGrouping(const QStringList& columns)
{
    FGrouping.clear();
    for (const QString& column : columns)
        if (!ValueExpression(column, Fields()).isEmpty())
            FGrouping << column;
    ApplyFilter();
}

void TListDataset::SetArticleColumns(const QStringList& columns)
{
    FArticleColumns = columns;
    FKnownOrders.clear(); // the articles themselves may have changed
}

void TListDataset::ForgetRows() const
{
    FRowTable.clear();
    FRowOfKey.clear();
}

int TListDataset::RowOfKey(qint64 key) const
{
    if (FRowTable.empty() && FRowOfKey.isEmpty() && !FKeys.empty()) {
        const auto [least, most] = std::ranges::minmax(FKeys);
        if (least >= 0 && most < 4 * static_cast<qint64>(FKeys.size()) + 1000) {
            FRowTable.assign(static_cast<size_t>(most) + 1, -1);
            for (size_t i = 0; i < FKeys.size(); ++i)
                FRowTable[static_cast<size_t>(FKeys[i])] = static_cast<int>(i);
        } else {
            FRowOfKey.reserve(static_cast<qsizetype>(FKeys.size()));
            for (size_t i = 0; i < FKeys.size(); ++i)
                FRowOfKey.insert(FKeys[i], static_cast<int>(i));
        }
    }
    if (!FRowTable.empty())
        return key >= 0 && key < static_cast<qint64>(FRowTable.size()) ? FRowTable[static_cast<size_t>(key)] : -1;
    return FRowOfKey.value(key, -1);
}

qint64 TListDataset::KeyAt(int row) const
{
    return row >= 0 && row < static_cast<int>(FKeys.size()) ? FKeys[static_cast<size_t>(row)] : 0;
}

void TListDataset::ReadKeys()
{
    FKeys.clear();
    FGroups.clear();
    ForgetRows();
    std::vector<TVariant> values;
    const QString condition = FFilterActive ? FFilter.ToSQL(Fields(), values) : QString();
    if (!FGrouping.isEmpty()) {
        ReadGroupedKeys(condition, values);
        return;
    }
    QString rest = u" FROM %1"_s.arg(Def().From);
    if (!condition.isEmpty())
        rest += u" WHERE "_s + condition;
    const QString order = SortToSQL(FSort, Fields(), FArticleColumns, Def().KeyExpression);
    const QString sql = u"SELECT %1%2 ORDER BY %3"_s.arg(Def().KeyExpression, rest, order);
    if (TakeKnownOrder(sql, values))
        return;
    // Without ORDER BY the engine is free to walk the smallest index; the order is made here, quicker than by its
    // sorter.
    QStringList columns{Def().KeyExpression};
    std::vector<bool> descending;
    for (const TSortItem& item : FSort) {
        const QString expression = SortExpression(item.Column, Fields(), FArticleColumns);
        if (expression.isEmpty())
            continue;
        columns << expression;
        descending.push_back(item.Descending);
    }
    if (order.contains(" COLLATE "_L1)) { // an order of the engine's own
        TSQLiteStatement statement = Connection().Prepare(sql);
        statement.BindAll(values);
        while (statement.Step())
            FKeys.push_back(statement.ColumnInt64(0));
    } else {
        TKeyOrder keyOrder(std::move(descending));
        TSQLiteStatement statement = Connection().Prepare(u"SELECT "_s + columns.join(u", "_s) + rest);
        statement.BindAll(values);
        if (columns.size() > 1) {
            while (statement.Step())
                keyOrder.Add(statement);
            FKeys = keyOrder.Take();
        } else {
            while (statement.Step())
                FKeys.push_back(statement.ColumnInt64(0));
            std::ranges::sort(FKeys);
        }
    }
    KeepOrder(sql, values);
}

bool TListDataset::TakeKnownOrder(const QString& sql, const std::vector<TVariant>& values)
{
    if (const qint64 stamp = Connection().ChangeStamp(); stamp != FKnownStamp) {
        FKnownOrders.clear();
        FKnownStamp = stamp;
    }
    const auto known = std::ranges::find_if(
        FKnownOrders, [&](const TKnownOrder& order) { return order.SQL == sql && order.Values == values; });
    if (known == FKnownOrders.end())
        return false;
    FKeys = known->Keys;
    return true;
}

void TListDataset::KeepOrder(const QString& sql, const std::vector<TVariant>& values)
{
    FKnownOrders.push_back({sql, values, FKeys});
    size_t keys = 0;
    for (const TKnownOrder& order : FKnownOrders)
        keys += order.Keys.size();
    while (FKnownOrders.size() > KnownOrders || (keys > KnownKeys && !FKnownOrders.empty())) {
        keys -= FKnownOrders.front().Keys.size();
        FKnownOrders.erase(FKnownOrders.begin());
    }
}

// The value by which a group column is ordered and the value itself are read with each key: a new group begins where
// the former changes.
void TListDataset::ReadGroupedKeys(const QString& condition, const std::vector<TVariant>& values)
{
    QStringList columns{Def().KeyExpression};
    QStringList order;
    std::vector<TSortItem> rest = FSort;
    for (const QString& column : FGrouping) {
        const auto same = [&](const TSortItem& item) { return item.Column.compare(column, Qt::CaseInsensitive) == 0; };
        const bool descending =
            std::ranges::any_of(FSort, [&](const TSortItem& item) { return same(item) && item.Descending; });
        columns << SortExpression(column, Fields(), FArticleColumns) << ValueExpression(column, Fields());
        order << QString::number(columns.size() - 1) + (descending ? u" DESC"_s : QString());
        std::erase_if(rest, same);
    }
    order << SortToSQL(rest, Fields(), FArticleColumns, Def().KeyExpression);
    QString sql = u"SELECT %1 FROM %2"_s.arg(columns.join(u", "_s), Def().From);
    if (!condition.isEmpty())
        sql += u" WHERE "_s + condition;
    TSQLiteStatement statement = Connection().Prepare(sql + u" ORDER BY "_s + order.join(u", "_s));
    statement.BindAll(values);
    const auto levels = static_cast<int>(FGrouping.size());
    std::vector<TVariant> last(static_cast<size_t>(levels));
    while (statement.Step()) {
        int changed = FKeys.empty() ? 0 : levels;
        for (int level = 0; level < changed; ++level)
            if (!statement.ColumnEquals(2 * level + 1, last[static_cast<size_t>(level)]))
                changed = level;
        if (changed < levels) {
            std::vector<TVariant> shown(static_cast<size_t>(levels));
            for (int level = changed; level < levels; ++level) {
                last[static_cast<size_t>(level)] = statement.Column(2 * level + 1);
                shown[static_cast<size_t>(level)] = statement.Column(2 * level + 2);
            }
            OpenGroups(shown, changed);
        }
        FKeys.push_back(statement.ColumnInt64(0));
    }
    // A group ends where the next one of its level or above begins.
    std::vector<int> end(static_cast<size_t>(levels), static_cast<int>(FKeys.size()));
    for (auto group = FGroups.rbegin(); group != FGroups.rend(); ++group) {
        const auto level = static_cast<size_t>(group->Level);
        group->Count = end[level] - group->First;
        std::fill(end.begin() + static_cast<std::ptrdiff_t>(level), end.end(), group->First);
    }
}

void TListDataset::OpenGroups(const std::vector<TVariant>& values, int changed)
{
    for (int level = changed; level < static_cast<int>(values.size()); ++level) {
        int parent = level == 0 ? -1 : static_cast<int>(FGroups.size()) - 1;
        while (parent >= 0 && FGroups[static_cast<size_t>(parent)].Level >= level)
            --parent;
        FGroups.push_back({level, parent, static_cast<int>(FKeys.size()), 0, values[static_cast<size_t>(level)]});
    }
}

void TListDataset::WalkRows(const std::vector<int>& fields,
                            const std::function<bool(int row, const std::vector<TVariant>& values)>& receive) const
{
    QStringList columns;
    for (const int field : fields) {
        const QString expression = ValueExpression(Fields()[static_cast<size_t>(field)].Name, Fields());
        columns << (expression.isEmpty() ? u"NULL"_s : expression);
    }
    const QString list = columns.isEmpty() ? u"1"_s : columns.join(u", "_s);
    TSQLiteStatement statement =
        Connection().Prepare(u"SELECT %1 FROM %2 WHERE %3 = ?"_s.arg(list, Def().From, Def().KeyExpression));
    std::vector<TVariant> values(fields.size());
    for (int row = 0; row < RecordCount(); ++row) {
        statement.Bind(1, KeyAt(row));
        const bool there = statement.Step();
        for (size_t i = 0; i < fields.size(); ++i)
            values[i] = there ? TTableRows::FromStored(statement.Column(static_cast<int>(i)),
                                                       Fields()[static_cast<size_t>(fields[i])].Kind)
                              : TVariant();
        statement.Reset();
        if (!receive(row, values))
            return;
    }
}

std::vector<int> TListDataset::RowsWithText(const QStringList& columns, const QString& text) const
{
    TFilterGroup filter;
    TFilterGroup& any = filter.AddGroup(flAny);
    for (const QString& column : columns)
        any.Add({column, foContains, text, text});
    std::vector<TVariant> values;
    const QString condition = filter.ToSQL(Fields(), values);
    std::vector<int> rows;
    if (condition.isEmpty() || text.isEmpty() || !Active())
        return rows;
    TSQLiteStatement statement =
        Connection().Prepare(u"SELECT %1 FROM %2 WHERE %3"_s.arg(Def().KeyExpression, Def().From, condition));
    statement.BindAll(values);
    while (statement.Step())
        if (const int row = RowOfKey(statement.ColumnInt64(0)); row >= 0)
            rows.push_back(row);
    std::ranges::sort(rows);
    return rows;
}

const TDataset::TRecord& TListDataset::RecordAt(int row) const
{
    const qint64 key = KeyAt(row);
    if (key == 0)
        return FEmpty;
    if (!FCache.contains(key))
        ReadBlock(row);
    const TRecord* record = FCache.object(key);
    return record ? *record : FEmpty;
}

void TListDataset::ReadBlock(int row) const
{
    const int first = row / BlockSize * BlockSize;
    const int last = std::min(first + BlockSize, RecordCount());
    const QString sql = Rows().RowRefreshSQL();
    TSQLiteStatement* statement = &Connection().Cached(sql);
    for (int i = first; i < last; ++i) {
        const qint64 key = KeyAt(i);
        if (FCache.contains(key))
            continue;
        try {
            FCache.insert(key, new TRecord(ReadOne(key, *statement)));
        } catch (const EDatabaseError& failure) {
            if (!failure.IsNoDatabase())
                throw;
            // A damaged table elsewhere must not cost what stands in this one.
            const QString own = Rows().SelectSQL(true) + u" WHERE %1 = :OLD_ID"_s.arg(Def().KeyExpression);
            FCache.insert(key, new TRecord(ReadOne(key, Connection().Cached(own))));
            statement = &Connection().Cached(sql);
        }
        Connection().NoteRead(RecordReach);
    }
}

// A row that another process deleted meanwhile stays an empty record until the next refresh.
TDataset::TRecord TListDataset::ReadOne(qint64 key, TSQLiteStatement& statement) const
{
    statement.Bind(1, key);
    TRecord record = statement.Step() ? Rows().Read(statement) : TRecord();
    statement.Reset();
    return record;
}

void TListDataset::ForgetRecords()
{
    FCache.clear();
    FKnownOrders.clear();
}

void TListDataset::TakeBack()
{
    if (!Active())
        return;
    ForgetRecords();
    if (State() == dsBrowse)
        ApplyFilter();
}

// Not kept: the file fills in columns of its own and others may have written the rest, so the record is read anew when
// it is next looked at.
void TListDataset::StoreRecord(qint64 key, TRecord) { FCache.remove(key); }

int TListDataset::AppendRecord(qint64 key, TRecord)
{
    FKeys.push_back(key);
    const int row = RecordCount() - 1;
    if (!FRowOfKey.isEmpty())
        FRowOfKey.insert(key, row);
    else if (key == static_cast<qint64>(FRowTable.size()))
        FRowTable.push_back(row);
    else
        FRowTable.clear();
    // Until the list is read again, a new record stands at the end of the last groups.
    for (auto group = FGroups.rbegin(); group != FGroups.rend(); ++group) {
        group->Count += group == FGroups.rbegin() || group->First + group->Count == row ? 1 : 0;
        if (group->Level == 0)
            break;
    }
    return row;
}

void TListDataset::RemoveKeys(const std::vector<qint64>& keys)
{
    QSet<qint64> gone;
    for (const qint64 key : keys) {
        gone.insert(key);
        FCache.remove(key);
    }
    if (!FGrouping.isEmpty()) {
        ReadKeys(); // every group after a gap moves
        return;
    }
    std::erase_if(FKeys, [&](qint64 key) { return gone.contains(key); });
    ForgetRows();
}

void TListDataset::TakeIn(qint64 key)
{
    const int row = AppendRecord(key, {});
    if (SignalsEnabled())
        Q_EMIT recordInserted(row);
}

} // namespace Kestrune
