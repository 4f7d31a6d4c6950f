// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uByteReader.h"

namespace Kestrune {

/// What a file's first bytes say that it is.
enum class TStreamType : quint8 {
    stUnknown,
    stWAV,
    stRF64,
    stMonkey,
    stOptimFROG,
    stMusepack,
    stFlac,
    stDSF,
    stDFF,
    stOggFlac,
    stOggVorbis,
    stOpus,
    stTheora,
    stAIFF,
    stAIFC,
    stMP4,
    stWAVPack,
    stMPEG
};
using enum TStreamType;

/// Looks behind an ID3v2 tag at the start. MPEG is guessed from a frame mark within the next 1,025 bytes.
TStreamType SniffStream(TByteSource& source);

} // namespace Kestrune
