-- SPDX-License-Identifier: GPL-3.0-or-later
-- To version 3001: styles, several artists, split releases, covers and remixes, and the indices of the main list.

ALTER TABLE Releases2 ADD COLUMN SeqNo NVARCHAR(50);
ALTER TABLE Releases2 ADD COLUMN Genres NVARCHAR(10000);
ALTER TABLE Releases2 ADD COLUMN Artists NVARCHAR(10000);
ALTER TABLE Releases2 ADD COLUMN IsSplit BOOL;
ALTER TABLE Tracks2 ADD COLUMN IsCover BOOL;
ALTER TABLE Tracks2 ADD COLUMN IsRemix BOOL;

UPDATE Releases2 SET
  Genres = replace(replace(replace(replace(Genre, ';', ','), '/', ','), '\', ','), '|', ','),
  Artists = Artist;

CREATE INDEX idx_releases_artist ON Releases2 (Artist);
CREATE INDEX idx_releases_releasename ON Releases2 (ReleaseName);
CREATE INDEX idx_releases_genre ON Releases2 (Genre);
CREATE INDEX idx_releases_label ON Releases2 (Label);
CREATE INDEX idx_releases_status ON Releases2 (Status);
CREATE INDEX idx_loans_releaseid ON Loans2 (ReleaseId);
CREATE INDEX idx_loans_friendid ON Loans2 (FriendID);
CREATE INDEX idx_musicians_releaseid ON Musicians2 (ReleaseId);
CREATE INDEX idx_otherpictures_releaseid ON OtherPictures2 (ReleaseId);

UPDATE version SET version = '3001';
