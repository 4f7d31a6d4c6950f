// SPDX-License-Identifier: GPL-3.0-or-later
// What is in work belongs to the record on which it was begun, whatever lists, filters and rollbacks do meanwhile.
#include "dmMain.h"
#include "uDefaults.h"
#include "uEditSession.h"
#include "uScriptedPrompt.h"
#include "uSearchIndex.h"
#include "uTestFiles.h"

#include <QCoreApplication>
#include <QEventLoop>

#include <gtest/gtest.h>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

class EditSession : public testing::Test {
protected:
    EditSession()
    {
        Defaults() = MakeDefaults();
        FData.CreateNewDB(FPath, FData.GetNewDatabaseSQL());
        FData.ConnectToDB(FPath);
        for (const QString& name : {u"one"_s, u"two"_s, u"three"_s}) {
            TAlbumRelease release;
            release.SetItem2(u"ReleaseName"_s, name);
            release.Tracks.resize(2);
            FData.AddAlbumReleaseToDB(release, true);
        }
        FData.qReleasesMain.First();
    }
    void ShowOnly(qint64 release)
    {
        TListDataset& list = FData.qReleasesMain;
        list.Filter().Clear();
        list.Filter().Add({u"ID"_s, foEquals, release, {}});
        list.SetFilterActive(true);
        list.ApplyFilter();
    }
    // Read by another connection: what is committed.
    QString InFile(const QString& sql)
    {
        TSQLiteConnection other;
        other.Open(FPath, somReadOnly);
        return VarToStr(other.Scalar(sql));
    }
    QString Name(int row)
    {
        return VarToStr(FData.qReleasesMain.ValueAt(row, FData.qReleasesMain.FieldIndex(u"ReleaseName"_s)));
    }

    Kit::TTempDir FDir;
    Kit::TScriptedPrompt FPrompt;
    TDataModuleMain FData{FPrompt};
    QString FPath = FDir.File(u"records.db"_s);
};

} // namespace

TEST_F(EditSession, ChildrenOfAReleaseThatTheFilterHidesBelongToIt)
{
    ShowOnly(1);
    TEditSession session(FData, 2);
    FData.qTracksDetail.Append();
    FData.qTracksDetail.SetValue(u"TrackTitle"_s, u"new"_s);
    FData.qMusiciansPerRelease.Append();
    FData.qMusiciansPerRelease.SetValue(u"Musician"_s, u"new"_s);
    FData.qOtherPictures.Append();
    FData.qOtherPictures.SetValue(u"Picture"_s, QByteArray("bytes"));
    FData.qReleasesMain.First(); // the list moves on its own
    session.Post();
    EXPECT_EQ(InFile(u"SELECT ReleaseId FROM Tracks2 WHERE TrackTitle = 'new'"_s), u"2"_s);
    EXPECT_EQ(InFile(u"SELECT ReleaseId FROM Musicians2"_s), u"2"_s);
    EXPECT_EQ(InFile(u"SELECT ReleaseId FROM OtherPictures2"_s), u"2"_s);
}

TEST_F(EditSession, SelectingTheSameReleaseKeepsWhatWasTyped)
{
    FData.SelectRelease(2);
    FData.qReleaseInfo.SetValue(u"Label"_s, u"typed"_s);
    FData.SelectRelease(2);
    EXPECT_EQ(FData.qReleaseInfo.State(), dsEdit);
    FData.SelectRelease(3);
    EXPECT_EQ(InFile(u"SELECT group_concat(ID) FROM Releases2 WHERE Label = 'typed'"_s), u"2"_s);
}

TEST_F(EditSession, MovingPostsAndNeverWritesIntoAnotherRecord)
{
    TListDataset& list = FData.qReleasesMain;
    list.MoveTo(0);
    list.SetValue(u"Label"_s, u"first"_s);
    list.MoveTo(1);
    EXPECT_EQ(list.State(), dsBrowse);
    list.SetValue(u"Label"_s, u"second"_s);
    ShowOnly(3); // the row in work leaves the list
    list.SetFilterActive(false);
    list.ApplyFilter();
    EXPECT_EQ(InFile(u"SELECT group_concat(L) FROM (SELECT ifnull(Label, '-') L FROM Releases2 ORDER BY ID)"_s),
              u"first,second,-"_s);
    list.MoveTo(2);
    list.SetValue(u"ReleaseName"_s, TVariant()); // refused by the file
    EXPECT_THROW(list.MoveTo(0), EDatabaseError);
    EXPECT_EQ(list.RecNo(), 2);
    EXPECT_EQ(list.State(), dsEdit) << "what was typed is still there";
}

