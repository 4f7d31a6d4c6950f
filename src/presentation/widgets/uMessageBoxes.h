// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

class QWidget;

namespace Kestrune {

/// What the user answered.
enum class TAnswer : quint8 { anYes, anNo, anCancel };
using enum TAnswer;

/// A sentence with one OK button.
void ShowMessage(QWidget* parent, const QString& text);
/// The same as an error, as after a file that cannot be opened.
void ShowError(QWidget* parent, const QString& text);
/// Yes and No; No by Esc. The safe answer has the keyboard when `defaultNo` is set. A note stands below the question.
bool AskYesNo(QWidget* parent, const QString& text, bool defaultNo = false, const QString& note = {});
/// Yes, No and Cancel.
TAnswer AskYesNoCancel(QWidget* parent, const QString& text);

} // namespace Kestrune
