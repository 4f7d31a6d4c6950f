// SPDX-License-Identifier: GPL-3.0-or-later
#include "uOptionsWindow.h"

#include "uFileDialogs.h"
#include "uRibbonButton.h"
#include "uTHStrings.h"
#include "uTheme.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScrollArea>
#include <QSpinBox>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace Kestrune {

using namespace Qt::StringLiterals;

TOptionsWindow::TOptionsWindow(const TDefaults& settings, TDataModuleMain& dataModule, QWidget* parent)
    : TDialog(u"TOptionsForm"_s, GetLanguageString(u"cSactOptions"_s), parent),
      FDraft(settings),
      FFirstHeight(settings.LargeHeight),
      FFirstTheme(settings.ThemeIndex),
      FFirstAccent(settings.ColorSchemeAccentIndex),
      FPages(new QListWidget(this)),
      FStack(new QStackedWidget(this))
{
    auto* search = new QLineEdit(this);
    search->setPlaceholderText(GetLanguageString(u"cSOptSearch"_s));
    search->setAccessibleName(search->placeholderText());
    search->setClearButtonEnabled(true);
    auto* left = new QVBoxLayout;
    left->addWidget(search);
    left->addWidget(FPages, 1);
    search->setFixedWidth(200);
    FPages->setFixedWidth(200);
    FPages->setAccessibleName(windowTitle());
    auto* row = new QHBoxLayout;
    row->setSpacing(16);
    row->addLayout(left);
    row->addWidget(FStack, 1);
    Body()->addLayout(row, 1);
    GeneralPage();
    AppearancePage();
    LanguagePage();
    FoldersPage();
    ArticlesPage();
    DefaultValuesPage(dataModule);
    CustomFieldsPage();
    AudioScanPage();
    ServicesPage();
    NetworkPage();
    connect(FPages, &QListWidget::currentRowChanged, FStack, &QStackedWidget::setCurrentIndex);
    connect(search, &QLineEdit::textChanged, this, &TOptionsWindow::Search);
    FPages->setCurrentRow(0);
    AddButtons(GetLanguageString(u"cSGuiOk"_s));
    SetFirstSize({820, 580});
}

void TOptionsWindow::ShowPage(int page) { FPages->setCurrentRow(page); }

void TOptionsWindow::reject()
{
    // What was shown while it was tried goes back.
    if (FDraft.ThemeIndex != FFirstTheme || FDraft.ColorSchemeAccentIndex != FFirstAccent)
        Q_EMIT lookChanged(FFirstTheme, FFirstAccent);
    TDialog::reject();
}

QFormLayout* TOptionsWindow::AddPage(const QString& captionKey, const QString& noteKey)
{
    FPages->addItem(GetLanguageString(captionKey));
    auto* scroll = new QScrollArea(FStack);
    scroll->setFocusPolicy(Qt::NoFocus);
    auto* page = new QWidget(scroll);
    auto* form = new QFormLayout(page);
    form->setContentsMargins(4, 4, 12, 4);
    form->setHorizontalSpacing(12);
    form->setVerticalSpacing(8);
    form->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidget(page);
    scroll->setWidgetResizable(true);
    FStack->addWidget(scroll);
    if (!noteKey.isEmpty()) {
        auto* note = new QLabel(GetLanguageString(noteKey), page);
        note->setWordWrap(true);
        form->addRow(note);
    }
    return form;
}

void TOptionsWindow::AddCheck(QFormLayout& page, const QString& key, bool& value)
{
    auto* box = new QCheckBox(GetLanguageString(key), page.parentWidget());
    box->setChecked(value);
    connect(box, &QCheckBox::toggled, this, [&value](bool on) { value = on; });
    page.addRow(box);
}

void TOptionsWindow::AddText(QFormLayout& page, const QString& key, QString& value, int size)
{
    auto* edit = new QLineEdit(value, page.parentWidget());
    if (size > 0)
        edit->setMaxLength(size);
    connect(edit, &QLineEdit::textChanged, this, [&value](const QString& text) { value = text; });
    page.addRow(GetLanguageString(key), edit);
}

