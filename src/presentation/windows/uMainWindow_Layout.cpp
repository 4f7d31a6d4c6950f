// SPDX-License-Identifier: GPL-3.0-or-later
#include "uActionSet.h"
#include "uAlbumTable.h"
#include "uColumnNames.h"
#include "uDefaults.h"
#include "uDetailPane.h"
#include "uFieldEditors.h"
#include "uFilterCell.h"
#include "uFindBar.h"
#include "uGroupPanel.h"
#include "uMainWindow.h"
#include "uReleasesModel.h"
#include "uTHStrings.h"
#include "uTablePresets.h"
#include "uTileView.h"

#include <QApplication>
#include <QClipboard>
#include <QMenu>
#include <QMimeData>
#include <QStackedWidget>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

QStringList ShownColumns(const TAlbumTable& table, const TListModel& list, TTableHeader& header)
{
    QStringList columns;
    for (int visual = 0; visual < header.count(); ++visual) {
        const int column = header.logicalIndex(visual);
        if (!table.isColumnHidden(column) && !list.FieldOf(column).isEmpty())
            columns << list.FieldOf(column);
    }
    return columns;
}

} // namespace

TAlbumTable* TMainWindow::CurrentTable() const
{
    switch (FForm.CurrentView()) {
    case mvAlbums: return FTable;
    case mvTracks: return FTracks;
    default: return nullptr;
    }
}

TListSession& TMainWindow::SessionOf(const TAlbumTable& table) const
{
    return &table == FTracks ? FForm.Lists().Tracks() : FForm.Lists().Releases();
}

TListModel* TMainWindow::CurrentModel() const
{
    return FForm.TracksShown() ? static_cast<TListModel*>(FTracksModel) : FModel;
}

void TMainWindow::SetUpColumns()
{
    for (const TTableViewCustomizationConf& preset : TablePresets())
        if (const QLatin1StringView name(preset.Name);
            name == "btnTableViewPresetReleaseInfo"_L1 || name == "btnTableViewPresetTracksGeneral"_L1)
            ShowColumns(preset.OfTracks ? *FTracks : *FTable, preset.VisibleColumns);
    FTable->ShareWidth({FModel->ColumnOf(Col::Artist), FModel->ColumnOf(Col::ReleaseName)});
    FTracks->ShareWidth({FTracksModel->ColumnOf(Col::ReleaseName), FTracksModel->ColumnOf(Col::TrackTitle)});
    for (TAlbumTable* table : {FTable, FTracks})
        if (const auto& layout = SessionOf(*table).Layout(); layout && !layout->Columns.empty())
            RestoreColumns(*table, layout->Columns);
}

// Columns that the layout does not know stay as they are, behind the others.
void TMainWindow::RestoreColumns(TAlbumTable& table, const std::vector<TColumnState>& columns)
{
    TTableHeader* header = table.Header();
    const TListModel& list = table.Groups().Source();
    int visual = 0;
    for (const TColumnState& kept : columns) {
        const int column = list.ColumnOf(kept.Field);
        if (column < 0)
            continue;
        header->moveSection(header->visualIndex(column), visual++);
        header->setSectionHidden(column, kept.Hidden);
        if (kept.Width == 0)
            continue;
        if (table.SharesWidth(column))
            table.StopSharing();
        header->resizeSection(column, kept.Width);
    }
    // A table without any heading could not be mended by the user.
    if (header->hiddenSectionCount() == header->count())
        header->setSectionHidden(list.ColumnOf(list.List().Def().TitleField), false);
}

void TMainWindow::KeepColumns()
{
    for (TAlbumTable* table : {FTable, FTracks}) {
        const TTableHeader* header = table->Header();
        const TListModel& list = table->Groups().Source();
        std::vector<TColumnState> columns;
        for (int visual = 0; visual < header->count(); ++visual) {
            const int column = header->logicalIndex(visual);
            const QString field = list.FieldDefOf(column) ? list.FieldOf(column) : Col::ThumbPicture;
            const bool hidden = header->isSectionHidden(column);
            const int width = hidden || table->SharesWidth(column) ? 0 : header->sectionSize(column);
            columns.push_back({field, width, hidden});
        }
        SessionOf(*table).SetColumns(std::move(columns));
    }
}

