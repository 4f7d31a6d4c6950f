// SPDX-License-Identifier: GPL-3.0-or-later
#include "uProgressWindow.h"

#include "uIcons.h"
#include "uLogView.h"
#include "uTHStrings.h"
#include "uThemePaint.h"
#include "uThemeStyle.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int WindowPadding = 20;

} // namespace

TProgressWindow::TProgressWindow(const QString& title, QWidget* parent)
    : QDialog(parent),
      FTitle(title),
      FBar(new QProgressBar(this)),
      FLog(new TLogView(this)),
      FButton(new QPushButton(GetLanguageString(u"cSGuiCancel"_s), this))
{
    setWindowTitle(title);
    FBar->setTextVisible(false);
    FBar->setFixedHeight(10);
    FBar->setAccessibleName(title);
    auto* column = new QVBoxLayout(this);
    const int head = LineHeight(ThemeFont(fsPaneTitle)) + LineHeight(ThemeFont(fsBody)) + 10;
    column->setContentsMargins(WindowPadding, WindowPadding + head, WindowPadding, WindowPadding);
    column->setSpacing(12);
    column->addWidget(FBar);
    column->addWidget(FLog, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(FButton);
    column->addLayout(buttons);
    connect(FButton, &QPushButton::clicked, this, &TProgressWindow::reject);
    resize(620, 420);
}

void TProgressWindow::SetProgress(int value, int maximum)
{
    FBar->setRange(0, maximum);
    FBar->setValue(value);
}

void TProgressWindow::SetCurrentItem(const QString& text)
{
    FSentence = text;
    update();
}

void TProgressWindow::Finish(const QString& sentence, bool failed)
{
    FFinished = true;
    FFailed = failed;
    FSentence = sentence;
    if (!failed)
        SetProgress(1, 1);
    FButton->setText(GetLanguageString(u"cSGuiClose"_s));
    FButton->setDefault(true);
    FButton->setEnabled(true);
    FButton->setFocus();
    update();
}

void TProgressWindow::reject()
{
    if (FFinished)
        return QDialog::reject();
    // Once is enough: the job ends at its next step and then calls Finish.
    FButton->setEnabled(false);
    Q_EMIT cancelRequested();
}

void TProgressWindow::paintEvent(QPaintEvent*)
{
    const TTheme& theme = CurrentTheme();
    QPainter painter(this);
    painter.fillRect(rect(), theme.Window);
    painter.setFont(ThemeFont(fsPaneTitle));
    painter.setPen(theme.Text);
    const int titleHeight = LineHeight(painter.font());
    const qreal room = width() - 2 * WindowPadding;
    DrawElided(painter, QRectF(WindowPadding, WindowPadding, room, titleHeight), FTitle);
    painter.setFont(ThemeFont(fsBody));
    QRectF line(WindowPadding, WindowPadding + titleHeight + 2, room, LineHeight(painter.font()));
    painter.setPen(FFailed ? theme.Error : theme.Text2);
    if (FFinished) {
        DrawIcon(painter, QRectF(line.left(), line.center().y() - 8, 16, 16), FFailed ? u"err"_s : u"check"_s,
                 FFailed ? theme.Error : theme.Ok);
        line.setLeft(line.left() + 22);
    }
    DrawElided(painter, line, FSentence);
}

} // namespace Kestrune
