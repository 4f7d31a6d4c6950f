// SPDX-License-Identifier: GPL-3.0-or-later
#include "uWidgetPrompt.h"

#include "uFileDialogs.h"
#include "uMessageBoxes.h"

namespace Kestrune {

void TWidgetPrompt::ShowError(const QString& text) { Kestrune::ShowError(FWindow, text); }

void TWidgetPrompt::ShowInformation(const QString& text) { ShowMessage(FWindow, text); }

bool TWidgetPrompt::AskYesNo(const QString& text) { return Kestrune::AskYesNo(FWindow, text); }

bool TWidgetPrompt::AskBeforeLoss(const QString& text, const QString& note)
{
    return Kestrune::AskYesNo(FWindow, text, true, note);
}

QString TWidgetPrompt::AskOpenFile(const TFileDialogRequest& request) { return ChooseOpenFile(FWindow, request); }

QString TWidgetPrompt::AskSaveFile(const TFileDialogRequest& request) { return ChooseSaveFile(FWindow, request); }

QString TWidgetPrompt::AskFolder(const QString& title, const QString& folder)
{
    return ChooseFolder(FWindow, title, folder);
}

} // namespace Kestrune
