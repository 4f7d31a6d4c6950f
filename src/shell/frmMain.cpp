// SPDX-License-Identifier: GPL-3.0-or-later
#include "frmMain.h"

#include "frmImport.h"
#include "frmServiceUpdater.h"
#include "uDBValidator.h"
#include "uDebugLog.h"
#include "uDefaults.h"
#include "uImport.h"
#include "uImportRun.h"
#include "uPrompt.h"
#include "uTHStrings.h"
#include "uWaitCursor.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>

#include <algorithm>
#include <utility>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

const std::array<QString, 2> LayoutKeys = {u"AlbumView.Layout"_s, u"TracksView.Layout"_s};
const std::array<QString, 2> InPlaceKeys = {u"AlbumView.InPlaceEditing"_s, u"TracksView.InPlaceEditing"_s};
const QString HiddenFieldsKey = u"VG.HiddenFields"_s;
const QString SavedFiltersKey = u"SavedFilters"_s;
constexpr int MostSavedFilters = 100;
constexpr int IndexDelay = 1200; // milliseconds after the start, when the window has settled
const QString FoldedKey = u"VG.Folded"_s;
constexpr int DetailDelay = 150;    // milliseconds, so that a fast walk through the list reads no pictures
constexpr qint64 CountStep = 50000; // tracks per turn of the event loop

} // namespace

TKRNMainForm::TKRNMainForm(TDataModuleMain& data, TPrompt& prompt)
    : FData(data),
      FPrompt(prompt),
      FReleaseFilters(data, data.qReleasesMain),
      FTrackFilters(data, data.qTracksAll),
      FIndex(std::make_unique<TSearchIndex>(
          data, QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) + u"/Kestrune"_s))
{
    connect(FIndex.get(), &TSearchIndex::built, this, &TKRNMainForm::IndexBuilt);
    FIndexTimer.setSingleShot(true);
    connect(&FIndexTimer, &QTimer::timeout, this, [this] { FIndex->Open(); });
    FDetailTimer.setSingleShot(true);
    FDetailTimer.setInterval(DetailDelay);
    connect(&FDetailTimer, &QTimer::timeout, this, &TKRNMainForm::RefreshDetail);
    FCountTimer.setInterval(0);
    connect(&FCountTimer, &QTimer::timeout, this, &TKRNMainForm::CountTracks);
    FLetterTimer.setSingleShot(true);
    FLetterTimer.setInterval(0);
    connect(&FLetterTimer, &QTimer::timeout, this, &TKRNMainForm::FindLetterHits);
    connect(&FData, &TDataModuleMain::changed, this, &TKRNMainForm::OnChanged);
    FActions.OnFailure = [this](const QString& sentence) { Q_EMIT barRaised(bkError, sentence, {}); };
    BindActions();
}

TKRNMainForm::~TKRNMainForm() = default;

void TKRNMainForm::FormCreate(const TMainFormHooks& hooks)
{
    using TStep = void (TKRNMainForm::*)(const TMainFormHooks&);
    // The fixed order of creation; what other windows and parts add enters at its place.
    constexpr std::pair<const char*, TStep> steps[] = {
        {"debug window", &TKRNMainForm::CreateDebugWindow}, {"settings", &TKRNMainForm::RestoreSettings},
        {"services", &TKRNMainForm::ParseServices},         {"theme", &TKRNMainForm::ApplyTheme},
        {"collection", &TKRNMainForm::ConnectAtStart},      {"detail pane", &TKRNMainForm::PrepareDetail},
        {"first view", &TKRNMainForm::SelectFirstView},
    };
    for (const auto& [name, step] : steps) {
        DebugLog(u"main window: "_s + QString::fromLatin1(name));
        Attempt([&] { (this->*step)(hooks); });
    }
    FActions.Update();
}

void TKRNMainForm::CreateDebugWindow(const TMainFormHooks& hooks)
{
    FDebugMode = static_cast<bool>(hooks.CreateDebugWindow);
    if (FDebugMode)
        hooks.CreateDebugWindow();
}

