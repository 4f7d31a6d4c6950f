// SPDX-License-Identifier: GPL-3.0-or-later
// The logic of the sort, multi-edit and SQL windows.
#include "frmExecSQL.h"
#include "frmMultiEdit.h"
#include "frmSorting.h"
#include "uFormKit.h"
#include "uTHStrings.h"

#include <gtest/gtest.h>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

const std::vector<TSortForm::TColumn> SortColumns{
    {u"Artist"_s, u"Artist"_s}, {u"Year"_s, u"ReleaseYear"_s}, {u"No."_s, u"No"_s}};

QStringList LevelsOf(const TSortForm& form)
{
    QStringList levels;
    for (const TSortForm::TLSort& level : form.Levels())
        levels << level.Column + u' ' + level.Order;
    return levels;
}

using FormsTest = Kit::TMainFormTest;

} // namespace

TEST(SortForm, LevelsComeFromTheViewAndGoBack)
{
    Defaults() = MakeDefaults();
    TSortForm form;
    const std::vector<TSortItem> sort{{u"ReleaseYear"_s, true}, {u"Hidden"_s, false}, {u"Artist"_s, false}};
    form.LoadFromCustomGridTableView(SortColumns, sort);
    EXPECT_EQ(LevelsOf(form), (QStringList{u"Year Descending"_s, u"Artist Ascending"_s}));
    EXPECT_EQ(form.ApplySorting(), (std::vector<TSortItem>{{u"ReleaseYear"_s, true}, {u"Artist"_s, false}}));
    form.actAddLevel();
    EXPECT_EQ(LevelsOf(form).back(), u"No. Ascending"_s) << "the first column that is not there yet";
    form.actAddLevel();
    EXPECT_EQ(form.Levels().size(), 3u) << "no more columns";
    form.actUp(2);
    form.actUp(0);
    form.actDown(2);
    EXPECT_EQ(LevelsOf(form), (QStringList{u"Year Descending"_s, u"No. Ascending"_s, u"Artist Ascending"_s}));
    form.SetLevel(1, {u"Artist"_s, u"Descending"_s});
    EXPECT_EQ(form.Check(), GetLanguageString(u"cSSortDlgDuplicateColumns"_s));
    form.actDeleteLevel({2, 0, 2, 9});
    EXPECT_TRUE(form.Check().isEmpty());
    EXPECT_EQ(form.ApplySorting(), (std::vector<TSortItem>{{u"Artist"_s, true}}));
    form.actDeleteLevel({0});
    EXPECT_TRUE(form.Check().isEmpty());
    EXPECT_TRUE(form.ApplySorting().empty()) << "no level ends sorting";
}

