// SPDX-License-Identifier: GPL-3.0-or-later
#include "uLogView.h"

#include "uTHStrings.h"
#include "uTheme.h"
#include "uThemePaint.h"

#include <QScrollBar>
#include <QTextBlock>
#include <QTextCursor>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int KeptLines = 20000;

} // namespace

TLogView::TLogView(QWidget* parent) : QPlainTextEdit(parent)
{
    setReadOnly(true);
    setMaximumBlockCount(KeptLines);
    setTabChangesFocus(true);
    setAccessibleName(GetLanguageString(u"cSGuiLog"_s));
}

void TLogView::AddLines(const QStringList& lines)
{
    setUpdatesEnabled(false);
    for (const QString& line : lines)
        Append(line, false);
    setUpdatesEnabled(true);
}

void TLogView::AddWarning(const QString& line)
{
    ++FWarnings;
    Append(u"⚠ "_s + line, true);
}

void TLogView::Append(const QString& line, bool warning)
{
    QScrollBar* bar = verticalScrollBar();
    const bool atEnd = bar->value() == bar->maximum();
    appendPlainText(line);
    QTextCursor cursor(document()->lastBlock());
    QTextBlockFormat format;
    if (warning)
        format.setBackground(CurrentTheme().WarnSoft);
    cursor.setBlockFormat(format);
    if (atEnd)
        bar->setValue(bar->maximum());
}

void TLogView::Reset()
{
    FWarnings = 0;
    clear();
}

} // namespace Kestrune
