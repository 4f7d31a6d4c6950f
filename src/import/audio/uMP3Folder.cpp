// SPDX-License-Identifier: GPL-3.0-or-later
#include "uMP3Folder.h"

#include "uCueSheet.h"
#include "uDebugLog.h"
#include "uFolderNames.h"
#include "uMP3File.h"
#include "uMP3Release.h"

#include <QSet>

#include <algorithm>
#include <exception>
#include <iterator>
#include <utility>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

// One of the folders of a list, and what was read of it.
struct TReadFolder {
    QString Path;
    TCueFolder Cue;
    TKRN_MP3_Tracks Tracks;
    QString EmbeddedCue; // of the last file
    int Files = 0;       // readable ones or not
};

// The names that became no track, so that no sheet mistakes another file for one of them.
QStringList UnreadNames(const TReadFolder& folder)
{
    QSet<QString> read;
    for (const TKRN_MP3_Track& track : folder.Tracks)
        read.insert(FileNameOf(track.FilePath));
    QStringList names;
    for (const QString& name : folder.Cue.AudioFiles)
        if (!read.contains(name))
            names += name;
    return names;
}

std::vector<TKRN_MP3_Tracks> AlbumsOf(TReadFolder folder)
{
    if (folder.Cue.Sheets.isEmpty()) {
        // The sheet inside a file speaks for the whole folder only when that file is all there is.
        if (folder.Files > 1 || folder.EmbeddedCue.isEmpty())
            return CutIntoAlbums({}, std::move(folder.Tracks));
        return CutIntoAlbums({ParseCueSheet(folder.EmbeddedCue)}, std::move(folder.Tracks));
    }
    std::vector<TCueSheet> sheets;
    for (const QString& path : std::as_const(folder.Cue.Sheets))
        if (auto sheet = LoadCueSheet(path))
            sheets.push_back(std::move(*sheet));
    const QStringList others = UnreadNames(folder);
    return CutIntoAlbums(sheets, std::move(folder.Tracks), others);
}

QString SentenceOf(TImageFailure failure, const TMP3ScanOptions& options)
{
    switch (failure) {
    case imfUnknown: return options.UnknownImage;
    case imfWithoutAudio: return options.ImageWithoutAudio;
    default: return options.UnreadableFile;
    }
}

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
        if (FFolders.size() == 1)
            AddAlbums();
        else if (!FFolders.empty())
            AddDiscs();
        return std::move(FSteps);
    }

private:
    void ReadImage(const QString& image)
    {
        TFolderStep step;
        step.FileDone = true;
        step.Text = FileNameOf(image);
        step.Key = image;
        try {
            const TImageTracks read =
                FOptions.ReadDiscImage ? FOptions.ReadDiscImage(image, FOptions.Pictures) : TImageTracks{};
            step.Release = CreateReleaseFromTracks(read.Tracks, FOptions);
            if (read.Failure != imfNone) {
                step.FailedFile = image;
                step.Failure = SentenceOf(read.Failure, FOptions);
            }
        } catch (const std::exception& failure) {
            Fail(step, "ProcessISO", image, failure);
        }
        FSteps.push_back(std::move(step));
    }

    void ReadFile(const QString& path)
    {
        TReadFolder& folder = FolderAt(FolderOf(path));
        ++folder.Files;
        TFolderStep step;
        step.FileDone = true;
        try {
            auto result = ProcessFile(path, FOptions, WantsCover(folder));
            if (auto* file = std::get_if<TScannedFile>(&result)) {
                step.Text = AddTrack(folder, std::move(*file));
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

    // The files of a folder stand together in the list.
    TReadFolder& FolderAt(const QString& path)
    {
        if (FFolders.empty() || FFolders.back().Path != path)
            FFolders.push_back({.Path = path, .Cue = ListCueFolder(path), .Tracks = {}, .EmbeddedCue = {}});
        return FFolders.back();
    }

    // Of all pictures of a folder the first is shown, and the others would only fill the memory. A cue sheet may start
    // with any of the files, so that each keeps its picture until the sheets are applied.
    bool WantsCover(const TReadFolder& folder) const
    {
        return FOptions.Pictures && (!FHasCover || !folder.Cue.Sheets.isEmpty());
    }

    QString AddTrack(TReadFolder& folder, TScannedFile file)
    {
        TKRN_MP3_Track& track = file.Track;
        if (track.DiscNo == 0)
            track.DiscNo = DiscNumberFromFolderName(FileNameOf(folder.Path));
        FHasCover = FHasCover || !track.Cover.isEmpty();
        folder.EmbeddedCue = std::move(file.CueSheet);
        folder.Tracks.push_back(std::move(track));
        const TKRN_MP3_Track& added = folder.Tracks.back();
        return u"%1 - %2 - %3"_s.arg(added.Artist, added.Album, added.Title);
    }

    void AddAlbums()
    {
        QString key = FFolders.front().Path;
        for (const TKRN_MP3_Tracks& album : AlbumsOf(std::move(FFolders.front()))) {
            AddRelease(album, key.isEmpty() ? album.front().FilePath : key);
            key.clear(); // the folder can be the key of one album only
        }
    }

    // Disc folders make one release, whatever their sheets call the discs.
    void AddDiscs()
    {
        TKRN_MP3_Tracks tracks;
        const QString key = FFolders.front().Path;
        for (TReadFolder& folder : FFolders)
            for (TKRN_MP3_Tracks& album : AlbumsOf(std::move(folder)))
                std::ranges::move(album, std::back_inserter(tracks));
        if (!tracks.empty())
            AddRelease(tracks, key);
    }

    void AddRelease(const TKRN_MP3_Tracks& tracks, const QString& key)
    {
        TFolderStep& step = FSteps.emplace_back();
        step.Key = key;
        step.Release = CreateReleaseFromTracks(tracks, FOptions);
    }

    const TMP3ScanOptions& FOptions;
    std::vector<TFolderStep> FSteps;
    std::vector<TReadFolder> FFolders;
    bool FHasCover = false;
};

} // namespace

std::vector<TFolderStep> ReadFolder(const QStringList& files, const TMP3ScanOptions& options)
{
    return TFolderReader(options).Read(files);
}

} // namespace Kestrune
