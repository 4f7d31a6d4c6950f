// SPDX-License-Identifier: GPL-3.0-or-later
// What users do with the main window, from the first key to what is in the file.
#include "uActionSet.h"
#include "uAlbumTable.h"
#include "uDefaults.h"
#include "uDetailPane.h"
#include "uFieldEditor.h"
#include "uFilterCell.h"
#include "uFilterDialog.h"
#include "uFindBar.h"
#include "uListDialogs.h"
#include "uOptionsWindow.h"
#include "uReleasesModel.h"
#include "uRibbon.h"
#include "uRibbonTable.h"
#include "uSQLWindow.h"
#include "uScenario.h"
#include "uSearchBox.h"
#include "uTableHeader.h"
#include "uTablePresets.h"
#include "uTileView.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStackedWidget>
#include <QTableWidget>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

using Scenario = Kit::TScenario;

// Rows of a dialog that were replaced are gone only now.
void LetDialogSettle()
{
    QApplication::processEvents();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

// Chooses an item as a user does: the signal tells that it was by hand.
void Choose(QComboBox& box, const QString& text)
{
    const int index = box.findText(text);
    ASSERT_GE(index, 0) << text.toStdString();
    box.setCurrentIndex(index);
    Q_EMIT box.activated(index);
}

QAbstractButton& Button(const QWidget& window, const QString& text)
{
    for (QAbstractButton* button : window.findChildren<QAbstractButton*>())
        if (button->text() == text || button->accessibleName() == text)
            return *button;
    throw std::runtime_error("no button " + text.toStdString());
}

int ColumnOf(TAlbumTable& table, const QString& field) { return table.Groups().Source().ColumnOf(field); }

void FocusCell(TAlbumTable& table, int row, const QString& field)
{
    table.setCurrentIndex(table.Groups().IndexOfRow(row, ColumnOf(table, field)));
    table.setFocus();
}

// What the keyboard reaches and a screen reader could not name, as "class (role)".
void FindNameless(QAccessibleInterface* part, QStringList& nameless, int depth = 0)
{
    if (!part || !part->isValid() || depth > 30 || part->state().invisible)
        return;
    const bool item = part->role() == QAccessible::Cell || part->role() == QAccessible::ListItem ||
                      part->role() == QAccessible::TreeItem;
    if (part->state().focusable && !item && part->text(QAccessible::Name).isEmpty() && depth > 0) {
        const QObject* object = part->object();
        nameless << u"%1 (%2) in %3"_s.arg(QString::fromLatin1(object ? object->metaObject()->className() : "item"))
                        .arg(static_cast<int>(part->role()))
                        .arg(QString::fromLatin1(
                            object && object->parent() ? object->parent()->metaObject()->className() : ""));
    }
    if (part->tableInterface())
        return; // its cells are asked for one by one elsewhere
    for (int i = 0; i < part->childCount(); ++i)
        FindNameless(part->child(i), nameless, depth + 1);
}

QString Nameless(QWidget& window)
{
    QStringList nameless;
    FindNameless(QAccessible::queryAccessibleInterface(&window), nameless);
    nameless.removeDuplicates();
    return nameless.join(u"; "_s);
}

QStringList ShownColumns(TAlbumTable& table)
{
    QStringList names;
    for (int visual = 0; visual < table.Header()->count(); ++visual) {
        const int column = table.Header()->logicalIndex(visual);
        if (table.isColumnHidden(column))
            continue;
        const QString field = table.Groups().Source().FieldOf(column);
        names << (field.isEmpty() ? u"ThumbPicture"_s : field); // the cover is no text
    }
    return names;
}

} // namespace

