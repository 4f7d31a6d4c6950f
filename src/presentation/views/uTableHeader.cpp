// SPDX-License-Identifier: GPL-3.0-or-later
#include "uTableHeader.h"

#include "uCellDelegate.h"
#include "uFilterCell.h"
#include "uIcons.h"
#include "uReleaseRoles.h"
#include "uTHStrings.h"
#include "uTheme.h"
#include "uThemePaint.h"

#include <QAccessible>
#include <QMouseEvent>
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
    connect(this, &QHeaderView::sectionResized, this, &TTableHeader::PlaceFilters);
    connect(this, &QHeaderView::sectionMoved, this, &TTableHeader::PlaceFilters);
    connect(this, &QHeaderView::sectionCountChanged, this, [this] {
        for (const auto& [column, cell] : FCells)
            cell->deleteLater();
        FCells.clear();
        PlaceFilters();
    });
}

void TTableHeader::SetSortMarks(std::vector<TSortMark> marks)
{
    FMarks = std::move(marks);
    viewport()->update();
}

int TTableHeader::HeadingHeight() const { return RowHeight(30, HeaderFont(), 10); }

int TTableHeader::FilterHeight() const { return FFilterRow ? RowHeight(32, ThemeFont(fsBody), 12) : 0; }

QSize TTableHeader::sizeHint() const { return {QHeaderView::sizeHint().width(), HeadingHeight() + FilterHeight()}; }

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

void TTableHeader::paintEvent(QPaintEvent* event)
{
    QPainter painter(viewport());
    painter.fillRect(event->rect(), CurrentTheme().Window);
    DrawHairline(painter, viewport()->rect(), Qt::BottomEdge, CurrentTheme().Line);
    painter.end();
    QHeaderView::paintEvent(event);
}

void TTableHeader::paintSection(QPainter* painter, const QRect& section, int logicalIndex) const
{
    const TTheme& theme = CurrentTheme();
    const QRect rect(section.left(), section.top(), section.width(), HeadingHeight());
    painter->save();
    const bool over = rect.contains(mapFromGlobal(QCursor::pos())) && underMouse();
    painter->fillRect(section, theme.Window);
    if (over)
        painter->fillRect(rect, theme.Hover);
    DrawHairline(*painter, section, Qt::BottomEdge, theme.Line);
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

void TTableHeader::ShowFilterRow(bool show)
{
    FFilterRow = show;
    if (!show) {
        for (const auto& [column, cell] : FCells)
            cell->deleteLater();
        FCells.clear();
    }
    Q_EMIT geometriesChanged();
    PlaceFilters();
    viewport()->update();
}

void TTableHeader::PlaceFilters()
{
    if (!FFilterRow || !model())
        return;
    const int top = HeadingHeight() + (FilterHeight() - 24) / 2;
    for (int column = 0; column < count(); ++column) {
        const int left = sectionViewportPosition(column);
        const int width = isSectionHidden(column) ? 0 : sectionSize(column);
        const bool shown =
            width > 30 && left + width > 0 && left < viewport()->width() && CellKindOf(*model(), column) != ckCover;
        auto cell = FCells.find(column);
        if (!shown) {
            if (cell != FCells.end())
                cell->second->hide();
            continue;
        }
        if (cell == FCells.end()) {
            auto* made = new TFilterCell(viewport());
            made->setAccessibleName(GetLanguageString(u"cSGuiFilterOf"_s)
                                        .arg(model()->headerData(column, Qt::Horizontal, FullCaptionRole).toString()));
            if (FilterChoicesOf)
                made->SetChoices(FilterChoicesOf(column));
            if (FilterTextOf)
                made->SetFilter(FilterTextOf(column));
            connect(made, &TFilterCell::filterChanged, this,
                    [this, column](const QString& text) { Q_EMIT filterChanged(column, text); });
            connect(made, &TFilterCell::leaveRequested, this, &TTableHeader::leaveRequested);
            cell = FCells.emplace(column, made).first;
        }
        cell->second->setGeometry(left + 2, top, width - 4, RowHeight(24, ThemeFont(fsBody), 6));
        cell->second->show();
    }
}

void TTableHeader::RefreshFilters()
{
    for (const auto& [column, cell] : FCells)
        if (FilterTextOf && !cell->IsWrong())
            cell->SetFilter(FilterTextOf(column));
}

void TTableHeader::MarkFilter(int column, bool wrong)
{
    if (TFilterCell* cell = FilterCell(column))
        cell->SetWrong(wrong);
}

TFilterCell* TTableHeader::FilterCell(int column) const
{
    const auto cell = FCells.find(column);
    return cell == FCells.end() || cell->second->isHidden() ? nullptr : cell->second;
}

void TTableHeader::FocusFilter(int column)
{
    TFilterCell* cell = FilterCell(column);
    for (int visual = 0; !cell && visual < count(); ++visual)
        cell = FilterCell(logicalIndex(visual));
    if (cell)
        cell->setFocus(Qt::ShortcutFocusReason);
}

void TTableHeader::updateGeometries()
{
    QHeaderView::updateGeometries();
    PlaceFilters();
}

void TTableHeader::mousePressEvent(QMouseEvent* event)
{
    FPressed = event->position().y() < HeadingHeight() ? logicalIndexAt(event->position().toPoint()) : -1;
    FPressedVisual = FPressed < 0 ? -1 : visualIndex(FPressed);
    QHeaderView::mousePressEvent(event);
}

void TTableHeader::mouseReleaseEvent(QMouseEvent* event)
{
    // A heading that is pulled up out of the row groups by its column and stays where it was.
    const bool above = FPressed >= 0 && event->position().y() < -4;
    QHeaderView::mouseReleaseEvent(event);
    if (above) {
        if (visualIndex(FPressed) != FPressedVisual)
            moveSection(visualIndex(FPressed), FPressedVisual);
        Q_EMIT groupRequested(FPressed);
    }
    FPressed = -1;
}

} // namespace Kestrune
