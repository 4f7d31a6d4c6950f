// SPDX-License-Identifier: GPL-3.0-or-later
#include "uOggPages.h"

#include <algorithm>

namespace Kestrune {

namespace {

constexpr qint64 PageHeaderSize = 27;
constexpr qint64 LargestPage = 27 + 255 + 255 * 255;

// The fixed part of a page's header: its lacing and the places that follow from it are left out.
std::optional<TOggPage> ParsePage(TByteReader& reader)
{
    if (reader.Bytes(4) != "OggS" || reader.U8() != 0)
        return std::nullopt;
    TOggPage page;
    const quint8 flags = reader.U8();
    page.Continued = (flags & 1) != 0;
    page.First = (flags & 2) != 0;
    page.Granule = static_cast<qint64>(reader.U64LE());
    page.Serial = reader.U32LE();
    reader.Skip(8); // sequence number and checksum
    return reader.Failed() ? std::nullopt : std::optional(page);
}

} // namespace

std::optional<TOggPage> ReadOggPage(TByteSource& source, qint64 offset)
{
    char bytes[PageHeaderSize + 255];
    const qint64 count = source.ReadAt(offset, bytes, sizeof bytes);
    TByteReader reader(QByteArrayView(bytes, std::max<qint64>(count, 0)));
    auto page = ParsePage(reader);
    if (!page)
        return std::nullopt;
    page->Lacing = reader.Bytes(reader.U8()).toByteArray();
    if (reader.Failed())
        return std::nullopt;
    page->Offset = offset;
    page->Body = offset + reader.Position();
    page->End = page->Body;
    for (const char size : page->Lacing)
        page->End += static_cast<quint8>(size);
    return page;
}

std::optional<QByteArray> TOggPacketReader::Next(qint64 most)
{
    QByteArray packet;
    for (;;) {
        if (FLace >= FPage.Lacing.size() && !NextPage())
            return packet.isEmpty() ? std::nullopt : std::optional(packet);
        qint64 length = 0;
        bool complete = false;
        while (FLace < FPage.Lacing.size() && !complete) {
            const auto size = static_cast<quint8>(FPage.Lacing[FLace++]);
            length += size;
            complete = size < 255;
        }
        if (packet.size() + length > most)
            return std::nullopt;
        packet += FSource.Read(FPosition, length);
        FPosition += length;
        if (complete)
            return packet;
    }
}

bool TOggPacketReader::NextPage()
{
    while (FBudget-- > 0) {
        auto page = ReadOggPage(FSource, FNext);
        if (!page)
            return false;
        FNext = page->End;
        if (page->Serial != FSerial)
            continue;
        FPage = std::move(*page);
        FPosition = FPage.Body;
        FLace = 0;
        return true;
    }
    return false;
}

qint64 LastOggGranule(TByteSource& source, quint32 serial)
{
    constexpr qint64 farthest = 1 << 20; // other streams' pages may stand last
    qint64 end = source.Size();
    const qint64 limit = std::max<qint64>(0, end - farthest);
    while (end > limit) {
        // The last page is mostly in the tail that is in memory anyway; a page reaches back 64 KiB at most.
        const qint64 step = end == source.Size() ? TFileSource::TailSize : LargestPage;
        const qint64 start = std::max(limit, end - step);
        const QByteArray bytes = source.Read(start, end - start + PageHeaderSize);
        for (qsizetype at = bytes.lastIndexOf("OggS"); at >= 0; at = at > 0 ? bytes.lastIndexOf("OggS", at - 1) : -1) {
            // A file may be full of marks: each is looked at where it lies in memory already.
            TByteReader header(QByteArrayView(bytes).sliced(at));
            const auto page = ParsePage(header);
            if (page && page->Serial == serial && page->Granule > 0)
                return page->Granule;
        }
        end = start;
    }
    return 0;
}

} // namespace Kestrune
