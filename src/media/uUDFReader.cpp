// SPDX-License-Identifier: GPL-3.0-or-later
#include "uUDFReader.h"

#include "uDebugLog.h"
#include "uFields.h"
#include "uFilePath.h"
#include "uISOReader.h"

#include <QSaveFile>

#include <algorithm>
#include <exception>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

// Tag identifiers of descriptors (ECMA-167, 3/7.2.1 and 4/7.2.1).
constexpr quint16 AnchorTag = 2, PointerTag = 3, PartitionTag = 5, LogicalVolumeTag = 6, TerminatingTag = 8;
constexpr quint16 FileSetTag = 256;

constexpr int FirstRecognitionSector = 16, LastRecognitionSector = 79;
constexpr int MostDescriptorJumps = 8;
constexpr quint32 MostVolumeDescriptors = 65536;

void LogUDF(const QString& text) { DebugLog(u"[UDF] "_s + text); }

QByteArray SectorAt(TByteSource& image, qint64 sector) { return image.Read(sector * DiscSectorSize, DiscSectorSize); }

quint16 TagOf(const QByteArray& sector) { return TByteReader(sector).U16LE(); }

// A dstring field (OSTA CS0): the last byte counts the bytes used, the first says how they are coded.
QString FixedDString(const QByteArray& field)
{
    const int used = field.isEmpty() ? 0 : static_cast<quint8>(field.back());
    if (used < 2 || used >= field.size())
        return {};
    if (field[0] == 8)
        return QString::fromLatin1(field.mid(1, used - 1)).trimmed();
    QString text;
    for (int i = 1; i + 1 < used; i += 2)
        text += QChar(static_cast<char16_t>(static_cast<quint8>(field[i]) << 8 | static_cast<quint8>(field[i + 1])));
    return text.trimmed();
}

} // namespace

bool TUDFReader::IsUDFImage(const QString& path)
{
    const auto image = TFileSource::Open(TextToPath(path));
    if (!image) {
        LogUDF(u"IsUDFImage(%1): %2"_s.arg(path, u"cannot be read"_s));
        return false;
    }
    return IsUDFImage(*image);
}

bool TUDFReader::IsUDFImage(TByteSource& image)
{
    for (int sector = FirstRecognitionSector; sector <= LastRecognitionSector; ++sector) {
        const QByteArray bytes = image.Read(sector * DiscSectorSize, 6);
        if (bytes.size() < 6)
            return false;
        const QByteArray name = bytes.mid(1);
        if (name == "NSR02" || name == "NSR03")
            return true;
        if (name != "BEA01" && name != "CD001" && name != "CDW02" && name != "BOOT2")
            return false;
    }
    return false;
}

bool TUDFReader::Open(const QString& filePath) { return Open(TFileSource::Open(TextToPath(filePath)), filePath); }

bool TUDFReader::Open(std::shared_ptr<TByteSource> image, const QString& name)
{
    Close();
    if (!image || !IsUDFImage(*image)) {
        LogUDF(u"%1: no UDF volume recognition sequence"_s.arg(name));
        return false;
    }
    FStream = std::move(image);
    try {
        if (Parse())
            return true;
    } catch (const std::exception& failure) {
        LogUDF(u"Open(%1) failed: %2"_s.arg(name, QString::fromUtf8(failure.what())));
    }
    Close();
    return false;
}

void TUDFReader::Close() { *this = TUDFReader(); }

bool TUDFReader::Parse()
{
    quint32 location = 0;
    quint32 length = 0;
    if (!FindAnchor(location, length)) {
        LogUDF(u"No Anchor Volume Descriptor Pointer found"_s);
        return false;
    }
    const TVolume volume = ReadDescriptors(location, length);
    if (volume.LogicalVolume.isEmpty()) {
        LogUDF(u"No Logical Volume Descriptor found"_s);
        return false;
    }
    if (volume.Partitions.empty()) {
        LogUDF(u"No Partition Descriptor found"_s);
        return false;
    }
    FVolumeLabel = FixedDString(volume.LogicalVolume.mid(84, 128));
    if (const quint32 size = TFields(volume.LogicalVolume).U32LE(212); size != DiscSectorSize) {
        LogUDF(u"Unsupported logical block size %1"_s.arg(size));
        return false;
    }
    return ReadMaps(volume) && ReadMetadataFile() && ReadRoot(volume);
}

bool TUDFReader::FindAnchor(quint32& location, quint32& length)
{
    const qint64 sectors = FStream->Size() / DiscSectorSize;
    for (const qint64 sector : {qint64(256), sectors - 1, sectors - 257}) {
        const QByteArray bytes = SectorAt(*FStream, sector);
        if (bytes.size() < 32 || TagOf(bytes) != AnchorTag)
            continue;
        length = TFields(bytes).U32LE(16);
        location = TFields(bytes).U32LE(20);
        return length != 0 && location != 0;
    }
    return false;
}

