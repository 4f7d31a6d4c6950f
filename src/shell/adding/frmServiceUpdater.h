// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uDownloader.h"
#include "uUserMessages.h"

#include <QLockFile>
#include <QObject>
#include <QString>

#include <memory>

namespace Kestrune {

class TTHCustomSettings;

/// How an update of the service package ended.
enum class TUpdateEnd : int { ueReplaced = 0, ueCancelled = 1, ueFailed = 2, ueCurrent = 4 };
using enum TUpdateEnd;

/// Logic of the window that keeps the service package current: compares the published version with the installed one,
/// fetches the package, three times at most, and puts it in the place of the user's. A package that does not work
/// counts as none, so that the next one heals it. Main thread; the work is done beside it.
class TServiceUpdaterForm : public QObject, public TMessageReceiver {
    Q_OBJECT
public:
    /// `endpoint` is the folder of the published files; `store` outlives the form. Without `checkVersion` the package
    /// is fetched whatever its version is.
    TServiceUpdaterForm(const QString& definitionsPath, const QString& endpoint, TTHCustomSettings& store,
                        bool checkVersion = true);
    ~TServiceUpdaterForm() override;

    /// The window is shown: the run begins with a message to itself.
    void FormShow();
    void btnCancelClick();

    QString LabelText() const { return FLabel; }
    int ProgressMaximum() const { return FMaximum; }
    int ProgressPosition() const { return FPosition; }
    TUpdateEnd EndState() const { return FEndState; }
    int Attempts() const { return FAttempts; }

    void HandleMessage(TUserMessage& message) override;

Q_SIGNALS:
    void updated();
    /// The package is being fetched: something will be seen for a while.
    void downloadStarted();
    /// The run is over, see EndState.
    void closed();

private:
    struct TCheck;

    void UpdateServicesXMLIfNeeded();
    void CheckVersions();
    void VersionsChecked(const TCheck& check);
    void StartDownload();
    void DownloadEnded();
    void PackageInstalled(bool done, const QString& error);
    void AttemptEnded();
    bool IsRetryAllowed() const;
    void Close();

    QString FDefinitionsPath;
    QString FEndpoint;
    TTHCustomSettings& FStore;
    bool FCheckVersion;
    bool FCancelled = false;
    QString FTempPath;
    QString FCaption;
    QString FLabel;
    int FAttempts = 0;
    int FRemoteVersion = -1;
    int FMaximum = 0;
    int FPosition = 0;
    bool FArrived = false;
    TUpdateEnd FEndState = ueFailed;
    QLockFile FLock; // against another process that updates
    std::unique_ptr<TCookieManagerComponent> FCookies;
    std::unique_ptr<TTaskThread> FTask;
    std::unique_ptr<TDownloaderThread> FDownload;
};

} // namespace Kestrune
