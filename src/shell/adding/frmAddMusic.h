// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uAnswerReader.h"
#include "uCD.h"
#include "uDetailView.h"
#include "uDownloadQueue.h"
#include "uInfoGrabber.h"
#include "uKRNParams.h"
#include "uObjs.h"
#include "uOwnedReleases.h"
#include "uSearchParams.h"

#include <QDateTime>
#include <QImage>
#include <QObject>
#include <QStringList>

#include <array>
#include <map>
#include <memory>
#include <vector>

namespace Kestrune {

class TPrompt;

/// The areas of the window, each with fields and a choice of services of its own.
enum class TSearchArea : quint8 { saArtistOrRelease, saBarcode, saCatalogNo, saCD };
using enum TSearchArea;

inline constexpr int WM_USER_METADATA_TEXT_SEARCH = WM_USER + 3;
inline constexpr int WM_USER_METADATA_TEXT_EXTRA_INFO = WM_USER + 4;
inline constexpr int WM_USER_METADATA_THUMB_PICTURE = WM_USER + 5;
inline constexpr int WM_USER_METADATA_LARGE_PICTURE = WM_USER + 6;

/// One card of a result tab.
struct TSearchHit {
    qint64 RecordIndex = 0; ///< never given twice
    QImage Cover;           ///< thumbnail; null until one arrives
    QString DataProvider;   ///< name of the service
    QString Artist, ReleaseName, ReleaseYear, Label, CatalogNo, Country, Type;
    std::unique_ptr<TAlbumRelease> DataPointer; ///< null once the release was saved
    bool Fetched = false;                       ///< the full record was asked for
    bool Complete = false;                      ///< the full record is there, or there is no other
    bool Yours = false;                         ///< the collection holds it already
};

/// What a service is at in a tab.
enum class TServiceState : quint8 { ssIdle, ssSearching, ssWaiting, ssFound, ssFailed, ssNeedsKey, ssStopped };
using enum TServiceState;

struct TServiceStatus {
    QString Name, DisplayName;
    TServiceState State = ssIdle;
    int Found = 0;
    QDateTime Until; ///< waiting: when the service may be asked
    QString Reason;  ///< failed: why
};

/// One result tab.
struct TSearchTab {
    qint64 Id = 0; ///< never given twice
    QString Caption;
    TSearchArea Area = saArtistOrRelease;
    const TInfoGrabberSearch* CurrentSearch = nullptr; ///< the search that fills it
    TSearchWords Words;                                ///< searched for; a retry asks for the same
    std::vector<TSearchHit> Hits;
    std::vector<qint64> Selection; ///< in the order in which they were selected
    qint64 Focused = 0;
    std::vector<TServiceStatus> Services; ///< of CurrentSearch, in its order
};

/// A release that was chosen, waiting for the window to close.
struct TSavedRelease {
    std::unique_ptr<TAlbumRelease> Release;
    QImage Cover;
    bool Complete = false; ///< with its full record
};

/// Logic of the window in which releases are found online and chosen: searches of all services at once, hits in tabs,
/// covers and full records in the background, chosen releases for the main window. Writes nothing to the collection.
/// Main thread.
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

    // Fields
    TSearchArea Area() const { return FArea; }
    void SetArea(TSearchArea area);
    QString Artist, ReleaseTitle, CatalogNo;
    QString Barcodes; ///< one a line
    QStringList Drives() const { return FDrives; }
    QString Drive() const { return FDrive; }
    void SetDrive(const QString& drive);

    // Services
    /// Names to show of the services of an area, in their order.
    QStringList ServiceNames(TSearchArea area) const;
    bool IsServiceChosen(TSearchArea area, int index) const;
    void ChooseService(TSearchArea area, int index, bool on);
    /// The list beside the tabs: states of the current tab where it shows a search of this area.
    std::vector<TServiceStatus> Statuses() const;

    // Commands
    void actSearchByArtistOrRelease();
    void actSearchByBarcode();
    void actSearchByCatalogNo();
    void actSearchByCD();
    /// The search of the current area.
    void Search();
    void actStop();
    void actClear();
    void actClearAllTabs();
    void actClearSelection();
    void actSelectAll();
    void actRemoveSelection();
    void actNewTab();
    void actCloseTab(int tab);
    void actCloseAllTabs();
    void actSaveAndContinue();
    void actSaveAndClose();
    void actConfigureServices() { Q_EMIT optionsRequested(false); }
    void actProxySettings() { Q_EMIT optionsRequested(true); }
    void actTestConnection();
    void actEjectCD();
    /// Tells why a service asks for a key.
    void ExplainKey();
    /// Asks one service of the current tab again, behind what is there.
    void RetryService(int index);

    bool SearchEnabled() const;
    bool StopEnabled() const { return Busy(); }
    bool SaveEnabled() const;
    bool RetryEnabled() const { return !Busy(); }
    bool TestEnabled() const { return !FTest; }
    bool EjectEnabled() const { return !FDrive.isEmpty() && !FEject; }
    /// Why search or save cannot be used now; empty when it can.
    QString SearchHint() const;
    QString SaveHint() const;
    bool Busy() const { return FDownloadQueue->RunningThreadsCount() > 0; }
    bool ReadingDisc() const { return FReadingDisc; }

