// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uTilePainter.h"

#include <vector>

namespace Kestrune {

class TCoverCache;

/// Cards: the cover left, title, artist, stars, year and medium, and some fields with their captions.
class TCardsPainter : public TTilePainter {
public:
    /// One field row of a card.
    struct TField {
        QString Caption;
        int Column = 0; ///< of the model
    };

    /// Keeps a reference to the covers.
    explicit TCardsPainter(TCoverCache& covers) : FCovers(covers) {}

    /// The field rows; no more than four are shown.
    void SetFields(std::vector<TField> fields);

    QSize CellSize() const override;
    int RowGap() const override { return 10; }
    int ColumnGap() const override { return 10; }
    int TopMargin() const override { return 6; }
    bool StretchesColumns() const override { return true; }
    int PicturesMade() const override;
    bool Paint(QPainter& painter, const QRect& cell, const QModelIndex& index, const TTileState& state) override;

private:
    void PaintTexts(QPainter& painter, const QRectF& area, const QModelIndex& index, const TTileState& state) const;
    void PaintFields(QPainter& painter, const QRectF& area, const QModelIndex& index, const TTileState& state) const;

    TCoverCache& FCovers;
    std::vector<TField> FFields;
};

} // namespace Kestrune
