// SPDX-License-Identifier: GPL-3.0-or-later
#include "uAlbumTable.h"

#include "uIcons.h"
#include "uReleaseRoles.h"
#include "uThemePaint.h"
#include "uThemeStyle.h"

#include <QApplication>
#include <QHoverEvent>
#include <QPainter>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int HeaderPadding = 8;
constexpr int SortMarkWidth = 30;

QFont HeaderFont()
{
    QFont font = ThemeFont(fsBodyBold);
    font.setPixelSize(std::max(9, font.pixelSize() - 1));
    return font;
}

bool IsRightAligned(int kind) { return kind == ckNumber; }

} // namespace

TTableHeader::TTableHeader(QWidget* parent) : QHeaderView(Qt::Horizontal, parent)
{
    setSectionsMovable(true);
    setFirstSectionMovable(true);
    setHighlightSections(false);
    setStretchLastSection(true);
    setMinimumSectionSize(24);
    setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
}

void TTableHeader::SetSortMarks(std::vector<TSortMark> marks)
{
    FMarks = std::move(marks);
    viewport()->update();
}

QSize TTableHeader::sizeHint() const { return {QHeaderView::sizeHint().width(), RowHeight(30, HeaderFont(), 10)}; }

QSize TTableHeader::sectionSizeFromContents(int logicalIndex) const
{
    const QString text = model()->headerData(logicalIndex, Qt::Horizontal).toString();
    return {QFontMetrics(HeaderFont()).horizontalAdvance(text) + 2 * HeaderPadding + SortMarkWidth,
            sizeHint().height()};
}

int TTableHeader::CaptionWidth(int logicalIndex) const
{
    return sectionSizeFromContents(logicalIndex).width() - SortMarkWidth + 2;
}

void TTableHeader::paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const
{
    const TTheme& theme = CurrentTheme();
    painter->save();
    const bool over = rect.contains(mapFromGlobal(QCursor::pos())) && underMouse();
    painter->fillRect(rect, over ? theme.Hover : theme.Window);
    DrawHairline(*painter, rect, Qt::BottomEdge, theme.Line);
    painter->setFont(HeaderFont());
    painter->setPen(theme.Text2);
    const QString text = model()->headerData(logicalIndex, Qt::Horizontal).toString();
    const auto mark =
        std::find_if(FMarks.begin(), FMarks.end(), [&](const TSortMark& m) { return m.Column == logicalIndex; });
    const bool sorted = mark != FMarks.end();
    const QString order = sorted && FMarks.size() > 1 ? QString::number(mark - FMarks.begin() + 1) : QString();
    const QFontMetrics metrics(painter->font());
    const int markWidth = sorted ? 20 + (order.isEmpty() ? 0 : metrics.horizontalAdvance(order) + 3) : 0;
    const QRectF box = QRectF(rect).adjusted(HeaderPadding, 0, -HeaderPadding, 0);
    const qreal textWidth = std::min<qreal>(metrics.horizontalAdvance(text) + 1, box.width() - markWidth);
    const bool right = IsRightAligned(CellKindOf(*model(), logicalIndex)) != isRightToLeft();
    qreal x = right ? box.right() - textWidth - markWidth : box.left();
    DrawElided(*painter, QRectF(x, box.top(), textWidth, box.height()), text);
    x += textWidth + 5;
    if (sorted) {
        DrawIcon(*painter, QRectF(x, box.center().y() - 6, 13, 13), mark->Ascending ? u"sortasc"_s : u"sortdesc"_s,
                 theme.Text2);
        painter->drawText(QRectF(x + 16, box.top(), 20, box.height()), Qt::AlignLeft | Qt::AlignVCenter, order);
    }
    painter->restore();
}

TAlbumTable::TAlbumTable(TCoverCache* covers, QWidget* parent)
    : QTreeView(parent), FHeader(new TTableHeader(this)), FDelegate(new TCellDelegate(covers, this))
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
}

void TAlbumTable::setModel(QAbstractItemModel* model)
{
    QTreeView::setModel(model);
    if (!model)
        return;
    for (int column = 0; column < model->columnCount(); ++column)
        if (CellKindOf(*model, column) == ckCover)
            FHeader->resizeSection(column, FDelegate->RowHeightInDip() + 8);
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
        FShared.push_back({column, FHeader->sectionSize(column)});
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
    const int parts = static_cast<int>(FShared.size());
    FSharing = true;
    for (int i = 0; i < parts; ++i)
        FHeader->resizeSection(FShared[static_cast<size_t>(i)].Column,
                               FShared[static_cast<size_t>(i)].Least + spare * (i + 1) / parts - spare * i / parts);
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
    painter->fillRect(row, selected && !theme.IsHighContrast() ? theme.AccentSoft : hovered ? theme.Hover : theme.View);
    // Half the strength of a hairline: rows are read along, not boxed in.
    DrawHairline(*painter, row, Qt::BottomEdge, Mix(theme.View, theme.Line, 0.5));
    if (selected && theme.IsHighContrast())
        StrokeRounded(*painter, row, RadiusCover, theme.AccentFill, theme.SelectionRing());
    QTreeView::drawRow(painter, option, index);
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
    const bool onGroup = currentIndex().isValid() && model()->hasChildren(currentIndex());
    if (currentIndex().isValid() && !onGroup && (action == MoveLeft || action == MoveRight))
        return NeighbourColumn((action == MoveRight) != isRightToLeft() ? 1 : -1);
    return QTreeView::moveCursor(action, modifiers);
}

void TAlbumTable::keyboardSearch(const QString& search)
{
    // The view's own search would read every row of the model.
    const int row = FLocate ? FTyped.Add(search, currentIndex().row(), FLocate) : -1;
    if (row >= 0 && row < model()->rowCount())
        setCurrentIndex(model()->index(row, std::max(0, currentIndex().column())));
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
