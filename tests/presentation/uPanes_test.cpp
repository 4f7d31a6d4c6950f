// SPDX-License-Identifier: GPL-3.0-or-later
#include "uAlbumTable.h"
#include "uCoverCache.h"
#include "uDebugWindow.h"
#include "uDetailPane.h"
#include "uDetailParts.h"
#include "uGalleryData.h"
#include "uLogView.h"
#include "uProgressWindow.h"
#include "uSplash.h"
#include "uStarsEdit.h"

#include <QAccessible>
#include <QApplication>
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
    EXPECT_EQ(TDetailPane::CoverSize({600, 600}, 318, 1000), QSize(318, 318));
    EXPECT_EQ(TDetailPane::CoverSize({600, 600}, 318, 500), QSize(200, 200));
    EXPECT_EQ(TDetailPane::CoverSize({600, 300}, 318, 500), QSize(318, 159));
    EXPECT_EQ(TDetailPane::CoverSize({}, 318, 500), QSize(1, 1));
}

TEST(DetailPane, ShowsSectionsInOrderAndRemembersTheFoldedOnes)
{
    TDetailData detail;
    detail.ID = 7;
    detail.Title = u"Low Lamps"_s;
    detail.Sections = {
        {u"General"_s, u"General"_s, {{u"Link"_s, u"Link"_s, u"example.org"_s, u"https://example.org"_s}}},
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
    EXPECT_EQ(blocks(), (QStringList{u"General"_s, u"tracks"_s, u"pictures"_s, u"Comments"_s}));
    QSignalSpy links(&pane, &TDetailPane::linkActivated);
    TDetailRow* link = pane.findChild<TDetailRow*>();
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

TEST(AlbumTable, HeadingsTellTheLogicAndCellsHaveACursor)
{
    Kit::TSampleModel model(300);
    TModelThumbSource source;
    TCoverCache covers(source);
    TAlbumTable table(&covers);
    table.setModel(&model);
    table.resize(1200, 400);
    table.show();
    table.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&table));
    table.setFocus();
    table.ApplyBestFit();
    QSignalSpy sorted(&table, &TAlbumTable::sortRequested);
    QHeaderView* header = table.header();
    const QPoint year(header->sectionViewportPosition(4) + header->sectionSize(4) / 2, 10);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, year);
    ASSERT_EQ(sorted.count(), 1);
    EXPECT_EQ(sorted[0][0].toInt(), 4);
    EXPECT_FALSE(sorted[0][1].toBool());
    table.setCurrentIndex(model.index(5, 2));
    QTest::keyClick(&table, Qt::Key_Right);
    EXPECT_EQ(table.currentIndex(), model.index(5, 3));
    table.setColumnHidden(4, true);
    QTest::keyClick(&table, Qt::Key_Right);
    EXPECT_EQ(table.currentIndex(), model.index(5, 5)) << "hidden columns are passed over";
    QTest::keyClick(&table, Qt::Key_Down);
    EXPECT_EQ(table.currentIndex(), model.index(6, 5));
    EXPECT_EQ(table.selectionModel()->selectedRows().size(), 1);
    EXPECT_EQ(table.visualRect(model.index(6, 2)).height(), table.visualRect(model.index(0, 2)).height());
    table.SetRowSize(rsWithCover);
    table.grab();
    EXPECT_EQ(table.visualRect(model.index(6, 2)).height(), 44);
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
