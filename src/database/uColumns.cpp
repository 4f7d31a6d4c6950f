// SPDX-License-Identifier: GPL-3.0-or-later
#include "uColumns.h"

#include "uDefaults.h"
#include "uTHStrings.h"

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

// Sizes are the longest texts that editors allow, 0 where there is no limit. Custom columns hold whatever their
// definition in the settings says; the file gives them numeric affinity.
constexpr TColumnDef ReleaseColumnRows[] = {
    {"ID", fkInteger, 0, "", cfAutoIncrement},
    {"Artist", fkString, 200, "cSReleasesFieldArtist"},
    {"ReleaseName", fkString, 500, "cSReleasesFieldReleaseName", cfRequired},
    {"MediaType", fkString, 500, "cSReleasesFieldMediaTypeId"},
    {"Genre", fkString, 500, "cSReleasesFieldGenreId"},
    {"Label", fkString, 200, "cSReleasesFieldLabel"},
    {"Location", fkString, 500, "cSReleasesFieldLocation"},
    {"ReleaseDate", fkDate, 0, "cSReleasesFieldReleaseDate"},
    {"ReleaseYear", fkInteger, 0, "cSReleasesFieldReleaseYear"},
    {"Barcode", fkString, 50, "cSReleasesFieldBarcode"},
    {"BuyNowLink", fkString, 3000, "cSReleasesFieldBuyNowLink"},
    {"No", fkInteger, 0, "cSReleasesFieldNo"},
    {"Status", fkString, 500, "cSReleasesFieldStatusId"},
    {"Quantity", fkInteger, 0, "cSReleasesFieldQuantity"},
    {"ASIN", fkString, 20, "cSReleasesFieldASIN"},
    {"Rating", fkInteger, 0, "cSReleasesFieldRating"},
    {"Condition", fkString, 500, "cSReleasesFieldConditionId"},
    {"CountryCode", fkString, 2, "cSReleasesFieldCountryCode"},
    {"DataProvider", fkString, 50, "cSReleasesFieldDataProvider"},
    {"Comments", fkMemo, 0, "cSReleasesFieldComments"},
    {"Composer", fkString, 200, "cSReleasesFieldComposer"},
    {"Composition", fkString, 200, "cSReleasesFieldComposition"},
    {"Conductor", fkString, 200, "cSReleasesFieldConductor"},
    {"Orchestra", fkString, 200, "cSReleasesFieldOrcherstra"},
    {"Chorus", fkString, 200, "cSReleasesFieldChorus"},
    {"Channels", fkString, 500, "cSReleasesFieldChanellsId"},
    {"IsLive", fkBoolean, 0, "cSReleasesFieldIsLive"},
    {"IsRare", fkBoolean, 0, "cSReleasesFieldIsRare"},
    {"OwnerId", fkInteger, 0, "cSReleasesFieldOwnerId"},
    {"Spars", fkString, 3, "cSReleasesFieldSpars"},
    {"Price", fkFloat, 0, "cSReleasesFieldPrice"},
    {"Currency", fkString, 3, "cSReleasesFieldCurrency"},
    {"DatePurchased", fkDate, 0, "cSReleasesFieldDatePurchased"},
    {"PurchaseStore", fkString, 200, "cSReleasesFieldPurchaseStore"},
    {"Link", fkString, 3000, "cSReleasesFieldLink"},
    {"LargePicture", fkBlob, 0, "cSReleasesFieldLargePicture"},
    {"ThumbPicture", fkBlob, 0, "cSReleasesFieldThumbPicture"},
    {"CatalogNO", fkString, 500, "cSReleasesFieldCatalogNO"},
    {"Sides", fkInteger, 0, "cSReleasesFieldSides"},
    {"IsReissue", fkBoolean, 0, "cSReleasesFieldIsReissue"},
    {"IsCompilation", fkBoolean, 0, "cSReleasesFieldIsCompilation"},
    {"IsPromo", fkBoolean, 0, "cSReleasesFieldIsPromo"},
    {"Packaging", fkString, 500, "cSReleasesFieldPackaging"},
    {"LastModified", fkDateTime, 0, "cSReleasesFieldLastModified"},
    {"DateAdded", fkDateTime, 0, "cSReleasesFieldDateAdded"},
    {"DiscogsID", fkInteger, 0, "cSReleasesFieldDiscogsID"},
    {"MusicBrainzID", fkString, 100, "cSReleasesFieldMusicBrainzID"},
    {"ConditionMedia", fkString, 500, "cSReleasesFieldConditionMedia"},
    {"PriceValue", fkFloat, 0, "cSReleasesFieldPriceValue"},
    {"SellingPrice", fkFloat, 0, "cSReleasesFieldSellingPrice"},
    {"PurchasedFrom", fkInteger, 0, "cSReleasesFieldPurchasedFrom"},
    {"BorrowedFrom", fkInteger, 0, "cSReleasesFieldBorrowedFrom"},
    {"LargePictureBack", fkBlob, 0, "cSReleasesFieldLargePictureBack"},
    {"ThumbPictureBack", fkBlob, 0, "cSReleasesFieldLargePictureBack"},
    {"LargePictureMedia", fkBlob, 0, "cSReleasesFieldLargePictureMedia"},
    {"ThumbPictureMedia", fkBlob, 0, "cSReleasesFieldLargePictureMedia"},
    {"DiscCount", fkInteger, 0, "cSReleasesFieldDiscCount"},
    {"FolderPath", fkString, 5000, "cSReleasesFieldFolderPath"},
    {"Custom1", fkString, 0, ""},
    {"Custom2", fkString, 0, ""},
    {"Custom3", fkString, 0, ""},
    {"Custom4", fkString, 0, ""},
    {"Custom5", fkString, 0, ""},
    {"Custom6", fkString, 0, ""},
    {"Custom7", fkString, 0, ""},
    {"Custom8", fkString, 0, ""},
    {"Custom9", fkString, 0, ""},
    {"Custom10", fkString, 0, ""},
    {"OriginalReleaseDate", fkDate, 0, "cSReleasesFieldOriginalReleaseDate"},
    {"OriginalReleaseYear", fkInteger, 0, "cSReleasesFieldOriginalReleaseYear"},
    {"MediaColor", fkString, 500, "cSReleasesFieldMediaColor"},
    {"SeqNo", fkString, 50, "cSReleasesFieldSeqNo"},
    {"Genres", fkString, 10000, "cSReleasesFieldGenres"},
    {"Artists", fkString, 10000, "cSReleasesFieldArtists"},
    {"IsSplit", fkBoolean, 0, "cSReleasesFieldIsSplit"},
};

