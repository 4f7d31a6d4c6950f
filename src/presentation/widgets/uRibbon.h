// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uRibbonTable.h"

#include <QTabBar>
#include <QWidget>

class QMenu;

namespace Kestrune {

class TRibbonButton;
class TSearchBox;

/// The captions of the tabs: the chosen one bold with an accent line below.
class TRibbonTabs : public QTabBar {
    Q_OBJECT
public:
    explicit TRibbonTabs(QWidget* parent = nullptr);

protected:
    QSize tabSizeHint(int index) const override;
    QSize minimumTabSizeHint(int index) const override { return tabSizeHint(index); }
    void paintEvent(QPaintEvent* event) override;
};

/// How many groups, from the right, have to become one button each for a row of groups to fit. `widths` holds the
/// full and the collapsed width of every group.
std::size_t GroupsToCollapse(const std::vector<std::pair<int, int>>& widths, int available);

/// The groups of one tab. A group without a visible action is left out; groups with too little room become menu
/// buttons.
class TRibbonPanel : public QWidget {
    Q_OBJECT
public:
    explicit TRibbonPanel(QWidget* parent = nullptr);

    /// Shows a tab. Both the table and the finder must stay alive until the next call.
    void ShowTab(const TRibbonTab& tab, const TActionFinder& finder);
    /// The buttons in sight, from left to right, for keyboard tips and tests.
    QList<TRibbonButton*> Buttons() const;
    std::size_t CollapsedGroups() const { return FCollapsed; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return {0, sizeHint().height()}; }

Q_SIGNALS:
    void actionsChanged(); ///< an action appeared or vanished: the owner shows the tab again

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    struct TGroupWidgets {
        QList<TRibbonButton*> Buttons; // children, in the order of the table
        TRibbonButton* Collapsed = nullptr;
        int FullWidth = 0;
    };

    TRibbonButton* MakeButton(const TRibbonItem& item, const TActionFinder& finder);
    TRibbonButton* MakeCollapsed(const TRibbonGroup& group, const TActionFinder& finder);
    QMenu* MakeMenu(const QStringList& actions, const TActionFinder& finder, QWidget* parent);
    int PlaceGroup(TGroupWidgets& group, int left, bool collapsed, bool apply);
    void Arrange();

    std::vector<TGroupWidgets> FGroups;
    QList<int> FSplits; // x of the hairlines between groups
    std::size_t FCollapsed = 0;
};

/// Tab row and ribbon. Buttons are made from actions that the finder knows; nothing here holds logic.
class TRibbon : public QWidget {
    Q_OBJECT
public:
    explicit TRibbon(QWidget* parent = nullptr);
    ~TRibbon() override;

    void SetTable(std::vector<TRibbonTab> table, TActionFinder finder);
    void SetFileMenu(QMenu* menu);
    /// The full menus, opened by the menu button and F10.
    void SetMainMenu(QMenu* menu);
    TSearchBox* SearchBox() { return FSearch; }

    int CurrentTab() const;
    void SetCurrentTab(int tab);
    bool IsFolded() const { return FFolded; }
    /// Folded, only the tab row is there; a click on a tab lays the ribbon over the view until the keyboard leaves it.
    void SetFolded(bool folded);
    void ShowKeyTips();
    TRibbonPanel* Panel() { return FPanel; }

Q_SIGNALS:
    void foldedChanged(bool folded);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void ShowPanel();
    void OpenOverlay();
    void CloseOverlay();
    void TabClicked(int bar);
    std::vector<std::size_t> VisibleTabs() const;
    void RefreshTabs();
    bool HandleAltKey(QEvent* event);

    std::vector<TRibbonTab> FTable;
    std::vector<std::size_t> FShownTabs; // which tabs of the table the bar shows
    TActionFinder FFinder;
    QWidget* FRow;
    TRibbonButton* FFile;
    TRibbonTabs* FTabs;
    TSearchBox* FSearch;
    TRibbonButton* FMenu;
    TRibbonButton* FFold;
    TRibbonPanel* FPanel;
    bool FFolded = false;
    bool FOverlay = false;
    bool FAltAlone = false;
    bool FRefreshing = false;
};

} // namespace Kestrune
