// SPDX-License-Identifier: GPL-3.0-or-later
// The search of the command-line program, with services of its own on loopback.
#include "uCliKit.h"
#include "uDefaultServices.h"
#include "uWebServer.h"

#include <QCryptographicHash>
#include <QJsonArray>
#include <QJsonObject>
#include <QRegularExpression>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

// Makes a search result of whatever stands in the document that is answered.
const QByteArray CopyingSheet = "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform'>"
                                "<xsl:template match='/'><xsl:copy-of select='.'/></xsl:template></xsl:stylesheet>";
const QByteArray NamingSheet = R"(<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform'>
    <xsl:template match='/'><SearchResults><xsl:for-each select='Data/results/*'>
      <Release DATAPROVIDER='beta' RELEASE_ID='{id}' RELEASE_TITLE='{title}'/>
    </xsl:for-each></SearchResults></xsl:template></xsl:stylesheet>)";

const QByteArray Definitions = R"(<InfoGrabber>
    <Services>
      <service name="alpha" DisplayName="Alpha Music">
        <getrelease url="URL/alpha/full?id=%RELEASE_ID%" Transform="copy.xsl"/>
      </service>
      <service name="beta" DisplayName="Beta"/>
      <service name="locked" DisplayName="Locked Room"/>
    </Services>
    <BarcodeSearch>
      <search ServiceName="alpha" url="URL/alpha/barcode?q=%BARCODE%" Transform="copy.xsl" NeedToDownloadExtraInfo="true"/>
      <search ServiceName="beta" url="URL/beta?b=%BARCODE%" Transform="beta.xsl" JSON="true"/>
      <search ServiceName="locked" url="URL/locked?k=%DISCOGS_API_KEY%" Transform="copy.xsl"/>
    </BarcodeSearch>
    <ArtistSearch><search ServiceName="alpha" url="URL/alpha/a?a=%ARTIST%&amp;r=%RELEASE_TITLE%" Transform="copy.xsl"/></ArtistSearch>
    <ReleaseSearch><search ServiceName="alpha" url="URL/alpha/r?a=%ARTIST%&amp;r=%RELEASE_TITLE%" Transform="copy.xsl"/></ReleaseSearch>
    <ReleaseAndArtistSearch><search ServiceName="alpha" url="URL/alpha/ar?a=%ARTIST_QUERY%&amp;r=%RELEASE_TITLE%" Transform="copy.xsl"/></ReleaseAndArtistSearch>
    <CDSearch><search ServiceName="alpha" url="URL/alpha/cd/%DISCID%?t=%TOC%&amp;m=%TOC_MICROSOFT%&amp;d=%TOC_DECIMAL%" Transform="copy.xsl"/></CDSearch>
    </InfoGrabber>)";

const QByteArray Summaries =
    "<SearchResults><Release RELEASE_ID='7' ARTIST='Ann Tenna' RELEASE_TITLE='Wired&#9;Up' RELEASE_YEAR='1971' "
    "LABEL='Hum' CATALOG_NO='H 1' EAN='123' COUNTRY='UK' RELEASE_TYPE='Vinyl'><Images>"
    "<Image type='thumb'>http://127.0.0.1/t.jpg</Image></Images></Release><Release RELEASE_ID='8'/></SearchResults>";

