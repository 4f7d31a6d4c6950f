// SPDX-License-Identifier: GPL-3.0-or-later
#include "dmMain.h"
#include "uDefaults.h"
#include "uImport.h"
#include "uImportPages.h"
#include "uImportRun.h"
#include "uImportWindow.h"
#include "uListedImporter.h"
#include "uLogView.h"
#include "uScriptedPrompt.h"
#include "uTestFiles.h"
#include "uThemeController.h"

#include <QApplication>
#include <QDropEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTreeView>

#include <gtest/gtest.h>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

class ImportWindow : public testing::Test {
protected:
    ImportWindow()
    {
        Defaults() = MakeDefaults();
        FData.CreateNewDB(FPath, FData.GetNewDatabaseSQL());
    }
    void SetUp() override
    {
        ASSERT_TRUE(FData.ConnectToDB(FPath));
        FWindow.show();
        FWindow.activateWindow();
        QApplication::processEvents();
    }
    QPushButton* Button(const QString& text)
    {
        const QList<QPushButton*> buttons = FWindow.findChildren<QPushButton*>();
        for (QPushButton* button : buttons)
            if (button->text().remove(u'&') == text && button->isVisible())
                return button;
        return nullptr;
    }
    QLineEdit* Field()
    {
        const QList<QLineEdit*> fields = FWindow.findChildren<QLineEdit*>();
        for (QLineEdit* field : fields)
            if (field->isVisible())
                return field;
        return nullptr;
    }
    void Click(const QString& text)
    {
        QPushButton* button = Button(text);
        ASSERT_TRUE(button && button->isEnabled()) << text.toStdString();
        QTest::mouseClick(button, Qt::LeftButton);
    }

    TLogView* VisibleLog()
    {
        const QList<TLogView*> logs = FWindow.findChildren<TLogView*>();
        const auto shown = std::ranges::find_if(logs, &QWidget::isVisible);
        return shown == logs.end() ? nullptr : *shown;
    }
    void GoToSelection(const QString& source)
    {
        FForm.ChooseClass(0);
        FForm.Next();
        FForm.Source().SetText(FDir.Write(source, "x"));
        ASSERT_TRUE(QTest::qWaitFor([this] { return FForm.NextEnabled(); }));
        FForm.Next();
        ASSERT_TRUE(QTest::qWaitFor([this] { return !FForm.Importer(); }));
    }

    Kit::TTempDir FDir;
    Kit::TScriptedPrompt FPrompt;
    QString FPath = FDir.File(u"x.db"_s);
    TDataModuleMain FData{FPrompt};
    TThemeController FTheme;
    std::vector<TImporterClass> FClasses{Kit::TListedImporter::Row(), *FindImporterClass(u"TKRNImporter_MP3s"_s)};
    TKRNImportForm FForm{FData, FPrompt, FClasses};
    TImportWindow FWindow{FForm, nullptr};
};

} // namespace

TEST_F(ImportWindow, IsWalkedByKeyboardFromSourceToFinish)
{
    auto* list = FWindow.findChild<QListWidget*>();
    ASSERT_TRUE(list->hasFocus());
    QTest::keyClick(list, Qt::Key_Home);
    QTest::keyClick(list, Qt::Key_Return);
    ASSERT_EQ(FForm.Page(), pSelectSource);
    FPrompt.FileAnswer = FDir.Write(u"list.x"_s, "x");
    Click(u"Browse…"_s);
    EXPECT_EQ(Field()->text(), FPrompt.FileAnswer);
    QTest::keyClick(Field(), Qt::Key_Return);
    ASSERT_EQ(FForm.Page(), pSelectAlbumsToImport);
    ASSERT_TRUE(QTest::qWaitFor([this] { return !FForm.Importer(); }));
    auto* rows = FWindow.findChild<QTreeView*>();
    ASSERT_EQ(rows->model()->rowCount(), 30);
    rows->setFocus();
    QTest::keyClick(rows, Qt::Key_Home);
    QTest::keyClick(rows, Qt::Key_Down, Qt::ShiftModifier);
    QTest::keyClick(rows, Qt::Key_Space);
    EXPECT_EQ(FForm.TickedCount(), 2);
    ASSERT_TRUE(Button(u"Import 2 albums"_s));
    Click(u"Import 2 albums"_s);
    ASSERT_TRUE(QTest::qWaitFor([this] { return FForm.Page() == pFinish; }));
    QSignalSpy closed(&FForm, &TKRNImportForm::closed);
    Click(u"Finish"_s);
    ASSERT_EQ(closed.size(), 1);
    EXPECT_EQ(FWindow.result(), QDialog::Accepted);
}

