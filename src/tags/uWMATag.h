// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uByteReader.h"
#include "uTagTypes.h"

namespace Kestrune {

/// Attributes and sound description of Windows Media files (Advanced Systems Format specification, revision 01.20).
class TWMATag {
public:
    bool ParseCoverArts = true; ///< set before loading

    bool Loaded = false;               ///< an attribute or a picture was found
    std::vector<TTagField> Attributes; ///< names as stored; the content description has "Title", "Author" and so on
    std::vector<TTagPicture> Pictures; ///< "WM/Picture"
    TAudioAttributes Audio;
    qint64 Duration = 0; ///< milliseconds

    void Clear();
    /// A result of uTagTypes.h; 0 when a tag was read.
    int LoadFromFile(const QString& fileName);
    int Load(TByteSource& source);

private:
    void ReadObjects(QByteArrayView bytes, int depth);
    void ReadFileProperties(QByteArrayView bytes);
    void ReadStreamProperties(QByteArrayView bytes);
    void ReadContentDescription(QByteArrayView bytes);
    void ReadExtendedContent(QByteArrayView bytes);
    void ReadMetadata(QByteArrayView bytes);
    void AddAttribute(const QString& name, quint16 type, QByteArrayView value);
    void AddPicture(QByteArrayView value);
};

/// Whether an ASF header stands at the start.
bool IsASF(TByteSource& source);

} // namespace Kestrune
