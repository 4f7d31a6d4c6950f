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
}

} // namespace Kestrune
