// SPDX-License-Identifier: GPL-3.0-or-later
#include "uReportPainter.h"

#include "uTHStrings.h"

#include <QBuffer>
#include <QDate>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QImageReader>
#include <QLocale>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr qreal HeaderHeight = 26;
constexpr qreal HeadingHeight = 18;
constexpr qreal TextRow = 14;
constexpr qreal PictureRow = 34;
constexpr qreal GroupRow = 18;
constexpr qreal PictureColumn = 36;
constexpr qreal CellSpace = 6;
constexpr int SampledRows = 200;
constexpr int LandscapeFrom = 7; // columns
constexpr qreal CoverCell = 124;
constexpr qreal CoverTexts = 30;
constexpr int LargestPicture = 600; // pixels of a side

const QColor Ink(0x1F, 0x1D, 0x1A);
const QColor SoftInk(0x57, 0x52, 0x4A);
const QColor Rule(0xCF, 0xCA, 0xC0);
const QColor Ground(0xF3, 0xF1, 0xED);

// Sizes are points: the painter's unit is the point.
QFont ReportFont(qreal size, bool bold = false)
{
    QFont font = QGuiApplication::font();
    font.setPixelSize(static_cast<int>(std::lround(size)));
    font.setBold(bold);
    return font;
}

void DrawReportText(QPainter& painter, const QRectF& box, const QString& text, Qt::Alignment side)
{
    QString line = text;
    line.replace(u'\n', u' ');
    painter.drawText(box, static_cast<int>(side | Qt::AlignVCenter) | Qt::TextSingleLine,
                     QFontMetricsF(painter.font()).elidedText(line, Qt::ElideRight, box.width()));
}

} // namespace

bool WantsLandscape(int columns) { return columns >= LandscapeFrom; }

TReportPainter::TReportPainter(TExportSource& source, TReportOptions options, const QSizeF& page)
    : FSource(source), FOptions(std::move(options)), FPage(page)
{
    if (!FOptions.CoverSheet) {
        MeasureColumns();
        MakeLines();
    }
    Paginate();
}

void TReportPainter::MeasureColumns()
{
    const QFontMetricsF metrics(ReportFont(8.5));
    const QFontMetricsF bold(ReportFont(8.5, true));
    for (int column = 0; column < FSource.ColumnCount(); ++column)
        FWidths.push_back(FSource.IsThumbnail(column)
                              ? PictureColumn
                              : bold.horizontalAdvance(FSource.Columns()[static_cast<size_t>(column)].Caption));
    for (int row = 0; row < std::min(SampledRows, FSource.RowCount()); ++row) {
        const std::vector<TVariant> values = FSource.RowValues(row);
        for (int column = 0; column < FSource.ColumnCount(); ++column) {
            qreal& width = FWidths[static_cast<size_t>(column)];
            if (!FSource.IsThumbnail(column))
                width = std::max(width, std::min<qreal>(190, metrics.horizontalAdvance(FSource.Text(values, column))));
        }
    }
    const qreal space = CellSpace * static_cast<qreal>(FWidths.size());
    const qreal sum = std::accumulate(FWidths.begin(), FWidths.end(), 0.0);
    const qreal room = FPage.width() - space;
    if (sum > room) {
        // Too wide: the widest give in until all fits, so that short columns keep their texts whole.
        qreal least = 0.0;
        qreal most = *std::ranges::max_element(FWidths);
        for (int halving = 0; halving < 20; ++halving) {
            const qreal cap = (least + most) / 2;
            const qreal capped = std::accumulate(FWidths.begin(), FWidths.end(), 0.0,
                                                 [cap](qreal so, qreal width) { return so + std::min(width, cap); });
            (capped > room ? most : least) = cap;
        }
        for (qreal& width : FWidths)
            width = std::min(width, least);
    } else if (sum > 0.6 * room) { // a table that nearly fills the page is stretched to it
        for (qreal& width : FWidths)
            width *= room / sum;
    }
}

void TReportPainter::MakeLines()
{
    FSource.Rewind();
    for (int row = 0; row < FSource.RowCount(); ++row) {
        for (TExportGroup& group : FSource.GroupsAt(row)) {
            FLines.push_back({row, static_cast<int>(FGroups.size())});
            FGroups.push_back(std::move(group));
        }
        FLines.push_back({row, -1});
    }
}

