// SPDX-License-Identifier: GPL-3.0-or-later
#include "uTablePresets.h"

#include "frmMain.h"
#include "uAlbumTable.h"
#include "uColumnNames.h"
#include "uFieldTable.h"

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

const std::vector<TTableViewCustomizationConf>& TablePresets()
{
    static const std::vector<TTableViewCustomizationConf> presets{
        {"btnTableViewPresetReleaseInfo",
         "cSPresetReleaseInfo",
         false,
         {Col::No, Col::ThumbPicture, Col::Artist, Col::ReleaseName, Col::ReleaseYear, Col::MediaType, Col::Label,
          Col::CatalogNO, Col::CountryCode, Col::DiscCount, Col::Rating_Calc, Col::Status, Col::Genre, Col::Location},
         {},
         {}},
        {"btnTableViewPresetPurchaseInfo",
         "cSPresetPurchaseInfo",
         false,
         {Col::No, Col::Artist, Col::ReleaseName, Col::DatePurchased, Col::PurchaseStore, Col::Price, Col::Currency,
          Col::PriceValue, Col::SellingPrice, Col::PurchasedFrom, Col::BorrowedFrom, Col::OwnerId, Col::Quantity},
         {},
         {u"-DatePurchased"_s}},
        {"btnTableViewPresetMediaInfo",
         "cSPresetMediaInfo",
         false,
         {Col::Artist, Col::ReleaseName, Col::MediaType, Col::DiscCount, Col::Sides, Col::TotalTracksCount,
          Col::TotalTracksLength, Col::Channels, Col::Spars, Col::Packaging, Col::MediaColor, Col::Condition,
          Col::ConditionMedia},
         {Col::MediaType},
         {Col::Artist, Col::ReleaseName}},
        {"btnTableViewPresetClassical",
         "cSPresetClassical",
         false,
         {Col::Composer, Col::Composition, Col::Artist, Col::ReleaseName, Col::Conductor, Col::Orchestra, Col::Chorus,
          Col::Label, Col::ReleaseYear, Col::Spars},
         {Col::Composer},
         {Col::Composition}},
        {"btnTableViewPresetAdditional",
         "cSPresetAdditional",
         false,
         {Col::Artist, Col::ReleaseName, Col::Barcode, Col::ASIN, Col::DiscogsID, Col::MusicBrainzID, Col::DataProvider,
          Col::Link, Col::FolderPath, Col::DateAdded, Col::LastModified, Col::Comments},
         {},
         {u"-LastModified"_s}},
        {"btnTableViewPresetTracksGeneral",
         "cSPresetTracksGeneral",
         true,
         {Col::TrackNo, Col::TrackTitle, Col::Artist, Col::TrackLength, Col::ReleaseName, Col::ReleaseArtist,
          Col::DiscNo, Col::ReleaseYear, Col::Genre, Col::Rating_Calc, Col::MediaType},
         {},
         {}}};
    return presets;
}

void ShowColumns(TAlbumTable& table, const QStringList& columns)
{
    const TListModel& list = table.Groups().Source();
    TTableHeader* header = table.Header();
    table.StopSharing();
    for (int column = 0; column < list.columnCount(); ++column)
        header->setSectionHidden(column, true);
    int visual = 0;
    for (const QString& field : columns) {
        const int column = list.ColumnOf(field);
        if (column < 0)
            continue;
        header->setSectionHidden(column, false);
        header->moveSection(header->visualIndex(column), visual++);
        const int usual = FieldInfoOf(field).Width;
        const int least = field == Col::ThumbPicture ? 36 : header->CaptionWidth(column) + 12;
        header->resizeSection(column, std::max(least, usual));
    }
}

void TTableViewCustomizationConf::Apply(TAlbumTable& table, TKRNMainForm& form) const
{
    ShowColumns(table, VisibleColumns);
    std::vector<TSortItem> sort;
    for (const QString& column : SortedColumns)
        sort.push_back({column.startsWith(u'-') ? column.mid(1) : column, column.startsWith(u'-')});
    form.Lists().Active().SetGrouping(GroupedColumns);
    form.Lists().Active().SetSort(std::move(sort));
}

} // namespace Kestrune
