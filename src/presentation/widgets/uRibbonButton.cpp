// SPDX-License-Identifier: GPL-3.0-or-later
#include "uRibbonButton.h"

#include "uIcons.h"
#include "uTheme.h"
#include "uThemePaint.h"

#include <QAction>
#include <QActionEvent>
#include <QFontMetrics>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QStyleOptionToolButton>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int ArrowWidth = 14;

int TextWidth(const QFont& font, const QString& text) { return QFontMetrics(font).horizontalAdvance(text); }

QFont FontFor(TRibbonButton::TShape shape)
{
    return ThemeFont(shape == TRibbonButton::TShape::Primary ? fsBodyBold : fsBody);
}

// A caption of the ribbon is a point smaller than the text of the rows.
QFont CaptionFont()
{
    QFont font = ThemeFont(fsBody);
    font.setPixelSize(std::max(9, font.pixelSize() - 1));
    return font;
}

} // namespace

QString IconNameOf(const QAction& action) { return action.property("iconName").toString(); }

void SetActionIcon(QAction& action, const QString& iconName)
{
    action.setProperty("iconName", iconName);
    action.setIcon(ThemeIcon(iconName));
}

TRibbonButton::TRibbonButton(TShape shape, QWidget* parent) : QToolButton(parent), FShape(shape)
{
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setPopupMode(InstantPopup);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void TRibbonButton::SetAction(QAction* action)
{
    setDefaultAction(action);
    FIconName = IconNameOf(*action);
    setAccessibleName(action->text().section(u'\t', 0, 0).remove(u'&'));
    updateGeometry();
    update();
}

void TRibbonButton::SetIconName(const QString& name)
{
    FIconName = name;
    updateGeometry();
    update();
}

void TRibbonButton::SetShape(TShape shape)
{
    FShape = shape;
    updateGeometry();
    update();
}

QString TRibbonButton::Caption() const
{
    const QString caption = defaultAction() ? defaultAction()->iconText() : text();
    return QString(caption).remove(u'&');
}

bool TRibbonButton::ShowsArrow() const { return menu() && FShape != TShape::Icon && FShape != TShape::Link; }

QSize TRibbonButton::sizeHint() const
{
    const int arrow = ShowsArrow() ? ArrowWidth : 0;
    switch (FShape) {
    case TShape::Large: {
        const int width = TextWidth(CaptionFont(), Caption()) + arrow + 14;
        return {std::max(58, width), std::max(60, 36 + LineHeight(CaptionFont()) + 6)};
    }
    case TShape::Icon: return {28, 26};
    case TShape::Link: return {TextWidth(FontFor(FShape), Caption()) + 12, 26};
    default: break;
    }
    const QFont font = FShape == TShape::Small ? CaptionFont() : FontFor(FShape);
    const int icon = FIconName.isEmpty() ? 0 : 23;
    const int padding = FShape == TShape::Small ? 16 : 22;
    const int height = FShape == TShape::Small ? 29 : 26;
    return {TextWidth(font, Caption()) + icon + padding + (arrow ? arrow + 6 : 0), RowHeight(height, font, 8)};
}

QColor TRibbonButton::TextColor() const
{
    const TTheme& theme = CurrentTheme();
    if (!isEnabled())
        return theme.Disabled;
    if (FShape == TShape::Primary)
        return theme.OnAccent;
    if (FShape == TShape::Link)
        return theme.AccentFill;
    return FShape == TShape::Flat ? theme.Text2 : theme.Text;
}

QColor TRibbonButton::IconColor() const
{
    const TTheme& theme = CurrentTheme();
    QColor color = FShape == TShape::Primary                ? theme.OnAccent
                   : FShape == TShape::Large || isChecked() ? theme.AccentFill
                   : FShape == TShape::Bar                  ? theme.Text
                                                            : theme.Text2;
    if (!isEnabled())
        color.setAlphaF(DisabledOpacity);
    return color;
}

void TRibbonButton::PaintGround(QPainter& painter, bool over) const
{
    const TTheme& theme = CurrentTheme();
    const QRectF ground = rect();
    if (FShape == TShape::Primary) {
        FillRounded(painter, ground, RadiusControl, over || isDown() ? theme.AccentHover : theme.AccentFill);
    } else if (FShape == TShape::Bar) {
        FillRounded(painter, ground, RadiusControl, over ? theme.Hover : theme.Raised);
        StrokeRounded(painter, ground, RadiusControl, theme.Line, 1);
    } else if (isChecked()) {
        FillRounded(painter, ground, RadiusControl, theme.AccentSoft);
        if (theme.IsHighContrast())
            StrokeRounded(painter, ground, RadiusControl, theme.AccentFill, theme.SelectionRing());
    } else if (over || isDown()) {
        FillRounded(painter, ground, RadiusControl, theme.Hover);
    }
}

void TRibbonButton::PaintLarge(QPainter& painter) const
{
    const QFont font = CaptionFont();
    const int arrow = ShowsArrow() ? ArrowWidth : 0;
    DrawIcon(painter, QRectF(width() / 2.0 - 13, 5, 26, 26), FIconName, IconColor());
    painter.setFont(font);
    painter.setPen(TextColor());
    const int textWidth = TextWidth(font, Caption());
    const qreal left = (width() - textWidth - arrow) / 2.0;
    const QRectF line(left, 34, textWidth + 1, LineHeight(font));
    painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, Caption());
    if (arrow)
        DrawIcon(painter, QRectF(line.right() + 2, line.center().y() - 5, 12, 12), u"cd"_s, IconColor());
}

