// SPDX-License-Identifier: GPL-3.0-or-later
#include "uImportPages.h"
#include "uLogView.h"
#include "uTHStrings.h"
#include "uThemeStyle.h"

#include <QAbstractTableModel>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSortFilterProxyModel>
#include <QTreeView>
#include <QVBoxLayout>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int NotesHeight = 96; // some lines; the rows are what the page is for

} // namespace

/// The rows of the selection page; the first column carries the tick.
class TImportRowsModel final : public QAbstractTableModel {
public:
    explicit TImportRowsModel(TKRNImportForm& form, QObject* parent) : QAbstractTableModel(parent), FForm(form)
    {
        connect(&form, &TKRNImportForm::rowsReset, this, [this] {
            beginResetModel();
            FShown = 0;
            endResetModel();
        });
        connect(&form, &TKRNImportForm::rowsAppended, this, [this](int first, int last) {
            beginInsertRows({}, first, last);
            FShown = last + 1;
            endInsertRows();
        });
        connect(&form, &TKRNImportForm::ticksChanged, this, [this] {
            if (FShown > 0)
                Q_EMIT dataChanged(index(0, 0), index(FShown - 1, 0), {Qt::CheckStateRole});
        });
    }

    int rowCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : FShown; }
    int columnCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : 4; }

    QVariant data(const QModelIndex& index, int role) const override
    {
        const TImportRow& row = FForm.Rows()[static_cast<size_t>(index.row())];
        if (role == Qt::CheckStateRole && index.column() == 0)
            return row.Ticked ? Qt::Checked : Qt::Unchecked;
        if (role == Qt::TextAlignmentRole && index.column() >= 2)
            return QVariant::fromValue(Qt::AlignTrailing | Qt::AlignVCenter);
        if (role != Qt::DisplayRole)
            return {};
        switch (index.column()) {
        case 0: return row.Item.Artist;
        case 1: return row.Item.ReleaseName;
        case 2: return row.Item.ReleaseYear;
        default: return row.Item.TracksCount;
        }
    }

    bool setData(const QModelIndex& index, const QVariant& value, int role) override
    {
        if (role != Qt::CheckStateRole)
            return false;
        FForm.SetTicked(index.row(), value.toInt() == Qt::Checked);
        return true;
    }

    Qt::ItemFlags flags(const QModelIndex& index) const override
    {
        const Qt::ItemFlags plain = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
        return index.column() == 0 ? plain | Qt::ItemIsUserCheckable : plain;
    }

    QVariant headerData(int section, Qt::Orientation orientation, int role) const override
    {
        static const QString keys[] = {u"cSReleasesFieldArtist"_s, u"cSReleasesFieldReleaseName"_s,
                                       u"cSGuiHeadingYear"_s, u"cSGuiTracks"_s};
        if (orientation == Qt::Horizontal && role == Qt::DisplayRole)
            return GetLanguageString(keys[section]);
        if (role == Qt::TextAlignmentRole && section >= 2)
            return QVariant::fromValue(Qt::AlignTrailing | Qt::AlignVCenter);
        return {};
    }

private:
    TKRNImportForm& FForm;
    int FShown = 0;
};

