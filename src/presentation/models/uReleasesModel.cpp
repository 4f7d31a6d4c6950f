// SPDX-License-Identifier: GPL-3.0-or-later
#include "uReleasesModel.h"

#include "dmMain.h"
#include "uDictionaries.h"
#include "uFieldText.h"
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
        if (!VarIsNull(at(row, u"ReturnDate"_s)))
            continue;
        const int friendRow = friends.RowOfKey(at(row, u"FriendID"_s).toLongLong());
        const QDate due = at(row, u"DueDate"_s).toDate();
        FLoans.insert(
            at(row, u"ReleaseId"_s).toLongLong(),
            {VarToStr(friends.ValueAt(friendRow, friends.FieldIndex(u"Name"_s))), due.isValid() && due < today});
    }
}

QVariant TReleasesModel::RoleData(int row, int role) const
{
    const auto text = [&](const QString& field) { return VarToStr(Value(row, field)); };
    const auto shown = [&](const QString& field) { return TDataModuleMain::DisplayText(field, text(field)); };
    switch (role) {
    case rrId: return List().KeyAt(row);
    case rrTitle: return shown(u"ReleaseName"_s);
    case rrArtist: return shown(u"Artist"_s);
    case rrYear: return text(u"ReleaseYear"_s);
    case rrNumber: return text(u"No"_s);
    case rrMediaType: return text(u"MediaType"_s);
    case rrRating: return Value(row, u"Rating"_s).toInt();
    case rrStatus: return text(u"Status"_s);
    case rrWanted: return text(u"Status"_s) == WantedStatus;
    case rrLentTo: return FLoans.value(List().KeyAt(row)).Friend;
    case rrOverdue: return FLoans.value(List().KeyAt(row)).Overdue;
    case rrCountry: return text(u"CountryCode"_s);
    case rrLastModified: return text(u"LastModified"_s);
    case rrThumbBytes: return List().ReadBlob(row, List().FieldIndex(u"ThumbPicture"_s));
    default: return {};
    }
}

TCellKind TReleasesModel::KindOf(const TFieldDef& field) const
{
    if (field.Name == "Status"_L1)
        return ckStatus;
    return field.Name == "CountryCode"_L1 ? ckCountry : TListModel::KindOf(field);
}

TTracksModel::TTracksModel(TDataModuleMain& data, QObject* parent) : TListModel(data, data.qTracksAll, parent)
{
    Start();
}

QVariant TTracksModel::RoleData(int row, int role) const
{
    switch (role) {
    case rrId: return List().KeyAt(row);
    case rrTitle: return VarToStr(Value(row, u"TrackTitle"_s));
    case rrArtist: return TDataModuleMain::DisplayText(u"Artist"_s, VarToStr(Value(row, u"Artist"_s)));
    case rrRating: return Value(row, u"Rating"_s).toInt();
    case rrLastModified: return VarToStr(Value(row, u"LastModified"_s));
    default: return {};
    }
}

} // namespace Kestrune
