// SPDX-License-Identifier: GPL-3.0-or-later
#include "uFieldTable.h"

#include <QHash>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr TFieldInfo Rows[] = {
    {"Artist", fsNone, {}, 170},
    {"ReleaseName", fsNone, {}, 210},
    {"ReleaseArtist", fsNone, {}, 160},
    {"TrackTitle", fsNone, {}, 240},
    {"Rating_Calc", fsNone, ekRating, 88},
    {"Instrument", fsNone, ekList},
    {"FilePath", fsNone, {}, 240},
    {"ReleaseYear", fsGeneral, ekNumber},
    {"ReleaseDate", fsGeneral},
    {"OriginalReleaseYear", fsGeneral},
    {"MediaType", fsGeneral, ekList, 92},
    {"DiscCount", fsGeneral, ekNumber},
    {"Genre", fsGeneral, ekList, 104},
    {"Genres", fsGeneral, ekTokens},
    {"Label", fsGeneral, {}, 120},
    {"CatalogNO", fsGeneral, ekText, 104},
    {"CountryCode", fsGeneral, ekChoice},
    {"Barcode", fsGeneral, ekText, 116},
    {"Status", fsGeneral, ekList, 110},
    {"Location", fsGeneral, ekList, 104},
    {"No", fsGeneral, ekNumber},
    {"SeqNo", fsGeneral},
    {"Quantity", fsGeneral, ekNumber},
    {"Condition", fsGeneral, ekList, 110},
    {"ConditionMedia", fsGeneral, ekList, 110},
    {"Packaging", fsGeneral, ekList},
    {"MediaColor", fsGeneral},
    {"Channels", fsGeneral, ekList},
    {"Spars", fsGeneral, ekList},
    {"Sides", fsGeneral},
    {"Artists", fsGeneral, ekTokens},
    {"IsLive", fsGeneral, ekChoice},
    {"IsRare", fsGeneral, ekChoice},
    {"IsReissue", fsGeneral, ekChoice},
    {"IsCompilation", fsGeneral, ekChoice},
    {"IsPromo", fsGeneral, ekChoice},
    {"IsSplit", fsGeneral},
    {"ASIN", fsGeneral, repASIN},
    {"DiscogsID", fsGeneral, repDiscogs},
    {"MusicBrainzID", fsGeneral, repMusicBrainz},
    {"DataProvider", fsGeneral, ekChoice},
    {"Link", fsGeneral, {}, 180},
    {"BuyNowLink", fsGeneral},
    {"FolderPath", fsGeneral, repSelectFolder, 240},
    {"DateAdded", fsGeneral, {}, 140},
    {"LastModified", fsGeneral, {}, 140},
    {"Price", fsPurchase},
    {"Currency", fsPurchase},
    {"PriceValue", fsPurchase},
    {"SellingPrice", fsPurchase},
    {"DatePurchased", fsPurchase},
    {"PurchaseStore", fsPurchase, ekText, 140},
    {"OwnerId", fsPurchase, ekChoice},
    {"PurchasedFrom", fsPurchase, ekChoice},
    {"BorrowedFrom", fsPurchase, ekChoice},
    {"Composer", fsClassical, ekText, 160},
    {"Composition", fsClassical, ekText, 180},
    {"Conductor", fsClassical, ekText, 150},
    {"Orchestra", fsClassical, ekText, 170},
    {"Chorus", fsClassical, ekText, 150},
    {"Custom1", fsCustom},
    {"Custom2", fsCustom},
    {"Custom3", fsCustom},
    {"Custom4", fsCustom},
    {"Custom5", fsCustom},
    {"Custom6", fsCustom},
    {"Custom7", fsCustom},
    {"Custom8", fsCustom},
    {"Custom9", fsCustom},
    {"Custom10", fsCustom},
    {"Comments", fsComments, {}, 240},
};

} // namespace

std::span<const TFieldInfo> FieldTable() { return Rows; }

const TFieldInfo& FieldInfoOf(const QString& column)
{
    static const QHash<QString, const TFieldInfo*> rows = [] {
        QHash<QString, const TFieldInfo*> hash;
        for (const TFieldInfo& row : Rows)
            hash.insert(QString::fromLatin1(row.Column).toLower(), &row);
        return hash;
    }();
    static constexpr TFieldInfo none{""};
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
