// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <functional>

namespace Kestrune {

/// Finds the row for letters typed by the user, from a row on and round; -1 for none.
using TLocate = std::function<int(const QString& text, int fromRow)>;

/// The letters that were typed one soon after the other, by which a view jumps.
class TTypedLetters {
public:
    /// Takes a letter and gives the row to jump to, -1 for none. `currentRow` is -1 when no row is current.
    int Add(const QString& letters, int currentRow, const TLocate& locate);

private:
    QString FTyped;
    qint64 FLastTyped = 0;
};

} // namespace Kestrune
