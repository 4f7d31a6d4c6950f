// SPDX-License-Identifier: GPL-3.0-or-later
#include "dmMain.h"
#include "uDBValidator.h"
#include "uDefaults.h"
#include "uOldFiles.h"
#include "uSchema.h"
#include "uScriptedPrompt.h"
#include "uTestFiles.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

class Upgrade : public testing::Test {
protected:
    Upgrade() { Defaults() = MakeDefaults(); }

    TVariant Scalar(const QString& sql)
    {
        TSQLiteConnection connection;
        connection.Open(FPath, somReadOnly);
        return connection.Scalar(sql);
    }
    int IndexCount()
    {
        return Scalar(u"SELECT count(*) FROM sqlite_master WHERE type='index' AND name LIKE 'idx_%'"_s).toInt();
    }

    void MakeVersion(const QString& version) { Kit::MakeOldCollection(FPath, version); }

    Kit::TTempDir FDir;
    Kit::TScriptedPrompt FPrompt;
    QString FPath = FDir.File(u"old.db"_s);
};

} // namespace

TEST_F(Upgrade, TheFirstFormatIsConvertedAfterAQuestion)
{
    Kit::MakeOldCollection(FPath, u"1000"_s);
    const QByteArray original = Kit::ReadAll(FPath);
    TDataModuleMain data(FPrompt);
    ASSERT_TRUE(data.ConnectToDB(FPath));
    EXPECT_EQ(FPrompt.Questions.size(), 1);
    EXPECT_EQ(data.GetDBVersion(), 3001);
    const std::pair<QString, TVariant> cases[] = {{u"MediaType"_s, u"Vinyl"_s},
                                                  {u"Genre"_s, u"Rock; Pop/Jazz\\Blues|Soul"_s},
                                                  {u"Genres"_s, u"Rock, Pop,Jazz,Blues,Soul"_s},
                                                  {u"Location"_s, u"Attic"_s},
                                                  {u"Status"_s, u"Wanted item"_s},
                                                  {u"Condition"_s, u"Good"_s},
                                                  {u"Channels"_s, u"Mono"_s},
                                                  {u"Orchestra"_s, u"Orch"_s},
                                                  {u"hex(LargePicture)"_s, u"AA"_s},
                                                  {u"hex(ThumbPicture)"_s, u"BB"_s},
                                                  {u"CatalogNO"_s, {}},
                                                  {u"Rating"_s, 7},
                                                  {u"OriginalReleaseYear"_s, 1977},
                                                  {u"OriginalReleaseDate"_s, u"1977-05-01"_s},
                                                  {u"Artists"_s, u"Band"_s}};
    for (const auto& [column, expected] : cases)
        EXPECT_TRUE(VarEquals(Scalar(u"SELECT %1 FROM Releases2 WHERE ID = 11"_s.arg(column)), expected))
            << column.toStdString();
    EXPECT_EQ(Scalar(u"SELECT Genre FROM Tracks2 WHERE ID = 21"_s).toString(), u"Rock; Pop/Jazz\\Blues|Soul"_s);
    EXPECT_EQ(Scalar(u"SELECT Instrument FROM Musicians2 WHERE ID = 31"_s).toString(), u"Koto"_s);
    EXPECT_EQ(Scalar(u"SELECT FriendID FROM Loans2 WHERE ID = 51"_s).toInt(), 4);
    EXPECT_EQ(Scalar(u"SELECT count(*) FROM OtherPictures2, Friends2, Releases2"_s).toInt(), 2);
    EXPECT_EQ(Scalar(u"SELECT count(*) FROM sqlite_master WHERE name IN ('Releases', 'Genres', 'Links')"_s).toInt(), 0);
    EXPECT_EQ(Scalar(u"PRAGMA application_id"_s).toInt(), CollectionApplicationId) << "vacuumed";
    EXPECT_EQ(IndexCount(), 11);
    EXPECT_EQ(data.qReleasesMain.RecordCount(), 2);

    TSQLiteConnection copy;
    copy.Open(FDir.File(u"old.before-1000.db"_s), somReadOnly);
    EXPECT_EQ(copy.Scalar(u"SELECT version FROM version"_s).toString(), u"1000"_s);
    EXPECT_EQ(copy.Scalar(u"SELECT Orcherstra FROM Releases WHERE ID = 11"_s).toString(), u"Orch"_s);
    EXPECT_EQ(data.ExecSQLAndGetID(u"PRAGMA foreign_keys"_s), 1);
}

