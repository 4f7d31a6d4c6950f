// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uFilter.h"

#include <QString>
#include <QStringList>

#include <span>
#include <vector>

namespace Kestrune {

class TAlbumTable;
class TKRNMainForm;

/// A preset of a table view: which columns are shown in which order, by which it is grouped and sorted.
struct TTableViewCustomizationConf {
    const char* Name;       ///< as in "btnTableViewPresetReleaseInfo"
    const char* CaptionKey; ///< language key
    bool OfTracks;
    QStringList VisibleColumns;
    QStringList GroupedColumns;
    QStringList SortedColumns;

    /// Puts the table into this shape; columns that the list does not have are passed over.
    void Apply(TAlbumTable& table, TKRNMainForm& form) const;
};

/// The presets, those of the releases first.
const std::vector<TTableViewCustomizationConf>& TablePresets();

/// Shows these columns in their order and hides all others; each as wide as its heading needs at least.
void ShowColumns(TAlbumTable& table, const QStringList& columns);

} // namespace Kestrune
