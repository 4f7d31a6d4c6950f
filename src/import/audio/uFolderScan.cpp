// SPDX-License-Identifier: GPL-3.0-or-later
#include "uFolderScan.h"

#include "uDebugLog.h"
#include "uFilePath.h"
#include "uFolderNames.h"

#include <QHash>

#include <sys/stat.h>

#include <algorithm>
#include <climits>
#include <filesystem>
#include <iterator>
#include <set>
#include <system_error>
#include <utility>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace fs = std::filesystem;

namespace {

void SortByName(QStringList& paths)
{
    std::ranges::sort(paths, {}, [](const QString& path) { return std::pair(path.toCaseFolded(), path); });
}

// The identity of a folder on this machine, whatever path leads to it.
std::pair<dev_t, ino_t> IdentityOf(const QString& folder)
{
    struct stat status {};
    if (stat(TextToPath(folder).c_str(), &status) != 0)
        return {};
    return {status.st_dev, status.st_ino};
}

// One walk below one folder of the input.
class TFolderWalk {
public:
    TFolderWalk(TFolderLists& lists, std::stop_token stop, const TOnUnreadableFolder& onUnreadable)
        : FLists(lists), FStop(std::move(stop)), FOnUnreadable(onUnreadable)
    {}

    // The depth is bounded by the longest path that the system opens, and each folder is entered once: a link that
    // leads back up, or a second way to the same folder, would otherwise be walked again and again.
    void Scan(const QString& folder)
    {
        if (FStop.stop_requested())
            return;
        if (!FSeen.insert(IdentityOf(folder)).second) {
            DebugLog(u"[Import] Folder was scanned before, skipped: "_s + folder);
            return;
        }
        QStringList files;
        for (const TFolderEntry& entry : ListFolder(folder, FOnUnreadable)) {
            if (entry.IsFolder)
                Scan(entry.Path);
            else if (entry.IsFile && IsSupportedAudio(entry.Path))
                files += entry.Path;
        }
        SortByName(files);
        if (!files.isEmpty())
            FLists.push_back(std::move(files));
    }

private:
    TFolderLists& FLists;
    std::stop_token FStop;
    const TOnUnreadableFolder& FOnUnreadable;
    std::set<std::pair<dev_t, ino_t>> FSeen;
};

bool PathExists(const QString& path)
{
    std::error_code failure;
    return !path.isEmpty() && fs::exists(TextToPath(path), failure);
}

// An absolute path without closing separator and "." parts, so that folder names can be read from it.
QString CleanPath(const QString& path)
{
    std::error_code failure;
    fs::path clean = fs::absolute(TextToPath(path), failure);
    const bool goesUp = std::ranges::find(clean, fs::path("..")) != clean.end();
    clean = goesUp ? fs::canonical(clean, failure) : clean.lexically_normal();
    if (!clean.has_filename() && clean.has_relative_path())
        clean = clean.parent_path();
    return PathToText(clean);
}

void AddDroppedFile(const QString& path, TFolderLists& lists)
{
    const auto sameFolder =
        std::ranges::find_if(lists, [&](const QStringList& list) { return FolderOf(list.front()) == FolderOf(path); });
    if (sameFolder == lists.end())
        lists.push_back({path});
    else
        sameFolder->append(path);
}

} // namespace

QStringList SplitInputPaths(const QString& inputPath)
{
    const QStringList pieces = inputPath.split(u'|');
    QStringList paths;
    for (qsizetype first = 0; first < pieces.size(); ++first) {
        QString path = pieces[first];
        qsizetype last = first;
        while (!path.isEmpty() && path.size() < PATH_MAX && !PathExists(path) && last + 1 < pieces.size())
            path += u'|' + pieces[++last];
        if (!PathExists(path))
            continue;
        paths += CleanPath(path);
        first = last;
    }
    return paths;
}

TFolderLists CollectFolderFiles(const QString& inputPath, const std::stop_token& stop,
                                const TOnUnreadableFolder& onUnreadable)
{
    TFolderLists lists;
    for (const QString& path : SplitInputPaths(inputPath)) {
        std::error_code failure;
        if (fs::is_directory(TextToPath(path), failure))
            TFolderWalk(lists, stop, onUnreadable).Scan(path);
        else if (fs::is_regular_file(TextToPath(path), failure) && IsSupportedAudio(path))
            AddDroppedFile(path, lists);
    }
    return lists;
}

void MergeDiscFolders(TFolderLists& lists)
{
    QHash<std::pair<QString, QString>, size_t> firstDisc; // by the folder that holds them and their common name
    std::vector<bool> absorbed(lists.size(), false);
    for (size_t i = 0; i < lists.size(); ++i) {
        if (lists[i].isEmpty())
            continue;
        const QString folder = FolderOf(lists[i].front());
        const TDiscFolderName disc = ParseDiscFolderName(FileNameOf(folder));
        if (disc.Number == 0)
            continue;
        const std::pair album(FolderOf(folder), disc.Before);
        const auto known = firstDisc.constFind(album);
        if (known == firstDisc.constEnd()) {
            firstDisc.insert(album, i);
            continue;
        }
        lists[*known] += lists[i];
        absorbed[i] = true;
    }
    size_t kept = 0;
    for (size_t i = 0; i < lists.size(); ++i) {
        if (!absorbed[i] && kept++ != i)
            lists[kept - 1] = std::move(lists[i]);
    }
    lists.resize(kept);
}

} // namespace Kestrune