TEST_F(FormsTest, MultiEditSetsTheSameValuesByTheRulesOfTheCursor)
{
    OpenFilled();
    FData.ExecSQL(u"UPDATE Releases2 SET LastModified = '2001-01-01 00:00:00'"_s);
    FData.RefreshAll();
    const std::vector<qint64> two{FData.qReleasesMain.KeyAt(1), FData.qReleasesMain.KeyAt(2)};
    FForm.Lists().Releases().SetSelection(two);
    TMultiEditForm form(FForm.Lists().Active(), FForm.Edits());
    form.LoadFromCustomGridTableView({u"Label"_s, u"Genre"_s});
    ASSERT_GT(form.Fields().size(), 20u);
    EXPECT_EQ(form.Fields()[0].Name, u"Label"_s) << "columns in sight come first";
    for (const TFieldDef& field : form.Fields())
        EXPECT_FALSE(field.Name == u"ID"_s || field.Name == u"ThumbPicture"_s || field.Name == u"LastModified"_s ||
                     field.ReadOnly)
            << field.Name.toStdString();
    EXPECT_TRUE(form.Rows().empty()) << "nothing that OK could do unasked";
    EXPECT_TRUE(form.Question().isEmpty());
    form.actAdd();
    form.actAdd();
    EXPECT_EQ(form.Rows()[0].Field, u"Label"_s);
    EXPECT_EQ(form.Rows()[1].Field, u"Genre"_s);
    EXPECT_TRUE(form.GetList().empty()) << "an empty value changes nothing";
    form.SetValue(0, u"Blue Lamp"_s);
    form.SetField(1, u"Rating_Calc"_s);
    form.SetValue(1, 4.5);
    form.actAdd();
    form.SetField(2, u"ReleaseYear"_s);
    form.SetClear(2, true);
    form.actAdd();
    form.SetField(3, u"ReleaseName"_s);
    form.SetClear(3, true);
    EXPECT_FALSE(form.Rows()[3].Clear) << "a release has a name";
    form.actAdd();
    form.actRemove(4);
    EXPECT_EQ(form.Question(), u"Change 2 items?\nSet: Label, Rating\nCleared: Release year"_s);
    EXPECT_EQ(form.ApplyChanges(), 2);
    EXPECT_EQ(FForm.Lists().Releases().Selection(), two);
    EXPECT_EQ(FData.ExecSQLAndGetID(u"SELECT count(*) FROM Releases2 WHERE Label = 'Blue Lamp' AND Rating = 9"
                                    " AND ReleaseYear IS NULL AND substr(LastModified, 1, 4) > '2020'"_s),
              2);
    EXPECT_EQ(
        FData.ExecSQLAndGetID(u"SELECT count(*) FROM Releases2 WHERE LastModified LIKE '2001%' AND Label IS NULL"_s),
        2);
    EXPECT_EQ(FData.qReleasesMain.ValueAt(1, FData.qReleasesMain.FieldIndex(u"Label"_s)), TVariant(u"Blue Lamp"_s))
        << "the list shows it at once";
}

TEST_F(FormsTest, ACancelledMultiEditChangesNothing)
{
    OpenFilled();
    FData.ExecSQL(u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 300)"
                  " INSERT INTO Releases2(ReleaseName) SELECT 'copy ' || i FROM n"_s);
    FData.RefreshAll();
    FForm.Lists().Releases().SetSelection(FData.qReleasesMain.Keys());
    TMultiEditForm form(FForm.Lists().Active(), FForm.Edits());
    form.LoadFromCustomGridTableView({u"Label"_s});
    form.actAdd();
    form.SetValue(0, u"Blue Lamp"_s);
    int steps = 0;
    QObject::connect(&FForm, &TKRNMainForm::jobProgressed, &FForm, [&](const QString&, int value, int) {
        if (value >= 200 && ++steps == 1)
            FForm.Shell().CancelJob();
    });
    EXPECT_EQ(form.ApplyChanges(), 0);
    EXPECT_EQ(steps, 1);
    EXPECT_EQ(FData.ExecSQLAndGetID(u"SELECT count(*) FROM Releases2 WHERE Label = 'Blue Lamp'"_s), 0);
    EXPECT_FALSE(FForm.Shell().Working());
}

TEST_F(FormsTest, MultiEditOfTracksChangesTracks)
{
    OpenFilled();
    FForm.SetCurrentView(mvTracks);
    FForm.Lists().Tracks().SetSelection({FData.qTracksAll.KeyAt(0), FData.qTracksAll.KeyAt(3)});
    TMultiEditForm form(FForm.Lists().Active(), FForm.Edits());
    form.LoadFromCustomGridTableView({});
    for (const TFieldDef& field : form.Fields())
        EXPECT_FALSE(field.Name == u"ReleaseArtist"_s || field.Name == u"ReleaseId"_s) << field.Name.toStdString();
    form.actAdd();
    form.SetField(0, u"BPM"_s);
    form.SetValue(0, 120);
    EXPECT_EQ(form.ApplyChanges(), 2);
    EXPECT_EQ(FData.ExecSQLAndGetID(u"SELECT count(*) FROM Tracks2 WHERE BPM = 120"_s), 2);
}

