// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uFilter.h"

#include <QString>
#include <QStringList>

#include <utility>
#include <vector>

namespace Kestrune {

/// The sort dialog without widgets: levels of column and order, the first one foremost. Columns are named by their
/// captions, as the user chooses them.
class TSortForm {
public:
    /// One row of the dialog.
    struct TLSort {
        QString Column; ///< caption
        QString Order;  ///< text of cSSortDlgAsc or cSSortDlgDesc
        bool operator==(const TLSort&) const = default;
    };
    /// A column of the view: caption and field.
    using TColumn = std::pair<QString, QString>;

    /// Fills the levels from the present sort of a view; fields that are no column are left out.
    void LoadFromCustomGridTableView(std::vector<TColumn> columns, const std::vector<TSortItem>& sort);

    const std::vector<TLSort>& Levels() const { return FLevels; }
    QStringList Captions() const;
    /// Both texts of the order, ascending first.
    static QStringList Orders();
    void SetLevel(int row, const TLSort& level);

    /// Appends a level with the first column that is not sorted by yet.
    void actAddLevel();
    void actDeleteLevel(const std::vector<int>& rows);
    bool CanMoveUp(int row) const { return row > 0 && row < static_cast<int>(FLevels.size()); }
    bool CanMoveDown(int row) const { return row >= 0 && row + 1 < static_cast<int>(FLevels.size()); }
    void actUp(int row);
    void actDown(int row);

    /// Why the levels cannot be taken, or empty.
    QString Check() const;
    /// The sort that the levels mean; a column that is gone is passed over.
    std::vector<TSortItem> ApplySorting() const;

private:
    std::vector<TColumn> FColumns;
    std::vector<TLSort> FLevels;
};

} // namespace Kestrune
