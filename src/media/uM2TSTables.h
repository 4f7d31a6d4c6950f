// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

#include <vector>

namespace Kestrune {

enum class TM2TSCodec : quint8 { mcUnknown, mcLPCM, mcAC3, mcEAC3, mcDTS, mcDTSHD, mcTrueHD, mcMPEG, mcAAC };
using enum TM2TSCodec;

struct TM2TSStream {
    quint16 PID = 0;
    TM2TSCodec Codec = mcUnknown;
};

/// Gathers the program association and program map tables (ISO/IEC 13818-1, section 2.4.4) from packets as they come.
class TM2TSTables {
public:
    /// On Blu-ray discs some stream types mean other codecs than elsewhere.
    explicit TM2TSTables(bool bluray) : FBluray(bluray) {}

    /// Takes the payload of a packet; false once the tables are read.
    bool Take(quint16 pid, bool starts, QByteArrayView payload);
    const std::vector<TM2TSStream>& Streams() const { return FStreams; }

private:
    void TakeAssociation();
    void TakeMap();
    TM2TSCodec CodecOf(quint8 streamType, QByteArrayView descriptors) const;

    bool FBluray;
    int FMapPID = -1;
    QByteArray FSection;
    std::vector<TM2TSStream> FStreams;
    bool FMapRead = false;
};

} // namespace Kestrune
