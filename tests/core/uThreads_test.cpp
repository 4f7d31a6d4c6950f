// SPDX-License-Identifier: GPL-3.0-or-later
#include "uDebugLog.h"
#include "uTestFiles.h"
#include "uThreads.h"

#include <QCoreApplication>
#include <QEventLoop>

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

class TJob final : public TThread {
public:
    explicit TJob(std::function<void(TJob&)> job) : FJob(std::move(job)) {}
    ~TJob() override
    {
        Terminate();
        WaitFor();
    }
    using TThread::Synchronize;

protected:
    void Execute() override { FJob(*this); }

private:
    std::function<void(TJob&)> FJob;
};

void RunUntilEnd(TJob& job)
{
    QEventLoop loop;
    job.OnTerminate = [&] { loop.quit(); };
    job.Start();
    loop.exec();
}

} // namespace

TEST(Threads, SynchronizeRunsOnTheMainThreadAndReturnsFailures)
{
    bool onMain = false;
    QString caught;
    TJob job([&](TJob& self) {
        self.Synchronize([&] { onMain = OnMainThread(); });
        try {
            self.Synchronize([] { throw std::runtime_error("full"); });
        } catch (const std::exception& failure) {
            caught = QString::fromUtf8(failure.what());
        }
    });
    RunUntilEnd(job);
    EXPECT_TRUE(onMain);
    EXPECT_EQ(caught, u"full"_s);
}

TEST(Threads, WaitingForAWorkerServesItsCalls)
{
    int calls = 0;
    {
        TJob job([&](TJob& self) {
            while (!self.Terminated())
                self.Synchronize([&] { ++calls; });
            self.Synchronize([&] { ++calls; });
        });
        job.Start();
    } // the destructor waits while the worker asks for the main thread
    EXPECT_GT(calls, 0);
}

TEST(Threads, AFailureEndsInTheDebugLog)
{
    QStringList lines;
    SetDebugLogSink([&](const QString& line) { lines << line; });
    TJob job([](TJob&) { throw std::runtime_error("broken"); });
    RunUntilEnd(job);
    SetDebugLogSink({});
    ASSERT_EQ(lines.size(), 1);
    EXPECT_TRUE(lines[0].endsWith("broken"_L1));
    EXPECT_EQ(lines[0][0], u'[');
}

TEST(Threads, TheOwnerMayGoInTheNotification)
{
    auto job = std::make_unique<TJob>([](TJob&) {});
    QEventLoop loop;
    job->OnTerminate = [&] {
        job.reset();
        loop.quit();
    };
    job->Start();
    loop.exec();
    EXPECT_FALSE(job);
}

TEST(Threads, ALateNotificationFindsNobody)
{
    bool called = false;
    {
        TJob job([](TJob&) {});
        job.OnTerminate = [&] { called = true; };
        job.Start();
    }
    QCoreApplication::processEvents();
    EXPECT_FALSE(called);
}

} // namespace Kestrune
