// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uAdding.h"
#include "uCollectionFiles.h"
#include "uDetailSession.h"
#include "uExchange.h"
#include "uFigures.h"
#include "uListEdits.h"
#include "uListSearch.h"
#include "uLists.h"
#include "uShell.h"
#include "uUpkeep.h"

#include <QObject>
#include <QRect>

namespace Kestrune {

/// Numbers of the views, as the setting CurrentView keeps them.
enum class TMainView : int { mvThumbs, mvCards, mvShelf, mvAlbums, mvTracks };
using enum TMainView;

/// What the window itself does at its place in the creation.
struct TMainFormHooks {
    std::function<void()> CreateDebugWindow; ///< set in debug mode only
    std::function<void()> ApplyTheme;
};

/// The main window without a widget: it composes the features, each of which binds its own actions and rules, creates
/// them in order, and knows which view is shown. The window shows what they tell and calls them back. Main thread.
class TKRNMainForm : public QObject {
    Q_OBJECT

public:
    /// Both outlive the form.
    TKRNMainForm(TDataModuleMain& data, TPrompt& prompt);

    /// Creation in its fixed order: debug window, settings, theme, the collection, the detail pane, the first view.
    void FormCreate(const TMainFormHooks& hooks);
    /// Restores the window; its body runs once.
    void FormShow();
    /// After the window is on the screen: first record, state callbacks.
    void WMAfterFormShow();
    /// Closing of the window: what it keeps goes to the settings.
    void FormClose();
    /// The window is made anew in a running program: what is looked after once at its start is left out.
    void SkipStartChecks() { FStartChecks = false; }

    TShell& Shell() { return FShell; }
    TActionList& Actions() { return FShell.Actions(); }
    TDataModuleMain& Data() { return FShell.Data(); }
    TLists& Lists() { return FLists; }
    TFigures& Figures() { return FFigures; }
    TListSearch& Search() { return FSearch; }
    TListEdits& Edits() { return FEdits; }
    TDetailSession& Pane() { return FPane; }
    TCollectionFiles& Files() { return FFiles; }
    TAdding& Adding() { return FAdding; }
    TExchange& Exchange() { return FExchange; }
    TUpkeep& Upkeep() { return FUpkeep; }

    TMainView CurrentView() const { return FView; }
    void SetCurrentView(TMainView view);
    /// True when the view shows tracks in place of releases.
    bool TracksShown() const { return FView == mvTracks; }
    int ThumbSize() const;
    void SetThumbSize(int step);
    /// Window caption with the name of the collection.
    QString Caption() const;
    /// Makes sure that the collection is still locked against other programs; to be called after what may have looked
    /// into its file.
    void CheckCollectionFile();

    // What the window reports about itself.
    void SetNormalGeometry(const QRect& geometry);
    void SetMaximized(bool maximized);
    QRect RestoredGeometry() const;
    bool StartsMaximized() const;

Q_SIGNALS:
    void viewChanged();
    void collectionOpened();
    void closeRequested();
    // Of the parts, for whoever listens to all.
    void detailChanged();
    void figuresChanged();
    void barRaised(Kestrune::TBarKind kind, const QString& bold, const QString& sentence);
    void jobProgressed(const QString& text, int value, int maximum);

private:
    void CreateDebugWindow(const TMainFormHooks& hooks);
    void RestoreSettings(const TMainFormHooks& hooks);
    void ParseServices(const TMainFormHooks& hooks);
    void ApplyTheme(const TMainFormHooks& hooks);
    void ConnectAtStart(const TMainFormHooks& hooks);
    void PrepareDetail(const TMainFormHooks& hooks);
    void SelectFirstView(const TMainFormHooks& hooks);
    void BindActions();
    void ConnectParts();
    void LoadSettings();
    void SaveSettings();
    void AfterCollectionChange();
    /// The figures are counted and the pane is read anew.
    void CountAnew();
    void AfterAdding();
    void OnChanged(const TChanges& changes);
    TListSession& ListOf(TMainView view);
    /// False, and told, when they cannot be read.
    bool EnsureTracksOpen();
    void LeaveTracksThatCannotBeRead();

    TShell FShell;
    TLists FLists;
    TFigures FFigures;
    TListSearch FSearch;
    TListEdits FEdits;
    TDetailSession FPane;
    TCollectionFiles FFiles;
    TAdding FAdding;
    TExchange FExchange;
    TUpkeep FUpkeep;
    TMainView FView = mvThumbs;
    bool FStartChecks = true;
};

} // namespace Kestrune
