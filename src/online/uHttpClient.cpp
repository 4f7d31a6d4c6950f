// SPDX-License-Identifier: GPL-3.0-or-later
#include "uHttpClient.h"

#include "uCookies.h"
#include "uDebugLog.h"
#include "uDefaults.h"
#include "uHostLimiter.h"

#include <QUrl>

#include <curl/curl.h>

#include <algorithm>
#include <chrono>
#include <memory>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr long LongestTransfer = 600'000;      // milliseconds
constexpr qint64 LeastProgress = 64 * 1024;    // bytes in DripTimeout, or the server drips
constexpr qint64 LargestRedirect = 256 * 1024; // bytes of a body that is not read

std::mutex SettingsLock;
TNetworkSettings& SharedSettings()
{
    static TNetworkSettings settings = [] {
        TNetworkSettings start;
        start.CertificateFile = qEnvironmentVariable("SSL_CERT_FILE");
        return start;
    }();
    return settings;
}

std::shared_ptr<THttpStandIn>& StandIn()
{
    static std::shared_ptr<THttpStandIn> standIn;
    return standIn;
}

std::mutex ObserverLock;
std::shared_ptr<THttpObserver>& SharedObserver()
{
    static std::shared_ptr<THttpObserver> observer;
    return observer;
}

std::shared_ptr<THttpObserver> CurrentObserver()
{
    const std::scoped_lock lock(ObserverLock);
    return SharedObserver();
}

// Set up once, before any thread uses the library.
void InitLibrary()
{
    static const CURLcode result = curl_global_init(CURL_GLOBAL_DEFAULT);
    if (result != CURLE_OK)
        DebugLog(u"[Net] the HTTP library does not start"_s);
}

struct TMultiDeleter {
    void operator()(CURLM* handle) const { curl_multi_cleanup(handle); }
};

TDownloadFailure FailureOf(CURLcode code)
{
    switch (code) {
    case CURLE_OK: return dfNone;
    case CURLE_URL_MALFORMAT:
    case CURLE_UNSUPPORTED_PROTOCOL: return dfBadURL;
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY: return dfNoHost;
    case CURLE_COULDNT_CONNECT: return dfNoConnection;
    case CURLE_OPERATION_TIMEDOUT: return dfTimeout;
    case CURLE_PARTIAL_FILE:
    case CURLE_RECV_ERROR:
    case CURLE_SEND_ERROR:
    case CURLE_GOT_NOTHING: return dfCutOff;
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_PEER_FAILED_VERIFICATION: return dfCertificate;
    case CURLE_ABORTED_BY_CALLBACK: return dfAborted;
    default: return dfOther;
    }
}

// In place of the library's words for a sink that takes no more.
QString TooLargeReason(const THttpRequest& request)
{
    return u"the answer is too large: more than %1 bytes"_s.arg(request.MaxBytes > 0 ? request.MaxBytes
                                                                                     : LargestRedirect);
}

bool IsLegalInURL(unsigned char c)
{
    constexpr char others[] = "!#$%&'()*+,-./:;=?@[]_~";
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
           (c != 0 &&
            std::find(std::begin(others), std::end(others) - 1, static_cast<char>(c)) != std::end(others) - 1);
}

} // namespace

TNetworkSettings NetworkSettings()
{
    const std::scoped_lock lock(SettingsLock);
    return SharedSettings();
}

void SetNetworkSettings(const TNetworkSettings& settings)
{
    const std::scoped_lock lock(SettingsLock);
    SharedSettings() = settings;
}

TNetworkSettings NetworkSettingsFrom(const TDefaults& settings)
{
    TNetworkSettings network = NetworkSettings();
    network.Direct = settings.InetAccess == 1;
    network.ProxyHost = settings.ProxyHost.trimmed();
    network.ProxyPort = settings.ProxyPort;
    network.ProxyUsername = settings.ProxyUsername;
    network.ProxyPassword = settings.ProxyPassword;
    network.VerifyCertificates = settings.VerifyCertificates;
    return network;
}

