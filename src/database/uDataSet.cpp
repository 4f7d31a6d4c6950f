// SPDX-License-Identifier: GPL-3.0-or-later
#include "uDataSet.h"

#include "uTHStrings.h"

#include <QDateTime>
#include <QStringList>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

QString Quoted(const QString& name) { return u'"' + name + u'"'; }

} // namespace

TVariant TDataset::FromStored(const TVariant& value, TFieldKind kind)
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

TDataset::TDataset(TSQLiteConnection& connection, TDatasetDef def) : FConnection(connection), FDef(std::move(def))
{
    for (int i = 0; i < static_cast<int>(FDef.Fields.size()); ++i) {
        const TFieldDef& field = FDef.Fields[static_cast<size_t>(i)];
        FFieldIndex.insert(field.Name.toLower(), i);
        if (!field.Expression.isEmpty() && !field.Lazy)
            FSelected.push_back(i);
    }
    FRatingField = FieldIndex(u"Rating"_s);
    FRatingCalcField = FieldIndex(u"Rating_Calc"_s);
    FReleaseField = FieldIndex(u"Release"_s);
}

int TDataset::FieldIndex(const QString& name) const { return FFieldIndex.value(name.toLower(), -1); }

QString TDataset::SelectSQL() const
{
    QStringList columns{FDef.KeyExpression};
    for (const int field : FSelected) {
        const TFieldDef& def = FDef.Fields[static_cast<size_t>(field)];
        columns.append(def.Expression + u" AS "_s + Quoted(def.Name));
    }
    return u"SELECT %1 FROM %2"_s.arg(columns.join(u", "_s), FDef.From);
}

QString TDataset::RowRefreshSQL() const { return SelectSQL() + u" WHERE %1 = :OLD_ID"_s.arg(FDef.KeyExpression); }

void TDataset::Close()
{
    FState = dsInactive;
    FBuffer.clear();
    FChanged.clear();
    FRecNo = -1;
}

void TDataset::SetRecNo(int row)
{
    FRecNo = row;
    if (SignalsEnabled())
        Q_EMIT currentChanged();
}

void TDataset::MoveTo(int row) { SetRecNo(row >= 0 && row < RecordCount() ? row : -1); }

bool TDataset::Next()
{
    if (FRecNo + 1 >= RecordCount())
        return false;
    MoveTo(FRecNo + 1);
    return true;
}

bool TDataset::Locate(qint64 key)
{
    const int row = RowOfKey(key);
    if (row >= 0)
        MoveTo(row);
    return row >= 0;
}

qint64 TDataset::CurrentKey() const { return FRecNo >= 0 && FState != dsInsert ? KeyAt(FRecNo) : 0; }

TVariant TDataset::Computed(const TRecord& record, int field) const
{
    const auto at = [&](int index) { return index >= 0 ? record[static_cast<size_t>(index)] : TVariant(); };
    if (field == FRatingCalcField) {
        const TVariant rating = VarToDouble(at(FRatingField));
        return VarIsNull(rating) ? TVariant() : TVariant(rating.toDouble() / 2.0);
    }
    if (field == FReleaseField)
        return VarToStr(at(FieldIndex(u"Artist"_s))) + u" - "_s + VarToStr(at(FieldIndex(u"ReleaseName"_s)));
    return {};
}

TVariant TDataset::Value(int field) const
{
    if (field < 0 || field >= static_cast<int>(FDef.Fields.size()))
        return {};
    if (FState != dsEdit && FState != dsInsert)
        return ValueAt(FRecNo, field);
    const TFieldDef& def = FDef.Fields[static_cast<size_t>(field)];
    if (def.Expression.isEmpty())
        return Computed(FBuffer, field);
    if (def.Lazy && FState == dsEdit && !FChanged[static_cast<size_t>(field)])
        return ReadBlob(FRecNo, field);
    return FBuffer[static_cast<size_t>(field)];
}

