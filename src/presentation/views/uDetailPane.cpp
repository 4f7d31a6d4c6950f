// SPDX-License-Identifier: GPL-3.0-or-later
#include "uDetailPane.h"

#include "uDetailParts.h"
#include "uFieldEditor.h"
#include "uFieldText.h"
#include "uStarsEdit.h"
#include "uTHStrings.h"
#include "uTheme.h"
#include "uThemePaint.h"

#include <QLineEdit>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>
#include <iterator>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int ColumnWidth = 300;

} // namespace

TDetailPane::TDetailPane(QWidget* parent) : QScrollArea(parent), FContent(new QWidget), FHead(new TDetailHead(FContent))
{
    setFrameShape(NoFrame);
    setWidget(FContent);
    setMinimumWidth(160);
    setAccessibleName(GetLanguageString(u"cSGuiGroupPane"_s));
    FContent->setAutoFillBackground(false);
    viewport()->setAutoFillBackground(false);
    setFocusPolicy(Qt::NoFocus);
    connect(FHead->Stars(), &TStarsEdit::ratingChosen, this, &TDetailPane::ratingChosen);
    connect(FHead, &TDetailHead::coverActivated, this, &TDetailPane::coverActivated);
    FFilter = new QLineEdit(FContent);
    FFilter->setPlaceholderText(GetLanguageString(u"cSGuiPaneFilter"_s));
    FFilter->setAccessibleName(FFilter->placeholderText());
    FFilter->setClearButtonEnabled(true);
    FFilter->hide();
    connect(FFilter, &QLineEdit::textChanged, this, [this] { Rebuild(); });
    Rebuild();
}

TDetailPane::~TDetailPane() = default;

void TDetailPane::SetData(TDetailData detail)
{
    const bool other = detail.ID != FData.ID;
    FData = std::move(detail);
    FHead->SetData(FData);
    if (other) {
        EndEdit();
        FShowsDefaults = false;
    }
    Rebuild();
    if (other)
        verticalScrollBar()->setValue(0);
}

void TDetailPane::SetOrientation(Qt::Orientation orientation)
{
    FOrientation = orientation;
    Arrange();
}

void TDetailPane::SetActions(const QList<QAction*>& actions)
{
    FHead->SetActions(actions);
    Arrange();
}

void TDetailPane::SetNote(const QString& note) { FHead->SetNote(note); }

void TDetailPane::SetFolded(const QStringList& ids)
{
    FFolded = QSet<QString>(ids.begin(), ids.end());
    for (TDetailBlock* block : std::as_const(FBlocks))
        block->SetFolded(FFolded.contains(block->Id()));
    Arrange();
}

TDetailBlock* TDetailPane::AddBlock(const QString& id, const QString& caption, const QString& extra)
{
    auto* block = new TDetailBlock(id, caption, extra, FContent);
    block->SetFolded(FFolded.contains(id));
    connect(block, &TDetailBlock::foldToggled, this, [this, block] {
        if (block->IsFolded())
            FFolded.insert(block->Id());
        else
            FFolded.remove(block->Id());
        Arrange();
        Q_EMIT foldedChanged();
    });
    block->show();
    FBlocks << block;
    return block;
}

bool TDetailPane::IsShown(const TDetailField& field) const
{
    if (!FFilter->isHidden() && !FFilter->text().isEmpty() &&
        !field.Label.contains(FFilter->text(), Qt::CaseInsensitive) &&
        !field.Value.contains(FFilter->text(), Qt::CaseInsensitive))
        return false;
    return FCustomizing || (!field.Value.isEmpty() && !FHidden.contains(field.Column));
}

bool TDetailPane::FoldsDefaults() const { return !FShowsDefaults && !FCustomizing && FFilter->isHidden(); }

void TDetailPane::AddSection(const TDetailSection& section)
{
    std::vector<TDetailField> shown;
    std::ranges::copy_if(section.Fields, std::back_inserter(shown),
                         [this](const TDetailField& field) { return IsShown(field); });
    if (shown.empty())
        return;
    TDetailBlock* block = AddBlock(section.Id, section.Title, {});
    int folded = 0;
    for (const TDetailField& field : shown) {
        if (field.IsDefault && FoldsDefaults())
            ++folded;
        else
            AddRow(*block, field);
    }
    if (folded == 0)
        return;
    TDetailRow* more =
        TDetailRow::ForField({{}, {}, GetLanguageString(u"cSGuiMoreDefaults"_s).arg(folded), u"#"_s}, false, block);
    more->setToolTip({});
    connect(more, &TDetailRow::activated, this, [this] {
        FShowsDefaults = true;
        Rebuild();
    });
    block->Add(more);
}

