// SPDX-License-Identifier: GPL-3.0-or-later
#include "uSplash.h"

#include "uCoverArt.h"
#include "uThemePaint.h"
#include "uThemeStyle.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPainterPath>
#include <QScreen>

namespace Kestrune {

TSplashForm::TSplashForm(QWidget* parent) : QWidget(parent, Qt::SplashScreen | Qt::FramelessWindowHint)
{
    setAttribute(Qt::WA_TranslucentBackground);
    setFixedSize(418, 216);
    if (const QScreen* screen = QGuiApplication::primaryScreen())
        move(screen->availableGeometry().center() - rect().center());
}

void TSplashForm::SetText(const QString& text)
{
    FText = text;
    setAccessibleName(text);
    repaint();
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

void TSplashForm::paintEvent(QPaintEvent*)
{
    const TTheme& theme = CurrentTheme();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath shape;
    shape.addRoundedRect(rect(), RadiusPopup, RadiusPopup);
    painter.setClipPath(shape);
    PaintDrawnCover(painter, QRectF(width() - 300, -84, 300, 300), {}, {}, false, 0, theme);
    painter.fillRect(QRectF(0, 0, width() - 299, height()), theme.CoverGrounds[0]);
    painter.setClipping(false);
    StrokeRounded(painter, rect(), RadiusPopup, theme.Line, 1);
    DrawMark(painter, QRectF(28, 56, 44, 44), theme);
    QFont name = ThemeFont(fsBig);
    painter.setFont(name);
    painter.setPen(theme.Text);
    painter.drawText(QRectF(86, 52, width() - 100, 52), Qt::AlignLeft | Qt::AlignVCenter,
                     QGuiApplication::applicationDisplayName());
    painter.setFont(ThemeFont(fsBody));
    painter.setPen(theme.Text2);
    DrawElided(painter, QRectF(28, height() - 48, width() - 56, 24), FText);
}

} // namespace Kestrune
