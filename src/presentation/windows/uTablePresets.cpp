// SPDX-License-Identifier: GPL-3.0-or-later
#include "uTablePresets.h"

#include "frmMain.h"
#include "uAlbumTable.h"
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
         {u"No"_s, u"ThumbPicture"_s, u"Artist"_s, u"ReleaseName"_s, u"ReleaseYear"_s, u"MediaType"_s, u"Label"_s,
          u"CatalogNO"_s, u"CountryCode"_s, u"DiscCount"_s, u"Rating_Calc"_s, u"Status"_s, u"Genre"_s, u"Location"_s},
         {},
         {}},
        {"btnTableViewPresetPurchaseInfo",
         "cSPresetPurchaseInfo",
         false,
         {u"No"_s, u"Artist"_s, u"ReleaseName"_s, u"DatePurchased"_s, u"PurchaseStore"_s, u"Price"_s, u"Currency"_s,
          u"PriceValue"_s, u"SellingPrice"_s, u"PurchasedFrom"_s, u"BorrowedFrom"_s, u"OwnerId"_s, u"Quantity"_s},
         {},
         {u"-DatePurchased"_s}},
        {"btnTableViewPresetMediaInfo",
         "cSPresetMediaInfo",
         false,
         {u"Artist"_s, u"ReleaseName"_s, u"MediaType"_s, u"DiscCount"_s, u"Sides"_s, u"TotalTracksCount"_s,
          u"TotalTracksLength"_s, u"Channels"_s, u"Spars"_s, u"Packaging"_s, u"MediaColor"_s, u"Condition"_s,
          u"ConditionMedia"_s},
         {u"MediaType"_s},
         {u"Artist"_s, u"ReleaseName"_s}},
        {"btnTableViewPresetClassical",
         "cSPresetClassical",
         false,
         {u"Composer"_s, u"Composition"_s, u"Artist"_s, u"ReleaseName"_s, u"Conductor"_s, u"Orchestra"_s, u"Chorus"_s,
          u"Label"_s, u"ReleaseYear"_s, u"Spars"_s},
         {u"Composer"_s},
         {u"Composition"_s}},
        {"btnTableViewPresetAdditional",
         "cSPresetAdditional",
         false,
         {u"Artist"_s, u"ReleaseName"_s, u"Barcode"_s, u"ASIN"_s, u"DiscogsID"_s, u"MusicBrainzID"_s, u"DataProvider"_s,
          u"Link"_s, u"FolderPath"_s, u"DateAdded"_s, u"LastModified"_s, u"Comments"_s},
         {},
         {u"-LastModified"_s}},
        {"btnTableViewPresetTracksGeneral",
         "cSPresetTracksGeneral",
         true,
         {u"TrackNo"_s, u"TrackTitle"_s, u"Artist"_s, u"TrackLength"_s, u"ReleaseName"_s, u"ReleaseArtist"_s,
          u"DiscNo"_s, u"ReleaseYear"_s, u"Genre"_s, u"Rating_Calc"_s, u"MediaType"_s},
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
        const int least = field == "ThumbPicture"_L1 ? 36 : header->CaptionWidth(column) + 12;
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
