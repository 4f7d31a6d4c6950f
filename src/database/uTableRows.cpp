// SPDX-License-Identifier: GPL-3.0-or-later
#include "uTableRows.h"

#include <QDate>
#include <QStringList>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int DeletedAtOnce = 50; // releases with all that goes with them

QString Quoted(const QString& name) { return u'"' + name + u'"'; }

} // namespace

TTableRows::TTableRows(TSQLiteConnection& connection, TDatasetDef def) : FConnection(connection), FDef(std::move(def))
{
    for (int i = 0; i < static_cast<int>(FDef.Fields.size()); ++i)
        if (!Field(i).Expression.isEmpty() && !Field(i).Lazy)
            FSelected.push_back(i);
}

QString TTableRows::SelectSQL(bool ownOnly) const
{
    QStringList columns{FDef.KeyExpression};
    for (const int field : FSelected) {
        const TFieldDef& def = Field(field);
        columns.append((ownOnly && def.ReadOnly ? u"NULL"_s : def.Expression) + u" AS "_s + Quoted(def.Name));
    }
    return u"SELECT %1 FROM %2"_s.arg(columns.join(u", "_s), FDef.From);
}

QString TTableRows::RowRefreshSQL() const { return SelectSQL() + u" WHERE %1 = :OLD_ID"_s.arg(FDef.KeyExpression); }

TTableRows::TRecord TTableRows::Read(TSQLiteStatement& statement) const
{
    TRecord record(FDef.Fields.size());
    int column = 1; // the key comes first
    for (const int field : FSelected)
        record[static_cast<size_t>(field)] = FromStored(statement.Column(column++), Field(field).Kind);
    return record;
}

QByteArray TTableRows::ReadBlob(qint64 key, int field) const
{
    if (key == 0 || field < 0)
        return {};
    const QByteArray bytes =
        FConnection
            .Scalar(u"SELECT %1 FROM %2 WHERE %3 = ?"_s.arg(Field(field).Expression, FDef.From, FDef.KeyExpression),
                    {key})
            .toByteArray();
    FConnection.NoteRead(bytes.size());
    return bytes;
}

TVariant TTableRows::FromStored(const TVariant& value, TFieldKind kind)
{
    switch (kind) {
    case fkBoolean: return value.typeId() == QMetaType::LongLong ? TVariant(value.toLongLong() != 0) : value;
    case fkFloat: return value.typeId() == QMetaType::LongLong ? TVariant(value.toDouble()) : value;
    case fkDate: {
        const QDate date = QDate::fromString(value.toString(), u"yyyy-MM-dd"_s);
        return date.isValid() ? TVariant(date) : value;
    }
    case fkMemo: // text columns declared as blobs hold either
        return value.typeId() == QMetaType::QByteArray ? TVariant(QString::fromUtf8(value.toByteArray())) : value;
    default: return value;
    }
}

bool TTableRows::IsWritten(size_t field) const
{
    const TFieldDef& def = FDef.Fields[field];
    return !def.ReadOnly && !def.AutoIncrement && !def.Expression.isEmpty();
}

const QString& TTableRows::InsertSQL(const std::vector<bool>& columns)
{
    QString& sql = FInsertSQL[columns];
    if (!sql.isEmpty())
        return sql;
    QStringList names;
    for (size_t i = 0; i < columns.size(); ++i) {
        if (columns[i])
            names.append(Quoted(FDef.Fields[i].Name));
    }
    const QString marks = QString(u"?,"_s).repeated(names.size()).chopped(1);
    sql = names.isEmpty() ? u"INSERT INTO %1 DEFAULT VALUES"_s.arg(FDef.Table)
                          : u"INSERT INTO %1 (%2) VALUES (%3)"_s.arg(FDef.Table, names.join(u','), marks);
    return sql;
}

const QString& TTableRows::UpdateSQL(const std::vector<bool>& columns)
{
    QString& sql = FUpdateSQL[columns];
    if (!sql.isEmpty())
        return sql;
    QStringList terms;
    for (size_t i = 0; i < columns.size(); ++i) {
        if (columns[i])
            terms.append(Quoted(FDef.Fields[i].Name) + u"=?"_s);
    }
    sql = u"UPDATE %1 SET %2 WHERE ID=?"_s.arg(FDef.Table, terms.join(u','));
    return sql;
}

qint64 TTableRows::Insert(const TRecord& record)
{
    std::vector<bool> columns(FDef.Fields.size());
    std::vector<TVariant> values;
    for (size_t i = 0; i < FDef.Fields.size(); ++i) {
        columns[i] = IsWritten(i) && !VarIsNull(record[i]);
        if (columns[i])
            values.push_back(record[i]);
    }
    TSQLiteStatement& statement = FConnection.Cached(InsertSQL(columns));
    statement.BindAll(values);
    statement.Execute();
    return FConnection.LastInsertRowId();
}

bool TTableRows::Update(qint64 key, const TRecord& record, const std::vector<bool>& changed)
{
    std::vector<bool> columns(FDef.Fields.size());
    std::vector<TVariant> values;
    for (size_t i = 0; i < FDef.Fields.size(); ++i) {
        columns[i] = changed[i] && IsWritten(i);
        if (columns[i])
            values.push_back(record[i]);
    }
    if (values.empty())
        return true;
    values.push_back(key);
    TSQLiteStatement& statement = FConnection.Cached(UpdateSQL(columns));
    statement.BindAll(values);
    statement.Execute();
    return FConnection.RowsChanged() > 0;
}

bool TTableRows::Delete(const std::vector<qint64>& keys, const TProgress& progress)
{
    const QString sql = u"DELETE FROM %1 WHERE ID=?"_s.arg(FDef.Table);
    const auto count = static_cast<int>(keys.size());
    int done = 0;
    TSQLiteTransaction transaction(FConnection);
    for (const qint64 key : keys) {
        TSQLiteStatement& statement = FConnection.Cached(sql);
        statement.Bind(1, key);
        statement.Execute();
        if (++done % DeletedAtOnce == 0 && progress && !progress(done, count))
            return false;
    }
    transaction.Commit();
    return true;
}

} // namespace Kestrune
