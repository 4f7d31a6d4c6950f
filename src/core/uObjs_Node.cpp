// SPDX-License-Identifier: GPL-3.0-or-later
#include "uColumnNames.h"
#include "uDefaults.h"
#include "uObjs.h"
#include "uXml.h"

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

enum class TNodeValueKind : quint8 { Text, Int32, Int64, Double };

struct TNodeAttribute {
    const char16_t* Attribute;
    TColumnName Key;
    TNodeValueKind Kind;
    bool KeepsWhenAbsent;
};

constexpr TNodeAttribute LeadingAttributes[] = {
    {u"DATAPROVIDER", Col::DataProvider, TNodeValueKind::Text, true},
    {u"DISCOGS_ID", Col::DiscogsID, TNodeValueKind::Int64, false},
    {u"MUSICBRAINZ_ID", Col::MusicBrainzID, TNodeValueKind::Text, true},
    {u"ARTIST", Col::Artist, TNodeValueKind::Text, true},
    {u"RELEASE_TITLE", Col::ReleaseName, TNodeValueKind::Text, true},
    {u"RELEASE_TYPE", Col::MediaType, TNodeValueKind::Text, true},
    {u"ASIN", Col::ASIN, TNodeValueKind::Text, true},
    {u"LABEL", Col::Label, TNodeValueKind::Text, true},
    {u"CURRENCY", Col::Currency, TNodeValueKind::Text, true},
    {u"EAN", Col::Barcode, TNodeValueKind::Text, true},
    {u"CATALOG_NO", Col::CatalogNO, TNodeValueKind::Text, true},
    {u"RELEASE_DATE", Col::ReleaseDate, TNodeValueKind::Text, true},
    {u"RELEASE_YEAR", Col::ReleaseYear, TNodeValueKind::Int32, true},
};

constexpr TNodeAttribute MiddleAttributes[] = {
    {u"GENRE", Col::Genre, TNodeValueKind::Text, true},
    {u"NOTES", Col::Comments, TNodeValueKind::Text, true},
};

struct TImageTypeName {
    const char16_t* Name;
    TCoverPictureType Type;
};

constexpr TImageTypeName ImageTypeNames[] = {
    {u"thumb", cptFrontThumb},     {u"large", cptFrontLarge},       {u"back-thumb", cptBackThumb},
    {u"back-large", cptBackLarge}, {u"media-thumb", cptMediaThumb}, {u"media-large", cptMediaLarge},
};

TVariant ConvertAttribute(const QString& text, TNodeValueKind kind, const TVariant& absent)
{
    bool ok = true;
    TVariant value;
    switch (kind) {
    case TNodeValueKind::Text: value = text; break;
    case TNodeValueKind::Int32: value = text.trimmed().toInt(&ok); break;
    case TNodeValueKind::Int64: value = text.trimmed().toLongLong(&ok); break;
    case TNodeValueKind::Double: {
        value = VarToDouble(text);
        ok = !VarIsNull(value);
        break;
    }
    }
    return ok ? value : absent;
}

TVariant ReadAttribute(const TXmlElement& node, const QString& name, TNodeValueKind kind, const TVariant& absent)
{
    const auto text = node.Attribute(name);
    return text ? ConvertAttribute(*text, kind, absent) : absent;
}

void ReadAttributeInto(TAlbumRelease& release, const TXmlElement& node, const TNodeAttribute& row)
{
    const QString key = row.Key;
    const TVariant absent = row.KeepsWhenAbsent ? release.GetItem2(key) : TVariant();
    release.SetItem2(key, ReadAttribute(node, QString::fromUtf16(row.Attribute), row.Kind, absent));
}

QString AttributeText(const TXmlElement& node, const QString& name) { return node.Attribute(name).value_or(QString()); }

int AttributeNumber(const TXmlElement& node, const QString& name, int otherwise)
{
    bool ok = false;
    const int value = AttributeText(node, name).trimmed().toInt(&ok);
    return ok ? value : otherwise;
}

void ReadCountry(TAlbumRelease& release, const TXmlElement& node)
{
    TVariant code = NormalizeCountry(AttributeText(node, u"COUNTRY"_s));
    if (VarIsNull(code))
        code = NormalizeCountry(AttributeText(node, u"COUNTRY_TEXT"_s));
    release.SetItem2(Col::CountryCode, code);
}

