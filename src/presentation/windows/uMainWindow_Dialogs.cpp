// SPDX-License-Identifier: GPL-3.0-or-later
#include "frmServiceUpdater.h"
#include "uActionSet.h"
#include "uAlbumTable.h"
#include "uColumnNames.h"
#include "uDefaults.h"
#include "uDetailPane.h"
#include "uExport.h"
#include "uFieldEditors.h"
#include "uFilterDialog.h"
#include "uHelpWindows.h"
#include "uIcons.h"
#include "uListDialogs.h"
#include "uMainWindow.h"
#include "uOptionsWindow.h"
#include "uPrinting.h"
#include "uPrompt.h"
#include "uReleasesModel.h"
#include "uSQLWindow.h"
#include "uSearchWindow.h"
#include "uTHStrings.h"
#include "uThemeController.h"
#include "uUpdaterWindow.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QPrintDialog>
#include <QPrinter>
#include <QPrinterInfo>
#include <QUrl>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

const QString ExportFolderKey = u"Export.Folder"_s;

} // namespace

// The windows of actions by their names; an action without a row here has no window.
void TMainWindow::OpenWindow(const QString& action)
{
    using TOpen = void (TMainWindow::*)();
    static const std::pair<QString, TOpen> windows[] = {
        {u"actSort"_s, &TMainWindow::OpenSort},
        {u"actCustomizeColumns"_s, &TMainWindow::OpenColumns},
        {u"actAdvancedSearch"_s, &TMainWindow::OpenFilterBuilder},
        {u"actMultiEdit"_s, &TMainWindow::OpenMultiEdit},
        {u"actEditItem"_s, &TMainWindow::EditFocused},
        {u"actAddReleaseManually"_s, &TMainWindow::AddByHand},
        {u"actOptions"_s, &TMainWindow::OpenAllOptions},
        {u"actExecSQL"_s, &TMainWindow::OpenSQL},
        {u"actAbout"_s, &TMainWindow::OpenAbout},
        {u"actHelp"_s, &TMainWindow::OpenHelp},
        {u"actCommandPalette"_s, &TMainWindow::OpenPalette},
        {u"actSaveFilter"_s, &TMainWindow::OpenSaveFilter},
        {u"actPrint"_s, &TMainWindow::PrintChosen},
        {u"actQuickPrint"_s, &TMainWindow::PrintQuickly},
        {u"actPrintPreview"_s, &TMainWindow::PreviewPrint},
    };
    const auto window = std::ranges::find(windows, action, &std::pair<QString, TOpen>::first);
    if (window != std::end(windows))
        (this->*window->second)();
}

void TMainWindow::OpenColumns()
{
    if (TAlbumTable* table = CurrentTable())
        TColumnsDialog(*table, this).exec();
}

void TMainWindow::OpenAbout() { TAboutWindow(this).exec(); }
void TMainWindow::OpenHelp() { THelpWindow(this).exec(); }
void TMainWindow::OpenPalette() { TCommandPalette(*FActions, this).exec(); }
void TMainWindow::OpenAllOptions() { OpenOptions(); }

void TMainWindow::OpenSort()
{
    const TListModel& list = *CurrentModel();
    std::vector<TSortForm::TColumn> columns;
    for (int column = 0; column < list.columnCount(); ++column)
        if (!list.FieldOf(column).isEmpty())
            columns.emplace_back(list.headerData(column, Qt::Horizontal, FullCaptionRole).toString(),
                                 list.FieldOf(column));
    TSortForm sort;
    sort.LoadFromCustomGridTableView(std::move(columns), FForm.Lists().Active().List().Sort());
    if (TSortDialog(sort, this).exec() == QDialog::Accepted)
        FForm.Lists().Active().SetSort(sort.ApplySorting());
}

void TMainWindow::OpenFilterBuilder()
{
    TFilterDialog dialog(FForm.Data(), FForm.Lists().Active().List().Fields(),
                         FForm.Lists().Active().Filters().Set().Builder, this);
    if (dialog.exec() == QDialog::Accepted)
        FForm.Lists().Active().SetBuilderFilter(dialog.Node());
}

void TMainWindow::OpenMultiEdit()
{
    TMultiEditForm edit(FForm.Lists().Active(), FForm.Edits());
    const QStringList shown = FindColumns();
    edit.LoadFromCustomGridTableView({shown.begin(), shown.end()});
    if (TMultiEditDialog(edit, FForm.Data(), this).exec() == QDialog::Accepted)
        edit.ApplyChanges();
}

