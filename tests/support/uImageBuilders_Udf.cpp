// SPDX-License-Identifier: GPL-3.0-or-later
#include "uImageBuilders.h"
#include "uTagBuilders.h"

#include <QMap>

namespace Kestrune::Kit {

namespace {

constexpr int UdfSector = 2048;
constexpr quint32 PartitionAt = 300;

// Builds the blocks of the partitions from the leaves to the root.
class TUdfBuilder {
public:
    explicit TUdfBuilder(const TUdfOptions& options) : FOptions(options)
    {
        if (options.Metadata)
            Allocate(FPhysical, 1); // the metadata file's entry
    }

    QByteArray Build(const QList<TImageFile>& files)
    {
        FFileSet = Allocate(Structures(), 1);
        FRoot = Allocate(Structures(), 1);
        WriteDirectory(FRoot, {}, files);
        Block(Structures(), FFileSet) = FileSet();
        return Image();
    }

private:
    using TBlocks = QList<QByteArray>;

    static QByteArray Whole(const QByteArray& bytes) { return bytes.leftJustified(UdfSector, '\0', true); }
    static QByteArray Field(QByteArray bytes, qsizetype at, const QByteArray& value)
    {
        return bytes.replace(at, value.size(), value);
    }
    static QByteArray Tagged(int tag) { return Whole(LE16(static_cast<quint32>(tag))); }

    // Directories and entries lie in the metadata partition when there is one.
    TBlocks& Structures() { return FOptions.Metadata ? FMeta : FPhysical; }
    quint32 StructuresMap() const { return FOptions.Metadata ? 1 : 0; }

    static quint32 Allocate(TBlocks& blocks, qint64 count)
    {
        const auto first = static_cast<quint32>(blocks.size());
        for (qint64 i = 0; i < count; ++i)
            blocks << QByteArray(UdfSector, '\0');
        return first;
    }
    static QByteArray& Block(TBlocks& blocks, quint32 at) { return blocks[at]; }
    static quint32 Store(TBlocks& blocks, const QByteArray& bytes)
    {
        const quint32 first = Allocate(blocks, (bytes.size() + UdfSector - 1) / UdfSector);
        for (qsizetype at = 0; at < bytes.size(); at += UdfSector)
            blocks[first + at / UdfSector] = Whole(bytes.mid(at, UdfSector));
        return first;
    }

    QByteArray Entry(int fileType, int kind, quint64 length, const QByteArray& descriptors) const
    {
        QByteArray entry = Tagged(FOptions.Extended ? 266 : 261);
        entry[27] = static_cast<char>(fileType);
        entry = Field(entry, 34, LE16(static_cast<quint32>(kind)));
        entry = Field(entry, 56, LE64(length));
        entry = Field(entry, FOptions.Extended ? 212 : 172, LE32(static_cast<quint32>(descriptors.size())));
        return Field(entry, FOptions.Extended ? 216 : 176, descriptors);
    }

    QByteArray FileEntry(const TImageFile& file)
    {
        const auto size = static_cast<quint64>(file.Bytes.size());
        if (FOptions.Embedded)
            return Entry(5, 3, size, file.Bytes);
        QByteArray descriptors;
        const qsizetype sectors = (file.Bytes.size() + UdfSector - 1) / UdfSector;
        const qsizetype piece = (sectors + file.Fragments - 1) / file.Fragments * UdfSector;
        for (qsizetype at = 0; at < file.Bytes.size(); at += piece) {
            const QByteArray bytes = file.Bytes.mid(at, piece);
            if (at > 0)
                Allocate(FPhysical, 1); // the gap
            descriptors += LE32(static_cast<quint32>(bytes.size())) + LE32(Store(FPhysical, bytes)) + LE16(0) +
                           QByteArray(6, '\0');
        }
        return Entry(5, 1, size, descriptors);
    }

    QByteArray Identifier(const QByteArray& name, quint32 block, int characteristics) const
    {
        const QByteArray text = name.isEmpty() ? QByteArray() : "\x08" + name;
        QByteArray bytes = LE16(257).leftJustified(18, '\0');
        bytes += static_cast<char>(characteristics);
        bytes += static_cast<char>(text.size());
        bytes += LE32(UdfSector) + LE32(block) + LE16(StructuresMap()) + QByteArray(6, '\0') + LE16(0) + text;
        return bytes.leftJustified((38 + text.size() + 3) / 4 * 4, '\0');
    }