void TKRNMainForm::RestoreSettings(const TMainFormHooks&)
{
    LoadSettings();
    if (Defaults().BrokenSettingsFile.isEmpty())
        return;
    const QString file = QFileInfo(Defaults().BrokenSettingsFile).fileName();
    FPrompt.ShowError(GetLanguageString(u"cSSettingsFileBroken"_s).replace(u"%s"_s, file));
}

void TKRNMainForm::ApplyTheme(const TMainFormHooks& hooks)
{
    if (hooks.ApplyTheme)
        hooks.ApplyTheme();
}

void TKRNMainForm::ConnectAtStart(const TMainFormHooks&) { OpenCollection(Defaults().DBPath); }

void TKRNMainForm::PrepareDetail(const TMainFormHooks&)
{
    RefreshDetail();
    FData.OnReleaseInfoAfterPost = [this](TDataset& releaseInfo) { RefreshFocusedRow(releaseInfo); };
}

void TKRNMainForm::SelectFirstView(const TMainFormHooks&)
{
    // A number of a view that this window does not have leaves the first one.
    const int view = Defaults().CurrentView;
    if (view < static_cast<int>(mvThumbs) || view > static_cast<int>(mvTracks))
        return;
    FView = static_cast<TMainView>(view);
    LeaveTracksThatCannotBeRead();
}

void TKRNMainForm::FormShow()
{
    if (FFormShown)
        return;
    FFormShown = true;
    Q_EMIT paneChanged();
}

void TKRNMainForm::WMAfterFormShow()
{
    for (const QString& reason : std::exchange(FFailuresAtStart, {}))
        ReportFailure(reason);
    if (FStartChecks && !FServicesFailure.isEmpty())
        Q_EMIT barRaised(bkWarning, GetLanguageString(u"cSServicesBroken"_s), FServicesFailure);
    if (FStartChecks)
        UpdateServices(true);
    if (FData.HasData())
        FData.qReleasesMain.First();
    if (const qint64 id = FData.qReleasesMain.CurrentKey(); id != 0)
        Q_EMIT focusRequested(id);
    StartCounting();
    FLetterTimer.start();
    FIndexTimer.start(IndexDelay);
}

void TKRNMainForm::FormClose()
{
    FIndexTimer.stop();
    FIndex->Close();
    SaveSettings();
}

void TKRNMainForm::LoadSettings()
{
    SetSplashText(GetLanguageString(u"cSSplashLoadingSettings"_s));
    if (!HasSettingsStore())
        return;
    FFolded = FoldedFromText(SettingsStore().ReadString(FoldedKey, {}));
    FHiddenFields = FoldedFromText(SettingsStore().ReadString(HiddenFieldsKey, {}));
    LoadLayout(false);
    LoadLayout(true);
    FSavedFilters.clear();
    const QString saved = SettingsStore().ReadString(SavedFiltersKey, {});
    for (const QJsonValue& item : QJsonDocument::fromJson(saved.toUtf8()).array()) {
        const std::optional<TFilterSet> set = FilterSetFromText(item[u"filter"_s].toString());
        if (set && static_cast<int>(FSavedFilters.size()) < MostSavedFilters)
            FSavedFilters.push_back({item[u"name"_s].toString(), *set});
    }
}

void TKRNMainForm::LoadLayout(bool ofTracks)
{
    const size_t at = ofTracks ? 1 : 0;
    TListDataset& list = ofTracks ? FData.qTracksAll : FData.qReleasesMain;
    FInPlace[at] = SettingsStore().ReadBoolean(InPlaceKeys[at], false);
    const QString text = SettingsStore().ReadString(LayoutKeys[at], {});
    FLayouts[at] = LayoutFromText(text);
    if (!FLayouts[at]) {
        if (!text.isEmpty())
            DebugLog(u"[Views] the layout of %1 is of another version"_s.arg(LayoutKeys[at]));
        return;
    }
    std::erase_if(FLayouts[at]->Sort, [&](const TSortItem& item) { return list.FieldIndex(item.Column) < 0; });
    // The collection that is opened next is read in this order.
    list.SetSort(FLayouts[at]->Sort);
    list.SetGrouping(FLayouts[at]->Groups);
}

