// SPDX-License-Identifier: GPL-3.0-or-later
#include "uDataSet.h"

#include "uColumnNames.h"
#include "uTHStrings.h"

#include <QDateTime>
#include <QScopeGuard>
#include <QStringList>

#include <algorithm>
#include <cmath>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr double MostStars = 5.0;

// A record that was written holds no pictures: they are read when they are asked for.
void DropPictures(std::vector<TVariant>& record, const std::vector<TFieldDef>& fields)
{
    for (size_t i = 0; i < fields.size(); ++i) {
        if (fields[i].Lazy)
            record[i] = TVariant();
    }
}

} // namespace

TDataset::TDataset(TSQLiteConnection& connection, TDatasetDef def)
    : FConnection(connection), FRows(connection, std::move(def))
{
    for (int i = 0; i < static_cast<int>(Fields().size()); ++i) {
        FFieldIndex.insert(FRows.Field(i).Name.toLower(), i);
        FFieldIndex.insert(FRows.Field(i).Name, i);
    }
    FRatingField = FieldIndex(Col::Rating);
    FRatingCalcField = FieldIndex(Col::Rating_Calc);
    FReleaseField = FieldIndex(u"Release"_s);
}

int TDataset::FieldIndex(const QString& name) const
{
    // Nearly all who ask spell the name as the file does, and lower case costs more than looking.
    const auto found = FFieldIndex.constFind(name);
    return found != FFieldIndex.constEnd() ? *found : FFieldIndex.value(name.toLower(), -1);
}

