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

void TKRNImporter_MP3s::ImportFolder(const QStringList& files)
{
    TKRN_MP3_Tracks tracks;
    QString embeddedCue;
    for (const QString& path : files) {
        if (IsDiscImage(path))
            ImportImage(path);
        else
            ScanFile(path, tracks, embeddedCue);
    }
    // The sheet inside a file speaks for the whole album only when that file is the whole album.
    if (files.size() > 1)
        embeddedCue.clear();
    AddRelease(CutByCueSheet(std::move(tracks), embeddedCue));
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

void TKRNImporter_MP3s::ScanFile(const QString& path, TKRN_MP3_Tracks& tracks, QString& embeddedCue)
{
    try {
        // Of all pictures of a folder the first is shown: the others would only fill the memory.
        const bool wantCover = std::ranges::all_of(tracks, [](const auto& track) { return track.Cover.isEmpty(); });
        auto result = ProcessFile(path, FOptions, wantCover);
        if (auto* file = std::get_if<TScannedFile>(&result)) {
            TKRN_MP3_Track& track = file->Track;
            if (track.DiscNo == 0)
                track.DiscNo = DiscNumberFromFolderName(FileNameOf(FolderOf(path)));
            FLastText = u"%1 - %2 - %3"_s.arg(track.Artist, track.Album, track.Title);
            embeddedCue = std::move(file->CueSheet);
            tracks.push_back(std::move(track));
        } else {
            DoOnFileError(path, std::get<TFileFailure>(result).Sentence);
        }
    } catch (const std::exception& failure) {
        DebugLog(u"ProcessFile error: "_s + QString::fromUtf8(failure.what()));
        DoOnFileError(path, QString::fromUtf8(failure.what()));
    }
    MoveProgress(FLastText);
}

TKRN_MP3_Tracks TKRNImporter_MP3s::CutByCueSheet(TKRN_MP3_Tracks tracks, const QString& embeddedCue) const
{
    if (tracks.empty())
        return tracks;
    std::optional<TCueSheet> sheet;
    if (const QString file = FindCueSheet(tracks.front().FilePath); !file.isEmpty())
        sheet = LoadCueSheet(file);
    else if (!embeddedCue.isEmpty())
        sheet = ParseCueSheet(embeddedCue);
    if (!sheet || sheet->Tracks.size() < 2)
        return tracks;
    TKRN_MP3_Tracks cut = ApplyCueSheet(*sheet, tracks);
    return cut.empty() ? tracks : cut;
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
