// SPDX-License-Identifier: GPL-3.0-or-later
#include "uDefaults.h"
#include "uKRNParams.h"
#include "uServiceAnswers.h"
#include "uServicesKit.h"

#include <QDir>

#include <gtest/gtest.h>

using namespace Kestrune;
using namespace Kestrune::Kit;
using namespace Qt::StringLiterals;

namespace {

const char16_t* PictureName(TCoverPictureType type)
{
    constexpr const char16_t* names[] = {u"thumb",       u"large",       u"back-thumb", u"back-large",
                                         u"media-thumb", u"media-large", u"other"};
    return names[static_cast<int>(type)];
}

QString Told(const TAlbumTrack& track, const QString& releaseArtist)
{
    QString line = u"%1.%2%3 %4"_s.arg(track.DiscNo)
                       .arg(track.TrackNo)
                       .arg(track.Side.isEmpty() ? QString() : u' ' + track.Side)
                       .arg(track.TrackName);
    if (track.TrackArtist != releaseArtist)
        line += u" by "_s + track.TrackArtist;
    if (track.DurationSec > 0)
        line += u" (%1)"_s.arg(track.DurationSec);
    if (!track.TrackInternalID.isEmpty())
        line += u" #"_s + track.TrackInternalID;
    return line;
}

// All that a release says, a line each.
QString Told(const TAlbumRelease& release)
{
    QStringList lines;
    const auto add = [&](const QString& name, const QString& value) {
        if (!value.isEmpty())
            lines.append(name + u": "_s + value);
    };
    add(u"id"_s, release.ReleaseInternalID);
    add(u"artist id"_s, release.ArtistInternalID);
    for (const auto& [key, value] : release.Items()) {
        if (!VarIsNull(value))
            lines.append(key + u": "_s + VarToStr(value));
    }
    add(u"genres"_s, release.Genres.join(u", "_s));
    add(u"types"_s, release.MediaTypes.join(u", "_s));
    add(u"labels"_s, release.Labels.join(u", "_s));
    for (const TAlbumCredit& credit : release.Credits)
        lines.append(u"credit: %1, %2"_s.arg(credit.Musician, credit.Credit));
    for (const TAlbumTrack& track : release.Tracks)
        lines.append(Told(track, TextOf(release, u"Artist"_s)));
    for (const auto& picture : release.Pictures)
        add(QString::fromUtf16(PictureName(picture->PictureType())), picture->URL());
    return lines.join(u'\n');
}

QString Told(const TAlbumReleases& releases)
{
    QStringList texts;
    for (const auto& release : releases)
        texts.append(Told(*release));
    return texts.join(u"\n--\n"_s);
}

QString ToldTracks(const TAlbumRelease& release)
{
    QStringList lines;
    for (const TAlbumTrack& track : release.Tracks)
        lines.append(Told(track, TextOf(release, u"Artist"_s)));
    return lines.join(u'\n');
}

// As written in the tests: the texts begin and end with a line break.
std::string Trimmed(const char* text) { return QString::fromUtf8(text).trimmed().toStdString(); }

// The definitions

TEST(Services, EveryStylesheetIsThereAndUsed)
{
    QStringList used;
    const auto check = [&](const TInfoGrabberServiceAction& action) {
        SCOPED_TRACE(action.RawURL().toStdString());
        const TAnswerDocument document = TAnswerReader(Services(), action, {}).ReadXML("<Data/>");
        EXPECT_EQ(document.Fault, afNone) << document.Reason.toStdString();
        EXPECT_TRUE(action.RawURL().startsWith(u"https://"_s));
        EXPECT_TRUE(Services().InfoGrabberServices().GetServiceByName(action.Name()));
        used.append(action.Tranform());
    };
    for (int i = 0; i < Services().InfoGrabberServices().Count(); ++i) {
        const TInfoGrabberService& service = Services().InfoGrabberServices().GetItem(i);
        ASSERT_TRUE(service.GetActionByType(satGetRelease)) << service.Name().toStdString();
        EXPECT_GE(service.WaitBetweenRequests(), 1000);
        check(*service.GetActionByType(satGetRelease));
    }
    for (int i = 0; i < Services().Count(); ++i) {
        for (int n = 0; n < Services().GetItem(i).Count(); ++n)
            check(Services().GetItem(i).GetItem(n));
    }
    used.removeDuplicates();
    used.sort();
    EXPECT_EQ(used, QDir(ServicesFolder()).entryList({u"*.xsl"_s}, QDir::Files, QDir::Name));
}

QString NamesIn(TInfoGrabberSearchType type)
{
    QStringList names;
    const TInfoGrabberSearch* search = Services().GetSearchByType(type);
    for (int i = 0; search && i < search->Count(); ++i)
        names.append(search->GetItem(i).Name());
    return names.join(u' ');
}

TEST(Services, SearchesListTheirServicesInOneOrder)
{
    EXPECT_EQ(NamesIn(stBarcode), u"musicbrainz itunes discogs"_s);
    EXPECT_EQ(NamesIn(stCatNo), u"musicbrainz discogs"_s);
    EXPECT_EQ(NamesIn(stRelease), u"musicbrainz itunes discogs lastfm"_s);
    EXPECT_EQ(NamesIn(stArtist), NamesIn(stRelease)) << "one choice by position serves all three";
    EXPECT_EQ(NamesIn(stArtistAndRelease), NamesIn(stRelease));
    EXPECT_EQ(NamesIn(stCDDB), u"musicbrainz"_s);
    EXPECT_EQ(NamesIn(stASIN), u"musicbrainz"_s);
}

TEST(Services, WhatIsChosenAtFirstNeedsNoKey)
{
    const TDefaults settings = MakeDefaults();
    for (const auto& [type, mask] :
         {std::pair(stBarcode, settings.SearchByBarcode), std::pair(stRelease, settings.SearchByArtistRelease),
          std::pair(stCDDB, settings.SearchByCD)}) {
        const TInfoGrabberSearch& search = *Services().GetSearchByType(type);
        for (int i = 0; i < search.Count(); ++i) {
            if (mask & (1 << i)) {
                EXPECT_TRUE(search.GetItem(i).MissingKeys().isEmpty()) << search.GetItem(i).Name().toStdString();
            }
        }
    }
    EXPECT_FALSE(SearchOf(u"discogs"_s).MissingKeys().isEmpty());
    EXPECT_FALSE(RecordOf(u"lastfm"_s).MissingKeys().isEmpty());
}

struct TURLRow {
    TInfoGrabberSearchType Type;
    const char16_t* Service;
    const char16_t* Expected;
};

TEST(Services, HardValuesReachTheServiceAsTheyAre)
{
    TKRNParams params;
    params.Add(u"DISCOGS_API_KEY"_s, u"k"_s);
    params.Add(u"DISCOGS_API_SECRET_KEY"_s, u"s"_s);
    params.Add(u"LAST_FM_API_KEY"_s, u"l"_s);
    params.Add(u"BARCODE"_s, u"0 123"_s);
    params.Add(u"CATNO"_s, u"A-1/2"_s);
    params.Add(u"ARTIST"_s, u"Käse & \"Brot\""_s);
    params.Add(u"RELEASE_TITLE"_s, u"1+1 (12\" Mix)"_s);
    params.Add(u"ASIN"_s, u"B00?"_s);
    params.AddQueryTwins();
    params.Add(u"DISCID"_s, u"DNlrvGROpc28aJtprTzehV.XE7o-"_s);
    params.Add(u"TOC_DECIMAL"_s, u"1+2+4000+150+2000"_s);
    const TURLRow rows[] = {
        {stBarcode, u"musicbrainz", u"https://musicbrainz.org/ws/2/release/?query=barcode:0+123&limit=20"},
        {stBarcode, u"itunes", u"https://itunes.apple.com/lookup?upc=0+123&entity=album"},
        {stBarcode, u"discogs",
         u"https://api.discogs.com/database/search?type=release&barcode=0+123&per_page=20&key=k&secret=s"},
        {stCatNo, u"musicbrainz", u"https://musicbrainz.org/ws/2/release/?query=catno:%22A%5C-1%5C%2F2%22&limit=20"},
        {stArtist, u"musicbrainz",
         u"https://musicbrainz.org/ws/2/release/?query=artist:%22K%C3%A4se+%5C%26+%5C%22Brot%5C%22%22&limit=20"},
        {stArtist, u"lastfm",
         u"https://ws.audioscrobbler.com/2.0/"
         u"?method=artist.gettopalbums&artist=K%C3%A4se+%26+%22Brot%22&limit=30&api_key=l&format=json"},
        {stArtistAndRelease, u"musicbrainz",
         u"https://musicbrainz.org/ws/2/release/?query=artist:%22K%C3%A4se+%5C%26+%5C%22Brot%5C%22%22"
         u"+AND+release:%221%5C+1+%5C(12%5C%22+Mix%5C)%22&limit=20"},
        {stASIN, u"musicbrainz", u"https://musicbrainz.org/ws/2/release/?query=asin:B00%5C%3F&limit=20"},
        {stCDDB, u"musicbrainz",
         u"https://musicbrainz.org/ws/2/discid/DNlrvGROpc28aJtprTzehV.XE7o-?toc=1+2+4000+150+2000"
         u"&inc=artist-credits+labels+recordings&cdstubs=no"},
    };
    const TDefaults presets = MakeDefaults();
    for (const TURLRow& row : rows) {
        const auto* action = Services().GetSearchByType(row.Type)->GetItemByName(QString::fromUtf16(row.Service));
        EXPECT_EQ(params.ReplaceWithParams(action->URL(presets)), QString::fromUtf16(row.Expected));
    }
}

TEST(Services, PresetsReachTheSearchesThatKnowThem)
{
    TDefaults presets = MakeDefaults();
    presets.MusicBrainzCountry = presets.DiscogsCountry = u"DE"_s;
    presets.MusicBrainzMediaType = presets.DiscogsMediaType = 1;
    presets.MusicBrainzResultsPerPage = presets.DiscogsResultsPerPage = 33;
    for (const TInfoGrabberSearchType type : {stBarcode, stArtist, stRelease, stArtistAndRelease, stCatNo}) {
        const TInfoGrabberSearch& search = *Services().GetSearchByType(type);
        const QString brainz = search.GetItemByName(u"musicbrainz"_s)->URL(presets);
        EXPECT_TRUE(brainz.contains(u"?query=(format:CD OR "_s) && brainz.contains(u" AND country:de AND "_s));
        EXPECT_TRUE(brainz.contains(u"&limit=33"_s));
        const QString discogs = search.GetItemByName(u"discogs"_s)->URL(presets);
        EXPECT_TRUE(discogs.contains(u"&country=Germany&format=CD"_s) && discogs.contains(u"&per_page=33&"_s));
    }
}

TEST(Services, AnswersWithoutReleasesGiveNoHits)
{
    const char* answers[] = {
        "<html><head><title>503</title></head><body><p>Busy</p></body></html>",
        R"(<metadata xmlns="http://musicbrainz.org/ns/mmd-2.0#"><release-list count="0" offset="0"/></metadata>)",
        "<error><text>Not Found</text></error>",
        R"({"resultCount":0,"results":[]})",
        R"({"pagination":{"items":0,"urls":{}},"results":[]})",
        R"({"message":"Release not found."})",
        R"({"results":{"opensearch:totalResults":"0","albummatches":{"album":[]}}})",
        R"({"topalbums":{"album":[],"@attr":{"total":"0"}}})",
        R"({"error":6,"message":"Album not found"})",
        "null",
        "[]",
    };
    for (const QString& service : {u"musicbrainz"_s, u"itunes"_s, u"discogs"_s, u"lastfm"_s}) {
        for (const TInfoGrabberServiceAction* action : {&SearchOf(service), &RecordOf(service)}) {
            for (const QByteArray answer : answers) {
                if (action->JSON() || answer.startsWith('<')) {
                    EXPECT_TRUE(Loaded(*action, answer).empty()) << service.toStdString() << answer.constData();
                }
            }
        }
    }
}

// MusicBrainz

QByteArray Brainz(const QByteArray& inner)
{
    return R"(<?xml version="1.0"?><metadata xmlns="http://musicbrainz.org/ns/mmd-2.0#" )"
           R"(xmlns:ns2="http://musicbrainz.org/ns/ext#-2.0">)" +
           inner + "</metadata>";
}

TEST(ServicesMusicBrainz, HitsOfASearch)
{
    const QByteArray answer = Brainz(R"(<release-list count="3" offset="0">
      <release id="r1" ns2:score="100"><title>Two Sides</title>
        <artist-credit>
          <name-credit joinphrase=" feat. "><name>The Foo</name><artist id="a1"><name>Foo</name></artist></name-credit>
          <name-credit><artist id="a2"><name>Bar &amp; Baz</name></artist></name-credit></artist-credit>
        <date>1999-05</date><country>XE</country><barcode></barcode><asin>B01</asin>
        <label-info-list>
          <label-info><catalog-number>[none]</catalog-number><label id="l0"><name>[no label]</name></label></label-info>
          <label-info><catalog-number>C 1</catalog-number><label id="l1"><name>Lab</name></label></label-info>
          <label-info><catalog-number>C 2</catalog-number><label id="l1"><name>Lab</name></label></label-info>
          <label-info><label id="l2"><name>Other</name></label></label-info></label-info-list>
        <medium-list count="3"><track-count>30</track-count>
          <medium><track-list count="9"/></medium>
          <medium><format>12" Vinyl</format><track-list count="9"/></medium>
          <medium><format>DVD-Video</format><track-list count="12"/></medium>
          <medium><format>7" Vinyl</format></medium></medium-list></release>
      <release id="r2"><title>Dated</title><date>2001-02-03</date><country>DE</country><barcode>4001</barcode></release>
      <release id="r3"><title>Undated</title><date>????-07</date></release>
    </release-list>)");
    EXPECT_EQ(Told(Loaded(SearchOf(u"musicbrainz"_s), answer)).toStdString(), Trimmed(R"(
id: r1
artist id: a1
artist: The Foo feat. Bar & Baz
asin: B01
buynowlink: https://www.amazon.com/exec/obidos/ASIN/B01/
catalogno: C 1
dataprovider: MusicBrainz
disccount: 4
label: Lab
mediatype: Vinyl
musicbrainzid: r1
releasename: Two Sides
releaseyear: 1999
types: Vinyl, DVD
labels: Lab, Other
thumb: https://coverartarchive.org/release/r1/front-250
--
id: r2
barcode: 4001
countrycode: DE
dataprovider: MusicBrainz
disccount: 1
musicbrainzid: r2
releasedate: 2001-02-03
releasename: Dated
releaseyear: 2001
thumb: https://coverartarchive.org/release/r2/front-250
--
id: r3
dataprovider: MusicBrainz
disccount: 1
musicbrainzid: r3
releasename: Undated
thumb: https://coverartarchive.org/release/r3/front-250
)"));
}

TEST(ServicesMusicBrainz, ADiscIsAnsweredInTwoShapes)
{
    const QByteArray list = R"(<release-list count="1"><release id="r1"><title>T</title>
        <cover-art-archive><front>false</front><back>false</back></cover-art-archive>
        <medium-list count="1"><medium><position>1</position><format>Enhanced CD</format>
          <disc-list count="1"><disc id="x"><sectors>1</sectors></disc></disc-list>
          <track-list count="1"><track id="t1"><position>1</position><number>1</number><length>61500</length>
            <recording id="q1"><title>Song</title><length>60000</length></recording></track></track-list>
        </medium></medium-list></release></release-list>)";
    const std::string expected = Trimmed(R"(
id: r1
dataprovider: MusicBrainz
disccount: 1
mediatype: CD
musicbrainzid: r1
releasename: T
types: CD
1.1 Song (62) #q1
)");
    const TInfoGrabberServiceAction& action = *Services().GetSearchByType(stCDDB)->GetItemByName(u"musicbrainz"_s);
    EXPECT_EQ(Told(Loaded(action, Brainz("<disc id='x'>" + list + "</disc>"))).toStdString(), expected);
    EXPECT_EQ(Told(Loaded(action, Brainz(list))).toStdString(), expected) << "found by the lengths of its tracks";
}

TEST(ServicesMusicBrainz, TheFullRecord)
{
    auto hits = Loaded(SearchOf(u"musicbrainz"_s),
                       Brainz("<release-list><release id='r1'><title>Short</title><country>SE</country>"
                              "<date>1999-05-01</date></release></release-list>"));
    ASSERT_EQ(hits.size(), 1U);
    const QByteArray answer = Brainz(R"(<release id="r1"><title>Two Sides</title>
      <artist-credit><name-credit><artist id="a1"><name>Foo</name>
        <genre-list><genre count="9"><name>polka</name></genre></genre-list></artist></name-credit></artist-credit>
      <release-group id="g1" type="Album"><primary-type>Album</primary-type>
        <genre-list><genre count="1"><name>progressive rock</name></genre><genre count="5"><name>r&amp;b</name></genre>
          <genre count="0"><name>noise</name></genre></genre-list></release-group>
      <date>1999-05-01</date><country>SE</country>
      <cover-art-archive><artwork>true</artwork><front>true</front><back>true</back></cover-art-archive>
      <medium-list count="2">
        <medium><position>1</position><format>12" Vinyl</format>
          <pregap id="p"><position>0</position><number>0</number><recording id="q0"><title>Hidden</title></recording></pregap>
          <track-list count="4" offset="0">
            <track id="t1"><position>1</position><number>A</number><title>Side One</title><length>3725400</length>
              <artist-credit><name-credit joinphrase=" vs "><artist id="a1"><name>Foo</name></artist></name-credit>
                <name-credit><artist id="a9"><name>Guest</name></artist></name-credit></artist-credit>
              <recording id="q1"><title>Side 1 (original)</title>
                <relation-list target-type="artist">
                  <relation type="instrument"><attribute-list><attribute>guest</attribute>
                    <attribute credited-as="axe">guitar</attribute><attribute>bass</attribute></attribute-list>
                    <artist id="a3"><name>Pat P</name></artist></relation>
                  <relation type="vocal"><artist id="a1"><name>Foo</name></artist></relation></relation-list>
                <relation-list target-type="work"><relation type="performance"><work id="w1"><title>W</title>
                  <relation-list target-type="artist"><relation type="composer"><artist id="a4"><name>Com P</name></artist>
                  </relation></relation-list></work></relation></relation-list></recording></track>
            <track id="t2"><position>2</position><number>B1</number><recording id="q2"><title>Two</title>
                <length>1499</length>
                <artist-credit><name-credit><artist id="a1"><name>Foo</name></artist></name-credit></artist-credit>
                <relation-list target-type="artist"><relation type="instrument"><attribute-list>
                  <attribute>guitar</attribute></attribute-list><artist id="a3"><name>Pat P</name></artist></relation>
                </relation-list></recording></track>
            <track id="t3"><position>3</position><number>AA</number><recording id="q3"><title>Three</title></recording></track>
          </track-list></medium>
        <medium><position>3</position><format>Digital Media</format>
          <track-list><track id="t4"><position>1</position><number>1</number><recording id="q4"><title>Four</title>
            <length>0</length></recording></track></track-list>
          <data-track-list><track id="t5"><position>2</position><recording id="q5"><title>Film</title></recording></track>
          </data-track-list></medium>
      </medium-list>
      <relation-list target-type="artist">
        <relation type="producer"><attribute-list><attribute>executive</attribute><attribute>co</attribute></attribute-list>
          <artist id="a5"><name>Pro D</name></artist></relation>
        <relation type="misc"><artist id="a6"><name></name></artist></relation></relation-list>
      <relation-list target-type="url"><relation type="discogs"><target>u</target></relation></relation-list>
    </release>)");
    EXPECT_EQ(Told(Loaded(RecordOf(u"musicbrainz"_s), answer, std::move(hits.front()))).toStdString(), Trimmed(R"(
id: r1
artist id: a1
artist: Foo
countrycode: SE
dataprovider: MusicBrainz
disccount: 2
genre: R&B
mediatype: Vinyl
musicbrainzid: r1
releasedate: 1999-05-01
releasename: Two Sides
releaseyear: 1999
genres: R&B, Progressive Rock
types: Vinyl, Digital
credit: Pat P, Guitar
credit: Pat P, Bass
credit: Foo, Vocal
credit: Com P, Composer
credit: Pro D, Executive co-producer
1.1 A Side One by Foo vs Guest (3725) #q1
1.2 B Two (1) #q2
1.3 AA Three #q3
3.1 Four #q4
thumb: https://coverartarchive.org/release/r1/front-250
large: https://coverartarchive.org/release/r1/front-1200
back-large: https://coverartarchive.org/release/r1/back-1200
)"));
}

TEST(ServicesMusicBrainz, KnowsTheMedia)
{
    const std::pair<const char*, const char*> rows[] = {
        {"CD", "CD"},
        {"8cm CD", "CD"},
        {"CD-R", "CD"},
        {"SHM-CD", "CD"},
        {"Blu-spec CD", "CD"},
        {"HDCD", "CD"},
        {"Hybrid SACD (CD layer)", "SACD"},
        {"SACD", "SACD"},
        {"DualDisc (DVD-Audio side)", "DualDisc"},
        {"7&quot; Vinyl", "Vinyl"},
        {"Flexi-disc", "Vinyl"},
        {"Cassette", "Cassette"},
        {"Microcassette", "Cassette"},
        {"Digital Media", "Digital"},
        {"DVD", "DVD"},
        {"DVD-Audio", "DVD"},
        {"Blu-ray-R", "Blu-ray"},
        {"VCD", "VCD"},
        {"MiniDisc", "MiniDisc"},
    };
    for (const auto& [format, type] : rows) {
        const auto found =
            Loaded(RecordOf(u"musicbrainz"_s), Brainz(QByteArray("<release id='r'><medium-list><medium><format>") +
                                                      format + "</format></medium></medium-list></release>"));
        ASSERT_EQ(found.size(), 1U);
        EXPECT_EQ(TextOf(*found[0], u"MediaType"_s), QString::fromUtf8(type)) << format;
    }
}

TEST(ServicesMusicBrainz, LargeSetsStayWithinTheBoundsOfATransformation)
{
    QByteArray media;
    for (int disc = 1; disc <= 60; ++disc) {
        media += "<medium><position>" + QByteArray::number(disc) + "</position><format>CD</format><track-list>";
        for (int track = 1; track <= 40; ++track) {
            media += "<track><number>" + QByteArray::number(track) +
                     "</number><recording id='q'><title>t</title><length>1000</length><artist-credit><name-credit>"
                     "<artist id='a'><name>n</name></artist></name-credit></artist-credit>"
                     "<relation-list target-type='artist'>";
            for (const QByteArray role : {"mix", "producer", "engineer"})
                media += "<relation type='" + role + "'><artist><name>N" + QByteArray::number(track) +
                         "</name></artist></relation>";
            media += "</relation-list></recording></track>";
        }
        media += "</track-list></medium>";
    }
    const auto found = Loaded(RecordOf(u"musicbrainz"_s),
                              Brainz("<release id='r'><medium-list>" + media + "</medium-list></release>"));
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0]->Tracks.size(), 2400U);
    EXPECT_EQ(found[0]->Credits.size(), 120U);
}