TEST_F(Scenario, FiveViewsShareFocusSelectionAndFilters)
{
    Open(40);
    EXPECT_EQ(State(), u"thumbs | Salt Atlas 000 | 1"_s);
    Press(u"End"_s);
    const std::pair<QString, QString> views[] = {{u"Shift+F2"_s, u"cards"_s},
                                                 {u"Shift+F3"_s, u"shelf"_s},
                                                 {u"Shift+F4"_s, u"albums"_s},
                                                 {u"Shift+F1"_s, u"thumbs"_s}};
    for (const auto& [keys, view] : views) {
        Press(keys);
        EXPECT_EQ(State(), view + u" | Salt Atlas 039 | 1"_s);
        auto* shown = qobject_cast<QAbstractItemView*>(Window().Views()->currentWidget());
        ASSERT_TRUE(shown);
        EXPECT_TRUE(shown->viewport()->rect().intersects(shown->visualRect(shown->currentIndex())));
        EXPECT_TRUE(shown->hasFocus()) << "the keyboard goes along";
    }
    Form().Lists().Active().LetterClick(u"I"_s);
    Settle();
    for (const auto& [keys, view] : views) {
        Press(keys);
        EXPECT_EQ(Rows().size(), 20);
        EXPECT_EQ(State(), view + u" | Salt Atlas 000 | 1"_s) << "the focused release was filtered out";
    }
    Press(u"Shift+F4"_s);
    Press(u"Ctrl+A"_s);
    Press(u"Shift+F2"_s);
    EXPECT_EQ(State(), u"cards | Salt Atlas 000 | 20"_s);
    Press(u"Shift+F5"_s);
    EXPECT_EQ(State(), u"tracks | Song 1 of 000 | 1"_s) << "the first track of the focused release";
    EXPECT_EQ(Rows().size(), 120) << "tracks have filters of their own";
    Press(u"End"_s);
    EXPECT_EQ(State(), u"tracks | Song 3 of 039 | 1"_s);
    Do("actThumbView");
    EXPECT_EQ(Chips().size(), 1);
}

TEST_F(Scenario, EveryActionRunsInEveryView)
{
    Open(6);
    FPrompt.YesNoAnswer = false; // nothing is removed or made anew, no file is chosen
    QTimer closer;               // whatever opens is closed again
    QObject::connect(&closer, &QTimer::timeout, &Window(), [] {
        if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget()))
            dialog->reject();
        else if (QWidget* popup = QApplication::activePopupWidget())
            popup->close();
    });
    closer.start(20);
    const QSet<QString> leftOut{u"actExit"_s, u"actImport"_s, u"actQuickPrint"_s, u"actToggleDebug"_s};
    int run = 0;
    for (const char* view : {"actThumbView", "actCardsView", "actShelveView", "actAlbumTableView", "actTracksView"}) {
        for (const TActionDef& def : ActionDefs()) {
            Do(view);
            QAction* action = Window().Actions().Find(QString::fromLatin1(def.Name));
            if (leftOut.contains(QString::fromLatin1(def.Name)) || !action->isEnabled())
                continue;
            SCOPED_TRACE(std::string(view) + " " + def.Name);
            action->trigger();
            QApplication::processEvents();
            EXPECT_TRUE(Window().isVisible());
            EXPECT_FALSE(Form().Shell().Working());
            ++run;
        }
    }
    EXPECT_GT(run, 200);
    EXPECT_EQ(InFile(u"SELECT count(*) FROM Tracks2"_s).toInt() % 3, 0);
    EXPECT_EQ(InFile(u"PRAGMA integrity_check"_s), u"ok"_s);
}

TEST_F(Scenario, ACellIsEditedInItsPlace)
{
    Open(5);
    Do("actAlbumTableView");
    if (!Form().Lists().Active().InPlaceEditing())
        Do("actToggleGridEditMode");
    FocusCell(*Window().Table(), 2, u"ReleaseYear"_s);
    Press(u"F2"_s);
    Type(u"19x"_s);
    Press(u"Return"_s);
    EXPECT_TRUE(Window().Table()->findChild<TFieldEditor*>()) << "what is no year stays in its editor";
    EXPECT_EQ(InFile(u"SELECT ReleaseYear FROM Releases2 WHERE ID = 3"_s), u"1962"_s);
    Press(u"Ctrl+A"_s);
    Type(u"1999"_s);
    Press(u"Return"_s);
    EXPECT_EQ(InFile(u"SELECT ReleaseYear FROM Releases2 WHERE ID = 3"_s), u"1999"_s);
    FocusCell(*Window().Table(), 2, u"Artist"_s);
    Press(u"F2"_s);
    Type(u"dropped"_s);
    Press(u"Esc"_s);
    EXPECT_EQ(InFile(u"SELECT Artist FROM Releases2 WHERE ID = 3"_s), u"Ilva Marren"_s);
    Do("actTracksView");
    if (!Form().Lists().Active().InPlaceEditing())
        Do("actToggleGridEditMode");
    FocusCell(*Window().Tracks(), 1, u"TrackLength"_s);
    Press(u"F2"_s);
    Type(u"4:05"_s);
    Press(u"Return"_s);
    EXPECT_EQ(InFile(u"SELECT round(TrackLength * 86400) FROM Tracks2 WHERE ID = 2"_s).toDouble(), 245.0);
}

