// SPDX-License-Identifier: GPL-3.0-or-later
#include "uImport_MP3s.h"

#include "uDefaults.h"
#include "uFolderScan.h"
#include "uMP3Folder.h"
#include "uMP3Image.h"
#include "uReadAhead.h"
#include "uTHStrings.h"

#include <optional>
#include <utility>
#include <vector>

namespace Kestrune {

using namespace Qt::StringLiterals;

TMP3ScanOptions TMP3ScanOptions::FromSettings()
{
    TMP3ScanOptions options;
    options.FindCovers = Defaults().MP3ScanFindCovers;
    options.BackCover = Defaults().MP3ScanBackCover;
    options.MediaCover = Defaults().MP3ScanMediaCover;
    options.OtherImages = Defaults().MP3ScanOtherImages;
    options.ThumbHeight = Defaults().LargeHeight;
    options.VariousArtists = GetLanguageString(u"cSVariousArtists"_s);
    options.Digital = GetLanguageString(u"cSDigital"_s);
    options.UnreadableFile = GetLanguageString(u"cSImporterMP3sUnreadableFile"_s);
    options.UnknownImage = GetLanguageString(u"cSImporterMP3sUnknownImage"_s);
    options.ImageWithoutAudio = GetLanguageString(u"cSImporterMP3sImageWithoutAudio"_s);
    options.ReadDiscImage = ProcessISO;
    options.ReadStreamLength = TransportStreamSeconds;
    return options;
}

TKRNImporter_MP3s::TKRNImporter_MP3s(TDataModuleMain& dataModule)
    : TKRNImporter(dataModule), FOptions(TMP3ScanOptions::FromSettings())
{}

TKRNImporter_MP3s::~TKRNImporter_MP3s()
{
    Terminate();
    WaitFor();
}

QString TKRNImporter_MP3s::GetDisplayName() { return GetLanguageString(u"cSImporterMP3sDisplayName"_s); }

QString TKRNImporter_MP3s::GetDisplayDesc() { return GetLanguageString(u"cSImporterMP3sDisplayDesc"_s); }

QString TKRNImporter_MP3s::GetSelectSourceDescription()
{
    return GetLanguageString(u"cSImporterMP3sSelectSourceDescription"_s);
}

void TKRNImporter_MP3s::Import()
{
    const TControlsOff controlsOff(*this);
    FOptions.Pictures = JobType() == ijtImport;
    TFolderLists lists =
        CollectFolderFiles(InputPath(), StopToken(), [this](const QString& folder, const QString& reason) {
            DoOnFileError(folder, GetLanguageString(u"cSFolderUnreadable"_s).replace(u"%s"_s, reason));
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
        DoOnFileError(step.FailedFile, step.Failure);
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
        const QString year = VarToStr(release[u"ReleaseYear"_s]);
        DoOnReleaseFound(key, VarToStr(release[u"Artist"_s]), VarToStr(release[u"ReleaseName"_s]),
                         year == "0"_L1 ? QString() : year, static_cast<int>(release.Tracks.size()));
    }
    ++FReleasesCount;
}

} // namespace Kestrune
