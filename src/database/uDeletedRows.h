// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <map>
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
    /// the transaction of the deletion.
    qint64 Keep(const QString& table, const std::vector<qint64>& keys);
    /// Forgets what the deletion has left where it was.
    void Settle(qint64 number);
    /// Puts the rows of a deletion back, but for those that belong to what is gone meanwhile; gives the number of
    /// these. Nothing happens for a deletion that was undone already. Throws with the reason when nothing can come
    /// back.
    qint64 Restore(qint64 number);

private:
    QStringList ColumnsOf(const QString& table);
    void MakeTable();
    void CheckKept(qint64 number);
    void RestoreTable(qint64 number, const QString& table, const QStringList& columns);

    TSQLiteConnection& FConnection;
    std::map<qint64, std::map<QString, QStringList>> FKept; // columns of each table as they were, by deletion
};

} // namespace Kestrune