TEST_F(Scenario, AnEditThatTheFileRefusesStaysInItsEditor)
{
    Open(3);
    Do("actAlbumTableView");
    if (!Form().Lists().Active().InPlaceEditing())
        Do("actToggleGridEditMode");
    TSQLiteConnection other;
    other.Open(FPath);
    other.Exec(u"BEGIN IMMEDIATE"_s);
    FocusCell(*Window().Table(), 0, u"Artist"_s);
    Press(u"F2"_s);
    Press(u"Ctrl+A"_s);
    Type(u"New name"_s);
    Press(u"Return"_s);
    EXPECT_EQ(Bars().size(), 1);
    auto* editor = Window().Table()->findChild<TFieldEditor*>();
    ASSERT_TRUE(editor) << "what was typed is not lost";
    EXPECT_EQ(editor->Value(), std::optional<TVariant>(u"New name"_s));
    other.Exec(u"ROLLBACK"_s);
    Press(u"Return"_s);
    EXPECT_EQ(InFile(u"SELECT Artist FROM Releases2 WHERE ID = 1"_s), u"New name"_s);
}

TEST_F(Scenario, GroupsFoldAndStayOverARestart)
{
    Open(9);
    Do("actAlbumTableView");
    TAlbumTable& table = *Window().Table();
    Form().Lists().Active().SetGrouping({u"Genre"_s});
    Settle();
    EXPECT_EQ(table.Groups().rowCount(), 3);
    EXPECT_EQ(Form().Figures().Status().Groups, 3);
    Do("actCollapseAll");
    EXPECT_FALSE(table.isExpanded(table.model()->index(0, 0)));
    Do("actExpandAll");
    EXPECT_TRUE(table.isExpanded(table.model()->index(2, 0)));
    EXPECT_EQ(Rows().mid(0, 3), (QStringList{u"Salt Atlas 001"_s, u"Salt Atlas 004"_s, u"Salt Atlas 007"_s}));
    Reopen();
    EXPECT_EQ(Window().Table()->Groups().rowCount(), 3);
    EXPECT_TRUE(State().startsWith(u"albums | "_s));
    Form().Lists().Active().SetGrouping({});
    Settle();
    EXPECT_EQ(Window().Table()->Groups().rowCount(), 9);
}

TEST_F(Scenario, TheFilterRowFiltersWhileTyping)
{
    Open(30);
    Do("actAlbumTableView");
    Press(u"F6"_s);
    TTableHeader& header = *Window().Table()->Header();
    ASSERT_TRUE(header.FilterRowShown());
    TFilterCell* cell = header.FilterCell(ColumnOf(*Window().Table(), u"ReleaseYear"_s));
    ASSERT_TRUE(cell);
    cell->setFocus();
    Type(u"1985..1987"_s);
    Press(u"Return"_s);
    EXPECT_EQ(Rows().size(), 3);
    ASSERT_EQ(Chips().size(), 1);
    Press(u"Ctrl+A"_s);
    Type(u"many"_s);
    Press(u"Return"_s);
    EXPECT_TRUE(cell->IsWrong());
    EXPECT_EQ(Rows().size(), 30);
    Press(u"Esc"_s);
    Press(u"Esc"_s);
    EXPECT_TRUE(Window().Table()->hasFocus());
    Press(u"F6"_s);
    EXPECT_FALSE(header.FilterRowShown());
}

