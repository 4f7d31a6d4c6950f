// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uTHTypes.h"

#include <QString>

namespace Kestrune {

class TDataset;
struct TFieldDef;

/// False for fields that the store step must leave alone: numbers given by the file, read-only fields, pictures,
/// and `Rating` and `Release`, which follow from others.
bool IsFieldAssignable(const TFieldDef& field);

/// A value of any kind as a field's kind has it; what does not convert becomes null.
TVariant ToFieldValue(const TFieldDef& field, const TVariant& value);

/// Puts such a value into a field; nothing into one that is not assignable.
void AssignFieldValue(TDataset& dataSet, int field, const TVariant& value);

/// The default of a field where `value` is null, zero, empty or false; else the value itself.
TVariant ApplyDefaultValue(const TVariant& value, const QString& fieldName);

/// A name as the article settings show it, for the fields that they cover; any other text as it is.
QString DisplayText(const QString& fieldName, const QString& text);

} // namespace Kestrune
