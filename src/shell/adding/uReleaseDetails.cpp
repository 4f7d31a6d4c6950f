// SPDX-License-Identifier: GPL-3.0-or-later
#include "uReleaseDetails.h"

#include "uColumnNames.h"
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
    static const QStringList columns{Col::Artist,
                                     Col::ReleaseName,
                                     Col::MediaType,
                                     Col::ReleaseDate,
                                     Col::ReleaseYear,
                                     Col::OriginalReleaseDate,
                                     Col::OriginalReleaseYear,
                                     Col::Label,
                                     Col::Genre,
                                     Col::Barcode,
                                     Col::CatalogNO,
                                     Col::ASIN,
                                     Col::CountryCode,
                                     Col::Packaging,
                                     Col::Spars,
                                     Col::Channels,
                                     Col::Composer,
                                     Col::Conductor,
                                     Col::Orchestra,
                                     Col::Chorus,
                                     Col::IsLive,
                                     Col::IsRare,
                                     Col::IsCompilation,
                                     Col::IsReissue,
                                     Col::Price,
                                     Col::Currency,
                                     Col::Comments,
                                     Col::DataProvider,
                                     Col::Link,
                                     Col::BuyNowLink};
    return columns;
}

QString DetailValue(const QString& column, const TVariant& value)
{
    if (VarIsNull(value))
        return {};
    if (value.typeId() == QMetaType::Bool)
        return GetLanguageString(value.toBool() ? u"cSYes"_s : u"cSNo"_s);
    const QString text = VarToStr(value);
    if (column != Col::CountryCode)
        return text;
    const auto& countries = Countries();
    const auto found = std::ranges::find(countries, text, &TCountry::Value);
    return found == countries.end() ? text : found->Description;
}

QString DetailLabel(const QString& column)
{
    for (const TColumnDef& def : ReleaseColumns()) {
        if (column.compare(def.Name.View(), Qt::CaseInsensitive) == 0)
            return GetLanguageString(QString::fromLatin1(def.LabelKey));
    }
    return column;
}

} // namespace

TDetailData BuildReleaseDetails(const TAlbumRelease& release)
{
    TDetailData detail;
    const auto text = [&](const QString& key) { return VarToStr(release.GetItem2(key)); };
    detail.Title = text(Col::ReleaseName);
    detail.Artist = text(Col::Artist);
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
