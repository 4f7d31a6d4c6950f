// SPDX-License-Identifier: GPL-3.0-or-later
#include "uSourceValues.h"

#include <gtest/gtest.h>

namespace Kestrune {

using namespace Qt::StringLiterals;

TEST(SourceValues, NumbersAreReadFromTheHeadOfATextAndNoFurther)
{
    const struct {
        const char* Text;
        int Number;
    } rows[] = {{"2004-05-01", 2004},
                {"3/12", 3},
                {"  7", 7},
                {"+5", 5},
                {"-5x", -5},
                {"$1F", 31},
                {"x1f/2", 31},
                {"0x10", 16},
                {"0X", 0},
                {"007", 7},
                {"A1", 0},
                {"", 0},
                {"128.5", 128},
                {"- 5", 0},
                {"2147483647", 2147483647},
                {"2147483648", 214748364},
                {"99999999999999999999", 999999999},
                {"\xD9\xA3", 0}}; // an Arabic three is no digit here
    for (const auto& row : rows)
        EXPECT_EQ(ParseLenientNumber(QString::fromUtf8(row.Text)), row.Number) << row.Text;
}

TEST(SourceValues, DatesOfTagsComeInTwoForms)
{
    const struct {
        const char *Text, *Iso;
    } rows[] = {{"2004-05-01", "2004-05-01"},
                {"2004-5-1", "2004-05-01"},
                {"01 May 2004", "2004-05-01"},
                {"1 dec 1999", "1999-12-01"},
                {"2004", ""},
                {"2004-13-01", ""},
                {"2004-02-30", ""},
                {"2004-05-01T10:00", ""},
                {"1 Mai 2004", ""},
                {"05/01/2004", ""},
                {"", ""}};
    for (const auto& row : rows)
        EXPECT_EQ(ParseTagDate(QString::fromUtf8(row.Text)).toString(Qt::ISODate), QString::fromUtf8(row.Iso))
            << row.Text;
}

TEST(SourceValues, DatesAreReadByTheFormOfTheSource)
{
    const TDateForm european{.Date = u"dd/mm/yyyy"_s, .Time = u"hh:nn:ss"_s, .DateSeparator = u'/'};
    const TDateForm points{.Date = u"d/m/yy"_s, .DateSeparator = u'.'};
    const TDateForm compact{.Date = u"yyyymmdd"_s, .Time = u"hhnn"_s};
    const struct {
        const char* Text;
        TDateForm Form;
        const char* Iso;
    } rows[] = {{"31/12/2001", european, "2001-12-31T00:00:00"},
                {"1/2/2001 7:05:09", european, "2001-02-01T07:05:09"},
                {" 01/02/2001T23:59:59 ", european, "2001-02-01T23:59:59"},
                {"01-02-2001", european, ""},
                {"31/11/2001", european, ""},
                {"01/02/2001 24:00:00", european, ""},
                {"01/02/2001 12:00", european, ""},
                {"01/02/2001 12:00:00 PM", european, ""},
                {"01/02/01", european, ""},
                {"1.2.49", points, "2049-02-01T00:00:00"},
                {"1.2.50", points, "1950-02-01T00:00:00"},
                {"1.2.1950", points, ""},
                {"20120131", compact, "2012-01-31T00:00:00"},
                {"20120131 0730", compact, "2012-01-31T07:30:00"},
                {"2012131", compact, ""},
                {"20120031", compact, ""},
                {"\xD9\xA3/12/2001", european, ""}, // an Arabic three
                {"", european, ""}};
    for (const auto& row : rows) {
        const TSourceDate found = ParseDateAs(QString::fromUtf8(row.Text), row.Form);
        const QString shown = found.Date.toString(Qt::ISODate) + found.Time.toString(u"'T'HH:mm:ss"_s);
        EXPECT_EQ(shown, QString::fromUtf8(row.Iso)) << row.Text;
    }
    EXPECT_FALSE(ParseDateAs(u"x"_s, {.Date = u"q"_s}).Date.isValid()) << "a form of nothing known";
}

TEST(SourceValues, NumbersOfSourcesAreWholeOrDecimal)
{
    const struct {
        const char* Text;
        int Whole;
        double Decimal;
    } rows[] = {{"3", 3, 3.0},
                {" -7 ", -7, -7.0},
                {"3.5", 9, 3.5},
                {"3,5", 9, 3.5},
                {"1,234.5", 9, 0.0},
                {"1,2,3", 9, 0.0},
                {"", 9, 0.0},
                {"12 EUR", 9, 0.0},
                {"1e400", 9, 0.0},
                {"nan", 9, 0.0},
                {"99999999999", 9, 99999999999.0}};
    for (const auto& row : rows) {
        EXPECT_EQ(WholeNumber(QString::fromUtf8(row.Text), 9), row.Whole) << row.Text;
        EXPECT_EQ(DecimalNumber(QString::fromUtf8(row.Text)), row.Decimal) << row.Text;
    }
}

} // namespace Kestrune
