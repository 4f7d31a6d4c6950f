// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uChanges.h"

#include <vector>

namespace Kestrune {

class TDataset;
class TSQLiteConnection;

/// Which releases were written since somebody last asked, by themselves or by what hangs on them. Main thread only.
class TTouchedReleases {
public:
    /// Both outlive it; while the list is closed no release is found for what hangs on one.
    TTouchedReleases(TSQLiteConnection& connection, const TDataset& releases)
        : FConnection(connection), FReleases(releases)
    {}

    /// Whether they are kept; off at first. Forgets what was kept before.
    void Keep(bool on);
    /// A row of a table was written.
    void Note(const char* table, qint64 row);
    bool Any() const;
    /// Takes them out, at most so many; -1 for all. None within a transaction, whose end may undo them.
    std::vector<qint64> Take(int most = -1);

private:
    TSQLiteConnection& FConnection;
    const TDataset& FReleases;
    bool FKeeps = false;
    TChanges FRows;
};

} // namespace Kestrune
