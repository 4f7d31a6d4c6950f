// SPDX-License-Identifier: GPL-3.0-or-later
#include "uServiceAnswers.h"

#include <stdexcept>

namespace Kestrune::Kit {

namespace {

QByteArray No(int number) { return QByteArray::number(number); }

QByteArray Joined(int count, QByteArray (*item)(int, const QByteArray&), const QByteArray& covers,
                  const QByteArray& separator)
{
    QByteArray text;
    for (int i = 0; i < count; ++i)
        text += (i > 0 ? separator : QByteArray()) + item(i, covers);
    return text;
}

// MusicBrainz

QByteArray Credit(const QByteArray& tag, int number)
{
    return "<artist-credit><name-credit><name>" + tag + " " + No(number) + "</name><artist id=\"" +
           MusicBrainzId(number + 5000) + "\"><name>" + tag + " " + No(number) + "</name><sort-name>" + No(number) +
           ", " + tag + "</sort-name></artist></name-credit></artist-credit>";
}

QByteArray MusicBrainzHead(int i)
{
    return "<title>Songs of the River " + No(i) +
           "</title><status>Official</status><packaging>Jewel Case</packaging>"
           "<text-representation><language>eng</language><script>Latn</script></text-representation>" +
           Credit("Made-up Band", i % 7) + "<date>1998-03-" + No(10 + i % 18) +
           "</date><country>DE</country><barcode>40012345" + No(10000 + i) + "</barcode><asin>B00000" + No(1000 + i) +
           "</asin><label-info-list><label-info><catalog-number>MU " + No(i) + "</catalog-number><label id=\"" +
           MusicBrainzId(9000) + "\"><name>Paper Label</name></label></label-info></label-info-list>";
}

QByteArray MusicBrainzHit(int i, const QByteArray&)
{
    return "<release id=\"" + MusicBrainzId(i) + "\" ns2:score=\"" + No(100 - i % 60) + "\">" + MusicBrainzHead(i) +
           "<release-group id=\"" + MusicBrainzId(i + 3000) +
           "\" type=\"Album\"><title>Songs of the River</title><primary-type>Album</primary-type></release-group>"
           "<release-event-list><release-event><date>1998-03-10</date><area id=\"" +
           MusicBrainzId(8000) +
           "\"><name>Germany</name></area></release-event></release-event-list><medium-list count=\"1\"><track-count>12"
           "</track-count><medium><format>CD</format><disc-list count=\"3\"/><track-list count=\"12\"/></medium>"
           "</medium-list></release>";
}

QByteArray MusicBrainzTrack(int i, const QByteArray&)
{
    const QByteArray length = No(180000 + i * 997);
    return "<track id=\"" + MusicBrainzId(i + 20000) + "\"><position>" + No(i + 1) + "</position><number>" + No(i + 1) +
           "</number><length>" + length + "</length>" + Credit("Made-up Band", i % 3) + "<recording id=\"" +
           MusicBrainzId(i + 30000) + "\"><title>A Song, Part " + No(i + 1) + "</title><length>" + length +
           "</length><relation-list target-type=\"artist\"><relation "
           "type=\"instrument\"><direction>backward</direction>"
           "<attribute-list><attribute>guitar</attribute></attribute-list><artist id=\"" +
           MusicBrainzId(40000 + i % 5) + "\"><name>Player " + No(i % 5) +
           "</name></artist></relation><relation type=\"producer\"><artist id=\"" + MusicBrainzId(41000) +
           "\"><name>Producer One</name></artist></relation></relation-list></recording></track>";
}

QByteArray MusicBrainz(const QByteArray& inner)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<metadata xmlns=\"http://musicbrainz.org/ns/mmd-2.0#\" "
           "xmlns:ns2=\"http://musicbrainz.org/ns/ext#-2.0\">" +
           inner + "</metadata>";
}

// iTunes

QByteArray ITunesAlbum(int i, const QByteArray& covers)
{
    return R"({"wrapperType":"collection","collectionType":"Album","artistId":7)" + No(i % 7) +
           R"(,"collectionId":90)" + No(1000 + i) + R"(,"amgArtistId":4660,"artistName":"Made-up Band )" + No(i % 7) +
           R"(","collectionName":"Songs of the River )" + No(i) + R"(","collectionCensoredName":"Songs of the River )" +
           No(i) +
           R"(","artistViewUrl":"https://example.org/artist?uo=4","collectionViewUrl":"https://example.org/album?uo=4",)"
           R"("artworkUrl60":"https://example.org/60x60bb.jpg","artworkUrl100":")" +
           covers + No(i) +
           R"(","collectionPrice":9.99,"collectionExplicitness":"notExplicit","trackCount":12,"copyright":")" +
           "\xE2\x84\x97 1998" +
           R"( Paper Label","country":"USA","currency":"USD","releaseDate":"1998-03-10T08:00:00Z",)"
           R"("primaryGenreName":"Rock"})";
}

