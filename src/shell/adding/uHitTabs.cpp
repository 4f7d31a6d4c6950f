// SPDX-License-Identifier: GPL-3.0-or-later
#include "uHitTabs.h"

#include "uColumnNames.h"
#include "uDebugLog.h"
#include "uReleaseDetails.h"
#include "uTHStrings.h"

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

// Releases go with their cards; those that were saved left them before.
void FreeHits(TSearchTab& tab)
{
    tab.Hits.clear();
    tab.Selection.clear();
    tab.Focused = 0;
}

TSearchHit* HitOf(TSearchTab& tab, qint64 record)
{
    const auto found = std::ranges::find(tab.Hits, record, &TSearchHit::RecordIndex);
    return found == tab.Hits.end() ? nullptr : &*found;
}

} // namespace

THitTabs::THitTabs(TDataModuleMain& data) : FOwned(data)
{
    connect(&FOwned, &TOwnedReleases::loaded, this, &THitTabs::MarkOwned);
    AddTab();
}

void THitTabs::TellAll(bool withTabs)
{
    if (withTabs)
        Q_EMIT tabsChanged();
    Q_EMIT hitsChanged();
    Q_EMIT detailsChanged();
    Q_EMIT changed();
}

void THitTabs::AddTab()
{
    TSearchTab& tab = FTabs.emplace_back();
    tab.Id = ++FLastId;
    tab.Caption = FormatText(GetLanguageString(u"cSTabFmt"_s), {QString::number(++FTabsMade)});
    FCurrent = static_cast<int>(FTabs.size()) - 1;
}

void THitTabs::actNewTab()
{
    AddTab();
    TellAll(true);
}

void THitTabs::Drop(size_t at)
{
    FTabs.erase(FTabs.begin() + static_cast<std::ptrdiff_t>(at));
    if (FTabs.empty())
        AddTab();
    FCurrent =
        std::clamp(static_cast<int>(at) < FCurrent ? FCurrent - 1 : FCurrent, 0, static_cast<int>(FTabs.size()) - 1);
}

void THitTabs::actCloseTab(int tab)
{
    if (tab < 0 || tab >= static_cast<int>(FTabs.size()))
        return;
    Drop(static_cast<size_t>(tab));
    TellAll(true);
}

void THitTabs::actCloseAllTabs()
{
    FTabs.clear();
    actNewTab();
}

void THitTabs::SetCurrent(int tab)
{
    if (tab < 0 || tab >= static_cast<int>(FTabs.size()) || tab == FCurrent)
        return;
    FCurrent = tab;
    TellAll(true);
}

void THitTabs::actClear()
{
    FreeHits(CurrentTab());
    TellAll(false);
}

void THitTabs::actClearAllTabs()
{
    for (TSearchTab& tab : FTabs)
        FreeHits(tab);
    actCloseAllTabs();
}

void THitTabs::SetSelection(std::vector<qint64> records)
{
    CurrentTab().Selection = std::move(records);
    Q_EMIT changed();
}

void THitTabs::actClearSelection()
{
    SetSelection({});
    Q_EMIT selectionChanged();
}

void THitTabs::actSelectAll()
{
    std::vector<qint64> all;
    for (const TSearchHit& hit : Current().Hits)
        all.push_back(hit.RecordIndex);
    SetSelection(std::move(all));
    Q_EMIT selectionChanged();
}

void THitTabs::actRemoveSelection()
{
    TSearchTab& tab = CurrentTab();
    std::erase_if(tab.Hits, [&](const TSearchHit& hit) {
        return std::ranges::find(tab.Selection, hit.RecordIndex) != tab.Selection.end();
    });
    tab.Selection.clear();
    if (!HitOf(tab, tab.Focused))
        tab.Focused = 0;
    TellAll(false);
}

std::vector<TSavedRelease> THitTabs::TakeSelection()
{
    std::vector<TSavedRelease> taken;
    for (const qint64 record : Current().Selection) {
        TSearchHit* hit = HitOf(CurrentTab(), record);
        if (hit && hit->DataPointer)
            taken.push_back({std::move(hit->DataPointer), hit->Cover, hit->Complete});
    }
    return taken;
}

