// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uColumnNames.h"

#include <QString>

#include <optional>
#include <span>

namespace Kestrune {

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

/// The parts of a release's record in the detail pane.
enum class TFieldSection : quint8 { fsNone, fsGeneral, fsPurchase, fsClassical, fsCustom, fsComments };
using enum TFieldSection;

/// What the windows know of a column beside its place in the file and its caption. Columns of the same name in several
/// tables share their row.
struct TFieldInfo {
    TColumnName Column;
    TFieldSection Section = fsNone;
    std::optional<TEditorKind> Editor = {}; ///< none: it follows from the kind of the field
    int Width = 0;                          ///< that suits what usually stands in it, in dip; 0: as its heading
};

/// One row per column, in the order in which the detail pane shows them.
std::span<const TFieldInfo> FieldTable();

/// The row of a column, compared without case; an empty row for one that has none.
const TFieldInfo& FieldInfoOf(const QString& column);

/// Id by which settings remember a section, and the language key of its title.
QString SectionId(TFieldSection section);
QString SectionTitleKey(TFieldSection section);

} // namespace Kestrune
