// SPDX-License-Identifier: GPL-3.0-or-later
#include "uColumnNames.h"
#include "uDataSet.h"

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

void TDetailDataset::Open()
{
    Connection().Cached(Rows().RowRefreshSQL()); // a file that lacks a column is refused here, not when it is looked at
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
    FCached = false;
    FUpdates.clear();
    FDeleted.clear();
    NotifyReset();
}

void TDetailDataset::Refresh()
{
    if (!Active())
        return;
    Cancel();
    if (HasUpdates())
        return; // what is kept has no other place than these records
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
    const int id = FieldIndex(Col::ID);
    if (id < 0) // totals, which have no key
        return -1;
    const auto found = std::ranges::find_if(
        FRecords, [&](const TRecord& record) { return record[static_cast<size_t>(id)].toLongLong() == key; });
    return found == FRecords.end() ? -1 : static_cast<int>(found - FRecords.begin());
}

qint64 TDetailDataset::KeyAt(int row) const
{
    const TRecord& record = RecordAt(row);
    const int id = FieldIndex(Col::ID);
    return record.empty() || id < 0 ? 0 : record[static_cast<size_t>(id)].toLongLong();
}

void TDetailDataset::SetParam(const TVariant& value)
{
    if (value == FParam)
        return;
    Post();
    FParam = value;
    Invalidate();
}

void TDetailDataset::SetParamOfNew(const TVariant& value)
{
    SetParam(value);
    FRecords.clear();
    FLoaded = true;
}

TVariant TDetailDataset::Param() const
{
    FollowMaster();
    return FParam;
}

void TDetailDataset::Invalidate()
{
    Cancel();
    FLoaded = false;
    FRecords.clear();
    FUpdates.clear();
    FDeleted.clear();
    SetRecNo(-1);
    NotifyReset();
}

void TDetailDataset::ForgetRecords()
{
    if (!Editing() && !HasUpdates())
        FLoaded = false;
}

void TDetailDataset::TakeBack()
{
    if (Editing() || HasUpdates() || !FLoaded)
        return;
    FLoaded = false;
    SetRecNo(std::min(RecNo(), RecordCount() - 1));
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
        if (!Editing() && FParam != TVariant(FMaster->CurrentKey()))
            SetParam(FMaster->CurrentKey());
    });
}

void TDetailDataset::FollowMaster() const
{
    // The master's signals are off while many releases are stored, so its key is asked for each time. What is in work
    // belongs to the record on which it was begun.
    if (!FMaster || Editing() || HasUpdates() || FParam == TVariant(FMaster->CurrentKey()))
        return;
    FParam = FMaster->CurrentKey();
    FLoaded = false;
    FRecords.clear();
}

const TDataset::TRecord& TDetailDataset::RecordAt(int row) const
{
    static const TRecord none;
    EnsureLoaded();
    return row >= 0 && row < static_cast<int>(FRecords.size()) ? FRecords[static_cast<size_t>(row)] : none;
}

void TDetailDataset::StoreRecord(qint64 key, TRecord record)
{
    if (const int row = RowOfKey(key); row >= 0)
        FRecords[static_cast<size_t>(row)] = std::move(record);
}

int TDetailDataset::AppendRecord(qint64, TRecord record)
{
    FRecords.push_back(std::move(record));
    return static_cast<int>(FRecords.size()) - 1;
}

void TDetailDataset::RemoveKeys(const std::vector<qint64>& keys)
{
    const auto id = static_cast<size_t>(FieldIndex(Col::ID));
    std::erase_if(FRecords,
                  [&](const TRecord& record) { return std::ranges::count(keys, record[id].toLongLong()) > 0; });
}

void TDetailDataset::SetCachedUpdates(bool cached)
{
    Post();
    if (!cached)
        ApplyUpdates();
    FCached = cached;
}

qint64 TDetailDataset::WriteInsert(const TRecord& record)
{
    if (!FCached)
        return TDataset::WriteInsert(record);
    FUpdates[--FLastNewKey] = {};
    return FLastNewKey;
}

void TDetailDataset::WriteUpdate(qint64 key, const TRecord& record, const std::vector<bool>& changed)
{
    if (!FCached)
        return TDataset::WriteUpdate(key, record, changed);
    std::vector<bool>& kept = FUpdates[key];
    kept.resize(changed.size());
    for (size_t i = 0; i < changed.size(); ++i)
        kept[i] = kept[i] || changed[i];
}

bool TDetailDataset::WriteDeletes(const std::vector<qint64>& keys, const TProgress& progress)
{
    if (!FCached)
        return TDataset::WriteDeletes(keys, progress);
    for (const qint64 key : keys) {
        FUpdates.erase(key);
        if (key > 0)
            FDeleted.push_back(key);
    }
    return true;
}

void TDetailDataset::ApplyUpdates()
{
    Post();
    if (!HasUpdates())
        return;
    {
        TSQLiteTransaction transaction(Connection());
        if (!FDeleted.empty())
            TDataset::WriteDeletes(FDeleted, {});
        for (const TRecord& record : FRecords) {
            const qint64 key = record[static_cast<size_t>(FieldIndex(Col::ID))].toLongLong();
            const auto kept = FUpdates.find(key);
            if (kept == FUpdates.end())
                continue;
            if (key < 0)
                TDataset::WriteInsert(record);
            else
                TDataset::WriteUpdate(key, record, kept->second);
        }
        transaction.Commit();
    }
    FUpdates.clear();
    FDeleted.clear();
    Refresh();
}

void TDetailDataset::CancelUpdates()
{
    Cancel();
    FUpdates.clear();
    FDeleted.clear();
    Refresh();
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
    QString sql = Rows().SelectSQL();
    if (!Def().Where.isEmpty())
        sql += u" WHERE "_s + Def().Where;
    sql += u" ORDER BY "_s + (Def().OrderBy.isEmpty() ? Def().KeyExpression : Def().OrderBy);
    TSQLiteStatement& statement = Connection().Cached(sql);
    if (!Def().Where.isEmpty())
        statement.Bind(1, FParam);
    while (statement.Step())
        FRecords.push_back(Rows().Read(statement));
    statement.Reset();
}

} // namespace Kestrune
