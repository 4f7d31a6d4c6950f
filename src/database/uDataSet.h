// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uFilter.h"
#include "uSQLite.h"
#include "uTHTypes.h"
#include "uTableRows.h"

#include <QCache>
#include <QObject>
#include <QString>

#include <functional>
#include <map>
#include <vector>

namespace Kestrune {

/// Closed, looking, changing a record, or filling in a new one.
enum class TDatasetState : quint8 { dsInactive, dsBrowse, dsEdit, dsInsert };
using enum TDatasetState;

/// A cursor over the collection: an ordered set of records of which one is current. It is the one way in which
/// records change: SetValue changes a copy of the current record, Post writes the changed columns by one INSERT or
/// UPDATE, and the hooks put the rules of the collection on every path. Failures throw EDatabaseError and leave the
/// edit open. Main thread only. The connection outlives the cursor.
class TDataset : public QObject {
    Q_OBJECT

public:
    using TRecord = TTableRows::TRecord;
    using THook = std::function<void(TDataset&)>;

    TDataset(TSQLiteConnection& connection, TDatasetDef def);

    const TDatasetDef& Def() const { return FRows.Def(); }
    const std::vector<TFieldDef>& Fields() const { return Def().Fields; }
    /// Index of a field, compared without case, or -1.
    int FieldIndex(const QString& name) const;

    bool Active() const { return FState != dsInactive; }
    TDatasetState State() const { return FState; }
    /// Makes the cursor usable; throws when the file lacks one of its columns.
    virtual void Open() = 0;
    /// Drops all records and an open edit.
    virtual void Close();
    /// Reads everything again and stays on the current record where it still exists. Cancels an edit.
    virtual void Refresh() = 0;

    virtual int RecordCount() const = 0;
    bool IsEmpty() const { return RecordCount() == 0; }
    /// Position of the current record, or -1.
    int RecNo() const { return FRecNo; }
    /// Makes a row current; -1 or a row that is not there leaves none current. An open edit is posted first, and where
    /// that fails nothing moves.
    void MoveTo(int row);
    void First() { MoveTo(IsEmpty() ? -1 : 0); }
    /// True when it moved; at the last record it stays and gives false.
    bool Next();
    /// Makes the record with this key current.
    bool Locate(qint64 key);
    /// Row of a key, or -1; key of a row, or 0.
    virtual int RowOfKey(qint64 key) const = 0;
    virtual qint64 KeyAt(int row) const = 0;
    /// Key of the current record, of the one in edit when there is one; 0 when there is none.
    qint64 CurrentKey() const;

    /// Value of the current record, of the edit when there is one. Null for a field that is not there.
    TVariant Value(int field) const;
    TVariant Value(const QString& field) const { return Value(FieldIndex(field)); }
    /// Value of any row as it is stored.
    TVariant ValueAt(int row, int field) const;
    /// A picture of a row, read when asked for.
    QByteArray ReadBlob(int row, int field) const;

    /// Changes the record in edit; goes into edit state by itself when browsing. A rating is kept within 0 to 5.
    void SetValue(int field, const TVariant& value);
    void SetValue(const QString& field, const TVariant& value) { SetValue(FieldIndex(field), value); }

    /// Starts a new record; nothing is written before Post.
    void Append();
    /// Copies the current record for changes; nothing happens when an edit is open.
    void Edit();
    /// Writes what was changed in the edit and nothing else; nothing happens without one. Throws, and leaves the edit
    /// open, when the record is gone meanwhile.
    void Post();
    /// True for a field that was given a value in the present edit; for all fields of a new record.
    bool IsChanged(int field) const;
    /// Drops the edit.
    void Cancel();
    /// Deletes the current record; the next one becomes current.
    void Delete();
    /// Deletes rows by key in one transaction; false when `progress` has taken it back.
    bool DeleteKeys(const std::vector<qint64>& keys, const TProgress& progress = {});
    /// Gives records the same values in one transaction, by the rules that hold for an edit of each. `progress` is told
    /// how many are done of all, and takes everything back by giving false. The number of records that were there;
    /// what fails changes none.
    int UpdateKeys(const std::vector<qint64>& keys, const std::vector<std::pair<QString, TVariant>>& values,
                   const TProgress& progress);
    /// Drops what was read, so that it is read again when it is next looked at; an edit stays open.
    virtual void ForgetRecords() = 0;
    /// What was written may have been undone: reads again which records there are. An edit stays open.
    virtual void TakeBack() = 0;
    /// Tells those who show records that their values may be others; the rows are the same.
    void NotifyChanged();

    /// While it is above zero no signal is sent; the last EnableControls sends dataReset.
    void DisableControls() { ++FControlsDisabled; }
    void EnableControls();

