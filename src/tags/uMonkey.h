// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uByteReader.h"
#include "uTagTypes.h"

namespace Kestrune {

/// Attributes of Monkey's Audio files, with the header of versions up to 3.97 and with the later descriptor.
class TMonkey {
public:
    bool Valid = false;
    int Version = 0; ///< times 1,000, as 3990
    int CompressionLevel = 0;
    TAudioAttributes Audio;

    /// The stream begins behind `headTagSize` bytes and ends before `tailTagSize` bytes. False for another file.
    bool Load(TByteSource& source, qint64 headTagSize, qint64 tailTagSize);

private:
    bool LoadNew(TByteSource& source, qint64 position);
    bool LoadOld(QByteArrayView header);
    void SetFrames(quint32 total, quint32 blocksPerFrame, quint32 finalBlocks);
};

} // namespace Kestrune
