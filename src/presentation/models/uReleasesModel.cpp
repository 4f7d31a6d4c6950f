// SPDX-License-Identifier: GPL-3.0-or-later
#include "uReleasesModel.h"

#include "dmMain.h"
#include "frmMain.h"
#include "uDefaults.h"
#include "uDictionaries.h"
#include "uTHStrings.h"

#include <QDate>
#include <QLocale>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

const QLatin1StringView WantedStatus("Wanted item");

} // namespace

TReleasesModel::TReleasesModel(TDataModuleMain& data, QObject* parent) : QAbstractTableModel(parent), FData(data)
{
    const auto& fields = FData.qReleasesMain.Fields();
    for (int i = 0; i < static_cast<int>(fields.size()); ++i) {
        const TFieldDef& field = fields[static_cast<size_t>(i)];
        const bool custom = field.Name.startsWith("Custom"_L1);
        // The stars stand for both ratings.
        if (!field.Lazy && IsFieldShown(field, Defaults(), false) && (custom || !field.LabelKey.isEmpty()) &&
            field.Name != "Rating"_L1)
            FFields.append(i);
    }
    connect(&FData.qReleasesMain, &TDataset::dataReset, this, &TReleasesModel::Reset);
    connect(&FData.qReleasesMain, &TDataset::recordInserted, this, &TReleasesModel::Reset);
    connect(&FData.qReleasesMain, &TDataset::recordChanged, this,
            [this](int row) { Q_EMIT dataChanged(index(row, 0), index(row, columnCount() - 1)); });
    connect(&FData.qLoans, &TDataset::dataReset, this, [this] {
        ReadLoans();
        if (rowCount() > 0)
            Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
    });
    Reset();
}

void TReleasesModel::Reset()
{
    beginResetModel();
    FRows = FData.qReleasesMain.RecordCount();
    ReadLoans();
    endResetModel();
}

int TReleasesModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : FRows; }

int TReleasesModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(FFields.size()) + 1;
}

int TReleasesModel::ColumnOf(const QString& field) const
{
    if (field == "ThumbPicture"_L1)
        return 0;
    const auto position = FFields.indexOf(FData.qReleasesMain.FieldIndex(field));
    return position < 0 ? -1 : static_cast<int>(position) + 1;
}

QString TReleasesModel::FieldOf(int column) const
{
    return column < 1 || column > FFields.size()
               ? QString()
               : FData.qReleasesMain.Fields()[static_cast<size_t>(FFields[column - 1])].Name;
}

qint64 TReleasesModel::IdOf(const QModelIndex& index) const
{
    return index.isValid() ? FData.qReleasesMain.KeyAt(index.row()) : 0;
}

QModelIndex TReleasesModel::IndexOfId(qint64 id) const
{
    const int row = FData.qReleasesMain.RowOfKey(id);
    return row < 0 || row >= FRows ? QModelIndex() : index(row, 0);
}

void TReleasesModel::ReadLoans()
{
    FLoans.clear();
    const TDataset& loans = FData.qLoans;
    if (!loans.Active())
        return;
    const QDate today = QDate::currentDate();
    const auto at = [&](int row, const QString& field) { return loans.ValueAt(row, loans.FieldIndex(field)); };
    for (int row = 0; row < loans.RecordCount(); ++row) {
        if (!VarIsNull(at(row, u"ReturnDate"_s)))
            continue;
        const int friendRow = FData.qFriends.RowOfKey(at(row, u"FriendID"_s).toLongLong());
        const QDate due = at(row, u"DueDate"_s).toDate();
        FLoans.insert(at(row, u"ReleaseId"_s).toLongLong(),
                      {VarToStr(FData.qFriends.ValueAt(friendRow, FData.qFriends.FieldIndex(u"Name"_s))),
                       due.isValid() && due < today});
    }
}

QVariant TReleasesModel::Value(int row, const QString& field) const
{
    return FData.qReleasesMain.ValueAt(row, FData.qReleasesMain.FieldIndex(field));
}

