// SPDX-License-Identifier: GPL-3.0-or-later
#include "uImport_MP3s.h"

#include "uColumnNames.h"
#include "uFolderScan.h"
#include "uMP3Folder.h"
#include "uReadAhead.h"

#include <optional>
#include <utility>
#include <vector>

namespace Kestrune {

using namespace Qt::StringLiterals;

void TKRNImporter_MP3s::Import()
{
    const TControlsOff controlsOff(*this);
    FOptions = Options<TMP3ScanOptions>();
    FOptions.Pictures = JobType() == ijtImport;
    TFolderLists lists =
        CollectFolderFiles(InputPath(), StopToken(), [this](const QString& folder, const QString& reason) {
            DoOnItemError(folder, QString(FOptions.UnreadableFolder).replace(u"%s"_s, reason));
        });
    MergeDiscFolders(lists);
    for (const QStringList& list : lists)
        FFilesCount += static_cast<int>(list.size());
    using TSteps = std::vector<TFolderStep>;
    TReadAhead<TSteps> ahead([&lists, this, next = size_t(0)]() mutable {
        return next < lists.size() ? std::optional(ReadFolder(lists[next++], FOptions)) : std::nullopt;
    });
    while (!Terminated()) {
        const std::optional<TSteps> steps = ahead.Take();
        if (!steps)
            break;
        for (const TFolderStep& step : *steps)
            TakeStep(step);
    }
    DoOnImportDone(FReleasesCount, FPosition);
}

void TKRNImporter_MP3s::TakeStep(const TFolderStep& step)
{
    if (step.Release)
        TakeRelease(*step.Release, step.Key);
    if (!step.FailedFile.isEmpty())
        DoOnItemError(step.FailedFile, step.Failure);
    if (!step.Text.isEmpty())
        FLastText = step.Text;
    if (step.FileDone)
        DoOnProgress(++FPosition, FFilesCount, false, FLastText);
}

void TKRNImporter_MP3s::TakeRelease(const TAlbumRelease& release, const TVariant& key)
{
    if (!IsWanted(key))
        return;
    if (JobType() == ijtImport) {
        StoreRelease(release, true);
    } else {
        const QString year = VarToStr(release[Col::ReleaseYear]);
        DoOnReleaseFound(key, VarToStr(release[Col::Artist]), VarToStr(release[Col::ReleaseName]),
                         year == "0"_L1 ? QString() : year, static_cast<int>(release.Tracks.size()));
    }
    ++FReleasesCount;
}

} // namespace Kestrune
