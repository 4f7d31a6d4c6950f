// SPDX-License-Identifier: GPL-3.0-or-later
#include "uReleaseText.h"

#include "uColumnNames.h"
#include "uCommand.h"

#include <QCryptographicHash>
#include <QJsonArray>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

// What services tell of a release.
constexpr TColumnName ToldColumns[] = {
    Col::DataProvider, Col::Artist,     Col::ReleaseName, Col::MediaType,     Col::ReleaseDate,
    Col::ReleaseYear,  Col::Label,      Col::CatalogNO,   Col::Barcode,       Col::CountryCode,
    Col::Genre,        Col::DiscCount,  Col::ASIN,        Col::Price,         Col::Currency,
    Col::DiscogsID,    Col::BuyNowLink, Col::Comments,    Col::MusicBrainzID,
};

QString CellOf(const QJsonValue& value) { return OneLine(value.toVariant().toString()); }

} // namespace

QJsonValue ToJson(const TVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::UnknownType: return QJsonValue::Null;
    case QMetaType::Bool: return value.toBool();
    case QMetaType::Int:
    case QMetaType::LongLong: return value.toLongLong();
    case QMetaType::Double: return value.toDouble();
    default: return VarToStr(value);
    }
}

QString PictureTypeName(TCoverPictureType type)
{
    switch (type) {
    case cptFrontThumb: return u"cptFrontThumb"_s;
    case cptFrontLarge: return u"cptFrontLarge"_s;
    case cptBackThumb: return u"cptBackThumb"_s;
    case cptBackLarge: return u"cptBackLarge"_s;
    case cptMediaThumb: return u"cptMediaThumb"_s;
    case cptMediaLarge: return u"cptMediaLarge"_s;
    case cptOther: break;
    }
    return u"cptOther"_s;
}

QJsonObject PictureToJson(const TCoverPicture& picture)
{
    const QByteArray& bytes = picture.Bytes();
    const QByteArray sha1 = QCryptographicHash::hash(bytes, QCryptographicHash::Sha1).toHex();
    return {{u"type"_s, PictureTypeName(picture.PictureType())},  {u"bytes"_s, bytes.size()},
            {u"width"_s, std::max(0, picture.Size().width())},    {u"height"_s, std::max(0, picture.Size().height())},
            {u"format"_s, QString::fromLatin1(picture.Format())}, {u"sha1"_s, QString::fromLatin1(sha1)}};
}

QJsonObject ReleaseToJson(const TAlbumRelease& release)
{
    QJsonObject fields;
    for (const TColumnName column : ToldColumns)
        fields.insert(column, ToJson(release.GetItem2(column)));
    QJsonArray tracks;
    for (const TAlbumTrack& track : release.Tracks)
        tracks.append(QJsonObject{{u"disc"_s, track.DiscNo},
                                  {u"number"_s, track.TrackNo},
                                  {u"side"_s, track.Side},
                                  {u"title"_s, track.TrackName},
                                  {u"artist"_s, track.TrackArtist},
                                  {u"seconds"_s, track.DurationSec}});
    QJsonArray credits;
    for (const TAlbumCredit& credit : release.Credits)
        credits.append(QJsonObject{{u"musician"_s, credit.Musician}, {u"credit"_s, credit.Credit}});
    QJsonArray pictures;
    for (const auto& picture : release.Pictures) {
        QJsonObject object = PictureToJson(*picture);
        object.insert(u"url"_s, picture->URL());
        pictures.append(object);
    }
    return {{u"id"_s, release.ReleaseInternalID},
            {u"release"_s, fields},
            {u"tracks"_s, tracks},
            {u"credits"_s, credits},
            {u"genres"_s, QJsonArray::fromStringList(release.Genres)},
            {u"labels"_s, QJsonArray::fromStringList(release.Labels)},
            {u"mediaTypes"_s, QJsonArray::fromStringList(release.MediaTypes)},
            {u"pictures"_s, pictures}};
}

void PrintRelease(const QJsonObject& object)
{
    const QJsonObject fields = object[u"release"_s].toObject();
    for (auto field = fields.begin(); field != fields.end(); ++field) {
        if (!field.value().isNull())
            PrintLine(u"%1\t%2"_s.arg(field.key(), CellOf(field.value())));
    }
    for (const QJsonValue& track : object[u"tracks"_s].toArray()) {
        const QStringList cells{u"track"_s,
                                u"%1.%2"_s.arg(track[u"disc"_s].toInt()).arg(track[u"number"_s].toInt()),
                                CellOf(track[u"title"_s]),
                                QString::number(track[u"seconds"_s].toInt()),
                                CellOf(track[u"side"_s]),
                                CellOf(track[u"artist"_s])};
        PrintLine(cells.join(u'\t'));
    }
    for (const QJsonValue& credit : object[u"credits"_s].toArray())
        PrintLine(QStringList{u"credit"_s, CellOf(credit[u"musician"_s]), CellOf(credit[u"credit"_s])}.join(u'\t'));
    constexpr std::pair<const char16_t*, const char16_t*> lists[] = {
        {u"genre", u"genres"}, {u"label", u"labels"}, {u"mediaType", u"mediaTypes"}};
    for (const auto& [word, key] : lists) {
        for (const QJsonValue& text : object[QString::fromUtf16(key)].toArray())
            PrintLine(QString::fromUtf16(word) + u'\t' + CellOf(text));
    }
    for (const QJsonValue& picture : object[u"pictures"_s].toArray())
        PrintLine(u"picture\t%1\t%2 x %3\t%4 bytes\t%5"_s.arg(picture[u"type"_s].toString())
                      .arg(picture[u"width"_s].toInt())
                      .arg(picture[u"height"_s].toInt())
                      .arg(picture[u"bytes"_s].toInt())
                      .arg(picture[u"sha1"_s].toString()));
}

} // namespace Kestrune