QByteArray EncodeURL(const QString& url)
{
    constexpr char digits[] = "0123456789ABCDEF";
    QByteArray encoded;
    for (const char c : url.toUtf8()) {
        const auto byte = static_cast<unsigned char>(c);
        if (IsLegalInURL(byte))
            encoded += c;
        else
            encoded.append('%').append(digits[byte >> 4]).append(digits[byte & 15]);
    }
    return encoded;
}

QString HostOfURL(const QString& url) { return QUrl::fromEncoded(EncodeURL(url)).host().toLower(); }

void SetHttpStandIn(std::shared_ptr<THttpStandIn> standIn) { StandIn() = std::move(standIn); }

void SetHttpObserver(std::shared_ptr<THttpObserver> observer)
{
    const std::scoped_lock lock(ObserverLock);
    SharedObserver() = std::move(observer);
}

// One run of the library over one request, with what its callbacks need.
struct THttpClient::TTransfer {
    struct TEasyDeleter {
        void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
    };
    struct TListDeleter {
        void operator()(curl_slist* list) const { curl_slist_free_all(list); }
    };

    TTransfer(const THttpRequest& request, const TSink& sink, const TProgress& progress, THttpClient& client)
        : Request(request), Sink(sink), Progress(progress), Client(client)
    {}

    const THttpRequest& Request;
    const TSink& Sink;
    const TProgress& Progress;
    THttpClient& Client;
    std::unique_ptr<CURL, TEasyDeleter> Easy{curl_easy_init()};
    std::unique_ptr<curl_slist, TListDeleter> Headers;
    char Error[CURL_ERROR_SIZE] = {};
    QString StatusText;
    qint64 Read = 0;
    bool TooLarge = false;
    bool SinkFailed = false;
    qint64 Skipped = 0;
    // The last time that something worth it had come, and what was there then.
    std::chrono::steady_clock::time_point Marked = std::chrono::steady_clock::now();
    qint64 ReadThen = 0;
    bool TooSlow = false;

    static size_t Write(char* bytes, size_t one, size_t count, void* self)
    {
        auto& my = *static_cast<TTransfer*>(self);
        const auto size = static_cast<qint64>(one * count);
        if (my.IsRedirect()) { // its body is nobody's, and may have no end
            my.Skipped += size;
            my.TooLarge = my.Skipped > LargestRedirect;
            return my.TooLarge ? 0 : one * count;
        }
        // An endless body ends here, whatever length its server told.
        my.TooLarge = my.Request.MaxBytes > 0 && my.Read + size > my.Request.MaxBytes;
        if (my.TooLarge)
            return 0;
        my.Read += size;
        my.SinkFailed = !my.Sink(bytes, size);
        return my.SinkFailed ? 0 : one * count;
    }

    bool IsRedirect() const
    {
        long status = 0;
        curl_easy_getinfo(Easy.get(), CURLINFO_RESPONSE_CODE, &status);
        return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
    }

    static size_t Header(char* bytes, size_t one, size_t count, void* self)
    {
        auto& my = *static_cast<TTransfer*>(self);
        const QByteArray line(bytes, static_cast<qsizetype>(one * count));
        if (line.startsWith("HTTP/"))
            my.StatusText = QString::fromLatin1(line.trimmed()).section(u' ', 2);
        return one * count;
    }

    static int Step(void* self, curl_off_t total, curl_off_t read, curl_off_t, curl_off_t)
    {
        auto& my = *static_cast<TTransfer*>(self);
        if (my.Progress)
            my.Progress(total, read);
        my.TooSlow = my.IsDripping();
        return my.Client.FAborted || my.TooSlow ? 1 : 0;
    }

    // A server that sends a byte now and then keeps the time-out of silence from coming.
    bool IsDripping()
    {
        const auto now = std::chrono::steady_clock::now();
        if (Read - ReadThen >= LeastProgress) {
            ReadThen = Read;
            Marked = now;
        }
        return now - Marked >= std::chrono::milliseconds(Client.FSettings.DripTimeout);
    }

