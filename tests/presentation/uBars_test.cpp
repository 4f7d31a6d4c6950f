// SPDX-License-Identifier: GPL-3.0-or-later
#include "uEmptyPage.h"
#include "uFileDialogs.h"
#include "uFilterBar.h"
#include "uGalleryData.h"
#include "uKeyTips.h"
#include "uLetterBar.h"
#include "uMessageBars.h"
#include "uRibbon.h"
#include "uRibbonButton.h"
#include "uSearchBox.h"
#include "uSegments.h"
#include "uWidgetPrompt.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

struct TRibbonStage {
    TRibbonStage() : Actions(Kit::SampleActions(&Window))
    {
        Ribbon = new TRibbon(&Window);
        Ribbon->SetTable(MainRibbonTable(), [this](const QString& name) { return Find(name); });
        Window.resize(1400, 300);
        Ribbon->setGeometry(0, 0, 1400, 110);
        Window.show();
        Window.activateWindow();
        QApplication::processEvents();
    }

    QAction* Find(const QString& name) const
    {
        for (QAction* action : Actions)
            if (action->objectName() == name)
                return action;
        return nullptr;
    }

    QStringList Captions() const
    {
        QStringList captions;
        for (const TRibbonButton* button : Ribbon->Panel()->Buttons())
            captions << button->Caption();
        return captions;
    }

    QWidget Window;
    std::vector<QAction*> Actions;
    TRibbon* Ribbon = nullptr;
};

template <typename T>
T* ChildNamed(QWidget& parent, const QString& text)
{
    for (T* child : parent.findChildren<T*>())
        if (child->text() == text && child->isVisible())
            return child;
    return nullptr;
}

} // namespace

TEST(RibbonTable, KeyTipsAreUniqueAndFromTheCaptionWhereTheyCan)
{
    EXPECT_EQ(AssignKeyTips({u"Home"_s, u"View"_s, u"Find"_s, u"Play"_s, u"Tools"_s, u"File"_s}),
              (QStringList{u"H"_s, u"V"_s, u"F"_s, u"P"_s, u"T"_s, u"I"_s}));
    EXPECT_EQ(AssignKeyTips({u"a"_s, u"A"_s, u""_s}), (QStringList{u"A"_s, u"B"_s, u"C"_s}));
    const QStringList many = AssignKeyTips(QStringList(40, u"x"_s));
    EXPECT_EQ(QSet<QString>(many.begin(), many.end()).size(), 37) << "36 tips and the empty one";
}

TEST(RibbonPanel, GroupsCollapseFromTheRight)
{
    const std::vector<std::pair<int, int>> widths = {{200, 60}, {100, 60}, {80, 60}};
    const struct {
        int Available;
        std::size_t Count;
    } rows[] = {{380, 0}, {379, 1}, {360, 1}, {359, 2}, {320, 2}, {319, 3}, {10, 3}};
    for (const auto& row : rows)
        EXPECT_EQ(GroupsToCollapse(widths, row.Available), row.Count) << row.Available;
    EXPECT_EQ(GroupsToCollapse({}, 100), 0u);
}

TEST(Ribbon, ButtonsComeFromVisibleActionsAlone)
{
    TRibbonStage stage;
    EXPECT_TRUE(stage.Captions().contains(u"Duplicate"_s));
    const int tabs = stage.Ribbon->findChild<TRibbonTabs*>()->count();
    EXPECT_EQ(tabs, 5) << "the player tab still has the playlist's buttons";
    stage.Find(u"actDuplicate"_s)->setVisible(false);
    for (const QString& name : {u"actLoanSelected"_s, u"actLoanManager"_s, u"actEditFriends"_s})
        stage.Find(name)->setVisible(false);
    QApplication::processEvents();
    EXPECT_FALSE(stage.Captions().contains(u"Duplicate"_s));
    EXPECT_FALSE(stage.Captions().contains(u"Friends"_s));
    stage.Find(u"actShowPlaylist"_s)->setVisible(false);
    stage.Find(u"actAddToPlaylist"_s)->setVisible(false);
    QApplication::processEvents();
    EXPECT_EQ(stage.Ribbon->findChild<TRibbonTabs*>()->count(), 4) << "a tab without buttons is not there";
}

TEST(Ribbon, AClickTriggersTheActionAndANarrowRibbonKeepsAllOfThem)
{
    TRibbonStage stage;
    QSignalSpy triggered(stage.Find(u"actRefresh"_s), &QAction::triggered);
    auto* button = ChildNamed<TRibbonButton>(*stage.Ribbon, u"Refresh"_s);
    ASSERT_TRUE(button);
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_EQ(triggered.count(), 1);
    stage.Find(u"actRefresh"_s)->setEnabled(false);
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_EQ(triggered.count(), 1);
    stage.Ribbon->resize(500, 110);
    EXPECT_GT(stage.Ribbon->Panel()->CollapsedGroups(), 0u);
    int reachable = 0;
    for (const TRibbonButton* shown : stage.Ribbon->Panel()->Buttons()) {
        EXPECT_LE(shown->geometry().right(), 500);
        if (shown->defaultAction() == stage.Find(u"actEditFriends"_s) ||
            (shown->menu() && shown->menu()->actions().contains(stage.Find(u"actEditFriends"_s))))
            ++reachable;
    }
    EXPECT_EQ(reachable, 1);
}

