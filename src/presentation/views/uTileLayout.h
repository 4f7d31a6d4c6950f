// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

namespace Kestrune {

/// Where equal cells stand in a view: pure arithmetic, no stored positions. Coordinates are those of the content, with
/// (0, 0) at its upper left; the caller subtracts the scroll offset.
struct TTileLayout {
    int Count = 0;        ///< number of cells
    int Width = 0;        ///< width of the view in dip
    QSize Cell{1, 1};     ///< smallest size of a cell
    int Margin = 8;       ///< free space left and right
    int TopMargin = 0;    ///< free space above the first and below the last row
    int ColumnGap = 0;    ///< least space between columns
    int RowGap = 0;       ///< space between rows
    bool Stretch = false; ///< true: cells grow to share the spare width; false: the gaps do
    bool RightToLeft = false;

    int Columns() const;
    int Rows() const;
    int ContentHeight() const;
    /// Rectangle of a cell; empty for an index that is out of range.
    QRect RectOf(int index) const;
    /// The cell under a point of the content, -1 for none.
    int IndexAt(const QPoint& point) const;
    /// The cell under or next to a point, clamped into the range; -1 only when there are no cells.
    int NearestTo(const QPoint& point) const;
    /// First and last cell that a strip of the content touches; first > last when none does.
    std::pair<int, int> Between(int top, int bottom) const;

private:
    int RowStep() const { return Cell.height() + RowGap; }
    int CellWidth() const;
    int ColumnLeft(int column) const;
};

} // namespace Kestrune
