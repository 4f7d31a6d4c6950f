// SPDX-License-Identifier: GPL-3.0-or-later
#include "uKRNParams.h"

#include "uColumnNames.h"
#include "uDefaults.h"
#include "uObjs.h"

#include <QDateTime>
#include <QMessageAuthenticationCode>

#include <string_view>

namespace Kestrune {

using namespace Qt::StringLiterals;

void TKRNParams::AddPrivateKeysToParams()
{
    const TOEMInfo& keys = Defaults().OEM;
    Add(u"DISCOGS_API_KEY"_s, keys.DISCOGS_API_KEY);
    Add(u"DISCOGS_API_SECRET_KEY"_s, keys.DISCOGS_API_SECRET_KEY);
    Add(u"AMAZON_API_KEY"_s, keys.AMAZON_API_KEY);
    Add(u"AMAZON_API_KEY_PRIVATE"_s, keys.AMAZON_API_KEY_PRIVATE);
    Add(u"LAST_FM_API_KEY"_s, keys.LAST_FM_API_KEY);
    Add(u"UTC_TIMESTAMP"_s, QDateTime::currentDateTimeUtc().toString(u"yyyy-MM-dd'T'HH'%3A'mm'%3A'ss'Z'"_s));
}

void TKRNParams::AddSearchParamsFromAlbumRelease(const TAlbumRelease& release)
{
    if (!release.ArtistInternalID.isEmpty())
        Add(u"ARTIST_ID"_s, release.ArtistInternalID);
    if (!release.ReleaseInternalID.isEmpty())
        Add(u"RELEASE_ID"_s, release.ReleaseInternalID);
    constexpr std::pair<const char16_t*, TColumnName> items[] = {{u"ARTIST", Col::Artist},
                                                                 {u"RELEASE_TITLE", Col::ReleaseName},
                                                                 {u"ASIN", Col::ASIN},
                                                                 {u"CATNO", Col::CatalogNO},
                                                                 {u"BARCODE", Col::Barcode}};
    for (const auto& [key, item] : items)
        Add(QString::fromUtf16(key), VarToStr(release.GetItem2(item)));
}

void TKRNParams::AddQueryTwins()
{
    static const QStringList textKeys{u"BARCODE"_s, u"CATNO"_s, u"ARTIST"_s, u"RELEASE_TITLE"_s, u"ASIN"_s};
    const auto items = FItems;
    for (const auto& [key, value] : items) {
        if (textKeys.contains(key, Qt::CaseInsensitive))
            Add(key + u"_QUERY"_s, EscapeQueryText(value));
    }
}

QString TKRNParams::ReplaceWithParams(const QString& value) const
{
    QString text = value;
    for (const auto& [key, replacement] : FItems)
        text.replace(u'%' + key + u'%', EncodeParamValue(replacement), Qt::CaseInsensitive);
    return text;
}

QString EncodeParamValue(const QString& value)
{
    constexpr std::string_view plain = "!$'()*+-.0123456789@ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz";
    constexpr char digits[] = "0123456789ABCDEF";
    QByteArray encoded;
    for (const char c : value.toUtf8()) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '\0')
            break;
        if (plain.find(c) != std::string_view::npos)
            encoded += c;
        else if (c == ' ')
            encoded += '+';
        else
            encoded.append('%').append(digits[byte >> 4]).append(digits[byte & 15]);
    }
    return QString::fromLatin1(encoded);
}

QString EscapeQueryText(const QString& value)
{
    QString escaped;
    for (const QChar c : value) {
        if (u"+-&|!(){}[]^\"~*?:\\/"_s.contains(c))
            escaped += u'\\';
        escaped += c;
    }
    return escaped;
}

QString SignData(const QString& data, const QString& key, const QString& method)
{
    if (method != "SHA256"_L1)
        return {};
    const QByteArray code =
        QMessageAuthenticationCode::hash(data.toUtf8(), key.toUtf8(), QCryptographicHash::Sha256).toBase64();
    return QString::fromLatin1(code).replace(u'+', u"%2B"_s).replace(u'=', u"%3D"_s);
}

} // namespace Kestrune
