// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QTcpServer>

#include <atomic>
#include <chrono>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

namespace Kestrune::Kit {

struct TWebRequest {
    QByteArray Method, Target, Body;
    QByteArray Path, Query;                   ///< of the target, split at "?"
    std::map<QByteArray, QByteArray> Headers; ///< names in lower case
    std::chrono::steady_clock::time_point Time;
};

struct TWebAnswer {
    int Status = 200;
    QByteArray Body = {};
    QByteArray Type = "text/plain";
    QList<std::pair<QByteArray, QByteArray>> Headers = {};
    int DelayMs = 0;          ///< before the first byte
    qint64 CutAfter = -1;     ///< the connection ends after so many bytes of the body
    qint64 ToldLength = -1;   ///< another Content-Length than the true one
    bool Endless = false;     ///< the body is repeated until the client goes
    bool Gzip = false;        ///< the body is sent compressed
    int DripMs = 0;           ///< the body comes byte by byte with pauses of this length
    bool SilentAfter = false; ///< nothing more is sent behind the headers, and the connection stays
};

/// A web server on loopback in threads of its own. Every answer ends its connection.
class TWebServer {
public:
    using THandler = std::function<TWebAnswer(const TWebRequest&)>;

    /// With certificate and key (PEM files): https.
    explicit TWebServer(const QString& certificate = {}, const QString& key = {});
    ~TWebServer();

    /// What answers; called on the server's threads, one after the other. 404 without one.
    void SetHandler(THandler handler);
    /// The same for one path; goes before the handler.
    void Serve(const QByteArray& path, const TWebAnswer& answer);

    QString URL(const QString& path = QStringLiteral("/"), const QString& host = QStringLiteral("127.0.0.1")) const;
    int Port() const { return FPort; }
    /// All requests so far, in the order of their arrival.
    QList<TWebRequest> Log() const;
    int Count(const QByteArray& path) const;
    /// The most requests that were being answered at the same time.
    int MostAtOnce() const { return FMostAtOnce; }

private:
    class TListener;
    void Accept();
    void Talk(qintptr socket);

    QString FCertificate, FKey;
    THandler FHandler;
    std::map<QByteArray, TWebAnswer> FAnswers;
    mutable std::mutex FLock;
    QList<TWebRequest> FLog;
    std::atomic<bool> FStop{false};
    std::atomic<int> FPort{0};
    std::atomic<int> FNow{0};
    std::atomic<int> FMostAtOnce{0};
    std::list<std::thread> FTalks;
    std::thread FThread;
};

/// Makes a key and a certificate for localhost and 127.0.0.1, signed by itself, with the openssl program.
void MakeCertificate(const QString& certificate, const QString& key, const QString& name = QStringLiteral("localhost"));

} // namespace Kestrune::Kit
