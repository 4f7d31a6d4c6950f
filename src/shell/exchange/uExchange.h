// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>

namespace Kestrune {

class TLists;
class TShell;

/// What goes out of the active list: files and paper. Binds these actions; the window writes and prints what it shows.
class TExchange : public QObject {
    Q_OBJECT

public:
    /// Both outlive it.
    TExchange(TShell& shell, TLists& lists);

Q_SIGNALS:
    /// The word of an export format.
    void exportRequested(const QString& format);
};

} // namespace Kestrune
