// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uColumns.h"
#include "uTHTypes.h"

#include <QString>

#include <optional>

namespace Kestrune {

class TDataModuleMain;

/// A value as the user reads it: names behind codes and keys, dates and numbers in the user's way, articles as the
/// settings say, lengths as "m:ss". Empty for null. `currency` stands before sums of money where there is one.
QString FieldText(TDataModuleMain& data, const TFieldDef& field, const TVariant& value, const QString& currency = {});

/// A value as an editor shows it for typing: like FieldText, but nothing is abbreviated or decorated.
QString FieldEditText(const TFieldDef& field, const TVariant& value);

/// What was typed, as the value of a field: null for an empty text. Nothing when the text is no value of the field's
/// kind. Numbers and dates are read in the user's way and in the international one, lengths as "m:ss", "h:mm:ss" or
/// seconds.
std::optional<TVariant> ParseFieldText(const TFieldDef& field, const QString& text);

/// Why a text was refused, as one sentence.
QString FieldRefusal(const QString& caption, const TFieldDef& field);

/// "m:ss" or "h:mm:ss" of a length in days; empty for zero and less.
QString LengthText(double days);

/// True for the columns whose value is a length of time in days.
bool IsLengthField(const QString& column);
/// True for the columns that hold the key of a friend.
bool IsFriendField(const QString& column);

} // namespace Kestrune
