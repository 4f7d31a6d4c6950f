// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uImageTracks.h"
#include "uImportOptions.h"

#include <QString>

#include <functional>
#include <memory>
#include <span>

namespace Kestrune {

/// Lists the tracks of a disc image; with the image's cover when pictures are wanted.
using TDiscImageReader = std::function<TImageTracks(const QString& image, bool pictures)>;
/// The length of a transport stream in seconds, 0 when it cannot be opened.
using TStreamLengthReader = std::function<double(const QString& file)>;

/// What a folder scan must know of the settings and the language: a copy, since both belong to the main thread.
struct TMP3ScanOptions final : TImportOptionsOf<TMP3ScanOptions> {
    bool Pictures = true; ///< false leaves all pictures out, as for a list
    // What is looked for beside the files.
    bool FindCovers = true;
    bool BackCover = true;
    bool MediaCover = true;
    bool OtherImages = false;
    int ThumbHeight = 250; ///< pixels
    QString VariousArtists, Digital;
    // The sentences for a file that cannot be read and for images that give nothing.
    QString UnreadableFile, UnknownImage, ImageWithoutAudio;
    QString UnreadableFolder; ///< with the reason for "%s"
    /// Without a reader images yield no release, and streams are tracks of unknown length.
    TDiscImageReader ReadDiscImage;
    TStreamLengthReader ReadStreamLength;

    /// The options of the process. Main thread.
    static TMP3ScanOptions FromSettings();
    static std::unique_ptr<TImportOptions> New() { return FromSettings().Clone(); }

    /// "covers", "back-cover", "media-cover" and "other-images".
    static std::span<const TOptionRow<TMP3ScanOptions>> Rows();
};

} // namespace Kestrune
