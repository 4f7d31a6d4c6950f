// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uImportOptions.h"
#include "uTHTypes.h"
#include "uThreads.h"

#include <QSet>
#include <QString>

#include <chrono>
#include <functional>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

namespace Kestrune {

class TAlbumRelease;
class TDataModuleMain;
class TKRNImporter;

/// What a source asks the user for.
enum class TKRNImporterInputType : quint8 {
    iitFile,   ///< a file, or pasted text where the class allows it
    iitFolder, ///< a folder
    iitString, ///< one line of text, such as a user name
    iitLink,   ///< one line of text with a link
    iitMemo    ///< text of several lines
};
using enum TKRNImporterInputType;

enum class TKRNImporterJobType : quint8 {
    ijtImport,         ///< stores the releases of the source
    ijtGetReleasesList ///< only lists them
};
using enum TKRNImporterJobType;

/// One release of a source, as a listing job reports it.
struct TReleaseFoundItem {
    TVariant ReleaseID; ///< the source's own key; comes back in IDsArray
    QString Artist, ReleaseName, ReleaseYear;
    int TracksCount = 0;
};

// Events of the worker; all are raised on the main thread.
using TOnProgress =
    std::function<void(TKRNImporter& sender, int position, int count, bool isRelease, const QString& currentItem)>;
using TOnImportDone = std::function<void(TKRNImporter& sender, int releasesCount, int tracksCount)>;
using TOnError = std::function<void(TKRNImporter& sender, const QString& error)>;
using TOnReleaseFound = std::function<void(TKRNImporter& sender, const std::vector<TReleaseFoundItem>& releases)>;
/// A release is in the collection file for good; `name` is "Artist - ReleaseName".
using TOnReleaseStored = std::function<void(TKRNImporter& sender, qint64 releaseID, const QString& name)>;
/// A part of the source was passed over: a file, a picture, a row; `error` is one sentence.
using TOnItemError = std::function<void(TKRNImporter& sender, const QString& item, const QString& error)>;

/// Ends a worker and waits for it before it is freed, so that no part of a source goes while its job runs.
struct TEndAndFree {
    void operator()(TKRNImporter* importer) const;
};
using TImporterPtr = std::unique_ptr<TKRNImporter, TEndAndFree>;

/// The worker that brings one source into the collection. One object does one job: set the input and the events, call
/// Start, and keep it until OnTerminate, in a TImporterPtr where the job may still run. Terminate ends the job after
/// the release in work.
///
/// A source derives from it, writes Import, and has a row in the list of sources. On the worker's thread it uses what
/// it is given: settings and texts of the language come with its options.
class TKRNImporter : public TThread {
public:
    /// The data module must outlive the importer. Main thread.
    explicit TKRNImporter(TDataModuleMain& dataModule) : FDataModule(dataModule) {}

    /// What the user chose or typed.
    const QString& InputPath() const { return FInputPath; }
    void SetInputPath(const QString& path) { FInputPath = path; }
    /// The pasted text, or empty.
    const QString& Data() const { return FData; }
    void SetData(const QString& data) { FData = data; }
    TKRNImporterJobType JobType() const { return FJobType; }
    void SetJobType(TKRNImporterJobType type) { FJobType = type; }
    /// Keys of the releases to import; empty for all.
    const std::vector<TVariant>& IDsArray() const { return FIDsArray; }
    void SetIDsArray(std::vector<TVariant> keys);
    /// What the source is told beside its input; a source that has options does not run without.
    void SetOptions(std::shared_ptr<const TImportOptions> options) { FJobOptions = std::move(options); }

    void SetOnProgress(TOnProgress event) { FOnProgress = std::move(event); }
    void SetOnDone(TOnImportDone event) { FOnDone = std::move(event); }
    void SetOnError(TOnError event) { FOnError = std::move(event); }
    void SetOnReleaseFound(TOnReleaseFound event) { FOnReleaseFound = std::move(event); }
    void SetOnReleaseStored(TOnReleaseStored event) { FOnReleaseStored = std::move(event); }
    void SetOnItemError(TOnItemError event) { FOnItemError = std::move(event); }

protected:
    /// The whole job of the source. Looks at Terminated before each release; what it throws reaches OnError.
    virtual void Import() = 0;

    /// Collects the text and delivers it when the item is a release, at every fiftieth position and at the last ones.
    void DoOnProgress(int position, int count, bool isRelease, const QString& currentItem);
    /// Collects one listed release; every 20 are delivered.
    void DoOnReleaseFound(const TVariant& releaseID, const QString& artist, const QString& releaseName,
                          const QString& releaseYear, int tracksCount);
    /// Collects what was passed over; it is delivered with the next call of the main thread.
    void DoOnItemError(const QString& item, const QString& error);
    void FlushPendingReleases();
    /// Runs it on the main thread; false when another program holds the file and there is time left to try again.
    bool TryToStore(const std::function<void()>& store, std::chrono::steady_clock::time_point deadline);
    void DoOnImportDone(int releasesCount, int tracksCount);
    /// An empty text becomes the sentence for a failure that told nothing.
    void DoOnError(const QString& error);

    /// The options as the type that the source's row makes; throws when the job has none or other ones.
    template <typename T>
    const T& Options() const
    {
        if (const auto* options = dynamic_cast<const T*>(FJobOptions.get()))
            return *options;
        throw std::logic_error("the job lacks the options of its source");
    }
    /// True when a release with this key is to be imported.
    bool IsWanted(const TVariant& releaseID) const;
    /// Stores one release by a blocking call of the main thread and reports it; throws when that fails.
    void StoreRelease(const TAlbumRelease& release, bool assignNewNo);

    /// While it lives, the views of the collection stand still. Does nothing in a listing job.
    class TControlsOff {
    public:
        explicit TControlsOff(TKRNImporter& importer);
        ~TControlsOff();
        TControlsOff(const TControlsOff&) = delete;
        TControlsOff& operator=(const TControlsOff&) = delete;

    private:
        TKRNImporter& FImporter;
    };

private:
    void Execute() final;
    std::function<void()> TakeItemErrors();

    TOnProgress FOnProgress;
    TOnImportDone FOnDone;
    TOnError FOnError;
    TOnReleaseFound FOnReleaseFound;
    TOnReleaseStored FOnReleaseStored;
    TOnItemError FOnItemError;
    TKRNImporterJobType FJobType = ijtImport;
    std::vector<TVariant> FIDsArray;
    QSet<QString> FWanted; // the keys as texts
    std::shared_ptr<const TImportOptions> FJobOptions;
    std::vector<TReleaseFoundItem> FPendingReleases;
    int FPosition = 0; // of the last progress
    int FCount = 0;
    QString FPendingLogItems;
    std::vector<std::pair<QString, QString>> FPendingItemErrors;
    QString FInputPath;
    QString FData;
    TDataModuleMain& FDataModule; // main thread only
};

} // namespace Kestrune
