-- SPDX-License-Identifier: GPL-3.0-or-later
-- To version 2001: the original release.

ALTER TABLE Releases2 ADD COLUMN OriginalReleaseDate DATE;
ALTER TABLE Releases2 ADD COLUMN OriginalReleaseYear INTEGER;
ALTER TABLE Releases2 ADD COLUMN MediaColor NVARCHAR(500);

UPDATE Releases2 SET OriginalReleaseDate = ReleaseDate, OriginalReleaseYear = ReleaseYear;

UPDATE version SET version = '2001';