void TMainWindow::EditFocused()
{
    if (FForm.Pane().Closed())
        FForm.Pane().SetClosed(false);
    FPane->show(); // also where the window is too narrow for it
    if (FForm.Pane().Detail().ID != FForm.Lists().Active().FocusedRelease())
        FForm.Pane().Refresh(); // it follows the focus only after a moment
    FPane->EditFirst();
}

void TMainWindow::AddByHand()
{
    const QString name = AskName(FullCaptionOf(u"actAddReleaseManually"_s),
                                 GetLanguageString(u"cSReleasesFieldReleaseName"_s), {}, this);
    if (!name.isEmpty())
        FForm.Adding().AddByHand(name);
}

void TMainWindow::OpenSaveFilter()
{
    QStringList known;
    for (const TSavedFilter& filter : FForm.Search().SavedFilters())
        known << filter.Name;
    const QString name =
        AskName(GetLanguageString(u"cSactSaveFilter"_s), GetLanguageString(u"cSFilterName"_s), known, this);
    if (!name.isEmpty())
        FForm.Search().SaveFilter(name);
}

void TMainWindow::OpenOptions(int page, QWidget* parent)
{
    TOptionsWindow options(Defaults(), FForm.Data(), parent ? parent : this);
    connect(&options, &TOptionsWindow::updateServicesRequested, this, [this] { FForm.Adding().UpdateServices(false); });
    if (page == 1)
        options.ShowServicesPage();
    else if (page == 2)
        options.ShowNetworkPage();
    connect(&options, &TOptionsWindow::lookChanged, this,
            [this](int theme, int accent) { FTheme.Apply(theme, accent); });
    if (options.exec() != QDialog::Accepted)
        return;
    const bool sizeChanged = options.ThumbnailSizeChanged();
    const bool otherLanguage = options.Settings().Language != Defaults().Language;
    Defaults() = options.Settings();
    SetDesktopIcons(Defaults().DesktopIcons);
    FTheme.Apply(Defaults().ThemeIndex, Defaults().ColorSchemeAccentIndex);
    FForm.Upkeep().ApplySettings();
    if (sizeChanged && FForm.Data().HasData())
        FForm.Actions().Trigger(u"actRegenerateThumbnails"_s);
    if (!otherLanguage)
        return;
    // The window is made anew: one above it has to be closed first.
    if (auto* above = qobject_cast<QDialog*>(parent))
        connect(above, &QDialog::finished, this, &TMainWindow::languageChanged, Qt::QueuedConnection);
    else
        Q_EMIT languageChanged();
}

void TMainWindow::OpenSearch()
{
    auto* window = new TSearchWindow(*FForm.Adding().AddMusicForm(), this);
    window->setAttribute(Qt::WA_DeleteOnClose);
    connect(window, &TSearchWindow::optionsRequested, this,
            [this, window](bool network) { OpenOptions(network ? 2 : 1, window); });
    connect(window, &QDialog::finished, &FForm.Adding(), &TAdding::AddMusicClosed);
    window->open();
}

void TMainWindow::OpenUpdater(bool visible, QWidget* parent)
{
    TServiceUpdaterForm& updater = *FForm.Adding().ServiceUpdater();
    auto* window = new TUpdaterWindow(updater, parent);
    connect(&updater, &TServiceUpdaterForm::closed, window, &QObject::deleteLater);
    if (visible)
        window->open();
    else
        connect(&updater, &TServiceUpdaterForm::downloadStarted, window, &QWidget::show);
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
                if (column == def.Name)
                    return GetLanguageString(QString::fromLatin1(def.LabelKey));
        return column;
    };
    LauchDictionaryEditForm(*dict, caption(), column);
}

void TMainWindow::LauchDictionaryEditForm(const TDict& dict, const QString& fieldDisplayName, const QString& column)
{
    TDictionaryDialog dialog(fieldDisplayName, dict.Text, dict.DefaultText, this);
    if (dialog.exec() == QDialog::Accepted)
        FForm.Upkeep().SetDictionary(column, dialog.Text());
}

