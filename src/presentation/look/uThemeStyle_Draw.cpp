// SPDX-License-Identifier: GPL-3.0-or-later
#include "uIcons.h"
#include "uThemePaint.h"
#include "uThemeStyle.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QFocusFrame>
#include <QHeaderView>
#include <QLineEdit>
#include <QPainter>
#include <QPlainTextEdit>
#include <QStyleOption>
#include <QTabBar>
#include <QTextEdit>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

bool Has(const QStyleOption* option, QStyle::StateFlag flag) { return option->state.testFlag(flag); }

bool ShowsKeyboardFocus(const QStyleOption* option)
{
    return Has(option, QStyle::State_HasFocus) && Has(option, QStyle::State_KeyboardFocusChange);
}

QString ArrowIcon(QStyle::PrimitiveElement element)
{
    switch (element) {
    case QStyle::PE_IndicatorArrowUp:
    case QStyle::PE_IndicatorSpinUp: return u"cu"_s;
    case QStyle::PE_IndicatorArrowLeft: return u"cl"_s;
    case QStyle::PE_IndicatorArrowRight: return u"cr"_s;
    default: return u"cd"_s;
    }
}

} // namespace

void TThemeStyle::DrawButtonPanel(const QStyleOption* option, QPainter* painter) const
{
    const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
    const bool primary = button && button->features.testFlag(QStyleOptionButton::DefaultButton);
    const bool enabled = Has(option, State_Enabled);
    const bool over = enabled && Has(option, State_MouseOver);
    const bool down = Has(option, State_Sunken) || Has(option, State_On);
    const QRectF rect = option->rect;
    if (button && button->features.testFlag(QStyleOptionButton::Flat) && !over && !down)
        return;
    if (primary && enabled) {
        FillRounded(*painter, rect, RadiusControl, over || down ? FTheme.AccentHover : FTheme.AccentFill);
    } else {
        const QColor ground = down ? FTheme.AccentSoft : over ? FTheme.Hover : FTheme.Raised;
        FillRounded(*painter, rect, RadiusControl, enabled ? ground : Mix(FTheme.Window, FTheme.Raised, 0.5));
        StrokeRounded(*painter, rect, RadiusControl, FTheme.Line, 1);
    }
    if (ShowsKeyboardFocus(option)) {
        // On an accent ground the ring needs the other colour to be seen.
        const qreal inset = primary ? 2 : 0;
        const QColor ring = primary ? FTheme.OnAccent : FTheme.AccentFill;
        StrokeRounded(*painter, rect.adjusted(inset, inset, -inset, -inset), RadiusControl - inset, ring, 2);
    }
}

void TThemeStyle::DrawFieldPanel(const QStyleOption* option, QPainter* painter, bool focused) const
{
    const bool enabled = Has(option, State_Enabled);
    FillRounded(*painter, option->rect, RadiusControl, enabled ? FTheme.Raised : FTheme.Window);
    if (focused)
        StrokeRounded(*painter, option->rect, RadiusControl, FTheme.AccentFill, 2);
    else
        StrokeRounded(*painter, option->rect, RadiusControl, enabled ? FTheme.Outline : FTheme.Line, 1);
}

void TThemeStyle::DrawCheckBox(const QStyleOption* option, QPainter* painter) const
{
    const QRectF box = option->rect;
    const bool enabled = Has(option, State_Enabled);
    const bool set = Has(option, State_On) || Has(option, State_NoChange);
    if (set) {
        FillRounded(*painter, box, 4, enabled ? FTheme.AccentFill : FTheme.Disabled);
        const QColor mark = enabled ? FTheme.OnAccent : FTheme.Window;
        if (Has(option, State_NoChange))
            painter->fillRect(QRectF(box.left() + 4, box.center().y() - 1, box.width() - 8, 2), mark);
        else
            DrawIcon(*painter, box.adjusted(1, 1, -1, -1), u"check"_s, mark);
    } else {
        FillRounded(*painter, box, 4, Has(option, State_MouseOver) ? FTheme.Hover : FTheme.Raised);
        StrokeRounded(*painter, box, 4, enabled ? FTheme.Outline : FTheme.Line, 1);
    }
    if (ShowsKeyboardFocus(option))
        StrokeRounded(*painter, box.adjusted(-2, -2, 2, 2), 5, FTheme.AccentFill, 2);
}

