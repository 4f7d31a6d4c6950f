// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

namespace Kestrune {

/// A file or folder that belongs to the program: beside the executable when it is there, else in "share/kestrune"
/// under the install prefix. Where neither exists the first path is given.
QString ProgramFile(const QString& name);

/// The text of a file of the program, else that of a resource that is compiled in (":/sql/x.sql"); null where there is
/// neither. A file that is there counts even when it cannot be read: a broken one must not be hidden.
QByteArray ProgramText(const QString& fileName, const QString& resource);

/// $XDG_CONFIG_HOME (or its default) + Company + Product: holds the settings file. Not made.
QString ConfigFolder(const QString& company, const QString& product);

/// $XDG_DATA_HOME (or its default) + Company + Product: the per-user data folder. Not made.
QString DataFolder(const QString& company, const QString& product);

} // namespace Kestrune
