// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

namespace Kestrune {

/// Paths of pictures that lie beside the audio files.
struct TFoundCovers {
    QString Front, Back, Media;
    QStringList Others;
};

/// True for the extensions of picture files that the folder scan takes.
bool IsCoverImage(const QString& path);

/// Sorts the pictures of one folder by their names into `covers`; a filled place stays. Nothing for a missing folder.
void ScanImages(const QString& folder, TFoundCovers& covers);

/// The folders in which the pictures of a release are looked for.
struct TCoverFolders {
    QStringList Own;              ///< those of its tracks, in their order
    QString Parent{};             ///< the folder above them, empty where that is not the release's
    bool ParentIsRelease = false; ///< all that lies in the parent belongs to the release
};

/// The pictures of a release: those in its own folders, then in the parent, each with its subfolders "covers", "scans"
/// and the like; while there is no front, those of the other subfolders but disc folders. Without a front the first
/// other picture becomes it.
TFoundCovers FindCovers(const TCoverFolders& folders);

} // namespace Kestrune
