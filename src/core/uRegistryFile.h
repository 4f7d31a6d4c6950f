// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

#include <map>
#include <optional>

namespace Kestrune {

/// Settings by name; a "/" in a name parts subkeys.
using TSettingValues = std::map<QString, QString>;

/// The settings as a file in the registry export format, version 5: UTF-16 with a byte order mark, lines ending in CR
/// LF, whole numbers as dword, texts of several lines as hex(1).
QByteArray WriteRegistryFile(const QString& rootKey, const TSettingValues& values);

/// Reads such a file back, in UTF-16 or UTF-8: the values under any root key that has the same last part as `rootKey`.
/// Nothing when it is no such file. Deleted keys and values of other kinds are passed over.
std::optional<TSettingValues> ReadRegistryFile(const QByteArray& bytes, const QString& rootKey);

} // namespace Kestrune
