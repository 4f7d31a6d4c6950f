// SPDX-License-Identifier: GPL-3.0-or-later
#include "uShelfPainter.h"

#include "uArticles.h"
#include "uCoverCache.h"
#include "uDefaults.h"
#include "uReleaseRoles.h"
#include "uTheme.h"
#include "uThemePaint.h"
#include "uTileParts.h"

#include <QAbstractItemModel>
#include <QFontMetrics>
#include <QLinearGradient>
#include <QPainter>

#include <algorithm>
#include <array>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr std::array<int, 3> ShelfCovers = {96, 140, 208}; // the three steps of the size
constexpr int FreeAbove = 27;
constexpr int TopFace = 9;
constexpr int StripWidth = 64;
constexpr int DividerHeight = 22;

// Oak by day, walnut by night.
struct TWood {
    QColor TopFrom, TopTo, FrontFrom, FrontTo, Title, Line;
};

TWood WoodOf(const TTheme& theme)
{
    if (theme.IsHighContrast())
        return {theme.Window, theme.Window, theme.Raised, theme.Raised, theme.Text, theme.Text};
    if (theme.IsDark())
        return {QColor(0x33, 0x29, 0x1F), QColor(0x4A, 0x3B, 0x2D), QColor(0x40, 0x33, 0x2A),
                QColor(0x35, 0x2A, 0x22), QColor(0xF0, 0xE8, 0xDC), QColor(0xC6, 0xB8, 0xA4)};
    return {QColor(0xCD, 0xB8, 0x99), QColor(0xE6, 0xD6, 0xBC), QColor(0xDD, 0xCB, 0xAD),
            QColor(0xD0, 0xBB, 0x98), QColor(0x2A, 0x21, 0x16), QColor(0x4A, 0x3D, 0x29)};
}

QLinearGradient Downwards(qreal top, qreal bottom, const QColor& from, const QColor& to)
{
    QLinearGradient gradient(0, top, 0, bottom);
    gradient.setColorAt(0, from);
    gradient.setColorAt(1, to);
    return gradient;
}

} // namespace

void TShelfPainter::SetStep(int step) { FStep = std::clamp(step, 0, 2); }

int TShelfPainter::PicturesMade() const { return FCovers.DecodeCount(); }

int TShelfPainter::FrontHeight() const
{
    return std::max(37, LineHeight(ThemeFont(fsBodyBold)) + LineHeight(ThemeFont(fsSmall)) + 4);
}

QSize TShelfPainter::CellSize() const
{
    const int cover = ShelfCovers[static_cast<size_t>(FStep)];
    return {cover + 10, FreeAbove + cover + TopFace + FrontHeight()};
}

const QPixmap& TShelfPainter::Strip(qreal ratio)
{
    const TTheme& theme = CurrentTheme();
    const int height = CellSize().height();
    const QString key = u"%1/%2/%3"_s.arg(height).arg(ratio).arg(int(theme.Kind));
    if (key == FStripKey)
        return FStrip;
    FStripKey = key;
    FStrip = QPixmap(QSize(StripWidth, height) * ratio);
    FStrip.setDevicePixelRatio(ratio);
    QPainter painter(&FStrip);
    const TWood wood = WoodOf(theme);
    const int board = height - FrontHeight() - TopFace;
    painter.fillRect(QRect(0, 0, StripWidth, board),
                     Downwards(0, board, theme.View, Mix(theme.View, wood.TopTo, theme.IsHighContrast() ? 0 : 0.08)));
    painter.fillRect(QRect(0, board, StripWidth, TopFace), Downwards(board, board + TopFace, wood.TopFrom, wood.TopTo));
    const int front = board + TopFace;
    painter.fillRect(QRect(0, front, StripWidth, height - front),
                     Downwards(front, height, wood.FrontFrom, wood.FrontTo));
    DrawHairline(painter, QRectF(0, front, StripWidth, height - front), Qt::TopEdge,
                 Mix(wood.TopTo, QColor(Qt::white), theme.IsDark() ? 0.06 : 0.35));
    DrawHairline(painter, QRectF(0, front, StripWidth, height - front), Qt::BottomEdge,
                 Mix(wood.FrontTo, QColor(Qt::black), 0.35));
    return FStrip;
}

void TShelfPainter::PaintRowGround(QPainter& painter, const QRect& strip)
{
    const QPixmap& bay = Strip(painter.device()->devicePixelRatioF());
    painter.drawTiledPixmap(strip, bay);
    // The board's shadow on the wall of the bay below.
    if (!CurrentTheme().IsHighContrast())
        painter.fillRect(
            QRect(0, strip.top(), strip.width(), 6),
            Downwards(strip.top(), strip.top() + 6, QColor(0, 0, 0, strip.top() > 0 ? 36 : 0), QColor(0, 0, 0, 0)));
}

