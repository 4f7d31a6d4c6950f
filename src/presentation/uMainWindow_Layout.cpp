// SPDX-License-Identifier: GPL-3.0-or-later
#include "uAlbumTable.h"
#include "uMainWindow.h"
#include "uReleasesModel.h"

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

struct TFirstColumn {
    const char16_t* Field;
    int Width;
    bool Shared = false; // takes its part of the spare room
};

// The columns of the table before the user chooses, in their order.
constexpr TFirstColumn FirstColumns[] = {
    {u"No", 52},          {u"ThumbPicture", 36}, {u"Artist", 130, true}, {u"ReleaseName", 170, true},
    {u"ReleaseYear", 54}, {u"MediaType", 92},    {u"Label", 104},        {u"CatalogNO", 104},
    {u"CountryCode", 76}, {u"DiscCount", 56},    {u"Rating_Calc", 88},   {u"Status", 110},
    {u"Genre", 104},      {u"Location", 104}};

} // namespace

void TMainWindow::SetUpColumns()
{
    TTableHeader* header = FTable->Header();
    for (int column = 0; column < FModel->columnCount(); ++column)
        header->setSectionHidden(column, true);
    int visual = 0;
    std::vector<int> shared;
    for (const TFirstColumn& first : FirstColumns) {
        const int column = FModel->ColumnOf(QString::fromUtf16(first.Field));
        if (column < 0)
            continue;
        header->setSectionHidden(column, false);
        header->moveSection(header->visualIndex(column), visual++);
        header->resizeSection(column, std::max(first.Width, header->CaptionWidth(column)));
        if (first.Shared)
            shared.push_back(column);
    }
    FTable->ShareWidth(shared);
    if (FForm.AlbumLayout())
        RestoreColumns(FForm.AlbumLayout()->Columns);
}

// Columns that the layout does not know stay as they are, behind the others.
void TMainWindow::RestoreColumns(const std::vector<TColumnState>& columns)
{
    TTableHeader* header = FTable->Header();
    int visual = 0;
    for (const TColumnState& kept : columns) {
        const int column = FModel->ColumnOf(kept.Field);
        if (column < 0)
            continue;
        header->moveSection(header->visualIndex(column), visual++);
        header->setSectionHidden(column, kept.Hidden);
        if (kept.Width == 0)
            continue;
        if (FTable->SharesWidth(column))
            FTable->StopSharing();
        header->resizeSection(column, kept.Width);
    }
    // A table without any heading could not be mended by the user.
    if (header->hiddenSectionCount() == header->count())
        header->setSectionHidden(FModel->ColumnOf(u"ReleaseName"_s), false);
}

void TMainWindow::KeepColumns()
{
    const TTableHeader* header = FTable->Header();
    std::vector<TColumnState> columns;
    for (int visual = 0; visual < header->count(); ++visual) {
        const int column = header->logicalIndex(visual);
        const QString field = column == 0 ? u"ThumbPicture"_s : FModel->FieldOf(column);
        const bool hidden = header->isSectionHidden(column);
        const int width = hidden || FTable->SharesWidth(column) ? 0 : header->sectionSize(column);
        columns.push_back({field, width, hidden});
    }
    FForm.SetAlbumColumns(std::move(columns));
}

} // namespace Kestrune