void TKRNMainForm::SaveSettings()
{
    if (!HasSettingsStore())
        return;
    SettingsStore().WriteString(FoldedKey, {}, FoldedToText(FFolded));
    SettingsStore().WriteString(HiddenFieldsKey, {}, FoldedToText(FHiddenFields));
    for (const size_t at : {size_t{0}, size_t{1}}) {
        SettingsStore().WriteBoolean(InPlaceKeys[at], false, FInPlace[at]);
        if (!FLayouts[at])
            continue;
        const TListDataset& list = at == 1 ? FData.qTracksAll : FData.qReleasesMain;
        FLayouts[at]->Sort = list.Sort();
        FLayouts[at]->Groups = list.Grouping();
        SettingsStore().WriteString(LayoutKeys[at], {}, LayoutToText(*FLayouts[at]));
    }
    QJsonArray saved;
    for (const TSavedFilter& filter : FSavedFilters)
        saved.append(QJsonObject{{u"name"_s, filter.Name}, {u"filter"_s, FilterSetToText(filter.Set)}});
    SettingsStore().WriteString(SavedFiltersKey, {},
                                QString::fromUtf8(QJsonDocument(saved).toJson(QJsonDocument::Compact)));
}

void TKRNMainForm::SetColumns(bool ofTracks, std::vector<TColumnState> columns)
{
    std::optional<TTableLayout>& layout = FLayouts[ofTracks ? 1 : 0];
    if (!layout)
        layout.emplace();
    layout->Columns = std::move(columns);
}

bool TKRNMainForm::EnsureTracksOpen()
{
    if (!FData.HasData() || FData.qTracksAll.Active())
        return true;
    const TWaitCursor waiting;
    const bool opened = Attempt([this] { FData.qTracksAll.Open(); });
    if (!opened)
        FData.qTracksAll.Close(); // half open it would look empty
    return opened;
}

// A damaged table must not cost the views that can still be shown.
void TKRNMainForm::LeaveTracksThatCannotBeRead()
{
    if (TracksShown() && !EnsureTracksOpen())
        FView = mvThumbs;
}

void TKRNMainForm::SetCurrentView(TMainView view)
{
    const bool ofTracks = TracksShown();
    if (view == mvTracks && !EnsureTracksOpen()) {
        Q_EMIT viewChanged(); // the button of the present view
        return;
    }
    FView = view;
    Defaults().CurrentView = static_cast<int>(view);
    Q_EMIT viewChanged();
    if (ofTracks != TracksShown()) {
        Q_EMIT filtersChanged();
        Q_EMIT sortChanged();
        Q_EMIT figuresChanged();
    }
    if (FFocused != 0)
        Q_EMIT focusRequested(FFocused);
    FActions.Update();
}

int TKRNMainForm::ThumbSize() const { return std::clamp(Defaults().ThumbSize, 0, 2); }

void TKRNMainForm::SetThumbSize(int step)
{
    Defaults().ThumbSize = std::clamp(step, 0, 2);
    Q_EMIT viewChanged();
    FActions.Update();
}

int TKRNMainForm::PaneLocation() const { return Defaults().InfoPaneLocation; }
bool TKRNMainForm::PaneClosed() const { return Defaults().FrameClosed; }

void TKRNMainForm::SetPaneClosed(bool closed)
{
    Defaults().FrameClosed = closed;
    Q_EMIT paneChanged();
    FActions.Update();
}

QString TKRNMainForm::Caption() const
{
    const QString name = Defaults().OEM.Name;
    const QString file = QFileInfo(Defaults().DBPath).fileName();
    return file.isEmpty() ? name : u"%1 - %2"_s.arg(file, name);
}

QStringList TKRNMainForm::RecentDBs() const { return Defaults().RecentDBs; }

