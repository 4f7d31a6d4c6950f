// SPDX-License-Identifier: GPL-3.0-or-later
#include "uServicesKit.h"
#include "uTestFiles.h"

#include <QDir>
#include <QLocale>

#include <gtest/gtest.h>

#include <map>

using namespace Kestrune;
using namespace Kestrune::Kit;
using namespace Qt::StringLiterals;

// Answers recorded from the services.
namespace {

// What an answer is expected to say: names of fields with values, texts with parts between bars.
using TExpected = std::vector<std::pair<QString, QString>>;

TExpected ExpectedOf(const QString& folder, const QString& file)
{
    TExpected expected;
    for (const QString& line : QString::fromUtf8(ReadAll(folder + u"expected.tsv"_s)).split(u'\n')) {
        const QStringList cells = line.split(u'\t');
        if (cells.value(1) == file)
            expected.emplace_back(cells.value(2), cells.value(3));
    }
    return expected;
}

// "release[3].label[0]" as its names, with the indexes behind them.
QStringList PathOf(const QString& field, std::vector<size_t>& indexes)
{
    QStringList names;
    for (const QString& part : field.split(u'.')) {
        names.append(part.section(u'[', 0, 0));
        if (part.contains(u'['))
            indexes.push_back(part.section(u'[', 1).chopped(1).toUInt());
    }
    return names;
}

void ExpectDate(const TAlbumRelease& release, const QString& date)
{
    const bool full = date.size() == 10 && !date.contains("-00"_L1);
    EXPECT_EQ(TextOf(release, u"ReleaseDate"_s), full ? date : QString());
    EXPECT_EQ(TextOf(release, u"ReleaseYear"_s), date.left(4));
}

void ExpectCountry(const TAlbumRelease& release, const QString& country)
{
    EXPECT_EQ(TextOf(release, u"CountryCode"_s), VarToStr(NormalizeCountry(country)));
}

const TAlbumTrack& TrackAt(const TAlbumRelease& release, int disc, size_t index)
{
    std::vector<const TAlbumTrack*> tracks;
    for (const TAlbumTrack& track : release.Tracks) {
        if (track.DiscNo == disc)
            tracks.push_back(&track);
    }
    return *tracks.at(index);
}

void ExpectRelease(const TAlbumRelease& release, const QStringList& names, const std::vector<size_t>& indexes,
                   const QString& value)
{
    static const std::map<QString, QString> texts{{u"title"_s, u"ReleaseName"_s},
                                                  {u"artist"_s, u"Artist"_s},
                                                  {u"barcode"_s, u"Barcode"_s},
                                                  {u"asin"_s, u"ASIN"_s},
                                                  {u"media"_s, u"DiscCount"_s}};
    const QString& name = names.last();
    const QStringList parts = value.split(u'|');
    if (const auto text = texts.find(name); text != texts.end()) {
        EXPECT_EQ(TextOf(release, text->second), value);
    } else if (name == "id"_L1) {
        EXPECT_EQ(release.ReleaseInternalID, value);
    } else if (name == "date"_L1) {
        ExpectDate(release, value);
    } else if (name == "country"_L1) {
        ExpectCountry(release, value);
    } else if (name == "label"_L1) {
        EXPECT_EQ(TextOf(release, u"Label"_s), parts[0].startsWith(u'[') ? QString() : parts[0]);
        EXPECT_EQ(TextOf(release, u"CatalogNo"_s), parts[1]);
    } else if (name == "medium"_L1) {
        EXPECT_EQ(TextOf(release, u"MediaType"_s), parts[0].startsWith("Digital"_L1) ? u"Digital"_s : parts[0]);
    } else if (name == "track"_L1) {
        const TAlbumTrack& track = TrackAt(release, static_cast<int>(indexes.at(1)) + 1, indexes.at(2));
        EXPECT_EQ(track.TrackNo, parts[0].toInt());
        EXPECT_EQ(track.TrackName, parts[1]);
        EXPECT_EQ(track.DurationSec, qRound(parts[2].toInt() / 1000.0));
    }
}

TEST(ServicesSamples, MusicBrainz)
{
    if (SamplesFolder().isEmpty())
        GTEST_SKIP() << "no samples";
    const QString folder = SamplesFolder() + u"/musicbrainz/"_s;
    for (const QString& file : QDir(folder).entryList({u"*.xml"_s}, QDir::Files)) {
        const auto found = Loaded(SearchOf(u"musicbrainz"_s), ReadAll(folder + file));
        const TExpected expected = ExpectedOf(folder, file);
        EXPECT_GT(expected.size(), 20U) << file.toStdString();
        for (const auto& [field, value] : expected) {
            SCOPED_TRACE((file + u' ' + field).toStdString());
            std::vector<size_t> indexes;
            const QStringList names = PathOf(field, indexes);
            if (names[0] == "releases"_L1)
                EXPECT_EQ(found.size(), value.toUInt());
            else if (!indexes.empty())
                ExpectRelease(*found.at(indexes[0]), names, indexes, value);
        }
    }
}

void ExpectDiscogsHits(const TAlbumReleases& found, const TExpected& expected)
{
    static const std::map<QString, QString> media{{u"CDr"_s, u"CD"_s}, {u"File"_s, u"Digital"_s}};
    size_t hit = 0;
    for (const auto& [field, value] : expected) {
        const QStringList parts = value.split(u'|');
        if (parts.value(1) != "release"_L1)
            continue;
        SCOPED_TRACE(field.toStdString());
        const TAlbumRelease& release = *found.at(hit++);
        EXPECT_EQ(TextOf(release, u"DiscogsID"_s), parts[0]);
        EXPECT_EQ(TextOf(release, u"Artist"_s) + u" - "_s + TextOf(release, u"ReleaseName"_s), parts[2]);
        EXPECT_EQ(TextOf(release, u"ReleaseYear"_s), parts[3]);
        ExpectCountry(release, parts[4]);
        EXPECT_EQ(TextOf(release, u"CatalogNo"_s), parts[5] == "none"_L1 ? QString() : parts[5]);
        EXPECT_EQ(TextOf(release, u"Label"_s), parts[6] == "Not On Label"_L1 ? QString() : parts[6]);
        const QString medium = parts[7].section(u',', 0, 0);
        EXPECT_EQ(TextOf(release, u"MediaType"_s), media.contains(medium) ? media.at(medium) : medium);
    }
    EXPECT_EQ(found.size(), hit);
}

void ExpectDiscogsRecord(const TAlbumRelease& release, const TExpected& expected)
{
    QStringList credits;
    QStringList genres;
    for (const auto& [field, value] : expected) {
        SCOPED_TRACE(field.toStdString());
        std::vector<size_t> indexes;
        const QString name = PathOf(field, indexes)[0];
        const QStringList parts = value.split(u'|');
        if (name == "title"_L1)
            EXPECT_EQ(TextOf(release, u"ReleaseName"_s), value);
        else if (name == "artists"_L1)
            EXPECT_EQ(TextOf(release, u"Artist"_s), value);
        else if (name == "country"_L1)
            ExpectCountry(release, value);
        else if (name == "released"_L1)
            ExpectDate(release, value);
        else if (name == "notes"_L1)
            EXPECT_EQ(TextOf(release, u"Comments"_s),
                      QString(value).replace(u"\\r"_s, QString()).replace(u"\\n"_s, u"\n"_s))
                << "XML knows line feeds only";
        else if (name == "genres"_L1 || name == "styles"_L1)
            genres += value.split(u" | "_s);
        else if (name == "format"_L1)
            EXPECT_EQ(TextOf(release, u"MediaType"_s) + u'|' + TextOf(release, u"DiscCount"_s),
                      parts[0] + u'|' + parts[1]);
        else if (name == "label"_L1 && indexes[0] == 0)
            EXPECT_EQ(TextOf(release, u"Label"_s) + u'|' + TextOf(release, u"CatalogNo"_s), value);
        else if (name == "identifier"_L1)
            EXPECT_EQ(TextOf(release, u"Barcode"_s), parts[0] == "Barcode"_L1 ? parts[1] : QString());
        else if (name == "images"_L1)
            EXPECT_EQ(release.Pictures.size(), value.toUInt());
        else if (name == "tracks"_L1)
            EXPECT_EQ(release.Tracks.size(), value.toUInt());
        else if (name == "credit"_L1)
            for (const QString& role : parts[1].split(u", "_s))
                credits.append(parts[0] + u'|' + role);
        else if (name == "track"_L1) {
            const TAlbumTrack& track = TrackAt(release, 1, indexes[0]);
            const bool sided = parts[0][0].isLetter();
            EXPECT_EQ(track.TrackNo, static_cast<int>(indexes[0]) + 1);
            EXPECT_EQ(track.Side, sided ? parts[0].left(1) : QString());
            EXPECT_EQ(track.TrackName, parts[1]);
            EXPECT_EQ(track.DurationSec, parts[2].section(u':', 0, 0).toInt() * 60 + parts[2].section(u':', 1).toInt());
        }
    }
    genres.sort();
    QStringList found = release.Genres;
    found.sort();
    EXPECT_EQ(found, genres);
    ASSERT_GE(release.Credits.size(), static_cast<size_t>(credits.size()));
    for (qsizetype i = 0; i < credits.size(); ++i) {
        const TAlbumCredit& credit = release.Credits[static_cast<size_t>(i)];
        EXPECT_EQ(credit.Musician + u'|' + credit.Credit, credits[i]);
    }
}

TEST(ServicesSamples, Discogs)
{
    if (SamplesFolder().isEmpty())
        GTEST_SKIP() << "no samples";
    const QString folder = SamplesFolder() + u"/discogs/"_s;
    const QString search = u"search_trash80.json"_s;
    ExpectDiscogsHits(Loaded(SearchOf(u"discogs"_s), ReadAll(folder + search)), ExpectedOf(folder, search));
    for (const QString& file : {u"release_2.json"_s, u"release_3.json"_s}) {
        const auto found = Loaded(RecordOf(u"discogs"_s), ReadAll(folder + file));
        ASSERT_EQ(found.size(), 1U);
        ExpectDiscogsRecord(*found[0], ExpectedOf(folder, file));
    }
}

TEST(ServicesSamples, ITunes)
{
    if (SamplesFolder().isEmpty())
        GTEST_SKIP() << "no samples";
    const QString folder = SamplesFolder() + u"/itunes/"_s;
    for (const QString& file : {u"itunes_search.json"_s, u"itunes_lookup_upc.json"_s}) {
        const auto found = Loaded(SearchOf(u"itunes"_s), ReadAll(folder + file));
        for (const auto& [field, value] : ExpectedOf(folder, file)) {
            SCOPED_TRACE((file + u' ' + field).toStdString());
            std::vector<size_t> indexes;
            PathOf(field, indexes);
            const QStringList parts = value.split(u'|');
            if (indexes.empty()) {
                EXPECT_EQ(found.size(), value.toUInt());
                continue;
            }
            const TAlbumRelease& release = *found.at(indexes[0]);
            EXPECT_EQ(release.ReleaseInternalID, parts[0]);
            EXPECT_EQ(TextOf(release, u"ReleaseName"_s), parts[1]);
            EXPECT_EQ(TextOf(release, u"Artist"_s), parts[2]);
            ExpectDate(release, parts[3].left(10));
            EXPECT_EQ(TextOf(release, u"Genre"_s), parts[5]);
            EXPECT_TRUE(release.GetPicByType(cptFrontThumb));
        }
    }
}

// What a full record says under the name of a field, written as the service does.
QString LastFmValue(const TAlbumRelease& release, const QString& name, size_t index)
{
    if (name == "name"_L1)
        return TextOf(release, u"ReleaseName"_s);
    if (name == "artist"_L1)
        return TextOf(release, u"Artist"_s);
    if (name == "mbid"_L1)
        return TextOf(release, u"MusicBrainzID"_s);
    if (name == "releasedate"_L1) {
        const QDate date = ParseReleaseDate(TextOf(release, u"ReleaseDate"_s));
        return QLocale::c().toString(date, u"d MMM yyyy',' '00:00'"_s);
    }
    if (name == "tracks"_L1)
        return QString::number(release.Tracks.size());
    const TAlbumTrack& track = TrackAt(release, 1, index);
    return track.TrackName + u'|' + QString::number(track.DurationSec);
}

TEST(ServicesSamples, LastFm)
{
    if (SamplesFolder().isEmpty())
        GTEST_SKIP() << "no samples";
    const QString folder = SamplesFolder() + u"/lastfm/"_s;
    const auto hits = Loaded(SearchOf(u"lastfm"_s), ReadAll(folder + u"AlbumSearch.json"_s));
    for (const auto& [field, value] : ExpectedOf(folder, u"AlbumSearch.json"_s)) {
        std::vector<size_t> indexes;
        PathOf(field, indexes);
        if (indexes.empty())
            EXPECT_EQ(hits.size(), value.toUInt());
        else
            EXPECT_EQ(TextOf(*hits.at(indexes[0]), u"ReleaseName"_s) + u'|' + TextOf(*hits.at(indexes[0]), u"Artist"_s),
                      value);
    }
    const auto found = Loaded(RecordOf(u"lastfm"_s), ReadAll(folder + u"AlbumGetInfoSuccess.json"_s));
    ASSERT_EQ(found.size(), 1U);
    const TAlbumRelease& release = *found[0];
    for (const auto& [field, value] : ExpectedOf(folder, u"AlbumGetInfoSuccess.json"_s)) {
        SCOPED_TRACE(field.toStdString());
        std::vector<size_t> indexes;
        const QString name = PathOf(field, indexes)[0];
        EXPECT_EQ(LastFmValue(release, name, indexes.empty() ? 0 : indexes[0]), value);
    }
}

} // namespace
