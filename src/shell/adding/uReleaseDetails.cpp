// SPDX-License-Identifier: GPL-3.0-or-later
#include "uReleaseDetails.h"

#include "uColumns.h"
#include "uDictionaries.h"
#include "uFieldEditors.h"
#include "uFieldText.h"
#include "uObjs.h"
#include "uTHStrings.h"

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

const QStringList& DetailColumns()
{
    static const QStringList columns{u"Artist"_s,
                                     u"ReleaseName"_s,
                                     u"MediaType"_s,
                                     u"ReleaseDate"_s,
                                     u"ReleaseYear"_s,
                                     u"OriginalReleaseDate"_s,
                                     u"OriginalReleaseYear"_s,
                                     u"Label"_s,
                                     u"Genre"_s,
                                     u"Barcode"_s,
                                     u"CatalogNo"_s,
                                     u"ASIN"_s,
                                     u"CountryCode"_s,
                                     u"Packaging"_s,
                                     u"Spars"_s,
                                     u"Channels"_s,
                                     u"Composer"_s,
                                     u"Conductor"_s,
                                     u"Orchestra"_s,
                                     u"Chorus"_s,
                                     u"IsLive"_s,
                                     u"IsRare"_s,
                                     u"IsCompilation"_s,
                                     u"IsReissue"_s,
                                     u"Price"_s,
                                     u"Currency"_s,
                                     u"Comments"_s,
                                     u"DataProvider"_s,
                                     u"Link"_s,
                                     u"BuyNowLink"_s};
    return columns;
}

QString DetailValue(const QString& column, const TVariant& value)
{
    if (VarIsNull(value))
        return {};
    if (value.typeId() == QMetaType::Bool)
        return GetLanguageString(value.toBool() ? u"cSYes"_s : u"cSNo"_s);
    const QString text = VarToStr(value);
    if (column != "CountryCode"_L1)
        return text;
    const auto& countries = Countries();
    const auto found = std::ranges::find(countries, text, &TCountry::Value);
    return found == countries.end() ? text : found->Description;
}

QString DetailLabel(const QString& column)
{
    for (const TColumnDef& def : ReleaseColumns()) {
        if (column.compare(QLatin1StringView(def.Name), Qt::CaseInsensitive) == 0)
            return GetLanguageString(QString::fromLatin1(def.LabelKey));
    }
    return column;
}

} // namespace

TDetailData BuildReleaseDetails(const TAlbumRelease& release)
{
    TDetailData detail;
    const auto text = [&](const QString& key) { return VarToStr(release.GetItem2(key)); };
    detail.Title = text(u"ReleaseName"_s);
    detail.Artist = text(u"Artist"_s);
    for (const TCoverPictureType type : {cptFrontLarge, cptFrontThumb}) {
        const TCoverPicture* cover = release.GetPicByType(type);
        if (cover && cover->HasImage() && detail.Cover.isEmpty())
            detail.Cover = cover->Bytes();
    }
    TDetailSection general{u"General"_s, GetLanguageString(u"cSTabGeneral"_s), {}};
    for (const QString& column : DetailColumns()) {
        const QString value = DetailValue(column, release.GetItem2(column));
        if (!value.isEmpty())
            general.Fields.push_back({column, DetailLabel(column), value, LinkOfField(column, value)});
    }
    detail.Sections.push_back(std::move(general));
    std::vector<TDetailTrackRow> rows;
    for (const TAlbumTrack& track : release.Tracks)
        rows.push_back({track.DiscNo, track.Side, track.TrackNo, track.TrackName,
                        track.TrackArtist == detail.Artist ? QString() : track.TrackArtist,
                        track.DurationFrac > 0 ? track.DurationFrac : track.DurationSec / 86400.0});
    AddDetailTracks(detail, rows);
    for (const TAlbumCredit& credit : release.Credits)
        detail.Credits.push_back({credit.Musician, credit.Credit});
    return detail;
}

} // namespace Kestrune
