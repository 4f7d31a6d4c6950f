// SPDX-License-Identifier: GPL-3.0-or-later
#include "frmMain.h"
#include "uDebugLog.h"
#include "uDefaults.h"
#include "uTHStrings.h"
#include "uWaitCursor.h"

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

std::vector<TSearchField> TKRNMainForm::SearchFields() const { return Filters().Fields(); }

void TKRNMainForm::SetSearchBy(const QString& column) { FSearchBy = column; }

void TKRNMainForm::Search()
{
    if (FSearchBy == EverythingField) {
        SearchEverything();
        return;
    }
    Filters().SetKeyword(FSearchBy, FSearchText);
    ApplyFilters();
}

void TKRNMainForm::SearchEverything()
{
    FSearchWaits = false;
    const QString words = FSearchText.trimmed();
    if (words.isEmpty()) {
        RemoveFilter(fckEverything);
        return;
    }
    const std::optional<std::vector<qint64>> hits = FIndex->Find(words);
    if (!hits) {
        FSearchWaits = true;
        if (!FIndex->Building()) { // not yet begun, or it failed before
            FIndexTimer.stop();
            FIndex->Open();
            if (FIndex->Ready())
                return SearchEverything();
            if (!FIndex->Building())
                return IndexBuilt();
        }
        const int percent = static_cast<int>(FIndex->Progress() * 100.0);
        Q_EMIT barRaised(bkWarning, GetLanguageString(u"cSSearchIndexBuilding"_s).arg(percent),
                         GetLanguageString(u"cSSearchIndexWaits"_s));
        return;
    }
    Filters().SetEverything(words, *hits);
    ApplyFilters();
}

void TKRNMainForm::IndexBuilt()
{
    if (!FSearchWaits)
        return;
    FSearchWaits = false;
    if (FIndex->Ready())
        SearchEverything();
    else
        Q_EMIT barRaised(bkError, GetLanguageString(u"cSSearchIndexFailed"_s), {});
}

void TKRNMainForm::LetterClick(const QString& caption)
{
    Filters().SetLetter(caption.size() < 2 ? caption : QString());
    ApplyFilters();
}

void TKRNMainForm::SetLetterField(int index)
{
    Filters().SetLetterField(index);
    FLetterTimer.start();
    if (!Letter().isEmpty())
        ApplyFilters();
    else
        Q_EMIT filtersChanged();
}

void TKRNMainForm::FindLetterHits()
{
    try {
        FLetterHits = FData.FirstLetters(FReleaseFilters.Set().LetterField == 0 ? u"Artist"_s : u"ReleaseName"_s);
    } catch (const EDatabaseError& failure) {
        DebugLog(u"[Letters] %1"_s.arg(failure.Text()));
        return;
    }
    FLetterHits.insert(u"#"_s); // whether there are any is not worth a scan
    Q_EMIT letterHitsChanged();
}

QStringList TKRNMainForm::StatusItems() const { return Defaults().Statuses.Items(); }

void TKRNMainForm::FilterStatus(const QString& status)
{
    Filters().SetStatus(status);
    ApplyFilters();
}

void TKRNMainForm::RemoveFilter(TFilterChipKind kind, const QString& column)
{
    Filters().Remove(kind, column);
    ApplyFilters();
}

bool TKRNMainForm::SetColumnFilter(const QString& column, const QString& text)
{
    const bool understood = Filters().SetColumn(column, text);
    ApplyFilters();
    return understood;
}

void TKRNMainForm::SetBuilderFilter(const TFilterNode& node)
{
    Filters().SetBuilder(node);
    ApplyFilters();
}

void TKRNMainForm::SaveFilter(const QString& name)
{
    const auto known = std::ranges::find(FSavedFilters, name, &TSavedFilter::Name);
    if (known != FSavedFilters.end())
        known->Set = Filters().Set();
    else
        FSavedFilters.push_back({name, Filters().Set()});
    std::ranges::sort(FSavedFilters, {}, [](const TSavedFilter& filter) { return filter.Name.toCaseFolded(); });
    Q_EMIT savedFiltersChanged();
}

void TKRNMainForm::RecallFilter(const QString& name)
{
    const auto known = std::ranges::find(FSavedFilters, name, &TSavedFilter::Name);
    if (known == FSavedFilters.end())
        return;
    const TFilterSet set = known->Set;
    Filters().Restore(set);
    ApplyFilters();
    if (set.Everything.isEmpty())
        return;
    FSearchText = set.Everything;
    SearchEverything();
}

void TKRNMainForm::ForgetFilter(const QString& name)
{
    std::erase_if(FSavedFilters, [&](const TSavedFilter& filter) { return filter.Name == name; });
    Q_EMIT savedFiltersChanged();
}

void TKRNMainForm::ApplyFilters()
{
    TListDataset& list = List();
    list.SetFilterActive(!list.Filter().IsEmpty());
    list.ApplyFilter();
    // What the filter hides can be neither selected nor focused, or it would be removed unseen.
    std::vector<qint64>& selection = TracksShown() ? FTrackSelection : FSelection;
    std::erase_if(selection, [&](qint64 id) { return list.RowOfKey(id) < 0; });
    if (TracksShown() && list.RowOfKey(FFocusedTrack) < 0) {
        SetFocusedTrack(list.CurrentKey());
    } else if (!TracksShown() && list.RowOfKey(FFocused) < 0) {
        FFocused = list.CurrentKey();
        FDetailTimer.start();
    }
    Q_EMIT filtersChanged();
    Q_EMIT figuresChanged();
    FActions.Update();
}

int TKRNMainForm::LocateTitle(const QString& text, int fromRow)
{
    const TListDataset& list = FData.qReleasesMain;
    const int count = list.RecordCount();
    int best = -1;
    int nearest = count;
    try {
        for (const qint64 id : FData.ReleasesByTitle(text)) {
            const int row = list.RowOfKey(id);
            const int steps = row < 0 ? count : (row - fromRow % count + count) % count;
            if (steps < nearest) {
                nearest = steps;
                best = row;
            }
        }
    } catch (const EDatabaseError& failure) {
        DebugLog(u"[Locate] %1"_s.arg(failure.Text()));
    }
    return best;
}

void TKRNMainForm::SetSort(std::vector<TSortItem> sort)
{
    const TWaitCursor waiting; // the first time over all tracks takes a second
    List().SetSort(std::move(sort));
    Q_EMIT sortChanged();
    FActions.Update();
}

void TKRNMainForm::SortBy(const QString& column, bool add)
{
    std::vector<TSortItem> sort = List().Sort();
    const auto found = std::ranges::find(sort, column, &TSortItem::Column);
    const bool known = found != sort.end();
    const bool descending = known && !found->Descending;
    if (!add)
        sort = {{column, descending}};
    else if (known)
        found->Descending = descending;
    else
        sort.push_back({column, false});
    SetSort(std::move(sort));
}

void TKRNMainForm::SetGrouping(const QStringList& columns)
{
    const TWaitCursor waiting;
    List().SetGrouping(columns);
    Q_EMIT sortChanged();
    Q_EMIT figuresChanged();
    FActions.Update();
}

std::vector<int> TKRNMainForm::FindRows(const QStringList& columns, const QString& text)
{
    try {
        return List().RowsWithText(columns, text);
    } catch (const EDatabaseError& failure) {
        ReportFailure(failure.Text());
        return {};
    }
}

} // namespace Kestrune