// iTunes

TEST(ServicesITunes, HitsAndTheFullRecord)
{
    const QByteArray album =
        R"({"wrapperType":"collection","collectionType":"Album","artistId":5,"collectionId":7,"artistName":"Foo",
            "collectionName":"Best <of>","artworkUrl60":"https://i.invalid/60x60bb.jpg",
            "artworkUrl100":"https://i.invalid/100x100bb.jpg","collectionPrice":9.99,"currency":"EUR","country":"DEU",
            "releaseDate":"2013-05-17T07:00:00Z","primaryGenreName":"Pop","trackCount":2})";
    const QByteArray search = R"({"resultCount":3,"results":[)" + album +
                              R"(,{"wrapperType":"track","kind":"song","collectionId":9,"trackName":"No album"},
            {"wrapperType":"collection","collectionId":8,"collectionName":"Bare","artistName":null,"collectionPrice":-1,
             "currency":"EUR","artworkUrl100":null,"releaseDate":"2013","primaryGenreName":null}]})";
    auto hits = Loaded(SearchOf(u"itunes"_s), search);
    EXPECT_EQ(Told(hits).toStdString(), Trimmed(R"(
id: 7
artist id: 5
artist: Foo
currency: EUR
dataprovider: iTunes
disccount: 1
genre: Pop
mediatype: Digital
price: 9.99
releasedate: 2013-05-17
releasename: Best <of>
releaseyear: 2013
thumb: https://i.invalid/100x100bb.jpg
--
id: 8
dataprovider: iTunes
disccount: 1
mediatype: Digital
releasename: Bare
)"));
    const QByteArray record = R"({"resultCount":5,"results":[)" + album + R"(,
        {"wrapperType":"track","kind":"song","collectionId":7,"artistName":"Guest","trackId":72,"trackName":"Later",
         "discCount":2,"discNumber":2,"trackNumber":1,"trackTimeMillis":3600500},
        {"wrapperType":"track","kind":"music-video","collectionId":7,"trackId":73,"trackName":"Film","discNumber":1,
         "trackNumber":2},
        {"wrapperType":"track","kind":"song","collectionId":9,"trackId":91,"trackName":"Stray","discNumber":1,
         "trackNumber":1},
        {"wrapperType":"track","kind":"song","collectionId":7,"artistName":"Foo","trackId":71,"trackName":"First",
         "discCount":2,"discNumber":1,"trackNumber":10,"trackTimeMillis":null}]})";
    EXPECT_EQ(Told(Loaded(RecordOf(u"itunes"_s), record, std::move(hits.front()))).toStdString(), Trimmed(R"(
id: 7
artist id: 5
artist: Foo
currency: EUR
dataprovider: iTunes
disccount: 2
genre: Pop
mediatype: Digital
price: 9.99
releasedate: 2013-05-17
releasename: Best <of>
releaseyear: 2013
genres: Pop
types: Digital
1.10 First #71
2.1 Later by Guest (3601) #72
thumb: https://i.invalid/100x100bb.jpg
large: https://i.invalid/600x600bb.jpg
)"));
}

