// SPDX-License-Identifier: GPL-3.0-or-later
#include "frmImport.h"
#include "frmMain.h"
#include "uDefaults.h"
#include "uPrompt.h"
#include "uTHStrings.h"

namespace Kestrune {

using namespace Qt::StringLiterals;

void TKRNMainForm::BindActions()
{
    BindFileActions();
    BindViewActions();
    BindFilterActions();
}

void TKRNMainForm::BindFileActions()
{
    const auto hasData = [this] { return FData.HasData() && !Adding(); };
    const auto canWrite = [this] { return FData.HasData() && !Adding() && !FData.IsReadOnly(); };
    const auto idle = [this] { return !Adding(); };
    FActions.Bind(
        u"actAddMP3"_s,
        [this] {
            const QString folder = FPrompt.AskFolder(GetLanguageString(u"cSactAddMP3"_s), {});
            AddFolders(folder.isEmpty() ? QStringList() : QStringList{folder});
        },
        canWrite);
    FActions.Bind(
        u"actImport"_s, [this] { OpenImport(); }, canWrite);
    FActions.Bind(
        u"actNewDatabase"_s, [this] { NewDatabase(); }, idle);
    FActions.Bind(
        u"actOpenDatabase"_s, [this] { OpenDatabase(); }, idle);
    FActions.Bind(
        u"actSaveDatabase"_s, [this] { FData.CommitTransaction(); }, hasData);
    FActions.Bind(u"actExit"_s, [this] { Q_EMIT closeRequested(); });
    FActions.Bind(
        u"actRefresh"_s,
        [this] {
            FData.RefreshAll();
            CountReleases();
            RefreshDetail();
        },
        hasData);
    FActions.Bind(
        u"actRemoveSelected"_s, [this] { RemoveSelected(); },
        [this, canWrite] { return canWrite() && !SelectedOrFocused().empty(); });
    FActions.Bind(
        u"actVacuumDB"_s,
        [this] {
            if (!FPrompt.AskYesNo(GetLanguageString(u"cSConfirmOptimization"_s)))
                return;
            FData.VacuumDB();
            Q_EMIT barRaised(bkDone, GetLanguageString(u"cSOptimizationDone"_s), {});
        },
        canWrite);
    FActions.Bind(
        u"actToggleDebug"_s, [this] { Q_EMIT debugWindowToggled(); }, [this] { return FDebugMode; });
}

void TKRNMainForm::BindViewActions()
{
    const auto hasData = [this] { return FData.HasData(); };
    const auto bindView = [&](const QString& name, TMainView view) {
        FActions.Bind(
            name, [this, view] { SetCurrentView(view); }, hasData, [this, view] { return FView == view; });
    };
    bindView(u"actThumbView"_s, mvThumbs);
    bindView(u"actAlbumTableView"_s, mvAlbums);
    FActions.Bind(
        u"actThumbSize"_s, [this] { SetThumbSize((ThumbSize() + 1) % 3); },
        [this] { return FData.HasData() && FView == mvThumbs; });
    const auto bindPane = [this](const QString& name, int location) {
        FActions.Bind(
            name,
            [this, location] {
                Defaults().InfoPaneLocation = location;
                SetPaneClosed(false);
            },
            {}, [this, location] { return !PaneClosed() && PaneLocation() == location; });
    };
    bindPane(u"actDetailPanelBottom"_s, 0);
    bindPane(u"actDetailPanelRight"_s, 1);
    bindPane(u"actDetailPanelTop"_s, 2);
    FActions.Bind(
        u"actHideDetailPanel"_s, [this] { SetPaneClosed(!PaneClosed()); }, {}, [this] { return PaneClosed(); });
    FActions.Bind(
        u"actSelectAll"_s, [this] { Q_EMIT selectionRequested(true); }, hasData);
    FActions.Bind(
        u"actClearSelection"_s, [this] { Q_EMIT selectionRequested(false); }, [this] { return !FSelection.empty(); });
}

void TKRNMainForm::BindFilterActions()
{
    const auto hasData = [this] { return FData.HasData(); };
    const auto filtered = [this] { return !FilterChips().empty(); };
    const auto sorted = [this] { return FData.HasData() && !FData.qReleasesMain.Sort().empty(); };
    FActions.Bind(
        u"actSearch"_s, [this] { Search(); }, hasData);
    FActions.Bind(
        u"actStatusFilter"_s, [] {}, hasData);
    FActions.Bind(
        u"actFilterStatusAll"_s, [this] { RemoveFilter(fckStatus); }, hasData);
    FActions.Bind(
        u"actFilterStatusOther"_s, [this] { ResetFilters(); }, filtered);
    const auto direction = [this](bool descending) {
        auto sort = FData.qReleasesMain.Sort();
        for (TSortItem& item : sort)
            item.Descending = descending;
        FData.qReleasesMain.SetSort(sort);
        Q_EMIT sortChanged();
    };
    FActions.Bind(
        u"actSortAsc"_s, [direction] { direction(false); }, sorted);
    FActions.Bind(
        u"actSortDesc"_s, [direction] { direction(true); }, sorted);
    FActions.Bind(
        u"actClearSorting"_s,
        [this] {
            FData.qReleasesMain.SetSort({});
            Q_EMIT sortChanged();
        },
        sorted);
}

namespace {

TFileDialogRequest DatabaseDialog(const QString& titleKey)
{
    TFileDialogRequest request;
    request.Title = GetLanguageString(titleKey);
    request.Filter = GetLanguageString(u"cSDatabaseFileFilter"_s);
    request.DefaultExtension = u"db"_s;
    request.Folder = Defaults().DefaultDBFolder;
    return request;
}

} // namespace

void TKRNMainForm::NewDatabase()
{
    FData.CommitTransaction();
    const QString path = FPrompt.AskSaveFile(DatabaseDialog(u"cSactNewDatabase"_s));
    if (path.isEmpty())
        return;
    try {
        FData.CreateNewDB(path, FData.GetNewDatabaseSQL());
    } catch (const EDatabaseError&) {
        AfterCollectionChange(); // it may have closed the one that was open
        throw;
    }
    OpenCollection(path);
}

void TKRNMainForm::OpenDatabase()
{
    const QString path = FPrompt.AskOpenFile(DatabaseDialog(u"cSactOpenDatabase"_s));
    if (path.isEmpty())
        return;
    FData.CommitTransaction();
    OpenCollection(path);
}

} // namespace Kestrune
