// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uColumnNames.h"

#include <QString>

#include <span>

namespace Kestrune {

struct TDefaults;
struct TCustomFieldDefs;

/// What a field holds. Memos are texts of any length; blobs are pictures.
enum class TFieldKind : quint8 { fkString, fkMemo, fkInteger, fkFloat, fkBoolean, fkDate, fkDateTime, fkBlob };
using enum TFieldKind;

/// What is special about a column: its value is given by the file, or it must have one.
enum class TColumnFlag : quint8 { cfNone, cfAutoIncrement, cfRequired };
using enum TColumnFlag;

/// One column of a table, as the file declares it.
struct TColumnDef {
    TColumnName Name;
    TFieldKind Kind;
    int Size;             ///< longest text that editors allow, 0 for no limit
    const char* LabelKey; ///< language key of the caption, empty for internal columns
    TColumnFlag Flag = cfNone;
};

/// The columns of each table in the order of the file's schema.
std::span<const TColumnDef> ReleaseColumns();
std::span<const TColumnDef> TrackColumns();
std::span<const TColumnDef> FriendColumns();
std::span<const TColumnDef> LoanColumns();
std::span<const TColumnDef> MusicianColumns();
std::span<const TColumnDef> OtherPictureColumns();

/// One field of a cursor: a column of the cursor's own table, or something that its query adds.
struct TFieldDef {
    QString Name;
    TFieldKind Kind = fkString;
    int Size = 0;
    QString LabelKey;
    QString Expression; ///< how the query selects it, as in "R.Artist"; empty for fields computed from others
    bool ReadOnly = false;
    bool AutoIncrement = false;
    bool Required = false;
    /// The user's own names and kinds of the columns Custom1 to Custom10; null for every other column.
    TCustomFieldDefs TDefaults::*Custom = nullptr;
    bool Lazy = false; ///< a picture that a record does not hold: read by TDataset::ReadBlob

    bool IsText() const { return Kind == fkString || Kind == fkMemo; }
};

/// The caption of a field: its text in the current language, or the name the user gave to a custom field.
QString ColumnLabel(const TFieldDef& field, const TDefaults& settings);

/// False for custom fields that the user has not switched on.
bool IsFieldShown(const TFieldDef& field, const TDefaults& settings);

/// The kind of values that a field takes from the user: that of its column, or of the user's own field.
TFieldKind ValueKindOf(const TFieldDef& field, const TDefaults& settings);

} // namespace Kestrune