void TDetailPane::AddRow(TDetailBlock& block, const TDetailField& field)
{
    TDetailRow* row = TDetailRow::ForField(field, static_cast<bool>(FMakeEditor), &block);
    connect(row, &TDetailRow::activated, this, [this, link = field.Link] { Q_EMIT linkActivated(link); });
    connect(row, &TDetailRow::editRequested, this, [this, row] { BeginEdit(row); });
    if (FCustomizing) {
        row->ShowBox(!FHidden.contains(field.Column));
        connect(row, &TDetailRow::boxToggled, this, [this, column = field.Column](bool on) {
            on ? void(FHidden.remove(column)) : void(FHidden.insert(column));
            Q_EMIT hiddenFieldsChanged();
        });
    }
    block.Add(row);
}

void TDetailPane::SetEditing(TMakeEditor make, TStoreValue store)
{
    FMakeEditor = std::move(make);
    FStoreValue = std::move(store);
    Rebuild();
}

void TDetailPane::SetHiddenFields(const QStringList& columns)
{
    FHidden = QSet<QString>(columns.begin(), columns.end());
    Rebuild();
}

void TDetailPane::SetCustomizing(bool on)
{
    EndEdit();
    FCustomizing = on;
    Rebuild();
}

void TDetailPane::ToggleFilter()
{
    FFilter->setVisible(FFilter->isHidden());
    Rebuild();
    if (!FFilter->isHidden())
        FFilter->setFocus(Qt::ShortcutFocusReason);
}

void TDetailPane::EditField(const QString& column)
{
    const auto edit = [&] {
        for (const TDetailBlock* block : std::as_const(FBlocks))
            for (TDetailRow* row : block->Rows())
                if (row->Column() == column) {
                    BeginEdit(row);
                    return true;
                }
        return false;
    };
    if (edit() || FShowsDefaults)
        return;
    FShowsDefaults = true; // it may stand among what is folded
    Rebuild();
    edit();
}

void TDetailPane::EditFirst()
{
    const QList<TDetailBlock*> blocks = FBlocks; // an editor that opens leaves them as they are
    for (TDetailBlock* block : blocks)
        for (TDetailRow* row : block->Rows()) {
            if (row->Column().isEmpty())
                continue;
            if (block->IsFolded())
                block->SetFolded(false);
            Arrange();
            BeginEdit(row);
            if (FEditor)
                return;
        }
}

void TDetailPane::BeginEdit(TDetailRow* row)
{
    EndEdit();
    TFieldEditor* editor = FMakeEditor ? FMakeEditor(row->Column(), row) : nullptr;
    if (!editor)
        return;
    FEditor = editor;
    FEdited = row;
    row->SetEditor(editor);
    editor->TellWhatIsKept();
    ensureWidgetVisible(row);
    editor->Begin();
    connect(editor, &TFieldEditor::committed, this, [this, editor] { CommitEdit(editor); });
    connect(editor, &TFieldEditor::cancelled, this, [this] {
        QWidget* edited = FEdited;
        EndEdit();
        if (edited)
            edited->setFocus();
    });
    connect(editor, &TFieldEditor::moved, this, [this, editor, column = row->Column()](int direction) {
        CommitEdit(editor);
        if (!FEditor)
            MoveEdit(column, direction);
    });
}

void TDetailPane::CommitEdit(TFieldEditor* editor)
{
    if (editor != FEditor)
        return; // it was taken already
    if (editor->IsModified()) {
        const std::optional<TVariant> value = editor->Value();
        // A value that is refused stays in its editor.
        if (!value)
            return editor->ShowRefusal(FieldRefusal(FEdited ? FEdited->Label() : QString(), editor->Field()));
        FRebuildWaits = true;
        const bool stored = FStoreValue && FStoreValue(editor->Field().Name, *value);
        if (!stored) {
            FRebuildWaits = false;
            return editor->ShowRefusal({});
        }
    }
    EndEdit();
    if (std::exchange(FRebuildWaits, false))
        Rebuild();
}

void TDetailPane::EndEdit()
{
    if (FEdited)
        FEdited->SetEditor(nullptr);
    if (FEditor)
        FEditor->deleteLater();
    FEditor = nullptr;
    FEdited = nullptr;
}

void TDetailPane::MoveEdit(const QString& from, int direction)
{
    QStringList columns;
    for (const TDetailBlock* block : std::as_const(FBlocks))
        if (!block->IsFolded())
            for (const TDetailRow* row : block->Rows())
                if (!row->Column().isEmpty())
                    columns << row->Column();
    const qsizetype next = columns.indexOf(from) + direction;
    if (next >= 0 && next < columns.size())
        EditField(columns[next]);
}

int TDetailPane::PlaceFilter(int width)
{
    if (FFilter->isHidden())
        return 0;
    const int height = RowHeight(26, ThemeFont(fsBody), 8);
    FFilter->setGeometry(12, 6, width - 24, height);
    return height + 8;
}

