// SPDX-License-Identifier: GPL-3.0-or-later
#include "uGroupPanel.h"

#include "uFilterBar.h"
#include "uRibbonButton.h"
#include "uTHStrings.h"
#include "uTheme.h"
#include "uThemePaint.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPainter>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

TRibbonButton* PanelButton(const QString& key, QWidget* parent)
{
    auto* button = new TRibbonButton(TRibbonButton::TShape::Flat, parent);
    button->setText(GetLanguageString(key));
    button->setFocusPolicy(Qt::TabFocus);
    return button;
}

} // namespace

TGroupPanel::TGroupPanel(QWidget* parent)
    : QWidget(parent),
      FRow(new QHBoxLayout(this)),
      FAdd(PanelButton(u"cSGuiGroupedBy"_s, this)),
      FPresets(PanelButton(u"cSGuiPresets"_s, this)),
      FExpand(PanelButton(u"cSGuiExpandAll"_s, this)),
      FCollapse(PanelButton(u"cSGuiCollapseAll"_s, this))
{
    FRow->setContentsMargins(8, 0, 8, 0);
    FRow->setSpacing(6);
    FRow->addWidget(FAdd);
    FRow->addStretch(1);
    for (TRibbonButton* button : {FPresets, FExpand, FCollapse})
        FRow->addWidget(button);
    for (TRibbonButton* button : {FAdd, FPresets})
        button->setPopupMode(QToolButton::InstantPopup);
    connect(FExpand, &QToolButton::clicked, this, [this] { Q_EMIT expandRequested(true); });
    connect(FCollapse, &QToolButton::clicked, this, [this] { Q_EMIT expandRequested(false); });
    setAccessibleName(GetLanguageString(u"cSGuiGroupedBy"_s));
    SetGroups({}, {});
}

void TGroupPanel::SetMenus(QMenu* groupBy, QMenu* presets)
{
    FAdd->setMenu(groupBy);
    FPresets->setMenu(presets);
}

void TGroupPanel::SetGroups(const QStringList& columns, const QStringList& captions)
{
    for (TChip* chip : std::as_const(FChips)) {
        chip->hide();
        chip->deleteLater(); // it may be the sender
    }
    FChips.clear();
    for (qsizetype i = 0; i < columns.size(); ++i) {
        auto* chip = new TChip({columns[i], {}, captions.value(i)}, this);
        connect(chip, &TChip::removeRequested, this, [this, column = columns[i]] { Q_EMIT removeRequested(column); });
        connect(chip, &TChip::moveRequested, this, [this, chip](int direction) { FocusNeighbour(chip, direction); });
        FRow->insertWidget(1 + static_cast<int>(i), chip);
        chip->show();
        FChips << chip;
    }
    FExpand->setEnabled(!columns.isEmpty());
    FCollapse->setEnabled(!columns.isEmpty());
    FHint = columns.isEmpty() ? GetLanguageString(u"cSGuiGroupHint"_s) : QString();
    update();
}

void TGroupPanel::FocusNeighbour(TChip* chip, int direction)
{
    const qsizetype next = FChips.indexOf(chip) + direction;
    if (next >= 0 && next < FChips.size())
        FChips[next]->setFocus(Qt::TabFocusReason);
}

QSize TGroupPanel::sizeHint() const { return {400, RowHeight(36, ThemeFont(fsBody), 12)}; }

void TGroupPanel::paintEvent(QPaintEvent*)
{
    const TTheme& theme = CurrentTheme();
    QPainter painter(this);
    painter.setLayoutDirection(layoutDirection());
    painter.fillRect(rect(), theme.Window);
    DrawHairline(painter, rect(), Qt::BottomEdge, theme.Line);
    if (FHint.isEmpty())
        return;
    painter.setFont(ThemeFont(fsBody));
    painter.setPen(theme.Text3);
    const QRect add = FAdd->geometry();
    const QRect room = isRightToLeft() ? QRect(FPresets->geometry().right() + 8, 0,
                                               add.left() - FPresets->geometry().right() - 16, height())
                                       : QRect(add.right() + 8, 0, FPresets->x() - add.right() - 16, height());
    DrawElided(painter, room, FHint);
}

} // namespace Kestrune
