// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uTilePainter.h"

namespace Kestrune {

class TCoverCache;

/// Tiles: the cover, title, artist, year and medium, and from the medium size up the stars.
class TThumbsPainter : public TTilePainter {
public:
    /// Keeps a reference to the covers.
    explicit TThumbsPainter(TCoverCache& covers);

    /// Size step 0 small, 1 medium, 2 large (the setting ThumbSize); others are clamped.
    void SetStep(int step);
    int Step() const { return FStep; }
    /// Side of the cover in dip.
    int CoverSide() const;

    QSize CellSize() const override;
    int RowGap() const override { return 2; }
    int PicturesMade() const override;
    bool Paint(QPainter& painter, const QRect& cell, const QModelIndex& index, const TTileState& state) override;

private:
    void PaintLines(QPainter& painter, const QRect& area, const QModelIndex& index, const TTileState& state);

    TCoverCache& FCovers;
    int FStep = 1;
};

} // namespace Kestrune
