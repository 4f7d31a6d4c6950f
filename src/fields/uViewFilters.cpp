// SPDX-License-Identifier: GPL-3.0-or-later
#include "uViewFilters.h"

#include "dmMain.h"
#include "uColumnNames.h"
#include "uDefaults.h"
#include "uFieldText.h"
#include "uTHStrings.h"

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

bool TFilterSet::IsEmpty() const
{
    return Status.isEmpty() && Letter.isEmpty() && KeywordColumn.isEmpty() && Everything.isEmpty() && Columns.empty() &&
           Builder.IsEmpty();
}

TViewFilters::TViewFilters(TDataModuleMain& data, TListDataset& list) : FData(data), FList(list) {}

void TViewFilters::Drop(TFilterGroup::TId& id)
{
    FList.Filter().Remove(id);
    id = 0;
}

QString TViewFilters::LetterColumn() const { return FSet.LetterField == 0 ? Col::Artist : Col::ReleaseName; }

void TViewFilters::SetStatus(const QString& status)
{
    Drop(FStatusFilter);
    FSet.Status = status;
    if (!status.isEmpty())
        FStatusFilter = FList.Filter().Add(StatusCriterion(FList, status));
}

void TViewFilters::SetLetter(const QString& letter)
{
    Drop(FQuickFilter);
    FSet.Letter = letter;
    if (!letter.isEmpty())
        FQuickFilter = FList.Filter().Add(letter == "#"_L1 ? NoLetterCriterion(LetterColumn())
                                                           : LetterCriterion(LetterColumn(), letter));
}

void TViewFilters::SetLetterField(int field)
{
    FSet.LetterField = field;
    if (!FSet.Letter.isEmpty())
        SetLetter(FSet.Letter);
}

void TViewFilters::SetKeyword(const QString& column, const QString& text)
{
    Drop(FKeywordFilter);
    const std::vector<TSearchField> fields = Fields();
    auto field = std::ranges::find(fields, column, &TSearchField::Column);
    if (field == fields.end())
        field = fields.begin();
    FSet.KeywordColumn = field->Column;
    FSet.KeywordText = text;
    FKeywordFilter = FList.Filter().Add(SearchCriterion(*field, text));
}

void TViewFilters::SetEverything(const QString& words, const std::vector<qint64>& releases)
{
    Drop(FEverythingFilter);
    FData.Queries().DropHits(FHits);
    FHits = 0;
    FSet.Everything = words;
    if (words.isEmpty())
        return;
    FHits = FData.Queries().AddHits(releases);
    FEverythingFilter = FList.Filter().Add({FList.Def().ReleaseKey, foIsHit, FHits, words});
}

bool TViewFilters::SetColumn(const QString& column, const QString& text)
{
    Drop(FColumnFilters[column]);
    FColumnFilters.erase(column);
    FSet.Columns.erase(column);
    if (text.trimmed().isEmpty())
        return true;
    const int index = FList.FieldIndex(column);
    if (index < 0)
        return false;
    const auto criterion = ColumnCriterion(FData, FList.Fields()[static_cast<size_t>(index)], text);
    if (!criterion)
        return false;
    FSet.Columns[column] = text;
    FColumnFilters[column] = FList.Filter().Add(*criterion);
    return true;
}

QStringList TViewFilters::Lacking(const TFilterNode& node) const
{
    QStringList columns;
    for (const TFilterCriterion& criterion : node.Criteria)
        if (FList.FieldIndex(criterion.Column) < 0)
            columns << CaptionOfColumn(criterion.Column);
    for (const TFilterNode& group : node.Groups)
        columns << Lacking(group);
    return columns;
}

QStringList TViewFilters::SetBuilder(const TFilterNode& node)
{
    Drop(FBuilderFilter);
    const QStringList lacking = Lacking(node);
    FSet.Builder = lacking.isEmpty() ? node : TFilterNode();
    if (!FSet.Builder.IsEmpty())
        FBuilderFilter = FList.Filter().AddTree(node);
    return lacking;
}

void TViewFilters::Remove(TFilterChipKind kind, const QString& column)
{
    switch (kind) {
    case fckStatus: SetStatus({}); break;
    case fckLetter: SetLetter({}); break;
    case fckKeyword:
        Drop(FKeywordFilter);
        FSet.KeywordColumn.clear();
        FSet.KeywordText.clear();
        break;
    case fckEverything: SetEverything({}, {}); break;
    case fckColumn: SetColumn(column, {}); break;
    case fckBuilder: SetBuilder({}); break;
    }
}

void TViewFilters::Clear()
{
    const int letterField = FSet.LetterField;
    FList.Filter().Clear();
    FStatusFilter = FQuickFilter = FKeywordFilter = FEverythingFilter = FBuilderFilter = 0;
    FColumnFilters.clear();
    FData.Queries().DropHits(FHits);
    FHits = 0;
    FSet = {};
    FSet.LetterField = letterField;
}

QStringList TViewFilters::Restore(const TFilterSet& set)
{
    QStringList lacking;
    Clear();
    FSet.LetterField = set.LetterField;
    SetStatus(set.Status);
    SetLetter(set.Letter);
    if (!set.KeywordColumn.isEmpty() && FList.FieldIndex(set.KeywordColumn) < 0)
        lacking << CaptionOfColumn(set.KeywordColumn);
    else if (!set.KeywordColumn.isEmpty())
        SetKeyword(set.KeywordColumn, set.KeywordText);
    for (const auto& [column, text] : set.Columns)
        if (!SetColumn(column, text))
            lacking << CaptionOfColumn(column);
    lacking << SetBuilder(set.Builder);
    lacking.removeDuplicates();
    return lacking;
}

std::vector<TFilterChip> TViewFilters::Chips() const
{
    std::vector<TFilterChip> chips;
    if (FStatusFilter != 0)
        chips.push_back({fckStatus, {}, GetLanguageString(u"cSReleasesFieldStatusId"_s), FSet.Status});
    if (FQuickFilter != 0) {
        const QString key = FSet.LetterField == 0 ? u"cSArtistBeginsWith"_s : u"cSReleaseBeginsWith"_s;
        chips.push_back({fckLetter, {}, GetLanguageString(key), FSet.Letter});
    }
    if (FKeywordFilter != 0) {
        const std::vector<TSearchField> fields = Fields();
        const auto field = std::ranges::find(fields, FSet.KeywordColumn, &TSearchField::Column);
        chips.push_back({fckKeyword,
                         {},
                         field == fields.end() ? FSet.KeywordColumn : field->Caption,
                         FSet.KeywordText.isEmpty() ? FilterOpText(foIsNotNull) : FSet.KeywordText});
    }
    if (FEverythingFilter != 0)
        chips.push_back({fckEverything, {}, GetLanguageString(u"cSGuiEverything"_s), FSet.Everything});
    for (const auto& [column, text] : FSet.Columns) {
        const TFieldDef& field = FList.Fields()[static_cast<size_t>(FList.FieldIndex(column))];
        chips.push_back({fckColumn, column, ColumnLabel(field, Defaults()), text});
    }
    if (FBuilderFilter != 0)
        chips.push_back({fckBuilder, {}, {}, FilterSummary(FList.Fields(), FSet.Builder)});
    return chips;
}

} // namespace Kestrune
