// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uImportSource.h"
#include "uImporterClass.h"

#include <QObject>
#include <QStringList>

#include <memory>
#include <span>
#include <vector>

namespace Kestrune {

class TDataModuleMain;
class TImportRun;
struct TImportJob;
class TPrompt;

/// A page of the import wizard by its name. These are the pages of every source, in their order; a source may name
/// pages of its own, which come behind the source page.
using TImportPage = QString;
inline const TImportPage pWelcome = QStringLiteral("pWelcome");
inline const TImportPage pSelectSource = QStringLiteral("pSelectSource");
inline const TImportPage pSelectAlbumsToImport = QStringLiteral("pSelectAlbumsToImport");
inline const TImportPage pProgress = QStringLiteral("pProgress");
inline const TImportPage pFinish = QStringLiteral("pFinish");

/// One release of the source on the selection page.
struct TImportRow {
    TReleaseFoundItem Item;
    bool Ticked = false;
};

/// Logic of the import wizard: which pages there are, when one may go on, and the one worker that lists or imports.
/// It never looks inside a source, it asks its class. Main thread.
class TKRNImportForm : public QObject {
    Q_OBJECT

public:
    /// Data module and prompt outlive the form, as do the classes.
    TKRNImportForm(TDataModuleMain& data, TPrompt& prompt, std::span<const TImporterClass> classes);
    ~TKRNImportForm() override;

    std::span<const TImporterClass> Classes() const { return FClasses; }
    /// Row of the chosen source, or -1.
    int ClassIndex() const { return FClassIndex; }
    void ChooseClass(int row);
    /// The chosen source; only when ClassIndex is not -1.
    const TImporterClass& Class() const { return FClasses[static_cast<size_t>(FClassIndex)]; }
    /// What the source's own pages fill; only when ClassIndex is not -1. As the settings give them for each source
    /// chosen.
    TImportOptions& Options() { return *FOptions; }
    /// A page changed the options.
    void OptionsChanged() { Q_EMIT updated(); }

    const TImportPage& Page() const { return FPage; }
    /// The pages of the chosen source.
    std::vector<TImportPage> Pages() const;
    /// Caption of the Next button.
    QString NextCaption() const;

    bool NextEnabled() const;
    bool BackEnabled() const;
    bool CancelEnabled() const { return FPage != pFinish; }
    void Next();
    void Back();
    /// Asks first; ends the worker, or closes the wizard when none runs.
    void Cancel();
    void Finish();

    /// What the source page fills; only when ClassIndex is not -1.
    TImportSource& Source() { return FSource; }
    const TImportSource& Source() const { return FSource; }
    bool AcceptsDrops() const { return FPage == pSelectSource && FSource.AcceptsDrops(); }
    void DropFiles(const TFileCatcher& files);

    // Selection page
    const std::vector<TImportRow>& Rows() const { return FRows; }
    int TickedCount() const { return FTicked; }
    void SetTicked(int row, bool ticked);
    /// The rows that a button acts on: all that are shown, or the selected ones.
    void TickRows(const std::vector<int>& rows, bool ticked);
    /// Why the source could not be listed, or empty.
    QString ListingError() const { return FListingError; }
    /// Share of the source that is listed, 0 to 100.
    int ListingPercent() const;

    // Progress and finish page
    /// The worker of the page, or null.
    const TImportRun* Importer() const { return FImporter.get(); }
    /// "Importing data..." and the item in work, or the error.
    QString ProgressText() const { return FProgressText; }
    bool HasFailed() const { return FFailed; }
    /// Position, albums, elapsed and remaining time as far as they are known; after a failure what stays stored.
    QString ProgressFigures() const;
    QString FinishText() const { return FFinishText; }

Q_SIGNALS:
    void pageChanged();
    /// Enabling, texts or progress changed.
    void updated();
    void rowsReset();
    void rowsAppended(int first, int last);
    void ticksChanged();
    void logCleared();
    void logLines(const QStringList& lines);
    /// A part of the source that was passed over, while listing as while importing; or why the import failed.
    void logWarning(const QString& line);
    void releaseStored(qint64 id);
    void openUrlRequested(const QString& url);
    /// The wizard is over; true after Finish.
    void closed(bool finished);

private:
    struct TPageRule;
    static const TPageRule* RuleOf(const TImportPage& page);
    bool ClassChosen() const { return FClassIndex >= 0; }
    bool AlbumsListed() const { return !FImporter && !FRows.empty(); }
    void EnterPage(const TImportPage& from);
    void EnterSelection();
    void EnterProgress();
    void GoTo(const TImportPage& page);
    TImportPage Neighbour(int step) const;
    bool SourceGiven() const { return FSource.IsGiven(); }
    TImportJob Job(TKRNImporterJobType type) const;
    void StartImporter(TKRNImporterJobType type);
    void ListenToListing();
    void ListenToImport();
    void ImporterFinished();

    TDataModuleMain& FData;
    TPrompt& FPrompt;
    std::span<const TImporterClass> FClasses;
    int FClassIndex = -1;
    std::unique_ptr<TImportOptions> FOptions;
    TImportPage FPage = pWelcome;
    TImportSource FSource;
    std::vector<TImportRow> FRows;
    int FTicked = 0;
    QString FListingError;
    QString FProgressText;
    QString FFinishText;
    QString FStored; // after a failure: what stays
    bool FFailed = false;
    std::unique_ptr<TImportRun> FImporter;
};

} // namespace Kestrune
