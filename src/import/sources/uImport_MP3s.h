// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uImportAbstract.h"
#include "uMP3Options.h"

#include <QString>

namespace Kestrune {

struct TFolderStep;

/// Folders of audio files: each folder becomes a release, disc folders of an album one release together. The input is
/// one or more folders and files, joined by "|". The keys of a listing job are the folders, and for disc images and
/// further albums of a folder a file of theirs. Its options are TMP3ScanOptions.
class TKRNImporter_MP3s final : public TKRNImporter {
public:
    using TKRNImporter::TKRNImporter;

protected:
    void Import() override;

private:
    void TakeStep(const TFolderStep& step);
    void TakeRelease(const TAlbumRelease& release, const TVariant& key);

    // Worker thread only.
    TMP3ScanOptions FOptions;
    int FFilesCount = 0;
    int FPosition = 0;
    int FReleasesCount = 0;
    QString FLastText;
};

} // namespace Kestrune