constexpr TColumnDef TrackColumnRows[] = {
    {"ID", fkInteger, 0, "", cfAutoIncrement},
    {"ReleaseId", fkInteger, 0, ""},
    {"Artist", fkString, 300, "cSTracksFieldArtist"},
    {"TrackNo", fkInteger, 0, "cSTracksFieldTrackNo"},
    {"TrackTitle", fkString, 2000, "cSTracksFieldTrackTitle"},
    {"TrackLength", fkFloat, 0, "cSTracksFieldTrackLength"},
    {"DiscNo", fkInteger, 0, "cSTracksFieldDiscNo"},
    {"Side", fkString, 100, "cSTracksFieldSide"},
    {"Genre", fkString, 500, "cSTracksFieldGenre"},
    {"Rating", fkInteger, 0, "cSTracksFieldRating"},
    {"Composer", fkString, 300, "cSTracksFieldComposer"},
    {"Composition", fkString, 300, "cSTracksFieldComposition"},
    {"Conductor", fkString, 300, "cSTracksFieldConductor"},
    {"Orchestra", fkString, 300, "cSTracksFieldOrchestra"},
    {"Chorus", fkString, 300, "cSTracksFieldChorus"},
    {"IsLive", fkBoolean, 0, "cSTracksFieldIsLive"},
    {"IsInstrumental", fkBoolean, 0, "cSTracksFieldIsInstrumental"},
    {"BPM", fkInteger, 0, "cSTracksFieldBPM"},
    {"Lyrics", fkMemo, 0, "cSTracksFieldLyrics"},
    {"Comments", fkMemo, 0, "cSTracksFieldComments"},
    {"LastModified", fkDateTime, 0, "cSTracksFieldLastModified"},
    {"DateAdded", fkDateTime, 0, "cSTracksFieldDateAdded"},
    {"IsBlank", fkBoolean, 0, "cSTracksFieldIsBlank"},
    {"IsHidden", fkBoolean, 0, "cSTracksFieldIsHidden"},
    {"Bitrate", fkInteger, 0, "cSTracksFieldBitrate"},
    {"FilePath", fkString, 5000, "cSTracksFieldFilePath"},
    {"FileType", fkString, 500, "cSTracksFieldFileType"},
    {"Custom1", fkString, 0, ""},
    {"Custom2", fkString, 0, ""},
    {"Custom3", fkString, 0, ""},
    {"Custom4", fkString, 0, ""},
    {"Custom5", fkString, 0, ""},
    {"Custom6", fkString, 0, ""},
    {"Custom7", fkString, 0, ""},
    {"Custom8", fkString, 0, ""},
    {"Custom9", fkString, 0, ""},
    {"Custom10", fkString, 0, ""},
    {"IsCover", fkBoolean, 0, "cSTracksFieldIsCover"},
    {"IsRemix", fkBoolean, 0, "cSTracksFieldIsRemix"},
};

