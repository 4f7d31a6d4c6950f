// SPDX-License-Identifier: GPL-3.0-or-later
#include "uFilePath.h"
#include "uTestFiles.h"

#include <gtest/gtest.h>

namespace Kestrune {

TEST(FilePath, EveryNameLeadsBackToItsBytes)
{
    const std::string names[] = {"plain",
                                 "caf\xC3\xA9",
                                 "caf\xE9",                  // ISO-8859-1
                                 "\xF0\x9F\x8E\xB5",         // beyond the basic plane
                                 "\xF4\x90\x80\x80",         // beyond Unicode
                                 "\xED\xA0\x80",             // a surrogate
                                 "\xC0\xAF",                 // an overlong form
                                 "\xEE\xBE\x80\xEE\xBF\xBF", // characters of the escape range
                                 "a\xEE\xBE",                // cut
                                 "\xFF\xFE/\x80"};
    for (const std::string& name : names) {
        const QString text = PathToText(name);
        EXPECT_EQ(TextToPath(text).native(), name);
        EXPECT_EQ(TextToPath(QString::fromUtf8(text.toUtf8())).native(), name) << "the form survives a text column";
    }
    EXPECT_EQ(PathToText("caf\xC3\xA9"), QString::fromUtf8("caf\xC3\xA9"));
}

} // namespace Kestrune
