// SPDX-License-Identifier: GPL-3.0-or-later
#include "uReleasesModel.h"

#include "dmMain.h"
#include "uColumnNames.h"
#include "uDictionaries.h"
#include "uFieldText.h"
#include "uFieldValues.h"
#include "uTHStrings.h"

#include <QDate>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

const QLatin1StringView WantedStatus("Wanted item");

} // namespace

TReleasesModel::TReleasesModel(TDataModuleMain& data, QObject* parent) : TListModel(data, data.qReleasesMain, parent)
{
    connect(&data.qLoans, &TDataset::dataReset, this, [this] {
        ReadLoans();
        if (rowCount() > 0)
            Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
    });
    Start();
}

void TReleasesModel::ReadLoans()
{
    FLoans.clear();
    const TDataset& loans = Data().qLoans;
    const TDataset& friends = Data().qFriends;
    if (!loans.Active())
        return;
    const QDate today = QDate::currentDate();
    const auto at = [&](int row, const QString& field) { return loans.ValueAt(row, loans.FieldIndex(field)); };
    for (int row = 0; row < loans.RecordCount(); ++row) {
        if (!VarIsNull(at(row, Col::ReturnDate)))
            continue;
        const int friendRow = friends.RowOfKey(at(row, Col::FriendID).toLongLong());
        const QDate due = at(row, Col::DueDate).toDate();
        FLoans.insert(
            at(row, Col::ReleaseId).toLongLong(),
            {VarToStr(friends.ValueAt(friendRow, friends.FieldIndex(Col::Name))), due.isValid() && due < today});
    }
}

QVariant TReleasesModel::RoleData(int row, int role) const
{
    const auto text = [&](const QString& field) { return VarToStr(Value(row, field)); };
    const auto shown = [&](const QString& field) { return DisplayText(field, text(field)); };
    switch (role) {
    case rrId: return List().KeyAt(row);
    case rrTitle: return shown(Col::ReleaseName);
    case rrArtist: return shown(Col::Artist);
    case rrYear: return text(Col::ReleaseYear);
    case rrNumber: return text(Col::No);
    case rrMediaType: return text(Col::MediaType);
    case rrRating: return Value(row, Col::Rating).toInt();
    case rrStatus: return text(Col::Status);
    case rrWanted: return text(Col::Status) == WantedStatus;
    case rrLentTo: return FLoans.value(List().KeyAt(row)).Friend;
    case rrOverdue: return FLoans.value(List().KeyAt(row)).Overdue;
    case rrCountry: return text(Col::CountryCode);
    case rrLastModified: return text(Col::LastModified);
    case rrThumbBytes: return List().ReadBlob(row, List().FieldIndex(Col::ThumbPicture));
    default: return {};
    }
}

TCellKind TReleasesModel::KindOf(const TFieldDef& field) const
{
    if (field.Name == Col::Status)
        return ckStatus;
    return field.Name == Col::CountryCode ? ckCountry : TListModel::KindOf(field);
}

TTracksModel::TTracksModel(TDataModuleMain& data, QObject* parent) : TListModel(data, data.qTracksAll, parent)
{
    Start();
}

QVariant TTracksModel::RoleData(int row, int role) const
{
    switch (role) {
    case rrId: return List().KeyAt(row);
    case rrTitle: return VarToStr(Value(row, Col::TrackTitle));
    case rrArtist: return DisplayText(Col::Artist, VarToStr(Value(row, Col::Artist)));
    case rrRating: return Value(row, Col::Rating).toInt();
    case rrLastModified: return VarToStr(Value(row, Col::LastModified));
    default: return {};
    }
}

} // namespace Kestrune
