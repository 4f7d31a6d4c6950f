// SPDX-License-Identifier: GPL-3.0-or-later
#include "uImportAbstract.h"

#include "dmMain.h"
#include "uColumnNames.h"
#include "uDebugLog.h"
#include "uDefaults.h"
#include "uKeptText.h"
#include "uObjs.h"
#include "uTHStrings.h"

#include <exception>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int ProgressBatch = 50;
constexpr size_t ReleaseBatch = 20;
constexpr std::chrono::seconds LongestLock(60);
constexpr std::chrono::milliseconds LockPause(100);

} // namespace

void TEndAndFree::operator()(TKRNImporter* importer) const
{
    importer->Terminate();
    importer->WaitFor();
    delete importer;
}

void TKRNImporter::Execute()
{
    try {
        Import();
        FlushPendingReleases();
    } catch (const std::exception& failure) {
        DoOnError(QString::fromUtf8(failure.what()));
    } catch (...) { // a source may use a library that throws what it likes
        DoOnError({});
    }
    Synchronize(TakeItemErrors());
}

void TKRNImporter::DoOnProgress(int position, int count, bool isRelease, const QString& currentItem)
{
    FPosition = position;
    FCount = count;
    if (!FOnProgress)
        return;
    if (!FPendingLogItems.isEmpty())
        FPendingLogItems += u'\n';
    FPendingLogItems += currentItem;
    if (!isRelease && position % ProgressBatch != 0 && position < count - 1)
        return;
    const QString items = std::exchange(FPendingLogItems, QString());
    Synchronize([&, deliverErrors = TakeItemErrors()] {
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

void TKRNImporter::DoOnItemError(const QString& item, const QString& error)
{
    if (FOnItemError)
        FPendingItemErrors.emplace_back(item, error);
}

// The delivery of what has been collected, to be run on the main thread.
std::function<void()> TKRNImporter::TakeItemErrors()
{
    return [this, errors = std::exchange(FPendingItemErrors, {})] {
        for (const auto& [item, error] : errors)
            FOnItemError(*this, item, error);
    };
}

void TKRNImporter::DoOnImportDone(int releasesCount, int tracksCount)
{
    Synchronize([&, deliverErrors = TakeItemErrors()] {
        deliverErrors();
        if (FOnDone)
            FOnDone(*this, releasesCount, tracksCount);
    });
}

void TKRNImporter::DoOnError(const QString& error)
{
    if (!FOnError)
        return;
    Synchronize([&] { FOnError(*this, error.isEmpty() ? GetLanguageString(u"cSImportDlgUnknownError"_s) : error); });
}

// A key that went through a command line comes back as text, and so all are compared.
void TKRNImporter::SetIDsArray(std::vector<TVariant> keys)
{
    FIDsArray = std::move(keys);
    FWanted.clear();
    for (const TVariant& key : FIDsArray)
        FWanted.insert(VarToStr(key));
}

bool TKRNImporter::IsWanted(const TVariant& releaseID) const
{
    return FWanted.isEmpty() || FWanted.contains(VarToStr(releaseID));
}

void TKRNImporter::StoreRelease(const TAlbumRelease& release, bool assignNewNo)
{
    const QString name = VarToStr(release[Col::Artist]) + u" - "_s + VarToStr(release[Col::ReleaseName]);
    const std::function<void()> store = [&, deliverErrors = TakeItemErrors()] {
        FDataModule.AddAlbumReleaseToDB(release, assignNewNo);
        deliverErrors();
        if (FOnProgress)
            for (const QString& note : KeptTextNotes(FDataModule.qReleaseInfo, release, Defaults()))
                FOnProgress(*this, FPosition, FCount, false, name + u": "_s + note);
        if (FOnReleaseStored)
            FOnReleaseStored(*this, FDataModule.LastAddedReleaseID(), name);
    };
    // The main thread must not wait for another program that holds the file, but this one may.
    const auto deadline = std::chrono::steady_clock::now() + LongestLock;
    for (bool told = false; !TryToStore(store, deadline); told = true) {
        if (!told && FOnProgress)
            Synchronize(
                [&] { FOnProgress(*this, FPosition, FCount, false, GetLanguageString(u"cSImportWaitsForFile"_s)); });
        WaitUnlessTerminated(LockPause);
    }
}

bool TKRNImporter::TryToStore(const std::function<void()>& store, std::chrono::steady_clock::time_point deadline)
{
    try {
        Synchronize(store);
        return true;
    } catch (const EDatabaseError& failure) {
        if (!failure.IsLocked() || Terminated() || std::chrono::steady_clock::now() > deadline)
            throw;
        return false;
    }
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
    } catch (...) {
        DebugLog(u"[Import] Views could not be switched on again"_s);
    }
}

} // namespace Kestrune
