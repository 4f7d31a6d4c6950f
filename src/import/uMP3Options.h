// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uMP3Track.h"

#include <QString>

#include <functional>

namespace Kestrune {

/// Lists the tracks of a disc image, none when no reader opens it; with the image's cover when pictures are wanted.
using TDiscImageReader = std::function<TKRN_MP3_Tracks(const QString& image, bool pictures)>;
/// The length of a transport stream in seconds, 0 when it cannot be opened.
using TStreamLengthReader = std::function<double(const QString& file)>;

/// What a folder scan must know of the settings and the language: a copy, since both belong to the main thread.
struct TMP3ScanOptions {
    bool Pictures = true; ///< false leaves all pictures out, as for a list
    bool FindCovers = true;
    bool BackCover = true;
    bool MediaCover = true;
    bool OtherImages = false;
    int ThumbHeight = 250; ///< pixels
    QString VariousArtists, Digital;
    QString UnreadableFile; ///< the sentence for a file that cannot be read
    /// Without a reader images yield no release, and streams are tracks of unknown length.
    TDiscImageReader ReadDiscImage;
    TStreamLengthReader ReadStreamLength;

    /// The options of the process. Main thread.
    static TMP3ScanOptions FromSettings();
};

} // namespace Kestrune