constexpr TColumnDef FriendColumnRows[] = {
    {"ID", fkInteger, 0, "", cfAutoIncrement},
    {"Name", fkString, 100, "cSFriendsFieldName"},
    {"Description", fkString, 2000, "cSFriendsFieldDescription"},
    {"Picture", fkBlob, 0, "cSFriendsFieldPicture"},
};

constexpr TColumnDef LoanColumnRows[] = {
    {"ID", fkInteger, 0, "", cfAutoIncrement},
    {"FriendID", fkInteger, 0, "cSLoansFieldFriendID"},
    {"ReleaseId", fkInteger, 0, "cSLoansFieldReleaseId"},
    {"LoanDate", fkDate, 0, "cSLoansFieldLoanDate"},
    {"DueDate", fkDate, 0, "cSLoansFieldDueDate"},
    {"ReturnDate", fkDate, 0, "cSLoansFieldReturnDate"},
    {"Description", fkString, 2000, "cSLoansFieldDescription"},
};

constexpr TColumnDef MusicianColumnRows[] = {
    {"ID", fkInteger, 0, "", cfAutoIncrement},
    {"Musician", fkString, 300, "cSMusiciansFieldMusician"},
    {"Instrument", fkString, 500, "cSMusiciansFieldInstrument"},
    {"ReleaseId", fkInteger, 0, ""},
    {"TrackId", fkInteger, 0, ""},
};

constexpr TColumnDef OtherPictureColumnRows[] = {
    {"ID", fkInteger, 0, "", cfAutoIncrement},
    {"Picture", fkBlob, 0, ""},
    {"ReleaseId", fkInteger, 0, ""},
};

const TCustomFieldDef* CustomField(const TFieldDef& field, const TDefaults& settings)
{
    if (!field.Custom)
        return nullptr;
    const int number = QStringView(field.Name).sliced(6).toInt();
    return number >= 1 && number <= 10 ? &(settings.*field.Custom).Slots[static_cast<size_t>(number) - 1] : nullptr;
}

} // namespace

std::span<const TColumnDef> ReleaseColumns() { return ReleaseColumnRows; }
std::span<const TColumnDef> TrackColumns() { return TrackColumnRows; }
std::span<const TColumnDef> FriendColumns() { return FriendColumnRows; }
std::span<const TColumnDef> LoanColumns() { return LoanColumnRows; }
std::span<const TColumnDef> MusicianColumns() { return MusicianColumnRows; }
std::span<const TColumnDef> OtherPictureColumns() { return OtherPictureColumnRows; }

bool IsFieldShown(const TFieldDef& field, const TDefaults& settings)
{
    const TCustomFieldDef* custom = CustomField(field, settings);
    return !custom || (settings.CustomFieldsEnabled && custom->Enabled);
}

QString ColumnLabel(const TFieldDef& field, const TDefaults& settings)
{
    if (const TCustomFieldDef* custom = CustomField(field, settings))
        return custom->DisplayName;
    return field.LabelKey.isEmpty() ? field.Name : GetLanguageString(field.LabelKey);
}

TFieldKind ValueKindOf(const TFieldDef& field, const TDefaults& settings)
{
    const TCustomFieldDef* custom = CustomField(field, settings);
    switch (custom ? custom->DataType : -1) {
    case static_cast<int>(cftInteger): return fkInteger;
    case static_cast<int>(cftFloat):
    case static_cast<int>(cftCurrency): return fkFloat;
    case static_cast<int>(cftBoolean): return fkBoolean;
    default: return field.Kind;
    }
}

} // namespace Kestrune
