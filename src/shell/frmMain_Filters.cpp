// SPDX-License-Identifier: GPL-3.0-or-later
#include "frmMain.h"
#include "uDebugLog.h"
#include "uDefaults.h"
#include "uTHStrings.h"

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

std::vector<TSearchField> TKRNMainForm::SearchFields() const { return SearchFieldsOf(FData.qReleasesMain, false); }

void TKRNMainForm::SetSearchBy(const QString& column) { FSearchBy = column; }

void TKRNMainForm::Search()
{
    TListDataset& list = FData.qReleasesMain;
    list.Filter().Remove(FKeywordFilter);
    const std::vector<TSearchField> fields = SearchFields();
    auto field = std::ranges::find(fields, FSearchBy, &TSearchField::Column);
    if (field == fields.end())
        field = fields.begin();
    FKeyword = field->Caption;
    FKeywordColumn = field->Column;
    FKeywordText = FSearchText;
    FKeywordFilter = list.Filter().Add(SearchCriterion(*field, FSearchText));
    ApplyFilters();
}

void TKRNMainForm::LetterClick(const QString& caption)
{
    TListDataset& list = FData.qReleasesMain;
    list.Filter().Remove(FQuickFilter);
    FQuickFilter = 0;
    FLetter.clear();
    if (caption.size() < 2) {
        FLetter = caption;
        FQuickFilter = list.Filter().Add(LetterCriterion(FLetterField == 0 ? u"Artist"_s : u"ReleaseName"_s, caption));
    }
    ApplyFilters();
}

void TKRNMainForm::SetLetterField(int index)
{
    FLetterField = index;
    FLetterTimer.start();
    if (const QString letter = FLetter; !letter.isEmpty())
        LetterClick(letter);
    else
        Q_EMIT filtersChanged();
}

void TKRNMainForm::FindLetterHits()
{
    try {
        FLetterHits = FData.FirstLetters(FLetterField == 0 ? u"Artist"_s : u"ReleaseName"_s);
    } catch (const EDatabaseError& failure) {
        DebugLog(u"[Letters] %1"_s.arg(failure.Text()));
        return;
    }
    Q_EMIT letterHitsChanged();
}

QStringList TKRNMainForm::StatusItems() const { return Defaults().Statuses.Items(); }

void TKRNMainForm::FilterStatus(const QString& status)
{
    TListDataset& list = FData.qReleasesMain;
    list.Filter().Remove(FStatusFilter);
    FStatus = status;
    FStatusFilter = list.Filter().Add(StatusCriterion(status));
    ApplyFilters();
}

std::vector<TFilterChip> TKRNMainForm::FilterChips() const
{
    std::vector<TFilterChip> chips;
    if (FStatusFilter != 0)
        chips.push_back({fckStatus, GetLanguageString(u"cSReleasesFieldStatusId"_s), FStatus});
    if (FQuickFilter != 0)
        chips.push_back({fckLetter,
                         GetLanguageString(FLetterField == 0 ? u"cSArtistBeginsWith"_s : u"cSReleaseBeginsWith"_s),
                         FLetter});
    if (FKeywordFilter != 0)
        chips.push_back({fckKeyword, FKeyword, FKeywordText});
    return chips;
}

void TKRNMainForm::RemoveFilter(TFilterChipKind kind)
{
    TFilterGroup::TId& id = kind == fckStatus ? FStatusFilter : kind == fckLetter ? FQuickFilter : FKeywordFilter;
    QString& text = kind == fckStatus ? FStatus : kind == fckLetter ? FLetter : FKeywordText;
    FData.qReleasesMain.Filter().Remove(id);
    id = 0;
    text.clear();
    ApplyFilters();
}

void TKRNMainForm::ResetFilters()
{
    FData.qReleasesMain.Filter().Clear();
    FStatusFilter = FQuickFilter = FKeywordFilter = 0;
    FStatus.clear();
    FLetter.clear();
    FKeywordText.clear();
    ApplyFilters();
}

void TKRNMainForm::ApplyFilters()
{
    TListDataset& list = FData.qReleasesMain;
    list.SetFilterActive(!list.Filter().IsEmpty());
    list.ApplyFilter();
    // What the filter hides can be neither selected nor focused, or it would be removed unseen.
    std::erase_if(FSelection, [&](qint64 id) { return list.RowOfKey(id) < 0; });
    if (list.RowOfKey(FFocused) < 0) {
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

void TKRNMainForm::SortBy(const QString& column, bool add)
{
    std::vector<TSortItem> sort = FData.qReleasesMain.Sort();
    const auto found = std::ranges::find(sort, column, &TSortItem::Column);
    const bool known = found != sort.end();
    const bool descending = known && !found->Descending;
    if (!add)
        sort = {{column, descending}};
    else if (known)
        found->Descending = descending;
    else
        sort.push_back({column, false});
    FData.qReleasesMain.SetSort(std::move(sort));
    Q_EMIT sortChanged();
    FActions.Update();
}

} // namespace Kestrune
