// SPDX-License-Identifier: GPL-3.0-or-later
#include "uDownloader.h"

#include "uDefaults.h"
#include "uDictionaries.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QStringDecoder>
#include <QTemporaryFile>

#include <algorithm>
#include <cmath>
#include <limits>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

int Int32(qint64 value) { return static_cast<int>(std::clamp<qint64>(value, 0, std::numeric_limits<int>::max())); }

// Numbers of Windows code pages and the names under which they are known here.
QByteArray EncodingName(int codePage)
{
    switch (codePage) {
    case 932: return "windows-31j";
    case 936: return "windows-936";
    case 949: return "windows-949";
    case 950: return "Big5";
    case 1200: return "UTF-16LE";
    case 1201: return "UTF-16BE";
    case 20127: return "US-ASCII";
    case 20866: return "KOI8-R";
    case 21866: return "KOI8-U";
    case 50220:
    case 50221:
    case 50222: return "ISO-2022-JP";
    case 51932: return "EUC-JP";
    case 51949: return "EUC-KR";
    case 54936: return "GB18030";
    default: break;
    }
    if (codePage > 28590 && codePage < 28606)
        return "ISO-8859-" + QByteArray::number(codePage - 28590);
    if (codePage >= 1250 && codePage <= 1258)
        return "windows-" + QByteArray::number(codePage);
    return "IBM" + QByteArray::number(codePage);
}

// "a=1" lines as a form (application/x-www-form-urlencoded): names and values are escaped, the lines joined by "&".
QByteArray FormOf(const QString& query)
{
    QByteArrayList items;
    for (const QString& line : SplitLines(query)) {
        const qsizetype equals = line.indexOf(u'=');
        if (equals < 0)
            items.append(line.toUtf8().toPercentEncoding());
        else
            items.append(line.left(equals).toUtf8().toPercentEncoding() + '=' +
                         line.mid(equals + 1).toUtf8().toPercentEncoding());
    }
    return items.join('&');
}

const QString FormType = u"application/x-www-form-urlencoded"_s;

} // namespace

QStringList TextLines(const QString& text)
{
    QString unified = text;
    unified.replace(u"\r\n"_s, u"\n"_s).replace(u'\r', u'\n');
    if (unified.endsWith(u'\n'))
        unified.chop(1);
    return unified.split(u'\n');
}

TDownloaderErrorType ErrorTypeOf(TDownloadFailure failure)
{
    switch (failure) {
    case dfNone: return detNone;
    case dfAborted: return detAbort;
    case dfProxyLogin: return detProxyAuthenticationRequest;
    case dfNoHost:
    case dfNoConnection: return detHostUnrachable;
    case dfTimeout:
    case dfTooSlow:
    case dfCutOff: return detConnectionLost;
    default: return detHTTPError;
    }
}

TDownloader::TDownloader(TCookieManagerComponent* cookies) : FClient(cookies) {}

TDownloader::~TDownloader() = default;

void TDownloader::Clear()
{
    FURL.clear();
    FFilename.clear();
    FPostQuery.clear();
    FContentType.clear();
    FAnswer = {};
    FClient.Reset();
}

void TDownloader::AbortDownload() { FClient.Abort(); }

bool TDownloader::UploadFile(const QString&, const QString&, QIODevice&, QStringList&) { return false; }

void TDownloader::ReportProgress(qint64 total, qint64 read)
{
    const double percents =
        total > 0 ? std::nearbyint(static_cast<double>(read) / static_cast<double>(total) * 100) : 0;
    FOnProgressEvent(*this, FContentType, Int32(total), Int32(read), 0, 0,
                     static_cast<quint8>(std::clamp(percents, 0.0, 100.0)), 0.0F);
}

