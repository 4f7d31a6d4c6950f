// SPDX-License-Identifier: GPL-3.0-or-later
#include "TagsLibrary_p.h"
#include "uAPEv2Tag.h"
#include "uMP4Tag.h"
#include "uOggTag.h"
#include "uWAVTag.h"
#include "uWMATag.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <unordered_map>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

using TNameMap = std::unordered_map<std::string_view, QString>;

// The text atoms whose names begin with 0xA9 are not among them: artist, title and album of an MP4 file come from
// elsewhere.
const TNameMap& MP4Map()
{
    static const TNameMap map = {
        {"aART", u"ALBUMARTIST"_s},
        {"cprt", u"COPYRIGHT"_s},
        {"pgap", u"GAPLESSPLAYBACK"_s},
        {"cpil", u"PARTOFCOMPILATION"_s},
        {"tmpo", u"BPM"_s},
        {"SErg", u"RATING"_s},
        {"tvnn", u"TVNETWORK"_s},
        {"tvsh", u"SHOW"_s},
        {"tven", u"EPISODE"_s},
        {"tvsn", u"SEASONNUMBER"_s},
        {"tves", u"EPISODENUMBER"_s},
        {"hdvd", u"HDVIDEO"_s},
        {"desc", u"DESCRIPTION"_s},
        {"ldes", u"LONGDESCRIPTION"_s},
        {"stdo", u"STUDIO"_s},
        {"TPUB", u"PUBLISHER"_s},
        {"TIPL", u"TIPL"_s},
        {"TMCL", u"TMCL"_s},
        {"soar", u"ARTISTSORT"_s},
        {"sonm", u"TITLESORT"_s},
        {"soaa", u"ALBUMARTISTSORT"_s},
        {"soal", u"ALBUMSORT"_s},
        {"soco", u"COMPOSERSORT"_s},
        {"sosn", u"SHOWSORT"_s},
        {"pcst", u"PODCAST"_s},
        {"purl", u"PODCASTURL"_s},
        {"keyw", u"PODCASTKEYWORDS"_s},
        {"catg", u"PODCASTCATEGORY"_s},
        {"apID", u"PURCHASEACCOUNT"_s},
        {"akID", u"PURCHASEACCOUNTTYPE"_s},
        {"purd", u"PURCHASEDATE"_s},
        {"SEpc", u"PLAYCOUNT"_s},
        {"plID", u"ITUNESALBUMID"_s},
        {"atID", u"ITUNESARTISTID"_s},
        {"sfID", u"ITUNESCOUNTRYID"_s},
        {"geID", u"ITUNESGENREID"_s},
        {"xid ", u"XID"_s},
    };
    return map;
}

const std::unordered_map<QString, QString>& WAVMap()
{
    static const std::unordered_map<QString, QString> map = {
        {u"IART"_s, u"ARTIST"_s},      {u"INAM"_s, u"TITLE"_s},
        {u"ICOM"_s, u"COMPOSER"_s},    {u"IURL"_s, u"URL"_s},
        {u"IALB"_s, u"ALBUM"_s},       {u"IPRD"_s, u"ALBUM"_s},
        {u"ICOP"_s, u"COPYRIGHT"_s},   {u"BCPR"_s, u"COPYRIGHT"_s},
        {u"IGNR"_s, u"GENRE"_s},       {u"ICRD"_s, u"RECORDINGDATE"_s},
        {u"IYER"_s, u"YEAR"_s},        {u"ITRK"_s, u"TRACKNUMBER"_s},
        {u"itrk"_s, u"TRACKNUMBER"_s}, {u"IBPM"_s, u"BPM"_s},
        {u"BKEY"_s, u"KEY"_s},         {u"BTPO"_s, u"TEMPO"_s},
        {u"IENG"_s, u"PRODUCED"_s},    {u"STDO"_s, u"STUDIO"_s},
        {u"IPUB"_s, u"PUBLISHER"_s},   {u"ITCH"_s, u"ENCODEDBY"_s},
        {u"ISFT"_s, u"ENCODERTOOL"_s}, {u"IKEY"_s, u"KEYWORDS"_s},
        {u"ISRF"_s, u"MEDIA"_s},       {u"TIPL"_s, u"TIPL"_s},
        {u"TMCL"_s, u"TMCL"_s},        {u"BEND"_s, u"MUSICEND"_s},
        {u"BERG"_s, u"MUSICENERGY"_s}, {u"BTXR"_s, u"MUSICTEXTURE"_s},
        {u"HKST"_s, u"HOOKSTART"_s},   {u"HKEN"_s, u"HOOKEND"_s},
        {u"ICMT"_s, u"COMMENT"_s},     {u"ILYR"_s, u"LYRICS"_s},
        {u"ISBJ"_s, u"SUBJECT"_s},     {u"IARL"_s, u"ARCHIVAL LOCATION"_s},
    };
    return map;
}

