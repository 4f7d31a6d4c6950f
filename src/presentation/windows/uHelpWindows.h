// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uDialog.h"

namespace Kestrune {

/// What the program is, its version and licence.
class TAboutWindow : public TDialog {
    Q_OBJECT
public:
    explicit TAboutWindow(QWidget* parent);
};

/// The manual: pages compiled in, with all commands and their keys.
class THelpWindow : public TDialog {
    Q_OBJECT
public:
    explicit THelpWindow(QWidget* parent);
};

/// The commands with a key of their own, as rows of a table in HTML.
QString ShortcutTableHtml();

} // namespace Kestrune