void TThemeStyle::DrawRadioButton(const QStyleOption* option, QPainter* painter) const
{
    const QRectF box = option->rect;
    const bool enabled = Has(option, State_Enabled);
    FillRounded(*painter, box, 8, Has(option, State_MouseOver) ? FTheme.Hover : FTheme.Raised);
    if (Has(option, State_On)) {
        StrokeRounded(*painter, box, 8, enabled ? FTheme.AccentFill : FTheme.Disabled, 5);
    } else {
        StrokeRounded(*painter, box, 8, enabled ? FTheme.Outline : FTheme.Line, 1);
    }
    if (ShowsKeyboardFocus(option))
        StrokeRounded(*painter, box.adjusted(-2, -2, 2, 2), 10, FTheme.AccentFill, 2);
}

void TThemeStyle::DrawPushButtonLabel(const QStyleOption* option, QPainter* painter, const QWidget* widget) const
{
    const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
    if (!button)
        return;
    QStyleOptionButton label(*button);
    const bool primary = label.features.testFlag(QStyleOptionButton::DefaultButton) && Has(option, State_Enabled);
    if (primary) {
        label.palette.setColor(QPalette::ButtonText, FTheme.OnAccent);
        QFont font = painter->font();
        font.setWeight(QFont::DemiBold);
        painter->setFont(font);
    }
    QProxyStyle::drawControl(CE_PushButtonLabel, &label, painter, widget);
}

void TThemeStyle::DrawHeaderSection(const QStyleOption* option, QPainter* painter) const
{
    painter->fillRect(option->rect, Has(option, State_MouseOver) ? FTheme.Hover : FTheme.Window);
    DrawHairline(*painter, option->rect, Qt::BottomEdge, FTheme.Line);
}

void TThemeStyle::DrawMenuItem(const QStyleOption* option, QPainter* painter, const QWidget*) const
{
    const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    if (!item)
        return;
    painter->fillRect(item->rect, FTheme.Raised);
    if (item->menuItemType == QStyleOptionMenuItem::Separator) {
        painter->fillRect(
            QRectF(item->rect.left() + 8, item->rect.center().y(), item->rect.width() - 16, HairlineWidth(*painter)),
            FTheme.Line);
        return;
    }
    const bool enabled = Has(option, State_Enabled);
    const QRectF row = QRectF(item->rect).adjusted(4, 0, -4, 0);
    if (Has(option, State_Selected) && enabled) {
        FillRounded(*painter, row, RadiusControl, FTheme.IsHighContrast() ? FTheme.Raised : FTheme.AccentSoft);
        if (FTheme.IsHighContrast())
            StrokeRounded(*painter, row, RadiusControl, FTheme.AccentFill, 2);
    }
    const auto mirrored = [&](const QRectF& r) {
        return QRectF(visualRect(item->direction, item->rect, r.toAlignedRect()));
    };
    const QRectF iconRect = mirrored({row.left() + 8, row.center().y() - 8, 16, 16});
    if (item->checked)
        DrawIcon(*painter, iconRect, u"check"_s, enabled ? FTheme.AccentFill : FTheme.Disabled);
    else if (!item->icon.isNull())
        item->icon.paint(painter, iconRect.toRect(), Qt::AlignCenter, enabled ? QIcon::Normal : QIcon::Disabled);
    painter->setFont(item->font);
    painter->setPen(enabled ? FTheme.Text : FTheme.Disabled);
    const qsizetype tab = item->text.indexOf(u'\t');
    const QRectF textRect = mirrored(row.adjusted(34, 0, -14, 0));
    const auto flags = [&](Qt::Alignment alignment) {
        return static_cast<int>(visualAlignment(item->direction, alignment) | Qt::AlignVCenter) | Qt::TextSingleLine |
               Qt::TextShowMnemonic;
    };
    painter->drawText(textRect, flags(Qt::AlignLeft), tab < 0 ? item->text : item->text.left(tab));
    if (tab >= 0) {
        painter->setPen(enabled ? FTheme.Text3 : FTheme.Disabled);
        painter->drawText(textRect, flags(Qt::AlignRight), item->text.mid(tab + 1));
    }
    if (item->menuItemType == QStyleOptionMenuItem::SubMenu)
        DrawIcon(*painter, mirrored({row.right() - 20, row.center().y() - 7, 14, 14}),
                 item->direction == Qt::RightToLeft ? u"cl"_s : u"cr"_s, FTheme.Text2);
}

