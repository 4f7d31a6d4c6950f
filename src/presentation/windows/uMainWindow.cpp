// SPDX-License-Identifier: GPL-3.0-or-later
#include "uMainWindow.h"

#include "uActionSet.h"
#include "uAlbumTable.h"
#include "uColumnNames.h"
#include "uDebugLog.h"
#include "uDebugWindow.h"
#include "uDefaults.h"
#include "uDetailPane.h"
#include "uEmptyPage.h"
#include "uFieldEditor.h"
#include "uFieldValues.h"
#include "uFileDialogs.h"
#include "uFilterBar.h"
#include "uFindBar.h"
#include "uGroupPanel.h"
#include "uImportRun.h"
#include "uLetterBar.h"
#include "uMessageBars.h"
#include "uReleasesModel.h"
#include "uRibbon.h"
#include "uSearchBox.h"
#include "uSegments.h"
#include "uStatusLine.h"
#include "uTHStrings.h"
#include "uThemeController.h"
#include "uThemeStyle.h"
#include "uTileView.h"

#include <QAction>
#include <QApplication>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QPrinter>
#include <QScreen>
#include <QShortcut>
#include <QSplitter>
#include <QStackedWidget>
#include <QUrl>
#include <QVBoxLayout>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr QSize FirstSize(1440, 900);
constexpr QSize SmallestSize(800, 560);
constexpr int FoldedUpTo = 1024; // a window this narrow starts with the ribbon folded

} // namespace

TMainWindow::TMainWindow(TKRNMainForm& form, TThemeController& theme, bool debugMode) : FForm(form), FTheme(theme)
{
    setObjectName(u"TKRNMainForm"_s);
    setMinimumSize(SmallestSize);
    setAcceptDrops(true);
    TMainFormHooks hooks;
    hooks.ApplyTheme = [this] { FTheme.Apply(Defaults().ThemeIndex, Defaults().ColorSchemeAccentIndex); };
    const auto createDebugWindow = [this] {
        FDebug = new TDebugWindow(this);
        SetDebugLogSink([window = FDebug](const QString& line) {
            if (window)
                window->AddLine(line);
        });
    };
    if (debugMode)
        hooks.CreateDebugWindow = createDebugWindow;
    FForm.FormCreate(hooks);
    new TDialogWatch([this] { FForm.CheckCollectionFile(); }, [this] { ReturnToView(); }, this);
    FActions = new TActionSet(FForm.Actions(), this);
    FModel = new TReleasesModel(FForm.Data(), this);
    FTracksModel = new TTracksModel(FForm.Data(), this);
    BuildParts();
    BuildMenus();
    BuildShortcuts();
    ConnectForm();
    ConnectParts();
    ShowCollection();
    ShowPane();
}

TMainWindow::~TMainWindow()
{
    delete FPages; // the views paint with members of this window
    if (FDebug)
        SetDebugLogSink({});
}

void TMainWindow::BuildParts()
{
    FRibbon = new TRibbon(this);
    FFilters = new TFilterBar(this);
    FBars = new TMessageBars(this);
    FPages = new QStackedWidget(this);
    FEmpty = new TEmptyPage(FPages);
    FSplitter = new QSplitter(FPages);
    FSplitter->setChildrenCollapsible(false);
    FViewSide = new QWidget(FSplitter);
    FPane = new TDetailPane(FSplitter);
    FPane->SetFolded(FForm.Pane().FoldedSections());
    FStatus = new TStatusLine(this);
    BuildViews();
    FPages->addWidget(FEmpty);
    FPages->addWidget(FSplitter);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(FRibbon);
    column->addWidget(FFilters);
    column->addWidget(FBars);
    column->addWidget(FPages, 1);
    column->addWidget(FStatus);
}

