// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <functional>

namespace Kestrune {

/// What a file dialog is asked for.
struct TFileDialogRequest {
    QString Title;
    QString Filter;           ///< "Name (*.x)|*.x|All files (*.*)|*.*"
    QString DefaultExtension; ///< without dot; added to a saved name that has none
    QString Folder;           ///< start folder, empty for the dialog's own choice
    QString FileName;
};

/// A sentence that needs no answer: errors and warnings stay until they are closed, what is done leaves by itself.
enum class TBarKind : quint8 { bkError, bkWarning, bkDone };
using enum TBarKind;

/// How the logic speaks with the user. The window program shows dialogs, the command line prints, tests answer
/// from a script. All calls come on the main thread.
class TPrompt {
public:
    virtual ~TPrompt() = default;
    /// A message with one OK button.
    virtual void ShowError(const QString& text) = 0;
    virtual void ShowInformation(const QString& text) = 0;
    /// A question answered by Yes or No; closing it means No.
    virtual bool AskYesNo(const QString& text) = 0;
    /// The same for what takes something away: a note below the question says how much, and No has the keyboard.
    virtual bool AskBeforeLoss(const QString& text, const QString& note) = 0;
    /// Chosen path, or empty when the user cancelled.
    virtual QString AskOpenFile(const TFileDialogRequest& request) = 0;
    /// The same for a file to write; the dialog asks before an existing one is chosen.
    virtual QString AskSaveFile(const TFileDialogRequest& request) = 0;
    /// An existing folder, or empty when the user cancelled.
    virtual QString AskFolder(const QString& title, const QString& folder) = 0;
};

using TSplashSink = std::function<void(const QString& text)>;

/// Shows one line of progress on the splash window; does nothing once that is gone.
void SetSplashText(const QString& text);

/// Installs the receiver of the splash texts; an empty function removes it.
void SetSplashSink(TSplashSink sink);

} // namespace Kestrune
