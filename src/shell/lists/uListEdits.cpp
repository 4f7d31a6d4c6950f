// SPDX-License-Identifier: GPL-3.0-or-later
#include "uListEdits.h"

#include "uFieldValues.h"
#include "uLists.h"
#include "uPrompt.h"
#include "uShell.h"
#include "uTHStrings.h"
#include "uWaitCursor.h"

#include <QLocale>

#include <algorithm>
#include <optional>

namespace Kestrune {

using namespace Qt::StringLiterals;

TListEdits::TListEdits(TShell& shell, TLists& lists) : FShell(shell), FLists(lists)
{
    BindTableActions();
    BindEditActions();
}

void TListEdits::BindTableActions()
{
    TActionList& actions = FShell.Actions();
    const auto hasData = [this] { return FShell.HasData(); };
    const auto canEdit = [this] { return FShell.HasData() && !FShell.Data().IsReadOnly(); };
    const auto grouped = [this] { return FShell.HasData() && !FLists.Active().List().Groups().empty(); };
    FShell.BindWindow(u"actCustomizeColumns"_s, hasData);
    actions.Bind(
        u"actQuickFilter"_s, [this] { Q_EMIT filterRowToggled(); }, hasData);
    actions.Bind(
        u"actToggleQuickSearch"_s, [this] { Q_EMIT findPanelToggled(); }, hasData);
    actions.Bind(
        u"actApplyBestFit"_s, [this] { Q_EMIT bestFitRequested(); }, hasData);
    actions.Bind(
        u"actExpandAll"_s, [this] { Q_EMIT expandRequested(true); }, grouped);
    actions.Bind(
        u"actCollapseAll"_s, [this] { Q_EMIT expandRequested(false); }, grouped);
    actions.Bind(
        u"actToggleGridEditMode"_s,
        [this] {
            FLists.Active().SetInPlaceEditing(!FLists.Active().InPlaceEditing());
            Q_EMIT inPlaceChanged();
        },
        canEdit, [this] { return FShell.HasData() && FLists.Active().InPlaceEditing(); });
}

void TListEdits::BindEditActions()
{
    TActionList& actions = FShell.Actions();
    const auto hasData = [this] { return FShell.HasData(); };
    const auto hasRows = [this] { return FShell.HasData() && !FLists.Active().Keys().empty(); };
    const auto canChange = [this, hasRows] { return hasRows() && FShell.CanWrite(); };
    actions.Bind(
        u"actRemoveSelected"_s, [this] { RemoveSelected(); }, canChange);
    FShell.BindWindow(u"actEditItem"_s, canChange);
    FShell.BindWindow(u"actMultiEdit"_s, canChange);
    actions.Bind(
        u"actDuplicate"_s, [this] { Duplicate(); },
        [this, canChange] {
            return canChange() && FLists.IsActive(FLists.Releases()) && FLists.Releases().Focused() != 0;
        });
    actions.Bind(
        u"actSelectAll"_s, [this] { Q_EMIT selectionRequested(true); }, hasData);
    actions.Bind(
        u"actClearSelection"_s, [this] { Q_EMIT selectionRequested(false); },
        [this] { return !FLists.Active().Selection().empty(); });
    actions.Bind(
        u"actCopySelectedCell"_s, [this] { Q_EMIT copyRequested(false); }, hasRows);
    actions.Bind(
        u"actCopySelectedRows"_s, [this] { Q_EMIT copyRequested(true); }, hasRows);
}

int TListEdits::ApplyChanges(const std::vector<qint64>& keys, const std::vector<std::pair<QString, TVariant>>& values)
{
    TListDataset& list = FLists.Active().List();
    std::vector<std::pair<QString, TVariant>> assigned;
    for (const auto& [field, value] : values)
        if (const int index = list.FieldIndex(field); index >= 0 && !IsEmptyTitle(list, field, value))
            assigned.emplace_back(field, ToFieldValue(list.Fields()[static_cast<size_t>(index)], value));
    int changed = 0;
    FShell.RunJob(GetLanguageString(u"cSactMultiEdit"_s), [&](const TShell::TJobProgress& progress) {
        try {
            changed = list.UpdateKeys(keys, assigned, progress);
        } catch (const EDatabaseError& failure) {
            FShell.Tell(bkError, GetLanguageString(u"cSMultiEditStopped"_s), failure.Text());
            return;
        }
        if (changed == 0 && FShell.Cancelled())
            FShell.Tell(bkWarning, GetLanguageString(u"cSMultiEditStopped"_s));
    });
    return changed;
}

void TListEdits::RemoveSelected()
{
    TDataModuleMain& data = FShell.Data();
    TListSession& active = FLists.Active();
    TListDataset& list = active.List();
    const int row = list.RowOfKey(active.Focused());
    const std::vector<qint64> keys = active.Keys();
    const QString what = CountText(keys.size());
    if (!FShell.Prompt().AskBeforeLoss(GetLanguageString(u"cSConfirmDelete"_s), what))
        return;
    for (const qint64 key : keys)
        data.TouchRelease(active.ReleaseOf(key));
    std::optional<qint64> deletion;
    FShell.RunJob(GetLanguageString(u"cSDeleting"_s).arg(what),
                  [&](const TShell::TJobProgress& progress) { deletion = data.DeleteUndoably(list, keys, progress); });
    if (!deletion) {
        FShell.Tell(bkWarning, GetLanguageString(u"cSDeletionStopped"_s));
        return;
    }
    // What hangs on the rows went with them, and sums over them are others now.
    for (TListSession* other : FLists.All())
        if (other != &active)
            other->List().Refresh();
    data.qLoans.Refresh();
    active.SetSelection({});
    active.SetFocused(list.KeyAt(std::min(row, list.RecordCount() - 1)));
    if (active.FocusedRelease() != 0)
        Q_EMIT FLists.focusRequested(active.FocusedRelease());
    Q_EMIT rowsChanged();
    OfferUndo(*deletion, what);
}

QString TListEdits::CountText(size_t rows) const
{
    const bool releases = FLists.Active().List().Def().RowName == "Release"_L1;
    if (rows == 1)
        return GetLanguageString(releases ? u"cSOneRelease"_s : u"cSOneTrack"_s);
    return GetLanguageString(releases ? u"cSGuiFigureReleases"_s : u"cSGuiFigureTracks"_s)
        .arg(QLocale().toString(static_cast<qulonglong>(rows)));
}

void TListEdits::OfferUndo(qint64 deletion, const QString& what)
{
    const QString bold = GetLanguageString(u"cSDeleted"_s).arg(what);
    if (deletion == 0)
        FShell.Tell(bkWarning, bold, GetLanguageString(u"cSUndoNoRoom"_s));
    else
        FShell.Offer(bkDone, bold, {}, {GetLanguageString(u"cSUndo"_s), [this, deletion] { Undo(deletion); }, true});
}

void TListEdits::Undo(qint64 deletion)
{
    std::optional<qint64> leftOut;
    if (!FShell.CanWrite()) {
        FShell.Offer(bkWarning, GetLanguageString(u"cSUndoFailed"_s), GetLanguageString(u"cSUndoBusy"_s),
                     {GetLanguageString(u"cSUndo"_s), [this, deletion] { Undo(deletion); }, true});
        return;
    }
    try {
        FShell.RunJob(GetLanguageString(u"cSUndo"_s), [&](const TShell::TJobProgress& progress) {
            leftOut = FShell.Data().UndoDeletion(deletion, progress);
        });
    } catch (const EDatabaseError& failure) {
        FShell.Tell(bkError, GetLanguageString(u"cSUndoFailed"_s), failure.Text());
        return;
    }
    if (!leftOut) {
        FShell.Offer(bkWarning, GetLanguageString(u"cSUndoFailed"_s), {},
                     {GetLanguageString(u"cSUndo"_s), [this, deletion] { Undo(deletion); }, true});
        return;
    }
    if (*leftOut > 0)
        FShell.Tell(bkWarning, GetLanguageString(u"cSUndoPartly"_s).arg(*leftOut),
                    GetLanguageString(u"cSUndoParentGone"_s));
    FShell.Attempt([this] { FLists.Releases().List().ApplyFilter(); });
    FShell.Attempt([this] { FLists.Tracks().List().Refresh(); });
    FShell.Data().qLoans.Refresh();
    Q_EMIT rowsChanged();
}

void TListEdits::Duplicate()
{
    const TWaitCursor waiting;
    TDataModuleMain& data = FShell.Data();
    TListSession& releases = FLists.Releases();
    data.AddAlbumReleaseToDB(TDataModuleMain::ToAlbumRelease(data.ReadRelease(releases.Focused())), true);
    const qint64 copy = data.LastAddedReleaseID();
    releases.List().ApplyFilter();
    FLists.Tracks().List().Refresh();
    Q_EMIT rowsChanged();
    if (!releases.List().Locate(copy))
        return; // the filter hides it
    releases.SetFocused(copy);
    Q_EMIT FLists.focusRequested(copy);
}

} // namespace Kestrune
