// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace Kestrune {

/// The name of a column or field as a constant of the program: becomes a QString without a copy.
class TColumnName {
public:
    template <std::size_t N>
    constexpr TColumnName(const char16_t (&text)[N]) : FText(text, N - 1)
    {}

    operator QString() const { return QString::fromRawData(FText.data(), FText.size()); }
    constexpr QStringView View() const { return FText; }

    friend bool operator==(TColumnName name, QStringView text) { return name.FText == text; }
    friend bool operator==(TColumnName name, const QString& text) { return name.FText == text; }
    friend bool operator==(TColumnName one, TColumnName other) { return one.FText == other.FText; }

private:
    QStringView FText;
};

/// Every column of the collection file and every field that a cursor adds to them, once; keys of a TAlbumRelease too.
/// Only SQL spells them out elsewhere.
namespace Col {

#define KRN_COLUMN(name) inline constexpr TColumnName name{u"" #name};

// releases
KRN_COLUMN(ID)
KRN_COLUMN(Artist)
KRN_COLUMN(ReleaseName)
KRN_COLUMN(MediaType)
KRN_COLUMN(Genre)
KRN_COLUMN(Label)
KRN_COLUMN(Location)
KRN_COLUMN(ReleaseDate)
KRN_COLUMN(ReleaseYear)
KRN_COLUMN(Barcode)
KRN_COLUMN(BuyNowLink)
KRN_COLUMN(No)
KRN_COLUMN(Status)
KRN_COLUMN(Quantity)
KRN_COLUMN(ASIN)
KRN_COLUMN(Rating)
KRN_COLUMN(Condition)
KRN_COLUMN(CountryCode)
KRN_COLUMN(DataProvider)
KRN_COLUMN(Comments)
KRN_COLUMN(Composer)
KRN_COLUMN(Composition)
KRN_COLUMN(Conductor)
KRN_COLUMN(Orchestra)
KRN_COLUMN(Chorus)
KRN_COLUMN(Channels)
KRN_COLUMN(IsLive)
KRN_COLUMN(IsRare)
KRN_COLUMN(OwnerId)
KRN_COLUMN(Spars)
KRN_COLUMN(Price)
KRN_COLUMN(Currency)
KRN_COLUMN(DatePurchased)
KRN_COLUMN(PurchaseStore)
KRN_COLUMN(Link)
KRN_COLUMN(LargePicture)
KRN_COLUMN(ThumbPicture)
KRN_COLUMN(CatalogNO)
KRN_COLUMN(Sides)
KRN_COLUMN(IsReissue)
KRN_COLUMN(IsCompilation)
KRN_COLUMN(IsPromo)
KRN_COLUMN(Packaging)
KRN_COLUMN(LastModified)
KRN_COLUMN(DateAdded)
KRN_COLUMN(DiscogsID)
KRN_COLUMN(MusicBrainzID)
KRN_COLUMN(ConditionMedia)
KRN_COLUMN(PriceValue)
KRN_COLUMN(SellingPrice)
KRN_COLUMN(PurchasedFrom)
KRN_COLUMN(BorrowedFrom)
KRN_COLUMN(LargePictureBack)
KRN_COLUMN(ThumbPictureBack)
KRN_COLUMN(LargePictureMedia)
KRN_COLUMN(ThumbPictureMedia)
KRN_COLUMN(DiscCount)
KRN_COLUMN(FolderPath)
KRN_COLUMN(Custom1)
KRN_COLUMN(Custom2)
KRN_COLUMN(Custom3)
KRN_COLUMN(Custom4)
KRN_COLUMN(Custom5)
KRN_COLUMN(Custom6)
KRN_COLUMN(Custom7)
KRN_COLUMN(Custom8)
KRN_COLUMN(Custom9)
KRN_COLUMN(Custom10)
KRN_COLUMN(OriginalReleaseDate)
KRN_COLUMN(OriginalReleaseYear)
KRN_COLUMN(MediaColor)
KRN_COLUMN(SeqNo)
KRN_COLUMN(Genres)
KRN_COLUMN(Artists)
KRN_COLUMN(IsSplit)
// tracks
KRN_COLUMN(ReleaseId)
KRN_COLUMN(TrackNo)
KRN_COLUMN(TrackTitle)
KRN_COLUMN(TrackLength)
KRN_COLUMN(DiscNo)
KRN_COLUMN(Side)
KRN_COLUMN(IsInstrumental)
KRN_COLUMN(BPM)
KRN_COLUMN(Lyrics)
KRN_COLUMN(IsBlank)
KRN_COLUMN(IsHidden)
KRN_COLUMN(Bitrate)
KRN_COLUMN(FilePath)
KRN_COLUMN(FileType)
KRN_COLUMN(IsCover)
KRN_COLUMN(IsRemix)
// friends
KRN_COLUMN(Name)
KRN_COLUMN(Description)
KRN_COLUMN(Picture)
// loans
KRN_COLUMN(FriendID)
KRN_COLUMN(LoanDate)
KRN_COLUMN(DueDate)
KRN_COLUMN(ReturnDate)
// credits
KRN_COLUMN(Musician)
KRN_COLUMN(Instrument)
KRN_COLUMN(TrackId)
// computed by the cursors
KRN_COLUMN(Rating_Calc)
KRN_COLUMN(ReleaseArtist)
KRN_COLUMN(TotalTracksCount)
KRN_COLUMN(TotalTracksLength)
KRN_COLUMN(ReleasesOnLoan)
KRN_COLUMN(LoanedByFriendId)
KRN_COLUMN(ReleaseCount)
KRN_COLUMN(TotalDiscCount)
KRN_COLUMN(AvgDiscCount)
KRN_COLUMN(AvgTracksCount)
KRN_COLUMN(AvgTracksLength)
KRN_COLUMN(TotalPrice)
KRN_COLUMN(AvgPrice)

#undef KRN_COLUMN

} // namespace Col

} // namespace Kestrune
