// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uTheme.h"

#include <QByteArray>
#include <QPixmap>
#include <QSize>
#include <QString>

class QPainter;

namespace Kestrune {

/// Largest size inside a square of `side` with the proportions of `picture`, at least 1 x 1; a picture is never
/// taken to be empty.
QSize FitInSquare(const QSize& picture, int side);

/// Decodes a picture scaled into a square of `side` device pixels, keeping its proportions. Null when the bytes are no
/// picture. Hostile bytes: the decoder's allocation is bounded.
QImage DecodeScaled(const QByteArray& bytes, int side);

/// The picture with rounded corners and the thin inner edge of covers, at a device pixel ratio.
QPixmap FinishCover(const QImage& picture, qreal ratio, const TTheme& theme);

/// Which of the eight grounds a drawn cover takes: the same artist always has the same one.
int CoverGroundOf(const QString& artist);

/// Paints the cover that stands in for a missing one: a record (or a disc for CD-like media) on a muted ground with
/// title and artist.
void PaintDrawnCover(QPainter& painter, const QRectF& rect, const QString& title, const QString& artist, bool disc,
                     int ground, const TTheme& theme);

/// The same as a finished pixmap of `side` dip.
QPixmap DrawnCover(int side, qreal ratio, const QString& title, const QString& artist, const QString& mediaType,
                   const TTheme& theme);

/// The soft shadow below a cover that fills `rect`.
void PaintCoverShadow(QPainter& painter, const QRectF& rect, const TTheme& theme);

} // namespace Kestrune
