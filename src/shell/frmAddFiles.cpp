// SPDX-License-Identifier: GPL-3.0-or-later
#include "frmAddFiles.h"

#include "uImport.h"

#include <QStringList>

namespace Kestrune {

using namespace Qt::StringLiterals;

TAddFilesRun::TAddFilesRun(TDataModuleMain& data, const QStringList& paths)
{
    FImporter = FindImporterClass(u"TKRNImporter_MP3s"_s)->Create(data);
    FImporter->SetInputPath(paths.join(u'|'));
    FImporter->SetOnProgress([this](TKRNImporter&, int position, int count, bool, const QString& item) {
        FPosition = position;
        FCount = count;
        const QStringList lines = item.split(u'\n', Qt::SkipEmptyParts);
        for (const QString& line : lines)
            Q_EMIT logLine(line);
        if (!lines.isEmpty())
            FCurrentItem = lines.back();
        Q_EMIT progressed();
    });
    FImporter->SetOnReleaseStored([this](TKRNImporter&, qint64 id, const QString& name) {
        ++FReleases;
        Q_EMIT releaseStored(id, name);
    });
    FImporter->SetOnFileError(
        [this](TKRNImporter&, const QString& file, const QString& error) { Q_EMIT fileFailed(file, error); });
    FImporter->SetOnDone([this](TKRNImporter&, int releases, int files) {
        FReleases = releases;
        FFiles = files;
    });
    FImporter->SetOnError([this](TKRNImporter&, const QString& error) { FError = error; });
    FImporter->OnTerminate = [this] {
        FSeconds = ElapsedSeconds();
        FRunning = false;
        Q_EMIT finished();
    };
}

TAddFilesRun::~TAddFilesRun() = default;

void TAddFilesRun::Start()
{
    FRunning = true;
    FClock.start();
    FImporter->Start();
}

void TAddFilesRun::Cancel()
{
    FCancelled = true;
    FImporter->Terminate();
}

double TAddFilesRun::ElapsedSeconds() const
{
    return FRunning ? static_cast<double>(FClock.elapsed()) / 1000.0 : FSeconds;
}

double TAddFilesRun::RemainingSeconds() const
{
    return FPosition > 0 && FCount > 0 ? ElapsedSeconds() / FPosition * (FCount - FPosition) : -1.0;
}

} // namespace Kestrune
