// SPDX-License-Identifier: GPL-3.0-or-later
#include "uWidgetPrompt.h"

#include "uFileDialogs.h"
#include "uMessageBoxes.h"

namespace Kestrune {

using namespace Qt::StringLiterals;

QString QtFilterOf(const QString& filter)
{
    const QStringList parts = filter.split(u'|');
    QStringList shown;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QString name = parts[i];
        if (const qsizetype bracket = name.lastIndexOf(u'('); bracket > 0)
            name = name.left(bracket).trimmed();
        QString patterns = parts[i + 1];
        // Names without a dot are files too.
        patterns.replace(u"*.*"_s, u"*"_s).replace(u';', u' ');
        shown << name + u" ("_s + patterns + u')';
    }
    return shown.join(u";;"_s);
}

void TWidgetPrompt::ShowError(const QString& text) { Kestrune::ShowError(FWindow, text); }

void TWidgetPrompt::ShowInformation(const QString& text) { ShowMessage(FWindow, text); }

bool TWidgetPrompt::AskYesNo(const QString& text) { return Kestrune::AskYesNo(FWindow, text); }

QString TWidgetPrompt::AskOpenFile(const TFileDialogRequest& request) { return ChooseOpenFile(FWindow, request); }

QString TWidgetPrompt::AskSaveFile(const TFileDialogRequest& request) { return ChooseSaveFile(FWindow, request); }

QString TWidgetPrompt::AskFolder(const QString& title, const QString& folder)
{
    return ChooseFolder(FWindow, title, folder);
}

} // namespace Kestrune
