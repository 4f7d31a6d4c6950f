// SPDX-License-Identifier: GPL-3.0-or-later
#include "uLength.h"

#include <gtest/gtest.h>

namespace Kestrune {

TEST(Length, IsReadFromItsForms)
{
    const struct {
        const char* Text;
        double Seconds; // -1 none
    } rows[] = {{"3:25", 205},   {"1:02:03", 3723}, {" 200 ", 200}, {"3:25.5", 205.5}, {"0:00", 0},
                {"90:00", 5400}, {"", -1},          {":", -1},      {"3:", -1},        {"-1:00", -1},
                {"1:-5", -1},    {"1:2:3:4", -1},   {"3,5", -1},    {"nan", -1},       {"1e99", -1}};
    for (const auto& row : rows)
        EXPECT_EQ(ParseLengthSec(QString::fromUtf8(row.Text)).value_or(-1), row.Seconds) << row.Text;
}

} // namespace Kestrune
