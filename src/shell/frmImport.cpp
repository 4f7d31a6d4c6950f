// SPDX-License-Identifier: GPL-3.0-or-later
#include "frmImport.h"

#include "uFileCatcher.h"
#include "uPrompt.h"
#include "uTHStrings.h"

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

struct TPageTexts {
    TImportPage Page;
    QString TitleKey, StepKey, HintKey;
};

const TPageTexts& TextsOfPage(TImportPage page)
{
    static const TPageTexts texts[] = {
        {pWelcome, u"cSImportWelcomeTitle"_s, u"cSGuiStepWelcome"_s, u"cSGuiHintWelcome"_s},
        {pSelectSource, u"cSImportSelectSourceTitle"_s, u"cSGuiStepSource"_s, {}},
        {pSelectAlbumsToImport, u"cSImportSelectAlbumsTabTitle"_s, u"cSImportSelectAlbumsTabTitle"_s,
         u"cSGuiHintSelectAlbums"_s},
        {pProgress, u"cSImportProgressTitle"_s, u"cSGuiStepImport"_s, u"cSGuiHintImport"_s},
        {pFinish, u"cSImportFinishTitle"_s, u"cSGuiStepFinish"_s, {}}};
    return texts[static_cast<size_t>(page)];
}

} // namespace

void TKRNImportForm::ChooseClass(int row)
{
    if (row == FClassIndex || row < 0 || row >= static_cast<int>(FClasses.size()))
        return;
    FClassIndex = row;
    FSourceText.clear();
    FMemo.clear();
    FPathCheck.Look({});
    Q_EMIT pageChanged();
    Q_EMIT updated();
}

std::vector<TImportPage> TKRNImportForm::Pages() const
{
    std::vector<TImportPage> pages{pWelcome, pSelectSource};
    if (FClassIndex >= 0 && Class().CanSelectWhichAlbumsToImport())
        pages.push_back(pSelectAlbumsToImport);
    pages.insert(pages.end(), {pProgress, pFinish});
    return pages;
}

QString TKRNImportForm::PageTitle(TImportPage page) { return GetLanguageString(TextsOfPage(page).TitleKey); }

QString TKRNImportForm::StepTitle(TImportPage page) { return GetLanguageString(TextsOfPage(page).StepKey); }

QString TKRNImportForm::PageHint() const
{
    const QString hint = GetLanguageString(TextsOfPage(FPage).HintKey);
    return FPage == pSelectAlbumsToImport ? hint.arg(FRows.size()) : hint;
}

QString TKRNImportForm::NextCaption() const
{
    if (FPage != pSelectAlbumsToImport || FRows.empty())
        return GetLanguageString(u"cSGuiNext"_s);
    if (FTicked == 0)
        return GetLanguageString(u"cSGuiImportAllAlbums"_s).arg(FRows.size());
    return GetLanguageString(u"cSGuiImportAlbums"_s).arg(FTicked);
}

TImportPage TKRNImportForm::Neighbour(int step) const
{
    const std::vector<TImportPage> pages = Pages();
    const auto here = std::ranges::find(pages, FPage) - pages.begin();
    return pages[static_cast<size_t>(std::clamp<qsizetype>(here + step, 0, static_cast<qsizetype>(pages.size()) - 1))];
}

bool TKRNImportForm::NextEnabled() const
{
    switch (FPage) {
    case pWelcome: return FClassIndex >= 0;
    case pSelectSource: return SourceGiven();
    case pSelectAlbumsToImport: return !FImporter && !FRows.empty();
    default: return false;
    }
}

bool TKRNImportForm::BackEnabled() const { return FPage != pWelcome && FPage != pFinish && !FImporter; }

void TKRNImportForm::Next()
{
    if (NextEnabled())
        GoTo(Neighbour(1));
}

void TKRNImportForm::Back()
{
    if (BackEnabled())
        GoTo(Neighbour(-1));
}

void TKRNImportForm::GoTo(TImportPage page)
{
    const TImportPage from = FPage;
    FPage = page;
    EnterPage(page, from);
}

