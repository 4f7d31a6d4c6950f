// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dmMain.h"
#include "uViewFilters.h"
#include "uViewLayout.h"

#include <QObject>

#include <optional>
#include <vector>

namespace Kestrune {

class TShell;
class TTHCustomSettings;

/// One list of the window with all that belongs to its use: the cursor, its filters, order and groups, the layout of
/// its table, what is selected and what has the focus. It knows of its rows only what the cursor's description tells,
/// so that any cursor can be shown by it. Main thread.
class TListSession : public QObject {
    Q_OBJECT

public:
    /// `key` names it in the settings. Shell and list outlive it.
    TListSession(TShell& shell, TListDataset& list, QString key);

    TListDataset& List() { return FList; }
    const TListDataset& List() const { return FList; }

    const std::vector<qint64>& Selection() const { return FSelection; }
    void SetSelection(std::vector<qint64> keys);
    /// The record that has the focus; 0 for none.
    qint64 Focused() const { return FFocused; }
    void SetFocused(qint64 key);
    /// The release of the focused record; 0 for none.
    qint64 FocusedRelease() const;
    qint64 ReleaseOf(qint64 key) const;
    /// What is selected, else what has the focus.
    std::vector<qint64> Keys() const;
    /// Nothing is selected, and the current record of the cursor has the focus.
    void Reset();

    const TViewFilters& Filters() const { return FFilters; }
    /// Changes filters and lets them act. `change` gets them to be changed.
    template <typename TChange>
    void Filter(TChange change)
    {
        change(FFilters);
        ApplyFilters();
    }
    /// A text of the filter row; false when it is no condition for the column.
    bool SetColumnFilter(const QString& column, const QString& text);
    void SetBuilderFilter(const TFilterNode& node);
    /// Puts filters in place of the present ones; tells of those on columns that the list lacks.
    void RestoreFilters(const TFilterSet& set);
    /// One letter filters by it, any longer caption removes the letter.
    void LetterClick(const QString& caption);

    void SetSort(std::vector<TSortItem> sort);
    /// A click on a column heading: sorts by it, or turns its order; `add` keeps the columns sorted by before.
    void SortBy(const QString& column, bool add);
    void SetGrouping(const QStringList& columns);
    void RemoveGroup(const QString& column);

    /// Rows in which one of the columns holds the text.
    std::vector<int> FindRows(const QStringList& columns, const QString& text);
    /// Gives a field the value that the user chose. False when the file refused it, which is told.
    bool EditField(qint64 key, const QString& field, const TVariant& value);

    bool InPlaceEditing() const { return FInPlace; }
    void SetInPlaceEditing(bool on) { FInPlace = on; }
    /// The layout of the table that the settings kept; nothing before there was one. Its sort is in force already.
    const std::optional<TTableLayout>& Layout() const { return FLayout; }
    void SetColumns(std::vector<TColumnState> columns);
    void LoadSettings(const TTHCustomSettings& store);
    /// Sort and groups as they are now go with the columns.
    void SaveSettings(TTHCustomSettings& store);

Q_SIGNALS:
    void filtersChanged();
    void sortChanged();
    void selectionChanged();
    void focusChanged();

private:
    void ApplyFilters();
    void TellLacking(const QStringList& captions);

    TShell& FShell;
    TListDataset& FList;
    QString FKey;
    TViewFilters FFilters;
    std::vector<qint64> FSelection;
    qint64 FFocused = 0;
    bool FInPlace = false;
    std::optional<TTableLayout> FLayout;
};

/// False, and told, for a name that would be empty.
bool IsEmptyTitle(const TDataset& list, const QString& field, const TVariant& value);
/// Puts what the user gave into a field of a cursor; null empties it.
void AssignTyped(TDataset& dataSet, const QString& field, const TVariant& value);

} // namespace Kestrune
