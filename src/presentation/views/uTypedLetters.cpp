// SPDX-License-Identifier: GPL-3.0-or-later
#include "uTypedLetters.h"

#include <QDateTime>
#include <QGuiApplication>
#include <QStyleHints>

#include <algorithm>

namespace Kestrune {

int TTypedLetters::Add(const QString& letters, int currentRow, const TLocate& locate)
{
    if (letters.isEmpty())
        return -1;
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    const bool goesOn = now - FLastTyped < QGuiApplication::styleHints()->keyboardInputInterval();
    FLastTyped = now;
    // The same letter again means the next hit, not a word of two equal letters.
    const bool repeated = goesOn && FTyped == letters;
    if (!repeated)
        FTyped = goesOn ? FTyped + letters : letters;
    return locate(FTyped, std::max(0, currentRow + (FTyped.size() == 1 ? 1 : 0)));
}

} // namespace Kestrune
