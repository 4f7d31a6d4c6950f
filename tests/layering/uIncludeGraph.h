// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>

namespace Kestrune {

/// Who includes whom below a source folder. Includes are followed by file name alone, as the include paths of the
/// libraries do; what is not found below the folder belongs to others and is left out.
///
/// A unit is a header with its sources: X.h, X_p.h, X.cpp and every X_Part.cpp that has no header of its own.
class TIncludeGraph {
public:
    explicit TIncludeGraph(const QString& root);

    /// One sentence for each ring found: who stands in it, and the includes that close it.
    QStringList FolderCycles() const { return CyclesOf(FFolders); }
    QStringList UnitCycles() const { return CyclesOf(FUnits); }
    /// File names that stand in two folders: an include finds only one of them.
    const QStringList& HeadersOfOneName() const { return FTwice; }
    /// Files of a folder (relative to the root) that include a header.
    QStringList Including(const QString& folder, const QString& header) const;
    qsizetype FileCount() const { return FIncludes.size(); }

private:
    /// From a node to the nodes that it needs, each with an include as the proof.
    using TEdges = QMap<QString, QMap<QString, QString>>;

    void ListFiles(const QString& root);
    void AddFile(const QString& root, const QString& file);
    QString UnitOf(const QString& file) const;
    static QStringList CyclesOf(const TEdges& edges);

    QMap<QString, QString> FHeaders;      // file name to path below the root
    QMap<QString, QStringList> FIncludes; // path to the file names that it includes
    QStringList FTwice;
    TEdges FFolders, FUnits;
};

} // namespace Kestrune
