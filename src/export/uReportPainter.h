// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uExportSource.h"

#include <QRectF>
#include <QSizeF>
#include <QString>

#include <vector>

class QPainter;

namespace Kestrune {

/// How a report looks.
struct TReportOptions {
    QString Title;
    bool CoverSheet = false; ///< a grid of covers in place of a table
};

/// The pages of a report, for paper and PDF: a table with repeated headings and groups, or a sheet of covers. Lengths
/// are points (1/72 inch). The source outlives it.
class TReportPainter {
public:
    /// `page` is the part of the paper that may be printed on.
    TReportPainter(TExportSource& source, TReportOptions options, const QSizeF& page);

    int PageCount() const { return static_cast<int>(FPages.size()); }
    /// Paints a page, counted from 0, into the rectangle from (0, 0) of the page's size.
    void PaintPage(QPainter& painter, int page);
    /// The last row that is on a page or before it.
    int LastRowOf(int page) const;

private:
    // A row, or the heading of a group in front of it.
    struct TLine {
        int Row = 0;
        int Group = -1; // place in FGroups
    };

    void MeasureColumns();
    void MakeLines();
    void Paginate();
    qreal LineHeightOf(const TLine& line) const;
    void PaintHeader(QPainter& painter, int page);
    void PaintHeadings(QPainter& painter, qreal top);
    void PaintRow(QPainter& painter, qreal top, int row);
    void PaintGroup(QPainter& painter, qreal top, const TExportGroup& group);
    void PaintCovers(QPainter& painter, int page);
    void PaintCover(QPainter& painter, const QRectF& box, int row);
    void PaintPicture(QPainter& painter, const QRectF& box, int row);

    TExportSource& FSource;
    TReportOptions FOptions;
    QSizeF FPage;
    std::vector<qreal> FWidths;
    std::vector<TExportGroup> FGroups;
    std::vector<TLine> FLines;
    std::vector<int> FPages; // first line, or first row of a cover sheet, of each page
};

/// True when this many columns are better printed on a page that lies.
bool WantsLandscape(int columns);

} // namespace Kestrune
