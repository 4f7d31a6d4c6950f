// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uDataSet.h"

#include <array>

namespace Kestrune {

/// One release with all that hangs on it, for one purpose: editing, showing or storing. New children get their key
/// from their own cursor's parameter, never from a list.
struct TReleaseCursors {
    explicit TReleaseCursors(TSQLiteConnection& connection);

    TDetailDataset Info;         ///< the release with its large pictures, by parameter
    TDetailDataset Tracks;       ///< its tracks
    TDetailDataset Credits;      ///< credits of the release
    TDetailDataset TrackCredits; ///< credits of one track
    TDetailDataset Pictures;     ///< further pictures, by parameter

    std::array<TDetailDataset*, 5> All() { return {&Info, &Pictures, &Credits, &TrackCredits, &Tracks}; }
    /// Stands on a release by its key, whatever a list shows. The same key keeps what is in work.
    void Select(qint64 release);
    /// Stands on a release that was just made: it has no children, so nothing is read.
    void SelectNew(qint64 release);
};

} // namespace Kestrune
