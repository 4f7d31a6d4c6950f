// SPDX-License-Identifier: GPL-3.0-or-later
#include "uDataSet.h"

#include <QSet>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int CachedRecords = 2000;
constexpr int BlockSize = 48;

} // namespace

void TDetailDataset::Open()
{
    Connection().Cached(RowRefreshSQL()); // a file that lacks a column is refused here, not when it is looked at
    SetState(dsBrowse);
    FLoaded = false;
    FRecords.clear();
    SetRecNo(-1);
    NotifyReset();
}

void TDetailDataset::Close()
{
    TDataset::Close();
    FRecords.clear();
    FLoaded = false;
    NotifyReset();
}

void TDetailDataset::Refresh()
{
    if (!Active())
        return;
    Cancel();
    const qint64 key = FLoaded ? CurrentKey() : 0;
    FollowMaster();
    Load();
    const int row = RowOfKey(key);
    SetRecNo(row >= 0 ? row : (FRecords.empty() ? -1 : 0));
    NotifyReset();
}

int TDetailDataset::RecordCount() const
{
    EnsureLoaded();
    return static_cast<int>(FRecords.size());
}

int TDetailDataset::RowOfKey(qint64 key) const
{
    EnsureLoaded();
    const auto id = static_cast<size_t>(FieldIndex(u"ID"_s));
    const auto found =
        std::ranges::find_if(FRecords, [&](const TRecord& record) { return record[id].toLongLong() == key; });
    return found == FRecords.end() ? -1 : static_cast<int>(found - FRecords.begin());
}

qint64 TDetailDataset::KeyAt(int row) const
{
    const TRecord& record = RecordAt(row);
    const int id = FieldIndex(u"ID"_s);
    return record.empty() || id < 0 ? 0 : record[static_cast<size_t>(id)].toLongLong();
}

void TDetailDataset::SetParam(const TVariant& value)
{
    FParam = value;
    Invalidate();
}

void TDetailDataset::Invalidate()
{
    Cancel();
    FLoaded = false;
    FRecords.clear();
    SetRecNo(-1);
    NotifyReset();
}

void TDetailDataset::SetMaster(TDataset* master)
{
    disconnect(FMasterLink);
    FMaster = master;
    if (!master)
        return;
    SetParam(master->CurrentKey());
    FMasterLink = connect(master, &TDataset::currentChanged, this, [this] {
        if (FParam != TVariant(FMaster->CurrentKey()))
            SetParam(FMaster->CurrentKey());
    });
}

void TDetailDataset::FollowMaster() const
{
    // The master's signals are off while many releases are stored, so its key is asked for each time.
    if (!FMaster || FParam == TVariant(FMaster->CurrentKey()))
        return;
    FParam = FMaster->CurrentKey();
    FLoaded = false;
    FRecords.clear();
}

const TDataset::TRecord& TDetailDataset::RecordAt(int row) const
{
    static const TRecord none;
    return row >= 0 && row < static_cast<int>(FRecords.size()) ? FRecords[static_cast<size_t>(row)] : none;
}

void TDetailDataset::StoreRecord(int row, TRecord record) { FRecords[static_cast<size_t>(row)] = std::move(record); }

int TDetailDataset::AppendRecord(qint64, TRecord record)
{
    FRecords.push_back(std::move(record));
    return static_cast<int>(FRecords.size()) - 1;
}

void TDetailDataset::RemoveKeys(const std::vector<qint64>& keys)
{
    const auto id = static_cast<size_t>(FieldIndex(u"ID"_s));
    std::erase_if(FRecords,
                  [&](const TRecord& record) { return std::ranges::count(keys, record[id].toLongLong()) > 0; });
}

void TDetailDataset::EnsureLoaded() const
{
    FollowMaster();
    if (Active() && !FLoaded)
        Load();
}

