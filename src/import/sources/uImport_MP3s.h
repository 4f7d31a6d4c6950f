// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uImportAbstract.h"
#include "uMP3Options.h"

#include <QString>

#include <utility>

namespace Kestrune {

struct TFolderStep;

/// Folders of audio files: each folder becomes a release, disc folders of an album one release together. The input is
/// one or more folders and files, joined by "|". The keys of a listing job are the folders, and for disc images and
/// further albums of a folder a file of theirs.
class TKRNImporter_MP3s final : public TKRNImporter {
public:
    /// Copies the scan options of the settings. Main thread.
    explicit TKRNImporter_MP3s(TDataModuleMain& dataModule);
    ~TKRNImporter_MP3s() override;

    static bool CanCopyAndPasteData() { return false; }
    static TKRNImporterInputType GetImporterType() { return iitFolder; }
    static QString GetImporterFileExt() { return {}; }
    static QString GetImporterFileExtFilter() { return {}; }
    static QString GetDisplayName();
    static QString GetDisplayDesc();
    static QString GetSelectSourceDescription();
    static bool AllowsDragNDrop() { return true; }

    /// Replaces the options; before Start.
    void SetOptions(TMP3ScanOptions options) { FOptions = std::move(options); }

protected:
    void Import() override;

private:
    void TakeStep(const TFolderStep& step);
    void TakeRelease(const TAlbumRelease& release, const TVariant& key);

    TMP3ScanOptions FOptions;
    // Worker thread only.
    int FFilesCount = 0;
    int FPosition = 0;
    int FReleasesCount = 0;
    QString FLastText;
};

} // namespace Kestrune