const std::unordered_map<QString, QString>& WMAMap()
{
    static const std::unordered_map<QString, QString> map = {
        {u"Title"_s, u"TITLE"_s},
        {u"Author"_s, u"ARTIST"_s},
        {u"Copyright"_s, u"COPYRIGHT"_s},
        {u"Description"_s, u"COMMENT"_s},
        {u"CopyrightURL"_s, u"COPYRIGHTURL"_s},
        {u"WM/AlbumTitle"_s, u"ALBUM"_s},
        {u"WM/AlbumArtist"_s, u"ALBUMARTIST"_s},
        {u"WM/AlbumArtistSort"_s, u"ALBUMARTISTSORT"_s},
        {u"WM/AlbumSortOrder"_s, u"ALBUMSORT"_s},
        {u"WM/ArtistSortOrder"_s, u"ARTISTSORT"_s},
        {u"WM/TitleSortOrder"_s, u"TITLESORT"_s},
        {u"WM/ComposerSort"_s, u"COMPOSERSORT"_s},
        {u"WM/AudioFileURL"_s, u"AUDIOFILEURL"_s},
        {u"WM/AudioSourceURL"_s, u"OFFICIALAUDIOSOURCEURL"_s},
        {u"WM/AuthorURL"_s, u"ARTISTURL"_s},
        {u"WM/Barcode"_s, u"BARCODE"_s},
        {u"WM/BeatsPerMinute"_s, u"BPM"_s},
        {u"WM/CatalogNo"_s, u"CATALOGNUMBER"_s},
        {u"WM/Composer"_s, u"COMPOSER"_s},
        {u"WM/Conductor"_s, u"CONDUCTOR"_s},
        {u"WM/ContentGroupDescription"_s, u"GROUPING"_s},
        {u"WM/Country"_s, u"COUNTRY"_s},
        {u"WM/EncodedBy"_s, u"ENCODEDBY"_s},
        {u"WM/EncodingSettings"_s, u"SOFTWARESETTINGS"_s},
        {u"WM/Genre"_s, u"GENRE"_s},
        {u"WM/InitialKey"_s, u"KEY"_s},
        {u"WM/ISRC"_s, u"ISRC"_s},
        {u"WM/Language"_s, u"LANGUAGE"_s},
        {u"WM/Lyrics"_s, u"LYRICS"_s},
        {u"WM/Media"_s, u"MEDIA"_s},
        {u"WM/ModifiedBy"_s, u"MIXARTIST"_s},
        {u"WM/Mood"_s, u"MOOD"_s},
        {u"WM/OriginalAlbumTitle"_s, u"ORIGINALTITLE"_s},
        {u"WM/OriginalArtist"_s, u"ORIGINALARTIST"_s},
        {u"WM/OriginalFilename"_s, u"ORIGINALFILENAME"_s},
        {u"WM/OriginalLyricist"_s, u"ORIGINALLYRICIST"_s},
        {u"WM/OriginalReleaseTime"_s, u"ORIGINALRELEASEDATE"_s},
        {u"WM/OriginalReleaseYear"_s, u"ORIGINALYEAR"_s},
        {u"WM/PartOfSet"_s, u"DISCNUMBER"_s},
        {u"WM/Producer"_s, u"PRODUCER"_s},
        {u"WM/PromotionURL"_s, u"PROMOTIONURL"_s},
        {u"WM/Publisher"_s, u"PUBLISHER"_s},
        {u"WM/RadioStationName"_s, u"RADIOSTATIONNAME"_s},
        {u"WM/RadioStationOwner"_s, u"RADIOSTATIONOWNER"_s},
        {u"WM/SetSubTitle"_s, u"DISCSUBTITLE"_s},
        {u"WM/SharedUserRating"_s, u"RATING"_s},
        {u"WM/SubTitle"_s, u"SUBTITLE"_s},
        {u"WM/ToolName"_s, u"ENCODERTOOL"_s},
        {u"WM/TrackNumber"_s, u"TRACKNUMBER"_s},
        {u"WM/UserWebURL"_s, u"URL"_s},
        {u"WM/Writer"_s, u"LYRICIST"_s},
        {u"WM/Year"_s, u"YEAR"_s},
        {u"MusicBrainz/Track Id"_s, u"MUSICBRAINZ_TRACKID"_s},
        {u"MusicBrainz/Album Id"_s, u"MUSICBRAINZ_ALBUMID"_s},
        {u"MusicBrainz/Artist Id"_s, u"MUSICBRAINZ_ARTISTID"_s},
        {u"MusicBrainz/Album Artist Id"_s, u"MUSICBRAINZ_ALBUMARTISTID"_s},
        {u"MusicBrainz/Album Release Country"_s, u"RELEASECOUNTRY"_s},
        {u"MusicBrainz/Album Status"_s, u"MUSICBRAINZ_ALBUMSTATUS"_s},
        {u"MusicBrainz/Album Type"_s, u"MUSICBRAINZ_ALBUMTYPE"_s},
    };
    return map;
}

