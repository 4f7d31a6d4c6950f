// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QDate>
#include <QString>

#include <vector>

namespace Kestrune {

/// One track as the folder scan found it: from tags, names or a cue sheet. Paths are in the text form of PathToText.
struct TKRN_MP3_Track {
    QString FilePath; ///< on disk; for a disc image the path of the image
    QString FileType; ///< empty for a plain file, else a locator such as "CUE:0:180"
    int No = 0;       ///< 0 unknown
    QString Title, Artist, Album, lLabel, Genre;
    int Year = 0; ///< 0 unknown
    QDate ReleaseDate;
    int DurationSec = 0;
    int DiscNo = 0; ///< 0 unknown
    int DiscCount = 1;
    int Bitrate = 0; ///< kilobits per second
    QString Lyrics, Comments;
    QString EAN, ASIN, DiscogsID, MusicBrainzAlbumID, MusicBrainzTrackID, Country, CatalogNo;
    int TotalTracks = 0;
    QByteArray Cover; ///< encoded bytes of the tag's first picture, empty for none; copies share them
    QString Side;
    int BPM = 0;
    bool IsHidden = false, IsInstrumental = false, IsBlank = false, IsRemix = false;
    QString Styles, Artists, Composer, Composition, Conductor, Orchestra, Chorus;
};

using TKRN_MP3_Tracks = std::vector<TKRN_MP3_Track>;

} // namespace Kestrune
