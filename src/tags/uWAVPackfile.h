// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uByteReader.h"
#include "uTagTypes.h"

namespace Kestrune {

/// Attributes of WavPack files (WavPack 4 and 5 block format).
class TWAVPackfile {
public:
    bool Valid = false;
    int Version = 0; ///< of the stream, 0x402 to 0x410
    bool IsDSD = false;
    bool IsHybrid = false;
    TAudioAttributes Audio;

    /// `tagSize` bytes at the end are no sound. False, with Valid not set, for another file.
    bool Load(TByteSource& source, qint64 tagSize);
};

} // namespace Kestrune
