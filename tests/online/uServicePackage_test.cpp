// SPDX-License-Identifier: GPL-3.0-or-later
#include "uServiceFiles.h"
#include "uServicePackage.h"
#include "uTHSettings.h"
#include "uTestFiles.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>
#include <zip.h>

using namespace Kestrune;
using namespace Qt::StringLiterals;

namespace {

struct TDueRow {
    const char* Name;
    bool Exists, AutoUpdate;
    int Interval;
    double DaysAgo; ///< below 0: never
    bool Due;
};

TEST(ServicesUpdate, IsDueByItsTable)
{
    const Kit::TTempDir dir;
    const QString there = dir.Write(u"infograbber.xml"_s, "x");
    const QDateTime now(QDate(2020, 6, 15), QTime(12, 0));
    const TDueRow rows[] = {
        {"missing, switched off", false, false, 3, 0, true},
        {"switched off", true, false, 0, 100, false},
        {"never", true, true, 3, -1, true},
        {"at each start", true, true, 0, 0, true},
        {"3 days, exactly 3", true, true, 1, 3, true},
        {"3 days, exactly 2", true, true, 1, 2, false},
        {"3 days, 2.9", true, true, 1, 2.9, false},
        {"weekly, 7", true, true, 2, 7, true},
        {"weekly, 6.5", true, true, 2, 6.5, false},
        {"monthly, 30", true, true, 3, 30, true},
        {"monthly, 29", true, true, 3, 29, false},
    };
    for (const TDueRow& row : rows) {
        TServiceUpdates updates;
        updates.AutoUpdate = row.AutoUpdate;
        updates.Interval = row.Interval;
        if (row.DaysAgo >= 0)
            updates.LastUpdated = now.addSecs(-static_cast<qint64>(row.DaysAgo * 86400));
        EXPECT_EQ(IsServicesUpdateDue(updates, row.Exists ? there : there + u".no"_s, now), row.Due) << row.Name;
    }
}

TEST(ServicesUpdate, KeepsItsSettings)
{
    const Kit::TTempDir dir;
    TTHIniSettings store(dir.File(u"settings.ini"_s));
    TServiceUpdates updates = TServiceUpdates::Read(store);
    EXPECT_EQ(updates.Version, -1);
    EXPECT_FALSE(updates.LastUpdated.isValid());
    EXPECT_TRUE(updates.AutoUpdate);
    EXPECT_EQ(updates.Interval, 0);
    const QDateTime when(QDate(2021, 3, 4), QTime(5, 6, 7));
    WriteServicesVersion(store, 12);
    WriteLastUpdated(store, when);
    store.WriteBoolean(u"Auto Update"_s, true, false);
    store.WriteInteger(u"Auto Update Interval"_s, 0, 9);
    updates = TServiceUpdates::Read(store);
    EXPECT_EQ(updates.Version, 12);
    EXPECT_LE(std::abs(updates.LastUpdated.msecsTo(when)), 10);
    EXPECT_FALSE(updates.AutoUpdate);
    EXPECT_EQ(updates.Interval, 3);
    EXPECT_NEAR(store.ReadDouble(u"Last Updated"_s, 0), 44259.2125810, 1e-5) << "days since 1899-12-30";
}

TEST(ServicesUpdate, ReadsAPublishedVersion)
{
    EXPECT_EQ(ParseServicesVersion(u" 17\r\n"_s), 17);
    EXPECT_FALSE(ParseServicesVersion(u"1.5"_s));
    EXPECT_FALSE(ParseServicesVersion(u"<html>"_s));
    EXPECT_FALSE(ParseServicesVersion({}));
    EXPECT_EQ(ServicesZipURL(u"https://x.invalid/p/"_s), u"https://x.invalid/p/Services.zip"_s);
    EXPECT_EQ(ServicesVersionURL(u"https://x.invalid/p"_s), u"https://x.invalid/p/Services.ver"_s);
}

struct TZipEntry {
    QByteArray Name, Bytes;
    quint32 UnixMode = 0;
};

QString MakeZip(const QString& path, const std::vector<TZipEntry>& entries)
{
    zip_t* archive = zip_open(QFile::encodeName(path).constData(), ZIP_CREATE | ZIP_TRUNCATE, nullptr);
    for (const TZipEntry& entry : entries) {
        zip_source_t* source =
            zip_source_buffer(archive, entry.Bytes.constData(), static_cast<zip_uint64_t>(entry.Bytes.size()), 0);
        const zip_int64_t index = zip_file_add(archive, entry.Name.constData(), source, ZIP_FL_ENC_UTF_8);
        if (entry.UnixMode != 0)
            zip_file_set_external_attributes(archive, static_cast<zip_uint64_t>(index), 0, ZIP_OPSYS_UNIX,
                                             entry.UnixMode << 16);
    }
    zip_close(archive);
    return path;
}

const QByteArray GoodSheet = "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform'/>";
const QByteArray GoodDefinitions = "<G><Services><service name='s'><getrelease Transform='b.xsl'/></service></Services>"
                                   "<BarcodeSearch><search ServiceName='s' url='http://h/' Transform='sub/a.xsl'/>"
                                   "</BarcodeSearch></G>";

std::vector<TZipEntry> GoodPackage(const QByteArray& folder = {})
{
    return {{folder + "infograbber.xml", GoodDefinitions},
            {folder + "sub/a.xsl", GoodSheet},
            {folder + "b.xsl", GoodSheet}};
}

class PackageTest : public testing::Test {
protected:
    PackageTest()
    {
        Dir.Write(u"InfoGrabber/infograbber.xml"_s, "old");
        Dir.Write(u"InfoGrabber/own.xsl"_s, "mine");
    }
    QByteArray State() const
    {
        return Kit::ReadAll(Dir.File(u"InfoGrabber/infograbber.xml"_s)) + "," +
               Kit::ReadAll(Dir.File(u"InfoGrabber/own.xsl"_s));
    }
    bool Install(const QString& zip) { return InstallServicePackage(zip, Dir.File(u"InfoGrabber"_s), 7, Error); }
    QStringList Folders() const { return QDir(Dir.Path()).entryList(QDir::Dirs | QDir::NoDotAndDotDot); }
    void ExpectRefused(const std::vector<TZipEntry>& entries)
    {
        Error.clear();
        EXPECT_FALSE(Install(MakeZip(Dir.File(u"p.zip"_s), entries)));
        EXPECT_FALSE(Error.isEmpty());
        EXPECT_EQ(State(), "old,mine");
        EXPECT_EQ(Folders(), QStringList{u"InfoGrabber"_s});
    }

