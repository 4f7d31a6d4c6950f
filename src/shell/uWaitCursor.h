// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCursor>
#include <QGuiApplication>

namespace Kestrune {

/// The waiting cursor for as long as it lives.
class TWaitCursor {
public:
    TWaitCursor() { QGuiApplication::setOverrideCursor(QCursor(Qt::WaitCursor)); }
    ~TWaitCursor() { QGuiApplication::restoreOverrideCursor(); }
    TWaitCursor(const TWaitCursor&) = delete;
    TWaitCursor& operator=(const TWaitCursor&) = delete;
};

} // namespace Kestrune
