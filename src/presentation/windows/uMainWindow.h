// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "frmMain.h"
#include "uCardsPainter.h"
#include "uCoverCache.h"
#include "uExportSource.h"
#include "uShelfPainter.h"
#include "uThumbsPainter.h"

#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <memory>

class QMenu;
class QPrinter;
class QSplitter;
class QStackedWidget;

namespace Kestrune {

class TActionSet;
class TAlbumTable;
class TDebugWindow;
class TDetailPane;
class TEmptyPage;
class TFieldEditor;
class TFilterBar;
class TFindBar;
class TGroupPanel;
class TLetterBar;
class TListModel;
class TMessageBars;
class TProgressWindow;
class TReleasesModel;
struct TReportOptions;
class TSelectionLink;
class TTracksModel;
class TRibbon;
class TStatusLine;
class TThemeController;
class TTileView;

/// The main window: shows what TKRNMainForm holds and hands the user's doings to it. It decides nothing.
class TMainWindow : public QWidget {
    Q_OBJECT
public:
    /// All three outlive the window. Call after the singletons stand; runs FormCreate.
    TMainWindow(TKRNMainForm& form, TThemeController& theme, bool debugMode);
    ~TMainWindow() override;

    /// Restores size and state, runs FormShow and shows the window; WMAfterFormShow follows once it is on the screen.
    void ShowRestored();

    TActionSet& Actions() { return *FActions; }
    TRibbon* Ribbon() { return FRibbon; }
    TTileView* Tiles() { return FTiles; }
    TAlbumTable* Table() { return FTable; }
    TAlbumTable* Tracks() { return FTracks; }
    TGroupPanel* GroupPanel() { return FGroupPanel; }
    TFindBar* FindBar() { return FFind; }
    TDetailPane* Pane() { return FPane; }
    TFilterBar* Filters() { return FFilters; }
    TLetterBar* Letters() { return FLetters; }
    TMessageBars* Bars() { return FBars; }
    TStatusLine* Status() { return FStatus; }
    QStackedWidget* Views() { return FViews; }
    TEmptyPage* EmptyPage() { return FEmpty; }

Q_SIGNALS:
    /// The window is on the screen: the splash window may go.
    void shownFirst();
    /// Another language was chosen: the window is to be made anew.
    void languageChanged();

protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    static constexpr int GroupChip = -1; // in the place of the kind of a filter
    void BuildParts();
    void BuildViews();
    void BuildMenus();
    void BuildShortcuts();
    void SetUpTable(TAlbumTable& table);
    void ConnectForm();
    void ConnectParts();
    void ConnectViews();
    void ConnectTables();
    void ConnectFilters();
    void ConnectPane();