TEST_F(EditSession, AMasterThatMovesNeitherDropsNorCarriesTheEditOfADetail)
{
    for (const bool controls : {true, false}) {
        SCOPED_TRACE(controls);
        FData.qReleasesMain.MoveTo(0);
        FData.qTracksDetail.First();
        const qint64 track = FData.qTracksDetail.CurrentKey();
        FData.qTracksDetail.SetValue(u"TrackTitle"_s, u"edited %1"_s.arg(controls));
        if (!controls)
            FData.DisableControlsAll();
        FData.qReleasesMain.MoveTo(1);
        EXPECT_EQ(FData.qTracksDetail.RecordCount(), 2);
        FData.qTracksDetail.Post();
        if (!controls)
            FData.EnableControlsAll();
        EXPECT_EQ(InFile(u"SELECT group_concat(ID) FROM Tracks2 WHERE TrackTitle = 'edited %1'"_s.arg(controls)),
                  QString::number(track));
        EXPECT_EQ(FData.qTracksDetail.ValueAt(0, FData.qTracksDetail.FieldIndex(u"ReleaseId"_s)).toInt(), 2)
            << "then it follows";
    }
}

TEST_F(EditSession, StoringAReleaseLeavesWhatIsInWork)
{
    FData.qReleasesMain.MoveTo(1);
    FData.qReleasesMain.SetValue(u"Label"_s, u"in the list"_s);
    FData.SelectRelease(2);
    FData.qReleaseInfo.SetValue(u"Genre"_s, u"in the pane"_s);
    FData.qTracksDetail.First();
    FData.qTracksDetail.SetValue(u"TrackTitle"_s, u"in the tracks"_s);
    TAlbumRelease release;
    release.SetItem2(u"ReleaseName"_s, u"stored meanwhile"_s);
    release.Tracks.resize(3);
    FData.AddAlbumReleaseToDB(release, true);
    FData.qTracksDetail.Post();
    FData.qReleaseInfo.Post();
    FData.qReleasesMain.Post();
    EXPECT_EQ(InFile(u"SELECT R.Label || ', ' || R.Genre || ', ' || T.TrackTitle FROM Releases2 R JOIN Tracks2 T ON "
                     "T.ReleaseId = R.ID WHERE R.ID = 2 ORDER BY T.ID"_s),
              u"in the list, in the pane, in the tracks"_s);
    EXPECT_EQ(FData.qReleasesMain.RecordCount(), 4);
}

TEST_F(EditSession, AnEditWritesWhatWasEditedAndNothingElse)
{
    TListDataset& list = FData.qReleasesMain;
    list.MoveTo(1);
    list.Edit();
    list.SetValue(u"Label"_s, u"ours"_s);
    {
        TSQLiteConnection other;
        other.Open(FPath);
        other.Exec(u"UPDATE Releases2 SET Rating = 9, Genre = 'theirs' WHERE ID = 2"_s);
    }
    list.Post();
    EXPECT_EQ(InFile(u"SELECT Label || Genre || Rating FROM Releases2 WHERE ID = 2"_s), u"ourstheirs9"_s);
    EXPECT_EQ(list.Value(u"Rating_Calc"_s).toDouble(), 4.5) << "and the list knows it";
}

TEST_F(EditSession, ARatingGivenInAnotherListUnderAFilterStays)
{
    TListDataset& list = FData.qReleasesMain;
    list.MoveTo(1);
    ASSERT_NE(list.Value(u"Rating_Calc"_s).toDouble(), 4.0); // read, and kept over the filter
    ShowOnly(1);
    FData.SelectRelease(2);
    FData.qReleaseInfo.SetValue(u"Rating_Calc"_s, 4.0);
    FData.qReleaseInfo.Post();
    list.SetFilterActive(false);
    list.ApplyFilter();
    list.Locate(2);
    EXPECT_EQ(list.Value(u"Rating_Calc"_s).toDouble(), 4.0);
    list.SetValue(u"Label"_s, u"x"_s);
    list.Post();
    EXPECT_EQ(InFile(u"SELECT Rating FROM Releases2 WHERE ID = 2"_s), u"8"_s);
}

TEST_F(EditSession, ARecordThatIsGoneIsNotedAndNothingIsLost)
{
    TListDataset& list = FData.qReleasesMain;
    list.MoveTo(1);
    list.SetValue(u"Label"_s, u"typed"_s);
    {
        TSQLiteConnection other;
        other.Open(FPath);
        other.Exec(u"DELETE FROM Releases2 WHERE ID = 2"_s);
    }
    EXPECT_THROW(list.Post(), EDatabaseError);
    EXPECT_EQ(list.State(), dsEdit);
    EXPECT_EQ(list.Value(u"Label"_s), TVariant(u"typed"_s));
}

TEST_F(EditSession, OneAtATime)
{
    {
        TEditSession session(FData, 2);
        EXPECT_THROW(TEditSession(FData, 3), EDatabaseError);
        FData.qReleaseInfo.SetValue(u"Label"_s, u"not posted"_s);
    }
    TEditSession session(FData, 3);
    EXPECT_EQ(InFile(u"SELECT count(*) FROM Releases2 WHERE Label IS NOT NULL"_s), u"0"_s)
        << "dropped with its session";
}

