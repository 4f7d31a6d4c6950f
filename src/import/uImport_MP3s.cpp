// SPDX-License-Identifier: GPL-3.0-or-later
#include "uImport_MP3s.h"

#include "uCueSheet.h"
#include "uDebugLog.h"
#include "uDefaults.h"
#include "uFolderNames.h"
#include "uFolderScan.h"
#include "uMP3File.h"
#include "uMP3Release.h"
#include "uTHStrings.h"

#include <algorithm>
#include <exception>
#include <optional>

namespace Kestrune {

using namespace Qt::StringLiterals;

TMP3ScanOptions TMP3ScanOptions::FromSettings()
{
    TMP3ScanOptions options;
    options.FindCovers = Defaults().MP3ScanFindCovers;
    options.BackCover = Defaults().MP3ScanBackCover;
    options.MediaCover = Defaults().MP3ScanMediaCover;
    options.OtherImages = Defaults().MP3ScanOtherImages;
    options.ThumbHeight = Defaults().LargeHeight;
    options.VariousArtists = GetLanguageString(u"cSVariousArtists"_s);
    options.Digital = GetLanguageString(u"cSDigital"_s);
    options.UnreadableFile = GetLanguageString(u"cSImporterMP3sUnreadableFile"_s);
    return options;
}

TKRNImporter_MP3s::TKRNImporter_MP3s(TDataModuleMain& dataModule)
    : TKRNImporter(dataModule), FOptions(TMP3ScanOptions::FromSettings())
{}

TKRNImporter_MP3s::~TKRNImporter_MP3s()
{
    Terminate();
    WaitFor();
}

QString TKRNImporter_MP3s::GetDisplayName() { return GetLanguageString(u"cSImporterMP3sDisplayName"_s); }

QString TKRNImporter_MP3s::GetDisplayDesc() { return GetLanguageString(u"cSImporterMP3sDisplayDesc"_s); }

QString TKRNImporter_MP3s::GetSelectSourceDescription()
{
    return GetLanguageString(u"cSImporterMP3sSelectSourceDescription"_s);
}

void TKRNImporter_MP3s::Import()
{
    const TControlsOff controlsOff(*this);
    TFolderLists lists = CollectFolderFiles(InputPath(), StopToken());
    MergeDiscFolders(lists);
    for (const QStringList& list : lists)
        FFilesCount += static_cast<int>(list.size());
    for (const QStringList& list : lists) {
        if (Terminated())
            break;
        ImportFolder(list);
    }
    DoOnImportDone(FReleasesCount, FPosition);
}

// Of all pictures of a folder the first is shown, and the others would only fill the memory. A cue sheet may start
// with any of the files, so that each keeps its picture until the sheet is applied.
bool TKRNImporter_MP3s::TFolder::WantsCover() const
{
    return !CueFile.isEmpty() || std::ranges::all_of(Tracks, [](const auto& track) { return track.Cover.isEmpty(); });
}

void TKRNImporter_MP3s::ImportFolder(const QStringList& files)
{
    TFolder folder;
    for (const QString& path : files) {
        if (IsDiscImage(path))
            ImportImage(path);
        else
            ScanFile(path, folder);
    }
    // The sheet inside a file speaks for the whole album only when that file is the whole album.
    if (files.size() > 1)
        folder.EmbeddedCue.clear();
    AddRelease(CutByCueSheet(folder));
}

void TKRNImporter_MP3s::ImportImage(const QString& image)
{
    TKRN_MP3_Tracks tracks;
    try {
        if (FOptions.ReadDiscImage)
            tracks = FOptions.ReadDiscImage(image);
    } catch (const std::exception& failure) {
        DebugLog(u"ProcessISO error: "_s + QString::fromUtf8(failure.what()));
        DoOnFileError(image, QString::fromUtf8(failure.what()));
    }
    AddRelease(tracks);
    MoveProgress(FileNameOf(image));
}

void TKRNImporter_MP3s::ScanFile(const QString& path, TFolder& folder)
{
    try {
        auto result = ProcessFile(path, FOptions, folder.WantsCover());
        if (auto* file = std::get_if<TScannedFile>(&result)) {
            TKRN_MP3_Track& track = file->Track;
            if (track.DiscNo == 0)
                track.DiscNo = DiscNumberFromFolderName(FileNameOf(FolderOf(path)));
            FLastText = u"%1 - %2 - %3"_s.arg(track.Artist, track.Album, track.Title);
            if (folder.Tracks.empty())
                folder.CueFile = FindCueSheet(path);
            folder.EmbeddedCue = std::move(file->CueSheet);
            folder.Tracks.push_back(std::move(track));
        } else {
            DoOnFileError(path, std::get<TFileFailure>(result).Sentence);
        }
    } catch (const std::exception& failure) {
        DebugLog(u"ProcessFile error: "_s + QString::fromUtf8(failure.what()));
        DoOnFileError(path, QString::fromUtf8(failure.what()));
    }
    MoveProgress(FLastText);
}

TKRN_MP3_Tracks TKRNImporter_MP3s::CutByCueSheet(TFolder& folder)
{
    std::optional<TCueSheet> sheet;
    if (!folder.CueFile.isEmpty())
        sheet = LoadCueSheet(folder.CueFile);
    else if (!folder.EmbeddedCue.isEmpty())
        sheet = ParseCueSheet(folder.EmbeddedCue);
    if (sheet && sheet->Tracks.size() >= 2) {
        if (TKRN_MP3_Tracks cut = ApplyCueSheet(*sheet, folder.Tracks); !cut.empty())
            return cut;
    }
    return std::move(folder.Tracks);
}

void TKRNImporter_MP3s::AddRelease(const TKRN_MP3_Tracks& tracks)
{
    if (tracks.empty() || !IsWanted(ReleaseFolderOf(tracks.front())))
        return;
    if (JobType() == ijtGetReleasesList) {
        const TKRN_MP3_Track& first = tracks.front();
        DoOnReleaseFound(ReleaseFolderOf(first), ReleaseArtistOf(tracks, FOptions.VariousArtists), first.Album,
                         first.Year > 0 ? QString::number(first.Year) : QString(), static_cast<int>(tracks.size()));
    } else {
        StoreRelease(*CreateReleaseFromTracks(tracks, FOptions), true);
    }
    ++FReleasesCount;
}

void TKRNImporter_MP3s::MoveProgress(const QString& text) { DoOnProgress(++FPosition, FFilesCount, false, text); }

} // namespace Kestrune
