// SPDX-License-Identifier: GPL-3.0-or-later
#include "uDownloadQueue.h"
#include "uHostLimiter.h"
#include "uJSONToXML.h"
#include "uTestFiles.h"
#include "uWebServer.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

#include <gtest/gtest.h>

using namespace Kestrune;
using namespace Qt::StringLiterals;

namespace {

int Alive = 0; // message objects that were not freed

struct TNumbered final : TMessageObject {
    explicit TNumbered(int number) : Number(number) { ++Alive; }
    ~TNumbered() override { --Alive; }
    int Number;
};

class TReceiver final : public TMessageReceiver {
public:
    struct TGot {
        int Message, Number;
        QString Text;
        QSize Image;
    };
    std::vector<TGot> Got;

    void HandleMessage(TUserMessage& message) override
    {
        TGot got{message.Number, static_cast<TNumbered&>(*message.LParam).Number, {}, {}};
        if (const auto* text = dynamic_cast<TTextAnswer*>(message.WParam.get()))
            got.Text = text->Lines.join(u'|');
        if (const auto* picture = dynamic_cast<TPictureAnswer*>(message.WParam.get()))
            got.Image = picture->Image.size();
        Got.push_back(got);
    }
};

class QueueTest : public testing::Test {
protected:
    QueueTest()
    {
        HostLimiter().Clear();
        Alive = 0;
        Queue->SetMaxSimultaneousThreads(5);
        Queue->OnStarted = [this] { Events << u"started"_s; };
        Queue->OnAllThreadsTerminated = [this] {
            Events << u"finished"_s;
            Loop.quit();
        };
        Queue->SetOnJobEvent([this](const TJobReport& report) { Reports.push_back(report); });
    }
    ~QueueTest() override
    {
        Queue.reset();
        QCoreApplication::processEvents();
        EXPECT_EQ(Alive, 0);
        HostLimiter().Clear();
    }

    void Add(const QString& path, int number, TDownloaderClass kind = MakeDownloader<TTextDownloader>, int id = 0x403)
    {
        Queue->AddDownloader(kind, Server.URL(path), {}, id, std::make_unique<TNumbered>(number));
    }
    void RunToEnd()
    {
        Queue->Run();
        if (Queue->RunningThreadsCount() > 0)
            Loop.exec();
        QCoreApplication::processEvents();
    }

