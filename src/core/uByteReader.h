// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <filesystem>
#include <memory>

namespace Kestrune {

/// Bytes with random access: a file, memory, or a window of another source. Readers take one of these, so that a
/// reader serves a file, a test's byte array and a part of a disc image alike. A source is used by one thread.
class TByteSource {
public:
    virtual ~TByteSource() = default;

    /// Number of bytes, fixed when the source was opened.
    virtual qint64 Size() const = 0;

    /// Copies up to `length` bytes from `offset` into `to`; returns how many were there. Never throws.
    virtual qint64 ReadAt(qint64 offset, char* to, qint64 length) = 0;

    /// The bytes [offset, offset + length), cut at the end of the source: never allocates more than is there.
    QByteArray Read(qint64 offset, qint64 length);
};

/// A file on disk, opened read-only. Keeps its head and its tail in memory after the first read of either, so that
/// several readers which look at both cost one system call each. The memory for them is passed on from file to file of
/// a thread: taken and given back for each of thousands of files, it would cost more than the reading.
class TFileSource final : public TByteSource {
public:
    static constexpr qint64 HeadSize = 16 * 1024;
    static constexpr qint64 TailSize = 16 * 1024;

    /// The opened file, or null when it cannot be opened, is no regular file, or is open as a database.
    static std::unique_ptr<TFileSource> Open(const std::filesystem::path& path);
    ~TFileSource() override;
    TFileSource(const TFileSource&) = delete;
    TFileSource& operator=(const TFileSource&) = delete;

    qint64 Size() const override { return FSize; }
    qint64 ReadAt(qint64 offset, char* to, qint64 length) override;

private:
    TFileSource(int handle, qint64 size) : FHandle(handle), FSize(size) {}
    qint64 ReadFile(qint64 offset, char* to, qint64 length) const;
    QByteArray ReadPart(qint64 offset, qint64 length) const;

    int FHandle;
    qint64 FSize;
    QByteArray FHead;
    QByteArray FTail;
    bool FHeadRead = false;
    bool FTailRead = false;
};

/// Bytes in memory; shares the array.
class TMemorySource final : public TByteSource {
public:
    explicit TMemorySource(QByteArray bytes) : FBytes(std::move(bytes)) {}
    qint64 Size() const override { return FBytes.size(); }
    qint64 ReadAt(qint64 offset, char* to, qint64 length) override;

private:
    QByteArray FBytes;
};

/// A part of another source, which must outlive it. The part is cut at the end of that source.
class TWindowSource final : public TByteSource {
public:
    TWindowSource(TByteSource& source, qint64 offset, qint64 length);
    qint64 Size() const override { return FLength; }
    qint64 ReadAt(qint64 offset, char* to, qint64 length) override;

private:
    TByteSource& FSource;
    qint64 FOffset;
    qint64 FLength;
};

/// Reads numbers and pieces from bytes in memory, front to back. A read past the end gives zero (or no bytes) and
/// marks the reader as failed for good, so that a parser may check once after a group of reads.
class TByteReader {
public:
    explicit TByteReader(QByteArrayView bytes) : FBytes(bytes) {}

    bool Failed() const { return FFailed; }
    qint64 Position() const { return FPosition; }
    qint64 Left() const { return FBytes.size() - FPosition; }
    bool AtEnd() const { return Left() == 0; }
    /// Moves to a position; one outside the bytes fails.
    void Seek(qint64 position);
    void Skip(qint64 count);

    quint8 U8() { return static_cast<quint8>(Take(1, false)); }
    quint16 U16LE() { return static_cast<quint16>(Take(2, false)); }
    quint16 U16BE() { return static_cast<quint16>(Take(2, true)); }
    quint32 U24BE() { return static_cast<quint32>(Take(3, true)); }
    quint32 U32LE() { return static_cast<quint32>(Take(4, false)); }
    quint32 U32BE() { return static_cast<quint32>(Take(4, true)); }
    quint64 U64LE() { return Take(8, false); }
    quint64 U64BE() { return Take(8, true); }
    /// The next `count` bytes as a view into the input; empty and failed when fewer are left.
    QByteArrayView Bytes(qint64 count);
    /// All bytes that are left.
    QByteArrayView Rest() { return Bytes(Left()); }

private:
    quint64 Take(int count, bool bigEndian);

    QByteArrayView FBytes;
    qint64 FPosition = 0;
    bool FFailed = false;
};

} // namespace Kestrune
