// SPDX-License-Identifier: GPL-3.0-or-later
#include "dmMain.h"
#include "uAlbumTable.h"
#include "uCoverCache.h"
#include "uDebugWindow.h"
#include "uDetailPane.h"
#include "uDetailParts.h"
#include "uFieldEditor.h"
#include "uGalleryData.h"
#include "uLogView.h"
#include "uProgressWindow.h"
#include "uReleasesModel.h"
#include "uScriptedPrompt.h"
#include "uSplash.h"
#include "uStarsEdit.h"
#include "uTablePresets.h"
#include "uTestFiles.h"

#include <QAccessible>
#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include <thread>

namespace Kestrune {

using namespace Qt::StringLiterals;

TEST(StarsEdit, MouseHalvesAndKeys)
{
    TStarsEdit stars;
    stars.resize(stars.sizeHint());
    stars.show();
    QSignalSpy chosen(&stars, &TStarsEdit::ratingChosen);
    const int middle = stars.height() / 2;
    QTest::mouseClick(&stars, Qt::LeftButton, {}, QPoint(3 + 4, middle));
    EXPECT_EQ(stars.Rating(), 1);
    QTest::mouseClick(&stars, Qt::LeftButton, {}, QPoint(3 + 14, middle));
    EXPECT_EQ(stars.Rating(), 2);
    const struct {
        int Key;
        int Rating;
    } keys[] = {{Qt::Key_Right, 3}, {Qt::Key_9, 9},      {Qt::Key_Right, 10}, {Qt::Key_Right, 10},
                {Qt::Key_Left, 9},  {Qt::Key_Delete, 0}, {Qt::Key_Left, 0},   {Qt::Key_5, 5}};
    for (const auto& key : keys) {
        QTest::keyClick(&stars, Qt::Key(key.Key));
        EXPECT_EQ(stars.Rating(), key.Rating);
    }
    EXPECT_EQ(chosen.count(), 8) << "only changes are told";
    QAccessibleInterface* access = QAccessible::queryAccessibleInterface(&stars);
    EXPECT_EQ(access->role(), QAccessible::Slider);
    EXPECT_EQ(access->text(QAccessible::Value), u"2.5 of 5 stars"_s);
    EXPECT_EQ(access->valueInterface()->maximumValue().toDouble(), 5.0);
}

TEST(DetailPane, CoverTakesAtMostTwoFifthsAndKeepsItsProportions)
{
    EXPECT_EQ(TDetailHead::CoverSize({600, 600}, 318, 1000), QSize(318, 318));
    EXPECT_EQ(TDetailHead::CoverSize({600, 600}, 318, 500), QSize(200, 200));
    EXPECT_EQ(TDetailHead::CoverSize({600, 300}, 318, 500), QSize(318, 159));
    EXPECT_EQ(TDetailHead::CoverSize({}, 318, 500), QSize(1, 1));
}

TEST(DetailPane, ShowsSectionsInOrderAndRemembersTheFoldedOnes)
{
    TDetailData detail;
    detail.ID = 7;
    detail.Title = u"Low Lamps"_s;
    detail.Sections = {{u"General"_s,
                        u"General"_s,
                        {{u"Link"_s, u"Link"_s, u"example.org"_s, u"https://example.org"_s},
                         {u"Spars"_s, u"SPARS"_s, u"DDD"_s, u"#"_s, true}}},
                       {u"Comments"_s, u"Comments"_s, {{u"Comments"_s, {}, QString(u"word "_s).repeated(60), {}}}}};
    detail.Discs = {{{}, {}, {{u"1"_s, u"One"_s, {}, u"3:00"_s}, {u"2"_s, u"Two"_s, {}, u"4:00"_s}}}};
    detail.Pictures = {Kit::SampleCover(0, 100), QByteArray("broken")};
    TDetailPane pane;
    pane.resize(300, 900);
    pane.SetData(detail);
    pane.show();
    pane.grab();
    const auto blocks = [&] {
        QStringList ids;
        QList<TDetailBlock*> list;
        for (TDetailBlock* block : pane.findChildren<TDetailBlock*>())
            if (block->isVisible())
                list << block;
        std::sort(list.begin(), list.end(), [](auto* a, auto* b) { return a->y() < b->y(); });
        for (const TDetailBlock* block : list)
            ids << block->Id();
        return ids;
    };
    EXPECT_EQ(blocks(), (QStringList{u"tracks"_s, u"General"_s, u"pictures"_s, u"Comments"_s}));
    QSignalSpy links(&pane, &TDetailPane::linkActivated);
    const auto rowOf = [&pane](const QString& column) {
        TDetailRow* found = nullptr;
        for (TDetailRow* row : pane.findChildren<TDetailRow*>())
            if (row->Column() == column && row->isVisible() && row->focusPolicy() != Qt::NoFocus)
                found = row;
        return found;
    };
    TDetailRow* link = rowOf(u"Link"_s);
    ASSERT_TRUE(link);
    EXPECT_FALSE(rowOf(u"Spars"_s));
    QTest::keyClick(link, Qt::Key_Return);
    ASSERT_EQ(links.count(), 1);
    EXPECT_EQ(links[0][0].toString(), u"https://example.org"_s);
    const int before = pane.widget()->height();
    pane.SetFolded({u"Comments"_s});
    EXPECT_LT(pane.widget()->height(), before - 40);
    detail.ID = 8;
    pane.SetData(detail);
    EXPECT_EQ(pane.Folded(), (QStringList{u"Comments"_s}));
    EXPECT_LT(pane.widget()->height(), before - 40) << "the next release keeps the folding";
    pane.SetOrientation(Qt::Horizontal);
    pane.resize(900, 200);
    pane.grab();
    pane.SetData({});
    pane.grab();
    EXPECT_TRUE(blocks().isEmpty());
}

namespace {

// Twelve releases of two genres in a real collection.
class AlbumTable : public testing::Test {
protected:
    AlbumTable()
    {
        const QString path = FDir.File(u"records.db"_s);
        FData.CreateNewDB(path, FData.GetNewDatabaseSQL());
        FData.ConnectToDB(path);
        for (int i = 0; i < 12; ++i) {
            TAlbumRelease release;
            release.SetItem2(u"Artist"_s, u"Ilva Marren"_s);
            release.SetItem2(u"ReleaseName"_s, u"Salt Atlas %1"_s.arg(i));
            release.SetItem2(u"Genre"_s, i % 3 == 0 ? u"Jazz"_s : u"Folk"_s);
            FData.AddAlbumReleaseToDB(release, true);
        }
        FModel = std::make_unique<TReleasesModel>(FData);
        FTable = std::make_unique<TAlbumTable>(nullptr, *FModel);
        FTable->resize(1200, 500);
        FTable->show();
        FTable->activateWindow();
        FTable->setFocus();
    }

