// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uMP4Tag.h"

#include <optional>

namespace Kestrune {

struct TMP4Box {
    TFourCC Name;
    qint64 Offset = 0; ///< of the content
    qint64 End = 0;
};

/// Walks the atoms between two positions. Sizes are cut at the end; so is the number of atoms, so that a file full of
/// empty ones cannot keep the reader busy.
class TMP4Walker {
public:
    TMP4Walker(TByteSource& source, qint64 start, qint64 end) : FSource(source), FPosition(start), FEnd(end) {}
    bool Next(TMP4Box& box);

private:
    TByteSource& FSource;
    qint64 FPosition;
    qint64 FEnd;
    int FBudget = 20000;
};

/// The first atom of that name between two positions.
std::optional<TMP4Box> FindMP4Box(TByteSource& source, qint64 start, qint64 end, TFourCC name);

/// Time in seconds of an "mvhd" or "mdhd" atom, and its units per second; 0 when unknown.
double ReadMP4Time(TByteSource& source, const TMP4Box& box, quint32& timeScale);

/// Attributes of a track, and what its fragments need; nothing when it holds no sound.
std::optional<TAudioAttributes> ReadMP4Track(TByteSource& source, const TMP4Box& track, TMP4Fragments& fragments);

/// Default duration of the track's samples, from an "mvex" atom.
quint32 ReadMP4DefaultDuration(TByteSource& source, const TMP4Box& extends, quint32 trackID);

/// Seconds of the track in all fragments of the file; 0 when there are none.
double ReadMP4FragmentTime(TByteSource& source, const TMP4Fragments& fragments);

} // namespace Kestrune
