// SPDX-License-Identifier: GPL-3.0-or-later
#include "uActionSet.h"
#include "uAlbumTable.h"
#include "uColumnNames.h"
#include "uDefaults.h"
#include "uDetailPane.h"
#include "uEmptyPage.h"
#include "uFilterBar.h"
#include "uFindBar.h"
#include "uGroupPanel.h"
#include "uImportRun.h"
#include "uImportWindow.h"
#include "uLetterBar.h"
#include "uLogView.h"
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
    FillSearchFields();
    FRibbon->SearchBox()->setEnabled(FForm.Data().HasData());
    FBars->Clear();
    ShowOpenFailure();
    ShowView();
    ShowFilters();
    ShowSort();
    ShowFigures();
    ShowDetail();
}

// The fields of the active list: releases and tracks have others.
void TMainWindow::FillSearchFields()
{
    FSearchesTracks = FForm.TracksShown();
    std::vector<TSearchBoxField> fields{{{}, GetLanguageString(u"cSGuiEverything"_s), {}}};
    for (const TSearchField& field : FForm.Lists().Active().Filters().Fields()) {
        TSearchBoxField shown{field.Column, field.Caption, {}};
        if (field.IsList)
            for (const TValueAndText& item : field.Items)
                shown.Choices << item.Text;
        fields.push_back(std::move(shown));
    }
    // The field stays where the other list has it too.
    const QString current = FForm.Search().SearchBy() == EverythingField ? QString() : FForm.Search().SearchBy();
    FRibbon->SearchBox()->SetFields(std::move(fields));
    FRibbon->SearchBox()->SetCurrentField(current);
}

void TMainWindow::ShowOpenFailure()
{
    if (FForm.Files().Failure().isEmpty())
        return;
    TBarMessage bar{bkError, FForm.Files().Failure(), Defaults().DBPath, {}, {}};
    bar.Actions.push_back(
        {GetLanguageString(u"cSGuiOpenOther"_s), [this] { FForm.Actions().Trigger(u"actOpenDatabase"_s); }});
    FBars->Show(std::move(bar));
}

void TMainWindow::ShowView()
{
    const TMainView view = FForm.CurrentView();
    FThumbsPainter.SetStep(FForm.ThumbSize());
    FShelfPainter.SetStep(FForm.ThumbSize());
    TTilePainter* painter = &FThumbsPainter;
    if (view == mvCards)
        painter = &FCardsPainter;
    else if (view == mvShelf)
        painter = &FShelfPainter;
    FTiles->SetPainter(painter);
    FFilters->Sizes()->SetCurrent(FForm.ThumbSize());
    FFilters->Sizes()->setVisible(view == mvThumbs || view == mvShelf);
    FTable->SetEditing(FForm.Lists().Active().InPlaceEditing());
    FTracks->SetEditing(FForm.Lists().Active().InPlaceEditing());
    FGroupPanel->setVisible(CurrentTable() != nullptr);
    if (FSearchesTracks != FForm.TracksShown())
        FillSearchFields();
    if (!FFind->isHidden())
        Find(FFind->Text());
    ShowPage();
    ShowGroups();
    ShowChips();
}

void TMainWindow::ShowGroups()
{
    const TListModel& list = *CurrentModel();
    QStringList captions;
    for (const QString& field : FForm.Lists().Active().List().Grouping())
        captions << list.headerData(list.ColumnOf(field), Qt::Horizontal, FullCaptionRole).toString();
    FGroupPanel->SetGroups(FForm.Lists().Active().List().Grouping(), captions);
}

// Which of the pages stands in the middle, and which view in it.
void TMainWindow::ShowPage()
{
    const QWidget* focus = QApplication::focusWidget();
    const bool hadFocus = !focus || FViews->isAncestorOf(focus) || FEmpty->isAncestorOf(focus);
    const bool hasData = FForm.Data().HasData();
    const TStatusFigures figures = FForm.Figures().Status();
    FFilters->setVisible(hasData);
    const auto card = [this](const QString& title, const QString& text, const QString& action) {
        return TEmptyCard{GetLanguageString(title), GetLanguageString(text), FActions->Find(action)};
    };
    if (!hasData) {
        std::vector<TRecentFile> recent;
        for (const QString& path : FForm.Files().Recent()) {
            const bool missing = !QFileInfo::exists(path);
            recent.push_back({path, missing ? GetLanguageString(u"cSGuiNotFound"_s) : QString(), missing});
        }
        FEmpty->ShowNoCollection({card(u"cSGuiCardNew"_s, u"cSGuiCardNewText"_s, u"actNewDatabase"_s),
                                  card(u"cSGuiCardOpen"_s, u"cSGuiCardOpenText"_s, u"actOpenDatabase"_s)},
                                 recent);
    } else if (figures.Total == 0) {
        FEmpty->ShowEmptyCollection({card(u"cSGuiCardBarcode"_s, u"cSGuiCardBarcodeText"_s, u"actAddByBarcode"_s),
                                     card(u"cSGuiCardDisc"_s, u"cSGuiCardDiscText"_s, u"actAddByCDROM"_s),
                                     card(u"cSGuiCardFolder"_s, u"cSGuiCardFolderText"_s, u"actAddMP3"_s),
                                     card(u"cSGuiCardImport"_s, u"cSGuiCardImportText"_s, u"actImport"_s),
                                     card(u"cSGuiCardName"_s, u"cSGuiCardNameText"_s, u"actAddMusic"_s),
                                     card(u"cSGuiCardByHand"_s, u"cSGuiCardByHandText"_s, u"actAddReleaseManually"_s)});
    }
    const bool empty = !hasData || figures.Total == 0;
    FPages->setCurrentWidget(empty ? static_cast<QWidget*>(FEmpty) : FSplitter);
    if (!empty && figures.Shown == 0)
        FViews->setCurrentWidget(FNoHits);
    else
        FViews->setCurrentWidget(CurrentTable() ? static_cast<QWidget*>(CurrentTable()) : FTiles);
    // Another page takes the keyboard over; what has it within the same page keeps it, such as a field of the filter
    // row.
    if (hadFocus && !CurrentViewWidget()->isAncestorOf(QApplication::focusWidget()))
        FocusView();
}

