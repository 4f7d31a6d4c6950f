// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uByteReader.h"
#include "uVorbisComment.h"

namespace Kestrune {

/// The STREAMINFO block of FLAC (RFC 9639, section 8.2).
struct TFlacStreamInfo {
    int MinimumBlockSize = 0;
    int MaximumBlockSize = 0;
    TAudioAttributes Audio; ///< without the bit rate, which needs the size of the sound

    /// Reads the block's content. False when it is cut off.
    bool Parse(QByteArrayView bytes);
};

/// Metadata of native FLAC files, also behind an ID3v2 tag.
class TFlacTag {
public:
    bool ParseCoverArts = true; ///< set before loading

    bool Loaded = false; ///< a comment or picture block was found
    TVorbisComments Comments;
    std::vector<TTagPicture> Pictures; ///< picture blocks, in order
    TAudioAttributes Audio;

    void Clear();
    /// A result of uTagTypes.h; 0 when a tag was read.
    int LoadFromFile(const QString& fileName);
    int Load(TByteSource& source);

private:
    void LoadBlock(int type, TByteSource& source, qint64 offset, qint64 size);
};

} // namespace Kestrune