// Discogs

TEST(ServicesDiscogs, HitsOfASearch)
{
    const QByteArray answer = R"_({"pagination":{"per_page":50,"items":5,"urls":{}},"results":[
      {"type":"artist","id":1,"title":"Foo","thumb":null},
      {"type":"release","id":2,"title":"Foo (2) & A. Bar*, Bar (10) - One - Two","country":"UK","year":"1999",
       "format":["Box Set","Vinyl","LP","Album"],"label":["Lab (3)","Plant"],"catno":"none","genre":["Rock"],
       "style":["Punk"],"barcode":["LAB-A1","5 099749 511927"],"thumb":"https://i.invalid/t.jpg",
       "cover_image":"https://i.invalid/c.jpg","master_id":0,"community":{"want":1,"have":2}},
      {"type":"master","id":3,"title":"Foo - One"},
      {"type":"release","id":4,"title":"Untitled","country":null,"year":null,"format":["Hybrid","DualDisc"],
       "label":["Not On Label (Foo Self-released)"],"catno":"F 1","barcode":[],
       "thumb":"https://i.invalid/images/spacer.gif"},
      {"type":"release","id":5,"title":"Foo - Nowhere","country":"Europe","thumb":"","format":[],"year":"0",
       "label":null,"catno":null,"genre":[null]}]})_";
    EXPECT_EQ(Told(Loaded(SearchOf(u"discogs"_s), answer)).toStdString(), Trimmed(R"(
id: 2
artist: Foo & A. Bar, Bar
barcode: 5099749511927
countrycode: GB
dataprovider: Discogs
disccount: 1
discogsid: 2
genre: Rock
label: Lab
mediatype: Vinyl
releasename: One - Two
releaseyear: 1999
thumb: https://i.invalid/t.jpg
--
id: 4
catalogno: F 1
dataprovider: Discogs
disccount: 1
discogsid: 4
mediatype: DualDisc
releasename: Untitled
--
id: 5
artist: Foo
dataprovider: Discogs
disccount: 1
discogsid: 5
releasename: Nowhere
)"));
}

