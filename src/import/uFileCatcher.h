// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPoint>
#include <QString>
#include <QStringList>

#include <utility>

namespace Kestrune {

/// Files and folders that were dropped onto a window, and where.
class TFileCatcher {
public:
    explicit TFileCatcher(QStringList paths, QPoint dropPoint = {}) : FFiles(std::move(paths)), FDropPoint(dropPoint) {}

    qsizetype FileCount() const { return FFiles.size(); }
    const QStringList& Files() const { return FFiles; }
    /// In the coordinates of the window that took the drop.
    QPoint DropPoint() const { return FDropPoint; }
    /// The paths as one text, joined by "|", as importers take them.
    QString InputPath() const { return FFiles.join(u'|'); }

private:
    QStringList FFiles;
    QPoint FDropPoint;
};

} // namespace Kestrune
