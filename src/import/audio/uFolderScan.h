// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uFolderList.h"

#include <QString>
#include <QStringList>

#include <stop_token>
#include <vector>

namespace Kestrune {

/// File lists by folder: each list holds the full paths of the audio files of one folder.
using TFolderLists = std::vector<QStringList>;

/// The paths in a text of paths joined by "|". Where such a piece is no path, it is joined with the pieces behind it
/// until there is one, since names may hold that character. What never becomes a path is left out.
QStringList SplitInputPaths(const QString& inputPath);

/// The audio files below each folder of the input, deeper folders before the folder that holds them, and the input's
/// own files beside those of the same folder. A stop ends the search early with what it has found.
TFolderLists CollectFolderFiles(const QString& inputPath, const std::stop_token& stop = {},
                                const TOnUnreadableFolder& onUnreadable = {});

/// Joins the lists of the disc folders of an album: those that lie in one folder and are named alike before the disc
/// word ("CD1" and "CD2", "Album CD1" and "Album CD2"). A lone disc folder stays as it is.
void MergeDiscFolders(TFolderLists& lists);

} // namespace Kestrune
