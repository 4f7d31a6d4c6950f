// SPDX-License-Identifier: GPL-3.0-or-later
#include "uDebugLog.h"
#include "uISOReader.h"
#include "uUDFReader.h"

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr quint16 FileEntryTag = 261, ExtendedFileEntryTag = 266, AllocationExtentTag = 258;
constexpr quint8 DirectoryFileType = 4;
constexpr quint8 DeletedFile = 4, ParentEntry = 8;
constexpr int ShortDescriptors = 0, LongDescriptors = 1, EmbeddedData = 3;
constexpr quint32 RecordedExtent = 0, ContinuationExtent = 3;
constexpr size_t MostExtents = 8191;
constexpr int MostContinuations = 64;
constexpr int MostEntries = 200000;
constexpr qint64 LargestUDFDirectory = 33554432;
constexpr qint64 MostDirectoryBytes = 512 * 1024 * 1024; // of all directories of an image
constexpr int DeepestUDFDirectory = 128;
constexpr int IdentifierHead = 38;

void LogUDFFile(const QString& text) { DebugLog(u"[UDF] "_s + text); }

// A file identifier (OSTA CS0): a byte for the width of the characters, then the characters.
QString IdentifierText(QByteArrayView bytes)
{
    if (bytes.isEmpty())
        return {};
    const quint8 kind = static_cast<quint8>(bytes[0]);
    bytes = bytes.sliced(1);
    if (kind == 8)
        return QString::fromLatin1(bytes);
    if (kind != 16) {
        LogUDFFile(u"Unknown dstring compression ID %1"_s.arg(kind));
        return {};
    }
    TByteReader reader(bytes);
    QString text;
    while (reader.Left() >= 2)
        text += QChar(reader.U16BE());
    return text;
}

} // namespace

bool TUDFReader::MapBlock(quint32 block, quint16 map, qint64& offset, qint64& contiguous)
{
    if (map >= FMaps.size() || FMaps[map].MapType == TMapType::mtUnknown) {
        LogUDFFile(u"Unsupported partition map %1 referenced"_s.arg(map));
        return false;
    }
    if (FMaps[map].MapType == TMapType::mtPhysical) {
        offset = (qint64(FMaps[map].PartitionStart) + block) * DiscSectorSize;
        contiguous = std::max<qint64>(FStream->Size() - offset, 0);
        return true;
    }
    qint64 within = qint64(block) * DiscSectorSize;
    for (const TUDFExtent& extent : FMetaExtents) {
        const qint64 room = (extent.Size + DiscSectorSize - 1) / DiscSectorSize * DiscSectorSize;
        if (within < room) {
            offset = extent.Offset + within;
            contiguous = room - within;
            return true;
        }
        within -= room;
    }
    LogUDFFile(u"Metadata block %1 out of range"_s.arg(block));
    return false;
}

QByteArray TUDFReader::ReadBlock(const TAddress& at)
{
    qint64 offset = 0;
    qint64 contiguous = 0;
    return MapBlock(at.Block, at.Map, offset, contiguous) ? FStream->Read(offset, DiscSectorSize) : QByteArray();
}

bool TUDFReader::ReadFileEntry(const TAddress& at, TFileEntry& entry)
{
    qint64 offset = 0;
    qint64 contiguous = 0;
    entry = {};
    return MapBlock(at.Block, at.Map, offset, contiguous) &&
           ParseFileEntry(FStream->Read(offset, DiscSectorSize), offset, at.Map, entry);
}

bool TUDFReader::ParseFileEntry(const QByteArray& bytes, qint64 imageOffset, quint16 map, TFileEntry& entry)
{
    TByteReader reader(bytes);
    const quint16 tag = reader.U16LE();
    const bool extended = tag == ExtendedFileEntryTag;
    if (bytes.size() < 216 || (tag != FileEntryTag && !extended)) {
        LogUDFFile(u"Not a File Entry (tag %1)"_s.arg(tag));
        return false;
    }
    reader.Seek(27);
    entry.FileType = reader.U8();
    reader.Seek(34);
    const int kind = reader.U16LE() & 7;
    reader.Seek(56);
    entry.Length = reader.U64LE();
    reader.Seek(extended ? 208 : 168);
    const quint32 attributes = reader.U32LE();
    const quint32 length = reader.U32LE();
    const qint64 start = qint64(extended ? 216 : 176) + attributes;
    if (start + length > bytes.size()) {
        LogUDFFile(u"File Entry allocation descriptors out of bounds (L_EA=%1 L_AD=%2)"_s.arg(attributes).arg(length));
        return false;
    }
    if (kind == EmbeddedData) {
        entry.Extents.push_back({imageOffset + start, qint64(length)});
        return true;
    }
    if (kind != ShortDescriptors && kind != LongDescriptors) {
        LogUDFFile(u"Unsupported allocation type %1"_s.arg(kind));
        return false;
    }
    return ReadDescriptorsOfFile(bytes.mid(start, length), kind, map, entry);
}

