// SPDX-License-Identifier: GPL-3.0-or-later
#include "uWebServer.h"

#include <QFile>
#include <QProcess>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslSocket>

#include <zlib.h>

#include <algorithm>
#include <stdexcept>

namespace Kestrune::Kit {

using namespace Qt::StringLiterals;

namespace {

constexpr int TickMs = 20; // how soon a thread sees that the server ends

QByteArray Compress(const QByteArray& bytes)
{
    QByteArray packed(static_cast<qsizetype>(compressBound(static_cast<uLong>(bytes.size()))) + 64, '\0');
    z_stream stream{};
    deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY);
    QByteArray input = bytes;
    stream.next_in = reinterpret_cast<Bytef*>(input.data());
    stream.avail_in = static_cast<uInt>(input.size());
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    deflate(&stream, Z_FINISH);
    packed.truncate(static_cast<qsizetype>(stream.total_out));
    deflateEnd(&stream);
    return packed;
}

TWebRequest ParseRequest(const QByteArray& head)
{
    TWebRequest request;
    request.Time = std::chrono::steady_clock::now();
    const QList<QByteArray> lines = head.split('\n');
    const QList<QByteArray> first = lines.value(0).trimmed().split(' ');
    request.Method = first.value(0);
    request.Target = first.value(1);
    const qsizetype mark = request.Target.indexOf('?');
    request.Path = mark < 0 ? request.Target : request.Target.left(mark);
    request.Query = mark < 0 ? QByteArray() : request.Target.mid(mark + 1);
    for (const QByteArray& line : lines.mid(1)) {
        const qsizetype colon = line.indexOf(':');
        if (colon > 0)
            request.Headers[line.left(colon).toLower()] = line.mid(colon + 1).trimmed();
    }
    return request;
}

} // namespace

// Gives each connection away, to be served by blocking calls on a thread of its own.
class TWebServer::TListener final : public QTcpServer {
public:
    explicit TListener(TWebServer& server) : FServer(server) {}

protected:
    void incomingConnection(qintptr socket) override
    {
        FServer.FTalks.emplace_back([this, socket] { FServer.Talk(socket); });
    }

private:
    TWebServer& FServer;
};

TWebServer::TWebServer(const QString& certificate, const QString& key) : FCertificate(certificate), FKey(key)
{
    FThread = std::thread([this] { Accept(); });
    while (FPort == 0)
        std::this_thread::yield();
    if (FPort < 0)
        throw std::runtime_error("no port on loopback");
}

TWebServer::~TWebServer()
{
    FStop = true;
    FThread.join();
}

void TWebServer::Accept()
{
    TListener listener(*this);
    listener.setListenBacklogSize(200);
    FPort = listener.listen(QHostAddress::LocalHost) ? listener.serverPort() : -1;
    while (!FStop && FPort > 0)
        listener.waitForNewConnection(TickMs);
    listener.close();
    for (std::thread& talk : FTalks)
        talk.join();
}

void TWebServer::SetHandler(THandler handler)
{
    const std::scoped_lock lock(FLock);
    FHandler = std::move(handler);
}

void TWebServer::Serve(const QByteArray& path, const TWebAnswer& answer)
{
    const std::scoped_lock lock(FLock);
    FAnswers[path] = answer;
}

QString TWebServer::URL(const QString& path, const QString& host) const
{
    return u"%1://%2:%3%4"_s.arg(FCertificate.isEmpty() ? u"http"_s : u"https"_s, host).arg(Port()).arg(path);
}

QList<TWebRequest> TWebServer::Log() const
{
    const std::scoped_lock lock(FLock);
    return FLog;
}

int TWebServer::Count(const QByteArray& path) const
{
    const QList<TWebRequest> log = Log();
    return static_cast<int>(std::ranges::count(log, path, &TWebRequest::Path));
}