    // The rules of a cursor: on a record just begun, before and after it is written, and on each field that changes.
    THook AfterInsert;
    THook BeforePost;
    THook AfterPost;
    std::function<void(TDataset&, int field)> OnFieldChanged;

Q_SIGNALS:
    /// All rows may have changed.
    void dataReset();
    void recordChanged(int row);
    /// The values of any records may have changed, the rows have not.
    void recordsChanged();
    void recordInserted(int row);
    /// Another record is current, or none.
    void currentChanged();

protected:
    virtual const TRecord& RecordAt(int row) const = 0;
    /// Takes over a record that was written, or drops it to read it anew.
    virtual void StoreRecord(qint64 key, TRecord record) = 0;
    virtual int AppendRecord(qint64 key, TRecord record) = 0;
    virtual void RemoveKeys(const std::vector<qint64>& keys) = 0;
    /// Called before a new record is begun.
    virtual void PrepareAppend() {}
    // The three ways in which records are written. The first gives the new key.
    virtual qint64 WriteInsert(const TRecord& record) { return FRows.Insert(record); }
    virtual void WriteUpdate(qint64 key, const TRecord& record, const std::vector<bool>& changed);
    virtual bool WriteDeletes(const std::vector<qint64>& keys, const TProgress& progress)
    {
        return FRows.Delete(keys, progress);
    }

    TSQLiteConnection& Connection() const { return FConnection; }
    const TTableRows& Rows() const { return FRows; }
    bool SignalsEnabled() const { return FControlsDisabled == 0; }
    void SetState(TDatasetState state) { FState = state; }
    void SetRecNo(int row);
    void NotifyReset();

private:
    TVariant Computed(const TRecord& record, int field) const;
    void InsertRecord();
    void UpdateRecord();

    TSQLiteConnection& FConnection;
    TTableRows FRows;
    QHash<QString, int> FFieldIndex; // as the file spells them, and in lower case
    int FRatingField = -1;
    int FRatingCalcField = -1;
    int FReleaseField = -1;
    TDatasetState FState = dsInactive;
    int FRecNo = -1;
    int FControlsDisabled = 0;
    qint64 FEditKey = 0; // of the record in edit: the rows may be others by the time it is posted
    TRecord FBuffer;
    std::vector<bool> FChanged;
};

/// A cursor that holds all its records: the children of one release, the friends, the loans. With a master it
/// follows the key of the master's current record and reads only when it is looked at; while one of its records is in
/// edit it stays where it is.
class TDetailDataset final : public TDataset {
    Q_OBJECT

public:
    using TDataset::TDataset;

    void Open() override;
    void Close() override;
    void Refresh() override;
    int RecordCount() const override;
    int RowOfKey(qint64 key) const override;
    qint64 KeyAt(int row) const override;
    void ForgetRecords() override;
    void TakeBack() override;

    /// The value of the one parameter; the records follow when they are next looked at. Another value posts an open
    /// edit, the same one leaves everything as it is.
    void SetParam(const TVariant& value);
    /// The same for a parent that was just made: it has no records, so none are read.
    void SetParamOfNew(const TVariant& value);
    /// The value that the records have in common: new ones get it too.
    TVariant Param() const;
    /// Drops what was read and an edit; it is read again when it is next looked at.
    void Invalidate();
    /// Follows the current record of another cursor, which must outlive the link; null unbinds.
    void SetMaster(TDataset* master);
    TDataset* Master() const { return FMaster; }

    /// From now on edits are kept in memory: Post and Delete write nothing until ApplyUpdates. New records have
    /// negative keys until then.
    void SetCachedUpdates(bool cached);
    bool HasUpdates() const { return !FUpdates.empty() || !FDeleted.empty(); }
    /// Writes all kept edits in one transaction; where that fails nothing is written and all of them are kept.
    void ApplyUpdates();
    /// Drops all kept edits and an open one.
    void CancelUpdates();

protected:
    const TRecord& RecordAt(int row) const override;
    void StoreRecord(qint64 key, TRecord record) override;
    int AppendRecord(qint64 key, TRecord record) override;
    void RemoveKeys(const std::vector<qint64>& keys) override;
    void PrepareAppend() override { EnsureLoaded(); }
    qint64 WriteInsert(const TRecord& record) override;
    void WriteUpdate(qint64 key, const TRecord& record, const std::vector<bool>& changed) override;
    bool WriteDeletes(const std::vector<qint64>& keys, const TProgress& progress) override;

private:
    bool Editing() const { return State() == dsEdit || State() == dsInsert; }
    void FollowMaster() const;
    void EnsureLoaded() const;
    void Load() const;