void TMainWindow::BuildViews()
{
    FLetters = new TLetterBar(FViewSide);
    FGroupPanel = new TGroupPanel(FViewSide);
    FFind = new TFindBar(FViewSide);
    FFind->hide();
    FViews = new QStackedWidget(FViewSide);
    FTiles = new TTileView(FViews);
    FTable = new TAlbumTable(&FCovers, *FModel, FViews);
    FTracks = new TAlbumTable(nullptr, *FTracksModel, FViews);
    FNoHits = new TEmptyPage(FViews);
    const TLocate locate = [this](const QString& text, int from) { return FForm.Search().LocateTitle(text, from); };
    FTiles->SetLocate(locate);
    FTable->SetLocate(locate);
    SetUpCards();
    FTiles->SetPainter(&FThumbsPainter);
    FTiles->setModel(FModel);
    // One selection for all views, so that a change of the view loses nothing.
    FLink = new TSelectionLink(FTable->Groups(), FTiles->selectionModel(), FTable->selectionModel(), this);
    FTiles->setAccessibleName(GetLanguageString(u"cSGuiReleases"_s));
    FTable->setAccessibleName(GetLanguageString(u"cSGuiReleases"_s));
    FTracks->setAccessibleName(GetLanguageString(u"cSGuiTracks"_s));
    for (QAbstractItemView* view : std::initializer_list<QAbstractItemView*>{FTiles, FTable, FTracks})
        view->setContextMenuPolicy(Qt::CustomContextMenu);
    SetUpTable(*FTable);
    SetUpTable(*FTracks);
    SetUpColumns();
    FNoHits->ShowNoHits();
    for (QWidget* page : std::initializer_list<QWidget*>{FTiles, FTable, FTracks, FNoHits})
        FViews->addWidget(page);
    auto* column = new QVBoxLayout(FViewSide);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(FLetters);
    column->addWidget(FFind);
    column->addWidget(FGroupPanel);
    column->addWidget(FViews, 1);
}

void TMainWindow::SetUpCards()
{
    std::vector<TCardsPainter::TField> fields;
    for (const TColumnName field : {Col::Genre, Col::Label, Col::CatalogNO, Col::CountryCode})
        if (const int column = FModel->ColumnOf(field); column >= 0)
            fields.push_back({FModel->headerData(column, Qt::Horizontal, Qt::DisplayRole).toString(), column});
    FCardsPainter.SetFields(std::move(fields));
}

void TMainWindow::BuildMenus()
{
    FFileMenu = new QMenu(this);
    FMainMenu = new QMenu(this);
    FStatusMenu = new QMenu(this);
    FSortMenu = new QMenu(this);
    FSavedMenu = new QMenu(this);
    FGroupMenu = new QMenu(this);
    FPresetMenu = new QMenu(this);
    connect(FSavedMenu, &QMenu::aboutToShow, this, &TMainWindow::FillSavedMenu);
    connect(FGroupMenu, &QMenu::aboutToShow, this, &TMainWindow::FillGroupMenu);
    connect(FPresetMenu, &QMenu::aboutToShow, this, &TMainWindow::FillPresetMenu);
    connect(FFileMenu, &QMenu::aboutToShow, this, &TMainWindow::FillFileMenu);
    connect(FMainMenu, &QMenu::aboutToShow, this, &TMainWindow::FillMainMenu);
    connect(FStatusMenu, &QMenu::aboutToShow, this, &TMainWindow::FillStatusMenu);
    connect(FSortMenu, &QMenu::aboutToShow, this, &TMainWindow::FillSortMenu);
    if (QAction* status = FActions->Find(u"actStatusFilter"_s))
        status->setMenu(FStatusMenu);
    if (QAction* saved = FActions->Find(u"actSavedFilters"_s))
        saved->setMenu(FSavedMenu);
    if (QAction* columns = FActions->Find(u"actCustomizeColumns"_s))
        columns->setMenu(FPresetMenu);
    FRibbon->SetTable(MainRibbonTable(), [this](const QString& name) { return FActions->Find(name); });
    FRibbon->SetFileMenu(FFileMenu);
    FRibbon->SetMainMenu(FMainMenu);
    FFilters->SetStatusMenu(FStatusMenu);
    FFilters->SetSavedMenu(FSavedMenu);
    FGroupPanel->SetMenus(FGroupMenu, FPresetMenu);
    FFilters->Sizes()->SetIcons({u"sizeS"_s, u"sizeM"_s, u"sizeL"_s},
                                {GetLanguageString(u"cSGuiSizeSmall"_s), GetLanguageString(u"cSGuiSizeMedium"_s),
                                 GetLanguageString(u"cSGuiSizeLarge"_s)});
    QList<QAction*> views;
    for (const QString& name :
         {u"actThumbView"_s, u"actCardsView"_s, u"actShelveView"_s, u"actAlbumTableView"_s, u"actTracksView"_s})
        if (QAction* action = FActions->Find(name); action && action->isVisible())
            views << action;
    FFilters->Views()->SetActions(views);
    QList<QAction*> paneActions;
    for (const QString& name : {u"actEditItem"_s, u"actLoanSelected"_s, u"actAddToPlaylist"_s})
        if (QAction* action = FActions->Find(name); action && action->isVisible())
            paneActions << action;
    FPane->SetActions(paneActions);
}

