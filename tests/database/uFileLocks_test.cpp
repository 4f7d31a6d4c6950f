// SPDX-License-Identifier: GPL-3.0-or-later
#include "dmMain.h"
#include "uByteReader.h"
#include "uDBValidator.h"
#include "uDefaults.h"
#include "uFileLocks.h"
#include "uFilePath.h"
#include "uScriptedPrompt.h"
#include "uTestFiles.h"

#include <QFile>
#include <QProcess>

#include <gtest/gtest.h>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

class Locks : public testing::Test {
protected:
    Locks()
    {
        Defaults() = MakeDefaults();
        FData.CreateNewDB(FPath, FData.GetNewDatabaseSQL());
        FOpen = FData.ConnectToDB(FPath);
    }
    void SetUp() override { ASSERT_TRUE(FOpen && Held()); }

    bool Held() const { return HoldsLockOn(TextToPath(FPath)) && HoldsLockOn(TextToPath(FPath + u"-shm"_s)); }
    // What a careless reader in this process does.
    void OpenAndClose() const { Kit::ReadAll(FPath); }
    void Add(const QString& name)
    {
        TAlbumRelease release;
        release.SetItem2(u"ReleaseName"_s, name);
        FData.AddAlbumReleaseToDB(release, true);
    }
    // Another program adds a row and closes the file, and with it all that it takes for left behind.
    bool AddElsewhere(const QString& name) const
    {
        const QString program = u"import sqlite3,sys\nc = sqlite3.connect(sys.argv[1], timeout=5)\n"
                                "c.execute(\"INSERT INTO Releases2(ReleaseName) VALUES (?)\", (sys.argv[2],))\n"
                                "c.commit()\nc.close()\n"_s;
        return Kit::RunProgram(u"python3"_s, {u"-c"_s, program, FPath, name});
    }
    QString Integrity() const
    {
        TSQLiteConnection file;
        file.Open(FPath, somReadOnly);
        return VarToStr(file.Scalar(u"PRAGMA integrity_check"_s));
    }

    Kit::TTempDir FDir;
    Kit::TScriptedPrompt FPrompt;
    TDataModuleMain FData{FPrompt};
    QString FPath = FDir.File(u"records.db"_s);
    bool FOpen = false;
};

} // namespace

TEST_F(Locks, AreKeptByAllThatTheProgramDoesWithFiles)
{
    const QString link = FDir.File(u"link.db"_s);
    QFile::link(FPath, link);
    const std::pair<const char*, std::function<void()>> cases[] = {
        {"file test", [&] { EXPECT_EQ(ValidateDatabaseFile(FPath), dvrOK); }},
        {"file test by a link", [&] { EXPECT_EQ(ValidateDatabaseFile(link), dvrOK); }},
        {"byte reader", [&] { EXPECT_EQ(TFileSource::Open(TextToPath(FPath)), nullptr); }},
        {"byte reader on the log", [&] { EXPECT_EQ(TFileSource::Open(TextToPath(FPath + u"-wal"_s)), nullptr); }},
        {"copy", [&] { FData.CopyTo(FDir.File(u"copy.db"_s)); }},
        {"refused opening", [&] { EXPECT_FALSE(FData.ConnectToDB(FDir.File(u"none.db"_s))); }},
        {"opening again", [&] { EXPECT_TRUE(FData.ConnectToDB(link)); }},
        {"own SQL", [&] { FData.RunQuery(u"SELECT 1"_s, false, {}, [](TSQLiteStatement&, bool) {}); }},
        {"optimizing", [&] { FData.VacuumDB(); }},
    };
    for (const auto& [name, act] : cases) {
        act();
        EXPECT_TRUE(Held()) << name;
    }
    FData.Disconnect();
    EXPECT_NE(TFileSource::Open(TextToPath(FPath)), nullptr) << "once it is closed anybody may read it";
}

TEST_F(Locks, ThatWereLostAreTakenAgain)
{
    Add(u"before"_s);
    OpenAndClose();
    ASSERT_FALSE(Held()) << "this system keeps them, and the test proves nothing";
    FData.RestoreLocks();
    EXPECT_TRUE(Held());
    Add(u"after"_s);
    EXPECT_EQ(FData.qReleasesMain.RecordCount(), 2);
    EXPECT_EQ(Integrity(), u"ok"_s);
}

TEST_F(Locks, ATransactionThatLostItsLocksIsRefusedAndNothingOfItIsStored)
{
    FData.StartTransaction();
    Add(u"in work"_s);
    OpenAndClose();
    EXPECT_THROW(FData.RestoreLocks(), EDatabaseError);
    EXPECT_TRUE(Held());
    EXPECT_EQ(FData.ExecSQLAndGetID(u"SELECT count(*) FROM Releases2"_s), 0);
    Add(u"later"_s);
    EXPECT_EQ(FData.ExecSQLAndGetID(u"SELECT count(*) FROM Releases2"_s), 1);
}

TEST_F(Locks, TwoProgramsWriteInTurnsWhileFilesAreOpenedAndClosed)
{
    for (int round = 0; round < 6; ++round) {
        Add(u"ours %1"_s.arg(round));
        OpenAndClose();
        FData.RestoreLocks(); // as after each dialog
        ASSERT_TRUE(AddElsewhere(u"theirs %1"_s.arg(round)));
    }
    FData.Disconnect();
    TSQLiteConnection file;
    file.Open(FPath, somReadOnly);
    EXPECT_EQ(file.Scalar(u"SELECT count(*) FROM Releases2"_s).toInt(), 12);
    EXPECT_EQ(Integrity(), u"ok"_s);
}

} // namespace Kestrune