    template <class TValue>
    void Set(CURLoption option, TValue value)
    {
        curl_easy_setopt(Easy.get(), option, value);
    }

    void SetUp(const QByteArray& url, bool verify);
    void SetUpProxy(const TNetworkSettings& settings);
    CURLcode Run();
};

void THttpClient::TTransfer::SetUp(const QByteArray& url, bool verify)
{
    const TNetworkSettings& settings = Client.FSettings;
    Set(CURLOPT_NOSIGNAL, 1L);
    Set(CURLOPT_QUICK_EXIT, 1L); // a resolver that hangs does not hold up who aborts
    Set(CURLOPT_URL, url.constData());
    Set(CURLOPT_PROTOCOLS_STR, "http,https");
    Set(CURLOPT_ACCEPT_ENCODING, "");
    Set(CURLOPT_COOKIEFILE, "");
    Set(CURLOPT_ERRORBUFFER, Error);
    Set(CURLOPT_SSL_VERIFYPEER, verify ? 1L : 0L);
    Set(CURLOPT_SSL_VERIFYHOST, verify ? 2L : 0L);
    Set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_0));
    if (!settings.CertificateFile.isEmpty())
        Set(CURLOPT_CAINFO, settings.CertificateFile.toUtf8().constData());
    if (!verify) // short keys and old protocols as well
        Set(CURLOPT_SSL_CIPHER_LIST, "DEFAULT@SECLEVEL=0");
    Set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(settings.ConnectTimeout));
    Set(CURLOPT_TIMEOUT_MS, LongestTransfer);
    Set(CURLOPT_LOW_SPEED_LIMIT, 1L);
    Set(CURLOPT_LOW_SPEED_TIME, static_cast<long>(std::max(1, settings.ResponseTimeout / 1000)));
    Set(CURLOPT_WRITEFUNCTION, &TTransfer::Write);
    Set(CURLOPT_WRITEDATA, static_cast<void*>(this));
    Set(CURLOPT_HEADERFUNCTION, &TTransfer::Header);
    Set(CURLOPT_HEADERDATA, static_cast<void*>(this));
    Set(CURLOPT_NOPROGRESS, 0L);
    Set(CURLOPT_XFERINFOFUNCTION, &TTransfer::Step);
    Set(CURLOPT_XFERINFODATA, static_cast<void*>(this));
    if (!Request.Agent.isEmpty())
        Set(CURLOPT_USERAGENT, Request.Agent.toUtf8().constData());
    if (!Request.Referer.isEmpty())
        Set(CURLOPT_REFERER, Request.Referer.toUtf8().constData());
    if (Request.Body) {
        Set(CURLOPT_POST, 1L);
        Set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(Request.Body->size()));
        Set(CURLOPT_POSTFIELDS, Request.Body->constData());
    }
    QStringList headers = Request.Headers;
    if (!Request.BodyType.isEmpty())
        headers.append(u"Content-Type: "_s + Request.BodyType);
    for (const QString& header : headers) {
        if (curl_slist* list = curl_slist_append(Headers.get(), header.toUtf8().constData())) {
            (void)Headers.release();
            Headers.reset(list);
        }
    }
    Set(CURLOPT_HTTPHEADER, Headers.get());
    SetUpProxy(settings);
    if (Client.FCookies)
        Client.FCookies->Attach(Easy.get());
}

void THttpClient::TTransfer::SetUpProxy(const TNetworkSettings& settings)
{
    if (settings.Direct)
        Set(CURLOPT_PROXY, "");
    if (settings.Direct || settings.ProxyHost.isEmpty())
        return;
    Set(CURLOPT_PROXY, settings.ProxyHost.toUtf8().constData());
    Set(CURLOPT_NOPROXY, "");
    if (settings.ProxyPort > 0)
        Set(CURLOPT_PROXYPORT, static_cast<long>(settings.ProxyPort));
    if (!settings.ProxyUsername.isEmpty()) {
        Set(CURLOPT_PROXYUSERNAME, settings.ProxyUsername.toUtf8().constData());
        Set(CURLOPT_PROXYPASSWORD, settings.ProxyPassword.toUtf8().constData());
    }
}

