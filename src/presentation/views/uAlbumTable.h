// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uCellDelegate.h"
#include "uTypedLetters.h"

#include <QHeaderView>
#include <QTreeView>

#include <vector>

namespace Kestrune {

class TCoverCache;

/// One column of the sort order, first one first.
struct TSortMark {
    int Column = 0;
    bool Ascending = true;
};

/// The headings of a table: bold and quiet, right-aligned over numbers, with an arrow and, when there is more than one,
/// the place in the sort order.
class TTableHeader : public QHeaderView {
    Q_OBJECT
public:
    explicit TTableHeader(QWidget* parent = nullptr);

    void SetSortMarks(std::vector<TSortMark> marks);
    const std::vector<TSortMark>& SortMarks() const { return FMarks; }
    QSize sizeHint() const override;
    /// The width that shows the whole heading, without an arrow.
    int CaptionWidth(int logicalIndex) const;

protected:
    friend class TAlbumTable;
    void paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const override;
    QSize sectionSizeFromContents(int logicalIndex) const override;

private:
    std::vector<TSortMark> FMarks;
};

/// The table of releases or tracks. It decides nothing: a click on a heading is told to the logic, which sorts and sets
/// the marks.
class TAlbumTable : public QTreeView {
    Q_OBJECT
public:
    /// Keeps a pointer to the covers; null shows none.
    explicit TAlbumTable(TCoverCache* covers, QWidget* parent = nullptr);

    void setModel(QAbstractItemModel* model) override;
    void SetRowSize(TRowSize size);
    /// Shows the sort order; a column that is too narrow for its arrow becomes wider.
    void SetSortMarks(std::vector<TSortMark> marks);
    /// Until the user sets a width, these columns share the room that the other ones in sight leave, and none gets less
    /// than now. Columns that do not fit at all follow behind the right edge.
    void ShareWidth(const std::vector<int>& columns);
    bool SharesWidth(int column) const;
    void StopSharing() { FShared.clear(); }
    TTableHeader* Header() { return FHeader; }
    /// Finds the row for typed letters; without it the view does nothing with them.
    void SetLocate(TLocate locate) { FLocate = std::move(locate); }
    void keyboardSearch(const QString& search) override;
    /// Widths that fit the heading and the rows in sight.
    void ApplyBestFit();

Q_SIGNALS:
    /// A heading was clicked; `add` with Ctrl or Shift: keep the present order and add this column.
    void sortRequested(int column, bool add);

protected:
    void drawRow(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    int sizeHintForColumn(int column) const override;

private:
    struct TShared {
        int Column = 0;
        int Least = 0;
    };
    QModelIndex NeighbourColumn(int direction) const;
    void Share();
    void SectionResized(int column);

    TTableHeader* FHeader;
    TCellDelegate* FDelegate;
    std::vector<TShared> FShared;
    bool FSharing = false;
    QPersistentModelIndex FHovered;
    TLocate FLocate;
    TTypedLetters FTyped;
};

} // namespace Kestrune
