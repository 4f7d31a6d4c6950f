// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>

namespace Kestrune {

struct TDefaults;

/// Why a request brought nothing.
enum class TDownloadFailure : quint8 {
    dfNone,
    dfHTTP,         ///< answered with another status than 200
    dfBadURL,       ///< no address that can be asked
    dfNoHost,       ///< the name of the host or proxy is not known
    dfNoConnection, ///< nobody answers there
    dfTimeout,      ///< no answer in time
    dfTooSlow,      ///< bytes came, but hardly any
    dfCutOff,       ///< the connection ended in the middle
    dfTooLarge,     ///< more bytes than are taken
    dfCertificate,  ///< refused with VerifyCertificates on
    dfProxyLogin,   ///< the proxy wants another name or password
    dfNotReadable,  ///< arrived, but it is not what was asked for
    dfAborted,
    dfOther
};
using enum TDownloadFailure;

/// How the process reaches the network.
struct TNetworkSettings {
    QString ProxyHost;   ///< empty: what the environment names, or directly
    bool Direct = false; ///< no proxy, whatever the environment names
    int ProxyPort = 0;
    QString ProxyUsername, ProxyPassword;
    bool VerifyCertificates = false; ///< off: every certificate is taken and failed checks go to the debug log
    QString CertificateFile;         ///< trusted certificates in place of the system's; empty: the system's
    int ConnectTimeout = 10000;      ///< milliseconds
    int ResponseTimeout = 10000;     ///< milliseconds without a byte
    int DripTimeout = 60000;         ///< milliseconds with next to none
};

/// The settings as transports made from now on use them. Any thread.
TNetworkSettings NetworkSettings();
void SetNetworkSettings(const TNetworkSettings& settings);
/// Proxy and certificates of the settings.
TNetworkSettings NetworkSettingsFrom(const TDefaults& settings);

/// The URL with bytes that are not legal in one as percent escapes of its UTF-8 form (RFC 3986, section 2). "%" stays.
QByteArray EncodeURL(const QString& url);
/// Host of a URL in lower case; empty when there is none.
QString HostOfURL(const QString& url);

struct THttpRequest {
    QString URL;
    QString Agent;
    QString Referer;
    QStringList Headers; ///< "Name: value"
    std::optional<QByteArray> Body;
    QString BodyType;
    int MaxRedirects = 10;
    qint64 MaxBytes = 0; ///< 0: no bound
};

struct THttpAnswer {
    TDownloadFailure Failure = dfNone;
    int Status = 0; ///< 0 when there was no answer
    QString StatusText;
    QString ContentType;
    qint64 ContentLength = -1; ///< -1 unknown
    QString Reason;            ///< of a failure, in the library's words

    bool Arrived() const { return Failure == dfNone || Failure == dfHTTP; }
};

class TCookieManagerComponent;

/// Takes the place of the network, for instance with recorded answers. Called on the thread of the request.
class THttpStandIn {
public:
    virtual ~THttpStandIn() = default;
    virtual THttpAnswer Answer(const THttpRequest& request, QByteArray& body) = 0;
};
/// Null brings the network back. No request may run.
void SetHttpStandIn(std::shared_ptr<THttpStandIn> standIn);

/// Sees what the network answers, for instance to record it. Called on the thread of the request, when the whole body
/// is there; not for requests without an answer.
class THttpObserver {
public:
    virtual ~THttpObserver() = default;
    virtual void Answered(const THttpRequest& request, const THttpAnswer& answer, const QByteArray& body) = 0;
};
/// Null ends it; requests that run keep the observer they began with. Any thread.
void SetHttpObserver(std::shared_ptr<THttpObserver> observer);

/// One HTTP client: http and https, redirects, compression, cookies of its manager, the pace of the host. One request
/// at a time, on any one thread.
class THttpClient {
public:
    /// The cookie manager outlives the client; null: no cookies.
    explicit THttpClient(TCookieManagerComponent* cookies);
    ~THttpClient();
    THttpClient(const THttpClient&) = delete;
    THttpClient& operator=(const THttpClient&) = delete;

    using TSink = std::function<bool(const char* bytes, qint64 size)>;
    using TProgress = std::function<void(qint64 total, qint64 read)>;
    /// Blocks until the answer is there. A status other than 200 fills the sink as well.
    THttpAnswer Perform(const THttpRequest& request, const TSink& sink, const TProgress& progress = {});

    /// Ends the request at once, also one that begins later. From any thread.
    void Abort();
    bool Aborted() const { return FAborted; }
    /// Allows requests again.
    void Reset() { FAborted = false; }

    /// Least milliseconds between requests to the same host; the host's own pace may be larger.
    int Pace = 0;
    /// Told from the thread of the request when the host has to be waited for, and with 0 when the wait is over.
    std::function<void(int milliseconds)> OnWaiting;

private:
    struct TTransfer;
    THttpAnswer Hop(const THttpRequest& request, const TSink& sink, const TProgress& progress, QString& redirectedTo);
    THttpAnswer Transfer(const THttpRequest& request, const TSink& sink, const TProgress& progress,
                         QString& redirectedTo);

    TCookieManagerComponent* FCookies;
    TNetworkSettings FSettings;
    std::atomic<bool> FAborted{false};
    std::mutex FLock;
    void* FMulti = nullptr; // CURLM of the request that runs
};

} // namespace Kestrune
