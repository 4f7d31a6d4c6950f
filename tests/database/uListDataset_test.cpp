// SPDX-License-Identifier: GPL-3.0-or-later
// Groups, known orders and texts of the long lists.
#include "dmMain.h"
#include "uDefaults.h"
#include "uScriptedPrompt.h"
#include "uTestFiles.h"

#include <gtest/gtest.h>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

class ListDataset : public testing::Test {
protected:
    ListDataset()
    {
        Defaults() = MakeDefaults();
        FData.CreateNewDB(FPath, FData.GetNewDatabaseSQL());
        FData.ConnectToDB(FPath);
    }
    void Add(const QString& artist, const QString& name, const QString& genre, int tracks = 0)
    {
        TAlbumRelease release;
        release.SetItem2(u"Artist"_s, artist);
        release.SetItem2(u"ReleaseName"_s, name);
        release.SetItem2(u"Genre"_s, genre);
        for (int i = 0; i < tracks; ++i) {
            TAlbumTrack track;
            track.TrackName = u"%1 %2"_s.arg(name).arg(i);
            release.Tracks.push_back(track);
        }
        FData.AddAlbumReleaseToDB(release, true);
    }
    void FillSix()
    {
        Add(u"b"_s, u"one"_s, u"Rock"_s, 2);
        Add(u"a"_s, u"two"_s, u"pop"_s, 1);
        Add(u"c"_s, u"three"_s, u"Pop"_s);
        Add(u"a"_s, u"four"_s, u""_s);
        Add(u"b"_s, u"five"_s, u"Pop"_s);
        Add(u"B"_s, u"six"_s, u"Rock"_s);
    }
    QStringList Names(TListDataset& list)
    {
        QStringList names;
        for (int row = 0; row < list.RecordCount(); ++row)
            names << list.ValueAt(row, list.FieldIndex(u"ReleaseName"_s)).toString();
        return names;
    }
    QStringList Groups()
    {
        QStringList texts;
        for (const TListGroup& group : Main().Groups())
            texts << u"%1%2@%3+%4^%5"_s.arg(QString(group.Level, u'.'), VarToStr(group.Value))
                         .arg(group.First)
                         .arg(group.Count)
                         .arg(group.Parent);
        return texts;
    }
    TListDataset& Main() { return FData.qReleasesMain; }

    Kit::TTempDir FDir;
    Kit::TScriptedPrompt FPrompt;
    QString FPath = FDir.File(u"x.db"_s);
    TDataModuleMain FData{FPrompt};
};

} // namespace

TEST_F(ListDataset, GroupsCountTheirRowsOnEveryLevel)
{
    FillSix();
    Main().SetSort({{u"ReleaseName"_s, false}});
    Main().SetGrouping({u"Genre"_s});
    EXPECT_EQ(Names(Main()), (QStringList{u"four"_s, u"five"_s, u"three"_s, u"two"_s, u"one"_s, u"six"_s}));
    EXPECT_EQ(Groups(), (QStringList{u"@0+1^-1"_s, u"Pop@1+3^-1"_s, u"Rock@4+2^-1"_s}))
        << "case parts no groups, the sort holds within them";
    Main().SetGrouping({u"Genre"_s, u"Artist"_s});
    EXPECT_EQ(Names(Main()), (QStringList{u"four"_s, u"two"_s, u"five"_s, u"three"_s, u"one"_s, u"six"_s}));
    EXPECT_EQ(Groups(), (QStringList{u"@0+1^-1"_s, u".a@0+1^0"_s, u"pop@1+3^-1"_s, u".a@1+1^2"_s, u".b@2+1^2"_s,
                                     u".c@3+1^2"_s, u"Rock@4+2^-1"_s, u".b@4+2^6"_s}));
    Main().Filter().Add({u"Artist"_s, foEquals, u"a"_s, {}});
    Main().SetFilterActive(true);
    Main().ApplyFilter();
    EXPECT_EQ(Groups(), (QStringList{u"@0+1^-1"_s, u".a@0+1^0"_s, u"pop@1+1^-1"_s, u".a@1+1^2"_s}));
    Main().Filter().Clear();
    Main().ApplyFilter();
    Main().SetSort({{u"Genre"_s, true}});
    EXPECT_EQ(Names(Main()).front(), u"one"_s) << "a group column that is sorted by keeps its direction";
    Main().SetGrouping({u"Gone"_s});
    EXPECT_TRUE(Main().Groups().empty());
    Main().SetGrouping({});
    EXPECT_TRUE(Main().Grouping().isEmpty());
    EXPECT_EQ(Main().RecordCount(), 6);
}

