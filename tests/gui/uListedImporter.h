// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uImporterClass.h"

namespace Kestrune::Kit {

using namespace Qt::StringLiterals;

/// Lists and "imports" thirty releases that exist nowhere. A source named "torn.x" has a part that cannot be read.
class TListedImporter final : public TKRNImporter {
public:
    using TKRNImporter::TKRNImporter;

    static TImporterClass Row()
    {
        return {.ClassName = u"TKRNImporter_Paper"_s,
                .DisplayName = u"Paper list"_s,
                .DisplayDesc = u"Import from a list on paper"_s,
                .SelectSource = u"Select the list."_s,
                .ImporterFileExt = u"x"_s,
                .FileFilter = u"X (*.x)|*.x"_s,
                .CanSelectWhichAlbumsToImport = true,
                .CanCopyAndPasteData = true,
                .NewWorker = MakeImporter<TListedImporter>};
    }

protected:
    void Import() override
    {
        if (InputPath().endsWith("torn.x"_L1))
            DoOnItemError(u"page 7"_s, u"It is torn."_s);
        for (int i = 0; i < 30; ++i)
            if (JobType() == ijtGetReleasesList)
                DoOnReleaseFound(i, i % 2 ? u"Ilva Marren"_s : u"Hask & Vane"_s, u"Salt Atlas %1"_s.arg(i), u"1974"_s,
                                 6 + i);
            else if (IsWanted(i))
                DoOnProgress(i, 30, true, u"Ilva Marren - Salt Atlas %1"_s.arg(i));
        DoOnImportDone(static_cast<int>(IDsArray().size()), 0);
    }
};

} // namespace Kestrune::Kit
