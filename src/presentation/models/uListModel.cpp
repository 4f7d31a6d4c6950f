// SPDX-License-Identifier: GPL-3.0-or-later
#include "uListModel.h"

#include "dmMain.h"
#include "uColumnNames.h"
#include "uDefaults.h"
#include "uFieldText.h"
#include "uFieldValues.h"
#include "uTHStrings.h"

namespace Kestrune {

using namespace Qt::StringLiterals;

TListModel::TListModel(TDataModuleMain& data, TListDataset& list, QObject* parent)
    : QAbstractTableModel(parent), FData(data), FList(list)
{}

void TListModel::Start()
{
    ReadColumns();
    connect(&FList, &TDataset::dataReset, this, &TListModel::Reset);
    connect(&FList, &TDataset::recordInserted, this, &TListModel::Reset);
    connect(&FList, &TDataset::recordChanged, this,
            [this](int row) { Q_EMIT dataChanged(index(row, 0), index(row, columnCount() - 1)); });
    connect(&FList, &TDataset::recordsChanged, this, [this] {
        if (FRows > 0)
            Q_EMIT dataChanged(index(0, 0), index(FRows - 1, columnCount() - 1));
    });
    Reset();
}

bool TListModel::IsColumn(const TFieldDef& field) const
{
    const bool custom = field.Name.startsWith("Custom"_L1);
    // The stars stand for both ratings.
    return !field.Lazy && IsFieldShown(field, Defaults()) && (custom || !field.LabelKey.isEmpty()) &&
           field.Name != Col::Rating;
}

void TListModel::ReadColumns()
{
    FFields.clear();
    if (HasCover())
        FFields << -1;
    for (int i = 0; i < static_cast<int>(FList.Fields().size()); ++i)
        if (IsColumn(FList.Fields()[static_cast<size_t>(i)]))
            FFields << i;
}

void TListModel::ResetColumns()
{
    beginResetModel();
    ReadColumns();
    endResetModel();
    Q_EMIT columnsReset();
}

void TListModel::Reset()
{
    beginResetModel();
    FRows = FList.RecordCount();
    Prepare();
    endResetModel();
}

int TListModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : FRows; }

int TListModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(FFields.size());
}

int TListModel::ColumnOf(const QString& field) const
{
    if (field == Col::ThumbPicture)
        return HasCover() ? 0 : -1;
    const int index = FList.FieldIndex(field);
    return index < 0 ? -1 : static_cast<int>(FFields.indexOf(index));
}

const TFieldDef* TListModel::FieldDefOf(int column) const
{
    const int field = FFields.value(column, -1);
    return field < 0 ? nullptr : &FList.Fields()[static_cast<size_t>(field)];
}

QString TListModel::FieldOf(int column) const
{
    const TFieldDef* field = FieldDefOf(column);
    return field ? field->Name : QString();
}

qint64 TListModel::IdOf(const QModelIndex& index) const { return index.isValid() ? FList.KeyAt(index.row()) : 0; }

QModelIndex TListModel::IndexOfId(qint64 id) const
{
    const int row = FList.RowOfKey(id);
    return row < 0 || row >= FRows ? QModelIndex() : index(row, 0);
}

QVariant TListModel::Value(int row, const QString& field) const { return FList.ValueAt(row, FList.FieldIndex(field)); }

QVariant TListModel::DisplayData(int row, int field) const
{
    const TFieldDef& def = FList.Fields()[static_cast<size_t>(field)];
    const TVariant value = FList.ValueAt(row, field);
    if (VarIsNull(value) || (def.Kind == fkBoolean && !VarToBool(value)))
        return {};
    // A table has room for the code only; the name stands in the detail pane.
    return def.Name == Col::CountryCode ? VarToStr(value) : FieldText(FData, def, value);
}

QVariant TListModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    if (role > Qt::UserRole)
        return RoleData(index.row(), role);
    const int field = FFields[index.column()];
    if (role == Qt::DisplayRole || role == Qt::AccessibleTextRole)
        return field < 0 ? RoleData(index.row(), rrTitle) : DisplayData(index.row(), field);
    if (role == Qt::EditRole && field >= 0)
        return FList.ValueAt(index.row(), field);
    if (role == Qt::TextAlignmentRole && field >= 0 && KindOf(FList.Fields()[static_cast<size_t>(field)]) == ckNumber)
        return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
    return {};
}

bool TListModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    const TFieldDef* field = FieldDefOf(index.column());
    return role == Qt::EditRole && field && FEdit && FEdit(IdOf(index), field->Name, value);
}

Qt::ItemFlags TListModel::flags(const QModelIndex& index) const
{
    const TFieldDef* field = index.isValid() ? FieldDefOf(index.column()) : nullptr;
    const bool editable = field && FEdit && (IsFieldAssignable(*field)) && field->Kind != fkDateTime;
    return QAbstractTableModel::flags(index) | (editable ? Qt::ItemIsEditable : Qt::NoItemFlags);
}

TCellKind TListModel::KindOf(const TFieldDef& field) const
{
    if (field.Name == Col::Rating_Calc)
        return ckRating;
    const bool number =
        field.Kind == fkInteger || field.Kind == fkFloat || field.Kind == fkDate || field.Kind == fkDateTime;
    return number && !IsFriendField(field.Name) ? ckNumber : ckText;
}

QVariant TListModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= columnCount())
        return {};
    const TFieldDef* field = FieldDefOf(section);
    const TCellKind kind = field ? KindOf(*field) : ckCover;
    if (role == CellKindRole)
        return kind;
    if (role == Qt::TextAlignmentRole && kind == ckNumber)
        return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
    const bool asked = role == Qt::DisplayRole || role == FullCaptionRole;
    if (!asked || !field)
        return asked && role == FullCaptionRole ? GetLanguageString(u"cSGuiHeadingCover"_s) : QVariant();
    // A table has less room than a form.
    if (role == Qt::DisplayRole && field->Name == Col::ReleaseYear)
        return GetLanguageString(u"cSGuiHeadingYear"_s);
    if (role == Qt::DisplayRole && field->Name == Col::DiscCount)
        return GetLanguageString(u"cSGuiHeadingDiscs"_s);
    if (field->Name == Col::ReleaseArtist)
        return GetLanguageString(u"cSReleasesFieldArtist"_s);
    return ColumnLabel(*field, Defaults());
}

} // namespace Kestrune
