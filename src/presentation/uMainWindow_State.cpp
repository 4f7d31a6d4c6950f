// SPDX-License-Identifier: GPL-3.0-or-later
#include "uImportRun.h"
#include "uImportWindow.h"
#include "uLogView.h"
#include "uActionSet.h"
#include "uAlbumTable.h"
#include "uDefaults.h"
#include "uDetailPane.h"
#include "uEmptyPage.h"
#include "uFilterBar.h"
#include "uLetterBar.h"
#include "uMainWindow.h"
#include "uMessageBars.h"
#include "uProgressWindow.h"
#include "uReleasesModel.h"
#include "uRibbon.h"
#include "uSearchBox.h"
#include "uSegments.h"
#include "uStatusLine.h"
#include "uTHStrings.h"
#include "uTileView.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QFileInfo>
#include <QLayout>
#include <QLocale>
#include <QMenu>
#include <QMimeData>
#include <QSplitter>
#include <QStackedWidget>
#include <QUrl>

#include <algorithm>
#include <cmath>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int LeastPaneWidth = 280;
constexpr double PaneShare = 0.24;
constexpr int PaneHidesBelow = 860;   // width of a window with the pane at its side
constexpr int LettersHideBelow = 600; // height of a window

QString DaysText(double days)
{
    const qint64 seconds = std::llround(days * 86400.0);
    const QString clock = u"%1:%2:%3"_s.arg(seconds / 3600 % 24, 2, 10, QChar(u'0'))
                              .arg(seconds / 60 % 60, 2, 10, QChar(u'0'))
                              .arg(seconds % 60, 2, 10, QChar(u'0'));
    return seconds < 86400 ? clock : GetLanguageString(u"cSGuiDays"_s).arg(seconds / 86400).arg(clock);
}

} // namespace

void TMainWindow::ShowCollection()
{
    setWindowTitle(FForm.Caption());
    std::vector<TSearchBoxField> fields;
    for (const TSearchField& field : FForm.SearchFields()) {
        TSearchBoxField shown{field.Column, field.Caption, {}};
        if (field.IsList)
            for (const TValueAndText& item : field.Items)
                shown.Choices << item.Text;
        fields.push_back(std::move(shown));
    }
    FRibbon->SearchBox()->SetFields(std::move(fields));
    FRibbon->SearchBox()->setEnabled(FForm.Data().HasData());
    FBars->Clear();
    ShowOpenFailure();
    ShowView();
    ShowFilters();
    ShowSort();
    ShowFigures();
    ShowDetail();
}

void TMainWindow::ShowOpenFailure()
{
    if (FForm.OpenFailure().isEmpty())
        return;
    TBarMessage bar{bkError, FForm.OpenFailure(), Defaults().DBPath, {}, {}};
    bar.Actions.push_back(
        {GetLanguageString(u"cSGuiOpenOther"_s), [this] { FForm.Actions().Trigger(u"actOpenDatabase"_s); }});
    FBars->Show(std::move(bar));
}

void TMainWindow::ShowView()
{
    FThumbsPainter.SetStep(FForm.ThumbSize());
    FTiles->SetPainter(&FThumbsPainter);
    FFilters->Sizes()->SetCurrent(FForm.ThumbSize());
    FFilters->Sizes()->setVisible(FForm.CurrentView() == mvThumbs);
    ShowPage();
}

