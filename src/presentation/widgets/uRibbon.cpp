// SPDX-License-Identifier: GPL-3.0-or-later
#include "uRibbon.h"

#include "uIcons.h"
#include "uKeyTips.h"
#include "uRibbonButton.h"
#include "uSearchBox.h"
#include "uTHStrings.h"
#include "uTheme.h"
#include "uThemePaint.h"

#include <QAction>
#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QStyleOptionTab>
#include <QVBoxLayout>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

class TMark : public QWidget {
public:
    explicit TMark(QWidget* parent) : QWidget(parent) { setFixedSize(22, 22); }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        DrawMark(painter, rect(), CurrentTheme());
    }
};

} // namespace

TRibbonTabs::TRibbonTabs(QWidget* parent) : QTabBar(parent)
{
    setDrawBase(false);
    setExpanding(false);
    setUsesScrollButtons(false);
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
}

QSize TRibbonTabs::tabSizeHint(int index) const
{
    const QFont font = ThemeFont(fsBodyBold);
    return {QFontMetrics(font).horizontalAdvance(tabText(index)) + 24, RowHeight(34, font, 12)};
}

void TRibbonTabs::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    for (int i = 0; i < count(); ++i) {
        QStyleOptionTab option;
        initStyleOption(&option, i);
        if (hasFocus() && i == currentIndex() && window()->testAttribute(Qt::WA_KeyboardFocusChange))
            option.state |= QStyle::State_HasFocus | QStyle::State_KeyboardFocusChange;
        style()->drawControl(QStyle::CE_TabBarTabShape, &option, &painter, this);
        const bool chosen = i == currentIndex();
        painter.setFont(ThemeFont(chosen ? fsBodyBold : fsBody));
        painter.setPen(chosen ? CurrentTheme().Text : CurrentTheme().Text2);
        painter.drawText(tabRect(i), Qt::AlignCenter | Qt::TextSingleLine, tabText(i));
    }
}

TRibbon::TRibbon(QWidget* parent)
    : QWidget(parent),
      FRow(new QWidget(this)),
      FFile(new TRibbonButton(TRibbonButton::TShape::Primary, FRow)),
      FTabs(new TRibbonTabs(FRow)),
      FSearch(new TSearchBox(FRow)),
      FMenu(new TRibbonButton(TRibbonButton::TShape::Icon, FRow)),
      FFold(new TRibbonButton(TRibbonButton::TShape::Icon, FRow)),
      FPanel(new TRibbonPanel(this))
{
    FFile->setText(GetLanguageString(u"cSGuiFile"_s));
    FMenu->SetIconName(u"menu"_s);
    FMenu->setAccessibleName(GetLanguageString(u"cSGuiMenu"_s));
    FMenu->setToolTip(GetLanguageString(u"cSGuiMenu"_s) + u" (F10)"_s);
    auto* row = new QHBoxLayout(FRow);
    row->setContentsMargins(12, 0, 12, 0);
    row->setSpacing(0);
    row->addWidget(new TMark(FRow));
    row->addSpacing(10);
    row->addWidget(FFile);
    row->addSpacing(6);
    row->addWidget(FTabs);
    row->addStretch(1);
    row->addSpacing(12);
    row->addWidget(FSearch, 1000);
    row->addSpacing(8);
    row->addWidget(FMenu);
    row->addWidget(FFold);
    FSearch->setMaximumWidth(430);
    FRow->setFixedHeight(RowHeight(38, ThemeFont(fsBody), 16));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(FRow);
    column->addWidget(FPanel);
    connect(FFold, &QToolButton::clicked, this, [this] { SetFolded(!FFolded); });
    connect(FTabs, &QTabBar::currentChanged, this, [this] { ShowPanel(); });
    connect(FTabs, &QTabBar::tabBarClicked, this, &TRibbon::TabClicked);
    connect(FTabs, &QTabBar::tabBarDoubleClicked, this, [this] { SetFolded(!FFolded); });
    connect(FPanel, &TRibbonPanel::actionsChanged, this, &TRibbon::RefreshTabs);
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) {
        if (FOverlay && now && !FPanel->isAncestorOf(now) && !FTabs->hasFocus())
            CloseOverlay();
    });
    qApp->installEventFilter(this);
    SetFolded(false);
}

TRibbon::~TRibbon()
{
    qApp->removeEventFilter(this);
    disconnect(qApp, nullptr, this, nullptr); // children that go take the keyboard with them
}

void TRibbon::SetTable(std::vector<TRibbonTab> table, TActionFinder finder)
{
    FTable = std::move(table);
    FFinder = std::move(finder);
    RefreshTabs();
}

void TRibbon::SetFileMenu(QMenu* menu) { FFile->setMenu(menu); }

void TRibbon::SetMainMenu(QMenu* menu) { FMenu->setMenu(menu); }

std::vector<std::size_t> TRibbon::VisibleTabs() const
{
    const auto shows = [this](const QString& name) {
        const QAction* action = FFinder(name);
        return action && action->isVisible();
    };
    const auto itemShows = [&](const TRibbonItem& item) {
        return item.Action.isEmpty() ? std::any_of(item.Menu.begin(), item.Menu.end(), shows) : shows(item.Action);
    };
    std::vector<std::size_t> tabs;
    for (std::size_t i = 0; i < FTable.size(); ++i)
        if (std::any_of(FTable[i].Groups.begin(), FTable[i].Groups.end(), [&](const TRibbonGroup& group) {
                return std::any_of(group.Items.begin(), group.Items.end(), itemShows);
            }))
            tabs.push_back(i);
    return tabs;
}