bool TKRNMainForm::OpenCollection(const QString& path)
{
    FOpenFailure.clear();
    FReportedFailure.clear();
    FIndexTimer.stop();
    FIndex->Close();
    if (FFormShown)
        FIndexTimer.start(IndexDelay);
    bool opened = false;
    try {
        opened = FData.ConnectToDB(path);
        if (!opened && FData.HasData())
            return false; // the collection that was open stays, with its filters
        if (!opened)
            FOpenFailure = DatabaseValidationMessage(ValidateDatabaseFile(path));
    } catch (const EDatabaseError& failure) {
        FPrompt.ShowError(failure.Text());
        if (FData.HasData())
            return false;
        FOpenFailure = failure.Text();
    }
    if (const QString file = FData.CurrentFile(); !file.isEmpty())
        Defaults().DBPath = file;
    if (opened)
        AddRecentDB(Defaults().RecentDBs, path);
    AfterCollectionChange();
    return opened;
}

void TKRNMainForm::OpenRecent(const QString& path)
{
    if (Busy()) // the releases would go into the other file
        return;
    OpenCollection(path);
    FActions.Update();
}

void TKRNMainForm::AfterCollectionChange()
{
    FReleaseFilters.Clear();
    FTrackFilters.Clear();
    FTrackSelection.clear();
    FFocusedTrack = 0;
    FSearchWaits = false;
    LeaveTracksThatCannotBeRead();
    FSelection.clear();
    FFocused = FData.qReleasesMain.CurrentKey();
    CountReleases();
    FTracks = -1;
    if (FFormShown)
        StartCounting();
    RefreshDetail();
    Q_EMIT collectionOpened();
    Q_EMIT filtersChanged();
    Q_EMIT figuresChanged();
}

void TKRNMainForm::SetFocusedRelease(qint64 id)
{
    if (id == FFocused && FDetail.ID == id)
        return;
    FFocused = id;
    FDetailTimer.start();
}

void TKRNMainForm::SetSelection(std::vector<qint64> ids)
{
    FSelection = std::move(ids);
    Q_EMIT figuresChanged();
    FActions.Update();
}

std::vector<qint64> TKRNMainForm::SelectedOrFocused() const
{
    if (!FSelection.empty())
        return FSelection;
    return FFocused != 0 ? std::vector<qint64>{FFocused} : std::vector<qint64>{};
}

void TKRNMainForm::RefreshDetail()
{
    FDetailTimer.stop();
    const bool listed = TracksShown() || FData.qReleasesMain.RowOfKey(FFocused) >= 0;
    if (!FData.HasData() || FFocused == 0 || !listed) {
        FDetail = {};
    } else {
        try {
            FData.qReleasesMain.Locate(FFocused);
            FDetail = BuildDetailData(FData, FFocused);
        } catch (const EDatabaseError& failure) {
            FDetail = {};
            ReportFailure(failure.Text());
        }
    }
    Q_EMIT detailChanged();
}

void TKRNMainForm::CountReleases()
{
    FTotal = FData.HasData() ? static_cast<int>(FData.ExecSQLAndGetID(u"SELECT count(*) FROM Releases2"_s)) : 0;
    // The first time waits until the window is on the screen.
    if (FFormShown)
        FLetterTimer.start();
}

void TKRNMainForm::StartCounting()
{
    FTracks = 0;
    FTracksLength = 0.0;
    FCountedTo = 0;
    if (FData.HasData())
        FCountTimer.start();
}

void TKRNMainForm::CountTracks()
{
    // A million tracks in small steps, so that the window stays live meanwhile.
    if (!FData.HasData()) {
        FCountTimer.stop();
        return;
    }
    try {
        FTracksLength += FData.SumTrackLengths(FCountedTo, FCountedTo + CountStep, FTracks);
        FCountedTo += CountStep;
        if (FCountedTo < FData.LastTrackID())
            return;
    } catch (const EDatabaseError& failure) {
        ReportFailure(failure.Text());
    }
    FCountTimer.stop();
    Q_EMIT figuresChanged();
}