TEST_F(Scenario, TheFindPanelWalksFromHitToHit)
{
    Open(30);
    Do("actAlbumTableView");
    Press(u"Ctrl+F"_s);
    ASSERT_TRUE(Window().FindBar()->isVisible());
    QSignalSpy typed(Window().FindBar(), &TFindBar::textChanged);
    Type(u"02"_s); // 002 and 020 to 029
    ASSERT_TRUE(typed.wait(2000));
    Settle();
    EXPECT_EQ(State(), u"albums | Salt Atlas 002 | 1"_s);
    Press(u"Return"_s);
    EXPECT_EQ(State(), u"albums | Salt Atlas 020 | 1"_s);
    Press(u"Shift+Return"_s);
    Press(u"Shift+Return"_s);
    EXPECT_EQ(State(), u"albums | Salt Atlas 029 | 1"_s) << "round the end";
    EXPECT_EQ(Rows().size(), 30) << "finding is no filter";
    Press(u"Esc"_s);
    EXPECT_FALSE(Window().FindBar()->isVisible());
    EXPECT_TRUE(Window().Table()->hasFocus());
}

TEST_F(Scenario, TheSortWindowSortsByItsLevels)
{
    Open(6);
    Do("actAlbumTableView");
    InDialog("actSort", [](QDialog& dialog) {
        auto boxes = dialog.findChildren<QComboBox*>();
        ASSERT_EQ(boxes.size(), 2) << "one level to begin with";
        Choose(*boxes[0], u"Artist"_s);
        Choose(*boxes[1], u"Descending"_s);
        Button(dialog, u"Add level"_s).click();
        LetDialogSettle();
        boxes = dialog.findChildren<QComboBox*>();
        ASSERT_EQ(boxes.size(), 4);
        Choose(*boxes[2], u"Artist"_s);
        dialog.accept();
        EXPECT_TRUE(dialog.isVisible()) << "a column twice is refused";
        Choose(*boxes[2], u"Release year"_s);
        Choose(*boxes[3], u"Descending"_s);
        dialog.accept();
        EXPECT_FALSE(dialog.isVisible());
    });
    EXPECT_EQ(Rows(), (QStringList{u"Salt Atlas 005"_s, u"Salt Atlas 003"_s, u"Salt Atlas 001"_s, u"Salt Atlas 004"_s,
                                   u"Salt Atlas 002"_s, u"Salt Atlas 000"_s}));
    EXPECT_EQ(Window().Table()->Header()->SortMarks().size(), 2u);
    Do("actClearSorting");
    EXPECT_EQ(Rows().front(), u"Salt Atlas 000"_s);
}

TEST_F(Scenario, TheFilterBuilderBuildsWhatItSays)
{
    Open(30);
    InDialog("actAdvancedSearch", [](QDialog& dialog) {
        auto* group = dialog.findChild<TFilterGroupBox*>();
        ASSERT_TRUE(group);
        auto* row = dialog.findChild<TFilterRow*>();
        if (!row)
            row = group->AddRow();
        auto boxes = row->findChildren<QComboBox*>();
        Choose(*boxes[0], u"Release year"_s);
        Choose(*boxes[1], u"is at least"_s);
        auto* editor = row->findChild<TFieldEditor*>();
        ASSERT_TRUE(editor);
        editor->Begin();
        QTest::keyClicks(editor->Input(), u"nineteen"_s);
        dialog.accept();
        EXPECT_TRUE(dialog.isVisible()) << "no number";
        editor->SetValue(1985);
        dialog.accept();
    });
    EXPECT_EQ(Rows().size(), 5);
    ASSERT_EQ(Chips().size(), 1);
    EXPECT_TRUE(Chips()[0].contains(u"Release year is at least 1985"_s)) << Chips()[0].toStdString();
    InDialog("actAdvancedSearch", [](QDialog& dialog) {
        const auto node = dialog.findChild<TFilterGroupBox*>()->Node();
        ASSERT_TRUE(node);
        ASSERT_EQ(node->Criteria.size(), 1u) << "the builder shows what is in force";
        EXPECT_EQ(node->Criteria[0].Op, foGreaterOrEqual);
    });
    Reopen();
    EXPECT_EQ(Rows().size(), 30) << "a filter ends with the program unless it was saved";
}

