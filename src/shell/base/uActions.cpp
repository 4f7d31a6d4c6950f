// SPDX-License-Identifier: GPL-3.0-or-later
#include "uActions.h"

#include "uDebugLog.h"

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr TActionDef ActionRows[] = {
    {"actAddMusic", "cSactAddMusic", "cSactAddMusicShort", "Ctrl+Alt+A", "search"},
    {"actAddMP3", "cSactAddMP3", "cSactAddMP3Short", "Ctrl+Alt+D", "folder"},
    {"actAddReleaseManually", "cSactAddReleaseManually", "cSactAddReleaseManuallyShort", "Shift+Ins", "pencil"},
    {"actEditItem", "cSactEditItem", "cSactEditItemShort", "F2", "pencil"},
    {"actRemoveSelected", "cSactRemoveSelected", "cSactRemoveSelectedShort", "Ctrl+Del", "trash"},
    {"actVacuumDB", "cSactVacuumDB", "cSactVacuumDBShort", "", "opt"},
    {"actRefresh", "cSactRefresh", "", "F5", "refresh"},
    {"actThumbSize", "cSactThumbSize", "cSactThumbSizeShort", "", "sizeM"},
    {"actCustomizeColumns", "cSactCustomizeColumns", "cSactCustomizeColumnsShort", "F9", "columns"},
    {"actQuickFilter", "cSactQuickFilter", "cSactQuickFilterShort", "F6", "filter"},
    {"actThumbView", "cSactThumbView", "cSactThumbViewShort", "Shift+F1", "thumbs", true},
    {"actCardsView", "cSactCardsView", "cSactCardsViewShort", "Shift+F2", "cards", true},
    {"actAlbumTableView", "cSactAlbumTableView", "cSactAlbumTableViewShort", "Shift+F4", "table", true},
    {"actTracksView", "cSactTracksView", "cSactTracksViewShort", "Shift+F5", "tracks", true},
    {"actShelveView", "cSactShelveView", "cSactShelveViewShort", "Shift+F3", "shelf", true},
    {"actExit", "cSactExit", "", "Ctrl+Alt+X", ""},
    {"actSearch", "cSactSearch", "", "", "search"},
    {"actFilterStatusAll", "cSactFilterStatusAll", "", "", ""},
    {"actFilterStatusOther", "cSactFilterStatusOther", "", "", "nofilter"},
    {"actAdvancedSearch", "cSactAdvancedSearch", "", "", "filteradd"},
    {"actSavedFilters", "cSactSavedFilters", "", "", "star"},
    {"actSaveFilter", "cSactSaveFilter", "", "", "save"},
    {"actPrintPreview", "cSactPrintPreview", "", "Ctrl+Alt+P", "find"},
    {"actPrint", "cSactPrint", "", "Ctrl+P", "print"},
    {"actQuickPrint", "cSactQuickPrint", "", "", "print"},
    {"actExportToHTML", "cSactExportToHTML", "", "", ""},
    {"actExportToExcel", "cSactExportToExcel", "", "", ""},
    {"actExportToText", "cSactExportToText", "", "", ""},
    {"actExportToXML", "cSactExportToXML", "", "", ""},
    {"actExportToCSV", "cSactExportToCSV", "", "", ""},
    {"actExportToPDF", "cSactExportToPDF", "", "", ""},
    {"actNewDatabase", "cSactNewDatabase", "", "Ctrl+N", "add"},
    {"actOpenDatabase", "cSactOpenDatabase", "", "Ctrl+O", "folder"},
    {"actSaveDatabase", "cSactSaveDatabase", "", "Ctrl+S", "save"},
    {"actSaveDatabaseAs", "cSactSaveDatabaseAs", "", "Ctrl+Alt+S", ""},
    {"actSort", "cSactSort", "cSactSortShort", "F3", "sort"},
    {"actSortAsc", "cSactSortAsc", "cSactSortAscShort", "", "sortasc"},
    {"actSortDesc", "cSactSortDesc", "cSactSortDescShort", "", "sortdesc"},
    {"actClearSorting", "cSactClearSorting", "", "", "sortclear"},
    {"actDetailPanelBottom", "cSactDetailPanelBottom", "", "", "pb", true},
    {"actDetailPanelRight", "cSactDetailPanelRight", "", "", "pr", true},
    {"actDetailPanelTop", "cSactDetailPanelTop", "", "", "pt", true},
    {"actHideDetailPanel", "cSactHideDetailPanel", "", "", "poff", true},
    {"actEditMediaTypes", "cSactEditMediaTypes", "", "", ""},
    {"actEditGenres", "cSactEditGenres", "", "", ""},
    {"actEditConditions", "cSactEditConditions", "", "", ""},
    {"actEditPackaging", "cSactEditPackaging", "", "", ""},
    {"actEditStatuses", "cSactEditStatuses", "", "", ""},
    {"actEditChannels", "cSactEditChannels", "", "", ""},
    {"actEditInstruments", "cSactEditInstruments", "", "", ""},
    {"actEditLocations", "cSactEditLocations", "", "", ""},
    {"actOptions", "cSactOptions", "cSactOptionsShort", "", "gear"},
    {"actBackupSettings", "cSactBackupSettings", "", "", "save"},
    {"actRestoreSettings", "cSactRestoreSettings", "", "", "folder"},
    {"actRegenerateThumbnails", "cSactRegenerateThumbnails", "", "", "picdown"},
    {"actMultiEdit", "cSactMultiEdit", "cSactMultiEditShort", "Shift+F2", "multi"},
    {"actSelectAll", "cSactSelectAll", "", "Ctrl+A", "check"},
    {"actClearSelection", "cSactClearSelection", "", "", "x"},
    {"actStatusFilter", "cSactStatusFilter", "", "", "filter"},
    {"actHelp", "cSactHelp", "", "F1", "help"},
    {"actAbout", "cSactAbout", "", "", "help"},
    {"actAddByBarcode", "cSactAddByBarcode", "cSactAddByBarcodeShort", "Ctrl+Alt+B", "barcode"},
    {"actAddByCDROM", "cSactAddByCDROM", "cSactAddByCDROMShort", "Ctrl+Alt+C", "disc"},
    {"actAddMain", "cSactAddMain", "cSactAddMainShort", "Ins", "add"},
    {"actExpandAll", "cSactExpandAll", "", "Ctrl+Alt+Right", "expall"},
    {"actCollapseAll", "cSactCollapseAll", "", "Ctrl+Alt+Left", "colall"},
    {"actApplyBestFit", "cSactApplyBestFit", "cSactApplyBestFitShort", "", "fit"},
    {"actToggleQuickSearch", "cSactToggleQuickSearch", "cSactToggleQuickSearchShort", "Ctrl+F", "find"},
    {"actCopySelectedCell", "cSactCopySelectedCell", "", "Ctrl+C", "copy"},
    {"actImport", "cSactImport", "cSactImportShort", "F11", "imp"},
    {"actToggleGridEditMode", "cSactToggleGridEditMode", "cSactToggleGridEditModeShort", "", "gridedit", true},
    {"actOpenFolderPathInWinExporer", "cSactOpenFolderPathInWinExporer", "", "Ctrl+Alt+O", "folder"},
    {"actVGCustomize", "cSactVGCustomize", "", "", "gear"},
    {"actVGFilter", "cSactVGFilter", "", "", "search"},
    {"actExecSQL", "cSactExecSQL", "", "Ctrl+F12", "sql"},
    {"actCopySelectedRows", "cSactCopySelectedRows", "", "Ctrl+Shift+C", "copy"},
    {"actAddByCatalogNo", "cSactAddByCatalogNo", "cSactAddByCatalogNoShort", "Ctrl+Alt+E", "tag"},
    {"actDuplicate", "cSactDuplicate", "cSactDuplicateShort", "", "dup"},
    {"actCommandPalette", "cSactCommandPalette", "", "Ctrl+Shift+P", "search"},
    {"actToggleDebug", "cSactToggleDebug", "", "Ctrl+Alt+Shift+D", ""},
};

} // namespace

