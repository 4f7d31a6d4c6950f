// SPDX-License-Identifier: GPL-3.0-or-later
#include "uDownloadQueue.h"

#include "uDebugLog.h"
#include "uHostLimiter.h"
#include "uObjs.h"
#include "uTHStrings.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QEventLoop>
#include <QImageReader>
#include <QScopeGuard>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

TThreadRunner::~TThreadRunner() { EndAll(); }

void TThreadRunner::EndAll()
{
    if (FRunningThreadsCount > 0) {
        Terminate();
        WaitFor();
    }
    const std::scoped_lock lock(FListLock);
    FThreadList.clear();
}

void TThreadRunner::AddThread(std::unique_ptr<TThread> thread)
{
    TThread* added = thread.get();
    FThreadOnTerminateList[added] = std::move(added->OnTerminate);
    added->OnTerminate = [this, added] { ThreadTerminated(added); };
    const std::scoped_lock lock(FListLock);
    FThreadList.push_back(std::move(thread));
}

int TThreadRunner::GetCount() const
{
    const std::scoped_lock lock(FListLock);
    return static_cast<int>(FThreadList.size());
}

void TThreadRunner::Run()
{
    // What runs may hang: free places are given away now and not when the next thread ends.
    if (FRunningThreadsCount == 0) {
        FAllThreadsFinished = false;
        if (OnStarted)
            OnStarted();
    }
    StartNext();
}

void TThreadRunner::StartNext()
{
    bool waiting = false;
    {
        const std::scoped_lock lock(FListLock);
        for (const auto& thread : FThreadList) {
            if (std::ranges::find(FStarted, thread.get()) != FStarted.end())
                continue;
            if (FRunningThreadsCount >= FMaxSimultaneousThreads) {
                waiting = true;
                break;
            }
            FStarted.push_back(thread.get());
            ++FRunningThreadsCount;
            thread->Start();
        }
    }
    if (waiting || FRunningThreadsCount > 0 || FAllThreadsFinished)
        return;
    FAllThreadsFinished = true;
    if (OnAllThreadsTerminated)
        OnAllThreadsTerminated();
}

void TThreadRunner::ThreadTerminated(TThread* thread)
{
    if (const auto found = FThreadOnTerminateList.find(thread); found != FThreadOnTerminateList.end()) {
        if (found->second)
            found->second();
        FThreadOnTerminateList.erase(found);
    }
    std::list<std::unique_ptr<TThread>> ended; // freed outside of the lock
    {
        const std::scoped_lock lock(FListLock);
        const auto found = std::ranges::find(FThreadList, thread, &std::unique_ptr<TThread>::get);
        if (found != FThreadList.end())
            ended.splice(ended.begin(), FThreadList, found);
    }
    std::erase(FStarted, thread);
    --FRunningThreadsCount;
    ended.clear();
    StartNext();
}

void TThreadRunner::Terminate()
{
    const std::scoped_lock lock(FListLock);
    for (const auto& thread : FThreadList)
        thread->Terminate();
}

void TThreadRunner::WaitFor()
{
    while (!FAllThreadsFinished && FRunningThreadsCount > 0)
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents | QEventLoop::WaitForMoreEvents);
}

TCustomDownloader::TCustomDownloader()
    : FCookieManager(ChooseCookieManagerClass()()), FDownloader(ChooseDownloaderClass()(FCookieManager.get()))
{}

// Messages that were not posted are freed with their list.
TCustomDownloader::~TCustomDownloader()
{
    if (FDownloader->Busy())
        FDownloader->AbortDownload();
    WaitFor();
}

bool TCustomDownloader::AddMessage(int messageId, std::unique_ptr<TMessageObject>& lparam)
{
    const std::scoped_lock lock(FMessagesLock);
    if (FClosed)
        return false;
    FList.push_back(std::move(lparam));
    FMessageIdsList.push_back(messageId);
    return true;
}

void TCustomDownloader::Execute()
{
    const std::stop_callback stop(StopToken(), [this] {
        DebugLog(u"FDownloader.AbortDownload()"_s);
        FDownloader->AbortDownload();
    });
    const auto close = qScopeGuard([this] { Close(); });
    if (Terminated())
        return;
    FWorking = true;
    FDownloader->Client().Pace = FWaitBeforeStating;
    FDownloader->Client().OnWaiting = [this](int milliseconds) {
        Report({FURL, milliseconds > 0 ? jsWaiting : jsWorking, milliseconds, dfNone, 0});
    };
    DoDownload();
}

void TCustomDownloader::Close()
{
    {
        const std::scoped_lock lock(FMessagesLock);
        FClosed = true;
    }
    const THttpAnswer& answer = FDownloader->Answer();
    const TDownloadFailure failure = FNotReadable ? dfNotReadable : answer.Failure;
    Report({FURL, FMessageWasPosted ? jsDone : jsFailed, 0, Terminated() ? dfAborted : failure, answer.Status});
    FWorking = false;
}

void TCustomDownloader::Report(TJobReport report)
{
    PostToMainThread([slot = FOnJobEvent, report = std::move(report)] {
        if (const auto event = slot.lock(); event && *event)
            (*event)(report);
    });
}

void TCustomDownloader::SendStatus(const QString& text)
{
    if (FOnNewStatusEvent)
        Synchronize([&] { FOnNewStatusEvent(StatusWorking, text); });
}

bool TCustomDownloader::FetchBytes(const QString& url, qint64 maxBytes, QByteArray& bytes)
{
    Report({FURL, jsWorking, 0, dfNone, 0});
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadWrite);
    FDownloader->SetURL(url);
    FDownloader->SetPostQuery(FPostData);
    FDownloader->SetMaxBytes(maxBytes);
    return FDownloader->DownloadAsStream(buffer) && !Terminated();
}