void TRibbonButton::PaintRow(QPainter& painter) const
{
    const bool mirrored = isRightToLeft();
    const auto place = [&](const QRectF& r) {
        return mirrored ? QRectF(width() - r.right(), r.top(), r.width(), r.height()) : r;
    };
    qreal x = FShape == TShape::Link ? 6 : FShape == TShape::Small ? 8 : 11;
    const qreal middle = height() / 2.0;
    if (FShape == TShape::Icon) {
        DrawIcon(painter, QRectF(width() / 2.0 - 8, middle - 8, 16, 16), FIconName, IconColor());
        return;
    }
    if (!FIconName.isEmpty()) {
        DrawIcon(painter, place({x, middle - 8, 16, 16}), FIconName, IconColor());
        x += 23;
    }
    painter.setFont(FShape == TShape::Small ? CaptionFont() : FontFor(FShape));
    painter.setPen(TextColor());
    const qreal right = width() - (ShowsArrow() ? ArrowWidth + 12 : 4);
    const Qt::Alignment side = Qt::AlignLeft;
    painter.drawText(place({x, 0, right - x, qreal(height())}),
                     static_cast<int>(side | Qt::AlignVCenter) | Qt::TextSingleLine, Caption());
    if (ShowsArrow())
        DrawIcon(painter, place({width() - ArrowWidth - 9.0, middle - 6, 13, 13}), u"cd"_s,
                 FShape == TShape::Primary ? IconColor()
                 : isEnabled()             ? CurrentTheme().Text2
                                           : IconColor());
}

void TRibbonButton::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const bool over = isEnabled() && (underMouse() || (menu() && menu()->isVisible()));
    PaintGround(painter, over);
    FShape == TShape::Large ? PaintLarge(painter) : PaintRow(painter);
    if (hasFocus() && window()->testAttribute(Qt::WA_KeyboardFocusChange)) {
        if (FShape == TShape::Primary)
            StrokeRounded(painter, QRectF(rect()).adjusted(2, 2, -2, -2), RadiusControl - 2, CurrentTheme().OnAccent,
                          2);
        else
            DrawFocusRing(painter, rect(), RadiusControl, CurrentTheme());
    }
}

void TRibbonButton::actionEvent(QActionEvent* event)
{
    QToolButton::actionEvent(event);
    if (event->action() == defaultAction() && event->type() == QEvent::ActionChanged) {
        FIconName = IconNameOf(*event->action());
        setAccessibleName(event->action()->text().section(u'\t', 0, 0).remove(u'&'));
        updateGeometry();
        update();
    }
}

void TRibbonButton::mousePressEvent(QMouseEvent* event)
{
    if (!menu() || popupMode() != MenuButtonPopup) {
        QToolButton::mousePressEvent(event);
        return;
    }
    // QToolButton looks for the arrow where its style would have drawn it; here it is the lower half or the end.
    const bool onArrow =
        FShape == TShape::Large ? event->position().y() >= 32 : event->position().x() >= width() - ArrowWidth - 10;
    if (onArrow && event->button() == Qt::LeftButton)
        showMenu();
    else
        QAbstractButton::mousePressEvent(event);
}

} // namespace Kestrune
