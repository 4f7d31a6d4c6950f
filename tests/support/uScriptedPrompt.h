// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uPrompt.h"

#include <QStringList>

namespace Kestrune::Kit {

/// Answers what a test says and remembers what was asked and shown.
class TScriptedPrompt final : public TPrompt {
public:
    QStringList Errors;
    QStringList Information;
    QStringList Questions;
    QStringList Notes;
    bool YesNoAnswer = true;
    QString FileAnswer;
    TFileDialogRequest Saved; ///< what was last asked for

    void ShowError(const QString& text) override { Errors.append(text); }
    void ShowInformation(const QString& text) override { Information.append(text); }
    bool AskYesNo(const QString& text) override
    {
        Questions.append(text);
        return YesNoAnswer;
    }
    bool AskBeforeLoss(const QString& text, const QString& note) override
    {
        Notes.append(note);
        return AskYesNo(text);
    }
    QString AskOpenFile(const TFileDialogRequest&) override { return FileAnswer; }
    QString AskSaveFile(const TFileDialogRequest& request) override
    {
        Saved = request;
        return FileAnswer;
    }
    QString AskFolder(const QString&, const QString&) override { return FileAnswer; }
};

} // namespace Kestrune::Kit
