// SPDX-License-Identifier: GPL-3.0-or-later
#include "dmMain.h"
#include "uActionSet.h"
#include "uAlbumTable.h"
#include "uDefaults.h"
#include "uDetailPane.h"
#include "uEmptyPage.h"
#include "uFilterBar.h"
#include "uLetterBar.h"
#include "uMainWindow.h"
#include "uMessageBars.h"
#include "uReleaseRoles.h"
#include "uRibbon.h"
#include "uRibbonButton.h"
#include "uScriptedPrompt.h"
#include "uSearchBox.h"
#include "uTestFiles.h"
#include "uThemeController.h"
#include "uTileView.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QSignalSpy>
#include <QStackedWidget>
#include <QTest>

#include <gtest/gtest.h>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

// A window over a real collection file of invented releases.
class MainWindow : public testing::Test {
protected:
    MainWindow() { Defaults() = MakeDefaults(); }

    void Open(int releases)
    {
        const QString path = FDir.File(u"records.db"_s);
        FData.CreateNewDB(path, FData.GetNewDatabaseSQL());
        ASSERT_TRUE(FData.ConnectToDB(path));
        for (int i = 0; i < releases; ++i) {
            TAlbumRelease release;
            release.SetItem2(u"Artist"_s, i % 2 ? u"Northern Kiln"_s : u"Ilva Marren"_s);
            release.SetItem2(u"ReleaseName"_s, u"Salt Atlas %1"_s.arg(i, 3, 10, QChar(u'0')));
            release.SetItem2(u"ReleaseYear"_s, QString::number(1960 + i % 50));
            FData.AddAlbumReleaseToDB(release, true);
        }
        Defaults().DBPath = path;
        Show();
    }

    void Show()
    {
        FForm = std::make_unique<TKRNMainForm>(FData, FPrompt);
        FWindow = std::make_unique<TMainWindow>(*FForm, FTheme, false);
        FWindow->ShowRestored();
        FWindow->activateWindow();
        QSignalSpy shown(FWindow.get(), &TMainWindow::shownFirst);
        shown.wait(1000);
        FWindow->resize(1440, 900);
        QApplication::processEvents();
    }

    QString FocusedTitle() const { return FWindow->Tiles()->currentIndex().data(rrTitle).toString(); }

    Kit::TTempDir FDir;
    Kit::TScriptedPrompt FPrompt;
    TDataModuleMain FData{FPrompt};
    TThemeController FTheme;
    std::unique_ptr<TKRNMainForm> FForm;
    std::unique_ptr<TMainWindow> FWindow;
};

} // namespace

TEST_F(MainWindow, StartsOnTheFirstReleaseAndTheDetailPaneFollows)
{
    Open(40);
    EXPECT_TRUE(FWindow->Tiles()->isVisible());
    EXPECT_TRUE(FWindow->Tiles()->currentIndex().isValid());
    QSignalSpy detail(FForm.get(), &TKRNMainForm::detailChanged);
    QTest::keyClick(FWindow->Tiles(), Qt::Key_Right);
    const QString title = FocusedTitle();
    ASSERT_TRUE(detail.wait(2000));
    EXPECT_EQ(FWindow->Pane()->Data().Title, title);
    EXPECT_TRUE(FWindow->windowTitle().startsWith(u"records.db"_s));
    FWindow->grab();
}

TEST_F(MainWindow, ViewsShareTheFocusedRelease)
{
    Open(40);
    QTest::keyClick(FWindow->Tiles(), Qt::Key_End);
    const QString title = FocusedTitle();
    FWindow->Actions().Find(u"actAlbumTableView"_s)->trigger();
    EXPECT_TRUE(FWindow->Table()->isVisible());
    EXPECT_EQ(FWindow->Table()->currentIndex().data(rrTitle).toString(), title);
    EXPECT_TRUE(FWindow->Table()->viewport()->rect().intersects(
        FWindow->Table()->visualRect(FWindow->Table()->currentIndex())));
    EXPECT_TRUE(FWindow->Actions().Find(u"actAlbumTableView"_s)->isChecked());
    EXPECT_FALSE(FWindow->Actions().Find(u"actThumbView"_s)->isChecked());
    EXPECT_EQ(Defaults().CurrentView, 3);
}

