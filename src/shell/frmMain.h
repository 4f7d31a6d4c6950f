// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dmMain.h"
#include "uActions.h"
#include "uDetailView.h"
#include "uSearch.h"
#include "uViewLayout.h"

#include <QObject>
#include <QRect>
#include <QStringList>
#include <QTimer>

#include <memory>
#include <optional>
#include <vector>

namespace Kestrune {

class TImportRun;
class TKRNImportForm;
class TPrompt;

/// Numbers of the views, as the setting CurrentView keeps them.
enum class TMainView : int { mvThumbs, mvCards, mvShelf, mvAlbums, mvTracks };
using enum TMainView;

/// An active filter, as a removable chip shows it.
enum class TFilterChipKind : quint8 { fckStatus, fckLetter, fckKeyword };
using enum TFilterChipKind;
struct TFilterChip {
    TFilterChipKind Kind;
    QString Field;
    QString Value;
};

/// What the status line says.
struct TStatusFigures {
    int Shown = 0;
    int Total = 0;
    int Selected = 0;
    qint64 Tracks = -1;        ///< -1 while they are being counted
    double TracksLength = 0.0; ///< days
    QString FileName;
    bool ReadOnly = false;
};

/// How a message bar looks: errors stay, done leaves by itself.
enum class TBarKind : quint8 { bkError, bkWarning, bkDone };
using enum TBarKind;

/// What the window itself does at its place in the creation.
struct TMainFormHooks {
    std::function<void()> CreateDebugWindow; ///< set in debug mode only
    std::function<void()> ApplyTheme;
};

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

    std::vector<TSearchField> SearchFields() const;
    QString SearchBy() const { return FSearchBy; }
    void SetSearchBy(const QString& column);
    /// What stands in the search box; actSearch searches for it.
    void SetSearchText(const QString& text) { FSearchText = text; }
    /// Column and text of the keyword filter; empty without one.
    std::pair<QString, QString> Keyword() const { return {FKeywordColumn, FKeywordText}; }
    /// One letter filters by it, any longer caption removes the letter.
    void LetterClick(const QString& caption);
    QString Letter() const { return FLetter; }
    /// 0 artist, 1 release name.
    void SetLetterField(int index);
    int LetterField() const { return FLetterField; }
    /// Letters with which some stored name of the letter field begins; empty until letterHitsChanged has told.
    const QSet<QString>& LetterHits() const { return FLetterHits; }
    QStringList StatusItems() const;
    void FilterStatus(const QString& status);
    QString StatusFilter() const { return FStatus; }
    std::vector<TFilterChip> FilterChips() const;
    void RemoveFilter(TFilterChipKind kind);

    /// The row whose title, as shown, begins with a text: the next one from a row on and round, in the order of the
    /// list; -1 for none.
    int LocateTitle(const QString& text, int fromRow);

    /// A click on a column heading: sorts by it, or turns its order; `add` keeps the columns sorted by before.
    void SortBy(const QString& column, bool add);

    TStatusFigures StatusFigures() const;

    /// A failure of the collection outside an action (a damaged page, a disk that is gone): shown as a bar, once for
    /// the same reason in a row.
    void ReportFailure(const QString& reason);

    /// Adds the audio files of these folders and files in the background.
    void AddFolders(const QStringList& paths);
    /// The run in progress, or null.
    TImportRun* AddFiles() const { return FAddFiles.get(); }
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
    /// The layout of the album table that the settings kept; nothing before there was one. Its sort is in force
    /// already.
    const std::optional<TTableLayout>& AlbumLayout() const { return FAlbumLayout; }
    /// The columns as they are now; the sort is added by FormClose.
    void SetAlbumColumns(std::vector<TColumnState> columns);
    /// Ids of the folded sections of the detail pane.
    QStringList FoldedSections() const { return FFolded; }
    void SetFoldedSections(const QStringList& ids) { FFolded = ids; }

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
    void closeRequested();
    void debugWindowToggled();
    void barRaised(Kestrune::TBarKind kind, const QString& bold, const QString& sentence);

private:
    void CreateDebugWindow(const TMainFormHooks& hooks);
    void RestoreSettings(const TMainFormHooks& hooks);
    void ApplyTheme(const TMainFormHooks& hooks);
    void ConnectAtStart(const TMainFormHooks& hooks);
    void PrepareDetail(const TMainFormHooks& hooks);
    void SelectFirstView(const TMainFormHooks& hooks);
    void BindActions();
    void BindFileActions();
    void BindViewActions();
    void BindFilterActions();
    /// Releases are being added: no other change of the collection until they are in.
    bool Adding() const { return FAddFiles || FImport; }
    void AfterAdding();
    bool OpenCollection(const QString& path);
    void AfterCollectionChange();
    void ResetFilters();
    void ApplyFilters();
    void NewDatabase();
    void OpenDatabase();
    void RemoveSelected();
    void Search();
    void RefreshDetail();
    void RefreshFocusedRow(TDataset& releaseInfo);
    void FindLetterHits();
    void CountReleases();
    void StartCounting();
    void CountTracks();
    std::vector<qint64> SelectedOrFocused() const;
    void LoadSettings();
    void SaveSettings();

    TDataModuleMain& FData;
    TPrompt& FPrompt;
    TActionList FActions;
    TMainView FView = mvThumbs;
    bool FFormShown = false;
    bool FDebugMode = false;
    QString FReportedFailure;
    QString FOpenFailure;

    TFilterGroup::TId FStatusFilter = 0;
    TFilterGroup::TId FQuickFilter = 0;
    TFilterGroup::TId FKeywordFilter = 0;
    QString FStatus, FLetter, FKeyword, FKeywordColumn, FKeywordText;
    int FLetterField = 0;
    QSet<QString> FLetterHits;
    QTimer FLetterTimer;
    QString FSearchBy;
    QString FSearchText;

    std::optional<TTableLayout> FAlbumLayout;
    QStringList FFolded;

    qint64 FFocused = 0;
    std::vector<qint64> FSelection;
    TDetailData FDetail;
    QTimer FDetailTimer;

    int FTotal = 0;
    qint64 FTracks = -1;
    double FTracksLength = 0.0;
    qint64 FCountedTo = 0;
    QTimer FCountTimer;

    std::unique_ptr<TImportRun> FAddFiles;
    std::unique_ptr<TKRNImportForm> FImport;
};

/// The detail view of the release on which qReleaseInfo and the child cursors stand.
TDetailData BuildDetailData(TDataModuleMain& data);

/// "m:ss" or "h:mm:ss" of a length in days; empty for zero and less.
QString LengthText(double days);

} // namespace Kestrune