// Ratings of Windows Media go to 99, those of the unified list to 255.
QString ScaledRating(const QString& value)
{
    return QString::number(std::lround(std::clamp(value.toDouble(), 0.0, 99.0) / 99 * 255));
}

// Names under which the Xtra values are known; the others of that atom are not carried over.
QString XtraName(const QString& name)
{
    static const QStringList known = {u"SharedUserRating"_s,
                                      u"AuthorURL"_s,
                                      u"PromotionURL"_s,
                                      u"SubTitle"_s,
                                      u"Category"_s,
                                      u"Producer"_s,
                                      u"EncodedBy"_s,
                                      u"Conductor"_s,
                                      u"ParentalRating"_s,
                                      u"Writer"_s,
                                      u"Director"_s,
                                      u"Publisher"_s,
                                      u"Mood"_s,
                                      u"ContentDistributor"_s,
                                      u"InitialKey"_s,
                                      u"Period"_s,
                                      u"PartOfSet"_s,
                                      u"MediaClassPrimaryID"_s,
                                      u"MediaClassSecondaryID"_s,
                                      u"WMContentID"_s,
                                      u"WMCollectionID"_s,
                                      u"WMCollectionGroupID"_s};
    const QString bare = name.startsWith(u"WM/"_s) ? name.sliced(3) : QString();
    return known.contains(bare) ? bare : QString();
}

void AddAtom(TTagBatch& batch, const TMP4Atom& atom)
{
    const auto& map = MP4Map();
    const auto mapped = map.find(atom.Name.Text());
    if (mapped != map.end()) {
        const bool isList = atom.Name == TFourCC("TIPL") || atom.Name == TFourCC("TMCL");
        batch.Add(mapped->second, isList ? atom.GetAsList() : atom.GetAsText());
    } else if (atom.Name == TFourCC("covr")) {
        for (const TMP4Data& data : atom.Data) {
            if (data.Bytes.isEmpty() || batch.Pictures.size() >= MostPictures)
                continue;
            TTagPicture& picture = batch.Pictures.emplace_back();
            picture.Data = data.Bytes;
            picture.CoverType = 3;
        }
    } else if (atom.Name == TFourCC("----")) {
        for (const QString& text : atom.GetAsTexts())
            batch.Add(atom.InnerName, text);
    }
}

// Values that the reader derives take the place of the fields of these names, the tag's own included.
void AddDerived(TTagBatch& batch, const QString& name, const QString& value, const QString& otherName = {})
{
    if (value.isEmpty() || value == u"0"_s)
        return;
    std::erase_if(batch.Items, [&](const TTagBatch::TItem& item) {
        return EqualsNoCase(item.Tag->Name, name) || (!otherName.isEmpty() && EqualsNoCase(item.Tag->Name, otherName));
    });
    if (!otherName.isEmpty())
        batch.Drop(otherName);
    batch.Add(name, value);
}

using TStatements = TSeen<std::pair<QString, QString>>;