TEST(ServicesDiscogs, TheFullRecord)
{
    auto hits = Loaded(SearchOf(u"discogs"_s), R"({"results":[{"type":"release","id":2,"title":"Foo - One",
        "country":"Sweden","year":"1998","thumb":"https://i.invalid/t.jpg"}]})");
    ASSERT_EQ(hits.size(), 1U);
    const QByteArray answer = R"_({"id":2,"title":"One","year":1998,"released":"1998-06-00","country":"Sweden",
      "artists":[{"name":"Foo (2)","anv":"The Foo","join":",","id":12},{"name":"Bar","anv":"","join":"&","id":13},
                 {"name":"Baz","anv":"","join":"","id":14}],
      "labels":[{"name":"Svart","catno":"none"},{"name":"Svart","catno":"SV 1"},{"name":"Not On Label","catno":""}],
      "formats":[{"name":"Box Set","qty":"1"},{"name":"Vinyl","qty":"2","descriptions":["LP"]},
                 {"name":"CDr","qty":"1"},{"name":"File","qty":"14"}],
      "styles":["Techno","Electronic"],"genres":["Electronic","Rock"],
      "identifiers":[{"type":"Matrix / Runout","value":"M"},{"type":"Barcode","value":"7 311-1>"},
                     {"type":"Barcode","value":"9"}],
      "notes":"Made by [a=Foo], [b]not[/b] [a123].\nSecond line",
      "images":[{"type":"secondary","uri":"https://i.invalid/2.jpg"},{"type":"primary","uri":"https://i.invalid/1.jpg"},
                {"type":"secondary","uri":"https://i.invalid/2.jpg"},{"type":"secondary","uri":""}],
      "extraartists":[{"name":"Pat P (4)","role":"Producer, Guitar [Lead, Rhythm], Vocals","tracks":""},
                      {"name":"Eng I","role":"","tracks":""}],
      "tracklist":[
        {"type_":"heading","position":"","title":"Records","duration":""},
        {"type_":"track","position":"A1","title":"First","duration":"5:08",
         "artists":[{"name":"Foo (2)","join":","},{"name":"Bar","join":"&"},{"name":"Baz","join":""}],
         "extraartists":[{"name":"Pat P (4)","role":"Vocals"},{"name":"Mix E","role":"Remix"}]},
        {"type_":"track","position":"A2","title":"Second","duration":"62:10","artists":[{"name":"Guest (3)","join":""}]},
        {"type_":"track","position":"B","title":"Third","duration":"1:02:10"},
        {"type_":"track","position":"C1","title":"Fourth","duration":null},
        {"type_":"track","position":"D1","title":"Fifth","duration":"0:00"},
        {"type_":"heading","position":"","title":"Disc","duration":""},
        {"type_":"track","position":"CD-1","title":"Sixth","duration":"?"},
        {"type_":"track","position":"CD-2","title":"Seventh","duration":""}]})_";
    EXPECT_EQ(Told(Loaded(RecordOf(u"discogs"_s), answer, std::move(hits.front()))).toStdString(), Trimmed(R"(
id: 2
artist id: 12
artist: Foo, Bar & Baz
barcode: 73111
catalogno: SV 1
comments: Made by Foo, not [a123].
Second line
countrycode: SE
dataprovider: Discogs
disccount: 3
discogsid: 2
genre: Electronic
label: Svart
mediatype: Vinyl
releasename: One
releaseyear: 1998
genres: Electronic, Rock, Techno
types: Vinyl, CD, Digital
labels: Svart
credit: Pat P, Producer
credit: Pat P, Guitar [Lead, Rhythm]
credit: Pat P, Vocals
credit: Eng I, 
credit: Mix E, Remix
1.1 A First (308)
1.2 A Second by Guest (3730)
1.3 B Third (3730)
2.1 C Fourth
2.2 D Fifth
3.1 Sixth
3.2 Seventh
thumb: https://i.invalid/t.jpg
large: https://i.invalid/1.jpg
other: https://i.invalid/2.jpg
)"));
}