TEST_F(MainWindow, TypedLettersJumpToTheNextTitleInBothViews)
{
    Open(40);
    const int interval = QApplication::keyboardInputInterval();
    for (const QString& view : {u"actThumbView"_s, u"actAlbumTableView"_s}) {
        FWindow->Actions().Find(view)->trigger();
        QWidget* shown = FWindow->Views()->currentWidget();
        QTest::keyClick(shown, Qt::Key_Home);
        QTest::keyClicks(shown, u"salt atlas 02"_s);
        EXPECT_EQ(FocusedTitle(), u"Salt Atlas 020"_s) << view.toStdString();
        QApplication::setKeyboardInputInterval(0); // from here on each letter is the first one
        QTest::keyClick(shown, Qt::Key_S);
        EXPECT_EQ(FocusedTitle(), u"Salt Atlas 021"_s) << "the next one, not the first one";
        QTest::keyClicks(shown, u"x"_s);
        EXPECT_EQ(FocusedTitle(), u"Salt Atlas 021"_s) << "no such title";
        QApplication::setKeyboardInputInterval(interval);
    }
}

TEST_F(MainWindow, LettersWithoutHitsFollowTheFieldAndTheCollection)
{
    Open(4);
    EXPECT_EQ(FWindow->Letters()->Hits(), (QSet<QString>{u"#"_s, u"I"_s, u"N"_s}));
    Q_EMIT FWindow->Letters()->fieldChosen(1);
    QApplication::processEvents();
    EXPECT_EQ(FWindow->Letters()->Hits(), (QSet<QString>{u"#"_s, u"S"_s}));
    Q_EMIT FWindow->Letters()->fieldChosen(0);
    FWindow->Tiles()->setCurrentIndex(FWindow->Tiles()->model()->index(0, 0));
    QApplication::processEvents();
    FWindow->Actions().Find(u"actRemoveSelected"_s)->trigger();
    FWindow->Tiles()->setCurrentIndex(FWindow->Tiles()->model()->index(1, 0));
    QApplication::processEvents();
    FWindow->Actions().Find(u"actRemoveSelected"_s)->trigger();
    QApplication::processEvents();
    EXPECT_EQ(FWindow->Letters()->Hits(), (QSet<QString>{u"#"_s, u"N"_s}));
}

TEST_F(MainWindow, LetterSearchAndChipsFilterTheList)
{
    Open(40);
    Q_EMIT FWindow->Letters()->letterChosen(u"N"_s);
    EXPECT_EQ(FWindow->Tiles()->model()->rowCount(), 20);
    TSearchBox* search = FWindow->Ribbon()->SearchBox();
    search->SetCurrentField(u"ReleaseName"_s);
    search->SetText(u"Atlas 001"_s);
    QTest::keyClick(search->findChild<QLineEdit*>(), Qt::Key_Return);
    EXPECT_EQ(FWindow->Tiles()->model()->rowCount(), 1);
    QApplication::processEvents();
    EXPECT_EQ(FocusedTitle(), u"Salt Atlas 001"_s);
    EXPECT_EQ(FForm->Lists().Releases().Selection().size(), 1u)
        << "the focused release is selected again after a filter";
    QList<TChip*> chips;
    for (TChip* chip : FWindow->Filters()->findChildren<TChip*>())
        if (chip->isVisible())
            chips << chip;
    ASSERT_EQ(chips.size(), 2);
    QTest::keyClick(chips[0], Qt::Key_Delete);
    EXPECT_TRUE(FWindow->Letters()->Current().isEmpty());
    search->SetText(u"nothing like this"_s);
    QTest::keyClick(search->findChild<QLineEdit*>(), Qt::Key_Return);
    EXPECT_EQ(FWindow->Tiles()->model()->rowCount(), 0);
    EXPECT_FALSE(FWindow->Tiles()->isVisible());
    EXPECT_TRUE(qobject_cast<TEmptyPage*>(FWindow->Views()->currentWidget()));
    QApplication::processEvents();
    EXPECT_TRUE(FForm->Lists().Releases().Selection().empty());
    EXPECT_FALSE(FWindow->Actions().Find(u"actRemoveSelected"_s)->isEnabled()) << "nothing in sight to remove";
    Q_EMIT FWindow->Filters()->Chips()->clearRequested();
    EXPECT_EQ(FWindow->Tiles()->model()->rowCount(), 40);
    EXPECT_TRUE(FWindow->Tiles()->isVisible());
    QApplication::processEvents();
    EXPECT_EQ(FForm->Lists().Releases().Selection().size(), 1u);
}