TSelectPage::TSelectPage(TKRNImportForm& form, QWidget* parent)
    : TImportPageWidget(form, parent),
      FModel(new TImportRowsModel(form, this)),
      FFiltered(new QSortFilterProxyModel(this)),
      FList(new QTreeView(this)),
      FBar(new QProgressBar(this)),
      FError(new QLabel(this)),
      FNotes(new TLogView(this)),
      FTicked(new QLabel(this))
{
    FFiltered->setSourceModel(FModel);
    FFiltered->setFilterKeyColumn(-1);
    FFiltered->setFilterCaseSensitivity(Qt::CaseInsensitive);
    FFiltered->setSortCaseSensitivity(Qt::CaseInsensitive);
    FList->setModel(FFiltered);
    FList->setRootIsDecorated(false);
    FList->setUniformRowHeights(true);
    FList->setSelectionMode(QAbstractItemView::ExtendedSelection);
    FList->setAccessibleName(GetLanguageString(u"cSImportSelectAlbumsTabTitle"_s));
    FList->header()->setStretchLastSection(false);
    FList->header()->setSectionResizeMode(QHeaderView::Interactive);
    FList->header()->setSectionResizeMode(1, QHeaderView::Stretch);
    FList->header()->resizeSection(0, 260);
    FList->header()->resizeSection(2, 80);
    FList->header()->resizeSection(3, 80);
    FList->header()->setSortIndicatorShown(true);
    FList->header()->setSortIndicator(-1, Qt::AscendingOrder); // the order of the source until the user sorts
    FList->setSortingEnabled(true);
    FList->installEventFilter(this);
    FBar->setTextVisible(false);
    FBar->setFixedHeight(4);
    FBar->setRange(0, 100);
    FBar->setAccessibleName(GetLanguageString(u"cSGuiProgress"_s));
    FError->setWordWrap(true);
    FError->setTextFormat(Qt::PlainText);
    FNotes->setFixedHeight(NotesHeight);
    FNotes->setAccessibleName(GetLanguageString(u"cSGuiLog"_s));
    connect(&form, &TKRNImportForm::logCleared, FNotes, &TLogView::Reset);
    connect(&form, &TKRNImportForm::logWarning, FNotes, &TLogView::AddWarning);
    auto* filter = new QLineEdit(this);
    filter->setPlaceholderText(GetLanguageString(u"cSGuiFilterList"_s));
    filter->setAccessibleName(filter->placeholderText());
    filter->setClearButtonEnabled(true);
    filter->setMaximumWidth(220);
    auto* tools = new QHBoxLayout;
    const auto addButton = [&](const QString& caption, const std::function<void()>& act) {
        auto* button = new QPushButton(caption, this);
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, act);
        tools->addWidget(button);
        FTickButtons << button;
    };
    addButton(GetLanguageString(u"cSGuiCheckAll"_s), [this] { TickShown(true); });
    addButton(GetLanguageString(u"cSGuiUncheckAll"_s), [this] { TickShown(false); });
    addButton(GetLanguageString(u"cSGuiCheckSelected"_s), [this] { TickSelected(true); });
    addButton(GetLanguageString(u"cSGuiUncheckSelected"_s), [this] { TickSelected(false); });
    tools->addStretch(1);
    tools->addWidget(filter);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(8);
    column->addLayout(tools);
    column->addWidget(FBar);
    column->addWidget(FError);
    column->addWidget(FList, 1);
    column->addWidget(FNotes);
    column->addWidget(FTicked);
    connect(filter, &QLineEdit::textChanged, FFiltered, &QSortFilterProxyModel::setFilterFixedString);
}

void TSelectPage::Refresh()
{
    const bool listing = FForm.Importer() != nullptr;
    FBar->setVisible(listing);
    FBar->setValue(FForm.ListingPercent());
    FError->setText(FForm.ListingError());
    FError->setVisible(!FError->text().isEmpty());
    QPalette palette = FError->palette();
    palette.setColor(QPalette::WindowText, CurrentTheme().Error);
    FError->setPalette(palette);
    for (QPushButton* button : FTickButtons)
        button->setEnabled(!FForm.Rows().empty());
    FNotes->setVisible(FNotes->WarningCount() > 0);
    FTicked->setText(GetLanguageString(u"cSGuiTicked"_s).arg(FForm.TickedCount()).arg(FForm.Rows().size()));
}

QString TSelectPage::Hint(const QString& text) const { return text.arg(FForm.Rows().size()); }

QWidget* TSelectPage::FirstWidget() { return FList; }

// "All" are those that the filter leaves.
void TSelectPage::TickShown(bool ticked)
{
    std::vector<int> rows;
    for (int row = 0; row < FFiltered->rowCount(); ++row)
        rows.push_back(FFiltered->mapToSource(FFiltered->index(row, 0)).row());
    FForm.TickRows(rows, ticked);
}

void TSelectPage::TickSelected(bool ticked)
{
    std::vector<int> rows;
    for (const QModelIndex& index : FList->selectionModel()->selectedRows())
        rows.push_back(FFiltered->mapToSource(index).row());
    FForm.TickRows(rows, ticked);
}

// The blank turns the ticks of all selected rows, as that of the focused one would be turned.
bool TSelectPage::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == FList && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Space && FList->currentIndex().isValid()) {
        const int row = FFiltered->mapToSource(FList->currentIndex()).row();
        TickSelected(!FForm.Rows()[static_cast<size_t>(row)].Ticked);
        return true;
    }
    return TImportPageWidget::eventFilter(watched, event);
}

} // namespace Kestrune
