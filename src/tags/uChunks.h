// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uByteReader.h"
#include "uFourCC.h"

namespace Kestrune {

/// How the chunk headers of a container are written.
enum class TChunkForm : quint8 {
    cfLittle32, ///< RIFF: four bytes of name, 32-bit little-endian size, padded to even
    cfBig32,    ///< AIFF: 32-bit big-endian size, padded to even
    cfBig64,    ///< DSDIFF: 64-bit big-endian size, padded to even
    cfDSF       ///< DSF: 64-bit little-endian size that counts the 12 bytes of the header, no padding
};
using enum TChunkForm;

struct TChunk {
    TFourCC ID;
    qint64 Offset = 0;   ///< of the content
    qint64 Size = 0;     ///< of the content, cut at the end of the container
    quint64 Claimed = 0; ///< size as the header states it
};

/// Walks the chunks of a container. Ends at the container's end, at a header that is cut off, and after more chunks
/// than any honest file holds, so that a file full of empty chunks cannot keep the reader busy.
class TChunkWalker {
public:
    TChunkWalker(TByteSource& source, qint64 start, qint64 end, TChunkForm form);
    bool Next(TChunk& chunk);
    /// Goes on at a position, for chunks whose true size stands elsewhere.
    void SkipTo(qint64 position) { FPosition = position; }

private:
    TByteSource& FSource;
    qint64 FPosition;
    qint64 FEnd;
    TChunkForm FForm;
    int FBudget = 4096;
};

} // namespace Kestrune
