// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uByteReader.h"
#include "uFourCC.h"

#include <array>
#include <optional>

namespace Kestrune {

/// An atom of an MP4 or QuickTime file (ISO/IEC 14496-12, section 4.2).
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
    QByteArrayView Header();

    TByteSource& FSource;
    qint64 FPosition;
    qint64 FEnd;
    int FBudget = 20000;
    // What was read ahead: small atoms that follow each other cost one read for many.
    std::array<char, 512> FBuffer;
    qint64 FBufferStart = 0;
    qint64 FBufferSize = 0;
};

/// The first atom of that name between two positions.
std::optional<TMP4Box> FindMP4Box(TByteSource& source, qint64 start, qint64 end, TFourCC name);

/// Time in seconds of an "mvhd" or "mdhd" atom, and its units per second; 0 when unknown.
double ReadMP4Time(TByteSource& source, const TMP4Box& box, quint32& timeScale);

} // namespace Kestrune
