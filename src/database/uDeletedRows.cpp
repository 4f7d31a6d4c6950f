// SPDX-License-Identifier: GPL-3.0-or-later
#include "uDeletedRows.h"

#include "uColumnNames.h"
#include "uDebugLog.h"
#include "uSQLite.h"
#include "uTHStrings.h"

#include <QDateTime>
#include <QRandomGenerator>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

const QString KeptTable = QStringLiteral("KestruneDeleted");
constexpr size_t KeptAtOnce = 100; // rows with all that hangs on them
constexpr qint64 RestoredAtOnce = 1000;
constexpr qint64 KeptFor = 24 * 60 * 60; // seconds

struct TParent {
    QString Column, Table;
};
struct TKeptTable {
    QString Name;
    std::vector<TParent> Parents;
};

// Parents before children: rows come back in this order.
const std::vector<TKeptTable>& KeptTables()
{
    static const std::vector<TKeptTable> tables{
        {u"Releases2"_s, {}},
        {u"Tracks2"_s, {{Col::ReleaseId, u"Releases2"_s}}},
        {u"Loans2"_s, {{Col::FriendID, u"Friends2"_s}, {Col::ReleaseId, u"Releases2"_s}}},
        {u"Musicians2"_s, {{Col::ReleaseId, u"Releases2"_s}, {Col::TrackId, u"Tracks2"_s}}},
        {u"OtherPictures2"_s, {{Col::ReleaseId, u"Releases2"_s}}}};
    return tables;
}

QString Places(qsizetype count)
{
    QStringList names;
    for (qsizetype i = 0; i < count; ++i)
        names << u"C%1"_s.arg(i);
    return names.join(u',');
}

QString QuotedNames(const QStringList& columns)
{
    QStringList names;
    for (const QString& column : columns)
        names << u'"' + QString(column).replace(u'"', u"\"\""_s) + u'"';
    return names.join(u',');
}

// The rows of a table that go with those just kept (behind rowid ?3), or are those that were asked for.
QString ConditionOf(const TKeptTable& kept, const QString& table)
{
    if (kept.Name == table)
        return u"ID IN (SELECT ID FROM temp.KestruneGoing)"_s;
    QStringList conditions;
    for (const TParent& parent : kept.Parents)
        conditions << u"%1 IN (SELECT RowKey FROM %2 WHERE rowid > ?3 AND Number = ?1 AND Source = '%3')"_s.arg(
            parent.Column, KeptTable, parent.Table);
    return conditions.isEmpty() ? u"0"_s : conditions.join(u" OR "_s);
}

} // namespace

void TDeletedRows::Begin()
{
    FKept.clear();
    if (!FConnection.IsReadOnly())
        try {
            FConnection.Exec(u"DROP TABLE IF EXISTS "_s + KeptTable);
        } catch (const EDatabaseError& failure) { // another process writes: the next start will do it
            DebugLog(u"[Undo] %1"_s.arg(failure.Text()));
        }
}

QStringList TDeletedRows::ColumnsOf(const QString& table)
{
    QStringList columns;
    TSQLiteStatement info = FConnection.Prepare(u"SELECT name FROM pragma_table_info(?1)"_s);
    info.Bind(1, table);
    while (info.Step())
        columns << info.Column(0).toString();
    return columns;
}

void TDeletedRows::MakeTable()
{
    qsizetype most = 0;
    for (const TKeptTable& table : KeptTables())
        most = std::max(most, ColumnsOf(table.Name).size());
    // Columns without a type keep every value as it is. One that was made for fewer columns is of no use any more.
    const QString last = u"C%1"_s.arg(most - 1);
    const QStringList present = ColumnsOf(KeptTable);
    if (!present.isEmpty() && !present.contains(last))
        FConnection.Exec(u"DROP TABLE "_s + KeptTable);
    FConnection.Exec(
        u"CREATE TABLE IF NOT EXISTS %1 (Number INTEGER, Made INTEGER, Source TEXT, RowKey INTEGER, %2);"
        "CREATE TEMP TABLE IF NOT EXISTS KestruneGoing (ID INTEGER PRIMARY KEY); DELETE FROM temp.KestruneGoing"_s.arg(
            KeptTable, Places(most)));
}

qint64 TDeletedRows::Keep(const QString& table, const std::vector<qint64>& keys, const TProgress& progress)
{
    MakeTable();
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    FConnection.Exec(u"DELETE FROM %1 WHERE Made < %2"_s.arg(KeptTable).arg(now - KeptFor));
    // Drawn, since another process on the file counts too.
    const auto number = static_cast<qint64>(QRandomGenerator::global()->generate64() >> 2) + 1;
    const std::span<const qint64> all(keys);
    for (size_t first = 0; first < all.size(); first += KeptAtOnce) {
        KeepChunk(number, now, table, all.subspan(first, std::min(KeptAtOnce, all.size() - first)));
        if (!progress(static_cast<int>(std::min(first + KeptAtOnce, all.size())), static_cast<int>(all.size())))
            return FKept.erase(number), 0;
    }
    return number;
}

