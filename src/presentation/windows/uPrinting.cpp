// SPDX-License-Identifier: GPL-3.0-or-later
#include "uPrinting.h"

#include "uTHStrings.h"

#include <QPainter>
#include <QPrintPreviewDialog>
#include <QPrinter>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

int PrintReport(QPrinter& printer, TExportSource& source, const TReportOptions& options, const TPrintProgress& progress)
{
    const QPageLayout layout = printer.pageLayout();
    TReportPainter report(source, options, layout.paintRect(QPageLayout::Point).size());
    // Pages of the print dialog count from 1; 0 means all.
    const int first = std::max(0, printer.fromPage() - 1);
    const int last = printer.toPage() > 0 ? std::min(printer.toPage(), report.PageCount()) : report.PageCount();
    QPainter painter;
    if (first >= last || !painter.begin(&printer))
        return 0;
    painter.scale(printer.resolution() / 72.0, printer.resolution() / 72.0);
    for (int page = first; page < last; ++page) {
        if (page > first)
            printer.newPage();
        report.PaintPage(painter, page);
        if (progress && !progress(page + 1, last))
            return page + 1 - first;
    }
    return last - first;
}

void ShowPrintPreview(QPrinter& printer, TExportSource& source, const TReportOptions& options, QWidget* parent)
{
    QPrintPreviewDialog dialog(&printer, parent);
    dialog.setWindowTitle(GetLanguageString(u"cSactPrintPreview"_s));
    dialog.resize(900, 720);
    QObject::connect(&dialog, &QPrintPreviewDialog::paintRequested, &dialog,
                     [&](QPrinter* target) { PrintReport(*target, source, options, {}); });
    dialog.exec();
}

} // namespace Kestrune