void MakeShopLink(TAlbumRelease& release)
{
    const TVariant asin = release.GetItem2(Col::ASIN);
    if (VarIsNull(asin))
        return;
    release.SetItem2(Col::BuyNowLink, u"https://www.amazon%1/exec/obidos/ASIN/%2/%3"_s.arg(
                                          u".com"_s, VarToStr(asin), Defaults().OEM.AmazonAffiliateName));
}

void ReadTexts(const TXmlElement& node, const QString& container, QStringList& into)
{
    const TXmlElement list = node.Child(container);
    if (list.IsNull())
        return;
    into.clear();
    for (const TXmlElement& child : list.Children()) {
        if (const QString text = child.Text(); !text.isEmpty())
            into.append(text);
    }
}

void ReadCredits(TAlbumRelease& release, const TXmlElement& node)
{
    const TXmlElement list = node.Child(u"Credits"_s);
    if (list.IsNull())
        return;
    release.Credits.clear();
    for (const TXmlElement& child : list.Children()) {
        if (const QString musician = AttributeText(child, u"musician"_s); !musician.isEmpty())
            release.Credits.push_back(TAlbumCredit::Make(musician, AttributeText(child, u"credit"_s)));
    }
}

TAlbumTrack ReadTrack(const TXmlElement& node, const QString& releaseArtist)
{
    TAlbumTrack track;
    track.TrackArtist = node.Attribute(u"TRACK_ARTIST"_s).value_or(releaseArtist);
    track.TrackName = AttributeText(node, u"TRACK_TITLE"_s);
    track.TrackInternalID = AttributeText(node, u"TRACK_ID"_s);
    track.TrackNo = AttributeNumber(node, u"TRACK_NO"_s, 0);
    track.DurationSec = AttributeNumber(node, u"TRACK_DURATION_SEC"_s, 0);
    if (const int seconds = ParseTimeOfDay(AttributeText(node, u"TRACK_DURATION"_s)); seconds >= 0)
        track.DurationSec = seconds;
    track.DiscNo = AttributeNumber(node, u"DISC_NO"_s, 1);
    track.Side = AttributeText(node, u"SIDE"_s);
    return track;
}

void ReadTracks(TAlbumRelease& release, const TXmlElement& node)
{
    const TXmlElement list = node.Child(u"Tracks"_s);
    if (list.IsNull())
        return;
    release.Tracks.clear();
    const QString artist = VarToStr(release.GetItem2(Col::Artist));
    for (const TXmlElement& child : list.Children()) {
        if (child.Name().toLower() == "track"_L1)
            release.Tracks.push_back(ReadTrack(child, artist));
    }
}

TCoverPictureType ImageType(const QString& name)
{
    for (const TImageTypeName& row : ImageTypeNames) {
        if (name.toLower() == QStringView(row.Name))
            return row.Type;
    }
    return cptOther;
}

void ReadImages(TAlbumRelease& release, const TXmlElement& node)
{
    for (const TXmlElement& child : node.Child(u"Images"_s).Children()) {
        if (child.Name().toLower() == "image"_L1)
            release.AddPicture(ImageType(AttributeText(child, u"type"_s))).SetURL(child.Text());
    }
}

} // namespace

void LoadAlbumReleaseFromNode(TAlbumRelease& release, const TXmlElement& node)
{
    release.ReleaseInternalID = node.Attribute(u"RELEASE_ID"_s).value_or(release.ReleaseInternalID);
    release.ArtistInternalID = node.Attribute(u"ARTIST_ID"_s).value_or(release.ArtistInternalID);
    for (const TNodeAttribute& row : LeadingAttributes)
        ReadAttributeInto(release, node, row);
    ReadCountry(release, node);
    for (const TNodeAttribute& row : MiddleAttributes)
        ReadAttributeInto(release, node, row);
    MakeShopLink(release);
    ReadAttributeInto(release, node, {u"NUMBEROFDISCS", Col::DiscCount, TNodeValueKind::Text, true});
    if (VarIsNull(release.GetItem2(Col::DiscCount)))
        release.SetItem2(Col::DiscCount, 1);
    ReadAttributeInto(release, node, {u"PRICE", Col::Price, TNodeValueKind::Double, true});

    ReadTexts(node, u"Genres"_s, release.Genres);
    ReadTexts(node, u"ReleaseTypes"_s, release.MediaTypes);
    ReadTexts(node, u"Labels"_s, release.Labels);
    ReadCredits(release, node);
    ReadTracks(release, node);
    ReadImages(release, node);
}

} // namespace Kestrune
