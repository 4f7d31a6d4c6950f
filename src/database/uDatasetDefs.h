// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uDataSet.h"

namespace Kestrune {

// What the long-lived cursors of the collection read.
TDatasetDef ReleasesMainDef();
TDatasetDef TracksAllDef();
TDatasetDef FriendsDef();
TDatasetDef LoansDef();
TDatasetDef StatsDef();

} // namespace Kestrune
