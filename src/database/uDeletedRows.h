// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uTableRows.h"

#include <QString>
#include <QStringList>

#include <map>
#include <optional>
#include <span>
#include <vector>

namespace Kestrune {

class TSQLiteConnection;

/// What deletions took away, kept in a table of its own in the file so that each can be undone as a whole: the rows and
/// all that went with them by cascade, with their keys. The table is made with the first deletion and goes with the
/// next start. Operations throw EDatabaseError.
class TDeletedRows {
public:
    /// The connection outlives it.
    explicit TDeletedRows(TSQLiteConnection& connection) : FConnection(connection) {}

    /// Drops what an earlier start has left. To be called with each file that is opened for writing.
    void Begin();
    /// Keeps rows of a table, and what hangs on them, before they are deleted; gives the number of the deletion. Within
    /// the transaction of the deletion. 0 when `progress` has stopped it.
    qint64 Keep(const QString& table, const std::vector<qint64>& keys, const TProgress& progress);
    /// Forgets what the deletion has left where it was.
    void Settle(qint64 number);
    /// Puts the rows of a deletion back, but for those that belong to what is gone meanwhile; gives the number of
    /// these, or none when `progress` has stopped it. Nothing happens for a deletion that was undone already. Throws
    /// with the reason when nothing can come back.
    std::optional<qint64> Restore(qint64 number, const TProgress& progress);

private:
    QStringList ColumnsOf(const QString& table);
    void MakeTable();
    void CheckKept(qint64 number);
    void KeepChunk(qint64 number, qint64 now, const QString& table, std::span<const qint64> keys);
    bool RestoreTable(qint64 number, const QString& table, const QStringList& columns,
                      const std::function<bool(qint64 restored)>& progress);

    TSQLiteConnection& FConnection;
    struct TKept {
        std::map<QString, QStringList> Columns; // of each table as they were
        qint64 Rows = 0;
    };
    std::map<qint64, TKept> FKept; // by deletion
};

} // namespace Kestrune
