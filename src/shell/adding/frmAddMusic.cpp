// SPDX-License-Identifier: GPL-3.0-or-later
#include "frmAddMusic.h"

#include "frmAddMusic_p.h"
#include "uDebugLog.h"
#include "uDefaults.h"
#include "uDictionaries.h"
#include "uJSONToXML.h"
#include "uPrompt.h"
#include "uTHStrings.h"
#include "uWaitCursor.h"

#include <algorithm>
#include <optional>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int SimultaneousDownloads = 5;
constexpr int MostBarcodes = 500; // a tab each
constexpr size_t MostHits = 500;  // of one answer

} // namespace

TAddMusicForm::TAddMusicForm(TInfoGrabber& grabber, TDataModuleMain& data, TPrompt& prompt)
    : FGrabber(grabber),
      FPrompt(prompt),
      BarcodeSearch(grabber.GetSearchByType(stBarcode)),
      CatalogNoSearch(grabber.GetSearchByType(stCatNo)),
      ReleaseSearch(grabber.GetSearchByType(stRelease)),
      ArtistSearch(grabber.GetSearchByType(stArtist)),
      ReleaseAndArtistSearch(grabber.GetSearchByType(stArtistAndRelease)),
      CDSearch(grabber.GetSearchByType(stCDDB)),
      FOwned(data),
      FDownloadQueue(std::make_unique<TDownloadQueue>(Handle()))
{
    ReadDisc = [](const QString& drive, TDiscTexts& texts, QString& error) {
        return GetTOCAndDiscID(drive, texts, error);
    };
    ListDrives = [] { return ListCDDrives(); };
    EjectDrive = [](const QString& drive) { return EjectCD(drive); };
    FDownloadQueue->SetMaxSimultaneousThreads(SimultaneousDownloads);
    FDownloadQueue->FOnNewStatusEvent = [this](int, const QString& text) {
        if (FClosed)
            return;
        FStatusText = text;
        Q_EMIT updated();
    };
    FDownloadQueue->OnStarted = [this] {
        FProgressMaximum = FProgressPosition = 0;
        Q_EMIT updated();
    };
    FDownloadQueue->OnAllThreadsTerminated = [this] {
        FProgressMaximum = FProgressPosition = 0;
        FStatusText = GetLanguageString(FDiscFailed ? u"cSDiscNotRead"_s : u"cSDownloadComplete"_s);
        EndSearching();
        Q_EMIT updated();
        if (!FBarcodesLeft.isEmpty())
            PostUserMessage(Handle(), {WM_USER_NEXT_BARCODE, nullptr, nullptr});
    };
    FDownloadQueue->FOnThreadsCountChange = [this](int waiting, int running, int total) {
        DebugLog(u"OnThreadsCountChange WaitingCount = %1, RunningCount = %2, TotalThreads = %3"_s.arg(waiting)
                     .arg(running)
                     .arg(total));
        if (total <= 0)
            return;
        FProgressMaximum = std::max(FProgressMaximum, total);
        FProgressPosition = FProgressMaximum - total;
        FStatusText = FormatText(GetLanguageString(u"cSLeftDownloadsFmt"_s), {QString::number(total)});
        Q_EMIT updated();
    };
    FDownloadQueue->SetOnJobEvent([this](const TJobReport& report) { JobEvent(report); });
    connect(&FOwned, &TOwnedReleases::loaded, this, &TAddMusicForm::MarkOwned);
    AddTab();
    FDrives = ListDrives();
    FDrive = Defaults().DefaultCD;
    if (FDrive.isEmpty() && !FDrives.isEmpty())
        FDrive = FDrives.front();
}

// Events are served while the last jobs end: nothing of them may be taken for news.
TAddMusicForm::~TAddMusicForm()
{
    FClosed = true;
    FDownloadQueue->Terminate();
    FDownloadQueue->WaitFor();
}

void TAddMusicForm::FormShow()
{
    FClosed = false;
    ++FOpening;
    FDrives = ListDrives();
    if (FDrive.isEmpty() && !FDrives.isEmpty())
        FDrive = FDrives.front();
    FOwned.Load();
    Q_EMIT updated();
}

