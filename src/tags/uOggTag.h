// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uByteReader.h"
#include "uOggStart.h"
#include "uVorbisComment.h"

namespace Kestrune {

class TOggPacketReader;

enum class TOggFormat : quint8 { ofUnknown, ofVorbis, ofOpus, ofTheora, ofFlac, ofSpeex };
using enum TOggFormat;

/// Comments, pictures and attributes of Ogg files (RFC 3533): Vorbis, Opus (RFC 7845), FLAC in Ogg, Speex and Theora.
/// Of several streams the first one with sound is read, else the picture stream.
class TOpusTag {
public:
    bool ParseCoverArts = true; ///< set before loading

    bool Loaded = false; ///< a comment header was found
    TOggFormat Format = ofUnknown;
    TVorbisComments Comments; ///< picture blocks of FLAC in Ogg are among its pictures
    TAudioAttributes Audio;

    void Clear();
    /// A result of uTagTypes.h; 0 when a tag was read.
    int LoadFromFile(const QString& fileName);
    int Load(TByteSource& source);

private:
    bool ReadIdentification(QByteArrayView packet);
    void ReadVorbis(QByteArrayView packet);
    void ReadOpus(QByteArrayView packet);
    void ReadSpeex(QByteArrayView packet);
    void ReadTheora(QByteArrayView packet);
    /// False when no further header is wanted.
    bool ReadHeader(QByteArrayView packet);
    TOggStart StartOfSound(TByteSource& source, TOggPacketReader& packets, QByteArrayView identification) const;
    void ReadTimes(TByteSource& source, qint64 soundStart);
    double GranuleSeconds(qint64 granule) const;

    quint32 FSerial = 0;
    TOggStart FStart;
    int FPreSkip = 0;      // samples of Opus before the sound
    int FGranuleShift = 0; // of Theora
    double FFrameRate = 0; // of Theora
    bool FHasRate = false; // the header states a bit rate
};

} // namespace Kestrune
