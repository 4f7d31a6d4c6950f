// SPDX-License-Identifier: GPL-3.0-or-later
#include "dmMain.h"
#include "uDefaults.h"
#include "uScriptedPrompt.h"
#include "uTestFiles.h"

#include <gtest/gtest.h>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

// Three releases of two tracks each with credits and a picture; the first is lent.
class DeletedRows : public testing::Test {
protected:
    DeletedRows()
    {
        Defaults() = MakeDefaults();
        FData.CreateNewDB(FPath, FData.GetNewDatabaseSQL());
        FData.ConnectToDB(FPath);
        for (const QString& name : {u"One"_s, u"Two"_s, u"Three"_s}) {
            TAlbumRelease release;
            release.SetItem2(u"ReleaseName"_s, name);
            release.Tracks.resize(2);
            release.Tracks[0].TrackName = u"First of "_s + name;
            FData.AddAlbumReleaseToDB(release, true);
        }
        FData.ExecSQL(u"INSERT INTO Friends2 (ID) VALUES (7);"
                      "INSERT INTO Loans2 (ID, FriendID, ReleaseId, LoanDate) VALUES (9, 7, 1, '2024-05-20');"
                      "INSERT INTO Musicians2 (ID, Musician, ReleaseId) VALUES (11, 'A', 1);"
                      "INSERT INTO Musicians2 (ID, Musician, TrackId) VALUES (12, 'B', 1);"
                      "INSERT INTO OtherPictures2 (ID, Picture, ReleaseId) VALUES (13, x'00ff00', 1);"
                      "UPDATE Releases2 SET Custom1 = '0042', Price = 0.1, LargePicture = x'0001'"_s);
    }
    // Everything that is in the collection's tables, with its storage classes.
    QString All()
    {
        TSQLiteConnection other;
        other.Open(FPath, somReadOnly);
        QStringList rows;
        for (const char* table : {"Releases2", "Tracks2", "Loans2", "Musicians2", "OtherPictures2", "Friends2"}) {
            TSQLiteStatement all = other.Prepare(u"SELECT * FROM %1 ORDER BY ID"_s.arg(QLatin1StringView(table)));
            while (all.Step())
                for (int column = 0; column < all.ColumnCount(); ++column)
                    rows << QString::number(all.Column(column).typeId()) + VarToStr(all.Column(column)) +
                                QString::fromLatin1(all.ColumnBlob(column).toHex());
        }
        EXPECT_FALSE(other.Prepare(u"PRAGMA foreign_key_check"_s).Step());
        return rows.join(u'|');
    }
    QString ReasonOf(qint64 number)
    {
        try {
            FData.UndoDeletion(number);
        } catch (const EDatabaseError& failure) {
            return failure.Text();
        }
        return {};
    }

    Kit::TTempDir FDir;
    Kit::TScriptedPrompt FPrompt;
    QString FPath = FDir.File(u"x.db"_s);
    TDataModuleMain FData{FPrompt};
};

} // namespace

TEST_F(DeletedRows, ComeBackAsTheyWereWithAllThatWentWithThem)
{
    const QString before = All();
    const qint64 number = FData.DeleteUndoably(FData.qReleasesMain, {1, 3}).value();
    EXPECT_EQ(FData.qReleasesMain.RecordCount(), 1);
    EXPECT_EQ(FData.ExecSQLAndGetID(u"SELECT count(*) FROM Musicians2"_s), 0);
    EXPECT_NE(All(), before);
    EXPECT_EQ(FData.UndoDeletion(number), 0);
    EXPECT_EQ(All(), before);
    FData.DeleteUndoably(FData.qReleasesMain, {2});
    const QString later = All();
    EXPECT_EQ(FData.UndoDeletion(number), 0) << "a second time does nothing";
    EXPECT_EQ(All(), later);
}

