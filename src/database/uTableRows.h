// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uColumns.h"
#include "uSQLite.h"

#include <functional>
#include <map>
#include <vector>

namespace Kestrune {

/// Is told how much of long work is done and gives false to take it back as a whole; empty for nobody.
using TProgress = std::function<bool(int done, int count)>;

/// What a cursor reads and which table its edits go to.
struct TDatasetDef {
    QString Name;
    QString Table;         ///< table that Post writes to; empty for a cursor that is only read
    QString KeyExpression; ///< as in "R.ID"
    QString From;          ///< what follows FROM, with joins
    QString Where;         ///< fixed condition, with ? for the parameter; empty for none
    QString OrderBy;       ///< fixed order; empty for the key
    std::vector<TFieldDef> Fields;
    QString RowName;    ///< what one row is, as an element of an export names it: "Release"
    QString TitleField; ///< by which a user knows a row
    QString ReleaseKey; ///< field with the key of the release to which a row belongs; empty for none
};

/// The SQL of a cursor: how its records are read from the file and written to it. Operations throw EDatabaseError. The
/// connection outlives it.
class TTableRows {
public:
    using TRecord = std::vector<TVariant>;

    TTableRows(TSQLiteConnection& connection, TDatasetDef def);

    const TDatasetDef& Def() const { return FDef; }
    const TFieldDef& Field(int field) const { return FDef.Fields[static_cast<size_t>(field)]; }
    /// The SELECT that reads whole records, without condition and order. `ownOnly`: null for what comes from other
    /// tables.
    QString SelectSQL(bool ownOnly = false) const;
    /// The statement that reads one record again, by its key as the parameter :OLD_ID.
    QString RowRefreshSQL() const;
    /// The record on which such a statement stands.
    TRecord Read(TSQLiteStatement& statement) const;
    /// A field that records do not hold.
    QByteArray ReadBlob(qint64 key, int field) const;
    /// A stored value as the kind of its field says; a value of another kind (SQLite keeps any) stays as it is.
    static TVariant FromStored(const TVariant& value, TFieldKind kind);

    /// Gives the new key. Columns without a value are left out, so that the file's own defaults stand.
    qint64 Insert(const TRecord& record);
    /// Writes the fields that are marked; false when the row is gone.
    bool Update(qint64 key, const TRecord& record, const std::vector<bool>& changed);
    /// In one transaction; false when `progress` has taken it back.
    bool Delete(const std::vector<qint64>& keys, const TProgress& progress = {});

private:
    bool IsWritten(size_t field) const;
    const QString& InsertSQL(const std::vector<bool>& columns);
    const QString& UpdateSQL(const std::vector<bool>& columns);

    TSQLiteConnection& FConnection;
    TDatasetDef FDef;
    std::vector<int> FSelected;                      // fields in the order of the SELECT
    std::map<std::vector<bool>, QString> FInsertSQL; // by the columns that have a value
    std::map<std::vector<bool>, QString> FUpdateSQL; // by the columns that are written
};

} // namespace Kestrune
