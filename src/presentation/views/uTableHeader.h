// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHeaderView>

#include <functional>
#include <map>
#include <vector>

namespace Kestrune {

class TFilterCell;

/// One column of the sort order, first one first.
struct TSortMark {
    int Column = 0;
    bool Ascending = true;
};

/// The headings of a table: bold and quiet, right-aligned over numbers, with an arrow and, when there is more than one,
/// the place in the sort order. Below them, when it is switched on, a row of filters: one field for each heading in
/// sight.
class TTableHeader : public QHeaderView {
    Q_OBJECT
public:
    explicit TTableHeader(QWidget* parent = nullptr);

    void SetSortMarks(std::vector<TSortMark> marks);
    const std::vector<TSortMark>& SortMarks() const { return FMarks; }
    QSize sizeHint() const override;
    /// The width that shows the whole heading, without an arrow.
    int CaptionWidth(int logicalIndex) const;

    void ShowFilterRow(bool show);
    bool FilterRowShown() const { return FFilterRow; }
    /// The text in force for a column, and what a column offers in a list.
    std::function<QString(int column)> FilterTextOf;
    std::function<QStringList(int column)> FilterChoicesOf;
    /// Shows the texts that are in force.
    void RefreshFilters();
    /// Marks the field of a column as not understood.
    void MarkFilter(int column, bool wrong);
    /// The field of a column in sight, or null.
    TFilterCell* FilterCell(int column) const;
    void FocusFilter(int column);

Q_SIGNALS:
    void filterChanged(int column, const QString& text);
    /// A heading was dropped above the headings.
    void groupRequested(int column);
    /// Esc in a filter: back to the rows.
    void leaveRequested();

protected:
    friend class TAlbumTable;
    void paintEvent(QPaintEvent* event) override;
    void paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const override;
    QSize sectionSizeFromContents(int logicalIndex) const override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void updateGeometries() override;

private:
    int HeadingHeight() const;
    int FilterHeight() const;
    void PlaceFilters();

    std::vector<TSortMark> FMarks;
    std::map<int, TFilterCell*> FCells; // children, for the headings in sight
    bool FFilterRow = false;
    int FPressed = -1;
    int FPressedVisual = -1;
};

} // namespace Kestrune
