// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uPrompt.h"

#include <QObject>
#include <QTimer>

#include <functional>

class QWidget;

namespace Kestrune {

// Every choice of a file or folder in the program goes through these. They look at names and attributes only: what
// opened a file to guess its kind would cost the open collection its locks. Empty when the user cancelled.
QString ChooseOpenFile(QWidget* parent, const TFileDialogRequest& request);
QString ChooseSaveFile(QWidget* parent, const TFileDialogRequest& request);
QString ChooseFolder(QWidget* parent, const QString& title, const QString& folder);

/// "Name (*.x)|*.x|All files (*.*)|*.*" in the form of Qt's dialogs: "Name (*.x);;All files (*)".
QString QtFilterOf(const QString& filter);

/// Calls `look` while a dialog is open, now and then, and when one has closed: dialogs of the toolkit that are not ours
/// may have looked into files. Calls `closed` when the last one has closed. Main thread.
class TDialogWatch final : public QObject {
    Q_OBJECT

public:
    TDialogWatch(std::function<void()> look, std::function<void()> closed, QObject* parent = nullptr);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    std::function<void()> FLook;
    std::function<void()> FClosed;
    QTimer FTimer;
};

} // namespace Kestrune
