// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>

#include <functional>
#include <span>
#include <vector>

namespace Kestrune {

/// One command of the program, as all menus, buttons and shortcuts show it.
struct TActionDef {
    const char* Name;       ///< "actRefresh"
    const char* CaptionKey; ///< language key of the full caption
    const char* ShortKey;   ///< language key of the ribbon's caption; empty: the full one
    const char* Shortcut;   ///< portable text as in "Ctrl+Alt+X", or empty; of two alike the first gets the key
    const char* Icon;       ///< name in the own icon set, or empty
    bool Checkable = false;
};

/// The action table of the main window, in the order of its menus.
std::span<const TActionDef> ActionDefs();

/// What the actions do and when. An action that is not bound does not exist for the user.
class TActionList : public QObject {
    Q_OBJECT

public:
    using TRule = std::function<bool()>;

    /// Gives an action its handler, the rule that enables it (none: always) and the rule that checks it.
    void Bind(const QString& name, std::function<void()> execute, TRule enabled = {}, TRule checked = {});

    /// Adds a condition to the rule of a bound action.
    void Restrict(const QString& name, TRule enabled);

    bool IsBound(const QString& name) const;
    bool IsEnabled(const QString& name) const;
    bool IsChecked(const QString& name) const;
    /// Runs an action that is bound and enabled. A failure of the collection is shown through OnFailure.
    void Trigger(const QString& name);

    /// While it is blocked no action runs and all show as disabled.
    void SetBlocked(bool blocked);

    /// Asks all rules anew and tells the views.
    void Update();

    std::function<void(const QString& sentence)> OnFailure;

Q_SIGNALS:
    void updated();

private:
    struct TBinding {
        QString Name;
        std::function<void()> Execute;
        TRule EnabledRule;
        TRule CheckedRule;
        bool Enabled = true;
        bool Checked = false;
    };
    const TBinding* Find(const QString& name) const;

    std::vector<TBinding> FBindings;
    bool FBlocked = false;
};

} // namespace Kestrune