void TDeletedRows::KeepChunk(qint64 number, qint64 now, const QString& table, std::span<const qint64> keys)
{
    TSQLiteStatement& going = FConnection.Cached(u"INSERT OR IGNORE INTO temp.KestruneGoing VALUES (?1)"_s);
    for (const qint64 key : keys) {
        going.Bind(1, key);
        going.Execute();
    }
    // What was kept before this chunk is not looked at again: that would be quadratic.
    const qint64 before = FConnection.Scalar(u"SELECT ifnull(max(rowid), 0) FROM "_s + KeptTable).toLongLong();
    for (const TKeptTable& kept : KeptTables()) {
        QStringList& columns = FKept[number].Columns[kept.Name];
        if (columns.isEmpty())
            columns = ColumnsOf(kept.Name);
        TSQLiteStatement& copy = FConnection.Cached( // not every condition names all three parameters
            u"INSERT INTO %1 (Number, Made, Source, RowKey, %2) SELECT ?1, ?2, '%3', ID, %4 FROM %3 WHERE ?3 = ?3 AND (%5)"_s
                .arg(KeptTable, Places(columns.size()), kept.Name, QuotedNames(columns), ConditionOf(kept, table)));
        copy.BindAll({number, now, before});
        copy.Execute();
        FKept[number].Rows += FConnection.RowsChanged();
    }
    FConnection.Exec(u"DELETE FROM temp.KestruneGoing"_s);
}

void TDeletedRows::Settle(qint64 number)
{
    // Files of other makers may lack a cascade.
    for (const TKeptTable& kept : KeptTables()) {
        TSQLiteStatement drop = FConnection.Prepare(
            u"DELETE FROM %1 WHERE Number = ?1 AND Source = '%2' AND RowKey IN (SELECT ID FROM %2)"_s.arg(KeptTable,
                                                                                                          kept.Name));
        drop.Bind(1, number);
        drop.Execute();
        FKept[number].Rows -= FConnection.RowsChanged();
    }
}

void TDeletedRows::CheckKept(qint64 number)
{
    const bool there = !ColumnsOf(KeptTable).isEmpty();
    const TVariant made =
        there ? FConnection.Scalar(u"SELECT Made FROM %1 WHERE Number = ?1 LIMIT 1"_s.arg(KeptTable), {number})
              : TVariant();
    if (VarIsNull(made))
        throw EDatabaseError(GetLanguageString(u"cSUndoGone"_s));
    if (made.toLongLong() < QDateTime::currentSecsSinceEpoch() - KeptFor)
        throw EDatabaseError(GetLanguageString(u"cSUndoExpired"_s));
    for (const auto& [table, columns] : FKept[number].Columns)
        if (ColumnsOf(table) != columns)
            throw EDatabaseError(GetLanguageString(u"cSUndoColumnsChanged"_s));
}

bool TDeletedRows::RestoreTable(qint64 number, const QString& table, const QStringList& columns,
                                const std::function<bool(qint64 restored)>& progress)
{
    const auto kept = std::ranges::find(KeptTables(), table, &TKeptTable::Name);
    const QString rows = u"rowid > ?2 AND rowid <= ?3 AND Number = ?1 AND Source = '%1'"_s.arg(table);
    QStringList conditions{rows, u"RowKey NOT IN (SELECT ID FROM %1)"_s.arg(table)};
    for (const TParent& parent : kept->Parents) {
        const QString place = u"C%1"_s.arg(columns.indexOf(parent.Column));
        conditions << u"(%1 IS NULL OR %1 IN (SELECT ID FROM %2))"_s.arg(place, parent.Table);
    }
    const QString back = u"INSERT INTO %1 (%2) SELECT %3 FROM %4 WHERE %5 ORDER BY RowKey"_s.arg(
        table, QuotedNames(columns), Places(columns.size()), KeptTable, conditions.join(u" AND "_s));
    const QString done = u"DELETE FROM %1 WHERE %2 AND RowKey IN (SELECT ID FROM %3)"_s.arg(KeptTable, rows, table);
    const auto edge = [&](const QString& which) {
        return FConnection
            .Scalar(u"SELECT %1(rowid) FROM %2 WHERE Number = ?1 AND Source = '%3'"_s.arg(which, KeptTable, table),
                    {number})
            .toLongLong();
    };
    const qint64 last = edge(u"max"_s);
    for (qint64 from = edge(u"min"_s) - 1; from < last; from += RestoredAtOnce) {
        for (const QString& sql : {back, done}) {
            TSQLiteStatement& step = FConnection.Cached(sql);
            step.BindAll({number, from, from + RestoredAtOnce});
            step.Execute();
        }
        if (!progress(FConnection.RowsChanged()))
            return false;
    }
    return true;
}

std::optional<qint64> TDeletedRows::Restore(qint64 number, const TProgress& progress)
{
    const auto kept = FKept.find(number);
    if (kept == FKept.end())
        return 0;
    CheckKept(number);
    TSQLiteTransaction transaction(FConnection);
    const qint64 rows = kept->second.Rows;
    qint64 restored = 0;
    const auto step = [&](qint64 more) {
        restored += more;
        return !progress || progress(static_cast<int>(restored), static_cast<int>(rows));
    };
    for (const TKeptTable& table : KeptTables())
        if (!RestoreTable(number, table.Name, kept->second.Columns[table.Name], step))
            return std::nullopt;
    if (restored == 0)
        throw EDatabaseError(GetLanguageString(u"cSUndoParentGone"_s));
    const qint64 leftOut = rows - restored;
    if (leftOut > 0)
        FConnection.Exec(u"DELETE FROM %1 WHERE Number = %2"_s.arg(KeptTable).arg(number));
    transaction.Commit();
    FKept.erase(kept);
    return leftOut;
}

} // namespace Kestrune
