// SPDX-License-Identifier: GPL-3.0-or-later
#include "uMP4Boxes.h"

#include <algorithm>

namespace Kestrune {

QByteArrayView TMP4Walker::Header()
{
    constexpr qint64 most = 16;
    if (FPosition < FBufferStart || FPosition + most > FBufferStart + FBufferSize) {
        FBufferStart = FPosition;
        FBufferSize = std::max<qint64>(FSource.ReadAt(FPosition, FBuffer.data(), std::ssize(FBuffer)), 0);
    }
    const qint64 at = FPosition - FBufferStart;
    return {FBuffer.data() + at, std::min(most, FBufferSize - at)};
}

bool TMP4Walker::Next(TMP4Box& box)
{
    if (FPosition < 0 || FPosition > FEnd - 8 || FBudget-- <= 0)
        return false;
    TByteReader reader(Header());
    quint64 size = reader.U32BE();
    box.Name = TFourCC(reader.Bytes(4));
    qint64 header = 8;
    if (size == 1) {
        size = reader.U64BE();
        header = 16;
    }
    const qint64 left = FEnd - FPosition;
    if (size == 0) // the last atom of a file may reach to its end
        size = static_cast<quint64>(left);
    if (reader.Failed() || size < static_cast<quint64>(header) || header > left)
        return false;
    box.Offset = FPosition + header;
    box.End = size > static_cast<quint64>(left) ? FEnd : FPosition + static_cast<qint64>(size);
    FPosition = box.End;
    return true;
}

std::optional<TMP4Box> FindMP4Box(TByteSource& source, qint64 start, qint64 end, TFourCC name)
{
    TMP4Walker walker(source, start, end);
    for (TMP4Box box; walker.Next(box);)
        if (box.Name == name)
            return box;
    return std::nullopt;
}

double ReadMP4Time(TByteSource& source, const TMP4Box& box, quint32& timeScale)
{
    const QByteArray bytes = source.Read(box.Offset, 32);
    TByteReader reader(bytes);
    const bool wide = reader.U8() == 1;
    reader.Skip(3 + (wide ? 16 : 8));
    timeScale = reader.U32BE();
    const quint64 duration = wide ? reader.U64BE() : reader.U32BE();
    const bool unknown = duration == (wide ? ~quint64(0) : quint64(0xFFFFFFFF));
    return reader.Failed() || timeScale == 0 || unknown ? 0 : static_cast<double>(duration) / timeScale;
}

} // namespace Kestrune
