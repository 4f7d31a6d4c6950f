// SPDX-License-Identifier: GPL-3.0-or-later
#include "uListSession.h"

#include "uColumnNames.h"
#include "uDebugLog.h"
#include "uFieldValues.h"
#include "uShell.h"
#include "uTHSettings.h"
#include "uTHStrings.h"
#include "uWaitCursor.h"

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

const QString LayoutKey = u".Layout"_s;
const QString InPlaceKey = u".InPlaceEditing"_s;

} // namespace

bool IsEmptyTitle(const TDataset& list, const QString& field, const TVariant& value)
{
    const int index = list.FieldIndex(field);
    return index >= 0 && list.Fields()[static_cast<size_t>(index)].Required && VarToStr(value).trimmed().isEmpty();
}

void AssignTyped(TDataset& dataSet, const QString& field, const TVariant& value)
{
    const int index = dataSet.FieldIndex(field);
    if (VarIsNull(value))
        dataSet.SetValue(index, {});
    else
        AssignFieldValue(dataSet, index, value);
}

TListSession::TListSession(TShell& shell, TListDataset& list, QString key)
    : FShell(shell), FList(list), FKey(std::move(key)), FFilters(shell.Data(), list)
{}

void TListSession::SetSelection(std::vector<qint64> keys)
{
    FSelection = std::move(keys);
    Q_EMIT selectionChanged();
    FShell.Actions().Update();
}

void TListSession::SetFocused(qint64 key)
{
    FFocused = key;
    Q_EMIT focusChanged();
    FShell.Actions().Update();
}

qint64 TListSession::ReleaseOf(qint64 key) const
{
    if (FList.Def().ReleaseKey == Col::ID) // the rows are releases themselves
        return FList.RowOfKey(key) < 0 ? 0 : key;
    const int row = FList.RowOfKey(key);
    return row < 0 ? 0 : FList.ValueAt(row, FList.FieldIndex(FList.Def().ReleaseKey)).toLongLong();
}

qint64 TListSession::FocusedRelease() const { return ReleaseOf(FFocused); }

std::vector<qint64> TListSession::Keys() const
{
    if (!FSelection.empty())
        return FSelection;
    return FFocused != 0 ? std::vector<qint64>{FFocused} : std::vector<qint64>{};
}

void TListSession::Reset()
{
    FSelection.clear();
    FFocused = FList.Active() ? FList.CurrentKey() : 0;
    FFilters.Clear();
}

void TListSession::ApplyFilters()
{
    FList.SetFilterActive(!FList.Filter().IsEmpty());
    FList.ApplyFilter();
    // What the filter hides can be neither selected nor focused, or it would be removed unseen.
    std::erase_if(FSelection, [&](qint64 key) { return FList.RowOfKey(key) < 0; });
    if (FList.RowOfKey(FFocused) < 0) {
        FFocused = FList.CurrentKey();
        Q_EMIT focusChanged();
    }
    Q_EMIT filtersChanged();
    Q_EMIT selectionChanged();
    FShell.Actions().Update();
}

bool TListSession::SetColumnFilter(const QString& column, const QString& text)
{
    const bool understood = FFilters.SetColumn(column, text);
    ApplyFilters();
    return understood;
}

void TListSession::SetBuilderFilter(const TFilterNode& node)
{
    const QStringList lacking = FFilters.SetBuilder(node);
    ApplyFilters();
    TellLacking(lacking);
}

void TListSession::RestoreFilters(const TFilterSet& set)
{
    const QStringList lacking = FFilters.Restore(set);
    ApplyFilters();
    TellLacking(lacking);
}

void TListSession::TellLacking(const QStringList& captions)
{
    if (!captions.isEmpty())
        FShell.Tell(bkWarning, GetLanguageString(u"cSFilterColumnMissing"_s), captions.join(u", "_s));
}

void TListSession::LetterClick(const QString& caption)
{
    FFilters.SetLetter(caption.size() < 2 ? caption : QString());
    ApplyFilters();
}

void TListSession::SetSort(std::vector<TSortItem> sort)
{
    const TWaitCursor waiting; // the first time over all tracks takes a second
    FList.SetSort(std::move(sort));
    Q_EMIT sortChanged();
    FShell.Actions().Update();
}

void TListSession::SortBy(const QString& column, bool add)
{
    std::vector<TSortItem> sort = FList.Sort();
    const auto found = std::ranges::find(sort, column, &TSortItem::Column);
    const bool known = found != sort.end();
    const bool descending = known && !found->Descending;
    if (!add)
        sort = {{column, descending}};
    else if (known)
        found->Descending = descending;
    else
        sort.push_back({column, false});
    SetSort(std::move(sort));
}

void TListSession::SetGrouping(const QStringList& columns)
{
    const TWaitCursor waiting;
    FList.SetGrouping(columns);
    Q_EMIT sortChanged();
    Q_EMIT selectionChanged(); // the figures count groups too
    FShell.Actions().Update();
}

void TListSession::RemoveGroup(const QString& column)
{
    QStringList groups = FList.Grouping();
    groups.removeAll(column);
    SetGrouping(groups);
}

std::vector<int> TListSession::FindRows(const QStringList& columns, const QString& text)
{
    std::vector<int> rows;
    FShell.Attempt([&] { rows = FList.RowsWithText(columns, text); });
    return rows;
}

bool TListSession::EditField(qint64 key, const QString& field, const TVariant& value)
{
    if (IsEmptyTitle(FList, field, value)) {
        FShell.Tell(bkError, GetLanguageString(u"cSNotSaved"_s), GetLanguageString(u"cSTitleNeeded"_s));
        return false;
    }
    try {
        if (!FList.Locate(key))
            return false;
        FList.Edit();
        AssignTyped(FList, field, value);
        FList.Post();
    } catch (const EDatabaseError& failure) {
        TDataModuleMain::CancelIfApplicable(FList);
        FShell.Tell(bkError, GetLanguageString(u"cSNotSaved"_s), failure.Text());
        return false;
    }
    return true;
}

void TListSession::SetColumns(std::vector<TColumnState> columns)
{
    if (!FLayout)
        FLayout.emplace();
    FLayout->Columns = std::move(columns);
}

void TListSession::LoadSettings(const TTHCustomSettings& store)
{
    FInPlace = store.ReadBoolean(FKey + InPlaceKey, false);
    const QString text = store.ReadString(FKey + LayoutKey, {});
    FLayout = LayoutFromText(text);
    if (!FLayout) {
        if (!text.isEmpty())
            DebugLog(u"[Views] the layout of %1 is of another version"_s.arg(FKey));
        return;
    }
    std::erase_if(FLayout->Sort, [&](const TSortItem& item) { return FList.FieldIndex(item.Column) < 0; });
    // The collection that is opened next is read in this order.
    FList.SetSort(FLayout->Sort);
    FList.SetGrouping(FLayout->Groups);
}

void TListSession::SaveSettings(TTHCustomSettings& store)
{
    store.WriteBoolean(FKey + InPlaceKey, false, FInPlace);
    if (!FLayout)
        return;
    FLayout->Sort = FList.Sort();
    FLayout->Groups = FList.Grouping();
    store.WriteString(FKey + LayoutKey, {}, LayoutToText(*FLayout));
}

} // namespace Kestrune