TEST(Ribbon, FoldedItLiesOverTheViewUntilAChoiceElsewhere)
{
    TRibbonStage stage;
    QSignalSpy folded(stage.Ribbon, &TRibbon::foldedChanged);
    stage.Ribbon->SetFolded(true);
    EXPECT_EQ(folded.count(), 1);
    EXPECT_FALSE(stage.Ribbon->Panel()->isVisible());
    auto* tabs = stage.Ribbon->findChild<TRibbonTabs*>();
    QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(1).center());
    QApplication::processEvents();
    EXPECT_TRUE(stage.Ribbon->Panel()->isVisible());
    QTest::mouseClick(&stage.Window, Qt::LeftButton, {}, QPoint(20, 280));
    EXPECT_FALSE(stage.Ribbon->Panel()->isVisible());
}

TEST(Ribbon, AltLettersReachATabAndThenAButton)
{
    TRibbonStage stage;
    stage.Window.setFocus();
    QTest::keyPress(&stage.Window, Qt::Key_Alt);
    QTest::keyRelease(&stage.Window, Qt::Key_Alt);
    auto* tips = stage.Window.findChild<TKeyTips*>();
    ASSERT_TRUE(tips);
    QTest::keyClick(tips, Qt::Key_V);
    EXPECT_EQ(stage.Ribbon->CurrentTab(), 1);
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    tips = stage.Window.findChild<TKeyTips*>();
    ASSERT_TRUE(tips);
    QString letter;
    for (const TKeyTip& tip : tips->Tips())
        if (static_cast<TRibbonButton*>(tip.Target.data())->defaultAction() == stage.Find(u"actThumbSize"_s))
            letter = tip.Letter;
    QSignalSpy triggered(stage.Find(u"actThumbSize"_s), &QAction::triggered);
    QTest::keyClicks(tips, letter);
    EXPECT_EQ(triggered.count(), 1);
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(stage.Window.findChild<TKeyTips*>());
}

TEST(ChipRow, WhatDoesNotFitIsCountedAndKeysRemoveAndMove)
{
    TChipRow row;
    row.resize(600, 30);
    row.SetChips(
        {{u"a"_s, u"Status"_s, u"In collection"_s}, {u"b"_s, u"Artist"_s, u"B"_s}, {u"c"_s, u"Genre"_s, u"Folk"_s}});
    row.show();
    row.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&row));
    EXPECT_EQ(row.Hidden(), 0);
    const QList<TChip*> chips = row.findChildren<TChip*>();
    ASSERT_EQ(chips.size(), 3);
    QSignalSpy removed(&row, &TChipRow::removeRequested);
    QSignalSpy edited(&row, &TChipRow::editRequested);
    chips[0]->setFocus();
    QTest::keyClick(chips[0], Qt::Key_Right);
    EXPECT_TRUE(chips[1]->hasFocus());
    QTest::keyClick(chips[1], Qt::Key_Delete);
    QTest::keyClick(chips[1], Qt::Key_Return);
    ASSERT_EQ(removed.count(), 1);
    EXPECT_EQ(removed[0][0].toString(), u"b"_s);
    EXPECT_EQ(edited.count(), 1);
    QTest::mouseClick(chips[2], Qt::LeftButton, {}, QPoint(chips[2]->width() - 10, chips[2]->height() / 2));
    EXPECT_EQ(removed.count(), 2) << "the x removes";
    row.resize(260, 30);
    EXPECT_GT(row.Hidden(), 0);
    EXPECT_LT(row.Hidden(), 4);
    row.resize(600, 30);
    EXPECT_EQ(row.Hidden(), 0);
}