TEST_F(Upgrade, ADeclinedConversionLeavesEverythingClosed)
{
    Kit::MakeOldCollection(FPath, u"1000"_s);
    FPrompt.YesNoAnswer = false;
    TDataModuleMain data(FPrompt);
    EXPECT_FALSE(data.ConnectToDB(FPath));
    EXPECT_FALSE(data.HasData());
    EXPECT_EQ(data.GetDBVersion(), 1000) << "the connection stays open";
    EXPECT_EQ(IndexCount(), 0);
    EXPECT_TRUE(FPrompt.Errors.isEmpty());
    EXPECT_FALSE(QFile::exists(FDir.File(u"old.before-1000.db"_s)));
}

TEST_F(Upgrade, LaterVersionsRiseWithoutAQuestion)
{
    for (const QString& version : {u"2000"_s, u"2001"_s}) {
        SCOPED_TRACE(version.toStdString());
        FPath = FDir.File(version + u".db"_s);
        MakeVersion(version);
        TDataModuleMain data(FPrompt);
        EXPECT_TRUE(data.ConnectToDB(FPath));
        EXPECT_EQ(data.GetDBVersion(), 3001);
        EXPECT_TRUE(FPrompt.Questions.isEmpty());
        EXPECT_EQ(IndexCount(), 11);
        EXPECT_TRUE(QFile::exists(FDir.File(u"%1.before-%1.db"_s.arg(version))));
        EXPECT_EQ(Scalar(u"SELECT IsSplit IS NULL FROM Releases2 WHERE ID = 11"_s).toInt(), 1);
    }
}

TEST_F(Upgrade, AVersionThatIsNoNumberGetsBothScripts)
{
    MakeVersion(u"abc"_s);
    TDataModuleMain data(FPrompt);
    EXPECT_TRUE(data.ConnectToDB(FPath));
    EXPECT_EQ(data.GetDBVersion(), 3001);

    data.ExecSQL(u"UPDATE version SET version = 'abc'"_s);
    EXPECT_EQ(data.GetDBVersion(), 0);
    EXPECT_THROW(data.ConnectToDB(FPath), EDatabaseError) << "the columns are there already";
    EXPECT_FALSE(data.HasData());
    EXPECT_EQ(data.GetDBVersion(), 0) << "the connection stays open";
    EXPECT_TRUE(QFile::exists(FDir.File(u"old.before-0-2.db"_s))) << "an earlier copy is never overwritten";
    EXPECT_THROW(data.ConnectToDB(FPath), EDatabaseError);
    EXPECT_FALSE(QFile::exists(FDir.File(u"old.before-0-3.db"_s))) << "a copy of this state is there already";
}

TEST_F(Upgrade, ANewerFileIsOpenedAsItIs)
{
    MakeVersion(u"2001"_s);
    {
        TDataModuleMain data(FPrompt);
        data.ConnectToDB(FPath);
        data.ExecSQL(u"UPDATE version SET version = '4000'"_s);
    }
    TDataModuleMain data(FPrompt);
    EXPECT_TRUE(data.ConnectToDB(FPath));
    EXPECT_EQ(data.GetDBVersion(), 4000);
    EXPECT_FALSE(QFile::exists(FDir.File(u"old.before-4000.db"_s)));
}