    Kit::TWebServer Server;
    TReceiver Receiver;
    std::unique_ptr<TDownloadQueue> Queue = std::make_unique<TDownloadQueue>(Receiver.Handle());
    QEventLoop Loop;
    QStringList Events;
    std::vector<TJobReport> Reports;
};

TEST_F(QueueTest, AnEmptyRunStartsAndFinishesAtOnce)
{
    Queue->Run();
    EXPECT_EQ(Events, (QStringList{u"started"_s, u"finished"_s}));
}

TEST_F(QueueTest, EqualAddressesAreOneRequestWithAnAnswerForEachAsker)
{
    Server.Serve("/cover", {.Body = Kit::MakePicture(30, 20, "PNG"), .Type = "image/png"});
    Add(u"/cover"_s, 1, MakeDownloader<TPictureDownloader>, 0x405);
    Add(u"/cover"_s, 2, MakeDownloader<TPictureDownloader>, 0x406);
    EXPECT_EQ(Queue->GetCount(), 1);
    RunToEnd();
    EXPECT_EQ(Server.Count("/cover"), 1);
    ASSERT_EQ(Receiver.Got.size(), 2U);
    EXPECT_EQ(Receiver.Got[0].Message, 0x405);
    EXPECT_EQ(Receiver.Got[0].Number, 1);
    EXPECT_EQ(Receiver.Got[1].Message, 0x406);
    EXPECT_EQ(Receiver.Got[1].Number, 2);
    EXPECT_EQ(Receiver.Got[1].Image, QSize(30, 20));
}

TEST_F(QueueTest, RunsFiveAtATimeAndThenTheRest)
{
    Server.SetHandler([](const Kit::TWebRequest&) { return Kit::TWebAnswer{.Body = "x", .DelayMs = 60}; });
    std::vector<int> totals;
    Queue->FOnThreadsCountChange = [&](int finished, int running, int total) {
        EXPECT_EQ(finished, total - running);
        EXPECT_LE(running, 5);
        totals.push_back(total);
    };
    for (int i = 0; i < 8; ++i)
        Add(u"/%1"_s.arg(i), i);
    RunToEnd();
    EXPECT_EQ(Receiver.Got.size(), 8U);
    EXPECT_EQ(Server.MostAtOnce(), 5);
    EXPECT_EQ(totals, (std::vector{8, 7, 6, 5, 4, 3, 2, 1}));
    EXPECT_EQ(Events, (QStringList{u"started"_s, u"finished"_s}));
}

// Answers with what it read and on which thread.
struct TReading final : TAnswerRequest {
    std::unique_ptr<TMessageObject> Read(const TTextAnswer& text, bool isRefusal) const override
    {
        if (isRefusal && text.Lines.value(0) != u"unknown"_s)
            return nullptr;
        return std::make_unique<TTextAnswer>(
            QStringList{text.Lines.join(u'|'), OnMainThread() ? u"main"_s : u"beside"_s});
    }
};

TEST_F(QueueTest, AnswersAreReadOnTheThreadOfTheirJob)
{
    struct TKeeping final : TMessageReceiver {
        QStringList Got;
        void HandleMessage(TUserMessage& message) override
        {
            Got.append(static_cast<TTextAnswer&>(*message.WParam).Lines.join(u' '));
        }
    } keeping;
    TDownloadQueue queue(keeping.Handle());
    queue.OnAllThreadsTerminated = [this] { Loop.quit(); };
    Server.Serve("/ok", {.Body = "a\nb"});
    Server.Serve("/400", {.Status = 400, .Body = "unknown"});
    Server.Serve("/404", {.Status = 404, .Body = "no page"});
    Server.Serve("/500", {.Status = 500, .Body = "unknown"});
    for (const QString& path : {u"/ok"_s, u"/400"_s, u"/404"_s, u"/500"_s})
        queue.AddDownloader(MakeDownloader<TTextDownloader>, Server.URL(path), {}, 1, std::make_unique<TReading>());
    queue.Run();
    Loop.exec();
    QCoreApplication::processEvents();
    EXPECT_EQ(keeping.Got, (QStringList{u"a|b beside"_s, u"unknown beside"_s}));
}

TEST_F(QueueTest, FailuresAreSilentAndTheirReasonIsReported)
{
    Server.Serve("/404", {.Status = 404, .Body = "none"});
    Server.Serve("/nopicture", {.Body = "text"});
    Server.Serve("/ok", {.Body = "a\nb"});
    Add(u"/404"_s, 1);
    Add(u"/nopicture"_s, 2, MakeDownloader<TPictureDownloader>);
    Add(u"/ok"_s, 3);
    RunToEnd();
    ASSERT_EQ(Receiver.Got.size(), 1U);
    EXPECT_EQ(Receiver.Got[0].Text, u"a|b"_s);
    const auto last = [&](const QString& path) {
        TJobReport report;
        for (const TJobReport& item : Reports)
            if (item.URL == Server.URL(path))
                report = item;
        return report;
    };
    EXPECT_EQ(last(u"/404"_s).Failure, dfHTTP);
    EXPECT_EQ(last(u"/404"_s).Status, 404);
    EXPECT_EQ(last(u"/nopicture"_s).Failure, dfNotReadable);
    EXPECT_EQ(last(u"/ok"_s).State, jsDone);
}

TEST_F(QueueTest, JobsAddedWhileOthersRunAreStartedByThem)
{
    Server.SetHandler([](const Kit::TWebRequest&) { return Kit::TWebAnswer{.Body = "x", .DelayMs = 40}; });
    Queue->SetMaxSimultaneousThreads(1);
    Add(u"/1"_s, 1);
    Queue->Run();
    Add(u"/2"_s, 2);
    Queue->Run(); // there is no room
    Loop.exec();
    EXPECT_EQ(Receiver.Got.size(), 2U);
    EXPECT_EQ(Events, (QStringList{u"started"_s, u"finished"_s}));
}

TEST_F(QueueTest, AJobStartsAtOnceBesideOneThatHangs)
{
    Server.Serve("/hangs", {.Body = "x", .SilentAfter = true});
    Server.Serve("/quick", {.Body = "x"});
    Add(u"/hangs"_s, 1);
    Queue->Run();
    Add(u"/quick"_s, 2);
    Queue->Run();
    while (Receiver.Got.empty() && Queue->GetCount() == 2)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    ASSERT_EQ(Receiver.Got.size(), 1U);
    EXPECT_EQ(Receiver.Got[0].Number, 2);
    EXPECT_EQ(Events, (QStringList{u"started"_s}));
    Queue->Terminate();
    Loop.exec();
}

TEST_F(QueueTest, ADripDoesNotHoldUpTheOthersOfItsHost)
{
    HostLimiter().SetPatience(std::chrono::milliseconds(50));
    HostLimiter().SetPace(u"127.0.0.1"_s, 10);
    Server.Serve("/drip", {.Body = QByteArray(100000, 'd'), .DripMs = 20});
    Server.Serve("/quick", {.Body = "x"});
    for (int i = 0; i < 3; ++i)
        Add(i == 0 ? u"/drip"_s : u"/quick?%1"_s.arg(i), i);
    Queue->Run();
    while (Queue->GetCount() > 1)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    EXPECT_EQ(Receiver.Got.size(), 2U);
    Queue->Terminate();
    Loop.exec();
    HostLimiter().SetPatience(THostLimiter::DefaultPatience);
}

TEST_F(QueueTest, TerminateEndsRunningAndWaitingJobsWithoutAMessage)
{
    Server.SetHandler([](const Kit::TWebRequest&) { return Kit::TWebAnswer{.Body = "x", .SilentAfter = true}; });
    for (int i = 0; i < 12; ++i)
        Add(u"/%1"_s.arg(i), i);
    QTimer stop;
    stop.setInterval(5);
    QElapsedTimer clock;
    QObject::connect(&stop, &QTimer::timeout, [&] {
        if (Server.Log().size() < 5 || clock.isValid())
            return;
        clock.start();
        Queue->Terminate();
    });
    stop.start();
    RunToEnd();
    RecordProperty("milliseconds", static_cast<int>(clock.elapsed()));
    EXPECT_TRUE(Receiver.Got.empty());
    EXPECT_EQ(Server.Log().size(), 5) << "jobs that waited ask nobody";
}

TEST_F(QueueTest, NothingArrivesAtAReceiverThatIsGone)
{
    Server.SetHandler([](const Kit::TWebRequest&) { return Kit::TWebAnswer{.Body = "x"}; });
    {
        TReceiver gone;
        TDownloadQueue queue(gone.Handle());
        for (int i = 0; i < 6; ++i)
            queue.AddDownloader(MakeDownloader<TTextDownloader>, Server.URL(u"/%1"_s.arg(i)), {}, 1,
                                std::make_unique<TNumbered>(i));
        queue.Run();
    }
    QCoreApplication::processEvents();
    EXPECT_EQ(Alive, 0);
}

TEST_F(QueueTest, AHostIsAskedAtItsPaceByWhicheverJob)
{
    constexpr int pace = 150;
    HostLimiter().SetPace(u"127.0.0.1"_s, pace);
    Server.SetHandler([](const Kit::TWebRequest&) { return Kit::TWebAnswer{.Body = "x"}; });
    for (int i = 0; i < 5; ++i)
        Add(u"/service%1/x"_s.arg(i), i,
            i % 2 == 0 ? MakeDownloader<TTextDownloader> : MakeDownloader<TJSONTextDownloader>);
    RunToEnd();
    const auto log = Server.Log();
    ASSERT_EQ(log.size(), 5);
    for (qsizetype i = 1; i < log.size(); ++i)
        EXPECT_GE(log[i].Time - log[i - 1].Time, std::chrono::milliseconds(pace));
    EXPECT_EQ(Server.MostAtOnce(), 1);
    EXPECT_TRUE(std::ranges::any_of(Reports, [](const TJobReport& report) { return report.State == jsWaiting; }));
}

TEST_F(QueueTest, ABusyServerIsLeftAloneAsLongAsItAsks)
{
    Server.Serve("/busy", {.Status = 429, .Headers = {{"Retry-After", "1"}}});
    Server.Serve("/next", {.Body = "x"});
    Queue->SetMaxSimultaneousThreads(1);
    Add(u"/busy"_s, 1);
    Add(u"/next"_s, 2);
    RunToEnd();
    const auto log = Server.Log();
    ASSERT_EQ(log.size(), 2) << "the refused request is not repeated";
    EXPECT_GE(log[1].Time - log[0].Time, std::chrono::milliseconds(950));
    EXPECT_EQ(Receiver.Got.size(), 1U);
}

TEST_F(QueueTest, AWaitEndsAtOnceWithTheQueue)
{
    HostLimiter().Delay(u"127.0.0.1"_s, std::chrono::seconds(300));
    Add(u"/"_s, 1);
    Queue->SetOnJobEvent([this](const TJobReport& report) {
        if (report.State == jsWaiting)
            Queue->Terminate();
    });
    RunToEnd(); // would last five minutes
    EXPECT_TRUE(Server.Log().isEmpty());
}

TEST_F(QueueTest, HugeAndBrokenPicturesAreNone)
{
    QByteArray huge = Kit::MakePicture(4, 4, "BMP");
    const auto put = [&](qsizetype at, quint32 value) {
        for (int i = 0; i < 4; ++i)
            huge[at + i] = static_cast<char>(value >> (8 * i));
    };
    put(18, 20000);
    put(22, 20000);
    EXPECT_TRUE(DecodePicture(huge).isNull());
    EXPECT_TRUE(DecodePicture(Kit::MakePicture(40, 40, "JPG").left(60)).isNull());
    EXPECT_TRUE(DecodePicture({}).isNull());
    EXPECT_TRUE(DecodePicture("<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>").isNull());
    EXPECT_EQ(DecodePicture(Kit::MakePicture(1, 1, "PNG")).size(), QSize(1, 1));
}

} // namespace