// Which of the pages stands in the middle, and which view in it.
void TMainWindow::ShowPage()
{
    const bool hadFocus = FViews->isAncestorOf(QApplication::focusWidget());
    const bool hasData = FForm.Data().HasData();
    const TStatusFigures figures = FForm.StatusFigures();
    FFilters->setVisible(hasData);
    const auto card = [this](const QString& title, const QString& text, const QString& action) {
        return TEmptyCard{GetLanguageString(title), GetLanguageString(text), FActions->Find(action)};
    };
    if (!hasData) {
        std::vector<TRecentFile> recent;
        for (const QString& path : FForm.RecentDBs()) {
            const bool missing = !QFileInfo::exists(path);
            recent.push_back({path, missing ? GetLanguageString(u"cSGuiNotFound"_s) : QString(), missing});
        }
        FEmpty->ShowNoCollection({card(u"cSGuiCardNew"_s, u"cSGuiCardNewText"_s, u"actNewDatabase"_s),
                                  card(u"cSGuiCardOpen"_s, u"cSGuiCardOpenText"_s, u"actOpenDatabase"_s)},
                                 recent);
    } else if (figures.Total == 0) {
        FEmpty->ShowEmptyCollection({card(u"cSGuiCardFolder"_s, u"cSGuiCardFolderText"_s, u"actAddMP3"_s)});
    }
    const bool empty = !hasData || figures.Total == 0;
    FPages->setCurrentWidget(empty ? static_cast<QWidget*>(FEmpty) : FSplitter);
    if (!empty && figures.Shown == 0)
        FViews->setCurrentWidget(FNoHits);
    else
        FViews->setCurrentWidget(FForm.CurrentView() == mvAlbums ? static_cast<QWidget*>(FTable) : FTiles);
    if (hadFocus)
        FViews->currentWidget()->setFocus();
}

void TMainWindow::ShowFilters()
{
    std::vector<TChipText> chips;
    for (const TFilterChip& chip : FForm.FilterChips())
        chips.push_back({QString::number(static_cast<int>(chip.Kind)), chip.Field, chip.Value});
    FFilters->Chips()->SetChips(chips);
    FLetters->SetCurrent(FForm.Letter());
    FLetters->SetField(FForm.LetterField());
    ShowPage();
}

void TMainWindow::ShowSort()
{
    std::vector<TSortMark> marks;
    const std::vector<TSortItem> sort = FForm.Data().qReleasesMain.Sort();
    for (const TSortItem& item : sort)
        if (const int column = FModel->ColumnOf(item.Column); column >= 0)
            marks.push_back({column, !item.Descending});
    const QString caption = marks.empty()
                                ? GetLanguageString(u"cSGuiUnsorted"_s)
                                : FModel->headerData(marks.front().Column, Qt::Horizontal, Qt::DisplayRole).toString();
    FFilters->SetSort(caption, marks.empty() || marks.front().Ascending, FSortMenu);
    FTable->SetSortMarks(std::move(marks));
}

void TMainWindow::ShowFigures()
{
    const TStatusFigures figures = FForm.StatusFigures();
    const QLocale locale;
    QStringList facts;
    if (figures.Shown == figures.Total)
        facts << GetLanguageString(u"cSGuiFigureReleases"_s).arg(locale.toString(figures.Total));
    else
        facts << GetLanguageString(u"cSGuiFigureOf"_s)
                     .arg(locale.toString(figures.Shown), locale.toString(figures.Total));
    facts << (figures.Selected == 0
                  ? GetLanguageString(u"cSGuiFigureNone"_s)
                  : GetLanguageString(u"cSGuiFigureSelected"_s).arg(locale.toString(figures.Selected)));
    if (figures.Tracks >= 0 && !figures.FileName.isEmpty())
        facts << GetLanguageString(u"cSGuiFigureTracks"_s).arg(locale.toString(figures.Tracks))
              << DaysText(figures.TracksLength);
    FStatus->SetFacts(facts);
    FStatus->SetFile(figures.FileName.isEmpty() ? GetLanguageString(u"cSGuiNoFile"_s) : figures.FileName,
                     figures.ReadOnly);
    const bool emptyShown = FPages->currentWidget() == FEmpty;
    const bool noHitsShown = FViews->currentWidget() == FNoHits;
    if (emptyShown != (figures.Total == 0) || noHitsShown != (figures.Shown == 0))
        ShowPage();
}

void TMainWindow::ShowDetail() { FPane->SetData(FForm.Detail()); }

