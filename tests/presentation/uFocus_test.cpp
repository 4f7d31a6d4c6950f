// SPDX-License-Identifier: GPL-3.0-or-later
// Where the keyboard is, and that every row and button answers to it.
#include "uAlbumTable.h"
#include "uDetailPane.h"
#include "uEmptyPage.h"
#include "uFieldEditor.h"
#include "uFilterBar.h"
#include "uLetterBar.h"
#include "uMessageBars.h"
#include "uRibbon.h"
#include "uRibbonButton.h"
#include "uScenario.h"
#include "uSearchBox.h"
#include "uTHStrings.h"
#include "uTileView.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>
#include <QStackedWidget>
#include <QTest>

#include <gtest/gtest.h>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

class Focus : public Kit::TScenario {
protected:
    qsizetype ChipCount()
    {
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        qsizetype count = 0;
        for (const TChip* chip : Window().Filters()->Chips()->findChildren<TChip*>())
            count += chip->isHidden() ? 0 : 1;
        return count;
    }
    bool InView()
    {
        // The platform of the tests makes no other window active when one closes.
        return QTest::qWaitFor([this] { return Window().focusWidget() == Window().Views()->currentWidget(); }, 1000);
    }
};

} // namespace

TEST_F(Focus, ComesBackToTheViewFromDialogsJobsAndBars)
{
    Open(4);
    for (const char* action : {"actSort", "actOptions", "actAbout"}) {
        Window().Ribbon()->SearchBox()->FocusEditor();
        InDialog(action, [action](QDialog& dialog) {
            if (QLatin1StringView(action) == "actAbout"_L1) {
                EXPECT_TRUE(dialog.findChild<QLabel*>()->text().contains(QRegularExpression(u"[0-9]+[.][0-9]"_s)));
            }
        });
        EXPECT_TRUE(InView()) << action;
    }
    FPrompt.FileAnswer = FDir.File(u"out.csv"_s);
    Window().Ribbon()->SearchBox()->FocusEditor();
    Do("actExportToCSV");
    EXPECT_TRUE(InView()) << "export";
    FPrompt.FileAnswer.clear();
    Do("actExportToXML");
    EXPECT_EQ(FPrompt.Saved.Folder, FDir.Path()) << "where the last one went";
    Window().activateWindow();
    ASSERT_TRUE(QTest::qWaitFor([this] { return Window().isActiveWindow(); }));
    Window().Bars()->Show({bkError, u"Oh"_s, {}, {}, {}});
    auto* bar = Window().Bars()->findChild<TMessageBar*>();
    ASSERT_TRUE(bar);
    bar->findChild<TRibbonButton*>()->setFocus();
    Press(u"Return"_s);
    EXPECT_TRUE(InView()) << "a bar that was closed by its button";
}

TEST_F(Focus, TheSortWindowActsOnTheLevelThatHasIt)
{
    Open(2);
    Form().Lists().Active().SetSort({{u"Artist"_s, false}, {u"ReleaseYear"_s, false}});
    InDialog("actSort", [](QDialog& dialog) {
        const auto columns = dialog.findChildren<QComboBox*>();
        const auto numbers = dialog.findChildren<QRadioButton*>();
        QPushButton* down = nullptr;
        for (QPushButton* button : dialog.findChildren<QPushButton*>())
            if (button->text() == GetLanguageString(u"cSSortDlgDown"_s))
                down = button;
        ASSERT_TRUE(down && columns.size() == 4 && numbers.size() == 2);
        columns[2]->setFocus();
        EXPECT_TRUE(numbers[1]->isChecked());
        EXPECT_FALSE(down->isEnabled());
        columns[1]->setFocus();
        EXPECT_TRUE(numbers[0]->isChecked());
        EXPECT_TRUE(down->isEnabled());
    });
}

TEST_F(Focus, EscapeGoesToTheViewFromEverywhere)
{
    Open(4);
    int parts = 0;
    for (QWidget* part : Window().findChildren<QWidget*>()) {
        if (!part->isVisible() || !part->isEnabled() || !(part->focusPolicy() & Qt::TabFocus) ||
            part->window() != &Window())
            continue;
        SCOPED_TRACE(part->metaObject()->className() + part->accessibleName().toStdString());
        part->setFocus();
        if (!part->hasFocus())
            continue;
        Press(u"Escape"_s);
        EXPECT_TRUE(Window().Views()->currentWidget()->hasFocus());
        ++parts;
    }
    EXPECT_GT(parts, 40);
}

