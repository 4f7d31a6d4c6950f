// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

#include <filesystem>
#include <utility>

namespace Kestrune {

/// Marks a file as one that only the database engine may open, for as long as the mark lives. POSIX drops all locks of
/// a process on a file as soon as any of its descriptors of that file is closed (fcntl, "advisory record locking"): a
/// reader that looks into the open collection would leave it unlocked, and another program could then delete its
/// write-ahead log.
class TFileGuard {
public:
    TFileGuard() = default;
    /// Marks an existing file, by what it is and not by its name; one that is not there is not marked.
    explicit TFileGuard(const std::filesystem::path& path);
    ~TFileGuard();
    TFileGuard(TFileGuard&& other) noexcept : FKey(std::exchange(other.FKey, {})) {}
    TFileGuard& operator=(TFileGuard&& other) noexcept
    {
        std::swap(FKey, other.FKey);
        return *this;
    }

private:
    std::pair<quint64, quint64> FKey; // device and inode; zeros mark nothing
};

/// True for a marked file under any of its names, and for the journal files beside it. From any thread.
bool IsGuardedFile(const std::filesystem::path& path);

/// True for the journal files of a marked file; quick for any other name.
bool IsGuardedJournal(const std::filesystem::path& path);

/// True for an open descriptor of a marked file: it must then not be closed, and is kept until the mark is taken off.
bool KeepIfGuarded(int descriptor, quint64 device, quint64 inode);

} // namespace Kestrune
