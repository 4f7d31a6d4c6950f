// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "frmMain.h"
#include "uCoverCache.h"
#include "uThumbsPainter.h"

#include <QPointer>
#include <QTimer>
#include <QWidget>

class QMenu;
class QSplitter;
class QStackedWidget;

namespace Kestrune {

class TActionSet;
class TAlbumTable;
class TDebugWindow;
class TDetailPane;
class TEmptyPage;
class TFilterBar;
class TLetterBar;
class TMessageBars;
class TProgressWindow;
class TReleasesModel;
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

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void BuildParts();
    void BuildViews();
    void BuildMenus();
    void BuildShortcuts();
    void ConnectForm();
    void ConnectParts();

    void ShowCollection();
    void ShowView();
    void ShowPage();
    void ShowFilters();
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
    void RestoreColumns(const std::vector<TColumnState>& columns);
    void KeepColumns();
    void SizePane();
    void FitSmallWindow();
    void KeepGeometry();
    void OpenContextMenu(const QPoint& globalPosition);
    void OpenAddFiles();
    void OpenImport();
    void EditKeyword();
    void MoveArea(int direction);
    QWidget* CurrentViewWidget() const;

    TKRNMainForm& FForm;
    TThemeController& FTheme;
    TActionSet* FActions = nullptr;
    TReleasesModel* FModel = nullptr;
    TModelThumbSource FThumbs;
    TCoverCache FCovers{FThumbs};
    TThumbsPainter FThumbsPainter{FCovers};

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
    TEmptyPage* FNoHits = nullptr;
    TDetailPane* FPane = nullptr;
    TStatusLine* FStatus = nullptr;
    QMenu* FFileMenu = nullptr;
    QMenu* FMainMenu = nullptr;
    QMenu* FStatusMenu = nullptr;
    QMenu* FSortMenu = nullptr;
    QPointer<TDebugWindow> FDebug;
    QPointer<TProgressWindow> FProgress;
    QTimer FSelectionTimer;
    qint64 FPlace = 0; // release to come back to after a reset of the list
    bool FPaneDragged = false;
    bool FFirstShow = true;
};

} // namespace Kestrune
