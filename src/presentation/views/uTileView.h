// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uTileLayout.h"
#include "uTypedLetters.h"

#include <QAbstractItemView>

namespace Kestrune {

class TTilePainter;

/// Equal cells in rows over a list model, drawn by a painter that gives their size: thumbs, cards and shelf. Positions
/// are computed, never stored, so a hundred thousand rows cost nothing. Cells stand for rows; a current index of
/// another column (from a table that shares the selection) counts as its row.
class TTileView : public QAbstractItemView {
    Q_OBJECT
public:
    explicit TTileView(QWidget* parent = nullptr);
    ~TTileView() override;

    /// The painter stays the caller's and must outlive the view. Call again after it changed its size.
    void SetPainter(TTilePainter* painter);
    TTilePainter* Painter() const { return FPainter; }

    /// Finds the row for typed letters. Without it the titles of the model are searched, one row after the other.
    void SetLocate(TLocate locate) { FLocate = std::move(locate); }

    /// The layout for the present size, as painted.
    TTileLayout Layout() const;
    /// Rows in sight, first and last; first > last when there are none.
    std::pair<int, int> VisibleRows() const;

    QRect visualRect(const QModelIndex& index) const override;
    void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;
    QModelIndex indexAt(const QPoint& point) const override;
    void reset() override;
    void keyboardSearch(const QString& search) override;
    void setSelectionModel(QItemSelectionModel* selectionModel) override;

protected:
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    int horizontalOffset() const override { return 0; }
    int verticalOffset() const override;
    bool isIndexHidden(const QModelIndex&) const override { return false; }
    void setSelection(const QRect& rect, QItemSelectionModel::SelectionFlags command) override;
    QRegion visualRegionForSelection(const QItemSelection& selection) const override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void updateGeometries() override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override;
    void dataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight, const QList<int>& roles) override;
    void rowsInserted(const QModelIndex& parent, int start, int end) override;
    void rowsAboutToBeRemoved(const QModelIndex& parent, int start, int end) override;

private:
    int RowCount() const;
    QModelIndex IndexOfRow(int row) const;
    int LocateTitle(const QString& text, int fromRow) const;
    void PaintRows(QPainter& painter, const TTileLayout& layout, const QRect& part);
    void SetHoveredRow(int row);
    void UpdateRow(int row);

    TTilePainter* FPainter = nullptr; // not owned
    TLocate FLocate;
    TTypedLetters FTyped;
    int FHoveredRow = -1;
};

/// Makes tile views known to screen readers as lists. Called by the view's constructor; safe to call again.
void InstallTileViewAccessibility();

} // namespace Kestrune