void TRibbon::RefreshTabs()
{
    const int before = CurrentTab();
    FRefreshing = true;
    FShownTabs = VisibleTabs();
    while (FTabs->count() > 0)
        FTabs->removeTab(FTabs->count() - 1);
    for (const std::size_t tab : FShownTabs)
        FTabs->addTab(GetLanguageString(FTable[tab].CaptionKey));
    FRefreshing = false;
    SetCurrentTab(std::max(0, before));
    ShowPanel();
}

int TRibbon::CurrentTab() const
{
    const int bar = FTabs->currentIndex();
    return bar < 0 || std::size_t(bar) >= FShownTabs.size() ? -1 : static_cast<int>(FShownTabs[std::size_t(bar)]);
}

void TRibbon::SetCurrentTab(int tab)
{
    const auto it = std::find(FShownTabs.begin(), FShownTabs.end(), std::size_t(tab));
    if (it != FShownTabs.end())
        FTabs->setCurrentIndex(static_cast<int>(it - FShownTabs.begin()));
}

void TRibbon::ShowPanel()
{
    if (FRefreshing || CurrentTab() < 0)
        return;
    FPanel->ShowTab(FTable[std::size_t(CurrentTab())], FFinder);
}

void TRibbon::SetFolded(bool folded)
{
    CloseOverlay();
    const bool changed = folded != FFolded;
    FFolded = folded;
    FPanel->setVisible(!folded);
    const QString what = GetLanguageString(folded ? u"cSGuiUnfoldRibbon"_s : u"cSGuiFoldRibbon"_s);
    FFold->SetIconName(folded ? u"cd"_s : u"cu"_s);
    FFold->setAccessibleName(what);
    FFold->setToolTip(what + u" (Ctrl+F1)"_s);
    updateGeometry();
    if (changed)
        Q_EMIT foldedChanged(folded);
}

void TRibbon::TabClicked(int)
{
    if (!FFolded)
        return;
    if (FOverlay)
        CloseOverlay();
    else
        QMetaObject::invokeMethod(this, &TRibbon::OpenOverlay, Qt::QueuedConnection);
}

void TRibbon::OpenOverlay()
{
    FOverlay = true;
    FPanel->setParent(window());
    FPanel->setGeometry(QRect(mapTo(window(), QPoint(0, FRow->height())), QSize(width(), FPanel->sizeHint().height())));
    FPanel->show();
    FPanel->raise();
}

void TRibbon::CloseOverlay()
{
    if (!FOverlay)
        return;
    FOverlay = false;
    FPanel->hide();
    layout()->addWidget(FPanel);
}

void TRibbon::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    if (FOverlay)
        CloseOverlay();
}

bool TRibbon::HandleAltKey(QEvent* event)
{
    const auto* key = static_cast<QKeyEvent*>(event);
    if (event->type() == QEvent::KeyRelease && key->key() == Qt::Key_Alt && std::exchange(FAltAlone, false)) {
        ShowKeyTips();
        return true;
    }
    if (event->type() == QEvent::KeyPress && !key->isAutoRepeat())
        FAltAlone = key->key() == Qt::Key_Alt && key->modifiers() == Qt::AltModifier;
    return false;
}

bool TRibbon::eventFilter(QObject* watched, QEvent* event)
{
    const auto* widget = qobject_cast<QWidget*>(watched);
    const bool mine = widget && widget->window() == window();
    if (mine && (event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease) &&
        !qobject_cast<TKeyTips*>(watched) && HandleAltKey(event))
        return true;
    if (mine && event->type() == QEvent::MouseButtonPress) {
        FAltAlone = false;
        if (FOverlay && widget != FPanel && !FPanel->isAncestorOf(widget) && widget != FTabs)
            CloseOverlay();
    }
    if (FOverlay && mine && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        CloseOverlay();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void TRibbon::ShowKeyTips()
{
    QStringList captions;
    for (int i = 0; i < FTabs->count(); ++i)
        captions << FTabs->tabText(i);
    captions << FFile->Caption();
    const QStringList letters = AssignKeyTips(captions);
    std::vector<TKeyTip> tips;
    const auto buttonTips = [this] {
        QStringList names;
        const QList<TRibbonButton*> buttons = FPanel->Buttons();
        for (const TRibbonButton* button : buttons)
            names << button->Caption();
        const QStringList marks = AssignKeyTips(names);
        std::vector<TKeyTip> second;
        for (qsizetype i = 0; i < buttons.size(); ++i) {
            QPointer<TRibbonButton> button = buttons[i];
            second.push_back({marks[i], button.data(), {}, [button] {
                                  if (!button || !button->isEnabled())
                                      return;
                                  if (button->menu() && button->popupMode() == QToolButton::InstantPopup)
                                      button->showMenu();
                                  else
                                      button->click();
                              }});
        }
        new TKeyTips(window(), std::move(second));
    };
    for (int i = 0; i < FTabs->count(); ++i)
        tips.push_back({letters[i], FTabs, FTabs->tabRect(i), [this, i, buttonTips] {
                            FTabs->setCurrentIndex(i);
                            if (FFolded)
                                OpenOverlay();
                            buttonTips();
                        }});
    tips.push_back({letters.last(), FFile, {}, [this] {
                        if (FFile->menu())
                            FFile->showMenu();
                    }});
    new TKeyTips(window(), std::move(tips));
}

void TRibbon::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), CurrentTheme().Window);
    if (FFolded)
        DrawHairline(painter, rect(), Qt::BottomEdge, CurrentTheme().Line);
}

} // namespace Kestrune
