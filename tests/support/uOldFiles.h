// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace Kestrune::Kit {

/// Runs a script on a file with the bare engine, as another program would; makes the file where it is not there.
void MakeFile(const QString& path, const QString& sql);

/// Makes a small collection of an older format: "1000", "2000", "2001", or at the columns of 2000 with another text as
/// its version.
void MakeOldCollection(const QString& path, const QString& version);

} // namespace Kestrune::Kit
