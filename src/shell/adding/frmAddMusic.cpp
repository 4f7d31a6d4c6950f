// SPDX-License-Identifier: GPL-3.0-or-later
#include "frmAddMusic.h"

#include "uDebugLog.h"
#include "uPrompt.h"
#include "uTHStrings.h"

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

TAddMusicForm::TAddMusicForm(TInfoGrabber& grabber, TDataModuleMain& data, TPrompt& prompt)
    : FGrabber(grabber), FPrompt(prompt), FFields(grabber), FTabs(data), FRequests(grabber, Handle())
{
    ConnectParts();
    SetUpQueue();
}

// Events are served while the last jobs end: nothing of them may be taken for news.
TAddMusicForm::~TAddMusicForm()
{
    FClosed = true;
    FRequests.Queue().Terminate();
    FRequests.Queue().WaitFor();
}

void TAddMusicForm::ConnectParts()
{
    connect(&FFields, &TAddFields::changed, this, &TAddMusicForm::updated);
    connect(&FDrive, &TDiscDrive::changed, this, &TAddMusicForm::updated);
    connect(&FTabs, &THitTabs::changed, this, &TAddMusicForm::updated);
    connect(&FDrive, &TDiscDrive::ejectFailed, this,
            [this](const QString& drive) { FStatusText = FormatText(GetLanguageString(u"cSEjectFailed"_s), {drive}); });
    connect(&FTabs, &THitTabs::tabsChanged, this, [this] {
        std::vector<qint64> tabs;
        for (const TSearchTab& tab : FTabs.Items())
            tabs.push_back(tab.Id);
        FStates.KeepOnly(tabs);
    });
}

void TAddMusicForm::SetUpQueue()
{
    TDownloadQueue& queue = FRequests.Queue();
    queue.FOnNewStatusEvent = [this](int, const QString& text) {
        if (FClosed)
            return;
        FStatusText = text;
        Q_EMIT updated();
    };
    queue.OnStarted = [this] {
        FProgressMaximum = FProgressPosition = 0;
        Q_EMIT updated();
    };
    queue.OnAllThreadsTerminated = [this] { JobsEnded(); };
    queue.FOnThreadsCountChange = [this](int waiting, int running, int total) {
        CountChanged(waiting, running, total);
    };
    queue.SetOnJobEvent([this](const TJobReport& report) { JobEvent(report); });
}

void TAddMusicForm::CountChanged(int waiting, int running, int total)
{
    DebugLog(
        u"OnThreadsCountChange WaitingCount = %1, RunningCount = %2, TotalThreads = %3"_s.arg(waiting).arg(running).arg(
            total));
    if (total <= 0)
        return;
    FProgressMaximum = std::max(FProgressMaximum, total);
    FProgressPosition = FProgressMaximum - total;
    FStatusText = FormatText(GetLanguageString(u"cSLeftDownloadsFmt"_s), {QString::number(total)});
    Q_EMIT updated();
}

void TAddMusicForm::JobsEnded()
{
    FProgressMaximum = FProgressPosition = 0;
    FStatusText = GetLanguageString(FDiscFailed ? u"cSDiscNotRead"_s : u"cSDownloadComplete"_s);
    FStates.EndAll();
    FRequests.Ended();
    Q_EMIT updated();
    if (!FBarcodesLeft.isEmpty())
        PostUserMessage(Handle(), {WM_USER_NEXT_BARCODE, nullptr, nullptr});
}

void TAddMusicForm::JobEvent(const TJobReport& report)
{
    if (report.State == jsFailed)
        FRequests.Failed(report.URL, FTabs);
    if (FStates.JobEvent(report))
        Q_EMIT updated();
}

void TAddMusicForm::FormShow()
{
    FClosed = false;
    ++FOpening;
    FDrive.Refresh();
    FTabs.LoadOwned();
    Q_EMIT updated();
}

void TAddMusicForm::FormClose()
{
    FClosed = true;
    actStop();
    FTabs.actClear();
}

std::vector<TServiceStatus> TAddMusicForm::Statuses() const
{
    const TSearchTab& tab = FTabs.Current();
    if (tab.CurrentSearch && tab.Area == FFields.Area())
        return FStates.Of(tab.Id);
    std::vector<TServiceStatus> idle;
    for (const QString& name : FFields.ServiceNames(FFields.Area()))
        idle.emplace_back().DisplayName = name;
    return idle;
}

QString TAddMusicForm::ProviderName(const QString& service) const
{
    const TInfoGrabberService* found = FGrabber.InfoGrabberServices().GetServiceByName(service);
    return found && !found->DisplayName().isEmpty() ? found->DisplayName() : service;
}

QString TAddMusicForm::SearchHint() const
{
    return SearchEnabled() ? QString() : GetLanguageString(FDrive.Reading() ? u"cSReadingDisc"_s : u"cSSearchWaits"_s);
}

