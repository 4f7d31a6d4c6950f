// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

class QAction;

namespace Kestrune {

/// How a button of the ribbon looks and what its arrow does.
enum class TRibbonKind : quint8 {
    rkSmall,
    rkLarge,
    rkSplit, ///< large; the action on the button, a menu on the arrow
    rkMenu   ///< large; the whole button opens the menu
};
using enum TRibbonKind;

/// One button. A menu button without an action of its own takes its caption and icon from here.
struct TRibbonItem {
    TRibbonKind Kind = rkSmall;
    QString Action; ///< object name of the QAction; for rkMenu it may be empty
    QStringList Menu;
    QString CaptionKey;
    QString Icon;
};

struct TRibbonGroup {
    QString CaptionKey; ///< tool tip, and caption of the one button that stands for a group with too little room
    QString Icon;
    std::vector<TRibbonItem> Items;
};

struct TRibbonTab {
    QString CaptionKey;
    std::vector<TRibbonGroup> Groups;
};

/// Finds the QAction of a name; null for an action that does not exist.
using TActionFinder = std::function<QAction*(const QString& name)>;

/// The arrangement of the ribbon of the main window.
std::vector<TRibbonTab> MainRibbonTable();

/// One letter per caption for the keyboard tips, unlike each other: the first free letter or digit of the caption, else
/// a free one of the alphabet. More than 36 captions leave the rest without.
QStringList AssignKeyTips(const QStringList& captions);

} // namespace Kestrune
