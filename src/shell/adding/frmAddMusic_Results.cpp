// SPDX-License-Identifier: GPL-3.0-or-later
#include "frmAddMusic.h"
#include "frmAddMusic_p.h"
#include "uColumns.h"
#include "uDebugLog.h"
#include "uDefaults.h"
#include "uDictionaries.h"
#include "uDownloader.h"
#include "uFieldEditors.h"
#include "uFieldText.h"
#include "uJSONToXML.h"
#include "uTHStrings.h"

#include <algorithm>
#include <span>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

template <class TObject, class... TArguments>
std::unique_ptr<TObject> MakeMessage(const TSearchTab& tab, const TSearchHit& hit, TArguments&&... arguments)
{
    auto message = std::make_unique<TObject>(std::forward<TArguments>(arguments)...);
    message->RecordIndex = hit.RecordIndex;
    message->Grid = tab.Id;
    return message;
}

constexpr size_t MostPictures = 10; // of one hit

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

const QStringList& DetailColumns()
{
    static const QStringList columns{u"Artist"_s,
                                     u"ReleaseName"_s,
                                     u"MediaType"_s,
                                     u"ReleaseDate"_s,
                                     u"ReleaseYear"_s,
                                     u"OriginalReleaseDate"_s,
                                     u"OriginalReleaseYear"_s,
                                     u"Label"_s,
                                     u"Genre"_s,
                                     u"Barcode"_s,
                                     u"CatalogNo"_s,
                                     u"ASIN"_s,
                                     u"CountryCode"_s,
                                     u"Packaging"_s,
                                     u"Spars"_s,
                                     u"Channels"_s,
                                     u"Composer"_s,
                                     u"Conductor"_s,
                                     u"Orchestra"_s,
                                     u"Chorus"_s,
                                     u"IsLive"_s,
                                     u"IsRare"_s,
                                     u"IsCompilation"_s,
                                     u"IsReissue"_s,
                                     u"Price"_s,
                                     u"Currency"_s,
                                     u"Comments"_s,
                                     u"DataProvider"_s,
                                     u"Link"_s,
                                     u"BuyNowLink"_s};
    return columns;
}

QString DetailValue(const QString& column, const TVariant& value)
{
    if (VarIsNull(value))
        return {};
    if (value.typeId() == QMetaType::Bool)
        return GetLanguageString(value.toBool() ? u"cSYes"_s : u"cSNo"_s);
    const QString text = VarToStr(value);
    if (column != "CountryCode"_L1)
        return text;
    const auto& countries = Countries();
    const auto found = std::ranges::find(countries, text, &TCountry::Value);
    return found == countries.end() ? text : found->Description;
}

QString DetailLabel(const QString& column)
{
    for (const TColumnDef& def : ReleaseColumns()) {
        if (column.compare(QLatin1StringView(def.Name), Qt::CaseInsensitive) == 0)
            return GetLanguageString(QString::fromLatin1(def.LabelKey));
    }
    return column;
}

} // namespace

TDetailData BuildReleaseDetails(const TAlbumRelease& release)
{
    TDetailData detail;
    const auto text = [&](const QString& key) { return VarToStr(release.GetItem2(key)); };
    detail.Title = text(u"ReleaseName"_s);
    detail.Artist = text(u"Artist"_s);
    for (const TCoverPictureType type : {cptFrontLarge, cptFrontThumb}) {
        const TCoverPicture* cover = release.GetPicByType(type);
        if (cover && cover->HasImage() && detail.Cover.isEmpty())
            detail.Cover = cover->Bytes();
    }
    TDetailSection general{u"General"_s, GetLanguageString(u"cSTabGeneral"_s), {}};
    for (const QString& column : DetailColumns()) {
        const QString value = DetailValue(column, release.GetItem2(column));
        if (!value.isEmpty())
            general.Fields.push_back({column, DetailLabel(column), value, LinkOfField(column, value)});
    }
    detail.Sections.push_back(std::move(general));
    std::vector<TDetailTrackRow> rows;
    for (const TAlbumTrack& track : release.Tracks)
        rows.push_back({track.DiscNo, track.Side, track.TrackNo, track.TrackName,
                        track.TrackArtist == detail.Artist ? QString() : track.TrackArtist,
                        track.DurationFrac > 0 ? track.DurationFrac : track.DurationSec / 86400.0});
    AddDetailTracks(detail, rows);
    for (const TAlbumCredit& credit : release.Credits)
        detail.Credits.push_back({credit.Musician, credit.Credit});
    return detail;
}

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

