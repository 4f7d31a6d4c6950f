// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uTagNames.h"

#include <QString>
#include <QStringList>

namespace Kestrune {

/// Texts in their order, each once; empty ones are none. The first MostFields of them are kept.
class TDistinctTexts {
public:
    void Add(const QString& text);
    /// All of them with a blank between.
    QString Join() const { return FTexts.join(u' '); }

private:
    QStringList FTexts;
    TSeen<QString> FSeen;
};

/// Number of known genres: the published table of ID3v1 with its later additions, "Blues" (0) to "Psybient" (191).
int ID3GenreCount();

/// Name of a genre number; empty outside the table.
QString ID3GenreName(int number);

/// Turns the references of a genre text into names: "(17)" and a bare "17" are numbers of the table, "((" stands for a
/// literal "(", "()" is nothing, and the rest is free text. Several results are joined by a blank; a free text
/// that equals a name before it appears once. Numbers outside the table stay numbers.
QString ResolveID3Genre(QStringView text);

} // namespace Kestrune