TVariant TDataset::ValueAt(int row, int field) const
{
    if (row < 0 || field < 0 || field >= static_cast<int>(FDef.Fields.size()))
        return {};
    const TFieldDef& def = FDef.Fields[static_cast<size_t>(field)];
    if (def.Lazy) {
        const QByteArray bytes = ReadBlob(row, field);
        return bytes.isEmpty() ? TVariant() : TVariant(bytes);
    }
    const TRecord& record = RecordAt(row);
    if (record.empty())
        return {};
    return def.Expression.isEmpty() ? Computed(record, field) : record[static_cast<size_t>(field)];
}

QByteArray TDataset::ReadBlob(int row, int field) const
{
    const qint64 key = KeyAt(row);
    if (key == 0 || field < 0)
        return {};
    const TFieldDef& def = FDef.Fields[static_cast<size_t>(field)];
    const QByteArray bytes =
        FConnection
            .Scalar(u"SELECT %1 FROM %2 WHERE %3 = ?"_s.arg(def.Expression, FDef.From, FDef.KeyExpression), {key})
            .toByteArray();
    FConnection.NoteRead(bytes.size());
    return bytes;
}

void TDataset::SetValue(int field, const TVariant& value)
{
    if (field < 0)
        return;
    const TFieldDef& def = FDef.Fields[static_cast<size_t>(field)];
    if (def.ReadOnly || def.AutoIncrement)
        throw EDatabaseError(GetLanguageString(u"cSFieldReadOnly"_s).replace(u"%s"_s, def.Name));
    if (FState == dsBrowse)
        Edit();
    if (FState != dsEdit && FState != dsInsert)
        throw EDatabaseError(GetLanguageString(u"cSNoRecord"_s));
    if (field == FRatingCalcField) {
        const TVariant stars = VarToDouble(value);
        SetValue(FRatingField, VarIsNull(stars) ? TVariant() : TVariant(RoundHalfEven(stars.toDouble() * 2.0)));
        return;
    }
    if (def.Expression.isEmpty())
        return;
    FBuffer[static_cast<size_t>(field)] = value;
    FChanged[static_cast<size_t>(field)] = true;
    if (OnFieldChanged)
        OnFieldChanged(*this, field);
}

void TDataset::Append()
{
    if (FState == dsInactive)
        throw EDatabaseError(GetLanguageString(u"cSNoCollectionOpen"_s));
    Post(); // an edit that is open goes into the file first
    PrepareAppend();
    FBuffer.assign(FDef.Fields.size(), TVariant());
    FChanged.assign(FDef.Fields.size(), false);
    FState = dsInsert;
    if (AfterInsert)
        AfterInsert(*this);
}

void TDataset::Edit()
{
    if (FState != dsBrowse)
        return;
    if (FRecNo < 0)
        throw EDatabaseError(GetLanguageString(u"cSNoRecord"_s));
    FBuffer = RecordAt(FRecNo);
    FBuffer.resize(FDef.Fields.size());
    FChanged.assign(FDef.Fields.size(), false);
    FState = dsEdit;
}

void TDataset::Cancel()
{
    if (FState == dsEdit || FState == dsInsert)
        FState = dsBrowse;
    FBuffer.clear();
    FChanged.clear();
}

void TDataset::Post()
{
    if (FState != dsEdit && FState != dsInsert)
        return;
    FConnection.CheckFileIsThere();
    if (BeforePost)
        BeforePost(*this);
    if (FState == dsInsert)
        InsertRecord();
    else
        UpdateRecord();
    if (AfterPost)
        AfterPost(*this);
}

bool TDataset::IsWritten(size_t field) const
{
    const TFieldDef& def = FDef.Fields[field];
    return !def.ReadOnly && !def.AutoIncrement && !def.Expression.isEmpty();
}

const QString& TDataset::InsertSQL(const std::vector<bool>& columns)
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

