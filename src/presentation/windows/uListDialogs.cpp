// SPDX-License-Identifier: GPL-3.0-or-later
#include "uListDialogs.h"

#include "dmMain.h"
#include "uAlbumTable.h"
#include "uDefaults.h"
#include "uDictionaries.h"
#include "uFieldEditor.h"
#include "uFieldText.h"
#include "uMessageBoxes.h"
#include "uRibbonButton.h"
#include "uTHStrings.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QVBoxLayout>

#include <algorithm>
#include <tuple>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

// Rows of a list that grows and shrinks, from the top.
std::pair<QWidget*, QGridLayout*> MakeRows(TDialog& dialog)
{
    auto* scroll = new QScrollArea(&dialog);
    scroll->setFocusPolicy(Qt::NoFocus);
    auto* rows = new QWidget(scroll);
    auto* grid = new QGridLayout(rows);
    grid->setContentsMargins(8, 8, 8, 8);
    grid->setAlignment(Qt::AlignTop);
    scroll->setWidget(rows);
    scroll->setWidgetResizable(true);
    dialog.Body()->addWidget(scroll, 1);
    return {rows, grid};
}

void Empty(QGridLayout& grid)
{
    while (QLayoutItem* item = grid.takeAt(0)) {
        if (QWidget* widget = item->widget()) {
            widget->hide();
            widget->deleteLater(); // it may be the sender
        }
        delete item;
    }
}

QLabel* MakeMessage(TDialog& dialog)
{
    auto* message = new QLabel(&dialog);
    message->setWordWrap(true);
    message->hide();
    dialog.Body()->addWidget(message);
    return message;
}

void Tell(QLabel& message, const QString& text)
{
    message.setText(text);
    message.setVisible(!text.isEmpty());
    message.setAccessibleName(text);
}

} // namespace

TSortDialog::TSortDialog(TSortForm& sort, QWidget* parent)
    : TDialog(u"TSortForm"_s, GetLanguageString(u"cSactSort"_s), parent), FSort(sort)
{
    std::tie(FRows, FGrid) = MakeRows(*this);
    FMessage = MakeMessage(*this);
    QPushButton* add = AddSideButton(GetLanguageString(u"cSSortDlgAddLevel"_s));
    FDelete = AddSideButton(GetLanguageString(u"cSSortDlgDeleteLevel"_s));
    FUp = AddSideButton(GetLanguageString(u"cSSortDlgUp"_s));
    FDown = AddSideButton(GetLanguageString(u"cSSortDlgDown"_s));
    connect(add, &QPushButton::clicked, this, [this] {
        FSort.actAddLevel();
        FCurrent = static_cast<int>(FSort.Levels().size()) - 1;
        Rebuild();
    });
    connect(FDelete, &QPushButton::clicked, this, [this] {
        FSort.actDeleteLevel({FCurrent});
        FCurrent = std::clamp(FCurrent, 0, std::max(0, static_cast<int>(FSort.Levels().size()) - 1));
        Rebuild();
    });
    connect(FUp, &QPushButton::clicked, this, [this] { Move(-1); });
    connect(FDown, &QPushButton::clicked, this, [this] { Move(1); });
    AddButtons(GetLanguageString(u"cSGuiOk"_s));
    SetFirstSize({600, 380});
    if (FSort.Levels().empty())
        FSort.actAddLevel();
    Rebuild();
}

