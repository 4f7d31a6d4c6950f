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

/// The pictures of a release folder: its own, those of "covers", "scans" and the like, and while there is no front
/// those of its other subfolders but disc folders. Without a front the first other picture becomes it.
TFoundCovers FindCovers(const QString& folder);

} // namespace Kestrune
