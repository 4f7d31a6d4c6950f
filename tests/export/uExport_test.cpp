// SPDX-License-Identifier: GPL-3.0-or-later
// Exported files, read back by parsers of others.
#include "dmMain.h"
#include "uDefaults.h"
#include "uExport.h"
#include "uReportPainter.h"
#include "uScriptedPrompt.h"
#include "uTestFiles.h"

#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <QPainter>

#include <gtest/gtest.h>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

class Export : public testing::Test {
protected:
    Export()
    {
        QLocale::setDefault(QLocale::c());
        Defaults() = MakeDefaults();
        const QString path = FDir.File(u"c.db"_s);
        FData.CreateNewDB(path, FData.GetNewDatabaseSQL());
        FData.ConnectToDB(path);
    }
    void Add(const QString& artist, const QString& name, const QString& genre, int year, const QByteArray& cover = {})
    {
        TAlbumRelease release;
        release.SetItem2(u"Artist"_s, artist);
        release.SetItem2(u"ReleaseName"_s, name);
        release.SetItem2(u"Genre"_s, genre);
        release.SetItem2(u"ReleaseYear"_s, year);
        release.SetItem2(u"ReleaseDate"_s, QDate(year, 2, 28));
        release.SetItem2(u"Price"_s, 1234.5);
        release.SetItem2(u"IsLive"_s, true);
        release.SetItem2(u"Barcode"_s, u"0012345678905"_s);
        if (!cover.isEmpty())
            release.AddPicture(cptFrontLarge).LoadFromBytes(cover);
        TAlbumTrack track;
        track.TrackName = name + u" track"_s;
        track.DurationSec = 3661;
        release.Tracks = {track};
        FData.AddAlbumReleaseToDB(release, true);
    }
    std::vector<TExportColumn> Columns(const QStringList& names)
    {
        std::vector<TExportColumn> columns;
        for (const QString& name : names)
            columns.push_back({name, u"<"_s + name + u">"_s});
        return columns;
    }
    TExportSource Source(const QStringList& names, bool thumbnails = false)
    {
        return {FData, FData.qReleasesMain, Columns(names), thumbnails};
    }
    QString Path(TExportFormat format) { return FDir.File(u"out."_s + ExportFormatWord(format)); }
    QJsonArray Written(TExportSource source, TExportFormat format)
    {
        EXPECT_TRUE(WriteExport(source, format, Path(format), u"Title & <more>"_s, {}));
        QByteArray output;
        EXPECT_TRUE(Kit::RunProgram(
            u"python3"_s, {QString::fromUtf8(KESTRUNE_READ_BACK), ExportFormatWord(format), Path(format)}, &output));
        return QJsonDocument::fromJson(output).array();
    }
    QString PdfText(TExportSource source)
    {
        EXPECT_TRUE(WriteExport(source, efPDF, Path(efPDF), u"Title & <more>"_s, {}));
        QByteArray text;
        EXPECT_TRUE(Kit::RunProgram(u"pdftotext"_s, {u"-layout"_s, Path(efPDF), u"-"_s}, &text));
        return QString::fromUtf8(text);
    }
    QStringList FilesLeft() { return QDir(FDir.Path()).entryList({u"out*"_s}, QDir::Files); }

    Kit::TTempDir FDir;
    Kit::TScriptedPrompt FPrompt;
    TDataModuleMain FData{FPrompt};
};

// Compared as text, so that a failure tells what differs.
std::string Json(const QJsonArray& array) { return QJsonDocument(array).toJson(QJsonDocument::Compact).toStdString(); }

QJsonArray Row(std::initializer_list<QJsonValue> cells) { return cells; }

const QString HostileText = u"=1+1,\"q\" <b>&amp;\r\nline\ttwo\u0001 ]]> 日本 \U0001F3B5 \u05E9\u05DC"_s;

} // namespace

