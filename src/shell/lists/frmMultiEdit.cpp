// SPDX-License-Identifier: GPL-3.0-or-later
#include "frmMultiEdit.h"

#include "uDefaults.h"
#include "uFieldValues.h"
#include "uListEdits.h"
#include "uListSession.h"
#include "uTHStrings.h"

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

TMultiEditForm::TMultiEditForm(TListSession& list, TListEdits& edits) : FList(list), FEdits(edits), FKeys(list.Keys())
{}

void TMultiEditForm::LoadFromCustomGridTableView(const std::vector<QString>& shownColumns)
{
    FFields.clear();
    for (const TFieldDef& field : FList.List().Fields()) {
        const bool internal = field.LabelKey.isEmpty() && !field.Name.startsWith("Custom"_L1);
        const bool editable = IsFieldAssignable(field) && field.Kind != fkDateTime && !internal;
        if (editable && IsFieldShown(field, Defaults()))
            FFields.push_back(field);
    }
    const auto place = [&](const TFieldDef& field) {
        return std::ranges::find(shownColumns, field.Name) - shownColumns.begin();
    };
    std::ranges::stable_sort(FFields, {}, place);
}

void TMultiEditForm::actAdd()
{
    const auto free = std::ranges::find_if(FFields, [this](const TFieldDef& field) {
        return std::ranges::find(FRows, field.Name, &TRow::Field) == FRows.end();
    });
    if (free != FFields.end())
        FRows.push_back({free->Name, {}, false});
}

void TMultiEditForm::actRemove(int row)
{
    if (row >= 0 && row < static_cast<int>(FRows.size()))
        FRows.erase(FRows.begin() + row);
}

void TMultiEditForm::SetField(int row, const QString& field) { FRows[static_cast<size_t>(row)] = {field, {}, false}; }

void TMultiEditForm::SetValue(int row, const TVariant& value) { FRows[static_cast<size_t>(row)].Value = value; }

void TMultiEditForm::SetClear(int row, bool clear) { FRows[static_cast<size_t>(row)].Clear = clear && CanClear(row); }

const TFieldDef* TMultiEditForm::FieldOf(int row) const
{
    const auto field = std::ranges::find(FFields, FRows[static_cast<size_t>(row)].Field, &TFieldDef::Name);
    return field == FFields.end() ? nullptr : &*field;
}

bool TMultiEditForm::CanClear(int row) const
{
    const TFieldDef* field = FieldOf(row);
    return field && !field->Required;
}

std::vector<std::pair<QString, TVariant>> TMultiEditForm::GetList() const
{
    std::vector<std::pair<QString, TVariant>> list;
    for (const TRow& row : FRows) {
        if (row.Clear)
            list.emplace_back(row.Field, TVariant());
        else if (!VarToStr(row.Value).trimmed().isEmpty())
            list.emplace_back(row.Field, row.Value);
    }
    return list;
}

QString TMultiEditForm::Question() const
{
    QStringList set, cleared;
    for (const auto& [name, value] : GetList()) {
        const auto field = std::ranges::find(FFields, name, &TFieldDef::Name);
        if (field != FFields.end())
            (VarIsNull(value) ? cleared : set) << ColumnLabel(*field, Defaults());
    }
    QStringList sentences;
    if (!set.isEmpty())
        sentences << GetLanguageString(u"cSMultiEditSets"_s).arg(set.join(u", "_s));
    if (!cleared.isEmpty())
        sentences << GetLanguageString(u"cSMultiEditClears"_s).arg(cleared.join(u", "_s));
    return sentences.isEmpty()
               ? QString()
               : GetLanguageString(u"cSMultiEditConfirm"_s).arg(RowCount()) + u'\n' + sentences.join(u'\n');
}

int TMultiEditForm::ApplyChanges() { return FEdits.ApplyChanges(FKeys, GetList()); }

} // namespace Kestrune
