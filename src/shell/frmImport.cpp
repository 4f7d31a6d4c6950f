// SPDX-License-Identifier: GPL-3.0-or-later
#include "frmImport.h"

#include "uFileCatcher.h"
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
    FSource.Choose(Class());
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
        FSource.Enter();
    Q_EMIT pageChanged();
    if (const TPageRule* rule = RuleOf(FPage); rule && rule->Enter)
        (this->*rule->Enter)();
    Q_EMIT updated();
}

void TKRNImportForm::DropFiles(const TFileCatcher& files)
{
    if (!AcceptsDrops() || files.FileCount() == 0)
        return;
    FSource.Drop(files);
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
