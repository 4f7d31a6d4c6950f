// SPDX-License-Identifier: GPL-3.0-or-later
#include "frmAddMusic.h"
#include "uTHStrings.h"

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

TSearchTab* TAddMusicForm::FindTab(qint64 id)
{
    const auto found = std::ranges::find(FTabs, id, &TSearchTab::Id);
    return found == FTabs.end() ? nullptr : &*found;
}

TSearchHit* TAddMusicForm::FindHit(TSearchTab& tab, qint64 record)
{
    const auto found = std::ranges::find(tab.Hits, record, &TSearchHit::RecordIndex);
    return found == tab.Hits.end() ? nullptr : &*found;
}

const TSearchHit* TAddMusicForm::FocusedHit() const
{
    const TSearchTab& tab = Current();
    const auto found = std::ranges::find(tab.Hits, tab.Focused, &TSearchHit::RecordIndex);
    return tab.Focused == 0 || found == tab.Hits.end() ? nullptr : &*found;
}

void TAddMusicForm::AddTab()
{
    TSearchTab& tab = FTabs.emplace_back();
    tab.Id = ++FLastId;
    tab.Caption = FormatText(GetLanguageString(u"cSTabFmt"_s), {QString::number(++FTabsMade)});
    FCurrentTab = static_cast<int>(FTabs.size()) - 1;
    CurrentSearch = nullptr;
}

void TAddMusicForm::actNewTab()
{
    AddTab();
    Q_EMIT tabsChanged();
    Q_EMIT hitsChanged();
    Q_EMIT detailsChanged();
    Q_EMIT updated();
}

// Releases go with their cards; those that were saved left them before.
void TAddMusicForm::FreeHits(TSearchTab& tab)
{
    tab.Hits.clear();
    tab.Selection.clear();
    tab.Focused = 0;
}

void TAddMusicForm::DropTab(size_t at)
{
    FTabs.erase(FTabs.begin() + static_cast<std::ptrdiff_t>(at));
    if (FTabs.empty())
        AddTab();
    FCurrentTab = std::clamp(static_cast<int>(at) < FCurrentTab ? FCurrentTab - 1 : FCurrentTab, 0,
                             static_cast<int>(FTabs.size()) - 1);
    CurrentSearch = Current().CurrentSearch;
}

void TAddMusicForm::actCloseTab(int tab)
{
    if (tab < 0 || tab >= static_cast<int>(FTabs.size()))
        return;
    DropTab(static_cast<size_t>(tab));
    Q_EMIT tabsChanged();
    Q_EMIT hitsChanged();
    Q_EMIT detailsChanged();
    Q_EMIT updated();
}

void TAddMusicForm::actCloseAllTabs()
{
    FTabs.clear();
    actNewTab();
}

void TAddMusicForm::SetCurrentTab(int tab)
{
    if (tab < 0 || tab >= static_cast<int>(FTabs.size()) || tab == FCurrentTab)
        return;
    FCurrentTab = tab;
    CurrentSearch = Current().CurrentSearch;
    Q_EMIT tabsChanged();
    Q_EMIT hitsChanged();
    Q_EMIT detailsChanged();
    Q_EMIT updated();
}

void TAddMusicForm::actClear()
{
    FreeHits(FTabs[static_cast<size_t>(FCurrentTab)]);
    Q_EMIT hitsChanged();
    Q_EMIT detailsChanged();
    Q_EMIT updated();
}

void TAddMusicForm::actClearAllTabs()
{
    for (TSearchTab& tab : FTabs)
        FreeHits(tab);
    actCloseAllTabs();
}

void TAddMusicForm::SetSelection(std::vector<qint64> records)
{
    FTabs[static_cast<size_t>(FCurrentTab)].Selection = std::move(records);
    Q_EMIT updated();
}

void TAddMusicForm::actClearSelection()
{
    SetSelection({});
    Q_EMIT selectionChanged();
}

void TAddMusicForm::actSelectAll()
{
    std::vector<qint64> all;
    for (const TSearchHit& hit : Current().Hits)
        all.push_back(hit.RecordIndex);
    SetSelection(std::move(all));
    Q_EMIT selectionChanged();
}

void TAddMusicForm::actRemoveSelection()
{
    TSearchTab& tab = FTabs[static_cast<size_t>(FCurrentTab)];
    std::erase_if(tab.Hits, [&](const TSearchHit& hit) {
        return std::ranges::find(tab.Selection, hit.RecordIndex) != tab.Selection.end();
    });
    tab.Selection.clear();
    if (!FindHit(tab, tab.Focused))
        tab.Focused = 0;
    Q_EMIT hitsChanged();
    Q_EMIT detailsChanged();
    Q_EMIT updated();
}

void TAddMusicForm::TakeSelection()
{
    TSearchTab& tab = FTabs[static_cast<size_t>(FCurrentTab)];
    int summaries = 0;
    for (const qint64 record : tab.Selection) {
        TSearchHit* hit = FindHit(tab, record);
        if (!hit || !hit->DataPointer)
            continue;
        summaries += hit->Complete ? 0 : 1;
        FSavedReleases.push_back({std::move(hit->DataPointer), hit->Cover, hit->Complete});
    }
    FStatusText = summaries > 0 ? GetLanguageString(u"cSSavedAsSummary"_s).arg(summaries) : QString();
    Q_EMIT savedChanged();
}

void TAddMusicForm::actSaveAndContinue()
{
    if (!SaveEnabled())
        return;
    TakeSelection();
    actRemoveSelection();
}

void TAddMusicForm::actSaveAndClose()
{
    if (!SaveEnabled())
        return;
    TakeSelection();
    actCloseTab(FCurrentTab);
}

void TAddMusicForm::RemoveSaved(int index)
{
    if (index < 0 || index >= static_cast<int>(FSavedReleases.size()))
        return;
    FSavedReleases.erase(FSavedReleases.begin() + index);
    Q_EMIT savedChanged();
}

void TAddMusicForm::GiveBack(std::vector<TSavedRelease> releases)
{
    for (TSavedRelease& release : releases)
        FSavedReleases.push_back(std::move(release));
    Q_EMIT savedChanged();
}

std::vector<TSavedRelease> TAddMusicForm::TakeSavedReleases()
{
    std::vector<TSavedRelease> taken;
    taken.swap(FSavedReleases);
    Q_EMIT savedChanged();
    return taken;
}

void TAddMusicForm::MarkOwned()
{
    for (TSearchTab& tab : FTabs) {
        for (TSearchHit& hit : tab.Hits)
            hit.Yours = hit.DataPointer && FOwned.Holds(*hit.DataPointer);
    }
    Q_EMIT hitChanged(0);
}

} // namespace Kestrune
