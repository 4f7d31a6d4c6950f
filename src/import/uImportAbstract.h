// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uTHTypes.h"
#include "uThreads.h"

#include <QString>

#include <concepts>
#include <functional>
#include <memory>
#include <type_traits>
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
/// A file of the source was passed over; `error` is one sentence.
using TOnFileError = std::function<void(TKRNImporter& sender, const QString& file, const QString& error)>;

/// The worker that brings one source into the collection. One object does one job: set the input and the events, call
/// Start, and keep it until OnTerminate. Terminate ends the job after the release in work.
///
/// A source derives from it, writes Import and the class operations that CImporter names, and calls Terminate and
/// WaitFor in its destructor.
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
    void SetIDsArray(std::vector<TVariant> keys) { FIDsArray = std::move(keys); }

    void SetOnProgress(TOnProgress event) { FOnProgress = std::move(event); }
    void SetOnDone(TOnImportDone event) { FOnDone = std::move(event); }
    void SetOnError(TOnError event) { FOnError = std::move(event); }
    void SetOnReleaseFound(TOnReleaseFound event) { FOnReleaseFound = std::move(event); }
    void SetOnReleaseStored(TOnReleaseStored event) { FOnReleaseStored = std::move(event); }
    void SetOnFileError(TOnFileError event) { FOnFileError = std::move(event); }

    // Class operations with an answer for sources that say nothing.
    static bool CanSelectWhichAlbumsToImport() { return false; }
    static bool AllowsDragNDrop() { return false; }
    static bool NeedToCheckForMissingDrivers() { return false; }

protected:
    /// The whole job of the source. Looks at Terminated before each release; what it throws reaches OnError.
    virtual void Import() = 0;

    /// Collects the text and delivers it when the item is a release, at every fiftieth position and at the last ones.
    void DoOnProgress(int position, int count, bool isRelease, const QString& currentItem);
    /// Collects one listed release; every 20 are delivered.
    void DoOnReleaseFound(const TVariant& releaseID, const QString& artist, const QString& releaseName,
                          const QString& releaseYear, int tracksCount);
    /// Collects the failure of one file; it is delivered with the next call of the main thread.
    void DoOnFileError(const QString& file, const QString& error);
    void FlushPendingReleases();
    void DoOnImportDone(int releasesCount, int tracksCount);
    void DoOnError(const QString& error);

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
    std::function<void()> TakeFileErrors();

    TOnProgress FOnProgress;
    TOnImportDone FOnDone;
    TOnError FOnError;
    TOnReleaseFound FOnReleaseFound;
    TOnReleaseStored FOnReleaseStored;
    TOnFileError FOnFileError;
    TKRNImporterJobType FJobType = ijtImport;
    std::vector<TVariant> FIDsArray;
    std::vector<TReleaseFoundItem> FPendingReleases;
    QString FPendingLogItems;
    std::vector<std::pair<QString, QString>> FPendingFileErrors;
    QString FInputPath;
    QString FData;
    TDataModuleMain& FDataModule; // main thread only
};

/// A source that needs a driver says where it is found and whether it is there.
template <typename T>
concept CChecksDrivers = requires
{
    {
        T::CheckForMissingDrivers()
        } -> std::same_as<bool>;
    {
        T::GetMissingDriversURL()
        } -> std::same_as<QString>;
    {
        T::GetMissingDriversName()
        } -> std::same_as<QString>;
};

/// What a source's class must answer before any object of it exists.
template <typename T>
concept CImporter = std::derived_from<T, TKRNImporter> && std::constructible_from<T, TDataModuleMain&> && requires
{
    {
        T::CanSelectWhichAlbumsToImport()
        } -> std::same_as<bool>;
    {
        T::CanCopyAndPasteData()
        } -> std::same_as<bool>;
    {
        T::GetImporterType()
        } -> std::same_as<TKRNImporterInputType>;
    {
        T::GetImporterFileExt()
        } -> std::same_as<QString>;
    {
        T::GetImporterFileExtFilter()
        } -> std::same_as<QString>;
    {
        T::GetDisplayName()
        } -> std::same_as<QString>;
    {
        T::GetDisplayDesc()
        } -> std::same_as<QString>;
    {
        T::GetSelectSourceDescription()
        } -> std::same_as<QString>;
    {
        T::AllowsDragNDrop()
        } -> std::same_as<bool>;
    {
        T::NeedToCheckForMissingDrivers()
        } -> std::same_as<bool>;
};

/// The class operations of one source, as a value: what the list of sources is made of.
struct TImporterClass {
    QString ClassName; ///< "TKRNImporter_MP3s"
    bool (*CanSelectWhichAlbumsToImport)() = nullptr;
    bool (*CanCopyAndPasteData)() = nullptr;
    TKRNImporterInputType (*GetImporterType)() = nullptr;
    QString (*GetImporterFileExt)() = nullptr;       ///< default extension without point
    QString (*GetImporterFileExtFilter)() = nullptr; ///< "Name (*.x)|*.x|All files (*.*)|*.*"
    QString (*GetDisplayName)() = nullptr;
    QString (*GetDisplayDesc)() = nullptr;
    QString (*GetSelectSourceDescription)() = nullptr;
    bool (*AllowsDragNDrop)() = nullptr;
    bool (*NeedToCheckForMissingDrivers)() = nullptr;
    // Null in classes that never need a driver.
    bool (*CheckForMissingDrivers)() = nullptr; ///< true when the driver is there
    QString (*GetMissingDriversURL)() = nullptr;
    QString (*GetMissingDriversName)() = nullptr;
    std::unique_ptr<TKRNImporter> (*Create)(TDataModuleMain& dataModule) = nullptr;
};

template <CImporter T>
TImporterClass MakeImporterClass(const QString& className)
{
    constexpr bool asksForDrivers = &T::NeedToCheckForMissingDrivers != &TKRNImporter::NeedToCheckForMissingDrivers;
    static_assert(!asksForDrivers || CChecksDrivers<T>, "a class that needs a driver must be able to look for it");
    TImporterClass result{.ClassName = className,
                          .CanSelectWhichAlbumsToImport = &T::CanSelectWhichAlbumsToImport,
                          .CanCopyAndPasteData = &T::CanCopyAndPasteData,
                          .GetImporterType = &T::GetImporterType,
                          .GetImporterFileExt = &T::GetImporterFileExt,
                          .GetImporterFileExtFilter = &T::GetImporterFileExtFilter,
                          .GetDisplayName = &T::GetDisplayName,
                          .GetDisplayDesc = &T::GetDisplayDesc,
                          .GetSelectSourceDescription = &T::GetSelectSourceDescription,
                          .AllowsDragNDrop = &T::AllowsDragNDrop,
                          .NeedToCheckForMissingDrivers = &T::NeedToCheckForMissingDrivers};
    if constexpr (CChecksDrivers<T>) {
        result.CheckForMissingDrivers = &T::CheckForMissingDrivers;
        result.GetMissingDriversURL = &T::GetMissingDriversURL;
        result.GetMissingDriversName = &T::GetMissingDriversName;
    }
    result.Create = [](TDataModuleMain& dataModule) -> std::unique_ptr<TKRNImporter> {
        return std::make_unique<T>(dataModule);
    };
    return result;
}

} // namespace Kestrune