// What is made takes its time: nobody who wants to be added waits for it.
void TCustomDownloader::PostToAll(const std::function<std::unique_ptr<TMessageObject>(const TMessageObject*)>& make)
{
    std::vector<std::unique_ptr<TMessageObject>> askers;
    {
        const std::scoped_lock lock(FMessagesLock);
        FClosed = true;
        askers.swap(FList);
    }
    for (size_t i = 0; i < askers.size() && FHandle != 0 && !Terminated(); ++i) {
        if (auto made = make(askers[i].get())) {
            PostUserMessage(FHandle, {FMessageIdsList[i], std::move(made), std::move(askers[i])});
            FMessageWasPosted = true;
        }
    }
}

void TTextDownloader::DoDownload() { DownloadText(FURL); }

void TTextDownloader::DownloadText(const QString& url)
{
    DebugLog(u"Downloading %1 ..."_s.arg(url));
    SendStatus(GetLanguageString(u"cSDownloadingData"_s));
    QByteArray body;
    if (!FetchBytes(url, MaxBytes, body)) {
        // Some services say in such an answer that they know nothing of what was asked for.
        const THttpAnswer& answer = Transport().Answer();
        FIsRefusal = answer.Failure == dfHTTP && MayTellUnknown(answer.Status) && !Terminated();
        if (!FIsRefusal)
            return;
    }
    if (body.startsWith("\xEF\xBB\xBF"))
        body.remove(0, 3);
    QStringList lines = TextLines(QString::fromUtf8(body));
    if (Terminated())
        return;
    if (FOnTextDownloadedSuccessfully) {
        const QStringList copy = lines;
        PostResult(std::move(lines));
        Synchronize([&] { FOnTextDownloadedSuccessfully(url, copy); });
    } else {
        PostResult(std::move(lines));
    }
}

void TTextDownloader::PostResult(QStringList lines) { PostLines(TTextAnswer(std::move(lines))); }

void TTextDownloader::PostLines(const TTextAnswer& answer)
{
    PostToAll([&](const TMessageObject* asker) -> std::unique_ptr<TMessageObject> {
        if (const auto* request = dynamic_cast<const TAnswerRequest*>(asker))
            return request->Read(answer, FIsRefusal);
        return FIsRefusal ? nullptr : std::make_unique<TTextAnswer>(answer.Lines, answer.Error, answer.IsTooLarge);
    });
}

void TPictureDownloader::DoDownload() { DownloadImage(FURL); }

void TPictureDownloader::DownloadImage(const QString& url)
{
    DebugLog(u"TPictureDownloader.DownloadImage()"_s);
    DebugLog(u"Downloading image %1 ..."_s.arg(url));
    SendStatus(FormatText(GetLanguageString(u"cSDownloadImageFmt"_s), {url}));
    QByteArray bytes;
    if (!FetchBytes(url, MaxBytes, bytes))
        return;
    const QImage image = DecodePicture(bytes);
    if (image.isNull())
        SetNotReadable();
    else if (!Terminated())
        PostResult(bytes, image);
}

void TPictureDownloader::PostResult(const QByteArray& bytes, const QImage& image)
{
    constexpr int side = TPictureAnswer::SmallSide;
    const QImage small = image.width() > side || image.height() > side
                             ? image.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation)
                             : image;
    PostToAll([&](const TMessageObject*) { return std::make_unique<TPictureAnswer>(bytes, image, small); });
}

QImage DecodePicture(const QByteArray& bytes)
{
    constexpr qint64 mostPixels = 100'000'000;
    if (!MayBePixels(bytes))
        return {};
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setAutoTransform(true);
    // A header that promises a huge picture would have memory set aside for it.
    const QSize size = reader.size();
    if (size.isValid() && static_cast<qint64>(size.width()) * size.height() > mostPixels)
        return {};
    return reader.read();
}

TDownloadQueue::TDownloadQueue(THandle handle) : FHandle(handle) {}

TDownloadQueue::~TDownloadQueue()
{
    FOnJobEvent.reset();
    FOnThreadsCountChange = {};
    OnAllThreadsTerminated = {};
    EndAll();
}

void TDownloadQueue::AddDownloader(TDownloaderClass downloaderClass, const QString& url, const QString& postQuery,
                                   int messageId, std::unique_ptr<TMessageObject> lparam)
{
    {
        const std::scoped_lock lock(ListLock());
        for (const auto& thread : ThreadList()) {
            auto& job = static_cast<TCustomDownloader&>(*thread); // AddThread is given nothing else here
            if (job.FURL == url && !job.Terminated() && job.AddMessage(messageId, lparam))
                return;
        }
    }
    std::unique_ptr<TCustomDownloader> job = downloaderClass();
    if (!FAgent.isEmpty())
        job->Transport().SetAgent(FAgent);
    job->FHandle = FHandle;
    job->FURL = url;
    job->FPostData = postQuery;
    job->FWaitBeforeStating = HostLimiter().Pace(HostOfURL(url));
    job->FOnNewStatusEvent = FOnNewStatusEvent;
    job->FOnJobEvent = FOnJobEvent;
    job->OnTerminate = [this, thread = job.get()] { CountThreads(thread); };
    job->AddMessage(messageId, lparam);
    AddThread(std::move(job));
}

void TDownloadQueue::CountThreads(const TThread* thread)
{
    const int total = GetCount();
    if (!thread->Terminated() && FOnThreadsCountChange)
        FOnThreadsCountChange(total - RunningThreadsCount(), RunningThreadsCount(), total);
}

} // namespace Kestrune