void TMainWindow::SetUpTable(TAlbumTable& table)
{
    TListModel& list = table.Groups().Source();
    TTableHeader* header = table.Header();
    list.SetEdit([&session = SessionOf(table)](qint64 id, const QString& field, const TVariant& value) {
        return session.EditField(id, field, value);
    });
    table.SetOnRefusal([this](const QString& sentence) {
        FForm.Shell().Tell(bkWarning, GetLanguageString(u"cSNotSaved"_s), sentence);
    });
    header->FilterTextOf = [this, &list](int column) {
        const auto& texts = FForm.Lists().Active().Filters().Set().Columns;
        const auto text = texts.find(list.FieldOf(column));
        return text == texts.end() ? QString() : text->second;
    };
    header->FilterChoicesOf = [&list](int column) {
        const TFieldDef* field = list.FieldDefOf(column);
        const TEditorKind kind = field ? EditorKindOf(*field) : ekText;
        QStringList choices;
        if (kind == ekList || kind == ekChoice)
            for (const TValueAndText& item : EditorItems(list.Data(), *field))
                choices << item.Text;
        return choices;
    };
    connect(header, &TTableHeader::filterChanged, this, [this, &list, header](int column, const QString& text) {
        header->MarkFilter(column, !FForm.Lists().Active().SetColumnFilter(list.FieldOf(column), text));
    });
    connect(header, &TTableHeader::groupRequested, this, [this, &list](int column) { GroupBy(list.FieldOf(column)); });
    connect(&table, &TAlbumTable::sortRequested, this, [this, &list](int column, bool add) {
        if (const QString field = list.FieldOf(column); !field.isEmpty())
            FForm.Lists().Active().SortBy(field, add);
    });
    header->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(header, &QWidget::customContextMenuRequested, this, [this, &table](const QPoint& at) {
        OpenHeaderMenu(table, table.Header()->logicalIndexAt(at), table.Header()->mapToGlobal(at));
    });
}

void TMainWindow::GroupBy(const QString& field)
{
    QStringList groups = FForm.Lists().Active().List().Grouping();
    if (field.isEmpty() || groups.contains(field))
        return;
    groups << field;
    FForm.Lists().Active().SetGrouping(groups);
}

void TMainWindow::OpenHeaderMenu(TAlbumTable& table, int column, const QPoint& globalPosition)
{
    const QString field = table.Groups().Source().FieldOf(column);
    QMenu menu(this);
    if (!field.isEmpty()) {
        const auto sort = [&](const QString& key, bool descending) {
            connect(menu.addAction(GetLanguageString(key)), &QAction::triggered, this, [this, field, descending] {
                FForm.Lists().Active().SetSort({{field, descending}});
            });
        };
        sort(u"cSactSortAsc"_s, false);
        sort(u"cSactSortDesc"_s, true);
        menu.addSeparator();
        const bool grouped = FForm.Lists().Active().List().Grouping().contains(field);
        QAction* group = menu.addAction(GetLanguageString(grouped ? u"cSGuiUngroup"_s : u"cSGuiGroupByThis"_s));
        connect(group, &QAction::triggered, this, [this, field, grouped] {
            if (!grouped)
                return GroupBy(field);
            QStringList groups = FForm.Lists().Active().List().Grouping();
            groups.removeAll(field);
            FForm.Lists().Active().SetGrouping(groups);
        });
        menu.addSeparator();
    }
    QAction* hide = menu.addAction(GetLanguageString(u"cSGuiHideColumn"_s));
    hide->setEnabled(table.Header()->count() - table.Header()->hiddenSectionCount() > 1);
    connect(hide, &QAction::triggered, this, [&table, column] { table.setColumnHidden(column, true); });
    connect(menu.addAction(GetLanguageString(u"cSGuiFitColumn"_s)), &QAction::triggered, this,
            [&table, column] { table.resizeColumnToContents(column); });
    FActions->Fill(menu, {u"actApplyBestFit"_s, u"actCustomizeColumns"_s, u"actQuickFilter"_s});
    menu.exec(globalPosition);
}

void TMainWindow::FillGroupMenu()
{
    FGroupMenu->clear();
    const TListModel& list = *CurrentModel();
    for (int column = 0; column < list.columnCount(); ++column) {
        const QString field = list.FieldOf(column);
        if (field.isEmpty() || FForm.Lists().Active().List().Grouping().contains(field))
            continue;
        QAction* item = FGroupMenu->addAction(list.headerData(column, Qt::Horizontal, FullCaptionRole).toString());
        connect(item, &QAction::triggered, this, [this, field] { GroupBy(field); });
    }
}

void TMainWindow::FillPresetMenu()
{
    FPresetMenu->clear();
    for (const TTableViewCustomizationConf& preset : TablePresets()) {
        if (preset.OfTracks != FForm.TracksShown())
            continue;
        QAction* item = FPresetMenu->addAction(GetLanguageString(QString::fromLatin1(preset.CaptionKey)));
        item->setObjectName(QString::fromLatin1(preset.Name));
        connect(item, &QAction::triggered, this, [this, &preset] {
            if (TAlbumTable* table = CurrentTable())
                preset.Apply(*table, FForm);
        });
    }
}

void TMainWindow::ToggleFilterRow()
{
    TAlbumTable* table = CurrentTable();
    if (!table)
        return;
    TTableHeader* header = table->Header();
    header->ShowFilterRow(!header->FilterRowShown());
    if (header->FilterRowShown())
        header->FocusFilter(table->currentIndex().column());
    else
        table->setFocus();
}