TEST_F(DeletedRows, OfTracksTakeTheirCreditsAlong)
{
    const QString before = All();
    FData.qTracksAll.Open();
    const qint64 first = FData.DeleteUndoably(FData.qTracksAll, {1}).value();
    const qint64 second = FData.DeleteUndoably(FData.qTracksAll, {2}).value();
    EXPECT_EQ(FData.UndoDeletion(first).value() + FData.UndoDeletion(second).value(), 0) << "each deletion by itself";
    EXPECT_EQ(All(), before);
}

TEST_F(DeletedRows, StayAwayWithWhatTheyBelongTo)
{
    const qint64 lent = FData.DeleteUndoably(FData.qReleasesMain, {1}).value();
    FData.ExecSQL(u"DELETE FROM Friends2"_s);
    EXPECT_EQ(FData.UndoDeletion(lent), 1) << "the loan";
    All();
    FData.qTracksAll.Open();
    const qint64 track = FData.DeleteUndoably(FData.qTracksAll, {1}).value();
    FData.ExecSQL(u"DELETE FROM Releases2 WHERE ID = 1"_s);
    EXPECT_EQ(ReasonOf(track), u"What it belongs to is gone too."_s);
}

TEST_F(DeletedRows, SayWhyTheyCannotComeBack)
{
    qint64 number = FData.DeleteUndoably(FData.qReleasesMain, {1}).value();
    FData.ExecSQL(u"UPDATE KestruneDeleted SET Made = Made - 100000"_s);
    EXPECT_EQ(ReasonOf(number), u"What was deleted is kept for a day."_s);
    number = FData.DeleteUndoably(FData.qReleasesMain, {2}).value();
    EXPECT_EQ(FData.ExecSQLAndGetID(u"SELECT count(DISTINCT Number) FROM KestruneDeleted"_s), 1) << "the old one went";
    FData.ExecSQL(u"ALTER TABLE Tracks2 ADD COLUMN Odd TEXT"_s);
    EXPECT_EQ(ReasonOf(number), u"The tables of the collection were changed since."_s);
    {
        Kit::TScriptedPrompt prompt;
        TDataModuleMain other{prompt}; // another start over the same file
        ASSERT_TRUE(other.ConnectToDB(FPath));
    }
    EXPECT_EQ(ReasonOf(number), u"What was deleted is kept until the collection is opened anew, here or elsewhere."_s);
    ASSERT_TRUE(FData.ConnectToDB(FPath));
    EXPECT_EQ(FData.ExecSQLAndGetID(u"SELECT count(*) FROM sqlite_master WHERE name LIKE 'Kestrune%'"_s), 0);
    EXPECT_EQ(FData.UndoDeletion(number), 0) << "the next start knows nothing of it";
}

TEST_F(DeletedRows, StopAtAnyStepLeavesAllAsItWas)
{
    for (int i = 0; i < 250; ++i)
        FData.ExecSQL(u"INSERT INTO Releases2 (ID, ReleaseName) VALUES (%1, 'n')"_s.arg(100 + i));
    FData.qReleasesMain.ApplyFilter();
    const std::vector<qint64> keys = FData.qReleasesMain.Keys();
    const auto stopAt = [](int step) { return [step](int, int) mutable { return --step > 0; }; };
    int steps = 0;
    const auto count = [&steps](int done, int all) {
        EXPECT_LE(done, all);
        ++steps;
        return true;
    };
    const QString before = All();
    const qint64 number = FData.DeleteUndoably(FData.qReleasesMain, keys, count).value();
    const QString after = All();
    EXPECT_GT(steps, 5);
    for (int step = 1; step < 4; ++step) {
        EXPECT_FALSE(FData.UndoDeletion(number, stopAt(step)));
        EXPECT_EQ(All(), after);
    }
    EXPECT_EQ(FData.UndoDeletion(number, count), 0);
    EXPECT_EQ(All(), before);
    FData.qReleasesMain.ApplyFilter();
    for (int step = 1; step < 5; ++step) {
        EXPECT_FALSE(FData.DeleteUndoably(FData.qReleasesMain, keys, stopAt(step)));
        EXPECT_EQ(All(), before);
        EXPECT_EQ(FData.qReleasesMain.Keys(), keys);
    }
}

} // namespace Kestrune
