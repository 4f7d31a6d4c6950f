// SPDX-License-Identifier: GPL-3.0-or-later
#include "frmAddMusic.h"
#include "frmMain.h"
#include "frmServiceUpdater.h"
#include "uDebugLog.h"
#include "uDefaults.h"
#include "uPrompt.h"
#include "uReleaseFetch.h"
#include "uServicePackage.h"
#include "uTHStrings.h"

#include <QDateTime>

namespace Kestrune {

using namespace Qt::StringLiterals;

void TKRNMainForm::ParseServices(const TMainFormHooks&)
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

void TKRNMainForm::BindAddActions()
{
    const auto canAdd = [this] { return FAddMusic && FData.HasData() && !Busy() && !FData.IsReadOnly(); };
    const auto bind = [&](const QString& name, TSearchArea area) {
        FActions.Bind(
            name, [this, area] { OpenAddMusic(area); }, canAdd);
    };
    bind(u"actAddMain"_s, saArtistOrRelease);
    bind(u"actAddMusic"_s, saArtistOrRelease);
    bind(u"actAddByBarcode"_s, saBarcode);
    bind(u"actAddByCatalogNo"_s, saCatalogNo);
    bind(u"actAddByCDROM"_s, saCD);
}

void TKRNMainForm::SetAddMusicForm(TAddMusicForm* form)
{
    FAddMusic = form;
    FActions.Update();
}

void TKRNMainForm::OpenAddMusic(TSearchArea area)
{
    FAddMusicOpen = true;
    FAddMusic->SetArea(area);
    FAddMusic->FormShow();
    Q_EMIT addMusicStarted();
    FActions.Update();
}

void TKRNMainForm::AddMusicClosed()
{
    if (!FAddMusicOpen)
        return;
    FAddMusic->FormClose();
    FAddMusicOpen = false;
    FActions.Update();
    StoreFound(FAddMusic->TakeSavedReleases());
}

// What could not be stored stays chosen, for the next time that the window is open.
void TKRNMainForm::StoreFound(std::vector<TSavedRelease> releases)
{
    if (releases.empty())
        return;
    const auto count = static_cast<int>(releases.size());
    int done = 0;
    QString failure;
    RunJob(GetLanguageString(u"cSAddingReleases"_s), [&](const TJobProgress& progress) {
        try {
            while (done < count && progress(done, count)) {
                FData.AddAlbumReleaseToDB(*releases[static_cast<size_t>(done)].Release, false);
                ++done;
            }
        } catch (const EDatabaseError& error) {
            failure = QString::fromUtf8(error.what());
        }
    });
    const QString failed = done < count ? releases[static_cast<size_t>(done)].Release->GetDisplayValue() : QString();
    releases.erase(releases.begin(), releases.begin() + done);
    FAddMusic->GiveBack(std::move(releases));
    if (done > 0) {
        AfterAdding();
        Q_EMIT focusRequested(FData.LastAddedReleaseID());
        Q_EMIT barRaised(bkDone, GetLanguageString(u"cSReleasesAdded"_s).arg(done), {});
    }
    if (!failure.isEmpty())
        Q_EMIT barRaised(bkError, GetLanguageString(u"cSReleasesNotAdded"_s).arg(failed, failure), {});
}

bool TKRNMainForm::CanUpdateServices()
{
    return HasSettingsStore() && !Defaults().OEM.ServicesURL.isEmpty() && !Defaults().InfoGrabberPath.isEmpty();
}

void TKRNMainForm::UpdateServices(bool silent)
{
    if (!CanUpdateServices())
        return;
    if (FUpdater) { // one runs already: it is shown
        Q_EMIT serviceUpdateStarted(true);
        return;
    }
    const QString& path = Defaults().InfoGrabberPath;
    if (silent && !IsServicesUpdateDue(TServiceUpdates::Read(SettingsStore()), path, QDateTime::currentDateTime()))
        return;
    FUpdater = std::make_unique<TServiceUpdaterForm>(path, Defaults().OEM.ServicesURL, SettingsStore());
    connect(FUpdater.get(), &TServiceUpdaterForm::closed, this, [this, silent] { ServiceUpdateEnded(silent); });
    Q_EMIT serviceUpdateStarted(!silent);
    FUpdater->FormShow();
}

void TKRNMainForm::ServiceUpdateEnded(bool silent)
{
    const TUpdateEnd end = FUpdater->EndState();
    FUpdater.release()->deleteLater();
    switch (end) {
    case ueFailed: Q_EMIT barRaised(bkWarning, GetLanguageString(u"cSUpdateFailed"_s), {}); break;
    case ueReplaced: Q_EMIT barRaised(bkDone, GetLanguageString(u"cSUpdateDone"_s), {}); break;
    case ueCurrent:
        if (!silent)
            Q_EMIT barRaised(bkDone, GetLanguageString(u"cSUpdateCurrent"_s), {});
        break;
    case ueCancelled: break;
    }
}

} // namespace Kestrune