void TMainWindow::ToggleFindPanel()
{
    const bool show = FFind->isHidden();
    if (!show && !FFind->isAncestorOf(QApplication::focusWidget()))
        return FFind->Begin(); // a second press brings the keyboard back before it closes
    FFind->setVisible(show);
    if (show) {
        FFind->Begin();
        Find(FFind->Text());
    } else {
        Find({});
        CurrentViewWidget()->setFocus();
    }
}

QStringList TMainWindow::FindColumns() const
{
    if (const TAlbumTable* table = CurrentTable())
        return ShownColumns(*table, *CurrentModel(), *const_cast<TAlbumTable*>(table)->Header());
    return {Col::ReleaseName, Col::Artist, Col::ReleaseYear, Col::MediaType};
}

void TMainWindow::Find(const QString& text)
{
    FHits = text.isEmpty() ? std::vector<int>() : FForm.Lists().Active().FindRows(FindColumns(), text);
    FTable->SetFindText(FFind->isHidden() ? QString() : text);
    FTracks->SetFindText(FFind->isHidden() ? QString() : text);
    FFind->SetHits(-1, 0);
    if (!FHits.empty())
        StepFind(0);
}

// 0: the hit at or behind the current row; 1 the next, -1 the former one, round and round.
void TMainWindow::StepFind(int direction)
{
    if (FHits.empty())
        return;
    const int row = CurrentRow();
    auto at = std::ranges::lower_bound(FHits, row);
    if (direction > 0 && at != FHits.end() && *at == row)
        ++at;
    if (direction < 0)
        at = at == FHits.begin() ? FHits.end() - 1 : at - 1;
    if (at == FHits.end())
        at = FHits.begin();
    FFind->SetHits(static_cast<int>(at - FHits.begin()), static_cast<int>(FHits.size()));
    FocusRow(*at);
}

int TMainWindow::CurrentRow() const
{
    const TAlbumTable* table = CurrentTable();
    return table ? const_cast<TAlbumTable*>(table)->Groups().SourceRow(table->currentIndex())
                 : FTiles->currentIndex().row();
}

void TMainWindow::FocusRow(int row)
{
    constexpr auto select = QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows;
    if (TAlbumTable* table = CurrentTable()) {
        const QModelIndex index = table->Groups().IndexOfRow(row, std::max(0, table->currentIndex().column()));
        for (QModelIndex group = index.parent(); group.isValid(); group = group.parent())
            table->expand(group);
        table->selectionModel()->setCurrentIndex(index, select);
        table->scrollTo(index);
        return;
    }
    const QModelIndex index = FModel->index(row, 0);
    FTiles->selectionModel()->setCurrentIndex(index, select);
    FTiles->scrollTo(index);
}

void TMainWindow::Copy(bool rows)
{
    TListModel* list = CurrentModel();
    const TAlbumTable* table = CurrentTable();
    const QModelIndex current = table ? table->currentIndex() : FTiles->currentIndex();
    if (!rows) {
        const bool cover = !table || CellKindOf(*list, current.column()) == ckCover;
        QApplication::clipboard()->setText(cover ? current.data(rrTitle).toString()
                                                 : current.data(Qt::DisplayRole).toString());
        return;
    }
    QStringList columns = FindColumns();
    QStringList lines;
    QString html = u"<table>"_s;
    const auto addLine = [&](const QStringList& cells, const QString& tag) {
        QStringList flat;
        html += u"<tr>"_s;
        for (const QString& cell : cells) {
            flat << QString(cell).replace(u'\t', u' ').replace(u'\n', u' ');
            html += u"<%1>%2</%1>"_s.arg(tag, cell.toHtmlEscaped());
        }
        html += u"</tr>"_s;
        lines << flat.join(u'\t');
    };
    QStringList captions;
    for (const QString& column : columns)
        captions << list->headerData(list->ColumnOf(column), Qt::Horizontal, FullCaptionRole).toString();
    addLine(captions, u"th"_s);
    std::vector<int> selected;
    for (const qint64 key : FForm.Lists().Active().Keys())
        if (const int row = list->List().RowOfKey(key); row >= 0)
            selected.push_back(row);
    std::ranges::sort(selected); // in the order in which they are shown
    for (const int row : selected) {
        QStringList cells;
        for (const QString& column : columns)
            cells << list->index(row, list->ColumnOf(column)).data().toString();
        addLine(cells, u"td"_s);
    }
    auto* mime = new QMimeData;
    mime->setText(lines.join(u'\n') + u'\n');
    mime->setHtml(html + u"</table>"_s);
    QApplication::clipboard()->setMimeData(mime);
}

} // namespace Kestrune
