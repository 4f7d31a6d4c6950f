// SPDX-License-Identifier: GPL-3.0-or-later
#include "uStarsEdit.h"

#include "uTHStrings.h"
#include "uTheme.h"
#include "uThemePaint.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QKeyEvent>
#include <QLocale>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace Kestrune {

namespace {

constexpr qreal PaneStarSize = 17;
constexpr int StarsLeft = 3;
constexpr int MostHalfStars = 10;

// The rating as a slider from 0 to 5 in halves.
class TStarsAccess : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    explicit TStarsAccess(TStarsEdit* edit) : QAccessibleWidget(edit, QAccessible::Slider) {}

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ValueInterface ? static_cast<QAccessibleValueInterface*>(this)
                                                   : QAccessibleWidget::interface_cast(type);
    }

    QString text(QAccessible::Text kind) const override
    {
        if (kind == QAccessible::Value)
            return Edit()->ValueText();
        return kind == QAccessible::Name ? GetLanguageString(QStringLiteral("cSGuiRating"))
                                         : QAccessibleWidget::text(kind);
    }

    QVariant currentValue() const override { return Edit()->Rating() / 2.0; }
    void setCurrentValue(const QVariant& value) override
    {
        Q_EMIT Edit()->ratingChosen(std::clamp(static_cast<int>(std::lround(value.toDouble() * 2)), 0, MostHalfStars));
    }
    QVariant maximumValue() const override { return 5.0; }
    QVariant minimumValue() const override { return 0.0; }
    QVariant minimumStepSize() const override { return 0.5; }

private:
    TStarsEdit* Edit() const { return static_cast<TStarsEdit*>(object()); }
};

QAccessibleInterface* MakeStarsAccess(const QString&, QObject* object)
{
    auto* edit = qobject_cast<TStarsEdit*>(object);
    return edit ? new TStarsAccess(edit) : nullptr;
}

} // namespace

TStarsEdit::TStarsEdit(QWidget* parent) : QWidget(parent)
{
    QAccessible::installFactory(MakeStarsAccess);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize TStarsEdit::sizeHint() const
{
    return {static_cast<int>(std::ceil(StarsWidth(PaneStarSize))) + 2 * StarsLeft + 38, 28};
}

void TStarsEdit::SetRating(int halfStars)
{
    FRating = std::clamp(halfStars, 0, MostHalfStars);
    QAccessibleValueChangeEvent event(this, FRating / 2.0);
    QAccessible::updateAccessibility(&event);
    update();
}

QString TStarsEdit::ValueText() const
{
    return GetLanguageString(QStringLiteral("cSGuiStarsOfFive")).arg(FRating / 2.0);
}

void TStarsEdit::Choose(int halfStars)
{
    halfStars = std::clamp(halfStars, 0, MostHalfStars);
    if (FReadOnly || halfStars == FRating)
        return;
    SetRating(halfStars);
    Q_EMIT ratingChosen(FRating);
}

void TStarsEdit::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return QWidget::mousePressEvent(event);
    const qreal x = event->position().x() - StarsLeft;
    const qreal step = StarsWidth(PaneStarSize) / 5;
    if (x >= 0 && x < StarsWidth(PaneStarSize))
        Choose(static_cast<int>(x / (step / 2)) + 1);
}

void TStarsEdit::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Left: return Choose(FRating - 1);
    case Qt::Key_Right: return Choose(FRating + 1);
    case Qt::Key_Delete:
    case Qt::Key_Backspace: return Choose(0);
    default: break;
    }
    const QString text = event->text();
    if (text.size() == 1 && text[0] >= u'0' && text[0] <= u'9')
        return Choose(text[0].unicode() - u'0');
    QWidget::keyPressEvent(event);
}

void TStarsEdit::focusInEvent(QFocusEvent* event)
{
    QWidget::focusInEvent(event);
    update();
}

void TStarsEdit::focusOutEvent(QFocusEvent* event)
{
    QWidget::focusOutEvent(event);
    update();
}

void TStarsEdit::paintEvent(QPaintEvent*)
{
    const TTheme& theme = CurrentTheme();
    QPainter painter(this);
    DrawStars(painter, QPointF(StarsLeft, height() / 2.0 - PaneStarSize / 2), PaneStarSize, FRating, theme);
    painter.setFont(ThemeFont(fsBody));
    painter.setPen(theme.Text2);
    if (FRating > 0)
        painter.drawText(QRectF(StarsWidth(PaneStarSize) + 13, 0, 40, height()),
                         Qt::AlignAbsolute | Qt::AlignLeft | Qt::AlignVCenter,
                         locale().toString(FRating / 2.0, 'f', 1));
    if (hasFocus())
        DrawFocusRing(painter, rect(), RadiusControl, theme);
}

} // namespace Kestrune