qreal TReportPainter::LineHeightOf(const TLine& line) const
{
    return line.Group >= 0 ? GroupRow : FSource.HasThumbnails() ? PictureRow : TextRow;
}

void TReportPainter::Paginate()
{
    FPages = {0};
    if (FOptions.CoverSheet) {
        const int columns = std::max(1, static_cast<int>(FPage.width() / CoverCell));
        const int rows = std::max(1, static_cast<int>((FPage.height() - HeaderHeight) / (CoverCell + CoverTexts)));
        for (int row = columns * rows; row < FSource.RowCount(); row += columns * rows)
            FPages.push_back(row);
        return;
    }
    const qreal room = FPage.height() - HeaderHeight - HeadingHeight;
    qreal used = 0;
    for (int line = 0; line < static_cast<int>(FLines.size()); ++line) {
        const TLine& now = FLines[static_cast<size_t>(line)];
        // The heading of a group does not stand alone at the foot of a page.
        const qreal needed = LineHeightOf(now) + (now.Group >= 0 ? LineHeightOf({now.Row, -1}) : 0.0);
        if (used + needed > room && used > 0) {
            FPages.push_back(line);
            used = 0;
        }
        used += LineHeightOf(now);
    }
}

int TReportPainter::LastRowOf(int page) const
{
    const bool last = page + 1 >= PageCount();
    if (FOptions.CoverSheet)
        return last ? FSource.RowCount() - 1 : FPages[static_cast<size_t>(page) + 1] - 1;
    if (FLines.empty())
        return -1;
    return last ? FLines.back().Row : FLines[static_cast<size_t>(FPages[static_cast<size_t>(page) + 1]) - 1].Row;
}

void TReportPainter::PaintPage(QPainter& painter, int page)
{
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform | QPainter::TextAntialiasing);
    PaintHeader(painter, page);
    if (FOptions.CoverSheet)
        return PaintCovers(painter, page);
    qreal y = HeaderHeight;
    PaintHeadings(painter, y);
    y += HeadingHeight;
    const int first = FPages[static_cast<size_t>(page)];
    const int end = page + 1 < PageCount() ? FPages[static_cast<size_t>(page) + 1] : static_cast<int>(FLines.size());
    for (int i = first; i < end; ++i) {
        const TLine& line = FLines[static_cast<size_t>(i)];
        if (line.Group >= 0)
            PaintGroup(painter, y, FGroups[static_cast<size_t>(line.Group)]);
        else
            PaintRow(painter, y, line.Row);
        y += LineHeightOf(line);
    }
}

void TReportPainter::PaintHeader(QPainter& painter, int page)
{
    const QRectF box(0, 0, FPage.width(), 16);
    painter.setPen(Ink);
    painter.setFont(ReportFont(11, true));
    DrawReportText(painter, box.adjusted(0, 0, -160, 0), FOptions.Title, Qt::AlignLeft);
    painter.setPen(SoftInk);
    painter.setFont(ReportFont(8.5));
    const QString place = GetLanguageString(u"cSReportPage"_s).arg(page + 1).arg(PageCount());
    const QString date = QLocale().toString(QDate::currentDate(), QLocale::ShortFormat);
    DrawReportText(painter, box, date + u"  ·  "_s + place, Qt::AlignRight);
    painter.setPen(QPen(Rule, 0.5));
    painter.drawLine(QPointF(0, 19), QPointF(FPage.width(), 19));
}

void TReportPainter::PaintHeadings(QPainter& painter, qreal top)
{
    painter.setFont(ReportFont(8.5, true));
    painter.setPen(SoftInk);
    qreal x = 0;
    for (int column = 0; column < FSource.ColumnCount(); ++column) {
        const qreal width = FWidths[static_cast<size_t>(column)];
        if (!FSource.IsThumbnail(column))
            DrawReportText(painter, {x, top, width, HeadingHeight - 4},
                           FSource.Columns()[static_cast<size_t>(column)].Caption,
                           FSource.IsRightAligned(column) ? Qt::AlignRight : Qt::AlignLeft);
        x += width + CellSpace;
    }
    painter.setPen(QPen(Rule, 0.8));
    painter.drawLine(QPointF(0, top + HeadingHeight - 3), QPointF(FPage.width(), top + HeadingHeight - 3));
}