struct TPositionRow {
    const char* About;
    const char* Formats;
    const char* Tracks;
    const char* Expected;
};

TEST(ServicesDiscogs, PositionsTellDiscAndSide)
{
    const TPositionRow rows[] = {
        {"a single", R"({"name":"Vinyl","qty":"1"})",
         R"({"position":"A","title":"a","duration":"1:00"},{"position":"AA","title":"b","duration":"1:00"})",
         "1.1 A a (60)\n1.2 AA b (60)"},
        {"sides of the second record of a pair sold alone", R"({"name":"Vinyl","qty":"1"})",
         R"({"position":"C1","title":"a"},{"position":"D1","title":"b"})", "1.1 C a\n1.2 D b"},
        {"sides with a dash", R"({"name":"Vinyl","qty":"2"})",
         R"({"position":"A-1","title":"a"},{"position":"C-1","title":"b"})", "1.1 A a\n2.1 C b"},
        {"records by number and side", R"({"name":"Vinyl","qty":"2"})",
         R"({"position":"LP1-A1","title":"a"},{"position":"LP1-B1","title":"b"},{"position":"LP2-A1","title":"c"})",
         "1.1 A a\n1.2 B b\n2.1 A c"},
        {"discs with a dash", R"({"name":"CD","qty":"2"})",
         R"({"position":"1-05","title":"a"},{"position":"1-6","title":"b"},{"position":"2-1","title":"c"})",
         "1.1 a\n1.2 b\n2.1 c"},
        {"discs with a name", R"({"name":"CD","qty":"3"})",
         R"({"position":"CD1-1","title":"a"},{"position":"CD3-1","title":"b"},{"position":"CD3-2","title":"c"})",
         "1.1 a\n3.1 b\n3.2 c"},
        {"discs with a point", R"({"name":"CD","qty":"2"})",
         R"({"position":"1.01","title":"a"},{"position":"2.05","title":"b"})", "1.1 a\n2.1 b"},
        {"several media", R"({"name":"CD","qty":"2"},{"name":"DVD","qty":"1"})",
         R"({"position":"CD1-1","title":"a"},{"position":"CD2-1","title":"b"},{"position":"DVD-1","title":"c"},
            {"position":"CD2-2","title":"d"})",
         "1.1 a\n2.1 b\n2.2 d\n3.1 c"},
        {"records and plain numbers", R"({"name":"Vinyl","qty":"1"},{"name":"CD","qty":"1"})",
         R"({"position":"A1","title":"a"},{"position":"B1","title":"b"},{"position":"1","title":"c"})",
         "1.1 A a\n1.2 B b\n2.1 c"},
        {"a film on a disc", R"({"name":"CD","qty":"1"})",
         R"({"position":"1","title":"a"},{"position":"Video","title":"b"})", "1.1 a\n1.2 b"},
        {"a track without a position on a record", R"({"name":"Vinyl","qty":"1"})",
         R"({"position":"A1","title":"a"},{"type_":"track","position":"","title":"b"},{"position":"B1","title":"c"})",
         "1.1 A a\n1.2 b\n1.3 B c"},
        {"files are no discs", R"({"name":"File","qty":"2"})",
         R"({"position":"1","title":"a"},{"position":"2","title":"b"})", "1.1 a\n1.2 b"},
        {"no formats", "", R"({"position":"A1","title":"a"},{"position":"D1","title":"b"})", "1.1 A a\n2.1 D b"},
        {"headings of old answers", R"({"name":"CD","qty":"1"})",
         R"({"position":"","title":"Part","duration":""},{"position":"1","title":"a"},
            {"position":"","title":"b","duration":"0:30"})",
         "1.1 a\n1.2 b (30)"},
        {"tracks without positions", R"({"name":"File","qty":"2"})",
         R"({"type_":"track","position":"","title":"a","duration":""})", "1.1 a"},
        {"movements of a work", R"({"name":"CD","qty":"1"})",
         R"_({"type_":"index","position":"","title":"Work","duration":"9:00","artists":[{"name":"Orch (2)","join":""}],
             "sub_tracks":[{"type_":"track","position":"1","title":"Slow","duration":"1:00"},
                           {"type_":"track","position":"2","title":"Fast","duration":"2:00",
                            "artists":[{"name":"Solo","join":""}]}]},
            {"type_":"track","position":"3","title":"c"})_",
         "1.1 Work: Slow by Orch (60)\n1.2 Work: Fast by Solo (120)\n1.3 c"},
        {"parts of one track", R"({"name":"CD","qty":"1"})",
         R"({"type_":"index","position":"","title":"Suite","duration":"9:00",
             "sub_tracks":[{"position":"1.1","title":"x"},{"position":"1.2","title":"y"}]},
            {"type_":"index","position":"","title":"Medley",
             "sub_tracks":[{"position":"2a","title":"x"},{"position":"2b","title":"y"}]},
            {"type_":"index","position":"3","title":"Own","sub_tracks":[{"position":"","title":"x"}]})",
         "1.1 Suite (540)\n1.2 Medley\n1.3 Own"},
    };
    for (const TPositionRow& row : rows) {
        const auto found = Loaded(RecordOf(u"discogs"_s), QByteArray(R"({"id":1,"title":"t","formats":[)") +
                                                              row.Formats + R"(],"tracklist":[)" + row.Tracks + "]}");
        ASSERT_EQ(found.size(), 1U);
        EXPECT_EQ(ToldTracks(*found[0]).toStdString(), row.Expected) << row.About;
    }
}

