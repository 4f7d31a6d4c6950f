// SPDX-License-Identifier: GPL-3.0-or-later
#include "uHostLimiter.h"
#include "uInfoGrabber.h"
#include "uKRNParams.h"
#include "uReleaseFetch.h"
#include "uTestFiles.h"
#include "uWebServer.h"
#include "uXml.h"

#include <gtest/gtest.h>

using namespace Kestrune;
using namespace Qt::StringLiterals;

namespace {

const QByteArray Copying = "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform'>"
                           "<xsl:template match='/'><xsl:copy-of select='.'/></xsl:template></xsl:stylesheet>";

class ReleaseFetchTest : public testing::Test {
protected:
    ReleaseFetchTest()
    {
        InstallPictureFetcher();
        HostLimiter().Clear();
        Dir.Write(u"copy.xsl"_s, Copying);
        Dir.Write(u"infograbber.xml"_s, QByteArray(R"(<G>
            <Services><service name="s"><getrelease url="URL/full?id=%RELEASE_ID%" Transform="copy.xsl"/></service></Services>
            <BarcodeSearch>
              <search ServiceName="s" url="URL/search?b=%BARCODE%" Transform="copy.xsl" NeedToDownloadExtraInfo="true"/>
              <search ServiceName="none" url="URL/search" Transform="copy.xsl" NeedToDownloadExtraInfo="true"/>
              <search ServiceName="json" url="URL/json" Transform="copy.xsl" JSON="true"/>
              <search ServiceName="page" url="URL/1251" Transform="copy.xsl" CodePage="1251"/>
              <search ServiceName="nopage" url="URL/1251" Transform="copy.xsl" CodePage="4711"/>
              <search ServiceName="nosheet" url="URL/search" Transform="other.xsl"/>
            </BarcodeSearch></G>)")
                                            .replace("URL", Server.URL({}).toUtf8()));
        Grabber.Parse(Dir.File(u"infograbber.xml"_s));
        Server.Serve("/search", {.Body = "<SearchResults><other/><RELEASE RELEASE_ID='7' ARTIST='Short'/>"
                                         "<Release RELEASE_ID='8'/></SearchResults>"});
        Server.Serve("/full",
                     {.Body = "<x><searchresults><Release RELEASE_TITLE='Long'><Images><Image type='large'>" +
                              Server.URL(u"/cover"_s).toUtf8() +
                              "</Image></Images><Tracks><Track TRACK_TITLE='t' TRACK_NO='1' SIDE='B'/></Tracks>"
                              "</Release></searchresults></x>",
                      .Headers = {}});
        Server.Serve("/cover", {.Body = Kit::MakePicture(300, 200, "JPG")});
        Server.Serve("/1251", {.Body = "<SearchResults><Release ARTIST='\xCC\xE8\xF0'/></SearchResults>"});
    }

    const TInfoGrabberServiceAction& Action(const QString& name)
    {
        return *Grabber.GetSearchByType(stBarcode)->GetItemByName(name);
    }