// The library's loop, woken by Abort at once.
CURLcode THttpClient::TTransfer::Run()
{
    const std::unique_ptr<CURLM, TMultiDeleter> multi(curl_multi_init());
    curl_multi_add_handle(multi.get(), Easy.get());
    {
        const std::scoped_lock lock(Client.FLock);
        Client.FMulti = multi.get();
    }
    CURLcode result = CURLE_OK;
    for (int running = 1; running > 0;) {
        if (Client.FAborted) {
            result = CURLE_ABORTED_BY_CALLBACK;
            break;
        }
        if (curl_multi_perform(multi.get(), &running) != CURLM_OK) {
            result = CURLE_OUT_OF_MEMORY;
            break;
        }
        if (running > 0)
            curl_multi_poll(multi.get(), nullptr, 0, 1000, nullptr);
    }
    int left = 0;
    while (const CURLMsg* message = curl_multi_info_read(multi.get(), &left)) {
        if (message->msg == CURLMSG_DONE)
            result = message->data.result;
    }
    {
        const std::scoped_lock lock(Client.FLock);
        Client.FMulti = nullptr;
    }
    curl_multi_remove_handle(multi.get(), Easy.get());
    return result;
}

THttpClient::THttpClient(TCookieManagerComponent* cookies) : FCookies(cookies), FSettings(NetworkSettings())
{
    InitLibrary();
}

THttpClient::~THttpClient() = default;

void THttpClient::Abort()
{
    FAborted = true;
    HostLimiter().Wake();
    const std::scoped_lock lock(FLock);
    if (FMulti)
        curl_multi_wakeup(static_cast<CURLM*>(FMulti));
}

THttpAnswer THttpClient::Perform(const THttpRequest& request, const TSink& sink, const TProgress& progress)
{
    if (const std::shared_ptr<THttpStandIn> standIn = StandIn()) {
        QByteArray body;
        THttpAnswer answer = standIn->Answer(request, body);
        if (answer.Arrived() && !sink(body.constData(), body.size()))
            answer.Failure = dfOther;
        return answer;
    }
    const std::shared_ptr<THttpObserver> observer = CurrentObserver();
    QByteArray seen;
    const TSink both = [&](const char* bytes, qint64 size) {
        seen.append(bytes, size);
        return sink(bytes, size);
    };
    // Redirects are followed here and not by the library, so that each host on the way is asked at its own pace.
    THttpRequest next = request;
    THttpAnswer answer;
    for (int hop = 0;; ++hop) {
        QString redirectedTo;
        const int status = answer.Status;
        answer = Hop(next, observer ? both : sink, progress, redirectedTo);
        if (answer.Status == 0)
            answer.Status = status; // what led here
        if (redirectedTo.isEmpty())
            break;
        if (hop == request.MaxRedirects) {
            answer.Failure = dfOther;
            answer.Reason = u"more than %1 redirects"_s.arg(request.MaxRedirects);
            break;
        }
        next.URL = redirectedTo;
        // As browsers do: only these two repeat a form (RFC 9110, section 15.4).
        if (answer.Status != 307 && answer.Status != 308) {
            next.Body.reset();
            next.BodyType.clear();
        }
    }
    if (observer && answer.Arrived())
        observer->Answered(request, answer, seen);
    return answer;
}

