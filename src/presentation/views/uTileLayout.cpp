// SPDX-License-Identifier: GPL-3.0-or-later
#include "uTileLayout.h"

#include <algorithm>

namespace Kestrune {

int TTileLayout::Columns() const
{
    const int free = Width - 2 * Margin;
    return std::max(1, (free + ColumnGap) / std::max(1, Cell.width() + ColumnGap));
}

int TTileLayout::Rows() const { return (Count + Columns() - 1) / Columns(); }

int TTileLayout::ContentHeight() const
{
    const int rows = Rows();
    return rows == 0 ? 0 : 2 * TopMargin + rows * RowStep() - RowGap;
}

int TTileLayout::CellWidth() const
{
    if (!Stretch)
        return Cell.width();
    const int columns = Columns();
    return std::max(Cell.width(), (Width - 2 * Margin - (columns - 1) * ColumnGap) / columns);
}

int TTileLayout::ColumnLeft(int column) const
{
    const int columns = Columns();
    const int free = Width - 2 * Margin - CellWidth();
    int left = Margin;
    if (Stretch)
        left += column * (CellWidth() + ColumnGap);
    else if (columns > 1)
        left += column * std::max(0, free) / (columns - 1);
    return RightToLeft ? Width - left - CellWidth() : left;
}

QRect TTileLayout::RectOf(int index) const
{
    if (index < 0 || index >= Count)
        return {};
    const int columns = Columns();
    return {ColumnLeft(index % columns), TopMargin + index / columns * RowStep(), CellWidth(), Cell.height()};
}

int TTileLayout::IndexAt(const QPoint& point) const
{
    const int index = NearestTo(point);
    return index >= 0 && RectOf(index).contains(point) ? index : -1;
}

int TTileLayout::NearestTo(const QPoint& point) const
{
    if (Count <= 0)
        return -1;
    const int columns = Columns();
    const int row = std::clamp((point.y() - TopMargin) / std::max(1, RowStep()), 0, Rows() - 1);
    // The columns' positions are rounded, so the guess may be one off.
    const int x = RightToLeft ? Width - 1 - point.x() : point.x();
    const int pitch = std::max(1, (Width - 2 * Margin) / columns);
    int column = std::clamp((x - Margin) / pitch, 0, columns - 1);
    const auto inside = [&](int c) {
        const int left = ColumnLeft(c);
        return point.x() >= left && point.x() < left + CellWidth();
    };
    for (const int guess : {column - 1, column + 1})
        if (guess >= 0 && guess < columns && !inside(column) && inside(guess))
            column = guess;
    return std::min(row * columns + column, Count - 1);
}

std::pair<int, int> TTileLayout::Between(int top, int bottom) const
{
    if (Count <= 0 || bottom < top)
        return {0, -1};
    const int columns = Columns();
    const int firstRow = std::max(0, (top - TopMargin) / std::max(1, RowStep()));
    const int lastRow = std::max(0, (bottom - TopMargin) / std::max(1, RowStep()));
    return {std::min(firstRow * columns, Count), std::min((lastRow + 1) * columns, Count) - 1};
}

} // namespace Kestrune