void TWebServer::Talk(qintptr descriptor)
{
    QSslSocket socket;
    if (!socket.setSocketDescriptor(descriptor))
        return;
    if (!FCertificate.isEmpty()) {
        socket.setLocalCertificate(FCertificate);
        socket.setPrivateKey(FKey);
        socket.startServerEncryption();
        if (!socket.waitForEncrypted(5000))
            return;
    }
    QByteArray input;
    const auto readMore = [&] {
        for (int waited = 0; waited < 10000 && !FStop; waited += TickMs) {
            if (socket.bytesAvailable() > 0 || socket.waitForReadyRead(TickMs)) {
                input += socket.readAll();
                return true;
            }
            if (socket.state() != QAbstractSocket::ConnectedState)
                return false;
        }
        return false;
    };
    while (!input.contains("\r\n\r\n")) {
        if (!readMore())
            return;
    }
    TWebRequest request = ParseRequest(input.left(input.indexOf("\r\n\r\n")));
    const qint64 length = request.Headers["content-length"].toLongLong();
    const qsizetype bodyAt = input.indexOf("\r\n\r\n") + 4;
    while (input.size() - bodyAt < length) {
        if (!readMore())
            return;
    }
    request.Body = input.mid(bodyAt, static_cast<qsizetype>(length));
    TWebAnswer answer;
    {
        const std::scoped_lock lock(FLock);
        FLog.append(request);
        FMostAtOnce = std::max(FMostAtOnce.load(), ++FNow);
        if (const auto found = FAnswers.find(request.Path); found != FAnswers.end())
            answer = found->second;
        else if (FHandler)
            answer = FHandler(request);
        else
            answer.Status = 404;
    }
    for (int waited = 0; waited < answer.DelayMs && !FStop; waited += TickMs)
        std::this_thread::sleep_for(std::chrono::milliseconds(TickMs));
    // Whoever has the whole answer may ask again before this thread goes on: it no longer counts.
    const bool atOnce = !answer.SilentAfter && answer.DripMs == 0 && !answer.Endless;
    if (atOnce)
        --FNow;
    const QByteArray body = answer.Gzip ? Compress(answer.Body) : answer.Body;
    QByteArray head = "HTTP/1.1 " + QByteArray::number(answer.Status) +
                      " Status\r\nConnection: close\r\nContent-Type: " + answer.Type + "\r\n";
    if (answer.Gzip)
        head += "Content-Encoding: gzip\r\n";
    if (!answer.Endless)
        head +=
            "Content-Length: " + QByteArray::number(answer.ToldLength >= 0 ? answer.ToldLength : body.size()) + "\r\n";
    for (const auto& [name, value] : answer.Headers)
        head += name + ": " + value + "\r\n";
    socket.write(head + "\r\n");
    const auto connected = [&] { return socket.state() == QAbstractSocket::ConnectedState && !FStop; };
    const auto flush = [&] {
        while (socket.bytesToWrite() + socket.encryptedBytesToWrite() > 0 && connected())
            socket.waitForBytesWritten(TickMs);
    };
    if (answer.SilentAfter) {
        flush();
        while (connected())
            socket.waitForReadyRead(TickMs);
    } else if (answer.DripMs > 0) {
        for (qsizetype sent = 0; sent < body.size() && connected(); ++sent) {
            socket.write(body.constData() + sent, 1);
            flush();
            socket.waitForReadyRead(answer.DripMs); // false in time, or the client goes
        }
    } else if (answer.Endless) {
        while (connected()) {
            socket.write(body);
            flush();
        }
    } else {
        socket.write(answer.CutAfter >= 0 ? body.left(answer.CutAfter) : body);
        flush();
    }
    if (!atOnce)
        --FNow;
    socket.disconnectFromHost();
    if (socket.state() != QAbstractSocket::UnconnectedState)
        socket.waitForDisconnected(1000);
}

void MakeCertificate(const QString& certificate, const QString& key, const QString& name)
{
    QProcess openssl;
    openssl.start(u"openssl"_s, {u"req"_s, u"-x509"_s, u"-newkey"_s, u"rsa:2048"_s, u"-nodes"_s, u"-keyout"_s, key,
                                 u"-out"_s, certificate, u"-days"_s, u"2"_s, u"-subj"_s, u"/CN="_s + name, u"-addext"_s,
                                 u"subjectAltName=DNS:%1,IP:127.0.0.1"_s.arg(name)});
    if (!openssl.waitForFinished(30000) || openssl.exitCode() != 0)
        throw std::runtime_error("openssl made no certificate");
}

} // namespace Kestrune::Kit