TStatusFigures TKRNMainForm::StatusFigures() const
{
    TStatusFigures figures;
    figures.OfTracks = TracksShown();
    figures.Shown = List().RecordCount();
    figures.Total = TracksShown() ? static_cast<int>(std::max<qint64>(FTracks, figures.Shown)) : FTotal;
    figures.Selected = static_cast<int>((TracksShown() ? FTrackSelection : FSelection).size());
    figures.Groups = static_cast<int>(std::ranges::count(List().Groups(), 0, &TListGroup::Level));
    figures.Tracks = FCountTimer.isActive() ? -1 : FTracks;
    figures.TracksLength = FTracksLength;
    figures.FileName = FData.HasData() ? QFileInfo(FData.CurrentFile()).fileName() : QString();
    figures.ReadOnly = FData.IsReadOnly();
    return figures;
}

void TKRNMainForm::ReportFailure(const QString& reason)
{
    if (!FFormShown) { // nobody could see it yet
        FFailuresAtStart << reason;
        return;
    }
    if (reason != FReportedFailure)
        Q_EMIT barRaised(bkError, GetLanguageString(u"cSCollectionUnreadable"_s), reason);
    FReportedFailure = reason;
}

void TKRNMainForm::CheckCollectionFile()
{
    try {
        FData.RestoreLocks();
    } catch (const EDatabaseError& failure) {
        ReportFailure(failure.Text());
    }
}

void TKRNMainForm::AddFolders(const QStringList& paths)
{
    if (paths.isEmpty() || !FData.HasData() || Busy())
        return;
    FAddFiles = std::make_unique<TImportRun>(FData, AddFilesJob(paths));
    connect(FAddFiles.get(), &TImportRun::releaseStored, this, [this] { ++FTotal; });
    connect(FAddFiles.get(), &TImportRun::finished, this, [this] {
        Q_EMIT addFilesFinished();
        FAddFiles.release()->deleteLater();
        AfterAdding();
    });
    Q_EMIT addFilesStarted();
    FAddFiles->Start();
    FActions.Update();
}

void TKRNMainForm::OpenImport()
{
    if (!FData.HasData() || Busy())
        return;
    FImport = std::make_unique<TKRNImportForm>(FData, FPrompt, ImporterClasses());
    connect(FImport.get(), &TKRNImportForm::releaseStored, this, [this] { ++FTotal; });
    connect(FImport.get(), &TKRNImportForm::closed, this, [this] {
        Q_EMIT importFinished();
        FImport.release()->deleteLater();
        AfterAdding();
    });
    Q_EMIT importStarted();
    FActions.Update();
}

bool TKRNMainForm::Attempt(const std::function<void()>& work)
{
    try {
        work();
        return true;
    } catch (const std::exception& failure) {
        ReportFailure(QString::fromUtf8(failure.what()));
        return false;
    }
}

void TKRNMainForm::AfterAdding()
{
    // The new releases take their place in the order, and tracks that are shown take in theirs.
    Attempt([this] { FData.qReleasesMain.ApplyFilter(); });
    Attempt([this] { FData.qTracksAll.Refresh(); });
    RefreshDetail();
    CountReleases();
    StartCounting();
    Q_EMIT figuresChanged();
    FActions.Update();
}

void TKRNMainForm::SetNormalGeometry(const QRect& geometry)
{
    TDefaults& settings = Defaults();
    settings.MainFormLeft = geometry.left();
    settings.MainFormTop = geometry.top();
    settings.MainFormWidth = geometry.width();
    settings.MainFormHeight = geometry.height();
}

void TKRNMainForm::SetMaximized(bool maximized) { Defaults().MainFormMaximized = maximized; }

void TKRNMainForm::SetFrameSize(int width, int height)
{
    if (width > 0)
        Defaults().FrameWidth = width;
    if (height > 0)
        Defaults().FrameHeight = height;
}

QRect TKRNMainForm::RestoredGeometry() const
{
    const TDefaults& settings = Defaults();
    return {settings.MainFormLeft, settings.MainFormTop, settings.MainFormWidth, settings.MainFormHeight};
}

bool TKRNMainForm::StartsMaximized() const { return Defaults().MainFormMaximized; }

} // namespace Kestrune
