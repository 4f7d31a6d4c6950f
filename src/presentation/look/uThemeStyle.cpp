// SPDX-License-Identifier: GPL-3.0-or-later
#include "uThemeStyle.h"

#include "uIcons.h"
#include "uThemePaint.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QPainterPath>
#include <QPushButton>
#include <QScrollBar>
#include <QStyleOption>
#include <QTabBar>
#include <QToolButton>
#include <QToolTip>
#include <QWidget>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

bool WantsHover(const QWidget* widget)
{
    return qobject_cast<const QAbstractButton*>(widget) || qobject_cast<const QComboBox*>(widget) ||
           qobject_cast<const QScrollBar*>(widget) || qobject_cast<const QTabBar*>(widget);
}

// Enter presses the button that has the keyboard and not, as the toolkit has it, the default one of its dialog.
bool PressByEnter(QObject* watched, const QKeyEvent& event)
{
    const bool enter = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
    auto* button = qobject_cast<QAbstractButton*>(watched);
    if (!enter || !button)
        return false;
    auto* tool = qobject_cast<QToolButton*>(button);
    if (tool && tool->menu() && tool->popupMode() == QToolButton::InstantPopup)
        tool->showMenu();
    else
        button->click();
    return true;
}

// A mask rounds the corners whether or not the screen has a compositor.
void RoundMenuCorners(QWidget* menu)
{
    QPainterPath path;
    path.addRoundedRect(QRectF(menu->rect()), RadiusPopup, RadiusPopup);
    menu->setMask(QRegion(path.toFillPolygon().toPolygon()));
}

} // namespace

TThemeStyle::TThemeStyle(const TTheme& theme) : QProxyStyle(u"Fusion"_s), FTheme(theme) {}

TThemeStyle::~TThemeStyle() { Leave(); }

void TThemeStyle::Leave()
{
    if (&CurrentTheme() == &FTheme)
        SetCurrentTheme(nullptr);
}

void TThemeStyle::polish(QApplication* application)
{
    SetCurrentTheme(&FTheme);
    QProxyStyle::polish(application);
}

void TThemeStyle::unpolish(QApplication* application)
{
    Leave();
    QProxyStyle::unpolish(application);
}

void TThemeStyle::SetTheme(const TTheme& theme)
{
    FTheme = theme;
    const QPalette palette = MakePalette(theme);
    QApplication::setPalette(palette);
    QToolTip::setPalette(palette);
    const auto widgets = QApplication::allWidgets();
    for (QWidget* widget : widgets)
        widget->update();
}

QPalette TThemeStyle::standardPalette() const { return MakePalette(FTheme); }

void TThemeStyle::polish(QWidget* widget)
{
    QProxyStyle::polish(widget);
    if (WantsHover(widget))
        widget->setAttribute(Qt::WA_Hover);
    if (qobject_cast<QMenu*>(widget) || qobject_cast<QPushButton*>(widget) || qobject_cast<QToolButton*>(widget))
        widget->installEventFilter(this);
}

void TThemeStyle::unpolish(QWidget* widget)
{
    widget->removeEventFilter(this);
    QProxyStyle::unpolish(widget);
}

bool TThemeStyle::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Resize)
        if (auto* menu = qobject_cast<QMenu*>(watched))
            RoundMenuCorners(menu);
    if (event->type() == QEvent::KeyPress && PressByEnter(watched, *static_cast<QKeyEvent*>(event)))
        return true;
    return QProxyStyle::eventFilter(watched, event);
}

int TThemeStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const
{
    switch (metric) {
    case PM_ScrollBarExtent: return 8;
    case PM_ScrollBarSliderMin: return 32;
    case PM_SplitterWidth: return 5;
    case PM_IndicatorWidth:
    case PM_IndicatorHeight:
    case PM_ExclusiveIndicatorWidth:
    case PM_ExclusiveIndicatorHeight: return 16;
    case PM_CheckBoxLabelSpacing:
    case PM_RadioButtonLabelSpacing: return 8;
    case PM_SmallIconSize:
    case PM_ButtonIconSize: return 16;
    case PM_MenuPanelWidth: return 1;
    case PM_MenuHMargin:
    case PM_MenuVMargin: return 4;
    case PM_ButtonShiftHorizontal:
    case PM_ButtonShiftVertical:
    case PM_TabBarTabShiftVertical:
    case PM_TabBarTabShiftHorizontal: return 0;
    case PM_TabBarTabHSpace: return 24;
    case PM_TabBarTabVSpace: return 14;
    case PM_SliderThickness:
    case PM_SliderLength: return 16;
    case PM_HeaderMargin: return 8;
    case PM_HeaderMarkSize: return 12;
    default: return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int TThemeStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                           QStyleHintReturn* returnData) const
{
    switch (hint) {
    case SH_Widget_Animation_Duration:
        return FReducedMotion ? 0 : QProxyStyle::styleHint(hint, option, widget, returnData);
    case SH_ScrollBar_LeftClickAbsolutePosition: return 0;
    case SH_EtchDisabledText:
    case SH_DitherDisabledText: return 0;
    case SH_ComboBox_Popup: return 0;
    case SH_Menu_SupportsSections: return 1;
    case SH_Slider_AbsoluteSetButtons: return Qt::LeftButton;
    case SH_TabBar_PreferNoArrows: return 0;
    case SH_ToolTip_WakeUpDelay: return 500;
    default: return QProxyStyle::styleHint(hint, option, widget, returnData);
    }
}

QSize TThemeStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                                    const QWidget* widget) const
{
    QSize result = QProxyStyle::sizeFromContents(type, option, size, widget);
    switch (type) {
    case CT_PushButton: {
        const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
        const int icon = button && !button->icon.isNull() ? 24 : 0;
        const int text = button ? button->fontMetrics.horizontalAdvance(button->text) : size.width();
        return {std::max(72, text + icon + 32), std::max(30, size.height() + 10)};
    }
    case CT_LineEdit:
    case CT_ComboBox: result = QSize(size.width() + 44, std::max(30, size.height() + 8)); break;
    case CT_SpinBox: result = QSize(size.width() + 44, std::max(30, size.height() + 8)); break;
    case CT_MenuItem:
        if (const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
            item && item->menuItemType != QStyleOptionMenuItem::Separator)
            result = QSize(size.width() + 76, std::max(28, size.height() + 8));
        else
            result.setHeight(9);
        break;
    case CT_MenuBarItem: result = QSize(size.width() + 16, std::max(28, size.height() + 8)); break;
    case CT_ItemViewItem: result.setHeight(std::max(28, result.height() + 4)); break;
    default: break;
    }
    return result;
}

QRect TThemeStyle::subElementRect(SubElement element, const QStyleOption* option, const QWidget* widget) const
{
    if (element == SE_LineEditContents)
        return option->rect.adjusted(8, 1, -8, -1);
    return QProxyStyle::subElementRect(element, option, widget);
}

QRect TThemeStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl subControl,
                                  const QWidget* widget) const
{
    if (control == CC_ScrollBar) {
        const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
        if (!bar)
            return {};
        const bool horizontal = bar->orientation == Qt::Horizontal;
        const int length = horizontal ? bar->rect.width() : bar->rect.height();
        const qint64 range = qint64(bar->maximum) - bar->minimum;
        int thumb = length;
        if (range > 0)
            thumb = std::clamp(static_cast<int>(qint64(length) * bar->pageStep / (range + bar->pageStep)),
                               std::min(32, length), length);
        const int start =
            sliderPositionFromValue(bar->minimum, bar->maximum, bar->sliderPosition, length - thumb, bar->upsideDown);
        const auto piece = [&](int from, int size) {
            return horizontal ? visualRect(bar->direction, bar->rect, QRect(from, 0, size, bar->rect.height()))
                              : QRect(0, from, bar->rect.width(), size);
        };
        switch (subControl) {
        case SC_ScrollBarGroove: return bar->rect;
        case SC_ScrollBarSlider: return piece(start, thumb);
        case SC_ScrollBarSubPage: return piece(0, start);
        case SC_ScrollBarAddPage: return piece(start + thumb, length - start - thumb);
        default: return {};
        }
    }
    if (control == CC_ComboBox && subControl == SC_ComboBoxEditField)
        return visualRect(option->direction, option->rect, option->rect.adjusted(8, 1, -28, -1));
    if (control == CC_ComboBox && subControl == SC_ComboBoxArrow)
        return visualRect(option->direction, option->rect,
                          QRect(option->rect.right() - 27, option->rect.top(), 28, option->rect.height()));
    return QProxyStyle::subControlRect(control, option, subControl, widget);
}

QIcon TThemeStyle::standardIcon(StandardPixmap standard, const QStyleOption* option, const QWidget* widget) const
{
    switch (standard) {
    case SP_MessageBoxInformation: return ThemeIcon(u"help"_s, icAccent);
    case SP_MessageBoxQuestion: return ThemeIcon(u"help"_s, icAccent);
    case SP_MessageBoxWarning: return ThemeIcon(u"warn"_s, icWarn);
    case SP_MessageBoxCritical: return ThemeIcon(u"err"_s, icError);
    case SP_LineEditClearButton: return ThemeIcon(u"x"_s);
    default: return QProxyStyle::standardIcon(standard, option, widget);
    }
}

} // namespace Kestrune
