// SPDX-License-Identifier: GPL-3.0-or-later
#include "uServiceFiles.h"
#include "uTestFiles.h"

#include <QDir>
#include <QFile>
#include <QLockFile>

#include <gtest/gtest.h>

using namespace Kestrune;
using namespace Qt::StringLiterals;

namespace {

QByteArray Definitions(int version) { return "<G version='" + QByteArray::number(version) + "'/>"; }

class ServiceFiles : public testing::Test {
protected:
    ServiceFiles()
    {
        Dir.Write(u"template/infograbber.xml"_s, Definitions(1));
        Dir.Write(u"template/a.xsl"_s, "a1");
        Dir.Write(u"template/b.xsl"_s, "b1");
    }
    void Start() const { SeedServiceDefinitions(Dir.File(u"template"_s), Dir.File(u"user"_s)); }
    // The program comes with these from now on.
    void Bring(int version, const QByteArray& a)
    {
        Kit::WriteAll(Dir.File(u"template/infograbber.xml"_s), Definitions(version));
        Kit::WriteAll(Dir.File(u"template/a.xsl"_s), a);
        Kit::WriteAll(Dir.File(u"template/b.xsl"_s), "b" + a.mid(1));
    }
    QString User() const
    {
        QStringList texts;
        for (const QString& name : {u"a.xsl"_s, u"b.xsl"_s})
            texts << QString::fromUtf8(Kit::ReadAll(Dir.File(u"user/"_s + name)));
        return texts.join(u' ');
    }
    QStringList Beside() const { return QDir(Dir.Path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot); }

    const Kit::TTempDir Dir;
};

TEST_F(ServiceFiles, TheFirstStartCopiesAllOfThem)
{
    Dir.Write(u"user/a.xsl"_s, "old");
    Dir.Write(u"user/sub/own.xsl"_s, "mine");
    Start();
    EXPECT_EQ(User(), u"a1 b1"_s) << "overwritten";
    EXPECT_EQ(Kit::ReadAll(Dir.File(u"user/infograbber.xml"_s)), Definitions(1));
    EXPECT_EQ(Kit::ReadAll(Dir.File(u"user/sub/own.xsl"_s)), "mine");
    EXPECT_EQ(TServiceDelivery::Read(Dir.File(u"user"_s)).Version, 1);
    EXPECT_EQ(Beside(), (QStringList{u"template"_s, u"user"_s}));
    SeedServiceDefinitions(Dir.File(u"nowhere"_s), Dir.File(u"user2"_s));
    EXPECT_FALSE(QFile::exists(Dir.File(u"user2"_s)));
}

TEST_F(ServiceFiles, ACopyThatWasCutShortIsCompletedAtTheNextStart)
{
    Dir.Write(u"user/infograbber.xml"_s, "<own/>");
    Dir.Write(u"user/a.xsl"_s, "");
    Start();
    EXPECT_EQ(User(), u"a1 b1"_s);
    EXPECT_EQ(Kit::ReadAll(Dir.File(u"user/infograbber.xml"_s)), "<own/>") << "what is there may be the user's";
}

TEST_F(ServiceFiles, NewerOnesReplaceWhatWasNeverChanged)
{
    Start();
    Kit::WriteAll(Dir.File(u"user/a.xsl"_s), "mine");
    Start();
    EXPECT_EQ(User(), u"mine b1"_s);
    Bring(2, "a2");
    Start();
    EXPECT_EQ(User(), u"mine b2"_s);
    EXPECT_EQ(Kit::ReadAll(Dir.File(u"user/infograbber.xml"_s)), Definitions(2));
    Bring(1, "a1");
    Start();
    EXPECT_EQ(User(), u"mine b2"_s) << "an older program";
    Bring(3, "a3");
    Kit::WriteAll(Dir.File(u"user/a.xsl"_s), "a1");
    Start();
    EXPECT_EQ(User(), u"a3 b3"_s) << "as delivered once more";
    // An update has brought a later one since.
    TServiceDelivery update = TServiceDelivery::Read(Dir.File(u"user"_s));
    update.Version = 7;
    QFile::remove(Dir.File(u"user/.delivered"_s));
    EXPECT_TRUE(update.Write(Dir.File(u"user"_s)));
    Bring(4, "a4");
    Start();
    EXPECT_EQ(User(), u"a3 b3"_s);
}

TEST_F(ServiceFiles, WhatAKilledUpdateLeftIsSwept)
{
    Start();
    const QString download = u"01234567-89ab-cdef-0123-456789abcdef.tmp"_s;
    Dir.Write(u"user.new-abc123/x"_s, "x");
    Dir.Write(u"user.old/x"_s, "x");
    Dir.Write(download, "x");
    Dir.Write(u"my.tmp"_s, "x");
    {
        QLockFile other(ServiceLockPath(Dir.File(u"user"_s)));
        ASSERT_TRUE(other.lock());
        Start();
        EXPECT_TRUE(QFile::exists(Dir.File(download))) << "it may belong to an update that runs";
    }
    Start();
    EXPECT_EQ(Beside(), (QStringList{u"my.tmp"_s, u"template"_s, u"user"_s}));
    // Killed between the two renames of a file system that cannot exchange.
    ASSERT_TRUE(QDir().rename(Dir.File(u"user"_s), Dir.File(u"user.old"_s)));
    Kit::WriteAll(Dir.File(u"user.old/a.xsl"_s), "mine");
    Start();
    EXPECT_EQ(User(), u"mine b1"_s);
}

} // namespace
