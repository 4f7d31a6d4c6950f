// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uImportAbstract.h"

namespace Kestrune::Kit {

using namespace Qt::StringLiterals;

/// Lists and "imports" thirty releases that exist nowhere. A source named "torn.x" has a part that cannot be read.
class TListedImporter final : public TKRNImporter {
public:
    using TKRNImporter::TKRNImporter;
    ~TListedImporter() override
    {
        Terminate();
        WaitFor();
    }
    static bool CanSelectWhichAlbumsToImport() { return true; }
    static bool CanCopyAndPasteData() { return true; }
    static TKRNImporterInputType GetImporterType() { return iitFile; }
    static QString GetImporterFileExt() { return u"x"_s; }
    static QString GetImporterFileExtFilter() { return u"X (*.x)|*.x"_s; }
    static QString GetDisplayName() { return u"Paper list"_s; }
    static QString GetDisplayDesc() { return u"Import from a list on paper"_s; }
    static QString GetSelectSourceDescription() { return u"Select the list."_s; }

protected:
    void Import() override
    {
        if (InputPath().endsWith("torn.x"_L1))
            DoOnFileError(u"page 7"_s, u"It is torn."_s);
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
