// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uExport.h"

class QIODevice;

namespace Kestrune {

// Each writes a whole file; false when it was stopped.
bool WriteHTML(TExportSource& source, QIODevice& file, const QString& title, const TExportProgress& progress);
bool WriteXML(TExportSource& source, QIODevice& file, const QString& title, const TExportProgress& progress);
bool WriteCSV(TExportSource& source, QIODevice& file, const TExportProgress& progress);
bool WriteText(TExportSource& source, QIODevice& file, const TExportProgress& progress);
bool WriteExcel(TExportSource& source, const QString& path, const QString& title, const TExportProgress& progress);
bool WritePDF(TExportSource& source, QIODevice& file, const QString& title, const TExportProgress& progress);

/// Asks every so many rows, since asking may serve the event loop. A pass over all rows may be one of several.
class TProgressSteps {
public:
    TProgressSteps(const TExportProgress& progress, int count, int pass = 0, int passes = 1)
        : FProgress(progress), FCount(count), FPass(pass), FPasses(passes)
    {}
    bool GoOn(int row) const
    {
        return !FProgress || row % 64 != 0 || FProgress((FPass * FCount + row) / FPasses, FCount);
    }

private:
    const TExportProgress& FProgress;
    int FCount;
    int FPass;
    int FPasses;
};

} // namespace Kestrune
