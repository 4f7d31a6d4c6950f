// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace Kestrune {

class TByteSource;

/// Length of a True Audio file (format 1, header "TTA1", behind an ID3v2 tag or not) in whole seconds; 0 for others.
int TTADurationSec(TByteSource& file);

/// Length of an Opus file in whole seconds, from the granule position of its last Ogg page (RFC 7845, section 4);
/// 0 for others.
int OpusDurationSec(TByteSource& file);

} // namespace Kestrune
