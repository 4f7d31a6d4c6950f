// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uDataSet.h"
#include "uDictionaries.h"

#include <QString>

#include <vector>

namespace Kestrune {

class TDataModuleMain;

/// A column that can be searched by one text or one value of a list.
struct TSearchField {
    QString Column;
    QString Caption;
    bool IsList = false;              ///< a value chosen from a list: searched by equality
    std::vector<TValueAndText> Items; ///< what the list offers
};

/// The searchable columns of a list, in the order of its fields.
std::vector<TSearchField> SearchFieldsOf(TDataModuleMain& data, const TListDataset& list);

/// Equality for a list-type field, given by value or shown text, and any value for an empty text; for others the text
/// anywhere in the field. `%` and `_` in the text are wildcards.
TFilterCriterion SearchCriterion(const TSearchField& field, const QString& text);

/// Names that begin with a letter, as stored.
TFilterCriterion LetterCriterion(const QString& column, const QString& letter);

/// Names that begin with no letter: digits, signs.
TFilterCriterion NoLetterCriterion(const QString& column);

/// The status of a release, or of the release to which a row of the list belongs.
TFilterCriterion StatusCriterion(const TListDataset& list, const QString& status);

} // namespace Kestrune
