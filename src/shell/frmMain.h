// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dmMain.h"
#include "uActions.h"
#include "uDetailView.h"
#include "uPrompt.h"
#include "uSearch.h"
#include "uSearchIndex.h"
#include "uViewFilters.h"
#include "uViewLayout.h"

#include <QObject>
#include <QRect>
#include <QStringList>
#include <QTimer>

#include <array>
#include <memory>
#include <optional>
#include <vector>

namespace Kestrune {

class TAddMusicForm;
class TImportRun;
class TServiceUpdaterForm;
struct TSavedRelease;
enum class TSearchArea : quint8;
class TKRNImportForm;

/// Numbers of the views, as the setting CurrentView keeps them.
enum class TMainView : int { mvThumbs, mvCards, mvShelf, mvAlbums, mvTracks };
using enum TMainView;

/// What the status line says.
struct TStatusFigures {
    int Shown = 0;
    int Total = 0;
    int Selected = 0;
    qint64 Tracks = -1;        ///< -1 while they are being counted
    double TracksLength = 0.0; ///< days
    QString FileName;
    bool ReadOnly = false;
    int Groups = 0; ///< outermost groups of the active list
    bool OfTracks = false;
};

/// The windows that the main window opens for an action.
enum class TMainDialog : quint8 {
    mdSort,
    mdColumns,
    mdFilterBuilder,
    mdMultiEdit,
    mdOptions,
    mdExecSQL,
    mdPrintPreview,
    mdPrint,
    mdQuickPrint,
    mdAbout,
    mdHelp,
    mdPalette,
    mdSaveFilter
};
using enum TMainDialog;

/// How the rows of a list are named and kept by the settings.
struct TSavedFilter {
    QString Name;
    TFilterSet Set;
};

/// What the window itself does at its place in the creation.
struct TMainFormHooks {
    std::function<void()> CreateDebugWindow; ///< set in debug mode only
    std::function<void()> ApplyTheme;
};

/// What stands for all columns in the list of fields to search by.
inline const QString EverythingField = QStringLiteral("*");

/// Logic of the main window: state, actions and rules over the collection, without a widget. The window shows what
/// it tells and calls it back. Main thread.
class TKRNMainForm : public QObject {
    Q_OBJECT

public:
    /// Both outlive the form.
    TKRNMainForm(TDataModuleMain& data, TPrompt& prompt);
    ~TKRNMainForm() override;

    /// Creation in its fixed order: debug window, settings, theme, the collection, the detail pane, the first view.
    void FormCreate(const TMainFormHooks& hooks);
    /// Restores the window; its body runs once.
    void FormShow();
    /// After the window is on the screen: first record, state callbacks.
    void WMAfterFormShow();
    /// Closing of the window: what it keeps goes to the settings.
    void FormClose();

    TActionList& Actions() { return FActions; }
    TDataModuleMain& Data() { return FData; }

    TMainView CurrentView() const { return FView; }
    void SetCurrentView(TMainView view);
    int ThumbSize() const;
    void SetThumbSize(int step);
    int PaneLocation() const;
    bool PaneClosed() const;
    void SetPaneClosed(bool closed);
    /// Window caption with the name of the collection.
    QString Caption() const;
    QStringList RecentDBs() const;
    void OpenRecent(const QString& path);
    /// Why no collection is open: the last validation message, or empty.
    QString OpenFailure() const { return FOpenFailure; }

    /// The focused record changed: the detail pane follows after 150 ms.
    void SetFocusedRelease(qint64 id);
    void SetSelection(std::vector<qint64> ids);
    const std::vector<qint64>& Selection() const { return FSelection; }
    const TDetailData& Detail() const { return FDetail; }
    /// Changes the rating of the release in the detail pane, in half stars.
    void SetDetailRating(int halfStars);

    /// True when the view shows tracks in place of releases.
    bool TracksShown() const { return FView == mvTracks; }
    /// The list of the active view.
    TListDataset& List() { return TracksShown() ? FData.qTracksAll : FData.qReleasesMain; }
    const TListDataset& List() const { return TracksShown() ? FData.qTracksAll : FData.qReleasesMain; }
    /// The focused track of the tracks view.
    void SetFocusedTrack(qint64 id);
    void SetTrackSelection(std::vector<qint64> ids);
    /// Keys of the active list: what is selected, else what has the focus.
    std::vector<qint64> ActiveKeys() const;
    qint64 FocusedRelease() const { return FFocused; }

