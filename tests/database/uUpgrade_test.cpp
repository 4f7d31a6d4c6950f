// SPDX-License-Identifier: GPL-3.0-or-later
#include "dmMain.h"
#include "uDBValidator.h"
#include "uDefaults.h"
#include "uScriptedPrompt.h"
#include "uTestFiles.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>
#include <sqlite3.h>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

// Makes a file with the bare engine, as another program would.
void MakeFile(const QString& path, const QString& sql)
{
    sqlite3* connection = nullptr;
    sqlite3_open(path.toUtf8().constData(), &connection);
    char* message = nullptr;
    sqlite3_exec(connection, sql.toUtf8().constData(), nullptr, nullptr, &message);
    const QString failure = QString::fromUtf8(message);
    sqlite3_free(message);
    sqlite3_close(connection);
    if (!failure.isEmpty())
        throw std::runtime_error(failure.toStdString());
}

QString ResourceScript(const QString& name)
{
    QFile file(u":/sql/"_s + name + u".sql"_s);
    file.open(QIODevice::ReadOnly);
    return QString::fromUtf8(file.readAll());
}

// The first format: lookups in tables of their own, with the old spellings.
QString Version1000SQL()
{
    return uR"(
CREATE TABLE Friends (ID integer PRIMARY KEY, Name nvarchar(100), Description nvarchar(2000), Picture blob);
CREATE TABLE MediaTypes (ID integer PRIMARY KEY, MediaTypeName nvarchar(100));
CREATE TABLE Genres (ID integer PRIMARY KEY, Genre nvarchar(100));
CREATE TABLE Locations (ID integer PRIMARY KEY, Location nvarchar(100));
CREATE TABLE Statuses (ID integer PRIMARY KEY, Status nvarchar(100));
CREATE TABLE Conditions (ID integer PRIMARY KEY, Condition nvarchar(100));
CREATE TABLE Channels (ID integer PRIMARY KEY, Chanells nvarchar(100));
CREATE TABLE Instruments (ID integer PRIMARY KEY, Instrument nvarchar(100));
CREATE TABLE Links (ID integer PRIMARY KEY, Link text);
CREATE TABLE Releases (ID integer PRIMARY KEY, Artist, ReleaseName, MediaTypeID integer, GenreID integer REFERENCES Genres(ID),
 Label, Location integer, ReleaseDate, ReleaseYear, Barcode, BuyNowLink, No, StatusID integer, Quantity, ASIN, Rating,
 ConditionID integer, CountryCode, DataProvider, Comments, Composer, Composition, Conductor, Orcherstra, Chorus,
 ChanellsID integer, IsLive, IsRare, OwnerId, Spars, Price, Currency, DatePurchased, PurchaseStore, Link, Sides,
 IsReissue, IsCompilation, IsPromo, Packaging, LastModified, DateAdded, DiscogsID, MusicBrainzID, ConditionMedia,
 PriceValue, SellingPrice, PurchasedFrom, BorrowedFrom, LargePictureBack, ThumbPictureBack, LargePictureMedia,
 ThumbPictureMedia, DiscCount, FolderPath);
CREATE TABLE LargePictures (ID integer PRIMARY KEY, ReleaseID integer, Picture blob);
CREATE TABLE ThumbPictures (ID integer PRIMARY KEY, ReleaseID integer, Picture blob);
CREATE TABLE Tracks (ID integer PRIMARY KEY, ReleaseId integer, Artist, TrackNo, TrackTitle, TrackLength, DiscNo,
 GenreID integer, Rating, Composer, Composition, Conductor, Orchestra, Chorus, IsLive, IsInstrumental, BPM, Lyrics,
 Comments, LastModified, DateAdded, IsBlank, IsHidden, Bitrate, FilePath, FileType);
CREATE TABLE Musicians (ID integer PRIMARY KEY, Musician, InstrumentID integer, ReleaseId, TrackId);
CREATE TABLE OtherPictures (ID integer PRIMARY KEY, Picture blob, ReleaseId integer);
CREATE TABLE Loans (ID integer PRIMARY KEY, FriendID, ReleaseId, LoanDate, DueDate, ReturnDate, Description);
CREATE TABLE version (version varchar(10));
INSERT INTO version VALUES ('1000');
INSERT INTO Friends VALUES (4, 'Mara', 'd', x'01');
INSERT INTO MediaTypes VALUES (2, 'Vinyl'); INSERT INTO Genres VALUES (3, 'Rock; Pop/Jazz\Blues|Soul');
INSERT INTO Locations VALUES (5, 'Attic'); INSERT INTO Statuses VALUES (6, 'Wanted item');
INSERT INTO Conditions VALUES (7, 'Good'); INSERT INTO Channels VALUES (8, 'Mono'); INSERT INTO Instruments VALUES (9, 'Koto');
INSERT INTO Releases (ID, Artist, ReleaseName, MediaTypeID, GenreID, Location, StatusID, ConditionID, ChanellsID,
 Orcherstra, ReleaseDate, ReleaseYear, No, Rating) VALUES (11, 'Band', 'First', 2, 3, 5, 6, 7, 8, 'Orch', '1977-05-01', 1977, 1, 7);
INSERT INTO Releases (ID, ReleaseName) VALUES (12, 'Bare');
INSERT INTO LargePictures VALUES (1, 11, x'AA'); INSERT INTO ThumbPictures VALUES (1, 11, x'BB');
INSERT INTO Tracks (ID, ReleaseId, TrackTitle, GenreID) VALUES (21, 11, 'Song', 3);
INSERT INTO Musicians VALUES (31, 'Player', 9, 11, NULL);
INSERT INTO OtherPictures VALUES (41, x'CC', 11);
INSERT INTO Loans VALUES (51, 4, 11, '2020-01-01', NULL, NULL, 'd');
)"_s;
}

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

    // A file at one of the later versions, made from the chain itself.
    void MakeVersion(const QString& version)
    {
        MakeFile(FPath, Version1000SQL());
        {
            TDataModuleMain data(FPrompt);
            data.GetNewDatabaseSQL(); // brings the resources in
        }
        MakeFile(FPath, ResourceScript(u"Upgrade1000To2000"_s));
        if (version >= u"2001"_s && version[0].isDigit())
            MakeFile(FPath, ResourceScript(u"Upgrade2001"_s));
        MakeFile(FPath, u"UPDATE version SET version = '%1'"_s.arg(version));
    }

    Kit::TTempDir FDir;
    Kit::TScriptedPrompt FPrompt;
    QString FPath = FDir.File(u"old.db"_s);
};

} // namespace

