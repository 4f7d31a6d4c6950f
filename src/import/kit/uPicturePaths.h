// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

namespace Kestrune {

/// Finds the picture files that another program's data names, as that program and its system wrote them: with
/// environment variables, tokens, backslashes, drive letters and letters in another case. One object serves one source
/// file; it remembers the folders that it has looked into. One thread.
class TPicturePaths {
public:
    /// The tokens stand for the folder of the source's file ("%RelativePath%") and for its name without extension
    /// ("%DBFilenameWithoutExt%").
    explicit TPicturePaths(const QString& sourceFile);

    /// The regular file that a path means on this machine, or empty. A path of another machine is looked for beside the
    /// source's file by its last folders: "C:\Music\Covers\1.jpg" is "Music/Covers/1.jpg" or "Covers/1.jpg" there.
    QString Find(const QString& path);

private:
    QString Expanded(QString path) const;
    QString Existing(const QString& folder, const QString& path);
    const QString* NameIn(const QString& folder, const QString& name);
    QString FoundBesideSource(const QStringList& parts);

    QString FFolder; ///< of the source's file, with separator
    QString FStem;
    QHash<QString, QHash<QString, QString>> FListed; ///< names by folder and folded name
};

} // namespace Kestrune