void TMainWindow::BuildShortcuts()
{
    const auto add = [this](const QKeySequence& keys, auto act) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, act);
    };
    add(QKeySequence(Qt::CTRL | Qt::Key_F1), [this] { FRibbon->SetFolded(!FRibbon->IsFolded()); });
    add(QKeySequence(Qt::CTRL | Qt::Key_K), [this] { FRibbon->SearchBox()->FocusEditor(); });
    add(QKeySequence(Qt::Key_F10),
        [this] { FMainMenu->popup(FRibbon->mapToGlobal(QPoint(FRibbon->width() - 60, 34))); });
    add(QKeySequence(Qt::CTRL | Qt::Key_Tab), [this] { MoveArea(1); });
    add(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Tab), [this] { MoveArea(-1); });
}

void TMainWindow::ConnectForm()
{
    connect(&FForm, &TKRNMainForm::collectionOpened, this, &TMainWindow::ShowCollection);
    connect(&FForm, &TKRNMainForm::viewChanged, this, &TMainWindow::ShowView);
    connect(&FForm.Lists(), &TLists::filtersChanged, this, &TMainWindow::ShowFilters);
    connect(&FForm.Search(), &TListSearch::letterHitsChanged, this,
            [this] { FLetters->SetHits(FForm.Search().LetterHits()); });
    connect(&FForm.Lists(), &TLists::sortChanged, this, &TMainWindow::ShowSort);
    connect(&FForm, &TKRNMainForm::figuresChanged, this, &TMainWindow::ShowFigures);
    connect(&FForm, &TKRNMainForm::detailChanged, this, &TMainWindow::ShowDetail);
    connect(&FForm.Pane(), &TDetailSession::paneChanged, this, &TMainWindow::ShowPane);
    connect(&FForm.Lists(), &TLists::focusRequested, this, &TMainWindow::FocusRelease);
    connect(&FForm.Adding(), &TAdding::addFilesStarted, this, &TMainWindow::OpenAddFiles);
    connect(&FForm.Adding(), &TAdding::importStarted, this, &TMainWindow::OpenImport);
    connect(&FForm.Adding(), &TAdding::addMusicStarted, this, &TMainWindow::OpenSearch);
    connect(&FForm.Adding(), &TAdding::serviceUpdateStarted, this, [this](bool visible) {
        QWidget* modal = QApplication::activeModalWidget();
        OpenUpdater(visible, modal ? modal : this);
    });
    connect(&FForm, &TKRNMainForm::closeRequested, this, &QWidget::close);
    connect(&FForm.Edits(), &TListEdits::selectionRequested, this, [this](bool all) {
        QAbstractItemView* view = FForm.TracksShown() ? static_cast<QAbstractItemView*>(FTracks) : FTiles;
        all ? view->selectAll() : view->clearSelection();
    });
    connect(&FForm, &TKRNMainForm::barRaised, this,
            [this](TBarKind kind, const QString& bold, const QString& sentence) {
                FBars->Show({kind, bold, sentence, {}, {}});
            });
    connect(&FForm.Shell(), &TShell::offerRaised, this,
            [this](TBarKind kind, const QString& bold, const QString& sentence, const TBarOffer& offer) {
                FBars->Show({kind, bold, sentence, {}, {{offer.Caption, offer.Act}}, offer.Stays});
            });
    connect(&FForm.Upkeep(), &TUpkeep::debugWindowToggled, this, [this] {
        if (FDebug)
            FDebug->setVisible(!FDebug->isVisible());
    });
    connect(FModel, &QAbstractItemModel::modelReset, this, &TMainWindow::RestoreCurrent, Qt::QueuedConnection);
    connect(FTracksModel, &QAbstractItemModel::modelReset, this, &TMainWindow::RestoreCurrentTrack,
            Qt::QueuedConnection);
    connect(&FForm.Shell(), &TShell::windowRequested, this, &TMainWindow::OpenWindow);
    connect(&FForm.Upkeep(), &TUpkeep::dictionaryRequested, this, &TMainWindow::EditDictionary);
    connect(&FForm.Exchange(), &TExchange::exportRequested, this, &TMainWindow::Export);
    connect(&FForm.Edits(), &TListEdits::filterRowToggled, this, &TMainWindow::ToggleFilterRow);
    connect(&FForm.Edits(), &TListEdits::findPanelToggled, this, &TMainWindow::ToggleFindPanel);
    connect(&FForm.Edits(), &TListEdits::copyRequested, this, &TMainWindow::Copy);
    connect(&FForm.Upkeep(), &TUpkeep::settingsApplied, this, &TMainWindow::ResetColumns);
    connect(&FForm.Upkeep(), &TUpkeep::thumbnailsChanged, this, [this] { FCovers.Clear(); });
    connect(&FForm.Edits(), &TListEdits::expandRequested, this, [this](bool expand) {
        if (TAlbumTable* table = CurrentTable())
            table->ExpandGroups(expand);
    });
    connect(&FForm.Edits(), &TListEdits::bestFitRequested, this, [this] {
        if (TAlbumTable* table = CurrentTable())
            table->ApplyBestFit();
    });
    connect(&FForm.Pane(), &TDetailSession::openFolderRequested, this,
            [](const QString& folder) { QDesktopServices::openUrl(QUrl::fromLocalFile(folder)); });
    connect(&FForm, &TKRNMainForm::jobProgressed, this, [this](const QString& text, int value, int maximum) {
        maximum > 0 ? FStatus->ShowProgress(text, value, maximum, true) : FStatus->HideProgress();
        // Only the button that stops the job is live: nothing may change what it works on.
        for (QWidget* part : std::initializer_list<QWidget*>{FRibbon, FFilters, FPages})
            part->setEnabled(maximum == 0);
        if (maximum == 0)
            FocusView();
    });
}

