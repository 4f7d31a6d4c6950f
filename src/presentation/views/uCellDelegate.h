// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStyledItemDelegate>

namespace Kestrune {

class TCoverCache;

/// Row heights of the tables, in dip.
enum class TRowSize : quint8 { rsCompact, rsNormal, rsWithCover };
using enum TRowSize;

/// Paints a cell by the kind of its column: text, number, mini cover, stars, status, country, play mark. The ground
/// of the row (selection, hover) is the table's; the focused cell's ring is drawn here.
class TCellDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    /// Keeps a pointer to the covers; null paints no covers.
    explicit TCellDelegate(TCoverCache* covers, QObject* parent = nullptr);

    void SetRowSize(TRowSize size) { FRowSize = size; }
    int RowHeightInDip() const;
    /// Marks a text where it stands in a cell; empty marks nothing.
    void SetFindText(const QString& text) { FFindText = text; }

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    QString displayText(const QVariant& value, const QLocale& locale) const override;

private:
    void PaintCover(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index) const;
    void PaintHits(QPainter& painter, const QRectF& box, const QString& text, bool right) const;
    void PaintStatus(QPainter& painter, const QRectF& box, const QModelIndex& index, bool selected) const;

    TCoverCache* FCovers;
    TRowSize FRowSize = rsNormal;
    QString FFindText;
};

/// The TCellKind of a column, ckText when the model does not tell.
int CellKindOf(const QAbstractItemModel& model, int column);

} // namespace Kestrune
