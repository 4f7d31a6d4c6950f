// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uContainerInfo.h"
#include "uTagNames.h"

namespace Kestrune {

/// Texts of WAVE files: LIST INFO chunks, the broadcast extension "bext" (EBU Tech 3285 version 2) and the "cart" chunk
/// (AES46). The chunk with an ID3v2 tag belongs to that reader.
class TWAVTag {
public:
    bool Loaded = false;              ///< one of the three was found
    std::vector<TTagField> Frames;    ///< INFO texts under their four letters
    std::vector<TTagField> Broadcast; ///< "BEXT ..." names, fields that are not empty
    std::vector<TTagField> Cart;      ///< "CART ..." names, likewise
    TWAVInfo Info;

    void Clear() { *this = {}; }
    /// A result of uTagTypes.h; 0 when a tag was read.
    int LoadFromFile(const QString& fileName);
    int Load(TByteSource& source);

private:
    void ReadInfoList(QByteArrayView bytes);
    void ReadBroadcast(QByteArrayView bytes);
    void ReadCart(QByteArrayView bytes);

    TEarlierNames FEarlier; // of a second list only new names count
};

} // namespace Kestrune
