// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QByteArrayView>

namespace Kestrune {

/// Puts 0xFF for each 0xFF 0x00 (ID3v2.4.0 structure, section 6.1).
QByteArray UndoUnsynchronisation(QByteArrayView bytes);

/// Once a part is unsynchronised, no 0xFF is followed by a byte of 0xE0 or above. Tells the writers that set the flag
/// and leave the bytes alone.
bool LooksUnsynchronised(QByteArrayView bytes);

} // namespace Kestrune
