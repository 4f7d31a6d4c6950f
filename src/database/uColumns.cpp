// SPDX-License-Identifier: GPL-3.0-or-later
#include "uColumns.h"

#include "uColumnNames.h"
#include "uDefaults.h"
#include "uTHStrings.h"

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

// Sizes are the longest texts that editors allow, 0 where there is no limit. Custom columns hold whatever their
// definition in the settings says; the file gives them numeric affinity.
constexpr TColumnDef ReleaseColumnRows[] = {
    {Col::ID, fkInteger, 0, "", cfAutoIncrement},
    {Col::Artist, fkString, 200, "cSReleasesFieldArtist"},
    {Col::ReleaseName, fkString, 500, "cSReleasesFieldReleaseName", cfRequired},
    {Col::MediaType, fkString, 500, "cSReleasesFieldMediaTypeId"},
    {Col::Genre, fkString, 500, "cSReleasesFieldGenreId"},
    {Col::Label, fkString, 200, "cSReleasesFieldLabel"},
    {Col::Location, fkString, 500, "cSReleasesFieldLocation"},
    {Col::ReleaseDate, fkDate, 0, "cSReleasesFieldReleaseDate"},
    {Col::ReleaseYear, fkInteger, 0, "cSReleasesFieldReleaseYear"},
    {Col::Barcode, fkString, 50, "cSReleasesFieldBarcode"},
    {Col::BuyNowLink, fkString, 3000, "cSReleasesFieldBuyNowLink"},
    {Col::No, fkInteger, 0, "cSReleasesFieldNo"},
    {Col::Status, fkString, 500, "cSReleasesFieldStatusId"},
    {Col::Quantity, fkInteger, 0, "cSReleasesFieldQuantity"},
    {Col::ASIN, fkString, 20, "cSReleasesFieldASIN"},
    {Col::Rating, fkInteger, 0, "cSReleasesFieldRating"},
    {Col::Condition, fkString, 500, "cSReleasesFieldConditionId"},
    {Col::CountryCode, fkString, 2, "cSReleasesFieldCountryCode"},
    {Col::DataProvider, fkString, 50, "cSReleasesFieldDataProvider"},
    {Col::Comments, fkMemo, 0, "cSReleasesFieldComments"},
    {Col::Composer, fkString, 200, "cSReleasesFieldComposer"},
    {Col::Composition, fkString, 200, "cSReleasesFieldComposition"},
    {Col::Conductor, fkString, 200, "cSReleasesFieldConductor"},
    {Col::Orchestra, fkString, 200, "cSReleasesFieldOrcherstra"},
    {Col::Chorus, fkString, 200, "cSReleasesFieldChorus"},
    {Col::Channels, fkString, 500, "cSReleasesFieldChanellsId"},
    {Col::IsLive, fkBoolean, 0, "cSReleasesFieldIsLive"},
    {Col::IsRare, fkBoolean, 0, "cSReleasesFieldIsRare"},
    {Col::OwnerId, fkInteger, 0, "cSReleasesFieldOwnerId"},
    {Col::Spars, fkString, 3, "cSReleasesFieldSpars"},
    {Col::Price, fkFloat, 0, "cSReleasesFieldPrice"},
    {Col::Currency, fkString, 3, "cSReleasesFieldCurrency"},
    {Col::DatePurchased, fkDate, 0, "cSReleasesFieldDatePurchased"},
    {Col::PurchaseStore, fkString, 200, "cSReleasesFieldPurchaseStore"},
    {Col::Link, fkString, 3000, "cSReleasesFieldLink"},
    {Col::LargePicture, fkBlob, 0, "cSReleasesFieldLargePicture"},
    {Col::ThumbPicture, fkBlob, 0, "cSReleasesFieldThumbPicture"},
    {Col::CatalogNO, fkString, 500, "cSReleasesFieldCatalogNO"},
    {Col::Sides, fkInteger, 0, "cSReleasesFieldSides"},
    {Col::IsReissue, fkBoolean, 0, "cSReleasesFieldIsReissue"},
    {Col::IsCompilation, fkBoolean, 0, "cSReleasesFieldIsCompilation"},
    {Col::IsPromo, fkBoolean, 0, "cSReleasesFieldIsPromo"},
    {Col::Packaging, fkString, 500, "cSReleasesFieldPackaging"},
    {Col::LastModified, fkDateTime, 0, "cSReleasesFieldLastModified"},
    {Col::DateAdded, fkDateTime, 0, "cSReleasesFieldDateAdded"},
    {Col::DiscogsID, fkInteger, 0, "cSReleasesFieldDiscogsID"},
    {Col::MusicBrainzID, fkString, 100, "cSReleasesFieldMusicBrainzID"},
    {Col::ConditionMedia, fkString, 500, "cSReleasesFieldConditionMedia"},
    {Col::PriceValue, fkFloat, 0, "cSReleasesFieldPriceValue"},
    {Col::SellingPrice, fkFloat, 0, "cSReleasesFieldSellingPrice"},
    {Col::PurchasedFrom, fkInteger, 0, "cSReleasesFieldPurchasedFrom"},
    {Col::BorrowedFrom, fkInteger, 0, "cSReleasesFieldBorrowedFrom"},
    {Col::LargePictureBack, fkBlob, 0, "cSReleasesFieldLargePictureBack"},
    {Col::ThumbPictureBack, fkBlob, 0, "cSReleasesFieldLargePictureBack"},
    {Col::LargePictureMedia, fkBlob, 0, "cSReleasesFieldLargePictureMedia"},
    {Col::ThumbPictureMedia, fkBlob, 0, "cSReleasesFieldLargePictureMedia"},
    {Col::DiscCount, fkInteger, 0, "cSReleasesFieldDiscCount"},
    {Col::FolderPath, fkString, 5000, "cSReleasesFieldFolderPath"},
    {Col::Custom1, fkString, 0, ""},
    {Col::Custom2, fkString, 0, ""},
    {Col::Custom3, fkString, 0, ""},
    {Col::Custom4, fkString, 0, ""},
    {Col::Custom5, fkString, 0, ""},
    {Col::Custom6, fkString, 0, ""},
    {Col::Custom7, fkString, 0, ""},
    {Col::Custom8, fkString, 0, ""},
    {Col::Custom9, fkString, 0, ""},
    {Col::Custom10, fkString, 0, ""},
    {Col::OriginalReleaseDate, fkDate, 0, "cSReleasesFieldOriginalReleaseDate"},
    {Col::OriginalReleaseYear, fkInteger, 0, "cSReleasesFieldOriginalReleaseYear"},
    {Col::MediaColor, fkString, 500, "cSReleasesFieldMediaColor"},
    {Col::SeqNo, fkString, 50, "cSReleasesFieldSeqNo"},
    {Col::Genres, fkString, 10000, "cSReleasesFieldGenres"},
    {Col::Artists, fkString, 10000, "cSReleasesFieldArtists"},
    {Col::IsSplit, fkBoolean, 0, "cSReleasesFieldIsSplit"},
};