TEST_F(Upgrade, AFileThatCannotBeCopiedIsNotUpgraded)
{
    MakeVersion(u"2000"_s);
    // A folder bears the name under which the copy is made: a new file cannot be made there.
    QDir(FDir.Path()).mkpath(u"old.before-2000.part/x"_s);
    TDataModuleMain data(FPrompt);
    EXPECT_THROW(data.ConnectToDB(FPath), EDatabaseError);
    EXPECT_EQ(Scalar(u"SELECT version FROM version"_s).toString(), u"2000"_s);
    EXPECT_FALSE(data.HasData());
}

TEST_F(Upgrade, AVersionThatSaysNothingIsNamedAndLeavesTheOpenCollection)
{
    const QString open = FDir.File(u"open.db"_s);
    TDataModuleMain data(FPrompt);
    data.CreateNewDB(open, data.GetNewDatabaseSQL());
    ASSERT_TRUE(data.ConnectToDB(open));
    for (const QString& sql :
         {u"DELETE FROM version"_s, u"UPDATE version SET version = ''"_s, u"UPDATE version SET version = NULL"_s,
          u"UPDATE version SET version = '30010000000000000000000'"_s, u"UPDATE version SET version = 4294970297"_s}) {
        SCOPED_TRACE(sql.toStdString());
        QFile::remove(FPath);
        MakeVersion(u"2001"_s);
        Kit::MakeFile(FPath, sql);
        try {
            data.ConnectToDB(FPath);
            ADD_FAILURE() << "it was opened";
        } catch (const EDatabaseError& failure) {
            EXPECT_TRUE(failure.Text().startsWith(u"The collection does not say"_s)) << failure.what();
        }
        EXPECT_EQ(data.CurrentFile(), open);
        EXPECT_TRUE(data.HasData());
    }
}

TEST_F(Upgrade, AConversionThatFailsMidwayIsTakenBack)
{
    Kit::MakeOldCollection(FPath, u"1000"_s);
    Kit::MakeFile(FPath, u"DROP TABLE Links"_s); // the script drops it late, when most of its work is done
    TDataModuleMain data(FPrompt);
    EXPECT_THROW(data.ConnectToDB(FPath), EDatabaseError);
    EXPECT_FALSE(data.HasData());
    EXPECT_EQ(data.GetDBVersion(), 1000);
    EXPECT_EQ(data.ExecSQLAndGetID(u"PRAGMA foreign_keys"_s), 1);
    EXPECT_EQ(Scalar(u"SELECT Orcherstra FROM Releases WHERE ID = 11"_s).toString(), u"Orch"_s);
    EXPECT_EQ(Scalar(u"SELECT count(*) FROM sqlite_master WHERE name = 'Releases2'"_s).toInt(), 0);
    EXPECT_TRUE(QFile::exists(FDir.File(u"old.before-1000.db"_s)));
}

TEST_F(Upgrade, AFileThatLacksAColumnIsRefusedWhenItIsOpened)
{
    TDataModuleMain data(FPrompt);
    data.CreateNewDB(FPath, data.GetNewDatabaseSQL());
    Kit::MakeFile(FPath, u"ALTER TABLE Releases2 DROP COLUMN SeqNo"_s);
    EXPECT_THROW(data.ConnectToDB(FPath), EDatabaseError);
}

TEST_F(Upgrade, AFileThatAnotherProcessHoldsIsNotCalledForeign)
{
    TDataModuleMain data(FPrompt);
    data.CreateNewDB(FPath, data.GetNewDatabaseSQL());
    Kit::MakeFile(FPath, u"PRAGMA journal_mode = DELETE"_s);
    TSQLiteConnection other;
    other.Open(FPath);
    other.Exec(u"BEGIN EXCLUSIVE"_s);
    try {
        data.ConnectToDB(FPath);
        ADD_FAILURE() << "it is locked";
    } catch (const EDatabaseError& failure) {
        EXPECT_TRUE(failure.IsLocked());
    }
    EXPECT_TRUE(FPrompt.Errors.isEmpty());
    other.Exec(u"ROLLBACK"_s);
    EXPECT_TRUE(data.ConnectToDB(FPath));

    const QString second = FDir.File(u"second.db"_s);
    Kit::MakeOldCollection(second, u"2000"_s);
    TSQLiteConnection writer;
    writer.Open(second);
    writer.Exec(u"BEGIN IMMEDIATE"_s); // it could be read, but not raised
    EXPECT_THROW(data.ConnectToDB(second), EDatabaseError);
    EXPECT_TRUE(data.HasData()) << "the collection that was open stays";
    EXPECT_EQ(data.CurrentFile(), FPath);
}