class CliSearch : public TCliTest {
protected:
    CliSearch()
    {
        FDir.Write(u"package/infograbber.xml"_s, OurDefinitions());
        WriteSheets(u"package/"_s);
        FServer.Serve("/alpha/barcode", {.Body = Summaries, .Type = "text/xml"});
        FServer.Serve("/beta",
                      {.Body = R"({"results":[{"id":"b1","title":"Beta title"}]})", .Type = "application/json"});
        FServer.Serve("/locked", {.Status = 401, .Body = "no"});
        FServer.Serve("/cover", {.Body = FCover, .Type = "image/jpeg"});
        FServer.Serve(
            "/alpha/full",
            {.Body = QByteArray(
                         "<SearchResults><Release DATAPROVIDER='alpha' RELEASE_ID='7' ARTIST='Ann Tenna' "
                         "RELEASE_TITLE='Wired Up' RELEASE_DATE='1971-05-02' RELEASE_YEAR='1971' LABEL='Hum Records' "
                         "CATALOG_NO='HUM 1' EAN='123' COUNTRY='UK' RELEASE_TYPE='Vinyl' GENRE='Folk'>"
                         "<Genres><Genre>Folk</Genre><Genre>Jazz</Genre></Genres><Labels><Label>Hum</Label></Labels>"
                         "<Images><Image type='large'>URL/cover</Image></Images>"
                         "<Credits><Credit musician='Amp Lifier' credit='Producer'/></Credits><Tracks>"
                         "<Track TRACK_TITLE='One' TRACK_NO='1' SIDE='A' TRACK_DURATION_SEC='61'/>"
                         "<Track TRACK_TITLE='Two' TRACK_NO='2' SIDE='B' TRACK_ARTIST='Guest' DISC_NO='2' "
                         "TRACK_DURATION='0:02:05'/></Tracks></Release></SearchResults>")
                         .replace("URL", FServer.URL({}).toUtf8()),
             .Type = "text/xml"});
    }

    QByteArray OurDefinitions() const { return QByteArray(Definitions).replace("URL", FServer.URL({}).toUtf8()); }
    void WriteSheets(const QString& folder) const
    {
        FDir.Write(folder + u"copy.xsl"_s, CopyingSheet);
        FDir.Write(folder + u"beta.xsl"_s, NamingSheet);
    }
    TCliResult Search(const QStringList& arguments)
    {
        return Run(QStringList{u"search"_s, u"--package"_s, FDir.File(u"package"_s)} + arguments);
    }
    TCliResult Barcode(const QStringList& more) { return Search(QStringList{u"--barcode"_s, u"123"_s} + more); }

    Kit::TWebServer FServer;
    QByteArray FCover = Kit::MakePicture(300, 200, "JPG");
};

} // namespace

TEST_F(CliSearch, ListsTheHitsOfAllServicesInOrder)
{
    const TCliResult text = Barcode({});
    EXPECT_EQ(text.Code, 0);
    EXPECT_EQ(text.Out.toStdString(), "alpha\t7\tAnn Tenna\tWired Up\t1971\tHum\tH 1\t123\tGB\tVinyl\n"
                                      "alpha\t8\t\t\t\t\t\t\t\t\n"
                                      "beta\tb1\t\tBeta title\t\t\t\t\t\t\n");
    EXPECT_EQ(text.Err.toStdString(), "kestrune-cli: Locked Room: needs a key (DISCOGS_API_KEY)\n");
    EXPECT_EQ(FServer.Log().front().Target, "/alpha/barcode?q=123");
    const qsizetype asked = FServer.Log().size();
    EXPECT_EQ(Search({u"--barcode"_s, u" 1 2-3 "_s}).Code, 0);
    EXPECT_EQ(FServer.Log().at(asked).Target, "/alpha/barcode?q=123");
    const QJsonArray json = Barcode({u"--json"_s}).Json().array();
    ASSERT_EQ(json.size(), 3);
    EXPECT_EQ(json[0][u"title"_s].toString(), u"Wired\tUp"_s);
    EXPECT_EQ(json[0][u"year"_s].toInt(), 1971);
    EXPECT_EQ(json[0][u"catalogNo"_s].toString(), u"H 1"_s);
    EXPECT_EQ(json[0][u"pictures"_s][0][u"type"_s].toString(), u"cptFrontThumb"_s);
    EXPECT_EQ(json[0][u"pictures"_s][0][u"url"_s].toString(), u"http://127.0.0.1/t.jpg"_s);
    EXPECT_TRUE(json[1][u"artist"_s].isNull());
    EXPECT_EQ(json[2][u"service"_s].toString(), u"beta"_s);
    EXPECT_EQ(FServer.Count("/alpha/full"), 0) << "hits are listed as they are";
}

