// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>
#include <QString>

#include <vector>

namespace Kestrune {

/// An audio file that a cue sheet may name.
struct TCueSource {
    QString Name;    ///< of the file, inside of an image its path there with "/"
    int Seconds = 0; ///< 0 unknown
};

/// The files that a sheet names, each with the start in seconds of the last track that lies in it.
using TCueNames = QHash<QString, double>;

/// Finds the files that cue sheets name among those of a folder or image.
class TCueSources {
public:
    explicit TCueSources(std::vector<TCueSource> sources);

    /// The index of the source for each name that has one. A name is looked for as it stands, also below the folder of
    /// its sheet, by its last component, and without its extension, since sheets often name the file before its
    /// conversion. What is then still nameless is the only file of its extension or the only file at all, if it is long
    /// enough.
    QHash<QString, size_t> Resolve(const TCueNames& names, const QString& sheetFolder = {}) const;

private:
    using TIndex = QHash<QString, size_t>;

    static const size_t* Find(const TIndex& index, const QString& name, const QString& folder);
    bool MayHold(size_t source, double lastStart) const;
    const size_t* FindOnlyOne(const QString& name) const;

    std::vector<TCueSource> FSources;
    TIndex FByName, FByStem;
    QHash<QString, std::vector<size_t>> FByExtension;
    std::vector<size_t> FAll;
};

} // namespace Kestrune
