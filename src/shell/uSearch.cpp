// SPDX-License-Identifier: GPL-3.0-or-later
#include "uSearch.h"

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
    return !field.Lazy && !field.LabelKey.isEmpty() && field.Kind != fkBlob && field.Name != "Rating"_L1 &&
           !field.Name.endsWith("Id"_L1) && !field.Name.endsWith("From"_L1);
}

} // namespace

std::vector<TSearchField> SearchFieldsOf(const TDataset& list, bool ofTracks)
{
    std::vector<TSearchField> fields;
    for (const TFieldDef& field : list.Fields()) {
        if (!IsSearchable(field))
            continue;
        TSearchField entry{field.Name, ColumnLabel(field, Defaults(), ofTracks), false, ListItems(field.Name)};
        if (field.Kind == fkBoolean)
            entry.Items = {{u"1"_s, GetLanguageString(u"cSYes"_s)}, {u"0"_s, GetLanguageString(u"cSNo"_s)}};
        entry.IsList = !entry.Items.empty();
        fields.push_back(std::move(entry));
    }
    return fields;
}

TFilterCriterion SearchCriterion(const TSearchField& field, const QString& text)
{
    if (!field.IsList)
        return {field.Column, foLike, u'%' + text + u'%', text};
    const auto item = std::ranges::find_if(
        field.Items, [&](const TValueAndText& entry) { return entry.Text.compare(text, Qt::CaseInsensitive) == 0; });
    return {field.Column, foEquals, item == field.Items.end() ? text : item->Value, text};
}

TFilterCriterion LetterCriterion(const QString& column, const QString& letter)
{
    return {column, foLike, letter + u'%', letter};
}

TFilterCriterion StatusCriterion(const QString& status) { return {u"Status"_s, foEquals, status, status}; }

} // namespace Kestrune
