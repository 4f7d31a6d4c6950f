// SPDX-License-Identifier: GPL-3.0-or-later
#include "uOldFiles.h"

#include "dmMain.h"
#include "uScriptedPrompt.h"

#include <QFile>

#include <sqlite3.h>

#include <stdexcept>

namespace Kestrune::Kit {

using namespace Qt::StringLiterals;

namespace {

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

} // namespace

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

void MakeOldCollection(const QString& path, const QString& version)
{
    MakeFile(path, Version1000SQL());
    if (version == u"1000"_s)
        return;
    {
        TScriptedPrompt prompt;
        TDataModuleMain(prompt).GetNewDatabaseSQL(); // brings the resources in
    }
    MakeFile(path, ResourceScript(u"Upgrade1000To2000"_s));
    if (version == u"2001"_s)
        MakeFile(path, ResourceScript(u"Upgrade2001"_s));
    MakeFile(path, u"UPDATE version SET version = '%1'"_s.arg(version));
}

} // namespace Kestrune::Kit