    /// Gives a field of a release or track a value that the user chose. False when the file refused it, which is told.
    bool EditField(bool ofTracks, qint64 id, const QString& field, const TVariant& value);
    /// The same for the release in the detail pane.
    bool EditDetail(const QString& field, const TVariant& value);
    /// Value of a field of the release in the detail pane.
    TVariant DetailValue(const QString& field);
    /// Sets the same values on rows of the active list; the number of rows that were changed.
    int ApplyChanges(const std::vector<qint64>& keys, const std::vector<std::pair<QString, TVariant>>& values);
    bool InPlaceEditing() const { return FInPlace[TracksShown() ? 1 : 0]; }

    std::vector<TSearchField> SearchFields() const;
    QString SearchBy() const { return FSearchBy; }
    void SetSearchBy(const QString& column);
    /// What stands in the search box; actSearch searches for it.
    void SetSearchText(const QString& text) { FSearchText = text; }
    /// Column and text of the keyword filter; empty without one.
    std::pair<QString, QString> Keyword() const { return {Filters().Set().KeywordColumn, Filters().Set().KeywordText}; }
    /// Words of the search in everything; empty without one.
    QString EverythingWords() const { return Filters().Set().Everything; }
    /// One letter filters by it, any longer caption removes the letter.
    void LetterClick(const QString& caption);
    QString Letter() const { return Filters().Set().Letter; }
    /// 0 artist, 1 release name.
    void SetLetterField(int index);
    int LetterField() const { return Filters().Set().LetterField; }
    /// Letters with which some stored name of the letter field begins; empty until letterHitsChanged has told.
    const QSet<QString>& LetterHits() const { return FLetterHits; }
    QStringList StatusItems() const;
    void FilterStatus(const QString& status);
    QString StatusFilter() const { return Filters().Set().Status; }
    std::vector<TFilterChip> FilterChips() const { return Filters().Chips(); }
    void RemoveFilter(TFilterChipKind kind, const QString& column = {});
    /// A text of the filter row; false when it is no condition for the column.
    bool SetColumnFilter(const QString& column, const QString& text);
    void SetBuilderFilter(const TFilterNode& node);
    const TFilterNode& BuilderFilter() const { return Filters().Set().Builder; }
    /// The filters of the active list.
    const TViewFilters& Filters() const { return TracksShown() ? FTrackFilters : FReleaseFilters; }
    TViewFilters& Filters() { return TracksShown() ? FTrackFilters : FReleaseFilters; }
    const std::vector<TSavedFilter>& SavedFilters() const { return FSavedFilters; }
    /// Keeps the present filters under a name, in place of one of the same name.
    void SaveFilter(const QString& name);
    void RecallFilter(const QString& name);
    void ForgetFilter(const QString& name);
    /// The index of the search in everything.
    TSearchIndex& Index() { return *FIndex; }

    /// Groups the active list; an empty list of columns ends it.
    void SetGrouping(const QStringList& columns);
    void SetSort(std::vector<TSortItem> sort);
    /// Rows of the active list in which one of the columns holds the text.
    std::vector<int> FindRows(const QStringList& columns, const QString& text);

    /// The row whose title, as shown, begins with a text: the next one from a row on and round, in the order of the
    /// list; -1 for none.
    int LocateTitle(const QString& text, int fromRow);

    /// A click on a column heading: sorts by it, or turns its order; `add` keeps the columns sorted by before.
    void SortBy(const QString& column, bool add);

    TStatusFigures StatusFigures() const;

    /// A failure of the collection outside an action (a damaged page, a disk that is gone): shown as a bar, once for
    /// the same reason in a row.
    void ReportFailure(const QString& reason);

    /// Makes sure that the collection is still locked against other programs; to be called after what may have looked
    /// into its file.
    void CheckCollectionFile();

