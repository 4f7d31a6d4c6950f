// SPDX-License-Identifier: GPL-3.0-or-later
#include "uRibbonTable.h"

#include <QSet>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

TRibbonItem Large(const QString& action) { return {rkLarge, action, {}, {}, {}}; }

TRibbonItem Split(const QString& action, const QStringList& menu) { return {rkSplit, action, menu, {}, {}}; }

TRibbonItem Menu(const QString& captionKey, const QString& icon, const QStringList& menu)
{
    return {rkMenu, {}, menu, captionKey, icon};
}

std::vector<TRibbonItem> Smalls(std::vector<TRibbonItem> larges, const QStringList& actions)
{
    for (const QString& action : actions)
        larges.push_back({rkSmall, action, {}, {}, {}});
    return larges;
}

const QStringList AddActions = {u"actAddByBarcode"_s, u"actAddByCDROM"_s, u"actAddByCatalogNo"_s,
                                u"actAddMP3"_s,       u"actAddMusic"_s,   u"actAddReleaseManually"_s};
const QStringList ExportActions = {u"actExportToHTML"_s, u"actExportToExcel"_s, u"actExportToText"_s,
                                   u"actExportToXML"_s,  u"actExportToCSV"_s,   u"actExportToPDF"_s};
const QStringList ListActions = {u"actEditMediaTypes"_s,  u"actEditGenres"_s,   u"actEditConditions"_s,
                                 u"actEditPackaging"_s,   u"actEditStatuses"_s, u"actEditChannels"_s,
                                 u"actEditInstruments"_s, u"actEditLocations"_s};

TRibbonTab HomeTab()
{
    return {u"cSGuiTabHome"_s,
            {{u"cSGuiGroupAdd"_s, u"add"_s, Smalls({Split(u"actAddMain"_s, AddActions)}, AddActions)},
             {u"cSGuiGroupEdit"_s, u"pencil"_s,
              Smalls({Large(u"actEditItem"_s)},
                     {u"actMultiEdit"_s, u"actDuplicate"_s, u"actRemoveSelected"_s, u"actRefresh"_s})},
             {u"cSGuiGroupCovers"_s,
              u"picdown"_s,
              {Split(u"actDownloadCoverImagesForSelection"_s,
                     {u"actDownloadCoverImagesForSelection"_s, u"actDownloadCoverImagesForAllRecords"_s})}},
             {u"cSGuiGroupLoans"_s, u"lend"_s,
              Smalls({Large(u"actLoanSelected"_s)}, {u"actLoanManager"_s, u"actEditFriends"_s})},
             {u"cSGuiGroupPlaylist"_s, u"queue"_s, {Large(u"actAddToPlaylist"_s), Large(u"actShowPlaylist"_s)}}}};
}

TRibbonTab ViewTab()
{
    return {u"cSGuiTabView"_s,
            {{u"cSGuiGroupViews"_s,
              u"thumbs"_s,
              {Large(u"actThumbView"_s), Large(u"actCardsView"_s), Large(u"actShelveView"_s),
               Large(u"actAlbumTableView"_s), Large(u"actTracksView"_s)}},
             {u"cSGuiGroupSize"_s, u"sizeM"_s, {Large(u"actThumbSize"_s)}},
             {u"cSGuiGroupPane"_s, u"pr"_s,
              Smalls({}, {u"actDetailPanelRight"_s, u"actDetailPanelBottom"_s, u"actDetailPanelTop"_s,
                          u"actHideDetailPanel"_s, u"actVGCustomize"_s, u"actVGFilter"_s})},
             {u"cSGuiGroupTable"_s, u"columns"_s,
              Smalls({Large(u"actCustomizeColumns"_s)}, {u"actApplyBestFit"_s, u"actQuickFilter"_s,
                                                         u"actToggleGridEditMode"_s, u"actToggleQuickSearch"_s})},
             {u"cSGuiGroupGroups"_s, u"expall"_s, Smalls({}, {u"actExpandAll"_s, u"actCollapseAll"_s})}}};
}

TRibbonTab FindTab()
{
    return {u"cSGuiTabFind"_s,
            {{u"cSGuiGroupSearch"_s, u"search"_s,
              Smalls({Large(u"actSearch"_s), Large(u"actStatusFilter"_s), Large(u"actAdvancedSearch"_s)},
                     {u"actSavedFilters"_s, u"actFilterStatusOther"_s})},
             {u"cSGuiGroupSort"_s, u"sort"_s,
              Smalls({Large(u"actSort"_s)}, {u"actSortAsc"_s, u"actSortDesc"_s, u"actClearSorting"_s})},
             {u"cSGuiGroupSelection"_s, u"check"_s,
              Smalls({Large(u"actSelectAll"_s)}, {u"actClearSelection"_s, u"actCopySelectedRows"_s,
                                                  u"actCopySelectedCell"_s, u"actOpenFolderPathInWinExporer"_s})}}};
}

TRibbonTab PlayTab()
{
    return {u"cSGuiTabPlay"_s,
            {{u"cSGuiGroupPlayer"_s, u"play"_s,
              Smalls({Large(u"actPlayPause"_s), Large(u"actStop"_s)}, {u"actPrevious"_s, u"actNext"_s})},
             {u"cSGuiGroupPlaylist"_s, u"queue"_s,
              Smalls({Large(u"actShowPlaylist"_s), Large(u"actAddToPlaylist"_s)},
                     {u"actLoadPlaylist"_s, u"actSavePlaylist"_s, u"actClearPlaylist"_s})}}};
}

TRibbonTab ToolsTab()
{
    return {u"cSGuiTabTools"_s,
            {{u"cSGuiGroupCollection"_s,
              u"chart"_s,
              {Large(u"actShowStats"_s), Large(u"actFindDuplicates"_s), Large(u"actDBSplitMerge"_s)}},
             {u"cSGuiGroupExchange"_s,
              u"imp"_s,
              {Large(u"actImport"_s), Menu(u"cSGuiExport"_s, u"exp"_s, ExportActions),
               Split(u"actPrint"_s, {u"actQuickPrint"_s, u"actPrintPreview"_s})}},
             {u"cSGuiGroupLists"_s, u"book"_s, {Menu(u"cSGuiGroupLists"_s, u"book"_s, ListActions)}},
             {u"cSGuiGroupUpkeep"_s, u"opt"_s,
              Smalls({}, {u"actVacuumDB"_s, u"actRegenerateThumbnails"_s, u"actExecSQL"_s, u"actUpdateServices"_s})},
             {u"cSGuiGroupSettings"_s, u"gear"_s,
              Smalls({Large(u"actOptions"_s)}, {u"actBackupSettings"_s, u"actRestoreSettings"_s})}}};
}

} // namespace

std::vector<TRibbonTab> MainRibbonTable() { return {HomeTab(), ViewTab(), FindTab(), PlayTab(), ToolsTab()}; }

QStringList AssignKeyTips(const QStringList& captions)
{
    QSet<QChar> used;
    QStringList tips;
    const auto firstFree = [&used](const QString& letters) {
        for (const QChar c : letters.toUpper())
            if (c.isLetterOrNumber() && !used.contains(c))
                return QString(c);
        return QString();
    };
    for (const QString& caption : captions) {
        QString tip = firstFree(caption);
        if (tip.isEmpty())
            tip = firstFree(u"ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789"_s);
        if (!tip.isEmpty())
            used.insert(tip.front());
        tips << tip;
    }
    return tips;
}

} // namespace Kestrune
