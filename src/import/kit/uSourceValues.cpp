// SPDX-License-Identifier: GPL-3.0-or-later
#include "uSourceValues.h"

#include <QStringList>

#include <algorithm>
#include <cmath>
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

bool IsAsciiDigit(QChar c) { return c >= u'0' && c <= u'9'; }

bool IsAsciiLetter(QChar c) { return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z'); }

int EnglishMonth(QStringView name)
{
    static const QStringList names{u"jan"_s, u"feb"_s, u"mar"_s, u"apr"_s, u"may"_s, u"jun"_s,
                                   u"jul"_s, u"aug"_s, u"sep"_s, u"oct"_s, u"nov"_s, u"dec"_s};
    return static_cast<int>(names.indexOf(name.toString().toLower())) + 1;
}

// Reads the fields that a form asks for from the head of a text.
class TFormReader {
public:
    explicit TFormReader(QStringView text) : FRest(text) {}

    bool Read(QStringView form, QChar separator)
    {
        for (qsizetype at = 0; at < form.size();) {
            if (!IsAsciiLetter(form[at])) {
                if (!Skip(separator))
                    return false;
                ++at;
                continue;
            }
            qsizetype end = at;
            while (end < form.size() && form[end] == form[at])
                ++end;
            const bool fixed = end < form.size() && IsAsciiLetter(form[end]);
            if (!ReadField(form[at].toLower(), end - at, fixed))
                return false;
            at = end;
        }
        return true;
    }
    bool Skip(QChar c)
    {
        if (!FRest.startsWith(c))
            return false;
        FRest = FRest.sliced(1);
        return true;
    }
    bool AtEnd() const { return FRest.isEmpty(); }
    TSourceDate Value() const
    {
        const TSourceDate value{QDate(FYear, FMonth, FDay), QTime(FHour, FMinute, FSecond)};
        return value.Date.isValid() && value.Time.isValid() ? value : TSourceDate();
    }

private:
    bool ReadField(QChar letter, qsizetype length, bool fixed)
    {
        switch (letter.unicode()) {
        case u'y': return ReadYear(length);
        case u'm': return length > 2 ? ReadMonthName() : ReadNumber(FMonth, length, fixed);
        case u'd': return ReadNumber(FDay, length, fixed);
        case u'h': return ReadNumber(FHour, length, fixed);
        case u'n': return ReadNumber(FMinute, length, fixed);
        case u's': return ReadNumber(FSecond, length, fixed);
        default: return false;
        }
    }

    // One or two digits, or exactly as many as the form has letters.
    bool ReadNumber(int& number, qsizetype length, bool fixed)
    {
        const qsizetype most = fixed ? length : 2;
        qsizetype digits = 0;
        while (digits < most && digits < FRest.size() && IsAsciiDigit(FRest[digits]))
            ++digits;
        return digits >= (fixed ? most : 1) && Take(number, digits);
    }

    bool ReadYear(qsizetype length)
    {
        const qsizetype digits = length > 2 ? 4 : 2;
        for (qsizetype i = 0; i < digits; ++i)
            if (i >= FRest.size() || !IsAsciiDigit(FRest[i]))
                return false;
        Take(FYear, digits);
        if (digits == 2)
            FYear += FYear < 50 ? 2000 : 1900;
        return true;
    }

    bool ReadMonthName()
    {
        FMonth = EnglishMonth(FRest.first(std::min<qsizetype>(3, FRest.size())));
        FRest = FRest.sliced(std::min<qsizetype>(3, FRest.size()));
        return FMonth > 0;
    }

    bool Take(int& number, qsizetype digits)
    {
        number = FRest.first(digits).toInt();
        FRest = FRest.sliced(digits);
        return true;
    }

    QStringView FRest;
    int FYear = 0, FMonth = 0, FDay = 0, FHour = 0, FMinute = 0, FSecond = 0;
};

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

int WholeNumber(const QString& text, int otherwise)
{
    bool isNumber = false;
    const int number = text.trimmed().toInt(&isNumber);
    return isNumber ? number : otherwise;
}

double DecimalNumber(const QString& text)
{
    QString number = text.trimmed();
    if (!number.contains(u'.') && number.count(u',') == 1)
        number.replace(u',', u'.');
    bool isNumber = false;
    const double value = number.toDouble(&isNumber);
    return isNumber && std::isfinite(value) ? value : 0.0;
}

TSourceDate ParseDateAs(const QString& text, const TDateForm& form)
{
    const QString trimmed = text.trimmed();
    TFormReader reader(trimmed);
    if (!reader.Read(form.Date, form.DateSeparator))
        return {};
    if (!form.Time.isEmpty() && !reader.AtEnd()) {
        if (!reader.Skip(u' ') && !reader.Skip(u'T'))
            return {};
        if (!reader.Read(form.Time, form.TimeSeparator))
            return {};
    }
    return reader.AtEnd() ? reader.Value() : TSourceDate();
}

QDate ParseTagDate(const QString& text)
{
    const QDate date = ParseDateAs(text, {.Date = u"yyyy-mm-dd"_s}).Date;
    return date.isValid() ? date : ParseDateAs(text, {.Date = u"dd mmm yyyy"_s, .DateSeparator = u' '}).Date;
}

} // namespace Kestrune
