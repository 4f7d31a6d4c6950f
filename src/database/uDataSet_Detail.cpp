// SPDX-License-Identifier: GPL-3.0-or-later
#include "uDataSet.h"

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

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
    const int id = FieldIndex(u"ID"_s);
    if (id < 0) // totals, which have no key
        return -1;
    const auto found = std::ranges::find_if(
        FRecords, [&](const TRecord& record) { return record[static_cast<size_t>(id)].toLongLong() == key; });
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

void TDetailDataset::ForgetRecords()
{
    if (State() == dsBrowse)
        FLoaded = false;
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

} // namespace Kestrune
