// SPDX-License-Identifier: GPL-3.0-or-later
#include "uIncludeGraph.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

QString FolderOf(const QString& file)
{
    const qsizetype slash = file.lastIndexOf(u'/');
    return slash < 0 ? u"."_s : file.left(slash);
}

QStringList IncludesOf(const QString& path)
{
    static const QRegularExpression line(u"^\\s*#\\s*include\\s*\"(?:[^\"]*/)?([^\"/]+)\""_s,
                                         QRegularExpression::MultilineOption);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QStringList names;
    for (const QRegularExpressionMatch& match : line.globalMatch(QString::fromUtf8(file.readAll())))
        names << match.captured(1);
    return names;
}

// A walk in depth that keeps the way it came: a node of that way met again closes a ring.
class TRingFinder {
public:
    explicit TRingFinder(const QMap<QString, QMap<QString, QString>>& edges) : FEdges(edges) {}

    QStringList Run()
    {
        for (const QString& node : FEdges.keys())
            Visit(node);
        return FRings;
    }

private:
    void Visit(const QString& node)
    {
        if (const qsizetype at = FWay.indexOf(node); at >= 0) {
            Tell(FWay.sliced(at));
            return;
        }
        if (FDone.contains(node))
            return;
        FWay << node;
        for (const QString& next : FEdges[node].keys())
            Visit(next);
        FWay.removeLast();
        FDone << node;
    }

    void Tell(QStringList ring)
    {
        ring << ring.first();
        QStringList proofs;
        for (qsizetype i = 0; i + 1 < ring.size(); ++i)
            proofs << FEdges[ring[i]][ring[i + 1]];
        FRings << ring.join(u" -> "_s) + u" ("_s + proofs.join(u", "_s) + u')';
    }

    const QMap<QString, QMap<QString, QString>>& FEdges;
    QStringList FWay, FRings;
    QSet<QString> FDone;
};

} // namespace

TIncludeGraph::TIncludeGraph(const QString& root)
{
    ListFiles(root);
    for (const QString& file : FIncludes.keys())
        AddFile(root, file);
}

void TIncludeGraph::ListFiles(const QString& root)
{
    const QDir top(root);
    QDirIterator files(root, {u"*.h"_s, u"*.cpp"_s}, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString file = top.relativeFilePath(files.next());
        const QString name = files.fileName();
        FIncludes.insert(file, {});
        if (!name.endsWith(u".h"_s))
            continue;
        if (FHeaders.contains(name))
            FTwice << FHeaders[name] + u" and "_s + file;
        FHeaders.insert(name, file);
    }
}

void TIncludeGraph::AddFile(const QString& root, const QString& file)
{
    for (const QString& name : IncludesOf(root + u'/' + file)) {
        FIncludes[file] << name;
        const QString header = FHeaders.value(name);
        if (header.isEmpty())
            continue;
        const QString proof = file + u" includes "_s + name;
        if (FolderOf(header) != FolderOf(file))
            FFolders[FolderOf(file)].insert(FolderOf(header), proof);
        if (UnitOf(header) != UnitOf(file))
            FUnits[UnitOf(file)].insert(UnitOf(header), proof);
    }
}

QString TIncludeGraph::UnitOf(const QString& file) const
{
    const QString base = QFileInfo(file).completeBaseName();
    for (QString stem = base;;) {
        const QString header = FHeaders.value(stem + u".h"_s);
        if (!stem.endsWith(u"_p"_s) && FolderOf(header) == FolderOf(file) && !header.isEmpty())
            return FolderOf(file) + u'/' + stem;
        const qsizetype part = stem.lastIndexOf(u'_');
        if (part < 0)
            return FolderOf(file) + u'/' + base;
        stem.truncate(part);
    }
}

QStringList TIncludeGraph::Including(const QString& folder, const QString& header) const
{
    QStringList found;
    for (auto file = FIncludes.cbegin(); file != FIncludes.cend(); ++file)
        if (FolderOf(file.key()) == folder && file->contains(header))
            found << file.key();
    return found;
}

QStringList TIncludeGraph::CyclesOf(const TEdges& edges) { return TRingFinder(edges).Run(); }

} // namespace Kestrune
