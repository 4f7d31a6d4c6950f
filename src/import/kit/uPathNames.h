// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace Kestrune {

/// What stands behind the last separator of a path.
QString FileNameOf(const QString& path);
/// What stands before the last separator, without it; "/" for a name in the root.
QString FolderOf(const QString& path);
/// The extension in lower case with its point, or empty. ".mp3" is an extension with no name before it.
QString ExtensionOf(const QString& path);
/// The file name without its extension.
QString StemOf(const QString& path);

} // namespace Kestrune
