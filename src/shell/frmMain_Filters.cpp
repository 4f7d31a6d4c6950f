// SPDX-License-Identifier: GPL-3.0-or-later
#include "frmMain.h"

#include "uDefaults.h"
#include "uTHStrings.h"

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

std::vector<TValueAndText> ItemsOf(const QStringList& list)
{
    std::vector<TValueAndText> items;
    for (const QString& item : list)
        items.push_back({item, item});
    return items;
}

// The values that the editor of a field offers; empty for a field without a list.
std::vector<TValueAndText> ListItems(const QString& column)
{
    const TDefaults& settings = Defaults();
    const std::pair<QLatin1StringView, const TDict*> dictionaries[] = {
        {"MediaType"_L1, &settings.MediaTypes}, {"Genre"_L1, &settings.Genres},
        {"Location"_L1, &settings.Locations},   {"Status"_L1, &settings.Statuses},
        {"Condition"_L1, &settings.Conditions}, {"ConditionMedia"_L1, &settings.Conditions},
        {"Channels"_L1, &settings.Channels},    {"Packaging"_L1, &settings.Packaging}};
    for (const auto& [name, dict] : dictionaries) {
        if (column == name)
            return ItemsOf(dict->Items());
    }
    if (column == "Spars"_L1)
        return ItemsOf(SparsList());
    if (column == "DataProvider"_L1)
        return DataProviders();
    std::vector<TValueAndText> items;
    if (column == "CountryCode"_L1) {
        for (const TCountry& country : Countries())
            items.push_back({country.Value, country.Description});
    }
    return items;
}

// Internal columns, and those that no search by one text serves.
bool IsSearchable(const TFieldDef& field)
{
    return !field.Lazy && !field.LabelKey.isEmpty() && field.Kind != fkBlob && !field.ReadOnly &&
           field.Name != "Rating"_L1 && !field.Name.endsWith("Id"_L1) && !field.Name.endsWith("From"_L1);
}

} // namespace

std::vector<TSearchField> TKRNMainForm::SearchFields() const
{
    std::vector<TSearchField> fields;
    for (const TFieldDef& field : FData.qReleasesMain.Fields()) {
        if (!IsSearchable(field))
            continue;
        TSearchField entry{field.Name, ColumnLabel(field, Defaults(), false), false, ListItems(field.Name)};
        if (field.Kind == fkBoolean)
            entry.Items = {{u"1"_s, GetLanguageString(u"cSYes"_s)}, {u"0"_s, GetLanguageString(u"cSNo"_s)}};
        entry.IsList = !entry.Items.empty();
        fields.push_back(std::move(entry));
    }
    return fields;
}

void TKRNMainForm::SetSearchBy(const QString& column) { FSearchBy = column; }

void TKRNMainForm::Search()
{
    TListDataset& list = FData.qReleasesMain;
    list.Filter().Remove(FKeywordFilter);
    const std::vector<TSearchField> fields = SearchFields();
    auto field = std::ranges::find(fields, FSearchBy, &TSearchField::Column);
    if (field == fields.end())
        field = fields.begin();
    const auto item = std::ranges::find(field->Items, FSearchText, &TValueAndText::Text);
    TFilterCriterion criterion{field->Column, foLike, u'%' + FSearchText + u'%', FSearchText};
    if (field->IsList)
        criterion = {field->Column, foEquals, item == field->Items.end() ? FSearchText : item->Value, FSearchText};
    FKeyword = field->Caption;
    FKeywordText = FSearchText;
    FKeywordFilter = list.Filter().Add(std::move(criterion));
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
        FQuickFilter = list.Filter().Add(
            {FLetterField == 0 ? u"Artist"_s : u"ReleaseName"_s, foLike, caption + u'%', caption});
    }
    ApplyFilters();
}

void TKRNMainForm::SetLetterField(int index)
{
    FLetterField = index;
    if (!FLetter.isEmpty())
        LetterClick(FLetter);
    else
        Q_EMIT filtersChanged();
}

QStringList TKRNMainForm::StatusItems() const { return Defaults().Statuses.Items(); }

void TKRNMainForm::FilterStatus(const QString& status)
{
    TListDataset& list = FData.qReleasesMain;
    list.Filter().Remove(FStatusFilter);
    FStatus = status;
    FStatusFilter = list.Filter().Add({u"Status"_s, foEquals, status, status});
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
    Q_EMIT filtersChanged();
    Q_EMIT figuresChanged();
    FActions.Update();
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
