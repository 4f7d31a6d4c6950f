// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uActions.h"

#include <QHash>
#include <QObject>

class QAction;
class QMenu;
class QWidget;

namespace Kestrune {

/// The QActions of the program's action table: one for each, with caption, icon and shortcut, following the logic's
/// rules. An action that is not bound is invisible.
class TActionSet : public QObject {
    Q_OBJECT
public:
    /// The actions are added to `window`, so that their shortcuts work in it. The list outlives the set.
    TActionSet(TActionList& list, QWidget* window);

    /// Null for a name that is not in the table.
    QAction* Find(const QString& name) const { return FActions.value(name); }
    /// Adds the actions to a menu; an empty name is a separator. Unknown and invisible ones are left out, and so are
    /// separators with nothing between them.
    void Fill(QMenu& menu, const QStringList& names) const;

private:
    void Follow();

    TActionList& FList;
    QHash<QString, QAction*> FActions; // children
};

/// The keys of an action as they are shown, in the user's way; empty for none.
QString ShownKeysOf(const QAction& action);

/// The caption of an action where it stands alone: with the menu that it belongs to, as in "Export: HTML".
QString FullCaptionOf(const QString& action);

} // namespace Kestrune
