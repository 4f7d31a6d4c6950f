// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <filesystem>

namespace Kestrune {

/// The text form of a path. Names that are valid UTF-8 appear as they are; each byte that is not (0x80 to 0xFF)
/// appears as one character U+EF80 to U+EFFF. A name that holds such characters itself has their bytes escaped in
/// the same way, so that the form always leads back to the same bytes.
QString PathToText(const std::filesystem::path& path);

/// The path that a text form stands for.
std::filesystem::path TextToPath(const QString& text);

} // namespace Kestrune