void TMainWindow::ConnectParts()
{
    ConnectViews();
    ConnectTables();
    ConnectFilters();
    ConnectPane();
}

void TMainWindow::ConnectViews()
{
    for (QTimer* timer : {&FSelectionTimer, &FTrackSelectionTimer}) {
        timer->setSingleShot(true);
        timer->setInterval(0);
    }
    connect(&FSelectionTimer, &QTimer::timeout, this, &TMainWindow::ReportSelection);
    connect(&FTrackSelectionTimer, &QTimer::timeout, this, &TMainWindow::ReportTrackSelection);
    QItemSelectionModel* selection = FTiles->selectionModel();
    connect(selection, &QItemSelectionModel::selectionChanged, &FSelectionTimer, qOverload<>(&QTimer::start));
    connect(selection, &QItemSelectionModel::currentChanged, this, [this](const QModelIndex& now) {
        if (now.isValid() && !FForm.TracksShown())
            FForm.Lists().Releases().SetFocused(FModel->IdOf(now));
    });
    QItemSelectionModel* tracks = FTracks->selectionModel();
    connect(tracks, &QItemSelectionModel::selectionChanged, &FTrackSelectionTimer, qOverload<>(&QTimer::start));
    connect(tracks, &QItemSelectionModel::currentChanged, this, [this](const QModelIndex& now) {
        const int row = FTracks->Groups().SourceRow(now);
        if (row >= 0 && FForm.TracksShown())
            FForm.Lists().Tracks().SetFocused(FTracksModel->IdOf(FTracksModel->index(row, 0)));
    });
    for (QAbstractItemView* view : std::initializer_list<QAbstractItemView*>{FTiles, FTable, FTracks}) {
        connect(view, &QWidget::customContextMenuRequested, this,
                [this, view](const QPoint& at) { OpenContextMenu(view->viewport()->mapToGlobal(at)); });
        connect(view, &QAbstractItemView::activated, this, [this] { FForm.Actions().Trigger(u"actEditItem"_s); });
    }
    connect(FEmpty, &TEmptyPage::recentChosen, &FForm.Files(), &TCollectionFiles::OpenRecent);
}