void TMainWindow::ShowPane()
{
    const int location = FForm.PaneLocation();
    const bool beside = location == 1;
    FSplitter->setOrientation(beside ? Qt::Horizontal : Qt::Vertical);
    // The pane stands first only when it is at the top.
    FSplitter->insertWidget(location == 2 ? 0 : 1, FPane);
    FSplitter->setStretchFactor(FSplitter->indexOf(FViewSide), 1);
    FSplitter->setStretchFactor(FSplitter->indexOf(FPane), 0);
    FPane->SetOrientation(beside ? Qt::Vertical : Qt::Horizontal);
    FPane->setMinimumWidth(beside ? LeastPaneWidth : 0);
    FPane->setMinimumHeight(beside ? 0 : 120);
    FPaneDragged = false;
    FitSmallWindow();
    SizePane();
}

void TMainWindow::SizePane()
{
    if (FPaneDragged || FPane->isHidden())
        return;
    const bool beside = FSplitter->orientation() == Qt::Horizontal;
    const int total = beside ? FSplitter->width() : FSplitter->height();
    const TDefaults& settings = Defaults();
    const int kept = beside ? settings.FrameWidth : settings.FrameHeight;
    int size = kept > 0 ? kept : beside ? total : 240;
    // A width that the user has drawn stands; the first one keeps to its share of the window.
    if (beside && kept != MakeDefaults().FrameWidth)
        size = std::clamp(size, LeastPaneWidth, std::max(LeastPaneWidth, total / 2));
    else if (beside)
        size = std::max(LeastPaneWidth, std::min(size, static_cast<int>(width() * PaneShare)));
    else
        size = std::clamp(size, 120, std::max(120, total / 2));
    QList<int> sizes = {total - size, size};
    if (FSplitter->indexOf(FPane) == 0)
        std::swap(sizes[0], sizes[1]);
    FSplitter->setSizes(sizes);
}

void TMainWindow::FitSmallWindow()
{
    const bool tooNarrow = FForm.PaneLocation() == 1 && width() < PaneHidesBelow;
    FPane->setVisible(!FForm.PaneClosed() && !tooNarrow);
    FLetters->setVisible(height() >= LettersHideBelow);
}

void TMainWindow::FillFileMenu()
{
    FFileMenu->clear();
    qDeleteAll(FFileMenu->findChildren<QMenu*>(Qt::FindDirectChildrenOnly));
    FActions->Fill(*FFileMenu, {u"actNewDatabase"_s, u"actOpenDatabase"_s});
    QMenu* recent = FFileMenu->addMenu(GetLanguageString(u"cSGuiRecent"_s));
    for (const QString& path : FForm.RecentDBs())
        connect(recent->addAction(path), &QAction::triggered, this, [this, path] { FForm.OpenRecent(path); });
    recent->setEnabled(!recent->isEmpty());
    FActions->Fill(*FFileMenu, {QString(), u"actSaveDatabase"_s, u"actSaveDatabaseAs"_s, QString(), u"actImport"_s,
                                u"actPrint"_s, QString(), u"actOptions"_s, u"actBackupSettings"_s, QString(),
                                u"actHelp"_s, u"actAbout"_s, QString(), u"actExit"_s});
}

void TMainWindow::FillMainMenu()
{
    FMainMenu->clear();
    qDeleteAll(FMainMenu->findChildren<QMenu*>(Qt::FindDirectChildrenOnly));
    FillFileMenu();
    QMenu* file = FMainMenu->addMenu(GetLanguageString(u"cSGuiFile"_s));
    file->addActions(FFileMenu->actions());
    for (const TRibbonTab& tab : MainRibbonTable()) {
        QStringList names;
        for (const TRibbonGroup& group : tab.Groups) {
            names << QString();
            for (const TRibbonItem& item : group.Items)
                names << (item.Action.isEmpty() ? item.Menu : QStringList(item.Action));
        }
        auto* menu = new QMenu(GetLanguageString(tab.CaptionKey), FMainMenu);
        FActions->Fill(*menu, names);
        if (!menu->isEmpty())
            FMainMenu->addMenu(menu);
        else
            delete menu;
    }
}

