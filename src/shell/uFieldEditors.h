// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uColumns.h"
#include "uDictionaries.h"

#include <QString>

#include <optional>
#include <span>
#include <vector>

namespace Kestrune {

class TDataModuleMain;

/// How a field is edited. The same in tables, detail pane, search box, filters and multi-edit.
enum class TEditorKind : quint8 {
    ekText,
    ekMemo,   ///< several lines
    ekNumber, ///< a whole or broken number
    ekDate,
    ekLength, ///< "m:ss"
    ekList,   ///< free text with the suggestions of a list
    ekChoice, ///< one value of a list, or none
    ekRating, ///< stars
    ekTokens, ///< texts separated by commas
    repASIN,  ///< text with a button that opens the page of the ASIN
    repDiscogs,
    repMusicBrainz,
    repSelectFolder ///< text with a button that asks for a folder
};
using enum TEditorKind;

/// One row of the table of fields with an editor of their own.
struct TFieldEditorRow {
    const char* Field;
    std::optional<TEditorKind> Kind; ///< none: the editor follows from the kind of the field
};

/// The table, sorted by field without regard to case.
std::span<const TFieldEditorRow> FieldEditorTable();

/// The editor of a field: by the table, else by the kind of the field; custom fields by their type in the settings.
TEditorKind EditorKindOf(const TFieldDef& field, bool ofTracks);

/// What a list or choice offers, as stored and as shown; empty for other editors.
std::vector<TValueAndText> EditorItems(TDataModuleMain& data, const TFieldDef& field);

/// The page that a field's value leads to; empty for none.
QString LinkOfField(const QString& column, const QString& value);

/// The suggestion list behind a column, or null.
PDict DictionaryOf(const QString& column);

} // namespace Kestrune
