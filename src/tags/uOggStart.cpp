// SPDX-License-Identifier: GPL-3.0-or-later
#include "uOggStart.h"

#include "uOggPages.h"

#include <algorithm>
#include <functional>

namespace Kestrune {

namespace {

constexpr int MostSoundPages = 256; // the first one that ends a packet comes sooner

// A number of some bits, the first one lowest, as Vorbis packs them.
quint32 PackedBits(QByteArrayView bytes, qsizetype at, int count)
{
    quint32 value = 0;
    for (int i = 0; i < count; ++i, ++at)
        value |= static_cast<quint32>(bytes[at / 8] >> (at % 8) & 1) << i;
    return value;
}

// Calls `take` with the first two bytes of each packet that ends on a page, until a page tells its granule position,
// and returns that. Headers have the position 0.
qint64 WalkToGranule(TByteSource& source, qint64 position, quint32 serial,
                     const std::function<void(quint8 first, quint8 second)>& take)
{
    char head[2] = {0, 0};
    bool known = false; // the start of the packet was seen
    for (int i = 0; i < MostSoundPages; ++i) {
        const auto page = ReadOggPage(source, position);
        if (!page)
            return 0;
        position = page->End;
        if (page->Serial != serial)
            continue;
        const QByteArray body = source.Read(page->Body, page->End - page->Body);
        qsizetype at = 0;
        bool inside = page->Continued;
        known = known && inside;
        for (const char lace : page->Lacing) {
            const auto size = static_cast<quint8>(lace);
            if (!inside) {
                known = size > 0 && at < body.size();
                head[0] = known ? body[at] : '\0';
                head[1] = size > 1 && at + 1 < body.size() ? body[at + 1] : '\0';
            }
            at += size;
            inside = size == 255;
            if (!inside && known)
                take(static_cast<quint8>(head[0]), static_cast<quint8>(head[1]));
        }
        if (page->Granule > 0)
            return page->Granule;
    }
    return 0;
}

} // namespace

TVorbisModes::TVorbisModes(QByteArrayView identification, QByteArrayView setup)
{
    constexpr qsizetype sizesAt = 28;
    if (identification.size() <= sizesAt)
        return;
    for (int i = 0; i < 2; ++i) {
        const int exponent = identification[sizesAt] >> (4 * i) & 15;
        FSizes[i] = exponent >= 6 && exponent <= 13 ? 1 << exponent : 0;
    }
    ReadModes(setup);
}

// The way to the modes leads through all code books. Instead they are found from the end: a flag that is set, and
// before it modes of 41 bits, most of them 0, before which their number stands.
void TVorbisModes::ReadModes(QByteArrayView setup)
{
    constexpr qsizetype modeBits = 1 + 16 + 16 + 8;
    constexpr int countBits = 6;
    constexpr int mostModes = 64;
    if (!setup.startsWith("\x05vorbis"))
        return;
    qsizetype end = setup.size() * 8;
    while (end > 0 && PackedBits(setup, end - 1, 1) == 0)
        --end;
    --end; // the flag
    int count = 0;
    for (int tried = 1; tried <= mostModes && end >= tried * modeBits + countBits; ++tried) {
        const qsizetype mode = end - tried * modeBits;
        if (PackedBits(setup, mode + 1, 32) != 0 || PackedBits(setup, mode + 33, 8) >= mostModes)
            break;
        if (static_cast<int>(PackedBits(setup, mode - countBits, countBits)) == tried - 1)
            count = tried;
    }
    if (count == 0)
        return;
    FLongModes = 0;
    for (int i = 0; i < count; ++i)
        FLongModes |= static_cast<quint64>(PackedBits(setup, end - (count - i) * modeBits, 1)) << i;
    while (1 << FModeBits < count)
        ++FModeBits;
}

int TVorbisModes::BlockSize(quint8 first) const
{
    if ((first & 1) != 0)
        return 0;
    const int mode = first >> 1 & ((1 << FModeBits) - 1);
    return FSizes[FLongModes >> mode & 1];
}

int OpusPacketSamples(quint8 first, quint8 second)
{
    constexpr int speech[] = {480, 960, 1920, 2880};
    constexpr int music[] = {120, 240, 480, 960};
    constexpr int most = 5760; // what claims to be longer is no packet
    const int kind = first >> 3;
    const int frame = kind < 12 ? speech[kind & 3] : kind < 16 ? speech[kind & 1] : music[kind & 3];
    const int code = first & 3;
    const int samples = frame * (code == 0 ? 1 : code == 3 ? second & 0x3F : 2);
    return samples <= most ? samples : 0;
}

TOggStart VorbisStart(TByteSource& source, qint64 from, quint32 serial, const TVorbisModes& modes)
{
    TOggStart start;
    int before = 0; // each block overlaps the one before; the first gives nothing yet
    start.Granule = WalkToGranule(source, from, serial, [&](quint8 first, quint8) {
        const int size = modes.BlockSize(first);
        if (size > 0 && before > 0)
            start.Samples += (before + size) / 4;
        before = size > 0 ? size : before;
    });
    return start;
}

TOggStart OpusStart(TByteSource& source, qint64 from, quint32 serial)
{
    TOggStart start;
    start.Granule = WalkToGranule(
        source, from, serial, [&](quint8 first, quint8 second) { start.Samples += OpusPacketSamples(first, second); });
    return start;
}

} // namespace Kestrune
