// SPDX-License-Identifier: GPL-3.0-or-later
#include "uRegistryFile.h"
#include "uTestFiles.h"

#include <QStringDecoder>

#include <gtest/gtest.h>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

const QString RegistryRoot = QStringLiteral("HKEY_CURRENT_USER\\Software\\Company\\Product");

QString DecodedUtf16(const QByteArray& bytes)
{
    return QStringDecoder(QStringDecoder::Utf16LE, QStringDecoder::Flag::Stateless)(bytes.mid(2));
}

std::optional<TSettingValues> ReadLines(const QStringList& lines)
{
    return ReadRegistryFile(lines.join(u"\r\n"_s).toUtf8(), RegistryRoot);
}

} // namespace

TEST(RegistryFile, IsWrittenLineForLineAsTheFormatSays)
{
    const QByteArray bytes = WriteRegistryFile(
        RegistryRoot, {{u"Path"_s, u"C:\\a \"b\""_s}, {u"Number"_s, u"-1"_s}, {u"Below/Deep/Name"_s, u"07"_s}});
    EXPECT_TRUE(bytes.startsWith("\xFF\xFE"));
    EXPECT_EQ(DecodedUtf16(bytes), u"Windows Registry Editor Version 5.00\r\n"
                                   "\r\n[HKEY_CURRENT_USER\\Software\\Company\\Product]\r\n"
                                   "\"Number\"=dword:ffffffff\r\n"
                                   "\"Path\"=\"C:\\\\a \\\"b\\\"\"\r\n"
                                   "\r\n[HKEY_CURRENT_USER\\Software\\Company\\Product\\Below\\Deep]\r\n"
                                   "\"Name\"=\"07\"\r\n"_s);
}

TEST(RegistryFile, EveryTextComesBack)
{
    const QString values[] = {QString(),
                              u"0"_s,
                              u"-2147483648"_s,
                              u"2147483647"_s,
                              u"2147483648"_s,
                              u"007"_s,
                              u"+5"_s,
                              u" 5"_s,
                              u"1.5"_s,
                              u"\\"_s,
                              u"ends with \\"_s,
                              u"\"quoted\""_s,
                              u"a=b"_s,
                              u"[x]"_s,
                              u"line 1\r\nline 2"_s,
                              u"tab\there"_s,
                              u"Ünïcode 日本"_s,
                              u"\U0001F3B5"_s,
                              u"dword:5"_s,
                              u"hex(1):41"_s,
                              QString(5000, u'x') + u'\n'};
    TSettingValues written;
    for (size_t i = 0; i < std::size(values); ++i)
        written[u"Name %1"_s.arg(i)] = values[i];
    written[u"na\"me\\x"_s] = u"1"_s;
    written[u"Sub/Name"_s] = u"below"_s;
    const auto read = ReadRegistryFile(WriteRegistryFile(RegistryRoot, written), RegistryRoot);
    ASSERT_TRUE(read);
    EXPECT_EQ(*read, written);
}

TEST(RegistryFile, OtherKeysDeletionsAndKindsArePassedOver)
{
    const auto values = ReadLines({u"Windows Registry Editor Version 5.00"_s,
                                   u""_s,
                                   u"\"Early\"=\"no key yet\""_s,
                                   u"[HKEY_CURRENT_USER\\Software\\Other]"_s,
                                   u"\"A\"=\"other\""_s,
                                   u"[-HKEY_CURRENT_USER\\Software\\Company\\Product]"_s,
                                   u"\"B\"=\"deleted key\""_s,
                                   u"[HKEY_LOCAL_MACHINE\\X\\product]"_s,
                                   u"@=\"default\""_s,
                                   u"\"C\"=-"_s,
                                   u"\"D\"=hex:01,02"_s,
                                   u"\"E\"=dword:zz"_s,
                                   u"\"F\""_s,
                                   u"\"G\"=\"no end"_s,
                                   u"; a remark"_s,
                                   u"\"H\" = \"kept\""_s,
                                   u"\"I\"=hex(2):41,00,\\"_s,
                                   u"  42,00,00,00"_s,
                                   u"[HKEY_CURRENT_USER\\Software\\Company\\Product2]"_s,
                                   u"\"J\"=\"other\""_s});
    ASSERT_TRUE(values);
    EXPECT_EQ(*values, (TSettingValues{{u"H"_s, u"kept"_s}, {u"I"_s, u"AB"_s}}));
}

TEST(RegistryFile, WhatIsNoSuchFileIsRefused)
{
    for (const QByteArray& bytes : {QByteArray(), QByteArray("REGEDIT4\r\n"), QByteArray("\xFF\xFE"),
                                    QByteArray("SQLite format 3\0", 16), QByteArray(1000, '\0')})
        EXPECT_FALSE(ReadRegistryFile(bytes, RegistryRoot)) << bytes.left(20).toStdString();
    const auto empty = ReadLines({u"Windows Registry Editor Version 5.00"_s});
    ASSERT_TRUE(empty);
    EXPECT_TRUE(empty->empty());
}

TEST(RegistryFile, CutAnywhereItLosesOnlyWhatIsBehindTheCut)
{
    const TSettingValues all{{u"A"_s, u"1"_s}, {u"B"_s, u"x\ny"_s}, {u"C"_s, u"text"_s}, {u"D/E"_s, u"below"_s}};
    const QByteArray bytes = WriteRegistryFile(RegistryRoot, all);
    const QByteArray first = WriteRegistryFile(RegistryRoot, {{u"A"_s, u"1"_s}});
    for (qsizetype size = 0; size < bytes.size(); ++size) {
        const auto values = ReadRegistryFile(bytes.left(size), RegistryRoot);
        if (size < first.size())
            continue;
        ASSERT_TRUE(values) << size;
        EXPECT_EQ(values->at(u"A"_s), u"1"_s) << size;
    }
}

} // namespace Kestrune
