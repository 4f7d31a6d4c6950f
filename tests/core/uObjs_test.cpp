// SPDX-License-Identifier: GPL-3.0-or-later
#include "uDefaults.h"
#include "uOEM.h"
#include "uObjs.h"
#include "uTestFiles.h"
#include "uXml.h"

#include <QBuffer>
#include <QImageWriter>

#include <gtest/gtest.h>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

TAlbumRelease FromXml(const QByteArray& xml)
{
    TAlbumRelease release;
    const auto document = TXmlDocument::Parse(xml);
    if (document)
        LoadAlbumReleaseFromNode(release, document->Root());
    return release;
}

class TCannedFetcher final : public TPictureFetcher {
public:
    explicit TCannedFetcher(QStringList& log) : FLog(log) {}
    bool Fetch(const QString& url, const QString& agent, QByteArray& into) override
    {
        FLog << url + u' ' + agent;
        if (url.endsWith("missing"_L1))
            return false;
        into = url.endsWith("garbage"_L1) ? QByteArray("no picture") : Kit::MakePicture(300, 150, "PNG");
        return true;
    }

private:
    QStringList& FLog;
};

} // namespace

TEST(AlbumRelease, KeysIgnoreCaseAndReadingMakesNoEntry)
{
    TAlbumRelease release;
    EXPECT_TRUE(VarIsNull(release.GetItem2(u"Artist"_s)));
    release.SetItem2(u"Artist"_s, u"gone"_s);
    release.SetItem2(u"artist"_s, TVariant());
    EXPECT_TRUE(release.Items().empty()) << "null is absence";
    EXPECT_TRUE(release.Items().empty());
    release.SetItem2(u"Artist"_s, u"A"_s);
    EXPECT_EQ(release[u"ARTIST"_s].toString(), u"A"_s);
    release.SetItem2(u"ARTIST"_s, QString());
    EXPECT_FALSE(VarIsNull(release[u"artist"_s]));
}

TEST(AlbumRelease, MergeFillsNullsOrOverwritesDifferences)
{
    for (const bool newIsBetter : {false, true}) {
        TAlbumRelease ours;
        ours.SetItem2(u"Artist"_s, u"Old"_s);
        ours.SetItem2(u"Label"_s, TVariant());
        ours.SetItem2(u"Genre"_s, QString());
        ours.SetItem2(u"Year"_s, 1999);
        TAlbumRelease from;
        from.SetItem2(u"ARTIST"_s, u"New"_s);
        from.SetItem2(u"Label"_s, u"L"_s);
        from.SetItem2(u"Genre"_s, u"G"_s);
        from.SetItem2(u"Year"_s, TVariant());
        from.Tracks.resize(2);
        from.AddPicture(cptOther);
        from.ReleaseInternalID = u"id"_s;
        ours.Merge(from, newIsBetter);
        EXPECT_EQ(ours[u"Artist"_s].toString(), newIsBetter ? u"New"_s : u"Old"_s);
        EXPECT_EQ(ours[u"Label"_s].toString(), u"L"_s);
        EXPECT_EQ(ours[u"Genre"_s].toString(), newIsBetter ? u"G"_s : QString()) << "empty is not null";
        EXPECT_EQ(ours[u"Year"_s].toInt(), 1999);
        EXPECT_TRUE(ours.Tracks.empty() && ours.Pictures.empty() && ours.ReleaseInternalID.isEmpty());
    }
}

TEST(AlbumRelease, DisplayValue)
{
    TAlbumRelease release;
    release.SetItem2(u"ReleaseName"_s, u"Title"_s);
    EXPECT_EQ(release.GetDisplayValue(), u" - Title"_s);
    release.SetItem2(u"Artist"_s, u"A"_s);
    release.SetItem2(u"ReleaseYear"_s, 1970);
    EXPECT_EQ(release.GetDisplayValue(), u"A - Title (1970)"_s);
}

TEST(ReleaseDate, YearsAndDates)
{
    const std::pair<QString, QDate> cases[] = {{u"1999"_s, {1999, 1, 1}},
                                               {u"1999-05-02"_s, {1999, 5, 2}},
                                               {u"1999-5-2"_s, {1999, 5, 2}},
                                               {u" 2001 "_s, {2001, 1, 1}},
                                               {u"0"_s, {}},
                                               {u"-5"_s, {}},
                                               {u"nonsense"_s, {}},
                                               {u""_s, {}},
                                               {u"1999-13-01"_s, {}},
                                               {u"02/05/1999"_s, {}},
                                               {u"99999"_s, {}},
                                               {u"1999-05"_s, {}}};
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(ParseReleaseDate(text), expected) << text.toStdString();
}

