// SPDX-License-Identifier: GPL-3.0-or-later
#include "uExportSource.h"

#include "dmMain.h"
#include "uColumnNames.h"
#include "uDefaults.h"
#include "uFieldText.h"
#include "uFieldValues.h"
#include "uTHStrings.h"

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

TExportSource::TExportSource(TDataModuleMain& data, TListDataset& list, std::vector<TExportColumn> columns,
                             bool thumbnails)
    : FData(data), FList(list)
{
    for (TExportColumn& column : columns) {
        const bool cover = column.Field == Col::ThumbPicture;
        const int field = cover ? -1 : list.FieldIndex(column.Field);
        if (cover ? (!thumbnails || list.FieldIndex(Col::ThumbPicture) < 0)
                  : (field < 0 || list.Fields()[static_cast<size_t>(field)].Kind == fkBlob))
            continue;
        if (field >= 0)
            FWalked.push_back(field);
        FFields.push_back(field);
        FColumns.push_back(std::move(column));
    }
    if (const int currency = list.FieldIndex(Col::Currency); currency >= 0)
        FWalked.push_back(currency);
}

const QString& TExportSource::RowName() const { return FList.Def().RowName; }

int TExportSource::RowCount() const { return FList.RecordCount(); }

bool TExportSource::HasThumbnails() const { return std::ranges::count(FFields, -1) > 0; }

const TFieldDef& TExportSource::FieldOf(int column) const
{
    return FList.Fields()[static_cast<size_t>(FFields[static_cast<size_t>(column)])];
}

bool TExportSource::IsRightAligned(int column) const
{
    if (IsThumbnail(column))
        return false;
    const TFieldDef& field = FieldOf(column);
    const bool number = field.Kind == fkInteger || field.Kind == fkFloat || field.Kind == fkDate;
    return number && !IsFriendField(field.Name);
}

std::vector<TExportColumn> TExportSource::GroupColumns() const
{
    std::vector<TExportColumn> columns;
    for (const QString& name : FList.Grouping())
        columns.push_back({name, ColumnLabel(FList.Fields()[static_cast<size_t>(FList.FieldIndex(name))], Defaults())});
    return columns;
}

bool TExportSource::IsGrouped() const { return !FList.Groups().empty(); }

std::vector<TExportGroup> TExportSource::GroupsAt(int row)
{
    const std::vector<TListGroup>& groups = FList.Groups();
    std::vector<TExportGroup> found;
    for (; FNextGroup < groups.size() && groups[FNextGroup].First <= row; ++FNextGroup) {
        const TListGroup& group = groups[FNextGroup];
        if (group.First < row)
            continue;
        const QString name = FList.Grouping().value(group.Level);
        const TFieldDef& field = FList.Fields()[static_cast<size_t>(FList.FieldIndex(name))];
        const QString value = FieldText(FData, field, group.Value);
        found.push_back({group.Level, name, ColumnLabel(field, Defaults()),
                         value.isEmpty() ? GetLanguageString(u"cSEmpty"_s) : value, group.Count});
    }
    return found;
}

void TExportSource::Walk(const TReceive& receive)
{
    std::vector<TVariant> values(FColumns.size() + 1);
    FList.WalkRows(FWalked, [&](int row, const std::vector<TVariant>& read) {
        size_t next = 0;
        for (size_t column = 0; column < FColumns.size(); ++column)
            values[column] = FFields[column] < 0 ? TVariant() : read[next++];
        values.back() = next < read.size() ? read[next] : TVariant();
        return receive(row, values);
    });
}

std::vector<TVariant> TExportSource::RowValues(int row) const
{
    std::vector<TVariant> values;
    for (const int field : FFields)
        values.push_back(field < 0 ? TVariant() : FList.ValueAt(row, field));
    values.push_back(FList.ValueAt(row, FList.FieldIndex(Col::Currency)));
    return values;
}

QString TExportSource::Text(const std::vector<TVariant>& values, int column) const
{
    const TVariant& value = values[static_cast<size_t>(column)];
    if (IsThumbnail(column) || VarIsNull(value))
        return {};
    const TFieldDef& field = FieldOf(column);
    // The view leaves a No empty, and has room for the code of a country only.
    if (field.Kind == fkBoolean && !VarToBool(value))
        return {};
    return field.Name == Col::CountryCode ? VarToStr(value) : FieldText(FData, field, value, VarToStr(values.back()));
}

QByteArray TExportSource::Thumbnail(int row) const
{
    const int field = FList.FieldIndex(Col::ThumbPicture);
    return field < 0 ? QByteArray() : FList.ReadBlob(row, field);
}

std::pair<QString, QString> TExportSource::Names(int row) const
{
    const auto text = [&](const QString& name) {
        return DisplayText(name, VarToStr(FList.ValueAt(row, FList.FieldIndex(name))));
    };
    return {text(FList.Def().TitleField), text(Col::Artist)};
}

} // namespace Kestrune