void TAddMusicForm::FormClose()
{
    FClosed = true;
    actStop();
    actClear();
}

void TAddMusicForm::SetArea(TSearchArea area)
{
    FArea = area;
    Q_EMIT updated();
}

void TAddMusicForm::SetDrive(const QString& drive)
{
    FDrive = drive;
    Defaults().DefaultCD = drive;
    Q_EMIT updated();
}

int& TAddMusicForm::MaskOf(TSearchArea area) const
{
    switch (area) {
    case saBarcode: return Defaults().SearchByBarcode;
    case saCatalogNo: return Defaults().SearchByCatalogNo;
    case saCD: return Defaults().SearchByCD;
    default: return Defaults().SearchByArtistRelease;
    }
}

QStringList TAddMusicForm::ServiceNames(TSearchArea area) const
{
    const TInfoGrabberSearch* search = area == saBarcode     ? BarcodeSearch
                                       : area == saCatalogNo ? CatalogNoSearch
                                       : area == saCD        ? CDSearch
                                                             : ReleaseSearch;
    QStringList names;
    for (int i = 0; search && i < search->Count(); ++i) {
        const QString& name = search->GetItem(i).Name();
        const TInfoGrabberService* service = FGrabber.InfoGrabberServices().GetServiceByName(name);
        names.append(service && !service->DisplayName().isEmpty() ? service->DisplayName() : name);
    }
    return names;
}

bool TAddMusicForm::IsServiceChosen(TSearchArea area, int index) const
{
    return index >= 0 && index < 31 && ((MaskOf(area) >> index) & 1) != 0;
}

void TAddMusicForm::ChooseService(TSearchArea area, int index, bool on)
{
    if (index < 0 || index >= 31)
        return;
    int& mask = MaskOf(area);
    mask = on ? mask | (1 << index) : mask & ~(1 << index);
    Q_EMIT updated();
}

std::vector<TServiceStatus> TAddMusicForm::Statuses() const
{
    if (Current().CurrentSearch && Current().Area == FArea)
        return Current().Services;
    std::vector<TServiceStatus> idle;
    for (const QString& name : ServiceNames(FArea)) {
        TServiceStatus& status = idle.emplace_back();
        status.DisplayName = name;
    }
    return idle;
}

bool TAddMusicForm::SearchEnabled() const { return !Busy() && !FReadingDisc; }

bool TAddMusicForm::SaveEnabled() const { return !Busy() && !Current().Selection.empty(); }

QString TAddMusicForm::SearchHint() const
{
    return SearchEnabled() ? QString() : GetLanguageString(FReadingDisc ? u"cSReadingDisc"_s : u"cSSearchWaits"_s);
}

QString TAddMusicForm::SaveHint() const
{
    if (Busy())
        return GetLanguageString(u"cSSaveWaits"_s);
    return Current().Selection.empty() ? GetLanguageString(u"cSSaveNeedsSelection"_s) : QString();
}

void TAddMusicForm::Search()
{
    switch (FArea) {
    case saArtistOrRelease: return actSearchByArtistOrRelease();
    case saBarcode: return actSearchByBarcode();
    case saCatalogNo: return actSearchByCatalogNo();
    case saCD: return actSearchByCD();
    }
}

void TAddMusicForm::actSearchByArtistOrRelease()
{
    if (!SearchEnabled())
        return;
    const bool hasArtist = !Artist.trimmed().isEmpty();
    const bool hasRelease = !ReleaseTitle.trimmed().isEmpty();
    if (!hasArtist && !hasRelease)
        return;
    FBarcode = CleanBarcode(SplitLines(Barcodes).value(0));
    StartSearch(hasArtist && hasRelease ? stArtistAndRelease : hasRelease ? stRelease : stArtist, saArtistOrRelease);
}