void TSortDialog::Rebuild()
{
    Empty(*FGrid);
    const std::vector<TSortForm::TLSort> levels = FSort.Levels();
    for (int row = 0; row < static_cast<int>(levels.size()); ++row) {
        const TSortForm::TLSort& level = levels[static_cast<size_t>(row)];
        auto* column = new QComboBox(FRows);
        column->addItems(FSort.Captions());
        column->setCurrentText(level.Column);
        auto* order = new QComboBox(FRows);
        order->addItems(TSortForm::Orders());
        order->setCurrentText(level.Order);
        auto* number = new QRadioButton(QString::number(row + 1), FRows);
        number->setChecked(row == FCurrent);
        number->setAccessibleName(GetLanguageString(u"cSSortDlgLevel"_s).arg(row + 1));
        column->setAccessibleName(number->accessibleName());
        order->setAccessibleName(number->accessibleName());
        const auto store = [this, row, column, order] {
            FSort.SetLevel(row, {column->currentText(), order->currentText()});
            SetCurrent(row);
            Tell(*FMessage, {});
        };
        connect(column, &QComboBox::activated, this, store);
        connect(order, &QComboBox::activated, this, store);
        connect(number, &QRadioButton::clicked, this, [this, row] { SetCurrent(row); });
        for (QWidget* part : std::initializer_list<QWidget*>{number, column, order})
            part->installEventFilter(this); // who goes to a level means it
        FGrid->addWidget(number, row, 0);
        FGrid->addWidget(column, row, 1);
        FGrid->addWidget(order, row, 2);
        if (row == FCurrent)
            column->setFocus();
    }
    FGrid->setColumnStretch(1, 3);
    FGrid->setColumnStretch(2, 2);
    SetCurrent(FCurrent);
    FDelete->setEnabled(!levels.empty());
}

void TSortDialog::SetCurrent(int row)
{
    FCurrent = row;
    if (const QLayoutItem* item = FGrid->itemAtPosition(row, 0))
        static_cast<QRadioButton*>(item->widget())->setChecked(true);
    FUp->setEnabled(FSort.CanMoveUp(row));
    FDown->setEnabled(FSort.CanMoveDown(row));
}

bool TSortDialog::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::FocusIn) {
        if (const int at = FGrid->indexOf(static_cast<QWidget*>(watched)); at >= 0) {
            int row = 0;
            int column = 0;
            int rows = 0;
            int columns = 0;
            FGrid->getItemPosition(at, &row, &column, &rows, &columns);
            SetCurrent(row);
        }
    }
    return TDialog::eventFilter(watched, event);
}

void TSortDialog::Move(int direction)
{
    direction < 0 ? FSort.actUp(FCurrent) : FSort.actDown(FCurrent);
    FCurrent = std::clamp(FCurrent + direction, 0, std::max(0, static_cast<int>(FSort.Levels().size()) - 1));
    Rebuild();
}

void TSortDialog::accept()
{
    const QString refusal = FSort.Check();
    Tell(*FMessage, refusal);
    if (refusal.isEmpty())
        TDialog::accept();
}

TMultiEditDialog::TMultiEditDialog(TMultiEditForm& edit, TDataModuleMain& dataModule, QWidget* parent)
    : TDialog(u"TMultiEditForm"_s, GetLanguageString(u"cSactMultiEdit"_s), parent), FEdit(edit), FData(dataModule)
{
    auto* text = new QLabel(GetLanguageString(u"cSMultiEditDlgDesc"_s), this);
    text->setWordWrap(true);
    Body()->addWidget(text);
    Body()->addWidget(new QLabel(GetLanguageString(u"cSMultiEditCount"_s).arg(FEdit.RowCount()), this));
    std::tie(FRows, FGrid) = MakeRows(*this);
    FMessage = MakeMessage(*this);
    connect(AddSideButton(GetLanguageString(u"cSMultiEditAdd"_s)), &QPushButton::clicked, this, [this] {
        FEdit.actAdd();
        Rebuild();
    });
    AddButtons(GetLanguageString(u"cSGuiOk"_s));
    SetFirstSize({680, 420});
    Rebuild();
}

void TMultiEditDialog::Rebuild()
{
    Empty(*FGrid);
    FEditors.clear();
    for (int row = 0; row < static_cast<int>(FEdit.Rows().size()); ++row)
        if (FEdit.FieldOf(row))
            AddRow(row);
    FGrid->setColumnStretch(0, 2);
    FGrid->setColumnStretch(1, 3);
    if (!FEditors.isEmpty())
        FEditors.last()->Begin();
}

