// SPDX-License-Identifier: GPL-3.0-or-later
#include "uDebugLog.h"
#include "uDownloader.h"
#include "uHostLimiter.h"
#include "uTestFiles.h"
#include "uWebServer.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>
#include <QTcpServer>

#include <gmock/gmock.h>

using namespace Kestrune;
using namespace Qt::StringLiterals;

namespace {

constexpr TSystemVersion Old{6, 1};
constexpr TSystemVersion New{10, 0};

class DownloaderTest : public testing::TestWithParam<TSystemVersion> {
protected:
    DownloaderTest() { HostLimiter().Clear(); }
    ~DownloaderTest() override
    {
        SetNetworkSettings({});
        SetDebugLogSink({});
    }

    bool Get(const QString& url, QByteArray* body = nullptr)
    {
        QBuffer buffer;
        buffer.open(QIODevice::ReadWrite);
        Transport->SetURL(url);
        const bool done = Transport->DownloadAsStream(buffer);
        if (body)
            *body = buffer.data();
        return done;
    }

    // Before the transport, which takes a copy.
    struct TShortTimes {
        TShortTimes()
        {
            TNetworkSettings settings;
            settings.ConnectTimeout = 1000;
            settings.ResponseTimeout = 1000;
            settings.DripTimeout = 2500;
            SetNetworkSettings(settings);
        }
    } Times;
    Kit::TWebServer Server;
    std::unique_ptr<TCookieManagerComponent> Cookies = ChooseCookieManagerClass(GetParam())();
    std::unique_ptr<TDownloader> Transport = ChooseDownloaderClass(GetParam())(Cookies.get());
};

INSTANTIATE_TEST_SUITE_P(Transports, DownloaderTest, testing::Values(Old, New),
                         [](const auto& row) { return row.param.Major > 6 ? "Platform" : "Older"; });

TEST_P(DownloaderTest, FetchesBodiesAsTheyAreSent)
{
    const QByteArray large(3'000'000, 'x');
    Server.Serve("/plain", {.Body = "hello"});
    Server.Serve("/gzip", {.Body = large, .Gzip = true});
    Server.Serve("/redirect", {.Status = 302, .Headers = {{"Location", "/plain"}}});
    QByteArray body;
    EXPECT_TRUE(Get(Server.URL(u"/plain"_s), &body));
    EXPECT_EQ(body, "hello");
    EXPECT_EQ(Transport->ContentType(), u"text/plain"_s);
    EXPECT_TRUE(Get(Server.URL(u"/gzip"_s), &body));
    EXPECT_EQ(body.size(), large.size());
    EXPECT_TRUE(Get(Server.URL(u"/redirect"_s), &body));
    EXPECT_EQ(body, "hello");
}

TEST_P(DownloaderTest, AsksEachHostOnTheWayAtItsPace)
{
    constexpr int pace = 120;
    Server.Serve("/first", {.Status = 302, .Body = "gone", .Headers = {{"Location", "/second"}}});
    Server.Serve("/second", {.Body = "here"});
    HostLimiter().SetPace(u"127.0.0.1"_s, pace);
    QByteArray body;
    EXPECT_TRUE(Get(Server.URL(u"/first"_s), &body));
    EXPECT_EQ(body, "here");
    const auto log = Server.Log();
    ASSERT_EQ(log.size(), 2);
    EXPECT_GE(log[1].Time - log[0].Time, std::chrono::milliseconds(pace));
    HostLimiter().Clear();
}

TEST_P(DownloaderTest, AnEndlessBodyOfARedirectIsRefused)
{
    Server.Serve("/first",
                 {.Status = 302, .Body = QByteArray(50000, 'r'), .Headers = {{"Location", "/end"}}, .Endless = true});
    Server.Serve("/end", {.Body = "here"});
    QByteArray body;
    EXPECT_FALSE(Get(Server.URL(u"/first"_s), &body));
    EXPECT_EQ(Transport->Answer().Failure, dfTooLarge);
    EXPECT_TRUE(body.isEmpty());
}

TEST_P(DownloaderTest, RepeatsAFormOnlyWhereTheRedirectSaysSo)
{
    Server.Serve("/302", {.Status = 302, .Headers = {{"Location", "/end"}}});
    Server.Serve("/307", {.Status = 307, .Headers = {{"Location", "/end"}}});
    Server.Serve("/end", {.Body = "x"});
    Transport->SetPostQuery(u"a=1"_s);
    EXPECT_TRUE(Get(Server.URL(u"/302"_s)));
    EXPECT_EQ(Server.Log().back().Method, "GET");
    EXPECT_TRUE(Get(Server.URL(u"/307"_s)));
    EXPECT_EQ(Server.Log().back().Method, "POST");
    EXPECT_EQ(Server.Log().back().Body, "a=1");
}

TEST_P(DownloaderTest, FollowsTenRedirectsAndNoMore)
{
    Server.SetHandler([](const Kit::TWebRequest& request) {
        const int left = request.Path.mid(1).toInt();
        Kit::TWebAnswer answer{.Status = left > 0 ? 302 : 200, .Body = "end"};
        answer.Headers.append({"Location", "/" + QByteArray::number(left - 1)});
        return answer;
    });
    EXPECT_TRUE(Get(Server.URL(u"/10"_s)));
    EXPECT_FALSE(Get(Server.URL(u"/11"_s)));
}

struct TFailureRow {
    const char* Name;
    Kit::TWebAnswer Answer;
    TDownloadFailure Failure;
    TDownloaderErrorType Type;
    int Status;
};

TEST_P(DownloaderTest, TellsWhyARequestBroughtNothing)
{
    const TFailureRow rows[] = {
        {"missing", {.Status = 404, .Body = "no"}, dfHTTP, detHTTPError, 404},
        {"busy", {.Status = 503}, dfHTTP, detHTTPError, 503},
        {"no content is no success", {.Status = 204}, dfHTTP, detHTTPError, 204},
        {"cut off", {.Body = QByteArray(5000, 'a'), .CutAfter = 100}, dfCutOff, detConnectionLost, 200},
        {"longer than told", {.Body = "ab", .ToldLength = 50}, dfCutOff, detConnectionLost, 200},
        {"silent", {.Body = "x", .SilentAfter = true}, dfTimeout, detConnectionLost, 200},
        {"dripping", {.Body = QByteArray(100000, 'd'), .DripMs = 20}, dfTooSlow, detConnectionLost, 200},
        {"endless", {.Body = QByteArray(100000, 'e'), .Endless = true}, dfTooLarge, detHTTPError, 200},
        {"to a file", {.Status = 302, .Headers = {{"Location", "file:///etc/passwd"}}}, dfBadURL, detHTTPError, 302},
    };
    Transport->SetMaxBytes(1'000'000);
    for (const TFailureRow& row : rows) {
        SCOPED_TRACE(row.Name);
        Server.Serve("/", row.Answer);
        TDownloaderErrorType type = detNone;
        Transport->SetErrorEvent([&](TDownloader&, TDownloaderErrorType told, int, const QString&) { type = told; });
        EXPECT_FALSE(Get(Server.URL()));
        EXPECT_EQ(Transport->Answer().Failure, row.Failure) << Transport->Answer().Reason.toStdString();
        EXPECT_EQ(Transport->Answer().Status, row.Status);
        EXPECT_EQ(type, GetParam().Major < 10 ? row.Type : detHTTPError) << "one kind for the platform's transport";
        EXPECT_FALSE(Transport->Answer().Reason.isEmpty());
        EXPECT_EQ(Transport->Answer().Reason.startsWith(u"the answer is too large"_s), row.Failure == dfTooLarge);
    }
    Transport->SetErrorEvent({});
    EXPECT_FALSE(Get(u"file:///etc/passwd"_s));
    EXPECT_EQ(Transport->Answer().Failure, dfBadURL);
    EXPECT_FALSE(Get(u"http://127.0.0.1:1/"_s));
    EXPECT_EQ(Transport->Answer().Failure, dfNoConnection);
    EXPECT_FALSE(Get(u"http://nowhere.invalid/"_s));
    EXPECT_THAT(Transport->Answer().Failure, testing::AnyOf(dfNoHost, dfTimeout)) << "as soon as the resolver knows";
}

TEST_P(DownloaderTest, EncodesWhatIsNotLegalInAnAddress)
{
    Server.SetHandler([](const Kit::TWebRequest&) { return Kit::TWebAnswer{}; });
    ASSERT_TRUE(Get(Server.URL(u"/q?a=country:de AND \"ü\"&b=%2B+c|d"_s)));
    EXPECT_EQ(Server.Log().back().Target, "/q?a=country:de%20AND%20%22%C3%BC%22&b=%2B+c%7Cd");
}

TEST_P(DownloaderTest, SendsItsAgentAndForms)
{
    Server.SetHandler([](const Kit::TWebRequest&) { return Kit::TWebAnswer{}; });
    Transport->SetPostQuery(u"a=1 2"_s);
    ASSERT_TRUE(Get(Server.URL()));
    auto request = Server.Log().back();
    EXPECT_EQ(request.Method, "POST");
    EXPECT_EQ(request.Headers["content-type"], "application/x-www-form-urlencoded");
    const bool older = GetParam().Major < 10;
    EXPECT_EQ(request.Body, older ? "a=1 2" : "a=1%202");
    EXPECT_TRUE(request.Headers["user-agent"].startsWith(older ? "Kestrune [SB]v" : ""));
    Transport->Clear();
    Transport->SetAgent(u"Kestrune/test"_s);
    ASSERT_TRUE(Get(Server.URL()));
    request = Server.Log().back();
    EXPECT_EQ(request.Method, "GET");
    EXPECT_EQ(request.Headers["user-agent"], "Kestrune/test");
}

TEST_P(DownloaderTest, SharesCookiesThroughTheManager)
{
    Server.SetHandler([](const Kit::TWebRequest&) {
        return Kit::TWebAnswer{.Headers = {{"Set-Cookie", "key=value; Path=/"}}};
    });
    ASSERT_TRUE(Get(Server.URL()));
    const auto second = ChooseDownloaderClass(GetParam())(Cookies.get());
    QBuffer buffer;
    buffer.open(QIODevice::ReadWrite);
    second->SetURL(Server.URL());
    ASSERT_TRUE(second->DownloadAsStream(buffer));
    EXPECT_EQ(Server.Log().back().Headers["cookie"], "key=value");
}

TEST_P(DownloaderTest, KeepsTheTailOfAFileOnlyWithTheOlderTransport)
{
    const Kit::TTempDir dir;
    const QString path = dir.Write(u"file"_s, "0123456789");
    Server.Serve("/", {.Body = "abc"});
    Transport->SetFilename(path);
    Transport->SetURL(Server.URL());
    int size = 0;
    Transport->SetOnDoneFileEvent([&](TDownloader&, const QString&, int told) { size = told; });
    ASSERT_TRUE(Transport->DownloadBinary(false));
    const bool older = GetParam().Major < 10;
    EXPECT_EQ(Kit::ReadAll(path), older ? "abc3456789" : "abc");
    EXPECT_GT(size, 0);
    Transport->SetFilename(dir.File(u"new"_s));
    ASSERT_TRUE(Transport->DownloadBinary(false));
    EXPECT_EQ(Kit::ReadAll(dir.File(u"new"_s)), "abc");
    Transport->SetFilename(dir.Path());
    EXPECT_FALSE(Transport->DownloadBinary(false));
}

TEST_P(DownloaderTest, DecodesLinesByTheCodePage)
{
    Server.Serve("/utf8", {.Body = "\xEF\xBB\xBFgr\xC3\xBC\xC3\x9F\r\nb"});
    Server.Serve("/1251", {.Body = "\xCC\xE8\xF0"});
    Server.Serve("/932", {.Body = "\x93\xFA"});
    Server.Serve("/refused", {.Status = 403, .Body = "why"});
    const auto lines = [&](const QString& path, int codePage) {
        QStringList list;
        Transport->SetURL(Server.URL(path));
        Transport->DownloadAsTStrings(list, codePage);
        return list;
    };
    EXPECT_EQ(lines(u"/utf8"_s, -1), (QStringList{u"grüß"_s, u"b"_s}));
    EXPECT_EQ(lines(u"/utf8"_s, 65001), (QStringList{u"grüß"_s, u"b"_s}));
    EXPECT_EQ(lines(u"/1251"_s, 1251), QStringList{u"Мир"_s});
    EXPECT_EQ(lines(u"/932"_s, 932), QStringList{u"日"_s});
    EXPECT_EQ(lines(u"/refused"_s, -1), QStringList{u"why"_s});
    Server.Serve("/blank", {.Body = "a\r\n\r\nb\n"});
    EXPECT_EQ(lines(u"/blank"_s, -1), (QStringList{u"a"_s, QString(), u"b"_s}));
    EXPECT_THROW(lines(u"/utf8"_s, 4711), EInvalidEncoding);
}

TEST_P(DownloaderTest, TakesEveryCertificateUnlessToldOtherwise)
{
    const Kit::TTempDir dir;
    Kit::MakeCertificate(dir.File(u"cert.pem"_s), dir.File(u"key.pem"_s));
    Kit::TWebServer secure(dir.File(u"cert.pem"_s), dir.File(u"key.pem"_s));
    secure.Serve("/", {.Body = "safe"});
    QStringList log;
    SetDebugLogSink([&](const QString& line) { log.append(line); });
    QByteArray body;
    EXPECT_TRUE(Get(secure.URL(), &body));
    EXPECT_EQ(body, "safe");
    EXPECT_THAT(log.join(u'\n').toStdString(), testing::HasSubstr("certificate of 127.0.0.1"));
    EXPECT_EQ(secure.Log().size(), 1) << "the request goes out once";

    const auto strict = [&](const QString& trusted, const QString& url) {
        TNetworkSettings settings;
        settings.VerifyCertificates = true;
        settings.CertificateFile = trusted;
        SetNetworkSettings(settings);
        Transport = ChooseDownloaderClass(GetParam())(Cookies.get());
        return Get(url);
    };
    EXPECT_FALSE(strict({}, secure.URL()));
    EXPECT_EQ(Transport->Answer().Failure, dfCertificate);
    EXPECT_TRUE(strict(dir.File(u"cert.pem"_s), secure.URL()));
    Kit::MakeCertificate(dir.File(u"other.pem"_s), dir.File(u"otherkey.pem"_s), u"other.invalid"_s);
    Kit::TWebServer other(dir.File(u"other.pem"_s), dir.File(u"otherkey.pem"_s));
    other.Serve("/", {});
    EXPECT_FALSE(strict(dir.File(u"other.pem"_s), other.URL(u"/"_s, u"localhost"_s)))
        << "a name that the certificate does not have";
}

TEST_P(DownloaderTest, GoesThroughAProxyWhereOneIsGiven)
{
    Server.SetHandler([](const Kit::TWebRequest&) { return Kit::TWebAnswer{.Body = "proxied"}; });
    TNetworkSettings settings;
    settings.ProxyHost = u"127.0.0.1"_s;
    settings.ProxyPort = Server.Port();
    settings.ProxyUsername = u"user"_s;
    settings.ProxyPassword = u"secret"_s;
    SetNetworkSettings(settings);
    Transport = ChooseDownloaderClass(GetParam())(Cookies.get());
    QByteArray body;
    ASSERT_TRUE(Get(u"http://somewhere.invalid/path"_s, &body));
    EXPECT_EQ(body, "proxied");
    auto request = Server.Log().back();
    EXPECT_EQ(request.Target, "http://somewhere.invalid/path");
    EXPECT_EQ(request.Headers["proxy-authorization"], "Basic " + QByteArray("user:secret").toBase64());
}

TEST_P(DownloaderTest, AThreadRunsItsEventsOnTheMainThreadAndStopsAtOnce)
{
    const Kit::TTempDir dir;
    Server.Serve("/", {.Body = QByteArray(200000, 'p')});
    const auto run = [&](bool stop) {
        TDownloaderThread thread(ChooseDownloaderClass(GetParam()), Cookies.get());
        thread.Downloader().SetURL(Server.URL());
        thread.Downloader().SetFilename(dir.File(u"got"_s));
        QStringList events;
        thread.FProgressEvent = [&](TDownloader&, const QString&, int total, int read, int, int, quint8, float) {
            EXPECT_TRUE(OnMainThread());
            EXPECT_LE(read, std::max(total, read));
            if (stop)
                thread.Terminate();
        };
        thread.FDoneFileEvent = [&](TDownloader&, const QString&, int size) { events << u"done %1"_s.arg(size); };
        thread.FErrorEvent = [&](TDownloader&, TDownloaderErrorType type, int, const QString&) {
            events << u"error %1"_s.arg(static_cast<int>(type));
        };
        QEventLoop loop;
        thread.OnTerminate = [&] { loop.quit(); };
        thread.Start();
        loop.exec();
        return events;
    };
    EXPECT_EQ(run(false), QStringList{u"done 200000"_s});
    Server.Serve("/", {.Body = QByteArray(200000, 'p'), .Endless = true});
    EXPECT_EQ(run(true), QStringList{u"error 3"_s});
}

TEST(TransportChoice, GoesByTheVersionOfTheSystem)
{
    const auto isPlatform = [](TSystemVersion version) {
        return dynamic_cast<TD10_4_Downloader*>(ChooseDownloaderClass(version)(nullptr).get()) != nullptr &&
               dynamic_cast<TD10_4_CookieManager*>(ChooseCookieManagerClass(version)().get()) != nullptr;
    };
    EXPECT_TRUE(isPlatform({10, 0}));
    EXPECT_TRUE(isPlatform({6, 3}));
    EXPECT_FALSE(isPlatform({6, 2}));
    EXPECT_FALSE(isPlatform({5, 9}));
    EXPECT_TRUE(isPlatform({}));
}

TEST(SecureBridge, SendsEachHeaderOfItsList)
{
    Kit::TWebServer server;
    server.Serve("/", {});
    TSecureBridge_Downloader transport(nullptr);
    transport.SetHeaders(u"A:1;B:2"_s);
    transport.SetReferer(u"http://from.invalid/"_s);
    transport.SetAcceptTypes(u"text/xml"_s);
    transport.SetURL(server.URL());
    QBuffer buffer;
    buffer.open(QIODevice::ReadWrite);
    ASSERT_TRUE(transport.DownloadAsStream(buffer));
    auto headers = server.Log().back().Headers;
    EXPECT_EQ(headers["a"], "1");
    EXPECT_EQ(headers["b"], "2");
    EXPECT_EQ(headers["referer"], "http://from.invalid/");
    EXPECT_EQ(headers["accept"], "text/xml");
}

TEST(ConnectionTest, IsGoodWhenTheFileArrives)
{
    Kit::TWebServer server;
    server.Serve("/", {.Body = "here"});
    EXPECT_TRUE(TestConnection(server.URL()));
    EXPECT_FALSE(TestConnection(server.URL(u"/missing"_s)));
}

} // namespace
