// SPDX-License-Identifier: GPL-3.0-or-later
#include "uDefaults.h"
#include "uTHStrings.h"
#include "uTestFiles.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include <set>

namespace Kestrune {

using namespace Qt::StringLiterals;

TEST(Settings, AFreshUserHasTheDefaults)
{
    const TDefaults settings = MakeDefaults();
    EXPECT_EQ(settings.Language, u"English"_s);
    EXPECT_EQ(settings.ThemeIndex, 4);
    EXPECT_EQ(settings.ArticlesList.size(), 24);
    EXPECT_EQ(settings.ArticlesList.value(11), u"L'"_s);
    EXPECT_EQ(settings.Values.Rating, 5);
    EXPECT_EQ(settings.Genres.Items().size(), 149);
    EXPECT_EQ(settings.Instruments.Items().size(), 155);
    EXPECT_EQ(settings.Conditions.Items().front(), u"As New"_s);
    EXPECT_EQ(settings.ReleaseFields.Slots[0].DisplayName, u"Releases.CustomField0"_s);
    EXPECT_EQ(settings.TrackFields.Slots[9].DisplayName, u"Tracks.CustomField9"_s);
    EXPECT_FALSE(settings.TrackFields.Slots[9].Enabled);
}

TEST(Settings, EveryKeyIsNamedOnceAndComesBack)
{
    const Kit::TTempDir dir;
    const QString path = dir.File(u"s.ini"_s);
    TDefaults settings = MakeDefaults();
    settings.Locations.Text = u"Attic\r\nCellar, left; \"x\" \\ ü @ %20"_s;
    settings.ProxyPassword = u" a=b;c\n "_s;
    settings.MainFormMaximized = false;
    settings.Values.Quantity = 7;
    settings.ReleaseFields.Slots[3] = {u"Shelf"_s, 1, true};
    settings.DefaultDBFolder = u"/not/saved"_s;
    settings.PlayerRepeat = false;
    std::set<std::string> keys;
    for (const TSettingDef& def : SettingDefs())
        EXPECT_TRUE(keys.insert(def.Key).second) << def.Key;
    {
        TTHIniSettings store(path);
        WriteSettings(settings, store);
        ASSERT_TRUE(store.Flush());
    }
    const TTHIniSettings store(path);
    EXPECT_TRUE(store.BrokenFile().isEmpty());
    const TDefaults read = ReadSettings(store);
    EXPECT_EQ(read.Locations.Text, settings.Locations.Text);
    EXPECT_EQ(read.ProxyPassword, settings.ProxyPassword);
    EXPECT_FALSE(read.MainFormMaximized);
    EXPECT_EQ(read.Values.Quantity, 7);
    EXPECT_EQ(read.ReleaseFields.Slots[3].DisplayName, u"Shelf"_s);
    EXPECT_TRUE(read.ReleaseFields.Slots[3].Enabled);
    EXPECT_TRUE(read.DefaultDBFolder.isEmpty()) << "belongs to others";
    EXPECT_TRUE(read.PlayerRepeat);
    EXPECT_EQ(read.ArticlesList, settings.ArticlesList);
}

TEST(Settings, TheFileIsReadableByItsOwnerAlone)
{
    const Kit::TTempDir dir;
    const QString path = dir.File(u"config/s.ini"_s);
    constexpr auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
    const QString old = dir.Write(u"old.ini"_s, "[General]\na=1\n");
    QFile::setPermissions(old, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadOther);
    for (const QString& file : {path, old}) {
        TTHIniSettings store(file);
        store.WriteString(u"Key"_s, {}, u"secret"_s);
        ASSERT_TRUE(store.Flush());
        EXPECT_EQ(QFile::permissions(file) & others, 0) << file.toStdString();
        EXPECT_EQ(TTHIniSettings(file).ReadString(u"Key"_s, {}), u"secret"_s);
    }
}

TEST(Settings, WhatTheUserSetsIsKeptThoughItIsNotAmongTheRest)
{
    const Kit::TTempDir dir;
    const QString path = dir.File(u"s.ini"_s);
    OpenSettingsStore(path);
    Defaults() = MakeDefaults();
    Defaults().DefaultDBFolder = u"/records"_s;
    KeepSetting("DefaultDBFolder");
    SaveSettings();
    OpenSettingsStore({});
    EXPECT_EQ(ReadSettings(TTHIniSettings(path)).DefaultDBFolder, u"/records"_s);
    Defaults() = MakeDefaults();
}

TEST(Settings, RecentFilesThatAreGoneLeaveWhenWritten)
{
    const Kit::TTempDir dir;
    const QString there = dir.Write(u"a, b.db"_s, "x");
    TTHIniSettings store(dir.File(u"s.ini"_s));
    TDefaults settings = MakeDefaults();
    settings.RecentDBs = {dir.File(u"gone.db"_s), there};
    EXPECT_EQ(settings.RecentDBs.size(), 2);
    WriteSettings(settings, store);
    EXPECT_EQ(ReadSettings(store).RecentDBs, QStringList({there}));
}

TEST(Settings, RecentListMovesToTheTopAndEndsAtEight)
{
    QStringList recent;
    for (int i = 0; i < 9; ++i)
        AddRecentDB(recent, QString::number(i));
    EXPECT_EQ(recent.size(), 8);
    EXPECT_EQ(recent.front(), u"8"_s);
    AddRecentDB(recent, u"3"_s);
    EXPECT_EQ(recent.size(), 8);
    EXPECT_EQ(recent.front(), u"3"_s);
    EXPECT_EQ(recent.count(u"3"_s), 1);
}

TEST(Settings, ABrokenFileIsPutAside)
{
    const std::pair<const char*, QByteArray> cases[] = {
        {"binary", QByteArray("[General]\nDBPath=\0\x01", 20)},
        {"not UTF-8", QByteArray("[General]\nDBPath=\xFF\xFE\n")},
        {"no settings", QByteArray("this is a letter to a friend\nwithout any key\n")}};
    for (const auto& [name, bytes] : cases) {
        SCOPED_TRACE(name);
        const Kit::TTempDir dir;
        const QString path = dir.Write(u"s.ini"_s, bytes);
        const TTHIniSettings store(path);
        ASSERT_FALSE(store.BrokenFile().isEmpty());
        EXPECT_TRUE(Kit::ReadAll(store.BrokenFile()) == bytes);
        EXPECT_EQ(ReadSettings(store).ThemeIndex, 4);
    }
}

TEST(Settings, ValuesOfAnotherKindGiveTheDefault)
{
    const Kit::TTempDir dir;
    const TTHIniSettings store(dir.Write(u"s.ini"_s,
                                         "[General]\nThemeIndex=many\nMainFormMaximized=perhaps\nCurrencySymbol=a, "
                                         "b\nNumber=1.5\nLargeHeight=2147483647\n"
                                         "LargeWidth=-5\nDefaultValues.Rating=99\n"));
    const TDefaults settings = ReadSettings(store);
    EXPECT_EQ(settings.ThemeIndex, 4);
    EXPECT_TRUE(settings.MainFormMaximized);
    EXPECT_EQ(settings.CurrencySymbol, u"a, b"_s);
    EXPECT_EQ(settings.LargeHeight, 2048) << "a size that would take gigabytes is bounded";
    EXPECT_EQ(settings.LargeWidth, 16);
    EXPECT_EQ(settings.Values.Rating, 10);
    EXPECT_EQ(store.ReadDouble(u"Number"_s, 0), 1.5);
    EXPECT_EQ(store.ReadDouble(u"ThemeIndex"_s, 2.5), 2.5);
}

TEST(ProductIdentity, AttributesReplaceBuiltInValues)
{
    const Kit::TTempDir dir;
    const TOEMInfo info =
        LoadOEMInfo(dir.Write(u"p.xml"_s, "<Product Name='N' Company='a/b' DISCOGS_API_KEY='k' HTTPAgent=''/>"));
    EXPECT_EQ(info.Name, u"N"_s);
    EXPECT_EQ(info.DISCOGS_API_KEY, u"k"_s);
    EXPECT_EQ(info.Company, TOEMInfo().Company) << "no folder name";
    EXPECT_EQ(info.HTTPAgent, QString());
    EXPECT_EQ(LoadOEMInfo(dir.Write(u"q.xml"_s, "<broken")).Name, TOEMInfo().Name);
    EXPECT_EQ(LoadOEMInfo(dir.File(u"none.xml"_s)).Product, TOEMInfo().Product);
}

TEST(ProductIdentity, TheAgentCarriesAContactWhereOneIsNamed)
{
    const auto product = BuiltInAgent().toStdString();
    struct TRow {
        const char16_t *Agent, *Contact;
        std::string Expected;
    };
    const TRow rows[] = {
        {u"", u"", ""},
        {u"P/1", u"", "P/1"},
        {u"P/1", u" me@mail.invalid\r\nX: y ", "P/1 ( me@mail.invalid X: y )"},
        {u"P/1 ( https://p.invalid )", u"", "P/1 ( https://p.invalid )"},
        {u"P/1 ( https://p.invalid )", u"(https://me.invalid)", "P/1 ( https://me.invalid )"},
        {u"P/1", u"me", "P/1"},
        {u"", u"me@mail.invalid", product + " ( me@mail.invalid )"},
    };
    for (const TRow& row : rows) {
        TDefaults settings = MakeDefaults();
        settings.OEM.HTTPAgent = QString::fromUtf16(row.Agent);
        settings.ServicesContact = QString::fromUtf16(row.Contact);
        EXPECT_EQ(ServiceAgent(settings).toStdString(), row.Expected);
    }
    const Kit::TTempDir dir;
    EXPECT_EQ(LoadOEMInfo(dir.Write(u"p.xml"_s, "<P SupportLink='help@p.invalid'/>")).HTTPAgent.toStdString(),
              product + " ( help@p.invalid )");
    EXPECT_EQ(LoadOEMInfo(dir.Write(u"q.xml"_s, "<P/>")).HTTPAgent.toStdString(), product) << "none is invented";
}

TEST(Dictionaries, CountriesKeepTheirOrderAndTheirOddCodes)
{
    const auto& countries = Countries();
    ASSERT_EQ(countries.size(), 251u);
    EXPECT_EQ(countries[0].Description, u"Empty"_s);
    EXPECT_TRUE(countries[0].Value.isEmpty());
    EXPECT_EQ(countries[1].Value, u"AD"_s);
    EXPECT_EQ(countries[250].Value, u"IM"_s);
    EXPECT_EQ(CountryDescription(u"S"_s), u"Scotland"_s);
    EXPECT_EQ(CountryDescription(u"CT"_s), u"Catalonia"_s);
    EXPECT_TRUE(CountryDescription(QString()).isEmpty());
    EXPECT_EQ(SplitLines(u"a\r\n\r\nb\nc\rd"_s), QStringList({u"a"_s, u"b"_s, u"c"_s, u"d"_s}));
}

} // namespace Kestrune
