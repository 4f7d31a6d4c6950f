// SPDX-License-Identifier: GPL-3.0-or-later
#include "uMP3Folder.h"

#include "uCueSheet.h"
#include "uDebugLog.h"
#include "uFolderNames.h"
#include "uMP3File.h"
#include "uMP3Release.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

class TFolderReader {
public:
    explicit TFolderReader(const TMP3ScanOptions& options) : FOptions(options) {}

    std::vector<TFolderStep> Read(const QStringList& files)
    {
        for (const QString& path : files) {
            if (IsDiscImage(path))
                ReadImage(path);
            else
                ReadFile(path);
        }
        // The sheet inside a file speaks for the whole album only when that file is the whole album.
        if (files.size() > 1)
            FEmbeddedCue.clear();
        if (!FTracks.empty())
            FSteps.emplace_back().Release = CreateReleaseFromTracks(CutByCueSheet(), FOptions);
        return std::move(FSteps);
    }

private:
    void ReadImage(const QString& image)
    {
        TFolderStep step;
        step.FileDone = true;
        step.Text = FileNameOf(image);
        try {
            if (FOptions.ReadDiscImage)
                step.Release = CreateReleaseFromTracks(FOptions.ReadDiscImage(image, FOptions.Pictures), FOptions);
        } catch (const std::exception& failure) {
            Fail(step, "ProcessISO", image, failure);
        }
        FSteps.push_back(std::move(step));
    }

    void ReadFile(const QString& path)
    {
        TFolderStep step;
        step.FileDone = true;
        try {
            auto result = ProcessFile(path, FOptions, WantsCover());
            if (auto* file = std::get_if<TScannedFile>(&result)) {
                step.Text = AddTrack(std::move(*file));
            } else {
                step.FailedFile = path;
                step.Failure = std::get<TFileFailure>(result).Sentence;
            }
        } catch (const std::exception& failure) {
            Fail(step, "ProcessFile", path, failure);
        }
        FSteps.push_back(std::move(step));
    }

    static void Fail(TFolderStep& step, const char* where, const QString& path, const std::exception& failure)
    {
        step.FailedFile = path;
        step.Failure = QString::fromUtf8(failure.what());
        DebugLog(QString::fromUtf8(where) + u" error: "_s + step.Failure);
    }

    // Of all pictures of a folder the first is shown, and the others would only fill the memory. A cue sheet may start
    // with any of the files, so that each keeps its picture until the sheet is applied.
    bool WantsCover() const
    {
        const auto bare = [](const TKRN_MP3_Track& track) { return track.Cover.isEmpty(); };
        return FOptions.Pictures && (!FCueFile.isEmpty() || std::ranges::all_of(FTracks, bare));
    }

    QString AddTrack(TScannedFile file)
    {
        TKRN_MP3_Track& track = file.Track;
        if (track.DiscNo == 0)
            track.DiscNo = DiscNumberFromFolderName(FileNameOf(FolderOf(track.FilePath)));
        if (FTracks.empty())
            FCueFile = FindCueSheet(track.FilePath);
        FEmbeddedCue = std::move(file.CueSheet);
        FTracks.push_back(std::move(track));
        return u"%1 - %2 - %3"_s.arg(FTracks.back().Artist, FTracks.back().Album, FTracks.back().Title);
    }

    TKRN_MP3_Tracks CutByCueSheet()
    {
        std::optional<TCueSheet> sheet;
        if (!FCueFile.isEmpty())
            sheet = LoadCueSheet(FCueFile);
        else if (!FEmbeddedCue.isEmpty())
            sheet = ParseCueSheet(FEmbeddedCue);
        if (sheet && sheet->Tracks.size() >= 2) {
            if (TKRN_MP3_Tracks cut = ApplyCueSheet(*sheet, FTracks); !cut.empty())
                return cut;
        }
        return std::move(FTracks);
    }

    const TMP3ScanOptions& FOptions;
    std::vector<TFolderStep> FSteps;
    TKRN_MP3_Tracks FTracks;
    QString FCueFile;     // beside the first track
    QString FEmbeddedCue; // the last file's own
};

} // namespace

std::vector<TFolderStep> ReadFolder(const QStringList& files, const TMP3ScanOptions& options)
{
    return TFolderReader(options).Read(files);
}

} // namespace Kestrune