QVariant TReleasesModel::RoleData(int row, int role) const
{
    const qint64 id = FData.qReleasesMain.KeyAt(row);
    switch (role) {
    case rrId: return id;
    case rrTitle: return FData.DisplayText(u"ReleaseName"_s, VarToStr(Value(row, u"ReleaseName"_s)));
    case rrArtist: return FData.DisplayText(u"Artist"_s, VarToStr(Value(row, u"Artist"_s)));
    case rrYear: return VarToStr(Value(row, u"ReleaseYear"_s));
    case rrMediaType: return VarToStr(Value(row, u"MediaType"_s));
    case rrRating: return Value(row, u"Rating"_s).toInt();
    case rrStatus: return VarToStr(Value(row, u"Status"_s));
    case rrWanted: return VarToStr(Value(row, u"Status"_s)) == WantedStatus;
    case rrLentTo: return FLoans.value(id).Friend;
    case rrOverdue: return FLoans.value(id).Overdue;
    case rrCountry: return VarToStr(Value(row, u"CountryCode"_s));
    case rrLastModified: return VarToStr(Value(row, u"LastModified"_s));
    case rrThumbBytes: return FData.qReleasesMain.ReadBlob(row, FData.qReleasesMain.FieldIndex(u"ThumbPicture"_s));
    default: return {};
    }
}

QVariant TReleasesModel::DisplayData(int row, int field) const
{
    const TFieldDef& def = FData.qReleasesMain.Fields()[static_cast<size_t>(field)];
    const TVariant value = FData.qReleasesMain.ValueAt(row, field);
    if (VarIsNull(value))
        return {};
    if (def.Name == "Artist"_L1 || def.Name == "ReleaseName"_L1)
        return FData.DisplayText(def.Name, VarToStr(value));
    if (def.Name == "TotalTracksLength"_L1)
        return LengthText(value.toDouble());
    if (def.Name == "Rating_Calc"_L1)
        return QLocale().toString(value.toDouble(), 'f', 1);
    switch (def.Kind) {
    case fkBoolean: return VarToBool(value) ? GetLanguageString(u"cSYes"_s) : QString();
    case fkFloat: return QLocale().toString(value.toDouble(), 'f', 2);
    case fkDate:
        return value.typeId() == QMetaType::QDate ? QLocale().toString(value.toDate(), QLocale::ShortFormat)
                                                  : VarToStr(value);
    default: return VarToStr(value);
    }
}

QVariant TReleasesModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    if (role > Qt::UserRole)
        return RoleData(index.row(), role);
    if (role == Qt::DisplayRole || role == Qt::AccessibleTextRole)
        return index.column() == 0 ? RoleData(index.row(), rrTitle)
                                   : DisplayData(index.row(), FFields[index.column() - 1]);
    if (role == Qt::TextAlignmentRole && KindOf(index.column()) == ckNumber)
        return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
    return {};
}

TCellKind TReleasesModel::KindOf(int column) const
{
    if (column == 0)
        return ckCover;
    const TFieldDef& field = FData.qReleasesMain.Fields()[static_cast<size_t>(FFields[column - 1])];
    if (field.Name == "Rating_Calc"_L1)
        return ckRating;
    if (field.Name == "Status"_L1)
        return ckStatus;
    if (field.Name == "CountryCode"_L1)
        return ckCountry;
    const bool number =
        field.Kind == fkInteger || field.Kind == fkFloat || field.Kind == fkDate || field.Kind == fkDateTime;
    return number ? ckNumber : ckText;
}

QVariant TReleasesModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= columnCount())
        return {};
    if (role == CellKindRole)
        return KindOf(section);
    if (role == Qt::TextAlignmentRole && KindOf(section) == ckNumber)
        return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
    if (role != Qt::DisplayRole)
        return {};
    if (section == 0)
        return QString();
    const TFieldDef& field = FData.qReleasesMain.Fields()[static_cast<size_t>(FFields[section - 1])];
    // A table has less room than a form.
    if (field.Name == "ReleaseYear"_L1)
        return GetLanguageString(u"cSGuiHeadingYear"_s);
    if (field.Name == "DiscCount"_L1)
        return GetLanguageString(u"cSGuiHeadingDiscs"_s);
    return ColumnLabel(field, Defaults(), false);
}

} // namespace Kestrune