void TMultiEditDialog::AddRow(int row)
{
    const TFieldDef& field = *FEdit.FieldOf(row);
    const TMultiEditForm::TRow& values = FEdit.Rows()[static_cast<size_t>(row)];
    auto* fields = new QComboBox(FRows);
    fields->setAccessibleName(GetLanguageString(u"cSMultiEditField"_s));
    for (const TFieldDef& def : FEdit.Fields())
        fields->addItem(ColumnLabel(def, Defaults()), def.Name);
    fields->setCurrentIndex(fields->findData(field.Name));
    auto* editor = new TFieldEditor(FData, field, FRows);
    editor->TellWhatIsKept();
    editor->SetValue(values.Value);
    editor->setEnabled(!values.Clear);
    auto* clear = new QCheckBox(GetLanguageString(u"cSMultiEditClear"_s), FRows);
    clear->setChecked(values.Clear);
    clear->setEnabled(FEdit.CanClear(row));
    TRibbonButton* remove = MakeIconButton(u"x"_s, u"cSMultiEditRemove"_s, FRows);
    connect(fields, &QComboBox::activated, this, [this, row, fields] {
        FEdit.SetField(row, fields->currentData().toString());
        Rebuild();
    });
    connect(editor, &TFieldEditor::edited, this, [this, row, editor] {
        if (const std::optional<TVariant> value = editor->Value())
            FEdit.SetValue(row, *value);
        Tell(*FMessage, {});
    });
    connect(clear, &QCheckBox::toggled, this, [this, row, editor](bool on) {
        FEdit.SetClear(row, on);
        editor->setEnabled(!on);
        Tell(*FMessage, {});
    });
    connect(editor, &TFieldEditor::cancelled, this, &QDialog::reject);
    connect(editor, &TFieldEditor::moved, this, [this](int direction) { focusNextPrevChild(direction > 0); });
    connect(remove, &QToolButton::clicked, this, [this, row] {
        FEdit.actRemove(row);
        Rebuild();
    });
    int column = 0;
    for (QWidget* part : std::initializer_list<QWidget*>{fields, editor, clear, remove})
        FGrid->addWidget(part, row, column++);
    FEditors << editor;
}

void TMultiEditDialog::accept()
{
    for (TFieldEditor* editor : std::as_const(FEditors)) {
        if (!editor->isEnabled() || editor->Value())
            continue;
        const QString caption = ColumnLabel(editor->Field(), Defaults());
        Tell(*FMessage, FieldRefusal(caption, editor->Field()));
        return editor->Begin();
    }
    const QString question = FEdit.Question();
    if (question.isEmpty())
        return Tell(*FMessage, GetLanguageString(u"cSMultiEditNothing"_s));
    if (AskYesNo(this, question))
        TDialog::accept();
}

TColumnsDialog::TColumnsDialog(TAlbumTable& table, QWidget* parent)
    : TDialog(u"TColumnsDialog"_s, GetLanguageString(u"cSactCustomizeColumns"_s), parent),
      FTable(table),
      FList(new QListWidget(this))
{
    auto* search = new QLineEdit(this);
    search->setPlaceholderText(GetLanguageString(u"cSGuiFindColumn"_s));
    search->setAccessibleName(search->placeholderText());
    search->setClearButtonEnabled(true);
    Body()->addWidget(search);
    Body()->addWidget(FList, 1);
    FList->setDragDropMode(QAbstractItemView::InternalMove);
    FList->setAccessibleName(GetLanguageString(u"cSactCustomizeColumns"_s));
    connect(search, &QLineEdit::textChanged, this, &TColumnsDialog::Fill);
    connect(FList, &QListWidget::itemChanged, this, [this](const QListWidgetItem* item) {
        const TTableHeader* header = FTable.Header();
        const int column = item->data(Qt::UserRole).toInt();
        const bool hide = item->checkState() == Qt::Unchecked;
        if (hide && header->count() - header->hiddenSectionCount() <= 1)
            return Fill({}); // a table keeps one column
        FTable.setColumnHidden(column, hide);
        if (!hide && header->sectionSize(column) < 24)
            FTable.Header()->resizeSection(column, header->CaptionWidth(column) + 12);
    });
    connect(FList->model(), &QAbstractItemModel::rowsMoved, this, [this] {
        for (int row = 0; row < FList->count(); ++row) {
            const int column = FList->item(row)->data(Qt::UserRole).toInt();
            FTable.Header()->moveSection(FTable.Header()->visualIndex(column), row);
        }
    });
    AddCloseButton();
    SetFirstSize({380, 560});
    Fill({});
}

