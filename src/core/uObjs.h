// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uEnumSet.h"
#include "uTHTypes.h"

#include <QByteArray>
#include <QDate>
#include <QImage>
#include <QSize>
#include <QString>
#include <QStringList>

#include <functional>
#include <map>
#include <memory>
#include <vector>

namespace Kestrune {

class TXmlElement;

/// The role of a picture: front, back and media in a small and a large form, or any other.
enum class TCoverPictureType : quint8 {
    cptFrontThumb,
    cptFrontLarge,
    cptBackThumb,
    cptBackLarge,
    cptMediaThumb,
    cptMediaLarge,
    cptOther
};
using enum TCoverPictureType;
using TCoverPictureTypes = TEnumSet<TCoverPictureType>;
inline constexpr TCoverPictureTypes AllPictureTypes{cptFrontThumb, cptFrontLarge, cptBackThumb, cptBackLarge,
                                                    cptMediaThumb, cptMediaLarge, cptOther};

/// The thumbnail type that belongs to a large type; `cptOther` for any other value.
TCoverPictureType ThumbTypeOf(TCoverPictureType largeType);

/// One picture of a release: either known by its URL only, or loaded. It keeps the encoded bytes as they came, so
/// that storing never re-encodes; the image is decoded on request.
class TCoverPicture {
public:
    TCoverPicture() = default;
    explicit TCoverPicture(TCoverPictureType type) : FType(type) {}

    TCoverPictureType PictureType() const { return FType; }
    void SetPictureType(TCoverPictureType type) { FType = type; }
    /// Where the picture can be fetched from; empty when it is in memory already.
    const QString& URL() const { return FURL; }
    void SetURL(const QString& url) { FURL = url; }

    /// Takes encoded bytes. Bytes that no image reader recognises leave the picture without an image; returns HasImage.
    bool LoadFromBytes(const QByteArray& bytes);
    /// Takes bytes as a collection holds them: a picture that no image reader recognises is kept all the same, without
    /// a size.
    void LoadStored(const QByteArray& bytes);
    /// Takes an image, encoded in `format` ("jpeg", "png", ...); a format that cannot be written becomes PNG.
    void Assign(const QImage& image, const QByteArray& format);
    /// Back to a picture without an image; type and URL stay.
    void Clear();

    bool HasImage() const { return !FBytes.isEmpty(); }
    /// The encoded bytes as received; empty without an image.
    const QByteArray& Bytes() const { return FBytes; }
    /// Size in pixels, read from the header; empty without an image.
    QSize Size() const { return FSize; }
    /// Format as Qt names it ("jpeg", "png"); empty without an image.
    const QByteArray& Format() const { return FFormat; }
    /// The decoded image; null when there is none or its data is damaged.
    QImage Decode() const;

    /// Makes the thumbnail beforehand, for instance beside the main thread.
    void PrepareThumbnail(int height);
    /// The thumbnail as MakeThumbnail gives it; the prepared one where its height is the same.
    QByteArray Thumbnail(int height) const;

private:
    TCoverPictureType FType = cptFrontThumb;
    QString FURL;
    QByteArray FBytes;
    QByteArray FFormat;
    QSize FSize;
    QByteArray FThumbnail;
    int FThumbnailHeight = 0; ///< 0: none was prepared
};

/// A person or group and what they did.
struct TAlbumCredit {
    QString Musician;
    QString Credit; ///< role or instrument

    static TAlbumCredit Make(const QString& aMusician, const QString& aCredit) { return {aMusician, aCredit}; }
    bool operator==(const TAlbumCredit&) const = default;
};

/// One track as its source tells it.
struct TAlbumTrack {
    QString TrackInternalID; ///< identifier at the source, no database key
    int TrackNo = 0;         ///< within the disc
    QString TrackName;
    QString TrackArtist; ///< empty: the release artist
    QString TrackGenre;  ///< empty: the release genre
    int DurationSec = 0;
    double DurationFrac = 0.0; ///< fraction of a day; wins over DurationSec when above 0
    int DiscNo = 0;            ///< from 1
    int DiscCount = 0;
    int BPM = 0;     ///< 0 unknown
    int Bitrate = 0; ///< kilobits per second, 0 unknown
    QString Lyrics;
    QString Comments;
    QString Filepath; ///< absolute, in the text form of PathToText; empty for tracks that are no files
    QString Filetype; ///< locator inside the file, empty for a plain file
    QString Side;
    QString Composer;
    QString Composition;
    QString Conductor;
    QString Orchestra;
    QString Chorus;
    bool IsRemix = false;
    bool IsCover = false;
    bool IsLive = false;
    bool IsBlank = false;
    bool IsHidden = false;
    bool IsInstrumental = false;
    int Rating = 0; ///< half stars 0 to 10; 0 or less is unrated
    std::vector<TAlbumCredit> Credits;
};

/// A release on its way between a source and the collection: a dictionary from a column name of `Releases2`
/// (compared without case) to a value, with its tracks, credits and pictures. Belongs to one thread at a time.
class TAlbumRelease {
public:
    TAlbumRelease() = default;
    TAlbumRelease(const TAlbumRelease&) = delete;
    TAlbumRelease& operator=(const TAlbumRelease&) = delete;
    TAlbumRelease(TAlbumRelease&&) = default;
    TAlbumRelease& operator=(TAlbumRelease&&) = default;