    // Reading late does not change what the cursor stands for, so what is read is mutable.
    mutable TVariant FParam;
    TDataset* FMaster = nullptr; // not owned
    QMetaObject::Connection FMasterLink;
    mutable std::vector<TRecord> FRecords;
    mutable bool FLoaded = false;
    bool FCached = false;
    std::map<qint64, std::vector<bool>> FUpdates; // key and changed fields of kept edits; new records below 0
    std::vector<qint64> FDeleted;
    qint64 FLastNewKey = 0;
};

/// One group of a grouped list: the rows that have the same value in the group's column, within the group above.
struct TListGroup {
    int Level = 0; ///< place of its column among the group columns
    int Parent = -1;
    int First = 0;  ///< first row
    int Count = 0;  ///< rows
    TVariant Value; ///< as the first row has it
};

/// A cursor over very many records: holds the ordered keys only and reads records in blocks around what is looked at.
class TListDataset final : public TDataset {
    Q_OBJECT

public:
    TListDataset(TSQLiteConnection& connection, TDatasetDef def);

    void Open() override;
    void Close() override;
    void Refresh() override;
    int RecordCount() const override { return static_cast<int>(FKeys.size()); }
    int RowOfKey(qint64 key) const override;
    qint64 KeyAt(int row) const override;
    /// All keys in their order.
    const std::vector<qint64>& Keys() const { return FKeys; }

    /// The criteria; a change acts with ApplyFilter.
    TFilterGroup& Filter() { return FFilter; }
    bool FilterActive() const { return FFilterActive; }
    void SetFilterActive(bool active) { FFilterActive = active; }
    /// Reads the keys again under the present filter and sort, staying on the current record where it is still there.
    void ApplyFilter();
    const std::vector<TSortItem>& Sort() const { return FSort; }
    void SetSort(std::vector<TSortItem> sort);
    /// Puts the rows together by the values of these columns, which are ordered before the sort; unknown ones are
    /// passed over. An empty list ends it.
    void SetGrouping(const QStringList& columns);
    const QStringList& Grouping() const { return FGrouping; }
    /// The groups in the order of their first row, each before those within it.
    const std::vector<TListGroup>& Groups() const { return FGroups; }
    /// Reads these fields of all rows in their order, past the cache: `receive` gives false to stop. Computed fields
    /// are computed; pictures are read where they are asked for.
    void WalkRows(const std::vector<int>& fields,
                  const std::function<bool(int row, const std::vector<TVariant>& values)>& receive) const;
    /// Rows, of all in the present order, of which one of the columns holds the text, in ascending order.
    std::vector<int> RowsWithText(const QStringList& columns, const QString& text) const;
    /// Columns that sort without their article.
    void SetArticleColumns(const QStringList& columns);

    /// Takes in a record that was written past this cursor, at the end of the list.
    void TakeIn(qint64 key);
    void ForgetRecords() override;
    void TakeBack() override;
    /// Drops what is known of a record, so that it is read again when it is next looked at.
    void InvalidateRow(qint64 key) { FCache.remove(key); }

protected:
    const TRecord& RecordAt(int row) const override;
    void StoreRecord(qint64 key, TRecord record) override;
    int AppendRecord(qint64 key, TRecord record) override;
    void RemoveKeys(const std::vector<qint64>& keys) override;

private:
    // An order of keys that was read before, for as long as nothing changed in the file.
    struct TKnownOrder {
        QString SQL;
        std::vector<TVariant> Values;
        std::vector<qint64> Keys;
    };

    void ReadKeys();
    void ReadGroupedKeys(const QString& condition, const std::vector<TVariant>& values);
    void OpenGroups(const std::vector<TVariant>& values, int changed);
    bool TakeKnownOrder(const QString& sql, const std::vector<TVariant>& values);
    void KeepOrder(const QString& sql, const std::vector<TVariant>& values);
    void ForgetRows() const;
    void ReadBlock(int row) const;
    TRecord ReadOne(qint64 key, TSQLiteStatement& statement) const;

    std::vector<qint64> FKeys;
    std::vector<TKnownOrder> FKnownOrders; // the latest last
    qint64 FKnownStamp = -1;
    QStringList FGrouping;
    std::vector<TListGroup> FGroups;
    // Row of a key, filled when first asked for: by the key itself where keys are dense, else by hash.
    mutable std::vector<int> FRowTable;
    mutable QHash<qint64, int> FRowOfKey;
    mutable QCache<qint64, TRecord> FCache;
    TRecord FEmpty;
    TFilterGroup FFilter;
    bool FFilterActive = false;
    std::vector<TSortItem> FSort;
    QStringList FArticleColumns;
};

} // namespace Kestrune
