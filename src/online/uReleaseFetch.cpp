// SPDX-License-Identifier: GPL-3.0-or-later
#include "uReleaseFetch.h"

#include "uDefaults.h"
#include "uDownloadQueue.h"
#include "uInfoGrabber.h"
#include "uJSONToXML.h"
#include "uKRNParams.h"
#include "uXSLTranformation.h"
#include "uXml.h"

#include <QBuffer>
#include <QUrl>

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

bool IsNamed(const TXmlElement& element, QLatin1StringView name)
{
    return element.Name().compare(name, Qt::CaseInsensitive) == 0;
}

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

bool FindReleases(const TXmlDocument& document, std::vector<TXmlElement>& releases)
{
    TXmlElement results = document.Root();
    if (!IsNamed(results, "SearchResults"_L1)) {
        results = {};
        for (const TXmlElement& child : document.Root().Children()) {
            if (IsNamed(child, "SearchResults"_L1)) {
                results = child;
                break;
            }
        }
    }
    if (results.IsNull())
        return false;
    for (const TXmlElement& child : results.Children()) {
        if (IsNamed(child, "release"_L1))
            releases.push_back(child);
    }
    return true;
}

void ResolvePictureURLs(TAlbumRelease& release, const QString& requestURL)
{
    const QUrl base = QUrl::fromEncoded(EncodeURL(requestURL));
    for (const auto& picture : release.Pictures) {
        if (picture->URL().isEmpty())
            continue;
        const QUrl url = QUrl::fromEncoded(EncodeURL(picture->URL()));
        if (url.isRelative() && url.isValid())
            picture->SetURL(base.resolved(url).toString(QUrl::FullyEncoded));
    }
}

bool NormaliseAnswer(const TInfoGrabber& grabber, const TInfoGrabberServiceAction& action, const QByteArray& answer,
                     QByteArray& document, QString* error)
{
    try {
        return TransformXSL(answer, grabber.ReadStylesheet(action), document, false, error);
    } catch (const EInfoGrabberError& failure) {
        if (error)
            *error = QString::fromUtf8(failure.what());
        return false;
    }
}

TReleaseFetch::TReleaseFetch(const TInfoGrabber& grabber, std::stop_token stop)
    : FGrabber(grabber),
      FStop(std::move(stop)),
      FCookies(ChooseCookieManagerClass()()),
      FTransport(ChooseDownloaderClass()(FCookies.get()))
{
    FTransport->SetAgent(Defaults().OEM.HTTPAgent);
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
    QStringList lines;
    const std::stop_callback abort(FStop, [this] { FTransport->AbortDownload(); });
    try {
        if (!FTransport->DownloadAsTStrings(lines, action.CodePage())) {
            FError = FTransport->Answer().Reason;
            FNotFound = FTransport->Answer().Status == 404 && action.ServiceActionType() == satSearch;
            return false;
        }
    } catch (const EInvalidEncoding& failure) {
        FError = QString::fromUtf8(failure.what());
        return false;
    }
    QByteArray answer = lines.join(u'\n').toUtf8();
    QString notJson;
    if (action.JSON())
        answer = JSONToXML(answer, &notJson);
    QByteArray document;
    if (!NormaliseAnswer(FGrabber, action, answer, document, &FError))
        return false;
    const auto parsed = TXmlDocument::Parse(document, &FError);
    std::vector<TXmlElement> nodes;
    if (!parsed || !FindReleases(*parsed, nodes)) {
        FError = notJson.isEmpty() ? FError : notJson;
        return true; // no hit
    }
    if (firstOnly && nodes.size() > 1)
        nodes.resize(1);
    for (const TXmlElement& node : nodes) {
        auto& release = releases.emplace_back(std::make_unique<TAlbumRelease>());
        LoadAlbumReleaseFromNode(*release, node);
        ResolvePictureURLs(*release, FTransport->URL());
    }
    FError = notJson;
    return true;
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
