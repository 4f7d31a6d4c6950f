// SPDX-License-Identifier: GPL-3.0-or-later
#include "uISOReader.h"

#include "uDebugLog.h"
#include "uFilePath.h"

#include <QFile>
#include <QSaveFile>
#include <QSet>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 SmallestISO = 0x8800;
constexpr qint64 PrimaryDescriptor = 0x8000;
constexpr qint64 LargestDirectory = 64 * 1024 * 1024;
constexpr int DeepestDirectory = 128;
constexpr size_t MostISOEntries = 1000000;
constexpr qint64 CopyPiece = 65536;

constexpr int LengthAt = 0, BlockAt = 2, SizeAt = 10, FlagsAt = 25, NameLengthAt = 32, NameAt = 33;
constexpr quint8 DirectoryFlag = 2;

} // namespace

// What keeps a hostile image from being walked for ever: each directory is read once, and all together are no longer
// than the image.
struct TISOReader::TWalk {
    QSet<quint32> Seen;
    qint64 BytesLeft = 0;
    int Depth = 0;
};

bool TISOReader::Open(const QString& isoPath) { return Open(TFileSource::Open(TextToPath(isoPath))); }

bool TISOReader::Open(std::shared_ptr<TByteSource> image)
{
    Close();
    if (!image || image->Size() < SmallestISO)
        return false;
    const QByteArray descriptor = image->Read(PrimaryDescriptor, DiscSectorSize);
    if (descriptor.size() < DiscSectorSize || descriptor[0] != 1 || descriptor.mid(1, 5) != "CD001")
        return false;
    FStream = std::move(image);
    FVolumeLabel = QString::fromLatin1(descriptor.mid(40, 32)).remove(QChar(u'\0')).trimmed();
    TByteReader reader(descriptor);
    reader.Seek(156 + BlockAt);
    const quint32 block = reader.U32LE();
    reader.Seek(156 + SizeAt);
    const quint32 length = reader.U32LE();
    TWalk walk;
    walk.BytesLeft = FStream->Size();
    WalkDirectory(block, length, {}, walk);
    return true;
}

void TISOReader::Close()
{
    FStream.reset();
    FFiles.clear();
    FVolumeLabel.clear();
}

void TISOReader::WalkDirectory(quint32 block, quint32 length, const QString& prefix, TWalk& walk)
{
    if (walk.Depth >= DeepestDirectory || walk.Seen.contains(block) || walk.BytesLeft <= 0) {
        DebugLog(u"[ISO] Directory \"%1\" is not read: nested too deep or twice"_s.arg(prefix));
        return;
    }
    walk.Seen.insert(block);
    ++walk.Depth;
    const QByteArray bytes =
        FStream->Read(block * DiscSectorSize, std::min({qint64(length), LargestDirectory, walk.BytesLeft}));
    walk.BytesLeft -= std::max(bytes.size(), DiscSectorSize);
    for (qsizetype p = 0; p < bytes.size() && FFiles.size() < MostISOEntries;) {
        int recordLength = static_cast<quint8>(bytes[p + LengthAt]);
        if (recordLength == 0) {
            p = (p / DiscSectorSize + 1) * DiscSectorSize;
            if (p >= bytes.size())
                break;
            recordLength = static_cast<quint8>(bytes[p + LengthAt]);
            if (recordLength == 0)
                break;
        }
        if (p + recordLength > bytes.size() || recordLength <= NameAt)
            break;
        TByteReader record(QByteArrayView(bytes).sliced(p, recordLength));
        p += recordLength;
        record.Seek(BlockAt);
        const quint32 fileBlock = record.U32LE();
        record.Seek(SizeAt);
        const quint32 size = record.U32LE();
        record.Seek(FlagsAt);
        const bool isDir = (record.U8() & DirectoryFlag) != 0;
        record.Seek(NameLengthAt);
        const int nameLength = record.U8();
        const QByteArrayView raw = record.Bytes(std::min<qint64>(nameLength, record.Left()));
        if (raw.size() == 1 && (raw[0] == 0 || raw[0] == 1)) // the directory itself and its parent
            continue;
        const qsizetype version = raw.indexOf(';');
        const QString name = QString::fromLatin1(version >= 0 ? raw.first(version) : raw);
        const QString path = prefix.isEmpty() ? name : prefix + u'/' + name;
        FFiles.push_back({name, path, fileBlock * DiscSectorSize, size, isDir});
        if (isDir)
            WalkDirectory(fileBlock, size, path, walk);
    }
    --walk.Depth;
}

bool TISOReader::ExtractToStream(const TISOFile& file, QIODevice& out) const
{
    return FStream && CopyBytes(*FStream, file.Offset, file.Size, out);
}

bool TISOReader::ExtractToFile(const TISOFile& file, const QString& outPath) const
{
    return FStream && CopyBytesToFile(*FStream, file.Offset, file.Size, outPath);
}

std::optional<TISOFile> TISOReader::FindFile(const QString& fileName) const
{
    const auto same = [&](const QString& text) { return text.compare(fileName, Qt::CaseInsensitive) == 0; };
    const auto found = std::ranges::find_if(
        FFiles, [&](const TISOFile& file) { return !file.IsDir && (same(file.Name) || same(file.FullPath)); });
    return found == FFiles.end() ? std::nullopt : std::optional(*found);
}

bool TISOReader::GetFileOffset(const QString& fileName, qint64& offset, quint32& size) const
{
    const auto file = FindFile(fileName);
    if (!file)
        return false;
    offset = file->Offset;
    size = file->Size;
    return true;
}

bool CopyBytes(TByteSource& source, qint64 offset, qint64 length, QIODevice& out)
{
    QByteArray piece(CopyPiece, Qt::Uninitialized);
    while (length > 0) {
        const qint64 count = source.ReadAt(offset, piece.data(), std::min(length, CopyPiece));
        if (count <= 0 || out.write(piece.constData(), count) != count)
            return false;
        offset += count;
        length -= count;
    }
    return true;
}

bool CopyBytesToFile(TByteSource& source, qint64 offset, qint64 length, const QString& outPath)
{
    QSaveFile file(outPath);
    return file.open(QIODevice::WriteOnly) && CopyBytes(source, offset, length, file) && file.commit();
}

} // namespace Kestrune