TExportSource TMainWindow::MakeSource(bool thumbnails)
{
    const TListModel& list = *CurrentModel();
    const bool covers =
        FForm.CurrentView() == mvThumbs || FForm.CurrentView() == mvCards || FForm.CurrentView() == mvShelf;
    std::vector<TExportColumn> columns;
    const int cover = list.ColumnOf(Col::ThumbPicture);
    if (covers || (CurrentTable() && cover >= 0 && !CurrentTable()->isColumnHidden(cover)))
        columns.push_back({Col::ThumbPicture, {}});
    QStringList fields = FindColumns();
    if (FForm.CurrentView() == mvCards) // what stands on the cards
        fields << Col::Rating_Calc << Col::Genre << Col::Label << Col::CatalogNO << Col::CountryCode;
    for (const QString& field : fields)
        columns.push_back({field, list.headerData(list.ColumnOf(field), Qt::Horizontal, FullCaptionRole).toString()});
    return TExportSource(FForm.Data(), FForm.Lists().Active().List(), std::move(columns), thumbnails);
}

QString TMainWindow::ReportTitle() const { return QFileInfo(FForm.Data().CurrentFile()).completeBaseName(); }

void TMainWindow::Export(const QString& word)
{
    const std::optional<TExportFormat> format = ExportFormatOf(word);
    if (!format || FForm.Shell().Working())
        return;
    TFileDialogRequest request;
    request.Title = FullCaptionOf(word == "xlsx"_L1  ? u"actExportToExcel"_s
                                  : word == "txt"_L1 ? u"actExportToText"_s
                                                     : u"actExportTo"_s + word.toUpper());
    request.Filter = ExportFileFilter(*format);
    request.DefaultExtension = word;
    request.FileName = ReportTitle() + u'.' + word;
    if (HasSettingsStore())
        request.Folder = SettingsStore().ReadString(ExportFolderKey, {});
    const QString path = FForm.Shell().Prompt().AskSaveFile(request);
    if (path.isEmpty())
        return;
    if (HasSettingsStore())
        SettingsStore().WriteString(ExportFolderKey, {}, QFileInfo(path).absolutePath());
    const TBarOffer open{GetLanguageString(u"cSGuiOpenFile"_s),
                         [path] { QDesktopServices::openUrl(QUrl::fromLocalFile(path)); }};
    FForm.Shell().RunJob(request.Title, [&](const TShell::TJobProgress& progress) {
        TExportSource source = MakeSource(*format == efHTML || *format == efPDF);
        try {
            if (WriteExport(source, *format, path, ReportTitle(), progress))
                FForm.Shell().Offer(bkDone, GetLanguageString(u"cSExportDone"_s).arg(source.RowCount()), path, open);
            else
                FForm.Shell().Tell(bkWarning, GetLanguageString(u"cSExportStopped"_s), path);
        } catch (const EExportError& failure) {
            FForm.Shell().Tell(bkError, failure.Text(), {});
        }
    });
}

void TMainWindow::WithReport(const std::function<bool(TExportSource& source, const TReportOptions& options)>& show)
{
    if (FForm.Shell().Working())
        return;
    TExportSource source = MakeSource(true);
    const TReportOptions options{ReportTitle(), CurrentTable() == nullptr};
    // The page setup of the last time stands until the program ends.
    if (!FPrinter) {
        FPrinter = std::make_unique<QPrinter>(QPrinter::HighResolution);
        FPrinter->setPageMargins(QMarginsF(12, 12, 12, 12), QPageLayout::Millimeter);
        if (WantsLandscape(source.ColumnCount()) && !options.CoverSheet)
            FPrinter->setPageOrientation(QPageLayout::Landscape);
    }
    FPrinter->setDocName(options.Title);
    if (!show(source, options))
        return;
    FForm.Shell().RunJob(GetLanguageString(u"cSactPrint"_s), [&](const TShell::TJobProgress& progress) {
        if (PrintReport(*FPrinter, source, options, progress) == 0)
            FForm.Shell().Tell(bkError, GetLanguageString(u"cSPrintFailed"_s));
    });
}

void TMainWindow::PreviewPrint()
{
    WithReport([this](TExportSource& source, const TReportOptions& options) {
        ShowPrintPreview(*FPrinter, source, options, this);
        return false;
    });
}

void TMainWindow::PrintChosen()
{
    WithReport([this](TExportSource&, const TReportOptions&) {
        QPrintDialog ask(FPrinter.get(), this);
        ask.setWindowTitle(GetLanguageString(u"cSactPrint"_s));
        return ask.exec() == QDialog::Accepted;
    });
}

void TMainWindow::PrintQuickly()
{
    WithReport([this](TExportSource&, const TReportOptions&) {
        if (!QPrinterInfo::defaultPrinter().isNull())
            return true;
        FForm.Shell().Tell(bkError, GetLanguageString(u"cSPrintNoPrinter"_s));
        return false;
    });
}

} // namespace Kestrune