void TDetailDataset::Load() const
{
    FLoaded = true;
    FRecords.clear();
    QString sql = SelectSQL();
    if (!Def().Where.isEmpty())
        sql += u" WHERE "_s + Def().Where;
    sql += u" ORDER BY "_s + (Def().OrderBy.isEmpty() ? Def().KeyExpression : Def().OrderBy);
    TSQLiteStatement& statement = Connection().Cached(sql);
    if (!Def().Where.isEmpty())
        statement.Bind(1, FParam);
    while (statement.Step())
        FRecords.push_back(ReadRecord(statement));
    statement.Reset();
}

TListDataset::TListDataset(TSQLiteConnection& connection, TDatasetDef def) : TDataset(connection, std::move(def))
{
    FCache.setMaxCost(CachedRecords);
}

void TListDataset::Open()
{
    Connection().Cached(RowRefreshSQL()); // a file that lacks a column is refused here, not while it is painted
    SetState(dsBrowse);
    ReadKeys();
    SetRecNo(FKeys.empty() ? -1 : 0);
    NotifyReset();
}

void TListDataset::Close()
{
    TDataset::Close();
    FKeys.clear();
    FRowOfKey.clear();
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

int TListDataset::RowOfKey(qint64 key) const
{
    if (FRowOfKey.isEmpty() && !FKeys.empty()) {
        FRowOfKey.reserve(static_cast<qsizetype>(FKeys.size()));
        for (size_t i = 0; i < FKeys.size(); ++i)
            FRowOfKey.insert(FKeys[i], static_cast<int>(i));
    }
    return FRowOfKey.value(key, -1);
}

qint64 TListDataset::KeyAt(int row) const
{
    return row >= 0 && row < static_cast<int>(FKeys.size()) ? FKeys[static_cast<size_t>(row)] : 0;
}

void TListDataset::ReadKeys()
{
    FKeys.clear();
    FRowOfKey.clear();
    std::vector<TVariant> values;
    const QString condition = FFilterActive ? FFilter.ToSQL(Fields(), values) : QString();
    QString sql = u"SELECT %1 FROM %2"_s.arg(Def().KeyExpression, Def().From);
    if (!condition.isEmpty())
        sql += u" WHERE "_s + condition;
    const QString order = SortToSQL(FSort, Fields(), FArticleColumns, Def().KeyExpression);
    // Without a sort the keys are put in order here: that leaves the engine free to walk the smallest index.
    const bool sortHere = order == Def().KeyExpression;
    if (!sortHere)
        sql += u" ORDER BY "_s + order;
    TSQLiteStatement statement = Connection().Prepare(sql);
    statement.BindAll(values);
    while (statement.Step())
        FKeys.push_back(statement.ColumnInt64(0));
    if (sortHere)
        std::ranges::sort(FKeys);
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
    TSQLiteStatement& statement = Connection().Cached(RowRefreshSQL());
    for (int i = first; i < last; ++i) {
        const qint64 key = KeyAt(i);
        if (FCache.contains(key))
            continue;
        statement.Bind(1, key);
        // A row that another process deleted meanwhile stays an empty record until the next refresh.
        FCache.insert(key, new TRecord(statement.Step() ? ReadRecord(statement) : TRecord()));
        statement.Reset();
    }
}

void TListDataset::StoreRecord(int row, TRecord record) { FCache.insert(KeyAt(row), new TRecord(std::move(record))); }

int TListDataset::AppendRecord(qint64 key, TRecord)
{
    FKeys.push_back(key);
    const int row = RecordCount() - 1;
    if (!FRowOfKey.isEmpty() || FKeys.size() == 1)
        FRowOfKey.insert(key, row);
    // Not kept: the file fills in columns of its own, so the record is read when it is looked at.
    return row;
}

void TListDataset::RemoveKeys(const std::vector<qint64>& keys)
{
    QSet<qint64> gone;
    for (const qint64 key : keys) {
        gone.insert(key);
        FCache.remove(key);
    }
    std::erase_if(FKeys, [&](qint64 key) { return gone.contains(key); });
    FRowOfKey.clear();
}

void TListDataset::ForgetKey(qint64 key)
{
    RemoveKeys({key});
    SetRecNo(std::min(RecNo(), RecordCount() - 1));
}

} // namespace Kestrune