    Kit::TTempDir Dir;
    Kit::TWebServer Server;
    TInfoGrabber Grabber;
    TKRNParams Params;
};

TEST_F(ReleaseFetchTest, ASummaryIsFollowedByItsFullRecord)
{
    Params.Add(u"BARCODE"_s, u"12"_s);
    std::unique_ptr<TAlbumRelease> release;
    ASSERT_TRUE(TReleaseFetch(Grabber).FetchRelease(Action(u"s"_s), Params, release));
    ASSERT_TRUE(release);
    EXPECT_EQ(VarToStr(release->GetItem2(u"ReleaseName"_s)), u"Long"_s);
    EXPECT_TRUE(VarIsNull(release->GetItem2(u"Artist"_s))) << "only the full record is kept";
    ASSERT_EQ(release->Tracks.size(), 1U);
    EXPECT_EQ(release->Tracks[0].Side, u"B"_s);
    ASSERT_TRUE(release->GetPicByType(cptFrontLarge));
    EXPECT_EQ(release->GetPicByType(cptFrontLarge)->Size(), QSize(300, 200));
    ASSERT_TRUE(release->GetPicByType(cptFrontThumb)) << "made from the large picture";
    const auto log = Server.Log();
    ASSERT_EQ(log.size(), 3);
    EXPECT_EQ(log[0].Target, "/search?b=12");
    EXPECT_EQ(log[1].Target, "/full?id=7");
    EXPECT_GE(log[1].Time - log[0].Time, std::chrono::milliseconds(TReleaseFetch::DetailPause));
}

TEST_F(ReleaseFetchTest, ListsAllHitsAsTheyAre)
{
    TAlbumReleases hits;
    ASSERT_TRUE(TReleaseFetch(Grabber).FetchHits(Action(u"s"_s), Params, hits));
    ASSERT_EQ(hits.size(), 2U);
    EXPECT_EQ(hits[0]->ReleaseInternalID, u"7"_s);
    EXPECT_EQ(hits[1]->ReleaseInternalID, u"8"_s);
}

TEST_F(ReleaseFetchTest, TellsMissesFromFailures)
{
    TReleaseFetch fetch(Grabber);
    std::unique_ptr<TAlbumRelease> release;
    EXPECT_TRUE(fetch.FetchRelease(Action(u"none"_s), Params, release)) << "a summary without a service stays";
    EXPECT_TRUE(release);
    Server.Serve("/json", {.Body = R"({"SearchResults":{"Release":{"a":1}}})"});
    EXPECT_TRUE(fetch.FetchRelease(Action(u"json"_s), Params, release));
    EXPECT_TRUE(release);
    Server.Serve("/json", {.Body = "<html>"});
    EXPECT_TRUE(fetch.FetchRelease(Action(u"json"_s), Params, release));
    EXPECT_FALSE(release);
    EXPECT_FALSE(fetch.Error().isEmpty());
    Server.Serve("/json", {.Body = R"({"250":1})"});
    EXPECT_FALSE(fetch.FetchRelease(Action(u"json"_s), Params, release));
    Server.Serve("/json", {.Status = 404});
    EXPECT_FALSE(fetch.FetchRelease(Action(u"json"_s), Params, release));
    EXPECT_TRUE(fetch.FetchRelease(Action(u"page"_s), Params, release));
    ASSERT_TRUE(release);
    EXPECT_EQ(VarToStr(release->GetItem2(u"Artist"_s)), u"Мир"_s);
    EXPECT_FALSE(fetch.FetchRelease(Action(u"nopage"_s), Params, release));
    EXPECT_EQ(fetch.Error(), u"Invalid encoding"_s);
    EXPECT_FALSE(fetch.FetchRelease(Action(u"nosheet"_s), Params, release));
    EXPECT_TRUE(fetch.Error().contains(u"other.xsl"_s));
}

TEST_F(ReleaseFetchTest, AServiceThatKnowsNothingDidNotFail)
{
    const std::pair<Kit::TWebAnswer, bool> rows[] = {
        {{.Status = 404, .Body = "<SearchResults unknown='true'/>"}, true},
        {{.Status = 400, .Body = "<SearchResults unknown='true'/>"}, true},
        {{.Status = 404, .Body = "<SearchResults/>"}, false},
        {{.Status = 500, .Body = "<SearchResults unknown='true'/>"}, false},
    };
    for (const auto& [answer, isGood] : rows) {
        Server.Serve("/search", answer);
        TAlbumReleases hits;
        TReleaseFetch fetch(Grabber);
        EXPECT_EQ(fetch.FetchHits(Action(u"s"_s), Params, hits), isGood) << answer.Status;
        EXPECT_EQ(fetch.Error().isEmpty(), isGood);
        EXPECT_TRUE(hits.empty());
    }
}

} // namespace