TEST(ServicesDiscogs, LargeSetsStayWithinTheBoundsOfATransformation)
{
    QByteArray tracks;
    for (int disc = 1; disc <= 60; ++disc) {
        for (int track = 1; track <= 40; ++track)
            tracks += QByteArray(tracks.isEmpty() ? "" : ",") + R"({"type_":"track","position":")" +
                      QByteArray::number(disc) + '-' + QByteArray::number(track) +
                      R"(","title":"t","duration":"3:00","extraartists":[{"name":"N","role":"R)" +
                      QByteArray::number(track) + R"("}]})";
    }
    const QByteArray notes = QByteArray("[x] ").repeated(3000);
    const auto found =
        Loaded(RecordOf(u"discogs"_s), R"({"id":1,"title":"t","notes":")" + notes +
                                           R"(","formats":[{"name":"CD","qty":"60"}],"tracklist":[)" + tracks + "]}");
    ASSERT_EQ(found.size(), 1U);
    ASSERT_EQ(found[0]->Tracks.size(), 2400U);
    EXPECT_EQ(found[0]->Tracks.back().DiscNo, 60);
    EXPECT_EQ(found[0]->Tracks.back().TrackNo, 40);
    EXPECT_EQ(found[0]->Credits.size(), 40U);
}

TEST(ServicesDiscogs, LongListsOfRolesKeepTheRecord)
{
    QByteArray roles, bracketed;
    for (int i = 1; i <= 2000; ++i)
        roles += (i > 1 ? ", R" : "R") + QByteArray::number(i);
    for (int i = 1; i <= 500; ++i)
        bracketed += (i > 1 ? ", G" : "G") + QByteArray::number(i) + " [a, b]";
    const std::pair<QByteArray, size_t> rows[] = {{roles.left(roles.indexOf(", R401")), 400},
                                                  {roles, 2000},
                                                  {bracketed, 500},
                                                  {"Closed], " + roles, 2001},
                                                  {"Open [" + roles, 1}};
    for (const auto& [role, credits] : rows) {
        const auto found =
            Loaded(RecordOf(u"discogs"_s),
                   R"({"id":1,"title":"t","tracklist":[],"extraartists":[{"name":"N","role":")" + role + R"("}]})");
        ASSERT_EQ(found.size(), 1U) << credits;
        EXPECT_EQ(found[0]->Credits.size(), credits);
        EXPECT_EQ(
            found[0]->Credits.back().Credit,
            QString::fromUtf8(credits == 1 ? role : role.mid(role.lastIndexOf(credits == 500 ? ", G" : ", R") + 2)));
    }
}