TEST_F(Scenario, MultiEditChangesTheSelectedRows)
{
    Open(6);
    Do("actAlbumTableView");
    FocusCell(*Window().Table(), 1, u"Artist"_s);
    Press(u"Shift+Down"_s);
    InDialog("actMultiEdit", [](QDialog& dialog) {
        dialog.accept();
        ASSERT_TRUE(dialog.isVisible()) << "there is nothing to do yet";
        Button(dialog, u"Add field"_s).click();
        Choose(*dialog.findChild<QComboBox*>(), u"Label"_s);
        LetDialogSettle();
        auto* editor = dialog.findChild<TFieldEditor*>();
        ASSERT_TRUE(editor);
        editor->Begin();
        QTest::keyClicks(editor->Input(), u"Blue Lamp"_s);
        QTimer::singleShot(0, &dialog, [] {
            auto* question = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            ASSERT_TRUE(question);
            EXPECT_EQ(question->text(), u"Change 2 items?\nSet: Label"_s);
            question->button(QMessageBox::Yes)->click();
        });
        dialog.accept();
    });
    EXPECT_EQ(InFile(u"SELECT group_concat(ID) FROM Releases2 WHERE Label = 'Blue Lamp'"_s), u"2,3"_s);
    EXPECT_TRUE(State().endsWith(u"| 2"_s)) << "both are still selected";
}

TEST_F(Scenario, SQLShowsItsRowsAndWritesOnlyWhenAllowed)
{
    Open(4);
    InDialog("actExecSQL", [this](QDialog& dialog) {
        auto* sql = dialog.findChild<QPlainTextEdit*>();
        auto* grid = dialog.findChild<QTableWidget*>();
        sql->setPlainText(u"SELECT ReleaseName, ID FROM Releases2 ORDER BY ID DESC"_s);
        QTest::keyClick(sql, Qt::Key_Return, Qt::ControlModifier);
        ASSERT_EQ(grid->rowCount(), 4);
        EXPECT_EQ(grid->item(0, 0)->text(), u"Salt Atlas 003"_s);
        sql->setPlainText(u"DELETE FROM Releases2 WHERE ID = 1"_s);
        QTest::keyClick(sql, Qt::Key_Return, Qt::ControlModifier);
        EXPECT_EQ(InFile(u"SELECT count(*) FROM Releases2"_s), u"4"_s);
        dialog.findChild<QCheckBox*>()->click();
        QTest::keyClick(sql, Qt::Key_Return, Qt::ControlModifier);
        EXPECT_EQ(InFile(u"SELECT count(*) FROM Releases2"_s), u"3"_s);
        // A statement that never ends serves the window and stops with Esc.
        sql->setPlainText(u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) SELECT count(*) FROM n"_s);
        QTimer::singleShot(50, &dialog, [&dialog] {
            QApplication::activeModalWidget()->parentWidget()->repaint(); // reads the collection meanwhile
            QTest::keyClick(&dialog, Qt::Key_Escape);
        });
        QTest::keyClick(sql, Qt::Key_Return, Qt::ControlModifier);
        EXPECT_TRUE(dialog.isVisible()) << "the first Esc ends the statement alone";
    });
    EXPECT_EQ(Rows().size(), 3) << "the window follows";
}

TEST_F(Scenario, ThePaletteFindsAndRunsCommands)
{
    Open(4);
    InDialog("actCommandPalette", [](QDialog& dialog) {
        auto* search = dialog.findChild<QLineEdit*>();
        auto* list = dialog.findChild<QListWidget*>();
        const int all = list->count();
        EXPECT_GT(all, 40);
        QTest::keyClicks(search, u"album view"_s);
        EXPECT_LT(list->count(), all);
        QTest::keyClick(search, Qt::Key_Return);
    });
    Settle();
    EXPECT_TRUE(State().startsWith(u"albums"_s)) << State().toStdString();
}

