// SPDX-License-Identifier: GPL-3.0-or-later
#include "frmSorting.h"

#include "uTHStrings.h"

#include <algorithm>
#include <set>

namespace Kestrune {

using namespace Qt::StringLiterals;

QStringList TSortForm::Orders()
{
    return {GetLanguageString(u"cSSortDlgAsc"_s), GetLanguageString(u"cSSortDlgDesc"_s)};
}

void TSortForm::LoadFromCustomGridTableView(std::vector<TColumn> columns, const std::vector<TSortItem>& sort)
{
    FColumns = std::move(columns);
    FLevels.clear();
    for (const TSortItem& item : sort) {
        const auto column = std::ranges::find(FColumns, item.Column, &TColumn::second);
        if (column != FColumns.end())
            FLevels.push_back({column->first, Orders()[item.Descending ? 1 : 0]});
    }
}

QStringList TSortForm::Captions() const
{
    QStringList captions;
    for (const TColumn& column : FColumns)
        captions << column.first;
    return captions;
}

void TSortForm::SetLevel(int row, const TLSort& level)
{
    if (row >= 0 && row < static_cast<int>(FLevels.size()))
        FLevels[static_cast<size_t>(row)] = level;
}

void TSortForm::actAddLevel()
{
    const auto free = std::ranges::find_if(FColumns, [this](const TColumn& column) {
        return std::ranges::find(FLevels, column.first, &TLSort::Column) == FLevels.end();
    });
    if (free != FColumns.end())
        FLevels.push_back({free->first, Orders().front()});
}

void TSortForm::actDeleteLevel(const std::vector<int>& rows)
{
    const std::set<int, std::greater<>> backwards(rows.begin(), rows.end());
    for (const int row : backwards)
        if (row >= 0 && row < static_cast<int>(FLevels.size()))
            FLevels.erase(FLevels.begin() + row);
}

void TSortForm::actUp(int row)
{
    if (CanMoveUp(row))
        std::swap(FLevels[static_cast<size_t>(row)], FLevels[static_cast<size_t>(row) - 1]);
}

void TSortForm::actDown(int row)
{
    if (CanMoveDown(row))
        std::swap(FLevels[static_cast<size_t>(row)], FLevels[static_cast<size_t>(row) + 1]);
}

QString TSortForm::Check() const
{
    for (size_t a = 0; a < FLevels.size(); ++a)
        for (size_t b = a + 1; b < FLevels.size(); ++b)
            if (FLevels[a].Column == FLevels[b].Column)
                return GetLanguageString(u"cSSortDlgDuplicateColumns"_s);
    return {};
}

std::vector<TSortItem> TSortForm::ApplySorting() const
{
    std::vector<TSortItem> sort;
    for (const TLSort& level : FLevels) {
        const auto column = std::ranges::find(FColumns, level.Column, &TColumn::first);
        if (column != FColumns.end())
            sort.push_back({column->second, level.Order != Orders().front()});
    }
    return sort;
}

} // namespace Kestrune
