// SPDX-License-Identifier: GPL-3.0-or-later
#include "uCellDelegate.h"

#include "uCoverCache.h"
#include "uIcons.h"
#include "uReleaseRoles.h"
#include "uTHStrings.h"
#include "uTheme.h"
#include "uThemePaint.h"
#include "uTileParts.h"

#include <QAbstractItemModel>
#include <QFontMetrics>
#include <QPainter>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int CellPadding = 8;
constexpr qreal RowStarSize = 12;

} // namespace

int CellKindOf(const QAbstractItemModel& model, int column)
{
    return model.headerData(column, Qt::Horizontal, CellKindRole).toInt();
}

TCellDelegate::TCellDelegate(TCoverCache* covers, QObject* parent) : QStyledItemDelegate(parent), FCovers(covers) {}

int TCellDelegate::RowHeightInDip() const
{
    switch (FRowSize) {
    case rsCompact: return RowHeight(24, ThemeFont(fsBody), 4);
    case rsNormal: break;
    case rsWithCover: return RowHeight(44, ThemeFont(fsBody), 10);
    }
    return RowHeight(28, ThemeFont(fsBody), 10);
}

QSize TCellDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    int width = 0;
    switch (CellKindOf(*index.model(), index.column())) {
    case ckCover: width = RowHeightInDip(); break;
    case ckRating: width = static_cast<int>(StarsWidth(RowStarSize)) + 2 * CellPadding; break;
    case ckCountry: width = 48; break;
    default:
        width = option.fontMetrics.horizontalAdvance(displayText(index.data(Qt::DisplayRole), option.locale)) +
                2 * CellPadding + 2;
    }
    return {width, RowHeightInDip()};
}

// A cell is one line, whatever the field holds.
QString TCellDelegate::displayText(const QVariant& value, const QLocale& locale) const
{
    if (value.typeId() == QMetaType::Int || value.typeId() == QMetaType::LongLong)
        return value.toString(); // numbers of records and years carry no digit groups
    return QStyledItemDelegate::displayText(value, locale).replace(u'\n', u' ').replace(QChar::LineSeparator, u' ');
}

void TCellDelegate::PaintCover(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    if (!FCovers)
        return;
    const int side = FRowSize == rsWithCover ? 38 : FRowSize == rsCompact ? 18 : 22;
    const QPixmap cover = FCovers->Cover(index, side, painter.device()->devicePixelRatioF(), true);
    const QSizeF size = cover.deviceIndependentSize();
    const QPointF place(std::round(option.rect.center().x() - size.width() / 2),
                        std::round(option.rect.top() + (option.rect.height() - size.height()) / 2));
    painter.drawPixmap(place, cover);
}

void TCellDelegate::PaintStatus(QPainter& painter, const QRectF& box, const QModelIndex& index, bool selected) const
{
    const TTheme& theme = CurrentTheme();
    QString icon;
    QString text = index.data(rrStatus).toString();
    QColor color = selected ? theme.Text : theme.Text2;
    const QString friendName = index.data(rrLentTo).toString();
    switch (BadgeOf(index)) {
    case bdNone: break;
    case bdLent:
        icon = u"lend"_s;
        text = GetLanguageString(u"cSGuiLentTo"_s).arg(friendName);
        color = theme.Text;
        break;
    case bdWanted:
        icon = u"heart"_s;
        color = theme.AccentFill;
        text = text.isEmpty() ? GetLanguageString(u"cSGuiWanted"_s) : text;
        break;
    case bdOverdue:
        icon = u"clock"_s;
        text = GetLanguageString(u"cSGuiOverdue"_s) + u" · "_s + friendName;
        color = theme.Error;
        break;
    }
    QRectF textBox = box;
    if (!icon.isEmpty()) {
        const bool mirrored = painter.layoutDirection() == Qt::RightToLeft;
        const qreal x = mirrored ? box.right() - 14 : box.left();
        DrawIcon(painter, QRectF(x, box.center().y() - 7, 14, 14), icon, color);
        mirrored ? textBox.setRight(box.right() - 18) : textBox.setLeft(box.left() + 18);
    }
    painter.setPen(color);
    DrawElided(painter, textBox, text);
}

void TCellDelegate::PaintHits(QPainter& painter, const QRectF& box, const QString& text, bool right) const
{
    if (FFindText.isEmpty())
        return;
    const QFontMetricsF metrics(painter.font());
    const qreal start = right ? box.right() - metrics.horizontalAdvance(text) : box.left();
    const qreal height = metrics.height();
    for (qsizetype at = text.indexOf(FFindText, 0, Qt::CaseInsensitive); at >= 0;
         at = text.indexOf(FFindText, at + FFindText.size(), Qt::CaseInsensitive)) {
        const qreal left = std::max(box.left(), start + metrics.horizontalAdvance(text.left(at)));
        const qreal width = std::min(metrics.horizontalAdvance(text.mid(at, FFindText.size())), box.right() - left);
        if (width > 0)
            FillRounded(painter, QRectF(left, box.center().y() - height / 2, width, height), 2,
                        CurrentTheme().WarnSoft);
    }
}

void TCellDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const TTheme& theme = CurrentTheme();
    painter->save();
    painter->setLayoutDirection(option.direction);
    const bool selected = option.state.testFlag(QStyle::State_Selected);
    const QRectF box = QRectF(option.rect).adjusted(CellPadding, 0, -CellPadding, 0);
    const QString text = displayText(index.data(Qt::DisplayRole), option.locale);
    painter->setFont(ThemeFont(fsBody));
    painter->setPen(option.state.testFlag(QStyle::State_Enabled) ? theme.Text : theme.Disabled);
    switch (CellKindOf(*index.model(), index.column())) {
    case ckCover: PaintCover(*painter, option, index); break;
    case ckRating:
        if (const int rating = index.data(rrRating).toInt(); rating > 0)
            DrawStars(*painter, QPointF(box.left(), box.center().y() - RowStarSize / 2), RowStarSize, rating, theme);
        break;
    case ckStatus: PaintStatus(*painter, box, index, selected); break;
    case ckCountry:
        if (!text.isEmpty())
            DrawPill(*painter, QPointF(box.left(), box.center().y()), text, theme);
        break;
    case ckPlaying:
        if (!text.isEmpty())
            DrawIcon(*painter, QRectF(box.center().x() - 7, box.center().y() - 7, 14, 14), u"play"_s, theme.AccentFill);
        break;
    case ckNumber:
        PaintHits(*painter, box, text, true);
        DrawElided(*painter, box, text, Qt::AlignRight | Qt::AlignVCenter);
        break;
    default:
        PaintHits(*painter, box, text, option.direction == Qt::RightToLeft);
        DrawElided(*painter, box, text, QStyle::visualAlignment(option.direction, Qt::AlignLeft) | Qt::AlignVCenter);
    }
    if (option.state.testFlag(QStyle::State_HasFocus))
        DrawFocusRing(*painter, QRectF(option.rect).adjusted(0, 0, 0, -1), RadiusCover, theme);
    painter->restore();
}

} // namespace Kestrune
