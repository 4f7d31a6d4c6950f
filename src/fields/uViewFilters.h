// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uFilter.h"
#include "uSearch.h"

#include <QString>
#include <QStringList>

#include <map>
#include <optional>
#include <vector>

namespace Kestrune {

class TDataModuleMain;
class TListDataset;

/// An active filter, as a removable chip shows it.
enum class TFilterChipKind : quint8 { fckStatus, fckLetter, fckKeyword, fckEverything, fckColumn, fckBuilder };
using enum TFilterChipKind;
struct TFilterChip {
    TFilterChipKind Kind;
    QString Column; ///< of a fckColumn
    QString Field;
    QString Value;
};

/// The filters of a list as plain data: what a saved filter keeps.
struct TFilterSet {
    QString Status;
    QString Letter;
    int LetterField = 0; ///< 0 artist, 1 release name
    QString KeywordColumn, KeywordText;
    QString Everything;                 ///< words searched for in all texts
    std::map<QString, QString> Columns; ///< filter row: column and text
    TFilterNode Builder;
    bool IsEmpty() const;
};

/// As one line of text for the settings, and back; nothing for a damaged one.
QString FilterSetToText(const TFilterSet& set);
std::optional<TFilterSet> FilterSetFromText(const QString& text);

/// The filters of one list: independent criteria side by side in the root of its cursor's filter. Setting one replaces
/// what it was before; nothing acts before the cursor is asked to apply its filter.
class TViewFilters {
public:
    /// Both outlive it.
    TViewFilters(TDataModuleMain& data, TListDataset& list);

    const TFilterSet& Set() const { return FSet; }
    /// Puts a whole set in place of the present one, but for the conditions on columns that the list lacks; gives the
    /// captions of these.
    QStringList Restore(const TFilterSet& set);

    void SetStatus(const QString& status);
    /// One letter, "#" for what begins with no letter; empty for none.
    void SetLetter(const QString& letter);
    void SetLetterField(int field);
    /// A column by its caption; the first one where there is none of that caption.
    void SetKeyword(const QString& column, const QString& text);
    /// `releases` are those in which the words were found.
    void SetEverything(const QString& words, const std::vector<qint64>& releases);
    /// Text of the filter row for a column; empty for none. False when the text is no condition for this column.
    bool SetColumn(const QString& column, const QString& text);
    /// Captions of the columns that the list lacks: with one of these no condition is set at all, since part of a tree
    /// would mean another thing.
    QStringList SetBuilder(const TFilterNode& node);

    void Remove(TFilterChipKind kind, const QString& column = {});
    void Clear();
    std::vector<TFilterChip> Chips() const;
    std::vector<TSearchField> Fields() const { return SearchFieldsOf(FData, FList); }

private:
    void Drop(TFilterGroup::TId& id);
    QString LetterColumn() const;
    QStringList Lacking(const TFilterNode& node) const;

    TDataModuleMain& FData;
    TListDataset& FList;
    TFilterSet FSet;
    TFilterGroup::TId FStatusFilter = 0;
    TFilterGroup::TId FQuickFilter = 0;
    TFilterGroup::TId FKeywordFilter = 0;
    TFilterGroup::TId FEverythingFilter = 0;
    TFilterGroup::TId FBuilderFilter = 0;
    qint64 FHits = 0; // number of the search in everything
    std::map<QString, TFilterGroup::TId> FColumnFilters;
};

/// What a text of the filter row means for a column: "<", "<=", ">", ">=", "=", "<>" and "a..b" before or between
/// values, "=" alone for empty and "<>" alone for not empty; a plain text is contained in texts and equals other
/// values. Nothing when a value is none of the column's kind.
std::optional<TFilterCriterion> ColumnCriterion(TDataModuleMain& data, const TFieldDef& field, const QString& text);

/// A tree of conditions on these fields in words: "Genre is Folk or Jazz, not (On loan)".
QString FilterSummary(const std::vector<TFieldDef>& fields, const TFilterNode& node);

/// The caption of a column, also of one that the present list lacks.
QString CaptionOfColumn(const QString& column);

/// The words of an operator, as the filter builder offers it.
QString FilterOpText(TFilterOp op);
/// The operators that suit a field.
std::vector<TFilterOp> FilterOpsOf(const TFieldDef& field);
QString FilterPeriodText(TFilterPeriod period);

} // namespace Kestrune
