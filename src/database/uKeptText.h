// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

namespace Kestrune {

class TAlbumRelease;
class TDataset;
struct TDefaults;
struct TFieldDef;

/// What a column that takes numbers makes of a text ("Datatypes in SQLite", 3: NUMERIC affinity): the number as text,
/// or the text itself where it is none. Asks the engine, so that both always agree. Main thread only.
QString KeptText(const QString& text);

/// One sentence on what is kept of a text in a field of the user's own and why; empty where it stays as it is.
QString KeptTextNote(const TFieldDef& field, const QString& text, const TDefaults& settings);

/// Such sentences for what a release brings for the fields of a cursor, each behind the caption of its field.
QStringList KeptTextNotes(const TDataset& cursor, const TAlbumRelease& release, const TDefaults& settings);

} // namespace Kestrune
