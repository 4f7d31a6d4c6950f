// SPDX-License-Identifier: GPL-3.0-or-later
#include "uArticles.h"
#include "uTestFiles.h"

#include <gtest/gtest.h>

namespace Kestrune {

using namespace Qt::StringLiterals;

TEST(Articles, DisplayFormsAndSortKey)
{
    const QStringList articles = ParseArticleList(u"The, A, An, L', Die"_s);
    struct {
        const char16_t* Text;
        const char16_t* Mode1;
        const char16_t* Mode2;
        const char16_t* Mode3;
    } const cases[] = {
        {u"The Beatles", u"The Beatles", u"Beatles, The", u"Beatles"},
        {u"the beatles", u"the beatles", u"beatles, the", u"beatles"},
        {u"Beatles, The", u"The Beatles", u"Beatles, The", u"Beatles"},
        {u"L'Amour", u"L'Amour", u"Amour, L'", u"Amour"},
        {u"Amour, L'", u"L'Amour", u"Amour, L'", u"Amour"},
        {u"The", u"The", u"The", u"The"},
        {u"The ", u"The ", u"The ", u"The "},
        {u"A-ha", u"A-ha", u"A-ha", u"A-ha"},
        {u"L'", u"L'", u"L'", u"L'"},
        {u", The", u", The", u", The", u", The"},
        {u"", u"", u"", u""},
        {u"The The", u"The The", u"The, The", u"The"},
        {u"DIE ÄRZTE", u"DIE ÄRZTE", u"ÄRZTE, DIE", u"ÄRZTE"},
    };
    for (const auto& row : cases) {
        const QString text = QString::fromUtf16(row.Text);
        SCOPED_TRACE(text.toStdString());
        EXPECT_EQ(ApplyArticleDisplay(text, articles, 0), text);
        EXPECT_EQ(ApplyArticleDisplay(text, articles, 1), QString::fromUtf16(row.Mode1));
        EXPECT_EQ(ApplyArticleDisplay(text, articles, 2), QString::fromUtf16(row.Mode2));
        EXPECT_EQ(ApplyArticleDisplay(text, articles, 3), QString::fromUtf16(row.Mode3));
        EXPECT_EQ(ApplyArticleDisplay(text, articles, 4), text);
        EXPECT_EQ(ArticleSortKey(text, articles), QString::fromUtf16(row.Mode3));
        EXPECT_EQ(ApplyArticleDisplay(text, {}, 2), text);
    }
}

TEST(Articles, ListIsTrimmedAndHasNoEmptyParts)
{
    EXPECT_EQ(ParseArticleList(u"The,, An "_s), QStringList({u"The"_s, u"An"_s}));
    EXPECT_TRUE(ParseArticleList(QString()).isEmpty());
}

} // namespace Kestrune