void TAddMusicForm::FillRows(TSearchHit& hit)
{
    const TAlbumRelease& release = *hit.DataPointer;
    const auto text = [&](const QString& key) { return VarToStr(release.GetItem2(key)); };
    hit.Artist = text(u"Artist"_s);
    hit.ReleaseName = text(u"ReleaseName"_s);
    hit.ReleaseYear = text(u"ReleaseYear"_s);
    hit.Label = text(u"Label"_s);
    hit.CatalogNo = text(u"CatalogNo"_s);
    hit.Country = text(u"CountryCode"_s);
    hit.Type = text(u"MediaType"_s);
    hit.Yours = FOwned.Loaded() && FOwned.Holds(release);
}

void TAddMusicForm::FillResults(const TInfoGrabberServiceAction& action, TSearchTab& tab, TAlbumReleases releases)
{
    const bool current = &tab == &FTabs[static_cast<size_t>(FCurrentTab)];
    for (auto& release : releases) {
        TSearchHit& hit = tab.Hits.emplace_back();
        hit.RecordIndex = ++FLastId;
        hit.DataProvider = action.Name();
        hit.DataPointer = std::move(release);
        const TInfoGrabberService* service = FGrabber.InfoGrabberServices().GetServiceByName(action.Name());
        hit.Complete = !action.NeedToDownloadExtraInfo() || !service || !service->GetActionByType(satGetRelease);
        FillRows(hit);
        const std::span pictures(hit.DataPointer->Pictures);
        for (const auto& picture : pictures.first(std::min(pictures.size(), MostPictures))) {
            if (!picture->URL().isEmpty())
                FDownloadQueue->AddDownloader(
                    MakeDownloader<TPictureDownloader>, PictureURL(action, *hit.DataPointer, picture->URL()), {},
                    WM_USER_METADATA_THUMB_PICTURE, MakeMessage<TMsgObjWM_USER_METADATA_THUMB_PICTURE>(tab, hit));
        }
    }
    if (current && !releases.empty())
        Q_EMIT hitsChanged();
    FDownloadQueue->Run();
}

void TAddMusicForm::TextArrived(TUserMessage& message)
{
    const auto& search = static_cast<const TMsgObjWM_USER_METADATA_TEXT_SEARCH&>(*message.LParam);
    const TInfoGrabberServiceAction* action = search.Action;
    TSearchTab* tab = FindTab(search.Grid);
    if (!tab || !action)
        return;
    auto* answer = dynamic_cast<TReadAnswer*>(message.WParam.get());
    if (!answer)
        return;
    const TAnswerDocument& document = answer->Document;
    const bool understood = document.Fault == afNone;
    if (!understood)
        DebugLog(u"[Search] %1: %2"_s.arg(action->Name(), document.Reason));
    if (search.Service < tab->Services.size()) {
        TServiceStatus& status = tab->Services[search.Service];
        status.Found = static_cast<int>(document.Releases.size());
        status.State = understood ? ssFound : ssFailed;
        status.Reason = understood ? QString()
                                   : GetLanguageString(document.Fault == afTooLarge ? u"cSReasonTooLarge"_s
                                                                                    : u"cSReasonNotUnderstood"_s);
        if (document.Releases.empty() && !document.IsUnknown && !action->MissingKeys().isEmpty())
            status.State = ssNeedsKey;
    }
    FillResults(*action, *tab, std::move(answer->Releases));
    Q_EMIT updated();
}

