// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uByteReader.h"

namespace Kestrune {

enum class TMPEGVersion : quint8 { tmpegvUnknown, tmpegv1, tmpegv2, tmpegv25 };
using enum TMPEGVersion;
enum class TMPEGLayer : quint8 { tmpeglUnknown, tmpegl1, tmpegl2, tmpegl3 };
using enum TMPEGLayer;
enum class TMPEGChannelMode : quint8 {
    tmpegcmUnknown,
    tmpegcmMono,
    tmpegcmDualChannel,
    tmpegcmJointStereo,
    tmpegcmStereo
};
using enum TMPEGChannelMode;
enum class TMPEGModeExtension : quint8 { tmpegmeUnknown, tmpegmeNone, tmpegmeIntensity, tmpegmeMS, tmpegmeIntensityMS };
using enum TMPEGModeExtension;
enum class TMPEGEmphasis : quint8 { tmpegeUnknown, tmpegeNo, tmpege5015, tmpegeCCITJ17 };
using enum TMPEGEmphasis;

/// One frame header (ISO/IEC 11172-3 and 13818-3, section 2.4.1.3), with what follows from it.
struct TMPEGFrame {
    TMPEGVersion Version = tmpegvUnknown;
    TMPEGLayer Layer = tmpeglUnknown;
    TMPEGChannelMode ChannelMode = tmpegcmUnknown;
    TMPEGModeExtension ModeExtension = tmpegmeUnknown;
    TMPEGEmphasis Emphasis = tmpegeUnknown;
    bool Protected = false; ///< a checksum of two bytes follows the header
    bool Padding = false;
    bool Copyrighted = false;
    bool Original = false;
    int BitRate = 0;    ///< bits per second
    int SampleRate = 0; ///< per second
    int Samples = 0;    ///< per channel in one frame
    int Size = 0;       ///< of the frame in bytes, header included
};

/// What the audio part of an MPEG file tells.
struct TMPEGInfo {
    TMPEGFrame Frame;       ///< the first frame
    qint64 Position = 0;    ///< of the first frame in the file
    bool VBR = false;       ///< by the header of the variable bit rate
    quint32 FrameCount = 0; ///< from the Xing, Info or VBRI header, else 0
    quint64 ByteCount = 0;  ///< likewise
    double PlayTime = 0;    ///< seconds
    qint64 SampleCount = 0; ///< per channel
    qint64 BitRate = 0;     ///< bits per second, the average where the file tells it
};

/// Reads a frame header from its four bytes, big-endian. False for what is no header; also for free-format bit rates,
/// whose frames have no stated size.
bool ParseMPEGFrame(quint32 header, TMPEGFrame& frame);

/// Looks for the first frame from `start` on, at most `searchLength` bytes far, and reads it and its Xing, Info or VBRI
/// header. A frame counts when its successor stands where it should, one after junk only when the next one does, too.
/// `audioEnd` is where the tags at the file's end begin. False when there is no such frame.
bool ReadMPEGInfo(TByteSource& source, qint64 start, qint64 searchLength, qint64 audioEnd, TMPEGInfo& info);

/// 1 for mono, 2 for the other modes, 0 for unknown.
int MPEGChannels(TMPEGChannelMode mode);

} // namespace Kestrune