void TMainWindow::ShowChips()
{
    std::vector<TChipText> chips;
    for (const TFilterChip& chip : FForm.Lists().Active().Filters().Chips())
        chips.push_back({u"%1|%2"_s.arg(static_cast<int>(chip.Kind)).arg(chip.Column), chip.Field, chip.Value});
    // In a table the group panel shows them; tiles have none, and yet stand in their order.
    if (!CurrentTable()) {
        const TListModel& list = *CurrentModel();
        for (const QString& field : FForm.Lists().Active().List().Grouping())
            chips.push_back({u"%1|%2"_s.arg(GroupChip).arg(field), GetLanguageString(u"cSGuiGroupedBy"_s),
                             list.headerData(list.ColumnOf(field), Qt::Horizontal, FullCaptionRole).toString()});
    }
    FFilters->Chips()->SetChips(chips);
}

void TMainWindow::ShowFilters()
{
    ShowChips();
    FLetters->SetCurrent(FForm.Lists().Active().Filters().Set().Letter);
    FLetters->SetField(FForm.Lists().Active().Filters().Set().LetterField);
    if (TAlbumTable* table = CurrentTable())
        table->Header()->RefreshFilters();
    if (!FFind->isHidden() && !FFind->Text().isEmpty())
        FHits = FForm.Lists().Active().FindRows(FindColumns(), FFind->Text());
    ShowPage();
}

void TMainWindow::ShowSort()
{
    const TListModel& list = *CurrentModel();
    std::vector<TSortMark> marks;
    const std::vector<TSortItem> sort = FForm.Lists().Active().List().Sort();
    for (const TSortItem& item : sort)
        if (const int column = list.ColumnOf(item.Column); column >= 0)
            marks.push_back({column, !item.Descending});
    const QString caption = marks.empty()
                                ? GetLanguageString(u"cSGuiUnsorted"_s)
                                : list.headerData(marks.front().Column, Qt::Horizontal, Qt::DisplayRole).toString();
    FFilters->SetSort(caption, marks.empty() || marks.front().Ascending, FSortMenu);
    if (!FForm.TracksShown()) {
        const QString first = sort.empty() ? QString() : sort.front().Column;
        FShelfPainter.SetOrder(first == Col::No            ? soNumber
                               : first == Col::Artist      ? soArtist
                               : first == Col::ReleaseYear ? soYear
                                                           : soOther);
        FTiles->viewport()->update();
    }
    (FForm.TracksShown() ? FTracks : FTable)->SetSortMarks(std::move(marks));
    ShowGroups();
    ShowChips();
}

