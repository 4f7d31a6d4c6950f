// SPDX-License-Identifier: GPL-3.0-or-later
#include "uAlbumTable.h"

#include "uIcons.h"
#include "uReleaseRoles.h"
#include "uTheme.h"
#include "uThemePaint.h"

#include <QApplication>
#include <QHoverEvent>
#include <QKeyEvent>
#include <QLocale>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int GroupIndent = 18;
constexpr int GroupArrow = 14;

} // namespace

TAlbumTable::TAlbumTable(TCoverCache* covers, TListModel& list, QWidget* parent)
    : QTreeView(parent),
      FHeader(new TTableHeader(this)),
      FDelegate(new TTableDelegate(covers, list, this)),
      FModel(list)
{
    setHeader(FHeader);
    FHeader->setSectionsClickable(true); // taking the header over switched it off
    setItemDelegate(FDelegate);
    setFrameShape(NoFrame);
    setUniformRowHeights(true);
    setRootIsDecorated(false);
    setIndentation(0);
    setSelectionMode(ExtendedSelection);
    setSelectionBehavior(SelectRows);
    setEditTriggers(NoEditTriggers);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollMode(ScrollPerPixel);
    viewport()->setAttribute(Qt::WA_Hover);
    connect(FHeader, &QHeaderView::sectionClicked, this, [this](int column) {
        const auto keys = QApplication::keyboardModifiers();
        Q_EMIT sortRequested(column, (keys & (Qt::ControlModifier | Qt::ShiftModifier)) != 0);
    });
    connect(FHeader, &QHeaderView::sectionResized, this, &TAlbumTable::SectionResized);
    connect(FHeader, &TTableHeader::leaveRequested, this, [this] { setFocus(); });
    connect(this, &QTreeView::expanded, this, [this](const QModelIndex& group) { NoteExpansion(group, true); });
    connect(this, &QTreeView::collapsed, this, [this](const QModelIndex& group) { NoteExpansion(group, false); });
    setExpandsOnDoubleClick(false);
    setAnimated(false);
    QTreeView::setModel(&FModel);
    FitCoverColumn();
    connect(&FModel, &QAbstractItemModel::modelReset, this, &TAlbumTable::RestoreExpansion);
}

void TAlbumTable::FitCoverColumn()
{
    for (int column = 0; column < FModel.columnCount(); ++column)
        if (CellKindOf(FModel, column) == ckCover)
            FHeader->resizeSection(column, FDelegate->RowHeightInDip() + 8);
}

void TAlbumTable::SetEditing(bool on)
{
    setEditTriggers(on ? DoubleClicked | EditKeyPressed | SelectedClicked : EditTriggers(NoEditTriggers));
}

void TAlbumTable::SetOnRefusal(std::function<void(const QString&)> tell) { FDelegate->SetOnRefusal(std::move(tell)); }

void TAlbumTable::SetFindText(const QString& text)
{
    FDelegate->SetFindText(text);
    viewport()->update();
}

void TAlbumTable::NoteExpansion(const QModelIndex& group, bool expanded)
{
    if (FRestoring)
        return;
    // What is folded is remembered: a group that is new stands open.
    if (expanded)
        FFolded.remove(FModel.PathOf(group));
    else
        FFolded.insert(FModel.PathOf(group));
}

void TAlbumTable::RestoreExpansion()
{
    if (!FModel.IsGrouped())
        return;
    FRestoring = true;
    QTreeView::expandAll();
    if (!FFolded.isEmpty())
        FoldRemembered({});
    FRestoring = false;
}

void TAlbumTable::FoldRemembered(const QModelIndex& parent)
{
    for (int row = 0; row < FModel.rowCount(parent); ++row) {
        const QModelIndex group = FModel.index(row, 0, parent);
        if (!FModel.IsGroup(group))
            return;
        FoldRemembered(group);
        if (FFolded.contains(FModel.PathOf(group)))
            collapse(group);
    }
}

void TAlbumTable::ExpandGroups(bool expand)
{
    FRestoring = true;
    expand ? QTreeView::expandAll() : QTreeView::collapseAll();
    FRestoring = false;
    FFolded.clear();
    if (!expand)
        NoteFolded({});
}

void TAlbumTable::NoteFolded(const QModelIndex& parent)
{
    for (int row = 0; row < FModel.rowCount(parent); ++row) {
        const QModelIndex group = FModel.index(row, 0, parent);
        if (!FModel.IsGroup(group))
            return;
        FFolded.insert(FModel.PathOf(group));
        NoteFolded(group);
    }
}

void TAlbumTable::SetSortMarks(std::vector<TSortMark> marks)
{
    FSharing = true;
    for (const TSortMark& mark : marks)
        if (const int needed = FHeader->sectionSizeFromContents(mark.Column).width();
            !isColumnHidden(mark.Column) && FHeader->sectionSize(mark.Column) < needed)
            FHeader->resizeSection(mark.Column, needed);
    FSharing = false;
    FHeader->SetSortMarks(std::move(marks));
    Share();
}

