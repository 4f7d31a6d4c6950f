// SPDX-License-Identifier: GPL-3.0-or-later
#include "uThumbsPainter.h"

#include "uCoverCache.h"
#include "uIcons.h"
#include "uReleaseRoles.h"
#include "uTHStrings.h"
#include "uTheme.h"
#include "uThemePaint.h"
#include "uTileParts.h"

#include <QFontMetrics>
#include <QPainter>

#include <algorithm>
#include <array>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int TilePadding = 6;
constexpr int CoverToTitle = 7;
constexpr std::array<int, 3> CoverSides = {96, 140, 208};
constexpr qreal TileStarSize = 10;

void PaintTileGround(QPainter& painter, const QRect& cell, const TTileState& state, const TTheme& theme)
{
    const QRectF rect = cell;
    if (state.Selected && !theme.IsHighContrast())
        FillRounded(painter, rect, RadiusCard, theme.AccentSoft);
    else if (state.Hovered)
        FillRounded(painter, rect, RadiusCard, theme.Hover);
    if (state.Selected && theme.IsHighContrast())
        StrokeRounded(painter, rect, RadiusCard, theme.AccentFill, theme.SelectionRing());
    PaintTileFocus(painter, rect, state);
}

} // namespace

TTilePainter::~TTilePainter() = default;

QString TTilePainter::AccessibleText(const QModelIndex& index) const
{
    QStringList parts = {index.data(rrTitle).toString(), index.data(rrArtist).toString(), index.data(rrYear).toString(),
                         index.data(rrMediaType).toString()};
    if (const int rating = index.data(rrRating).toInt(); rating > 0)
        parts << GetLanguageString(u"cSGuiStarsOfFive"_s).arg(rating / 2.0);
    switch (BadgeOf(index)) {
    case bdNone: break;
    case bdLent: parts << GetLanguageString(u"cSGuiLentTo"_s).arg(index.data(rrLentTo).toString()); break;
    case bdWanted: parts << GetLanguageString(u"cSGuiWanted"_s); break;
    case bdOverdue:
        parts << GetLanguageString(u"cSGuiOverdue"_s)
              << GetLanguageString(u"cSGuiLentTo"_s).arg(index.data(rrLentTo).toString());
        break;
    }
    parts.removeAll(QString());
    return parts.join(u", "_s);
}

TThumbsPainter::TThumbsPainter(TCoverCache& covers) : FCovers(covers) {}

void TThumbsPainter::SetStep(int step) { FStep = std::clamp(step, 0, 2); }

int TThumbsPainter::PicturesMade() const { return FCovers.DecodeCount(); }

int TThumbsPainter::CoverSide() const { return CoverSides[std::size_t(FStep)]; }

QSize TThumbsPainter::CellSize() const
{
    const int lines =
        LineHeight(ThemeFont(fsBodyBold)) + LineHeight(ThemeFont(fsSmallPlus)) + LineHeight(ThemeFont(fsSmall));
    return {CoverSide() + 2 * TilePadding, CoverSide() + CoverToTitle + lines + 2 * TilePadding};
}

bool TThumbsPainter::Paint(QPainter& painter, const QRect& cell, const QModelIndex& index, const TTileState& state)
{
    PaintTileGround(painter, cell, state, CurrentTheme());
    const QRect inner = cell.adjusted(TilePadding, TilePadding, -TilePadding, -TilePadding);
    const int side = CoverSide();
    const QRect square(inner.left() + (inner.width() - side) / 2, inner.top(), side, side);
    const QRectF cover = PaintTileCover(painter, FCovers, square, index, state);
    PaintLines(painter, inner.adjusted(0, side + CoverToTitle, 0, 0), index, state);
    return !cover.isNull();
}

void TThumbsPainter::PaintLines(QPainter& painter, const QRect& area, const QModelIndex& index, const TTileState& state)
{
    const TTheme& theme = CurrentTheme();
    int y = area.top();
    const auto line = [&](TFontStep step, const QColor& color, const QString& text, int width) {
        const QFont font = ThemeFont(step);
        painter.setFont(font);
        painter.setPen(color);
        const int height = LineHeight(font);
        DrawElided(painter, QRectF(area.left(), y, width, height), text);
        y += height;
    };
    line(fsBodyBold, theme.Text, index.data(rrTitle).toString(), area.width());
    line(fsSmallPlus, theme.Text2, index.data(rrArtist).toString(), area.width());
    QStringList facts = {index.data(rrYear).toString(), index.data(rrMediaType).toString()};
    facts.removeAll(QString());
    const int rating = index.data(rrRating).toInt();
    const bool stars = FStep > 0 && rating > 0;
    const int starsWidth = static_cast<int>(StarsWidth(TileStarSize));
    const int thirdTop = y;
    line(fsSmall, state.Selected ? theme.Text2 : theme.Text3, facts.join(u" · "_s),
         area.width() - (stars ? starsWidth + 4 : 0));
    if (stars)
        DrawStars(painter, QPointF(area.right() + 1 - starsWidth, (thirdTop + y) / 2.0 - TileStarSize / 2),
                  TileStarSize, rating, theme);
}

} // namespace Kestrune
