// SPDX-License-Identifier: GPL-3.0-or-later
#include "uMessageBars.h"

#include "uIcons.h"
#include "uRibbonButton.h"
#include "uTHStrings.h"
#include "uTheme.h"
#include "uThemePaint.h"

#include <QAccessible>
#include <QApplication>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QPainter>
#include <QTimer>
#include <QVBoxLayout>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype MostBars = 2;

struct TBarLook {
    QString Icon;
    QColor Ground;
    QColor Mark;
};

TBarLook BarLookOf(const TBarMessage& message)
{
    const TTheme& theme = CurrentTheme();
    TBarLook look;
    switch (message.Kind) {
    case bkError: look = {u"err"_s, theme.ErrorSoft, theme.Error}; break;
    case bkWarning: look = {u"warn"_s, theme.WarnSoft, theme.Warn}; break;
    case bkDone: look = {u"check"_s, theme.OkSoft, theme.Ok}; break;
    }
    if (!message.Icon.isEmpty())
        look.Icon = message.Icon;
    return look;
}

} // namespace

TMessageBar::TMessageBar(TBarMessage message, QWidget* parent)
    : QWidget(parent), FMessage(std::move(message)), FButtons(new QWidget(this)), FTimer(new QTimer(this))
{
    setAccessibleName((FMessage.Reason + u' ' + FMessage.Text).trimmed());
    setFixedHeight(RowHeight(38, ThemeFont(fsBody), 16));
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 10, 0);
    row->addStretch(1);
    row->addWidget(FButtons);
    auto* buttons = new QHBoxLayout(FButtons);
    buttons->setContentsMargins(0, 0, 0, 0);
    buttons->setSpacing(10);
    for (const TBarMessage::TAction& action : FMessage.Actions) {
        auto* button = new TRibbonButton(TRibbonButton::TShape::Link, FButtons);
        button->setText(action.Caption);
        connect(button, &QToolButton::clicked, this, [this, act = action.Act] {
            Q_EMIT closeRequested();
            if (act)
                act();
        });
        buttons->addWidget(button);
    }
    auto* close = new TRibbonButton(TRibbonButton::TShape::Icon, FButtons);
    close->SetIconName(u"x"_s);
    close->setAccessibleName(GetLanguageString(u"cSGuiClose"_s));
    connect(close, &QToolButton::clicked, this, &TMessageBar::closeRequested);
    buttons->addWidget(close);
    FTimer->setSingleShot(true);
    connect(FTimer, &QTimer::timeout, this, &TMessageBar::TimeIsUp);
    if (FMessage.Kind == bkDone && !FMessage.Stays)
        FTimer->start(DoneStays);
}

void TMessageBar::TimeIsUp()
{
    const bool lookedAt = underMouse() || (focusWidget() && focusWidget()->hasFocus());
    if (lookedAt)
        FTimer->start(DoneStays);
    else
        Q_EMIT closeRequested();
}

bool TMessageBar::event(QEvent* event)
{
    if (event->type() == QEvent::Show) {
        QAccessibleEvent alert(this, QAccessible::Alert);
        QAccessible::updateAccessibility(&alert);
    }
    return QWidget::event(event);
}

void TMessageBar::paintEvent(QPaintEvent*)
{
    const TTheme& theme = CurrentTheme();
    const TBarLook look = BarLookOf(FMessage);
    QPainter painter(this);
    painter.fillRect(rect(), look.Ground);
    if (theme.IsHighContrast())
        StrokeRounded(painter, rect(), 0, look.Mark, 2);
    DrawIcon(painter, QRectF(12, height() / 2.0 - 8, 16, 16), look.Icon, look.Mark);
    const qreal right = FButtons->x() - 8;
    qreal x = 40;
    painter.setPen(theme.Text);
    if (!FMessage.Reason.isEmpty()) {
        painter.setFont(ThemeFont(fsBodyBold));
        DrawElided(painter, QRectF(x, 0, right - x, height()), FMessage.Reason);
        x += painter.fontMetrics().horizontalAdvance(FMessage.Reason) + 6;
    }
    painter.setFont(ThemeFont(fsBody));
    if (x < right)
        DrawElided(painter, QRectF(x, 0, right - x, height()), FMessage.Text);
}

TMessageBars::TMessageBars(QWidget* parent)
    : QWidget(parent), FMore(new TRibbonButton(TRibbonButton::TShape::Link, this))
{
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(FMore, 0, Qt::AlignHCenter);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    connect(FMore, &QToolButton::clicked, this, [this] {
        FShowsAll = true;
        Arrange();
    });
    Arrange();
}

void TMessageBars::Show(TBarMessage message)
{
    auto* bar = new TMessageBar(std::move(message), this);
    connect(bar, &TMessageBar::closeRequested, this, [this, bar] { Remove(bar); });
    static_cast<QVBoxLayout*>(layout())->insertWidget(0, bar);
    FBars.prepend(bar);
    Arrange();
}

void TMessageBars::Remove(TMessageBar* bar)
{
    const bool hadFocus = bar->isAncestorOf(QApplication::focusWidget());
    FBars.removeOne(bar);
    bar->hide();
    bar->deleteLater();
    Arrange();
    if (hadFocus)
        Q_EMIT focusLeft();
}

void TMessageBars::Clear()
{
    while (!FBars.isEmpty())
        Remove(FBars.first());
}

void TMessageBars::Arrange()
{
    if (FBars.size() <= MostBars)
        FShowsAll = false;
    for (qsizetype i = 0; i < FBars.size(); ++i)
        FBars[i]->setVisible(FShowsAll || i < MostBars);
    const qsizetype more = FShowsAll ? 0 : FBars.size() - MostBars;
    FMore->setVisible(more > 0);
    if (more > 0)
        FMore->setText(GetLanguageString(u"cSGuiMoreMessages"_s).arg(more));
    setVisible(!FBars.isEmpty());
    updateGeometry();
}

} // namespace Kestrune
