// SPDX-License-Identifier: GPL-3.0-or-later
#include "uTileParts.h"

#include "uCoverArt.h"
#include "uCoverCache.h"
#include "uIcons.h"
#include "uReleaseRoles.h"
#include "uTHStrings.h"
#include "uTheme.h"
#include "uThemePaint.h"

#include <QFontMetrics>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr qreal WantedOpacity = 0.38;

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

TBadge BadgeOf(const QModelIndex& index)
{
    if (index.data(rrOverdue).toBool())
        return bdOverdue;
    if (!index.data(rrLentTo).toString().isEmpty())
        return bdLent;
    return index.data(rrWanted).toBool() ? bdWanted : bdNone;
}

void PaintTileFocus(QPainter& painter, const QRectF& rect, const TTileState& state)
{
    const TTheme& theme = CurrentTheme();
    if (!state.Current)
        return;
    if (state.ViewFocused && theme.IsHighContrast() && state.Selected)
        StrokeRounded(painter, rect.adjusted(5, 5, -5, -5), RadiusCover, theme.Text, 1);
    else if (state.ViewFocused)
        DrawFocusRing(painter, rect, RadiusCard, theme);
    else
        StrokeRounded(painter, rect, RadiusCard, theme.Outline, 1);
}

void PaintCardGround(QPainter& painter, const QRectF& cell, const TTileState& state)
{
    const TTheme& theme = CurrentTheme();
    const bool soft = state.Selected && !theme.IsHighContrast();
    FillRounded(painter, cell, RadiusCard, soft ? theme.AccentSoft : theme.Raised);
    if (state.Selected && theme.IsHighContrast())
        StrokeRounded(painter, cell, RadiusCard, theme.AccentFill, theme.SelectionRing());
    else
        StrokeRounded(painter, cell, RadiusCard, state.Hovered ? theme.Outline : theme.Line, HairlineWidth(painter));
    PaintTileFocus(painter, cell, state);
}

QRectF PaintTileCover(QPainter& painter, TCoverCache& covers, const QRect& square, const QModelIndex& index,
                      const TTileState& state)
{
    const TTheme& theme = CurrentTheme();
    const qreal ratio = painter.device()->devicePixelRatioF();
    const QPixmap cover = covers.Cover(index, square.width(), ratio, state.MayDecode);
    if (cover.isNull()) {
        FillRounded(painter, square, RadiusCover, theme.Sunken);
        return {};
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
    return rect;
}

} // namespace Kestrune
