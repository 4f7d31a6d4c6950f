// SPDX-License-Identifier: GPL-3.0-or-later
#include "uHitsPainter.h"

#include "uCoverArt.h"
#include "uHitsModel.h"
#include "uIcons.h"
#include "uTHStrings.h"
#include "uTheme.h"
#include "uThemePaint.h"
#include "uTileParts.h"

#include <QFontMetrics>
#include <QImage>
#include <QPainter>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int HitCover = 88;
constexpr int HitWidth = 270;
constexpr int HitPadding = 9;
constexpr int HitTextGap = 12;

int HitTextHeight()
{
    return LineHeight(ThemeFont(fsBodyBold)) + 3 * LineHeight(ThemeFont(fsBody)) + RowHeight(20, ThemeFont(fsSmall), 4);
}

} // namespace

QSize THitsPainter::CellSize() const { return {HitWidth, std::max(HitCover, HitTextHeight()) + 2 * HitPadding + 2}; }

QPixmap THitsPainter::Cover(const QModelIndex& index, qreal ratio)
{
    const QImage picture = index.data(hrCover).value<QImage>();
    const QString title = index.data(rrTitle).toString(), artist = index.data(rrArtist).toString();
    const QString key = u"%1|%2|%3|%4|%5"_s.arg(index.data(hrRecord).toLongLong())
                            .arg(picture.cacheKey())
                            .arg(ratio)
                            .arg(int(CurrentTheme().Kind))
                            .arg(picture.isNull() ? title + u'|' + artist : QString());
    if (const QPixmap* known = FCovers.object(key))
        return *known;
    QPixmap made;
    if (picture.isNull()) {
        made = DrawnCover(HitCover, ratio, title, artist, index.data(rrMediaType).toString(), CurrentTheme());
    } else {
        const QSize size = FitInSquare(picture.size(), static_cast<int>(HitCover * ratio));
        made =
            FinishCover(picture.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation), ratio, CurrentTheme());
    }
    FCovers.insert(key, new QPixmap(made), qsizetype(made.width()) * made.height() * 4);
    return made;
}

bool THitsPainter::Paint(QPainter& painter, const QRect& cell, const QModelIndex& index, const TTileState& state)
{
    PaintCardGround(painter, cell, state);
    const bool mirrored = painter.layoutDirection() == Qt::RightToLeft;
    const QRect inner = cell.adjusted(HitPadding, HitPadding, -HitPadding, -HitPadding);
    const QPixmap cover = Cover(index, painter.device()->devicePixelRatioF());
    const QSizeF size = cover.deviceIndependentSize();
    const qreal left = mirrored ? inner.right() + 1 - HitCover : inner.left();
    const QRectF place(left + (HitCover - size.width()) / 2, inner.top() + (inner.height() - size.height()) / 2,
                       size.width(), size.height());
    PaintCoverShadow(painter, place, CurrentTheme());
    painter.drawPixmap(place.topLeft(), cover);
    const int beside = HitCover + HitTextGap;
    PaintTexts(painter, mirrored ? inner.adjusted(0, 0, -beside, 0) : inner.adjusted(beside, 0, 0, 0), index,
               state.Selected);
    return true;
}

void THitsPainter::PaintTexts(QPainter& painter, const QRectF& area, const QModelIndex& index, bool selected) const
{
    const TTheme& theme = CurrentTheme();
    qreal y = area.top() + (area.height() - HitTextHeight()) / 2;
    const auto line = [&](TFontStep step, const QColor& color, const QString& text) {
        const QFont font = ThemeFont(step);
        painter.setFont(font);
        painter.setPen(color);
        DrawElided(painter, QRectF(area.left(), y, area.width(), LineHeight(font)), text);
        y += LineHeight(font);
    };
    line(fsBodyBold, theme.Text, index.data(rrTitle).toString());
    line(fsBody, theme.Text2, index.data(rrArtist).toString());
    line(fsBody, selected ? theme.Text2 : theme.Text3, index.data(hrFacts).toString());
    line(fsBody, selected ? theme.Text2 : theme.Text3, index.data(rrMediaType).toString());
    const bool mirrored = painter.layoutDirection() == Qt::RightToLeft;
    const qreal middle = y + RowHeight(20, ThemeFont(fsSmall), 4) / 2.0;
    const QString provider = index.data(hrProvider).toString();
    const QFontMetrics small(ThemeFont(fsSmall));
    const qreal pill = small.horizontalAdvance(provider) + 12;
    const qreal drawn =
        DrawPill(painter, QPointF(mirrored ? area.right() - pill : area.left(), middle), provider, theme);
    if (!index.data(hrYours).toBool())
        return;
    const QString word = GetLanguageString(u"cSYours"_s);
    const qreal left = drawn + 10;
    const auto place = [&](qreal x, qreal width) { return mirrored ? area.right() - x - width : area.left() + x; };
    DrawIcon(painter, QRectF(place(left, 14), middle - 7, 14, 14), u"check"_s, theme.Ok);
    painter.setFont(ThemeFont(fsSmall));
    painter.setPen(theme.Ok);
    const qreal room = area.width() - left - 18;
    DrawElided(painter, QRectF(place(left + 18, room), middle - 10, room, 20), word);
}

QString THitsPainter::AccessibleText(const QModelIndex& index) const
{
    QStringList parts{index.data(rrTitle).toString(), index.data(rrArtist).toString(), index.data(hrFacts).toString(),
                      index.data(rrMediaType).toString(), index.data(hrProvider).toString()};
    if (index.data(hrYours).toBool())
        parts << GetLanguageString(u"cSYours"_s);
    parts.removeAll(QString());
    return parts.join(u", "_s);
}

} // namespace Kestrune