bool TUDFReader::ReadDescriptorsOfFile(QByteArray descriptors, int kind, quint16 map, TFileEntry& entry)
{
    const qint64 size = kind == ShortDescriptors ? 8 : 16;
    int continuations = 0;
    for (qint64 at = 0; at + size <= descriptors.size(); at += size) {
        TByteReader reader(QByteArrayView(descriptors).sliced(at, size));
        const quint32 raw = reader.U32LE();
        const quint32 type = raw >> 30;
        const qint64 length = raw & 0x3FFFFFFF;
        const quint32 block = reader.U32LE();
        const quint16 place = kind == LongDescriptors ? reader.U16LE() : map;
        if (length == 0)
            break;
        if (type == RecordedExtent) {
            if (!AddExtent(entry, block, place, length))
                return false;
        } else if (type == ContinuationExtent) {
            if (++continuations > MostContinuations) {
                LogUDFFile(u"Too many AD continuation blocks"_s);
                return false;
            }
            const QByteArray next = ReadBlock({block, place});
            TByteReader head(next);
            const quint16 tag = head.U16LE();
            head.Seek(20);
            const quint32 count = head.U32LE();
            if (head.Failed() || tag != AllocationExtentTag)
                break;
            descriptors = next.mid(24, std::min<qint64>(count, next.size()));
            at = -size; // from its start
        } else {
            LogUDFFile(u"Skipping unrecorded extent (type %1, %2 bytes)"_s.arg(type).arg(length));
        }
    }
    return true;
}

bool TUDFReader::AddExtent(TFileEntry& entry, quint32 block, quint16 map, qint64 length)
{
    while (length > 0) {
        qint64 offset = 0;
        qint64 contiguous = 0;
        if (!MapBlock(block, map, offset, contiguous))
            return false;
        // A physical extent past the image's end is kept whole: reading it fails, its place is still told.
        const bool physical = FMaps[map].MapType == TMapType::mtPhysical;
        const qint64 part = physical ? length : std::min(length, contiguous);
        std::vector<TUDFExtent>& extents = entry.Extents;
        if (!extents.empty() && extents.back().Offset + extents.back().Size == offset) {
            extents.back().Size += part;
        } else {
            if (extents.size() >= MostExtents) {
                LogUDFFile(u"Too many extents"_s);
                return false;
            }
            extents.push_back({offset, part});
        }
        length -= part;
        block += static_cast<quint32>(part / DiscSectorSize);
    }
    return true;
}

QByteArray TUDFReader::ReadDirectory(const TFileEntry& entry, const QString& path)
{
    if (entry.Length == 0 || entry.Length > quint64(LargestUDFDirectory)) {
        LogUDFFile(u"Implausible directory size %1 for \"%2\""_s.arg(entry.Length).arg(path));
        return {};
    }
    QByteArray bytes;
    const qint64 length = static_cast<qint64>(entry.Length);
    for (const TUDFExtent& extent : entry.Extents) {
        if (bytes.size() >= length || FDirectoryBytes > MostDirectoryBytes)
            break;
        const QByteArray part = FStream->Read(extent.Offset, std::min(extent.Size, length - bytes.size()));
        bytes += part;
        FDirectoryBytes += part.size();
        if (part.size() < std::min(extent.Size, length))
            break;
    }
    return bytes;
}

void TUDFReader::WalkDirectory(const TAddress& icb, const QString& prefix, int depth)
{
    qint64 place = 0;
    qint64 contiguous = 0;
    TFileEntry entry;
    if (!MapBlock(icb.Block, icb.Map, place, contiguous) || !ReadFileEntry(icb, entry)) {
        LogUDFFile(u"Cannot read directory \"%1\""_s.arg(prefix));
        return;
    }
    if (entry.FileType != DirectoryFileType || depth > DeepestUDFDirectory || FSeen.contains(place))
        return;
    FSeen.insert(place);
    const QByteArray bytes = ReadDirectory(entry, prefix);
    for (qint64 at = 0; at + IdentifierHead <= bytes.size() && FFileCount < MostEntries;) {
        TByteReader reader(bytes);
        reader.Seek(at + 19);
        const qint64 identifier = reader.U8();
        reader.Seek(at + 36);
        const qint64 use = reader.U16LE();
        const qint64 size = (use + identifier + 41) / 4 * 4;
        if (at + size > bytes.size())
            break;
        TByteReader descriptor(QByteArrayView(bytes).sliced(at, IdentifierHead + use + identifier));
        TakeIdentifier(descriptor, prefix, depth);
        at += size;
    }
}

void TUDFReader::TakeIdentifier(TByteReader& descriptor, const QString& prefix, int depth)
{
    descriptor.Seek(18);
    const quint8 characteristics = descriptor.U8();
    if ((characteristics & (DeletedFile | ParentEntry)) != 0)
        return;
    descriptor.Seek(24);
    const TAddress icb{descriptor.U32LE(), descriptor.U16LE()};
    descriptor.Seek(36);
    descriptor.Skip(descriptor.U16LE());
    const QString name = IdentifierText(descriptor.Rest());
    if (name.isEmpty())
        return;
    ++FFileCount;
    const QString path = prefix.isEmpty() ? name : prefix + u'/' + name;
    TFileEntry entry;
    if (!ReadFileEntry(icb, entry)) {
        LogUDFFile(u"Cannot read File Entry of \"%1\""_s.arg(path));
        return;
    }
    if (entry.FileType == DirectoryFileType)
        return WalkDirectory(icb, path, depth + 1);
    const qint64 size = static_cast<qint64>(std::min<quint64>(entry.Length, quint64(1) << 62));
    FFiles.push_back({path, size, std::move(entry.Extents)});
}

} // namespace Kestrune
