// SPDX-License-Identifier: GPL-3.0-or-later
#include "uID3Genres.h"
#include "uTagText.h"
#include "uTestFiles.h"

#include <gtest/gtest.h>

namespace Kestrune {

using namespace Qt::StringLiterals;

TEST(TagText, DecodesEveryEncodingAndReplacesErrors)
{
    struct TCase {
        const char* Name;
        TTextEncoding Encoding;
        QByteArray Bytes;
        QStringList Expected;
    };
    const TCase cases[] = {
        {"strict ISO-8859-1", teLatin1, "caf\xE9 \x80", {u"caf\u00E9 \u0080"_s}},
        {"terminator missing", teLatin1, "abc", {u"abc"_s}},
        {"two values", teLatin1, QByteArray("a\0b\0", 4), {u"a"_s, u"b"_s}},
        {"empty values are left out", teLatin1, QByteArray("\0a\0\0b", 5), {u"a"_s, u"b"_s}},
        {"UTF-8", teUTF8, "\xC3\xA9\xE2\x82\xAC", {u"\u00E9\u20AC"_s}},
        {"UTF-8 with a byte order mark",
         teUTF8,
         "\xEF\xBB\xBF"
         "x",
         {u"x"_s}},
        {"UTF-8 with errors",
         teUTF8,
         "a\xFF"
         "b\xC3",
         {u"a\uFFFDb\uFFFD"_s}},
        {"little-endian mark",
         teUTF16,
         QByteArray("\xFF\xFE"
                    "A\0\xAC\x20",
                    6),
         {u"A\u20AC"_s}},
        {"big-endian mark", teUTF16, QByteArray("\xFE\xFF\0A\x20\xAC", 6), {u"A\u20AC"_s}},
        {"no mark, little-endian", teUTF16, QByteArray("A\0B\0", 4), {u"AB"_s}},
        {"no mark, big-endian", teUTF16, QByteArray("\0A\0B", 4), {u"AB"_s}},
        {"UTF-16BE", teUTF16BE, QByteArray("\0A\x30\x42", 4), {u"A\u3042"_s}},
        {"UTF-16BE with a contrary mark",
         teUTF16BE,
         QByteArray("\xFF\xFE"
                    "A\0",
                    4),
         {u"A"_s}},
        {"odd length",
         teUTF16,
         QByteArray("\xFF\xFE"
                    "A\0B",
                    5),
         {u"A"_s}},
        {"mark on the first value only", teUTF16, QByteArray("\xFE\xFF\0A\0\0\0B", 8), {u"A"_s, u"B"_s}},
        {"mark on each value",
         teUTF16,
         QByteArray("\xFF\xFE"
                    "A\0\0\0\xFE\xFF\0B",
                    10),
         {u"A"_s, u"B"_s}},
        {"zero byte inside a unit", teUTF16, QByteArray("\xFF\xFE\0\x30\x42\0", 6), {u"\u3000\u0042"_s}},
        {"lone surrogate", teUTF16BE, QByteArray("\xD8\x00\0A", 4), {u"\uFFFDA"_s}},
        {"surrogate pair", teUTF16BE, QByteArray("\xD8\x3D\xDE\x00", 4), {u"\U0001F600"_s}},
        {"nothing", teUTF16, QByteArray(), {}},
    };
    for (const TCase& c : cases) {
        SCOPED_TRACE(c.Name);
        EXPECT_EQ(DecodeTextList(c.Bytes, c.Encoding), c.Expected);
        EXPECT_EQ(DecodeText(c.Bytes, c.Encoding),
                  c.Bytes.startsWith('\0') && c.Encoding != teUTF16 && c.Encoding != teUTF16BE ? QString()
                                                                                               : c.Expected.value(0));
    }
    EXPECT_FALSE(TextEncodingFromByte(4));
}

TEST(TagText, RiffTextIsWindows1252OnlyWhenItIsNotUtf8)
{
    EXPECT_EQ(DecodeRiffText("\x93quoted\x94  "), u"\u201Cquoted\u201D"_s);
    EXPECT_EQ(DecodeRiffText("caf\xC3\xA9"), u"caf\u00E9"_s);
    EXPECT_EQ(DecodeRiffText("\x81"), u"\uFFFD"_s);
    EXPECT_EQ(DecodeRiffText(QByteArray("a\0junk", 6)), u"a"_s);
}

TEST(TagText, TakeTerminatedKeepsTheRestAligned)
{
    QByteArrayView bytes("\0\x41\x41\0\0\0rest", 10);
    const auto piece = TakeTerminated(bytes, teUTF16);
    ASSERT_TRUE(piece);
    EXPECT_EQ(piece->size(), 4);
    EXPECT_TRUE(bytes == "rest");
    EXPECT_FALSE(TakeTerminated(bytes, teLatin1));
    EXPECT_TRUE(bytes == "rest");
}

TEST(ID3Genres, ResolvesReferences)
{
    const std::pair<QString, QString> cases[] = {
        {u"(17)Rock"_s, u"Rock"_s},
        {u"(17)"_s, u"Rock"_s},
        {u"17"_s, u"Rock"_s},
        {u"(51)(39)"_s, u"Techno-Industrial Noise"_s},
        {u"(51)(39)Refined"_s, u"Techno-Industrial Noise Refined"_s},
        {u"((Foo)"_s, u"(Foo)"_s},
        {u"(4)((Eurodisco)"_s, u"Disco (Eurodisco)"_s},
        {u"()Free"_s, u"Free"_s},
        {u"(0)"_s, u"Blues"_s},
        {u"191"_s, u"Psybient"_s},
        {u"192"_s, u"192"_s},
        {u"(255)"_s, u"255"_s},
        {u"99999999999999999999"_s, u"99999999999999999999"_s},
        {u"(17"_s, u"(17"_s},
        {u"(Live)"_s, u"(Live)"_s},
        {u"Acid (17)"_s, u"Acid (17)"_s},
        {u"Post-Punk"_s, u"Post-Punk"_s},
        {u""_s, u""_s},
    };
    for (const auto& [text, expected] : cases) {
        SCOPED_TRACE(text.toStdString());
        EXPECT_EQ(ResolveID3Genre(text), expected);
    }
    EXPECT_EQ(ID3GenreCount(), 192);
}

} // namespace Kestrune