TEST_F(Upgrade, TheFirstFormatIsConvertedAfterAQuestion)
{
    MakeFile(FPath, Version1000SQL());
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
    MakeFile(FPath, Version1000SQL());
    FPrompt.YesNoAnswer = false;
    TDataModuleMain data(FPrompt);
    EXPECT_FALSE(data.ConnectToDB(FPath));
    EXPECT_FALSE(data.HasData());
    EXPECT_EQ(data.GetDBVersion(), 1000) << "the connection stays open";
    EXPECT_EQ(IndexCount(), 0);
    EXPECT_TRUE(FPrompt.Errors.isEmpty());
    EXPECT_FALSE(QFile::exists(FDir.File(u"old.before-1000.db"_s)));
    EXPECT_TRUE(Defaults().RecentDBs.isEmpty());
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
    // A link that leads nowhere bears the name: a new file cannot be made there.
    const QString link = FDir.File(u"old.before-2000.db"_s);
    QFile::link(FDir.File(u"nowhere/x"_s), link);
    TDataModuleMain data(FPrompt);
    EXPECT_THROW(data.ConnectToDB(FPath), EDatabaseError);
    EXPECT_EQ(Scalar(u"SELECT version FROM version"_s).toString(), u"2000"_s);
    EXPECT_FALSE(data.HasData());
}

TEST_F(Upgrade, AConversionThatFailsMidwayIsTakenBack)
{
    MakeFile(FPath, Version1000SQL());
    MakeFile(FPath, u"DROP TABLE Links"_s); // the script drops it late, when most of its work is done
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
    MakeFile(FPath, u"ALTER TABLE Releases2 DROP COLUMN SeqNo"_s);
    EXPECT_THROW(data.ConnectToDB(FPath), EDatabaseError);
}

TEST_F(Upgrade, AFileThatAnotherProcessHoldsIsNotCalledForeign)
{
    TDataModuleMain data(FPrompt);
    data.CreateNewDB(FPath, data.GetNewDatabaseSQL());
    MakeFile(FPath, u"PRAGMA journal_mode = DELETE"_s);
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
    MakeFile(FPath, u"CREATE TRIGGER Releases2UpdateTrigger AFTER UPDATE ON Releases2 BEGIN SELECT 1; END;"
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
    MakeFile(six, tables);
    MakeFile(seven, tables + u"CREATE TABLE version(a); CREATE TABLE extra(a);"_s);
    MakeFile(old, Version1000SQL());
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
        MakeFile(original, u"PRAGMA journal_mode = WAL; CREATE TABLE a(b);"_s);
        TSQLiteConnection live;
        live.Open(original);
        live.Exec(u"INSERT INTO a VALUES (zeroblob(100000))"_s);
        QFile::copy(original, foreign);
        QFile::copy(original + u"-wal"_s, foreign + u"-wal"_s);
    }
    const QByteArray before = Kit::ReadAll(foreign) + Kit::ReadAll(foreign + u"-wal"_s);
    EXPECT_EQ(ValidateDatabaseFile(foreign), dvrNotCollection);
    EXPECT_TRUE(Kit::ReadAll(foreign) + Kit::ReadAll(foreign + u"-wal"_s) == before);
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
    EXPECT_EQ(Defaults().DBPath, FPath);
    EXPECT_EQ(Defaults().RecentDBs, QStringList({FPath}));
}

} // namespace Kestrune
