// SPDX-License-Identifier: GPL-3.0-or-later
#include "uSearchWindow.h"

#include "uDetailPane.h"
#include "uDialog.h"
#include "uHitsModel.h"
#include "uIcons.h"
#include "uRibbonButton.h"
#include "uSearchParts.h"
#include "uSegments.h"
#include "uTHStrings.h"
#include "uThemePaint.h"
#include "uThemeStyle.h"
#include "uTileView.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollArea>
#include <QSplitter>
#include <QStackedWidget>
#include <QTabBar>
#include <QVBoxLayout>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr QSize SearchWindowSize(1280, 800);
constexpr int LeftWidth = 236;
constexpr int PaneWidth = 330;
constexpr int BarcodeLines = 3;

QPushButton* MakeButton(const QString& key, QWidget* parent)
{
    auto* button = new QPushButton(GetLanguageString(key), parent);
    button->setAutoDefault(false);
    return button;
}

} // namespace

TSearchWindow::TSearchWindow(TAddMusicForm& form, QWidget* parent)
    : QDialog(parent),
      FForm(form),
      FModel(new THitsModel(form, this)),
      FKinds(new TSegments(this)),
      FFields(new QStackedWidget(this))
{
    setObjectName(u"TAddMusicForm"_s);
    setWindowTitle(GetLanguageString(u"cSSearchCaption"_s));
    setWindowFlag(Qt::WindowMaximizeButtonHint);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(BuildTop());
    auto* middle = new QSplitter(this);
    middle->setChildrenCollapsible(false);
    middle->addWidget(BuildLeft());
    middle->addWidget(BuildMiddle());
    FPane = new TDetailPane(this);
    middle->addWidget(FPane);
    middle->setStretchFactor(1, 1);
    middle->setSizes({LeftWidth, SearchWindowSize.width() - LeftWidth - PaneWidth, PaneWidth});
    column->addWidget(middle, 1);
    column->addWidget(BuildBottom());
    BuildCommands();
    ConnectForm();
    ConnectView();
    resize(SearchWindowSize);
    ShowArea();
    ShowTabs();
    ShowHits();
    ShowDetails();
    ShowChosen();
    ShowState();
}

TSearchWindow::~TSearchWindow() = default;

QLineEdit* TSearchWindow::AddField(const QString& nameKey, QString& value)
{
    auto* edit = new QLineEdit(value, this);
    edit->setPlaceholderText(GetLanguageString(nameKey));
    edit->setAccessibleName(edit->placeholderText());
    edit->setClearButtonEnabled(true);
    connect(edit, &QLineEdit::textChanged, this, [&value](const QString& text) { value = text; });
    connect(edit, &QLineEdit::returnPressed, this, [this] { FForm.Search(); });
    return edit;
}

