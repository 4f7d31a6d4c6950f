// SPDX-License-Identifier: GPL-3.0-or-later
#include "uTHTypes.h"
#include "uTestFiles.h"

#include <QDate>

#include <gtest/gtest.h>

#include <cmath>

namespace Kestrune {

using namespace Qt::StringLiterals;

TEST(Variant, NullIsNotEmpty)
{
    EXPECT_TRUE(VarIsNull(TVariant()));
    EXPECT_FALSE(VarIsNull(TVariant(QString())));
    EXPECT_FALSE(VarEquals(TVariant(), TVariant(QString())));
    EXPECT_FALSE(VarEquals(TVariant(), TVariant(0)));
    EXPECT_TRUE(VarEquals(TVariant(), TVariant()));
}

TEST(Variant, ComparesAcrossNumericKinds)
{
    EXPECT_TRUE(VarEquals(1, 1.0));
    EXPECT_TRUE(VarEquals(1, qint64(1)));
    EXPECT_TRUE(VarEquals(true, 1));
    EXPECT_FALSE(VarEquals(1, 1.5));
    EXPECT_FALSE(VarEquals(1, u"1"_s)) << "a number and a text differ";
    EXPECT_FALSE(VarEquals(qint64(9007199254740993), qint64(9007199254740992)));
}

TEST(Variant, NumbersThatDoNotParseAreNull)
{
    EXPECT_EQ(VarToInt64(u" 42 "_s).toLongLong(), 42);
    for (const TVariant& bad :
         {TVariant(u"x"_s), TVariant(u""_s), TVariant(u"1.5"_s), TVariant(), TVariant(1e300), TVariant(std::nan(""))})
        EXPECT_TRUE(VarIsNull(VarToInt64(bad)));
    EXPECT_EQ(VarToDouble(u"1.5"_s).toDouble(), 1.5);
    EXPECT_TRUE(VarIsNull(VarToDouble(u"1,5"_s)));
    EXPECT_TRUE(VarIsNull(VarToDouble(u"inf"_s)));
}

TEST(Variant, RoundsHalvesToEven)
{
    const std::pair<double, qint64> cases[] = {
        {0.5, 0},   {1.5, 2},    {2.5, 2}, {-0.5, 0},
        {-1.5, -2}, {2.4999, 2}, {7.0, 7}, {1e30, std::numeric_limits<qint64>::max()}};
    for (const auto& [value, expected] : cases)
        EXPECT_EQ(RoundHalfEven(value), expected) << value;
    EXPECT_EQ(RoundHalfEven(std::nan("")), 0);
}

TEST(Variant, TextsOfDates)
{
    EXPECT_EQ(VarToStr(QDate(1999, 5, 2)), u"1999-05-02"_s);
    EXPECT_EQ(VarToStr(TVariant()), QString());
}

} // namespace Kestrune