QByteArray ITunesSong(int i, const QByteArray&)
{
    return R"({"wrapperType":"track","kind":"song","artistId":70,"collectionId":901000,"trackId":55)" + No(1000 + i) +
           R"(,"artistName":"Made-up Band 0","collectionName":"Songs of the River 0","trackName":"A Song, Part )" +
           No(i + 1) + R"(","trackPrice":1.29,"releaseDate":"1998-03-10T12:00:00Z","discCount":1,"discNumber":1,)" +
           R"("trackCount":20,"trackNumber":)" + No(i + 1) + R"(,"trackTimeMillis":)" + No(180000 + i * 997) +
           R"(,"country":"USA","currency":"USD","primaryGenreName":"Rock","isStreamable":true})";
}

QByteArray ITunes(int count, const QByteArray& items)
{
    return "\n\n\n{\n \"resultCount\":" + No(count) + ",\n \"results\": [\n" + items + "]\n}\n";
}

// Discogs

QByteArray DiscogsHit(int i, const QByteArray& covers)
{
    return R"({"country":"Germany","year":"1998","format":["CD","Album","Reissue"],"label":["Paper Label","Paper Label )"
           R"(Publishing"],"type":"release","genre":["Rock"],"style":["Alternative Rock","Indie Rock"],"id":)" +
           No(700000 + i) + R"(,"barcode":["4 001234 5)" + No(10000 + i) +
           R"(","MU-01 IFPI"],"user_data":{"in_wantlist":false,"in_collection":false},"master_id":81013,)"
           R"("master_url":"https://example.org/masters/81013","uri":"/release/1","catno":"MU )" +
           No(i) + R"(","title":"Made-up Band ()" + No(i % 7) + R"() - Songs of the River )" + No(i) +
           R"(","thumb":")" + covers + No(i) +
           R"(","cover_image":"https://example.org/c.jpg","resource_url":"https://example.org/r/1",)" +
           R"("community":{"want":121,"have":532},"format_quantity":1,"formats":[{"name":"CD","qty":"1","descriptions":)" +
           R"(["Album","Reissue"]}]})";
}

QByteArray DiscogsTrack(int i, const QByteArray&)
{
    return R"({"position":")" + No(i + 1) + R"(","type_":"track","title":"A Song, Part )" + No(i + 1) +
           R"(","duration":"3:)" + No(10 + i % 50) + R"(","extraartists":[{"name":"Player )" + No(i % 5) +
           R"x( (2)","anv":"","join":"","role":"Guitar [Lead, Rhythm], Producer","tracks":"","id":3)x" + No(i) +
           R"(,"resource_url":"https://example.org/a"}]})";
}

QByteArray DiscogsRecord(int tracks)
{
    return R"({"id":700000,"status":"Accepted","year":1998,"resource_url":"https://example.org/r/1","artists":[{"name":)"
           R"x("Made-up Band (2)","anv":"","join":"","role":"","tracks":"","id":29,"resource_url":"https://example.org"}],)x"
           R"("labels":[{"name":"Paper Label","catno":"MU 0","entity_type":"1","id":895}],"formats":[{"name":"CD",)"
           R"("qty":"1","descriptions":["Album"]}],"community":{"have":252,"want":42,"rating":{"count":45,"average":3.4}},)"
           R"("title":"Songs of the River 0","country":"Germany","released":"1998-03-10","notes":"Made in [l=Paper )"
           R"(Label] with [b]care[/b], see [url=https://example.org]here[/url].","identifiers":[{"type":"Barcode",)"
           R"("value":"4 001234 510000"}],"images":[{"type":"primary","uri":"https://example.org/p.jpg","width":600}],)"
           R"("genres":["Rock"],"styles":["Indie Rock"],"tracklist":[)" +
           Joined(tracks, DiscogsTrack, {}, ",") +
           R"(],"extraartists":[{"name":"Engineer One","anv":"","join":"","role":"Engineer","tracks":"","id":5}]})";
}

// Last.fm

QByteArray LastFmImages(const QByteArray& url)
{
    return R"([{"#text":")" + url + R"(?s","size":"small"},{"#text":")" + url + R"(?m","size":"medium"},{"#text":")" +
           url + R"(","size":"large"},{"#text":")" + url + R"(?x","size":"extralarge"}])";
}

