// SPDX-License-Identifier: GPL-3.0-or-later
#include "uImportRun.h"

#include "uImport.h"

namespace Kestrune {

using namespace Qt::StringLiterals;

TImportRun::TImportRun(TDataModuleMain& data, const TImportJob& job)
    : FClass(job.Class), FImporter(job.Class->Create(data))
{
    FImporter->SetJobType(job.JobType);
    FImporter->SetInputPath(job.InputPath);
    FImporter->SetData(job.Data);
    FImporter->SetIDsArray(job.IDsArray);
    FImporter->SetOptions(job.Options ? job.Options : job.Class->MakeOptions());
    Listen();
}

// The worker may wait for the main thread right now, and its call is served here while the worker ends: it then raises
// events of a run whose parts are all still there, but whose listeners are gone or going.
TImportRun::~TImportRun()
{
    blockSignals(true);
    FImporter.reset();
    blockSignals(false);
}

void TImportRun::Listen()
{
    FImporter->SetOnProgress([this](TKRNImporter&, int position, int count, bool, const QString& items) {
        FPosition = position;
        FCount = count;
        FCurrentItem = items.mid(items.lastIndexOf(u'\n') + 1);
        const QStringList lines = items.split(u'\n', Qt::SkipEmptyParts);
        if (!lines.isEmpty())
            Q_EMIT logLines(lines);
        Q_EMIT progressed();
    });
    FImporter->SetOnReleaseStored([this](TKRNImporter&, qint64 id, const QString& name) {
        ++FReleases;
        Q_EMIT releaseStored(id, name);
    });
    FImporter->SetOnItemError(
        [this](TKRNImporter&, const QString& item, const QString& error) { Q_EMIT itemFailed(item, error); });
    FImporter->SetOnReleaseFound(
        [this](TKRNImporter&, const std::vector<TReleaseFoundItem>& releases) { Q_EMIT releasesFound(releases); });
    FImporter->SetOnDone([this](TKRNImporter&, int releases, int tracks) {
        FReleases = releases;
        FTracks = tracks;
        FDone = true;
        Q_EMIT done();
    });
    FImporter->SetOnError([this](TKRNImporter&, const QString& error) {
        FError = error;
        Q_EMIT failed();
    });
    FImporter->OnTerminate = [this] {
        FSeconds = ElapsedSeconds();
        FRunning = false;
        Q_EMIT finished();
    };
}

bool TImportRun::Start()
{
    FMissingDriver = FClass->FindMissingDriver();
    if (FMissingDriver)
        return false;
    FRunning = true;
    FClock.start();
    FImporter->Start();
    return true;
}

void TImportRun::Cancel()
{
    FCancelled = true;
    FImporter->Terminate();
}

double TImportRun::ElapsedSeconds() const
{
    return FRunning ? static_cast<double>(FClock.elapsed()) / 1000.0 : FSeconds;
}

double TImportRun::RemainingSeconds() const
{
    return FPosition > 0 && FCount > 0 ? ElapsedSeconds() / FPosition * (FCount - FPosition) : -1.0;
}

TImportJob AddFilesJob(const QStringList& paths)
{
    return {.Class = FindImporterClass(u"TKRNImporter_MP3s"_s), .InputPath = paths.join(u'|'), .Data = {}};
}

} // namespace Kestrune
