// SPDX-License-Identifier: GPL-3.0-or-later
#include "frmMain.h"

#include "uDebugLog.h"
#include "uDefaults.h"
#include "uPrompt.h"
#include "uTHStrings.h"
#include "uWaitCursor.h"

#include <QFileInfo>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

TKRNMainForm::TKRNMainForm(TDataModuleMain& data, TPrompt& prompt)
    : FShell(data, prompt),
      FLists(FShell),
      FFigures(FShell, FLists),
      FSearch(FShell, FLists),
      FEdits(FShell, FLists),
      FPane(FShell, FLists),
      FFiles(FShell, FSearch),
      FAdding(FShell),
      FExchange(FShell, FLists),
      FUpkeep(FShell, FLists)
{
    BindActions();
    ConnectParts();
}

void TKRNMainForm::BindActions()
{
    const auto hasData = [this] { return FShell.HasData(); };
    const std::pair<QString, TMainView> views[] = {{u"actThumbView"_s, mvThumbs},
                                                   {u"actCardsView"_s, mvCards},
                                                   {u"actShelveView"_s, mvShelf},
                                                   {u"actAlbumTableView"_s, mvAlbums},
                                                   {u"actTracksView"_s, mvTracks}};
    for (const auto& [name, view] : views)
        Actions().Bind(
            name, [this, view = view] { SetCurrentView(view); }, hasData,
            [this, view = view] { return FView == view; });
    Actions().Bind(
        u"actThumbSize"_s, [this] { SetThumbSize((ThumbSize() + 1) % 3); },
        [this] { return FShell.HasData() && (FView == mvThumbs || FView == mvShelf); });
    // Tiles have no columns.
    const auto table = [this] { return FView == mvAlbums || FView == mvTracks; };
    for (const QString& name : {u"actCustomizeColumns"_s, u"actQuickFilter"_s, u"actApplyBestFit"_s, u"actExpandAll"_s,
                                u"actCollapseAll"_s, u"actToggleGridEditMode"_s})
        Actions().Restrict(name, table);
    Actions().Bind(u"actExit"_s, [this] { Q_EMIT closeRequested(); });
    for (const QString& name : {u"actHelp"_s, u"actAbout"_s, u"actCommandPalette"_s})
        FShell.BindWindow(name);
}

void TKRNMainForm::ConnectParts()
{
    connect(&FShell, &TShell::barRaised, this, &TKRNMainForm::barRaised);
    connect(&FShell, &TShell::jobProgressed, this, &TKRNMainForm::jobProgressed);
    connect(&FPane, &TDetailSession::detailChanged, this, &TKRNMainForm::detailChanged);
    connect(&FFigures, &TFigures::changed, this, &TKRNMainForm::figuresChanged);
    connect(&FLists, &TLists::selectionChanged, this, &TKRNMainForm::figuresChanged);
    connect(&FLists, &TLists::focusChanged, this,
            [this] { FPane.RefreshSoonUnlessShown(FLists.Active().FocusedRelease()); });
    connect(&FFiles, &TCollectionFiles::opened, this, &TKRNMainForm::AfterCollectionChange);
    connect(&FEdits, &TListEdits::rowsChanged, this, &TKRNMainForm::CountAnew);
    connect(&FEdits, &TListEdits::inPlaceChanged, this, &TKRNMainForm::viewChanged);
    connect(&FAdding, &TAdding::releaseStored, this, [this] { FFigures.AddOne(); });
    connect(&FAdding, &TAdding::added, this, &TKRNMainForm::AfterAdding);
    connect(&FAdding, &TAdding::focusRequested, &FLists, &TLists::focusRequested);
    connect(&FUpkeep, &TUpkeep::refreshed, this, &TKRNMainForm::CountAnew);
    connect(&FUpkeep, &TUpkeep::thumbnailsChanged, &FPane, &TDetailSession::Refresh);
    connect(&FUpkeep, &TUpkeep::settingsNeeded, this, &TKRNMainForm::SaveSettings);
    connect(&FUpkeep, &TUpkeep::settingsReplaced, this, &TKRNMainForm::LoadSettings);
    connect(&FUpkeep, &TUpkeep::settingsApplied, &FPane, &TDetailSession::Refresh);
    connect(&Data(), &TDataModuleMain::changed, this, &TKRNMainForm::OnChanged);
}

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
        FShell.Attempt([&, run = step] { (this->*run)(hooks); });
    }
    Actions().Update();
}

