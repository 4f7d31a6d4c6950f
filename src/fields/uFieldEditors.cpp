// SPDX-License-Identifier: GPL-3.0-or-later
#include "uFieldEditors.h"

#include "dmMain.h"
#include "uColumnNames.h"
#include "uDefaults.h"
#include "uFieldText.h"
#include "uTHStrings.h"

#include <QUrl>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

std::vector<TValueAndText> SameTexts(const QStringList& list)
{
    std::vector<TValueAndText> items;
    for (const QString& item : list)
        items.push_back({item, item});
    return items;
}

} // namespace

TEditorKind EditorKindOf(const TFieldDef& field)
{
    if (const auto& editor = FieldInfoOf(field.Name).Editor)
        return *editor;
    if (IsLengthField(field.Name))
        return ekLength;
    switch (ValueKindOf(field, Defaults())) {
    case fkMemo: return ekMemo;
    case fkInteger:
    case fkFloat: return ekNumber;
    case fkBoolean: return ekChoice;
    case fkDate:
    case fkDateTime: return ekDate;
    default: return ekText;
    }
}

PDict DictionaryOf(const QString& column)
{
    TDefaults& settings = Defaults();
    const std::pair<TColumnName, PDict> dictionaries[] = {
        {Col::MediaType, &settings.MediaTypes},   {Col::Genre, &settings.Genres},
        {Col::Location, &settings.Locations},     {Col::Status, &settings.Statuses},
        {Col::Condition, &settings.Conditions},   {Col::ConditionMedia, &settings.Conditions},
        {Col::Channels, &settings.Channels},      {Col::Packaging, &settings.Packaging},
        {Col::Instrument, &settings.Instruments}, {Col::Genres, &settings.Genres}};
    const auto found = std::ranges::find_if(dictionaries, [&](const auto& entry) { return column == entry.first; });
    return found == std::end(dictionaries) ? nullptr : found->second;
}

std::vector<TValueAndText> EditorItems(TDataModuleMain& data, const TFieldDef& field)
{
    if (const TDict* dict = DictionaryOf(field.Name))
        return SameTexts(dict->Items());
    if (field.Name == Col::Spars)
        return SameTexts(SparsList());
    if (field.Name == Col::DataProvider)
        return DataProviders();
    std::vector<TValueAndText> items;
    if (field.Name == Col::CountryCode) {
        for (const TCountry& country : Countries())
            if (!country.Value.isEmpty())
                items.push_back({country.Value, country.Description});
    } else if (IsFriendField(field.Name) && data.qFriends.Active()) {
        const int name = data.qFriends.FieldIndex(Col::Name);
        for (int row = 0; row < data.qFriends.RecordCount(); ++row)
            items.push_back({QString::number(data.qFriends.KeyAt(row)), VarToStr(data.qFriends.ValueAt(row, name))});
    } else if (field.Kind == fkBoolean || EditorKindOf(field) == ekChoice) {
        items = {{u"1"_s, GetLanguageString(u"cSYes"_s)}, {u"0"_s, GetLanguageString(u"cSNo"_s)}};
    }
    return items;
}

QString LinkOfField(const QString& column, const QString& value)
{
    if (value.isEmpty())
        return {};
    const auto encoded = [&] { return QString::fromLatin1(QUrl::toPercentEncoding(value)); };
    if (column == Col::Link || column == Col::BuyNowLink)
        return value.contains("://"_L1) ? value : u"https://"_s + value;
    if (column.compare(Col::MusicBrainzID, Qt::CaseInsensitive) == 0)
        return u"https://musicbrainz.org/release/"_s + encoded();
    if (column.compare(Col::DiscogsID, Qt::CaseInsensitive) == 0)
        return u"https://www.discogs.com/release/"_s + encoded();
    if (column == Col::ASIN)
        return u"https://www.amazon.com/dp/"_s + encoded();
    if (column == Col::FolderPath)
        return QUrl::fromLocalFile(value).toString();
    return {};
}

} // namespace Kestrune
