// SPDX-License-Identifier: GPL-3.0-or-later
#include "uFindBar.h"

#include "uRibbonButton.h"
#include "uTHStrings.h"
#include "uTheme.h"
#include "uThemePaint.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPainter>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int FindPause = 250; // milliseconds after the last key

TRibbonButton* FindButton(const QString& icon, const QString& key, QWidget* parent)
{
    auto* button = new TRibbonButton(TRibbonButton::TShape::Icon, parent);
    button->SetIconName(icon);
    button->setToolTip(GetLanguageString(key));
    button->setAccessibleName(GetLanguageString(key));
    button->setFocusPolicy(Qt::TabFocus);
    return button;
}

} // namespace

TFindBar::TFindBar(QWidget* parent)
    : QWidget(parent),
      FEdit(new QLineEdit(this)),
      FCount(new QLabel(this)),
      FNext(FindButton(u"down"_s, u"cSGuiFindNext"_s, this)),
      FFormer(FindButton(u"up"_s, u"cSGuiFindFormer"_s, this))
{
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(10, 0, 8, 0);
    row->setSpacing(6);
    FEdit->setPlaceholderText(GetLanguageString(u"cSGuiFindHint"_s));
    FEdit->setAccessibleName(GetLanguageString(u"cSGuiFindHint"_s));
    FEdit->setClearButtonEnabled(true);
    FEdit->setMaximumWidth(360);
    FEdit->installEventFilter(this);
    auto* close = FindButton(u"x"_s, u"cSGuiClose"_s, this);
    row->addWidget(FEdit, 2);
    row->addWidget(FFormer);
    row->addWidget(FNext);
    row->addWidget(FCount);
    row->addStretch(1);
    row->addWidget(close);
    FTimer.setSingleShot(true);
    FTimer.setInterval(FindPause);
    connect(FEdit, &QLineEdit::textChanged, &FTimer, qOverload<>(&QTimer::start));
    connect(&FTimer, &QTimer::timeout, this, [this] { Q_EMIT textChanged(FEdit->text()); });
    connect(FNext, &QToolButton::clicked, this, [this] { Q_EMIT stepRequested(1); });
    connect(FFormer, &QToolButton::clicked, this, [this] { Q_EMIT stepRequested(-1); });
    connect(close, &QToolButton::clicked, this, &TFindBar::closeRequested);
    SetHits(-1, 0);
}

QString TFindBar::Text() const { return FEdit->text(); }

void TFindBar::Begin()
{
    FEdit->setFocus(Qt::ShortcutFocusReason);
    FEdit->selectAll();
}

void TFindBar::SetHits(int at, int count)
{
    FNext->setEnabled(count > 0);
    FFormer->setEnabled(count > 0);
    QString text;
    if (count > 0)
        text = GetLanguageString(u"cSGuiFindPlace"_s).arg(locale().toString(at + 1), locale().toString(count));
    else if (!FEdit->text().isEmpty())
        text = GetLanguageString(u"cSGuiFindNothing"_s);
    FCount->setText(text);
    FEdit->setAccessibleDescription(text);
}

QSize TFindBar::sizeHint() const { return {400, RowHeight(36, ThemeFont(fsBody), 12)}; }

void TFindBar::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), CurrentTheme().Window);
    DrawHairline(painter, rect(), Qt::BottomEdge, CurrentTheme().Line);
}

bool TFindBar::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
            if (FTimer.isActive()) {
                FTimer.stop();
                Q_EMIT textChanged(FEdit->text());
            } else {
                Q_EMIT stepRequested(key->modifiers().testFlag(Qt::ShiftModifier) ? -1 : 1);
            }
            return true;
        }
        if (key->key() == Qt::Key_Escape) {
            Q_EMIT closeRequested();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace Kestrune