bool TDownloader::Fetch(QIODevice& into)
{
    FIsBusy = true;
    THttpRequest request = MakeRequest();
    request.URL = FURL;
    request.Agent = FAgent;
    request.MaxBytes = FMaxBytes;
    const auto sink = [&](const char* bytes, qint64 size) { return into.write(bytes, size) == size; };
    THttpClient::TProgress progress;
    if (FOnProgressEvent)
        progress = [this](qint64 total, qint64 read) { ReportProgress(total, read); };
    FAnswer = FClient.Perform(request, sink, progress);
    FContentType = FAnswer.ContentType;
    into.seek(0);
    FIsBusy = false;
    return FAnswer.Failure == dfNone;
}

bool TDownloader::FetchFile(QIODevice::OpenMode mode)
{
    QFile file(FFilename);
    if (!file.open(mode)) {
        FAnswer = {};
        FAnswer.Failure = dfOther;
        FAnswer.Reason = file.errorString();
    } else if (Fetch(file)) {
        const qint64 size = file.size();
        if (file.flush()) {
            file.close();
            FireDone(size);
            return true;
        }
        FAnswer.Failure = dfOther;
        FAnswer.Reason = file.errorString();
    }
    file.close();
    FireError(FAnswer.Reason);
    return false;
}

bool TDownloader::DownloadAsTStrings(QStringList& strings, int codePage)
{
    QBuffer body;
    body.open(QIODevice::ReadWrite);
    strings.clear();
    const bool done = Fetch(body);
    strings = DecodeLines(body.data(), codePage);
    if (done)
        FireDone(body.size());
    else
        FireError(RefusedText(strings));
    return done;
}

bool TDownloader::DownloadAsStream(QIODevice& stream)
{
    const bool done = Fetch(stream);
    if (done)
        FireDone(stream.size());
    else
        FireError(FAnswer.Reason);
    return done;
}

QString TDownloader::RefusedText(const QStringList&) const { return FAnswer.Reason; }

void TDownloader::FireDone(qint64 size)
{
    if (FOnDoneFileEvent)
        FOnDoneFileEvent(*this, DoneContentType(), Int32(size));
}

void TDownloader::FireError(const QString& text)
{
    if (FDownloaderErrorEvent)
        FDownloaderErrorEvent(*this, ErrorType(), FAnswer.Status, text);
}

QStringList TDownloader::DecodeLines(const QByteArray& body, int codePage) const
{
    if (codePage == -1 || codePage == 65001) {
        QStringDecoder utf8(QStringDecoder::Utf8); // takes a byte order mark away
        return TextLines(utf8(body));
    }
    QStringDecoder decoder(EncodingName(codePage).constData());
    if (!decoder.isValid())
        throw EInvalidEncoding();
    return TextLines(decoder(body));
}

TSecureBridge_Downloader::TSecureBridge_Downloader(TCookieManagerComponent* cookies) : TDownloader(cookies)
{
    FAgent = u"Kestrune [SB]v%1 x64"_s.arg(QStringLiteral(KESTRUNE_VERSION));
}

THttpRequest TSecureBridge_Downloader::MakeRequest() const
{
    THttpRequest request;
    request.Referer = FReferer;
    if (!FAcceptTypes.isEmpty())
        request.Headers.append(u"Accept: "_s + FAcceptTypes);
    for (const QString& item : FHeaders.split(u';', Qt::SkipEmptyParts)) {
        const qsizetype colon = item.indexOf(u':');
        if (colon > 0)
            request.Headers.append(u"%1: %2"_s.arg(item.left(colon).trimmed(), item.mid(colon + 1).trimmed()));
    }
    if (!FPostQuery.isEmpty()) {
        request.Body = FPostQuery.toUtf8();
        request.BodyType = FormType;
    }
    return request;
}

bool TSecureBridge_Downloader::DownloadBinary(bool)
{
    return FetchFile(QFile::exists(FFilename) ? QIODevice::ReadWrite | QIODevice::ExistingOnly
                                              : QIODevice::ReadWrite | QIODevice::NewOnly);
}