TEST_F(Scenario, OptionsActWhenTheyAreTaken)
{
    Open(3);
    Do("actAlbumTableView");
    Press(u"Down"_s);
    FPrompt.YesNoAnswer = false;
    ASSERT_FALSE(Defaults().MP3ScanOtherImages);
    const auto change = [](QDialog& dialog) {
        for (QCheckBox* box : dialog.findChildren<QCheckBox*>())
            if (box->text() == u"Take other pictures"_s)
                box->setChecked(true);
    };
    InDialog("actOptions", change);
    EXPECT_FALSE(Defaults().MP3ScanOtherImages) << "cancelled";
    InDialog("actOptions", [&](QDialog& dialog) {
        change(dialog);
        dialog.accept();
    });
    EXPECT_TRUE(Defaults().MP3ScanOtherImages);
    Settle();
    EXPECT_TRUE(Window().Table()->selectionModel()->hasSelection()) << "the selection outlives the new columns";
    EXPECT_EQ(State(), u"albums | Salt Atlas 001 | 1"_s);
    QSignalSpy languages(&Window(), &TMainWindow::languageChanged);
    InDialog("actOptions", [&](QDialog& dialog) { dialog.accept(); });
    EXPECT_TRUE(languages.isEmpty());
    Defaults().Language = u"Elsewhere"_s; // a language whose file is gone: the list falls back to the first
    InDialog("actOptions", [&](QDialog& dialog) {
        for (QComboBox* box : dialog.findChildren<QComboBox*>())
            if (const int english = box->findData(u"English"_s); english >= 0) {
                box->setCurrentIndex(english);
                Q_EMIT box->activated(english);
            }
        dialog.accept();
    });
    EXPECT_EQ(languages.size(), 1);
    EXPECT_EQ(Defaults().Language, u"English"_s);
}

TEST_F(Scenario, SuggestionListsReachTheirEditors)
{
    Open(3);
    InDialog("actEditStatuses", [](QDialog& dialog) {
        dialog.findChild<QPlainTextEdit*>()->appendPlainText(u"On its way"_s);
        dialog.accept();
    });
    EXPECT_TRUE(Form().Search().StatusItems().contains(u"On its way"_s));
}

TEST_F(Scenario, CellsAndRowsGoToTheClipboard)
{
    Open(4);
    Do("actAlbumTableView");
    ShowColumns(*Window().Table(), {u"Artist"_s, u"ReleaseName"_s});
    FocusCell(*Window().Table(), 1, u"Artist"_s);
    Press(u"Ctrl+C"_s);
    EXPECT_EQ(QApplication::clipboard()->text(), u"Northern Kiln"_s);
    Press(u"Shift+Down"_s);
    Press(u"Ctrl+Shift+C"_s);
    EXPECT_EQ(QApplication::clipboard()->text(),
              u"Artist\tRelease name\nNorthern Kiln\tSalt Atlas 001\nIlva Marren\tSalt Atlas 002\n"_s);
    EXPECT_TRUE(QApplication::clipboard()->mimeData()->html().contains(u"<td>Salt Atlas 002</td>"_s));
}

TEST_F(Scenario, AnExportHoldsTheColumnsOfTheView)
{
    Open(4);
    Do("actAlbumTableView");
    ShowColumns(*Window().Table(), {u"ReleaseName"_s, u"Artist"_s});
    Form().Lists().Active().SetSort({{u"ReleaseName"_s, true}});
    Form().Lists().Active().SetColumnFilter(u"Artist"_s, u"kiln"_s);
    FPrompt.FileAnswer = FDir.File(u"out.csv"_s);
    Do("actExportToCSV");
    EXPECT_EQ(Kit::ReadAll(FPrompt.FileAnswer).toStdString(),
              "Release name,Artist\r\nSalt Atlas 003,Northern Kiln\r\nSalt Atlas 001,Northern Kiln\r\n");
    FPrompt.FileAnswer = FDir.Path() + u"/no folder/out.csv"_s;
    Do("actExportToCSV");
    EXPECT_EQ(Bars().size(), 2);
}

