// SPDX-License-Identifier: GPL-3.0-or-later
#include "frmServiceUpdater.h"

#include "uDebugLog.h"
#include "uDefaults.h"
#include "uServicePackage.h"
#include "uTHSettings.h"
#include "uTHStrings.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QUuid>

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
};

TServiceUpdaterForm::TServiceUpdaterForm(const QString& definitionsPath, const QString& endpoint,
                                         TTHCustomSettings& store, bool checkVersion)
    : FDefinitionsPath(definitionsPath),
      FEndpoint(endpoint),
      FStore(store),
      FCheckVersion(checkVersion),
      FCaption(GetLanguageString(u"cSGettingUpdates"_s)),
      FLabel(FCaption),
      FCookies(ChooseCookieManagerClass()())
{
    const QString name = QUuid::createUuid().toString(QUuid::WithoutBraces);
    const QString folder = QFileInfo(QFileInfo(definitionsPath).absolutePath()).absolutePath();
    FTempPath = folder + u'/' + name + u".tmp"_s;
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
    FTask = std::make_unique<TTaskThread>([check, url, agent = Defaults().OEM.HTTPAgent](std::stop_token token) {
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
        const int local = TServiceUpdates::Read(FStore).Version;
        DebugLog(u"Services.ver == %1"_s.arg(*remote));
        DebugLog(u"Services.local == %1"_s.arg(local));
        if (local >= *remote) {
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
    FDownload->Downloader().SetAgent(Defaults().OEM.HTTPAgent);
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
    FTask = std::make_unique<TTaskThread>([result, zip = FTempPath, folder](std::stop_token stop) {
        result->Done = QDir().mkpath(folder) && InstallServicePackage(zip, folder, result->Error, stop);
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