TSearchHit* THitTabs::Focus(qint64 record)
{
    TSearchHit* hit = HitOf(CurrentTab(), record);
    CurrentTab().Focused = hit ? record : 0;
    Q_EMIT detailsChanged();
    return hit && hit->DataPointer ? hit : nullptr;
}

const TSearchHit* THitTabs::FocusedHit() const
{
    const TSearchTab& tab = Current();
    const auto found = std::ranges::find(tab.Hits, tab.Focused, &TSearchHit::RecordIndex);
    return tab.Focused == 0 || found == tab.Hits.end() ? nullptr : &*found;
}

TDetailData THitTabs::Details() const
{
    DebugLog(u"UpdateRightPaneData()"_s);
    const TSearchHit* hit = FocusedHit();
    if (!hit || !hit->DataPointer)
        return {};
    TDetailData detail = BuildReleaseDetails(*hit->DataPointer);
    detail.ID = hit->RecordIndex;
    return detail;
}

TSearchTab& THitTabs::BeginSearch(const TInfoGrabberSearch* search, TSearchArea area, const TSearchWords& words,
                                  const QString& caption)
{
    actClear();
    TSearchTab& tab = CurrentTab();
    tab.CurrentSearch = search;
    tab.Area = area;
    tab.Words = words;
    tab.Caption = caption;
    Q_EMIT tabsChanged();
    return tab;
}

TSearchTab* THitTabs::Find(qint64 id)
{
    const auto found = std::ranges::find(FTabs, id, &TSearchTab::Id);
    return found == FTabs.end() ? nullptr : &*found;
}

TSearchHit* THitTabs::FindHit(qint64 tab, qint64 record)
{
    TSearchTab* found = Find(tab);
    return found ? HitOf(*found, record) : nullptr;
}

TSearchHit& THitTabs::AddHit(TSearchTab& tab, std::unique_ptr<TAlbumRelease> release, const QString& provider,
                             bool complete)
{
    TSearchHit& hit = tab.Hits.emplace_back();
    hit.RecordIndex = ++FLastId;
    hit.DataProvider = provider;
    hit.DataPointer = std::move(release);
    hit.Complete = complete;
    FillRows(hit);
    return hit;
}

void THitTabs::FillRows(TSearchHit& hit) const
{
    const TAlbumRelease& release = *hit.DataPointer;
    const auto text = [&](const QString& key) { return VarToStr(release.GetItem2(key)); };
    hit.Artist = text(Col::Artist);
    hit.ReleaseName = text(Col::ReleaseName);
    hit.ReleaseYear = text(Col::ReleaseYear);
    hit.Label = text(Col::Label);
    hit.CatalogNo = text(Col::CatalogNO);
    hit.Country = text(Col::CountryCode);
    hit.Type = text(Col::MediaType);
    hit.Yours = FOwned.Loaded() && FOwned.Holds(release);
}

void THitTabs::Filled(const TSearchTab& tab)
{
    if (tab.Id == Current().Id)
        Q_EMIT hitsChanged();
}

void THitTabs::HitChanged(qint64 tab, TSearchHit& hit)
{
    if (hit.DataPointer)
        FillRows(hit);
    Q_EMIT hitChanged(hit.RecordIndex);
    DetailsChanged(tab, hit);
}

void THitTabs::DetailsChanged(qint64 tab, const TSearchHit& hit)
{
    if (tab == Current().Id && Current().Focused == hit.RecordIndex)
        Q_EMIT detailsChanged();
}

void THitTabs::MarkOwned()
{
    for (TSearchTab& tab : FTabs) {
        for (TSearchHit& hit : tab.Hits)
            hit.Yours = hit.DataPointer && FOwned.Holds(*hit.DataPointer);
    }
    Q_EMIT hitChanged(0);
}

} // namespace Kestrune