QByteArray LastFmAlbum(int i, const QByteArray& covers)
{
    return R"({"name":"Songs of the River )" + No(i) + R"(","artist":"Made-up Band )" + No(i % 7) +
           R"(","url":"https://example.org/music/a","image":)" + LastFmImages(covers + No(i)) +
           R"(,"streamable":"0","mbid":")" + MusicBrainzId(i) + R"("})";
}

QByteArray LastFmTrack(int i, const QByteArray&)
{
    return R"({"streamable":{"fulltrack":"0","#text":"0"},"duration":)" + No(180 + i) +
           R"(,"url":"https://example.org/t","name":"A Song, Part )" + No(i + 1) + R"(","@attr":{"rank":)" + No(i + 1) +
           R"(},"artist":{"url":"https://example.org","name":"Made-up Band 0","mbid":")" + MusicBrainzId(5000) +
           R"("}})";
}

} // namespace

QByteArray MusicBrainzId(int number)
{
    return "11111111-2222-4333-8444-" + QByteArray::number(number).rightJustified(12, '0');
}

const QList<QByteArray>& AnsweringServices()
{
    static const QList<QByteArray> names{"musicbrainz", "itunes", "discogs", "lastfm"};
    return names;
}

TServiceAnswer SearchAnswer(const QByteArray& service, int count, const QByteArray& covers)
{
    const QByteArray name = service + "-hits";
    if (service == "musicbrainz")
        return {"musicbrainz.xsl", name, false,
                MusicBrainz("<release-list count=\"" + No(count) + "\" offset=\"0\">" +
                            Joined(count, MusicBrainzHit, covers, {}) + "</release-list>")};
    if (service == "itunes")
        return {"itunes-search.xsl", name, true, ITunes(count, Joined(count, ITunesAlbum, covers, ",\n"))};
    if (service == "discogs")
        return {"discogs.xsl", name, true,
                R"({"pagination":{"page":1,"pages":1,"per_page":50,"items":)" + No(count) +
                    R"(,"urls":{}},"results":[)" + Joined(count, DiscogsHit, covers, ",") + "]}"};
    if (service == "lastfm")
        return {"lastfm.xsl", name, true,
                R"({"results":{"opensearch:Query":{"#text":"","role":"request"},"opensearch:totalResults":")" +
                    No(count) + R"(","albummatches":{"album":[)" + Joined(count, LastFmAlbum, covers, ",") +
                    R"(]},"@attr":{"for":"river"}}})"};
    throw std::runtime_error("no service " + service.toStdString());
}

TServiceAnswer RecordAnswer(const QByteArray& service, int tracks)
{
    const QByteArray name = service + "-record";
    if (service == "musicbrainz")
        return {
            "musicbrainz.xsl", name, false,
            MusicBrainz("<release id=\"" + MusicBrainzId(0) + "\">" + MusicBrainzHead(0) +
                        "<cover-art-archive><artwork>true</artwork><count>2</count><front>true</front><back>true"
                        "</back></cover-art-archive><genre-list><genre count=\"3\" id=\"" +
                        MusicBrainzId(7000) +
                        "\"><name>indie rock</name></genre></genre-list><medium-list count=\"1\"><medium><position>1"
                        "</position><format>CD</format><track-list count=\"" +
                        No(tracks) + "\" offset=\"0\">" + Joined(tracks, MusicBrainzTrack, {}, {}) +
                        "</track-list></medium></medium-list></release>")};
    if (service == "itunes")
        return {"itunes-release.xsl", name, true,
                ITunes(tracks + 1, ITunesAlbum(0, "https://example.org/100x100bb.jpg?") + ",\n" +
                                       Joined(tracks, ITunesSong, {}, ",\n"))};
    if (service == "discogs")
        return {"discogs.xsl", name, true, DiscogsRecord(tracks)};
    if (service == "lastfm")
        return {"lastfm.xsl", name, true,
                R"({"album":{"artist":"Made-up Band 0","mbid":")" + MusicBrainzId(0) +
                    R"(","tags":{"tag":[{"url":"https://example.org","name":"rock"},{"url":"https://example.org",)" +
                    R"("name":"indie rock"}]},"name":"Songs of the River 0","image":)" +
                    LastFmImages("https://example.org/c.jpg") + R"(,"tracks":{"track":[)" +
                    Joined(tracks, LastFmTrack, {}, ",") + R"(]},"listeners":"1","playcount":"2"}})"};
    throw std::runtime_error("no service " + service.toStdString());
}

} // namespace Kestrune::Kit
