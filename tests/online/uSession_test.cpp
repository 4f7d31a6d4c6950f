// SPDX-License-Identifier: GPL-3.0-or-later
#include "uDefaults.h"
#include "uHostLimiter.h"
#include "uInfoGrabber.h"
#include "uKRNParams.h"
#include "uSearchParams.h"
#include "uSession.h"
#include "uTestFiles.h"
#include "uWebServer.h"
#include "uXml.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include <thread>

using namespace Kestrune;
using namespace Qt::StringLiterals;

namespace {

class SessionTest : public testing::Test {
protected:
    SessionTest() { HostLimiter().Clear(); }
    ~SessionTest() override
    {
        SetHttpStandIn(nullptr);
        SetHttpObserver(nullptr);
        Defaults().OEM = {};
    }

    THttpAnswer Ask(const QString& url, QByteArray* body = nullptr, qint64 maxBytes = 0)
    {
        QByteArray into;
        THttpRequest request;
        request.URL = url;
        request.MaxBytes = maxBytes;
        const THttpAnswer answer = THttpClient(nullptr).Perform(request, [&](const char* bytes, qint64 size) {
            into.append(bytes, size);
            return true;
        });
        if (body)
            *body = into;
        return answer;
    }
    void Replay(const QByteArray& lines)
    {
        Dir.Write(u"session.tsv"_s, lines);
        const auto player = std::make_shared<TSessionPlayer>(Dir.Path());
        player->OnMissing = [this](const QString& url) { Missing << url; };
        SetHttpStandIn(player);
    }
    QByteArray Recorded() const { return Kit::ReadAll(Dir.File(u"session.tsv"_s)); }

