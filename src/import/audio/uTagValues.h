// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDate>
#include <QString>

namespace Kestrune {

/// The number at the head of a text: blanks, a sign, digits or hexadecimal digits behind "$", "x" or "0x". What
/// follows is ignored ("2004-05-01" is 2004, "3/12" is 3), as are digits that no longer fit; 0 without any.
int ParseLenientNumber(const QString& text);

/// A date in the form "2004-05-01" or "01 May 2004" (English names of months); an invalid date for anything else.
QDate ParseTagDate(const QString& text);

} // namespace Kestrune