void TMainWindow::ShowFigures()
{
    const TStatusFigures figures = FForm.Figures().Status();
    const QLocale locale;
    QStringList facts;
    QString shown = GetLanguageString(figures.OfTracks ? u"cSGuiFigureTracks"_s : u"cSGuiFigureReleases"_s)
                        .arg(locale.toString(figures.Total));
    if (figures.Shown != figures.Total)
        shown = GetLanguageString(figures.OfTracks ? u"cSGuiFigureTracksOf"_s : u"cSGuiFigureOf"_s)
                    .arg(locale.toString(figures.Shown), locale.toString(figures.Total));
    if (figures.Groups > 0)
        shown += u' ' + (figures.Groups == 1
                             ? GetLanguageString(u"cSGuiFigureOneGroup"_s)
                             : GetLanguageString(u"cSGuiFigureGroups"_s).arg(locale.toString(figures.Groups)));
    facts << shown;
    facts << (figures.Selected == 0
                  ? GetLanguageString(u"cSGuiFigureNone"_s)
                  : GetLanguageString(u"cSGuiFigureSelected"_s).arg(locale.toString(figures.Selected)));
    if (figures.Tracks >= 0 && !figures.FileName.isEmpty() && !figures.OfTracks)
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

void TMainWindow::ShowDetail() { FPane->SetData(FForm.Pane().Detail()); }

void TMainWindow::ShowPane()
{
    const int location = FForm.Pane().Location();
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
    const bool tooNarrow = FForm.Pane().Location() == 1 && width() < PaneHidesBelow;
    FPane->setVisible(!FForm.Pane().Closed() && !tooNarrow);
    FLetters->setVisible(height() >= LettersHideBelow);
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
    if (!index.isValid() && !FForm.TracksShown())
        return;
    if (FForm.TracksShown()) {
        // A track of that release has the focus already, or the first one gets it.
        const int row = CurrentRow();
        const TVariant shown =
            row < 0
                ? TVariant()
                : FForm.Lists().Active().List().ValueAt(row, FForm.Lists().Active().List().FieldIndex(Col::ReleaseId));
        const int first = FForm.Lists().Active().List().RowOfKey(FForm.Data().Queries().FirstTrackOf(id));
        if (shown.toLongLong() != id && first >= 0)
            FocusRow(first);
        return;
    }
    const QItemSelectionModel* selection = FTiles->selectionModel();
    if (FTiles->currentIndex().row() != index.row() || !selection->isRowSelected(index.row(), {}))
        FTiles->selectionModel()->setCurrentIndex(index,
                                                  QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    FLink->FollowSource();
    if (CurrentTable() == FTable)
        FTable->scrollTo(FTable->Groups().IndexOfRow(index.row(), std::max(0, FTable->currentIndex().column())));
    else
        FTiles->scrollTo(index);
}

// A reset of the model loses the selection: the focused release comes back where it is now, else the first row. A view
// that has the keyboard may have made the first row current by itself, without selecting it.
void TMainWindow::RestoreCurrent()
{
    if (FForm.Pane().Detail().ID != 0)
        FPlace = FForm.Pane().Detail().ID;
    if (FModel->rowCount() == 0) {
        // Nothing in sight is selected: no command may reach a release that the filters hide.
        FForm.Lists().Releases().SetFocused(0);
        FForm.Lists().Releases().SetSelection({});
        return;
    }
    if (FTiles->selectionModel()->hasSelection()) {
        FLink->FollowSource();
        return;
    }
    if (FForm.TracksShown())
        return; // the releases are not in sight
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
    FForm.Lists().Releases().SetSelection(std::move(ids));
}

void TMainWindow::ReportTrackSelection()
{
    std::vector<qint64> ids;
    for (const QItemSelectionRange& range : FTracks->Groups().ToSource(FTracks->selectionModel()->selection()))
        for (int row = range.top(); row <= range.bottom(); ++row)
            ids.push_back(FTracksModel->IdOf(FTracksModel->index(row, 0)));
    std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    FForm.Lists().Tracks().SetSelection(std::move(ids));
}

void TMainWindow::RestoreCurrentTrack()
{
    if (!FForm.TracksShown() || FTracksModel->rowCount() == 0 || FTracks->selectionModel()->hasSelection())
        return;
    FocusRow(std::max(0, FForm.Lists().Active().List().RecNo()));
}

// The columns there are follow the settings: custom fields come and go with their captions.
void TMainWindow::ResetColumns()
{
    KeepColumns();
    for (TAlbumTable* table : {FTable, FTracks}) {
        table->Groups().Source().ResetColumns();
        RestoreColumns(*table, SessionOf(*table).Layout()->Columns);
    }
    SetUpCards();
    FCovers.Clear();
    ShowCollection();
    RestoreCurrent();
    RestoreCurrentTrack();
}

void TMainWindow::OpenAddFiles()
{
    TImportRun* run = FForm.Adding().AddFiles();
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
    connect(run, &TImportRun::itemFailed, window, [window](const QString& item, const QString& sentence) {
        window->Log().AddWarning(item + u": "_s + sentence);
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
    auto* window = new TImportWindow(*FForm.Adding().ImportForm(), this);
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
        FocusView();
    });
}

void TMainWindow::closeEvent(QCloseEvent* event)
{
    if (FForm.Shell().Working()) { // a job serves this event: it is stopped first
        FForm.Shell().CancelJob();
        event->ignore();
        return;
    }
    KeepGeometry();
    KeepColumns();
    FForm.Pane().SetFoldedSections(FPane->Folded());
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
    if (local && !FForm.Shell().Working() && FForm.Actions().IsEnabled(u"actAddMP3"_s))
        event->acceptProposedAction();
}

void TMainWindow::dropEvent(QDropEvent* event)
{
    QStringList paths;
    for (const QUrl& url : event->mimeData()->urls())
        if (url.isLocalFile())
            paths << url.toLocalFile();
    event->acceptProposedAction();
    FForm.Adding().AddFolders(paths);
}

} // namespace Kestrune
