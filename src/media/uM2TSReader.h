// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uByteReader.h"
#include "uM2TSTables.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace Kestrune {

/// Short name of a codec for lists and the log.
QString M2TSCodecName(TM2TSCodec codec);

/// Reads the audio of an MPEG transport stream (ISO/IEC 13818-1) in packets of 188 bytes, or of 192 as on Blu-ray
/// discs: its program tables, its codec, its length by time stamps, and the raw TrueHD and AC-3 streams.
class TM2TSReader {
public:
    /// True when program tables name at least one audio stream.
    bool Open(const QString& filePath);
    /// The same for a byte range of a file, such as a disc image.
    bool OpenWindow(const QString& filePath, qint64 offset, qint64 length);
    bool Open(std::shared_ptr<TByteSource> stream);
    void Close();

    /// Audio streams of the first program, in the order of its table.
    const std::vector<TM2TSStream>& Streams() const { return FStreams; }
    /// The stream that counts: TrueHD, else AC-3, else the first.
    TM2TSCodec AudioCodec() const;
    /// From the first to the last time stamp of that stream; 0 when it has none.
    double DurationSec() const { return FDuration; }
    /// True when the player can play it: TrueHD or AC-3.
    bool IsPlayable() const { return AudioCodec() == mcTrueHD || AudioCodec() == mcAC3; }

    /// The TrueHD stream from its first major sync on; false without one.
    bool ExtractTrueHD(QByteArray& out) const;
    /// The AC-3 stream: one of its own, else the core that goes along with TrueHD.
    bool ExtractAC3Core(QByteArray& out) const;

private:
    using TPacketHandler = std::function<bool(QByteArrayView packet)>;
    bool FindPackets();
    void ForEachPacket(qint64 from, qint64 to, const TPacketHandler& handler) const;
    bool ReadTables();
    void ReadDuration();
    std::optional<qint64> TimeStampIn(qint64 from, qint64 to, bool last) const;
    bool Extract(quint16 pid, const std::function<void(int extensionID, QByteArrayView payload)>& take) const;
    const TM2TSStream* Chosen() const;
    const TM2TSStream* FindStream(TM2TSCodec codec) const;

    std::shared_ptr<TByteSource> FStream;
    std::unique_ptr<TByteSource> FFile; // under a window
    qint64 FStart = 0;                  // of the first packet
    int FPacketSize = 0;
    std::vector<TM2TSStream> FStreams;
    double FDuration = 0;
};

} // namespace Kestrune
