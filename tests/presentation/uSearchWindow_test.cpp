// SPDX-License-Identifier: GPL-3.0-or-later
#include "dmMain.h"
#include "uDefaults.h"
#include "uHitsModel.h"
#include "uHostLimiter.h"
#include "uOnlineKit.h"
#include "uScriptedPrompt.h"
#include "uSearchParts.h"
#include "uSearchWindow.h"
#include "uThemeController.h"
#include "uTileView.h"

#include <QAbstractItemModelTester>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTabBar>
#include <QTest>
#include <QToolButton>

#include <gtest/gtest.h>

using namespace Kestrune;
using namespace Qt::StringLiterals;

namespace {

class SearchWindow : public testing::Test {
protected:
    SearchWindow()
    {
        HostLimiter().Clear();
        Defaults() = MakeDefaults();
        Defaults().SearchByArtistRelease = Defaults().SearchByBarcode = 1;
        Grabber.Parse(Package.Path());
        Package.Server.Serve("/one", {.Body = Package.Hits({"A", "B", "C"})});
        Package.Server.Serve("/full", {.Body = "<SearchResults><Release LABEL='Full label'/></SearchResults>"});
        Form.emplace(Grabber, Data, Prompt);
        Window.emplace(*Form, nullptr);
        Window->show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&*Window));
    }

    void WaitForDownloads()
    {
        while (Form->Busy())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QCoreApplication::processEvents();
    }
    void Keys(QWidget* to, const QString& sequence)
    {
        const QKeyCombination key = QKeySequence(sequence, QKeySequence::PortableText)[0];
        QTest::keyClick(to, key.key(), key.keyboardModifiers());
    }
    void SearchFor(const QString& artist)
    {
        QWidget* field = Window->focusWidget();
        ASSERT_TRUE(qobject_cast<QLineEdit*>(field)) << "the first field has the keyboard";
        static_cast<QLineEdit*>(field)->selectAll();
        QTest::keyClicks(field, artist);
        QTest::keyClick(field, Qt::Key_Return);
        WaitForDownloads();
    }
    QPushButton* Button(const QString& text)
    {
        for (QPushButton* button : Window->findChildren<QPushButton*>())
            if (button->text() == text && button->isVisible())
                return button;
        return nullptr;
    }
    QString StateOf(int service) { return Window->findChildren<TServiceRow*>().at(service)->StateText(); }

    Kit::TServicePackage Package;
    Kit::TScriptedPrompt Prompt;
    TDataModuleMain Data{Prompt};
    TThemeController Theme;
    TInfoGrabber Grabber;
    std::optional<TAddMusicForm> Form;
    std::optional<TSearchWindow> Window;
};

TEST_F(SearchWindow, IsUsedByKeyboardFromTheFieldToTheSavedRelease)
{
    const QAbstractItemModelTester tester(Window->Model());
    EXPECT_GT(Window->findChild<QTabBar*>()->height(), 10);
    SearchFor(u"Ann"_s);
    EXPECT_EQ(Window->Model()->rowCount(), 3);
    EXPECT_EQ(StateOf(0), u"3 found"_s);
    EXPECT_EQ(StateOf(1), QString());
    EXPECT_EQ(Window->findChild<QTabBar*>()->tabText(0), u"Artist: Ann"_s);
    ASSERT_TRUE(Button(u"Save and continue"_s));
    EXPECT_FALSE(Button(u"Save and continue"_s)->isEnabled());
    EXPECT_EQ(Button(u"Save and continue"_s)->toolTip(), u"Select the releases to save"_s);

    Window->View()->setFocus();
    Keys(Window->View(), u"End"_s);
    WaitForDownloads();
    Keys(Window->View(), u"Home"_s);
    WaitForDownloads();
    EXPECT_EQ(Package.Server.Count("/full"), 2) << "of the last and the first, once each";
    EXPECT_EQ(Form->Tabs().Current().Selection.size(), 1U);
    EXPECT_TRUE(Button(u"Save and continue"_s)->isEnabled());
    Keys(Window->View(), u"Ctrl+S"_s);
    ASSERT_EQ(Form->Chosen().Items().size(), 1U);
    EXPECT_EQ(VarToStr(Form->Chosen().Items()[0].Release->GetItem2(u"ReleaseName"_s)), u"A"_s);
    EXPECT_EQ(VarToStr(Form->Chosen().Items()[0].Release->GetItem2(u"Label"_s)), u"Full label"_s);
    EXPECT_EQ(Window->Model()->rowCount(), 2);
    Window->View()->setFocus();
    Keys(Window->View(), u"Ctrl+A"_s);
    Keys(Window->View(), u"Del"_s);
    EXPECT_EQ(Window->Model()->rowCount(), 0);
    EXPECT_EQ(Form->Chosen().Items().size(), 1U) << "what was saved stays";
}

