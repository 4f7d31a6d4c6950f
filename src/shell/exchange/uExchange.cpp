// SPDX-License-Identifier: GPL-3.0-or-later
#include "uExchange.h"

#include "uLists.h"
#include "uShell.h"

namespace Kestrune {

using namespace Qt::StringLiterals;

TExchange::TExchange(TShell& shell, TLists& lists)
{
    const auto hasRows = [&shell, &lists] { return shell.HasData() && lists.Active().List().RecordCount() > 0; };
    const std::pair<QString, QString> formats[] = {
        {u"actExportToHTML"_s, u"html"_s}, {u"actExportToExcel"_s, u"xlsx"_s}, {u"actExportToText"_s, u"txt"_s},
        {u"actExportToXML"_s, u"xml"_s},   {u"actExportToCSV"_s, u"csv"_s},    {u"actExportToPDF"_s, u"pdf"_s}};
    for (const auto& [action, format] : formats)
        shell.Actions().Bind(
            action, [this, format = format] { Q_EMIT exportRequested(format); }, hasRows);
    for (const QString& action : {u"actPrint"_s, u"actQuickPrint"_s, u"actPrintPreview"_s})
        shell.BindWindow(action, hasRows);
}

} // namespace Kestrune
