// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <stop_token>
#include <thread>

namespace Kestrune {

/// A thread with one job. Derive, write Execute, Start it. The owner on the main thread waits for it in the
/// destructor of the derived class (call WaitFor there: Execute must not outlive the derived part).
class TThread {
public:
    TThread() = default;
    virtual ~TThread();
    TThread(const TThread&) = delete;
    TThread& operator=(const TThread&) = delete;

    /// Starts the job; once only.
    void Start();
    /// Asks the job to end; returns at once.
    void Terminate() { FStop.request_stop(); }
    bool Terminated() const { return FStop.stop_requested(); }
    /// True after Start until Execute has returned.
    bool Running() const { return FRunning; }
    /// Main thread: waits for the end of the job and meanwhile serves its Synchronize calls, but no other events.
    void WaitFor();

    /// Called on the main thread, by a posted event, after Execute has returned. Set before Start.
    std::function<void()> OnTerminate;

protected:
    /// The job. Must not let exceptions out: they end in the debug log.
    virtual void Execute() = 0;
    std::stop_token StopToken() const { return FStop.get_token(); }
    /// Sleeps, on this thread, until the time is over or the job is asked to end.
    void WaitUnlessTerminated(std::chrono::milliseconds time);

    /// Runs `fn` on the main thread and waits for its end. An exception of `fn` is thrown here.
    void Synchronize(const std::function<void()>& fn);

private:
    std::stop_source FStop;
    std::atomic<bool> FRunning{false};
    std::thread FThread;
    std::shared_ptr<std::function<void()>> FNotify;
};

/// A thread that runs one function.
class TTaskThread final : public TThread {
public:
    /// The function looks at the token and ends when it is asked to.
    explicit TTaskThread(std::function<void(std::stop_token)> task) : FTask(std::move(task)) {}
    ~TTaskThread() override
    {
        Terminate();
        WaitFor();
    }

protected:
    void Execute() override { FTask(StopToken()); }

private:
    std::function<void(std::stop_token)> FTask;
};

/// Runs `fn` on the main thread later, in the order of the calls; from any thread. It is dropped when the process
/// ends before.
void PostToMainThread(std::function<void()> fn);

/// True on the thread that runs the windows and the collection.
bool OnMainThread();

} // namespace Kestrune
