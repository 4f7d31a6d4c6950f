// SPDX-License-Identifier: GPL-3.0-or-later
#include "uTileView.h"

#include "uReleaseRoles.h"
#include "uTheme.h"
#include "uTilePainter.h"

#include <QAccessible>
#include <QApplication>
#include <QElapsedTimer>
#include <QHoverEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTimer>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

// Pictures not at hand are decoded for this long per repaint, so that scrolling stays smooth; the rest follows at once.
constexpr qint64 DecodeBudgetMs = 10;

} // namespace

TTileView::TTileView(QWidget* parent) : QAbstractItemView(parent)
{
    InstallTileViewAccessibility();
    setFrameShape(QFrame::NoFrame);
    setSelectionMode(ExtendedSelection);
    setSelectionBehavior(SelectRows);
    setEditTriggers(NoEditTriggers);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    viewport()->setAttribute(Qt::WA_Hover);
}

TTileView::~TTileView() = default;

void TTileView::SetPainter(TTilePainter* painter)
{
    FPainter = painter;
    updateGeometries();
    scrollTo(currentIndex());
    viewport()->update();
}

int TTileView::RowCount() const { return model() ? model()->rowCount(rootIndex()) : 0; }

QModelIndex TTileView::IndexOfRow(int row) const
{
    return row >= 0 && row < RowCount() ? model()->index(row, 0, rootIndex()) : QModelIndex();
}

TTileLayout TTileView::Layout() const
{
    TTileLayout layout;
    if (!FPainter)
        return layout;
    layout.Count = RowCount();
    layout.Width = viewport()->width();
    layout.Cell = FPainter->CellSize();
    layout.TopMargin = FPainter->TopMargin();
    layout.RowGap = FPainter->RowGap();
    layout.ColumnGap = FPainter->ColumnGap();
    layout.Stretch = FPainter->StretchesColumns();
    layout.RightToLeft = isRightToLeft();
    return layout;
}

std::pair<int, int> TTileView::VisibleRows() const
{
    return Layout().Between(verticalOffset(), verticalOffset() + viewport()->height() - 1);
}

int TTileView::verticalOffset() const { return verticalScrollBar()->value(); }

QRect TTileView::visualRect(const QModelIndex& index) const
{
    return index.isValid() ? Layout().RectOf(index.row()).translated(0, -verticalOffset()) : QRect();
}

QModelIndex TTileView::indexAt(const QPoint& point) const
{
    return IndexOfRow(Layout().IndexAt(point + QPoint(0, verticalOffset())));
}

void TTileView::scrollTo(const QModelIndex& index, ScrollHint hint)
{
    if (!index.isValid() || !FPainter)
        return;
    const QRect cell = visualRect(index);
    const int height = viewport()->height();
    QScrollBar* bar = verticalScrollBar();
    int delta = 0;
    if (hint == PositionAtTop)
        delta = cell.top();
    else if (hint == PositionAtBottom)
        delta = cell.bottom() + 1 - height;
    else if (hint == PositionAtCenter)
        delta = cell.center().y() - height / 2;
    else if (cell.top() < 0 || cell.height() > height)
        delta = cell.top() - 2;
    else if (cell.bottom() >= height)
        delta = cell.bottom() + 3 - height;
    if (delta != 0)
        bar->setValue(bar->value() + delta);
}

void TTileView::updateGeometries()
{
    QAbstractItemView::updateGeometries();
    const TTileLayout layout = Layout();
    QScrollBar* bar = verticalScrollBar();
    const int height = viewport()->height();
    bar->setPageStep(height);
    bar->setSingleStep(std::max(20, layout.Cell.height() / 3));
    bar->setRange(0, std::max(0, layout.ContentHeight() - height));
}

void TTileView::resizeEvent(QResizeEvent* event)
{
    const QModelIndex current = currentIndex();
    const bool currentWasInSight = current.isValid() && viewport()->rect().intersects(visualRect(current));
    QAbstractItemView::resizeEvent(event);
    updateGeometries();
    if (currentWasInSight)
        scrollTo(current);
}