QString TAddMusicForm::SaveHint() const
{
    if (Busy())
        return GetLanguageString(u"cSSaveWaits"_s);
    return SaveEnabled() ? QString() : GetLanguageString(u"cSSaveNeedsSelection"_s);
}

void TAddMusicForm::SearchArea(TSearchArea area)
{
    const auto type = FFields.SearchType(area);
    if (!SearchEnabled() || !type)
        return;
    if (area == saCD) {
        FDrive.Read([this, tab = FTabs.Current().Id, opening = FOpening](const TDiscTexts& texts) {
            if (!FClosed && opening == FOpening)
                DiscRead(texts, tab);
        });
        return;
    }
    QStringList codes = FFields.BarcodeList();
    const QString code = codes.isEmpty() ? QString() : codes.takeFirst();
    FBarcodesLeft = area == saBarcode ? codes : QStringList();
    StartSearch(*type, area, FFields.Words(code));
}

// The next of several codes, in a tab of its own.
void TAddMusicForm::NextBarcode()
{
    if (FBarcodesLeft.isEmpty() || !SearchEnabled())
        return;
    const QString code = FBarcodesLeft.takeFirst();
    FTabs.actNewTab();
    StartSearch(stBarcode, saBarcode, FFields.Words(code));
}

// A disc that was not read is searched for as well, with empty texts.
void TAddMusicForm::DiscRead(const TDiscTexts& texts, qint64 tab)
{
    // The tab in which the search was begun, whichever is looked at meanwhile.
    const auto found = std::ranges::find(FTabs.Items(), tab, &TSearchTab::Id);
    if (found == FTabs.Items().end())
        return;
    FTabs.SetCurrent(static_cast<int>(found - FTabs.Items().begin()));
    TSearchWords words = FFields.Words(FFields.BarcodeList().value(0));
    words.Disc = TDiscWords{texts.DiscID, texts.TOC, texts.TOC_Microsoft, texts.TOC_DECIMAL};
    StartSearch(stCDDB, saCD, words);
}

void TAddMusicForm::StartSearch(TInfoGrabberSearchType type, TSearchArea area, const TSearchWords& words)
{
    FDiscFailed = words.Disc && words.Disc->DiscID.isEmpty();
    const TInfoGrabberSearch* search = FGrabber.GetSearchByType(type);
    const TSearchTab& tab = FTabs.BeginSearch(search, area, words, SearchCaption(type, words));
    FStates.Begin(tab.Id, search, FFields.ServiceNames(area));
    for (int i = 0; search && i < search->Count(); ++i) {
        if (FFields.IsServiceChosen(area, i))
            AskService(tab, static_cast<size_t>(i));
    }
    Q_EMIT updated();
    FRequests.Queue().Run();
    Q_EMIT updated();
}

void TAddMusicForm::AskService(const TSearchTab& tab, size_t service)
{
    FStates.Asked(tab.Id, service, FRequests.AskService(tab, service));
}

void TAddMusicForm::RetryService(int index)
{
    const TSearchTab& tab = FTabs.Current();
    if (!RetryEnabled() || !tab.CurrentSearch || index < 0 || index >= tab.CurrentSearch->Count())
        return;
    AskService(tab, static_cast<size_t>(index));
    FRequests.Queue().Run();
    Q_EMIT updated();
}

void TAddMusicForm::actStop()
{
    FBarcodesLeft.clear();
    FRequests.Queue().Terminate();
}

bool TAddMusicForm::TakeSelection()
{
    if (!SaveEnabled())
        return false;
    std::vector<TSavedRelease> taken = FTabs.TakeSelection();
    const auto summaries = std::ranges::count(taken, false, &TSavedRelease::Complete);
    FStatusText = summaries > 0 ? GetLanguageString(u"cSSavedAsSummary"_s).arg(summaries) : QString();
    FChosen.Add(std::move(taken));
    return true;
}

void TAddMusicForm::actSaveAndContinue()
{
    if (TakeSelection())
        FTabs.actRemoveSelection();
}

void TAddMusicForm::actSaveAndClose()
{
    if (TakeSelection())
        FTabs.actCloseTab(FTabs.CurrentIndex());
}

void TAddMusicForm::actTestConnection()
{
    if (FTest)
        return;
    const auto good = std::make_shared<bool>(false);
    FTest = std::make_unique<TTaskThread>(
        [good, url = TestURL](const std::stop_token& stop) { *good = TestConnection(url, stop); });
    FTest->OnTerminate = [this, good] {
        const bool result = *good;
        FTest.reset();
        Q_EMIT updated();
        if (result)
            FPrompt.ShowInformation(GetLanguageString(u"cSInternetOK"_s));
        else
            FPrompt.ShowError(GetLanguageString(u"cSInternetFail"_s));
    };
    FTest->Start();
    Q_EMIT updated();
}

void TAddMusicForm::ExplainKey() { FPrompt.ShowInformation(GetLanguageString(u"cSNeedsKeyHelp"_s)); }

} // namespace Kestrune