TEST_F(Upgrade, ANewFileThatCannotBeMadeLeavesTheOpenCollection)
{
    TDataModuleMain data(FPrompt);
    data.CreateNewDB(FPath, data.GetNewDatabaseSQL());
    ASSERT_TRUE(data.ConnectToDB(FPath));
    EXPECT_THROW(data.CreateNewDB(FDir.Path() + u"/no/such/folder/x.db"_s, data.GetNewDatabaseSQL()), EDatabaseError);
    EXPECT_TRUE(data.HasData());
    EXPECT_THROW(data.CreateNewDB(FDir.File(u"bad.db"_s), u"CREATE nonsense"_s), EDatabaseError);
    EXPECT_FALSE(QFile::exists(FDir.File(u"bad.db"_s))) << "nothing half made stays";
}

TEST_F(Upgrade, ACollectionThatIsRemovedWhileOpenTakesNoMore)
{
    TDataModuleMain data(FPrompt);
    data.CreateNewDB(FPath, data.GetNewDatabaseSQL());
    ASSERT_TRUE(data.ConnectToDB(FPath));
    TAlbumRelease release;
    release.SetItem2(u"ReleaseName"_s, u"A"_s);
    data.AddAlbumReleaseToDB(release, true);
    QFile::rename(FPath, FDir.File(u"moved.db"_s));
    EXPECT_THROW(data.AddAlbumReleaseToDB(release, true), EDatabaseError);
    EXPECT_EQ(data.qReleasesMain.RecordCount(), 1);
    EXPECT_THROW(data.qReleasesMain.DeleteKeys({1}), EDatabaseError);
}

TEST_F(Upgrade, OldTriggersAreDroppedAtEachOpening)
{
    MakeVersion(u"2001"_s);
    Kit::MakeFile(FPath, u"CREATE TRIGGER Releases2UpdateTrigger AFTER UPDATE ON Releases2 BEGIN SELECT 1; END;"
                         "CREATE TRIGGER Tracks2UpdateTrigger AFTER UPDATE ON Tracks2 BEGIN SELECT 1; END;"
                         "CREATE TRIGGER Other AFTER UPDATE ON Tracks2 BEGIN SELECT 1; END;"_s);
    TDataModuleMain data(FPrompt);
    EXPECT_TRUE(data.ConnectToDB(FPath));
    EXPECT_EQ(Scalar(u"SELECT group_concat(name) FROM sqlite_master WHERE type='trigger'"_s).toString(), u"Other"_s);
}

TEST_F(Upgrade, OptimizingGivesOldFilesTheirMarks)
{
    MakeVersion(u"2001"_s);
    TDataModuleMain data(FPrompt);
    data.ConnectToDB(FPath);
    EXPECT_EQ(Scalar(u"PRAGMA auto_vacuum"_s).toInt(), 0);
    data.StartTransaction();
    data.VacuumDB();
    EXPECT_EQ(Scalar(u"PRAGMA auto_vacuum"_s).toInt(), 2);
    EXPECT_EQ(Scalar(u"PRAGMA application_id"_s).toInt(), CollectionApplicationId);
}

