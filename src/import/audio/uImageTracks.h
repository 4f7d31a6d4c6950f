// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uMP3Track.h"

namespace Kestrune {

/// Why a disc image gives no tracks.
enum class TImageFailure : quint8 {
    imfNone,
    imfUnreadable,  ///< the file cannot be read
    imfUnknown,     ///< no reader knows what it is
    imfWithoutAudio ///< a disc without audio that could be taken
};
using enum TImageFailure;

/// What a disc image holds: tracks, or why there are none.
struct TImageTracks {
    TKRN_MP3_Tracks Tracks;
    TImageFailure Failure = imfNone;
};

} // namespace Kestrune