    void WriteDirectory(quint32 entryBlock, const QByteArray& path, const QList<TImageFile>& files)
    {
        QByteArray data = Identifier({}, entryBlock, 8 | 2) + Identifier("DELETED.TXT", 9999, 4);
        if (FOptions.LoopingDirectory && path.isEmpty())
            data += Identifier("LOOP", entryBlock, 2);
        QMap<QByteArray, QList<TImageFile>> directories;
        const qsizetype prefix = path.isEmpty() ? 0 : path.size() + 1;
        for (const TImageFile& file : files) {
            const QByteArray rest = file.Path.mid(prefix);
            if (rest.contains('/')) {
                directories[rest.left(rest.indexOf('/'))] << file;
                continue;
            }
            const quint32 block = Allocate(Structures(), 1);
            const QByteArray entry = FileEntry(file);
            Block(Structures(), block) = entry;
            data += Identifier(rest, block, 0);
        }
        for (auto it = directories.cbegin(); it != directories.cend(); ++it) {
            const quint32 block = Allocate(Structures(), 1);
            WriteDirectory(block, path.isEmpty() ? it.key() : path + '/' + it.key(), *it);
            data += Identifier(it.key(), block, 2);
        }
        const quint32 first = Store(Structures(), data);
        Block(Structures(), entryBlock) =
            Entry(4, 0, static_cast<quint64>(data.size()), LE32(static_cast<quint32>(data.size())) + LE32(first));
    }

    QByteArray FileSet() const
    {
        return Field(Tagged(256), 400, LE32(UdfSector) + LE32(FRoot) + LE16(StructuresMap()));
    }

    QByteArray LogicalVolume() const
    {
        QByteArray maps = QByteArray("\1\6", 2) + LE16(1) + LE16(7);
        if (FOptions.Metadata) {
            QByteArray map(64, '\0');
            map = Field(map, 0, QByteArray("\2\x40", 2));
            map = Field(map, 5, "*UDF Metadata Partition");
            map = Field(map, 36, LE16(1) + LE16(7) + LE32(0) + LE32(0));
            maps += map;
        }
        QByteArray bytes = Field(Tagged(6), 84,
                                 QByteArray("\x08"
                                            "ALBUM")
                                         .leftJustified(127, '\0') +
                                     '\6');
        bytes = Field(bytes, 212, LE32(FOptions.BlockSize));
        bytes = Field(bytes, 248, LE32(UdfSector) + LE32(FFileSet) + LE16(StructuresMap()));
        bytes = Field(bytes, 264, LE32(static_cast<quint32>(maps.size())) + LE32(FOptions.Metadata ? 2 : 1));
        return Field(bytes, 440, maps);
    }

    QByteArray Image()
    {
        if (FOptions.Metadata) {
            // In two extents, with a block between them that is no part of it.
            const qsizetype half = (FMeta.size() + 1) / 2;
            const quint32 first = Store(FPhysical, FMeta.mid(0, half).join());
            Allocate(FPhysical, 1);
            const quint32 second = Store(FPhysical, FMeta.mid(half).join());
            const auto bytes = [](qsizetype blocks) { return static_cast<quint32>(blocks * UdfSector); };
            Block(FPhysical, 0) =
                Entry(250, 0, static_cast<quint64>(FMeta.size() * UdfSector),
                      LE32(bytes(half)) + LE32(first) + LE32(bytes(FMeta.size() - half)) + LE32(second));
        }
        QByteArray image(PartitionAt * UdfSector, '\0');
        const auto put = [&image](qint64 sector, const QByteArray& bytes) {
            image.replace(sector * UdfSector, UdfSector, Whole(bytes));
        };
        put(16, QByteArray("\0BEA01", 6));
        put(17, '\0' + FOptions.Recognition);
        put(18, QByteArray("\0TEA01", 6));
        put(32, Field(Tagged(3), 16, LE32(8 * UdfSector) + LE32(40))); // goes on elsewhere
        put(40, Tagged(1));
        put(41, Field(Field(Tagged(5), 22, LE16(7)), 188, LE32(PartitionAt)));
        put(42, LogicalVolume());
        put(43, Tagged(8));
        image += FPhysical.join() + QByteArray(300 * UdfSector, '\0');
        const qint64 sectors = image.size() / UdfSector;
        const qint64 anchor = FOptions.Anchor == 0 ? 256 : FOptions.Anchor == 1 ? sectors - 1 : sectors - 257;
        put(anchor, Field(Tagged(2), 16, LE32(16 * UdfSector) + LE32(32)));
        return image;
    }

    const TUdfOptions& FOptions;
    TBlocks FPhysical, FMeta;
    quint32 FFileSet = 0, FRoot = 0;
};

} // namespace

QByteArray UdfImage(const QList<TImageFile>& files, const TUdfOptions& options)
{
    return TUdfBuilder(options).Build(files);
}

} // namespace Kestrune::Kit
