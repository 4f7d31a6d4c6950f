// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uTheme.h"

#include <QFont>
#include <QRectF>
#include <QString>

class QFontMetrics;
class QPainter;

namespace Kestrune {

/// Steps of type, relative to the application's font.
enum class TFontStep : quint8 {
    fsSmall,     ///< 0.85
    fsSmallPlus, ///< one pixel over small
    fsBody,
    fsBodyBold,
    fsCardTitle, ///< 1.08, weight 600
    fsPaneTitle, ///< 1.25, weight 600
    fsPageTitle, ///< 1.6, weight 600
    fsBig        ///< 2, weight 600
};
using enum TFontStep;

/// The application's font at a step.
QFont ThemeFont(TFontStep step);

/// Line height for a font: 1.38 times its size, in whole dip.
int LineHeight(const QFont& font);

/// The larger of the given height and the text's height plus padding.
int RowHeight(int given, const QFont& font, int padding);

inline constexpr qreal RadiusCover = 4;
inline constexpr qreal RadiusControl = 6;
inline constexpr qreal RadiusCard = 8;
inline constexpr qreal RadiusPopup = 10;

/// Width in dip of a hairline that is a whole number of device pixels: max(1, round(ratio)) of them.
qreal HairlineWidth(const QPainter& painter);

/// A hairline along the lower (or upper, left, right) edge of the rectangle, inside it.
void DrawHairline(QPainter& painter, const QRectF& rect, Qt::Edge edge, const QColor& color);

void FillRounded(QPainter& painter, const QRectF& rect, qreal radius, const QColor& color);

/// An edge of `width` dip inside the rectangle.
void StrokeRounded(QPainter& painter, const QRectF& rect, qreal radius, const QColor& color, qreal width);

/// The keyboard focus: a ring of 2 dip inside the rectangle.
void DrawFocusRing(QPainter& painter, const QRectF& rect, qreal radius, const TTheme& theme);

/// One line of text, elided at the end, in the painter's font and pen.
void DrawElided(QPainter& painter, const QRectF& rect, const QString& text,
                Qt::Alignment alignment = Qt::AlignLeft | Qt::AlignVCenter);

/// Five stars of `size` dip with half steps, left to right whatever the layout direction; empty stars are outlines.
/// `halfStars` outside 0 to 10 is clamped.
void DrawStars(QPainter& painter, const QPointF& topLeft, qreal size, int halfStars, const TTheme& theme);

/// Width of five stars of `size` dip.
qreal StarsWidth(qreal size);

/// The program's mark: an accent square with the letter in it.
void DrawMark(QPainter& painter, const QRectF& rect, const TTheme& theme);

/// A pill with a short text, as for countries and counts; returns its width.
qreal DrawPill(QPainter& painter, const QPointF& leftCenter, const QString& text, const TTheme& theme);

} // namespace Kestrune