TEST_F(EditSession, ARollbackIsSeenEverywhere)
{
    FData.qTracksAll.Open();
    TSearchIndex index(FData, FDir.Path());
    QEventLoop building;
    QObject::connect(&index, &TSearchIndex::built, &building, &QEventLoop::quit);
    index.Open();
    building.exec();
    ASSERT_TRUE(index.Ready());
    FData.StartTransaction();
    FData.qReleasesMain.Locate(2);
    FData.qReleasesMain.SetValue(u"ReleaseName"_s, u"undone"_s);
    FData.qReleasesMain.Post();
    FData.qReleasesMain.DeleteKeys({3});
    TAlbumRelease release;
    release.SetItem2(u"ReleaseName"_s, u"undone too"_s);
    FData.AddAlbumReleaseToDB(release, true);
    FData.SelectRelease(2);
    QCoreApplication::processEvents();
    EXPECT_EQ(Name(1), u"undone"_s);
    EXPECT_EQ(FData.qTracksAll.ValueAt(2, FData.qTracksAll.FieldIndex(u"ReleaseName"_s)).toString(), u"undone"_s);
    EXPECT_EQ(index.Find(u"undone"_s)->size(), 0u) << "nothing is found that may still go";
    std::vector<TChanges> told;
    QObject::connect(&FData, &TDataModuleMain::changed, &building,
                     [&](const TChanges& changes) { told.push_back(changes); });
    FData.RollbackTransaction();
    EXPECT_EQ(Name(1), u"two"_s);
    EXPECT_EQ(FData.qReleasesMain.Keys(), (std::vector<qint64>{1, 2, 3}));
    EXPECT_EQ(FData.qReleaseInfo.Value(u"ReleaseName"_s).toString(), u"two"_s);
    EXPECT_EQ(FData.qTracksAll.RecordCount(), 6);
    EXPECT_EQ(FData.qTracksAll.ValueAt(2, FData.qTracksAll.FieldIndex(u"ReleaseName"_s)).toString(), u"two"_s);
    QCoreApplication::processEvents();
    ASSERT_EQ(told.size(), 1u);
    EXPECT_TRUE(told[0].Undone);
    EXPECT_EQ(*index.Find(u"two"_s), std::vector<qint64>{2});
    EXPECT_TRUE(index.Find(u"undone"_s)->empty());
}

TEST_F(EditSession, CachedEditsAreAppliedOrDroppedAsOne)
{
    TDetailDataset& friends = FData.qFriends;
    FData.ExecSQL(u"INSERT INTO Friends2(ID, Name) VALUES (1, 'Ada'), (2, 'Bo'), (3, 'Cy')"_s);
    friends.Refresh();
    const auto names = [&] {
        QStringList all;
        for (int row = 0; row < friends.RecordCount(); ++row)
            all << friends.ValueAt(row, friends.FieldIndex(u"Name"_s)).toString();
        return all.join(u',');
    };
    const auto edit = [&] {
        friends.SetCachedUpdates(true);
        friends.Locate(1);
        friends.SetValue(u"Name"_s, u"Ada Lovelace"_s);
        friends.Post();
        friends.Append();
        friends.SetValue(u"Name"_s, u"Di"_s);
        friends.Post();
        friends.Append();
        friends.SetValue(u"Name"_s, u"dropped"_s);
        friends.Post();
        friends.Delete();
        friends.DeleteKeys({3});
        EXPECT_EQ(names(), u"Ada Lovelace,Bo,Di"_s);
        EXPECT_TRUE(friends.HasUpdates());
    };
    const QString inFile = u"SELECT group_concat(Name) FROM Friends2"_s;
    edit();
    EXPECT_EQ(InFile(inFile), u"Ada,Bo,Cy"_s);
    friends.CancelUpdates();
    EXPECT_EQ(names(), u"Ada,Bo,Cy"_s);
    edit();
    FData.ExecSQL(u"CREATE TRIGGER bad BEFORE INSERT ON Friends2 BEGIN SELECT RAISE(ABORT, 'no'); END"_s);
    EXPECT_THROW(friends.ApplyUpdates(), EDatabaseError);
    EXPECT_EQ(InFile(inFile), u"Ada,Bo,Cy"_s) << "all or nothing";
    EXPECT_EQ(names(), u"Ada Lovelace,Bo,Di"_s) << "and nothing that was typed is lost";
    FData.ExecSQL(u"DROP TRIGGER bad"_s);
    friends.ApplyUpdates();
    EXPECT_EQ(InFile(inFile), u"Ada Lovelace,Bo,Di"_s);
    EXPECT_EQ(names(), u"Ada Lovelace,Bo,Di"_s);
    EXPECT_FALSE(friends.HasUpdates());
}

} // namespace Kestrune
