// SPDX-License-Identifier: GPL-3.0-or-later
#include "uAudioLength.h"

#include "uByteReader.h"

#include <QByteArray>

#include <algorithm>
#include <limits>

namespace Kestrune {

namespace {

int WholeSeconds(quint64 samples, quint64 rate)
{
    constexpr quint64 most = std::numeric_limits<int>::max();
    return rate == 0 ? 0 : static_cast<int>(std::min(samples / rate, most));
}

// Size of the ID3v2 tag whose first ten bytes these are, without these: four bytes of 7 bits each.
qint64 TagSize(QByteArrayView head)
{
    qint64 size = 0;
    for (qsizetype i = 6; i < 10; ++i)
        size = size << 7 | (head[i] & 0x7F);
    return size;
}

} // namespace

int TTADurationSec(TByteSource& file)
{
    constexpr qint64 headerSize = 18; // what is read of it
    if (file.Size() <= 21)
        return 0;
    const QByteArray head = file.Read(0, 10);
    const qint64 start = head.startsWith("ID3") && head.size() == 10 ? 10 + TagSize(head) : 0;
    const QByteArray header = file.Read(start, headerSize);
    if (!header.startsWith("TTA1"))
        return 0;
    TByteReader reader(header);
    reader.Skip(10); // mark, format, channels, bits
    const quint32 rate = reader.U32LE();
    return WholeSeconds(reader.U32LE(), rate);
}

int OpusDurationSec(TByteSource& file)
{
    constexpr qint64 tailSize = 65536;
    if (file.Size() < 100)
        return 0;
    const qint64 start = std::max<qint64>(0, file.Size() - tailSize);
    const QByteArray tail = file.Read(start, tailSize);
    // The mark and the granule position behind it take 14 bytes.
    const qsizetype page = tail.size() < 14 ? -1 : tail.lastIndexOf("OggS", tail.size() - 14);
    if (page < 0)
        return 0;
    TByteReader reader(tail);
    reader.Seek(page + 6);
    const auto granule = static_cast<qint64>(reader.U64LE());
    return granule > 0 ? WholeSeconds(static_cast<quint64>(granule), 48000) : 0;
}

} // namespace Kestrune