void TAddMusicForm::SetReason(TServiceStatus& status, const TJobReport& report, const TInfoGrabberServiceAction& action)
{
    const auto text = [](const char16_t* key, const QString& value = {}) {
        return FormatText(GetLanguageString(QString::fromUtf16(key)), {value});
    };
    status.State = ssFailed;
    switch (report.Failure) {
    case dfAborted:
        status.State = ssStopped;
        status.Reason = text(u"cSReasonStopped");
        return;
    case dfHTTP:
        if (report.Status == 401 || report.Status == 403)
            status.Reason = text(u"cSReasonRefused", QString::number(report.Status));
        else if (report.Status == 429 || report.Status == 503)
            status.Reason = text(u"cSReasonBusy", QString::number(report.Status));
        else
            status.Reason = text(u"cSReasonHTTP", QString::number(report.Status));
        break;
    case dfTimeout:
        status.Reason = text(u"cSReasonTimeout", QString::number(NetworkSettings().ResponseTimeout / 1000));
        break;
    case dfTooSlow: status.Reason = text(u"cSReasonTooSlow"); break;
    case dfNoHost: status.Reason = text(u"cSReasonNoHost"); break;
    case dfNoConnection: status.Reason = text(u"cSReasonNoConnection"); break;
    case dfCutOff: status.Reason = text(u"cSReasonCutOff"); break;
    case dfTooLarge: status.Reason = text(u"cSReasonTooLarge"); break;
    case dfCertificate: status.Reason = text(u"cSReasonCertificate"); break;
    case dfProxyLogin: status.Reason = text(u"cSReasonProxyLogin"); break;
    case dfBadURL: status.Reason = text(u"cSReasonBadURL"); break;
    default: status.Reason = text(u"cSReasonOther"); break;
    }
    const bool refused = report.Failure == dfHTTP && report.Status >= 400 && report.Status <= 403;
    if (refused && !action.MissingKeys().isEmpty())
        status.State = ssNeedsKey;
}

void TAddMusicForm::JobEvent(const TJobReport& report)
{
    if (report.State == jsFailed) { // it can be asked for again
        const auto [begin, end] = FRecordJobs.equal_range(report.URL);
        for (auto job = begin; job != end; ++job) {
            TSearchTab* tab = FindTab(job->second.first);
            if (TSearchHit* hit = tab ? FindHit(*tab, job->second.second) : nullptr)
                hit->Fetched = false;
        }
    }
    const auto [first, last] = FSearchJobs.equal_range(report.URL);
    for (auto job = first; job != last; ++job) {
        TSearchTab* tab = FindTab(job->second.Tab);
        if (!tab || job->second.Service >= tab->Services.size())
            continue;
        TServiceStatus& status = tab->Services[job->second.Service];
        switch (report.State) {
        case jsWorking: status.State = ssSearching; break;
        case jsWaiting:
            status.State = ssWaiting;
            status.Until = QDateTime::currentDateTime().addMSecs(report.Milliseconds);
            break;
        case jsDone: break; // what was found is known from the answer
        case jsFailed:
            // An unknown disc is answered like this.
            if (report.Status == 404 && tab->CurrentSearch->SearchType() == stCDDB && report.Failure == dfHTTP) {
                status.State = ssFound;
                status.Found = 0;
            } else {
                SetReason(status, report, tab->CurrentSearch->GetItem(static_cast<int>(job->second.Service)));
            }
            break;
        }
    }
    if (first != last)
        Q_EMIT updated();
}

void TAddMusicForm::FocusHit(qint64 record)
{
    DebugLog(u"SearchGridCardViewFocusedRecordChanged()"_s);
    TSearchTab& tab = FTabs[static_cast<size_t>(FCurrentTab)];
    TSearchHit* hit = FindHit(tab, record);
    tab.Focused = hit ? record : 0;
    if (hit && hit->DataPointer) {
        AskForRecord(tab, *hit);
        AskForLargeCover(tab, *hit, nullptr);
        if (FDownloadQueue->GetCount() > 0)
            FDownloadQueue->Run();
    }
    Q_EMIT detailsChanged();
    Q_EMIT updated();
}

void TAddMusicForm::AskForRecord(TSearchTab& tab, TSearchHit& hit)
{
    const TInfoGrabberServiceAction* entry =
        tab.CurrentSearch ? tab.CurrentSearch->GetItemByName(hit.DataProvider) : nullptr;
    if (!entry || !entry->NeedToDownloadExtraInfo() || hit.Fetched)
        return;
    const TInfoGrabberService* service = FGrabber.InfoGrabberServices().GetServiceByName(hit.DataProvider);
    const TInfoGrabberServiceAction* action = service ? service->GetActionByType(satGetRelease) : nullptr;
    if (!action)
        return;
    FParams.Clear();
    FParams.AddPrivateKeysToParams();
    FParams.AddSearchParamsFromAlbumRelease(*hit.DataPointer);
    FParams.AddQueryTwins();
    const QString url = FParams.ReplaceWithParams(action->URL());
    FRecordJobs.emplace(url, std::pair(tab.Id, hit.RecordIndex));
    FDownloadQueue->AddDownloader(
        action->JSON() ? MakeDownloader<TJSONTextDownloader> : MakeDownloader<TTextDownloader>, url, {},
        WM_USER_METADATA_TEXT_EXTRA_INFO,
        MakeMessage<TMsgObjWM_USER_METADATA_TEXT_EXTRA_INFO>(tab, hit, TAnswerReader(FGrabber, *action, url)));
    hit.Fetched = true;
}