QWidget* TSearchWindow::BuildTop()
{
    FKinds->SetItems({u"search"_s, u"barcode"_s, u"tag"_s, u"disc"_s},
                     {GetLanguageString(u"cSKindArtistRelease"_s), GetLanguageString(u"cSKindBarcode"_s),
                      GetLanguageString(u"cSKindCatalogNo"_s), GetLanguageString(u"cSKindDisc"_s)});
    connect(FKinds, &TSegments::chosen, this, [this](int kind) {
        FForm.Fields().SetArea(static_cast<TSearchArea>(kind));
        ShowArea();
    });
    const auto addPage = [this](std::initializer_list<QWidget*> widgets) {
        auto* page = new QWidget(FFields);
        auto* row = new QHBoxLayout(page);
        row->setContentsMargins(0, 0, 0, 0);
        for (QWidget* widget : widgets)
            row->addWidget(widget, widget == widgets.begin()[0] ? 1 : 0, Qt::AlignVCenter);
        FFields->addWidget(page);
    };
    FArtist = AddField(u"cSReleasesFieldArtist"_s, FForm.Fields().Artist);
    FTitle = AddField(u"cSReleasesFieldReleaseName"_s, FForm.Fields().ReleaseTitle);
    addPage({FArtist, FTitle});
    static_cast<QHBoxLayout*>(FFields->widget(0)->layout())->setStretch(1, 1);
    FBarcodes = new QPlainTextEdit(FForm.Fields().Barcodes, this);
    FBarcodes->setPlaceholderText(GetLanguageString(u"cSBarcodesHint"_s));
    FBarcodes->setAccessibleName(GetLanguageString(u"cSKindBarcode"_s));
    FBarcodes->setTabChangesFocus(true);
    FBarcodes->setFixedHeight(BarcodeLines * LineHeight(ThemeFont(fsBody)) + 14);
    FBarcodes->installEventFilter(this);
    connect(FBarcodes, &QPlainTextEdit::textChanged, this,
            [this] { FForm.Fields().Barcodes = FBarcodes->toPlainText(); });
    addPage({FBarcodes});
    FCatalogNo = AddField(u"cSReleasesFieldCatalogNO"_s, FForm.Fields().CatalogNo);
    addPage({FCatalogNo});
    FDrives = new QComboBox(this);
    FDrives->setEditable(true); // a drive that is not listed can be named
    FDrives->setAccessibleName(GetLanguageString(u"cSDrive"_s));
    FDrives->lineEdit()->setPlaceholderText(GetLanguageString(u"cSNoDrive"_s));
    FDrives->addItems(FForm.Drive().Drives());
    FDrives->setCurrentText(FForm.Drive().Drive());
    connect(FDrives, &QComboBox::currentTextChanged, this,
            [this](const QString& drive) { FForm.Drive().SetDrive(drive); });
    connect(FDrives->lineEdit(), &QLineEdit::returnPressed, this, [this] { FForm.Search(); });
    FEject = MakeIconButton(u"eject"_s, u"cSactEjectCD"_s, this);
    connect(FEject, &QToolButton::clicked, this, [this] { FForm.Drive().actEjectCD(); });
    addPage({FDrives, FEject});
    FFields->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);

    FSearch = MakeButton(u"cSSearch"_s, this);
    FSearch->setDefault(true);
    FSearch->setIcon(ThemeIcon(u"search"_s, icOnAccent));
    connect(FSearch, &QPushButton::clicked, this, [this] { FForm.Search(); });
    FStop = MakeButton(u"cSStop"_s, this);
    FStop->setIcon(ThemeIcon(u"stop"_s));
    connect(FStop, &QPushButton::clicked, this, [this] { FForm.actStop(); });
    TRibbonButton* services = MakeIconButton(u"gear"_s, u"cSactConfigureServices"_s, this);
    connect(services, &QToolButton::clicked, this, [this] { FForm.actConfigureServices(); });
    TRibbonButton* network = MakeIconButton(u"globe"_s, u"cSactProxySettings"_s, this);
    connect(network, &QToolButton::clicked, this, [this] { FForm.actProxySettings(); });
    TRibbonButton* more = MakeIconButton(u"dots"_s, u"cSMoreCommands"_s, this);
    FCommands = new QMenu(this);
    more->setMenu(FCommands);
    more->setPopupMode(QToolButton::InstantPopup);

    auto* top = new QWidget(this);
    auto* row = new QHBoxLayout(top);
    row->setContentsMargins(14, 10, 14, 10);
    row->setSpacing(8);
    row->addWidget(FKinds, 0, Qt::AlignVCenter);
    row->addWidget(FFields, 1, Qt::AlignVCenter);
    for (QWidget* widget : std::initializer_list<QWidget*>{FSearch, FStop, services, network, more})
        row->addWidget(widget, 0, Qt::AlignVCenter);
    return top;
}

QWidget* TSearchWindow::BuildLeft()
{
    auto* content = new QWidget;
    auto* column = new QVBoxLayout(content);
    column->setContentsMargins(14, 12, 14, 12);
    column->setSpacing(6);
    auto* title = new QLabel(GetLanguageString(u"cSServices"_s), content);
    title->setFont(ThemeFont(fsBodyBold));
    column->addWidget(title);
    FServices = new TServiceList(FForm, content);
    column->addWidget(FServices);
    column->addSpacing(14);
    FChosenTitle = new QLabel(content);
    FChosenTitle->setFont(ThemeFont(fsBodyBold));
    column->addWidget(FChosenTitle);
    FChosen = new TChosenList(FForm, content);
    column->addWidget(FChosen);
    FChosenNote = new QLabel(GetLanguageString(u"cSChosenNote"_s), content);
    FChosenNote->setWordWrap(true);
    FChosenNote->setForegroundRole(QPalette::PlaceholderText);
    column->addWidget(FChosenNote);
    column->addStretch(1);
    auto* scroll = new QScrollArea(this);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidget(content);
    scroll->setWidgetResizable(true);
    scroll->setMinimumWidth(180);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setFocusPolicy(Qt::NoFocus);
    content->setAutoFillBackground(false);
    scroll->viewport()->setAutoFillBackground(false);
    return scroll;
}

