// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

#include <cstddef>
#include <unordered_set>

namespace Kestrune {

/// Rows of the collection that were written, deleted or taken back, by table.
struct TChanges {
    std::unordered_set<qint64> Releases, Tracks, Credits, Pictures, Loans, Friends;
    bool CameOrWent = false; ///< some of them are new or gone
    bool Undone = false;     ///< what was written before was taken back
    bool Many = false;       ///< more than are worth naming: any row may be concerned
    bool OnlyAdded = true;   ///< all by releases that were stored, which concerns nothing that was there

    /// Takes in a row of a table of the collection; false for any other table.
    bool Note(const char* table, qint64 row, bool cameOrWent);
    /// Names at most so many rows of each table.
    void Bound(size_t most);
};

} // namespace Kestrune