TEST(Validator, FirstFailureDecides)
{
    const Kit::TTempDir dir;
    const QByteArray magic("SQLite format 3\0", 16);
    const QString six = dir.File(u"six.db"_s);
    const QString seven = dir.File(u"seven.db"_s);
    const QString old = dir.File(u"old.db"_s);
    const QString tables = u"CREATE TABLE Releases2(a); CREATE TABLE Tracks2(a); CREATE TABLE Friends2(a); "
                           "CREATE TABLE Loans2(a); CREATE TABLE Musicians2(a); CREATE TABLE OtherPictures2(a);"_s;
    Kit::MakeFile(six, tables);
    Kit::MakeFile(seven, tables + u"CREATE TABLE version(a); CREATE TABLE extra(a);"_s);
    Kit::MakeOldCollection(old, u"1000"_s);
    QByteArray damaged = Kit::ReadAll(seven);
    damaged.replace(100, 50, QByteArray(50, '\xFF'));
    const std::pair<QString, TDBValidationResult> cases[] = {
        {QString(), dvrNotFound},
        {dir.File(u"none.db"_s), dvrNotFound},
        {dir.Path(), dvrNotFound},
        {dir.Write(u"empty.db"_s, {}), dvrEmpty},
        {dir.Write(u"4095.db"_s, magic + QByteArray(4079, 'x')), dvrEmpty},
        {dir.Write(u"text.db"_s, QByteArray(4096, 'x')), dvrNotSQLite},
        {dir.Write(u"magic.db"_s, magic + QByteArray(4080, 'x')), dvrNotCollection},
        {dir.Write(u"damaged.db"_s, damaged), dvrNotCollection},
        {six, dvrNotCollection},
        {seven, dvrOK},
        {old, dvrOK},
    };
    for (const auto& [path, expected] : cases)
        EXPECT_EQ(ValidateDatabaseFile(path), expected) << path.toStdString();
    EXPECT_FALSE(QFile::exists(dir.File(u"none.db"_s))) << "it never makes a file";

    // A database of another program, copied while that was running: its journal is not ours to work off.
    const QString foreign = dir.File(u"foreign.db"_s);
    {
        const QString original = dir.File(u"live.db"_s);
        Kit::MakeFile(original, u"PRAGMA journal_mode = WAL; CREATE TABLE a(b);"_s);
        TSQLiteConnection live;
        live.Open(original);
        live.Exec(u"INSERT INTO a VALUES (zeroblob(100000))"_s);
        QFile::copy(original, foreign);
        QFile::copy(original + u"-wal"_s, foreign + u"-wal"_s);
    }
    const QByteArray before = Kit::ReadAll(foreign) + Kit::ReadAll(foreign + u"-wal"_s);
    EXPECT_EQ(ValidateDatabaseFile(foreign), dvrNotCollection);
    EXPECT_TRUE(Kit::ReadAll(foreign) + Kit::ReadAll(foreign + u"-wal"_s) == before);
    QFile::remove(foreign + u"-wal"_s);
    EXPECT_EQ(ValidateDatabaseFile(foreign), dvrNotCollection);
    for (const QString& suffix : {u"-wal"_s, u"-shm"_s, u"-journal"_s})
        EXPECT_FALSE(QFile::exists(foreign + suffix)) << suffix.toStdString();
    const std::pair<TDBValidationResult, QString> texts[] = {
        {dvrOK, {}},
        {dvrNotFound, u"Database file not found."_s},
        {dvrEmpty, u"File is empty or too small to be a valid database."_s},
        {dvrNotSQLite, u"Selected file is not a valid SQLite database."_s},
        {dvrNotCollection, u"This SQLite database is not a Kestrune database."_s}};
    for (const auto& [result, text] : texts)
        EXPECT_EQ(DatabaseValidationMessage(result), text);
}

TEST_F(Upgrade, AFileThatIsNoneLeavesTheOpenCollection)
{
    TDataModuleMain data(FPrompt);
    data.CreateNewDB(FPath, data.GetNewDatabaseSQL());
    ASSERT_TRUE(data.ConnectToDB(FPath));
    EXPECT_FALSE(data.ConnectToDB(FDir.File(u"none.db"_s)));
    EXPECT_EQ(FPrompt.Errors, QStringList({u"Database file not found."_s}));
    EXPECT_TRUE(data.HasData());
    EXPECT_EQ(data.CurrentFile(), FPath);
}

} // namespace Kestrune
