// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>

namespace Kestrune {

/// Whether this process holds a POSIX lock on an existing file, as the kernel's list of locks tells (proc(5),
/// /proc/locks). Opens nothing but that list. False too where the system does not tell.
bool HoldsLockOn(const std::filesystem::path& path);

} // namespace Kestrune
