// SPDX-License-Identifier: GPL-3.0-or-later
#include "frmServiceUpdater.h"

#include "uDebugLog.h"
#include "uDefaults.h"
#include "uServiceFiles.h"
#include "uServicePackage.h"
#include "uTHSettings.h"
#include "uTHStrings.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QUuid>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int MessageRun = 0x401;
constexpr int MostAttempts = 3;
constexpr qint64 LargestVersionFile = 64 * 1024;
constexpr qint64 LargestZip = 64 * 1024 * 1024;

} // namespace

// What the check brought, filled beside the main thread.
struct TServiceUpdaterForm::TCheck {
    bool Fetched = false;
    QString Text;
    int Version = -1; // of what is there and works
    QString Broken;   // why it does not work
};

TServiceUpdaterForm::TServiceUpdaterForm(const QString& definitionsPath, const QString& endpoint,
                                         TTHCustomSettings& store, bool checkVersion)
    : FDefinitionsPath(definitionsPath),
      FEndpoint(endpoint),
      FStore(store),
      FCheckVersion(checkVersion),
      FCaption(GetLanguageString(u"cSGettingUpdates"_s)),
      FLabel(FCaption),
      FLock(ServiceLockPath(QFileInfo(definitionsPath).absolutePath())),
      FCookies(ChooseCookieManagerClass()())
{
    const QString name = QUuid::createUuid().toString(QUuid::WithoutBraces);
    const QString folder = QFileInfo(QFileInfo(definitionsPath).absolutePath()).absolutePath();
    FTempPath = folder + u'/' + name + u".tmp"_s;
    FLock.setStaleLockTime(0); // as long as its process lives
}

TServiceUpdaterForm::~TServiceUpdaterForm()
{
    FTask.reset();
    if (FDownload)
        FDownload->Terminate();
    FDownload.reset();
    QFile::remove(FTempPath);
}

void TServiceUpdaterForm::FormShow() { PostUserMessage(Handle(), {MessageRun, nullptr, nullptr}); }

void TServiceUpdaterForm::HandleMessage(TUserMessage& message)
{
    if (message.Number == MessageRun)
        UpdateServicesXMLIfNeeded();
}

void TServiceUpdaterForm::UpdateServicesXMLIfNeeded()
{
    if (FCancelled)
        return Close();
    const QString folder = QFileInfo(FDefinitionsPath).absolutePath();
    QDir().mkpath(QFileInfo(folder).absolutePath());
    if (FLock.tryLock(0)) {
        SweepServiceLeftovers(folder);
    } else if (FLock.error() == QLockFile::LockFailedError) {
        DebugLog(u"[Services] another process updates them"_s);
        FEndState = ueCurrent;
        return Close();
    }
    if (QFile::exists(FDefinitionsPath) && FCheckVersion)
        CheckVersions();
    else
        StartDownload();
}

void TServiceUpdaterForm::CheckVersions()
{
    const QString url = ServicesVersionURL(FEndpoint);
    DebugLog(u"Checking "_s + url);
    const auto check = std::make_shared<TCheck>();
    const QString folder = QFileInfo(FDefinitionsPath).absolutePath();
    const int known = std::max(TServiceUpdates::Read(FStore).Version, TServiceDelivery::Read(folder).Version);
    FTask = std::make_unique<TTaskThread>([=, agent = ServiceAgent(Defaults())](const std::stop_token& token) {
        check->Version = CheckServicePackage(folder, check->Broken, token) ? known : -1;
        const auto cookies = ChooseCookieManagerClass()();
        const auto transport = ChooseDownloaderClass()(cookies.get());
        const std::stop_callback stop(token, [&] { transport->AbortDownload(); });
        transport->SetURL(url);
        transport->SetAgent(agent);
        transport->SetMaxBytes(LargestVersionFile);
        QStringList lines;
        check->Fetched = transport->DownloadAsTStrings(lines, -1);
        check->Text = lines.join(u'\n');
    });
    FTask->OnTerminate = [this, check] { VersionsChecked(*check); };
    FTask->Start();
}

