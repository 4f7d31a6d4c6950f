// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>

namespace Kestrune {

/// Shows progress (0 to 1) on the program's button in docks that follow the LauncherEntry signal of the session bus;
/// nothing takes it away. Without a bus it does nothing.
void SetTaskbarProgress(std::optional<double> share);

} // namespace Kestrune
