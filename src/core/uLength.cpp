// SPDX-License-Identifier: GPL-3.0-or-later
#include "uLength.h"

#include <QLocale>
#include <QStringList>

namespace Kestrune {

std::optional<double> ParseLengthSec(const QString& text)
{
    constexpr double most = 1e7; // of a part; four months
    const QStringList parts = text.trimmed().split(u':');
    if (parts.size() > 3)
        return std::nullopt;
    double seconds = 0.0;
    for (const QString& part : parts) {
        bool isNumber = false;
        const double number = QLocale::c().toDouble(part, &isNumber);
        if (!isNumber || !(number >= 0.0 && number <= most))
            return std::nullopt;
        seconds = seconds * 60.0 + number;
    }
    return seconds;
}

} // namespace Kestrune