void TKRNMainForm::CreateDebugWindow(const TMainFormHooks& hooks)
{
    FUpkeep.SetDebugMode(static_cast<bool>(hooks.CreateDebugWindow));
    if (hooks.CreateDebugWindow)
        hooks.CreateDebugWindow();
}

void TKRNMainForm::RestoreSettings(const TMainFormHooks&)
{
    LoadSettings();
    if (Defaults().BrokenSettingsFile.isEmpty())
        return;
    const QString file = QFileInfo(Defaults().BrokenSettingsFile).fileName();
    FShell.Prompt().ShowError(GetLanguageString(u"cSSettingsFileBroken"_s).replace(u"%s"_s, file));
}

void TKRNMainForm::ParseServices(const TMainFormHooks&) { FAdding.ParseServices(); }

void TKRNMainForm::ApplyTheme(const TMainFormHooks& hooks)
{
    if (hooks.ApplyTheme)
        hooks.ApplyTheme();
}

void TKRNMainForm::ConnectAtStart(const TMainFormHooks&) { FFiles.OpenAtStart(); }

void TKRNMainForm::PrepareDetail(const TMainFormHooks&) { FPane.Refresh(); }

void TKRNMainForm::SelectFirstView(const TMainFormHooks&)
{
    // A number of a view that this window does not have leaves the first one.
    const int view = Defaults().CurrentView;
    if (view < static_cast<int>(mvThumbs) || view > static_cast<int>(mvTracks))
        return;
    FView = static_cast<TMainView>(view);
    LeaveTracksThatCannotBeRead();
    FLists.SetActive(ListOf(FView));
}

void TKRNMainForm::FormShow()
{
    if (FShell.Shown())
        return;
    FShell.SetShown();
    Q_EMIT FPane.paneChanged();
}

void TKRNMainForm::WMAfterFormShow()
{
    if (FStartChecks && !FAdding.ServicesFailure().isEmpty())
        FShell.Tell(bkWarning, GetLanguageString(u"cSServicesBroken"_s), FAdding.ServicesFailure());
    if (FStartChecks)
        FAdding.UpdateServices(true);
    if (FShell.HasData())
        Data().qReleasesMain.First();
    if (const qint64 id = Data().qReleasesMain.CurrentKey(); id != 0)
        Q_EMIT FLists.focusRequested(id);
    FFigures.StartCounting();
    FSearch.FindLettersSoon();
    FSearch.OpenIndexSoon();
}

void TKRNMainForm::FormClose()
{
    FSearch.CloseIndex();
    SaveSettings();
}

void TKRNMainForm::LoadSettings()
{
    SetSplashText(GetLanguageString(u"cSSplashLoadingSettings"_s));
    if (!HasSettingsStore())
        return;
    FPane.LoadSettings();
    FLists.LoadSettings(SettingsStore());
    FSearch.LoadSettings();
}

void TKRNMainForm::SaveSettings()
{
    if (!HasSettingsStore())
        return;
    FPane.SaveSettings();
    FLists.SaveSettings(SettingsStore());
    FSearch.SaveSettings();
}

TListSession& TKRNMainForm::ListOf(TMainView view) { return view == mvTracks ? FLists.Tracks() : FLists.Releases(); }

