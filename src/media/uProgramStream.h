// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <functional>

namespace Kestrune {

/// What stands before the payload of a PES packet (ISO/IEC 13818-1, section 2.4.3.6).
struct TPESHeader {
    quint8 StreamID = 0;
    int Length = 0;       ///< of the head in bytes: the payload begins there
    qint64 PTS = -1;      ///< 90 kHz ticks, 33 bits; -1 when the packet has none
    int ExtensionID = -1; ///< stream_id_extension, or -1
};

/// Reads the head of a packet that begins with 00 00 01; false when it is cut off or is none.
bool ParsePESHeader(QByteArrayView bytes, TPESHeader& header);

/// Walks the packets of one sector of a program stream. The handler gets the payload of each private_stream_1 packet
/// (sub-stream byte first) and ends the walk by returning false.
void WalkPrivateStream1(QByteArrayView sector, const std::function<bool(QByteArrayView payload)>& handler);

/// Place of the first major sync of MLP or TrueHD, counted from the start of its access unit (four bytes before the
/// sync word); -1 for none. `from` is where to begin.
qint64 FindMLPSync(QByteArrayView bytes, qint64 from = 0);

/// Samples per second that a major sync at an access unit states; 0 when it is unknown.
int MLPSampleRate(QByteArrayView accessUnit);

} // namespace Kestrune
