// SPDX-License-Identifier: GPL-3.0-or-later
#include "uIcons.h"
#include "uRibbon.h"
#include "uRibbonButton.h"
#include "uTHStrings.h"
#include "uTheme.h"
#include "uThemePaint.h"

#include <QAction>
#include <QEvent>
#include <QMenu>
#include <QPainter>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int PanelMargin = 10;
constexpr int GroupGap = 17; // with the hairline in its middle

} // namespace

std::size_t GroupsToCollapse(const std::vector<std::pair<int, int>>& widths, int available)
{
    int total = 0;
    for (const auto& [full, collapsed] : widths)
        total += full;
    std::size_t count = 0;
    while (total > available && count < widths.size()) {
        const auto& [full, collapsed] = widths[widths.size() - 1 - count];
        total += collapsed - full;
        ++count;
    }
    return count;
}

TRibbonPanel::TRibbonPanel(QWidget* parent) : QWidget(parent)
{
    setAccessibleName(GetLanguageString(u"cSGuiRibbon"_s));
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

QSize TRibbonPanel::sizeHint() const { return {600, std::max(70, 44 + LineHeight(ThemeFont(fsBody)) + 8)}; }

QMenu* TRibbonPanel::MakeMenu(const QStringList& actions, const TActionFinder& finder, QWidget* parent)
{
    auto* menu = new QMenu(parent);
    for (const QString& name : actions)
        if (QAction* action = finder(name); action && action->isVisible())
            menu->addAction(action);
    return menu;
}

TRibbonButton* TRibbonPanel::MakeButton(const TRibbonItem& item, const TActionFinder& finder)
{
    QAction* action = item.Action.isEmpty() ? nullptr : finder(item.Action);
    if (action)
        connect(action, &QAction::visibleChanged, this, &TRibbonPanel::actionsChanged, Qt::QueuedConnection);
    if (!item.Action.isEmpty() && (!action || !action->isVisible()))
        return nullptr;
    auto* button =
        new TRibbonButton(item.Kind == rkSmall ? TRibbonButton::TShape::Small : TRibbonButton::TShape::Large, this);
    if (action) {
        button->SetAction(action);
        // An action that carries its own menu (statuses, saved filters, sizes) opens it.
        if (action->menu())
            button->setMenu(action->menu());
    } else {
        button->setText(GetLanguageString(item.CaptionKey));
        button->SetIconName(item.Icon);
    }
    if (!item.Menu.isEmpty()) {
        QMenu* menu = MakeMenu(item.Menu, finder, button);
        if (menu->isEmpty() && !action) {
            delete button;
            return nullptr;
        }
        if (!menu->isEmpty()) {
            button->setMenu(menu);
            button->setPopupMode(item.Kind == rkSplit ? QToolButton::MenuButtonPopup : QToolButton::InstantPopup);
        }
    }
    return button;
}

TRibbonButton* TRibbonPanel::MakeCollapsed(const TRibbonGroup& group, const TActionFinder& finder)
{
    auto* button = new TRibbonButton(TRibbonButton::TShape::Large, this);
    button->setText(GetLanguageString(group.CaptionKey));
    button->SetIconName(group.Icon);
    QStringList names;
    for (const TRibbonItem& item : group.Items)
        names << (item.Action.isEmpty() ? item.Menu : QStringList(item.Action));
    button->setMenu(MakeMenu(names, finder, button));
    button->hide();
    return button;
}

void TRibbonPanel::ShowTab(const TRibbonTab& tab, const TActionFinder& finder)
{
    // A button may be the sender of the signal that led here: it goes once the event is done.
    for (const TGroupWidgets& group : FGroups) {
        for (TRibbonButton* button : group.Buttons) {
            button->hide();
            button->deleteLater();
        }
        group.Collapsed->hide();
        group.Collapsed->deleteLater();
    }
    FGroups.clear();
    for (const TRibbonGroup& group : tab.Groups) {
        TGroupWidgets made;
        for (const TRibbonItem& item : group.Items)
            if (TRibbonButton* button = MakeButton(item, finder)) {
                if (button->toolTip().isEmpty())
                    button->setToolTip(GetLanguageString(group.CaptionKey));
                made.Buttons << button;
            }
        if (made.Buttons.isEmpty())
            continue;
        made.Collapsed = MakeCollapsed(group, finder);
        FGroups.push_back(std::move(made));
    }
    Arrange();
}

QList<TRibbonButton*> TRibbonPanel::Buttons() const
{
    QList<TRibbonButton*> buttons;
    for (std::size_t i = 0; i < FGroups.size(); ++i) {
        if (i + FCollapsed >= FGroups.size())
            buttons << FGroups[i].Collapsed;
        else
            buttons << FGroups[i].Buttons;
    }
    return buttons;
}

// Large buttons stand side by side; small ones fill columns of two, each as wide as its wider one. Returns the width.
int TRibbonPanel::PlaceGroup(TGroupWidgets& group, int left, bool collapsed, bool apply)
{
    const auto place = [&](TRibbonButton* button, int x, int y, int width, int height) {
        if (!apply)
            return;
        button->setGeometry(isRightToLeft() ? this->width() - x - width : x, y, width, height);
    };
    if (apply) {
        for (TRibbonButton* button : std::as_const(group.Buttons))
            button->setVisible(!collapsed);
        group.Collapsed->setVisible(collapsed);
    }
    const int top = 1;
    const int inner = height() - 9;
    if (collapsed) {
        const int width = group.Collapsed->sizeHint().width();
        place(group.Collapsed, left, top, width, inner);
        return width;
    }
    int x = left;
    QList<TRibbonButton*> column;
    const auto closeColumn = [&] {
        int width = 0;
        for (const TRibbonButton* button : std::as_const(column))
            width = std::max(width, button->sizeHint().width());
        const int rowHeight = inner / 2;
        for (qsizetype row = 0; row < column.size(); ++row)
            place(column[row], x, top + static_cast<int>(row) * rowHeight + (column.size() == 1 ? rowHeight / 2 : 0),
                  width, rowHeight - 1);
        x += column.isEmpty() ? 0 : width + 2;
        column.clear();
    };
    for (TRibbonButton* button : std::as_const(group.Buttons)) {
        if (button->Shape() == TRibbonButton::TShape::Large) {
            closeColumn();
            const int width = button->sizeHint().width();
            place(button, x, top, width, inner);
            x += width + 2;
            continue;
        }
        column << button;
        if (column.size() == 2)
            closeColumn();
    }
    closeColumn();
    return x - left - 2;
}

void TRibbonPanel::Arrange()
{
    std::vector<std::pair<int, int>> widths;
    for (TGroupWidgets& group : FGroups)
        widths.emplace_back(PlaceGroup(group, 0, false, false) + GroupGap,
                            PlaceGroup(group, 0, true, false) + GroupGap);
    FCollapsed = GroupsToCollapse(widths, width() - 2 * PanelMargin + GroupGap);
    FSplits.clear();
    int x = PanelMargin;
    for (std::size_t i = 0; i < FGroups.size(); ++i) {
        x += PlaceGroup(FGroups[i], x, i + FCollapsed >= FGroups.size(), true);
        if (i + 1 < FGroups.size())
            FSplits << x + GroupGap / 2;
        x += GroupGap;
    }
    update();
}

void TRibbonPanel::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    Arrange();
}

void TRibbonPanel::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::LayoutDirectionChange || event->type() == QEvent::FontChange)
        Arrange();
}

void TRibbonPanel::paintEvent(QPaintEvent*)
{
    const TTheme& theme = CurrentTheme();
    QPainter painter(this);
    painter.fillRect(rect(), theme.Window);
    for (const int x : std::as_const(FSplits)) {
        const int at = isRightToLeft() ? width() - x : x;
        DrawHairline(painter, QRectF(at, 3, 1, height() - 11), Qt::LeftEdge, theme.Line);
    }
    DrawHairline(painter, rect(), Qt::BottomEdge, theme.Line);
}

} // namespace Kestrune
