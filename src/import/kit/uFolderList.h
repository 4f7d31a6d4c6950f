// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <functional>
#include <vector>

namespace Kestrune {

/// One entry of a folder; links are shown as what they lead to.
struct TFolderEntry {
    QString Name;
    QString Path;
    bool IsFolder = false;
    bool IsFile = false; ///< a regular file; sockets, pipes and dangling links are neither
};

using TOnUnreadableFolder = std::function<void(const QString& folder, const QString& reason)>;

/// The entries of a folder, sorted by case-folded name. A folder that cannot be read gives none and a line in the
/// debug log; so does one that fails midway, after the entries up to there. Paths are in the form of PathToText.
/// The reason is also given to `onUnreadable`.
std::vector<TFolderEntry> ListFolder(const QString& folder, const TOnUnreadableFolder& onUnreadable = {});

} // namespace Kestrune
