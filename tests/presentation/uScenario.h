// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uMainWindow.h"
#include "uScriptedPrompt.h"
#include "uTestFiles.h"
#include "uThemeController.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

class QDialog;

namespace Kestrune::Kit {

/// Runs the real main window on the offscreen platform as a user would: by actions, keys and dialogs. What came of it
/// is compared as texts.
class TScenario : public testing::Test {
protected:
    TScenario();
    ~TScenario() override;

    /// A collection of so many invented releases of three tracks each, and the window over it.
    void Open(int releases, const std::function<void()>& settings = {});
    /// Closes the window as a user does and opens it again over the same file.
    void Reopen();
    /// Lets all that waits happen, the delayed parts of the window too.
    void Settle();

    /// Triggers an action; fails the test when it is not there or disabled.
    void Do(const char* action);
    /// Keys as in "Ctrl+F" to what has the focus.
    void Press(const QString& keys);
    void Type(const QString& text);
    /// Triggers an action that opens a dialog and runs `inside` when it is there; the dialog is closed if that leaves
    /// it open.
    void InDialog(const char* action, const std::function<void(QDialog&)>& inside);

    /// Names of the rows in sight of the active list, in their order.
    QStringList Rows() const;
    QStringList Chips() const;
    /// View, focused row, number of selected rows: "albums | Salt Atlas 001 | 2".
    QString State() const;
    /// What a statement gives, read from the file by another connection.
    QString InFile(const QString& sql) const;
    /// Texts of the message bars in sight.
    QStringList Bars() const;

    TKRNMainForm& Form() { return *FForm; }
    TMainWindow& Window() { return *FWindow; }

    TTempDir FDir;
    TScriptedPrompt FPrompt;
    QString FPath = FDir.File(QStringLiteral("records.db"));

private:
    void Show();

    TDataModuleMain FData{FPrompt};
    TThemeController FTheme;
    std::unique_ptr<TKRNMainForm> FForm;
    std::unique_ptr<TMainWindow> FWindow;
    QStringList FBars;
};

} // namespace Kestrune::Kit
