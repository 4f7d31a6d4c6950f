// SPDX-License-Identifier: GPL-3.0-or-later
#include "uGalleryData.h"

#include "uReleaseRoles.h"

#include <QBuffer>
#include <QHash>
#include <QImage>
#include <QPainter>

#include <array>

namespace Kestrune::Kit {

using namespace Qt::StringLiterals;

namespace {

const std::array<TSampleRelease, 21> Releases = {{
    {u"Salt Atlas", u"Ilva Marren", u"2019", u"Vinyl", u"Folk", u"Tidewrack", u"GB", 9, u"", false, false, 0},
    {u"Low Lamps", u"Hask & Vane", u"1974", u"Vinyl", u"Jazz", u"Corbel", u"US", 10, u"", false, false, 1},
    {u"Ash, Then Snow", u"Northern Kiln", u"2008", u"CD", u"Ambient", u"Slow Field", u"DE", 8, u"", false, false, 2},
    {u"Twelve Windows", u"Mirela Dosk", u"1991", u"CD", u"Classical", u"Azimute", u"RO", 8, u"", false, false, 3},
    {u"Parallels", u"The Quiet Meridian", u"1982", u"Vinyl", u"Rock", u"Werkraum", u"SE", 7, u"", false, false, 4},
    {u"Every Small Engine", u"Paper Aviary", u"2015", u"Digital", u"Electronic", u"Loomtone", u"NL", 8, u"", false,
     false, 5},
    {u"Blue Ferry", u"Tomasz Orrel Quartet", u"1966", u"Vinyl", u"Jazz", u"Corbel", u"PL", 10, u"", false, false, 0},
    {u"Mudlark", u"Estuary Nine", u"1997", u"CD", u"Rock", u"Tidewrack", u"GB", 6, u"", false, false, 1},
    {u"Nocturne for Rain", u"Yuki Arano Trio", u"1979", u"Vinyl", u"Jazz", u"Azimute", u"JP", 9, u"Mara", false, false,
     3},
    {u"Vespers at Noon", u"Cobalt Choir", u"2003", u"CD", u"Classical", u"Slow Field", u"NO", 8, u"", false, false, 2},
    {u"Motor Hymns", u"Anselm Reik", u"1977", u"Vinyl", u"Electronic", u"Werkraum", u"DE", 9, u"", false, false, 4},
    {u"After the Harbour", u"Sable Hours", u"2021", u"Vinyl", u"Ambient", u"Slow Field", u"DE", 8, u"", false, false,
     -1},
    {u"Downhill Ballads", u"Velo Society", u"1999", u"Cassette", u"Folk", u"Tidewrack", u"GB", 5, u"", false, false, 5},
    {u"Mirrors, Mostly", u"Lune Fabrik", u"2012", u"CD", u"Electronic", u"Loomtone", u"FR", 7, u"", false, true, 2},
    {u"The Orchard Tapes", u"Bram Keld", u"1971", u"Vinyl", u"Folk", u"Corbel", u"US", 10, u"", false, false, 3},
    {u"Unmapped", u"The Tin Cartographers", u"1994", u"CD", u"Rock", u"Azimute", u"ES", 6, u"", false, false, -1},
    {u"Quarterly", u"Field Office", u"1985", u"Vinyl", u"Rock", u"Werkraum", u"US", 7, u"", false, false, 1},
    {u"Glass Weather", u"Ovant", u"2010", u"Digital", u"Ambient", u"Slow Field", u"SE", 8, u"", false, false, 0},
    {u"Carmine", u"Dalia Fontane", u"1968", u"Vinyl", u"Chanson", u"Azimute", u"FR", 9, u"Jonas", true, false, 1},
    {u"Postcards Out of Order", u"Kites of Lisbon", u"2006", u"CD", u"Folk", u"Tidewrack", u"PT", 7, u"", false, false,
     2},
    {u"Twelve Études", u"Otto Brandt Ensemble", u"1989", u"CD", u"Classical", u"Corbel", u"AT", 8, u"", false, false,
     3},
}};

struct TSampleColumn {
    const char16_t* Caption;
    TCellKind Kind;
};

const std::array<TSampleColumn, 11> Columns = {{{u"No", ckNumber},
                                                {u"", ckCover},
                                                {u"Artist", ckText},
                                                {u"Release name", ckText},
                                                {u"Year", ckNumber},
                                                {u"Media type", ckText},
                                                {u"Label", ckText},
                                                {u"Country", ckCountry},
                                                {u"Genre", ckText},
                                                {u"Rating", ckRating},
                                                {u"Status", ckStatus}}};

const TSampleRelease& ReleaseOf(int row) { return Releases[std::size_t(row) % Releases.size()]; }

QVariant CellText(const TSampleRelease& release, int row, int column)
{
    const auto text = [](const char16_t* s) { return QString::fromUtf16(s); };
    switch (column) {
    case 0: return 1000 + row * 7 % 2900;
    case 2: return text(release.Artist);
    case 3: return text(release.Title);
    case 4: return text(release.Year);
    case 5: return text(release.Media);
    case 6: return text(release.Label);
    case 7: return text(release.Country);
    case 8: return text(release.Genre);
    default: return {};
    }
}

void DrawArt(QPainter& p, int art, int s)
{
    p.setPen(Qt::NoPen);
    const auto fill = [&](QRgb c) { p.fillRect(0, 0, s, s, QColor(c)); };
    switch (art) {
    case 0:
        fill(0x1C1C1E);
        p.setBrush(QColor(0xD8D5DB));
        p.drawEllipse(QPointF(s * 0.5, s * 0.45), s * 0.28, s * 0.28);
        for (int i = 0; i < 4; ++i)
            p.fillRect(QRectF(0, s * (0.57 + i * 0.1), s, s * 0.03), QColor(0xA3001E));
        break;
    case 1: {
        fill(0x111111);
        const QRgb rings[] = {0xECEBE6, 0xBDB6AA, 0xFF5A36, 0x111111, 0xECEBE6, 0xBDB6AA, 0xFF5A36, 0x111111};
        for (int i = 0; i < 8; ++i) {
            p.setBrush(QColor(rings[i]));
            p.drawEllipse(QPointF(0, s), s * (0.84 - i * 0.105), s * (0.84 - i * 0.105));
        }
        break;
    }
    case 2:
        fill(0xFCECCB);
        for (int i = 0; i < 12; ++i)
            p.fillRect(QRectF(s * (0.08 + i * 0.07), s * 0.22, s * 0.05, s * (0.35 + (i * 37 % 11) * 0.03)),
                       QColor(i % 3 == 0   ? 0x6B2737
                              : i % 3 == 1 ? 0x2B2D2F
                                           : 0xE08E45));
        break;
    case 3:
        fill(0xD6E5E3);
        p.setBrush(QColor(46, 92, 87, 190));
        p.drawEllipse(QPointF(s * 0.38, s * 0.4), s * 0.26, s * 0.26);
        p.setBrush(QColor(31, 58, 58, 190));
        p.drawEllipse(QPointF(s * 0.62, s * 0.42), s * 0.26, s * 0.26);
        p.setBrush(QColor(160, 185, 110, 200));
        p.drawEllipse(QPointF(s * 0.5, s * 0.62), s * 0.26, s * 0.26);
        break;
    case 4: {
        fill(0xE8DDB5);
        p.setBrush(QColor(0x0B1D26));
        p.drawEllipse(QPointF(s * 0.73, s * 0.27), s * 0.11, s * 0.11);
        const QRgb hills[] = {0xC5DBC5, 0x7899AE, 0x52687A};
        for (int i = 0; i < 3; ++i) {
            const QPointF hill[] = {{0.0, s * 1.0},
                                    {0.0, s * (0.7 + i * 0.08)},
                                    {s * (0.2 + i * 0.1), s * (0.5 + i * 0.08)},
                                    {s * 0.5, s * (0.75 + i * 0.06)},
                                    {s * 0.75, s * (0.55 + i * 0.1)},
                                    {s * 1.0, s * 0.8},
                                    {s * 1.0, s * 1.0}};
            p.setBrush(QColor(hills[i]));
            p.drawPolygon(hill, 7);
        }
        break;
    }
    default:
        fill(0xC8CBA0);
        p.fillRect(QRectF(s * 0.3, s * 0.28, s * 0.38, s * 0.38), QColor(0x6F3340));
        p.fillRect(QRectF(s * 0.4, s * 0.38, s * 0.38, s * 0.38), QColor(232, 110, 90, 215));
    }
}

} // namespace

QByteArray SampleCover(int art, int side)
{
    static QHash<int, QByteArray> made;
    QByteArray& bytes = made[art * 10000 + side];
    if (!bytes.isEmpty())
        return bytes;
    // One of the shapes is no square, so that proportions show.
    QImage image(side, art == 5 ? side * 4 / 5 : side, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    DrawArt(painter, art, side);
    painter.end();
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "JPEG", 92);
    return bytes;
}

int TSampleModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(Columns.size());
}

