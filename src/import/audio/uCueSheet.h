// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uMP3Track.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace Kestrune {

struct TCueTrack {
    int No = 0;
    QString Title, Artist;
    double StartSec = 0.0; ///< of INDEX 01; 0 without one
    QString FileName;      ///< of the FILE line before INDEX 01, or before the track where there is none
};

struct TCueSheet {
    QStringList FileNames; ///< each FILE once, in order
    QString AlbumTitle, AlbumArtist, Genre;
    int Year = 0;
    QString Comment;
    std::vector<TCueTrack> Tracks; ///< those with a number above 0
    QString Folder;                ///< of a sheet inside of an image: its folder there
};

/// The text of a cue sheet: UTF-16 by its byte order mark or by the zero bytes of its first letter, UTF-8 where the
/// bytes are valid, else Windows-1252.
QString DecodeCueText(const QByteArray& bytes);

/// Reads the lines FILE, TITLE, PERFORMER, REM (GENRE, DATE, COMMENT), TRACK and INDEX 01; others are ignored.
TCueSheet ParseCueSheet(const QString& text);

/// Reads and parses a file; none when it cannot be read or is far too large for a cue sheet (over 1 MiB).
std::optional<TCueSheet> LoadCueSheet(const QString& file);

/// What a folder holds for the cutting of its files.
struct TCueFolder {
    QStringList Sheets;     ///< paths of *.cue: first those that bear the name of an audio file, each group by name
    QStringList AudioFiles; ///< names, without disc images; empty where there is no sheet
};
TCueFolder ListCueFolder(const QString& folder);

/// The tracks of one folder or image, cut by its sheets, as one list per album. A sheet of two tracks or more cuts the
/// files that it names, unless a sheet before it has cut one of them; a cue track whose file is not among the scanned
/// ones is dropped. Tracks that no sheet covers follow behind those of their album. `otherFiles` lie there too without
/// having become tracks. Nothing scanned gives no album.
std::vector<TKRN_MP3_Tracks> CutIntoAlbums(const std::vector<TCueSheet>& sheets, TKRN_MP3_Tracks scanned,
                                           const QStringList& otherFiles = {});

} // namespace Kestrune
