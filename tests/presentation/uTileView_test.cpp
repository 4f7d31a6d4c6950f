// SPDX-License-Identifier: GPL-3.0-or-later
#include "uCoverCache.h"
#include "uGalleryData.h"
#include "uReleaseRoles.h"
#include "uThemeController.h"
#include "uThumbsPainter.h"
#include "uTileLayout.h"
#include "uTileParts.h"
#include "uTileView.h"

#include <QAccessible>
#include <QApplication>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

struct TTileStage {
    explicit TTileStage(int rows) : Model(rows)
    {
        Theme.Apply(0, 0); // the width of the scroll bar belongs to the style
        View.SetPainter(&Painter);
        View.setModel(&Model);
        View.resize(1093, 640);
        View.show();
        View.activateWindow();
        View.setFocus();
        QApplication::processEvents();
    }

    QList<int> SelectedRows() const
    {
        QList<int> rows;
        for (const QModelIndex& index : View.selectionModel()->selectedRows())
            rows << index.row();
        std::sort(rows.begin(), rows.end());
        return rows;
    }

    void Click(int row, Qt::KeyboardModifiers modifiers = {})
    {
        View.scrollTo(Model.index(row, 0));
        QTest::mouseClick(View.viewport(), Qt::LeftButton, modifiers, View.visualRect(Model.index(row, 0)).center());
    }

    int PaintUntilComplete()
    {
        int rounds = 0;
        for (int before = -1; before != Covers.DecodeCount() && rounds < 200; ++rounds) {
            before = Covers.DecodeCount();
            View.grab();
        }
        return rounds;
    }

    TThemeController Theme;
    Kit::TSampleModel Model;
    TModelThumbSource Source;
    TCoverCache Covers{Source};
    TThumbsPainter Painter{Covers};
    TTileView View;
};

} // namespace

TEST(TileLayout, EveryCellIsFoundUnderItsOwnPoints)
{
    for (const bool stretch : {false, true})
        for (const bool rightToLeft : {false, true})
            for (const int width : {100, 152, 320, 333, 1093, 2560}) {
                TTileLayout layout;
                layout.Count = 57;
                layout.Width = width;
                layout.Cell = {152, 209};
                layout.ColumnGap = stretch ? 10 : 0;
                layout.RowGap = 2;
                layout.TopMargin = 4;
                layout.Stretch = stretch;
                layout.RightToLeft = rightToLeft;
                SCOPED_TRACE(::testing::Message()
                             << width << (stretch ? " stretch" : "") << (rightToLeft ? " rtl" : ""));
                QRect before;
                for (int i = 0; i < layout.Count; ++i) {
                    const QRect cell = layout.RectOf(i);
                    EXPECT_EQ(layout.IndexAt(cell.topLeft()), i);
                    EXPECT_EQ(layout.IndexAt(cell.bottomRight()), i);
                    EXPECT_FALSE(cell.intersects(before));
                    before = cell;
                }
                EXPECT_EQ(layout.RectOf(layout.Count - 1).bottom() + 1 + layout.TopMargin, layout.ContentHeight());
                EXPECT_EQ(layout.IndexAt({5, layout.ContentHeight() + 5}), -1);
            }
}

TEST(TileLayout, EmptyAndOutOfRange)
{
    TTileLayout layout;
    layout.Width = 500;
    layout.Cell = {100, 100};
    EXPECT_EQ(layout.ContentHeight(), 0);
    EXPECT_EQ(layout.IndexAt({50, 50}), -1);
    EXPECT_EQ(layout.NearestTo({50, 50}), -1);
    const auto [first, last] = layout.Between(0, 1000);
    EXPECT_GT(first, last);
    EXPECT_TRUE(layout.RectOf(0).isEmpty());
}

TEST(TileView, KeysMoveSelectAndActivate)
{
    TTileStage stage(50);
    const int columns = stage.View.Layout().Columns();
    ASSERT_EQ(columns, 7);
    stage.View.setCurrentIndex(stage.Model.index(0, 0));
    const struct {
        int Key;
        Qt::KeyboardModifiers Modifiers;
        int Row;
        qsizetype Selected;
    } steps[] = {{Qt::Key_Right, {}, 1, 1},
                 {Qt::Key_Down, {}, 8, 1},
                 {Qt::Key_Down, Qt::ShiftModifier, 15, 8},
                 {Qt::Key_Left, Qt::ShiftModifier, 14, 7},
                 {Qt::Key_Up, {}, 7, 1},
                 {Qt::Key_Left, {}, 6, 1},
                 {Qt::Key_Right, Qt::ControlModifier, 7, 1},
                 {Qt::Key_Space, Qt::ControlModifier, 7, 2},
                 {Qt::Key_End, {}, 49, 1},
                 {Qt::Key_Down, {}, 49, 1},
                 {Qt::Key_PageUp, {}, 49 - 3 * 7, 1},
                 {Qt::Key_Home, Qt::ShiftModifier, 0, 29},
                 {Qt::Key_Up, {}, 0, 29}}; // at the edge nothing moves, so nothing is deselected
    int number = 0;
    for (const auto& step : steps) {
        SCOPED_TRACE(::testing::Message() << "step " << number++);
        QTest::keyClick(&stage.View, Qt::Key(step.Key), step.Modifiers);
        EXPECT_EQ(stage.View.currentIndex().row(), step.Row);
        EXPECT_EQ(stage.SelectedRows().size(), step.Selected);
        EXPECT_TRUE(stage.View.viewport()->rect().contains(stage.View.visualRect(stage.View.currentIndex())));
    }
    QSignalSpy activated(&stage.View, &QAbstractItemView::activated);
    QTest::keyClick(&stage.View, Qt::Key_Return);
    ASSERT_EQ(activated.count(), 1);
    EXPECT_EQ(activated[0][0].toModelIndex().row(), 0);
}

