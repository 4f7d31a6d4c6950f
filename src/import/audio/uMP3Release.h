// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uMP3Options.h"
#include "uMP3Track.h"
#include "uObjs.h"

#include <optional>

namespace Kestrune {

/// The release that the tracks of one folder make, with pictures from the tags and from beside the files, and with
/// the thumbnail of its front prepared. None for no tracks.
std::optional<TAlbumRelease> CreateReleaseFromTracks(const TKRN_MP3_Tracks& tracks, const TMP3ScanOptions& options);

} // namespace Kestrune
