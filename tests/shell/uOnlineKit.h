// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uTestFiles.h"
#include "uWebServer.h"

#include <QString>

namespace Kestrune::Kit {

/// A service package of two services, "one" (summaries with a full record) and "two" (whole records in JSON), that ask
/// a server on loopback. Answers are search result documents, which the stylesheets copy.
class TServicePackage {
public:
    TServicePackage()
    {
        FDir.Write(QStringLiteral("copy.xsl"),
                   "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform'>"
                   "<xsl:template match='/'><xsl:copy-of select='.'/></xsl:template></xsl:stylesheet>");
        FDir.Write(QStringLiteral("json.xsl"),
                   "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform'>"
                   "<xsl:template match='/'><SearchResults><xsl:for-each select='/Data/hits/*'>"
                   "<Release RELEASE_TITLE='{title}' EAN='{ean}'/></xsl:for-each></SearchResults></xsl:template>"
                   "</xsl:stylesheet>");
        QByteArray xml = "<Grabber><Services><service name='one' DisplayName='Service One'>"
                         "<getrelease url='URL/full?id=%RELEASE_ID%' Transform='copy.xsl'/></service>"
                         "<service name='two' DisplayName='Service Two'/></Services>";
        for (const QByteArray section : {"BarcodeSearch", "ArtistSearch", "ReleaseSearch", "ReleaseAndArtistSearch",
                                         "CDSearch", "CatalogNoSearch"})
            xml += "<" + section + "><search ServiceName='one' NeedToDownloadExtraInfo='true' Transform='copy.xsl' " +
                   "url='URL/one?kind=" + section +
                   "&amp;b=%BARCODE%&amp;c=%CATNO%&amp;a=%ARTIST%&amp;r=%RELEASE_TITLE%" +
                   "&amp;d=%DISCID%&amp;q=%ARTIST_QUERY%'/>" +
                   "<search ServiceName='two' JSON='true' Transform='json.xsl' url='URL/two?b=%BARCODE%'/></" +
                   section + ">";
        xml += "</Grabber>";
        FDir.Write(QStringLiteral("infograbber.xml"), xml.replace("URL", Server.URL({}).toUtf8()));
    }

    QString Path() const { return FDir.File(QStringLiteral("infograbber.xml")); }

    /// The answer of service "one": a release per title, with a thumbnail where a cover is named.
    static QByteArray Hits(const QList<QByteArray>& titles, const QByteArray& cover = {})
    {
        QByteArray xml = "<SearchResults>";
        QByteArray id = "0";
        for (const QByteArray& title : titles) {
            id = QByteArray::number(id.toInt() + 1);
            xml += "<Release RELEASE_ID='" + id + "' ARTIST='Artist' RELEASE_TITLE='" + title +
                   "' RELEASE_YEAR='1999' EAN='400000000000" + id + "'>";
            if (!cover.isEmpty())
                xml += "<Images><Image type='thumb'>" + cover + "</Image></Images>";
            xml += "</Release>";
        }
        return xml + "</SearchResults>";
    }

    TWebServer Server;

private:
    TTempDir FDir;
};

} // namespace Kestrune::Kit