TEST(TileView, MouseSelectsRunsAndToggles)
{
    TTileStage stage(50);
    stage.Click(3);
    EXPECT_EQ(stage.SelectedRows(), (QList<int>{3}));
    stage.Click(9, Qt::ShiftModifier);
    EXPECT_EQ(stage.SelectedRows(), (QList<int>{3, 4, 5, 6, 7, 8, 9}));
    stage.Click(5, Qt::ControlModifier);
    EXPECT_EQ(stage.SelectedRows(), (QList<int>{3, 4, 6, 7, 8, 9}));
    stage.Click(40);
    EXPECT_EQ(stage.SelectedRows(), (QList<int>{40}));
    QTest::mouseClick(stage.View.viewport(), Qt::LeftButton, {}, QPoint(1, 1));
    EXPECT_TRUE(stage.SelectedRows().isEmpty()) << "a click beside the cells selects nothing";
}

TEST(TileView, LettersJumpAndTheLogicMayAnswer)
{
    TTileStage stage(21);
    stage.View.setCurrentIndex(stage.Model.index(0, 0));
    QTest::keyClicks(&stage.View, u"car"_s);
    EXPECT_EQ(stage.View.currentIndex().data(rrTitle).toString(), u"Carmine"_s);
    QString asked;
    stage.View.SetLocate([&](const QString& text, int) {
        asked = text;
        return 4;
    });
    stage.View.keyboardSearch(u"q"_s);
    EXPECT_TRUE(asked.endsWith(u'q'));
    EXPECT_EQ(stage.View.currentIndex().row(), 4);
}

TEST(TileView, OnlyPaintedRowsCostThumbnails)
{
    TTileStage stage(100000);
    stage.PaintUntilComplete();
    const auto [first, last] = stage.View.VisibleRows();
    EXPECT_LE(stage.Covers.DecodeCount(), last - first + 1);
    const int reads = stage.Model.ThumbReads;
    EXPECT_EQ(reads, stage.Covers.DecodeCount()) << "one read for each cover";
    EXPECT_GT(reads, 0);
    stage.View.grab();
    EXPECT_EQ(stage.Model.ThumbReads, reads) << "painted covers come from the cache";
    QTest::keyClick(&stage.View, Qt::Key_End);
    stage.PaintUntilComplete();
    EXPECT_LE(stage.Covers.DecodeCount(), 2 * (last - first + 1) + 14);
    EXPECT_EQ(stage.View.currentIndex().row(), 99999);
}

TEST(CoverCache, StaysWithinItsBound)
{
    Kit::TSampleModel model(500);
    TModelThumbSource source;
    constexpr int bound = 2 * 1024 * 1024;
    TCoverCache covers(source, bound);
    for (int row = 0; row < 500; ++row)
        EXPECT_FALSE(covers.Cover(model.index(row, 0), 96, 1.0, true).isNull());
    EXPECT_LE(covers.Bytes(), bound);
    EXPECT_TRUE(covers.Cover(model.index(0, 0), 96, 1.0, false).isNull()) << "the first has been dropped";
    EXPECT_FALSE(covers.Cover(model.index(499, 0), 96, 1.0, false).isNull());
    EXPECT_TRUE(covers.Cover(model.index(499, 0), 96, 2.0, false).isNull()) << "another ratio is another picture";
}

TEST(TileView, AFilterThatShrinksTheListLeavesNoGap)
{
    TTileStage stage(5000);
    QTest::keyClick(&stage.View, Qt::Key_End);
    stage.Model.SetRows(10);
    EXPECT_EQ(stage.View.verticalScrollBar()->value(), 0);
    EXPECT_EQ(stage.View.verticalScrollBar()->maximum(), 0);
    stage.Model.SetRows(0);
    stage.View.grab();
    QTest::keyClick(&stage.View, Qt::Key_Down);
    EXPECT_FALSE(stage.View.currentIndex().isValid());
}

TEST(TileView, ScreenReadersSeeAListWithNames)
{
    TTileStage stage(21);
    stage.View.setCurrentIndex(stage.Model.index(18, 0));
    QAccessibleInterface* list = QAccessible::queryAccessibleInterface(&stage.View);
    ASSERT_TRUE(list);
    EXPECT_EQ(list->role(), QAccessible::List);
    EXPECT_EQ(list->childCount(), 21);
    QAccessibleInterface* cell = list->child(18);
    ASSERT_TRUE(cell);
    EXPECT_EQ(cell->role(), QAccessible::ListItem);
    EXPECT_EQ(cell->text(QAccessible::Name),
              u"Carmine, Dalia Fontane, 1968, Vinyl, 4.5 of 5 stars, Overdue, Lent to Jonas"_s);
    EXPECT_TRUE(cell->state().selected);
    EXPECT_EQ(list->indexOfChild(cell), 18);
    EXPECT_EQ(list->child(21), nullptr);
    const QPoint middle = cell->rect().center();
    EXPECT_EQ(list->childAt(middle.x(), middle.y()), cell);
    QSignalSpy activated(&stage.View, &QAbstractItemView::activated);
    cell->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(activated.count(), 1);
    stage.Model.SetRows(3);
    EXPECT_FALSE(cell->isValid());
}

TEST(Badges, OverdueComesBeforeLentBeforeWanted)
{
    Kit::TSampleModel model(21);
    EXPECT_EQ(BadgeOf(model.index(18, 0)), bdOverdue);
    EXPECT_EQ(BadgeOf(model.index(8, 0)), bdLent);
    EXPECT_EQ(BadgeOf(model.index(13, 0)), bdWanted);
    EXPECT_EQ(BadgeOf(model.index(0, 0)), bdNone);
}

} // namespace Kestrune
