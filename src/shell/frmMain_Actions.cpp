// SPDX-License-Identifier: GPL-3.0-or-later
#include "frmImport.h"
#include "frmMain.h"
#include "uDefaults.h"
#include "uPrompt.h"
#include "uTHStrings.h"

#include <QFileInfo>

namespace Kestrune {

using namespace Qt::StringLiterals;

void TKRNMainForm::BindActions()
{
    BindFileActions();
    BindUpkeepActions();
    BindViewActions();
    BindTableActions();
    BindFilterActions();
    BindEditActions();
    BindListActions();
    BindExchangeActions();
    BindAddActions();
}

void TKRNMainForm::BindFileActions()
{
    const auto hasData = [this] { return FData.HasData() && !Busy(); };
    const auto canWrite = [this] { return FData.HasData() && !Busy() && !FData.IsReadOnly(); };
    const auto idle = [this] { return !Busy(); };
    FActions.Bind(
        u"actAddMP3"_s,
        [this] {
            const QString folder = FPrompt.AskFolder(GetLanguageString(u"cSactAddMP3"_s), {});
            AddFolders(folder.isEmpty() ? QStringList() : QStringList{folder});
        },
        canWrite);
    FActions.Bind(
        u"actImport"_s, [this] { OpenImport(); }, canWrite);
    FActions.Bind(
        u"actNewDatabase"_s, [this] { NewDatabase(); }, idle);
    FActions.Bind(
        u"actOpenDatabase"_s, [this] { OpenDatabase(); }, idle);
    FActions.Bind(
        u"actSaveDatabase"_s, [this] { FData.CommitTransaction(); }, hasData);
    FActions.Bind(
        u"actSaveDatabaseAs"_s, [this] { SaveDatabaseAs(); }, hasData);
    FActions.Bind(u"actExit"_s, [this] { Q_EMIT closeRequested(); });
    FActions.Bind(u"actHelp"_s, [this] { Q_EMIT dialogRequested(mdHelp); });
    FActions.Bind(u"actAbout"_s, [this] { Q_EMIT dialogRequested(mdAbout); });
    FActions.Bind(u"actCommandPalette"_s, [this] { Q_EMIT dialogRequested(mdPalette); });
}

void TKRNMainForm::BindUpkeepActions()
{
    const auto hasData = [this] { return FData.HasData() && !Busy(); };
    const auto canWrite = [this] { return FData.HasData() && !Busy() && !FData.IsReadOnly(); };
    const auto idle = [this] { return !Busy(); };
    FActions.Bind(
        u"actRefresh"_s,
        [this] {
            FData.RefreshAll();
            CountReleases();
            StartCounting();
            RefreshDetail();
            Q_EMIT figuresChanged();
        },
        hasData);
    FActions.Bind(
        u"actVacuumDB"_s,
        [this] {
            if (!FPrompt.AskYesNo(GetLanguageString(u"cSConfirmOptimization"_s)))
                return;
            FData.VacuumDB();
            Q_EMIT barRaised(bkDone, GetLanguageString(u"cSOptimizationDone"_s), {});
        },
        canWrite);
    FActions.Bind(
        u"actRegenerateThumbnails"_s, [this] { RegenerateThumbnails(); }, canWrite);
    FActions.Bind(
        u"actExecSQL"_s, [this] { Q_EMIT dialogRequested(mdExecSQL); }, hasData);
    FActions.Bind(
        u"actOptions"_s, [this] { Q_EMIT dialogRequested(mdOptions); }, idle);
    FActions.Bind(
        u"actBackupSettings"_s, [this] { BackupSettings(); }, idle);
    FActions.Bind(
        u"actRestoreSettings"_s, [this] { RestoreSettingsBackup(); }, idle);
    FActions.Bind(
        u"actToggleDebug"_s, [this] { Q_EMIT debugWindowToggled(); }, [this] { return FDebugMode; });
}

void TKRNMainForm::BindViewActions()
{
    const auto hasData = [this] { return FData.HasData(); };
    const auto bindView = [&](const QString& name, TMainView view) {
        FActions.Bind(
            name, [this, view] { SetCurrentView(view); }, hasData, [this, view] { return FView == view; });
    };
    bindView(u"actThumbView"_s, mvThumbs);
    bindView(u"actCardsView"_s, mvCards);
    bindView(u"actShelveView"_s, mvShelf);
    bindView(u"actAlbumTableView"_s, mvAlbums);
    bindView(u"actTracksView"_s, mvTracks);
    FActions.Bind(
        u"actThumbSize"_s, [this] { SetThumbSize((ThumbSize() + 1) % 3); },
        [this] { return FData.HasData() && (FView == mvThumbs || FView == mvShelf); });
    const auto bindPane = [this](const QString& name, int location) {
        FActions.Bind(
            name,
            [this, location] {
                Defaults().InfoPaneLocation = location;
                SetPaneClosed(false);
            },
            {}, [this, location] { return !PaneClosed() && PaneLocation() == location; });
    };
    bindPane(u"actDetailPanelBottom"_s, 0);
    bindPane(u"actDetailPanelRight"_s, 1);
    bindPane(u"actDetailPanelTop"_s, 2);
    FActions.Bind(
        u"actHideDetailPanel"_s, [this] { SetPaneClosed(!PaneClosed()); }, {}, [this] { return PaneClosed(); });
    const auto paneShown = [this] { return FData.HasData() && !PaneClosed(); };
    FActions.Bind(
        u"actVGCustomize"_s, [this] { Q_EMIT paneCustomizeToggled(); }, paneShown);
    FActions.Bind(
        u"actVGFilter"_s, [this] { Q_EMIT paneFilterToggled(); }, paneShown);
    FActions.Bind(
        u"actToggleQuickSearch"_s, [this] { Q_EMIT findPanelToggled(); }, hasData);
}

void TKRNMainForm::BindTableActions()
{
    const auto table = [this] { return FData.HasData() && (FView == mvAlbums || FView == mvTracks); };
    const auto grouped = [this, table] { return table() && !List().Groups().empty(); };
    FActions.Bind(
        u"actCustomizeColumns"_s, [this] { Q_EMIT dialogRequested(mdColumns); }, table);
    FActions.Bind(
        u"actQuickFilter"_s, [this] { Q_EMIT filterRowToggled(); }, table);
    FActions.Bind(
        u"actApplyBestFit"_s, [this] { Q_EMIT bestFitRequested(); }, table);
    FActions.Bind(
        u"actExpandAll"_s, [this] { Q_EMIT expandRequested(true); }, grouped);
    FActions.Bind(
        u"actCollapseAll"_s, [this] { Q_EMIT expandRequested(false); }, grouped);
    FActions.Bind(
        u"actToggleGridEditMode"_s,
        [this] {
            bool& inPlace = FInPlace[TracksShown() ? 1 : 0];
            inPlace = !inPlace;
            Q_EMIT viewChanged();
        },
        [this, table] { return table() && !FData.IsReadOnly(); },
        [this, table] { return table() && InPlaceEditing(); });
}

void TKRNMainForm::BindFilterActions()
{
    const auto hasData = [this] { return FData.HasData(); };
    const auto releases = [this] { return FData.HasData() && !TracksShown(); };
    const auto filtered = [this] { return !Filters().Set().IsEmpty(); };
    const auto sorted = [this] { return FData.HasData() && !List().Sort().empty(); };
    FActions.Bind(
        u"actSearch"_s, [this] { Search(); }, hasData);
    // Tracks have no status.
    FActions.Bind(
        u"actStatusFilter"_s, [] {}, releases);
    FActions.Bind(
        u"actFilterStatusAll"_s, [this] { RemoveFilter(fckStatus); }, releases);
    FActions.Bind(
        u"actFilterStatusOther"_s,
        [this] {
            Filters().Clear();
            ApplyFilters();
        },
        filtered);
    FActions.Bind(
        u"actAdvancedSearch"_s, [this] { Q_EMIT dialogRequested(mdFilterBuilder); }, hasData);
    FActions.Bind(
        u"actSaveFilter"_s, [this] { Q_EMIT dialogRequested(mdSaveFilter); }, filtered);
    FActions.Bind(
        u"actSavedFilters"_s, [] {}, hasData);
    const auto direction = [this](bool descending) {
        auto sort = List().Sort();
        for (TSortItem& item : sort)
            item.Descending = descending;
        SetSort(std::move(sort));
    };
    FActions.Bind(
        u"actSort"_s, [this] { Q_EMIT dialogRequested(mdSort); }, hasData);
    FActions.Bind(
        u"actSortAsc"_s, [direction] { direction(false); }, sorted);
    FActions.Bind(
        u"actSortDesc"_s, [direction] { direction(true); }, sorted);
    FActions.Bind(
        u"actClearSorting"_s, [this] { SetSort({}); }, sorted);
}

void TKRNMainForm::BindEditActions()
{
    const auto hasData = [this] { return FData.HasData(); };
    const auto hasRows = [this] { return FData.HasData() && !ActiveKeys().empty(); };
    const auto canChange = [this, hasRows] { return hasRows() && !Busy() && !FData.IsReadOnly(); };
    FActions.Bind(
        u"actRemoveSelected"_s, [this] { RemoveSelected(); }, canChange);
    FActions.Bind(
        u"actMultiEdit"_s, [this] { Q_EMIT dialogRequested(mdMultiEdit); }, canChange);
    FActions.Bind(
        u"actDuplicate"_s, [this] { Duplicate(); },
        [this, canChange] { return canChange() && !TracksShown() && FFocused != 0; });
    FActions.Bind(
        u"actSelectAll"_s, [this] { Q_EMIT selectionRequested(true); }, hasData);
    FActions.Bind(
        u"actClearSelection"_s, [this] { Q_EMIT selectionRequested(false); },
        [this] { return !(TracksShown() ? FTrackSelection : FSelection).empty(); });
    FActions.Bind(
        u"actCopySelectedCell"_s, [this] { Q_EMIT copyRequested(false); }, hasRows);
    FActions.Bind(
        u"actCopySelectedRows"_s, [this] { Q_EMIT copyRequested(true); }, hasRows);
    FActions.Bind(
        u"actOpenFolderPathInWinExporer"_s,
        [this] {
            const QString folder = VarToStr(DetailValue(u"FolderPath"_s));
            if (folder.isEmpty())
                Q_EMIT barRaised(bkWarning, GetLanguageString(u"cSNoFolder"_s), {});
            else if (!QFileInfo::exists(folder))
                Q_EMIT barRaised(bkError, GetLanguageString(u"cSFolderMissing"_s), folder);
            else
                Q_EMIT openFolderRequested(folder);
        },
        [this] { return FData.HasData() && FDetail.ID != 0; });
}

void TKRNMainForm::BindListActions()
{
    const std::pair<QString, QString> lists[] = {
        {u"actEditMediaTypes"_s, u"MediaType"_s},   {u"actEditGenres"_s, u"Genre"_s},
        {u"actEditConditions"_s, u"Condition"_s},   {u"actEditPackaging"_s, u"Packaging"_s},
        {u"actEditStatuses"_s, u"Status"_s},        {u"actEditChannels"_s, u"Channels"_s},
        {u"actEditInstruments"_s, u"Instrument"_s}, {u"actEditLocations"_s, u"Location"_s}};
    for (const auto& [action, column] : lists)
        FActions.Bind(action, [this, column = column] { Q_EMIT dictionaryRequested(column); });
}

void TKRNMainForm::BindExchangeActions()
{
    const auto hasRows = [this] { return FData.HasData() && List().RecordCount() > 0; };
    const std::pair<QString, QString> formats[] = {
        {u"actExportToHTML"_s, u"html"_s}, {u"actExportToExcel"_s, u"xlsx"_s}, {u"actExportToText"_s, u"txt"_s},
        {u"actExportToXML"_s, u"xml"_s},   {u"actExportToCSV"_s, u"csv"_s},    {u"actExportToPDF"_s, u"pdf"_s}};
    for (const auto& [action, format] : formats)
        FActions.Bind(
            action, [this, format = format] { Q_EMIT exportRequested(format); }, hasRows);
    FActions.Bind(
        u"actPrint"_s, [this] { Q_EMIT dialogRequested(mdPrint); }, hasRows);
    FActions.Bind(
        u"actQuickPrint"_s, [this] { Q_EMIT dialogRequested(mdQuickPrint); }, hasRows);
    FActions.Bind(
        u"actPrintPreview"_s, [this] { Q_EMIT dialogRequested(mdPrintPreview); }, hasRows);
}

} // namespace Kestrune