TEST_F(MainWindow, SearchBoxSearchesInTheFieldItNames)
{
    Open(4);
    TSearchBox* search = FWindow->Ribbon()->SearchBox();
    auto* edit = search->findChild<QLineEdit*>();
    EXPECT_EQ(edit->placeholderText(), u"Search in Everything"_s);
    search->SetCurrentField(u"Artist"_s);
    EXPECT_EQ(edit->placeholderText(), u"Search in Artist"_s);
    QTest::keyClicks(edit, u"kiln"_s);
    FWindow->Actions().Find(u"actSearch"_s)->trigger();
    EXPECT_EQ(FWindow->Tiles()->model()->rowCount(), 2) << "the button searches for what stands in the box";
    QTest::keyClick(edit, Qt::Key_Escape);
    EXPECT_TRUE(FWindow->Tiles()->hasFocus());

    search->SetCurrentField(u"Status"_s);
    EXPECT_FALSE(edit->isVisible());
    QTest::keyClick(FWindow.get(), Qt::Key_K, Qt::ControlModifier);
    auto* list = search->findChild<QComboBox*>();
    ASSERT_TRUE(list->hasFocus());
    EXPECT_EQ(list->placeholderText(), u"Search in Status"_s);
    const int wanted = list->findText(u"Wanted item"_s);
    ASSERT_GE(wanted, 0);
    list->setCurrentIndex(wanted);
    QTest::keyClick(list, Qt::Key_Return);
    EXPECT_EQ(FWindow->Tiles()->model()->rowCount(), 0);
    list->setCurrentIndex(list->findText(u"In collection"_s));
    QTest::keyClick(list, Qt::Key_Return);
    EXPECT_EQ(FWindow->Tiles()->model()->rowCount(), 4);
    search->SetCurrentField(u"Genre"_s);
    Q_EMIT FWindow->Filters()->Chips()->editRequested(QString::number(static_cast<int>(fckKeyword)));
    EXPECT_EQ(search->CurrentField().Name, u"Status"_s);
    EXPECT_EQ(search->Text(), u"In collection"_s) << "a chip is edited with what it holds";
    QTest::keyClick(list, Qt::Key_Escape);
    EXPECT_TRUE(FWindow->Tiles()->hasFocus());
}

TEST_F(MainWindow, SelectionIsToldAndRemovedAfterAQuestion)
{
    Open(10);
    FWindow->Actions().Find(u"actSelectAll"_s)->trigger();
    QApplication::processEvents();
    EXPECT_EQ(FForm->Lists().Releases().Selection().size(), 10u);
    FWindow->Tiles()->setCurrentIndex(FWindow->Tiles()->model()->index(4, 0));
    QApplication::processEvents();
    EXPECT_EQ(FForm->Lists().Releases().Selection().size(), 1u);
    FWindow->Actions().Find(u"actRemoveSelected"_s)->trigger();
    QApplication::processEvents();
    EXPECT_EQ(FPrompt.Questions.size(), 1);
    EXPECT_EQ(FWindow->Tiles()->model()->rowCount(), 9);
    EXPECT_TRUE(FWindow->Tiles()->currentIndex().isValid());
}

