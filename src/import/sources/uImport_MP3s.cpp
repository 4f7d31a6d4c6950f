// SPDX-License-Identifier: GPL-3.0-or-later
#include "uImport_MP3s.h"

#include "uDefaults.h"
#include "uFolderScan.h"
#include "uMP3Folder.h"
#include "uMP3Image.h"
#include "uTHStrings.h"

#include <atomic>
#include <exception>
#include <future>
#include <semaphore>
#include <utility>
#include <vector>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

// Reads the folders in their order on a thread of its own: the next one while the one taken last is being stored.
class TReadAhead {
public:
    TReadAhead(const TFolderLists& lists, const TMP3ScanOptions& options)
        : FReader(std::async(std::launch::async, [&] { Read(lists, options); }))
    {}
    ~TReadAhead()
    {
        FStopped = true;
        FRoom.release();
    }
    TReadAhead(const TReadAhead&) = delete;
    TReadAhead& operator=(const TReadAhead&) = delete;

    /// What came of the next folder; once for each.
    std::vector<TFolderStep> Take()
    {
        FRead.acquire();
        std::vector<TFolderStep> steps = std::move(FSteps);
        const std::exception_ptr failure = FFailure;
        FRoom.release();
        if (failure)
            std::rethrow_exception(failure);
        return steps;
    }

private:
    void Read(const TFolderLists& lists, const TMP3ScanOptions& options)
    {
        for (const QStringList& list : lists) {
            FRoom.acquire();
            if (FStopped)
                return;
            try {
                FSteps = ReadFolder(list, options);
            } catch (...) {
                FFailure = std::current_exception();
            }
            FRead.release();
        }
    }

    // The steps pass from thread to thread with the semaphores: room for the next, and the next is there.
    std::vector<TFolderStep> FSteps;
    std::exception_ptr FFailure;
    std::counting_semaphore<> FRoom{1};
    std::counting_semaphore<> FRead{0};
    std::atomic<bool> FStopped{false};
    std::future<void> FReader; // last: its end is waited for while the rest still lives
};

} // namespace

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
    TReadAhead ahead(lists, FOptions);
    for (size_t i = 0; i < lists.size() && !Terminated(); ++i)
        for (const TFolderStep& step : ahead.Take())
            TakeStep(step);
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
