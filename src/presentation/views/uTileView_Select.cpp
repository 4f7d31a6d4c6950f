// SPDX-License-Identifier: GPL-3.0-or-later
#include "uReleaseRoles.h"
#include "uTileView.h"

#include <QAccessible>
#include <QApplication>

#include <algorithm>

namespace Kestrune {

QModelIndex TTileView::moveCursor(CursorAction action, Qt::KeyboardModifiers)
{
    const int count = RowCount();
    if (count == 0)
        return {};
    const QModelIndex current = currentIndex();
    if (!current.isValid())
        return IndexOfRow(action == MoveEnd ? count - 1 : 0);
    const TTileLayout layout = Layout();
    const int columns = layout.Columns();
    const int rowsPerPage = std::max(1, viewport()->height() / std::max(1, layout.Cell.height() + layout.RowGap));
    const int forward = isRightToLeft() ? -1 : 1;
    int row = current.row();
    const int column = row % columns;
    switch (action) {
    case MoveLeft: row -= forward; break;
    case MoveRight: row += forward; break;
    case MovePrevious: --row; break;
    case MoveNext: ++row; break;
    case MoveUp: row = row >= columns ? row - columns : row; break;
    case MoveDown:
        // From the last but one line down to a shorter last line: to its end.
        if (row / columns < (count - 1) / columns)
            row = std::min(row + columns, count - 1);
        break;
    case MovePageUp: row = std::max(column, row - rowsPerPage * columns); break;
    case MovePageDown: row = std::min(count - 1, row + rowsPerPage * columns); break;
    case MoveHome: row = 0; break;
    case MoveEnd: row = count - 1; break;
    }
    return IndexOfRow(std::clamp(row, 0, count - 1));
}

// The base class hands over a rectangle from the anchor's to the target's centre; what it means here is the run of
// cells between the two.
void TTileView::setSelection(const QRect& rect, QItemSelectionModel::SelectionFlags command)
{
    if (!selectionModel())
        return;
    const TTileLayout layout = Layout();
    const QPoint offset(0, verticalOffset());
    const bool single = rect.topLeft() == rect.bottomRight();
    const int first = single ? layout.IndexAt(rect.topLeft() + offset) : layout.NearestTo(rect.topLeft() + offset);
    const int last = single ? first : layout.NearestTo(rect.bottomRight() + offset);
    if (first < 0 || last < 0) {
        selectionModel()->select(QItemSelection(), command);
        return;
    }
    const auto [low, high] = std::minmax({first, last});
    selectionModel()->select(QItemSelection(IndexOfRow(low), IndexOfRow(high)), command);
}

QRegion TTileView::visualRegionForSelection(const QItemSelection& selection) const
{
    const auto [first, last] = VisibleRows();
    QRegion region;
    for (const QItemSelectionRange& range : selection)
        for (int row = std::max(first, range.top()); row <= std::min(last, range.bottom()); ++row)
            region += visualRect(IndexOfRow(row));
    return region;
}

void TTileView::currentChanged(const QModelIndex& current, const QModelIndex& previous)
{
    QAbstractItemView::currentChanged(current, previous);
    UpdateRow(previous.row());
    UpdateRow(current.row());
    if (hasFocus() && current.isValid()) {
        QAccessibleEvent event(this, QAccessible::Focus);
        event.setChild(current.row());
        QAccessible::updateAccessibility(&event);
    }
}

void TTileView::selectionChanged(const QItemSelection& selected, const QItemSelection& deselected)
{
    QAbstractItemView::selectionChanged(selected, deselected);
    viewport()->update();
    QAccessibleEvent event(this, QAccessible::SelectionWithin);
    QAccessible::updateAccessibility(&event);
}

void TTileView::dataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight, const QList<int>&)
{
    const auto [first, last] = VisibleRows();
    for (int row = std::max(first, topLeft.row()); row <= std::min(last, bottomRight.row()); ++row)
        UpdateRow(row);
}

void TTileView::rowsInserted(const QModelIndex& parent, int start, int end)
{
    QAbstractItemView::rowsInserted(parent, start, end);
    updateGeometries();
    viewport()->update();
}

void TTileView::rowsAboutToBeRemoved(const QModelIndex& parent, int start, int end)
{
    QAbstractItemView::rowsAboutToBeRemoved(parent, start, end);
    FHoveredRow = -1;
    // The rows are still there now; the range is right once they are gone.
    QMetaObject::invokeMethod(this, &TTileView::updateGeometries, Qt::QueuedConnection);
    viewport()->update();
}

void TTileView::keyboardSearch(const QString& search)
{
    if (RowCount() == 0)
        return;
    const TLocate inModel = [this](const QString& text, int from) { return LocateTitle(text, from); };
    const int row = FTyped.Add(search, currentIndex().row(), FLocate ? FLocate : inModel);
    if (row >= 0 && row < RowCount())
        setCurrentIndex(IndexOfRow(row));
}

int TTileView::LocateTitle(const QString& text, int fromRow) const
{
    const QModelIndexList hits =
        model()->match(IndexOfRow(fromRow % RowCount()), rrTitle, text, 1, Qt::MatchStartsWith | Qt::MatchWrap);
    return hits.isEmpty() ? -1 : hits.first().row();
}

} // namespace Kestrune
