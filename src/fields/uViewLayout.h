// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uFilter.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace Kestrune {

/// One column of a table as the user left it.
struct TColumnState {
    QString Field;
    int Width = 0; ///< in dip; 0: the table chooses
    bool Hidden = false;
    bool operator==(const TColumnState&) const = default;
};

/// What the settings keep of a table: the columns in their order, the sort and the groups.
struct TTableLayout {
    std::vector<TColumnState> Columns;
    std::vector<TSortItem> Sort;
    QStringList Groups;
    bool operator==(const TTableLayout&) const = default;
};

/// One line of text, as in "v2|Artist:0,No:52,-Genre:104|Artist,-ReleaseYear|Genre".
QString LayoutToText(const TTableLayout& layout);
/// Nothing for a text of another version, a damaged one, and one that shows no column.
std::optional<TTableLayout> LayoutFromText(const QString& text);

/// The ids of folded sections as one line of text.
QString FoldedToText(QStringList ids);
/// No ids for a text of another version or a damaged one.
QStringList FoldedFromText(const QString& text);

} // namespace Kestrune
