// SPDX-License-Identifier: GPL-3.0-or-later
#include "uServiceStates.h"

#include "uHttpClient.h"
#include "uTHStrings.h"

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

QString StatusReason(int status)
{
    const QString number = QString::number(status);
    if (status == 401 || status == 403)
        return FormatText(GetLanguageString(u"cSReasonRefused"_s), {number});
    const bool isBusy = status == 429 || status == 503;
    return FormatText(GetLanguageString(isBusy ? u"cSReasonBusy"_s : u"cSReasonHTTP"_s), {number});
}

QString FailureReason(const TJobReport& report)
{
    switch (report.Failure) {
    case dfAborted: return GetLanguageString(u"cSReasonStopped"_s);
    case dfHTTP: return StatusReason(report.Status);
    case dfTimeout:
        return FormatText(GetLanguageString(u"cSReasonTimeout"_s),
                          {QString::number(NetworkSettings().ResponseTimeout / 1000)});
    case dfTooSlow: return GetLanguageString(u"cSReasonTooSlow"_s);
    case dfNoHost: return GetLanguageString(u"cSReasonNoHost"_s);
    case dfNoConnection: return GetLanguageString(u"cSReasonNoConnection"_s);
    case dfCutOff: return GetLanguageString(u"cSReasonCutOff"_s);
    case dfTooLarge: return GetLanguageString(u"cSReasonTooLarge"_s);
    case dfCertificate: return GetLanguageString(u"cSReasonCertificate"_s);
    case dfProxyLogin: return GetLanguageString(u"cSReasonProxyLogin"_s);
    case dfBadURL: return GetLanguageString(u"cSReasonBadURL"_s);
    default: return GetLanguageString(u"cSReasonOther"_s);
    }
}

} // namespace

void TServiceStates::Begin(qint64 tab, const TInfoGrabberSearch* search, const QStringList& displayNames)
{
    TTabStates& states = FTabs[tab];
    states.Search = search;
    states.Services.clear();
    for (int i = 0; search && i < search->Count(); ++i) {
        TServiceStatus& status = states.Services.emplace_back();
        status.Name = search->GetItem(i).Name();
        status.DisplayName = displayNames.value(i, status.Name);
    }
}

const std::vector<TServiceStatus>& TServiceStates::Of(qint64 tab) const
{
    static const std::vector<TServiceStatus> none;
    const auto found = FTabs.find(tab);
    return found == FTabs.end() ? none : found->second.Services;
}

void TServiceStates::KeepOnly(const std::vector<qint64>& tabs)
{
    std::erase_if(FTabs, [&](const auto& entry) { return std::ranges::find(tabs, entry.first) == tabs.end(); });
}

TServiceStatus* TServiceStates::Find(const TJobOwner& owner)
{
    const auto found = FTabs.find(owner.Tab);
    return found != FTabs.end() && owner.Service < found->second.Services.size()
               ? &found->second.Services[owner.Service]
               : nullptr;
}

const TInfoGrabberServiceAction& TServiceStates::ActionOf(const TJobOwner& owner) const
{
    return FTabs.at(owner.Tab).Search->GetItem(static_cast<int>(owner.Service));
}

void TServiceStates::Asked(qint64 tab, size_t service, const QString& url)
{
    const TJobOwner owner{tab, service};
    if (TServiceStatus* status = Find(owner)) {
        status->State = ssSearching;
        status->Reason.clear();
        FJobs.emplace(url, owner);
    }
}

bool TServiceStates::JobEvent(const TJobReport& report)
{
    const auto [first, last] = FJobs.equal_range(report.URL);
    for (auto job = first; job != last; ++job) {
        TServiceStatus* status = Find(job->second);
        if (!status)
            continue;
        switch (report.State) {
        case jsWorking: status->State = ssSearching; break;
        case jsWaiting:
            status->State = ssWaiting;
            status->Until = QDateTime::currentDateTime().addMSecs(report.Milliseconds);
            break;
        case jsDone: break; // what was found is known from the answer
        case jsFailed: Failed(*status, job->second, report); break;
        }
    }
    return first != last;
}

void TServiceStates::Failed(TServiceStatus& status, const TJobOwner& owner, const TJobReport& report) const
{
    const bool isRefused = report.Failure == dfHTTP;
    // An unknown disc is answered like this.
    if (isRefused && report.Status == 404 && FTabs.at(owner.Tab).Search->SearchType() == stCDDB) {
        status.State = ssFound;
        status.Found = 0;
        return;
    }
    status.State = report.Failure == dfAborted ? ssStopped : ssFailed;
    status.Reason = FailureReason(report);
    if (isRefused && report.Status >= 400 && report.Status <= 403 && !ActionOf(owner).MissingKeys().isEmpty())
        status.State = ssNeedsKey;
}

void TServiceStates::Answered(qint64 tab, size_t service, const TAnswerDocument& answer)
{
    const TJobOwner owner{tab, service};
    TServiceStatus* status = Find(owner);
    if (!status)
        return;
    status->Found = static_cast<int>(answer.Releases.size());
    status->State = answer.Fault == afNone ? ssFound : ssFailed;
    status->Reason = answer.Fault == afNone       ? QString()
                     : answer.Fault == afTooLarge ? GetLanguageString(u"cSReasonTooLarge"_s)
                                                  : GetLanguageString(u"cSReasonNotUnderstood"_s);
    if (answer.Releases.empty() && !answer.IsUnknown && !ActionOf(owner).MissingKeys().isEmpty())
        status->State = ssNeedsKey;
}

void TServiceStates::EndAll()
{
    for (const auto& [url, owner] : FJobs) {
        TServiceStatus* status = Find(owner);
        if (!status || (status->State != ssSearching && status->State != ssWaiting))
            continue;
        status->State = ssStopped;
        status->Reason = GetLanguageString(u"cSReasonStopped"_s);
    }
    FJobs.clear();
}

} // namespace Kestrune
