// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uByteReader.h"

#include <QSet>
#include <QString>

#include <memory>
#include <optional>
#include <vector>

class QIODevice;

namespace Kestrune {

struct TUDFExtent {
    qint64 Offset = 0; ///< in the image, in bytes
    qint64 Size = 0;   ///< in bytes
};

struct TUDFFile {
    QString Path;    ///< components joined by "/", no leading "/"
    qint64 Size = 0; ///< in bytes
    std::vector<TUDFExtent> Extents;
};

/// Lists the files of a UDF image (ECMA-167, OSTA UDF 2.01 to 2.60): physical and metadata partitions, fragmented
/// files.
class TUDFReader {
public:
    /// True when the volume recognition sequence names UDF.
    static bool IsUDFImage(const QString& path);
    static bool IsUDFImage(TByteSource& image);

    /// Closes what is open, then reads the directories. False, with the reason in the debug log, when the image is not
    /// understood. An image without files opens.
    bool Open(const QString& filePath);
    /// The same for an image that is open already; `name` is for the log.
    bool Open(std::shared_ptr<TByteSource> image, const QString& name);
    void Close();

    const std::vector<TUDFFile>& Files() const { return FFiles; }
    /// Identifier of the logical volume.
    QString VolumeLabel() const { return FVolumeLabel; }
    std::shared_ptr<TByteSource> Image() const { return FStream; }

    /// The first file of that path, without regard to case; "\" counts as "/".
    std::optional<TUDFFile> FindFile(const QString& path) const;
    /// Copies the file's bytes, extent by extent.
    bool ExtractToFile(const TUDFFile& file, const QString& outPath) const;

private:
    enum class TMapType : qint8 { mtUnknown = -1, mtPhysical = 0, mtMetadata = 1 };
    struct TPartitionMap {
        TMapType MapType = TMapType::mtUnknown;
        quint16 PartitionNumber = 0;
        quint32 PartitionStart = 0; ///< sector
        quint32 MetadataFile = 0;   ///< block of its File Entry; of metadata maps
        quint32 MetadataMirror = 0;
    };
    struct TPartition {
        quint16 Number = 0;
        quint32 Start = 0;
    };
    /// Place of a structure: block within a partition map.
    struct TAddress {
        quint32 Block = 0;
        quint16 Map = 0;
    };
    struct TFileEntry {
        quint8 FileType = 0;
        quint64 Length = 0;
        std::vector<TUDFExtent> Extents;
    };
    struct TVolume {
        QByteArray LogicalVolume; ///< the whole descriptor
        std::vector<TPartition> Partitions;
    };

    bool Parse();
    bool FindAnchor(quint32& location, quint32& length);
    TVolume ReadDescriptors(quint32 location, quint32 length);
    bool ReadMaps(const TVolume& volume);
    bool ReadMetadataFile();
    bool ReadRoot(const TVolume& volume);
    bool MapBlock(quint32 block, quint16 map, qint64& offset, qint64& contiguous);
    QByteArray ReadBlock(const TAddress& at);
    bool ReadFileEntry(const TAddress& at, TFileEntry& entry);
    bool ParseFileEntry(const QByteArray& bytes, qint64 imageOffset, quint16 map, TFileEntry& entry);
    bool ReadDescriptorsOfFile(QByteArray descriptors, int kind, quint16 map, TFileEntry& entry);
    bool AddExtent(TFileEntry& entry, quint32 block, quint16 map, qint64 length);
    void WalkDirectory(const TAddress& icb, const QString& prefix, int depth);
    QByteArray ReadDirectory(const TFileEntry& entry, const QString& path);
    void TakeIdentifier(TByteReader& descriptor, const QString& prefix, int depth);

    std::shared_ptr<TByteSource> FStream;
    std::vector<TPartitionMap> FMaps;
    std::vector<TUDFExtent> FMetaExtents;
    int FFileCount = 0; ///< directories and files met, as a guard
    QSet<qint64> FSeen; ///< directories by the place of their File Entry
    qint64 FDirectoryBytes = 0;
    std::vector<TUDFFile> FFiles;
    QString FVolumeLabel;
};

} // namespace Kestrune
