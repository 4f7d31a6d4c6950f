// SPDX-License-Identifier: GPL-3.0-or-later
#include "uByteReader.h"

#include "uGuardedFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <iterator>

namespace Kestrune {

namespace {

// Heads and tails of closed files, whose memory the next files of the thread use.
class TSpareParts {
public:
    QByteArray Take()
    {
        QByteArray part = FCount > 0 ? std::move(FParts[--FCount]) : QByteArray();
        part.reserve(std::max(TFileSource::HeadSize, TFileSource::TailSize));
        return part;
    }
    void Put(QByteArray part)
    {
        if (FCount < static_cast<int>(std::size(FParts)) && part.capacity() > 0)
            FParts[FCount++] = std::move(part);
    }

private:
    QByteArray FParts[4];
    int FCount = 0;
};

thread_local TSpareParts SpareParts;

} // namespace

QByteArray TByteSource::Read(qint64 offset, qint64 length)
{
    if (offset < 0 || offset >= Size() || length <= 0)
        return {};
    QByteArray bytes(std::min(length, Size() - offset), Qt::Uninitialized);
    bytes.truncate(ReadAt(offset, bytes.data(), bytes.size()));
    return bytes;
}

std::unique_ptr<TFileSource> TFileSource::Open(const std::filesystem::path& path)
{
    if (IsGuardedJournal(path)) // closing it would cost the collection its locks
        return nullptr;
    // O_NONBLOCK: a named pipe in a music folder must not hang the reader; it has no effect on regular files.
    const int handle = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (handle < 0)
        return nullptr;
    struct stat info = {};
    const bool known = ::fstat(handle, &info) == 0;
    if (known && KeepIfGuarded(handle, info.st_dev, info.st_ino))
        return nullptr;
    if (!known || !S_ISREG(info.st_mode)) {
        ::close(handle);
        return nullptr;
    }
    return std::unique_ptr<TFileSource>(new TFileSource(handle, info.st_size));
}

TFileSource::~TFileSource()
{
    ::close(FHandle);
    SpareParts.Put(std::move(FHead));
    SpareParts.Put(std::move(FTail));
}

QByteArray TFileSource::ReadPart(qint64 offset, qint64 length) const
{
    QByteArray part = SpareParts.Take();
    part.resize(length);
    part.truncate(ReadFile(offset, part.data(), length));
    return part;
}

qint64 TFileSource::ReadFile(qint64 offset, char* to, qint64 length) const
{
    qint64 done = 0;
    while (done < length) {
        const ssize_t count = ::pread(FHandle, to + done, static_cast<size_t>(length - done), offset + done);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0) // the end, or a file that was cut while we read it
            break;
        done += count;
    }
    return done;
}

qint64 TFileSource::ReadAt(qint64 offset, char* to, qint64 length)
{
    if (offset < 0 || offset >= FSize || length <= 0)
        return 0;
    length = std::min(length, FSize - offset);
    const auto copyFrom = [&](const QByteArray& part, qint64 start) -> qint64 {
        const qint64 there = std::clamp<qint64>(start + part.size() - offset, 0, length);
        std::memcpy(to, part.constData() + (offset - start), static_cast<size_t>(there));
        return there;
    };
    if (offset + length <= HeadSize) {
        if (!FHeadRead) {
            FHeadRead = true;
            FHead = ReadPart(0, std::min(FSize, HeadSize));
        }
        return offset < FHead.size() ? copyFrom(FHead, 0) : 0;
    }
    const qint64 tailStart = std::max<qint64>(0, FSize - TailSize);
    if (offset >= tailStart) {
        if (!FTailRead) {
            FTailRead = true;
            FTail = ReadPart(tailStart, FSize - tailStart);
        }
        return offset < tailStart + FTail.size() ? copyFrom(FTail, tailStart) : 0;
    }
    return ReadFile(offset, to, length);
}

qint64 TMemorySource::ReadAt(qint64 offset, char* to, qint64 length)
{
    if (offset < 0 || offset >= FBytes.size() || length <= 0)
        return 0;
    length = std::min<qint64>(length, FBytes.size() - offset);
    std::memcpy(to, FBytes.constData() + offset, static_cast<size_t>(length));
    return length;
}

TWindowSource::TWindowSource(TByteSource& source, qint64 offset, qint64 length)
    : FSource(source),
      FOffset(std::clamp<qint64>(offset, 0, source.Size())),
      FLength(std::clamp<qint64>(length, 0, source.Size() - FOffset))
{}

qint64 TWindowSource::ReadAt(qint64 offset, char* to, qint64 length)
{
    if (offset < 0 || offset >= FLength || length <= 0)
        return 0;
    return FSource.ReadAt(FOffset + offset, to, std::min(length, FLength - offset));
}

void TByteReader::Seek(qint64 position)
{
    if (position < 0 || position > FBytes.size()) {
        FFailed = true;
        FPosition = FBytes.size();
        return;
    }
    FPosition = position;
}

void TByteReader::Skip(qint64 count)
{
    // A count from the file may be anything: compare before adding, so that nothing overflows.
    if (count < 0 || count > Left()) {
        FFailed = true;
        FPosition = FBytes.size();
        return;
    }
    FPosition += count;
}

QByteArrayView TByteReader::Bytes(qint64 count)
{
    if (count < 0 || count > Left()) {
        FFailed = true;
        FPosition = FBytes.size();
        return {};
    }
    const QByteArrayView piece = FBytes.sliced(FPosition, count);
    FPosition += count;
    return piece;
}

quint64 TByteReader::Take(int count, bool bigEndian)
{
    const QByteArrayView piece = Bytes(count);
    quint64 value = 0;
    for (qsizetype i = 0; i < piece.size(); ++i) {
        const auto byte = static_cast<quint8>(piece[bigEndian ? i : piece.size() - 1 - i]);
        value = value << 8 | byte;
    }
    return value;
}

} // namespace Kestrune