TEST_F(MainWindow, ARatingFromThePaneReachesTheTile)
{
    Open(3);
    QSignalSpy detail(FForm.get(), &TKRNMainForm::detailChanged);
    QTest::keyClick(FWindow->Tiles(), Qt::Key_Right);
    ASSERT_TRUE(detail.wait(2000));
    Q_EMIT FWindow->Pane()->ratingChosen(3);
    EXPECT_EQ(FForm->Pane().Detail().Rating, 3);
    EXPECT_EQ(FWindow->Tiles()->currentIndex().data(rrRating).toInt(), 3);
}

TEST_F(MainWindow, WithoutACollectionThePageOffersToMakeOne)
{
    Defaults().DBPath = FDir.File(u"gone.db"_s);
    Show();
    EXPECT_TRUE(FWindow->EmptyPage()->isVisible());
    EXPECT_EQ(FWindow->Bars()->Count(), 1) << "the reason stays as a bar";
    EXPECT_FALSE(FWindow->Filters()->isVisible());
    EXPECT_FALSE(FWindow->Actions().Find(u"actRefresh"_s)->isEnabled());
    EXPECT_TRUE(FWindow->Actions().Find(u"actNewDatabase"_s)->isEnabled());
    FWindow->grab();
}

TEST_F(MainWindow, PaneFollowsItsPlaceAndSmallWindowsHideIt)
{
    Open(5);
    FWindow->resize(1300, 800);
    EXPECT_TRUE(FWindow->Pane()->isVisible());
    for (const auto& [name, above] : {std::pair{u"actDetailPanelTop"_s, true}, {u"actDetailPanelBottom"_s, false}}) {
        FWindow->Actions().Find(name)->trigger();
        QApplication::processEvents();
        EXPECT_EQ(FWindow->Pane()->y() < FWindow->Views()->parentWidget()->y(), above) << name.toStdString();
    }
    FWindow->Actions().Find(u"actDetailPanelRight"_s)->trigger();
    FWindow->resize(820, 700);
    EXPECT_FALSE(FWindow->Pane()->isVisible());
    FWindow->resize(1300, 800);
    EXPECT_TRUE(FWindow->Pane()->isVisible());
    FWindow->Actions().Find(u"actHideDetailPanel"_s)->trigger();
    EXPECT_FALSE(FWindow->Pane()->isVisible());
    EXPECT_TRUE(Defaults().FrameClosed);
}

TEST_F(MainWindow, ClosingKeepsColumnsSortAndFoldedSections)
{
    OpenSettingsStore(FDir.File(u"kept.ini"_s));
    Open(4);
    const auto column = [this](const QString& caption) {
        const QAbstractItemModel& model = *FWindow->Table()->model();
        int found = 0;
        while (found < model.columnCount() && model.headerData(found, Qt::Horizontal).toString() != caption)
            ++found;
        return found;
    };
    const auto header = [this] { return FWindow->Table()->Header(); };
    FWindow->Actions().Find(u"actAlbumTableView"_s)->trigger();
    const int genre = column(u"Genre"_s);
    header()->resizeSection(genre, 207);
    header()->moveSection(header()->visualIndex(genre), 0);
    header()->setSectionHidden(column(u"Label"_s), true);
    FForm->Lists().Active().SortBy(u"ReleaseName"_s, false);
    FForm->Lists().Active().SortBy(u"ReleaseName"_s, false); // a second click turns it
    FWindow->Pane()->SetFolded({u"tracks"_s});
    FWindow->close();
    FWindow.reset();
    FForm.reset();
    FData.qReleasesMain.SetSort({});

    Show();
    EXPECT_EQ(header()->sectionSize(genre), 207);
    EXPECT_EQ(header()->logicalIndex(0), genre);
    EXPECT_TRUE(header()->isSectionHidden(column(u"Label"_s)));
    EXPECT_FALSE(header()->isSectionHidden(column(u"Artist"_s)));
    EXPECT_TRUE(FWindow->Table()->SharesWidth(column(u"Artist"_s))) << "nobody has set its width";
    EXPECT_EQ(FWindow->Tiles()->model()->index(0, 0).data(rrTitle).toString(), u"Salt Atlas 003"_s);
    EXPECT_EQ(header()->SortMarks().size(), 1u);
    EXPECT_EQ(FWindow->Pane()->Folded(), QStringList{u"tracks"_s});
    FWindow.reset();
    FForm.reset();
    FData.qReleasesMain.SetSort({});

    SettingsStore().WriteString(u"AlbumView.Layout"_s, {}, u"v0|whatever"_s);
    Show();
    EXPECT_EQ(header()->logicalIndex(0), column(u"No"_s)) << "a layout of another version is passed over";
    OpenSettingsStore({});
}

