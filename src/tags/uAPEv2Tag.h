// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uByteReader.h"
#include "uTagTypes.h"

namespace Kestrune {

/// APEv1 and APEv2 tags (APE tags specification, hydrogenaudio wiki) at the end of a file, also before an ID3v1 or
/// Lyrics3 tag, or at its start.
class TAPEv2Tag {
public:
    bool ParseCoverArts = true; ///< set before loading

    bool Loaded = false;
    int Version = 0; ///< 1000 or 2000
    /// Size of a tag at the end of the file with header and footer, 0 for one at the start.
    qint64 Size = 0;
    std::vector<TTagField> Fields;     ///< texts and addresses; a list of values makes several
    std::vector<TTagPicture> Pictures; ///< "Cover Art (...)" items; the description is their file name

    void Clear();
    /// A result of uTagTypes.h; 0 when a tag was read.
    int LoadFromFile(const QString& fileName);
    int Load(TByteSource& source);

private:
    int LoadEndingAt(TByteSource& source, qint64 end);
    void ReadItems(QByteArrayView bytes, quint32 count);
    void AddItem(QByteArrayView key, QByteArrayView value, quint32 flags);
};

} // namespace Kestrune
