// SPDX-License-Identifier: GPL-3.0-or-later
#include "uDebugWindow.h"

#include "uTHStrings.h"

#include <QFontDatabase>
#include <QPlainTextEdit>
#include <QThread>
#include <QVBoxLayout>

namespace Kestrune {

using namespace Qt::StringLiterals;

TDebugWindow::TDebugWindow(QWidget* parent) : QWidget(parent, Qt::Window), FLines(new QPlainTextEdit(this))
{
    setWindowTitle(GetLanguageString(u"cSGuiDebugWindow"_s));
    FLines->setReadOnly(true);
    FLines->setLineWrapMode(QPlainTextEdit::NoWrap);
    FLines->setMaximumBlockCount(MostLines);
    FLines->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    FLines->setFrameShape(QFrame::NoFrame);
    FLines->setAccessibleName(windowTitle());
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(FLines);
    resize(760, 420);
}

void TDebugWindow::AddLine(const QString& line)
{
    if (QThread::currentThread() == thread())
        FLines->appendPlainText(line);
    else
        QMetaObject::invokeMethod(
            FLines, [this, line] { FLines->appendPlainText(line); }, Qt::QueuedConnection);
}

QString TDebugWindow::Text() const { return FLines->toPlainText(); }

} // namespace Kestrune
