// SPDX-License-Identifier: GPL-3.0-or-later
#include "uShotServices.h"

#include <QBuffer>
#include <QImage>
#include <QPainter>
#include <QUrl>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

struct TInvented {
    const char* Artist;
    const char* Title;
    const char* Year;
    const char* Country;
    const char* Label;
    const char* CatalogNo;
    const char* Format;
    QRgb Ground, Ink;
};

constexpr TInvented Invented[] = {
    {"Hask &amp; Vane", "Low Lamps", "1974", "US", "Corbel", "CRB 2207", "12\" Vinyl", 0x101010, 0xE8622C},
    {"Hask &amp; Vane", "Low Lamps", "1976", "JP", "Corbel", "MZ-8127", "12\" Vinyl", 0x101010, 0xC9A227},
    {"Hask &amp; Vane", "Low Lamps", "1999", "US", "Corbel", "CRB 2207-2", "CD", 0x202020, 0xE8622C},
    {"Aster Quintet", "Live at the Foundry", "1964", "US", "Corbel", "CRB 1044", "12\" Vinyl", 0x0B3C49, 0xC2185B},
    {"Tomasz Orrel Quartet", "Blue Ferry", "1966", "US", "Corbel", "CRB 1090", "12\" Vinyl", 0xD1495B, 0x10222F},
    {"Wren Adeyemi", "Handmade Thunder", "2011", "GB", "Slow Field", "SF 5120", "CD", 0xF2B279, 0x3A3A3A},
    {"Teodor Mag", "Concrete Gardens", "1973", "PL", "Werkraum", "WR 2", "12\" Vinyl", 0xE8E6DF, 0x2F6B57},
    {"Dalia Fontane", "Carmine", "1968", "US", "Azimute", "HAL 6803", "12\" Vinyl", 0x5C2438, 0xD9A441},
    {"Hanna Ljung", "Vinterhamn", "2007", "SE", "Azimute", "MZ-7051", "CD", 0x223B56, 0xE07A3E},
};

const char* const Titles[] = {"Low Lamps", "Corner of Vane and Fourth", "Hask&apos;s Errand",
                              "Unlit",     "The Slow Elevator",         "Closing, Chairs Up"};

QByteArray Release(int index, bool record)
{
    const TInvented& item = Invented[index];
    const QByteArray year = item.Year;
    QByteArray xml = "<release id='invented-" + QByteArray::number(index) + "'><title>" + item.Title + "</title>" +
                     "<artist-credit><name-credit><artist id='a'><name>" + item.Artist +
                     "</name></artist></name-credit></artist-credit><date>" + year + "</date><country>" + item.Country +
                     "</country><barcode>506040220711" + QByteArray::number(index) +
                     "</barcode><label-info-list count='1'><label-info><catalog-number>" + item.CatalogNo +
                     "</catalog-number><label id='l'><name>" + item.Label +
                     "</name></label></label-info></label-info-list><medium-list count='1'><medium><position>1"
                     "</position><format>" +
                     item.Format + "</format>";
    if (record) {
        xml += "<track-list count='6'>";
        for (int track = 0; track < 6; ++track) {
            const QByteArray number = (track < 3 ? "A" : "B") + QByteArray::number(track % 3 + 1);
            xml += "<track id='t'><position>" + QByteArray::number(track + 1) + "</position><number>" + number +
                   "</number><length>" + QByteArray::number(250000 + track * 31000) +
                   "</length><recording id='r'><title>" + Titles[track] + "</title></recording></track>";
        }
        xml += "</track-list>";
    } else {
        xml += "<track-list count='6'/>";
    }
    return xml + "</medium></medium-list></release>";
}

QByteArray Metadata(const QByteArray& inner)
{
    return "<?xml version='1.0' encoding='UTF-8'?><metadata xmlns='http://musicbrainz.org/ns/mmd-2.0#'>" + inner +
           "</metadata>";
}

QByteArray DrawnPicture(int index, int side)
{
    const TInvented& item = Invented[index];
    QImage image(side, side, QImage::Format_RGB32);
    image.fill(QColor(item.Ground));
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    for (int ring = 0; ring < 4; ++ring) {
        painter.setPen(QPen(ring % 2 == 0 ? QColor(item.Ink) : QColor(0xE8E6DF), side / 14.0));
        const double radius = side * (0.25 + 0.17 * ring);
        painter.drawEllipse(QPointF(index % 2 == 0 ? 0 : side, side), radius, radius);
    }
    painter.end();
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "JPG", 90);
    return bytes;
}

} // namespace

THttpAnswer TShotServices::Answer(const THttpRequest& request, QByteArray& body)
{
    THttpAnswer answer;
    answer.Status = 200;
    const QUrl url(request.URL);
    const QString path = url.path();
    if (url.host() == "musicbrainz.org"_L1 && path.endsWith("/release/"_L1)) {
        QByteArray list;
        for (int i = 0; i < static_cast<int>(std::size(Invented)); ++i)
            list += Release(i, false);
        body = Metadata("<release-list count='9'>" + list + "</release-list>");
    } else if (url.host() == "musicbrainz.org"_L1) {
        body = Metadata(Release(path.section(u'-', -1).toInt() % static_cast<int>(std::size(Invented)), true));
    } else if (url.host() == "coverartarchive.org"_L1) {
        const int index = path.section(u'/', -2, -2).section(u'-', -1).toInt();
        body = DrawnPicture(index % static_cast<int>(std::size(Invented)), path.contains("1200"_L1) ? 800 : 250);
    } else if (url.host() == "itunes.apple.com"_L1) {
        body = R"({"resultCount":1,"results":[{"wrapperType":"collection","collectionType":"Album",)"
               R"("artistName":"Hask & Vane","collectionId":1,"collectionName":"Low Lamps",)"
               R"("releaseDate":"2014-03-04T08:00:00Z","trackCount":6,"primaryGenreName":"Jazz"}]})";
    } else {
        answer.Status = 401;
        answer.Failure = dfHTTP;
    }
    return answer;
}

} // namespace Kestrune