TEST(Services, NamesOfAThousandWordsKeepTheRecord)
{
    const QByteArray name = QByteArray("w ").repeated(1000) + 'w';
    const std::pair<const char16_t*, QByteArray> rows[] = {
        {u"discogs", R"({"id":1,"title":"t","tracklist":[],"artists":[{"name":"NAME"}],"labels":[{"name":"NAME"}]})"},
        {u"lastfm", R"({"album":{"name":"t","artist":"a","tags":{"tag":[{"name":"NAME"}]}}})"},
        {u"musicbrainz", Brainz("<release id='r'><genre-list><genre><name>NAME</name></genre></genre-list></release>")},
    };
    for (const auto& [service, answer] : rows)
        EXPECT_EQ(Loaded(RecordOf(QString::fromUtf16(service)), QByteArray(answer).replace("NAME", name)).size(), 1U);
}

// Last.fm

TEST(ServicesLastFm, TellsThatItKnowsNothing)
{
    const TAnswerReader reader(Services(), RecordOf(u"lastfm"_s), {});
    EXPECT_TRUE(reader.Read(R"({"error":6,"message":"Album not found","links":[]})").IsUnknown);
    EXPECT_FALSE(reader.Read(R"({"error":10,"message":"Invalid API key"})").IsUnknown);
    EXPECT_FALSE(reader.Read("<html>").IsUnknown);
}