TEST(Country, IsFoundByCodeNameAndShortForm)
{
    const std::pair<QString, TVariant> cases[] = {{u"U.S.A."_s, u"US"_s},
                                                  {u"United States"_s, u"US"_s},
                                                  {u"Great Britain"_s, u"GB"_s},
                                                  {u"uk"_s, u"GB"_s},
                                                  {u"Germany"_s, u"DE"_s},
                                                  {u"germany"_s, u"DE"_s},
                                                  {u"DE"_s, u"DE"_s},
                                                  {u"de"_s, u"DE"_s},
                                                  {u"S"_s, u"S"_s},
                                                  {u"Northern Ireland"_s, u"N"_s},
                                                  {u"Atlantis"_s, {}},
                                                  {u""_s, {}},
                                                  {u"Empty"_s, {}}};
    for (const auto& [text, expected] : cases)
        EXPECT_TRUE(VarEquals(NormalizeCountry(text), expected)) << text.toStdString();
}

TEST(ReleaseNode, ReadsEveryPart)
{
    Defaults().OEM.AmazonAffiliateName = u"partner"_s;
    const TAlbumRelease release = FromXml(R"(
<release RELEASE_ID="r1" ARTIST_ID="a1" DATAPROVIDER="P" DISCOGS_ID="12345678901" MUSICBRAINZ_ID="mb" ARTIST="Band"
 RELEASE_TITLE="Name" RELEASE_TYPE="CD" ASIN="B1" LABEL="L" CURRENCY="EUR" EAN="4006" CATALOG_NO="C 1"
 RELEASE_DATE="1999-05-02" RELEASE_YEAR="1999" COUNTRY="nowhere" COUNTRY_TEXT="Germany" GENRE="Jazz" NOTES="n" PRICE="9.5">
 <Genres><g>Jazz</g><g/><g>Bop</g></Genres><ReleaseTypes><t>CD</t></ReleaseTypes><Labels><l>L</l></Labels>
 <Credits><c musician="M" credit="Drums"/><c musician="" credit="x"/></Credits>
 <Tracks>
  <track TRACK_TITLE="T1" TRACK_NO="1" TRACK_DURATION_SEC="100" TRACK_DURATION="03:25" TRACK_ID="t1"/>
  <TRACK TRACK_ARTIST="Guest" TRACK_NO="x" TRACK_DURATION_SEC="100" TRACK_DURATION="99:99" DISC_NO="2"/>
  <other/>
 </Tracks>
 <Images><image type="LARGE">http://a/l</image><image>http://a/o</image><image type="back-thumb">b</image></Images>
</release>)");
    EXPECT_EQ(release.ReleaseInternalID, u"r1"_s);
    EXPECT_EQ(release.ArtistInternalID, u"a1"_s);
    const std::pair<QString, TVariant> items[] = {
        {u"DataProvider"_s, u"P"_s},
        {u"DiscogsID"_s, qint64(12345678901)},
        {u"MusicBrainzID"_s, u"mb"_s},
        {u"ReleaseName"_s, u"Name"_s},
        {u"MediaType"_s, u"CD"_s},
        {u"Barcode"_s, u"4006"_s},
        {u"CatalogNO"_s, u"C 1"_s},
        {u"ReleaseYear"_s, 1999},
        {u"CountryCode"_s, u"DE"_s},
        {u"Comments"_s, u"n"_s},
        {u"DiscCount"_s, 1},
        {u"Price"_s, 9.5},
        {u"BuyNowLink"_s, u"https://www.amazon.com/exec/obidos/ASIN/B1/partner"_s}};
    for (const auto& [key, expected] : items)
        EXPECT_TRUE(VarEquals(release[key], expected)) << key.toStdString();
    EXPECT_EQ(release.Genres, QStringList({u"Jazz"_s, u"Bop"_s}));
    ASSERT_EQ(release.Credits.size(), 1u);
    ASSERT_EQ(release.Tracks.size(), 2u);
    EXPECT_EQ(release.Tracks[0].DurationSec, 12300) << "a time of day: three hours and 25 minutes";
    EXPECT_EQ(release.Tracks[0].TrackArtist, u"Band"_s);
    EXPECT_EQ(release.Tracks[1].DurationSec, 100);
    EXPECT_EQ(release.Tracks[1].TrackNo, 0);
    EXPECT_EQ(release.Tracks[1].DiscNo, 2);
    ASSERT_EQ(release.Pictures.size(), 3u);
    EXPECT_EQ(release.Pictures[0]->PictureType(), cptFrontLarge);
    EXPECT_EQ(release.Pictures[1]->PictureType(), cptOther);
    EXPECT_EQ(release.Pictures[2]->URL(), u"b"_s);
}

