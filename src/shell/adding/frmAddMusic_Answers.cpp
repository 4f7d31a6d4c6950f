// SPDX-License-Identifier: GPL-3.0-or-later
// The answers of services.
#include "frmAddMusic.h"
#include "uAddMessages.h"
#include "uDebugLog.h"

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

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
    const bool isComplete = !action.NeedToDownloadExtraInfo() || !FRequests.RecordAction(action.Name());
    for (auto& release : answer->Releases)
        FRequests.AskForPictures(action, *tab, FTabs.AddHit(*tab, std::move(release), action.Name(), isComplete));
    if (!answer->Releases.empty())
        FTabs.Filled(*tab);
    FRequests.Queue().Run();
    Q_EMIT updated();
}

void TAddMusicForm::FocusHit(qint64 record)
{
    DebugLog(u"SearchGridCardViewFocusedRecordChanged()"_s);
    if (TSearchHit* hit = FTabs.Focus(record)) {
        FRequests.AskForRecord(FTabs.Current(), *hit);
        FRequests.AskForLargeCover(FTabs.Current().Id, *hit, nullptr);
        if (FRequests.Queue().GetCount() > 0)
            FRequests.Queue().Run();
    }
    Q_EMIT updated();
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
    FRequests.AskForLargeCover(request.Grid, *hit, FRequests.RecordAction(hit->DataProvider));
    FRequests.Queue().Run();
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