std::span<const TActionDef> ActionDefs() { return ActionRows; }

void TActionList::Bind(const QString& name, std::function<void()> execute, TRule enabled, TRule checked)
{
    FBindings.push_back({name, std::move(execute), std::move(enabled), std::move(checked)});
}

void TActionList::Restrict(const QString& name, TRule enabled)
{
    const auto binding = std::ranges::find(FBindings, name, &TBinding::Name);
    Q_ASSERT(binding != FBindings.end());
    binding->EnabledRule = [both = std::move(enabled), rule = std::move(binding->EnabledRule)] {
        return both() && (!rule || rule());
    };
}

const TActionList::TBinding* TActionList::Find(const QString& name) const
{
    const auto found = std::ranges::find(FBindings, name, &TBinding::Name);
    return found == FBindings.end() ? nullptr : &*found;
}

bool TActionList::IsBound(const QString& name) const { return Find(name) != nullptr; }

bool TActionList::IsEnabled(const QString& name) const
{
    const TBinding* binding = Find(name);
    return binding && binding->Enabled && !FBlocked;
}

bool TActionList::IsChecked(const QString& name) const
{
    const TBinding* binding = Find(name);
    return binding && binding->Checked;
}

void TActionList::Trigger(const QString& name)
{
    const TBinding* binding = Find(name);
    if (!binding || FBlocked || (binding->EnabledRule && !binding->EnabledRule()))
        return;
    try {
        binding->Execute();
    } catch (const std::exception& failure) {
        DebugLog(u"[Action] %1: %2"_s.arg(name, QString::fromUtf8(failure.what())));
        if (OnFailure)
            OnFailure(QString::fromUtf8(failure.what()));
    }
    Update();
}

void TActionList::SetBlocked(bool blocked)
{
    FBlocked = blocked;
    Update();
}

void TActionList::Update()
{
    for (TBinding& binding : FBindings) {
        binding.Enabled = !binding.EnabledRule || binding.EnabledRule();
        binding.Checked = binding.CheckedRule && binding.CheckedRule();
    }
    Q_EMIT updated();
}

} // namespace Kestrune
