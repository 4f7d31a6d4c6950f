// SPDX-License-Identifier: GPL-3.0-or-later
#include "uDefaults.h"
#include "uHostLimiter.h"
#include "uInfoGrabber.h"
#include "uKRNParams.h"
#include "uObjs.h"
#include "uServicesKit.h"
#include "uTestFiles.h"

#include <gtest/gtest.h>

using namespace Kestrune;
using namespace Qt::StringLiterals;

namespace {

TInfoGrabber Parsed(const QByteArray& xml)
{
    const Kit::TTempDir dir;
    TInfoGrabber grabber;
    grabber.Parse(dir.Write(u"infograbber.xml"_s, xml));
    return grabber;
}

// The URL of one search entry of a service.
QString SearchURL(const QByteArray& service, const QByteArray& url, const TDefaults& presets)
{
    const TInfoGrabber grabber =
        Parsed("<x><BarcodeSearch><search ServiceName=\"" + service + "\" url=\"" + url + "\"/></BarcodeSearch></x>");
    return grabber.GetSearchByType(stBarcode)->GetItem(0).URL(presets);
}

TEST(InfoGrabber, ReadsServicesAndSearches)
{
    HostLimiter().Clear();
    const TInfoGrabber grabber = Parsed(R"(<Anything><services>
        <Service name="one" DisplayName="One" WaitBetweenRequests="1100">
          <GetRelease url="http://one.invalid/r" NeedToDownloadExtraInfo="true" method="GET" Transform="r.xsl" JSON="TRUE" CodePage="1251"
                      Sign="s" signmethod="SHA256" signprivatekey="k"/>
          <getLyrics url="l"/><gettrack/><foo JSON="1" CodePage="abc"/>
        </Service>
        <other/><service name="two" WaitBetweenRequests="x"/></services>
      <BARCODESEARCH><Search ServiceName="one" url="http://one.invalid/s" NeedToDownloadExtraInfo="True"/>
        <nosearch/><search ServiceName="ONE"/></BARCODESEARCH>
      <CatalogNoSearch/></Anything>)");
    const TInfoGrabberServices& services = grabber.InfoGrabberServices();
    ASSERT_EQ(services.Count(), 2);
    const TInfoGrabberService* one = services.GetServiceByName(u"one"_s);
    ASSERT_TRUE(one);
    EXPECT_FALSE(services.GetServiceByName(u"One"_s));
    EXPECT_EQ(one->DisplayName(), u"One"_s);
    EXPECT_EQ(one->WaitBetweenRequests(), 1100);
    EXPECT_EQ(services.GetItem(1).WaitBetweenRequests(), 0);
    ASSERT_EQ(one->Items().size(), 4U);
    const TInfoGrabberServiceAction* release = one->GetActionByType(satGetRelease);
    ASSERT_TRUE(release);
    EXPECT_EQ(release->Name(), u"one"_s);
    EXPECT_TRUE(release->JSON());
    EXPECT_FALSE(release->NeedToDownloadExtraInfo()) << "a full record asks for no other";
    EXPECT_EQ(release->CodePage(), 1251);
    EXPECT_EQ(release->Tranform(), u"r.xsl"_s);
    EXPECT_EQ(release->SignMethod(), u"SHA256"_s);
    EXPECT_EQ(one->Items()[3]->ServiceActionType(), satSearch) << "any other name is a search";
    EXPECT_FALSE(one->Items()[3]->JSON());
    EXPECT_EQ(one->Items()[3]->CodePage(), 65001);
    EXPECT_FALSE(services.GetItem(1).GetActionByType(satGetRelease));

    const TInfoGrabberSearch* search = grabber.GetSearchByType(stBarcode);
    ASSERT_TRUE(search);
    ASSERT_EQ(search->Count(), 2);
    EXPECT_TRUE(search->GetItem(0).NeedToDownloadExtraInfo());
    EXPECT_EQ(search->GetItemByName(u"ONE"_s), &search->GetItem(1));
    EXPECT_FALSE(search->GetItemByName(u"three"_s));
    EXPECT_EQ(grabber.Count(), 2);
    EXPECT_EQ(grabber.GetSearchByType(stCatNo)->Count(), 0);
    EXPECT_FALSE(grabber.GetSearchByType(stCDDB));
    EXPECT_EQ(HostLimiter().Pace(u"one.invalid"_s), 1100);
    HostLimiter().Clear();
}

TEST(InfoGrabber, ASectionMayBeTheRoot)
{
    EXPECT_EQ(Parsed("<Services><service name='a'/></Services>").InfoGrabberServices().Count(), 1);
}

TEST(InfoGrabber, ABadFileLeavesNoDefinitions)
{
    const Kit::TTempDir dir;
    TInfoGrabber grabber;
    grabber.Parse(dir.Write(u"good.xml"_s, "<Services><service name='a'/></Services>"));
    EXPECT_THROW(grabber.Parse(dir.Write(u"bad.xml"_s, "<Services>")), EInfoGrabberError);
    EXPECT_THROW(grabber.Parse(dir.File(u"missing.xml"_s)), EInfoGrabberError);
    EXPECT_EQ(grabber.InfoGrabberServices().Count(), 0);
    EXPECT_FALSE(grabber.GetSearchByType(stBarcode));
}

TEST(InfoGrabber, StylesheetsLieInTheFolderOfTheDefinitions)
{
    const Kit::TTempDir dir;
    dir.Write(u"secret"_s, "outside");
    dir.Write(u"package/a.xsl"_s, "\xEF\xBB\xBFinside");
    const QString folder = dir.File(u"package"_s);
    EXPECT_EQ(ReadStylesheet(folder, u"a.xsl"_s), "inside");
    for (const QString& name : {u"../secret"_s, u"none.xsl"_s, QString()})
        EXPECT_THROW(ReadStylesheet(folder, name), EInfoGrabberError) << name.toStdString();
}

struct TRewriteRow {
    const char* Service;
    const char* URL;
    const char16_t* Country;
    int MediaType;
    int PerPage;
    const char16_t* Expected;
};

TEST(InfoGrabber, RewritesSearchesByThePresets)
{
    const TRewriteRow rows[] = {
        {"Discogs", "u?per_page=50", u"", 0, 20, u"u?per_page=20"},
        {"discogs", "u?per_page=25", u"", 1, 20, u"u?per_page=25&format=CD"},
        {"discogs", "u?", u"GB", 5, 20, u"u?&country=uk&format=Cassette"},
        {"discogs", "u?", u"us", 6, 20, u"u?&country=us"},
        {"discogs", "u?", u"DE", 2, 20, u"u?&country=Germany&format=Vinyl"},
        {"MusicBrainz", "u?query=x&amp;limit=100", u"", 0, 33, u"u?query=x&limit=33"},
        {"musicbrainz", "u?QUERY=x", u"GB", 0, 20, u"u?query=country:gb AND x"},
        {"musicbrainz", "u?query=x", u"GB", 5, 20, u"u?query=(format:Cassette) AND country:gb AND x"},
        {"musicbrainz", "u?query=x", u"", 2, 20,
         u"u?query=(format:\"12\\\" Vinyl\" OR format:\"7\\\" Vinyl\" OR format:\"10\\\" Vinyl\" OR format:Vinyl) AND "
         u"x"},
        {"other", "u?query=x&amp;per_page=50&amp;limit=100", u"DE", 1, 10, u"u?query=x&per_page=50&limit=100"},
    };
    for (const TRewriteRow& row : rows) {
        TDefaults presets = MakeDefaults();
        presets.DiscogsCountry = presets.MusicBrainzCountry = QString::fromUtf16(row.Country);
        presets.DiscogsMediaType = presets.MusicBrainzMediaType = row.MediaType;
        presets.DiscogsResultsPerPage = presets.MusicBrainzResultsPerPage = row.PerPage;
        EXPECT_EQ(SearchURL(row.Service, row.URL, presets), QString::fromUtf16(row.Expected));
    }
}

TEST(InfoGrabber, AsksTheITunesShopOfTheLocaleOrTheOneThatIsSet)
{
    const TInfoGrabberServiceAction& search = *Kit::Services().GetSearchByType(stBarcode)->GetItemByName(u"itunes"_s);
    const TInfoGrabberServiceAction& record = Kit::RecordOf(u"itunes"_s);
    struct TRow {
        const char16_t *Locale, *Set, *End;
    };
    const TRow rows[] = {{u"de_AT", u"", u"&country=at"},
                         {u"de_AT", u"JP", u"&country=jp"},
                         {u"C", u"", u""},
                         {u"fa_IR", u"", u""}}; // no shop there
    const QLocale before;
    for (const TRow& row : rows) {
        QLocale::setDefault(QLocale(QString::fromUtf16(row.Locale)));
        TDefaults presets = MakeDefaults();
        presets.ITunesCountry = QString::fromUtf16(row.Set);
        EXPECT_EQ(search.URL(presets), search.RawURL() + QString::fromUtf16(row.End));
        EXPECT_EQ(record.URL(presets), record.RawURL() + QString::fromUtf16(row.End));
    }
    QLocale::setDefault(before);
}

struct TParamRow {
    const char16_t* Value;
    const char16_t* Encoded;
};

TEST(KRNParams, EncodesValues)
{
    const TParamRow rows[] = {
        {u"C&A 50%", u"C%26A+50%25"},     {u"a+b", u"a+b"},
        {u"ü/日", u"%C3%BC%2F%E6%97%A5"}, {u"!$'()*+-.@_", u"!$'()*+-.@_"},
        {u"\"~,;:", u"%22%7E%2C%3B%3A"},  {u"12%3A00", u"12%253A00"},
    };
    for (const TParamRow& row : rows)
        EXPECT_EQ(EncodeParamValue(QString::fromUtf16(row.Value)), QString::fromUtf16(row.Encoded));
    EXPECT_EQ(EncodeParamValue(QString(u"a\0b"_s)), u"a"_s);
}

TEST(KRNParams, FillsPlaceholders)
{
    TKRNParams params;
    params.Add(u"ARTIST"_s, u"%TITLE%"_s);
    params.Add(u"TITLE"_s, u"x y"_s);
    params.Add(u"TITLE"_s, u"second"_s);
    EXPECT_EQ(params.ReplaceWithParams(u"%artist%|%TITLE%|%UNKNOWN%|%|100%"_s), u"%25TITLE%25|x+y|%UNKNOWN%|%|100%"_s);
}

TEST(KRNParams, TakesWhatIsKnownOfARelease)
{
    TAlbumRelease release;
    release.ReleaseInternalID = u"r1"_s;
    release.SetItem2(u"Artist"_s, u"AC/DC"_s);
    release.SetItem2(u"Barcode"_s, 42);
    TKRNParams params;
    params.AddSearchParamsFromAlbumRelease(release);
    params.AddQueryTwins();
    EXPECT_EQ(params.ReplaceWithParams(u"%ARTIST_ID%,%RELEASE_ID%,%ARTIST%,%BARCODE%,%CATNO%,%ARTIST_QUERY%"_s),
              u"%ARTIST_ID%,r1,AC%2FDC,42,,AC%5C%2FDC"_s);
}

TEST(KRNParams, SignsWithTheOneMethodThatItKnows)
{
    // RFC 4231, section 4.3 (test case 2), in Base64.
    EXPECT_EQ(SignData(u"what do ya want for nothing?"_s, u"Jefe"_s, u"SHA256"_s),
              u"W9zBRr9gdU5qBCQmCJV1x1oAPwidJzmDnexYuWTsOEM%3D"_s);
    EXPECT_TRUE(SignData(u"x"_s, u"k"_s, u"sha256"_s).isEmpty());
    const TInfoGrabber grabber = Parsed(
        "<BarcodeSearch><search Sign='%BARCODE%' signmethod='SHA256' signprivatekey='k'/><search/></BarcodeSearch>");
    TKRNParams params;
    params.Add(u"BARCODE"_s, u"1 2"_s);
    grabber.GetSearchByType(stBarcode)->GetItem(1).AddSignature(params);
    EXPECT_EQ(params.Items().size(), 1U);
    grabber.GetSearchByType(stBarcode)->GetItem(0).AddSignature(params);
    EXPECT_EQ(params.Items().back().first, u"SIGNATURE"_s);
    EXPECT_EQ(params.Items().back().second, SignData(u"1+2"_s, u"k"_s, u"SHA256"_s)) << "the template is filled first";
}

TEST(KRNParams, PrivateKeysComeInOrderWithATime)
{
    TKRNParams params;
    params.AddPrivateKeysToParams();
    ASSERT_EQ(params.Items().size(), 6U);
    EXPECT_EQ(params.Items()[0].first, u"DISCOGS_API_KEY"_s);
    EXPECT_EQ(params.Items()[4].first, u"LAST_FM_API_KEY"_s);
    EXPECT_TRUE(params.Items()[5].second.contains(u"%3A"_s));
    EXPECT_EQ(params.Items()[5].second.size(), 24);
}

} // namespace