void TDataset::InsertRecord()
{
    // Columns without a value are left out, so that the file's own defaults stand.
    std::vector<bool> columns(FDef.Fields.size());
    std::vector<TVariant> values;
    for (size_t i = 0; i < FDef.Fields.size(); ++i) {
        columns[i] = IsWritten(i) && !VarIsNull(FBuffer[i]);
        if (columns[i])
            values.push_back(FBuffer[i]);
    }
    const QString& sql = InsertSQL(columns);
    TSQLiteStatement& statement = FConnection.Cached(sql);
    statement.BindAll(values);
    statement.Execute();
    const qint64 key = FConnection.LastInsertRowId();
    if (const int id = FieldIndex(u"ID"_s); id >= 0)
        FBuffer[static_cast<size_t>(id)] = key;
    for (size_t i = 0; i < FDef.Fields.size(); ++i) {
        if (FDef.Fields[i].Lazy)
            FBuffer[i] = TVariant();
    }
    FState = dsBrowse;
    const int row = AppendRecord(key, std::move(FBuffer));
    FBuffer.clear();
    FRecNo = row;
    if (SignalsEnabled()) {
        Q_EMIT recordInserted(row);
        Q_EMIT currentChanged();
    }
}

void TDataset::UpdateRecord()
{
    const qint64 key = KeyAt(FRecNo);
    QStringList terms;
    std::vector<TVariant> values;
    for (size_t i = 0; i < FDef.Fields.size(); ++i) {
        const TFieldDef& field = FDef.Fields[i];
        if (!FChanged[i] || !IsWritten(i))
            continue;
        terms.append(Quoted(field.Name) + u"=?"_s);
        values.push_back(FBuffer[i]);
    }
    if (!terms.isEmpty()) {
        values.push_back(key);
        TSQLiteStatement& statement =
            FConnection.Cached(u"UPDATE %1 SET %2 WHERE ID=?"_s.arg(FDef.Table, terms.join(u',')));
        statement.BindAll(values);
        statement.Execute();
    }
    for (size_t i = 0; i < FDef.Fields.size(); ++i) {
        if (FDef.Fields[i].Lazy)
            FBuffer[i] = TVariant();
    }
    FState = dsBrowse;
    StoreRecord(FRecNo, std::move(FBuffer));
    FBuffer.clear();
    if (SignalsEnabled())
        Q_EMIT recordChanged(FRecNo);
}

void TDataset::Delete()
{
    if (FState == dsInsert) {
        Cancel();
        return;
    }
    if (FRecNo >= 0)
        DeleteKeys({KeyAt(FRecNo)});
}

void TDataset::DeleteKeys(const std::vector<qint64>& keys)
{
    Cancel();
    FConnection.CheckFileIsThere();
    TSQLiteTransaction transaction(FConnection);
    for (const qint64 key : keys) {
        TSQLiteStatement& statement = FConnection.Cached(u"DELETE FROM %1 WHERE ID=?"_s.arg(FDef.Table));
        statement.Bind(1, key);
        statement.Execute();
    }
    transaction.Commit();
    RemoveKeys(keys);
    FRecNo = std::min(FRecNo, RecordCount() - 1);
    NotifyReset();
}

void TDataset::RefreshRow(qint64 key)
{
    const int row = RowOfKey(key);
    if (row < 0)
        return;
    TSQLiteStatement& statement = FConnection.Cached(RowRefreshSQL());
    statement.Bind(1, key);
    const bool found = statement.Step();
    if (found)
        StoreRecord(row, ReadRecord(statement));
    statement.Reset();
    if (found && SignalsEnabled())
        Q_EMIT recordChanged(row);
}

void TDataset::EnableControls()
{
    FControlsDisabled = std::max(0, FControlsDisabled - 1);
    NotifyReset();
}

void TDataset::NotifyReset()
{
    if (!SignalsEnabled())
        return;
    Q_EMIT dataReset();
    Q_EMIT currentChanged();
}

TDataset::TRecord TDataset::ReadRecord(TSQLiteStatement& statement) const
{
    TRecord record(FDef.Fields.size());
    int column = 1; // the key comes first
    for (const int field : FSelected)
        record[static_cast<size_t>(field)] =
            FromStored(statement.Column(column++), FDef.Fields[static_cast<size_t>(field)].Kind);
    return record;
}

} // namespace Kestrune
