// SPDX-License-Identifier: GPL-3.0-or-later
// Requests for what belongs to a card, and all answers.
#include "frmAddMusic.h"
#include "frmAddMusic_p.h"
#include "uDebugLog.h"
#include "uDefaults.h"
#include "uJSONToXML.h"

#include <algorithm>
#include <span>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

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

// How some services say that they have no picture.
bool IsDot(const TPictureAnswer& answer) { return answer.Image.size() == QSize(1, 1); }

} // namespace

void TAddMusicForm::HandleMessage(TUserMessage& message)
{
    if (FClosed)
        return;
    switch (message.Number) {
    case WM_USER_NEXT_BARCODE: return NextBarcode();
    case WM_USER_METADATA_TEXT_SEARCH: return TextArrived(message);
    case WM_USER_METADATA_TEXT_EXTRA_INFO: return ExtraInfoArrived(message);
    case WM_USER_METADATA_THUMB_PICTURE: return ThumbArrived(message);
    case WM_USER_METADATA_LARGE_PICTURE: return LargeArrived(message);
    default: return;
    }
}

void TAddMusicForm::AddJob(const TInfoGrabberServiceAction& action, const QString& url, int message,
                           std::unique_ptr<TMessageObject> with)
{
    FDownloadQueue->FAgent = ServiceAgent(Defaults()); // the contact may have changed
    FDownloadQueue->AddDownloader(action.JSON() ? MakeDownloader<TJSONTextDownloader> : MakeDownloader<TTextDownloader>,
                                  url, {}, message, std::move(with));
}

const TInfoGrabberServiceAction* TAddMusicForm::RecordAction(const QString& service) const
{
    const TInfoGrabberService* found = FGrabber.InfoGrabberServices().GetServiceByName(service);
    return found ? found->GetActionByType(satGetRelease) : nullptr;
}

void TAddMusicForm::TextArrived(TUserMessage& message)
{
    const auto& search = static_cast<const TMsgObjWM_USER_METADATA_TEXT_SEARCH&>(*message.LParam);
    TSearchTab* tab = FTabs.Find(search.Grid);
    auto* answer = dynamic_cast<TReadAnswer*>(message.WParam.get());
    if (!tab || !answer)
        return;
    const TInfoGrabberServiceAction& action = *search.Action;
    if (answer->Document.Fault != afNone)
        DebugLog(u"[Search] %1: %2"_s.arg(action.Name(), answer->Document.Reason));
    FStates.Answered(search.Grid, search.Service, answer->Document);
    const bool isComplete = !action.NeedToDownloadExtraInfo() || !RecordAction(action.Name());
    for (auto& release : answer->Releases)
        AskForPictures(action, *tab, FTabs.AddHit(*tab, std::move(release), action.Name(), isComplete));
    if (!answer->Releases.empty())
        FTabs.Filled(*tab);
    FDownloadQueue->Run();
    Q_EMIT updated();
}

void TAddMusicForm::AskForPictures(const TInfoGrabberServiceAction& action, const TSearchTab& tab,
                                   const TSearchHit& hit)
{
    const std::span pictures(hit.DataPointer->Pictures);
    for (const auto& picture : pictures.first(std::min(pictures.size(), MostPictures))) {
        if (!picture->URL().isEmpty())
            FDownloadQueue->AddDownloader(
                MakeDownloader<TPictureDownloader>, PictureURL(action, *hit.DataPointer, picture->URL()), {},
                WM_USER_METADATA_THUMB_PICTURE, MakeMessage<TMsgObjWM_USER_METADATA_THUMB_PICTURE>(tab.Id, hit));
    }
}

void TAddMusicForm::FocusHit(qint64 record)
{
    DebugLog(u"SearchGridCardViewFocusedRecordChanged()"_s);
    if (TSearchHit* hit = FTabs.Focus(record)) {
        AskForRecord(FTabs.Current(), *hit);
        AskForLargeCover(FTabs.Current().Id, *hit, nullptr);
        if (FDownloadQueue->GetCount() > 0)
            FDownloadQueue->Run();
    }
    Q_EMIT updated();
}

void TAddMusicForm::AskForRecord(const TSearchTab& tab, TSearchHit& hit)
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
    AddJob(*action, url, WM_USER_METADATA_TEXT_EXTRA_INFO,
           MakeMessage<TMsgObjWM_USER_METADATA_TEXT_EXTRA_INFO>(tab.Id, hit, TAnswerReader(FGrabber, *action, url)));
    hit.Fetched = true;
}

void TAddMusicForm::AskForLargeCover(qint64 tab, const TSearchHit& hit, const TInfoGrabberServiceAction* action)
{
    const TCoverPicture* cover = hit.DataPointer->GetPicByType(cptFrontLarge);
    if (!cover || cover->HasImage() || cover->URL().isEmpty())
        return;
    FDownloadQueue->AddDownloader(
        MakeDownloader<TPictureDownloader>, action ? PictureURL(*action, *hit.DataPointer, cover->URL()) : cover->URL(),
        {}, WM_USER_METADATA_LARGE_PICTURE, MakeMessage<TMsgObjWM_USER_METADATA_LARGE_PICTURE>(tab, hit));
}

void TAddMusicForm::ExtraInfoArrived(TUserMessage& message)
{
    const auto& request = static_cast<const TMsgObjWM_USER_METADATA_TEXT_EXTRA_INFO&>(*message.LParam);
    TSearchHit* hit = FTabs.FindHit(request.Grid, request.RecordIndex);
    if (!hit || !hit->DataPointer)
        return;
    hit->Fetched = false; // until it is of use
    const auto* answer = dynamic_cast<const TReadAnswer*>(message.WParam.get());
    if (!answer || answer->Document.Releases.empty())
        return;
    request.Reader.LoadOnto(*hit->DataPointer, answer->Document.Releases.front());
    hit->Fetched = hit->Complete = true;
    AskForLargeCover(request.Grid, *hit, RecordAction(hit->DataProvider));
    FDownloadQueue->Run();
    FTabs.HitChanged(request.Grid, *hit);
}

void TAddMusicForm::ThumbArrived(TUserMessage& message)
{
    const auto& request = static_cast<const TMsgObjHit&>(*message.LParam);
    // A picture may share its address with a text that somebody else asked for.
    const auto* answer = dynamic_cast<const TPictureAnswer*>(message.WParam.get());
    TSearchHit* hit = FTabs.FindHit(request.Grid, request.RecordIndex);
    if (!hit || !answer)
        return;
    hit->Cover = IsDot(*answer) ? QImage() : answer->Small;
    TCoverPicture* thumb = hit->DataPointer ? hit->DataPointer->GetPicByType(cptFrontThumb) : nullptr;
    if (thumb && !IsDot(*answer))
        thumb->LoadFromBytes(answer->Bytes);
    FTabs.HitChanged(request.Grid, *hit);
}

void TAddMusicForm::LargeArrived(TUserMessage& message)
{
    const auto& request = static_cast<const TMsgObjHit&>(*message.LParam);
    const auto* answer = dynamic_cast<const TPictureAnswer*>(message.WParam.get());
    TSearchHit* hit = FTabs.FindHit(request.Grid, request.RecordIndex);
    TCoverPicture* cover = hit && hit->DataPointer ? hit->DataPointer->GetPicByType(cptFrontLarge) : nullptr;
    if (!cover || !answer)
        return;
    if (!IsDot(*answer))
        cover->LoadFromBytes(answer->Bytes);
    FTabs.DetailsChanged(request.Grid, *hit);
}

} // namespace Kestrune
