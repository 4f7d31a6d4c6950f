// SPDX-License-Identifier: GPL-3.0-or-later
#include "uFileLocks.h"

#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <sstream>
#include <string>

namespace Kestrune {

bool HoldsLockOn(const std::filesystem::path& path)
{
    struct stat info = {};
    if (::stat(path.c_str(), &info) != 0)
        return false;
    const std::string process = std::to_string(::getpid());
    // Only the inode is compared: several file systems report another device to stat() than they have in the kernel.
    const std::string inode = ':' + std::to_string(info.st_ino);
    std::ifstream locks("/proc/locks");
    for (std::string line; std::getline(locks, line);) {
        // "1: POSIX  ADVISORY  READ 4711 08:01:1234 1073741826 1073742335"; those who wait have "->" behind the number.
        std::istringstream words(line);
        std::string number, kind, mode, access, owner, file;
        words >> number >> kind >> mode >> access >> owner >> file;
        if (kind == "POSIX" && owner == process && file.ends_with(inode))
            return true;
    }
    return false;
}

} // namespace Kestrune
