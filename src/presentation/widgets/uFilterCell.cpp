// SPDX-License-Identifier: GPL-3.0-or-later
#include "uFilterCell.h"

#include "uIcons.h"
#include "uTHStrings.h"
#include "uTheme.h"
#include "uThemePaint.h"

#include <QAbstractItemView>
#include <QAction>
#include <QCompleter>
#include <QKeyEvent>
#include <QPainter>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int TypingPause = 350; // milliseconds

} // namespace

TFilterCell::TFilterCell(QWidget* parent) : QLineEdit(parent)
{
    FTimer.setSingleShot(true);
    FTimer.setInterval(TypingPause);
    setClearButtonEnabled(true);
    setToolTip(GetLanguageString(u"cSGuiFilterHint"_s));
    connect(this, &QLineEdit::textChanged, &FTimer, qOverload<>(&QTimer::start));
    connect(&FTimer, &QTimer::timeout, this, &TFilterCell::Tell);
}

void TFilterCell::SetChoices(const QStringList& choices)
{
    if (choices.isEmpty())
        return;
    auto* completer = new QCompleter(choices, this);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    completer->setFilterMode(Qt::MatchContains);
    setCompleter(completer);
    connect(completer, qOverload<const QString&>(&QCompleter::activated), this, &TFilterCell::Tell,
            Qt::QueuedConnection);
    FArrow = addAction(ThemeIcon(u"cd"_s), QLineEdit::TrailingPosition);
    connect(FArrow, &QAction::triggered, this, [this] {
        setFocus();
        this->completer()->setCompletionPrefix({});
        this->completer()->complete();
    });
}

void TFilterCell::SetFilter(const QString& text)
{
    if (hasFocus() && FTimer.isActive())
        return; // it is being typed
    if (text != this->text())
        setText(text);
    FTold = text;
    FTimer.stop();
    SetWrong(false);
}

void TFilterCell::SetWrong(bool wrong)
{
    FWrong = wrong;
    setAccessibleDescription(wrong ? GetLanguageString(u"cSGuiFilterWrong"_s) : QString());
    update();
}

void TFilterCell::Tell()
{
    FTimer.stop();
    if (text() == FTold)
        return;
    FTold = text();
    Q_EMIT filterChanged(FTold);
}

void TFilterCell::paintEvent(QPaintEvent* event)
{
    QLineEdit::paintEvent(event);
    if (text().isEmpty() || hasFocus())
        return;
    // An active filter has the accent edge; one that is not understood says so by colour, tool tip and reader.
    QPainter painter(this);
    const TTheme& theme = CurrentTheme();
    StrokeRounded(painter, rect(), RadiusControl, FWrong ? theme.Error : theme.AccentFill, FWrong ? 2 : 1.5);
}

void TFilterCell::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter: return Tell();
    case Qt::Key_Escape: Q_EMIT leaveRequested(); return;
    case Qt::Key_Down:
        if (FArrow && event->modifiers().testFlag(Qt::AltModifier))
            return FArrow->trigger();
        break;
    default: break;
    }
    QLineEdit::keyPressEvent(event);
}

} // namespace Kestrune