void TThemeStyle::DrawMenuBarItem(const QStyleOption* option, QPainter* painter) const
{
    const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    if (!item)
        return;
    painter->fillRect(item->rect, FTheme.Window);
    if (Has(option, State_Selected))
        FillRounded(*painter, QRectF(item->rect).adjusted(1, 2, -1, -2), RadiusControl, FTheme.Hover);
    painter->setPen(Has(option, State_Enabled) ? FTheme.Text : FTheme.Disabled);
    painter->drawText(item->rect, Qt::AlignCenter | Qt::TextShowMnemonic | Qt::TextSingleLine, item->text);
}

void TThemeStyle::DrawTabShape(const QStyleOption* option, QPainter* painter) const
{
    const QRectF rect = option->rect;
    if (Has(option, State_MouseOver) && !Has(option, State_Selected))
        FillRounded(*painter, rect.adjusted(2, 4, -2, -4), RadiusControl, FTheme.Hover);
    if (Has(option, State_Selected))
        FillRounded(*painter, QRectF(rect.left() + 8, rect.bottom() - 1.5, rect.width() - 16, 2), 1, FTheme.AccentFill);
    if (ShowsKeyboardFocus(option))
        DrawFocusRing(*painter, rect.adjusted(2, 4, -2, -4), RadiusControl, FTheme);
}

void TThemeStyle::DrawScrollBar(const QStyleOptionComplex* option, QPainter* painter, const QWidget* widget) const
{
    const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
    const QWidget* area = widget && widget->parentWidget() ? widget->parentWidget()->parentWidget() : nullptr;
    if (qobject_cast<const QAbstractItemView*>(area))
        painter->fillRect(option->rect, FTheme.View);
    if (!bar || bar->maximum <= bar->minimum)
        return;
    QRectF thumb = subControlRect(CC_ScrollBar, option, SC_ScrollBarSlider, widget);
    thumb = bar->orientation == Qt::Horizontal ? thumb.adjusted(2, 1, -2, -1) : thumb.adjusted(1, 2, -1, -2);
    QColor color = FTheme.Outline;
    const bool active = bar->activeSubControls.testFlag(SC_ScrollBarSlider) && Has(option, State_MouseOver);
    color.setAlphaF(active || Has(option, State_Sunken) || FTheme.IsHighContrast() ? 0.9f : 0.55f);
    FillRounded(*painter, thumb, 3, color);
}

void TThemeStyle::DrawComboBox(const QStyleOptionComplex* option, QPainter* painter, const QWidget* widget) const
{
    const auto* combo = qstyleoption_cast<const QStyleOptionComboBox*>(option);
    if (!combo)
        return;
    if (combo->frame)
        DrawFieldPanel(option, painter, Has(option, State_HasFocus));
    const QRect arrow = subControlRect(CC_ComboBox, option, SC_ComboBoxArrow, widget);
    DrawIcon(*painter, QRectF(arrow.center().x() - 7, arrow.center().y() - 6, 14, 14), u"cd"_s,
             Has(option, State_Enabled) ? FTheme.Text2 : FTheme.Disabled);
}