void TDataset::Close()
{
    FState = dsInactive;
    FEditKey = 0;
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

void TDataset::MoveTo(int row)
{
    if (FState == dsInsert || (FState == dsEdit && RowOfKey(FEditKey) != row))
        Post();
    SetRecNo(row >= 0 && row < RecordCount() ? row : -1);
}

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

qint64 TDataset::CurrentKey() const
{
    switch (FState) {
    case dsInsert: return 0;
    case dsEdit: return FEditKey;
    default: return FRecNo >= 0 ? KeyAt(FRecNo) : 0;
    }
}

TVariant TDataset::Computed(const TRecord& record, int field) const
{
    const auto at = [&](int index) { return index >= 0 ? record[static_cast<size_t>(index)] : TVariant(); };
    if (field == FRatingCalcField) {
        const TVariant rating = VarToDouble(at(FRatingField));
        return VarIsNull(rating) ? TVariant() : TVariant(rating.toDouble() / 2.0);
    }
    if (field == FReleaseField)
        return VarToStr(at(FieldIndex(Col::Artist))) + u" - "_s + VarToStr(at(FieldIndex(Col::ReleaseName)));
    return {};
}

TVariant TDataset::Value(int field) const
{
    if (field < 0 || field >= static_cast<int>(Fields().size()))
        return {};
    if (FState != dsEdit && FState != dsInsert)
        return ValueAt(FRecNo, field);
    const TFieldDef& def = FRows.Field(field);
    if (def.Expression.isEmpty())
        return Computed(FBuffer, field);
    if (def.Lazy && FState == dsEdit && !FChanged[static_cast<size_t>(field)])
        return FRows.ReadBlob(FEditKey, field);
    return FBuffer[static_cast<size_t>(field)];
}

TVariant TDataset::ValueAt(int row, int field) const
{
    if (row < 0 || field < 0 || field >= static_cast<int>(Fields().size()))
        return {};
    const TFieldDef& def = FRows.Field(field);
    if (def.Lazy) {
        const QByteArray bytes = ReadBlob(row, field);
        return bytes.isEmpty() ? TVariant() : TVariant(bytes);
    }
    const TRecord& record = RecordAt(row);
    if (record.empty())
        return {};
    return def.Expression.isEmpty() ? Computed(record, field) : record[static_cast<size_t>(field)];
}

QByteArray TDataset::ReadBlob(int row, int field) const { return FRows.ReadBlob(KeyAt(row), field); }

void TDataset::SetValue(int field, const TVariant& value)
{
    if (field < 0)
        return;
    const TFieldDef& def = FRows.Field(field);
    if (def.ReadOnly || def.AutoIncrement)
        throw EDatabaseError(GetLanguageString(u"cSFieldReadOnly"_s).replace(u"%s"_s, def.Name));
    if (FState == dsBrowse)
        Edit();
    if (FState != dsEdit && FState != dsInsert)
        throw EDatabaseError(GetLanguageString(u"cSNoRecord"_s));
    if (field == FRatingCalcField) {
        const TVariant stars = VarToDouble(value);
        const bool none = VarIsNull(stars) || std::isnan(stars.toDouble());
        SetValue(FRatingField,
                 none ? TVariant() : TVariant(RoundHalfEven(std::clamp(stars.toDouble(), 0.0, MostStars) * 2.0)));
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
    FBuffer.assign(Fields().size(), TVariant());
    FChanged.assign(Fields().size(), false);
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
    FEditKey = KeyAt(FRecNo);
    FBuffer = RecordAt(FRecNo);
    FBuffer.resize(Fields().size());
    FChanged.assign(Fields().size(), false);
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

bool TDataset::IsChanged(int field) const
{
    return FState == dsInsert || (FState == dsEdit && field >= 0 && FChanged[static_cast<size_t>(field)]);
}

void TDataset::WriteUpdate(qint64 key, const TRecord& record, const std::vector<bool>& changed)
{
    if (!FRows.Update(key, record, changed))
        throw EDatabaseError(GetLanguageString(u"cSRecordGone"_s));
}

void TDataset::InsertRecord()
{
    const qint64 key = WriteInsert(FBuffer);
    if (const int id = FieldIndex(Col::ID); id >= 0)
        FBuffer[static_cast<size_t>(id)] = key;
    DropPictures(FBuffer, Fields());
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
    WriteUpdate(FEditKey, FBuffer, FChanged);
    DropPictures(FBuffer, Fields());
    FState = dsBrowse;
    StoreRecord(FEditKey, std::move(FBuffer));
    FBuffer.clear();
    if (const int row = RowOfKey(FEditKey); row >= 0 && SignalsEnabled())
        Q_EMIT recordChanged(row);
}

void TDataset::Delete()
{
    if (FState == dsInsert) {
        Cancel();
        return;
    }
    if (const qint64 key = CurrentKey(); key != 0)
        DeleteKeys({key});
}

bool TDataset::DeleteKeys(const std::vector<qint64>& keys, const TProgress& progress)
{
    // An edit of a record that goes is dropped, any other is posted.
    if (FState == dsEdit && std::ranges::count(keys, FEditKey) > 0)
        Cancel();
    Post();
    FConnection.CheckFileIsThere();
    if (!WriteDeletes(keys, progress))
        return false;
    RemoveKeys(keys);
    FRecNo = std::min(FRecNo, RecordCount() - 1);
    NotifyReset();
    return true;
}

int TDataset::UpdateKeys(const std::vector<qint64>& keys, const std::vector<std::pair<QString, TVariant>>& values,
                         const TProgress& progress)
{
    if (values.empty() || !Active())
        return 0;
    Post();
    // One edit of no record stands for all: what the rules make of the values does not depend on the record.
    FBuffer.assign(Fields().size(), TVariant());
    FChanged.assign(Fields().size(), false);
    FEditKey = 0;
    FState = dsEdit;
    const auto end = qScopeGuard([this] { Cancel(); });
    for (const auto& [field, value] : values)
        SetValue(field, value);
    if (BeforePost)
        BeforePost(*this);
    const auto count = static_cast<int>(keys.size());
    int done = 0;
    int found = 0;
    TSQLiteTransaction transaction(FConnection);
    for (const qint64 key : keys) {
        found += FRows.Update(key, FBuffer, FChanged) ? 1 : 0;
        if (++done % 100 == 0 && progress && !progress(done, count))
            return 0;
    }
    transaction.Commit();
    return found;
}

void TDataset::EnableControls()
{
    FControlsDisabled = std::max(0, FControlsDisabled - 1);
    NotifyReset();
}

void TDataset::NotifyChanged()
{
    if (Active() && SignalsEnabled())
        Q_EMIT recordsChanged();
}

void TDataset::NotifyReset()
{
    if (!SignalsEnabled())
        return;
    Q_EMIT dataReset();
    Q_EMIT currentChanged();
}

} // namespace Kestrune