QWidget* TSearchWindow::BuildMiddle()
{
    auto* middle = new QWidget(this);
    auto* column = new QVBoxLayout(middle);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    FTabs = new QTabBar(middle);
    FTabs->setTabsClosable(true);
    FTabs->setExpanding(false);
    FTabs->setElideMode(Qt::ElideRight);
    FTabs->setAccessibleName(GetLanguageString(u"cSResultTabs"_s));
    connect(FTabs, &QTabBar::currentChanged, this, [this](int tab) {
        if (!FFilling)
            FForm.Tabs().SetCurrent(tab);
    });
    connect(FTabs, &QTabBar::tabCloseRequested, this, [this](int tab) { FForm.Tabs().actCloseTab(tab); });
    TRibbonButton* add = MakeIconButton(u"add"_s, u"cSactNewTab"_s, middle);
    connect(add, &QToolButton::clicked, this, [this] { FForm.Tabs().actNewTab(); });
    FCounts = new QLabel(middle);
    FCounts->setForegroundRole(QPalette::PlaceholderText);
    auto* all = new TRibbonButton(TRibbonButton::TShape::Flat, middle);
    all->setText(GetLanguageString(u"cSactSelectAll"_s));
    connect(all, &QToolButton::clicked, this, [this] { FForm.Tabs().actSelectAll(); });
    auto* clear = new TRibbonButton(TRibbonButton::TShape::Flat, middle);
    clear->setText(GetLanguageString(u"cSClearHits"_s));
    connect(clear, &QToolButton::clicked, this, [this] { FForm.Tabs().actClear(); });
    auto* row = new QHBoxLayout;
    row->setContentsMargins(8, 4, 12, 4);
    row->addWidget(FTabs);
    row->addWidget(add);
    row->addStretch(1);
    row->addWidget(FCounts);
    FHitButtons = {all, clear};
    for (TRibbonButton* button : FHitButtons) {
        button->setFocusPolicy(Qt::TabFocus);
        row->addWidget(button);
    }
    column->addLayout(row);
    FView = new TTileView(middle);
    FView->setModel(FModel);
    FView->SetPainter(&FPainter);
    FView->setSelectionMode(QAbstractItemView::ExtendedSelection);
    FView->setAccessibleName(GetLanguageString(u"cSHits"_s));
    FNothing = new QLabel(middle);
    FNothing->setAlignment(Qt::AlignCenter);
    FNothing->setWordWrap(true);
    FNothing->setMargin(40);
    FNothing->setForegroundRole(QPalette::PlaceholderText);
    FPages = new QStackedWidget(middle);
    FPages->addWidget(FView);
    FPages->addWidget(FNothing);
    column->addWidget(FPages, 1);
    return middle;
}

QWidget* TSearchWindow::BuildBottom()
{
    auto* bottom = new QWidget(this);
    FStatus = new QLabel(bottom);
    FStatus->setTextInteractionFlags(Qt::NoTextInteraction);
    FStatus->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    FProgress = new QProgressBar(bottom);
    FProgress->setTextVisible(false);
    FProgress->setFixedSize(250, 6);
    FProgress->setAccessibleName(GetLanguageString(u"cSDownloads"_s));
    auto* told = new QVBoxLayout;
    told->setSpacing(5);
    told->addStretch(1);
    told->addWidget(FStatus);
    told->addWidget(FProgress, 0, Qt::AlignLeft);
    told->addStretch(1);
    FSaveContinue = MakeButton(u"cSactSaveAndContinue"_s, bottom);
    FSaveClose = MakeButton(u"cSactSaveAndClose"_s, bottom);
    auto* close = MakeButton(u"cSGuiClose"_s, bottom);
    connect(FSaveContinue, &QPushButton::clicked, this, [this] { FForm.actSaveAndContinue(); });
    connect(FSaveClose, &QPushButton::clicked, this, [this] { FForm.actSaveAndClose(); });
    connect(close, &QPushButton::clicked, this, &TSearchWindow::close);
    auto* row = new QHBoxLayout(bottom);
    row->setContentsMargins(16, 10, 16, 10);
    row->setSpacing(8);
    row->addLayout(told, 1);
    for (QPushButton* button : {FSaveContinue, FSaveClose, close})
        row->addWidget(button, 0, Qt::AlignVCenter);
    return bottom;
}