TUDFReader::TVolume TUDFReader::ReadDescriptors(quint32 location, quint32 length)
{
    TVolume volume;
    quint32 count = std::min<quint32>(length / DiscSectorSize, MostVolumeDescriptors);
    int jumps = 0;
    for (quint32 i = 0; i < count; ++i) {
        const QByteArray bytes = SectorAt(*FStream, qint64(location) + i);
        if (bytes.size() < DiscSectorSize)
            break;
        const quint16 tag = TagOf(bytes);
        if (tag == 0 || tag == TerminatingTag)
            break;
        if (tag == PointerTag) {
            if (++jumps > MostDescriptorJumps)
                break;
            count = std::min<quint32>(TFields(bytes).U32LE(16) / DiscSectorSize, MostVolumeDescriptors);
            location = TFields(bytes).U32LE(20);
            i = static_cast<quint32>(-1); // from the start of the new extent
        } else if (tag == PartitionTag) {
            if (volume.Partitions.size() < MostDescriptorJumps)
                volume.Partitions.push_back({TFields(bytes).U16LE(22), TFields(bytes).U32LE(188)});
        } else if (tag == LogicalVolumeTag) {
            volume.LogicalVolume = bytes;
        }
    }
    return volume;
}

bool TUDFReader::ReadMaps(const TVolume& volume)
{
    const QByteArray& bytes = volume.LogicalVolume;
    const quint32 count = TFields(bytes).U32LE(268);
    if (count < 1 || count > 8) {
        LogUDF(u"Implausible partition map count %1"_s.arg(count));
        return false;
    }
    qsizetype at = 440;
    for (quint32 i = 0; i < count && at + 2 <= bytes.size(); ++i) {
        const quint8 type = static_cast<quint8>(bytes[at]);
        const quint8 length = static_cast<quint8>(bytes[at + 1]);
        if (length < 2 || at + length > bytes.size())
            break;
        const QByteArray raw = bytes.mid(at, length);
        at += length;
        TPartitionMap map;
        if (type == 1) {
            map.MapType = TMapType::mtPhysical;
            map.PartitionNumber = TFields(raw).U16LE(4);
        } else if (type == 2) {
            const QString identifier = QString::fromLatin1(raw.mid(5, 23)).remove(QChar(u'\0')).trimmed();
            if (identifier == "*UDF Metadata Partition"_L1) {
                map.MapType = TMapType::mtMetadata;
                map.PartitionNumber = TFields(raw).U16LE(38);
                map.MetadataFile = TFields(raw).U32LE(40);
                map.MetadataMirror = TFields(raw).U32LE(44);
            } else {
                LogUDF(u"Unsupported type 2 partition map \"%1\""_s.arg(identifier));
            }
        } else {
            LogUDF(u"Unknown partition map type %1"_s.arg(type));
        }
        if (map.MapType != TMapType::mtUnknown) {
            const auto found = std::ranges::find(volume.Partitions, map.PartitionNumber, &TPartition::Number);
            if (found == volume.Partitions.end()) {
                LogUDF(u"Partition %1 referenced by map %2 not found"_s.arg(map.PartitionNumber).arg(i));
                return false;
            }
            map.PartitionStart = found->Start;
        }
        FMaps.push_back(map);
    }
    return true;
}

bool TUDFReader::ReadMetadataFile()
{
    const auto meta = std::ranges::find(FMaps, TMapType::mtMetadata, &TPartitionMap::MapType);
    if (meta == FMaps.end())
        return true;
    // The file's own blocks count from the start of the physical partition, whatever maps the volume has.
    TPartitionMap physical = *meta;
    physical.MapType = TMapType::mtPhysical;
    const auto place = static_cast<quint16>(FMaps.size());
    const quint32 file = meta->MetadataFile;
    const quint32 mirror = meta->MetadataMirror;
    FMaps.push_back(physical);
    TFileEntry entry;
    const bool read = ReadFileEntry({file, place}, entry) || ReadFileEntry({mirror, place}, entry);
    FMaps.pop_back();
    FMetaExtents = std::move(entry.Extents);
    return read;
}

bool TUDFReader::ReadRoot(const TVolume& volume)
{
    const TAddress fileSet{TFields(volume.LogicalVolume).U32LE(252), TFields(volume.LogicalVolume).U16LE(256)};
    const QByteArray bytes = ReadBlock(fileSet);
    if (bytes.size() < DiscSectorSize) {
        LogUDF(u"Cannot read File Set Descriptor at (%1:%2)"_s.arg(fileSet.Map).arg(fileSet.Block));
        return false;
    }
    if (TagOf(bytes) != FileSetTag) {
        LogUDF(u"Bad File Set Descriptor tag %1"_s.arg(TagOf(bytes)));
        return false;
    }
    WalkDirectory({TFields(bytes).U32LE(404), TFields(bytes).U16LE(408)}, {}, 0);
    if (FFiles.empty())
        LogUDF(u"Volume parsed but no files found (meta=%1)"_s.arg(FMetaExtents.size()));
    return true;
}

std::optional<TUDFFile> TUDFReader::FindFile(const QString& path) const
{
    const QString wanted = QString(path).replace(u'\\', u'/');
    const auto found = std::ranges::find_if(
        FFiles, [&](const TUDFFile& file) { return file.Path.compare(wanted, Qt::CaseInsensitive) == 0; });
    return found == FFiles.end() ? std::nullopt : std::optional(*found);
}

bool TUDFReader::ExtractToFile(const TUDFFile& file, const QString& outPath) const
{
    QSaveFile out(outPath);
    if (!FStream || !out.open(QIODevice::WriteOnly))
        return false;
    qint64 left = file.Size;
    for (const TUDFExtent& extent : file.Extents) {
        const qint64 length = std::min(extent.Size, left);
        if (!CopyBytes(*FStream, extent.Offset, length, out))
            return false;
        left -= length;
    }
    return left == 0 && out.commit();
}

} // namespace Kestrune