TEST_F(CliSearch, EachKindOfSearchAsksItsOwnEntries)
{
    const std::pair<QStringList, QByteArray> rows[] = {
        {{u"--artist"_s, u" AC-DC & Co "_s}, "/alpha/a?a=AC-DC+%26+Co&r="},
        {{u"--release"_s, u"Ü"_s}, "/alpha/r?a=&r=%C3%9C"},
        {{u"--release"_s, u"R"_s, u"--artist"_s, u"A-B"_s}, "/alpha/ar?a=A%5C-B&r=R"},
        {{u"--toc"_s, u"1 2 40000 150 20000"_s}, "?t=96+96+4E20+9C40&m=2+96+4E20+9C40&d=1+2+40000+150+20000"},
    };
    for (const auto& [arguments, target] : rows) {
        SCOPED_TRACE(arguments.join(u' ').toStdString());
        Search(arguments);
        ASSERT_FALSE(FServer.Log().isEmpty());
        EXPECT_TRUE(FServer.Log().back().Target.endsWith(target)) << FServer.Log().back().Target.toStdString();
    }
    const QRegularExpression disc(u"^/alpha/cd/[0-9A-Za-z._-]{28}\\?"_s);
    EXPECT_TRUE(disc.match(QString::fromUtf8(FServer.Log().back().Target)).hasMatch());
    const TCliResult none = Search({u"--catno"_s, u"1"_s});
    EXPECT_EQ(none.Code, 1);
    EXPECT_TRUE(none.Err.contains("no service takes part"));
}

