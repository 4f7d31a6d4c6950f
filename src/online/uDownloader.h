// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uCookies.h"
#include "uHttpClient.h"
#include "uThreads.h"

#include <QIODevice>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

namespace Kestrune {

enum class TDownloaderErrorType : quint8 {
    detNone,
    detConnectionLost,
    detHTTPError,
    detAbort,
    detProxyAuthenticationRequest,
    detHostUnrachable,
    detPasswordRequest
};
using enum TDownloaderErrorType;

class TDownloader;

using TDownloaderErrorEvent =
    std::function<void(TDownloader& sender, TDownloaderErrorType type, int errorCode, const QString& errorText)>;
/// Sizes in bytes, 0 while they are unknown; times and rate are 0.
using TOnProgressEvent =
    std::function<void(TDownloader& sender, const QString& contentType, int dataSize, int bytesRead, int elapsedTime,
                       int estimatedTimeLeft, quint8 percentsDone, float transferRate)>;
using TOnDoneFileEvent = std::function<void(TDownloader& sender, const QString& contentType, int fileSize)>;

/// The code page that a call of DownloadAsTStrings names is unknown: "Invalid encoding".
class EInvalidEncoding : public std::runtime_error {
public:
    EInvalidEncoding() : std::runtime_error("Invalid encoding") {}
};

/// The lines of a text, empty ones too; any kind of line end.
QStringList TextLines(const QString& text);

/// The error type under which a failure is reported.
TDownloaderErrorType ErrorTypeOf(TDownloadFailure failure);

/// Fetches one URL at a time, on the thread that calls. Only AbortDownload may come from another one.
class TDownloader {
public:
    /// The cookie manager outlives the transport.
    explicit TDownloader(TCookieManagerComponent* cookies);
    virtual ~TDownloader();
    TDownloader(const TDownloader&) = delete;
    TDownloader& operator=(const TDownloader&) = delete;

    const QString& URL() const { return FURL; }
    void SetURL(const QString& url) { FURL = url; }
    /// Where DownloadBinary writes to.
    const QString& Filename() const { return FFilename; }
    void SetFilename(const QString& path) { FFilename = path; }
    void SetOnProgressEvent(TOnProgressEvent event) { FOnProgressEvent = std::move(event); }
    void SetOnDoneFileEvent(TOnDoneFileEvent event) { FOnDoneFileEvent = std::move(event); }
    void SetErrorEvent(TDownloaderErrorEvent event) { FDownloaderErrorEvent = std::move(event); }
    bool Busy() const { return FIsBusy; }
    const QString& Agent() const { return FAgent; }
    void SetAgent(const QString& agent) { FAgent = agent; }
    /// Not empty: it is sent by POST.
    const QString& PostQuery() const { return FPostQuery; }
    void SetPostQuery(const QString& query) { FPostQuery = query; }
    /// Of the last answer.
    const QString& ContentType() const { return FContentType; }

    /// Forgets URL, file name, query and an abort.
    virtual void Clear();
    /// Ends what runs at once.
    void AbortDownload();

    /// Fetches into the file Filename; false after any failure, which the error event tells.
    virtual bool DownloadBinary(bool resumeIfExists) = 0;
    /// Fetches lines: UTF-8 for a code page of -1 or 65001, else by the code page. Throws EInvalidEncoding.
    bool DownloadAsTStrings(QStringList& strings, int codePage);
    bool DownloadAsStream(QIODevice& stream);
    /// Not supported by any transport: false.
    bool UploadFile(const QString& filename, const QString& fileFieldName, QIODevice& fileStream, QStringList& strings);

    /// No more bytes are taken than that; 0: no bound.
    void SetMaxBytes(qint64 bytes) { FMaxBytes = bytes; }
    /// How the last request ended.
    const THttpAnswer& Answer() const { return FAnswer; }
    /// The client, for the pace of its host.
    THttpClient& Client() { return FClient; }

protected:
    /// The request as this transport makes it.
    virtual THttpRequest MakeRequest() const = 0;
    /// The text of the error when the lines of a request are not what was asked for.
    virtual QString RefusedText(const QStringList& lines) const;
    /// What the done event is told, and the kind of a failure.
    virtual QString DoneContentType() const { return FContentType; }
    virtual TDownloaderErrorType ErrorType() const { return ErrorTypeOf(FAnswer.Failure); }
    void FireDone(qint64 size);
    void FireError(const QString& text);
    /// One request into the device, which is rewound after it.
    bool Fetch(QIODevice& into);
    /// The same into Filename, opened in this way.
    bool FetchFile(QIODevice::OpenMode mode);
    QStringList DecodeLines(const QByteArray& body, int codePage) const;