    /// Adds the audio files of these folders and files in the background.
    void AddFolders(const QStringList& paths);
    /// The run in progress, or null.
    TImportRun* AddFiles() const { return FAddFiles.get(); }
    TPrompt& Prompt() { return FPrompt; }
    using TJobProgress = std::function<bool(int value, int maximum)>;
    /// Runs a long job on the main thread: its progress is shown, events are served with no other change of the
    /// collection allowed, and CancelJob ends it.
    void RunJob(const QString& text, const std::function<void(const TJobProgress&)>& work);
    /// A job runs.
    bool Working() const { return FWorking; }
    /// Ends a job of jobProgressed at its next step.
    void CancelJob() { FCancelled = true; }
    /// After the options window: what was changed in the settings acts.
    void ApplySettings();
    /// Stores a suggestion list and fills all editors of its kind anew.
    void SetDictionary(const QString& column, const QString& text);
    /// The search window's logic, made after this form; it outlives it. Without one nothing is found online.
    void SetAddMusicForm(TAddMusicForm* form);
    TAddMusicForm* AddMusicForm() const { return FAddMusic; }
    /// The search window was closed: what was chosen in it is stored.
    void AddMusicClosed();
    /// Looks for a newer service package; none where the product names no place for it. `silent`: nothing is asked.
    void UpdateServices(bool silent);
    /// The window is made anew in a running program: what is looked after once at its start is left out.
    void SkipStartChecks() { FStartChecks = false; }
    /// The update in progress, or null.
    TServiceUpdaterForm* ServiceUpdater() const { return FUpdater.get(); }
    /// True when the product names a place from which the service package is updated.
    static bool CanUpdateServices();
    /// Opens the import wizard; importStarted tells the window.
    void OpenImport();
    /// The wizard while it is open, or null.
    TKRNImportForm* ImportForm() const { return FImport.get(); }

    // What the window reports about itself.
    void SetNormalGeometry(const QRect& geometry);
    void SetMaximized(bool maximized);
    void SetFrameSize(int width, int height);
    QRect RestoredGeometry() const;
    bool StartsMaximized() const;
    /// The layout of a table that the settings kept; nothing before there was one. Its sort is in force already.
    const std::optional<TTableLayout>& Layout(bool ofTracks) const { return FLayouts[ofTracks ? 1 : 0]; }
    /// The columns as they are now; sort and groups are added by FormClose.
    void SetColumns(bool ofTracks, std::vector<TColumnState> columns);
    /// Ids of the folded sections of the detail pane.
    QStringList FoldedSections() const { return FFolded; }
    void SetFoldedSections(const QStringList& ids) { FFolded = ids; }
    /// Columns that the user took out of the detail pane.
    QStringList HiddenFields() const { return FHiddenFields; }
    void SetHiddenFields(const QStringList& columns) { FHiddenFields = columns; }

Q_SIGNALS:
    void viewChanged();
    void filtersChanged();
    void letterHitsChanged();
    void sortChanged();
    void detailChanged();
    void figuresChanged();
    void collectionOpened();
    void paneChanged();
    /// Bring this release into sight and focus it.
    void focusRequested(qint64 id);
    void selectionRequested(bool all);
    void addFilesStarted();
    void addFilesFinished();
    void importStarted();
    void importFinished();
    void addMusicStarted();
    /// `visible`: from the start on, otherwise once something is fetched.
    void serviceUpdateStarted(bool visible);
    void closeRequested();
    void debugWindowToggled();
    void dialogRequested(Kestrune::TMainDialog dialog);
    void dictionaryRequested(const QString& column);
    /// Shows or hides the filter row or the find panel of the active view.
    void filterRowToggled();
    void findPanelToggled();
    void expandRequested(bool expand);
    void bestFitRequested();
    /// The focused cell, or the selected rows, go to the clipboard.
    void copyRequested(bool rows);
    void exportRequested(const QString& format);
    void paneCustomizeToggled();
    void paneFilterToggled();
    /// Articles, custom fields or lists changed: what shows them reads them anew.
    void settingsApplied();
    /// A long job: value of maximum; a maximum of 0 ends it.
    void jobProgressed(const QString& text, int value, int maximum);
    void savedFiltersChanged();
    /// The same releases have other thumbnails.
    void thumbnailsChanged();
    void openFolderRequested(const QString& folder);
    void barRaised(Kestrune::TBarKind kind, const QString& bold, const QString& sentence);

private:
    void CreateDebugWindow(const TMainFormHooks& hooks);
    void RestoreSettings(const TMainFormHooks& hooks);
    void ParseServices(const TMainFormHooks& hooks);
    void ApplyTheme(const TMainFormHooks& hooks);
    void ConnectAtStart(const TMainFormHooks& hooks);
    void PrepareDetail(const TMainFormHooks& hooks);
    void SelectFirstView(const TMainFormHooks& hooks);
    void BindActions();
    void BindFileActions();
    void BindUpkeepActions();
    void BindViewActions();
    void BindTableActions();
    void BindFilterActions();
    void BindEditActions();
    void BindListActions();
    void BindExchangeActions();
    void BindAddActions();
    void OpenAddMusic(TSearchArea area);
    void StoreFound(std::vector<TSavedRelease> releases);
    void ServiceUpdateEnded(bool silent);
    /// Releases are being added or thumbnails made: no other change of the collection until that has ended.
    bool Busy() const { return FAddFiles || FImport || FWorking || FAddMusicOpen; }
    void AfterAdding();
    bool OpenCollection(const QString& path);
    void AfterCollectionChange();
    /// False, and told, when they cannot be read.
    bool EnsureTracksOpen();
    void LeaveTracksThatCannotBeRead();
    /// Runs what may fail; false when it did, which is told as a bar.
    bool Attempt(const std::function<void()>& work);
    void ApplyFilters();
    void NewDatabase();
    void OpenDatabase();
    void SaveDatabaseAs();
    void RemoveSelected();
    void Duplicate();
    void RegenerateThumbnails();
    void BackupSettings();
    void RestoreSettingsBackup();
    void Search();
    void SearchEverything();
    void IndexBuilt();
    void RefreshDetail();
    void RefreshFocusedRow(TDataset& releaseInfo);
    void OnChanged(const TChanges& changes);
    void FindLetterHits();
    void CountReleases();
    void StartCounting();
    void CountTracks();
    std::vector<qint64> SelectedOrFocused() const;
    void LoadSettings();
    void LoadLayout(bool ofTracks);
    void SaveSettings();