bool TKRNMainForm::EnsureTracksOpen()
{
    TListDataset& tracks = FLists.Tracks().List();
    if (!FShell.HasData() || tracks.Active())
        return true;
    const TWaitCursor waiting;
    const bool opened = FShell.Attempt([&] { tracks.Open(); });
    if (!opened)
        tracks.Close(); // half open it would look empty
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
    if (view == mvTracks && !EnsureTracksOpen()) {
        Q_EMIT viewChanged(); // the button of the present view
        return;
    }
    // The views of one list share its focus; from list to list the release stays.
    const qint64 release = FLists.Active().FocusedRelease();
    FView = view;
    Defaults().CurrentView = static_cast<int>(view);
    FLists.SetActive(ListOf(view));
    Q_EMIT viewChanged();
    if (release != 0)
        Q_EMIT FLists.focusRequested(release);
    Actions().Update();
}

int TKRNMainForm::ThumbSize() const { return std::clamp(Defaults().ThumbSize, 0, 2); }

void TKRNMainForm::SetThumbSize(int step)
{
    Defaults().ThumbSize = std::clamp(step, 0, 2);
    Q_EMIT viewChanged();
    Actions().Update();
}

QString TKRNMainForm::Caption() const
{
    const QString name = Defaults().OEM.Name;
    const QString file = FFiles.FileName();
    return file.isEmpty() ? name : u"%1 - %2"_s.arg(file, name);
}

void TKRNMainForm::CheckCollectionFile()
{
    FShell.Attempt([this] { Data().RestoreLocks(); });
}

void TKRNMainForm::AfterCollectionChange()
{
    FSearch.Reset();
    const bool ofTracks = TracksShown();
    LeaveTracksThatCannotBeRead();
    if (ofTracks != TracksShown())
        FLists.SetActive(ListOf(FView));
    FLists.Reset();
    FFigures.CountReleases();
    FFigures.ForgetTracks();
    if (FShell.Shown()) { // the first time waits until the window is on the screen
        FSearch.FindLettersSoon();
        FFigures.StartCounting();
    }
    FPane.Refresh();
    Q_EMIT collectionOpened();
    Q_EMIT FLists.filtersChanged();
    Q_EMIT figuresChanged();
}

void TKRNMainForm::CountAnew()
{
    FFigures.CountReleases();
    if (FShell.Shown())
        FSearch.FindLettersSoon();
    FFigures.StartCounting();
    FPane.Refresh();
    Q_EMIT figuresChanged();
    Actions().Update();
}

void TKRNMainForm::AfterAdding()
{
    // The new releases take their place in the order, and tracks that are shown take in theirs.
    FShell.Attempt([this] { FLists.Releases().List().ApplyFilter(); });
    FShell.Attempt([this] { FLists.Tracks().List().Refresh(); });
    CountAnew();
}

void TKRNMainForm::OnChanged(const TChanges& changes)
{
    // A run tells at its end; until then what it adds concerns nothing that is shown.
    if (changes.OnlyAdded && !changes.Undone)
        return;
    const bool any = changes.Many || changes.Undone;
    if (changes.Undone)
        Q_EMIT FUpkeep.thumbnailsChanged();
    const bool ofChild = !changes.Tracks.empty() || !changes.Credits.empty() || !changes.Pictures.empty();
    if (any || ofChild || changes.Releases.contains(FPane.Detail().ID))
        FPane.RefreshSoon();
    if (any || changes.CameOrWent)
        FFigures.CountReleases();
    if (any || !changes.Tracks.empty())
        FFigures.StartCounting();
    Q_EMIT figuresChanged();
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

QRect TKRNMainForm::RestoredGeometry() const
{
    const TDefaults& settings = Defaults();
    return {settings.MainFormLeft, settings.MainFormTop, settings.MainFormWidth, settings.MainFormHeight};
}

bool TKRNMainForm::StartsMaximized() const { return Defaults().MainFormMaximized; }

} // namespace Kestrune
