// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <utility>
#include <vector>

namespace Kestrune {

struct TOEMInfo;
class TAlbumRelease;

/// Keys and values that fill the placeholders of a URL template, in the order of insertion. Keys need not be unique.
class TKRNParams {
public:
    void Clear() { FItems.clear(); }
    /// Appends a pair.
    void Add(const QString& key, const QString& value) { FItems.emplace_back(key, value); }
    /// The keys of the product identity for the services, and UTC_TIMESTAMP.
    void AddPrivateKeysToParams();
    /// What is known of a release: identifiers where there are any, artist, title, ASIN, catalogue number, barcode.
    void AddSearchParamsFromAlbumRelease(const TAlbumRelease& release);
    /// For each text key a further one with "_QUERY" behind its name: the value with a backslash before each character
    /// that means something in a query language. To be called when all others are there.
    void AddQueryTwins();

    /// The text with each "%KEY%" filled in by the encoded value, ignoring case. What is not known stays.
    QString ReplaceWithParams(const QString& value) const;

    const std::vector<std::pair<QString, QString>>& Items() const { return FItems; }

private:
    std::vector<std::pair<QString, QString>> FItems;
};

/// A value for a URL: UTF-8, blanks as "+", and "%XX" for every byte but the plain ones. Ends at a zero byte.
QString EncodeParamValue(const QString& value);

/// A text with a backslash before each character with a meaning of its own in Lucene queries.
QString EscapeQueryText(const QString& value);

/// The signature of a request: HMAC-SHA-256 in Base64 with "+" and "=" as escapes for the method "SHA256", otherwise
/// empty.
QString SignData(const QString& data, const QString& key, const QString& method);

} // namespace Kestrune
