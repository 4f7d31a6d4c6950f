// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uDownloader.h"
#include "uThreads.h"
#include "uUserMessages.h"

#include <QImage>
#include <QString>
#include <QStringList>

#include <functional>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

namespace Kestrune {

/// Starts threads from a list, at most so many at once, and frees each when it has ended. Main thread; the list alone
/// may be added to from elsewhere.
class TThreadRunner {
public:
    TThreadRunner() = default;
    /// Ends and waits for what runs.
    virtual ~TThreadRunner();
    TThreadRunner(const TThreadRunner&) = delete;
    TThreadRunner& operator=(const TThreadRunner&) = delete;

    /// Takes a thread that was not started. Its OnTerminate is kept and called when it has ended.
    void AddThread(std::unique_ptr<TThread> thread);
    /// Threads that run or wait.
    int GetCount() const;
    /// Starts the threads of the list as far as there is room; the others follow when one ends.
    void Run();
    /// Asks all threads to end, also those that wait.
    void Terminate();
    /// Serves events, but not those of the user, until all threads have ended.
    void WaitFor();

    int MaxSimultaneousThreads() const { return FMaxSimultaneousThreads; }
    void SetMaxSimultaneousThreads(int count) { FMaxSimultaneousThreads = count; }
    int RunningThreadsCount() const { return FRunningThreadsCount; }

    std::function<void()> OnAllThreadsTerminated;
    std::function<void()> OnStarted;

protected:
    /// Starts waiting threads in the order of the list while there is room.
    virtual void StartNext();
    /// Ends everything; for destructors of derived classes, whose threads use them.
    void EndAll();
    std::mutex& ListLock() const { return FListLock; }
    std::list<std::unique_ptr<TThread>>& ThreadList() { return FThreadList; }

private:
    void ThreadTerminated(TThread* thread);

    bool FAllThreadsFinished = false;
    int FMaxSimultaneousThreads = 1;
    int FRunningThreadsCount = 0;
    std::map<TThread*, std::function<void()>> FThreadOnTerminateList;
    std::list<std::unique_ptr<TThread>> FThreadList;
    std::vector<TThread*> FStarted;
    mutable std::mutex FListLock;
};

/// Kind of status text while the queue works.
inline constexpr int StatusWorking = 2;
using TOnNewStatusEvent = std::function<void(int kind, const QString& text)>;
using TOnThreadsCountChange = std::function<void(int finished, int running, int total)>;
using TOnTextDownloadedSuccessfully = std::function<void(const QString& url, const QStringList& lines)>;

/// The lines of a text that was fetched.
class TTextAnswer final : public TMessageObject {
public:
    explicit TTextAnswer(QStringList lines, QString error = {}, bool isTooLarge = false)
        : Lines(std::move(lines)), Error(std::move(error)), IsTooLarge(isTooLarge)
    {}
    QStringList Lines;
    QString Error; ///< why the text is not what it should be; empty where it is
    bool IsTooLarge = false;
};

/// What goes with a request whose asker wants something else than the text. It is asked for on the thread of the job.
class TAnswerRequest : public TMessageObject {
public:
    /// What the asker gets in place of the text. `isRefusal`: the text came with a status that says that there is
    /// nothing; null then leaves it a failure.
    virtual std::unique_ptr<TMessageObject> Read(const TTextAnswer& text, bool isRefusal) const = 0;
};

/// A picture that was fetched: as it came, decoded, and small for a card.
class TPictureAnswer final : public TMessageObject {
public:
    TPictureAnswer(QByteArray bytes, QImage image, QImage small)
        : Bytes(std::move(bytes)), Image(std::move(image)), Small(std::move(small))
    {}
    QByteArray Bytes;
    QImage Image;
    QImage Small; ///< at most SmallSide pixels wide and high
    static constexpr int SmallSide = 256;
};

enum class TJobState : quint8 { jsWaiting, jsWorking, jsDone, jsFailed };
using enum TJobState;

/// What a job of the queue is at, told on the main thread.
struct TJobReport {
    QString URL;
    TJobState State = jsWorking;
    int Milliseconds = 0;              ///< waiting: until the host may be asked
    TDownloadFailure Failure = dfNone; ///< failed: why
    int Status = 0;                    ///< failed: HTTP status, 0 without an answer
};
using TOnJobEvent = std::function<void(const TJobReport& report)>;

/// One job of the queue: fetches its URL and posts the result once for each asker.
class TCustomDownloader : public TThread {
public:
    TCustomDownloader();
    ~TCustomDownloader() override;

