// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uColumns.h"
#include "uTHTypes.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <vector>

namespace Kestrune {

class TDataModuleMain;
class TListDataset;

/// A column of what is exported or printed.
struct TExportColumn {
    QString Field; ///< Col::ThumbPicture stands for the cover
    QString Caption;
};

/// The heading of a group, in front of its first row.
struct TExportGroup {
    int Level = 0;
    QString Field;
    QString Caption;
    QString Value;
    int Count = 0;
};

/// What a list view shows, as texts and values: its rows in their present order under the filter in force, its columns
/// and its groups. The data module and the list outlive it. Main thread only.
class TExportSource {
public:
    /// Columns that the list does not have are left out; pictures only stay where `thumbnails` asks for them.
    TExportSource(TDataModuleMain& data, TListDataset& list, std::vector<TExportColumn> columns, bool thumbnails);

    const std::vector<TExportColumn>& Columns() const { return FColumns; }
    int ColumnCount() const { return static_cast<int>(FColumns.size()); }
    int RowCount() const;
    /// What one row is, as the name of an element.
    const QString& RowName() const;
    bool IsThumbnail(int column) const { return FFields[static_cast<size_t>(column)] < 0; }
    bool HasThumbnails() const;
    /// Field of a column; not for the cover.
    const TFieldDef& FieldOf(int column) const;
    /// True for numbers, dates and lengths, which stand at the right.
    bool IsRightAligned(int column) const;
    /// The columns by which the list is grouped, with their captions.
    std::vector<TExportColumn> GroupColumns() const;
    bool IsGrouped() const;
    /// Headings in front of a row, outermost first. Rows must be asked for in order, or Rewind called before.
    std::vector<TExportGroup> GroupsAt(int row);
    void Rewind() { FNextGroup = 0; }

    using TReceive = std::function<bool(int row, const std::vector<TVariant>& values)>;
    /// All rows with the values of the columns (null for covers), in order; `receive` gives false to stop.
    void Walk(const TReceive& receive);
    /// A value as the view shows it. `values` are those of the row, as Walk gives them.
    QString Text(const std::vector<TVariant>& values, int column) const;
    /// Values of one row, from the list's cache.
    std::vector<TVariant> RowValues(int row) const;
    /// Encoded thumbnail of a row; empty for none.
    QByteArray Thumbnail(int row) const;
    /// Title and artist of a row, as shown.
    std::pair<QString, QString> Names(int row) const;

private:
    TDataModuleMain& FData;
    TListDataset& FList;
    std::vector<TExportColumn> FColumns;
    std::vector<int> FFields; // of each column; -1 for the cover
    std::vector<int> FWalked; // fields that are read: those of the columns, then the currency
    size_t FNextGroup = 0;
};

} // namespace Kestrune
