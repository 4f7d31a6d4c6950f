// SPDX-License-Identifier: GPL-3.0-or-later
#include "uFieldTable.h"

#include "uColumnNames.h"

#include <QHash>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr TFieldInfo Rows[] = {
    {Col::Artist, fsNone, {}, 170},
    {Col::ReleaseName, fsNone, {}, 210},
    {Col::ReleaseArtist, fsNone, {}, 160},
    {Col::TrackTitle, fsNone, {}, 240},
    {Col::Rating_Calc, fsNone, ekRating, 88},
    {Col::Instrument, fsNone, ekList},
    {Col::FilePath, fsNone, {}, 240},
    {Col::ReleaseYear, fsGeneral, ekNumber},
    {Col::ReleaseDate, fsGeneral},
    {Col::OriginalReleaseYear, fsGeneral},
    {Col::MediaType, fsGeneral, ekList, 92},
    {Col::DiscCount, fsGeneral, ekNumber},
    {Col::Genre, fsGeneral, ekList, 104},
    {Col::Genres, fsGeneral, ekTokens},
    {Col::Label, fsGeneral, {}, 120},
    {Col::CatalogNO, fsGeneral, ekText, 104},
    {Col::CountryCode, fsGeneral, ekChoice},
    {Col::Barcode, fsGeneral, ekText, 116},
    {Col::Status, fsGeneral, ekList, 110},
    {Col::Location, fsGeneral, ekList, 104},
    {Col::No, fsGeneral, ekNumber},
    {Col::SeqNo, fsGeneral},
    {Col::Quantity, fsGeneral, ekNumber},
    {Col::Condition, fsGeneral, ekList, 110},
    {Col::ConditionMedia, fsGeneral, ekList, 110},
    {Col::Packaging, fsGeneral, ekList},
    {Col::MediaColor, fsGeneral},
    {Col::Channels, fsGeneral, ekList},
    {Col::Spars, fsGeneral, ekList},
    {Col::Sides, fsGeneral},
    {Col::Artists, fsGeneral, ekTokens},
    {Col::IsLive, fsGeneral, ekChoice},
    {Col::IsRare, fsGeneral, ekChoice},
    {Col::IsReissue, fsGeneral, ekChoice},
    {Col::IsCompilation, fsGeneral, ekChoice},
    {Col::IsPromo, fsGeneral, ekChoice},
    {Col::IsSplit, fsGeneral},
    {Col::ASIN, fsGeneral, repASIN},
    {Col::DiscogsID, fsGeneral, repDiscogs},
    {Col::MusicBrainzID, fsGeneral, repMusicBrainz},
    {Col::DataProvider, fsGeneral, ekChoice},
    {Col::Link, fsGeneral, {}, 180},
    {Col::BuyNowLink, fsGeneral},
    {Col::FolderPath, fsGeneral, repSelectFolder, 240},
    {Col::DateAdded, fsGeneral, {}, 140},
    {Col::LastModified, fsGeneral, {}, 140},
    {Col::Price, fsPurchase},
    {Col::Currency, fsPurchase},
    {Col::PriceValue, fsPurchase},
    {Col::SellingPrice, fsPurchase},
    {Col::DatePurchased, fsPurchase},
    {Col::PurchaseStore, fsPurchase, ekText, 140},
    {Col::OwnerId, fsPurchase, ekChoice},
    {Col::PurchasedFrom, fsPurchase, ekChoice},
    {Col::BorrowedFrom, fsPurchase, ekChoice},
    {Col::Composer, fsClassical, ekText, 160},
    {Col::Composition, fsClassical, ekText, 180},
    {Col::Conductor, fsClassical, ekText, 150},
    {Col::Orchestra, fsClassical, ekText, 170},
    {Col::Chorus, fsClassical, ekText, 150},
    {Col::Custom1, fsCustom},
    {Col::Custom2, fsCustom},
    {Col::Custom3, fsCustom},
    {Col::Custom4, fsCustom},
    {Col::Custom5, fsCustom},
    {Col::Custom6, fsCustom},
    {Col::Custom7, fsCustom},
    {Col::Custom8, fsCustom},
    {Col::Custom9, fsCustom},
    {Col::Custom10, fsCustom},
    {Col::Comments, fsComments, {}, 240},
};

} // namespace

std::span<const TFieldInfo> FieldTable() { return Rows; }

const TFieldInfo& FieldInfoOf(const QString& column)
{
    static const QHash<QString, const TFieldInfo*> rows = [] {
        QHash<QString, const TFieldInfo*> hash;
        for (const TFieldInfo& row : Rows)
            hash.insert(row.Column.View().toString().toLower(), &row);
        return hash;
    }();
    static constexpr TFieldInfo none{u""};
    const TFieldInfo* row = rows.value(column.toLower());
    return row ? *row : none;
}

QString SectionId(TFieldSection section)
{
    switch (section) {
    case fsGeneral: return u"General"_s;
    case fsPurchase: return u"Purchase"_s;
    case fsClassical: return u"Classical"_s;
    case fsCustom: return u"Custom"_s;
    case fsComments: return u"Comments"_s;
    case fsNone: break;
    }
    return {};
}

QString SectionTitleKey(TFieldSection section)
{
    switch (section) {
    case fsGeneral: return u"cSSectionGeneral"_s;
    case fsPurchase: return u"cSSectionPurchase"_s;
    case fsClassical: return u"cSSectionClassical"_s;
    case fsCustom: return u"cSSectionCustom"_s;
    case fsComments: return u"cSSectionComments"_s;
    case fsNone: break;
    }
    return {};
}

} // namespace Kestrune
