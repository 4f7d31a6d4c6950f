// SPDX-License-Identifier: GPL-3.0-or-later
// Writes the small files of the tests as seed corpora: FOLDER/<reader>/<file>.
#include "uFoldedImage.h"
#include "uImageBuilders.h"
#include "uJSONToXML.h"
#include "uServiceAnswers.h"
#include "uTagBuilders.h"
#include "uXSLTranformation.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <zip.h>

#include <cstdio>
#include <filesystem>
#include <fstream>

namespace {

using namespace Kestrune;

// The images of the tests, without the empty sectors between their structures.
template <typename T>
void WriteImages(const T& write)
{
    using namespace Kestrune::Kit;
    const QByteArray sync = QByteArray("\x10\x20\0\0\xF8\x72\x6F\xBB", 8) + QByteArray(200, 't');
    const QList<TImageFile> files{{"A/B.FLA", QByteArray(5000, 'b'), 2}, {"A/C/D.CUE", "cue"}, {"E.JPG", "e"}};
    write("iso", "a", Fuzz::Fold(IsoImage("X", files), Fuzz::ISORuns()));
    write("udf", "plain", Fuzz::Fold(UdfImage(files), Fuzz::UDFRuns()));
    write("udf", "metadata", Fuzz::Fold(UdfImage(files, {.Metadata = true}), Fuzz::UDFRuns()));
    write("udf", "embedded",
          Fuzz::Fold(UdfImage({{"a", "a"}}, {.Embedded = true, .Extended = false}), Fuzz::UDFRuns()));
    write("sacd", "a",
          Fuzz::Fold(SacdImage({{.Title = "One", .Performer = "P", .Composer = "C", .Sound = QByteArray(9408, 's')}},
                               {.Title = "T", .Artist = "A"}),
                     Fuzz::SACDRuns()));
    const QByteArray dvda = IsoImage("X", {{"AUDIO_TS/ATS_01_0.IFO", DvdaIfo({{{1, 0, 1}, {2, 1, 1}}})},
                                           {"AUDIO_TS/ATS_01_1.AOB", AobSectors(sync.repeated(10))}});
    write("dvda", "a", Fuzz::Fold(dvda, Fuzz::ISORuns()));
    write("m2ts", "a", TransportStream(0x83, {{9000, sync}, {18000, sync}}, 0x72));
    write("m2ts", "b", TransportStream(0x81, {{9000, "\x0B\x77sound"}}));
    write("mp4container", "a", Mp4File({}));
    write("disctoc", "typed", "1 3 212043 150 33290 52565");
    QByteArray table(202 * 4, '\0'); // of one track and a lead-out
    table[0] = table[4] = 1;
    table[13] = 100;
    write("disctoc", "table", table);
}

QByteArray ReadService(const QString& name)
{
    QFile file(QStringLiteral(KESTRUNE_SERVICES_DIR "/") + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray ZipOf(const QList<std::pair<QByteArray, QByteArray>>& files, zip_int32_t method)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("seed.zip")));
    zip_t* archive = zip_open(QFile::encodeName(file.fileName()).constData(), ZIP_CREATE, nullptr);
    for (const auto& [name, bytes] : files) {
        if (name.endsWith('/')) {
            zip_dir_add(archive, name.constData(), 0);
            continue;
        }
        zip_source_t* source =
            zip_source_buffer(archive, bytes.constData(), static_cast<zip_uint64_t>(bytes.size()), 0);
        const zip_int64_t at = zip_file_add(archive, name.constData(), source, 0);
        zip_set_file_compression(archive, static_cast<zip_uint64_t>(at), method, 0);
    }
    zip_close(archive);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The delivered definitions and stylesheets, answers for them, and what becomes of these.
template <typename T>
void WriteOnline(const T& write)
{
    write("infograbber", "delivered", ReadService(QStringLiteral("infograbber.xml")));
    write(
        "infograbber", "signed",
        "<Grabber><Services><service name='a' DisplayName='A' WaitBetweenRequests='10'><getrelease url='http://a.b/"
        "%RELEASE_ID%' Transform='../x.xsl' sign='%ARTIST%' signmethod='SHA256' signprivatekey='%AMAZON_API_KEY%'/>"
        "</service></Services><ASINSearch><search ServiceName='discogs' CodePage='1252' url='http://a.b/?per_page=50'/>"
        "<search ServiceName='musicbrainz' url='http://a.b/?query=x&amp;limit=100'/></ASINSearch></Grabber>");
    for (const QByteArray& service : Kit::AnsweringServices()) {
        for (const Kit::TServiceAnswer& answer : {Kit::SearchAnswer(service, 2), Kit::RecordAnswer(service, 3)}) {
            const QByteArray sheet = ReadService(QString::fromUtf8(answer.Stylesheet));
            const QByteArray xml = answer.JSON ? JSONToXML(answer.Text) : answer.Text;
            QByteArray document;
            const std::string name = answer.Name.toStdString();
            if (answer.JSON)
                write("json", name, answer.Text);
            if (TransformXSL(xml, sheet, document))
                write("interchange", name, document);
            write("xslt", name, sheet + QByteArray(1, '\0') + xml);
        }
    }
    write("json", "made-up",
          R"({"a:b":[1,-2.5e3,true,null,"\u00e9\ud83d\ude00\udc00\uffff <&>\"",[],{}],"250":{"#t":"x"}})");
    write("interchange", "made-up",
          "<Any><SearchResults><Release RELEASE_ID='1' RELEASE_YEAR='1999' PRICE='1,5' COUNTRY_TEXT='uk' ASIN='B'>"
          "<Credits><Credit musician='m' credit='c'/></Credits><Tracks><Track TRACK_NO='1' TRACK_DURATION='00:03:05' "
          "DISC_NO='2' SIDE='A'/></Tracks><Images><Image type='back-large'>http://a.b/c</Image></Images></Release>"
          "</SearchResults></Any>");
    const QByteArray head = "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform' "
                            "xmlns:x='http://exslt.org/common'>";
    write("xslt", "small",
          head +
              "<xsl:key name='k' match='b' use='@c'/><xsl:variable name='v'><i/><i/></xsl:variable><xsl:template "
              "match='/'><r><xsl:for-each select='//b[position() &lt; 3]'><xsl:sort select='@c' data-type='number'/>"
              "<xsl:number/><xsl:copy-of select=\"key('k', @c)\"/></xsl:for-each><xsl:value-of "
              "select=\"format-number(count(x:node-set($v)/i), '0.0')\"/></r></xsl:template></xsl:stylesheet>" +
              QByteArray(1, '\0') + "<a><b c='1'>t</b><b c='2'/></a>");
    write("package", "stored",
          ZipOf({{"infograbber.xml", "<a><Services><service name='s'/></Services><BarcodeSearch><search "
                                     "ServiceName='s' url='u' Transform='more/b.xsl'/></BarcodeSearch></a>"},
                 {"more/", {}},
                 {"more/b.xsl", head + "</xsl:stylesheet>"}},
                ZIP_CM_STORE));
    write("package", "packed",
          ZipOf({{"infograbber.xml", ReadService(QStringLiteral("infograbber.xml"))}, {"c.xsl", QByteArray(500, 'c')}},
                ZIP_CM_DEFLATE));
    write("package", "leading-out", ZipOf({{"../out.txt", "x"}, {"a.txt", "a"}}, ZIP_CM_STORE));
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fputs("usage: make_seeds FOLDER\n", stderr);
        return 2;
    }
    const auto write = [&](const char* reader, const std::string& name, const QByteArray& bytes) {
        const std::filesystem::path folder = std::filesystem::path(argv[1]) / reader;
        std::filesystem::create_directories(folder);
        std::ofstream(folder / name, std::ios::binary).write(bytes.constData(), bytes.size());
    };
    for (const Kit::TTagSeed& seed : Kit::TagSeeds()) {
        write(seed.Reader, seed.FileName, seed.Bytes);
        write("sniffer", std::string(seed.Reader) + seed.FileName, seed.Bytes);
    }
    WriteImages(write);
    WriteOnline(write);
    write("values", "european", "dd/mm/yyyy hh:nn:ss\n31-12-2001 07:05:09");
    write("values", "compact", "yyyymmdd hhnn\n20120131 0730");
    write("values", "picture", "dd mmm yy\nC:\\Covers\\..\\%RelativePath%\\%DBFilenameWithoutExt%1.jpg");
    write("settings", "backup",
          "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\Software\\C\\P]\r\n"
          "\"A\"=dword:00000001\r\n\"B\"=\"x\"\r\n\"C\"=hex(1):41,00,0a,00,\\\r\n  00,00\r\n");
    write("settings", "filter",
          R"({"version":1,"status":"a","letter":"B","columns":{"No":">5"},"builder":{"any":true,"not":true,"criteria":)"
          R"([{"column":"No","op":"between","value":[1,2],"text":"1"}],"groups":[{"criteria":[]}]}})");
    write("settings", "layout", "v2|Artist:0,No:52,-Genre:0|Artist,-ReleaseYear|Genre");
    return 0;
}
