// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uMP4Boxes.h"
#include "uMP4Tag.h"

#include <optional>

namespace Kestrune {

/// Attributes of a track, and what its fragments need; nothing when it holds no sound.
std::optional<TAudioAttributes> ReadMP4Track(TByteSource& source, const TMP4Box& track, TMP4Fragments& fragments);

/// What the description of the codec tells inside the sample description `entry`, from `inner` on: rate, channels and
/// bit rate as they are played, where the sample description itself may lie.
void ReadMP4Codec(TByteSource& source, const TMP4Box& entry, qint64 inner, TAudioAttributes& audio);

/// Default duration of the track's samples, from an "mvex" atom.
quint32 ReadMP4DefaultDuration(TByteSource& source, const TMP4Box& extends, quint32 trackID);

/// Seconds of the track in all fragments of the file; 0 when there are none.
double ReadMP4FragmentTime(TByteSource& source, const TMP4Fragments& fragments);

} // namespace Kestrune
