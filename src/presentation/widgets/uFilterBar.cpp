// SPDX-License-Identifier: GPL-3.0-or-later
#include "uFilterBar.h"

#include "uIcons.h"
#include "uRibbonButton.h"
#include "uSegments.h"
#include "uTHStrings.h"
#include "uTheme.h"
#include "uThemePaint.h"

#include <QFontMetrics>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int ChipHeight = 24;
constexpr int CrossSize = 18;
constexpr int ChipGap = 6;
constexpr int LongestChip = 320;

QFont ChipFont()
{
    QFont font = ThemeFont(fsBody);
    font.setPixelSize(std::max(9, font.pixelSize() - 1));
    return font;
}

} // namespace

TChip::TChip(TChipText chip, QWidget* parent) : QAbstractButton(parent), FChip(std::move(chip))
{
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setText(FChip.Field.isEmpty() ? FChip.Value : FChip.Field + u' ' + FChip.Value);
    setAccessibleName(GetLanguageString(u"cSGuiFilterChip"_s).arg(text()));
    setToolTip(text());
}

QSize TChip::sizeHint() const
{
    const QFontMetrics metrics(ChipFont());
    return {std::min(LongestChip, metrics.horizontalAdvance(text()) + 20 + CrossSize),
            RowHeight(ChipHeight, ChipFont(), 6)};
}

QRect TChip::CrossRect() const
{
    const QRect box(width() - CrossSize - 3, (height() - CrossSize) / 2, CrossSize, CrossSize);
    return isRightToLeft() ? QRect(3, box.top(), CrossSize, CrossSize) : box;
}

void TChip::paintEvent(QPaintEvent*)
{
    const TTheme& theme = CurrentTheme();
    QPainter painter(this);
    const qreal radius = height() / 2.0;
    FillRounded(painter, rect(), radius, theme.AccentSoft);
    if (theme.IsHighContrast())
        StrokeRounded(painter, rect(), radius, theme.Outline, 1);
    painter.setFont(ChipFont());
    const QFontMetrics metrics(painter.font());
    const int textWidth = width() - 18 - CrossSize;
    const int left = isRightToLeft() ? CrossSize + 8 : 10;
    const int field = FChip.Field.isEmpty() ? 0 : metrics.horizontalAdvance(FChip.Field + u' ');
    const QRectF all(left, 0, textWidth, height());
    painter.setPen(theme.Text2);
    const bool mirrored = isRightToLeft();
    const Qt::Alignment side = Qt::AlignLeft | Qt::AlignVCenter;
    DrawElided(painter, all, FChip.Field, side);
    painter.setPen(theme.Text);
    DrawElided(painter, mirrored ? all.adjusted(0, 0, -field, 0) : all.adjusted(field, 0, 0, 0), FChip.Value, side);
    DrawIcon(painter, QRectF(CrossRect()).adjusted(4, 4, -4, -4), u"x"_s, theme.Text2);
    if (hasFocus())
        DrawFocusRing(painter, rect(), radius, theme);
}

void TChip::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Delete:
    case Qt::Key_Backspace: Q_EMIT removeRequested(); return;
    case Qt::Key_Return:
    case Qt::Key_Enter: click(); return;
    case Qt::Key_Left: Q_EMIT moveRequested(isRightToLeft() ? 1 : -1); return;
    case Qt::Key_Right: Q_EMIT moveRequested(isRightToLeft() ? -1 : 1); return;
    default: QAbstractButton::keyPressEvent(event);
    }
}

void TChip::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && CrossRect().contains(event->position().toPoint())) {
        setDown(false);
        Q_EMIT removeRequested();
        return;
    }
    QAbstractButton::mouseReleaseEvent(event);
}

