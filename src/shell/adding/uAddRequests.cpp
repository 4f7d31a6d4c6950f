// SPDX-License-Identifier: GPL-3.0-or-later
#include "uAddRequests.h"

#include "uAddMessages.h"
#include "uDefaults.h"
#include "uJSONToXML.h"

#include <algorithm>
#include <span>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int SimultaneousDownloads = 5;
constexpr size_t MostHits = 500;    // of one answer
constexpr size_t MostPictures = 10; // of one hit

template <class TObject, class... TArguments>
std::unique_ptr<TObject> MakeMessage(qint64 tab, const TSearchHit& hit, TArguments&&... arguments)
{
    auto message = std::make_unique<TObject>(std::forward<TArguments>(arguments)...);
    message->RecordIndex = hit.RecordIndex;
    message->Grid = tab;
    return message;
}

// The address of a picture with what is known of its release filled in. It comes from the answer of a service, which
// learns the keys of the product only on its own host.
QString PictureURL(const TInfoGrabberServiceAction& action, const TAlbumRelease& release, const QString& url)
{
    TKRNParams params;
    if (HostOfURL(url) == HostOfURL(action.RawURL()))
        params.AddPrivateKeysToParams();
    params.AddSearchParamsFromAlbumRelease(release);
    return params.ReplaceWithParams(url);
}

} // namespace

TAddRequests::TAddRequests(const TInfoGrabber& grabber, THandle receiver) : FGrabber(grabber), FQueue(receiver)
{
    FQueue.SetMaxSimultaneousThreads(SimultaneousDownloads);
}

const TInfoGrabberServiceAction* TAddRequests::RecordAction(const QString& service) const
{
    const TInfoGrabberService* found = FGrabber.InfoGrabberServices().GetServiceByName(service);
    return found ? found->GetActionByType(satGetRelease) : nullptr;
}

void TAddRequests::AddText(const TInfoGrabberServiceAction& action, const QString& url, int message,
                           std::unique_ptr<TMessageObject> with)
{
    FQueue.FAgent = ServiceAgent(Defaults()); // the contact may have changed
    FQueue.AddDownloader(action.JSON() ? MakeDownloader<TJSONTextDownloader> : MakeDownloader<TTextDownloader>, url, {},
                         message, std::move(with));
}

QString TAddRequests::AskService(const TSearchTab& tab, size_t service)
{
    const TInfoGrabberServiceAction& entry = tab.CurrentSearch->GetItem(static_cast<int>(service));
    FillSearchParams(FParams, tab.Words, entry);
    const QString url = FParams.ReplaceWithParams(entry.URL());
    auto message = std::make_unique<TMsgObjWM_USER_METADATA_TEXT_SEARCH>(TAnswerReader(FGrabber, entry, url), MostHits);
    message->Action = &entry;
    message->Grid = tab.Id;
    message->Service = service;
    AddText(entry, url, WM_USER_METADATA_TEXT_SEARCH, std::move(message));
    return url;
}

void TAddRequests::AskForPictures(const TInfoGrabberServiceAction& action, const TSearchTab& tab, const TSearchHit& hit)
{
    const std::span pictures(hit.DataPointer->Pictures);
    for (const auto& picture : pictures.first(std::min(pictures.size(), MostPictures))) {
        if (!picture->URL().isEmpty())
            FQueue.AddDownloader(
                MakeDownloader<TPictureDownloader>, PictureURL(action, *hit.DataPointer, picture->URL()), {},
                WM_USER_METADATA_THUMB_PICTURE, MakeMessage<TMsgObjWM_USER_METADATA_THUMB_PICTURE>(tab.Id, hit));
    }
}

void TAddRequests::AskForRecord(const TSearchTab& tab, TSearchHit& hit)
{
    const TInfoGrabberServiceAction* entry =
        tab.CurrentSearch ? tab.CurrentSearch->GetItemByName(hit.DataProvider) : nullptr;
    const TInfoGrabberServiceAction* action = RecordAction(hit.DataProvider);
    if (!entry || !entry->NeedToDownloadExtraInfo() || hit.Fetched || !action)
        return;
    FParams.Clear();
    FParams.AddPrivateKeysToParams();
    FParams.AddSearchParamsFromAlbumRelease(*hit.DataPointer);
    FParams.AddQueryTwins();
    const QString url = FParams.ReplaceWithParams(action->URL());
    FRecordJobs.emplace(url, std::pair(tab.Id, hit.RecordIndex));
    AddText(*action, url, WM_USER_METADATA_TEXT_EXTRA_INFO,
            MakeMessage<TMsgObjWM_USER_METADATA_TEXT_EXTRA_INFO>(tab.Id, hit, TAnswerReader(FGrabber, *action, url)));
    hit.Fetched = true;
}

void TAddRequests::AskForLargeCover(qint64 tab, const TSearchHit& hit, const TInfoGrabberServiceAction* action)
{
    const TCoverPicture* cover = hit.DataPointer->GetPicByType(cptFrontLarge);
    if (!cover || cover->HasImage() || cover->URL().isEmpty())
        return;
    FQueue.AddDownloader(MakeDownloader<TPictureDownloader>,
                         action ? PictureURL(*action, *hit.DataPointer, cover->URL()) : cover->URL(), {},
                         WM_USER_METADATA_LARGE_PICTURE, MakeMessage<TMsgObjWM_USER_METADATA_LARGE_PICTURE>(tab, hit));
}

void TAddRequests::Failed(const QString& url, THitTabs& tabs) const
{
    const auto [begin, end] = FRecordJobs.equal_range(url);
    for (auto job = begin; job != end; ++job)
        if (TSearchHit* hit = tabs.FindHit(job->second.first, job->second.second))
            hit->Fetched = false;
}

} // namespace Kestrune