// One request, when its host may be asked.
THttpAnswer THttpClient::Hop(const THttpRequest& request, const TSink& sink, const TProgress& progress,
                             QString& redirectedTo)
{
    const QString host = HostOfURL(request.URL);
    THttpAnswer answer;
    if (host.isEmpty()) {
        answer.Failure = dfBadURL;
        answer.Reason = u"no host in the address"_s;
        return answer;
    }
    bool waited = false;
    const auto waiting = [&](int milliseconds) {
        waited = true;
        if (OnWaiting)
            OnWaiting(milliseconds);
    };
    const quint64 turn = HostLimiter().Enter(host, Pace, FAborted, waiting);
    if (turn == 0) {
        answer.Failure = dfAborted;
        return answer;
    }
    if (waited && OnWaiting)
        OnWaiting(0);
    answer = Transfer(request, sink, progress, redirectedTo);
    HostLimiter().Leave(host, turn);
    return answer;
}

THttpAnswer THttpClient::Transfer(const THttpRequest& request, const TSink& sink, const TProgress& progress,
                                  QString& redirectedTo)
{
    const QByteArray url = EncodeURL(request.URL);
    // The strict check comes first, so that a certificate which fails it is known by its reason; the handshake fails
    // before the request is sent, which then goes out unchecked.
    auto transfer = std::make_unique<TTransfer>(request, sink, progress, *this);
    transfer->SetUp(url, true);
    CURLcode code = transfer->Run();
    if (FailureOf(code) == dfCertificate) {
        DebugLog(u"[Net] certificate of %1: %2"_s.arg(HostOfURL(request.URL), QString::fromUtf8(transfer->Error)));
        if (!FSettings.VerifyCertificates) {
            if (FCookies)
                FCookies->Detach(transfer->Easy.get());
            transfer = std::make_unique<TTransfer>(request, sink, progress, *this);
            transfer->SetUp(url, false);
            code = transfer->Run();
        }
    }
    CURL* easy = transfer->Easy.get();
    if (FCookies)
        FCookies->Detach(easy);

    THttpAnswer answer;
    long status = 0, proxyStatus = 0;
    curl_easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &status);
    curl_easy_getinfo(easy, CURLINFO_HTTP_CONNECTCODE, &proxyStatus);
    answer.Status = static_cast<int>(status);
    answer.StatusText = transfer->StatusText;
    char* type = nullptr;
    curl_easy_getinfo(easy, CURLINFO_CONTENT_TYPE, &type);
    answer.ContentType = QString::fromUtf8(type);
    curl_off_t length = -1;
    curl_easy_getinfo(easy, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &length);
    answer.ContentLength = length;
    answer.Failure = FailureOf(code);
    if (FAborted)
        answer.Failure = dfAborted;
    else if (transfer->TooLarge)
        answer.Failure = dfTooLarge;
    else if (transfer->TooSlow)
        answer.Failure = dfTooSlow;
    else if (proxyStatus == 407 || (code == CURLE_OK && status == 407))
        answer.Failure = dfProxyLogin;
    else if (code == CURLE_OK && status != 200)
        answer.Failure = dfHTTP;
    if (answer.Failure != dfNone)
        answer.Reason = code == CURLE_OK
                            ? u"%1 %2"_s.arg(status).arg(answer.StatusText)
                            : QString::fromUtf8(transfer->Error[0] ? transfer->Error : curl_easy_strerror(code));
    if (answer.Failure == dfTooLarge)
        answer.Reason = TooLargeReason(request);
    else if (answer.Failure == dfTooSlow)
        answer.Reason = u"the answer comes too slowly"_s;
    char* location = nullptr;
    curl_easy_getinfo(easy, CURLINFO_REDIRECT_URL, &location);
    if (code == CURLE_OK && location && transfer->IsRedirect())
        redirectedTo = QString::fromUtf8(location);
    curl_off_t retryAfter = 0;
    curl_easy_getinfo(easy, CURLINFO_RETRY_AFTER, &retryAfter);
    if ((status == 429 || status == 503) && retryAfter > 0)
        HostLimiter().Delay(HostOfURL(request.URL), std::chrono::seconds(std::min<curl_off_t>(retryAfter, 86400)));
    return answer;
}

} // namespace Kestrune