TEST_F(Export, EachFormatHoldsExactlyWhatTheViewShows)
{
    Add(u"Abba"_s, HostileText, u"Pop"_s, 1976);
    Add(u"zappa"_s, u"Plain"_s, u"Rock"_s, 1979);
    Add(u"hidden"_s, u"Filtered out"_s, u"Folk"_s, 1980);
    FData.qReleasesMain.Filter().Add({u"ReleaseYear"_s, foLess, 1980, {}});
    FData.qReleasesMain.SetFilterActive(true);
    FData.qReleasesMain.ApplyFilter();
    FData.qReleasesMain.SetSort({{u"Artist"_s, true}});
    const QStringList names{u"Artist"_s,  u"ReleaseName"_s,       u"ReleaseYear"_s, u"ReleaseDate"_s, u"Price"_s,
                            u"Barcode"_s, u"TotalTracksLength"_s, u"IsLive"_s,      u"Label"_s};
    const QJsonArray heads = Row({u"<Artist>"_s, u"<ReleaseName>"_s, u"<ReleaseYear>"_s, u"<ReleaseDate>"_s,
                                  u"<Price>"_s, u"<Barcode>"_s, u"<TotalTracksLength>"_s, u"<IsLive>"_s, u"<Label>"_s});
    const QJsonArray plain = Row({u"zappa"_s, u"Plain"_s, u"1979"_s, u"28 Feb 1979"_s, u"$ 1234.50"_s,
                                  u"0012345678905"_s, u"1:01:01"_s, u"Yes"_s, u""_s});
    QJsonArray hostile = Row({u"Abba"_s, HostileText, u"1976"_s, u"28 Feb 1976"_s, u"$ 1234.50"_s, u"0012345678905"_s,
                              u"1:01:01"_s, u"Yes"_s, u""_s});

    EXPECT_EQ(Json(Written(Source(names), efCSV)), Json({heads, plain, hostile}));
    EXPECT_EQ(Json(Written(Source(names), efHTML)), Json({heads, plain, hostile}));

    const QJsonArray book = Written(Source(names), efExcel);
    ASSERT_EQ(book.size(), 3);
    EXPECT_EQ(book[0].toArray(), heads);
    const QJsonArray typed = book[2].toArray();
    EXPECT_EQ(typed[1], QJsonValue(HostileText)) << "a text that begins with = is no formula";
    EXPECT_EQ(typed[2], QJsonValue(1976));
    EXPECT_EQ(typed[3].toObject()[u"date"_s],
              QJsonValue(static_cast<double>(QDate(1899, 12, 30).daysTo(QDate(1976, 2, 28)))));
    EXPECT_EQ(typed[4], QJsonValue(1234.5));
    EXPECT_EQ(typed[5], QJsonValue(u"0012345678905"_s)) << "zeros in front stay";
    EXPECT_NEAR(typed[6].toDouble() * 86400.0, 3661.0, 1e-6);
    EXPECT_EQ(typed[7], QJsonValue(true));
    EXPECT_EQ(typed.size(), 8) << "an empty cell is none";

    QString clean = HostileText; // XML 1.0 has no such character, and reads one line end of two
    clean.remove(QChar(1)).replace(u"\r\n"_s, u"\n"_s);
    const QJsonArray xml = Written(Source(names), efXML);
    ASSERT_EQ(xml.size(), 2);
    EXPECT_EQ(xml[1].toArray()[1].toString().replace(u"\r\n"_s, u"\n"_s), u"ReleaseName="_s + clean);
    EXPECT_EQ(xml[0].toArray()[6], QJsonValue(u"TotalTracksLength=1:01:01"_s));
    EXPECT_EQ(xml[0].toArray()[8], QJsonValue(u"Label="_s));

    TExportSource source = Source({u"Artist"_s, u"ReleaseYear"_s});
    ASSERT_TRUE(WriteExport(source, efText, Path(efText), {}, {}));
    EXPECT_EQ(Kit::ReadAll(Path(efText)).toStdString(), "<Artist>  <ReleaseYear>\n"
                                                        "--------  -------------\n"
                                                        "zappa              1979\n"
                                                        "Abba               1976\n");

    const QString pdf = PdfText(Source(names));
    for (const QString& text : {u"Title & <more>"_s, u"zappa"_s, u"Plain"_s, u"1:01:01"_s, u"1976"_s})
        EXPECT_TRUE(pdf.contains(text)) << text.toStdString();
    EXPECT_FALSE(pdf.contains(u"Filtered"_s));
}

