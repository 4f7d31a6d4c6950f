// SPDX-License-Identifier: GPL-3.0-or-later
#include "uFolderList.h"

#include "uDebugLog.h"
#include "uFilePath.h"
#include "uPathNames.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace fs = std::filesystem;

namespace {

TFolderEntry EntryOf(const fs::directory_entry& item)
{
    std::error_code failure;
    const QString path = PathToText(item.path());
    const bool isFolder = item.is_directory(failure);
    return {FileNameOf(path), path, isFolder, !isFolder && item.is_regular_file(failure)};
}

} // namespace

std::vector<TFolderEntry> ListFolder(const QString& folder, const TOnUnreadableFolder& onUnreadable)
{
    std::vector<TFolderEntry> entries;
    std::error_code failure;
    fs::directory_iterator at(TextToPath(folder), failure);
    while (!failure && at != fs::directory_iterator()) {
        entries.push_back(EntryOf(*at));
        at.increment(failure);
    }
    if (failure) {
        const QString reason = QString::fromStdString(failure.message());
        DebugLog(u"[Import] Folder cannot be read: %1: %2"_s.arg(folder, reason));
        if (onUnreadable)
            onUnreadable(folder, reason);
    }
    std::ranges::sort(entries, {}, [](const TFolderEntry& e) { return std::pair(e.Name.toCaseFolded(), e.Name); });
    return entries;
}

} // namespace Kestrune
