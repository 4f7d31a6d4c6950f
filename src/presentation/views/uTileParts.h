// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uTilePainter.h"

#include <QRectF>

namespace Kestrune {

class TCoverCache;

/// A badge on the lower left of a cover.
enum class TBadge : quint8 { bdNone, bdOverdue, bdLent, bdWanted };
using enum TBadge;

/// The badge of a row: overdue before lent before wanted.
TBadge BadgeOf(const QModelIndex& index);

/// The ring of the cell that the keyboard is on; thin where the view has not the keyboard.
void PaintTileFocus(QPainter& painter, const QRectF& cell, const TTileState& state);

/// The ground and edge of a card, with its selection, hover and focus.
void PaintCardGround(QPainter& painter, const QRectF& cell, const TTileState& state);

/// Paints the cover of a row into a square, standing on its lower edge, with shadow and badge. The rectangle that the
/// cover takes; null when the picture was not at hand and has to be painted later.
QRectF PaintTileCover(QPainter& painter, TCoverCache& covers, const QRect& square, const QModelIndex& index,
                      const TTileState& state);

} // namespace Kestrune