QString TShelfPainter::SectionOf(const QModelIndex& index) const
{
    switch (FOrder) {
    case soYear: {
        const int year = index.data(rrYear).toInt();
        return year > 0 ? u"%1s"_s.arg(year / 10 * 10) : QString();
    }
    case soNumber: {
        const QString number = index.data(rrNumber).toString();
        const int hundred = number.toInt() / 100 * 100;
        return number.isEmpty() ? QString() : u"%1–%2"_s.arg(hundred).arg(hundred + 99);
    }
    case soArtist: {
        const TDefaults& settings = Defaults();
        QString name = index.data(rrArtist).toString();
        if (settings.ArticlesEnabled && settings.ArticlesSortWithout && settings.ArticlesFieldArtist)
            name = ArticleSortKey(name, settings.ArticlesList);
        const QString start = name.normalized(QString::NormalizationForm_KD).left(1).toUpper();
        return start.isEmpty() || start[0].isLetter() ? start : u"#"_s;
    }
    case soOther: break;
    }
    return {};
}

QString TShelfPainter::DividerOf(const QModelIndex& index) const
{
    if (FOrder == soOther)
        return {};
    const QString section = SectionOf(index);
    const bool first = index.row() == 0 || SectionOf(index.siblingAtRow(index.row() - 1)) != section;
    return first ? section : QString();
}

void TShelfPainter::PaintDivider(QPainter& painter, const QRect& cell, const QString& text) const
{
    const TTheme& theme = CurrentTheme();
    const TWood wood = WoodOf(theme);
    QFont font = ThemeFont(fsSmall);
    font.setWeight(QFont::DemiBold);
    painter.setFont(font);
    const int width = std::min(QFontMetrics(font).horizontalAdvance(text) + 18, cell.width() - 16);
    const bool mirrored = painter.layoutDirection() == Qt::RightToLeft;
    const QRectF tab(mirrored ? cell.right() - 12 - width : cell.left() + 13, cell.top() + FreeAbove - 18, width,
                     DividerHeight);
    FillRounded(painter, tab, RadiusControl, wood.FrontFrom);
    StrokeRounded(painter, tab, RadiusControl, Mix(wood.FrontTo, theme.Text, 0.15), HairlineWidth(painter));
    painter.setPen(wood.Title);
    DrawElided(painter, tab.adjusted(6, 0, -6, -4), text, Qt::AlignCenter);
}

void TShelfPainter::PaintLabel(QPainter& painter, const QRect& front, const QModelIndex& index,
                               const TTileState& state) const
{
    const TTheme& theme = CurrentTheme();
    const TWood wood = WoodOf(theme);
    const bool filled = state.Current || state.Selected;
    if (filled)
        FillRounded(painter, QRectF(front).adjusted(3, 1, -3, -2), RadiusCover, theme.AccentFill);
    QRectF line = QRectF(front).adjusted(8, 2, -8, 0);
    const auto put = [&](TFontStep step, const QColor& color, const QString& text) {
        const QFont font = ThemeFont(step);
        painter.setFont(font);
        painter.setPen(filled ? theme.OnAccent : color);
        line.setHeight(LineHeight(font));
        DrawElided(painter, line, text);
        line.translate(0, LineHeight(font));
    };
    put(fsBodyBold, wood.Title, index.data(rrTitle).toString());
    QStringList facts = {index.data(FOrder == soNumber ? rrNumber : rrYear).toString(),
                         index.data(rrArtist).toString()};
    facts.removeAll(QString());
    put(fsSmall, wood.Line, facts.join(u" · "_s));
}

bool TShelfPainter::Paint(QPainter& painter, const QRect& cell, const QModelIndex& index, const TTileState& state)
{
    const TTheme& theme = CurrentTheme();
    const int side = ShelfCovers[static_cast<size_t>(FStep)];
    const QRect square(cell.left() + (cell.width() - side) / 2, cell.top() + FreeAbove, side, side);
    if (const QString divider = DividerOf(index); !divider.isEmpty())
        PaintDivider(painter, cell, divider);
    if (!theme.IsHighContrast())
        painter.fillRect(QRect(square.left() + 2, square.bottom() + 1, side - 4, 6),
                         Downwards(square.bottom() + 1, square.bottom() + 7, QColor(0, 0, 0, 70), QColor(0, 0, 0, 0)));
    const QRectF cover = PaintTileCover(painter, FCovers, square, index, state);
    const QRectF ringed = (cover.isNull() ? QRectF(square) : cover).adjusted(-4, -4, 4, 4);
    if (state.Current)
        StrokeRounded(painter, ringed, RadiusControl, state.ViewFocused ? theme.AccentFill : theme.Outline,
                      state.ViewFocused ? 3 : 1);
    else if (state.Selected)
        StrokeRounded(painter, ringed, RadiusControl, theme.AccentFill, 1);
    else if (state.Hovered)
        StrokeRounded(painter, ringed, RadiusControl, theme.Outline, 1);
    PaintLabel(painter, QRect(cell.left(), cell.bottom() + 1 - FrontHeight(), cell.width(), FrontHeight()), index,
               state);
    return !cover.isNull();
}

} // namespace Kestrune
