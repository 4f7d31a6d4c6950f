// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uReportPainter.h"

#include <functional>

class QPrinter;
class QWidget;

namespace Kestrune {

/// Told which page of how many is being printed; gives false to stop.
using TPrintProgress = std::function<bool(int page, int count)>;

/// Paints a report on a printer with its page setup, from the page asked for to the last one. The number of pages.
int PrintReport(QPrinter& printer, TExportSource& source, const TReportOptions& options,
                const TPrintProgress& progress);

/// Shows the report on paper, with page setup and printing.
void ShowPrintPreview(QPrinter& printer, TExportSource& source, const TReportOptions& options, QWidget* parent);

} // namespace Kestrune