void TThemeStyle::DrawSlider(const QStyleOptionComplex* option, QPainter* painter) const
{
    const auto* slider = qstyleoption_cast<const QStyleOptionSlider*>(option);
    if (!slider)
        return;
    const bool horizontal = slider->orientation == Qt::Horizontal;
    const QRectF r = option->rect;
    const QRectF track = horizontal ? QRectF(r.left(), r.center().y() - 2, r.width(), 4)
                                    : QRectF(r.center().x() - 2, r.top(), 4, r.height());
    FillRounded(*painter, track, 2, FTheme.Track);
    const int length = static_cast<int>(horizontal ? track.width() : track.height());
    const int filled = sliderPositionFromValue(slider->minimum, slider->maximum, slider->sliderPosition, length);
    QRectF done = track;
    if (!horizontal)
        done.setTop(track.bottom() - filled);
    else if (option->direction == Qt::RightToLeft)
        done.setLeft(track.right() - filled);
    else
        done.setWidth(filled);
    FillRounded(*painter, done, 2, Has(option, State_Enabled) ? FTheme.AccentFill : FTheme.Disabled);
    if (ShowsKeyboardFocus(option))
        DrawFocusRing(*painter, r, RadiusControl, FTheme);
}

void TThemeStyle::DrawToolButton(const QStyleOptionComplex* option, QPainter* painter, const QWidget* widget) const
{
    const auto* button = qstyleoption_cast<const QStyleOptionToolButton*>(option);
    if (!button)
        return;
    const QRectF rect = option->rect;
    if (Has(option, State_On))
        FillRounded(*painter, rect, RadiusControl, FTheme.AccentSoft);
    else if (Has(option, State_Enabled) && (Has(option, State_MouseOver) || Has(option, State_Sunken)))
        FillRounded(*painter, rect, RadiusControl, FTheme.Hover);
    if (Has(option, State_On) && FTheme.IsHighContrast())
        StrokeRounded(*painter, rect, RadiusControl, FTheme.AccentFill, FTheme.SelectionRing());
    if (ShowsKeyboardFocus(option))
        DrawFocusRing(*painter, rect, RadiusControl, FTheme);
    QStyleOptionToolButton label(*button);
    label.state.setFlag(State_Raised, false);
    label.state.setFlag(State_Sunken, false);
    QProxyStyle::drawControl(CE_ToolButtonLabel, &label, painter, widget);
}

void TThemeStyle::DrawProgress(const QStyleOption* option, QPainter* painter) const
{
    const auto* progress = qstyleoption_cast<const QStyleOptionProgressBar*>(option);
    if (!progress)
        return;
    const QRectF r = option->rect;
    const qreal height = r.height() < 4 ? r.height() : 4;
    const QRectF track(r.left(), r.center().y() - height / 2, r.width(), height);
    FillRounded(*painter, track, height / 2, FTheme.Track);
    QRectF done = track;
    if (progress->maximum > progress->minimum) {
        const double share = double(progress->progress - progress->minimum) / (progress->maximum - progress->minimum);
        done.setWidth(track.width() * std::clamp(share, 0.0, 1.0));
    } else {
        done = QRectF(track.left() + track.width() * 0.35, track.top(), track.width() * 0.3, height);
    }
    if (option->direction == Qt::RightToLeft)
        done.moveRight(track.right() - (done.left() - track.left()));
    FillRounded(*painter, done, height / 2, FTheme.AccentFill);
}

void TThemeStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                const QWidget* widget) const
{
    switch (element) {
    case PE_PanelButtonCommand: return DrawButtonPanel(option, painter);
    case PE_FrameDefaultButton: return;
    case PE_PanelLineEdit:
        if (const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option); frame && frame->lineWidth > 0)
            DrawFieldPanel(option, painter, Has(option, State_HasFocus));
        return;
    case PE_FrameLineEdit: return;
    case PE_Frame:
        // A text of several lines has the edge of a field; its ground is the viewport's.
        if (const auto* area = qobject_cast<const QAbstractScrollArea*>(widget);
            area && (qobject_cast<const QPlainTextEdit*>(widget) || qobject_cast<const QTextEdit*>(widget)) &&
            area->frameShape() != QFrame::NoFrame) {
            const bool focused = area->hasFocus();
            return StrokeRounded(*painter, option->rect, RadiusControl, focused ? FTheme.AccentFill : FTheme.Outline,
                                 focused ? 2 : 1);
        }
        return QProxyStyle::drawPrimitive(element, option, painter, widget);
    case PE_IndicatorCheckBox:
    case PE_IndicatorItemViewItemCheck: return DrawCheckBox(option, painter);
    case PE_IndicatorRadioButton: return DrawRadioButton(option, painter);
    case PE_FrameFocusRect:
        if (Has(option, State_KeyboardFocusChange))
            DrawFocusRing(*painter, option->rect, RadiusCover, FTheme);
        return;
    case PE_PanelScrollAreaCorner: painter->fillRect(option->rect, FTheme.View); return;
    case PE_PanelMenu: painter->fillRect(option->rect, FTheme.Raised); return;
    case PE_FrameMenu: return StrokeRounded(*painter, option->rect, RadiusPopup, FTheme.Line, 1);
    case PE_PanelTipLabel: painter->fillRect(option->rect, FTheme.Text); return;
    case PE_FrameTabBarBase: return DrawHairline(*painter, option->rect, Qt::BottomEdge, FTheme.Line);
    case PE_FrameTabWidget: return DrawHairline(*painter, option->rect, Qt::TopEdge, FTheme.Line);
    case PE_IndicatorArrowDown:
    case PE_IndicatorArrowUp:
    case PE_IndicatorArrowLeft:
    case PE_IndicatorArrowRight:
    case PE_IndicatorSpinUp:
    case PE_IndicatorSpinDown:
        return DrawIcon(*painter, option->rect, ArrowIcon(element),
                        Has(option, State_Enabled) ? FTheme.Text2 : FTheme.Disabled);
    case PE_IndicatorTabClose: {
        const QRectF r = option->rect;
        if (Has(option, State_MouseOver))
            FillRounded(*painter, r, RadiusCover, FTheme.Hover);
        return DrawIcon(*painter, QRectF(r.center() - QPointF(6, 6), QSizeF(12, 12)), u"x"_s,
                        Has(option, State_MouseOver) ? FTheme.Text : FTheme.Text2);
    }
    case PE_IndicatorBranch:
        if (Has(option, State_Children))
            DrawIcon(*painter, QRectF(option->rect.center() - QPoint(7, 7), QSizeF(14, 14)),
                     Has(option, State_Open) ? u"cd"_s : u"cr"_s, FTheme.Text2);
        return;
    default: QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

void TThemeStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                              const QWidget* widget) const
{
    switch (element) {
    case CE_PushButtonBevel: return DrawButtonPanel(option, painter);
    case CE_PushButtonLabel: return DrawPushButtonLabel(option, painter, widget);
    case CE_HeaderSection:
    case CE_HeaderEmptyArea: return DrawHeaderSection(option, painter);
    case CE_MenuItem: return DrawMenuItem(option, painter, widget);
    case CE_MenuBarItem: return DrawMenuBarItem(option, painter);
    case CE_MenuBarEmptyArea: painter->fillRect(option->rect, FTheme.Window); return;
    case CE_TabBarTabShape: return DrawTabShape(option, painter);
    case CE_ProgressBarGroove: return;
    case CE_ProgressBarContents: return DrawProgress(option, painter);
    case CE_Splitter: {
        const QRectF r = option->rect;
        const qreal w = HairlineWidth(*painter);
        const bool vertical = Has(option, State_Horizontal);
        painter->fillRect(vertical ? QRectF(r.left() + 2, r.top(), w, r.height())
                                   : QRectF(r.left(), r.top() + 2, r.width(), w),
                          Has(option, State_MouseOver) ? FTheme.AccentFill : FTheme.Line);
        return;
    }
    default: QProxyStyle::drawControl(element, option, painter, widget);
    }
}

void TThemeStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                                     const QWidget* widget) const
{
    switch (control) {
    case CC_ScrollBar: return DrawScrollBar(option, painter, widget);
    case CC_ComboBox: return DrawComboBox(option, painter, widget);
    case CC_Slider: return DrawSlider(option, painter);
    case CC_ToolButton: return DrawToolButton(option, painter, widget);
    default: QProxyStyle::drawComplexControl(control, option, painter, widget);
    }
}

} // namespace Kestrune