TEST(LetterBar, LettersWithoutHitsWorkAndAllClears)
{
    TLetterBar bar;
    bar.resize(900, 30);
    bar.show();
    bar.SetHits({u"B"_s});
    QSignalSpy chosen(&bar, &TLetterBar::letterChosen);
    EXPECT_TRUE(ChildNamed<QAbstractButton>(bar, u"#"_s)) << "what begins with no letter";
    auto* q = ChildNamed<QAbstractButton>(bar, u"Q"_s);
    ASSERT_TRUE(q);
    QTest::mouseClick(q, Qt::LeftButton);
    EXPECT_EQ(bar.Current(), u"Q"_s);
    QTest::mouseClick(q, Qt::LeftButton);
    EXPECT_TRUE(q->isChecked()) << "a second click leaves the letter chosen";
    bar.SetCurrent({});
    EXPECT_FALSE(q->isChecked());
    EXPECT_EQ(chosen.count(), 2);
    for (const int width : {640, 420}) {
        SCOPED_TRACE(width);
        bar.resize(width, 30);
        QWidget* last = nullptr;
        for (QWidget* part : bar.findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
            if (part->isVisible() && (!last || part->x() > last->x()))
                last = part;
        auto* more = qobject_cast<TRibbonButton*>(last);
        ASSERT_TRUE(more) << "the letters that do not fit have a button";
        EXPECT_TRUE(more->text().endsWith(u'Z')) << more->text().toStdString();
        EXPECT_LE(more->geometry().right(), width);
        more->menu()->actions().last()->trigger();
        QApplication::processEvents();
        EXPECT_EQ(bar.Current(), u"Z"_s);
        EXPECT_EQ(more->Shape(), TRibbonButton::TShape::Primary) << "it carries the letter that holds";
        bar.SetCurrent({});
    }
}

TEST(MessageBars, AtMostTwoThenMoreAndActionsCloseTheirBar)
{
    QWidget window;
    TMessageBars bars(&window);
    EXPECT_FALSE(bars.isVisibleTo(&window));
    int ran = 0;
    bars.Show({bkError, u"Not saved:"_s, u"the disk is full."_s, {}, {{u"Try again"_s, [&] { ++ran; }}}});
    bars.Show({bkWarning, {}, u"read-only"_s, {}, {}});
    bars.Show({bkDone, {}, u"exported"_s, {}, {}});
    window.resize(900, 200);
    bars.resize(900, 120);
    window.show();
    int shown = 0;
    for (const TMessageBar* bar : bars.findChildren<TMessageBar*>())
        shown += bar->isVisible();
    EXPECT_EQ(shown, 2);
    auto* more = ChildNamed<TRibbonButton>(bars, u"1 more"_s);
    ASSERT_TRUE(more);
    QTest::mouseClick(more, Qt::LeftButton);
    auto* again = ChildNamed<TRibbonButton>(bars, u"Try again"_s);
    ASSERT_TRUE(again);
    QTest::mouseClick(again, Qt::LeftButton);
    EXPECT_EQ(ran, 1);
    EXPECT_EQ(bars.Count(), 2);
    bars.Clear();
    EXPECT_FALSE(bars.isVisibleTo(&window));
}

TEST(SearchBox, TheFieldChoosesTheEditor)
{
    TSearchBox box;
    box.resize(430, 28);
    box.SetFields({{{}, u"Everything"_s, {}}, {u"MediaType"_s, u"Media type"_s, {u"CD"_s, u"Vinyl"_s}}});
    box.show();
    box.activateWindow();
    box.FocusEditor();
    QSignalSpy searched(&box, &TSearchBox::searchRequested);
    QSignalSpy left(&box, &TSearchBox::leaveRequested);
    auto* edit = box.findChild<QLineEdit*>();
    QTest::keyClicks(edit, u"lamps"_s);
    QTest::keyClick(edit, Qt::Key_Return);
    EXPECT_EQ(searched.count(), 1);
    EXPECT_EQ(box.Text(), u"lamps"_s);
    QTest::keyClick(edit, Qt::Key_Escape);
    EXPECT_EQ(left.count(), 1);
    box.SetCurrentField(u"MediaType"_s);
    EXPECT_TRUE(box.EditsList());
    box.SetText(u"Vinyl"_s);
    EXPECT_EQ(box.Text(), u"Vinyl"_s);
    QTest::keyClick(box.findChild<QComboBox*>(), Qt::Key_Return);
    EXPECT_EQ(searched.count(), 2);
}

TEST(Segments, OneHoldsAndAClickTells)
{
    TSegments segments;
    segments.SetTexts({u"Artist"_s, u"Release"_s});
    segments.SetCurrent(0);
    segments.show();
    QSignalSpy chosen(&segments, &TSegments::chosen);
    QTest::mouseClick(ChildNamed<QAbstractButton>(segments, u"Release"_s), Qt::LeftButton);
    EXPECT_EQ(segments.Current(), 1);
    EXPECT_EQ(chosen.count(), 1);
    segments.SetCurrent(-1);
    EXPECT_EQ(segments.Current(), -1);
    EXPECT_EQ(chosen.count(), 1);
}

TEST(EmptyPage, CardsTriggerTheirActionsAndInvisibleOnesAreLeftOut)
{
    QObject owner;
    const std::vector<QAction*> actions = Kit::SampleActions(&owner);
    actions[1]->setVisible(false);
    TEmptyPage page;
    page.resize(1000, 700);
    page.ShowEmptyCollection({{u"one"_s, {}, actions[0]}, {u"two"_s, {}, actions[1]}, {u"three"_s, {}, nullptr}});
    page.show();
    EXPECT_EQ(page.findChildren<TCardButton*>().size(), 1);
    QSignalSpy triggered(actions[0], &QAction::triggered);
    QTest::keyClick(page.findChildren<TCardButton*>().first(), Qt::Key_Return);
    EXPECT_EQ(triggered.count(), 1);
}

TEST(WidgetPrompt, FiltersTakeQtsForm)
{
    EXPECT_EQ(QtFilterOf(u"Database File (*.db)|*.db|All files (*.*)|*.*"_s), u"Database File (*.db);;All files (*)"_s);
    EXPECT_EQ(QtFilterOf(u"Pictures|*.png;*.jpg"_s), u"Pictures (*.png *.jpg)"_s);
    EXPECT_EQ(QtFilterOf({}), QString());
}

} // namespace Kestrune
