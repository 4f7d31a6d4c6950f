// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uTilePainter.h"

#include <QCache>
#include <QPixmap>

namespace Kestrune {

/// A release that was found online, as a card: cover left, texts, service and whether it is owned already.
class THitsPainter : public TTilePainter {
public:
    QSize CellSize() const override;
    int RowGap() const override { return 10; }
    int ColumnGap() const override { return 8; }
    int TopMargin() const override { return 8; }
    bool StretchesColumns() const override { return true; }
    bool Paint(QPainter& painter, const QRect& cell, const QModelIndex& index, const TTileState& state) override;
    QString AccessibleText(const QModelIndex& index) const override;

private:
    QPixmap Cover(const QModelIndex& index, qreal ratio);
    void PaintTexts(QPainter& painter, const QRectF& area, const QModelIndex& index, bool selected) const;

    QCache<QString, QPixmap> FCovers{48 * 1024 * 1024};
};

} // namespace Kestrune
