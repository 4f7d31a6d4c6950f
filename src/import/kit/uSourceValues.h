// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDate>
#include <QString>
#include <QTime>

namespace Kestrune {

/// The number at the head of a text: blanks, a sign, digits or hexadecimal digits behind "$", "x" or "0x". What
/// follows is ignored ("2004-05-01" is 2004, "3/12" is 3), as are digits that no longer fit; 0 without any.
int ParseLenientNumber(const QString& text);

/// A text that is a whole number and nothing else but blanks around it; "3.5" is none.
int WholeNumber(const QString& text, int otherwise = 0);

/// A text that is a decimal number with "." or ","; 0 for anything else.
double DecimalNumber(const QString& text);

/// How a source writes its dates. In the forms "d" and "m" stand for a number of one or two digits, "mmm" for an
/// English name of three letters, "yyyy" for four digits and "yy" for two (1950 to 2049); "h", "n" and "s" for hours,
/// minutes and seconds. Where letters follow each other without a separator, each takes as many digits as it has.
struct TDateForm {
    QString Date;
    QString Time{};             ///< empty: no time of day follows
    QChar DateSeparator = u'-'; ///< stands in the text wherever the form has a character that is no letter
    QChar TimeSeparator = u':';
};

/// A date and the time of day, in no zone: a source's clock may show what the local one skips in spring.
struct TSourceDate {
    QDate Date; ///< invalid together with the time
    QTime Time; ///< midnight where the text has none
};

/// The date and time of a text; invalid for a text that is not of the form as a whole.
TSourceDate ParseDateAs(const QString& text, const TDateForm& form);

/// A date in the form "2004-05-01" or "01 May 2004" (English names of months); an invalid date for anything else.
QDate ParseTagDate(const QString& text);

} // namespace Kestrune
