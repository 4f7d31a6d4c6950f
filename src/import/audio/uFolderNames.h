// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uPathNames.h"

#include <QString>
#include <QStringView>

namespace Kestrune {

/// True for the extensions of audio files and disc images that the folder scan takes.
bool IsSupportedAudio(const QString& path);
/// True for *.iso and *.iso.wv.
bool IsDiscImage(const QString& path);

/// What the name of a disc folder such as "CD1", "Disc 2" or "Album - Media_3" tells.
struct TDiscFolderName {
    int Number = 0; ///< 0 for any other name
    QString
        Before; ///< what stands before the disc word, in one case and without joints: the same for discs of an album
    bool IsBare = false; ///< nothing but the disc word and its number, so that the folder above bears the album's name
};
TDiscFolderName ParseDiscFolderName(const QString& name);

/// The number of a disc folder; 0 for any other name.
int DiscNumberFromFolderName(const QString& name);

struct TAlbumName {
    QString Artist;
    QString Album;
    int Year = 0; ///< 0 unknown
};

/// Reads "Artist - Album (1999)" and its lesser forms. A year lies in 1900 to 2100 and stands in brackets.
TAlbumName ParseAlbumFolderName(const QString& name);

struct TTrackName {
    int No = 0; ///< 1 to 999, or 0 for none
    QString Title;
};

/// Reads "01 - Title" from the file name of a path.
TTrackName ParseTrackFileName(const QString& path);

} // namespace Kestrune