    Kit::TTempDir Dir;
    QString Error;
};

TEST_F(PackageTest, ReplacesItsFilesAndLeavesTheOthers)
{
    // A folder around all of it is none of its own.
    for (const QByteArray folder : {"", "Services-7/"}) {
        Kit::WriteAll(Dir.File(u"InfoGrabber/infograbber.xml"_s), "old");
        ASSERT_TRUE(Install(MakeZip(Dir.File(u"p.zip"_s), GoodPackage(folder)))) << Error.toStdString();
        EXPECT_EQ(State(), GoodDefinitions + ",mine");
        EXPECT_EQ(Kit::ReadAll(Dir.File(u"InfoGrabber/sub/a.xsl"_s)), GoodSheet);
        EXPECT_EQ(Folders(), QStringList{u"InfoGrabber"_s});
        EXPECT_EQ(TServiceDelivery::Read(Dir.File(u"InfoGrabber"_s)).Version, 7);
    }
}

TEST_F(PackageTest, RefusesWhatLeadsElsewhere)
{
    const TZipEntry rows[] = {
        {"../evil", "x"},
        {"/evil", "x"},
        {"a/../../evil", "x"},
        {"a\\..\\evil", "x"},
        {"C:evil", "x"},
        {"link", "/etc/passwd", 0120777},
        {"large", QByteArray(33 * 1024 * 1024, '0')},
    };
    for (const TZipEntry& entry : rows) {
        SCOPED_TRACE(entry.Name.toStdString());
        std::vector<TZipEntry> entries = GoodPackage();
        entries.push_back(entry);
        ExpectRefused(entries);
        EXPECT_FALSE(QFile::exists(Dir.File(u"evil"_s)));
    }
}

TEST_F(PackageTest, RefusesWhatCannotWork)
{
    const auto with = [](size_t at, const QByteArray& bytes) {
        std::vector<TZipEntry> entries = GoodPackage();
        entries[at].Bytes = bytes;
        return entries;
    };
    std::vector<TZipEntry> without = GoodPackage();
    without.pop_back();
    const std::pair<const char*, std::vector<TZipEntry>> rows[] = {
        {"no definitions", {{"b.xsl", GoodSheet}}},
        {"broken definitions", with(0, "<G>")},
        {"no service takes part", with(0, "<G><Services><service name='s'/></Services><BarcodeSearch/></G>")},
        {"of an unknown service", with(0, "<G><BarcodeSearch><search ServiceName='s' url='u'/></BarcodeSearch></G>")},
        {"a stylesheet is missing", without},
        {"one is no XML", with(1, "<xsl:")},
        {"one does not compile",
         with(2, QByteArray(GoodSheet).replace("/>", "><xsl:template match='['/></xsl:stylesheet>"))},
    };
    for (const auto& [name, entries] : rows) {
        SCOPED_TRACE(name);
        ExpectRefused(entries);
    }
}

TEST_F(PackageTest, RefusesDamagedArchives)
{
    const QByteArray whole =
        Kit::ReadAll(MakeZip(Dir.File(u"p.zip"_s), {{"infograbber.xml", QByteArray(5000, 'n')}, {"b", "bbb"}}));
    QByteArray flipped = whole;
    flipped[40] = static_cast<char>(flipped[40] ^ 0x55);
    for (const QByteArray& bytes : {QByteArray(), QByteArray("no zip"), whole.left(whole.size() / 2), flipped}) {
        EXPECT_FALSE(Install(Dir.Write(u"bad.zip"_s, bytes)));
        EXPECT_EQ(State(), "old,mine");
    }
    EXPECT_FALSE(Install(Dir.File(u"missing.zip"_s)));
}

TEST_F(PackageTest, TellsAFileThatCannotBeMoved)
{
    Dir.Write(u"InfoGrabber/busy/inside"_s, "x");
    std::vector<TZipEntry> entries = GoodPackage();
    entries.push_back({"busy", "x"});
    ExpectRefused(entries);
    EXPECT_TRUE(Error.startsWith(u"Failed to move file from \""_s)) << Error.toStdString();
}

} // namespace
