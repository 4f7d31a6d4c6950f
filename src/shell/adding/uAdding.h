// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uShell.h"

#include <QObject>
#include <QStringList>

#include <memory>
#include <vector>

namespace Kestrune {

class TAddMusicForm;
class TImportRun;
class TKRNImportForm;
class TServiceUpdaterForm;
struct TSavedRelease;
enum class TSearchArea : quint8;

/// All ways by which releases come into the open collection: folders in the background, the import wizard, the search
/// online; and the services' definitions. Binds these actions. Main thread.
class TAdding : public QObject {
    Q_OBJECT

public:
    /// Outlives it.
    explicit TAdding(TShell& shell);
    ~TAdding() override;

    /// Adds the audio files of these folders and files in the background.
    void AddFolders(const QStringList& paths);
    /// The run in progress, or null.
    TImportRun* AddFiles() const { return FAddFiles.get(); }
    /// Stores a release of which nothing but the name is known, and brings it into sight.
    void AddByHand(const QString& name);
    /// Opens the import wizard; importStarted tells the window.
    void OpenImport();
    /// The wizard while it is open, or null.
    TKRNImportForm* ImportForm() const { return FImport.get(); }

    /// The search window's logic, made after this; it outlives it. Without one nothing is found online.
    void SetAddMusicForm(TAddMusicForm* form);
    TAddMusicForm* AddMusicForm() const { return FAddMusic; }
    /// The search window was closed: what was chosen in it is stored.
    void AddMusicClosed();

    /// Reads the definitions of the services.
    void ParseServices();
    /// Why they could not be read, or empty.
    QString ServicesFailure() const { return FServicesFailure; }
    /// Looks for a newer service package; none where the product names no place for it. `silent`: nothing is asked.
    void UpdateServices(bool silent);
    /// The update in progress, or null.
    TServiceUpdaterForm* ServiceUpdater() const { return FUpdater.get(); }
    /// True when the product names a place from which the service package is updated.
    static bool CanUpdateServices();

Q_SIGNALS:
    /// One more release is in the collection, while a run goes on.
    void releaseStored();
    /// A run has ended, and what it added is to be shown.
    void added();
    /// Bring this release into sight and focus it.
    void focusRequested(qint64 release);
    void addFilesStarted();
    void addFilesFinished();
    void importStarted();
    void importFinished();
    void addMusicStarted();
    /// `visible`: from the start on, otherwise once something is fetched.
    void serviceUpdateStarted(bool visible);

private:
    void BindActions();
    void OpenAddMusic(TSearchArea area);
    void StoreFound(std::vector<TSavedRelease> releases);
    void ServiceUpdateEnded(bool silent);

    TShell& FShell;
    TShell::TBusyToken FToken; // while files are added, the wizard or the search window is open
    std::unique_ptr<TImportRun> FAddFiles;
    std::unique_ptr<TKRNImportForm> FImport;
    TAddMusicForm* FAddMusic = nullptr;
    bool FAddMusicOpen = false;
    QString FServicesFailure;
    std::unique_ptr<TServiceUpdaterForm> FUpdater;
};

} // namespace Kestrune
