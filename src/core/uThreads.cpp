// SPDX-License-Identifier: GPL-3.0-or-later
#include "uThreads.h"

#include "uDebugLog.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <QThread>

#include <condition_variable>
#include <deque>
#include <exception>
#include <memory>
#include <mutex>
#include <utility>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

struct TPendingCall {
    const std::function<void()>* Function;
    bool Done = false;
    std::exception_ptr Failure;
};

// Calls that wait for the main thread. It takes them from its event loop, or from WaitFor, so that a main thread
// which waits for a worker never deadlocks with a worker that waits for the main thread.
class TCallQueue {
public:
    void RunAndWait(const std::function<void()>& fn)
    {
        TPendingCall call{&fn, false, nullptr};
        std::unique_lock lock(FLock);
        FCalls.push_back(&call);
        FChanged.notify_all();
        lock.unlock();
        QMetaObject::invokeMethod(
            QCoreApplication::instance(), [this] { RunPending(); }, Qt::QueuedConnection);
        lock.lock();
        FChanged.wait(lock, [&] { return call.Done; });
        if (call.Failure)
            std::rethrow_exception(call.Failure);
    }

    void RunPending()
    {
        std::unique_lock lock(FLock);
        while (!FCalls.empty()) {
            TPendingCall* call = FCalls.front();
            FCalls.pop_front();
            lock.unlock();
            std::exception_ptr failure;
            try {
                (*call->Function)();
            } catch (...) {
                failure = std::current_exception();
            }
            lock.lock();
            call->Failure = failure;
            call->Done = true;
            FChanged.notify_all();
        }
    }

    void ServeUntil(const std::atomic<bool>& running)
    {
        std::unique_lock lock(FLock);
        while (running) {
            FChanged.wait(lock, [&] { return !running || !FCalls.empty(); });
            lock.unlock();
            RunPending();
            lock.lock();
        }
    }

    void Finish(std::atomic<bool>& running)
    {
        const std::scoped_lock lock(FLock);
        running = false;
        FChanged.notify_all();
    }

private:
    std::mutex FLock;
    std::condition_variable FChanged;
    std::deque<TPendingCall*> FCalls;
};

TCallQueue& CallQueue()
{
    static TCallQueue queue;
    return queue;
}

} // namespace

TThread::~TThread()
{
    if (FThread.joinable())
        WaitFor();
    if (FNotify)
        *FNotify = nullptr;
}

void TThread::Start()
{
    FRunning = true;
    FNotify = std::make_shared<std::function<void()>>(OnTerminate);
    FThread = std::thread([this, notify = FNotify] {
        try {
            Execute();
        } catch (const std::exception& failure) {
            DebugLog(u"[Thread] "_s + QString::fromUtf8(failure.what()));
        } catch (...) {
            DebugLog(u"[Thread] unknown failure"_s);
        }
        // The notification is looked at on the main thread, where the owner may have gone and cleared it.
        PostToMainThread([notify] {
            // Taken out first: the call may destroy the thread object and with it what is called.
            const std::function<void()> call = std::exchange(*notify, nullptr);
            if (call)
                call();
        });
        CallQueue().Finish(FRunning);
    });
}

void TThread::WaitFor()
{
    if (!FThread.joinable())
        return;
    CallQueue().ServeUntil(FRunning);
    FThread.join();
}

void TThread::WaitUnlessTerminated(std::chrono::milliseconds time)
{
    std::mutex mutex;
    std::unique_lock lock(mutex);
    // Wakes by the stop itself; nobody else knows this condition.
    std::condition_variable_any().wait_for(lock, StopToken(), time, [] { return false; });
}

void TThread::Synchronize(const std::function<void()>& fn)
{
    if (OnMainThread())
        fn();
    else
        CallQueue().RunAndWait(fn);
}

void PostToMainThread(std::function<void()> fn)
{
    if (QCoreApplication* application = QCoreApplication::instance())
        QMetaObject::invokeMethod(application, std::move(fn), Qt::QueuedConnection);
}

bool OnMainThread()
{
    return !QCoreApplication::instance() || QThread::currentThread() == QCoreApplication::instance()->thread();
}

} // namespace Kestrune
