// SPDX-License-Identifier: GPL-3.0-or-later
#include "uActionSet.h"
#include "uAlbumTable.h"
#include "uDefaults.h"
#include "uFieldEditors.h"
#include "uFilterDialog.h"
#include "uHelpWindows.h"
#include "uIcons.h"
#include "uListDialogs.h"
#include "uMainWindow.h"
#include "uOptionsWindow.h"
#include "uReleasesModel.h"
#include "uSQLWindow.h"
#include "uTHStrings.h"
#include "uThemeController.h"

#include <QApplication>

namespace Kestrune {

using namespace Qt::StringLiterals;

void TMainWindow::OpenDialog(TMainDialog dialog)
{
    switch (dialog) {
    case mdSort: return OpenSort();
    case mdColumns:
        if (TAlbumTable* table = CurrentTable())
            TColumnsDialog(*table, this).exec();
        return;
    case mdFilterBuilder: return OpenFilterBuilder();
    case mdMultiEdit: return OpenMultiEdit();
    case mdOptions: return OpenOptions();
    case mdExecSQL: return OpenSQL();
    case mdAbout: TAboutWindow(this).exec(); return;
    case mdHelp: THelpWindow(this).exec(); return;
    case mdPalette: TCommandPalette(*FActions, this).exec(); return;
    case mdSaveFilter: return OpenSaveFilter();
    case mdPrint:
    case mdQuickPrint:
    case mdPrintPreview: return Print(dialog);
    }
}

void TMainWindow::OpenSort()
{
    const TListModel& list = *CurrentModel();
    std::vector<TSortForm::TColumn> columns;
    for (int column = 0; column < list.columnCount(); ++column)
        if (!list.FieldOf(column).isEmpty())
            columns.emplace_back(list.headerData(column, Qt::Horizontal, FullCaptionRole).toString(),
                                 list.FieldOf(column));
    TSortForm sort;
    sort.LoadFromCustomGridTableView(std::move(columns), FForm.List().Sort());
    if (TSortDialog(sort, this).exec() == QDialog::Accepted)
        FForm.SetSort(sort.ApplySorting());
}

void TMainWindow::OpenFilterBuilder()
{
    TFilterDialog dialog(FForm.Data(), FForm.List().Fields(), FForm.TracksShown(), FForm.BuilderFilter(), this);
    if (dialog.exec() == QDialog::Accepted)
        FForm.SetBuilderFilter(dialog.Node());
}

void TMainWindow::OpenMultiEdit()
{
    TMultiEditForm edit(FForm);
    const QStringList shown = FindColumns();
    edit.LoadFromCustomGridTableView({shown.begin(), shown.end()});
    if (TMultiEditDialog(edit, FForm.Data(), this).exec() == QDialog::Accepted)
        edit.ApplyChanges();
}

void TMainWindow::OpenSaveFilter()
{
    QStringList known;
    for (const TSavedFilter& filter : FForm.SavedFilters())
        known << filter.Name;
    const QString name = AskName(GetLanguageString(u"cSactSaveFilter"_s), GetLanguageString(u"cSFilterName"_s), known, this);
    if (!name.isEmpty())
        FForm.SaveFilter(name);
}

void TMainWindow::OpenOptions()
{
    TOptionsWindow options(Defaults(), FForm.Data(), this);
    connect(&options, &TOptionsWindow::lookChanged, this, [this](int theme, int accent) { FTheme.Apply(theme, accent); });
    if (options.exec() != QDialog::Accepted)
        return;
    const bool sizeChanged = options.ThumbnailSizeChanged();
    Defaults() = options.Settings();
    SetDesktopIcons(Defaults().DesktopIcons);
    FTheme.Apply(Defaults().ThemeIndex, Defaults().ColorSchemeAccentIndex);
    FForm.ApplySettings();
    if (sizeChanged && FForm.Data().HasData())
        FForm.Actions().Trigger(u"actRegenerateThumbnails"_s);
}

void TMainWindow::OpenSQL()
{
    TExecSQLForm form(FForm.Data());
    TSQLWindow window(form, this);
    bool written = false;
    connect(&window, &TSQLWindow::written, this, [&written] { written = true; });
    window.exec();
    if (written)
        FForm.Actions().Trigger(u"actRefresh"_s);
}

void TMainWindow::EditDictionary(const QString& column)
{
    const PDict dict = DictionaryOf(column);
    if (!dict)
        return;
    const auto caption = [&] {
        for (const auto columns : {ReleaseColumns(), MusicianColumns()})
            for (const TColumnDef& def : columns)
                if (column == QLatin1StringView(def.Name))
                    return GetLanguageString(QString::fromLatin1(def.LabelKey));
        return column;
    };
    LauchDictionaryEditForm(*dict, caption(), column);
}

void TMainWindow::LauchDictionaryEditForm(const TDict& dict, const QString& fieldDisplayName, const QString& column)
{
    TDictionaryDialog dialog(fieldDisplayName, dict.Text, dict.DefaultText, this);
    if (dialog.exec() == QDialog::Accepted)
        FForm.SetDictionary(column, dialog.Text());
}

void TMainWindow::Export(const QString&) {}
void TMainWindow::Print(TMainDialog) {}

} // namespace Kestrune
