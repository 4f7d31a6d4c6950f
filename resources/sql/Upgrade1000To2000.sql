-- SPDX-License-Identifier: GPL-3.0-or-later
-- From version 1000, whose lookups are tables of their own, to version 2000, where they are texts.

CREATE TABLE Friends2 (
  ID integer PRIMARY KEY AUTOINCREMENT NOT NULL UNIQUE,
  Name nvarchar(100),
  Description nvarchar(2000),
  Picture blob
);

CREATE TABLE Releases2 (
  ID integer PRIMARY KEY AUTOINCREMENT NOT NULL UNIQUE,
  Artist nvarchar(200),
  ReleaseName nvarchar(500) NOT NULL,
  MediaType nvarchar(500),
  Genre nvarchar(500),
  Label nvarchar(200),
  Location nvarchar(500),
  ReleaseDate date,
  ReleaseYear integer,
  Barcode nvarchar(50),
  BuyNowLink nvarchar(3000),
  "No" integer,
  Status nvarchar(500),
  Quantity integer,
  ASIN nvarchar(20),
  Rating integer,
  "Condition" nvarchar(500),
  CountryCode varchar(2),
  DataProvider nvarchar(50),
  Comments text,
  Composer nvarchar(200),
  Composition nvarchar(200),
  Conductor nvarchar(200),
  Orchestra nvarchar(200),
  Chorus nvarchar(200),
  Channels nvarchar(500),
  IsLive bool,
  IsRare bool,
  OwnerId integer,
  Spars varchar(3),
  Price real,
  Currency varchar(3),
  DatePurchased date,
  PurchaseStore nvarchar(200),
  Link varchar(3000),
  LargePicture blob,
  ThumbPicture blob,
  CatalogNO nvarchar(500),
  Sides integer,
  IsReissue bool,
  IsCompilation bool,
  IsPromo bool,
  Packaging nvarchar(500),
  LastModified DATETIME DEFAULT CURRENT_TIMESTAMP,
  DateAdded DATETIME DEFAULT CURRENT_TIMESTAMP,
  DiscogsID INTEGER,
  MusicBrainzID VARCHAR(100),
  ConditionMedia nvarchar(500),
  PriceValue real,
  SellingPrice real,
  PurchasedFrom INTEGER,
  BorrowedFrom INTEGER,
  LargePictureBack blob,
  ThumbPictureBack blob,
  LargePictureMedia blob,
  ThumbPictureMedia blob,
  DiscCount integer,
  FolderPath nvarchar(5000),
  Custom1 none,
  Custom2 none,
  Custom3 none,
  Custom4 none,
  Custom5 none,
  Custom6 none,
  Custom7 none,
  Custom8 none,
  Custom9 none,
  Custom10 none
);

CREATE TABLE Tracks2 (
  ID integer PRIMARY KEY AUTOINCREMENT NOT NULL UNIQUE,
  ReleaseId integer NOT NULL,
  Artist nvarchar(300),
  TrackNo integer,
  TrackTitle nvarchar(2000),
  TrackLength real,
  DiscNo integer,
  Side nvarchar(100),
  Genre nvarchar(500),
  Rating integer,
  Composer nvarchar(300),
  Composition nvarchar(300),
  Conductor nvarchar(300),
  Orchestra nvarchar(300),
  Chorus nvarchar(300),
  IsLive bool,
  IsInstrumental bool,
  BPM integer,
  Lyrics blob,
  Comments blob,
  LastModified DATETIME DEFAULT CURRENT_TIMESTAMP,
  DateAdded DATETIME DEFAULT CURRENT_TIMESTAMP,
  IsBlank bool,
  IsHidden bool,
  Bitrate integer,
  FilePath nvarchar(5000),
  FileType nvarchar(500),
  Custom1 none,
  Custom2 none,
  Custom3 none,
  Custom4 none,
  Custom5 none,
  Custom6 none,
  Custom7 none,
  Custom8 none,
  Custom9 none,
  Custom10 none,
  FOREIGN KEY (ReleaseId) REFERENCES Releases2 (ID) ON DELETE CASCADE ON UPDATE NO ACTION
);

CREATE INDEX tracks2_index ON Tracks2 (ReleaseId);

CREATE TABLE Musicians2 (
  ID integer PRIMARY KEY AUTOINCREMENT NOT NULL UNIQUE,
  Musician nvarchar(300),
  Instrument nvarchar(500),
  ReleaseId integer,
  TrackId integer,
  FOREIGN KEY (ReleaseId) REFERENCES Releases2 (ID) ON DELETE CASCADE ON UPDATE NO ACTION,
  FOREIGN KEY (TrackId) REFERENCES Tracks2 (ID) ON DELETE CASCADE ON UPDATE NO ACTION
);

CREATE TABLE OtherPictures2 (
  ID integer PRIMARY KEY AUTOINCREMENT NOT NULL UNIQUE,
  Picture blob,
  ReleaseId integer,
  FOREIGN KEY (ReleaseId) REFERENCES Releases2 (ID) ON DELETE CASCADE ON UPDATE NO ACTION
);

CREATE TABLE Loans2 (
  ID integer PRIMARY KEY AUTOINCREMENT NOT NULL UNIQUE,
  FriendID integer,
  ReleaseId integer,
  LoanDate date,
  DueDate date,
  ReturnDate date,
  Description nvarchar(2000),
  FOREIGN KEY (FriendID) REFERENCES Friends2 (ID) ON DELETE CASCADE ON UPDATE NO ACTION,
  FOREIGN KEY (ReleaseId) REFERENCES Releases2 (ID) ON DELETE CASCADE ON UPDATE NO ACTION
);

