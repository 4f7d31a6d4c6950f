// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

namespace Kestrune {

/// Splits a leading ("The Beatles") or trailing ("Beatles, The") article off a name, ignoring case. The first hit in
/// the order of the list wins, leading articles before trailing ones. Both outputs are empty when there is none.
bool SplitArticle(const QString& text, const QStringList& articles, QString& article, QString& rest);

/// The name in the form that the user chose. Mode 0: as it stands; 1: article first; 2: name, comma, article;
/// 3: name alone; any other: as it stands.
QString ApplyArticleDisplay(const QString& text, const QStringList& articles, int mode);

/// The text to sort by: the name without its article.
QString ArticleSortKey(const QString& text, const QStringList& articles);

/// Parses a list such as "The, A, An": parts are trimmed, empty ones dropped.
QStringList ParseArticleList(const QString& text);

} // namespace Kestrune