TEST_F(Export, GroupsStandWhereTheViewHasThem)
{
    Add(u"B"_s, u"One"_s, u"Rock"_s, 1976);
    Add(u"A"_s, u"Two"_s, u"Pop"_s, 1976);
    Add(u"C"_s, u"Three"_s, u"Pop"_s, 1979);
    FData.qReleasesMain.SetGrouping({u"Genre"_s, u"ReleaseYear"_s});
    const QJsonArray csv = Written(Source({u"ReleaseName"_s, u"Genre"_s}), efCSV);
    EXPECT_EQ(csv[0].toArray().size(), 3) << "a group that is no column stands in front";
    EXPECT_EQ(csv[1].toArray(), Row({u"1976"_s, u"Two"_s, u"Pop"_s}));
    EXPECT_EQ(csv[2].toArray(), Row({u"1979"_s, u"Three"_s, u"Pop"_s}));
    EXPECT_EQ(csv[3].toArray(), Row({u"1976"_s, u"One"_s, u"Rock"_s}));
    const QJsonArray xml = Written(Source({u"ReleaseName"_s}), efXML);
    EXPECT_EQ(xml[0].toArray(), Row({u"Genre=Pop"_s, u"ReleaseYear=1976"_s, u"ReleaseName=Two"_s}));
    EXPECT_EQ(xml[2].toArray(), Row({u"Genre=Rock"_s, u"ReleaseYear=1976"_s, u"ReleaseName=One"_s}));
    const QJsonArray html = Written(Source({u"ReleaseName"_s}), efHTML);
    ASSERT_EQ(html.size(), 9);
    EXPECT_EQ(html[1].toArray()[0], QJsonValue(u"Genre Pop 2"_s));
    EXPECT_EQ(html[2].toArray()[0], QJsonValue(u"Release year 1976 1"_s));
    EXPECT_EQ(html[8].toArray()[0], QJsonValue(u"One"_s));
    const QJsonArray book = Written(Source({u"ReleaseName"_s}), efExcel);
    EXPECT_EQ(book[1].toArray()[0], QJsonValue(u"Genre: Pop (2)"_s));
    EXPECT_TRUE(PdfText(Source({u"ReleaseName"_s})).contains(u"Pop"_s));
    // A second file of the same source has its groups again.
    TExportSource source = Source({u"ReleaseName"_s});
    for (int i = 0; i < 2; ++i) {
        ASSERT_TRUE(WriteExport(source, efText, Path(efText), {}, {}));
        EXPECT_EQ(Kit::ReadAll(Path(efText)).count("Genre: "), 2);
    }
}

TEST_F(Export, CoversGoIntoThePageAndThePDF)
{
    Add(u"A"_s, u"With"_s, u"Pop"_s, 1976, Kit::MakePicture(300, 200, "JPG"));
    Add(u"B"_s, u"Without"_s, u"Pop"_s, 1976);
    const QStringList names{u"ThumbPicture"_s, u"ReleaseName"_s};
    const QJsonArray html = Written(Source(names, true), efHTML);
    EXPECT_EQ(html[1].toArray()[0], QJsonValue(u"image:data:image/jpeg"_s));
    EXPECT_EQ(html[2].toArray()[0], QJsonValue(u""_s));
    EXPECT_EQ(Written(Source(names, false), efCSV)[1].toArray(), Row({u"With"_s}));
    QByteArray images;
    PdfText(Source(names, true));
    ASSERT_TRUE(Kit::RunProgram(u"pdfimages"_s, {u"-list"_s, Path(efPDF)}, &images));
    EXPECT_TRUE(images.contains(" image ")) << images.toStdString();
}

