// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uImporterClass.h"

#include <QElapsedTimer>
#include <QObject>
#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

namespace Kestrune {

class TDataModuleMain;

/// What one worker is told to do.
struct TImportJob {
    const TImporterClass* Class = nullptr; ///< of the registry
    TKRNImporterJobType JobType = ijtImport;
    QString InputPath;
    QString Data;                                    ///< pasted text, or empty
    std::vector<TVariant> IDsArray{};                ///< keys of the releases to import; empty for all
    std::shared_ptr<const TImportOptions> Options{}; ///< null for those that the settings give
};

/// One run of a source: the worker, and what windows and commands show of it. A run that goes early ends its worker
/// and waits for it; nobody hears of that. Main thread.
class TImportRun : public QObject {
    Q_OBJECT

public:
    TImportRun(TDataModuleMain& data, const TImportJob& job);
    ~TImportRun() override;

    /// False when the source lacks a driver: no worker starts, and no signal comes.
    bool Start();
    /// What is lacking after Start has answered false.
    const std::optional<TMissingDriver>& MissingDriver() const { return FMissingDriver; }
    /// Ends the run after the release in work.
    void Cancel();

    bool Running() const { return FRunning; }
    bool Cancelled() const { return FCancelled; }
    int Position() const { return FPosition; }
    int Count() const { return FCount; }
    int Releases() const { return FReleases; }
    /// Items that the source counted: tracks, or files of audio folders. 0 before the end.
    int Tracks() const { return FTracks; }
    /// The source came to its own end, be it by Cancel.
    bool Done() const { return FDone; }
    /// What is being read, one line.
    QString CurrentItem() const { return FCurrentItem; }
    /// Why the run ended early, or empty.
    QString Error() const { return FError; }
    /// Seconds since the start, and the estimate of what is left (-1 unknown).
    double ElapsedSeconds() const;
    double RemainingSeconds() const;

Q_SIGNALS:
    void progressed();
    void logLines(const QStringList& lines);
    void releaseStored(qint64 id, const QString& name);
    void itemFailed(const QString& item, const QString& sentence);
    void releasesFound(const std::vector<Kestrune::TReleaseFoundItem>& releases);
    /// The source ended by itself: Releases and Tracks are final.
    void done();
    void failed();
    /// The worker is gone; the last signal.
    void finished();

private:
    void Listen();

    const TImporterClass* FClass; // not owned
    TImporterPtr FImporter;
    std::optional<TMissingDriver> FMissingDriver;
    bool FRunning = false;
    bool FCancelled = false;
    bool FDone = false;
    int FPosition = 0;
    int FCount = 0;
    int FReleases = 0;
    int FTracks = 0;
    QString FCurrentItem;
    QString FError;
    QElapsedTimer FClock;
    double FSeconds = 0.0;
};

/// The job of adding audio folders and files to the collection.
TImportJob AddFilesJob(const QStringList& paths);

} // namespace Kestrune