TEST_F(Scenario, PresetsShapeTheTable)
{
    Open(6);
    for (const TTableViewCustomizationConf& preset : TablePresets()) {
        SCOPED_TRACE(preset.Name);
        Do(preset.OfTracks ? "actTracksView" : "actAlbumTableView");
        TAlbumTable& table = preset.OfTracks ? *Window().Tracks() : *Window().Table();
        preset.Apply(table, Form());
        Settle();
        EXPECT_EQ(ShownColumns(table).join(u' ').toStdString(), preset.VisibleColumns.join(u' ').toStdString())
            << "every column of a preset is there";
        EXPECT_EQ(Form().Lists().Active().List().Grouping(), preset.GroupedColumns);
        EXPECT_EQ(Form().Lists().Active().List().Sort().size(), static_cast<size_t>(preset.SortedColumns.size()));
    }
}

TEST_F(Scenario, TheTracksViewKeepsALayoutOfItsOwn)
{
    Open(4);
    Do("actAlbumTableView");
    ShowColumns(*Window().Table(), {u"ReleaseName"_s, u"Genre"_s});
    Do("actTracksView");
    ShowColumns(*Window().Tracks(), {u"TrackTitle"_s, u"ReleaseName"_s});
    Form().Lists().Active().SetSort({{u"TrackTitle"_s, true}});
    Form().Lists().Active().SetColumnFilter(u"TrackTitle"_s, u"song 1"_s);
    Form().Search().SaveFilter(u"firsts"_s);
    Reopen();
    EXPECT_EQ(State().section(u' ', 0, 0), u"tracks"_s);
    EXPECT_EQ(ShownColumns(*Window().Tracks()), (QStringList{u"TrackTitle"_s, u"ReleaseName"_s}));
    EXPECT_EQ(ShownColumns(*Window().Table()), (QStringList{u"ReleaseName"_s, u"Genre"_s}));
    EXPECT_EQ(Rows().front(), u"Song 3 of 003"_s);
    Form().Search().RecallFilter(u"firsts"_s);
    EXPECT_EQ(Rows().size(), 4);
}

TEST_F(Scenario, ThePaneEditsByKeyboardInAllItsPlaces)
{
    Open(4);
    int year = 1900;
    for (const char* place : {"actDetailPanelRight", "actDetailPanelBottom", "actDetailPanelTop"}) {
        Do(place);
        EXPECT_TRUE(Window().Pane()->isVisible());
        Window().Pane()->EditField(u"ReleaseYear"_s);
        auto* editor = Window().Pane()->findChild<TFieldEditor*>();
        ASSERT_TRUE(editor) << place;
        Press(u"Ctrl+A"_s);
        Type(QString::number(++year));
        Press(u"Return"_s);
        EXPECT_EQ(InFile(u"SELECT ReleaseYear FROM Releases2 WHERE ID = 1"_s), QString::number(year)) << place;
    }
    Do("actHideDetailPanel");
    EXPECT_FALSE(Window().Pane()->isVisible());
}

TEST_F(Scenario, LayoutsOfAnotherVersionAreLeftAside)
{
    Open(3, [] {
        for (const QString& key :
             {u"AlbumView.Layout"_s, u"TracksView.Layout"_s, u"SavedFilters"_s, u"VG.HiddenFields"_s})
            SettingsStore().WriteString(key, {}, u"v99|x"_s);
        Defaults().CurrentView = 4;
    });
    EXPECT_EQ(State(), u"tracks | Song 1 of 000 | 1"_s);
    EXPECT_GT(ShownColumns(*Window().Tracks()).size(), 3);
    EXPECT_TRUE(Form().Search().SavedFilters().empty());
}