void TSearchWindow::BuildCommands()
{
    const auto always = [] { return true; };
    const auto hasHits = [this] { return !FForm.Tabs().Current().Hits.empty(); };
    const auto hasSelection = [this] { return !FForm.Tabs().Current().Selection.empty(); };
    const auto kind = [this](TSearchArea area) {
        return [this, area] {
            FForm.Fields().SetArea(area);
            ShowArea();
        };
    };
    FCommandRows = {
        {u"cSSearch"_s, u"Ctrl+Return"_s, [this] { FForm.Search(); }, [this] { return FForm.SearchEnabled(); }},
        {u"cSStop"_s, u"Ctrl+."_s, [this] { FForm.actStop(); }, [this] { return FForm.StopEnabled(); }},
        {{}, {}, {}, {}},
        {u"cSKindArtistRelease"_s, u"Ctrl+1"_s, kind(saArtistOrRelease), always},
        {u"cSKindBarcode"_s, u"Ctrl+2"_s, kind(saBarcode), always},
        {u"cSKindCatalogNo"_s, u"Ctrl+3"_s, kind(saCatalogNo), always},
        {u"cSKindDisc"_s, u"Ctrl+4"_s, kind(saCD), always},
        {{}, {}, {}, {}},
        {u"cSactNewTab"_s, u"Ctrl+T"_s, [this] { FForm.Tabs().actNewTab(); }, always},
        {u"cSactNextTab"_s, u"Ctrl+PgDown"_s, [this] { FForm.Tabs().SetCurrent(FForm.Tabs().CurrentIndex() + 1); },
         [this] { return FForm.Tabs().CurrentIndex() + 1 < static_cast<int>(FForm.Tabs().Items().size()); }},
        {u"cSactPreviousTab"_s, u"Ctrl+PgUp"_s, [this] { FForm.Tabs().SetCurrent(FForm.Tabs().CurrentIndex() - 1); },
         [this] { return FForm.Tabs().CurrentIndex() > 0; }},
        {u"cSactCloseTab"_s, u"Ctrl+W"_s, [this] { FForm.Tabs().actCloseTab(FForm.Tabs().CurrentIndex()); }, always},
        {u"cSactCloseAllTabs"_s, u"Ctrl+Shift+W"_s, [this] { FForm.Tabs().actCloseAllTabs(); }, always},
        {u"cSactClearAllTabs"_s, {}, [this] { FForm.Tabs().actClearAllTabs(); }, always},
        {{}, {}, {}, {}},
        {u"cSactSelectAll"_s, {}, [this] { FForm.Tabs().actSelectAll(); }, hasHits},
        {u"cSactClearSelection"_s, u"Ctrl+Shift+A"_s, [this] { FForm.Tabs().actClearSelection(); }, hasSelection},
        {u"cSactRemoveSelection"_s, u"Del"_s, [this] { FForm.Tabs().actRemoveSelection(); }, hasSelection},
        {u"cSClearHits"_s, {}, [this] { FForm.Tabs().actClear(); }, hasHits},
        {{}, {}, {}, {}},
        {u"cSactSaveAndContinue"_s, u"Ctrl+S"_s, [this] { FForm.actSaveAndContinue(); },
         [this] { return FForm.SaveEnabled(); }},
        {u"cSactSaveAndClose"_s, u"Ctrl+Shift+S"_s, [this] { FForm.actSaveAndClose(); },
         [this] { return FForm.SaveEnabled(); }},
        {{}, {}, {}, {}},
        {u"cSactConfigureServices"_s, {}, [this] { FForm.actConfigureServices(); }, always},
        {u"cSactProxySettings"_s, {}, [this] { FForm.actProxySettings(); }, always},
        {u"cSactTestConnection"_s, {}, [this] { FForm.actTestConnection(); }, [this] { return FForm.TestEnabled(); }},
        {u"cSactEjectCD"_s, u"Ctrl+E"_s, [this] { FForm.Drive().actEjectCD(); },
         [this] { return FForm.Drive().EjectEnabled(); }},
    };
    for (const TCommand& command : FCommandRows) {
        QAction* action =
            command.Key.isEmpty() ? FCommands->addSeparator() : FCommands->addAction(GetLanguageString(command.Key));
        FCommandActions.push_back(action);
        if (command.Key.isEmpty())
            continue;
        connect(action, &QAction::triggered, this, command.Run);
        if (command.Shortcut.isEmpty())
            continue;
        action->setShortcut(QKeySequence(command.Shortcut, QKeySequence::PortableText));
        // Del belongs to the text while one is being typed.
        if (command.Shortcut == "Del"_L1) {
            action->setShortcutContext(Qt::WidgetShortcut);
            FView->addAction(action);
        } else {
            addAction(action);
        }
    }
}

