// SPDX-License-Identifier: GPL-3.0-or-later
#include "uFindCovers.h"

#include "uFolderNames.h"
#include "uFolderScan.h"

#include <algorithm>
#include <initializer_list>
#include <vector>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

const QStringList& CoverFolders()
{
    static const QStringList names{u"covers"_s, u"cover"_s, u"artwork"_s, u"covers & info"_s, u"info"_s,
                                   u"pics"_s,   u"pic"_s,   u"scan"_s,    u"scans"_s};
    return names;
}

bool NameMatches(const QString& stem, std::initializer_list<QLatin1StringView> words)
{
    return std::ranges::any_of(words, [&](auto word) { return stem.startsWith(word) || stem.endsWith(word); });
}

void Classify(const QString& path, TFoundCovers& covers)
{
    const QString stem = StemOf(path).toLower();
    if (covers.Front.isEmpty() && NameMatches(stem, {"front"_L1, "folder"_L1, "cover"_L1}))
        covers.Front = path;
    else if (covers.Back.isEmpty() && NameMatches(stem, {"back"_L1, "rear"_L1}))
        covers.Back = path;
    else if (covers.Media.isEmpty() && NameMatches(stem, {"cd"_L1, "media"_L1}))
        covers.Media = path;
    else
        covers.Others += path;
}

using TEntries = std::vector<TFolderEntry>;

void ScanEntries(const TEntries& entries, TFoundCovers& covers)
{
    for (const TFolderEntry& entry : entries) {
        if (entry.IsFile && IsCoverImage(entry.Name))
            Classify(entry.Path, covers);
    }
}

void ScanCoverFolders(const TEntries& entries, TFoundCovers& covers)
{
    for (const QString& name : CoverFolders()) {
        for (const TFolderEntry& entry : entries) {
            if (entry.IsFolder && entry.Name.toCaseFolded() == name)
                ScanImages(entry.Path, covers);
        }
    }
}

void ScanOtherFolders(const TEntries& entries, TFoundCovers& covers)
{
    for (const TFolderEntry& entry : entries) {
        const bool named = CoverFolders().contains(entry.Name.toCaseFolded());
        if (entry.IsFolder && !named && DiscNumberFromFolderName(entry.Name) == 0)
            ScanImages(entry.Path, covers);
    }
}

} // namespace

bool IsCoverImage(const QString& path)
{
    static const QString extensions = u";.jpg;.jpeg;.jpe;.png;.gif;.bmp;"_s;
    return extensions.contains(u';' + ExtensionOf(path) + u';');
}

void ScanImages(const QString& folder, TFoundCovers& covers) { ScanEntries(ListFolder(folder), covers); }

TFoundCovers FindCovers(const TCoverFolders& folders)
{
    TFoundCovers covers;
    std::vector<TEntries> places;
    for (const QString& folder : folders.Own)
        places.push_back(ListFolder(folder));
    if (!folders.Parent.isEmpty())
        places.push_back(ListFolder(folders.Parent));
    for (const TEntries& entries : places) {
        ScanEntries(entries, covers);
        ScanCoverFolders(entries, covers);
    }
    // Beside "Album CD1" in the parent lie the folders of other albums.
    if (!folders.Parent.isEmpty() && !folders.ParentIsRelease)
        places.pop_back();
    for (auto at = places.cbegin(); at != places.cend() && covers.Front.isEmpty(); ++at)
        ScanOtherFolders(*at, covers);
    if (covers.Front.isEmpty() && !covers.Others.isEmpty())
        covers.Front = covers.Others.takeFirst();
    return covers;
}

} // namespace Kestrune
