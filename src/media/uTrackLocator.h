// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>

namespace Kestrune {

/// Kinds of places where a track's sound lies.
enum class TLocatorKind : quint8 {
    lkFile,  ///< the file itself
    lkISO,   ///< a file inside an ISO 9660 image
    lkSACD,  ///< a track of an SACD image, by number
    lkDVDA,  ///< a track of a DVD-Audio image, by its index from 1
    lkBDISO, ///< a transport stream inside a UDF image
    lkCue    ///< seconds of the file
};
using enum TLocatorKind;

/// The locator that stands in the column FileType beside the path of a track.
struct TTrackLocator {
    TLocatorKind Kind = lkFile;
    QString InnerPath;     ///< of lkISO and lkBDISO
    int Number = 0;        ///< of lkSACD and lkDVDA
    bool HasRange = false; ///< a cue track: of the file, or of the file inside an image
    int StartSec = 0;      ///< whole seconds
    int EndSec = 0;

    /// The column's text: "ISO:a/b.flac:0:180", "SACD:3", "CUE:0:180", ... Empty for a plain file.
    QString Text() const;
    /// Reads such a text; a text of no known form is a plain file.
    static TTrackLocator Parse(const QString& text);

    static TTrackLocator InISO(const QString& path) { return {lkISO, path, 0, false, 0, 0}; }
    static TTrackLocator InBluray(const QString& path) { return {lkBDISO, path, 0, false, 0, 0}; }
    static TTrackLocator OfSACD(int trackNo) { return {lkSACD, {}, trackNo, false, 0, 0}; }
    static TTrackLocator OfDVDA(int number) { return {lkDVDA, {}, number, false, 0, 0}; }
    /// Part of what this locator names: a file inside an image keeps its place, everything else becomes lkCue.
    TTrackLocator Cut(int startSec, int endSec) const;
};

/// The composed name of a track: the path, "#" and the locator, or the path alone.
QString ComposeTrackName(const QString& filePath, const QString& fileType);

} // namespace Kestrune