    void ShowCollection();
    void FillSearchFields();
    void ShowView();
    void ShowPage();
    void ShowFilters();
    void ShowChips();
    void ShowSort();
    void ShowFigures();
    void ShowDetail();
    void ShowPane();
    void ShowOpenFailure();
    void FillStatusMenu();
    void FillFileMenu();
    void FillMainMenu();
    void FillSortMenu();
    void FocusRelease(qint64 id);
    void RestoreCurrent();
    void ReportSelection();
    void SetUpColumns();
    void RestoreColumns(TAlbumTable& table, const std::vector<TColumnState>& columns);
    void KeepColumns();
    void ResetColumns();
    TAlbumTable* CurrentTable() const;
    /// The list that a table shows.
    TListSession& SessionOf(const TAlbumTable& table) const;
    TListModel* CurrentModel() const;
    void SetUpCards();
    void ShowGroups();
    void GroupBy(const QString& field);
    void OpenHeaderMenu(TAlbumTable& table, int column, const QPoint& globalPosition);
    void FillGroupMenu();
    void FillPresetMenu();
    void FillSavedMenu();
    void ToggleFilterRow();
    void ToggleFindPanel();
    QStringList FindColumns() const;
    void Find(const QString& text);
    void StepFind(int direction);
    int CurrentRow() const;
    void FocusRow(int row);
    void Copy(bool rows);
    void ReportTrackSelection();
    void RestoreCurrentTrack();
    void OpenWindow(const QString& action);
    void OpenSort();
    void OpenColumns();
    void OpenAbout();
    void OpenHelp();
    void OpenPalette();
    void OpenAllOptions();
    void OpenFilterBuilder();
    void OpenMultiEdit();
    void OpenSaveFilter();
    /// 0: the first page, 1 search services, 2 network.
    void OpenOptions(int page = 0, QWidget* parent = nullptr);
    void OpenSearch();
    void OpenUpdater(bool visible, QWidget* parent);
    void OpenSQL();
    void EditDictionary(const QString& column);
    /// Opens the editor of one suggestion list; after OK all editors of its kind show the new items.
    void LauchDictionaryEditForm(const TDict& dict, const QString& fieldDisplayName, const QString& column);
    /// What the active view shows, with its columns in their order.
    TExportSource MakeSource(bool thumbnails);
    QString ReportTitle() const;
    void Export(const QString& word);
    /// Lets the active list be shown or a printer be chosen, and prints it when that gives true.
    void WithReport(const std::function<bool(TExportSource& source, const TReportOptions& options)>& show);
    void PrintChosen();
    void PrintQuickly();
    void PreviewPrint();
    /// An editor for a field of the release in the pane, or null where it cannot be changed.
    TFieldEditor* MakePaneEditor(const QString& column, QWidget* parent);
    void EditChip(TFilterChipKind kind, const QString& column);
    void SizePane();
    void FitSmallWindow();
    void KeepGeometry();
    void OpenContextMenu(const QPoint& globalPosition);
    void OpenAddFiles();
    void OpenImport();
    void EditKeyword();
    void MoveArea(int direction);
    QWidget* CurrentViewWidget() const;
    void FocusView();
    /// The same unless the user is in view or pane already, such as in a cell that is edited.
    void ReturnToView();
    void EditFocused();
    void AddByHand();

    TKRNMainForm& FForm;
    TThemeController& FTheme;
    TActionSet* FActions = nullptr;
    TReleasesModel* FModel = nullptr;
    TModelThumbSource FThumbs;
    TCoverCache FCovers{FThumbs};
    TThumbsPainter FThumbsPainter{FCovers};
    TCardsPainter FCardsPainter{FCovers};
    TShelfPainter FShelfPainter{FCovers};
    TTracksModel* FTracksModel = nullptr;
    TSelectionLink* FLink = nullptr;

    TRibbon* FRibbon = nullptr;
    TFilterBar* FFilters = nullptr;
    TMessageBars* FBars = nullptr;
    QStackedWidget* FPages = nullptr; // empty page or the views with the pane
    TEmptyPage* FEmpty = nullptr;
    QSplitter* FSplitter = nullptr;
    QWidget* FViewSide = nullptr;
    TLetterBar* FLetters = nullptr;
    QStackedWidget* FViews = nullptr; // tiles, table, nothing found
    TTileView* FTiles = nullptr;
    TAlbumTable* FTable = nullptr;
    TAlbumTable* FTracks = nullptr;
    TGroupPanel* FGroupPanel = nullptr;
    TFindBar* FFind = nullptr;
    TEmptyPage* FNoHits = nullptr;
    TDetailPane* FPane = nullptr;
    TStatusLine* FStatus = nullptr;
    QMenu* FFileMenu = nullptr;
    QMenu* FMainMenu = nullptr;
    QMenu* FStatusMenu = nullptr;
    QMenu* FSortMenu = nullptr;
    QMenu* FSavedMenu = nullptr;
    QMenu* FGroupMenu = nullptr;
    QMenu* FPresetMenu = nullptr;
    std::unique_ptr<QPrinter> FPrinter;
    std::vector<int> FHits; // rows of the find panel
    QTimer FTrackSelectionTimer;
    QPointer<TDebugWindow> FDebug;
    QPointer<TProgressWindow> FProgress;
    QTimer FSelectionTimer;
    qint64 FPlace = 0; // release to come back to after a reset of the list
    bool FPaneDragged = false;
    bool FFirstShow = true;
    bool FSearchesTracks = false; // fields of tracks are in the search box
};

} // namespace Kestrune