    TDataModuleMain& FData;
    TPrompt& FPrompt;
    TActionList FActions;
    TMainView FView = mvThumbs;
    bool FFormShown = false;
    bool FDebugMode = false;
    QString FReportedFailure;
    QStringList FFailuresAtStart;
    QString FOpenFailure;

    TViewFilters FReleaseFilters;
    TViewFilters FTrackFilters;
    std::vector<TSavedFilter> FSavedFilters;
    std::unique_ptr<TSearchIndex> FIndex;
    QTimer FIndexTimer;
    bool FSearchWaits = false; // for the index to be built
    QSet<QString> FLetterHits;
    QTimer FLetterTimer;
    QString FSearchBy = EverythingField;
    QString FSearchText;

    std::array<std::optional<TTableLayout>, 2> FLayouts; // releases, tracks
    std::array<bool, 2> FInPlace{};
    QStringList FFolded;
    QStringList FHiddenFields;

    qint64 FFocused = 0;
    qint64 FFocusedTrack = 0;
    std::vector<qint64> FSelection;
    std::vector<qint64> FTrackSelection;
    TDetailData FDetail;
    QTimer FDetailTimer;

    int FTotal = 0;
    qint64 FTracks = -1;
    double FTracksLength = 0.0;
    qint64 FCountedTo = 0;
    QTimer FCountTimer;

    std::unique_ptr<TImportRun> FAddFiles;
    std::unique_ptr<TKRNImportForm> FImport;
    TAddMusicForm* FAddMusic = nullptr;
    bool FAddMusicOpen = false;
    bool FStartChecks = true;
    QString FServicesFailure; // why the service definitions could not be read
    std::unique_ptr<TServiceUpdaterForm> FUpdater;
    bool FWorking = false; // a job of this form runs and serves events
    bool FCancelled = false;
};

} // namespace Kestrune
