// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uByteReader.h"

#include <optional>

namespace Kestrune {

/// The header of one page (RFC 3533, section 6).
struct TOggPage {
    qint64 Offset = 0; ///< of the page
    qint64 Body = 0;   ///< offset of the content
    qint64 End = 0;
    bool Continued = false; ///< the content begins inside a packet
    bool First = false;
    qint64 Granule = -1; ///< of the last packet that ends here; -1 when none does
    quint32 Serial = 0;
    QByteArray Lacing; ///< sizes of the segments; one below 255 ends a packet
};

std::optional<TOggPage> ReadOggPage(TByteSource& source, qint64 offset);

/// Puts the packets of one stream together from its pages.
class TOggPacketReader {
public:
    TOggPacketReader(TByteSource& source, qint64 start, quint32 serial) : FSource(source), FNext(start), FSerial(serial)
    {}

    /// The next packet, or what is left of it at the end; nothing there or when it is longer than `most`.
    std::optional<QByteArray> Next(qint64 most = 0x7FFFFFFF);

    /// Where the pages read so far end.
    qint64 Position() const { return FNext; }

private:
    static constexpr int MostHeaderPages = 16384; // 64 MiB in the usual pages; empty ones must not keep us busy

    bool NextPage();

    TByteSource& FSource;
    qint64 FNext;
    quint32 FSerial;
    TOggPage FPage;
    qsizetype FLace = 0;
    qint64 FPosition = 0;
    int FBudget = MostHeaderPages;
};

/// Granule position of the last page of a stream that completes a packet; 0 when there is none near the end.
qint64 LastOggGranule(TByteSource& source, quint32 serial);

} // namespace Kestrune
