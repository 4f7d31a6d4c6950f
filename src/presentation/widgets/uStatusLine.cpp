// SPDX-License-Identifier: GPL-3.0-or-later
#include "uStatusLine.h"

#include "uIcons.h"
#include "uRibbonButton.h"
#include "uTHStrings.h"
#include "uTheme.h"
#include "uThemePaint.h"

#include <QFontMetrics>
#include <QHBoxLayout>
#include <QPainter>
#include <QProgressBar>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

TStatusLine::TStatusLine(QWidget* parent)
    : QWidget(parent),
      FJobBox(new QWidget(this)),
      FBar(new QProgressBar(FJobBox)),
      FCancel(new TRibbonButton(TRibbonButton::TShape::Icon, FJobBox))
{
    const int height = RowHeight(24, ThemeFont(fsSmall), 8);
    setFixedHeight(height);
    FBar->setTextVisible(false);
    FBar->setFixedSize(140, 10);
    FCancel->SetIconName(u"x"_s);
    FCancel->setAccessibleName(GetLanguageString(u"cSGuiCancel"_s));
    FCancel->setFixedSize(24, height);
    connect(FCancel, &QToolButton::clicked, this, &TStatusLine::cancelRequested);
    auto* job = new QHBoxLayout(FJobBox);
    job->setContentsMargins(0, 0, 0, 0);
    job->setSpacing(4);
    job->addWidget(FBar);
    job->addWidget(FCancel);
    FJobBox->hide();
}

void TStatusLine::SetFacts(const QStringList& facts)
{
    FFacts = facts;
    FFacts.removeAll(QString());
    setAccessibleName(FFacts.join(u", "_s));
    update();
}

void TStatusLine::SetFile(const QString& name, bool readOnly)
{
    FFile = name;
    FReadOnly = readOnly;
    PlaceJob();
    update();
}

void TStatusLine::ShowProgress(const QString& text, int value, int maximum, bool canCancel)
{
    FJob = text;
    FBar->setRange(0, maximum);
    FBar->setValue(value);
    FBar->setAccessibleName(text);
    FCancel->setVisible(canCancel);
    FJobBox->show();
    PlaceJob();
    update();
}

void TStatusLine::HideProgress()
{
    FJob.clear();
    FJobBox->hide();
    update();
}

int TStatusLine::FileLeft() const
{
    const int wanted = QFontMetrics(ThemeFont(fsSmall)).horizontalAdvance(FFile) + 2;
    return width() - 14 - std::min(wanted, width() / 3);
}

// The job stands before the file name, so that it does not jump when the facts change.
void TStatusLine::PlaceJob()
{
    const int jobWidth = FJobBox->sizeHint().width();
    const int left = FileLeft() - (FReadOnly ? 42 : 24) - jobWidth;
    FJobBox->setGeometry(isRightToLeft() ? width() - left - jobWidth : left, 0, jobWidth, height());
}

void TStatusLine::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    PlaceJob();
}

void TStatusLine::paintEvent(QPaintEvent*)
{
    const TTheme& theme = CurrentTheme();
    QPainter painter(this);
    painter.fillRect(rect(), theme.Sunken);
    painter.setFont(ThemeFont(fsSmall));
    painter.setPen(theme.Text2);
    const QFontMetrics metrics(painter.font());
    const bool mirrored = isRightToLeft();
    const auto text = [&](int left, int width, const QString& words) {
        const QRectF box(mirrored ? this->width() - left - width : left, 0, width, height());
        DrawElided(painter, box, words, Qt::AlignLeft | Qt::AlignVCenter);
    };
    const int fileLeft = FileLeft();
    text(fileLeft, width() - 14 - fileLeft, FFile);
    if (FReadOnly)
        DrawIcon(painter, QRectF(mirrored ? width() - fileLeft + 4 : fileLeft - 18, height() / 2.0 - 7, 14, 14),
                 u"lock"_s, theme.Warn);
    int free = fileLeft - (FReadOnly ? 38 : 20);
    if (!FJob.isEmpty()) {
        free -= FJobBox->width() + 8;
        const int jobWidth = std::min(metrics.horizontalAdvance(FJob) + 2, free / 2);
        text(free - jobWidth, jobWidth, FJob);
        free -= jobWidth + 20;
    }
    int x = 14;
    for (const QString& fact : std::as_const(FFacts)) {
        const int width = metrics.horizontalAdvance(fact) + 2;
        if (x + width > free)
            break;
        text(x, width, fact);
        x += width + 18;
    }
}

} // namespace Kestrune