constexpr TColumnDef TrackColumnRows[] = {
    {Col::ID, fkInteger, 0, "", cfAutoIncrement},
    {Col::ReleaseId, fkInteger, 0, ""},
    {Col::Artist, fkString, 300, "cSTracksFieldArtist"},
    {Col::TrackNo, fkInteger, 0, "cSTracksFieldTrackNo"},
    {Col::TrackTitle, fkString, 2000, "cSTracksFieldTrackTitle"},
    {Col::TrackLength, fkFloat, 0, "cSTracksFieldTrackLength"},
    {Col::DiscNo, fkInteger, 0, "cSTracksFieldDiscNo"},
    {Col::Side, fkString, 100, "cSTracksFieldSide"},
    {Col::Genre, fkString, 500, "cSTracksFieldGenre"},
    {Col::Rating, fkInteger, 0, "cSTracksFieldRating"},
    {Col::Composer, fkString, 300, "cSTracksFieldComposer"},
    {Col::Composition, fkString, 300, "cSTracksFieldComposition"},
    {Col::Conductor, fkString, 300, "cSTracksFieldConductor"},
    {Col::Orchestra, fkString, 300, "cSTracksFieldOrchestra"},
    {Col::Chorus, fkString, 300, "cSTracksFieldChorus"},
    {Col::IsLive, fkBoolean, 0, "cSTracksFieldIsLive"},
    {Col::IsInstrumental, fkBoolean, 0, "cSTracksFieldIsInstrumental"},
    {Col::BPM, fkInteger, 0, "cSTracksFieldBPM"},
    {Col::Lyrics, fkMemo, 0, "cSTracksFieldLyrics"},
    {Col::Comments, fkMemo, 0, "cSTracksFieldComments"},
    {Col::LastModified, fkDateTime, 0, "cSTracksFieldLastModified"},
    {Col::DateAdded, fkDateTime, 0, "cSTracksFieldDateAdded"},
    {Col::IsBlank, fkBoolean, 0, "cSTracksFieldIsBlank"},
    {Col::IsHidden, fkBoolean, 0, "cSTracksFieldIsHidden"},
    {Col::Bitrate, fkInteger, 0, "cSTracksFieldBitrate"},
    {Col::FilePath, fkString, 5000, "cSTracksFieldFilePath"},
    {Col::FileType, fkString, 500, "cSTracksFieldFileType"},
    {Col::Custom1, fkString, 0, ""},
    {Col::Custom2, fkString, 0, ""},
    {Col::Custom3, fkString, 0, ""},
    {Col::Custom4, fkString, 0, ""},
    {Col::Custom5, fkString, 0, ""},
    {Col::Custom6, fkString, 0, ""},
    {Col::Custom7, fkString, 0, ""},
    {Col::Custom8, fkString, 0, ""},
    {Col::Custom9, fkString, 0, ""},
    {Col::Custom10, fkString, 0, ""},
    {Col::IsCover, fkBoolean, 0, "cSTracksFieldIsCover"},
    {Col::IsRemix, fkBoolean, 0, "cSTracksFieldIsRemix"},
};

