// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uMP3Options.h"
#include "uMP3Track.h"

#include <QString>

#include <variant>

namespace Kestrune {

/// What the scan reads from one audio file.
struct TScannedFile {
    TKRN_MP3_Track Track;
    QString CueSheet; ///< text of an embedded cue sheet, or empty
};

/// Why a file gives no track: one sentence for the user.
struct TFileFailure {
    QString Sentence;
};

/// Reads the tags of one file and fills what they leave out from the names of the file and its folder. Without
/// `wantCover` no picture is taken. May throw what the tag reader throws.
std::variant<TScannedFile, TFileFailure> ProcessFile(const QString& filePath, const TMP3ScanOptions& options,
                                                     bool wantCover);

} // namespace Kestrune
