// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace Kestrune {

/// A file or folder that belongs to the program: beside the executable when it is there, else in "share/kestrune"
/// under the install prefix. Where neither exists the first path is given.
QString ProgramFile(const QString& name);

/// $XDG_CONFIG_HOME (or its default) + Company + Product: holds the settings file. Not made.
QString ConfigFolder(const QString& company, const QString& product);

/// $XDG_DATA_HOME (or its default) + Company + Product: the per-user data folder. Not made.
QString DataFolder(const QString& company, const QString& product);

} // namespace Kestrune