TEST_F(Scenario, TheSearchBoxSearchesWhereItSays)
{
    Open(12);
    TSearchBox& box = *Window().Ribbon()->SearchBox();
    const auto search = [&](const QString& text) {
        Press(u"Ctrl+K"_s);
        Press(u"Ctrl+A"_s);
        Type(text);
        QSignalSpy filtered(&Form().Lists(), &TLists::filtersChanged);
        Press(u"Return"_s);
        if (filtered.isEmpty()) // the index is being built
            filtered.wait(20000);
        Settle();
    };
    search(u"song 3 004"_s); // a track title
    EXPECT_EQ(Chips(), QStringList{u"Everything=song 3 004"_s});
    EXPECT_EQ(Rows(), QStringList{u"Salt Atlas 004"_s});
    Do("actFilterStatusOther");
    Do("actTracksView");
    search(u"atlas 005"_s);
    EXPECT_EQ(Chips(), QStringList{u"Everything=atlas 005"_s});
    EXPECT_EQ(Rows().size(), 3) << "the tracks of the releases that were found";
    Do("actFilterStatusOther");
    box.SetCurrentField(u"TrackTitle"_s);
    ASSERT_EQ(box.CurrentField().Name, u"TrackTitle"_s) << "tracks are searched by the fields of tracks";
    search(u"song 2"_s);
    EXPECT_EQ(Rows().size(), 12);
    box.SetCurrentField(u"ReleaseName"_s);
    Do("actThumbView");
    EXPECT_EQ(box.CurrentField().Name, u"ReleaseName"_s) << "a field of both lists stays";
    search(u"001"_s);
    EXPECT_EQ(Rows(), QStringList{u"Salt Atlas 001"_s});
}

TEST_F(Scenario, EveryCommandIsInTheRibbonOrAMenu)
{
    Open(3);
    QSet<QString> reached;
    for (const TRibbonTab& tab : MainRibbonTable())
        for (const TRibbonGroup& group : tab.Groups)
            for (const TRibbonItem& item : group.Items) {
                reached << item.Action;
                for (const QString& action : item.Menu)
                    reached << action;
            }
    for (QMenu* menu : Window().findChildren<QMenu*>()) {
        Q_EMIT menu->aboutToShow();
        for (const QAction* action : menu->actions())
            reached << action->objectName();
    }
    for (const TActionDef& def : ActionDefs()) {
        const QString name = QString::fromLatin1(def.Name);
        if (name == "actCommandPalette"_L1 || name == "actToggleDebug"_L1) // keys alone
            continue;
        EXPECT_EQ(Window().Actions().Find(name)->isVisible(), Form().Actions().IsBound(name)) << def.Name;
        EXPECT_TRUE(reached.contains(name)) << def.Name;
    }
}

TEST_F(Scenario, WhatTheKeyboardReachesHasAName)
{
    Open(6);
    for (const char* view : {"actThumbView", "actCardsView", "actShelveView", "actAlbumTableView", "actTracksView"}) {
        Do(view);
        EXPECT_EQ(Nameless(Window()).toStdString(), "") << view;
    }
    Do("actAlbumTableView");
    Press(u"F6"_s);
    Press(u"Ctrl+F"_s);
    Form().Lists().Active().SetGrouping({u"Genre"_s});
    Form().Search().FilterStatus(u"In collection"_s);
    Settle();
    EXPECT_EQ(Nameless(Window()).toStdString(), "") << "with filter row, find panel, groups and chips";
    for (const char* dialog : {"actSort", "actAdvancedSearch", "actMultiEdit", "actOptions", "actExecSQL",
                               "actCustomizeColumns", "actEditGenres", "actCommandPalette", "actAbout", "actHelp"})
        InDialog(dialog, [&](QDialog& window) { EXPECT_EQ(Nameless(window).toStdString(), "") << dialog; });
}

TEST_F(Scenario, TilesAndGroupsTellWhatTheyAre)
{
    Open(6);
    for (const char* view : {"actThumbView", "actCardsView", "actShelveView"}) {
        Do(view);
        QAccessibleInterface* tiles = QAccessible::queryAccessibleInterface(Window().Tiles());
        ASSERT_TRUE(tiles) << view;
        EXPECT_EQ(tiles->role(), QAccessible::List) << view;
        ASSERT_EQ(tiles->childCount(), 6) << view;
        EXPECT_TRUE(tiles->child(2)->text(QAccessible::Name).contains(u"Salt Atlas 002"_s)) << view;
        EXPECT_TRUE(tiles->child(0)->state().selected) << view;
    }
    Do("actAlbumTableView");
    Form().Lists().Active().SetGrouping({u"Genre"_s});
    Settle();
    const QModelIndex group = Window().Table()->model()->index(0, 0);
    EXPECT_TRUE(group.data(Qt::AccessibleTextRole).toString().contains(u"Folk"_s))
        << group.data(Qt::AccessibleTextRole).toString().toStdString();
}

} // namespace Kestrune
