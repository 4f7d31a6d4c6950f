// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uColumns.h"
#include "uTHTypes.h"

#include <QString>

#include <utility>
#include <vector>

namespace Kestrune {

class TKRNMainForm;

/// The multi-edit dialog without widgets: fields with the values that all selected rows shall get.
class TMultiEditForm {
public:
    /// The form outlives it. The rows are those selected now.
    explicit TMultiEditForm(TKRNMainForm& form);

    /// The fields that can be edited, those of the view's shown columns first.
    void LoadFromCustomGridTableView(const std::vector<QString>& shownColumns);
    const std::vector<TFieldDef>& Fields() const { return FFields; }
    bool OfTracks() const { return FOfTracks; }
    int RowCount() const { return static_cast<int>(FKeys.size()); }

    /// Appends a row for the first field that has none yet.
    void actAdd();
    void actRemove(int row);
    /// The rows as pairs of field name and value.
    const std::vector<std::pair<QString, TVariant>>& GetList() const { return FList; }
    void SetField(int row, const QString& field);
    void SetValue(int row, const TVariant& value);
    const TFieldDef* FieldOf(int row) const;

    /// Sets the values on all rows; the number that was changed.
    int ApplyChanges();

private:
    TKRNMainForm& FForm;
    bool FOfTracks;
    std::vector<qint64> FKeys;
    std::vector<TFieldDef> FFields;
    std::vector<std::pair<QString, TVariant>> FList;
};

} // namespace Kestrune