    QModelIndex Cell(int row, const QString& field)
    {
        return FTable->Groups().IndexOfRow(row, FModel->ColumnOf(field));
    }

    Kit::TTempDir FDir;
    Kit::TScriptedPrompt FPrompt;
    TDataModuleMain FData{FPrompt};
    std::unique_ptr<TReleasesModel> FModel;
    std::unique_ptr<TAlbumTable> FTable;
};

} // namespace

TEST_F(AlbumTable, HeadingsTellTheLogicAndCellsHaveACursor)
{
    ShowColumns(*FTable, {u"No"_s, u"Artist"_s, u"ReleaseName"_s, u"Genre"_s});
    QSignalSpy sorted(FTable.get(), &TAlbumTable::sortRequested);
    QHeaderView* header = FTable->header();
    const int name = FModel->ColumnOf(u"ReleaseName"_s);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, {header->sectionViewportPosition(name) + 20, 10});
    ASSERT_EQ(sorted.count(), 1);
    EXPECT_EQ(sorted[0][0].toInt(), name);
    EXPECT_FALSE(sorted[0][1].toBool());
    FTable->setCurrentIndex(Cell(5, u"No"_s));
    QTest::keyClick(FTable.get(), Qt::Key_Right);
    EXPECT_EQ(FTable->currentIndex(), Cell(5, u"Artist"_s));
    FTable->setColumnHidden(name, true);
    QTest::keyClick(FTable.get(), Qt::Key_Right);
    EXPECT_EQ(FTable->currentIndex(), Cell(5, u"Genre"_s)) << "hidden columns are passed over";
    QTest::keyClick(FTable.get(), Qt::Key_Down);
    EXPECT_EQ(FTable->currentIndex(), Cell(6, u"Genre"_s));
    EXPECT_EQ(FTable->selectionModel()->selectedRows().size(), 1);
    FTable->SetRowSize(rsWithCover);
    FTable->grab();
    EXPECT_EQ(FTable->visualRect(Cell(6, u"Artist"_s)).height(), 44);
}

TEST_F(AlbumTable, GroupsFoldByMouseAndKeysAndStayFoldedOverARefresh)
{
    FData.qReleasesMain.SetGrouping({u"Genre"_s});
    TGroupModel& groups = FTable->Groups();
    ASSERT_EQ(groups.rowCount(), 2);
    const QModelIndex folk = groups.index(0, 0);
    EXPECT_EQ(folk.data(grValue).toString(), u"Folk"_s);
    EXPECT_EQ(folk.data(grCount).toInt(), 8);
    EXPECT_TRUE(FTable->isExpanded(folk)) << "new groups stand open";
    QTest::mouseClick(FTable->viewport(), Qt::LeftButton, {}, FTable->visualRect(folk).center());
    EXPECT_FALSE(FTable->isExpanded(folk));
    FData.qReleasesMain.Refresh();
    EXPECT_FALSE(FTable->isExpanded(groups.index(0, 0)));
    EXPECT_TRUE(FTable->isExpanded(groups.index(1, 0)));
    FTable->setCurrentIndex(groups.index(0, 0));
    QTest::keyClick(FTable.get(), Qt::Key_Return);
    EXPECT_TRUE(FTable->isExpanded(groups.index(0, 0)));
    FTable->ExpandGroups(false);
    EXPECT_FALSE(FTable->isExpanded(groups.index(1, 0)));
    FTable->grab();
}