// `stated` are the names and values so far: writers state an attribute once in the old object and again in the newer
// ones.
void AddWMAAttribute(TTagBatch& batch, TStatements& stated, const TTagField& field, bool hasTrackNumber)
{
    static const QStringList skipped = {u"WMFSDKVersion"_s, u"WMFSDKNeeded"_s, u"IsVBR"_s, u"ASFLeakyBucketPairs"_s};
    if (skipped.contains(field.Name))
        return;
    if (field.Name == u"WM/Track"_s) { // the older number, which counts from 0
        if (!hasTrackNumber)
            batch.Add(u"TRACKNUMBER"_s, QString::number(field.Value.toLongLong() + 1));
        return;
    }
    const auto& map = WMAMap();
    const auto mapped = map.find(field.Name);
    const QString name = mapped == map.end() ? field.Name : mapped->second;
    if (!stated.Add({name, field.Value}))
        return;
    if (name == u"TRACKNUMBER"_s)
        batch.AddNumberOfTotal(field.Value, name, u"TOTALTRACKS"_s);
    else if (name == u"DISCNUMBER"_s)
        batch.AddNumberOfTotal(field.Value, name, u"TOTALDISCS"_s);
    else
        batch.Add(name, name == u"RATING"_s ? ScaledRating(field.Value) : field.Value);
}

// A picture block of FLAC in Ogg has no field name of its own.
void TakePictures(TTagBatch& batch, const std::vector<TTagPicture>& pictures)
{
    batch.Pictures.insert(batch.Pictures.end(), pictures.begin(), pictures.end());
}

} // namespace

TTagBatch BatchOf(const TAPEv2Tag& tag)
{
    TTagBatch batch;
    batch.AddFields(tag.Fields);
    TakePictures(batch, tag.Pictures);
    return batch;
}

TTagBatch BatchOf(const TOpusTag& tag)
{
    TTagBatch batch;
    batch.AddFields(tag.Comments.Fields);
    TakePictures(batch, tag.Comments.Pictures);
    return batch;
}

TTagBatch BatchOf(const TMP4Tag& tag)
{
    TTagBatch batch;
    for (const TMP4Atom& atom : tag.Atoms)
        AddAtom(batch, atom);
    AddDerived(batch, u"GENRE"_s, tag.GetGenre());
    AddDerived(batch, u"MEDIA"_s, tag.GetMediaType());
    AddDerived(batch, u"TRACKNUMBER"_s, QString::number(tag.GetTrack()), u"TRACK"_s);
    AddDerived(batch, u"TOTALTRACKS"_s, QString::number(tag.GetTotalTracks()));
    AddDerived(batch, u"DISCNUMBER"_s, QString::number(tag.GetDisc()), u"DISC"_s);
    AddDerived(batch, u"TOTALDISCS"_s, QString::number(tag.GetTotalDiscs()));
    AddDerived(batch, u"PURCHASECOUNTRY"_s, tag.GetPurchaseCountry());
    for (const TMP4Xtra& xtra : tag.Xtra)
        if (const QString name = XtraName(xtra.Name); !name.isEmpty())
            batch.Add(name, name == u"SharedUserRating"_s ? ScaledRating(xtra.Value) : xtra.Value);
    return batch;
}

TTagBatch BatchOf(const TWAVTag& tag)
{
    TTagBatch batch;
    const auto& map = WAVMap();
    for (const TTagField& frame : tag.Frames) {
        const auto mapped = map.find(frame.Name);
        if (mapped == map.end())
            continue;
        if (mapped->second == u"TRACKNUMBER"_s)
            batch.AddNumberOfTotal(frame.Value, mapped->second, u"TOTALTRACKS"_s);
        else
            batch.Add(mapped->second, frame.Value);
    }
    for (const auto* fields : {&tag.Broadcast, &tag.Cart})
        for (const TTagField& field : *fields)
            batch.Add(field.Name, field.Value);
    return batch;
}

TTagBatch BatchOf(const TWMATag& tag)
{
    TTagBatch batch;
    const bool hasTrackNumber =
        std::ranges::find(tag.Attributes, u"WM/TrackNumber"_s, &TTagField::Name) != tag.Attributes.end();
    TStatements stated;
    for (const TTagField& field : tag.Attributes)
        AddWMAAttribute(batch, stated, field, hasTrackNumber);
    batch.Pictures = tag.Pictures;
    return batch;
}

} // namespace Kestrune
