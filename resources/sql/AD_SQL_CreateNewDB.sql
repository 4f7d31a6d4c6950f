-- SPDX-License-Identifier: GPL-3.0-or-later
-- A new collection at version 3001.

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
  Custom10 none,
  OriginalReleaseDate DATE,
  OriginalReleaseYear INTEGER,
  MediaColor NVARCHAR (500),
  SeqNo NVARCHAR (50),
  Genres NVARCHAR (10000),
  Artists NVARCHAR (10000),
  IsSplit BOOL
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
  IsCover BOOL,
  IsRemix BOOL,
  FOREIGN KEY (ReleaseId) REFERENCES Releases2 (ID) ON DELETE CASCADE ON UPDATE NO ACTION
);

CREATE TABLE Friends2 (
  ID integer PRIMARY KEY AUTOINCREMENT NOT NULL UNIQUE,
  Name nvarchar(100),
  Description nvarchar(2000),
  Picture blob
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

CREATE INDEX tracks2_index ON Tracks2 (ReleaseId);
CREATE INDEX idx_releases_artist ON Releases2 (Artist);
CREATE INDEX idx_releases_releasename ON Releases2 (ReleaseName);
CREATE INDEX idx_releases_genre ON Releases2 (Genre);
CREATE INDEX idx_releases_label ON Releases2 (Label);
CREATE INDEX idx_releases_status ON Releases2 (Status);
CREATE INDEX idx_loans_releaseid ON Loans2 (ReleaseId);
CREATE INDEX idx_loans_friendid ON Loans2 (FriendID);
CREATE INDEX idx_musicians_releaseid ON Musicians2 (ReleaseId);
CREATE INDEX idx_otherpictures_releaseid ON OtherPictures2 (ReleaseId);

CREATE TABLE version (
  version varchar(10)
);
INSERT INTO version (version) VALUES ('3001');