TEST_F(CliSearch, AFailureIsToldAndTheOthersGoOn)
{
    FServer.Serve("/beta", {.Body = "<html>busy</html>"});
    struct {
        const char* Name;
        QStringList Arguments;
        int Status;
        int Code;
        QByteArrayList Says;
    } rows[] = {
        {"one of three answers", {}, 200, 0, {"Beta: ", "Locked Room: needs a key"}},
        {"none answers", {}, 500, 1, {"Alpha Music: 500", "Beta: ", "Locked Room: ", "no service"}},
        {"the one that is asked", {u"--service"_s, u"ALPHA MUSIC"_s}, 404, 1, {"Alpha Music: 404", "no service"}},
        {"by its internal name", {u"--service"_s, u"Alpha"_s}, 200, 0, {}},
        {"a record that does not come", {u"--service"_s, u"alpha"_s, u"--details"_s}, 500, 1, {"500", "no service"}},
        {"an unknown one", {u"--service"_s, u"gamma"_s}, 200, 2, {"alpha, beta, locked"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Name);
        FServer.Serve("/alpha/barcode", {.Status = row.Status, .Body = Summaries});
        const TCliResult result = Barcode(row.Arguments);
        EXPECT_EQ(result.Code, row.Code) << result.Err.toStdString();
        EXPECT_EQ(result.Err.count('\n'), row.Says.size()) << result.Err.toStdString();
        for (const QByteArray& text : row.Says)
            EXPECT_TRUE(result.Err.contains(text)) << result.Err.toStdString();
        EXPECT_EQ(result.Out.contains("Ann Tenna"), row.Code == 0);
    }
}

TEST_F(CliSearch, AnUnknownDiscIsNoFailure)
{
    FServer.SetHandler([](const Kit::TWebRequest&) { return Kit::TWebAnswer{.Status = 404}; });
    const QStringList disc{u"--toc"_s, u"1 2 40000 150 20000"_s};
    const TCliResult list = Search(disc + QStringList{u"--json"_s});
    EXPECT_EQ(list.Code, 0) << list.Err.toStdString();
    EXPECT_TRUE(list.Json().isArray() && list.Json().array().isEmpty()) << list.Out.toStdString();
    const QJsonArray details = Search(disc + QStringList{u"--json"_s, u"--details"_s}).Json().array();
    ASSERT_EQ(details.size(), 1);
    EXPECT_TRUE(details[0][u"release"_s].isNull());
    ASSERT_EQ(Run({u"new"_s, FPath}).Code, 0);
    const TCliResult added = Search(disc + QStringList{u"--add"_s, FPath});
    EXPECT_EQ(added.Code, 1);
    EXPECT_EQ(added.Err, "kestrune-cli: nothing was found\n");
}

TEST_F(CliSearch, DefinitionsAreYoursOrThoseOfAPackage)
{
    const QString yours = u"data/Kestrune/Kestrune/InfoGrabber/"_s;
    const QStringList call{u"search"_s, u"--barcode"_s, u"1"_s, u"--service"_s, u"beta"_s};
    FDir.Write(yours + u"infograbber.xml"_s, OurDefinitions());
    WriteSheets(yours);
    const TCliResult good = Run(call);
    EXPECT_EQ(good.Code, 0) << good.Err.toStdString();
    EXPECT_TRUE(good.Out.startsWith("beta\tb1"));
    FDir.Write(yours + u"infograbber.xml"_s, "<InfoGrabber><Services>");
    FDir.Write(u"broken/infograbber.xml"_s, "no XML");
    FDir.Write(u"empty/readme"_s, {});
    const std::pair<QStringList, const char*> rows[] = {
        {{}, "cannot be read"},
        {{u"--package"_s, FDir.File(u"broken"_s)}, "cannot be read"},
        {{u"--package"_s, FDir.File(u"empty"_s)}, "is missing"},
    };
    for (const auto& [options, says] : rows) {
        const TCliResult bad = Run(call + options);
        EXPECT_EQ(bad.Code, 1);
        EXPECT_EQ(bad.Err.count('\n'), 1) << bad.Err.toStdString();
        EXPECT_TRUE(bad.Err.contains(says) && bad.Err.contains("infograbber.xml")) << bad.Err.toStdString();
    }
}

TEST_F(CliSearch, ShowsTheRecordOfEachServicesFirstHit)
{
    const TCliResult text = Barcode({u"--details"_s});
    EXPECT_EQ(text.Code, 0) << text.Err.toStdString();
    for (const char* line :
         {"service\talpha\n", "ReleaseName\tWired Up\n", "ReleaseDate\t1971-05-02\n", "CatalogNO\tHUM 1\n",
          "track\t1.1\tOne\t61\tA\tAnn Tenna\n", "track\t2.2\tTwo\t125\tB\tGuest\n", "credit\tAmp Lifier\tProducer\n",
          "genre\tJazz\n", "label\tHum\n", "picture\tcptFrontLarge\t300 x 200\t", "service\tbeta\n"})
        EXPECT_TRUE(text.Out.contains(line)) << line << text.Out.toStdString();
    EXPECT_EQ(FServer.Log()[1].Target, "/alpha/full?id=7");
    const QJsonArray json = Barcode({u"--details"_s, u"--json"_s}).Json().array();
    ASSERT_EQ(json.size(), 3);
    EXPECT_EQ(json[0][u"tracks"_s][1][u"side"_s].toString(), u"B"_s);
    const QByteArray sha1 = QCryptographicHash::hash(FCover, QCryptographicHash::Sha1).toHex();
    EXPECT_EQ(json[0][u"pictures"_s][0][u"sha1"_s].toString().toLatin1(), sha1);
    EXPECT_EQ(json[1][u"release"_s][u"ReleaseName"_s].toString(), u"Beta title"_s);
    EXPECT_TRUE(json[2][u"release"_s].isNull());
    EXPECT_TRUE(json[2][u"error"_s].toString().contains(u"needs a key"_s));
}

TEST_F(CliSearch, StoresTheFirstRecord)
{
    ASSERT_EQ(Run({u"new"_s, FPath}).Code, 0);
    const TCliResult added = Barcode({u"--add"_s, FPath});
    ASSERT_EQ(added.Code, 0) << added.Err.toStdString();
    EXPECT_EQ(added.Out, "stored 1 Ann Tenna - Wired Up\n");
    EXPECT_EQ(FServer.Count("/beta"), 0) << "the first service had it";
    const QJsonObject show = Run({u"show"_s, FPath, u"1"_s, u"--json"_s}).Json().object();
    const QJsonValue release = show[u"release"_s];
    const std::pair<const char16_t*, QJsonValue> fields[] = {
        {u"Artist", u"Ann Tenna"_s}, {u"ReleaseName", u"Wired Up"_s}, {u"Label", u"Hum Records"_s},
        {u"CatalogNO", u"HUM 1"_s},  {u"Barcode", u"123"_s},          {u"CountryCode", u"GB"_s},
        {u"ReleaseYear", 1971},      {u"MediaType", u"Vinyl"_s},      {u"Genre", u"Folk"_s}};
    for (const auto& [column, value] : fields)
        EXPECT_EQ(release[QString::fromUtf16(column)], value) << QString::fromUtf16(column).toStdString();
    EXPECT_TRUE(release[u"ReleaseDate"_s].toString().startsWith(u"1971-05-02"_s));
    ASSERT_EQ(show[u"tracks"_s].toArray().size(), 2);
    const QJsonValue track = show[u"tracks"_s][1];
    EXPECT_EQ(track[u"TrackTitle"_s].toString(), u"Two"_s);
    EXPECT_EQ(track[u"Side"_s].toString(), u"B"_s);
    EXPECT_EQ(track[u"DiscNo"_s].toInt(), 2);
    EXPECT_EQ(track[u"Artist"_s].toString(), u"Guest"_s);
    EXPECT_NEAR(track[u"TrackLength"_s].toDouble() * 86400, 125, 0.01);
    ASSERT_EQ(show[u"credits"_s].toArray().size(), 1);
    EXPECT_EQ(show[u"credits"_s][0][u"Musician"_s].toString(), u"Amp Lifier"_s);
    EXPECT_EQ(show[u"credits"_s][0][u"Instrument"_s].toString(), u"Producer"_s);
    const QByteArray sha1 = QCryptographicHash::hash(FCover, QCryptographicHash::Sha1).toHex();
    const QJsonArray pictures = show[u"pictures"_s].toArray();
    EXPECT_TRUE(std::ranges::any_of(pictures, [&](const QJsonValue& picture) {
        return picture[u"type"_s].toString() == "cptFrontLarge"_L1 &&
               picture[u"sha1"_s].toString() == QLatin1StringView(sha1);
    })) << "the front cover as it came";

    FServer.Serve("/alpha/barcode", {.Body = "<SearchResults/>"});
    const QJsonObject next = Barcode({u"--add"_s, FPath, u"--json"_s, u"--details"_s}).Json().object();
    EXPECT_EQ(next[u"id"_s].toInt(), 2);
    EXPECT_EQ(next[u"service"_s].toString(), u"beta"_s) << "the next service is asked";
    EXPECT_EQ(next[u"release"_s][u"ReleaseName"_s].toString(), u"Beta title"_s);
}

TEST_F(CliSearch, AsksNobodyWhenItCannotStore)
{
    for (const QString& path : {FDir.File(u"none.db"_s), FDir.Write(u"text.db"_s, QByteArray(5000, 'x'))}) {
        const TCliResult result = Barcode({u"--add"_s, path});
        EXPECT_EQ(result.Code, 1);
        EXPECT_TRUE(result.Err.contains(path.toUtf8())) << result.Err.toStdString();
    }
    EXPECT_TRUE(FServer.Log().isEmpty());
}

TEST_F(CliSearch, ARecordedSessionGivesTheSameWithoutTheNetwork)
{
    const QString session = FDir.File(u"session"_s);
    const QStringList calls[] = {{u"--json"_s}, {u"--details"_s, u"--json"_s}};
    QByteArrayList first;
    for (const QStringList& call : calls)
        first << Barcode(call + QStringList{u"--record"_s, session}).Out;
    const qsizetype asked = FServer.Log().size();
    for (size_t i = 0; i < std::size(calls); ++i) {
        const TCliResult again = Barcode(calls[i] + QStringList{u"--replay"_s, session});
        EXPECT_EQ(again.Code, 0) << again.Err.toStdString();
        // A server's words for a status are no part of a session.
        EXPECT_EQ(again.Out, first[static_cast<qsizetype>(i)]);
        EXPECT_TRUE(again.Err.contains("needs a key"));
    }
    EXPECT_EQ(FServer.Log().size(), asked);
    ASSERT_EQ(Run({u"new"_s, FPath}).Code, 0);
    EXPECT_EQ(Barcode({u"--replay"_s, session, u"--add"_s, FPath}).Out, "stored 1 Ann Tenna - Wired Up\n");
    const TCliResult other = Search({u"--barcode"_s, u"9"_s, u"--service"_s, u"beta"_s, u"--replay"_s, session});
    EXPECT_EQ(other.Code, 1);
    EXPECT_TRUE(other.Err.contains("no answer for " + FServer.URL(u"/beta?b=9"_s).toUtf8())) << other.Err.toStdString();
    FDir.Write(u"session/session.tsv"_s, "*\t200\t\t../package/copy.xsl\n");
    const TCliResult hostile = Barcode({u"--replay"_s, session});
    EXPECT_EQ(hostile.Code, 1);
    EXPECT_TRUE(hostile.Err.contains("line 1"));
    EXPECT_TRUE(hostile.Out.isEmpty());
}

TEST_F(TCliTest, TheDefaultPackageAddsARecordWhole)
{
    if (Kit::SamplesFolder().isEmpty())
        GTEST_SKIP() << "no samples here";
    Kit::TWebServer server;
    const QByteArray cover = Kit::MakePicture(300, 300, "JPG");
    server.SetHandler([&](const auto& request) { return Kit::SampleAnswer(request, cover); });
    Kit::PackageOnLoopback(FDir, server, QString::fromUtf8(KESTRUNE_SERVICES_DIR));
    ASSERT_EQ(Run({u"new"_s, FPath}).Code, 0);
    const TCliResult added = Run({u"search"_s, u"--package"_s, FDir.File(u"package"_s), u"--barcode"_s,
                                  u"074646362822"_s, u"--service"_s, u"Discogs"_s, u"--add"_s, FPath});
    ASSERT_EQ(added.Code, 0) << added.Err.constData();
    const QJsonObject shown = Run({u"show"_s, FPath, u"1"_s, u"--json"_s}).Json().object();
    EXPECT_EQ(shown[u"release"_s][u"Label"_s].toString(), u"Svek"_s);
    EXPECT_EQ(shown[u"release"_s][u"CatalogNO"_s].toString(), u"SK 026"_s);
    EXPECT_EQ(shown[u"release"_s][u"CountryCode"_s].toString(), u"SE"_s);
    QStringList tracks;
    for (const QJsonValue& track : shown[u"tracks"_s].toArray())
        tracks << track[u"Side"_s].toString() + track[u"TrackTitle"_s].toString();
    EXPECT_EQ(tracks, (QStringList{u"AA Sea Apart"_s, u"ADutchmaster"_s, u"BInner City Lullaby"_s, u"BYeah Kid!"_s}));
    EXPECT_EQ(shown[u"credits"_s].toArray().size(), 6);
    const QJsonArray pictures = shown[u"pictures"_s].toArray();
    EXPECT_TRUE(std::ranges::any_of(pictures, [&](const QJsonValue& picture) {
        return picture[u"type"_s] == "cptFrontLarge"_L1 && picture[u"bytes"_s].toInt() == cover.size();
    }));
}

} // namespace Kestrune
