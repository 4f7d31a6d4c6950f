// SPDX-License-Identifier: GPL-3.0-or-later
#include "uChunks.h"

#include <algorithm>

namespace Kestrune {

TChunkWalker::TChunkWalker(TByteSource& source, qint64 start, qint64 end, TChunkForm form)
    : FSource(source),
      FPosition(std::max<qint64>(start, 0)),
      FEnd(std::clamp<qint64>(end, 0, source.Size())),
      FForm(form)
{}

bool TChunkWalker::Next(TChunk& chunk)
{
    const bool wide = FForm == cfBig64 || FForm == cfDSF;
    const qint64 headerSize = wide ? 12 : 8;
    if (FPosition > FEnd - headerSize || FBudget-- <= 0)
        return false;
    char header[12];
    if (FSource.ReadAt(FPosition, header, headerSize) != headerSize)
        return false;
    TByteReader reader(QByteArrayView(header, headerSize));
    chunk.ID = TFourCC(reader.Bytes(4));
    switch (FForm) {
    case cfLittle32: chunk.Claimed = reader.U32LE(); break;
    case cfBig32: chunk.Claimed = reader.U32BE(); break;
    case cfBig64: chunk.Claimed = reader.U64BE(); break;
    case cfDSF: chunk.Claimed = std::max<quint64>(reader.U64LE(), 12) - 12; break;
    }
    chunk.Offset = FPosition + headerSize;
    // A size may claim more than the file, up to 2^64 - 1: it is cut before anything is added to it.
    const qint64 left = FEnd - chunk.Offset;
    chunk.Size = chunk.Claimed > static_cast<quint64>(left) ? left : static_cast<qint64>(chunk.Claimed);
    FPosition = chunk.Offset + chunk.Size;
    if (FForm != cfDSF && chunk.Size % 2 != 0)
        ++FPosition;
    return true;
}

} // namespace Kestrune
