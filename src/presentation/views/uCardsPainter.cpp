// SPDX-License-Identifier: GPL-3.0-or-later
#include "uCardsPainter.h"

#include "uCoverCache.h"
#include "uReleaseRoles.h"
#include "uTheme.h"
#include "uThemePaint.h"
#include "uTileParts.h"

#include <QFontMetrics>
#include <QPainter>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int CardPadding = 10;
constexpr int CardCover = 120;
constexpr int CardWidth = 330;
constexpr int TextGap = 12;
constexpr qreal CardStarSize = 13;
constexpr size_t MostFields = 4;

int FieldRowHeight() { return std::max(16, LineHeight(ThemeFont(fsSmallPlus)) - 1); }

int TextHeight()
{
    return LineHeight(ThemeFont(fsCardTitle)) + LineHeight(ThemeFont(fsBody)) + 18 +
           static_cast<int>(MostFields) * FieldRowHeight();
}

} // namespace

void TCardsPainter::SetFields(std::vector<TField> fields)
{
    FFields = std::move(fields);
    if (FFields.size() > MostFields)
        FFields.resize(MostFields);
}

QSize TCardsPainter::CellSize() const { return {CardWidth, std::max(CardCover, TextHeight()) + 2 * CardPadding + 2}; }

int TCardsPainter::PicturesMade() const { return FCovers.DecodeCount(); }

bool TCardsPainter::Paint(QPainter& painter, const QRect& cell, const QModelIndex& index, const TTileState& state)
{
    PaintCardGround(painter, cell, state);
    const bool mirrored = painter.layoutDirection() == Qt::RightToLeft;
    const QRect inner = cell.adjusted(CardPadding + 1, CardPadding + 1, -CardPadding - 1, -CardPadding - 1);
    const QRect square(mirrored ? inner.right() + 1 - CardCover : inner.left(),
                       inner.top() + (inner.height() - CardCover) / 2, CardCover, CardCover);
    const QRectF cover = PaintTileCover(painter, FCovers, square, index, state);
    const QRectF texts = mirrored ? QRectF(inner.adjusted(0, 0, -CardCover - TextGap, 0))
                                  : QRectF(inner.adjusted(CardCover + TextGap, 0, 0, 0));
    PaintTexts(painter, texts, index, state);
    return !cover.isNull();
}

void TCardsPainter::PaintTexts(QPainter& painter, const QRectF& area, const QModelIndex& index,
                               const TTileState& state) const
{
    const TTheme& theme = CurrentTheme();
    qreal y = area.top() - 1;
    const auto line = [&](TFontStep step, const QColor& color, const QString& text) {
        const QFont font = ThemeFont(step);
        painter.setFont(font);
        painter.setPen(color);
        DrawElided(painter, QRectF(area.left(), y, area.width(), LineHeight(font)), text);
        y += LineHeight(font);
    };
    line(fsCardTitle, theme.Text, index.data(rrTitle).toString());
    line(fsBody, theme.Text2, index.data(rrArtist).toString());
    QStringList facts = {index.data(rrYear).toString(), index.data(rrMediaType).toString()};
    facts.removeAll(QString());
    const bool mirrored = painter.layoutDirection() == Qt::RightToLeft;
    QRectF factBox(area.left(), y, area.width(), 18);
    if (const int rating = index.data(rrRating).toInt(); rating > 0) {
        const qreal width = StarsWidth(CardStarSize);
        DrawStars(painter, QPointF(mirrored ? area.right() - width : area.left(), y + 3), CardStarSize, rating, theme);
        mirrored ? factBox.setRight(area.right() - width - 8) : factBox.setLeft(area.left() + width + 8);
    }
    painter.setFont(ThemeFont(fsSmallPlus));
    painter.setPen(state.Selected ? theme.Text2 : theme.Text3);
    DrawElided(painter, factBox, facts.join(u" · "_s));
    PaintFields(painter, QRectF(area.left(), y + 18, area.width(), area.bottom() - y - 18), index, state);
}

void TCardsPainter::PaintFields(QPainter& painter, const QRectF& area, const QModelIndex& index,
                                const TTileState& state) const
{
    const TTheme& theme = CurrentTheme();
    painter.setFont(ThemeFont(fsSmallPlus));
    const QFontMetrics metrics(painter.font());
    qreal captions = 0;
    for (const TField& field : FFields)
        captions = std::max<qreal>(captions, metrics.horizontalAdvance(field.Caption));
    captions = std::min(captions + 10, area.width() / 2);
    const bool mirrored = painter.layoutDirection() == Qt::RightToLeft;
    const int height = FieldRowHeight();
    qreal y = area.top();
    for (const TField& field : FFields) {
        const QString value = index.siblingAtColumn(field.Column).data().toString();
        if (value.isEmpty())
            continue; // a caption alone says nothing
        const auto box = [&](qreal left, qreal width) {
            return QRectF(mirrored ? area.left() + area.right() - left - width : left, y, width, height);
        };
        painter.setPen(state.Selected ? theme.Text2 : theme.Text3);
        DrawElided(painter, box(area.left(), captions - 6), field.Caption);
        painter.setPen(theme.Text);
        DrawElided(painter, box(area.left() + captions, area.width() - captions), value);
        y += height;
    }
}

} // namespace Kestrune
