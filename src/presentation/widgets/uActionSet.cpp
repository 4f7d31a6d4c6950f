// SPDX-License-Identifier: GPL-3.0-or-later
#include "uActionSet.h"

#include "uRibbonButton.h"
#include "uTHStrings.h"

#include <QAction>
#include <QKeySequence>
#include <QMenu>
#include <QWidget>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

const char* const ShownKeys = "shownKeys";

} // namespace

TActionSet::TActionSet(TActionList& list, QWidget* window) : QObject(window), FList(list)
{
    for (const TActionDef& def : ActionDefs()) {
        const QString name = QString::fromLatin1(def.Name);
        const QString caption = GetLanguageString(QString::fromLatin1(def.CaptionKey));
        auto* action = new QAction(caption, this);
        action->setObjectName(name);
        action->setCheckable(def.Checkable);
        if (def.ShortKey[0] != '\0')
            action->setIconText(GetLanguageString(QString::fromLatin1(def.ShortKey)));
        const QKeySequence keys(QString::fromLatin1(def.Shortcut), QKeySequence::PortableText);
        // A key that an action before it has is not shown either: it would not come here.
        const bool taken = !keys.isEmpty() && std::ranges::any_of(FActions, [&](const QAction* other) {
            return other->shortcut() == keys;
        });
        const QString shown = taken ? QString() : keys.toString(QKeySequence::NativeText);
        if (!taken)
            action->setShortcut(keys);
        action->setProperty(ShownKeys, shown);
        action->setToolTip(shown.isEmpty() ? caption : u"%1 (%2)"_s.arg(caption, shown));
        SetActionIcon(*action, QString::fromLatin1(def.Icon));
        connect(action, &QAction::triggered, this, [this, name] { FList.Trigger(name); });
        window->addAction(action);
        FActions.insert(name, action);
    }
    connect(&FList, &TActionList::updated, this, &TActionSet::Follow);
    Follow();
}

void TActionSet::Follow()
{
    for (auto it = FActions.cbegin(); it != FActions.cend(); ++it) {
        QAction* action = it.value();
        action->setVisible(FList.IsBound(it.key()));
        action->setEnabled(FList.IsEnabled(it.key()));
        if (action->isCheckable())
            action->setChecked(FList.IsChecked(it.key()));
    }
}

void TActionSet::Fill(QMenu& menu, const QStringList& names) const
{
    bool separate = false;
    for (const QString& name : names) {
        QAction* action = name.isEmpty() ? nullptr : Find(name);
        if (name.isEmpty())
            separate = !menu.isEmpty();
        if (!action || !action->isVisible())
            continue;
        if (separate)
            menu.addSeparator();
        separate = false;
        menu.addAction(action);
    }
}

QString ShownKeysOf(const QAction& action) { return action.property(ShownKeys).toString(); }

QString FullCaptionOf(const QString& action)
{
    for (const TActionDef& def : ActionDefs()) {
        if (action != QLatin1StringView(def.Name))
            continue;
        const QString caption = GetLanguageString(QString::fromLatin1(def.CaptionKey));
        const auto under = [&](const QString& key) { return GetLanguageString(key) + u": "_s + caption; };
        if (action.startsWith("actExportTo"_L1))
            return under(u"cSGuiExport"_s);
        if (action.startsWith("actDetailPanel"_L1) || action.startsWith("actVG"_L1))
            return under(u"cSGuiGroupPane"_s);
        if (action.startsWith("actEdit"_L1) && def.Icon[0] == '\0' && def.Shortcut[0] == '\0')
            return under(u"cSGuiGroupLists"_s);
        return caption;
    }
    return {};
}

} // namespace Kestrune