TEST_F(ImportWindow, TheButtonsActOnTheRowsThatTheFilterShows)
{
    GoToSelection(u"list.x"_s);
    auto* rows = FWindow.findChild<QTreeView*>();
    EXPECT_EQ(VisibleLog(), nullptr);
    QTest::keyClicks(Field(), u"hask"_s);
    ASSERT_EQ(rows->model()->rowCount(), 15);
    rows->sortByColumn(1, Qt::DescendingOrder);
    rows->setCurrentIndex(rows->model()->index(0, 0));
    Click(u"Check selected"_s);
    EXPECT_TRUE(FForm.Rows()[8].Ticked) << "Salt Atlas 8 is the last by name among the even ones";
    EXPECT_EQ(FForm.TickedCount(), 1);
    Click(u"Check all"_s);
    EXPECT_EQ(FForm.TickedCount(), 15);
    EXPECT_FALSE(FForm.Rows()[1].Ticked) << "a row that the filter hides";
    Field()->clear();
    Click(u"Check all"_s);
    QTest::keyClicks(Field(), u"marren"_s);
    Click(u"Uncheck all"_s);
    EXPECT_EQ(FForm.TickedCount(), 15);
    EXPECT_TRUE(FForm.Rows()[0].Ticked);
}

TEST_F(ImportWindow, WhatTheListingPassedOverIsShown)
{
    GoToSelection(u"torn.x"_s);
    TLogView* notes = VisibleLog();
    ASSERT_TRUE(notes);
    EXPECT_TRUE(notes->toPlainText().contains(u"page 7: It is torn."_s)) << notes->toPlainText().toStdString();
}

TEST_F(ImportWindow, APageOfASourceIsARowOfTheTable)
{
    class TTapePage final : public TImportPageWidget {
    public:
        using TImportPageWidget::TImportPageWidget;
        QString Hint(const QString&) const override { return u"Tapes of "_s + FForm.Class().GetDisplayName(); }
    };
    const auto make = [](TKRNImportForm& form, QWidget* parent) -> TImportPageWidget* {
        return new TTapePage(form, parent);
    };
    std::vector<TImportPageRow> pages(ImportPages().begin(), ImportPages().end());
    pages.push_back({u"pTapes"_s, u"cSGuiTracks"_s, u"cSGuiTracks"_s, u"cSGuiHintWelcome"_s, make});
    FClasses[0].ExtraPages = {u"pTapes"_s};
    TKRNImportForm form(FData, FPrompt, FClasses);
    TImportWindow window(form, nullptr, pages);
    window.show();
    form.ChooseClass(0);
    form.Next();
    form.Source().SetText(FDir.Write(u"list.x"_s, "x"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return form.NextEnabled(); }));
    form.Next();
    EXPECT_EQ(form.Page(), u"pTapes"_s);
    QStringList shown;
    for (const QLabel* label : window.findChildren<QLabel*>())
        if (label->isVisible())
            shown += label->text();
    EXPECT_TRUE(shown.contains(u"Tracks"_s) && shown.contains(u"Tapes of Paper list"_s))
        << shown.join(u'|').toStdString();
    form.Next();
    EXPECT_EQ(form.Page(), pSelectAlbumsToImport);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !form.Importer(); }));
}

TEST_F(ImportWindow, EscapeAsksAndCloses)
{
    FPrompt.YesNoAnswer = false;
    QTest::keyClick(&FWindow, Qt::Key_Escape);
    EXPECT_TRUE(FWindow.isVisible());
    FPrompt.YesNoAnswer = true;
    QTest::keyClick(&FWindow, Qt::Key_Escape);
    EXPECT_FALSE(FWindow.isVisible());
}

TEST_F(ImportWindow, DropsAreTakenByTheSourcePageOfAudioFoldersOnly)
{
    const auto drop = [this](const QString& path) {
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(path)});
        QDragEnterEvent enter({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        enter.ignore();
        QApplication::sendEvent(&FWindow, &enter);
        if (!enter.isAccepted())
            return false;
        QDropEvent event(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&FWindow, &event);
        return true;
    };
    EXPECT_FALSE(drop(FDir.Path()));
    FForm.ChooseClass(0);
    FForm.Next();
    EXPECT_FALSE(drop(FDir.Path()));
    FForm.Back();
    FForm.ChooseClass(1);
    FForm.Next();
    ASSERT_TRUE(drop(FDir.Path()));
    ASSERT_TRUE(QTest::qWaitFor([this] { return FForm.Page() == pFinish; }));
    EXPECT_EQ(FForm.FinishText(), u"Import complete. 0 albums, 0 tracks imported."_s);
}

} // namespace Kestrune