void TColumnsDialog::Fill(const QString& text)
{
    const QSignalBlocker quiet(FList);
    FList->clear();
    const TTableHeader* header = FTable.Header();
    const TListModel& list = FTable.Groups().Source();
    for (int visual = 0; visual < header->count(); ++visual) {
        const int column = header->logicalIndex(visual);
        const QString caption = list.headerData(column, Qt::Horizontal, FullCaptionRole).toString();
        if (!caption.contains(text, Qt::CaseInsensitive))
            continue;
        auto* item = new QListWidgetItem(caption, FList);
        item->setData(Qt::UserRole, column);
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        item->setCheckState(header->isSectionHidden(column) ? Qt::Unchecked : Qt::Checked);
    }
    // Only the whole list has an order to change.
    FList->setDragEnabled(text.isEmpty());
}

TDictionaryDialog::TDictionaryDialog(const QString& caption, const QString& text, const QString& defaultText,
                                     QWidget* parent)
    : TDialog(u"TDictionaryDialog"_s, caption, parent), FLines(new QPlainTextEdit(this))
{
    auto* hint = new QLabel(GetLanguageString(u"cSDictionaryHint"_s), this);
    hint->setWordWrap(true);
    Body()->addWidget(hint);
    Body()->addWidget(FLines, 1);
    FLines->setPlainText(SplitLines(text).join(u'\n'));
    FLines->setAccessibleName(caption);
    FLines->setTabChangesFocus(true);
    connect(AddSideButton(GetLanguageString(u"cSDictionarySort"_s)), &QPushButton::clicked, this, [this] {
        QStringList lines = SplitLines(FLines->toPlainText());
        lines.sort(Qt::CaseInsensitive);
        FLines->setPlainText(lines.join(u'\n'));
    });
    connect(AddSideButton(GetLanguageString(u"cSDictionaryReset"_s)), &QPushButton::clicked, this,
            [this, defaultText] { FLines->setPlainText(SplitLines(defaultText).join(u'\n')); });
    AddButtons(GetLanguageString(u"cSGuiOk"_s));
    SetFirstSize({420, 520});
}

QString TDictionaryDialog::Text() const
{
    QStringList items;
    for (const QString& line : SplitLines(FLines->toPlainText()))
        if (!line.trimmed().isEmpty() && !items.contains(line.trimmed()))
            items << line.trimmed();
    return items.join(u"\r\n"_s);
}

QString AskName(const QString& title, const QString& label, const QStringList& known, QWidget* parent)
{
    TDialog dialog(u"TNameDialog"_s, title, parent);
    auto* text = new QLabel(label, &dialog);
    auto* name = new QComboBox(&dialog);
    name->setEditable(true);
    name->addItems(known);
    name->setEditText({});
    name->setAccessibleName(label);
    text->setBuddy(name);
    dialog.Body()->addWidget(text);
    dialog.Body()->addWidget(name);
    QPushButton* ok = dialog.AddButtons(GetLanguageString(u"cSGuiOk"_s));
    ok->setEnabled(false);
    QObject::connect(name, &QComboBox::editTextChanged, ok,
                     [ok](const QString& now) { ok->setEnabled(!now.trimmed().isEmpty()); });
    dialog.SetFirstSize({400, 130});
    name->setFocus();
    return dialog.exec() == QDialog::Accepted ? name->currentText().trimmed() : QString();
}

} // namespace Kestrune
