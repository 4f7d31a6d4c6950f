// SPDX-License-Identifier: GPL-3.0-or-later
#include "uGuardedFiles.h"

#include <sys/stat.h>
#include <unistd.h>

#include <map>
#include <mutex>
#include <string_view>
#include <vector>

namespace Kestrune {

namespace {

using TFileKey = std::pair<quint64, quint64>;

struct TMark {
    int Count = 0;
    std::vector<int> Descriptors; // opened by mistake, which closing would turn into harm
};

struct TMarks {
    std::mutex Mutex;
    std::map<TFileKey, TMark> Files;
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
    ++Marks().Files[FKey].Count;
}

TFileGuard::~TFileGuard()
{
    if (FKey == TFileKey())
        return;
    const std::scoped_lock lock(Marks().Mutex);
    const auto mark = Marks().Files.find(FKey);
    if (mark == Marks().Files.end() || --mark->second.Count > 0)
        return;
    for (const int descriptor : mark->second.Descriptors)
        ::close(descriptor);
    Marks().Files.erase(mark);
}

bool KeepIfGuarded(int descriptor, quint64 device, quint64 inode)
{
    const std::scoped_lock lock(Marks().Mutex);
    const auto mark = Marks().Files.find({device, inode});
    if (mark == Marks().Files.end())
        return false;
    mark->second.Descriptors.push_back(descriptor);
    return true;
}

bool IsGuardedJournal(const std::filesystem::path& path)
{
    const std::string& name = path.native();
    for (const std::string_view suffix : {"-wal", "-shm", "-journal"}) {
        if (name.ends_with(suffix) && IsMarked(name.substr(0, name.size() - suffix.size())))
            return true;
    }
    return false;
}

bool IsGuardedFile(const std::filesystem::path& path) { return IsMarked(path) || IsGuardedJournal(path); }

} // namespace Kestrune
