// SPDX-License-Identifier: GPL-3.0-or-later
#include "uImportAbstract.h"

#include "dmMain.h"
#include "uDebugLog.h"
#include "uObjs.h"

#include <algorithm>
#include <exception>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int ProgressBatch = 50;
constexpr size_t ReleaseBatch = 20;

} // namespace

void TKRNImporter::Execute()
{
    try {
        Import();
        FlushPendingReleases();
    } catch (const std::exception& failure) {
        DoOnError(QString::fromUtf8(failure.what()));
    }
    Synchronize(TakeFileErrors());
}

void TKRNImporter::DoOnProgress(int position, int count, bool isRelease, const QString& currentItem)
{
    if (!FOnProgress)
        return;
    if (!FPendingLogItems.isEmpty())
        FPendingLogItems += u'\n';
    FPendingLogItems += currentItem;
    if (!isRelease && position % ProgressBatch != 0 && position < count - 1)
        return;
    const QString items = std::exchange(FPendingLogItems, QString());
    Synchronize([&, deliverErrors = TakeFileErrors()] {
        deliverErrors();
        FOnProgress(*this, position, count, isRelease, items);
    });
}

void TKRNImporter::DoOnReleaseFound(const TVariant& releaseID, const QString& artist, const QString& releaseName,
                                    const QString& releaseYear, int tracksCount)
{
    if (!FOnReleaseFound)
        return;
    FPendingReleases.push_back({releaseID, artist, releaseName, releaseYear, tracksCount});
    if (FPendingReleases.size() >= ReleaseBatch)
        FlushPendingReleases();
}

void TKRNImporter::FlushPendingReleases()
{
    if (FPendingReleases.empty())
        return;
    const std::vector<TReleaseFoundItem> releases = std::exchange(FPendingReleases, {});
    Synchronize([&] { FOnReleaseFound(*this, releases); });
}

void TKRNImporter::DoOnFileError(const QString& file, const QString& error)
{
    if (FOnFileError)
        FPendingFileErrors.emplace_back(file, error);
}

// The delivery of what has been collected, to be run on the main thread.
std::function<void()> TKRNImporter::TakeFileErrors()
{
    return [this, errors = std::exchange(FPendingFileErrors, {})] {
        for (const auto& [file, error] : errors)
            FOnFileError(*this, file, error);
    };
}

void TKRNImporter::DoOnImportDone(int releasesCount, int tracksCount)
{
    Synchronize([&, deliverErrors = TakeFileErrors()] {
        deliverErrors();
        if (FOnDone)
            FOnDone(*this, releasesCount, tracksCount);
    });
}

void TKRNImporter::DoOnError(const QString& error)
{
    if (FOnError)
        Synchronize([&] { FOnError(*this, error); });
}

bool TKRNImporter::IsWanted(const TVariant& releaseID) const
{
    // A key that went through a command line comes back as text.
    const auto same = [&](const TVariant& key) {
        return VarEquals(key, releaseID) || VarToStr(key) == VarToStr(releaseID);
    };
    return FIDsArray.empty() || std::ranges::any_of(FIDsArray, same);
}

void TKRNImporter::StoreRelease(const TAlbumRelease& release, bool assignNewNo)
{
    const QString name = VarToStr(release[u"Artist"_s]) + u" - "_s + VarToStr(release[u"ReleaseName"_s]);
    Synchronize([&, deliverErrors = TakeFileErrors()] {
        FDataModule.AddAlbumReleaseToDB(release, assignNewNo);
        deliverErrors();
        if (FOnReleaseStored)
            FOnReleaseStored(*this, FDataModule.LastAddedReleaseID(), name);
    });
}

TKRNImporter::TControlsOff::TControlsOff(TKRNImporter& importer) : FImporter(importer)
{
    if (importer.FJobType == ijtImport)
        importer.Synchronize([&] { importer.FDataModule.DisableControlsAll(); });
}

TKRNImporter::TControlsOff::~TControlsOff()
{
    if (FImporter.FJobType != ijtImport)
        return;
    try {
        FImporter.Synchronize([this] { FImporter.FDataModule.EnableControlsAll(); });
    } catch (const std::exception& failure) {
        DebugLog(u"[Import] Views could not be switched on again: "_s + QString::fromUtf8(failure.what()));
    }
}

} // namespace Kestrune
