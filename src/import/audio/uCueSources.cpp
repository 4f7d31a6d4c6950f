// SPDX-License-Identifier: GPL-3.0-or-later
#include "uCueSources.h"

#include "uFolderNames.h"

#include <QSet>
#include <QStringList>

#include <algorithm>
#include <utility>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

QString WithoutExtension(const QString& path) { return path.chopped(ExtensionOf(path).size()); }

// How names are compared: without case, and with "/" whatever system the sheet was written on.
QString Comparable(const QString& name) { return QString(name).replace(u'\\', u'/').toCaseFolded(); }

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
bool TCueSources::MayHold(size_t source, double lastStart) const
{
    return FSources[source].Seconds == 0 || lastStart < FSources[source].Seconds;
}

const size_t* TCueSources::FindOnlyOne(const QString& name) const
{
    const auto kin = FByExtension.constFind(ExtensionOf(Comparable(name)));
    const std::vector<size_t>& candidates = kin != FByExtension.constEnd() ? *kin : FAll;
    return candidates.size() == 1 ? &candidates.front() : nullptr;
}

QHash<QString, size_t> TCueSources::Resolve(const TCueNames& names, const QString& sheetFolder) const
{
    QHash<QString, size_t> found;
    QSet<size_t> taken;
    const auto take = [&](const QString& name, size_t source) {
        found.insert(name, source);
        taken.insert(source);
    };
    const QString folder = Comparable(sheetFolder);
    QStringList missing, nameless;
    for (auto name = names.keyBegin(); name != names.keyEnd(); ++name) {
        if (const size_t* source = Find(FByName, Comparable(*name), folder))
            take(*name, *source);
        else
            missing += *name;
    }
    // A file that bears one name of the sheet is not taken for another name.
    const auto mayBe = [&](const size_t* source, const QString& name) {
        return source && !taken.contains(*source) && MayHold(*source, names[name]);
    };
    missing.sort(); // the order of a hash is not the same twice
    for (const QString& name : std::as_const(missing)) {
        const size_t* source = Find(FByStem, WithoutExtension(Comparable(name)), folder);
        if (mayBe(source, name))
            take(name, *source);
        else
            nameless += name;
    }
    if (nameless.size() == 1) {
        const size_t* source = FindOnlyOne(nameless.front());
        if (mayBe(source, nameless.front()))
            take(nameless.front(), *source);
    }
    return found;
}

} // namespace Kestrune
