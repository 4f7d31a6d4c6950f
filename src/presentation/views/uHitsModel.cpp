// SPDX-License-Identifier: GPL-3.0-or-later
#include "uHitsModel.h"

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

THitsModel::THitsModel(TAddMusicForm& form, QObject* parent) : QAbstractListModel(parent), FForm(form)
{
    connect(&form.Tabs(), &THitTabs::hitsChanged, this, &THitsModel::Follow);
    connect(&form.Tabs(), &THitTabs::hitChanged, this, &THitsModel::Refresh);
    Follow();
}

int THitsModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(FRecords.size());
}

int THitsModel::RowOf(qint64 record) const
{
    const auto found = std::ranges::find(FRecords, record);
    return found == FRecords.end() ? -1 : static_cast<int>(found - FRecords.begin());
}

const TSearchHit* THitsModel::Hit(int row) const
{
    const std::vector<TSearchHit>& hits = FForm.Tabs().Current().Hits;
    const auto at = static_cast<size_t>(row);
    // Cards of a tab that is just being left are not there any more.
    return row >= 0 && at < hits.size() && at < FRecords.size() && hits[at].RecordIndex == FRecords[at] ? &hits[at]
                                                                                                        : nullptr;
}

// New cards of the same tab come behind those that are there; everything else begins anew.
void THitsModel::Follow()
{
    std::vector<qint64> records;
    for (const TSearchHit& hit : FForm.Tabs().Current().Hits)
        records.push_back(hit.RecordIndex);
    const bool grown = FTab == FForm.Tabs().Current().Id && records.size() > FRecords.size() &&
                       std::equal(FRecords.begin(), FRecords.end(), records.begin());
    FTab = FForm.Tabs().Current().Id;
    if (grown) {
        beginInsertRows({}, static_cast<int>(FRecords.size()), static_cast<int>(records.size()) - 1);
        FRecords = std::move(records);
        endInsertRows();
    } else if (records != FRecords) {
        beginResetModel();
        FRecords = std::move(records);
        endResetModel();
    }
}

void THitsModel::Refresh(qint64 record)
{
    if (FRecords.empty())
        return;
    const int row = RowOf(record);
    if (record == 0)
        Q_EMIT dataChanged(index(0), index(rowCount() - 1));
    else if (row >= 0)
        Q_EMIT dataChanged(index(row), index(row));
}

QVariant THitsModel::data(const QModelIndex& index, int role) const
{
    const TSearchHit* hit = index.isValid() ? Hit(index.row()) : nullptr;
    if (!hit)
        return {};
    switch (role) {
    case Qt::DisplayRole:
    case rrTitle: return hit->ReleaseName;
    case rrArtist: return hit->Artist;
    case rrYear: return hit->ReleaseYear;
    case rrMediaType: return hit->Type;
    case rrCountry: return hit->Country;
    case rrId:
    case hrRecord: return hit->RecordIndex;
    case hrCover: return hit->Cover;
    case hrProvider: return FForm.ProviderName(hit->DataProvider);
    case hrYours: return hit->Yours;
    case hrFacts: {
        const auto joined = [](QStringList parts, const QString& between) {
            parts.removeAll(QString());
            return parts.join(between);
        };
        return joined(
            {hit->CatalogNo.isEmpty() ? hit->Label : hit->CatalogNo, joined({hit->Country, hit->ReleaseYear}, u" "_s)},
            u" · "_s);
    }
    default: return {};
    }
}

} // namespace Kestrune