void TMainWindow::FillStatusMenu()
{
    FStatusMenu->clear();
    FActions->Fill(*FStatusMenu, {u"actFilterStatusAll"_s, u"actFilterStatusOther"_s});
    FStatusMenu->addSeparator();
    for (const QString& status : FForm.StatusItems()) {
        if (status.isEmpty())
            continue;
        QAction* item = FStatusMenu->addAction(status);
        item->setCheckable(true);
        item->setChecked(status == FForm.StatusFilter());
        connect(item, &QAction::triggered, this, [this, status] { FForm.FilterStatus(status); });
    }
}

void TMainWindow::FillSortMenu()
{
    FSortMenu->clear();
    for (const QString& field : {u"Artist"_s, u"ReleaseName"_s, u"ReleaseYear"_s, u"DateAdded"_s, u"Rating_Calc"_s,
                                 u"MediaType"_s, u"Genre"_s, u"Label"_s, u"No"_s}) {
        const int column = FModel->ColumnOf(field);
        if (column < 0)
            continue;
        QAction* item = FSortMenu->addAction(FModel->headerData(column, Qt::Horizontal, Qt::DisplayRole).toString());
        connect(item, &QAction::triggered, this, [this, field] { FForm.SortBy(field, false); });
    }
    FActions->Fill(*FSortMenu, {QString(), u"actSort"_s, u"actSortAsc"_s, u"actSortDesc"_s, u"actClearSorting"_s});
}

void TMainWindow::OpenContextMenu(const QPoint& globalPosition)
{
    QMenu menu(this);
    FActions->Fill(menu, {u"actEditItem"_s, u"actDuplicate"_s, u"actMultiEdit"_s, QString(), u"actAddToPlaylist"_s,
                          u"actLoanSelected"_s, u"actDownloadCoverImagesForSelection"_s, QString(),
                          u"actCopySelectedCell"_s, u"actCopySelectedRows"_s, u"actSelectAll"_s, u"actClearSelection"_s,
                          QString(), u"actRefresh"_s, QString(), u"actRemoveSelected"_s});
    if (!menu.isEmpty())
        menu.exec(globalPosition);
}

