// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uByteReader.h"
#include "uTagTypes.h"

namespace Kestrune {

/// Attributes of Musepack files, stream versions 4 to 8 (Musepack stream format descriptions, SV7 and SV8).
class TMPEGplus {
public:
    bool Valid = false;
    int StreamVersion = 0;
    TAudioAttributes Audio;

    /// The stream begins behind `headTagSize` bytes and ends before `tailTagSize` bytes. False for another file.
    bool Load(TByteSource& source, qint64 headTagSize, qint64 tailTagSize);

private:
    bool LoadSV8(TByteSource& source, qint64 position);
    bool LoadSV7(QByteArrayView header);
    bool LoadSV4To6(QByteArrayView header);
};

} // namespace Kestrune