void TSearchWindow::ConnectForm()
{
    connect(&FForm, &TAddMusicForm::updated, this, &TSearchWindow::ShowState);
    connect(&FForm.Tabs(), &THitTabs::tabsChanged, this, &TSearchWindow::ShowTabs);
    connect(&FForm.Tabs(), &THitTabs::hitsChanged, this, &TSearchWindow::ShowHits);
    connect(&FForm.Tabs(), &THitTabs::selectionChanged, this, &TSearchWindow::RestoreSelection);
    connect(&FForm.Tabs(), &THitTabs::detailsChanged, this, &TSearchWindow::ShowDetails);
    connect(&FForm.Chosen(), &TChosenReleases::changed, this, &TSearchWindow::ShowChosen);
    connect(&FForm, &TAddMusicForm::optionsRequested, this, &TSearchWindow::optionsRequested);
}

void TSearchWindow::ConnectView()
{
    connect(FView->selectionModel(), &QItemSelectionModel::selectionChanged, this, &TSearchWindow::ReportSelection);
    connect(FView->selectionModel(), &QItemSelectionModel::currentChanged, this, [this](const QModelIndex& current) {
        if (!FFilling)
            FForm.FocusHit(current.data(hrRecord).toLongLong());
    });
    FView->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(FView, &QWidget::customContextMenuRequested, this,
            [this](const QPoint& place) { FCommands->popup(FView->viewport()->mapToGlobal(place)); });
}

void TSearchWindow::ShowArea()
{
    const int area = static_cast<int>(FForm.Fields().Area());
    FKinds->SetCurrent(area);
    FFields->setCurrentIndex(area);
    FFields->setFixedHeight(FFields->currentWidget()->sizeHint().height());
    QWidget* const firsts[] = {FArtist, FBarcodes, FCatalogNo, FDrives};
    firsts[area]->setFocus(Qt::OtherFocusReason);
    ShowState();
}

void TSearchWindow::ShowState()
{
    FServices->Refresh();
    FSearch->setEnabled(FForm.SearchEnabled());
    FSearch->setToolTip(FForm.SearchHint());
    FStop->setEnabled(FForm.StopEnabled());
    for (QPushButton* button : {FSaveContinue, FSaveClose}) {
        button->setEnabled(FForm.SaveEnabled());
        button->setToolTip(FForm.SaveHint());
    }
    for (size_t i = 0; i < FCommandRows.size(); ++i)
        if (FCommandRows[i].Enabled)
            FCommandActions[i]->setEnabled(FCommandRows[i].Enabled());
    FStatus->setText(FForm.StatusText());
    FStatus->setToolTip(FForm.StatusText());
    FProgress->setVisible(FForm.Busy());
    // Before the first count is known the bar only shows that something goes on.
    FProgress->setRange(0, FForm.ProgressMaximum());
    FProgress->setValue(FForm.ProgressPosition());
    const size_t hits = FForm.Tabs().Current().Hits.size(), selected = FForm.Tabs().Current().Selection.size();
    FCounts->setText(GetLanguageString(u"cSHitCounts"_s).arg(hits).arg(selected));
    FCounts->setVisible(hits > 0);
    for (TRibbonButton* button : FHitButtons)
        button->setEnabled(hits > 0);
    FEject->setEnabled(FForm.Drive().EjectEnabled());
    FPages->setCurrentIndex(hits > 0 ? 0 : 1);
    const bool searched = FForm.Tabs().Current().CurrentSearch != nullptr;
    const bool hasServices = !FForm.Fields().ServiceNames(FForm.Fields().Area()).isEmpty();
    FNothing->setText(GetLanguageString(!hasServices   ? u"cSServicesBroken"_s
                                        : FForm.Busy() ? u"cSStateSearching"_s
                                        : searched     ? u"cSNoHits"_s
                                                       : u"cSSearchWelcome"_s));
}