void TMainWindow::ConnectTables()
{
    connect(FGroupPanel, &TGroupPanel::removeRequested, this,
            [this](const QString& column) { FForm.Lists().Active().RemoveGroup(column); });
    connect(FGroupPanel, &TGroupPanel::expandRequested, &FForm.Edits(), &TListEdits::expandRequested);
    connect(FFind, &TFindBar::textChanged, this, &TMainWindow::Find);
    connect(FFind, &TFindBar::stepRequested, this, &TMainWindow::StepFind);
    connect(FFind, &TFindBar::closeRequested, this, [this] {
        FFind->hide();
        Find({});
        FocusView();
    });
}

void TMainWindow::ConnectFilters()
{
    TSearchBox* search = FRibbon->SearchBox();
    connect(search, &TSearchBox::fieldChanged, this,
            [this](const QString& field) { FForm.Search().SetSearchBy(field.isEmpty() ? EverythingField : field); });
    connect(search, &TSearchBox::textChanged, &FForm.Search(), &TListSearch::SetSearchText);
    connect(search, &TSearchBox::searchRequested, this, [this] { FForm.Actions().Trigger(u"actSearch"_s); });
    connect(search, &TSearchBox::cleared, this, [this] {
        FForm.Search().RemoveFilter(FForm.Search().SearchBy() == EverythingField ? fckEverything : fckKeyword);
    });
    connect(search, &TSearchBox::leaveRequested, this, &TMainWindow::FocusView);
    connect(FBars, &TMessageBars::focusLeft, this, &TMainWindow::FocusView);
    TChipRow* chips = FFilters->Chips();
    connect(chips, &TChipRow::removeRequested, this, [this](const QString& id) {
        if (id.section(u'|', 0, 0).toInt() == GroupChip)
            return FForm.Lists().Active().RemoveGroup(id.section(u'|', 1));
        FForm.Search().RemoveFilter(static_cast<TFilterChipKind>(id.section(u'|', 0, 0).toInt()), id.section(u'|', 1));
    });
    connect(chips, &TChipRow::editRequested, this, [this](const QString& id) {
        if (id.section(u'|', 0, 0).toInt() == GroupChip)
            return FForm.Actions().Trigger(u"actAlbumTableView"_s); // where groups are made
        EditChip(static_cast<TFilterChipKind>(id.section(u'|', 0, 0).toInt()), id.section(u'|', 1));
    });
    const auto clearAll = [this] { FForm.Actions().Trigger(u"actFilterStatusOther"_s); };
    connect(chips, &TChipRow::clearRequested, this, clearAll);
    connect(FNoHits, &TEmptyPage::clearFiltersRequested, this, clearAll);
    connect(FFilters->Sizes(), &TSegments::chosen, &FForm, &TKRNMainForm::SetThumbSize);
    connect(FLetters, &TLetterBar::letterChosen, this, [this](const QString& letter) {
        FForm.Lists().Active().LetterClick(letter.isEmpty() ? GetLanguageString(u"cSGuiAllLetters"_s) : letter);
    });
    connect(FLetters, &TLetterBar::fieldChosen, &FForm.Search(), &TListSearch::SetLetterField);
}

