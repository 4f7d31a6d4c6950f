// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uImportAbstract.h"

#include <QElapsedTimer>
#include <QObject>
#include <QStringList>

#include <memory>

namespace Kestrune {

class TDataModuleMain;

/// One run of adding audio files: the worker, and what its window shows.
class TAddFilesRun : public QObject {
    Q_OBJECT

public:
    TAddFilesRun(TDataModuleMain& data, const QStringList& paths);
    ~TAddFilesRun() override;

    void Start();
    /// Ends the run after the release in work.
    void Cancel();

    bool Running() const { return FRunning; }
    bool Cancelled() const { return FCancelled; }
    int Position() const { return FPosition; }
    int Count() const { return FCount; }
    int Releases() const { return FReleases; }
    int Files() const { return FFiles; }
    /// What is being read, one line.
    QString CurrentItem() const { return FCurrentItem; }
    /// Why the run ended early, or empty.
    QString Error() const { return FError; }
    /// Seconds since the start, and the estimate of what is left (-1 unknown).
    double ElapsedSeconds() const;
    double RemainingSeconds() const;

Q_SIGNALS:
    void progressed();
    void logLine(const QString& line);
    void releaseStored(qint64 id, const QString& name);
    void fileFailed(const QString& file, const QString& sentence);
    void finished();

private:
    std::unique_ptr<TKRNImporter> FImporter;
    bool FRunning = false;
    bool FCancelled = false;
    int FPosition = 0;
    int FCount = 0;
    int FReleases = 0;
    int FFiles = 0;
    QString FCurrentItem;
    QString FError;
    QElapsedTimer FClock;
    double FSeconds = 0.0;
};

} // namespace Kestrune
