// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uByteReader.h"

namespace Kestrune {

/// The sizes of the blocks of a Vorbis stream by the modes of its packets (Vorbis I specification, section 4.2).
class TVorbisModes {
public:
    /// Takes the identification header and the setup header, of which the modes are the last part. Without these, all
    /// blocks count as long ones.
    TVorbisModes(QByteArrayView identification, QByteArrayView setup);
    /// Samples of the block that begins with this byte; 0 for a header.
    int BlockSize(quint8 first) const;

private:
    void ReadModes(QByteArrayView setup);

    int FSizes[2] = {0, 0};
    quint64 FLongModes = ~quint64(0); // a bit for each mode
    int FModeBits = 0;
};

/// Samples, at 48,000 a second, of an Opus packet that begins with these two bytes (RFC 6716, section 3); 0 for
/// what is none.
int OpusPacketSamples(quint8 first, quint8 second);

/// The first granule position of a stream, and the samples up to it that the file holds. There are fewer in a file that
/// was cut from a longer stream.
struct TOggStart {
    qint64 Granule = 0;
    qint64 Samples = 0;
};

/// `from` is the end of the header pages.
TOggStart VorbisStart(TByteSource& source, qint64 from, quint32 serial, const TVorbisModes& modes);
TOggStart OpusStart(TByteSource& source, qint64 from, quint32 serial);

} // namespace Kestrune