TEST_F(Export, StoppedOrFailedNothingIsLeftAndTheOldFileStays)
{
    for (int i = 0; i < 200; ++i)
        Add(u"A"_s, u"Release %1"_s.arg(i), u"Pop"_s, 1976);
    for (const QString& word : ExportFormatWords()) {
        const TExportFormat format = *ExportFormatOf(word);
        Kit::WriteAll(Path(format), "old");
        TExportSource source = Source({u"Artist"_s, u"ReleaseName"_s});
        int asked = 0;
        EXPECT_FALSE(WriteExport(source, format, Path(format), {}, [&](int row, int count) {
            EXPECT_LE(row, count);
            EXPECT_EQ(count, 200);
            return ++asked < 2;
        })) << word.toStdString();
        EXPECT_EQ(Kit::ReadAll(Path(format)), "old") << word.toStdString();
        EXPECT_THROW(WriteExport(source, format, FDir.Path() + u"/no folder/out."_s + word, {}, {}), EExportError);
        EXPECT_THROW(WriteExport(source, format, FDir.Path(), {}, {}), EExportError) << "a folder";
        if (QFileInfo::exists(u"/dev/full"_s)) { // what is written aside goes to a device that is full
            const QString full = FDir.File(u"full."_s + word);
            ASSERT_TRUE(QFile::link(u"/dev/full"_s, full + u".part"_s));
            EXPECT_THROW(WriteExport(source, format, full, {}, {}), EExportError) << word.toStdString();
            EXPECT_FALSE(QFileInfo::exists(full));
        }
    }
    EXPECT_EQ(FilesLeft().size(), ExportFormatWords().size());
}

TEST_F(Export, PagesHoldEveryRowOnce)
{
    for (int i = 0; i < 120; ++i)
        Add(u"A"_s, u"Release %1 end"_s.arg(i, 3, 10, QChar(u'0')), i % 2 ? u"Pop"_s : u"Rock"_s, 1976);
    for (const bool grouped : {false, true}) {
        if (grouped)
            FData.qReleasesMain.SetGrouping({u"Genre"_s});
        const QString pdf = PdfText(Source({u"No"_s, u"ReleaseName"_s}));
        for (int i = 0; i < 120; ++i)
            EXPECT_EQ(pdf.count(u"Release %1 end"_s.arg(i, 3, 10, QChar(u'0'))), 1) << i;
        EXPECT_GE(pdf.count(u"<ReleaseName>"_s), 3) << "the headings stand on every page";
        TExportSource source = Source({u"No"_s, u"ReleaseName"_s});
        for (const bool covers : {false, true}) {
            TReportPainter report(source, {u"T"_s, covers}, QSizeF(523, 770));
            ASSERT_GT(report.PageCount(), 1);
            EXPECT_EQ(report.LastRowOf(report.PageCount() - 1), 119);
            for (int page = 1; page < report.PageCount(); ++page)
                EXPECT_GT(report.LastRowOf(page), report.LastRowOf(page - 1));
        }
    }
}

TEST_F(Export, SmallPaperAndNoRowsStillMakeAPage)
{
    TExportSource empty = Source({u"No"_s, u"ReleaseName"_s});
    for (const bool covers : {false, true}) {
        TReportPainter report(empty, {u"T"_s, covers}, QSizeF(500, 700));
        EXPECT_EQ(report.PageCount(), 1);
        QImage image(500, 700, QImage::Format_RGB32);
        QPainter painter(&image);
        report.PaintPage(painter, 0);
    }
    EXPECT_EQ(Written(empty, efCSV).size(), 1);
    EXPECT_EQ(Written(empty, efExcel).size(), 1);
    for (int i = 0; i < 3; ++i)
        Add(u"A"_s, u"Long title "_s.repeated(30), u"Pop"_s, 1976);
    TExportSource source = Source({u"No"_s, u"ReleaseName"_s});
    for (const QSizeF& size : {QSizeF(40, 30), QSizeF(5, 5), QSizeF(0, 0)})
        for (const bool covers : {false, true})
            EXPECT_LE(TReportPainter(source, {u"T"_s, covers}, size).PageCount(), 3) << size.width();
}

TEST(ExportFormats, WordsAndFiltersBelongTogether)
{
    for (const QString& word : ExportFormatWords()) {
        ASSERT_TRUE(ExportFormatOf(word.toUpper()));
        EXPECT_EQ(ExportFormatWord(*ExportFormatOf(word)), word);
        EXPECT_TRUE(ExportFileFilter(*ExportFormatOf(word)).endsWith(u"|*."_s + word));
    }
    EXPECT_FALSE(ExportFormatOf(u"doc"_s));
}

} // namespace Kestrune