QVariant TSampleModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= FRows)
        return {};
    const TSampleRelease& release = ReleaseOf(index.row());
    switch (role) {
    case Qt::DisplayRole: return CellText(release, index.row(), index.column());
    case rrId: return qint64(index.row() + 1);
    case rrTitle: return QString::fromUtf16(release.Title);
    case rrArtist: return QString::fromUtf16(release.Artist);
    case rrYear: return QString::fromUtf16(release.Year);
    case rrMediaType: return QString::fromUtf16(release.Media);
    case rrRating: return release.Rating;
    case rrStatus: return release.Wanted ? u"Wanted"_s : u"In collection"_s;
    case rrWanted: return release.Wanted;
    case rrLentTo: return QString::fromUtf16(release.LentTo);
    case rrOverdue: return release.Overdue;
    case rrCountry: return QString::fromUtf16(release.Country);
    case rrLastModified: return u"2026-01-01 10:00:00"_s;
    case rrThumbBytes: ++ThumbReads; return release.Art < 0 ? QByteArray() : SampleCover(release.Art, 250);
    default: return {};
    }
}

QVariant TSampleModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= columnCount())
        return {};
    const TSampleColumn& column = Columns[std::size_t(section)];
    if (role == Qt::DisplayRole)
        return QString::fromUtf16(column.Caption);
    return role == CellKindRole ? QVariant(int(column.Kind)) : QVariant();
}

void TSampleModel::SetRows(int rows)
{
    beginResetModel();
    FRows = rows;
    endResetModel();
}

} // namespace Kestrune::Kit
