// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uGroupModel.h"
#include "uTableDelegate.h"
#include "uTableHeader.h"
#include "uTypedLetters.h"

#include <QSet>
#include <QTreeView>

#include <functional>
#include <vector>

namespace Kestrune {

class TCoverCache;

/// The table of releases or tracks. It decides nothing: a click on a heading is told to the logic, which sorts and sets
/// the marks.
class TAlbumTable : public QTreeView {
    Q_OBJECT
public:
    /// Keeps a pointer to the covers; null shows none. The list outlives the table.
    TAlbumTable(TCoverCache* covers, TListModel& list, QWidget* parent = nullptr);

    /// The rows as the table shows them: grouped, or the bare list.
    TGroupModel& Groups() { return FModel; }
    /// Whether cells are edited in place: by double click, F2 or a second click.
    void SetEditing(bool on);
    /// Where a sentence about a refused value goes.
    void SetOnRefusal(std::function<void(const QString&)> tell);
    /// Marks a text where it stands in the cells.
    void SetFindText(const QString& text);
    /// Opens or folds all groups.
    void ExpandGroups(bool expand);
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
    void scrollContentsBy(int dx, int dy) override;
    void mousePressEvent(QMouseEvent* event) override;
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    int sizeHintForColumn(int column) const override;

private:
    struct TShared {
        int Column = 0;
        int Least = 0;
        int Parts = 1; ///< of the spare width
    };
    QModelIndex NeighbourColumn(int direction) const;
    void Share();
    void SectionResized(int column);
    void FitCoverColumn();
    void DrawGroupRow(QPainter& painter, const QRect& row, const QModelIndex& index, bool hovered) const;
    void NoteExpansion(const QModelIndex& group, bool expanded);
    void RestoreExpansion();
    void FoldRemembered(const QModelIndex& parent);
    void NoteFolded(const QModelIndex& parent);

    TTableHeader* FHeader;
    TTableDelegate* FDelegate;
    TGroupModel FModel;
    QSet<QString> FFolded; // paths of folded groups
    bool FRestoring = false;
    std::vector<TShared> FShared;
    bool FSharing = false;
    QPersistentModelIndex FHovered;
    TLocate FLocate;
    TTypedLetters FTyped;
};

} // namespace Kestrune
