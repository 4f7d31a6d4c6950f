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

// The rows of a table that go with those kept before, or are those that were asked for.
QString ConditionOf(const TKeptTable& kept, const QString& table)
{
    if (kept.Name == table)
        return u"ID IN (SELECT ID FROM temp.KestruneGoing)"_s;
    QStringList conditions;
    for (const TParent& parent : kept.Parents)
        conditions << u"%1 IN (SELECT RowKey FROM %2 WHERE Number = ?1 AND Source = '%3')"_s.arg(
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

qint64 TDeletedRows::Keep(const QString& table, const std::vector<qint64>& keys)
{
    MakeTable();
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    FConnection.Exec(u"DELETE FROM %1 WHERE Made < %2"_s.arg(KeptTable).arg(now - KeptFor));
    TSQLiteStatement going = FConnection.Prepare(u"INSERT OR IGNORE INTO temp.KestruneGoing VALUES (?1)"_s);
    for (const qint64 key : keys) {
        going.Bind(1, key);
        going.Execute();
    }
    // Drawn, since another process on the file counts too.
    const auto number = static_cast<qint64>(QRandomGenerator::global()->generate64() >> 2) + 1;
    for (const TKeptTable& kept : KeptTables()) {
        const QStringList columns = ColumnsOf(kept.Name);
        TSQLiteStatement copy = FConnection.Prepare(
            u"INSERT INTO %1 (Number, Made, Source, RowKey, %2) SELECT ?1, ?2, '%3', ID, %4 FROM %3 WHERE %5"_s.arg(
                KeptTable, Places(columns.size()), kept.Name, QuotedNames(columns), ConditionOf(kept, table)));
        copy.BindAll({number, now});
        copy.Execute();
        FKept[number][kept.Name] = columns;
    }
    FConnection.Exec(u"DELETE FROM temp.KestruneGoing"_s);
    return number;
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
    }
}

void TDeletedRows::CheckKept(qint64 number)
{
    const bool there = !ColumnsOf(KeptTable).isEmpty();
    const TVariant made =
        there ? FConnection.Scalar(u"SELECT min(Made) FROM %1 WHERE Number = ?1"_s.arg(KeptTable), {number})
              : TVariant();
    if (VarIsNull(made))
        throw EDatabaseError(GetLanguageString(u"cSUndoGone"_s));
    if (made.toLongLong() < QDateTime::currentSecsSinceEpoch() - KeptFor)
        throw EDatabaseError(GetLanguageString(u"cSUndoExpired"_s));
    for (const auto& [table, columns] : FKept[number])
        if (ColumnsOf(table) != columns)
            throw EDatabaseError(GetLanguageString(u"cSUndoColumnsChanged"_s));
}

void TDeletedRows::RestoreTable(qint64 number, const QString& table, const QStringList& columns)
{
    const auto kept = std::ranges::find(KeptTables(), table, &TKeptTable::Name);
    QStringList conditions{u"Number = ?1 AND Source = '%1'"_s.arg(table),
                           u"RowKey NOT IN (SELECT ID FROM %1)"_s.arg(table)};
    for (const TParent& parent : kept->Parents) {
        const QString place = u"C%1"_s.arg(columns.indexOf(parent.Column));
        conditions << u"(%1 IS NULL OR %1 IN (SELECT ID FROM %2))"_s.arg(place, parent.Table);
    }
    const QString where = conditions.join(u" AND "_s);
    TSQLiteStatement back = FConnection.Prepare(u"INSERT INTO %1 (%2) SELECT %3 FROM %4 WHERE %5 ORDER BY RowKey"_s.arg(
        table, QuotedNames(columns), Places(columns.size()), KeptTable, where));
    back.Bind(1, number);
    back.Execute();
    TSQLiteStatement done = FConnection.Prepare(
        u"DELETE FROM %1 WHERE Number = ?1 AND Source = '%2' AND RowKey IN (SELECT ID FROM %2)"_s.arg(KeptTable,
                                                                                                      table));
    done.Bind(1, number);
    done.Execute();
}

qint64 TDeletedRows::Restore(qint64 number)
{
    const auto kept = FKept.find(number);
    if (kept == FKept.end())
        return 0;
    CheckKept(number);
    const auto left = [&] {
        return FConnection.Scalar(u"SELECT count(*) FROM %1 WHERE Number = ?1"_s.arg(KeptTable), {number}).toLongLong();
    };
    TSQLiteTransaction transaction(FConnection);
    const qint64 before = left();
    for (const TKeptTable& table : KeptTables())
        RestoreTable(number, table.Name, kept->second[table.Name]);
    const qint64 leftOut = left();
    if (leftOut == before)
        throw EDatabaseError(GetLanguageString(u"cSUndoParentGone"_s));
    FConnection.Exec(u"DELETE FROM %1 WHERE Number = %2"_s.arg(KeptTable).arg(number));
    transaction.Commit();
    FKept.erase(kept);
    return leftOut;
}

} // namespace Kestrune