void TDetailPane::AddTracks()
{
    if (FData.Discs.empty())
        return;
    TDetailBlock* block = AddBlock(u"tracks"_s, GetLanguageString(u"cSGuiTracks"_s), FData.TracksSummary);
    for (std::size_t disc = 0; disc < FData.Discs.size(); ++disc) {
        if (!FData.Discs[disc].Heading.isEmpty())
            block->Add(TDetailRow::ForDisc(FData.Discs[disc], block));
        for (std::size_t track = 0; track < FData.Discs[disc].Tracks.size(); ++track) {
            TDetailRow* row = TDetailRow::ForTrack(FData.Discs[disc].Tracks[track], block);
            connect(row, &TDetailRow::activated, this,
                    [this, disc, track] { Q_EMIT trackActivated(static_cast<int>(disc), static_cast<int>(track)); });
            block->Add(row);
        }
    }
}

void TDetailPane::AddCredits()
{
    if (FData.Credits.empty())
        return;
    TDetailBlock* block = AddBlock(u"credits"_s, GetLanguageString(u"cSGuiCredits"_s), {});
    for (const TDetailCredit& credit : FData.Credits)
        block->Add(TDetailRow::ForCredit(credit, block));
}

void TDetailPane::AddPictures()
{
    if (FData.Pictures.empty())
        return;
    TDetailBlock* block =
        AddBlock(u"pictures"_s, GetLanguageString(u"cSGuiOtherPictures"_s), QString::number(FData.Pictures.size()));
    auto* strip = new TPictureStrip(FData.Pictures, block);
    connect(strip, &TPictureStrip::activated, this, &TDetailPane::pictureActivated);
    block->Add(strip);
}

void TDetailPane::Rebuild()
{
    if (FEditor) {
        FRebuildWaits = true; // what is being typed stays until it is taken or left
        return;
    }
    for (TDetailBlock* block : std::as_const(FBlocks)) {
        block->hide();
        block->deleteLater(); // one of its rows may be the sender
    }
    FBlocks.clear();
    FHead->setVisible(FData.ID != 0);
    if (FData.ID != 0) {
        const bool general = !FData.Sections.empty() && FData.Sections.front().Id == "General"_L1;
        AddTracks();
        if (general)
            AddSection(FData.Sections.front());
        AddCredits();
        AddPictures();
        for (std::size_t i = general ? 1 : 0; i < FData.Sections.size(); ++i)
            AddSection(FData.Sections[i]);
    }
    Arrange();
    viewport()->update();
}

void TDetailPane::Arrange() { FOrientation == Qt::Vertical ? ArrangeBelow() : ArrangeBeside(); }

void TDetailPane::ArrangeBelow()
{
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    const int width = viewport()->width();
    int y = FHead->ArrangeFor(width, height());
    FHead->setGeometry(0, 0, width, y);
    FFilter->move(0, 0);
    if (const int filter = PlaceFilter(width); filter > 0) {
        FFilter->move(FFilter->x(), y + 6);
        y += filter;
    }
    for (TDetailBlock* block : std::as_const(FBlocks)) {
        const int blockHeight = block->ArrangeFor(width);
        block->setGeometry(0, y, width, blockHeight);
        y += blockHeight;
    }
    FContent->resize(width, FData.ID == 0 ? 1 : y + 10);
}

// The cover stands left; the sections fill columns from top to bottom.
void TDetailPane::ArrangeBeside()
{
    setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    const int available = viewport()->height();
    const int headHeight = FHead->ArrangeFor(ColumnWidth, available);
    FHead->setGeometry(0, 0, ColumnWidth, std::max(headHeight, available));
    int x = ColumnWidth;
    int y = PlaceFilter(ColumnWidth);
    FFilter->move(ColumnWidth + 12, FFilter->y());
    int deepest = headHeight;
    for (TDetailBlock* block : std::as_const(FBlocks)) {
        const int blockHeight = block->ArrangeFor(ColumnWidth);
        if (y > 0 && y + blockHeight > available) {
            x += ColumnWidth;
            y = 0;
        }
        block->setGeometry(x, y, ColumnWidth, blockHeight);
        y += blockHeight;
        deepest = std::max(deepest, y);
    }
    FContent->resize(std::max(viewport()->width(), x + ColumnWidth), std::max(1, deepest));
}

void TDetailPane::resizeEvent(QResizeEvent* event)
{
    QScrollArea::resizeEvent(event);
    Arrange();
}

void TDetailPane::paintEvent(QPaintEvent* event)
{
    const TTheme& theme = CurrentTheme();
    QPainter painter(viewport());
    painter.fillRect(event->rect(), theme.Window);
    if (FData.ID != 0)
        return;
    painter.setFont(ThemeFont(fsBody));
    painter.setPen(theme.Text3);
    painter.drawText(viewport()->rect(), Qt::AlignCenter | Qt::TextWordWrap, GetLanguageString(u"cSGuiNoSelection"_s));
}

} // namespace Kestrune
