// SPDX-License-Identifier: GPL-3.0-or-later
#include "uTHStrings.h"
#include "uTestFiles.h"

#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QSet>

#include <gtest/gtest.h>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

QSet<QString> KeysInSources()
{
    static const QRegularExpression pattern(u"\"(cS[A-Za-z0-9_]+)\""_s);
    QSet<QString> keys;
    QDirIterator files(QString::fromUtf8(KESTRUNE_SOURCE_DIR), {u"*.cpp"_s, u"*.h"_s}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString text = QString::fromUtf8(Kit::ReadAll(files.next()));
        for (auto match = pattern.globalMatch(text); match.hasNext();)
            keys.insert(match.next().captured(1).toLower());
    }
    return keys;
}

} // namespace

TEST(Language, EveryKeyInTheCodeHasATextAndEveryTextIsUsed)
{
    TXMLLanguage english;
    ASSERT_TRUE(english.InitLanguageFromResources(u"ENGLISHLANG"_s, u"English"_s));
    const QStringList keyList = english.Keys();
    const QSet<QString> table(keyList.begin(), keyList.end());
    const QSet<QString> used = KeysInSources();
    ASSERT_GT(used.size(), 100);
    for (const QString& key : used - table)
        ADD_FAILURE() << key.toStdString() << " has no text";
    for (const QString& key : table - used)
        ADD_FAILURE() << key.toStdString() << " is not used";
    for (const QString& key : table)
        EXPECT_FALSE(english.GetValue(key).isEmpty()) << key.toStdString();
}

TEST(Language, AFileReplacesTheTableAsAWhole)
{
    const Kit::TTempDir dir;
    dir.Write(u"Hebrew.xml"_s,
              "<Language name='Ivrit' CodePage='x' LocaleId='1037' BiDiMode='RIGHTTOLEFT' Charset='177'>"
              "<String name='csExit'>Sof</String><STRING name='b'>B</STRING><Other name='c'>C</Other></Language>");
    dir.Write(u"Broken.xml"_s, "<Language><String name='a'>");
    dir.Write(u"Alien.xml"_s, "<Tongue><String name='a'>A</String></Tongue>");
    TXMLLanguage language;
    language.FCustomLangFolder = dir.Path();
    ASSERT_TRUE(language.LoadLanguage(u"Hebrew"_s));
    EXPECT_EQ(language.GetValue(u"CSEXIT"_s), u"Sof"_s);
    EXPECT_EQ(language.GetValue(u"b"_s), u"B"_s);
    EXPECT_EQ(language.GetValue(u"c"_s), QString());
    EXPECT_TRUE(language.IsRightToLeft());
    EXPECT_EQ(language.CurrentLanguage(), u"Hebrew"_s);
    EXPECT_EQ(language.CurrentLanguageInThatLanguage(), u"Ivrit"_s);
    EXPECT_EQ(language.CodePage(), 0);
    EXPECT_EQ(language.CurrentLocaleId(), 1037);
    for (const QString& bad : {u"Broken"_s, u"Alien"_s, u"Missing"_s, u"../Hebrew"_s, QString()}) {
        EXPECT_FALSE(language.LoadLanguage(bad)) << bad.toStdString();
        EXPECT_EQ(language.GetValue(u"b"_s), u"B"_s) << "the table is unchanged";
    }
}

TEST(Language, ListIsSortedByDisplayName)
{
    const Kit::TTempDir dir;
    const QByteArray flag = Kit::MakePicture(24, 16, "PNG").toBase64();
    dir.Write(u"a.xml"_s, "<Language name='Zulu'/>");
    dir.Write(u"b.xml"_s, "<Language name='Afar' FlagImage='" + flag + "' LocaleID='7'/>");
    dir.Write(u"c.xml"_s, "<broken");
    dir.Write(u"d.txt"_s, "<Language name='No'/>");
    TLanguagesListEx2 list;
    list.Fill(dir.Path());
    ASSERT_EQ(list.Items().size(), 2u);
    EXPECT_EQ(list.Items()[0].Name, u"Afar"_s);
    EXPECT_EQ(list.Items()[0].LocaleID, 7);
    EXPECT_EQ(list.Items()[1].FileName, u"a"_s);
    EXPECT_FALSE(list.Items()[1].Flag.isNull()) << "a stock flag";
}

} // namespace Kestrune
