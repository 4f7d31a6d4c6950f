// SPDX-License-Identifier: GPL-3.0-or-later
#include "uTagValues.h"

#include <QRegularExpression>

#include <limits>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

int DigitValue(QChar c, int base)
{
    const char16_t u = c.unicode();
    const int value = u >= u'0' && u <= u'9'   ? u - u'0'
                      : u >= u'a' && u <= u'f' ? u - u'a' + 10
                      : u >= u'A' && u <= u'F' ? u - u'A' + 10
                                               : base;
    return value < base ? value : -1;
}

// Length of the mark of a hexadecimal number at a position, or 0.
qsizetype HexMark(QStringView text)
{
    if (text.startsWith(u"0x", Qt::CaseInsensitive))
        return 2;
    return text.startsWith(u'$') || text.startsWith(u'x', Qt::CaseInsensitive) ? 1 : 0;
}

QDate EnglishDate(const QString& day, const QString& month, const QString& year)
{
    static const QStringList names{u"jan"_s, u"feb"_s, u"mar"_s, u"apr"_s, u"may"_s, u"jun"_s,
                                   u"jul"_s, u"aug"_s, u"sep"_s, u"oct"_s, u"nov"_s, u"dec"_s};
    const qsizetype index = names.indexOf(month.toLower());
    return index < 0 ? QDate() : QDate(year.toInt(), static_cast<int>(index) + 1, day.toInt());
}

} // namespace

int ParseLenientNumber(const QString& text)
{
    QStringView rest(text);
    while (rest.startsWith(u' '))
        rest = rest.sliced(1);
    const bool negative = rest.startsWith(u'-');
    if (negative || rest.startsWith(u'+'))
        rest = rest.sliced(1);
    const qsizetype mark = HexMark(rest);
    const int base = mark > 0 ? 16 : 10;
    qint64 value = 0;
    for (const QChar c : rest.sliced(mark)) {
        const int digit = DigitValue(c, base);
        const qint64 next = value * base + digit;
        if (digit < 0 || next > std::numeric_limits<int>::max())
            break;
        value = next;
    }
    return static_cast<int>(negative ? -value : value);
}

QDate ParseTagDate(const QString& text)
{
    static const QRegularExpression iso(u"^(\\d{4})-(\\d{1,2})-(\\d{1,2})$"_s);
    static const QRegularExpression english(u"^(\\d{1,2}) ([A-Za-z]{3}) (\\d{4})$"_s);
    const QString trimmed = text.trimmed();
    if (const auto match = iso.match(trimmed); match.hasMatch())
        return {match.captured(1).toInt(), match.captured(2).toInt(), match.captured(3).toInt()};
    if (const auto match = english.match(trimmed); match.hasMatch())
        return EnglishDate(match.captured(1), match.captured(2), match.captured(3));
    return {};
}

} // namespace Kestrune
