// SPDX-License-Identifier: GPL-3.0-or-later
#include "uKeyTips.h"

#include "uTheme.h"
#include "uThemePaint.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>

#include <algorithm>

namespace Kestrune {

TKeyTips::TKeyTips(QWidget* window, std::vector<TKeyTip> tips)
    : QWidget(window), FTips(std::move(tips)), FBefore(QApplication::focusWidget())
{
    setAttribute(Qt::WA_DeleteOnClose);
    setFocusPolicy(Qt::StrongFocus);
    setGeometry(window->rect());
    raise();
    show();
    setFocus(Qt::ShortcutFocusReason);
}

void TKeyTips::Finish()
{
    hide();
    if (FBefore && hasFocus())
        FBefore->setFocus(Qt::ShortcutFocusReason);
    deleteLater();
}

bool TKeyTips::event(QEvent* event)
{
    // The letters belong to the tags even when they are shortcuts elsewhere.
    if (event->type() == QEvent::ShortcutOverride)
        event->accept();
    return QWidget::event(event);
}

void TKeyTips::keyPressEvent(QKeyEvent* event)
{
    const QString letter = event->text().toUpper();
    const auto hit = std::find_if(FTips.begin(), FTips.end(),
                                  [&](const TKeyTip& tip) { return !letter.isEmpty() && tip.Letter == letter; });
    const std::function<void()> act = hit == FTips.end() ? nullptr : hit->Act;
    if (!act && event->key() != Qt::Key_Escape && event->key() != Qt::Key_Alt && letter.isEmpty())
        return; // a bare Shift or Ctrl
    Finish();
    if (act)
        act();
}

void TKeyTips::mousePressEvent(QMouseEvent*) { Finish(); }

void TKeyTips::focusOutEvent(QFocusEvent*)
{
    if (isVisible())
        Finish();
}

void TKeyTips::paintEvent(QPaintEvent*)
{
    const TTheme& theme = CurrentTheme();
    QPainter painter(this);
    QFont font = ThemeFont(fsSmall);
    font.setWeight(QFont::DemiBold);
    painter.setFont(font);
    for (const TKeyTip& tip : FTips) {
        if (!tip.Target || !tip.Target->isVisible() || tip.Letter.isEmpty())
            continue;
        const QRect area = tip.Area.isEmpty() ? tip.Target->rect() : tip.Area;
        const QPoint foot = tip.Target->mapTo(window(), QPoint(area.center().x(), area.bottom()));
        const qreal width = std::max(18, painter.fontMetrics().horizontalAdvance(tip.Letter) + 10);
        const QRectF tag(foot.x() - width / 2, foot.y() - 8, width, 16);
        FillRounded(painter, tag, RadiusCover, theme.Text);
        painter.setPen(theme.Window);
        painter.drawText(tag, Qt::AlignCenter, tip.Letter);
    }
}

} // namespace Kestrune