TD10_4_Downloader::TD10_4_Downloader(TCookieManagerComponent* cookies) : TDownloader(cookies) {}

THttpRequest TD10_4_Downloader::MakeRequest() const
{
    THttpRequest request;
    if (!FPostQuery.isEmpty()) {
        request.Body = FormOf(FPostQuery);
        request.BodyType = FormType;
    }
    return request;
}

TDownloaderErrorType TD10_4_Downloader::ErrorType() const
{
    return FAnswer.Failure == dfAborted ? detAbort : detHTTPError;
}

bool TD10_4_Downloader::DownloadBinary(bool) { return FetchFile(QIODevice::WriteOnly | QIODevice::Truncate); }

namespace {

bool IsPlatformTransport(TSystemVersion version)
{
    return version.Major > 6 || (version.Major == 6 && version.Minor >= 3);
}

} // namespace

TDownloaderTransportClass ChooseDownloaderClass(TSystemVersion version)
{
    using TResult = std::unique_ptr<TDownloader>;
    if (IsPlatformTransport(version))
        return [](TCookieManagerComponent* cookies) -> TResult { return std::make_unique<TD10_4_Downloader>(cookies); };
    return
        [](TCookieManagerComponent* cookies) -> TResult { return std::make_unique<TSecureBridge_Downloader>(cookies); };
}

TCookieManagerClass ChooseCookieManagerClass(TSystemVersion version)
{
    using TResult = std::unique_ptr<TCookieManagerComponent>;
    if (IsPlatformTransport(version))
        return []() -> TResult { return std::make_unique<TD10_4_CookieManager>(); };
    return []() -> TResult { return std::make_unique<TSecureBridge_CookieManager>(); };
}

TDownloaderThread::TDownloaderThread(TDownloaderTransportClass transport, TCookieManagerComponent* cookies)
    : FDownloader(transport(cookies))
{}

TDownloaderThread::~TDownloaderThread() { WaitFor(); }

void TDownloaderThread::Execute()
{
    const std::stop_callback stop(StopToken(), [this] { FDownloader->AbortDownload(); });
    if (Terminated())
        return;
    // A closure with the arguments goes to the main thread, which runs the user's event with them.
    FDownloader->SetOnProgressEvent([this](TDownloader& sender, const QString& type, int size, int read, int elapsed,
                                           int left, quint8 percents, float rate) {
        if (Terminated())
            sender.AbortDownload();
        else if (FProgressEvent)
            Synchronize([&] { FProgressEvent(sender, type, size, read, elapsed, left, percents, rate); });
    });
    FDownloader->SetOnDoneFileEvent([this](TDownloader& sender, const QString& type, int size) {
        if (FDoneFileEvent)
            Synchronize([&] { FDoneFileEvent(sender, type, size); });
    });
    FDownloader->SetErrorEvent([this](TDownloader& sender, TDownloaderErrorType type, int code, const QString& text) {
        if (FErrorEvent)
            Synchronize([&] { FErrorEvent(sender, type, code, text); });
    });
    FDownloader->DownloadBinary(FResumeIfExists);
}

QString ConnectionTestURL() { return u"https://www.wikipedia.org/"_s; }

bool TestConnection(const QString& url, const std::stop_token& stop)
{
    QTemporaryFile file(QDir::tempPath() + u"/XXXXXX.tmp"_s);
    if (!file.open())
        return false;
    const QString path = file.fileName();
    file.close();
    const auto cookies = ChooseCookieManagerClass()();
    const auto transport = ChooseDownloaderClass()(cookies.get());
    const std::stop_callback abort(stop, [&] { transport->AbortDownload(); });
    transport->SetFilename(path);
    transport->SetURL(url);
    transport->SetAgent(ServiceAgent(Defaults()));
    transport->SetMaxBytes(16 * 1024 * 1024);
    return transport->DownloadBinary(false) && QFile::exists(path);
}

} // namespace Kestrune
