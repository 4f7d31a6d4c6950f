// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uCD.h"

#include <QCommandLineParser>

namespace Kestrune {

/// The options that name an audio CD: --toc --device.
void AddDiscOptions(QCommandLineParser& parser);

/// True when one of them is given.
bool HasDiscOption(const QCommandLineParser& parser);

/// The disc that they name: numbers that are none of a disc throw EUsageError, a drive that cannot be read
/// ECommandError.
TDiscTexts DiscOfOptions(const QCommandLineParser& parser);

} // namespace Kestrune