void TMainWindow::ConnectPane()
{
    FPane->SetHiddenFields(FForm.Pane().HiddenFields());
    FPane->SetEditing(
        [this](const QString& column, QWidget* parent) { return MakePaneEditor(column, parent); },
        [this](const QString& column, const TVariant& value) { return FForm.Pane().Edit(column, value); });
    connect(FPane, &TDetailPane::hiddenFieldsChanged, this,
            [this] { FForm.Pane().SetHiddenFields(FPane->HiddenFields()); });
    connect(&FForm.Pane(), &TDetailSession::customizeToggled, this,
            [this] { FPane->SetCustomizing(!FPane->Customizing()); });
    connect(&FForm.Pane(), &TDetailSession::filterToggled, FPane, &TDetailPane::ToggleFilter);
    connect(FPane, &TDetailPane::ratingChosen, &FForm.Pane(), &TDetailSession::SetRating);
    connect(FPane, &TDetailPane::linkActivated, this,
            [](const QString& link) { QDesktopServices::openUrl(QUrl(link, QUrl::StrictMode)); });
    connect(FStatus, &TStatusLine::cancelRequested, this, [this] {
        if (TImportRun* run = FForm.Adding().AddFiles())
            run->Cancel();
        FForm.Shell().CancelJob();
    });
    connect(FSplitter, &QSplitter::splitterMoved, this, [this] {
        FPaneDragged = true;
        const bool beside = FSplitter->orientation() == Qt::Horizontal;
        FForm.Pane().SetFrameSize(beside ? FPane->width() : 0, beside ? 0 : FPane->height());
    });
}

TFieldEditor* TMainWindow::MakePaneEditor(const QString& column, QWidget* parent)
{
    TDataModuleMain& collection = FForm.Data();
    const int index = collection.qReleaseInfo.FieldIndex(column);
    if (index < 0 || collection.IsReadOnly())
        return nullptr;
    const TFieldDef& field = collection.qReleaseInfo.Fields()[static_cast<size_t>(index)];
    if (!IsFieldAssignable(field) || field.Kind == fkDateTime)
        return nullptr;
    auto* editor = new TFieldEditor(collection, field, parent);
    editor->SetValue(FForm.Pane().Value(column));
    return editor;
}

void TMainWindow::EditChip(TFilterChipKind kind, const QString& column)
{
    switch (kind) {
    case fckKeyword:
    case fckEverything: return EditKeyword();
    case fckLetter: return FLetters->setFocus();
    case fckStatus: return FStatusMenu->popup(FFilters->mapToGlobal(QPoint(10, FFilters->height())));
    case fckBuilder: return OpenFilterBuilder();
    case fckColumn: break;
    }
    TAlbumTable* table = CurrentTable();
    if (!table)
        return;
    table->Header()->ShowFilterRow(true);
    table->Header()->FocusFilter(CurrentModel()->ColumnOf(column));
}

void TMainWindow::EditKeyword()
{
    TSearchBox* search = FRibbon->SearchBox();
    const TFilterSet& set = FForm.Lists().Active().Filters().Set();
    search->SetCurrentField(set.KeywordColumn);
    search->SetText(set.KeywordColumn.isEmpty() ? set.Everything : set.KeywordText);
    search->FocusEditor();
}

void TMainWindow::ShowRestored()
{
    const QRect kept = FForm.RestoredGeometry();
    const QScreen* screen = QGuiApplication::primaryScreen();
    const QRect desk = screen ? screen->availableGeometry() : QRect(QPoint(0, 0), FirstSize);
    const QSize wanted = kept.isEmpty() ? FirstSize : kept.size();
    resize(wanted.boundedTo(desk.size()).expandedTo(SmallestSize));
    // A place on a screen that is gone would hide the window.
    if (!kept.isEmpty() && desk.intersects(kept))
        move(kept.topLeft());
    FRibbon->SetFolded(width() <= FoldedUpTo);
    FForm.FormShow();
    if (FDebug)
        FDebug->show();
    if (FForm.StartsMaximized())
        showMaximized();
    else
        show();
}

void TMainWindow::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), CurrentTheme().Window);
}

QWidget* TMainWindow::CurrentViewWidget() const
{
    if (FPages->currentWidget() == FEmpty)
        return FEmpty;
    return FViews->currentWidget();
}

void TMainWindow::FocusView() { CurrentViewWidget()->setFocus(); }

void TMainWindow::ReturnToView()
{
    const QWidget* focus = focusWidget(); // the window may not be the active one again
    if (!FViewSide->isAncestorOf(focus) && !FPane->isAncestorOf(focus))
        FocusView();
}

// What no part took for itself comes here.
void TMainWindow::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        FocusView();
    else
        QWidget::keyPressEvent(event);
}

} // namespace Kestrune
