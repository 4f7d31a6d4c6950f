// SPDX-License-Identifier: GPL-3.0-or-later
#include "uAdding.h"

#include "dmMain.h"
#include "frmAddMusic.h"
#include "frmImport.h"
#include "frmServiceUpdater.h"
#include "uColumnNames.h"
#include "uDebugLog.h"
#include "uDefaults.h"
#include "uImport.h"
#include "uImportRun.h"
#include "uPrompt.h"
#include "uReleaseFetch.h"
#include "uServicePackage.h"
#include "uTHStrings.h"

#include <QDateTime>

namespace Kestrune {

using namespace Qt::StringLiterals;

TAdding::TAdding(TShell& shell) : FShell(shell) { BindActions(); }

TAdding::~TAdding() = default;

void TAdding::BindActions()
{
    TActionList& actions = FShell.Actions();
    const auto canWrite = [this] { return FShell.CanWrite(); };
    actions.Bind(
        u"actAddMP3"_s,
        [this] {
            const QString folder = FShell.Prompt().AskFolder(GetLanguageString(u"cSactAddMP3"_s), {});
            AddFolders(folder.isEmpty() ? QStringList() : QStringList{folder});
        },
        canWrite);
    actions.Bind(
        u"actImport"_s, [this] { OpenImport(); }, canWrite);
    FShell.BindWindow(u"actAddReleaseManually"_s, canWrite);
    const auto canSearch = [this] { return FAddMusic && FShell.CanWrite(); };
    const std::pair<QString, TSearchArea> searches[] = {{u"actAddMain"_s, saArtistOrRelease},
                                                        {u"actAddMusic"_s, saArtistOrRelease},
                                                        {u"actAddByBarcode"_s, saBarcode},
                                                        {u"actAddByCatalogNo"_s, saCatalogNo},
                                                        {u"actAddByCDROM"_s, saCD}};
    for (const auto& [name, area] : searches)
        actions.Bind(
            name, [this, area = area] { OpenAddMusic(area); }, canSearch);
}

void TAdding::AddFolders(const QStringList& paths)
{
    if (paths.isEmpty() || !FShell.CanWork())
        return;
    FToken = FShell.BeginWork();
    FAddFiles = std::make_unique<TImportRun>(FShell.Data(), AddFilesJob(paths));
    connect(FAddFiles.get(), &TImportRun::releaseStored, this, &TAdding::releaseStored);
    connect(FAddFiles.get(), &TImportRun::finished, this, [this] {
        Q_EMIT addFilesFinished();
        FAddFiles.release()->deleteLater();
        FToken.reset();
        Q_EMIT added();
    });
    Q_EMIT addFilesStarted();
    FAddFiles->Start();
    FShell.Actions().Update();
}

void TAdding::AddByHand(const QString& name)
{
    TAlbumRelease release;
    release.SetItem2(Col::ReleaseName, name);
    if (!FShell.CanWrite() || !FShell.Attempt([&] { FShell.Data().AddAlbumReleaseToDB(release, true); }))
        return;
    Q_EMIT added();
    Q_EMIT focusRequested(FShell.Data().LastAddedReleaseID());
}

void TAdding::OpenImport()
{
    if (!FShell.CanWork())
        return;
    FToken = FShell.BeginWork();
    FImport = std::make_unique<TKRNImportForm>(FShell.Data(), FShell.Prompt(), ImporterClasses());
    connect(FImport.get(), &TKRNImportForm::releaseStored, this, &TAdding::releaseStored);
    connect(FImport.get(), &TKRNImportForm::closed, this, [this] {
        Q_EMIT importFinished();
        FImport.release()->deleteLater();
        FToken.reset();
        Q_EMIT added();
    });
    Q_EMIT importStarted();
    FShell.Actions().Update();
}

void TAdding::ParseServices()
{
    SetNetworkSettings(NetworkSettingsFrom(Defaults()));
    InstallPictureFetcher();
    if (Defaults().InfoGrabberPath.isEmpty())
        return;
    try {
        InfoGrabber().Parse(Defaults().InfoGrabberPath);
    } catch (const EInfoGrabberError& failure) {
        FServicesFailure = Defaults().InfoGrabberPath;
        DebugLog(u"[Services] %1: %2"_s.arg(FServicesFailure, QString::fromUtf8(failure.what())));
    }
}

void TAdding::SetAddMusicForm(TAddMusicForm* form)
{
    FAddMusic = form;
    FShell.Actions().Update();
}

void TAdding::OpenAddMusic(TSearchArea area)
{
    FToken = FShell.BeginWork();
    FAddMusicOpen = true;
    FAddMusic->Fields().SetArea(area);
    FAddMusic->FormShow();
    Q_EMIT addMusicStarted();
    FShell.Actions().Update();
}

void TAdding::AddMusicClosed()
{
    if (!FAddMusicOpen)
        return;
    FAddMusic->FormClose();
    FAddMusicOpen = false;
    FToken.reset();
    FShell.Actions().Update();
    StoreFound(FAddMusic->Chosen().Take());
}

// What could not be stored stays chosen, for the next time that the window is open.
void TAdding::StoreFound(std::vector<TSavedRelease> releases)
{
    if (releases.empty())
        return;
    const auto count = static_cast<int>(releases.size());
    int done = 0;
    QString failure;
    FShell.RunJob(GetLanguageString(u"cSAddingReleases"_s), [&](const TShell::TJobProgress& progress) {
        try {
            while (done < count && progress(done, count)) {
                FShell.Data().AddAlbumReleaseToDB(*releases[static_cast<size_t>(done)].Release, false);
                ++done;
            }
        } catch (const EDatabaseError& error) {
            failure = QString::fromUtf8(error.what());
        }
    });
    const QString failed = done < count ? releases[static_cast<size_t>(done)].Release->GetDisplayValue() : QString();
    releases.erase(releases.begin(), releases.begin() + done);
    FAddMusic->Chosen().Add(std::move(releases));
    if (done > 0) {
        Q_EMIT added();
        Q_EMIT focusRequested(FShell.Data().LastAddedReleaseID());
        FShell.Tell(bkDone, GetLanguageString(u"cSReleasesAdded"_s).arg(done));
    }
    if (!failure.isEmpty())
        FShell.Tell(bkError, GetLanguageString(u"cSReleasesNotAdded"_s).arg(failed, failure));
}

bool TAdding::CanUpdateServices()
{
    return HasSettingsStore() && !Defaults().OEM.ServicesURL.isEmpty() && !Defaults().InfoGrabberPath.isEmpty();
}

void TAdding::UpdateServices(bool silent)
{
    if (!CanUpdateServices())
        return;
    if (FUpdater) { // one runs already: it is shown
        Q_EMIT serviceUpdateStarted(true);
        return;
    }
    const QString& path = Defaults().InfoGrabberPath;
    const TServiceUpdates updates = TServiceUpdates::Read(SettingsStore());
    const bool isBroken = updates.AutoUpdate && !FServicesFailure.isEmpty(); // a new one heals it
    if (silent && !isBroken && !IsServicesUpdateDue(updates, path, QDateTime::currentDateTime()))
        return;
    FUpdater = std::make_unique<TServiceUpdaterForm>(path, Defaults().OEM.ServicesURL, SettingsStore());
    connect(FUpdater.get(), &TServiceUpdaterForm::closed, this, [this, silent] { ServiceUpdateEnded(silent); });
    Q_EMIT serviceUpdateStarted(!silent);
    FUpdater->FormShow();
}

void TAdding::ServiceUpdateEnded(bool silent)
{
    const TUpdateEnd end = FUpdater->EndState();
    FUpdater.release()->deleteLater();
    switch (end) {
    case ueFailed: FShell.Tell(bkWarning, GetLanguageString(u"cSUpdateFailed"_s)); break;
    case ueReplaced: FShell.Tell(bkDone, GetLanguageString(u"cSUpdateDone"_s)); break;
    case ueCurrent:
        if (!silent)
            FShell.Tell(bkDone, GetLanguageString(u"cSUpdateCurrent"_s));
        break;
    case ueCancelled: break;
    }
}

} // namespace Kestrune
