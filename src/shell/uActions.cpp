// SPDX-License-Identifier: GPL-3.0-or-later
#include "uActions.h"

#include "uDebugLog.h"

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr TActionDef ActionRows[] = {
    {"actAddMP3", "cSactAddMP3", "cSactAddMP3Short", "Ctrl+Alt+D", "folder"},
    {"actImport", "cSactImport", "cSactImportShort", "F11", "imp"},
    {"actNewDatabase", "cSactNewDatabase", "", "Ctrl+N", "add"},
    {"actOpenDatabase", "cSactOpenDatabase", "", "Ctrl+O", "folder"},
    {"actSaveDatabase", "cSactSaveDatabase", "", "Ctrl+S", "save"},
    {"actExit", "cSactExit", "", "Ctrl+Alt+X", ""},
    {"actRemoveSelected", "cSactRemoveSelected", "cSactRemoveSelectedShort", "Ctrl+Del", "trash"},
    {"actRefresh", "cSactRefresh", "", "F5", "refresh"},
    {"actSelectAll", "cSactSelectAll", "", "Ctrl+A", "check"},
    {"actClearSelection", "cSactClearSelection", "", "", "x"},
    {"actThumbView", "cSactThumbView", "cSactThumbViewShort", "Shift+F1", "thumbs", true},
    {"actAlbumTableView", "cSactAlbumTableView", "cSactAlbumTableViewShort", "Shift+F4", "table", true},
    {"actThumbSize", "cSactThumbSize", "cSactThumbSizeShort", "", "sizeM"},
    {"actDetailPanelRight", "cSactDetailPanelRight", "", "", "pr", true},
    {"actDetailPanelBottom", "cSactDetailPanelBottom", "", "", "pb", true},
    {"actDetailPanelTop", "cSactDetailPanelTop", "", "", "pt", true},
    {"actHideDetailPanel", "cSactHideDetailPanel", "", "", "poff", true},
    {"actSearch", "cSactSearch", "", "", "search"},
    {"actStatusFilter", "cSactStatusFilter", "", "", "filter"},
    {"actFilterStatusAll", "cSactFilterStatusAll", "", "", ""},
    {"actFilterStatusOther", "cSactFilterStatusOther", "", "", "nofilter"},
    {"actSortAsc", "cSactSortAsc", "cSactSortAscShort", "", "sortasc"},
    {"actSortDesc", "cSactSortDesc", "cSactSortDescShort", "", "sortdesc"},
    {"actClearSorting", "cSactClearSorting", "", "", "sortclear"},
    {"actVacuumDB", "cSactVacuumDB", "cSactVacuumDBShort", "", "opt"},
    {"actToggleDebug", "cSactToggleDebug", "", "Ctrl+Alt+Shift+D", ""},
};

} // namespace

std::span<const TActionDef> ActionDefs() { return ActionRows; }

void TActionList::Bind(const QString& name, std::function<void()> execute, TRule enabled, TRule checked)
{
    FBindings.push_back({name, std::move(execute), std::move(enabled), std::move(checked)});
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
    return binding && binding->Enabled;
}

bool TActionList::IsChecked(const QString& name) const
{
    const TBinding* binding = Find(name);
    return binding && binding->Checked;
}

void TActionList::Trigger(const QString& name)
{
    const TBinding* binding = Find(name);
    if (!binding || (binding->EnabledRule && !binding->EnabledRule()))
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

void TActionList::Update()
{
    for (TBinding& binding : FBindings) {
        binding.Enabled = !binding.EnabledRule || binding.EnabledRule();
        binding.Checked = binding.CheckedRule && binding.CheckedRule();
    }
    Q_EMIT updated();
}

} // namespace Kestrune
