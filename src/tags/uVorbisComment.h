// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uTagNames.h"
#include "uTagTypes.h"

#include <optional>

namespace Kestrune {

/// The comment header of Ogg and FLAC files (Xiph.Org: Ogg Vorbis I format specification: comment field and header
/// specification).
struct TVorbisComments {
    QString Vendor;
    std::vector<TTagField> Fields;     ///< texts, names as stored
    std::vector<TTagPicture> Pictures; ///< METADATA_BLOCK_PICTURE and the older COVERART, under these names

    /// Adds what the bytes hold, from the vendor's length on, up to the first fault. False when they are faulty.
    /// Pictures are passed over unless `parseCoverArts`. Of a second block only the names that are new are added.
    bool Parse(QByteArrayView bytes, bool parseCoverArts);

private:
    void AddComment(QByteArrayView comment);
    void AddPicture(const QString& name, QByteArrayView value);

    TEarlierNames FEarlier;
    bool FSecondBlock = false;
    bool FTakePictures = true; // of the block that is being read
};

/// The content of a FLAC picture block (RFC 9639, section 8.8); what is left of the picture when it is cut off. Nothing
/// when its fields are.
std::optional<TTagPicture> ParseFlacPicture(QByteArrayView bytes);

} // namespace Kestrune
