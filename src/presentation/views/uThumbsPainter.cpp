// SPDX-License-Identifier: GPL-3.0-or-later
#include "uThumbsPainter.h"

#include "uCoverArt.h"
#include "uCoverCache.h"
#include "uIcons.h"
#include "uReleaseRoles.h"
#include "uTHStrings.h"
#include "uThemePaint.h"
#include "uThemeStyle.h"

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
constexpr qreal WantedOpacity = 0.38;
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
    if (!state.Current)
        return;
    if (state.ViewFocused && theme.IsHighContrast() && state.Selected)
        StrokeRounded(painter, rect.adjusted(5, 5, -5, -5), RadiusCover, theme.Text, 1);
    else if (state.ViewFocused)
        DrawFocusRing(painter, rect, RadiusCard, theme);
    else
        StrokeRounded(painter, rect, RadiusCard, theme.Outline, 1);
}

struct TBadgeLook {
    QString Icon;
    QString Text;
    QColor Color;
};

TBadgeLook LookOf(TBadge badge, const QModelIndex& index, bool narrow, const TTheme& theme)
{
    const QString friendName = index.data(rrLentTo).toString();
    switch (badge) {
    case bdNone: break;
    case bdLent: return {u"lend"_s, friendName, theme.Text};
    case bdWanted: return {u"heart"_s, GetLanguageString(u"cSGuiWanted"_s), theme.AccentFill};
    case bdOverdue: {
        const QString word = GetLanguageString(u"cSGuiOverdue"_s);
        return {u"clock"_s, narrow || friendName.isEmpty() ? word : word + u" · "_s + friendName, theme.Error};
    }
    }
    return {};
}

void PaintBadge(QPainter& painter, const QRectF& cover, const TBadgeLook& look, const TTheme& theme)
{
    QFont font = ThemeFont(fsSmall);
    font.setWeight(QFont::DemiBold);
    painter.setFont(font);
    const qreal wanted = QFontMetrics(font).horizontalAdvance(look.Text) + 32;
    const QRectF pill(cover.left() + 6, cover.bottom() - 26, std::min(wanted, cover.width() - 12), 20);
    PaintCoverShadow(painter, pill.adjusted(1, 1, -1, -1), theme);
    FillRounded(painter, pill, 10, theme.Raised);
    DrawIcon(painter, QRectF(pill.left() + 6, pill.top() + 3, 14, 14), look.Icon, look.Color);
    painter.setPen(look.Color);
    DrawElided(painter, pill.adjusted(23, 0, -7, 0), look.Text);
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

TBadge BadgeOf(const QModelIndex& index)
{
    if (index.data(rrOverdue).toBool())
        return bdOverdue;
    if (!index.data(rrLentTo).toString().isEmpty())
        return bdLent;
    return index.data(rrWanted).toBool() ? bdWanted : bdNone;
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
    const bool done = PaintCover(painter, square, index, state);
    PaintLines(painter, inner.adjusted(0, side + CoverToTitle, 0, 0), index, state);
    return done;
}

bool TThumbsPainter::PaintCover(QPainter& painter, const QRect& square, const QModelIndex& index,
                                const TTileState& state)
{
    const TTheme& theme = CurrentTheme();
    const qreal ratio = painter.device()->devicePixelRatioF();
    const QPixmap cover = FCovers.Cover(index, square.width(), ratio, state.MayDecode);
    if (cover.isNull()) {
        FillRounded(painter, square, RadiusCover, theme.Sunken);
        return false;
    }
    const QSizeF size = cover.deviceIndependentSize();
    // Covers stand on the lower edge of their square, as on a board.
    const QRectF rect(std::round(square.left() + (square.width() - size.width()) / 2),
                      square.top() + square.height() - size.height(), size.width(), size.height());
    const TBadge badge = BadgeOf(index);
    if (badge == bdWanted) {
        painter.setOpacity(WantedOpacity);
        painter.drawPixmap(rect.topLeft(), cover);
        painter.setOpacity(1);
        painter.save();
        painter.setPen(QPen(theme.Outline, 1, Qt::DashLine));
        painter.drawRoundedRect(rect.adjusted(0.5, 0.5, -0.5, -0.5), RadiusCover, RadiusCover);
        painter.restore();
    } else {
        PaintCoverShadow(painter, rect, theme);
        painter.drawPixmap(rect.topLeft(), cover);
    }
    if (badge != bdNone)
        PaintBadge(painter, QRectF(square.left(), rect.top(), square.width(), rect.height()),
                   LookOf(badge, index, square.width() < 130, theme), theme);
    return true;
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
