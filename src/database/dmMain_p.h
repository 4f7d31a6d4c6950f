// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <filesystem>
#include <system_error>

namespace Kestrune {

class TSQLiteConnection;

/// A script of the collection by its name: a file beside the program wins over the text that is compiled in.
QString DatabaseScript(const QString& name);

/// Throws EDatabaseError: the file cannot be written, and why.
[[noreturn]] void ThrowFileError(const QString& path, const std::error_code& error);

/// Version number of a collection: 0 when its text is no number.
int VersionOf(TSQLiteConnection& connection);

/// Throws when the file names no version: there is no row, or it is empty, or beyond any number that there will be.
void CheckVersion(TSQLiteConnection& connection);

} // namespace Kestrune