void TAlbumTable::ShareWidth(const std::vector<int>& columns)
{
    FShared.clear();
    for (const int column : columns)
        FShared.push_back({column, FHeader->sectionSize(column), FShared.empty() ? 10 : 13});
    Share();
}

bool TAlbumTable::SharesWidth(int column) const
{
    return std::ranges::find(FShared, column, &TShared::Column) != FShared.end();
}

void TAlbumTable::Share()
{
    if (FShared.empty() || FSharing)
        return;
    const auto widthOf = [this](int column) {
        const auto shared = std::ranges::find(FShared, column, &TShared::Column);
        if (shared != FShared.end())
            return shared->Least;
        // The last one grows by itself: what it has is not what it needs.
        const bool last = FHeader->stretchLastSection() && FHeader->visualIndex(column) == FHeader->count() - 1;
        return last ? FHeader->CaptionWidth(column) : FHeader->sectionSize(column);
    };
    int used = 0;
    for (int visual = 0; visual < FHeader->count(); ++visual) {
        const int column = FHeader->logicalIndex(visual);
        if (isColumnHidden(column))
            continue;
        if (used + widthOf(column) > viewport()->width())
            break;
        used += widthOf(column);
    }
    const int spare = std::max(0, viewport()->width() - used);
    int parts = 0;
    for (const TShared& shared : FShared)
        parts += shared.Parts;
    FSharing = true;
    int given = 0; // of the parts, so that no pixel is lost
    for (const TShared& shared : FShared) {
        const int from = spare * given / parts;
        given += shared.Parts;
        FHeader->resizeSection(shared.Column, shared.Least + spare * given / parts - from);
    }
    FSharing = false;
}

void TAlbumTable::SectionResized(int column)
{
    // Only the user's hand on the edge of a heading ends the sharing; the last column follows the window.
    const bool byHand = QApplication::mouseButtons().testFlag(Qt::LeftButton) && !FSharing;
    if (byHand && FHeader->visualIndex(column) != FHeader->count() - 1)
        StopSharing();
}

void TAlbumTable::SetRowSize(TRowSize size)
{
    FDelegate->SetRowSize(size);
    scheduleDelayedItemsLayout();
}

int TAlbumTable::sizeHintForColumn(int column) const
{
    // Only rows in sight are looked at: the others would have to be read first.
    const QStyleOptionViewItem option = [this] {
        QStyleOptionViewItem made;
        initViewItemOption(&made);
        return made;
    }();
    int width = 24;
    QModelIndex index = indexAt(QPoint(0, 0));
    const int bottom = viewport()->height();
    while (index.isValid() && visualRect(index).top() < bottom) {
        if (!FModel.IsGroup(index))
            width = std::max(width, FDelegate->sizeHint(option, index.siblingAtColumn(column)).width());
        index = indexBelow(index);
    }
    return width;
}

void TAlbumTable::ApplyBestFit()
{
    StopSharing();
    for (int column = 0; model() && column < model()->columnCount(); ++column)
        if (!isColumnHidden(column))
            resizeColumnToContents(column);
}

void TAlbumTable::drawRow(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const TTheme& theme = CurrentTheme();
    const QRect row(0, option.rect.top(), viewport()->width(), option.rect.height());
    const bool selected = selectionModel() && selectionModel()->isRowSelected(index.row(), index.parent());
    const bool hovered = FHovered.isValid() && FHovered.row() == index.row() && FHovered.parent() == index.parent();
    if (FModel.IsGroup(index)) {
        DrawGroupRow(*painter, row, index, hovered);
        return;
    }
    painter->fillRect(row, selected && !theme.IsHighContrast() ? theme.AccentSoft : hovered ? theme.Hover : theme.View);
    // Half the strength of a hairline: rows are read along, not boxed in.
    DrawHairline(*painter, row, Qt::BottomEdge, Mix(theme.View, theme.Line, 0.5));
    if (selected && theme.IsHighContrast())
        StrokeRounded(*painter, row, RadiusCover, theme.AccentFill, theme.SelectionRing());
    QTreeView::drawRow(painter, option, index);
}