    // Tabs and cards
    const std::vector<TSearchTab>& Tabs() const { return FTabs; }
    int CurrentTab() const { return FCurrentTab; }
    void SetCurrentTab(int tab);
    const TSearchTab& Current() const { return FTabs[static_cast<size_t>(FCurrentTab)]; }
    /// The card with the keyboard; 0 for none. Asks for its full record and front cover.
    void FocusHit(qint64 record);
    void SetSelection(std::vector<qint64> records);
    /// What the right pane shows: the focused release of the current tab.
    TDetailData Details() const;
    /// Display name of the service of the focused hit.
    QString DetailsProvider() const;

    // Chosen releases
    const std::vector<TSavedRelease>& SavedReleases() const { return FSavedReleases; }
    void RemoveSaved(int index);
    /// Takes releases back that were handed over and not stored.
    void GiveBack(std::vector<TSavedRelease> releases);
    /// Hands the chosen releases over.
    std::vector<TSavedRelease> TakeSavedReleases();

    // Progress
    QString StatusText() const { return FStatusText; }
    int ProgressMaximum() const { return FProgressMaximum; }
    int ProgressPosition() const { return FProgressPosition; }

    void HandleMessage(TUserMessage& message) override;

    // The machine's drives and network; tests put others in their place.
    /// Runs on a thread of its own. False leaves the texts empty and the reason in `error`.
    std::function<bool(const QString& drive, TDiscTexts& texts, QString& error)> ReadDisc;
    std::function<QStringList()> ListDrives;
    std::function<bool(const QString& drive)> EjectDrive;
    QString TestURL = ConnectionTestURL();

Q_SIGNALS:
    /// Enabling, progress, status or the list of services changed.
    void updated();
    void tabsChanged();
    void hitsChanged(); ///< cards of the current tab were added or removed
    void hitChanged(qint64 record);
    void selectionChanged();
    void detailsChanged();
    void savedChanged();
    void optionsRequested(bool network);
    void closeRequested();

private:
    /// A code that waits to be searched for.
    static constexpr int WM_USER_NEXT_BARCODE = WM_USER + 7;
    struct TJobOwner {
        qint64 Tab;
        size_t Service;
    };

    void StartSearch(TInfoGrabberSearchType type, TSearchArea area);
    void AddSearchJob(TSearchTab& tab, size_t service);
    QString TabCaption(TInfoGrabberSearchType type) const;
    void AddTab();
    void FreeHits(TSearchTab& tab);
    void DropTab(size_t at);
    void NextBarcode();
    void TakeSelection();
    TSearchTab* FindTab(qint64 id);
    TSearchHit* FindHit(TSearchTab& tab, qint64 record);
    const TSearchHit* FocusedHit() const;

    void TextArrived(TUserMessage& message);
    void FillResults(const TInfoGrabberServiceAction& action, TSearchTab& tab, TAlbumReleases releases);
    void FillRows(TSearchHit& hit);
    void ExtraInfoArrived(TUserMessage& message);
    void ThumbArrived(TUserMessage& message);
    void LargeArrived(TUserMessage& message);
    void AskForRecord(TSearchTab& tab, TSearchHit& hit);
    void AskForLargeCover(TSearchTab& tab, TSearchHit& hit, const TInfoGrabberServiceAction* action);
    void JobEvent(const TJobReport& report);
    void SetReason(TServiceStatus& status, const TJobReport& report, const TInfoGrabberServiceAction& action);
    void MarkOwned();
    int& MaskOf(TSearchArea area) const;
    void DiscRead(const TDiscTexts& texts, qint64 tab);
    void EndSearching();

    TInfoGrabber& FGrabber;
    TPrompt& FPrompt;
    TKRNParams FParams;
    std::vector<TSavedRelease> FSavedReleases;
    QString FCachedTOC, FCachedTOC_Microsoft, FCachedDiscID, FCachedTOC_DECIMAL; // of the last disc
    bool FReadingDisc = false;
    const TInfoGrabberSearch* BarcodeSearch;
    const TInfoGrabberSearch* CatalogNoSearch;
    const TInfoGrabberSearch* ReleaseSearch;
    const TInfoGrabberSearch* ArtistSearch;
    const TInfoGrabberSearch* ReleaseAndArtistSearch;
    const TInfoGrabberSearch* CDSearch;
    const TInfoGrabberSearch* CurrentSearch = nullptr;

    TSearchArea FArea = saArtistOrRelease;
    QStringList FDrives;
    QString FDrive;
    std::vector<TSearchTab> FTabs;
    int FCurrentTab = 0;
    int FTabsMade = 0;
    qint64 FLastId = 0;
    QString FBarcode;          // that of the search in hand
    QStringList FBarcodesLeft; // to be worked off
    std::multimap<QString, TJobOwner> FSearchJobs;
    std::multimap<QString, std::pair<qint64, qint64>> FRecordJobs; // tab and record of a full record that was asked for
    int FOpening = 0;                                              // how often the window was opened
    QString FStatusText;
    bool FDiscFailed = false; // told again when the downloads are done
    bool FClosed = false;     // the window is: late answers find nobody
    int FProgressMaximum = 0;
    int FProgressPosition = 0;
    TOwnedReleases FOwned;
    std::unique_ptr<TTaskThread> FDiscReader;
    std::unique_ptr<TTaskThread> FTest;
    std::unique_ptr<TTaskThread> FEject;
    std::unique_ptr<TDownloadQueue> FDownloadQueue;
};

/// A release of a service as the detail pane shows it.
TDetailData BuildReleaseDetails(const TAlbumRelease& release);

} // namespace Kestrune
