// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uMP3Options.h"
#include "uObjs.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace Kestrune {

/// One thing that came of reading a folder. A step has one or more of: a release, a passed-over file, a done file.
struct TFolderStep {
    std::optional<TAlbumRelease> Release;
    QString Key;                 ///< of the release: no other one of the scan has it
    QString FailedFile, Failure; ///< a file that gave nothing, and why
    bool FileDone = false;       ///< progress moves by one
    QString Text;                ///< what progress shows from here on; empty leaves what it shows
};

/// Reads the files of one folder list: a release for all audio files together, each folder of the list cut by its cue
/// sheets, and one for each disc image. Sheets of several albums in one folder make a release each. The steps are in
/// the order in which they are to be reported. Safe in any thread.
std::vector<TFolderStep> ReadFolder(const QStringList& files, const TMP3ScanOptions& options);

} // namespace Kestrune