TEST_F(FormsTest, ReadOnlySQLReadsAndRefusesEveryWayToWrite)
{
    OpenFilled();
    TExecSQLForm form(FData);
    const TSQLResult rows = form.Run(u"SELECT Artist, NULL AS x FROM Releases2 ORDER BY Artist; -- all"_s);
    EXPECT_EQ(rows.Error, QString());
    EXPECT_EQ(rows.Columns, (QStringList{u"Artist"_s, u"x"_s}));
    ASSERT_EQ(rows.Rows.size(), 4u);
    EXPECT_EQ(rows.Rows[0][0], u"Abba"_s);
    for (const QString& sql :
         {u"DELETE FROM Releases2"_s, u"UPDATE Releases2 SET Artist = 'x'"_s, u"DROP TABLE Loans"_s,
          u"INSERT INTO Friends(Name) VALUES ('x')"_s, u"CREATE TABLE t(a)"_s, u"PRAGMA user_version = 5"_s,
          u"PRAGMA writable_schema = 1"_s, u"PRAGMA journal_mode = DELETE"_s, u"ATTACH ':memory:' AS m"_s, u"VACUUM"_s,
          u"BEGIN"_s, u"SELECT 1; DELETE FROM Tracks2"_s, u"REINDEX"_s, u"PRAGMA incremental_vacuum"_s,
          u"PRAGMA wal_checkpoint"_s, u"WITH a AS (SELECT 1) DELETE FROM Releases2"_s}) {
        const TSQLResult result = form.Run(sql);
        EXPECT_FALSE(result.Error.isEmpty()) << sql.toStdString();
    }
    EXPECT_EQ(FData.ExecSQLAndGetID(u"SELECT count(*) FROM Releases2 JOIN Tracks2 ON ReleaseId = Releases2.ID"_s), 4);
    EXPECT_EQ(form.History().front(), u"WITH a AS (SELECT 1) DELETE FROM Releases2"_s);
    EXPECT_TRUE(form.Run(u"   \n"_s).Error.isEmpty());
    EXPECT_FALSE(form.Run(u"SELECT * FROM nowhere"_s).Error.isEmpty());
    // The program itself still writes.
    EXPECT_TRUE(FForm.Lists().Releases().EditField(FData.qReleasesMain.KeyAt(0), u"Label"_s, u"L"_s));
}

TEST_F(FormsTest, WritingSQLIsOneTransactionAndCanBeStopped)
{
    OpenFilled();
    TExecSQLForm form(FData);
    form.SetCanWrite(true);
    const TSQLResult done =
        form.Run(u"UPDATE Releases2 SET Label = 'x'; DELETE FROM Tracks2 WHERE ID = 1; SELECT 5 AS five"_s);
    EXPECT_EQ(done.Error, QString());
    EXPECT_EQ(done.Changed, 5);
    EXPECT_EQ(done.Columns, QStringList{u"five"_s});
    const TSQLResult failed = form.Run(u"UPDATE Releases2 SET Label = 'y'; SELECT * FROM nowhere"_s);
    EXPECT_FALSE(failed.Error.isEmpty());
    EXPECT_EQ(FData.ExecSQLAndGetID(u"SELECT count(*) FROM Releases2 WHERE Label = 'x'"_s), 4) << "undone as a whole";
    const QString endless = u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) SELECT i FROM n"_s;
    int asked = 0;
    const TSQLResult stopped = form.Run(endless, [&] { return ++asked < 3; });
    EXPECT_FALSE(stopped.Error.isEmpty());
    const TSQLResult cut = form.Run(endless + u" LIMIT 10005"_s);
    EXPECT_TRUE(cut.Cut);
    EXPECT_EQ(cut.Rows.size(), 10000u);
    FData.ExecSQL(u"UPDATE Releases2 SET Label = 'z'"_s); // no transaction was left open
    FData.CommitTransaction();
}

} // namespace Kestrune