TChipRow::TChipRow(QWidget* parent)
    : QWidget(parent),
      FMore(new TRibbonButton(TRibbonButton::TShape::Link, this)),
      FClear(new TRibbonButton(TRibbonButton::TShape::Link, this))
{
    FClear->setText(GetLanguageString(u"cSGuiClearAll"_s));
    FClear->hide();
    FMore->hide();
    connect(FClear, &QToolButton::clicked, this, &TChipRow::clearRequested);
    connect(FMore, &QToolButton::clicked, this, &TChipRow::ShowOverflow);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void TChipRow::SetChips(const std::vector<TChipText>& chips)
{
    for (TChip* chip : std::as_const(FChips)) {
        chip->hide();
        chip->deleteLater(); // it may be the sender
    }
    FChips.clear();
    for (const TChipText& filter : chips) {
        auto* chip = new TChip(filter, this);
        const qsizetype place = FChips.size();
        const QString id = filter.Id;
        connect(chip, &TChip::clicked, this, [this, id] { Q_EMIT editRequested(id); });
        connect(chip, &TChip::removeRequested, this, [this, id] { Q_EMIT removeRequested(id); });
        connect(chip, &TChip::moveRequested, this, [this, place](int direction) { FocusNeighbour(place, direction); });
        FChips << chip;
    }
    FClear->setVisible(!FChips.isEmpty());
    Arrange();
    updateGeometry();
}

QSize TChipRow::sizeHint() const
{
    int width = FClear->sizeHint().width();
    for (const TChip* chip : FChips)
        width += chip->sizeHint().width() + ChipGap;
    return {width, RowHeight(26, ChipFont(), 6)};
}

void TChipRow::FocusNeighbour(qsizetype from, int direction)
{
    const qsizetype to = from + direction;
    if (to >= 0 && to < FChips.size() && FChips[to]->isVisible())
        FChips[to]->setFocus(Qt::TabFocusReason);
}

void TChipRow::ShowOverflow()
{
    QMenu menu(this);
    for (qsizetype i = FChips.size() - FHidden; i < FChips.size(); ++i) {
        const QString id = FChips[i]->Chip().Id;
        connect(menu.addAction(FChips[i]->text()), &QAction::triggered, this, [this, id] { Q_EMIT editRequested(id); });
    }
    menu.exec(FMore->mapToGlobal(QPoint(0, FMore->height())));
}

void TChipRow::Arrange()
{
    const int clear = FChips.isEmpty() ? 0 : FClear->sizeHint().width();
    const int moreWidth = QFontMetrics(ThemeFont(fsBody)).horizontalAdvance(u"+99"_s) + 14;
    int needed = clear;
    for (const TChip* chip : std::as_const(FChips))
        needed += chip->sizeHint().width() + ChipGap;
    FHidden = 0;
    for (qsizetype i = FChips.size(); needed > width() && i > 0; --i) {
        if (FHidden == 0)
            needed += moreWidth + ChipGap;
        needed -= FChips[i - 1]->sizeHint().width() + ChipGap;
        ++FHidden;
    }
    int x = 0;
    const auto place = [&](QWidget* child, int childWidth) {
        const int childHeight = std::min(height(), child->sizeHint().height());
        child->setGeometry(isRightToLeft() ? width() - x - childWidth : x, (height() - childHeight) / 2, childWidth,
                           childHeight);
        x += childWidth + ChipGap;
    };
    for (qsizetype i = 0; i < FChips.size(); ++i) {
        const bool shown = i < FChips.size() - FHidden;
        FChips[i]->setVisible(shown);
        if (shown)
            place(FChips[i], FChips[i]->sizeHint().width());
    }
    FMore->setVisible(FHidden > 0);
    if (FHidden > 0) {
        FMore->setText(u"+%1"_s.arg(FHidden));
        FMore->setAccessibleName(GetLanguageString(u"cSGuiMoreFilters"_s).arg(FHidden));
        place(FMore, moreWidth);
    }
    place(FClear, clear);
}

void TChipRow::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    Arrange();
}

TFilterBar::TFilterBar(QWidget* parent)
    : QWidget(parent),
      FStatus(new TRibbonButton(TRibbonButton::TShape::Bar, this)),
      FSaved(new TRibbonButton(TRibbonButton::TShape::Bar, this)),
      FChips(new TChipRow(this)),
      FSort(new TRibbonButton(TRibbonButton::TShape::Flat, this)),
      FSizes(new TSegments(this)),
      FViews(new TSegments(this))
{
    FStatus->setText(GetLanguageString(u"cSGuiStatus"_s));
    FStatus->SetIconName(u"filter"_s);
    FSaved->setText(GetLanguageString(u"cSGuiSaved"_s));
    FSaved->SetIconName(u"star"_s);
    FSaved->hide();
    FSort->hide();
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(10, 0, 10, 0);
    row->setSpacing(6);
    row->addWidget(FStatus);
    row->addWidget(FSaved);
    row->addWidget(FChips, 1);
    row->addWidget(FSort);
    row->addSpacing(4);
    row->addWidget(FSizes);
    row->addWidget(FViews);
    setFixedHeight(RowHeight(38, ThemeFont(fsBody), 16));
    connect(FSort, &QToolButton::clicked, this, &TFilterBar::sortClicked);
}

void TFilterBar::SetStatusMenu(QMenu* menu) { FStatus->setMenu(menu); }

void TFilterBar::SetSavedMenu(QMenu* menu)
{
    FSaved->setMenu(menu);
    FSaved->setVisible(menu != nullptr);
}

void TFilterBar::SetSort(const QString& caption, bool ascending, QMenu* menu)
{
    FSort->setText(caption);
    FSort->setAccessibleName(GetLanguageString(u"cSGuiSortedBy"_s).arg(caption));
    FSort->SetIconName(ascending ? u"sortasc"_s : u"sortdesc"_s);
    FSort->setMenu(menu);
    FSort->setVisible(!caption.isEmpty());
}

void TFilterBar::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), CurrentTheme().Window);
    DrawHairline(painter, rect(), Qt::BottomEdge, CurrentTheme().Line);
}

} // namespace Kestrune
