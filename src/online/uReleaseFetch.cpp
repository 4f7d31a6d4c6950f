// SPDX-License-Identifier: GPL-3.0-or-later
#include "uReleaseFetch.h"

#include "uDefaults.h"
#include "uDownloadQueue.h"
#include "uInfoGrabber.h"
#include "uKRNParams.h"

#include <QBuffer>

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

// Nobody sees how long this road waits: a server that wants more than a minute is left out.
void EndLongWaits(TDownloader& transport)
{
    constexpr int longest = 60'000; // milliseconds
    transport.Client().OnWaiting = [&transport](int milliseconds) {
        if (milliseconds > longest)
            transport.AbortDownload();
    };
}

class TOnlinePictureFetcher final : public TPictureFetcher {
public:
    TOnlinePictureFetcher() { EndLongWaits(*FTransport); }

    bool Fetch(const QString& url, const QString& userAgent, QByteArray& into) override
    {
        QBuffer buffer(&into);
        buffer.open(QIODevice::ReadWrite | QIODevice::Truncate);
        FTransport->Client().Reset();
        FTransport->SetURL(url);
        FTransport->SetAgent(userAgent);
        FTransport->SetMaxBytes(TPictureDownloader::MaxBytes);
        return FTransport->DownloadAsStream(buffer);
    }

private:
    std::unique_ptr<TCookieManagerComponent> FCookies = ChooseCookieManagerClass()();
    std::unique_ptr<TDownloader> FTransport = ChooseDownloaderClass()(FCookies.get());
};

} // namespace

TReleaseFetch::TReleaseFetch(const TInfoGrabber& grabber, std::stop_token stop)
    : FGrabber(grabber),
      FStop(std::move(stop)),
      FCookies(ChooseCookieManagerClass()()),
      FTransport(ChooseDownloaderClass()(FCookies.get()))
{
    FTransport->SetAgent(ServiceAgent(Defaults()));
    FTransport->SetMaxBytes(TTextDownloader::MaxBytes);
    EndLongWaits(*FTransport);
}

TReleaseFetch::~TReleaseFetch() = default;

bool TReleaseFetch::FetchDocument(const TInfoGrabberServiceAction& action, const TKRNParams& params,
                                  TAlbumReleases& releases, bool firstOnly)
{
    FError.clear();
    FNotFound = false;
    FTransport->SetURL(params.ReplaceWithParams(action.URL()));
    const TAnswerReader reader(FGrabber, action, FTransport->URL());
    QStringList lines;
    const std::stop_callback abort(FStop, [this] { FTransport->AbortDownload(); });
    try {
        if (!FTransport->DownloadAsTStrings(lines, action.CodePage())) {
            const THttpAnswer& answer = FTransport->Answer();
            if (answer.Failure == dfHTTP && MayTellUnknown(answer.Status) &&
                reader.Read(lines.join(u'\n').toUtf8()).IsUnknown)
                return true;
            FError = answer.Reason;
            FNotFound = answer.Status == 404 && action.ServiceActionType() == satSearch;
            return false;
        }
    } catch (const EInvalidEncoding& failure) {
        FError = QString::fromUtf8(failure.what());
        return false;
    }
    const TAnswerDocument answer = reader.Read(lines.join(u'\n').toUtf8());
    FError = answer.Reason;
    releases = reader.Load(answer, firstOnly ? 1 : answer.Releases.size());
    return answer.IsTransformed;
}

bool TReleaseFetch::FetchHits(const TInfoGrabberServiceAction& action, const TKRNParams& params,
                              TAlbumReleases& releases)
{
    return FetchDocument(action, params, releases, false);
}

bool TReleaseFetch::FetchRelease(const TInfoGrabberServiceAction& action, const TKRNParams& params,
                                 std::unique_ptr<TAlbumRelease>& release)
{
    release.reset();
    TAlbumReleases found;
    if (!FetchDocument(action, params, found, true))
        return false;
    if (found.empty())
        return true;
    release = std::move(found.front());
    release->DownloadAllPics(AllPictureTypes);
    return !action.NeedToDownloadExtraInfo() || FetchDetails(action, release);
}

bool TReleaseFetch::FetchDetails(const TInfoGrabberServiceAction& action, std::unique_ptr<TAlbumRelease>& release)
{
    TKRNParams params;
    params.AddPrivateKeysToParams();
    params.AddSearchParamsFromAlbumRelease(*release);
    params.AddQueryTwins();
    const TInfoGrabberService* service = FGrabber.InfoGrabberServices().GetServiceByName(action.Name());
    const TInfoGrabberServiceAction* details = service ? service->GetActionByType(satGetRelease) : nullptr;
    if (!details)
        return true; // the summary is all that there is
    release.reset();
    std::mutex lock;
    std::unique_lock held(lock);
    std::condition_variable_any ended;
    if (ended.wait_for(held, FStop, std::chrono::milliseconds(DetailPause), [] { return false; }) ||
        FStop.stop_requested())
        return false;
    return FetchRelease(*details, params, release);
}

void InstallPictureFetcher()
{
    SetPictureFetcher([] { return std::make_unique<TOnlinePictureFetcher>(); });
}

} // namespace Kestrune