TEST_F(MainWindow, AWideTableSharesItsRoomAndNoHeadingIsCut)
{
    Open(4);
    FWindow->Actions().Find(u"actAlbumTableView"_s)->trigger();
    TTableHeader* header = FWindow->Table()->Header();
    for (const int width : {1440, 1000, 1900}) {
        SCOPED_TRACE(width);
        FWindow->resize(width, 900);
        QApplication::processEvents();
        const int view = FWindow->Table()->viewport()->width();
        bool edge = false; // some column ends right at the edge of the view
        for (int visual = 0; visual < header->count(); ++visual) {
            const int column = header->logicalIndex(visual);
            if (header->isSectionHidden(column))
                continue;
            EXPECT_GE(header->sectionSize(column), header->CaptionWidth(column));
            edge = edge || header->sectionPosition(column) + header->sectionSize(column) == view;
        }
        EXPECT_TRUE(edge);
    }
}

TEST_F(MainWindow, ActionsWithoutAHandlerAreNowhereAndDoNothing)
{
    Open(4);
    const QList<QAction*> shown = FWindow->Actions().findChildren<QAction*>();
    for (const QAction* action : shown)
        EXPECT_EQ(action->isVisible(), FForm->Actions().IsBound(action->objectName()))
            << action->objectName().toStdString();
    for (QWidget* view : {static_cast<QWidget*>(FWindow->Tiles()), static_cast<QWidget*>(FWindow->Table())})
        QTest::keyClick(view, Qt::Key_Return);
    QTest::mouseDClick(FWindow->Tiles()->viewport(), Qt::LeftButton, {}, QPoint(60, 60));
    EXPECT_EQ(FWindow->Bars()->Count(), 0);
    EXPECT_TRUE(FPrompt.Questions.isEmpty());
    for (const TRibbonButton* button : FWindow->findChildren<TRibbonButton*>())
        if (button->isVisible() && button->menu() && !button->defaultAction() && button->menu()->isEmpty()) {
            Q_EMIT button->menu()->aboutToShow();
            EXPECT_FALSE(button->menu()->isEmpty()) << button->text().toStdString();
        }
}

TEST_F(MainWindow, RecentFilesThatAreGoneAreMarked)
{
    const QString there = FDir.File(u"there.db"_s);
    FData.CreateNewDB(there, FData.GetNewDatabaseSQL());
    Defaults().DBPath = FDir.File(u"gone.db"_s);
    Defaults().RecentDBs = {there, FDir.File(u"gone.db"_s)};
    Show();
    QStringList names;
    for (const QAbstractButton* button : FWindow->EmptyPage()->findChildren<QAbstractButton*>())
        names << button->accessibleName();
    const auto named = [&](const QString& file) { return names.filter(file).value(0); };
    EXPECT_FALSE(named(u"there.db"_s).contains(u"not found"_s));
    EXPECT_TRUE(named(u"gone.db"_s).contains(u"not found"_s)) << names.join(u'\n').toStdString();
    Q_EMIT FWindow->EmptyPage()->recentChosen(there);
    EXPECT_TRUE(FData.HasData());
}

TEST_F(MainWindow, ClosingKeepsSizeAndView)
{
    Open(5);
    FWindow->resize(1210, 777);
    FWindow->Actions().Find(u"actAlbumTableView"_s)->trigger();
    FWindow->Actions().Find(u"actExit"_s)->trigger();
    EXPECT_FALSE(FWindow->isVisible());
    EXPECT_EQ(Defaults().MainFormWidth, 1210);
    EXPECT_EQ(Defaults().MainFormHeight, 777);
    EXPECT_EQ(Defaults().CurrentView, 3);
}

} // namespace Kestrune