void TAddMusicForm::actSearchByBarcode()
{
    if (!SearchEnabled())
        return;
    FBarcodesLeft.clear();
    for (const QString& line : SplitLines(Barcodes)) {
        if (const QString code = CleanBarcode(line); !code.isEmpty() && FBarcodesLeft.size() < MostBarcodes)
            FBarcodesLeft.append(code);
    }
    if (FBarcodesLeft.isEmpty())
        return;
    FBarcode = FBarcodesLeft.takeFirst();
    StartSearch(stBarcode, saBarcode);
}

// The next of several codes, in a tab of its own.
void TAddMusicForm::NextBarcode()
{
    if (FBarcodesLeft.isEmpty() || !SearchEnabled())
        return;
    FBarcode = FBarcodesLeft.takeFirst();
    actNewTab();
    StartSearch(stBarcode, saBarcode);
}

void TAddMusicForm::actSearchByCatalogNo()
{
    if (!SearchEnabled() || CatalogNo.trimmed().isEmpty())
        return;
    FBarcode = CleanBarcode(SplitLines(Barcodes).value(0));
    StartSearch(stCatNo, saCatalogNo);
}

void TAddMusicForm::actSearchByCD()
{
    if (!SearchEnabled())
        return;
    FReadingDisc = true;
    Q_EMIT updated();
    struct TRead {
        std::optional<TWaitCursor> Cursor{std::in_place};
        TDiscTexts Texts;
    };
    const auto result = std::make_shared<TRead>();
    FDiscReader = std::make_unique<TTaskThread>([read = ReadDisc, drive = FDrive, result](std::stop_token) {
        QString error; // goes to the debug log
        if (!read(drive, result->Texts, error))
            result->Texts = {};
    });
    FDiscReader->OnTerminate = [this, result, tab = Current().Id, opening = FOpening] {
        result->Cursor.reset();
        FReadingDisc = false;
        if (!FClosed && opening == FOpening)
            DiscRead(result->Texts, tab);
        Q_EMIT updated();
    };
    FDiscReader->Start();
}

// A disc that was not read is searched for as well, with empty texts.
void TAddMusicForm::DiscRead(const TDiscTexts& texts, qint64 tab)
{
    // The tab in which the search was begun, whichever is looked at meanwhile.
    const auto found = std::ranges::find(FTabs, tab, &TSearchTab::Id);
    if (found == FTabs.end())
        return;
    SetCurrentTab(static_cast<int>(found - FTabs.begin()));
    FCachedTOC = texts.TOC;
    FCachedTOC_Microsoft = texts.TOC_Microsoft;
    FCachedDiscID = texts.DiscID;
    FCachedTOC_DECIMAL = texts.TOC_DECIMAL;
    FDiscFailed = texts.DiscID.isEmpty();
    StartSearch(stCDDB, saCD);
}

QString TAddMusicForm::TabCaption(TInfoGrabberSearchType type) const
{
    const auto text = [](const QString& key, const QStringList& values) {
        return FormatText(GetLanguageString(key), values);
    };
    const QString artist = Artist.trimmed(), title = ReleaseTitle.trimmed();
    switch (type) {
    case stArtistAndRelease: return text(u"cSReleaseAndArtistFmt"_s, {artist, title});
    case stArtist: return text(u"cSArtistFmt"_s, {artist});
    case stRelease: return text(u"cSReleaseFmt"_s, {title});
    case stBarcode: return text(u"cSBarcodeFmt"_s, {FBarcode});
    case stCDDB: return GetLanguageString(u"cSCDSearch"_s);
    case stCatNo: return text(u"cSCatalogNoFmt"_s, {CatalogNo.trimmed()});
    default: return {};
    }
}