TEST_F(ListDataset, ARemovedRowLeavesItsGroupsRight)
{
    FillSix();
    Main().SetGrouping({u"Genre"_s});
    Main().DeleteKeys({Main().KeyAt(1), Main().KeyAt(5)});
    EXPECT_EQ(Main().RecordCount(), 4);
    int rows = 0;
    for (const TListGroup& group : Main().Groups()) {
        EXPECT_EQ(group.First, rows);
        rows += group.Count;
    }
    EXPECT_EQ(rows, 4);
}

TEST_F(ListDataset, AKnownOrderIsNotUsedAfterAnyWrite)
{
    FillSix();
    const auto byName = [&] {
        Main().SetSort({});
        Main().SetSort({{u"ReleaseName"_s, false}});
        return Main().Keys();
    };
    using TKeys = std::vector<qint64>;
    EXPECT_EQ(byName(), (TKeys{5, 4, 1, 6, 3, 2}));
    EXPECT_EQ(byName(), (TKeys{5, 4, 1, 6, 3, 2}));
    Main().Locate(1);
    Main().Edit();
    Main().SetValue(u"ReleaseName"_s, u"zero"_s);
    Main().Post();
    EXPECT_EQ(byName(), (TKeys{5, 4, 6, 3, 2, 1})) << "after an edit of its own";
    FData.ExecSQL(u"UPDATE Releases2 SET ReleaseName = 'again' WHERE ID = 2"_s);
    EXPECT_EQ(byName(), (TKeys{2, 5, 4, 6, 3, 1})) << "after a statement";
    {
        TSQLiteConnection other;
        other.Open(FPath);
        other.Exec(u"UPDATE Releases2 SET ReleaseName = 'zz' WHERE ID = 2"_s);
    }
    EXPECT_EQ(byName(), (TKeys{5, 4, 6, 3, 1, 2})) << "after another process";
    Add(u"n"_s, u"new"_s, u""_s);
    EXPECT_EQ(byName(), (TKeys{5, 4, 7, 6, 3, 1, 2}));
    Main().Filter().Add({u"Artist"_s, foEquals, u"a"_s, {}});
    Main().SetFilterActive(true);
    Main().ApplyFilter();
    EXPECT_EQ(byName(), (TKeys{4, 2})) << "another filter is another order";
}

TEST_F(ListDataset, RowsWithATextAreFoundInShownColumns)
{
    FillSix();
    Main().SetSort({{u"ReleaseName"_s, false}}); // five four one six three two
    EXPECT_EQ(Main().RowsWithText({u"ReleaseName"_s}, u"O"_s), (std::vector<int>{1, 2, 5}));
    EXPECT_EQ(Main().RowsWithText({u"ReleaseName"_s, u"Genre"_s}, u"ock"_s), (std::vector<int>{2, 3}));
    EXPECT_TRUE(Main().RowsWithText({u"ReleaseName"_s}, u"%"_s).empty());
    EXPECT_TRUE(Main().RowsWithText({u"Gone"_s}, u"o"_s).empty());
    EXPECT_TRUE(Main().RowsWithText({}, u"o"_s).empty());
}

TEST_F(ListDataset, WalkingGivesEveryRowInOrderAndStops)
{
    FillSix();
    Main().SetGrouping({u"Genre"_s});
    const std::vector<int> fields{Main().FieldIndex(u"ReleaseName"_s), Main().FieldIndex(u"TotalTracksCount"_s),
                                  Main().FieldIndex(u"Rating_Calc"_s)};
    QStringList names;
    Main().WalkRows(fields, [&](int row, const std::vector<TVariant>& values) {
        EXPECT_EQ(row, names.size());
        for (size_t i = 0; i < fields.size(); ++i)
            EXPECT_TRUE(VarEquals(values[i], Main().ValueAt(row, fields[i]))) << row << " " << i;
        names << values[0].toString();
        return names.size() < 4;
    });
    EXPECT_EQ(names, Names(Main()).mid(0, 4));
}

} // namespace Kestrune