TEST_F(AlbumTable, CellsAreEditedInPlaceAndARefusedValueStaysInItsEditor)
{
    QString field;
    TVariant given;
    bool accept = false;
    FModel->SetEdit([&](qint64, const QString& column, const TVariant& value) {
        field = column;
        given = value;
        return accept;
    });
    FTable->SetEditing(true);
    const QModelIndex year = Cell(2, u"ReleaseYear"_s);
    FTable->setCurrentIndex(year);
    QTest::keyClick(FTable.get(), Qt::Key_F2);
    auto* editor = FTable->findChild<TFieldEditor*>();
    ASSERT_NE(editor, nullptr);
    QString told;
    FTable->SetOnRefusal([&](const QString& sentence) { told = sentence; });
    QTest::keyClicks(editor->Input(), u"no year"_s);
    QTest::keyClick(editor->Input(), Qt::Key_Return);
    EXPECT_TRUE(told.contains(u"number"_s)) << told.toStdString();
    EXPECT_TRUE(given.isNull()) << "what is no number is not offered to the file";
    editor->Begin();
    QTest::keyClicks(editor->Input(), u"1971"_s);
    QTest::keyClick(editor->Input(), Qt::Key_Return);
    EXPECT_EQ(given.toInt(), 1971);
    EXPECT_EQ(field, u"ReleaseYear"_s);
    EXPECT_NE(FTable->findChild<TFieldEditor*>(), nullptr) << "the file refused it: the text stays";
    accept = true;
    QTest::keyClick(editor->Input(), Qt::Key_Return);
    QTRY_COMPARE(FTable->findChild<TFieldEditor*>(), nullptr);
}

TEST_F(AlbumTable, AnEditorTellsWhatTheFileWillKeepBeforeItIsWritten)
{
    const TFieldDef& field =
        FData.qReleaseInfo.Fields()[static_cast<size_t>(FData.qReleaseInfo.FieldIndex(u"Custom1"_s))];
    QWidget window;
    window.resize(600, 300);
    TFieldEditor editor(FData, field, &window);
    editor.TellWhatIsKept();
    window.show();
    const auto hint = [&] { return window.findChild<QLabel*>(u"FieldHint"_s); };
    editor.SetValue(TVariant());
    QTest::keyClicks(editor.Input(), u"004"_s);
    ASSERT_NE(hint(), nullptr);
    EXPECT_TRUE(hint()->isVisible());
    EXPECT_TRUE(hint()->text().contains(u"“004” is kept as “4”"_s)) << hint()->text().toStdString();
    EXPECT_EQ(editor.accessibleDescription(), hint()->text());
    QTest::keyClicks(editor.Input(), u"a"_s);
    EXPECT_EQ(hint(), nullptr) << "004a stays";
}

TEST(Dialogs, ProgressAsksOnceThenCloses)
{
    TProgressWindow window(u"Adding"_s);
    window.show();
    QSignalSpy cancelled(&window, &TProgressWindow::cancelRequested);
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_EQ(cancelled.count(), 1);
    EXPECT_TRUE(window.isVisible());
    EXPECT_FALSE(window.findChild<QPushButton*>()->isEnabled());
    window.Log().AddWarning(u"<b>not markup</b>"_s);
    window.Finish(u"2 releases added"_s, false);
    window.grab();
    QTest::mouseClick(window.findChild<QPushButton*>(), Qt::LeftButton);
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(cancelled.count(), 1);
}

TEST(Dialogs, DebugLinesArriveFromAnyThread)
{
    TDebugWindow window;
    window.AddLine(u"here"_s);
    std::thread([&] { window.AddLine(u"there"_s); }).join();
    EXPECT_EQ(window.Text(), u"here"_s);
    QApplication::processEvents();
    EXPECT_EQ(window.Text(), u"here\nthere"_s);
}

TEST(Dialogs, SplashHasItsSizeAndRoundTransparentCorners)
{
    TSplashForm splash;
    splash.show();
    splash.SetText(u"Loading data..."_s);
    EXPECT_EQ(splash.size(), QSize(418, 216));
    QImage image(splash.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    splash.render(&image, {}, {}, {});
    EXPECT_EQ(qAlpha(image.pixel(0, 0)), 0);
    EXPECT_EQ(qAlpha(image.pixel(200, 100)), 255);
}

} // namespace Kestrune
