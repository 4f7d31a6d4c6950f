// SPDX-License-Identifier: GPL-3.0-or-later
#include "uSearch.h"

#include "dmMain.h"
#include "uColumnNames.h"
#include "uDefaults.h"
#include "uFieldEditors.h"
#include "uTHStrings.h"

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

// Internal columns, and those that no search by one text serves.
bool IsSearchable(const TFieldDef& field)
{
    return !field.Lazy && !field.LabelKey.isEmpty() && field.Kind != fkBlob && field.Name != Col::Rating &&
           field.Name != Col::ReleaseId;
}

} // namespace

std::vector<TSearchField> SearchFieldsOf(TDataModuleMain& data, const TListDataset& list)
{
    std::vector<TSearchField> fields;
    for (const TFieldDef& field : list.Fields()) {
        if (!IsSearchable(field) || !IsFieldShown(field, Defaults()))
            continue;
        TSearchField entry{field.Name, ColumnLabel(field, Defaults()), false, {}};
        if (const TEditorKind kind = EditorKindOf(field); kind == ekList || kind == ekChoice)
            entry.Items = EditorItems(data, field);
        entry.IsList = !entry.Items.empty();
        fields.push_back(std::move(entry));
    }
    return fields;
}

TFilterCriterion SearchCriterion(const TSearchField& field, const QString& text)
{
    if (!field.IsList)
        return {field.Column, foLike, u'%' + text + u'%', text};
    if (text.isEmpty())
        return {field.Column, foIsNotNull, {}, text};
    const auto item = std::ranges::find_if(
        field.Items, [&](const TValueAndText& entry) { return entry.Text.compare(text, Qt::CaseInsensitive) == 0; });
    return {field.Column, foEquals, item == field.Items.end() ? text : item->Value, text};
}

TFilterCriterion NoLetterCriterion(const QString& column) { return {column, foNoLetter, {}, u"#"_s}; }

TFilterCriterion LetterCriterion(const QString& column, const QString& letter)
{
    return {column, foLike, letter + u'%', letter};
}

TFilterCriterion StatusCriterion(const TListDataset& list, const QString& status)
{
    const bool own = list.FieldIndex(Col::Status) >= 0;
    return own ? TFilterCriterion{Col::Status, foEquals, status, status}
               : TFilterCriterion{list.Def().ReleaseKey, foOfStatus, status, status};
}

} // namespace Kestrune
