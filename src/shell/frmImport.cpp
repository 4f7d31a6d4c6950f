// SPDX-License-Identifier: GPL-3.0-or-later
#include "frmImport.h"

#include "uFileCatcher.h"
#include "uPrompt.h"
#include "uTHStrings.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace Kestrune {

using namespace Qt::StringLiterals;

void TKRNImportForm::ChooseClass(int row)
{
    if (row == FClassIndex || row < 0 || row >= static_cast<int>(FClasses.size()))
        return;
    FClassIndex = row;
    FOptions = Class().MakeOptions();
    FSourceText.clear();
    FMemo.clear();
    FPathCheck.Look({});
    Q_EMIT pageChanged();
    Q_EMIT updated();
}

std::vector<TImportPage> TKRNImportForm::Pages() const
{
    std::vector<TImportPage> pages{pWelcome, pSelectSource};
    if (FClassIndex >= 0) {
        pages.insert(pages.end(), Class().ExtraPages.begin(), Class().ExtraPages.end());
        if (Class().CanSelectWhichAlbumsToImport)
            pages.push_back(pSelectAlbumsToImport);
    }
    pages.insert(pages.end(), {pProgress, pFinish});
    return pages;
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

/// When one may go on from a page, and what happens when it is entered; either may be null.
struct TKRNImportForm::TPageRule {
    TImportPage Page;
    bool (TKRNImportForm::*NextEnabled)() const;
    void (TKRNImportForm::*Enter)();
};

const TKRNImportForm::TPageRule* TKRNImportForm::RuleOf(const TImportPage& page)
{
    using F = TKRNImportForm;
    static const TPageRule rules[] = {
        {pWelcome, &F::ClassChosen, nullptr},
        {pSelectSource, &F::SourceGiven, nullptr},
        {pSelectAlbumsToImport, &F::AlbumsListed, &F::EnterSelection},
        {pProgress, nullptr, &F::EnterProgress},
        {pFinish, nullptr, nullptr},
    };
    const auto* rule = std::ranges::find(rules, page, &TPageRule::Page);
    return rule == std::end(rules) ? nullptr : rule;
}

// The pages of a source have no rule here: its options know whether they have what they need.
bool TKRNImportForm::NextEnabled() const
{
    if (const TPageRule* rule = RuleOf(FPage))
        return rule->NextEnabled && (this->*rule->NextEnabled)();
    return FOptions->IsComplete(FPage);
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

void TKRNImportForm::GoTo(const TImportPage& page)
{
    const TImportPage from = std::exchange(FPage, page);
    EnterPage(from);
}

void TKRNImportForm::EnterPage(const TImportPage& from)
{
    if (FPage == pSelectSource && from == pWelcome)
        EnterSource();
    Q_EMIT pageChanged();
    if (const TPageRule* rule = RuleOf(FPage); rule && rule->Enter)
        (this->*rule->Enter)();
    Q_EMIT updated();
}

void TKRNImportForm::EnterSource()
{
    FAcceptsDrops = Class().AllowsDragNDrop;
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
    const TKRNImporterInputType type = Class().ImporterType;
    return type == iitFile || type == iitFolder;
}

void TKRNImportForm::Browse()
{
    const QString title = GetLanguageString(u"cSImportSelectSourceTitle"_s);
    QString chosen;
    if (Class().ImporterType == iitFolder) {
        chosen = FPrompt.AskFolder(title, FSourceText);
    } else {
        TFileDialogRequest request;
        request.Title = title;
        request.DefaultExtension = Class().ImporterFileExt;
        request.Filter = Class().GetImporterFileExtFilter();
        request.FileName = FSourceText;
        chosen = FPrompt.AskOpenFile(request);
    }
    if (!chosen.isEmpty())
        SetSourceText(chosen);
}

void TKRNImportForm::SetPasteMode(bool paste)
{
    FPasteMode = paste && Class().CanCopyAndPasteData;
    Q_EMIT updated();
}

void TKRNImportForm::SetMemo(const QString& text)
{
    FMemo = text;
    Q_EMIT updated();
}

bool TKRNImportForm::UsesMemo() const
{
    const TKRNImporterInputType type = Class().ImporterType;
    return type == iitMemo || (type == iitFile && FPasteMode);
}

bool TKRNImportForm::SourceGiven() const
{
    if (UsesMemo())
        return !FMemo.isEmpty();
    const bool dropped = FJustDragNDropped && FAcceptsDrops;
    switch (Class().ImporterType) {
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