void TMainWindow::FocusRelease(qint64 id)
{
    const QModelIndex index = FModel->IndexOfId(id);
    if (!index.isValid())
        return;
    auto* view = FForm.CurrentView() == mvAlbums ? static_cast<QAbstractItemView*>(FTable) : FTiles;
    const QItemSelectionModel* selection = FTiles->selectionModel();
    if (FTiles->currentIndex().row() != index.row() || !selection->isRowSelected(index.row(), {}))
        FTiles->selectionModel()->setCurrentIndex(index,
                                                  QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    view->scrollTo(index);
}

// A reset of the model loses the selection: the focused release comes back where it is now, else the first row. A view
// that has the keyboard may have made the first row current by itself, without selecting it.
void TMainWindow::RestoreCurrent()
{
    if (FForm.Detail().ID != 0)
        FPlace = FForm.Detail().ID;
    if (FModel->rowCount() == 0) {
        // Nothing in sight is selected: no command may reach a release that the filters hide.
        FForm.SetFocusedRelease(0);
        FForm.SetSelection({});
        return;
    }
    if (FTiles->selectionModel()->hasSelection())
        return;
    const QModelIndex again = FModel->IndexOfId(FPlace);
    FocusRelease(FModel->IdOf(again.isValid() ? again : FModel->index(0, 0)));
}

void TMainWindow::ReportSelection()
{
    std::vector<qint64> ids;
    for (const QItemSelectionRange& range : FTiles->selectionModel()->selection())
        for (int row = range.top(); row <= range.bottom(); ++row)
            ids.push_back(FModel->IdOf(FModel->index(row, 0)));
    std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    FForm.SetSelection(std::move(ids));
}

void TMainWindow::OpenAddFiles()
{
    TImportRun* run = FForm.AddFiles();
    if (!run)
        return;
    FProgress = new TProgressWindow(GetLanguageString(u"cSGuiAddingFiles"_s), this);
    FProgress->setAttribute(Qt::WA_DeleteOnClose);
    QPointer<TProgressWindow> window = FProgress;
    connect(FProgress, &TProgressWindow::cancelRequested, run, [run] { run->Cancel(); });
    connect(run, &TImportRun::progressed, window, [this, run, window] {
        window->SetProgress(run->Position(), run->Count());
        window->SetCurrentItem(run->CurrentItem());
        FStatus->ShowProgress(GetLanguageString(u"cSGuiAddingFiles"_s), run->Position(), run->Count(), true);
    });
    connect(run, &TImportRun::logLines, &FProgress->Log(), &TLogView::AddLines);
    connect(run, &TImportRun::fileFailed, window, [window](const QString& file, const QString& sentence) {
        window->Log().AddWarning(file + u": "_s + sentence);
    });
    connect(run, &TImportRun::finished, window, [this, run, window] {
        const QString stored = GetLanguageString(u"cSGuiAddedFiles"_s).arg(run->Releases()).arg(run->Tracks());
        window->Finish(run->Error().isEmpty() ? stored : run->Error() + u' ' + stored, !run->Error().isEmpty());
        FStatus->HideProgress();
    });
    FProgress->show();
}

void TMainWindow::OpenImport()
{
    auto* window = new TImportWindow(*FForm.ImportForm(), this);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->open();
}

void TMainWindow::MoveArea(int direction)
{
    const QList<QWidget*> areas = {FRibbon, FRibbon->SearchBox(), FFilters, FLetters, FPages, FPane};
    QWidget* now = QApplication::focusWidget();
    qsizetype at = -1;
    for (qsizetype i = 0; i < areas.size(); ++i)
        if (now && (areas[i] == now || areas[i]->isAncestorOf(now)))
            at = i; // a part inside another stands behind it in the list
    const qsizetype count = areas.size();
    for (qsizetype step = 1; step <= count; ++step) {
        QWidget* area = areas[((at + direction * step) % count + count) % count];
        if (!area->isVisible())
            continue;
        if (area == FPages)
            return CurrentViewWidget()->setFocus(Qt::TabFocusReason);
        const QList<QWidget*> children = area->findChildren<QWidget*>();
        for (QWidget* child : children)
            if (child->isVisible() && child->isEnabled() && child->focusPolicy() & Qt::TabFocus)
                return child->setFocus(Qt::TabFocusReason);
    }
}

void TMainWindow::KeepGeometry()
{
    if (!isVisible() || isMaximized() || isMinimized() || isFullScreen())
        return;
    FForm.SetNormalGeometry(QRect(pos(), size()));
}

void TMainWindow::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (!std::exchange(FFirstShow, false))
        return;
    QTimer::singleShot(0, this, [this] {
        Q_EMIT shownFirst();
        FForm.WMAfterFormShow();
        CurrentViewWidget()->setFocus();
    });
}

void TMainWindow::closeEvent(QCloseEvent* event)
{
    KeepGeometry();
    KeepColumns();
    FForm.SetFoldedSections(FPane->Folded());
    FForm.FormClose();
    event->accept();
}

void TMainWindow::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange && !isMinimized() && !FFirstShow)
        FForm.SetMaximized(isMaximized());
}

void TMainWindow::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    FitSmallWindow();
    layout()->activate();
    SizePane();
    KeepGeometry();
}

void TMainWindow::moveEvent(QMoveEvent* event)
{
    QWidget::moveEvent(event);
    KeepGeometry();
}

void TMainWindow::dragEnterEvent(QDragEnterEvent* event)
{
    const bool local = event->mimeData()->hasUrls() && event->mimeData()->urls().constFirst().isLocalFile();
    if (local && FForm.Actions().IsEnabled(u"actAddMP3"_s))
        event->acceptProposedAction();
}

void TMainWindow::dropEvent(QDropEvent* event)
{
    QStringList paths;
    for (const QUrl& url : event->mimeData()->urls())
        if (url.isLocalFile())
            paths << url.toLocalFile();
    event->acceptProposedAction();
    FForm.AddFolders(paths);
}

} // namespace Kestrune
