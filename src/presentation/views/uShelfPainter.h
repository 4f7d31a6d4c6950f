// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uTilePainter.h"

#include <QPixmap>

namespace Kestrune {

class TCoverCache;

/// By what the releases on the shelf stand in order; it decides the labels and where dividers stand.
enum class TShelfOrder : quint8 { soOther, soNumber, soArtist, soYear };
using enum TShelfOrder;

/// Covers standing on drawn boards, with a label below each and dividers between decades, letters or hundreds.
class TShelfPainter : public TTilePainter {
public:
    /// Keeps a reference to the covers.
    explicit TShelfPainter(TCoverCache& covers) : FCovers(covers) {}

    /// Size step 0 small, 1 medium, 2 large; others are clamped.
    void SetStep(int step);
    void SetOrder(TShelfOrder order) { FOrder = order; }
    /// The text of the divider in front of a row; empty when it belongs to what stands before it.
    QString DividerOf(const QModelIndex& index) const;

    QSize CellSize() const override;
    int RowGap() const override { return 0; }
    int TopMargin() const override { return 0; }
    bool FillsView() const override { return true; }
    int PicturesMade() const override;
    void PaintRowGround(QPainter& painter, const QRect& strip) override;
    bool Paint(QPainter& painter, const QRect& cell, const QModelIndex& index, const TTileState& state) override;

private:
    /// The bay as a strip of 64 dip that is drawn side by side: wall, top face and front of the board.
    const QPixmap& Strip(qreal ratio);
    int FrontHeight() const;
    QString SectionOf(const QModelIndex& index) const;
    void PaintDivider(QPainter& painter, const QRect& cell, const QString& text) const;
    void PaintLabel(QPainter& painter, const QRect& front, const QModelIndex& index, const TTileState& state) const;

    TCoverCache& FCovers;
    int FStep = 1;
    TShelfOrder FOrder = soOther;
    QPixmap FStrip;
    QString FStripKey;
};

} // namespace Kestrune
