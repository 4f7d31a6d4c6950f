// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace Kestrune {

/// Why a file can or cannot be opened; the first check that fails decides.
enum class TDBValidationResult : quint8 { dvrOK, dvrNotFound, dvrEmpty, dvrNotSQLite, dvrNotCollection };
using enum TDBValidationResult;

/// Decides whether a file can be opened as a collection. Never creates a file, never throws.
TDBValidationResult ValidateDatabaseFile(const QString& path);

/// The sentence for the user; empty for `dvrOK`.
QString DatabaseValidationMessage(TDBValidationResult result);

} // namespace Kestrune
