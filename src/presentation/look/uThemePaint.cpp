// SPDX-License-Identifier: GPL-3.0-or-later
#include "uThemePaint.h"

#include <QFontInfo>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace Kestrune {

namespace {

struct TFontStepRule {
    double Factor;
    QFont::Weight Weight;
    int ExtraPixels;
};

TFontStepRule RuleOf(TFontStep step)
{
    switch (step) {
    case fsSmall: return {0.85, QFont::Normal, 0};
    case fsSmallPlus: return {0.85, QFont::Normal, 1};
    case fsBody: break;
    case fsBodyBold: return {1.0, QFont::DemiBold, 0};
    case fsCardTitle: return {1.08, QFont::DemiBold, 0};
    case fsPaneTitle: return {1.25, QFont::DemiBold, 0};
    case fsPageTitle: return {1.6, QFont::DemiBold, 0};
    case fsBig: return {2.0, QFont::DemiBold, 0};
    }
    return {1.0, QFont::Normal, 0};
}

QPainterPath StarPath(const QPointF& center, qreal radius)
{
    QPainterPath path;
    for (int corner = 0; corner < 10; ++corner) {
        const qreal r = corner % 2 == 0 ? radius : radius * 0.45;
        const qreal angle = std::numbers::pi * (corner / 5.0 - 0.5);
        const QPointF point(center.x() + r * std::cos(angle), center.y() + r * std::sin(angle));
        corner == 0 ? path.moveTo(point) : path.lineTo(point);
    }
    path.closeSubpath();
    return path;
}

} // namespace

QFont ThemeFont(TFontStep step)
{
    QFont font = QGuiApplication::font();
    const TFontStepRule rule = RuleOf(step);
    const int base = QFontInfo(font).pixelSize();
    font.setPixelSize(std::max(8, static_cast<int>(std::lround(base * rule.Factor)) + rule.ExtraPixels));
    font.setWeight(rule.Weight);
    return font;
}

int LineHeight(const QFont& font) { return static_cast<int>(std::lround(QFontInfo(font).pixelSize() * 1.38)); }

int RowHeight(int given, const QFont& font, int padding) { return std::max(given, LineHeight(font) + padding); }

qreal HairlineWidth(const QPainter& painter)
{
    const qreal ratio = painter.device() ? painter.device()->devicePixelRatioF() : 1.0;
    return std::max(1.0, std::round(ratio)) / ratio;
}

void DrawHairline(QPainter& painter, const QRectF& rect, Qt::Edge edge, const QColor& color)
{
    const qreal w = HairlineWidth(painter);
    QRectF line = rect;
    switch (edge) {
    case Qt::TopEdge: line.setHeight(w); break;
    case Qt::LeftEdge: line.setWidth(w); break;
    case Qt::RightEdge: line.setLeft(rect.right() - w); break;
    case Qt::BottomEdge: line.setTop(rect.bottom() - w); break;
    }
    painter.fillRect(line, color);
}

void FillRounded(QPainter& painter, const QRectF& rect, qreal radius, const QColor& color)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawRoundedRect(rect, radius, radius);
    painter.restore();
}

void StrokeRounded(QPainter& painter, const QRectF& rect, qreal radius, const QColor& color, qreal width)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color, width));
    painter.setBrush(Qt::NoBrush);
    const qreal half = width / 2;
    const qreal inner = std::max(0.0, radius - half);
    painter.drawRoundedRect(rect.adjusted(half, half, -half, -half), inner, inner);
    painter.restore();
}

void DrawFocusRing(QPainter& painter, const QRectF& rect, qreal radius, const TTheme& theme)
{
    StrokeRounded(painter, rect, radius, theme.AccentFill, 2);
}

void DrawElided(QPainter& painter, const QRectF& rect, const QString& text, Qt::Alignment alignment)
{
    const QString shown = painter.fontMetrics().elidedText(text, Qt::ElideRight, static_cast<int>(rect.width()));
    painter.drawText(rect, static_cast<int>(alignment | Qt::TextSingleLine), shown);
}

qreal StarsWidth(qreal size) { return size * 5 + 4 * std::max(1.0, size * 0.1); }

void DrawStars(QPainter& painter, const QPointF& topLeft, qreal size, int halfStars, const TTheme& theme)
{
    halfStars = std::clamp(halfStars, 0, 10);
    const qreal step = size + std::max(1.0, size * 0.1);
    const qreal lineWidth = size < 12 ? 0.7 : 1.1;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    for (int star = 0; star < 5; ++star) {
        const QPointF center(topLeft.x() + star * step + size / 2, topLeft.y() + size / 2 + size * 0.03);
        const QPainterPath path = StarPath(center, size * 0.46);
        const int filled = std::clamp(halfStars - star * 2, 0, 2);
        QColor edge = theme.Star;
        edge.setAlphaF(filled == 0 && !theme.IsHighContrast() ? 0.6f : 1.0f);
        painter.setPen(QPen(edge, lineWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.setBrush(filled == 2 ? QBrush(theme.Star) : QBrush(Qt::NoBrush));
        painter.drawPath(path);
        if (filled == 1) {
            QPainterPath half;
            half.addRect(QRectF(center.x() - size, center.y() - size, size, size * 2));
            painter.fillPath(path.intersected(half), theme.Star);
        }
    }
    painter.restore();
}

void DrawMark(QPainter& painter, const QRectF& rect, const TTheme& theme)
{
    FillRounded(painter, rect, rect.width() * 0.24, theme.AccentFill);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(rect.topLeft());
    painter.scale(rect.width() / 22, rect.height() / 22);
    painter.setPen(QPen(theme.OnAccent, 2.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawLine(QPointF(7, 5), QPointF(7, 17.5));
    const QPointF upper[] = {{14.8, 5}, {8, 9.7}, {15, 11.8}};
    const QPointF lower[] = {{8, 10.2}, {15, 17}};
    painter.drawPolyline(upper, 3);
    painter.drawPolyline(lower, 2);
    painter.restore();
}

qreal DrawPill(QPainter& painter, const QPointF& leftCenter, const QString& text, const TTheme& theme)
{
    painter.save();
    QFont font = ThemeFont(fsSmall);
    font.setPixelSize(std::max(8, font.pixelSize() - 1));
    font.setWeight(QFont::DemiBold);
    painter.setFont(font);
    const QFontMetrics metrics(font);
    const QRectF pill(leftCenter.x(), leftCenter.y() - 8, metrics.horizontalAdvance(text) + 10, 16);
    FillRounded(painter, pill, RadiusCover, theme.Raised);
    StrokeRounded(painter, pill, RadiusCover, theme.Line, 1);
    painter.setPen(theme.Text2);
    painter.drawText(pill, Qt::AlignCenter, text);
    painter.restore();
    return pill.width();
}

} // namespace Kestrune
