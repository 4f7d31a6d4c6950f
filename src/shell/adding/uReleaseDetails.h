// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uDetailView.h"

namespace Kestrune {

class TAlbumRelease;

/// A release of a service as the detail pane shows it.
TDetailData BuildReleaseDetails(const TAlbumRelease& release);

} // namespace Kestrune
