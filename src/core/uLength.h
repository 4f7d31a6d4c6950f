// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>

namespace Kestrune {

/// A length of time in seconds from "m:ss", "h:mm:ss" or a plain number of seconds; the last part may have decimals
/// behind a point. None for anything else and for negative or absurd lengths.
std::optional<double> ParseLengthSec(const QString& text);

} // namespace Kestrune