// A package that cannot be checked is fetched.
void TServiceUpdaterForm::VersionsChecked(const TCheck& check)
{
    if (FCancelled)
        return Close();
    const std::optional<int> remote = check.Fetched ? ParseServicesVersion(check.Text) : std::nullopt;
    if (remote) {
        DebugLog(u"Services.ver == %1"_s.arg(*remote));
        DebugLog(u"Services.local == %1 %2"_s.arg(check.Version).arg(check.Broken).trimmed());
        if (check.Version >= *remote && check.Broken.isEmpty()) {
            FEndState = ueCurrent;
            WriteLastUpdated(FStore, QDateTime::currentDateTime());
            return Close();
        }
        FRemoteVersion = *remote;
    }
    StartDownload();
}

void TServiceUpdaterForm::StartDownload()
{
    FArrived = false;
    ++FAttempts;
    QDir().mkpath(QFileInfo(FTempPath).absolutePath());
    FDownload = std::make_unique<TDownloaderThread>(ChooseDownloaderClass(), FCookies.get());
    FDownload->Downloader().SetURL(ServicesZipURL(FEndpoint));
    FDownload->Downloader().SetFilename(FTempPath);
    FDownload->Downloader().SetAgent(ServiceAgent(Defaults()));
    FDownload->Downloader().SetMaxBytes(LargestZip);
    FDownload->FProgressEvent = [this](TDownloader&, const QString&, int total, int read, int, int, quint8, float) {
        const auto size = [](int bytes) { return QLocale().formattedDataSize(bytes); };
        FMaximum = total;
        FPosition = read;
        FLabel = u"%1 %2 / %3"_s.arg(FCaption, size(read), size(total));
        Q_EMIT updated();
    };
    FDownload->FDoneFileEvent = [this](TDownloader&, const QString&, int) { FArrived = true; };
    FDownload->FErrorEvent = [this](TDownloader&, TDownloaderErrorType type, int, const QString& text) {
        if (FCancelled || type == detAbort)
            return;
        DebugLog(u"TServiceUpdaterForm.OnError "_s + text);
        FEndState = ueFailed;
    };
    FDownload->OnTerminate = [this] { DownloadEnded(); };
    Q_EMIT downloadStarted();
    FDownload->Start();
}

void TServiceUpdaterForm::DownloadEnded()
{
    if (FCancelled || !FArrived)
        return AttemptEnded();
    struct TResult {
        bool Done = false;
        QString Error;
    };
    const auto result = std::make_shared<TResult>();
    const QString folder = QFileInfo(FDefinitionsPath).absolutePath();
    FTask = std::make_unique<TTaskThread>(
        [result, zip = FTempPath, folder, version = FRemoteVersion](const std::stop_token& stop) {
            result->Done = InstallServicePackage(zip, folder, version, result->Error, stop);
        });
    FTask->OnTerminate = [this, result] { PackageInstalled(result->Done, result->Error); };
    FTask->Start();
}

void TServiceUpdaterForm::PackageInstalled(bool done, const QString& error)
{
    if (done) {
        WriteServicesVersion(FStore, FRemoteVersion);
        WriteLastUpdated(FStore, QDateTime::currentDateTime());
        FEndState = ueReplaced;
    } else {
        DebugLog(u"TServiceUpdaterForm.OnError "_s + error);
        FEndState = FCancelled ? ueCancelled : ueFailed;
    }
    AttemptEnded();
}

bool TServiceUpdaterForm::IsRetryAllowed() const
{
    return !FCancelled && FEndState == ueFailed && FAttempts < MostAttempts;
}

void TServiceUpdaterForm::AttemptEnded()
{
    if (IsRetryAllowed())
        return StartDownload();
    QFile::remove(FTempPath);
    Close();
}

void TServiceUpdaterForm::btnCancelClick()
{
    FCancelled = true;
    FEndState = ueCancelled;
    if (FTask)
        FTask->Terminate();
    if (FDownload)
        FDownload->Terminate();
}

void TServiceUpdaterForm::Close() { Q_EMIT closed(); }

} // namespace Kestrune