void TAlbumTable::DrawGroupRow(QPainter& painter, const QRect& row, const QModelIndex& index, bool hovered) const
{
    const TTheme& theme = CurrentTheme();
    const bool mirrored = isRightToLeft();
    const bool focused =
        hasFocus() && currentIndex().isValid() && currentIndex().siblingAtColumn(0) == index.siblingAtColumn(0);
    painter.save();
    painter.setLayoutDirection(layoutDirection());
    painter.fillRect(row, hovered ? theme.Hover : theme.Window);
    DrawHairline(painter, row, Qt::BottomEdge, Mix(theme.View, theme.Line, 0.5));
    qreal x = 8 + index.data(grLevel).toInt() * GroupIndent;
    const auto box = [&](qreal left, qreal width) {
        return QRectF(mirrored ? row.width() - left - width : left, row.top(), width, row.height());
    };
    const QString arrow = isExpanded(index.siblingAtColumn(0)) ? u"cd"_s : mirrored ? u"cl"_s : u"cr"_s;
    DrawIcon(painter, QRectF(box(x, GroupArrow).left(), row.center().y() - GroupArrow / 2 + 1, GroupArrow, GroupArrow),
             arrow, theme.Text);
    x += GroupArrow + 7;
    const auto put = [&](TFontStep step, const QColor& color, const QString& text) {
        painter.setFont(ThemeFont(step));
        painter.setPen(color);
        const qreal width = std::min<qreal>(painter.fontMetrics().horizontalAdvance(text) + 2, row.width() / 2.0);
        DrawElided(painter, box(x, width), text);
        x += width + 6;
    };
    put(fsBody, theme.Text2, index.data(grCaption).toString());
    put(fsBodyBold, theme.Text, index.data(grValue).toString());
    const QString count = locale().toString(index.data(grCount).toInt());
    painter.setFont(ThemeFont(fsSmall));
    const qreal width = painter.fontMetrics().horizontalAdvance(count) + 16;
    FillRounded(painter, box(x, width).adjusted(0, row.height() / 2.0 - 9, 0, 9 - row.height() / 2.0), 9, theme.Sunken);
    painter.setPen(theme.Text2);
    painter.drawText(box(x, width), Qt::AlignCenter, count);
    if (focused)
        DrawFocusRing(painter, QRectF(row).adjusted(0, 0, 0, -1), RadiusCover, theme);
    painter.restore();
}

void TAlbumTable::mousePressEvent(QMouseEvent* event)
{
    const QModelIndex index = indexAt(event->position().toPoint());
    if (FModel.IsGroup(index) && event->button() == Qt::LeftButton) {
        setExpanded(index.siblingAtColumn(0), !isExpanded(index.siblingAtColumn(0)));
        selectionModel()->setCurrentIndex(index.siblingAtColumn(0), QItemSelectionModel::NoUpdate);
        return;
    }
    QTreeView::mousePressEvent(event);
}

bool TAlbumTable::event(QEvent* event)
{
    // The cell is edited by the key that is the window's for the whole record.
    if (event->type() == QEvent::ShortcutOverride && editTriggers() != NoEditTriggers &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_F2) {
        event->accept();
        return true;
    }
    return QTreeView::event(event);
}

void TAlbumTable::keyPressEvent(QKeyEvent* event)
{
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter || event->key() == Qt::Key_Space;
    if (enter && FModel.IsGroup(currentIndex())) {
        const QModelIndex group = currentIndex().siblingAtColumn(0);
        setExpanded(group, !isExpanded(group));
        return;
    }
    if (event->key() == Qt::Key_F2 && editTriggers() != NoEditTriggers && currentIndex().isValid()) {
        edit(currentIndex());
        return;
    }
    QTreeView::keyPressEvent(event);
}

QModelIndex TAlbumTable::NeighbourColumn(int direction) const
{
    const QModelIndex current = currentIndex();
    int visual = FHeader->visualIndex(current.column()) + direction;
    while (visual >= 0 && visual < FHeader->count()) {
        const int column = FHeader->logicalIndex(visual);
        if (!isColumnHidden(column))
            return current.siblingAtColumn(column);
        visual += direction;
    }
    return current;
}

QModelIndex TAlbumTable::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers)
{
    const bool onGroup = FModel.IsGroup(currentIndex());
    if (currentIndex().isValid() && !onGroup && (action == MoveLeft || action == MoveRight))
        return NeighbourColumn((action == MoveRight) != isRightToLeft() ? 1 : -1);
    return QTreeView::moveCursor(action, modifiers);
}

void TAlbumTable::keyboardSearch(const QString& search)
{
    // The view's own search would read every row of the model.
    const int row = FLocate ? FTyped.Add(search, FModel.SourceRow(currentIndex()), FLocate) : -1;
    if (row >= 0)
        setCurrentIndex(FModel.IndexOfRow(row, std::max(0, currentIndex().column())));
}

void TAlbumTable::paintEvent(QPaintEvent* event)
{
    QPainter painter(viewport());
    painter.fillRect(event->rect(), CurrentTheme().View);
    painter.end();
    QTreeView::paintEvent(event);
}

void TAlbumTable::resizeEvent(QResizeEvent* event)
{
    QTreeView::resizeEvent(event);
    Share();
}

void TAlbumTable::scrollContentsBy(int dx, int dy)
{
    QTreeView::scrollContentsBy(dx, dy);
    if (dx != 0)
        FHeader->PlaceFilters();
}

bool TAlbumTable::viewportEvent(QEvent* event)
{
    if (event->type() == QEvent::HoverMove || event->type() == QEvent::HoverEnter ||
        event->type() == QEvent::HoverLeave) {
        const QModelIndex now = event->type() == QEvent::HoverLeave
                                    ? QModelIndex()
                                    : indexAt(static_cast<QHoverEvent*>(event)->position().toPoint());
        if (now.row() != FHovered.row() || now.parent() != FHovered.parent()) {
            FHovered = now;
            viewport()->update();
        }
    }
    return QTreeView::viewportEvent(event);
}

} // namespace Kestrune