void TAddMusicForm::AskForLargeCover(TSearchTab& tab, TSearchHit& hit, const TInfoGrabberServiceAction* action)
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
    const auto& object = static_cast<const TMsgObjWM_USER_METADATA_TEXT_EXTRA_INFO&>(*message.LParam);
    TSearchTab* tab = FindTab(object.Grid);
    TSearchHit* hit = tab ? FindHit(*tab, object.RecordIndex) : nullptr;
    if (!hit || !hit->DataPointer)
        return;
    const TInfoGrabberService* service = FGrabber.InfoGrabberServices().GetServiceByName(hit->DataProvider);
    const TInfoGrabberServiceAction* action = service ? service->GetActionByType(satGetRelease) : nullptr;
    hit->Fetched = false; // until it is of use
    const auto* answer = dynamic_cast<const TReadAnswer*>(message.WParam.get());
    if (!action || !answer || answer->Document.Releases.empty())
        return;
    object.Reader.LoadOnto(*hit->DataPointer, answer->Document.Releases.front());
    hit->Fetched = hit->Complete = true;
    FillRows(*hit);
    AskForLargeCover(*tab, *hit, action);
    FDownloadQueue->Run();
    Q_EMIT hitChanged(hit->RecordIndex);
    if (tab->Id == Current().Id && Current().Focused == hit->RecordIndex)
        Q_EMIT detailsChanged();
}

void TAddMusicForm::ThumbArrived(TUserMessage& message)
{
    const auto& object = static_cast<const TMsgObjHit&>(*message.LParam);
    // A picture may share its address with a text that somebody else asked for.
    const auto* answer = dynamic_cast<const TPictureAnswer*>(message.WParam.get());
    TSearchTab* tab = FindTab(object.Grid);
    TSearchHit* hit = tab ? FindHit(*tab, object.RecordIndex) : nullptr;
    if (!hit || !answer)
        return;
    if (answer->Image.size() == QSize(1, 1)) { // how some services say that they have none
        hit->Cover = {};
    } else {
        hit->Cover = answer->Small;
        TCoverPicture* thumb = hit->DataPointer ? hit->DataPointer->GetPicByType(cptFrontThumb) : nullptr;
        if (thumb)
            thumb->LoadFromBytes(answer->Bytes);
    }
    Q_EMIT hitChanged(hit->RecordIndex);
    if (tab->Id == Current().Id && Current().Focused == hit->RecordIndex)
        Q_EMIT detailsChanged();
}

void TAddMusicForm::LargeArrived(TUserMessage& message)
{
    const auto& object = static_cast<const TMsgObjHit&>(*message.LParam);
    const auto* answer = dynamic_cast<const TPictureAnswer*>(message.WParam.get());
    TSearchTab* tab = FindTab(object.Grid);
    TSearchHit* hit = tab ? FindHit(*tab, object.RecordIndex) : nullptr;
    TCoverPicture* cover = hit && hit->DataPointer ? hit->DataPointer->GetPicByType(cptFrontLarge) : nullptr;
    if (!cover || !answer)
        return;
    if (answer->Image.size() != QSize(1, 1))
        cover->LoadFromBytes(answer->Bytes);
    if (tab->Id == Current().Id && Current().Focused == hit->RecordIndex)
        Q_EMIT detailsChanged();
}

TDetailData TAddMusicForm::Details() const
{
    DebugLog(u"UpdateRightPaneData()"_s);
    const TSearchHit* hit = FocusedHit();
    if (!hit || !hit->DataPointer)
        return {};
    TDetailData detail = BuildReleaseDetails(*hit->DataPointer);
    detail.ID = hit->RecordIndex;
    return detail;
}

QString TAddMusicForm::DetailsProvider() const
{
    const TSearchHit* hit = FocusedHit();
    if (!hit)
        return {};
    const TInfoGrabberService* service = FGrabber.InfoGrabberServices().GetServiceByName(hit->DataProvider);
    return service ? service->DisplayName() : hit->DataProvider;
}

} // namespace Kestrune