void TOptionsWindow::AddNumber(QFormLayout& page, const QString& key, int& value, int least, int most)
{
    auto* edit = new QSpinBox(page.parentWidget());
    edit->setRange(least, most);
    edit->setValue(value);
    connect(edit, &QSpinBox::valueChanged, this, [&value](int now) { value = now; });
    page.addRow(GetLanguageString(key), edit);
}

void TOptionsWindow::AddChoice(QFormLayout& page, const QString& key, int& value, const QStringList& items)
{
    auto* box = new QComboBox(page.parentWidget());
    box->addItems(items);
    box->setCurrentIndex(value >= 0 && value < items.size() ? value : 0);
    connect(box, &QComboBox::activated, this, [this, &value](int index) {
        value = index;
        if (&value == &FDraft.ThemeIndex || &value == &FDraft.ColorSchemeAccentIndex)
            Q_EMIT lookChanged(FDraft.ThemeIndex, FDraft.ColorSchemeAccentIndex);
    });
    page.addRow(GetLanguageString(key), box);
}

void TOptionsWindow::AddList(QFormLayout& page, const QString& key, QString& value, const QStringList& items, bool free)
{
    auto* box = new QComboBox(page.parentWidget());
    box->setEditable(free);
    box->addItem({});
    box->addItems(items);
    if (box->findText(value) < 0)
        box->addItem(value);
    box->setCurrentText(value);
    connect(box, &QComboBox::currentTextChanged, this, [&value](const QString& text) { value = text; });
    page.addRow(GetLanguageString(key), box);
}

void TOptionsWindow::AddCodes(QFormLayout& page, const QString& key,
                              const std::vector<std::pair<QString, QString>>& items, const QString& current,
                              const std::function<void(const QString&)>& store, const QString& none)
{
    auto* box = new QComboBox(page.parentWidget());
    box->addItem(none, QString());
    for (const auto& [value, text] : items)
        box->addItem(text, value);
    if (box->findData(current) < 0)
        box->addItem(current, current);
    box->setCurrentIndex(box->findData(current));
    connect(box, &QComboBox::activated, this, [box, store] { store(box->currentData().toString()); });
    page.addRow(GetLanguageString(key), box);
}

void TOptionsWindow::AddFolder(QFormLayout& page, const QString& key, QString& value)
{
    auto* holder = new QWidget(page.parentWidget());
    auto* row = new QHBoxLayout(holder);
    row->setContentsMargins(0, 0, 0, 0);
    auto* edit = new QLineEdit(value, holder);
    TRibbonButton* browse = MakeIconButton(u"folder"_s, u"cSGuiChooseFolder"_s, holder);
    row->addWidget(edit, 1);
    row->addWidget(browse);
    holder->setFocusProxy(edit);
    connect(edit, &QLineEdit::textChanged, this, [&value](const QString& text) { value = text; });
    connect(browse, &QToolButton::clicked, this, [this, edit] {
        const QString folder = ChooseFolder(this, {}, edit->text());
        if (!folder.isEmpty())
            edit->setText(folder);
    });
    page.addRow(GetLanguageString(key), holder);
}

// A page stays in the list when its caption or one of its texts holds what is searched for.
void TOptionsWindow::Search(const QString& text)
{
    int first = -1;
    for (int page = 0; page < FPages->count(); ++page) {
        bool hit = FPages->item(page)->text().contains(text, Qt::CaseInsensitive);
        for (const QLabel* label : FStack->widget(page)->findChildren<QLabel*>())
            hit = hit || label->text().contains(text, Qt::CaseInsensitive);
        for (const QCheckBox* box : FStack->widget(page)->findChildren<QCheckBox*>())
            hit = hit || box->text().contains(text, Qt::CaseInsensitive);
        FPages->item(page)->setHidden(!hit);
        if (hit && first < 0)
            first = page;
    }
    if (first >= 0 && FPages->currentItem() && FPages->currentItem()->isHidden())
        FPages->setCurrentRow(first);
}

} // namespace Kestrune
