// SPDX-License-Identifier: GPL-3.0-or-later
#include "frmMultiEdit.h"

#include "frmMain.h"
#include "uDefaults.h"

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

TMultiEditForm::TMultiEditForm(TKRNMainForm& form)
    : FForm(form), FOfTracks(form.TracksShown()), FKeys(form.ActiveKeys())
{}

void TMultiEditForm::LoadFromCustomGridTableView(const std::vector<QString>& shownColumns)
{
    FFields.clear();
    for (const TFieldDef& field : FForm.List().Fields()) {
        const bool internal = field.LabelKey.isEmpty() && !field.Name.startsWith("Custom"_L1);
        const bool editable = TDataModuleMain::IsFieldAssignable(field) && field.Kind != fkDateTime && !internal;
        if (editable && IsFieldShown(field, Defaults(), FOfTracks))
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
        return std::ranges::find(FList, field.Name, &std::pair<QString, TVariant>::first) == FList.end();
    });
    if (free != FFields.end())
        FList.emplace_back(free->Name, TVariant());
}

void TMultiEditForm::actRemove(int row)
{
    if (row >= 0 && row < static_cast<int>(FList.size()))
        FList.erase(FList.begin() + row);
}

void TMultiEditForm::SetField(int row, const QString& field) { FList[static_cast<size_t>(row)] = {field, TVariant()}; }

void TMultiEditForm::SetValue(int row, const TVariant& value) { FList[static_cast<size_t>(row)].second = value; }

const TFieldDef* TMultiEditForm::FieldOf(int row) const
{
    const auto field = std::ranges::find(FFields, FList[static_cast<size_t>(row)].first, &TFieldDef::Name);
    return field == FFields.end() ? nullptr : &*field;
}

int TMultiEditForm::ApplyChanges() { return FForm.ApplyChanges(FKeys, FList); }

} // namespace Kestrune
