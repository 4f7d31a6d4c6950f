// SPDX-License-Identifier: GPL-3.0-or-later
#include "uExport_p.h"
#include "uReportPainter.h"
#include "uTHStrings.h"

#include <QGuiApplication>
#include <QIODevice>
#include <QPageLayout>
#include <QPainter>
#include <QPdfWriter>

namespace Kestrune {

using namespace Qt::StringLiterals;

bool WritePDF(TExportSource& source, QIODevice& file, const QString& title, const TExportProgress& progress)
{
    QPdfWriter writer(&file);
    writer.setTitle(title);
    writer.setCreator(QGuiApplication::applicationDisplayName());
    writer.setResolution(300);
    QPageLayout layout(QPageSize(QPageSize::A4),
                       WantsLandscape(source.ColumnCount()) ? QPageLayout::Landscape : QPageLayout::Portrait,
                       QMarginsF(36, 36, 36, 36), QPageLayout::Point);
    writer.setPageLayout(layout);
    TReportPainter report(source, {title, false}, layout.paintRect(QPageLayout::Point).size());
    QPainter painter;
    if (!painter.begin(&writer))
        throw EExportError(GetLanguageString(u"cSExportNoPDF"_s));
    painter.scale(writer.resolution() / 72.0, writer.resolution() / 72.0);
    for (int page = 0; page < report.PageCount(); ++page) {
        if (page > 0)
            writer.newPage();
        report.PaintPage(painter, page);
        if (progress && !progress(report.LastRowOf(page) + 1, source.RowCount()))
            return false;
    }
    return true;
}

} // namespace Kestrune