TEST(ServicesLastFm, HitsOfBothSearches)
{
    const QByteArray found = R"_({"results":{"opensearch:Query":{"#text":"","role":"request"},"albummatches":{"album":[
      {"name":"One","artist":"Foo","url":"u","mbid":"","streamable":"0","image":[
        {"#text":"https://i.invalid/34s/a.png","size":"small"},{"#text":"https://i.invalid/64s/a.png","size":"medium"},
        {"#text":"https://i.invalid/174s/a.png","size":"large"},
        {"#text":"https://i.invalid/300/a.png","size":"extralarge"}]},
      {"name":"Starred","artist":"Foo","mbid":"m1","image":[
        {"#text":"https://i.invalid/174s/2a96cbd8b46e442fc41c2b86b821562f.png","size":"large"}]},
      {"name":"(null)","artist":"Foo","image":[]}]},"@attr":{"for":"one"}}})_";
    EXPECT_EQ(Told(Loaded(SearchOf(u"lastfm"_s), found)).toStdString(), Trimmed(R"(
artist: Foo
dataprovider: Last.fm
disccount: 1
releasename: One
thumb: https://i.invalid/174s/a.png
--
id: m1
artist: Foo
dataprovider: Last.fm
disccount: 1
musicbrainzid: m1
releasename: Starred
)"));
    const TInfoGrabberServiceAction& top = *Services().GetSearchByType(stArtist)->GetItemByName(u"lastfm"_s);
    const QByteArray one = R"({"name":"One","playcount":7,"mbid":"m2","url":"u",
        "artist":{"name":"Foo","mbid":"m3","url":"u"},"image":[{"#text":"https://i.invalid/a.png","size":""}]})";
    for (const QByteArray& albums : {"[" + one + "]", one}) // a list of one may come as an object
        EXPECT_EQ(Told(Loaded(top, R"({"topalbums":{"album":)" + albums + "}}")).toStdString(), Trimmed(R"(
id: m2
artist id: m3
artist: Foo
dataprovider: Last.fm
disccount: 1
musicbrainzid: m2
releasename: One
thumb: https://i.invalid/a.png
)")) << albums.constData();
}

TEST(ServicesLastFm, TheFullRecord)
{
    const QByteArray answer =
        R"({"album":{"name":"One","artist":"Foo","mbid":"m2","releasedate":"    3 Sep 2005, 00:00",
      "image":[{"#text":"https://i.invalid/300/a.png","size":"extralarge"},{"#text":"https://i.invalid/m.png","size":"mega"},
               {"#text":"https://i.invalid/174s/a.png","size":"large"},{"#text":"https://i.invalid/n.png","size":""}],
      "tags":{"tag":[{"name":"1998","url":"u"},{"name":"foo","url":"u"},{"name":"albums I own"},{"name":"trip hop"},
                     {"name":"Pop"}]},
      "wiki":{"summary":"text"},
      "tracks":{"track":[
        {"name":"A","duration":308,"@attr":{"rank":1},"artist":{"name":"Foo"},"streamable":{"#text":"0"}},
        {"name":"B","duration":null,"@attr":{"rank":2},"artist":{"name":"Guest"},"mbid":"t2"}]}}})";
    EXPECT_EQ(Told(Loaded(RecordOf(u"lastfm"_s), answer)).toStdString(), Trimmed(R"(
id: m2
artist: Foo
dataprovider: Last.fm
disccount: 1
genre: Trip Hop
musicbrainzid: m2
releasedate: 2005-09-03
releasename: One
releaseyear: 2005
genres: Trip Hop, Pop
1.1 A (308)
1.2 B by Guest #t2
large: https://i.invalid/m.png
)"));
    const auto single = Loaded(RecordOf(u"lastfm"_s), R"({"album":{"name":"One","artist":"Foo","releasedate":"    , ",
        "tags":"","image":[{"#text":"","size":"large"}],"tracks":{"track":{"name":"A","duration":60}}}})");
    EXPECT_EQ(Told(single).toStdString(), Trimmed(R"(
artist: Foo
dataprovider: Last.fm
disccount: 1
releasename: One
1.1 A (60)
)"));
}

TEST(Services, LongRecordsWhoseCreditsRepeatAreWithinTheBounds)
{
    for (const QByteArray& service : Kit::AnsweringServices()) {
        const auto found = Loaded(RecordOf(QString::fromUtf8(service)), Kit::RecordAnswer(service, 2400).Text);
        ASSERT_EQ(found.size(), 1U) << service.constData();
        EXPECT_EQ(found[0]->Tracks.size(), 2400U) << service.constData();
    }
}

} // namespace
