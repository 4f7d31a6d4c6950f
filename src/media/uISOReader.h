// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uByteReader.h"

#include <QString>

#include <memory>
#include <optional>
#include <vector>

class QIODevice;

namespace Kestrune {

inline constexpr qint64 DiscSectorSize = 2048;

/// One entry of an ISO 9660 image.
struct TISOFile {
    QString Name;      ///< last component of the path, without the version ";1"
    QString FullPath;  ///< components joined by "/", no leading "/"
    qint64 Offset = 0; ///< of the data in the image, in bytes
    quint32 Size = 0;  ///< of the data, in bytes
    bool IsDir = false;
};

/// Lists the files of an ISO 9660 image (ECMA-119) by its primary volume descriptor, and copies them out. Names are
/// the 8-bit names of the directory records.
class TISOReader {
public:
    /// Closes what is open, then reads the directories. False when the file is no ISO 9660 image.
    bool Open(const QString& isoPath);
    /// The same for an image that is open already.
    bool Open(std::shared_ptr<TByteSource> image);
    void Close();

    /// A directory stands directly before what it holds.
    const std::vector<TISOFile>& Files() const { return FFiles; }
    QString VolumeLabel() const { return FVolumeLabel; }
    /// The image, null when none is open.
    std::shared_ptr<TByteSource> Image() const { return FStream; }

    /// Copies the file's bytes. False when no image is open, the image ends before the file, or `out` fails.
    bool ExtractToStream(const TISOFile& file, QIODevice& out) const;
    bool ExtractToFile(const TISOFile& file, const QString& outPath) const;
    /// The first file, not directory, whose name or path is `fileName` without regard to case.
    std::optional<TISOFile> FindFile(const QString& fileName) const;
    bool GetFileOffset(const QString& fileName, qint64& offset, quint32& size) const;

private:
    struct TWalk;
    void WalkDirectory(quint32 block, quint32 length, const QString& prefix, TWalk& walk);

    std::shared_ptr<TByteSource> FStream;
    std::vector<TISOFile> FFiles;
    QString FVolumeLabel;
};

/// Copies a byte range of a source in pieces of 65,536 bytes; false when the source or `out` ends early.
bool CopyBytes(TByteSource& source, qint64 offset, qint64 length, QIODevice& out);

/// The same into a file that is written aside and renamed; nothing is left of it on failure.
bool CopyBytesToFile(TByteSource& source, qint64 offset, qint64 length, const QString& outPath);

} // namespace Kestrune