void TSearchWindow::ShowTabs()
{
    FFilling = true;
    while (FTabs->count() > static_cast<int>(FForm.Tabs().Items().size()))
        FTabs->removeTab(FTabs->count() - 1);
    for (size_t i = 0; i < FForm.Tabs().Items().size(); ++i) {
        const QString caption = QString(FForm.Tabs().Items()[i].Caption).replace(u'&', u"&&"_s);
        if (static_cast<int>(i) < FTabs->count())
            FTabs->setTabText(static_cast<int>(i), caption);
        else
            FTabs->addTab(caption);
    }
    FTabs->setCurrentIndex(FForm.Tabs().CurrentIndex());
    FTabs->updateGeometry(); // the bar does not ask for room by itself before it is shown
    FFilling = false;
}

void TSearchWindow::ShowHits()
{
    RestoreSelection();
    ShowState();
}

// The order in which cards were selected is that in which they are saved.
void TSearchWindow::ReportSelection(const QItemSelection& selected, const QItemSelection& deselected)
{
    if (FFilling)
        return;
    for (const QModelIndex& index : deselected.indexes())
        std::erase(FOrder, index.data(hrRecord).toLongLong());
    for (const QModelIndex& index : selected.indexes())
        FOrder.push_back(index.data(hrRecord).toLongLong());
    FForm.Tabs().SetSelection(FOrder);
}

void TSearchWindow::RestoreSelection()
{
    FFilling = true;
    FOrder = FForm.Tabs().Current().Selection;
    QItemSelection selection;
    for (const qint64 record : FOrder) {
        if (const int row = FModel->RowOf(record); row >= 0)
            selection.select(FModel->index(row), FModel->index(row));
    }
    FView->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    const int focused = FModel->RowOf(FForm.Tabs().Current().Focused);
    if (focused >= 0)
        FView->selectionModel()->setCurrentIndex(FModel->index(focused), QItemSelectionModel::NoUpdate);
    FFilling = false;
}

void TSearchWindow::ShowDetails()
{
    const TSearchHit* hit = FForm.Tabs().FocusedHit();
    FPane->SetNote(hit ? FForm.ProviderName(hit->DataProvider) : QString());
    FPane->SetData(FForm.Tabs().Details());
}

void TSearchWindow::ShowChosen()
{
    const auto chosen = static_cast<int>(FForm.Chosen().Items().size());
    FChosenTitle->setText(GetLanguageString(u"cSChosen"_s).arg(chosen));
    FChosenTitle->setVisible(chosen > 0);
    FChosenNote->setVisible(chosen > 0);
}

void TSearchWindow::reject()
{
    close();
    QDialog::reject();
}

void TSearchWindow::keyPressEvent(QKeyEvent* event)
{
    // Enter in a field searches; anywhere else it would press a button that has not the keyboard.
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (enter && !qobject_cast<QPushButton*>(focusWidget()))
        return;
    QDialog::keyPressEvent(event);
}

// One line of codes is searched for with Enter; Shift+Enter begins the next.
bool TSearchWindow::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == FBarcodes && event->type() == QEvent::KeyPress) {
        const auto& key = static_cast<const QKeyEvent&>(*event);
        const bool enter = key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter;
        if (enter && !(key.modifiers() & Qt::ShiftModifier)) {
            FForm.Search();
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

void TSearchWindow::paintEvent(QPaintEvent*)
{
    const TTheme& theme = CurrentTheme();
    QPainter painter(this);
    painter.fillRect(rect(), theme.Window);
    const QRect view = QRect(FPages->parentWidget()->mapTo(this, QPoint(0, 0)), FPages->parentWidget()->size());
    painter.fillRect(view, theme.View);
    DrawHairline(painter, QRectF(0, view.top() - 1, width(), 1), Qt::TopEdge, theme.Line);
    DrawHairline(painter, QRectF(0, view.bottom() + 1, width(), 1), Qt::TopEdge, theme.Line);
    DrawHairline(painter, view, Qt::LeftEdge, theme.Line);
    DrawHairline(painter, view, Qt::RightEdge, theme.Line);
}

} // namespace Kestrune