TEST_F(Focus, EnterPressesTheButtonThatHasTheKeyboard)
{
    Open(4);
    InDialog("actOptions", [](QDialog& dialog) {
        for (QPushButton* button : dialog.findChildren<QPushButton*>())
            if (!button->isDefault() && button->text() == u"Cancel"_s)
                button->setFocus();
        QSignalSpy rejected(&dialog, &QDialog::rejected);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        EXPECT_EQ(rejected.count(), 1);
    });
    for (TRibbonButton* button : Window().Ribbon()->findChildren<TRibbonButton*>())
        if (button->defaultAction() && button->defaultAction()->objectName() == "actRefresh"_L1 &&
            button->isVisible()) {
            QSignalSpy pressed(button->defaultAction(), &QAction::triggered);
            button->setFocus();
            Press(u"Return"_s);
            EXPECT_EQ(pressed.count(), 1);
        }
}

TEST_F(Focus, CardsOfTheEmptyPageTakeItAndThereAreSixWaysIn)
{
    Open(0);
    auto* first = qobject_cast<TCardButton*>(QApplication::focusWidget());
    ASSERT_TRUE(first);
    EXPECT_EQ(first->text(), u"Add a music folder"_s) << "what needs the search window is left out without one";
    // By hand: a name, and the first field of the pane is open.
    QStringList cards;
    for (TCardButton* card : Window().EmptyPage()->findChildren<TCardButton*>())
        if (card->isVisible())
            cards << card->text();
    EXPECT_EQ(cards.size(), 6);
    EXPECT_EQ(cards.last(), u"Fill in by hand"_s);
    InDialog("actAddReleaseManually", [](QDialog& dialog) {
        QTest::keyClicks(QApplication::focusWidget(), u"By hand"_s);
        dialog.accept();
    });
    EXPECT_EQ(Rows(), QStringList{u"By hand"_s});
    EXPECT_TRUE(InView());
}

TEST_F(Focus, AGroupingThatOrdersTilesIsAChipThatItsKeyTakesOff)
{
    Open(6);
    Form().Lists().Active().SetGrouping({u"Genre"_s});
    Settle();
    EXPECT_EQ(ChipCount(), 1);
    Do("actAlbumTableView");
    EXPECT_EQ(ChipCount(), 0) << "there the group panel tells";
    Do("actThumbView");
    Q_EMIT Window().Filters()->Chips()->removeRequested(u"-1|Genre"_s);
    Settle();
    EXPECT_TRUE(Form().Lists().Active().List().Grouping().isEmpty());
    EXPECT_EQ(ChipCount(), 0);
}

TEST_F(Focus, EnterF2AndDoubleClickEditTheFirstFieldOfEveryRow)
{
    Open(4);
    for (const char* view : {"actThumbView", "actCardsView", "actShelveView", "actAlbumTableView", "actTracksView"}) {
        Do(view);
        auto* shown = qobject_cast<QAbstractItemView*>(Window().Views()->currentWidget());
        ASSERT_TRUE(shown);
        for (const char* way : {"F2", "Return", "click"}) {
            SCOPED_TRACE(std::string(view) + ' ' + way);
            shown->setFocus();
            const QPoint at = shown->visualRect(shown->currentIndex()).center();
            if (QLatin1StringView(way) == "click"_L1) {
                QTest::mouseClick(shown->viewport(), Qt::LeftButton, {}, at);
                QTest::mouseDClick(shown->viewport(), Qt::LeftButton, {}, at);
                Settle();
            } else {
                Press(QString::fromLatin1(way));
            }
            auto* editor = Window().Pane()->findChild<TFieldEditor*>();
            ASSERT_TRUE(editor);
            EXPECT_TRUE(editor->isAncestorOf(QApplication::focusWidget()) || editor->hasFocus());
            Press(u"Escape"_s);
            QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
    }
}

} // namespace Kestrune
