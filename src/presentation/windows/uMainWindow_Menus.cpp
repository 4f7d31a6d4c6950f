// SPDX-License-Identifier: GPL-3.0-or-later
#include "uActionSet.h"
#include "uColumnNames.h"
#include "uMainWindow.h"
#include "uReleasesModel.h"
#include "uRibbonTable.h"
#include "uTHStrings.h"

#include <QAction>
#include <QMenu>

namespace Kestrune {

using namespace Qt::StringLiterals;

void TMainWindow::FillFileMenu()
{
    FFileMenu->clear();
    qDeleteAll(FFileMenu->findChildren<QMenu*>(Qt::FindDirectChildrenOnly));
    FActions->Fill(*FFileMenu, {u"actNewDatabase"_s, u"actOpenDatabase"_s});
    QMenu* recent = FFileMenu->addMenu(GetLanguageString(u"cSGuiRecent"_s));
    for (const QString& path : FForm.Files().Recent())
        connect(recent->addAction(path), &QAction::triggered, this, [this, path] { FForm.Files().OpenRecent(path); });
    recent->setEnabled(!recent->isEmpty());
    FActions->Fill(*FFileMenu, {QString(), u"actSaveDatabase"_s, u"actSaveDatabaseAs"_s, QString(), u"actImport"_s});
    QMenu* exports = FFileMenu->addMenu(GetLanguageString(u"cSGuiExport"_s));
    FActions->Fill(*exports, {u"actExportToHTML"_s, u"actExportToExcel"_s, u"actExportToText"_s, u"actExportToXML"_s,
                              u"actExportToCSV"_s, u"actExportToPDF"_s});
    FActions->Fill(*FFileMenu, {u"actPrint"_s, u"actPrintPreview"_s, u"actQuickPrint"_s, QString(), u"actOptions"_s,
                                u"actBackupSettings"_s, u"actRestoreSettings"_s, QString(), u"actHelp"_s, u"actAbout"_s,
                                QString(), u"actExit"_s});
}

void TMainWindow::FillMainMenu()
{
    FMainMenu->clear();
    qDeleteAll(FMainMenu->findChildren<QMenu*>(Qt::FindDirectChildrenOnly));
    FillFileMenu();
    QMenu* file = FMainMenu->addMenu(GetLanguageString(u"cSGuiFile"_s));
    file->addActions(FFileMenu->actions());
    for (const TRibbonTab& tab : MainRibbonTable()) {
        QStringList names;
        for (const TRibbonGroup& group : tab.Groups) {
            names << QString();
            for (const TRibbonItem& item : group.Items)
                names << (item.Action.isEmpty() ? item.Menu : QStringList(item.Action));
        }
        auto* menu = new QMenu(GetLanguageString(tab.CaptionKey), FMainMenu);
        FActions->Fill(*menu, names);
        if (!menu->isEmpty())
            FMainMenu->addMenu(menu);
        else
            delete menu;
    }
}

void TMainWindow::FillStatusMenu()
{
    FStatusMenu->clear();
    FActions->Fill(*FStatusMenu, {u"actFilterStatusAll"_s, u"actFilterStatusOther"_s});
    FStatusMenu->addSeparator();
    for (const QString& status : FForm.Search().StatusItems()) {
        if (status.isEmpty())
            continue;
        QAction* item = FStatusMenu->addAction(status);
        item->setCheckable(true);
        item->setChecked(status == FForm.Lists().Active().Filters().Set().Status);
        connect(item, &QAction::triggered, this, [this, status] { FForm.Search().FilterStatus(status); });
    }
}

void TMainWindow::FillSortMenu()
{
    FSortMenu->clear();
    const TListModel& list = *CurrentModel();
    for (const TColumnName field :
         {Col::TrackTitle, Col::TrackLength, Col::Artist, Col::ReleaseName, Col::ReleaseYear, Col::DateAdded,
          Col::Rating_Calc, Col::MediaType, Col::Genre, Col::Label, Col::No}) {
        const int column = list.ColumnOf(field);
        if (column < 0)
            continue;
        QAction* item = FSortMenu->addAction(list.headerData(column, Qt::Horizontal, Qt::DisplayRole).toString());
        const auto& sort = FForm.Lists().Active().List().Sort();
        item->setCheckable(true);
        item->setChecked(!sort.empty() && sort.front().Column == field);
        connect(item, &QAction::triggered, this, [this, field] { FForm.Lists().Active().SortBy(field, false); });
    }
    FActions->Fill(*FSortMenu, {QString(), u"actSort"_s, u"actSortAsc"_s, u"actSortDesc"_s, u"actClearSorting"_s});
}

void TMainWindow::FillSavedMenu()
{
    FSavedMenu->clear();
    qDeleteAll(FSavedMenu->findChildren<QMenu*>(Qt::FindDirectChildrenOnly));
    QStringList names;
    for (const TSavedFilter& filter : FForm.Search().SavedFilters())
        names << filter.Name;
    for (const QString& name : names)
        connect(FSavedMenu->addAction(QString(name).replace(u'&', u"&&"_s)), &QAction::triggered, this,
                [this, name] { FForm.Search().RecallFilter(name); });
    if (!names.isEmpty()) {
        QMenu* forget = FSavedMenu->addMenu(GetLanguageString(u"cSGuiForgetFilter"_s));
        for (const QString& name : names)
            connect(forget->addAction(QString(name).replace(u'&', u"&&"_s)), &QAction::triggered, this,
                    [this, name] { FForm.Search().ForgetFilter(name); });
        FSavedMenu->addSeparator();
    }
    FActions->Fill(*FSavedMenu, {u"actSaveFilter"_s});
}

} // namespace Kestrune