INSERT INTO Friends2 (ID, Name, Description, Picture)
SELECT ID, Name, Description, Picture FROM Friends;

INSERT INTO Releases2 (
  ID, Artist, ReleaseName, MediaType, Genre, Label, Location, ReleaseDate, ReleaseYear, Barcode, BuyNowLink,
  "No", Status, Quantity, ASIN, Rating, "Condition", CountryCode, DataProvider, Comments, Composer,
  Composition, Conductor, Orchestra, Chorus, Channels, IsLive, IsRare, OwnerId, Spars, Price, Currency,
  DatePurchased, PurchaseStore, Link, LargePicture, ThumbPicture, CatalogNO, Sides, IsReissue, IsCompilation,
  IsPromo, Packaging, LastModified, DateAdded, DiscogsID, MusicBrainzID, ConditionMedia, PriceValue,
  SellingPrice, PurchasedFrom, BorrowedFrom, LargePictureBack, ThumbPictureBack, LargePictureMedia,
  ThumbPictureMedia, DiscCount, FolderPath, Custom1, Custom2, Custom3, Custom4, Custom5, Custom6, Custom7,
  Custom8, Custom9, Custom10)
SELECT
  R.ID, R.Artist, R.ReleaseName, M.MediaTypeName, G.Genre, R.Label, L.Location, R.ReleaseDate, R.ReleaseYear,
  R.Barcode, R.BuyNowLink, R."No", S.Status, R.Quantity, R.ASIN, R.Rating, C.Condition, R.CountryCode,
  R.DataProvider, R.Comments, R.Composer, R.Composition, R.Conductor, R.Orcherstra, R.Chorus, H.Chanells,
  R.IsLive, R.IsRare, R.OwnerId, R.Spars, R.Price, R.Currency, R.DatePurchased, R.PurchaseStore, R.Link,
  LP.Picture, TP.Picture, NULL, R.Sides, R.IsReissue, R.IsCompilation, R.IsPromo, R.Packaging, R.LastModified,
  R.DateAdded, R.DiscogsID, R.MusicBrainzID, R.ConditionMedia, R.PriceValue, R.SellingPrice, R.PurchasedFrom,
  R.BorrowedFrom, R.LargePictureBack, R.ThumbPictureBack, R.LargePictureMedia, R.ThumbPictureMedia,
  R.DiscCount, R.FolderPath, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL
FROM Releases R
  LEFT JOIN MediaTypes M ON M.ID = R.MediaTypeID
  LEFT JOIN Genres G ON G.ID = R.GenreID
  LEFT JOIN Locations L ON L.ID = R.Location
  LEFT JOIN Statuses S ON S.ID = R.StatusID
  LEFT JOIN Conditions C ON C.ID = R.ConditionID
  LEFT JOIN Channels H ON H.ID = R.ChanellsID
  LEFT JOIN LargePictures LP ON LP.ReleaseID = R.ID
  LEFT JOIN ThumbPictures TP ON TP.ReleaseID = R.ID;

INSERT INTO Tracks2 (
  ID, ReleaseId, Artist, TrackNo, TrackTitle, TrackLength, DiscNo, Side, Genre, Rating, Composer, Composition,
  Conductor, Orchestra, Chorus, IsLive, IsInstrumental, BPM, Lyrics, Comments, LastModified, DateAdded,
  IsBlank, IsHidden, Bitrate, FilePath, FileType, Custom1, Custom2, Custom3, Custom4, Custom5, Custom6,
  Custom7, Custom8, Custom9, Custom10)
SELECT
  T.ID, T.ReleaseId, T.Artist, T.TrackNo, T.TrackTitle, T.TrackLength, T.DiscNo, NULL, G.Genre, T.Rating,
  T.Composer, T.Composition, T.Conductor, T.Orchestra, T.Chorus, T.IsLive, T.IsInstrumental, T.BPM, T.Lyrics,
  T.Comments, T.LastModified, T.DateAdded, T.IsBlank, T.IsHidden, T.Bitrate, T.FilePath, T.FileType, NULL,
  NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL
FROM Tracks T
  LEFT JOIN Genres G ON G.ID = T.GenreID;

INSERT INTO Musicians2 (ID, Musician, Instrument, ReleaseId, TrackId)
SELECT M.ID, M.Musician, I.Instrument, M.ReleaseId, M.TrackId
FROM Musicians M
  LEFT JOIN Instruments I ON I.ID = M.InstrumentID;

INSERT INTO OtherPictures2 (ID, Picture, ReleaseId)
SELECT ID, Picture, ReleaseId FROM OtherPictures;

INSERT INTO Loans2 (ID, FriendID, ReleaseId, LoanDate, DueDate, ReturnDate, Description)
SELECT ID, FriendID, ReleaseId, LoanDate, DueDate, ReturnDate, Description FROM Loans;

DROP TABLE Channels;
DROP TABLE Conditions;
DROP TABLE Genres;
DROP TABLE Instruments;
DROP TABLE LargePictures;
DROP TABLE Links;
DROP TABLE Locations;
DROP TABLE MediaTypes;
DROP TABLE OtherPictures;
DROP TABLE Statuses;
DROP TABLE ThumbPictures;
DROP TABLE Musicians;
DROP TABLE Loans;
DROP TABLE Tracks;
DROP TABLE Releases;
DROP TABLE Friends;

UPDATE version SET version = '2000';
