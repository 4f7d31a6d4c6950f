// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uChunks.h"
#include "uTagTypes.h"

namespace Kestrune {

enum class TSourceFileType : quint8 { sftUnknown, sftMPEG, sftWAVE, sftRF64, sftAIFF, sftDSF, sftDFF };
using enum TSourceFileType;

/// Channel layouts of DSF (DSF file format specification 1.01, "fmt " chunk).
enum class TDSFChannelType : quint8 {
    dsfctUnknown,
    dsfctMono,
    dsfctStereo,
    dsfct3Channels,
    dsfctQuad,
    dsfct4Channels,
    dsfct5Channels,
    dsfct51Channels
};
using enum TDSFChannelType;

/// Where a container keeps an ID3v2 tag; `Size` 0 when it has none.
struct TTagPlace {
    qint64 Offset = 0;
    qint64 Size = 0;
};

/// "fmt " chunk of RIFF, RF64 and BW64 files.
struct TWAVInfo {
    quint16 FormatTag = 0;
    TAudioAttributes Audio;
    qint64 DataSize = 0;
    TTagPlace ID3;                    ///< chunk "id3 " or "ID3 "
    std::vector<TTagPlace> InfoLists; ///< LIST chunks of the type INFO, with these four bytes
    TTagPlace Bext;
    TTagPlace Cart;
};

/// COMM chunk of AIFF and AIFF-C files.
struct TAIFFInfo {
    TFourCC Compression; ///< AIFF-C only
    TAudioAttributes Audio;
    TTagPlace ID3;
};

/// "DSD " and "fmt " chunks of DSF files.
struct TDSFInfo {
    TDSFChannelType ChannelType = dsfctUnknown;
    TAudioAttributes Audio;
    TTagPlace ID3;
};

/// PROP chunk of DSDIFF files.
struct TDFFInfo {
    TFourCC Compression;
    TAudioAttributes Audio;
    TTagPlace ID3;
};

/// The kind of container that begins at `position`; `sftUnknown` for every other file, MPEG among them.
TSourceFileType ContainerAt(TByteSource& source, qint64 position);

// The readers take the position of a container that ContainerAt has recognised. They give what they found before
// a fault; false when there was no stream description at all.

/// RIFF, RF64 and BW64 (EBU Tech 3306, ITU-R BS.2088): in the latter the data size comes from "ds64".
bool ReadWAVInfo(TByteSource& source, qint64 position, TWAVInfo& info);
bool ReadAIFFInfo(TByteSource& source, qint64 position, TAIFFInfo& info);
bool ReadDSFInfo(TByteSource& source, qint64 position, TDSFInfo& info);
bool ReadDFFInfo(TByteSource& source, qint64 position, TDFFInfo& info);

/// An 80-bit IEEE 754 extended number of ten bytes, big-endian, as a rate; 0 for what is none (negative, not finite).
double ReadExtended(QByteArrayView bytes);

} // namespace Kestrune
