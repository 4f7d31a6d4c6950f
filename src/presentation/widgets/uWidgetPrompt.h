// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uPrompt.h"

#include <QPointer>
#include <QWidget>

namespace Kestrune {

/// The questions of the logic as dialogs over the main window.
class TWidgetPrompt : public TPrompt {
public:
    /// The window that dialogs stand over, once there is one.
    void SetWindow(QWidget* window) { FWindow = window; }

    void ShowError(const QString& text) override;
    void ShowInformation(const QString& text) override;
    bool AskYesNo(const QString& text) override;
    bool AskBeforeLoss(const QString& text, const QString& note) override;
    QString AskOpenFile(const TFileDialogRequest& request) override;
    QString AskSaveFile(const TFileDialogRequest& request) override;
    QString AskFolder(const QString& title, const QString& folder) override;

private:
    QPointer<QWidget> FWindow;
};

} // namespace Kestrune
