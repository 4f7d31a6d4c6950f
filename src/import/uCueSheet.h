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
};

/// The text of a cue sheet: UTF-16 by its byte order mark or by the zero bytes of its first letter, UTF-8 where the
/// bytes are valid, else Windows-1252.
QString DecodeCueText(const QByteArray& bytes);

/// Reads the lines FILE, TITLE, PERFORMER, REM (GENRE, DATE, COMMENT), TRACK and INDEX 01; others are ignored.
TCueSheet ParseCueSheet(const QString& text);

/// Reads and parses a file; none when it cannot be read or is far too large for a cue sheet (over 1 MiB).
std::optional<TCueSheet> LoadCueSheet(const QString& file);

/// The cue sheet that bears the name of an audio file, else the first *.cue of its folder, else empty.
QString FindCueSheet(const QString& audioFile);

/// The tracks of the sheet, cut from the scanned tracks. A cue track whose file is not among these is dropped.
TKRN_MP3_Tracks ApplyCueSheet(const TCueSheet& sheet, const TKRN_MP3_Tracks& scanned);

} // namespace Kestrune