TEST(ReleaseNode, AbsentAttributesKeepOrClear)
{
    TAlbumRelease release;
    release.SetItem2(u"Label"_s, u"kept"_s);
    release.SetItem2(u"DiscogsID"_s, 5);
    release.SetItem2(u"CountryCode"_s, u"FR"_s);
    release.SetItem2(u"ReleaseYear"_s, 1980);
    release.SetItem2(u"DiscCount"_s, 3);
    release.Genres = {u"kept"_s};
    release.AddPicture(cptOther);
    const auto document = TXmlDocument::Parse("<release RELEASE_YEAR='?'><Images><image/></Images></release>");
    LoadAlbumReleaseFromNode(release, document->Root());
    EXPECT_EQ(release[u"Label"_s].toString(), u"kept"_s);
    EXPECT_TRUE(VarIsNull(release[u"DiscogsID"_s]));
    EXPECT_TRUE(VarIsNull(release[u"CountryCode"_s]));
    EXPECT_EQ(release[u"ReleaseYear"_s].toInt(), 1980);
    EXPECT_EQ(release[u"DiscCount"_s].toInt(), 3);
    EXPECT_EQ(release.Genres, QStringList({u"kept"_s}));
    EXPECT_EQ(release.Pictures.size(), 2u);
    EXPECT_TRUE(VarIsNull(release[u"BuyNowLink"_s]));
}

TEST(CoverPicture, KnowsWhetherItHoldsAnImage)
{
    const QByteArray jpeg = Kit::MakePicture(40, 30, "JPG");
    TCoverPicture picture;
    EXPECT_FALSE(picture.HasImage());
    EXPECT_TRUE(picture.LoadFromBytes(jpeg));
    EXPECT_EQ(picture.Size(), QSize(40, 30));
    EXPECT_EQ(picture.Format(), "jpeg");
    EXPECT_TRUE(picture.Bytes() == jpeg);
    for (const QByteArray& bad : {QByteArray(), QByteArray("GIF89a"), QByteArray(1000, 'x'), jpeg.left(10)}) {
        EXPECT_FALSE(picture.LoadFromBytes(bad));
        EXPECT_FALSE(picture.HasImage());
    }
}

TEST(Thumbnail, KeepsAspectAndFormatAndDropsTexts)
{
    const std::tuple<const char*, QSize, QSize> cases[] = {{"JPG", {600, 300}, {500, 250}},
                                                           {"PNG", {100, 300}, {83, 250}},
                                                           {"PNG", {10, 10}, {250, 250}},
                                                           {"BMP", {250, 250}, {250, 250}}};
    for (const auto& [format, size, expected] : cases) {
        TCoverPicture thumb;
        ASSERT_TRUE(thumb.LoadFromBytes(MakeThumbnail(Kit::MakePicture(size.width(), size.height(), format), 250)));
        EXPECT_EQ(thumb.Size(), expected);
        TCoverPicture original;
        original.LoadFromBytes(Kit::MakePicture(size.width(), size.height(), format));
        EXPECT_EQ(thumb.Format(), original.Format());
    }
    QImage image(300, 300, QImage::Format_RGB32);
    image.fill(Qt::red);
    image.setText(u"Comment"_s, QString(40000, u'x'));
    QByteArray commented;
    QBuffer buffer(&commented);
    buffer.open(QIODevice::WriteOnly);
    ASSERT_TRUE(image.save(&buffer, "JPG"));
    ASSERT_GT(commented.size(), 40000);
    EXPECT_LT(MakeThumbnail(commented, 250).size(), 10000);
    EXPECT_TRUE(MakeThumbnail({}, 250).isEmpty());
    EXPECT_TRUE(MakeThumbnail("no picture", 250).isEmpty());
    EXPECT_TRUE(MakeThumbnail(Kit::MakePicture(5, 5, "PNG"), 0).isEmpty());
}

TEST(DownloadAllPics, FetchesLargeOnesAndMakesTheirThumbs)
{
    QStringList log;
    SetPictureFetcher([&] { return std::make_unique<TCannedFetcher>(log); });
    PictureUserAgents() = {u"agent"_s};
    Defaults().LargeWidth = 120;
    Defaults().LargeHeight = 110;
    TAlbumRelease release;
    const std::pair<TCoverPictureType, QString> pictures[] = {
        {cptFrontThumb, u"u/thumb"_s}, {cptFrontLarge, u"u/front"_s}, {cptBackLarge, u"u/garbage"_s},
        {cptOther, u"u/missing"_s},    {cptMediaLarge, u"u/media"_s}, {cptOther, u"u/other"_s}};
    for (const auto& [type, url] : pictures)
        release.AddPicture(type).SetURL(url);
    release.DownloadAllPics({cptFrontThumb, cptFrontLarge, cptBackLarge, cptMediaLarge, cptOther});
    EXPECT_EQ(log, QStringList({u"u/front agent"_s, u"u/garbage agent"_s, u"u/missing agent"_s, u"u/other agent"_s}));
    EXPECT_EQ(release.Pictures.size(), 6u);
    EXPECT_EQ(release.GetPicByType(cptFrontThumb)->Size(), QSize(120, 110)) << "the aspect is not kept here";
    EXPECT_FALSE(release.Pictures[2]->HasImage());
    EXPECT_TRUE(release.Pictures[5]->HasImage());
    log.clear();
    release.DownloadAllPics({cptOther});
    EXPECT_EQ(log.size(), 2);
    SetPictureFetcher({});
    Defaults() = MakeDefaults();
}

} // namespace Kestrune
