// SPDX-License-Identifier: GPL-3.0-or-later
#include "uImportPageTable.h"

#include "uImportPages.h"

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

template <typename T>
TImportPageWidget* MakePage(TKRNImportForm& form, QWidget* parent)
{
    return new T(form, parent);
}

} // namespace

std::span<const TImportPageRow> ImportPages()
{
    static const TImportPageRow pages[] = {
        {pWelcome, u"cSImportWelcomeTitle"_s, u"cSGuiStepWelcome"_s, u"cSGuiHintWelcome"_s, MakePage<TWelcomePage>},
        {pSelectSource, u"cSImportSelectSourceTitle"_s, u"cSGuiStepSource"_s, {}, MakePage<TSourcePage>},
        {pSelectAlbumsToImport, u"cSImportSelectAlbumsTabTitle"_s, u"cSImportSelectAlbumsTabTitle"_s,
         u"cSGuiHintSelectAlbums"_s, MakePage<TSelectPage>},
        {pProgress, u"cSImportProgressTitle"_s, u"cSGuiStepImport"_s, u"cSGuiHintImport"_s, MakePage<TProgressPage>},
        {pFinish, u"cSImportFinishTitle"_s, u"cSGuiStepFinish"_s, {}, MakePage<TFinishPage>},
    };
    return pages;
}

} // namespace Kestrune