constexpr TColumnDef FriendColumnRows[] = {
    {Col::ID, fkInteger, 0, "", cfAutoIncrement},
    {Col::Name, fkString, 100, "cSFriendsFieldName"},
    {Col::Description, fkString, 2000, "cSFriendsFieldDescription"},
    {Col::Picture, fkBlob, 0, "cSFriendsFieldPicture"},
};

constexpr TColumnDef LoanColumnRows[] = {
    {Col::ID, fkInteger, 0, "", cfAutoIncrement},
    {Col::FriendID, fkInteger, 0, "cSLoansFieldFriendID"},
    {Col::ReleaseId, fkInteger, 0, "cSLoansFieldReleaseId"},
    {Col::LoanDate, fkDate, 0, "cSLoansFieldLoanDate"},
    {Col::DueDate, fkDate, 0, "cSLoansFieldDueDate"},
    {Col::ReturnDate, fkDate, 0, "cSLoansFieldReturnDate"},
    {Col::Description, fkString, 2000, "cSLoansFieldDescription"},
};

constexpr TColumnDef MusicianColumnRows[] = {
    {Col::ID, fkInteger, 0, "", cfAutoIncrement},
    {Col::Musician, fkString, 300, "cSMusiciansFieldMusician"},
    {Col::Instrument, fkString, 500, "cSMusiciansFieldInstrument"},
    {Col::ReleaseId, fkInteger, 0, ""},
    {Col::TrackId, fkInteger, 0, ""},
};

constexpr TColumnDef OtherPictureColumnRows[] = {
    {Col::ID, fkInteger, 0, "", cfAutoIncrement},
    {Col::Picture, fkBlob, 0, ""},
    {Col::ReleaseId, fkInteger, 0, ""},
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