void TReportPainter::PaintGroup(QPainter& painter, qreal top, const TExportGroup& group)
{
    const qreal left = 12.0 * group.Level;
    painter.fillRect(QRectF(left, top + 2, FPage.width() - left, GroupRow - 3), Ground);
    painter.setFont(ReportFont(9, true));
    painter.setPen(Ink);
    DrawReportText(painter, {left + 4, top + 2, FPage.width() - left - 8, GroupRow - 3},
                   u"%1: %2 (%3)"_s.arg(group.Caption, group.Value).arg(group.Count), Qt::AlignLeft);
}

void TReportPainter::PaintRow(QPainter& painter, qreal top, int row)
{
    const std::vector<TVariant> values = FSource.RowValues(row);
    const qreal height = FSource.HasThumbnails() ? PictureRow : TextRow;
    painter.setFont(ReportFont(8.5));
    painter.setPen(Ink);
    qreal x = 0;
    for (int column = 0; column < FSource.ColumnCount(); ++column) {
        const QRectF box(x, top, FWidths[static_cast<size_t>(column)], height);
        if (FSource.IsThumbnail(column))
            PaintPicture(painter, box.adjusted(0, 2, 0, -2), row);
        else
            DrawReportText(painter, box, FSource.Text(values, column),
                           FSource.IsRightAligned(column) ? Qt::AlignRight : Qt::AlignLeft);
        x += box.width() + CellSpace;
    }
    painter.setPen(QPen(Rule, 0.3));
    painter.drawLine(QPointF(0, top + height), QPointF(FPage.width(), top + height));
}

void TReportPainter::PaintPicture(QPainter& painter, const QRectF& box, int row)
{
    QByteArray bytes = FSource.Thumbnail(row);
    QBuffer buffer(&bytes);
    QImageReader reader(&buffer);
    const QSize size = reader.size();
    if (size.isEmpty() || size.width() > 20000 || size.height() > 20000)
        return; // a hostile picture would ask for any number of bytes
    if (std::max(size.width(), size.height()) > LargestPicture)
        reader.setScaledSize(size.scaled(LargestPicture, LargestPicture, Qt::KeepAspectRatio));
    const QImage picture = reader.read();
    if (picture.isNull())
        return;
    const QSizeF fitted = QSizeF(picture.size()).scaled(box.size(), Qt::KeepAspectRatio);
    painter.drawImage(
        QRectF(box.center().x() - fitted.width() / 2, box.bottom() - fitted.height(), fitted.width(), fitted.height()),
        picture);
}

void TReportPainter::PaintCovers(QPainter& painter, int page)
{
    const int columns = std::max(1, static_cast<int>(FPage.width() / CoverCell));
    const qreal width = FPage.width() / columns;
    const int first = FPages[static_cast<size_t>(page)];
    for (int row = first; row <= LastRowOf(page); ++row) {
        const int at = row - first;
        PaintCover(painter,
                   QRectF(at % columns * width, HeaderHeight + at / columns * (CoverCell + CoverTexts), width,
                          CoverCell + CoverTexts),
                   row);
    }
}

void TReportPainter::PaintCover(QPainter& painter, const QRectF& box, int row)
{
    const qreal side = CoverCell - 12;
    const QRectF square(box.left() + (box.width() - side) / 2, box.top(), side, side);
    const auto [title, artist] = FSource.Names(row);
    painter.setPen(QPen(Rule, 0.5));
    if (FSource.Thumbnail(row).isEmpty())
        painter.drawRect(square);
    else
        PaintPicture(painter, square, row);
    painter.setPen(Ink);
    painter.setFont(ReportFont(8.5, true));
    DrawReportText(painter, {square.left(), square.bottom() + 2, side, 12}, title, Qt::AlignLeft);
    painter.setPen(SoftInk);
    painter.setFont(ReportFont(8));
    DrawReportText(painter, {square.left(), square.bottom() + 13, side, 12}, artist, Qt::AlignLeft);
}

} // namespace Kestrune