    QString ReleaseInternalID; ///< identifier of the release at the source
    QString ArtistInternalID;  ///< identifier of the artist at the source
    std::vector<TAlbumTrack> Tracks;
    std::vector<TAlbumCredit> Credits;
    std::vector<std::unique_ptr<TCoverPicture>> Pictures;
    QStringList Genres;     ///< candidates offered by the source
    QStringList MediaTypes; ///< candidates
    QStringList Labels;     ///< candidates

    /// The value of a key, or null. Never makes an entry.
    TVariant GetItem2(const QString& key) const;
    /// Adds or replaces the value of a key; null removes it, since what a source does not tell leaves the user's
    /// default.
    void SetItem2(const QString& key, const TVariant& value);
    TVariant operator[](const QString& key) const { return GetItem2(key); }
    /// All entries by folded key.
    const std::map<QString, TVariant>& Items() const { return FItems; }

    /// The first picture of a type, or null. Not owned by the caller.
    TCoverPicture* GetPicByType(TCoverPictureType value) const;
    /// Appends a picture of a type and returns it; the list owns it.
    TCoverPicture& AddPicture(TCoverPictureType type);

    /// Takes over values of `from`: where ours is null, or everywhere they differ when `newIsBetter`. A null never
    /// erases. Lists and internal identifiers stay as they are.
    void Merge(const TAlbumRelease& from, bool newIsBetter);

    /// "Artist - ReleaseName (ReleaseYear)", the last part only when there is a year.
    QString GetDisplayValue() const;

    /// Fetches the selected pictures of type front large, back large and other through the installed fetcher, and
    /// makes the thumbnails of the former two. Blocks. A picture that fails stays without an image.
    void DownloadAllPics(TCoverPictureTypes picTypes);

private:
    std::map<QString, TVariant> FItems;
};

/// False for bytes that are no pixels but drawings or packed ones, which take any memory to find out what they are.
bool MayBePixels(const QByteArray& bytes);

/// Fetches pictures for one call of DownloadAllPics.
class TPictureFetcher {
public:
    virtual ~TPictureFetcher() = default;
    /// Fetches into `into`, which is empty; false on any failure.
    virtual bool Fetch(const QString& url, const QString& userAgent, QByteArray& into) = 0;
};
using TPictureFetcherFactory = std::function<std::unique_ptr<TPictureFetcher>()>;

/// Installs what DownloadAllPics fetches with; without one nothing is fetched.
void SetPictureFetcher(TPictureFetcherFactory factory);

/// Fills a release from a `release` element. Absent attributes leave what is there, but the Discogs number and the
/// country, which they clear, and the number of discs, which becomes 1 when there is none. Unknown content is ignored.
void LoadAlbumReleaseFromNode(TAlbumRelease& release, const TXmlElement& node);

/// The code of a country given by code, name or one of its common short forms; null when it is unknown.
TVariant NormalizeCountry(const QString& text);

/// "1999" is the first of January of that year, "1999-05-02" that date; an invalid date for anything else.
QDate ParseReleaseDate(const QString& text);

/// A time of day "h:mm" or "h:mm:ss" in seconds, or -1.
int ParseTimeOfDay(const QString& text);

/// The thumbnail of a picture: height `height` pixels, aspect kept, in the picture's own format and without comment
/// texts. Empty for empty or undecodable input. Safe in any thread.
QByteArray MakeThumbnail(const QByteArray& picture, int height);

} // namespace Kestrune
