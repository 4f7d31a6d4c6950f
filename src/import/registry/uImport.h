// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uImporterClass.h"

#include <QString>

#include <span>

namespace Kestrune {

/// The sources of bulk import, in the order in which they are offered.
std::span<const TImporterClass> ImporterClasses();

/// The source of that class name, or null.
const TImporterClass* FindImporterClass(const QString& className);

} // namespace Kestrune
