// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uAddFields.h"
#include "uAddRequests.h"
#include "uChosenReleases.h"
#include "uDiscDrive.h"
#include "uHitTabs.h"
#include "uServiceStates.h"

#include <QObject>

#include <memory>
#include <vector>

namespace Kestrune {

class TPrompt;

/// Logic of the window in which releases are found online and chosen. It owns the parts: asks the services for what
/// stands in the fields, hands their answers to tabs and states, has covers and full records fetched in the background,
/// and takes what is chosen. Writes nothing to the collection. Main thread.
class TAddMusicForm : public QObject, public TMessageReceiver {
    Q_OBJECT
public:
    /// All outlive the form.
    TAddMusicForm(TInfoGrabber& grabber, TDataModuleMain& data, TPrompt& prompt);
    ~TAddMusicForm() override;

    /// The window opens: what the collection holds is read anew.
    void FormShow();
    /// The window closes: its downloads end and the current tab is emptied.
    void FormClose();

    TAddFields& Fields() { return FFields; }
    TDiscDrive& Drive() { return FDrive; }
    THitTabs& Tabs() { return FTabs; }
    const THitTabs& Tabs() const { return FTabs; }
    TChosenReleases& Chosen() { return FChosen; }
    /// The list beside the tabs: states of the current tab where it shows a search of the area in hand.
    std::vector<TServiceStatus> Statuses() const;
    /// The name to show of a service.
    QString ProviderName(const QString& service) const;

    // Commands
    void actSearchByArtistOrRelease() { SearchArea(saArtistOrRelease); }
    void actSearchByBarcode() { SearchArea(saBarcode); }
    void actSearchByCatalogNo() { SearchArea(saCatalogNo); }
    void actSearchByCD() { SearchArea(saCD); }
    /// The search of the current area.
    void Search() { SearchArea(FFields.Area()); }
    void actStop();
    void actSaveAndContinue();
    void actSaveAndClose();
    void actConfigureServices() { Q_EMIT optionsRequested(false); }
    void actProxySettings() { Q_EMIT optionsRequested(true); }
    void actTestConnection();
    /// Tells why a service asks for a key.
    void ExplainKey();
    /// Asks one service of the current tab again, behind what is there.
    void RetryService(int index);
    /// The card with the keyboard; 0 for none. Asks for its full record and front cover.
    void FocusHit(qint64 record);

    bool SearchEnabled() const { return !Busy() && !FDrive.Reading(); }
    bool StopEnabled() const { return Busy(); }
    bool SaveEnabled() const { return !Busy() && !FTabs.Current().Selection.empty(); }
    bool RetryEnabled() const { return !Busy(); }
    bool TestEnabled() const { return !FTest; }
    /// Why search or save cannot be used now; empty when it can.
    QString SearchHint() const;
    QString SaveHint() const;
    bool Busy() const { return FRequests.Queue().RunningThreadsCount() > 0; }

    // Progress
    QString StatusText() const { return FStatusText; }
    int ProgressMaximum() const { return FProgressMaximum; }
    int ProgressPosition() const { return FProgressPosition; }

    void HandleMessage(TUserMessage& message) override;

    /// What a test of the connection asks for.
    QString TestURL = ConnectionTestURL();

Q_SIGNALS:
    /// Enabling, progress, status or the list of services changed.
    void updated();
    void optionsRequested(bool network);

private:
    /// A code that waits to be searched for.
    static constexpr int WM_USER_NEXT_BARCODE = WM_USER + 7;

    void ConnectParts();
    void SetUpQueue();
    void CountChanged(int waiting, int running, int total);
    void JobsEnded();
    void JobEvent(const TJobReport& report);

    void SearchArea(TSearchArea area);
    void StartSearch(TInfoGrabberSearchType type, TSearchArea area, const TSearchWords& words);
    void AskService(const TSearchTab& tab, size_t service);
    void NextBarcode();
    void DiscRead(const TDiscTexts& texts, qint64 tab);
    bool TakeSelection();

    void TextArrived(TUserMessage& message);
    void ExtraInfoArrived(TUserMessage& message);
    void ThumbArrived(TUserMessage& message);
    void LargeArrived(TUserMessage& message);

    TInfoGrabber& FGrabber;
    TPrompt& FPrompt;
    TAddFields FFields;
    TDiscDrive FDrive;
    THitTabs FTabs;
    TServiceStates FStates;
    TChosenReleases FChosen;
    QStringList FBarcodesLeft; // to be worked off
    int FOpening = 0;          // how often the window was opened
    QString FStatusText;
    bool FDiscFailed = false; // told again when the downloads are done
    bool FClosed = false;     // the window is: late answers find nobody
    int FProgressMaximum = 0;
    int FProgressPosition = 0;
    std::unique_ptr<TTaskThread> FTest;
    TAddRequests FRequests; // last: its jobs end before what they report to
};

} // namespace Kestrune