void TAddMusicForm::StartSearch(TInfoGrabberSearchType type, TSearchArea area)
{
    actClear();
    CurrentSearch = FGrabber.GetSearchByType(type);
    TSearchTab& tab = FTabs[static_cast<size_t>(FCurrentTab)];
    tab.CurrentSearch = CurrentSearch;
    tab.Area = area;
    tab.Caption = TabCaption(type);
    tab.Words = {FBarcode, CatalogNo.trimmed(), Artist.trimmed(), ReleaseTitle.trimmed(), {}};
    if (type == stCDDB)
        tab.Words.Disc = TDiscWords{FCachedDiscID, FCachedTOC, FCachedTOC_Microsoft, FCachedTOC_DECIMAL};
    else
        FDiscFailed = false;
    tab.Services.clear();
    for (int i = 0; CurrentSearch && i < CurrentSearch->Count(); ++i) {
        TServiceStatus& status = tab.Services.emplace_back();
        status.Name = CurrentSearch->GetItem(i).Name();
        status.DisplayName = ServiceNames(area).value(i, status.Name);
    }
    for (size_t i = 0; i < tab.Services.size(); ++i) {
        if (IsServiceChosen(area, static_cast<int>(i)))
            AddSearchJob(tab, i);
    }
    Q_EMIT tabsChanged();
    Q_EMIT updated();
    FDownloadQueue->Run();
    Q_EMIT updated();
}

void TAddMusicForm::AddSearchJob(TSearchTab& tab, size_t service)
{
    const TInfoGrabberServiceAction& entry = tab.CurrentSearch->GetItem(static_cast<int>(service));
    FDownloadQueue->FAgent = ServiceAgent(Defaults()); // the contact may have changed
    FillSearchParams(FParams, tab.Words, entry);
    const QString url = FParams.ReplaceWithParams(entry.URL());
    auto message = std::make_unique<TMsgObjWM_USER_METADATA_TEXT_SEARCH>(TAnswerReader(FGrabber, entry, url), MostHits);
    message->Action = &entry;
    message->Grid = tab.Id;
    message->Service = service;
    tab.Services[service].State = ssSearching;
    tab.Services[service].Reason.clear();
    FSearchJobs.emplace(url, TJobOwner{tab.Id, service});
    FDownloadQueue->AddDownloader(entry.JSON() ? MakeDownloader<TJSONTextDownloader> : MakeDownloader<TTextDownloader>,
                                  url, {}, WM_USER_METADATA_TEXT_SEARCH, std::move(message));
}

// All jobs have ended: a service whose answer found nobody does not search any more.
void TAddMusicForm::EndSearching()
{
    for (const auto& [url, owner] : FSearchJobs) {
        TSearchTab* tab = FindTab(owner.Tab);
        if (!tab || owner.Service >= tab->Services.size())
            continue;
        TServiceStatus& status = tab->Services[owner.Service];
        if (status.State != ssSearching && status.State != ssWaiting)
            continue;
        status.State = ssStopped;
        status.Reason = GetLanguageString(u"cSReasonStopped"_s);
    }
    FSearchJobs.clear();
    FRecordJobs.clear();
}

void TAddMusicForm::RetryService(int index)
{
    TSearchTab& tab = FTabs[static_cast<size_t>(FCurrentTab)];
    if (!RetryEnabled() || !tab.CurrentSearch || index < 0 || index >= static_cast<int>(tab.Services.size()))
        return;
    CurrentSearch = tab.CurrentSearch;
    AddSearchJob(tab, static_cast<size_t>(index));
    FDownloadQueue->Run();
    Q_EMIT updated();
}

void TAddMusicForm::actStop()
{
    FBarcodesLeft.clear();
    FDownloadQueue->Terminate();
}

void TAddMusicForm::actTestConnection()
{
    if (FTest)
        return;
    const auto good = std::make_shared<bool>(false);
    FTest = std::make_unique<TTaskThread>(
        [good, url = TestURL](std::stop_token stop) { *good = TestConnection(url, stop); });
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

void TAddMusicForm::actEjectCD()
{
    if (!EjectEnabled())
        return;
    // A drive takes its time.
    const auto done = std::make_shared<bool>(false);
    FEject = std::make_unique<TTaskThread>(
        [eject = EjectDrive, drive = FDrive, done](std::stop_token) { *done = eject(drive); });
    FEject->OnTerminate = [this, drive = FDrive, done] {
        const bool opened = *done;
        FEject.reset();
        if (!opened)
            FStatusText = FormatText(GetLanguageString(u"cSEjectFailed"_s), {drive});
        Q_EMIT updated();
    };
    FEject->Start();
    Q_EMIT updated();
}

} // namespace Kestrune
