// SPDX-License-Identifier: GPL-3.0-or-later
#include "uGuardedFiles.h"

#include <sys/stat.h>

#include <map>
#include <mutex>
#include <string_view>

namespace Kestrune {

namespace {

using TFileKey = std::pair<quint64, quint64>;

struct TMarks {
    std::mutex Mutex;
    std::map<TFileKey, int> Files; // with the number of their marks
};

TMarks& Marks()
{
    static TMarks marks;
    return marks;
}

// stat() takes no descriptor, so asking does not do the harm that it is asked about.
TFileKey KeyOf(const std::filesystem::path& path)
{
    struct stat info = {};
    return ::stat(path.c_str(), &info) == 0 ? TFileKey(info.st_dev, info.st_ino) : TFileKey();
}

bool IsMarked(const std::filesystem::path& path)
{
    const TFileKey key = KeyOf(path);
    const std::scoped_lock lock(Marks().Mutex);
    return Marks().Files.contains(key);
}

} // namespace

TFileGuard::TFileGuard(const std::filesystem::path& path) : FKey(KeyOf(path))
{
    if (FKey == TFileKey())
        return;
    const std::scoped_lock lock(Marks().Mutex);
    ++Marks().Files[FKey];
}

TFileGuard::~TFileGuard()
{
    if (FKey == TFileKey())
        return;
    const std::scoped_lock lock(Marks().Mutex);
    const auto mark = Marks().Files.find(FKey);
    if (mark != Marks().Files.end() && --mark->second == 0)
        Marks().Files.erase(mark);
}

bool IsGuardedFile(const std::filesystem::path& path)
{
    if (IsMarked(path))
        return true;
    const std::string& name = path.native();
    for (const std::string_view suffix : {"-wal", "-shm", "-journal"}) {
        if (name.ends_with(suffix) && IsMarked(name.substr(0, name.size() - suffix.size())))
            return true;
    }
    return false;
}

} // namespace Kestrune