    /// One more asker: the message that it gets. False when the result is out already; `lparam` is then untouched.
    bool AddMessage(int messageId, std::unique_ptr<TMessageObject>& lparam);
    TDownloader& Transport() { return *FDownloader; }
    bool Working() const { return FWorking; }

    THandle FHandle = 0; ///< receiver of the messages
    QString FURL;
    QString FPostData;
    int FWaitBeforeStating = 0; ///< milliseconds between requests to the host
    TOnNewStatusEvent FOnNewStatusEvent;
    /// Told on the main thread as long as the owner of the slot lives.
    std::weak_ptr<TOnJobEvent> FOnJobEvent;

protected:
    void Execute() final;
    /// The work of the thread.
    virtual void DoDownload() = 0;
    /// The failure of bytes that arrived but are of no use.
    void SetNotReadable() { FNotReadable = true; }
    void SendStatus(const QString& text);
    /// Fetches the URL into memory; false after a failure or when it was ended.
    bool FetchBytes(const QString& url, qint64 maxBytes, QByteArray& bytes);
    /// Posts one message per asker, with an object of its own that `make` gives. Null passes the asker over.
    void PostToAll(const std::function<std::unique_ptr<TMessageObject>(const TMessageObject* asker)>& make);

private:
    void Report(TJobReport report);
    /// The end of the work, however it came: nobody is added any more, and what became of it is reported.
    void Close();

    std::unique_ptr<TCookieManagerComponent> FCookieManager;
    std::unique_ptr<TDownloader> FDownloader;
    std::mutex FMessagesLock;
    std::atomic<bool> FMessageWasPosted{false};
    bool FClosed = false; // nobody can be added any more
    std::vector<std::unique_ptr<TMessageObject>> FList;
    std::vector<int> FMessageIdsList;
    std::atomic<bool> FWorking{false};
    bool FNotReadable = false;
};

/// Fetches a text in UTF-8.
class TTextDownloader : public TCustomDownloader {
public:
    TOnTextDownloadedSuccessfully FOnTextDownloadedSuccessfully;
    /// Larger answers are refused.
    static constexpr qint64 MaxBytes = 16 * 1024 * 1024;

protected:
    void DoDownload() override;
    void DownloadText(const QString& url);
    /// Hands the lines to all askers.
    virtual void PostResult(QStringList lines);
    void PostLines(const TTextAnswer& answer);

private:
    bool FIsRefusal = false; // the text says that there is nothing
};

/// Fetches a picture and decodes it.
class TPictureDownloader : public TCustomDownloader {
public:
    static constexpr qint64 MaxBytes = 64 * 1024 * 1024;

protected:
    void DoDownload() override;
    void DownloadImage(const QString& url);
    void PostResult(const QByteArray& bytes, const QImage& image);
};

/// A picture of bytes from anywhere; null when they are none, or one with more pixels than are decoded.
QImage DecodePicture(const QByteArray& bytes);

/// Class of a job, as an operation.
using TDownloaderClass = std::unique_ptr<TCustomDownloader> (*)();
template <class TJob>
std::unique_ptr<TCustomDownloader> MakeDownloader()
{
    return std::make_unique<TJob>();
}

/// A runner of jobs that merges equal URLs.
class TDownloadQueue final : public TThreadRunner {
public:
    /// Messages go to this receiver.
    explicit TDownloadQueue(THandle handle);
    ~TDownloadQueue() override;

    /// Adds a job, or one more asker to the job of the same URL. Does not start it: call Run.
    void AddDownloader(TDownloaderClass downloaderClass, const QString& url, const QString& postQuery, int messageId,
                       std::unique_ptr<TMessageObject> lparam);

    TOnNewStatusEvent FOnNewStatusEvent;
    TOnThreadsCountChange FOnThreadsCountChange;
    QString FAgent; ///< empty: the transport's own
    /// The state of each job.
    void SetOnJobEvent(TOnJobEvent event) { *FOnJobEvent = std::move(event); }

private:
    void CountThreads(const TThread* thread);

    THandle FHandle;
    std::shared_ptr<TOnJobEvent> FOnJobEvent = std::make_shared<TOnJobEvent>();
};

} // namespace Kestrune