TEST_F(SearchWindow, SavesInTheOrderOfTheSelection)
{
    SearchFor(u"Ann"_s);
    const auto click = [&](int row, Qt::KeyboardModifiers keys) {
        const QModelIndex index = Window->Model()->index(row);
        QTest::mouseClick(Window->View()->viewport(), Qt::LeftButton, keys, Window->View()->visualRect(index).center());
        WaitForDownloads();
    };
    click(2, Qt::NoModifier);
    click(0, Qt::ControlModifier);
    click(1, Qt::ControlModifier);
    click(0, Qt::ControlModifier); // taken out again
    Form->actSaveAndClose();
    QStringList saved;
    for (const TSavedRelease& release : Form->Chosen().Items())
        saved << VarToStr(release.Release->GetItem2(u"ReleaseName"_s));
    EXPECT_EQ(saved, (QStringList{u"C"_s, u"B"_s}));
}

TEST_F(SearchWindow, TabsKeepTheirHitsAndSelection)
{
    SearchFor(u"Ann"_s);
    Form->Tabs().actSelectAll();
    EXPECT_EQ(Window->View()->selectionModel()->selectedIndexes().size(), 3);
    Keys(Window->View(), u"Ctrl+T"_s);
    auto* tabs = Window->findChild<QTabBar*>();
    EXPECT_EQ(tabs->count(), 2);
    EXPECT_EQ(tabs->tabText(1), u"Tab #2"_s);
    EXPECT_EQ(Window->Model()->rowCount(), 0);
    tabs->setCurrentIndex(0);
    EXPECT_EQ(Window->Model()->rowCount(), 3);
    EXPECT_EQ(Window->View()->selectionModel()->selectedIndexes().size(), 3);
    Keys(Window->View(), u"Ctrl+Shift+A"_s);
    EXPECT_TRUE(Form->Tabs().Current().Selection.empty());
    Keys(Window->View(), u"Ctrl+W"_s);
    EXPECT_EQ(tabs->count(), 1);
    EXPECT_EQ(Window->Model()->rowCount(), 0);
}

TEST_F(SearchWindow, AServiceThatFailedCanBeAskedAgain)
{
    Package.Server.Serve("/one", {.Status = 503});
    SearchFor(u"Ann"_s);
    EXPECT_EQ(StateOf(0), u"The service is busy (503)"_s);
    Package.Server.Serve("/one", {.Body = Package.Hits({"A"})});
    QPushButton* retry = Button(u"Retry"_s);
    ASSERT_TRUE(retry);
    retry->click();
    EXPECT_EQ(StateOf(0), u"Searching…"_s);
    WaitForDownloads();
    EXPECT_EQ(StateOf(0), u"1 found"_s);
    EXPECT_FALSE(Button(u"Retry"_s));
}

TEST_F(SearchWindow, SeveralBarcodesAreTypedLineByLine)
{
    Keys(Window->focusWidget(), u"Ctrl+2"_s);
    auto* codes = qobject_cast<QPlainTextEdit*>(Window->focusWidget());
    ASSERT_TRUE(codes);
    QTest::keyClicks(codes, u"11"_s);
    QTest::keyClick(codes, Qt::Key_Return, Qt::ShiftModifier);
    QTest::keyClicks(codes, u"22"_s);
    QTest::keyClick(codes, Qt::Key_Return);
    while (Form->Tabs().Items().size() < 2 || Form->Busy())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    EXPECT_EQ(Form->Tabs().Items()[0].Caption, u"Barcode: 11"_s);
    EXPECT_EQ(Form->Tabs().Items()[1].Caption, u"Barcode: 22"_s);
}

TEST_F(SearchWindow, AllCommandsAreInTheMenuAndDoSomething)
{
    QSignalSpy options(&*Window, &TSearchWindow::optionsRequested);
    Form->Drive().EjectDrive = [](const QString&) { return false; };
    Form->Drive().SetDrive(u"/dev/none"_s);
    Form->TestURL = Package.Server.URL(u"/none"_s);
    SearchFor(u"Ann"_s);
    int run = 0;
    for (QAction* action : Window->Commands()->actions()) {
        if (action->isSeparator())
            continue;
        EXPECT_FALSE(action->text().isEmpty());
        action->setEnabled(true);
        action->trigger();
        WaitForDownloads();
        ++run;
    }
    EXPECT_GE(run, 18);
    EXPECT_EQ(options.size(), 2);
    while (!Form->TestEnabled())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    EXPECT_EQ(Prompt.Errors.size(), 1) << "the connection test told";
}

} // namespace
