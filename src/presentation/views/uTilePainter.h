// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QModelIndex>
#include <QRect>
#include <QSize>
#include <QString>

class QPainter;

namespace Kestrune {

/// How a cell looks at the moment.
struct TTileState {
    bool Hovered = false;
    bool Selected = false;
    bool Current = false;     ///< the cell that the keyboard is on
    bool ViewFocused = false; ///< the view has the keyboard
    bool MayDecode = true;    ///< false once this repaint has spent its time on pictures
};

/// Shape of the cells of a tile view: sizes, and the painting of one cell. Thumbs, cards and shelf each have one.
class TTilePainter {
public:
    virtual ~TTilePainter();

    /// Smallest cell in dip for the current fonts.
    virtual QSize CellSize() const = 0;
    virtual int RowGap() const = 0;
    virtual int ColumnGap() const { return 0; }
    /// Free space above the first and below the last row.
    virtual int TopMargin() const { return 4; }
    /// True when the cells themselves take the spare width, false when the gaps do.
    virtual bool StretchesColumns() const { return false; }
    /// Paints what lies behind a whole row of cells; the strip has the width of the view.
    virtual void PaintRowGround(QPainter&, const QRect&) {}
    /// True when rows without cells are painted down to the lower edge of the view.
    virtual bool FillsView() const { return false; }
    /// Paints one cell. False when a picture was not at hand and the cell has to be painted again.
    virtual bool Paint(QPainter& painter, const QRect& cell, const QModelIndex& index, const TTileState& state) = 0;
    /// How many pictures were made for cells so far: a repaint makes at least one of those that it lacks.
    virtual int PicturesMade() const { return 0; }
    /// What a screen reader says for the cell.
    virtual QString AccessibleText(const QModelIndex& index) const;
};

} // namespace Kestrune