void TKRNImportForm::EnterPage(TImportPage page, TImportPage from)
{
    if (page == pSelectSource && from == pWelcome)
        EnterSource();
    Q_EMIT pageChanged();
    if ((page == pSelectAlbumsToImport || page == pProgress) && DriverIsMissing()) {
        FPage = from;
        Q_EMIT openUrlRequested(Class().GetMissingDriversURL());
        Q_EMIT closed(false);
        return;
    }
    if (page == pSelectAlbumsToImport)
        EnterSelection();
    else if (page == pProgress)
        EnterProgress();
    Q_EMIT updated();
}

bool TKRNImportForm::DriverIsMissing()
{
    const TImporterClass& source = Class();
    if (!source.NeedToCheckForMissingDrivers() || source.CheckForMissingDrivers())
        return false;
    FPrompt.ShowInformation(
        GetLanguageString(u"cSImportMissingDriverFmt"_s).replace(u"%s"_s, source.GetMissingDriversName()));
    return true;
}

void TKRNImportForm::EnterSource()
{
    FAcceptsDrops = Class().AllowsDragNDrop();
    if (FAcceptsDrops)
        FJustDragNDropped = false;
    FPasteMode = false;
    FPathCheck.Look(FSourceText);
}

void TKRNImportForm::SetSourceText(const QString& text)
{
    if (text == FSourceText)
        return;
    FSourceText = text;
    FJustDragNDropped = false;
    FPathCheck.Look(text);
    Q_EMIT updated();
}

bool TKRNImportForm::CanBrowse() const
{
    const TKRNImporterInputType type = Class().GetImporterType();
    return type == iitFile || type == iitFolder;
}

void TKRNImportForm::Browse()
{
    const QString title = GetLanguageString(u"cSImportSelectSourceTitle"_s);
    QString chosen;
    if (Class().GetImporterType() == iitFolder) {
        chosen = FPrompt.AskFolder(title, FSourceText);
    } else {
        TFileDialogRequest request;
        request.Title = title;
        request.DefaultExtension = Class().GetImporterFileExt();
        request.Filter = Class().GetImporterFileExtFilter();
        request.FileName = FSourceText;
        chosen = FPrompt.AskOpenFile(request);
    }
    if (!chosen.isEmpty())
        SetSourceText(chosen);
}

void TKRNImportForm::SetPasteMode(bool paste)
{
    FPasteMode = paste && Class().CanCopyAndPasteData();
    Q_EMIT updated();
}

void TKRNImportForm::SetMemo(const QString& text)
{
    FMemo = text;
    Q_EMIT updated();
}

bool TKRNImportForm::UsesMemo() const
{
    const TKRNImporterInputType type = Class().GetImporterType();
    return type == iitMemo || (type == iitFile && FPasteMode);
}

bool TKRNImportForm::SourceGiven() const
{
    if (UsesMemo())
        return !FMemo.isEmpty();
    const bool dropped = FJustDragNDropped && FAcceptsDrops;
    switch (Class().GetImporterType()) {
    case iitFile: return !FSourceText.isEmpty() && (FPathCheck.IsFile() || dropped);
    case iitFolder: return FPathCheck.IsFolder() || dropped;
    default: return !FSourceText.isEmpty();
    }
}

void TKRNImportForm::DropFiles(const TFileCatcher& files)
{
    if (!AcceptsDrops() || files.FileCount() == 0)
        return;
    FSourceText = files.InputPath();
    FPathCheck.Look({});
    FPasteMode = false;
    FJustDragNDropped = true;
    Q_EMIT updated();
    Next();
}

void TKRNImportForm::SetTicked(int row, bool ticked) { TickRows({row}, ticked); }

void TKRNImportForm::TickRows(const std::vector<int>& rows, bool ticked)
{
    for (const int row : rows)
        if (row >= 0 && row < static_cast<int>(FRows.size()))
            FRows[static_cast<size_t>(row)].Ticked = ticked;
    FTicked = static_cast<int>(std::ranges::count(FRows, true, &TImportRow::Ticked));
    Q_EMIT ticksChanged();
    Q_EMIT updated();
}

void TKRNImportForm::Finish()
{
    if (FPage == pFinish)
        Q_EMIT closed(true);
}

} // namespace Kestrune
