// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uColumns.h"
#include "uTHTypes.h"

#include <QString>

#include <utility>
#include <vector>

namespace Kestrune {

class TListEdits;
class TListSession;

/// The multi-edit dialog without widgets: fields with the values that all selected rows shall get.
class TMultiEditForm {
public:
    /// Both outlive it. The rows are those of the list that are selected now.
    TMultiEditForm(TListSession& list, TListEdits& edits);

    /// The fields that can be edited, those of the view's shown columns first.
    void LoadFromCustomGridTableView(const std::vector<QString>& shownColumns);
    const std::vector<TFieldDef>& Fields() const { return FFields; }
    int RowCount() const { return static_cast<int>(FKeys.size()); }

    /// What one field shall become.
    struct TRow {
        QString Field;
        TVariant Value;
        bool Clear = false; ///< the field is emptied; without it an empty value changes nothing
    };

    /// Appends a row for the first field that has none yet; there is none at first.
    void actAdd();
    void actRemove(int row);
    const std::vector<TRow>& Rows() const { return FRows; }
    void SetField(int row, const QString& field);
    void SetValue(int row, const TVariant& value);
    void SetClear(int row, bool clear);
    const TFieldDef* FieldOf(int row) const;
    /// False for fields that must have a value.
    bool CanClear(int row) const;
    /// What is written: pairs of field name and value.
    std::vector<std::pair<QString, TVariant>> GetList() const;
    /// The question before it is done, with the names of the fields and the number of rows; empty when there is nothing
    /// to do.
    QString Question() const;

    /// Sets the values on all rows, in one piece and with progress; the number that was changed.
    int ApplyChanges();

private:
    TListSession& FList;
    TListEdits& FEdits;
    std::vector<qint64> FKeys;
    std::vector<TFieldDef> FFields;
    std::vector<TRow> FRows;
};

} // namespace Kestrune
