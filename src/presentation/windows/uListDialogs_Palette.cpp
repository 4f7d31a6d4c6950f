// SPDX-License-Identifier: GPL-3.0-or-later
#include "uActionSet.h"
#include "uListDialogs.h"
#include "uTHStrings.h"

#include <QAction>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

TCommandPalette::TCommandPalette(const TActionSet& actions, QWidget* parent)
    : TDialog(u"TCommandPalette"_s, GetLanguageString(u"cSactCommandPalette"_s), parent),
      FActions(actions),
      FList(new QListWidget(this))
{
    auto* search = new QLineEdit(this);
    search->setPlaceholderText(GetLanguageString(u"cSGuiPaletteHint"_s));
    search->setAccessibleName(search->placeholderText());
    search->installEventFilter(this);
    Body()->addWidget(search);
    Body()->addWidget(FList, 1);
    FList->setAccessibleName(windowTitle());
    FList->setFocusPolicy(Qt::NoFocus); // the arrows move it while the text is typed
    connect(search, &QLineEdit::textChanged, this, &TCommandPalette::Fill);
    connect(FList, &QListWidget::itemClicked, this, &TCommandPalette::Run);
    SetFirstSize({560, 420});
    Fill({});
    search->setFocus();
}

void TCommandPalette::Fill(const QString& text)
{
    FList->clear();
    const QStringList words = text.split(u' ', Qt::SkipEmptyParts);
    for (const TActionDef& def : ActionDefs()) {
        const QString name = QString::fromLatin1(def.Name);
        QAction* action = FActions.Find(name);
        const bool itself = name == "actCommandPalette"_L1;
        if (!action || itself || !action->isVisible())
            continue;
        const QString keys = ShownKeysOf(*action);
        const QString shown = FullCaptionOf(name) + (keys.isEmpty() ? QString() : u"   "_s + keys);
        const bool hit =
            std::ranges::all_of(words, [&](const QString& word) { return shown.contains(word, Qt::CaseInsensitive); });
        if (!hit)
            continue;
        auto* item = new QListWidgetItem(action->icon(), shown, FList);
        item->setData(Qt::UserRole, name);
        if (!action->isEnabled())
            item->setFlags(Qt::NoItemFlags); // found, and seen not to be possible now
    }
    FList->setCurrentRow(-1);
    Step(1);
}

void TCommandPalette::Step(int direction)
{
    for (int row = FList->currentRow() + direction; row >= 0 && row < FList->count(); row += direction)
        if (FList->item(row)->flags().testFlag(Qt::ItemIsEnabled))
            return FList->setCurrentRow(row);
}

void TCommandPalette::Run()
{
    const QListWidgetItem* item = FList->currentItem();
    QAction* action = item ? FActions.Find(item->data(Qt::UserRole).toString()) : nullptr;
    if (!action || !action->isEnabled())
        return;
    accept();
    // Once this window is gone, so that a window or menu of the command stands over the main one.
    if (QMenu* menu = action->menu())
        QTimer::singleShot(0, menu, [menu, place = parentWidget()->mapToGlobal(parentWidget()->rect().center())] {
            menu->popup(place);
        });
    else
        QTimer::singleShot(0, action, &QAction::trigger);
}

bool TCommandPalette::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::KeyPress)
        return TDialog::eventFilter(watched, event);
    const auto* key = static_cast<QKeyEvent*>(event);
    switch (key->key()) {
    case Qt::Key_Down: Step(1); return true;
    case Qt::Key_Up: Step(-1); return true;
    case Qt::Key_Return:
    case Qt::Key_Enter: Run(); return true;
    default: return TDialog::eventFilter(watched, event);
    }
}

} // namespace Kestrune