void TTileView::reset()
{
    QAbstractItemView::reset();
    FHoveredRow = -1;
    updateGeometries();
    verticalScrollBar()->setValue(0);
    viewport()->update();
    QAccessibleTableModelChangeEvent event(this, QAccessibleTableModelChangeEvent::ModelReset);
    QAccessible::updateAccessibility(&event);
}

void TTileView::setSelectionModel(QItemSelectionModel* selectionModel)
{
    QAbstractItemView::setSelectionModel(selectionModel);
    viewport()->update();
}

void TTileView::paintEvent(QPaintEvent* event)
{
    QPainter painter(viewport());
    painter.fillRect(event->rect(), CurrentTheme().View);
    if (!FPainter)
        return;
    const TTileLayout layout = Layout();
    const int offset = verticalOffset();
    const auto [first, last] = layout.Between(offset + event->rect().top(), offset + event->rect().bottom());
    QElapsedTimer clock;
    clock.start();
    bool complete = true;
    const int madeBefore = FPainter->PicturesMade();
    const QModelIndex current = currentIndex();
    PaintRows(painter, layout, event->rect());
    for (int row = first; row <= last; ++row) {
        const QModelIndex index = IndexOfRow(row);
        TTileState state;
        state.Hovered = row == FHoveredRow;
        state.Selected = selectionModel() && selectionModel()->isSelected(index);
        state.Current = current.isValid() && current.row() == row;
        state.ViewFocused = hasFocus();
        // One picture each time, or a machine that is slow at painting would never get to them.
        state.MayDecode = clock.elapsed() < DecodeBudgetMs || FPainter->PicturesMade() == madeBefore;
        complete &= FPainter->Paint(painter, layout.RectOf(row).translated(0, -offset), index, state);
    }
    if (!complete)
        QTimer::singleShot(0, viewport(), qOverload<>(&QWidget::update));
}

void TTileView::PaintRows(QPainter& painter, const TTileLayout& layout, const QRect& part)
{
    const int step = layout.Cell.height() + layout.RowGap;
    const int offset = verticalOffset() - layout.TopMargin;
    const int lastRow = (part.bottom() + offset) / step;
    for (int row = std::max(0, (part.top() + offset) / step); row <= lastRow; ++row)
        if (row < layout.Rows() || FPainter->FillsView())
            FPainter->PaintRowGround(painter, QRect(0, row * step - offset, layout.Width, layout.Cell.height()));
}

void TTileView::mouseMoveEvent(QMouseEvent* event)
{
    // Dragging with the button down selects nothing here: there is no rubber band.
    if (event->buttons() == Qt::NoButton)
        QAbstractItemView::mouseMoveEvent(event);
}

bool TTileView::viewportEvent(QEvent* event)
{
    switch (event->type()) {
    case QEvent::HoverEnter:
    case QEvent::HoverMove: SetHoveredRow(indexAt(static_cast<QHoverEvent*>(event)->position().toPoint()).row()); break;
    case QEvent::HoverLeave: SetHoveredRow(-1); break;
    default: break;
    }
    return QAbstractItemView::viewportEvent(event);
}

void TTileView::changeEvent(QEvent* event)
{
    QAbstractItemView::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange ||
        event->type() == QEvent::LayoutDirectionChange)
        updateGeometries();
}

void TTileView::focusInEvent(QFocusEvent* event)
{
    QAbstractItemView::focusInEvent(event);
    UpdateRow(currentIndex().row());
}

void TTileView::focusOutEvent(QFocusEvent* event)
{
    QAbstractItemView::focusOutEvent(event);
    UpdateRow(currentIndex().row());
}

void TTileView::SetHoveredRow(int row)
{
    if (row == FHoveredRow)
        return;
    UpdateRow(std::exchange(FHoveredRow, row));
    UpdateRow(row);
}

void TTileView::UpdateRow(int row)
{
    const QModelIndex index = IndexOfRow(row);
    if (index.isValid())
        viewport()->update(visualRect(index));
}

} // namespace Kestrune
