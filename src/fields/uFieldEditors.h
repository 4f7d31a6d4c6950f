// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uColumns.h"
#include "uDictionaries.h"
#include "uFieldTable.h"

#include <QString>

#include <vector>

namespace Kestrune {

class TDataModuleMain;

/// The editor of a field: by the table, else by the kind of the field; custom fields by their type in the settings.
TEditorKind EditorKindOf(const TFieldDef& field);

/// What a list or choice offers, as stored and as shown; empty for other editors.
std::vector<TValueAndText> EditorItems(TDataModuleMain& data, const TFieldDef& field);

/// The page that a field's value leads to; empty for none.
QString LinkOfField(const QString& column, const QString& value);

/// The suggestion list behind a column, or null.
PDict DictionaryOf(const QString& column);

} // namespace Kestrune