    Kit::TTempDir Dir;
    Kit::TWebServer Server;
    QStringList Missing;
};

TEST_F(SessionTest, TheFirstLineThatFitsAnswers)
{
    for (const char* name : {"a", "b", "c", "d", "e"})
        Dir.Write(QString::fromLatin1(name), name);
    Replay("# a comment\n\n"
           "http://h/exact?q=1\t200\ttext/plain\ta\r\n"
           "http://h/*?key=*&q=x\t200\t\tb\n"
           "http://h/aXa*aXa\t200\t\tc\n"
           "http://h/\xC3\xBC q\t200\t\td\n"
           "*/again/*/again/*\t200\t\te\n"
           "http://h/exact?q=1\t200\ttext/plain\tb\n");
    const std::pair<const char16_t*, const char*> rows[] = {
        {u"http://h/exact?q=1", "a"},
        {u"http://h/exact?q=12", ""},
        {u"http://h/s?key=&q=x", "b"},
        {u"http://h/s?key=a&key=b&q=x", "b"},
        {u"http://h/s?key=a&q=xy", ""},
        {u"http://h/aXaaXa", "c"},
        {u"http://h/aXa", ""}, // front and end may not overlap
        {u"http://h/ü q", "d"},
        {u"http://h/%C3%BC%20q", "d"},
        {u"http://h/again/1/again/", "e"},
        {u"http://h/again/", ""},
    };
    for (const auto& [url, expected] : rows) {
        SCOPED_TRACE(QString::fromUtf16(url).toStdString());
        QByteArray body;
        Missing.clear();
        const THttpAnswer answer = Ask(QString::fromUtf16(url), &body);
        EXPECT_EQ(body, expected);
        EXPECT_EQ(answer.Failure, body.isEmpty() ? dfHTTP : dfNone);
        EXPECT_EQ(answer.Status, body.isEmpty() ? 404 : 200);
        EXPECT_EQ(Missing.size(), body.isEmpty() ? 1 : 0);
    }
}

TEST_F(SessionTest, AnswersAsTheNetworkDoes)
{
    Dir.Write(u"sub/body"_s, QByteArray(1000, 'x'));
    Replay("http://h/ok\t200\ttext/xml; charset=utf-8\tsub/body\nhttp://h/busy\t503\nhttp://h/none\t204\t\t\n");
    const THttpAnswer whole = Ask(u"http://h/ok"_s);
    EXPECT_EQ(whole.ContentType, u"text/xml; charset=utf-8"_s);
    EXPECT_EQ(whole.ContentLength, 1000);
    QByteArray body;
    EXPECT_EQ(Ask(u"http://h/ok"_s, &body, 999).Failure, dfTooLarge);
    EXPECT_TRUE(body.isEmpty());
    EXPECT_EQ(Ask(u"http://h/ok"_s, &body, 1000).Failure, dfNone);
    for (const int status : {503, 204}) {
        const THttpAnswer answer = Ask(status == 503 ? u"http://h/busy"_s : u"http://h/none"_s, &body);
        EXPECT_EQ(answer.Status, status);
        EXPECT_EQ(answer.Failure, dfHTTP);
        EXPECT_FALSE(answer.Reason.isEmpty());
        EXPECT_TRUE(body.isEmpty());
    }
}

struct TBadSessionRow {
    const char* Name;
    QByteArray Text;
    const char* Says;
};

TEST_F(SessionTest, RefusesWhatIsNoSession)
{
    Kit::TTempDir outside;
    outside.Write(u"secret"_s, "secret");
    ASSERT_TRUE(QFile::link(outside.File(u"secret"_s), Dir.File(u"link"_s)));
    ASSERT_TRUE(QFile::link(outside.Path(), Dir.File(u"folder"_s)));
    ASSERT_TRUE(QDir(Dir.Path()).mkdir(u"empty"_s));
    const QByteArray secret = outside.File(u"secret"_s).toUtf8();
    const TBadSessionRow rows[] = {
        {"one column", "# c\nhttp://h/\n", "line 2"},
        {"five columns", "http://h/\t200\t\t\tx\n", "line 1"},
        {"no number", "http://h/\tOK\n", "status"},
        {"no status", "http://h/\t99\n", "status"},
        {"absolute path", "http://h/\t200\t\t" + secret + "\n", "outside"},
        {"above the folder", "http://h/\t200\t\t../x\n", "outside"},
        {"above by a detour", "http://h/\t200\t\tempty/../../x\n", "outside"},
        {"a link to a file", "http://h/\t200\t\tlink\n", "outside"},
        {"a link to a folder", "http://h/\t200\t\tfolder/secret\n", "outside"},
        {"a folder", "http://h/\t200\t\tempty\n", "no file"},
        {"no file", "http://h/\t200\t\tmissing\n", "no file"},
        {"a long line", "http://h/" + QByteArray(MaxSessionLine, 'a') + "\t200\n", "too long"},
        {"many lines", QByteArray(MaxSessionLines + 1, '\n'), "too large"},
        {"many bytes", QByteArray(MaxSessionBytes + 1, '#'), "too large"},
    };
    for (const TBadSessionRow& row : rows) {
        SCOPED_TRACE(row.Name);
        try {
            Replay(row.Text);
            ADD_FAILURE() << "taken";
        } catch (const ESessionError& error) {
            EXPECT_NE(std::string(error.what()).find(row.Says), std::string::npos) << error.what();
        }
        EXPECT_THROW(TSessionRecorder(Dir.Path()), ESessionError) << "nothing is added to it";
    }
    EXPECT_THROW(TSessionPlayer(Dir.File(u"nowhere"_s)), ESessionError);
    EXPECT_THROW(TSessionRecorder(Dir.File(u"link"_s)), ESessionError);
}

TEST_F(SessionTest, AFileThatLeavesTheFolderLaterIsNotRead)
{
    Kit::TTempDir outside;
    const QString body = Dir.Write(u"body"_s, "in");
    Replay("*\t200\t\tbody\n");
    QFile::remove(body);
    ASSERT_TRUE(QFile::link(outside.Write(u"secret"_s, "secret"), body));
    QByteArray answered;
    EXPECT_EQ(Ask(u"http://h/"_s, &answered).Failure, dfOther);
    EXPECT_TRUE(answered.isEmpty());
}

TEST_F(SessionTest, RecordsWhatItReplays)
{
    const QByteArray picture = Kit::MakePicture(30, 20, "PNG");
    Server.Serve("/json", {.Body = R"({"a":"ü"})", .Type = "application/json", .Gzip = true});
    Server.Serve("/picture", {.Body = picture, .Type = "image/png"});
    Server.Serve("/empty", {.Status = 404, .Type = "text/x"});
    Server.Serve("/cut", {.Body = "abc", .ToldLength = 50});
    const QString urls[] = {Server.URL(u"/json?q=ü \"x\""_s), Server.URL(u"/picture"_s), Server.URL(u"/empty"_s)};
    const QString folder = Dir.File(u"new/session"_s);
    const auto recorder = std::make_shared<TSessionRecorder>(folder);
    SetHttpObserver(recorder);
    struct TSeen {
        QByteArray Body;
        THttpAnswer Answer;
    };
    std::vector<TSeen> seen;
    for (const QString& url : urls) {
        TSeen& each = seen.emplace_back();
        each.Answer = Ask(url, &each.Body);
    }
    EXPECT_EQ(Ask(Server.URL(u"/cut"_s)).Failure, dfCutOff);
    EXPECT_TRUE(recorder->Error().isEmpty());
    SetHttpObserver(nullptr);
    const int asked = static_cast<int>(Server.Log().size());
    SetHttpStandIn(std::make_shared<TSessionPlayer>(folder));
    for (size_t i = 0; i < seen.size(); ++i) {
        QByteArray body;
        const THttpAnswer answer = Ask(urls[i], &body);
        EXPECT_EQ(body, seen[i].Body);
        EXPECT_EQ(answer.Status, seen[i].Answer.Status);
        EXPECT_EQ(answer.Failure, seen[i].Answer.Failure);
        EXPECT_EQ(answer.ContentType, seen[i].Answer.ContentType);
    }
    EXPECT_EQ(Ask(Server.URL(u"/cut"_s)).Status, 404) << "half an answer is none";
    EXPECT_EQ(Server.Log().size(), asked);
}

TEST_F(SessionTest, LeavesPrivateKeysOut)
{
    Defaults().OEM.DISCOGS_API_KEY = u"private key"_s;
    Defaults().OEM.LAST_FM_API_KEY = u"private key & more"_s;
    Server.SetHandler([](const Kit::TWebRequest&) {
        return Kit::TWebAnswer{.Body = R"({"next":"/p?key=private+key","k":"private key","me":"ab"})"};
    });
    TKRNParams params;
    params.AddPrivateKeysToParams();
    params.Add(u"SIGNATURE"_s, u"sig%2Bned"_s);
    const auto recorder = std::make_shared<TSessionRecorder>(Dir.Path());
    recorder->Hide(u"sig%2Bned"_s);
    SetHttpObserver(recorder);
    const QString url =
        Server.URL(u"/?a=%DISCOGS_API_KEY%&b=%LAST_FM_API_KEY%&c=private key&s=%SIGNATURE%&t=%UTC_TIMESTAMP%&q=1"_s);
    Ask(params.ReplaceWithParams(url));
    const QByteArray expected = Server.URL(u"/?a=*&b=*&c=*&s=*&t=*&q=1"_s).toUtf8() + "\t200\t";
    EXPECT_TRUE(Recorded().contains(expected)) << Recorded().toStdString();
    for (const QString& name : QDir(Dir.Path()).entryList(QDir::Files)) {
        const QByteArray bytes = Kit::ReadAll(Dir.File(name));
        EXPECT_FALSE(bytes.contains("private")) << name.toStdString() << ": " << bytes.toStdString();
    }
    SetHttpObserver(nullptr);
    Defaults().OEM = {};
    Replay(Recorded());
    QByteArray body;
    EXPECT_EQ(Ask(TKRNParams().ReplaceWithParams(Server.URL(u"/?a=&b=&c=&s=&t=2020&q=1"_s)), &body).Status, 200);
    EXPECT_TRUE(body.contains("\"me\":\"ab\""));
}

TEST_F(SessionTest, ALaterAnswerTakesThePlaceOfAnOlderOne)
{
    const QByteArray own = "# mine\nhttp://other/\t200\n" + Server.URL(u"/x"_s).toUtf8() + "\t500\n";
    Dir.Write(u"session.tsv"_s, own);
    Server.Serve("/x", {.Body = "new"});
    SetHttpObserver(std::make_shared<TSessionRecorder>(Dir.Path()));
    Ask(Server.URL(u"/x"_s));
    Ask(Server.URL(u"/x"_s));
    const QByteArray text = Recorded();
    EXPECT_TRUE(text.startsWith("# mine\nhttp://other/\t200\n"));
    EXPECT_EQ(text.count("/x\t"), 1);
    EXPECT_EQ(text.count("/x\t200"), 1);
}

TEST_F(SessionTest, ThreadsRecordIntoOneFolder)
{
    Server.SetHandler([](const Kit::TWebRequest& request) { return Kit::TWebAnswer{.Body = request.Path}; });
    const auto recorder = std::make_shared<TSessionRecorder>(Dir.Path());
    SetHttpObserver(recorder);
    {
        std::vector<std::jthread> threads;
        for (int i = 0; i < 8; ++i)
            threads.emplace_back([&, i] { Ask(Server.URL(u"/%1"_s.arg(i))); });
    }
    EXPECT_TRUE(recorder->Error().isEmpty());
    SetHttpObserver(nullptr);
    SetHttpStandIn(std::make_shared<TSessionPlayer>(Dir.Path()));
    for (int i = 0; i < 8; ++i) {
        QByteArray body;
        Ask(Server.URL(u"/%1"_s.arg(i)), &body);
        EXPECT_EQ(body, "/" + QByteArray::number(i));
    }
}

TEST_F(SessionTest, TellsWhenAnAnswerCannotBeWritten)
{
    Server.Serve("/", {.Body = "x"});
    const QString folder = Dir.File(u"gone/deep"_s);
    const auto recorder = std::make_shared<TSessionRecorder>(folder);
    ASSERT_TRUE(QDir(folder).removeRecursively());
    SetHttpObserver(recorder);
    EXPECT_EQ(Ask(Server.URL()).Status, 200) << "the request itself goes on";
    EXPECT_FALSE(recorder->Error().isEmpty());
}

TEST(SearchParams, FillEveryPlaceholderOfASearch)
{
    const auto document =
        TXmlDocument::Parse("<search url='x' Sign='%ARTIST%/%DISCID%' signprivatekey='key' signmethod='SHA256'/>");
    const auto action = TInfoGrabberServiceAction::FromElement(document->Root(), u"s"_s, satSearch);
    const QString text = u"%BARCODE%|%CATNO%|%ARTIST%|%RELEASE_TITLE%|%DISCID%|%TOC%|%TOC_MICROSOFT%|%TOC_DECIMAL%|"
                         "%ARTIST_QUERY%"_s;
    TKRNParams params;
    params.Add(u"ARTIST"_s, u"of the request before"_s);
    FillSearchParams(params, {.Barcode = u"1"_s, .CatalogNo = {}, .Artist = u"A-B"_s, .Release = u"R"_s, .Disc = {}},
                     *action);
    EXPECT_EQ(params.ReplaceWithParams(text), u"1||A-B|R|%DISCID%|%TOC%|%TOC_MICROSOFT%|%TOC_DECIMAL%|A%5C-B"_s);
    // Signed before the disc is there.
    EXPECT_EQ(params.ReplaceWithParams(u"%SIGNATURE%"_s),
              EncodeParamValue(SignData(u"A-B/%DISCID%"_s, u"key"_s, u"SHA256"_s)));
    TSearchWords disc;
    disc.Disc = TDiscWords{u"id-"_s, u"96 1"_s, u"1 2"_s, u"1+2"_s};
    FillSearchParams(params, disc, *action);
    EXPECT_EQ(params.ReplaceWithParams(text), u"||||id-|96+1|1+2|1+2|"_s);
}

} // namespace