    TDownloaderErrorEvent FDownloaderErrorEvent;
    QString FPostQuery;
    QString FContentType;
    QString FURL;
    QString FFilename;
    QString FAgent;
    std::atomic<bool> FIsBusy{false};
    TOnProgressEvent FOnProgressEvent;
    TOnDoneFileEvent FOnDoneFileEvent;
    qint64 FMaxBytes = 0;
    THttpAnswer FAnswer;

private:
    void ReportProgress(qint64 total, qint64 read);

    THttpClient FClient;
};

/// Transport for older systems.
class TSecureBridge_Downloader final : public TDownloader {
public:
    explicit TSecureBridge_Downloader(TCookieManagerComponent* cookies);

    void SetReferer(const QString& referer) { FReferer = referer; }
    /// "Name:value" items, separated by ";".
    void SetHeaders(const QString& headers) { FHeaders = headers; }
    void SetAcceptTypes(const QString& types) { FAcceptTypes = types; }

    /// An existing file keeps what lies behind the new body.
    bool DownloadBinary(bool resumeIfExists) override;

protected:
    THttpRequest MakeRequest() const override;

private:
    QString FReferer;
    QString FHeaders;
    QString FAcceptTypes;
};

/// Transport of the platform.
class TD10_4_Downloader final : public TDownloader {
public:
    explicit TD10_4_Downloader(TCookieManagerComponent* cookies);

    /// The file is made anew.
    bool DownloadBinary(bool resumeIfExists) override;

protected:
    THttpRequest MakeRequest() const override;
    /// What was answered instead.
    QString RefusedText(const QStringList& lines) const override { return lines.join(QLatin1Char('\n')); }
    QString DoneContentType() const override { return {}; }
    /// All failures but an abort are one kind here.
    TDownloaderErrorType ErrorType() const override;
};

/// Classes of transports and cookie managers, as operations.
using TDownloaderTransportClass = std::unique_ptr<TDownloader> (*)(TCookieManagerComponent* cookies);
using TCookieManagerClass = std::unique_ptr<TCookieManagerComponent> (*)();

/// The version of the operating system on which the choice is made.
struct TSystemVersion {
    int Major = 10;
    int Minor = 0;
};

/// TD10_4_Downloader from version 6.3 on, TSecureBridge_Downloader before.
TDownloaderTransportClass ChooseDownloaderClass(TSystemVersion version = {});
/// The cookie manager that goes with it.
TCookieManagerClass ChooseCookieManagerClass(TSystemVersion version = {});

/// Fetches a single file beside the main thread. The events come on the main thread.
class TDownloaderThread final : public TThread {
public:
    TDownloaderThread(TDownloaderTransportClass transport, TCookieManagerComponent* cookies);
    ~TDownloaderThread() override;

    /// Set it up before Start; its own three events belong to the thread.
    TDownloader& Downloader() { return *FDownloader; }
    bool FResumeIfExists = false;
    TOnProgressEvent FProgressEvent;
    TOnDoneFileEvent FDoneFileEvent;
    TDownloaderErrorEvent FErrorEvent;

protected:
    void Execute() override;

private:
    std::unique_ptr<TDownloader> FDownloader;
};

/// The address that a test of the connection asks for.
QString ConnectionTestURL();
/// True when the address can be fetched into a file. Blocks until that is known or it is asked to stop.
bool TestConnection(const QString& url = ConnectionTestURL(), const std::stop_token& stop = {});

/// True for the status of an answer in which a service may tell that it knows nothing of what was asked for.
constexpr bool MayTellUnknown(int httpStatus) { return httpStatus == 400 || httpStatus == 404; }

} // namespace Kestrune
