// SPDX-License-Identifier: GPL-3.0-or-later
#include "uCueSources.h"

#include "uFolderNames.h"

#include <QStringList>

#include <algorithm>
#include <utility>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

QString WithoutExtension(const QString& path) { return path.chopped(ExtensionOf(path).size()); }

// How names are compared: without case, and with "/" whatever system the sheet was written on.
QString Comparable(const QString& name) { return QString(name).replace(u'\\', u'/').toCaseFolded(); }

// The start of the last track of a file, in seconds.
double LastStart(const TCueSheet& sheet, const QString& fileName)
{
    double last = 0.0;
    for (const TCueTrack& track : sheet.Tracks)
        if (track.FileName == fileName)
            last = std::max(last, track.StartSec);
    return last;
}

} // namespace

TCueSources::TCueSources(std::vector<TCueSource> sources) : FSources(std::move(sources))
{
    const auto addFirst = [](TIndex& index, const QString& key, size_t i) {
        if (!index.contains(key))
            index.insert(key, i);
    };
    for (size_t i = 0; i < FSources.size(); ++i) {
        const QString name = FSources[i].Name.toCaseFolded();
        addFirst(FByName, name, i);
        addFirst(FByStem, WithoutExtension(name), i);
        FByExtension[ExtensionOf(name)].push_back(i);
        FAll.push_back(i);
    }
    // Full paths go before the last components of others.
    for (size_t i = 0; i < FSources.size(); ++i) {
        const QString last = FileNameOf(FSources[i].Name).toCaseFolded();
        addFirst(FByName, last, i);
        addFirst(FByStem, WithoutExtension(last), i);
    }
}

const size_t* TCueSources::Find(const TIndex& index, const QString& name, const QString& folder)
{
    const QString last = FileNameOf(name);
    for (const QString& key : {folder + u'/' + name, name, folder + u'/' + last, last}) {
        if (const auto found = index.constFind(key); found != index.constEnd())
            return &*found;
    }
    return nullptr;
}

// A sheet that was left beside files which were already split would otherwise cut one of these.
const size_t* TCueSources::FindOnlyOne(const QString& name, const TCueSheet& sheet, const TTaken& taken) const
{
    const auto kin = FByExtension.constFind(ExtensionOf(Comparable(name)));
    const std::vector<size_t>& candidates = kin != FByExtension.constEnd() ? *kin : FAll;
    if (candidates.size() != 1 || taken.contains(candidates.front()))
        return nullptr;
    const int seconds = FSources[candidates.front()].Seconds;
    return seconds == 0 || LastStart(sheet, name) < seconds ? &candidates.front() : nullptr;
}

QHash<QString, size_t> TCueSources::Resolve(const TCueSheet& sheet) const
{
    QHash<QString, size_t> found;
    TTaken taken;
    QStringList missing;
    QSet<QString> seen;
    const QString folder = Comparable(sheet.Folder);
    for (const TCueTrack& track : sheet.Tracks) {
        if (seen.contains(track.FileName))
            continue;
        seen.insert(track.FileName);
        if (const size_t* source = Find(FByName, Comparable(track.FileName), folder)) {
            found.insert(track.FileName, *source);
            taken.insert(*source);
        } else {
            missing += track.FileName;
        }
    }
    // A file that bears one name of the sheet is not taken for another name.
    QStringList nameless;
    for (const QString& name : std::as_const(missing)) {
        const size_t* source = Find(FByStem, WithoutExtension(Comparable(name)), folder);
        if (source && !taken.contains(*source)) {
            found.insert(name, *source);
            taken.insert(*source);
        } else {
            nameless += name;
        }
    }
    if (nameless.size() != 1)
        return found;
    if (const size_t* source = FindOnlyOne(nameless.front(), sheet, taken))
        found.insert(nameless.front(), *source);
    return found;
}

} // namespace Kestrune
