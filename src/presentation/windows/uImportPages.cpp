// SPDX-License-Identifier: GPL-3.0-or-later
#include "uImportPages.h"

#include "uImportRun.h"
#include "uLogView.h"
#include "uTHStrings.h"
#include "uThemePaint.h"
#include "uThemeStyle.h"

#include <QClipboard>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

QVBoxLayout* PageColumn(QWidget* page)
{
    auto* column = new QVBoxLayout(page);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(10);
    return column;
}

void SetTextColor(QLabel* label, const QColor& color)
{
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, color);
    label->setPalette(palette);
}

} // namespace

TWelcomePage::TWelcomePage(TKRNImportForm& form, QWidget* parent)
    : TImportPageWidget(form, parent), FList(new QListWidget(this)), FDescription(new QLabel(this))
{
    FList->setAccessibleName(GetLanguageString(u"cSGuiSources"_s));
    for (const TImporterClass& source : form.Classes())
        FList->addItem(source.GetDisplayName());
    FDescription->setWordWrap(true);
    FDescription->setAlignment(Qt::AlignTop | Qt::AlignLeading);
    auto* row = new QHBoxLayout;
    row->setSpacing(16);
    row->addWidget(FList, 1);
    row->addWidget(FDescription, 1);
    PageColumn(this)->addLayout(row, 1);
    connect(FList, &QListWidget::currentRowChanged, &form, &TKRNImportForm::ChooseClass);
    connect(FList, &QListWidget::itemActivated, &form, &TKRNImportForm::Next);
}

void TWelcomePage::Refresh()
{
    FDescription->setText(FForm.ClassIndex() < 0 ? QString() : FForm.Class().GetDisplayDesc());
}

QWidget* TWelcomePage::FirstWidget() { return FList; }

TSourcePage::TSourcePage(TKRNImportForm& form, QWidget* parent)
    : TImportPageWidget(form, parent),
      FDescription(new QLabel(this)),
      FChooseFile(new QRadioButton(GetLanguageString(u"cSGuiChooseFile"_s), this)),
      FCopyPaste(new QRadioButton(GetLanguageString(u"cSGuiCopyPaste"_s), this)),
      FSource(new QLineEdit(this)),
      FBrowse(new QPushButton(GetLanguageString(u"cSGuiBrowse"_s), this)),
      FMemo(new QPlainTextEdit(this))
{
    FDescription->setWordWrap(true);
    FSource->setAccessibleName(GetLanguageString(u"cSGuiSource"_s));
    FMemo->setAccessibleName(GetLanguageString(u"cSGuiPastedText"_s));
    FMemo->setTabChangesFocus(true);
    FBrowse->setAutoDefault(false);
    auto* row = new QHBoxLayout;
    row->addWidget(FSource, 1);
    row->addWidget(FBrowse);
    QVBoxLayout* column = PageColumn(this);
    column->addWidget(FDescription);
    column->addWidget(FChooseFile);
    column->addLayout(row);
    column->addWidget(FCopyPaste);
    column->addWidget(FMemo, 1);
    column->addStretch(0);
    connect(FSource, &QLineEdit::textEdited, &form.Source(), &TImportSource::SetText);
    connect(FBrowse, &QPushButton::clicked, &form.Source(), &TImportSource::Browse);
    connect(FMemo, &QPlainTextEdit::textChanged, &form, [this] { FForm.Source().SetMemo(FMemo->toPlainText()); });
    connect(FCopyPaste, &QRadioButton::toggled, &form.Source(), &TImportSource::SetPasteMode);
}

void TSourcePage::Enter()
{
    const TImporterClass& source = FForm.Class();
    const TKRNImporterInputType type = source.ImporterType;
    const bool paste = type == iitFile && source.CanCopyAndPasteData;
    FDescription->setText(source.GetSelectSourceDescription());
    const QSignalBlocker quiet(FMemo);
    FMemo->setPlainText(FForm.Source().Memo());
    FMemo->setVisible(paste || type == iitMemo);
    FChooseFile->setVisible(paste);
    FCopyPaste->setVisible(paste);
    FSource->setVisible(type != iitMemo);
    FBrowse->setVisible(FForm.Source().CanBrowse());
}

void TSourcePage::Refresh()
{
    if (FForm.ClassIndex() < 0)
        return;
    if (FSource->text() != FForm.Source().Text())
        FSource->setText(FForm.Source().Text());
    FChooseFile->setChecked(!FForm.Source().PasteMode());
    FCopyPaste->setChecked(FForm.Source().PasteMode());
    FSource->setEnabled(!FForm.Source().PasteMode());
    FBrowse->setEnabled(!FForm.Source().PasteMode());
    FMemo->setEnabled(FForm.Source().PasteMode() || FForm.Class().ImporterType == iitMemo);
}

QWidget* TSourcePage::FirstWidget()
{
    const bool memoOnly = FForm.Class().ImporterType == iitMemo;
    return memoOnly ? static_cast<QWidget*>(FMemo) : FSource;
}

TProgressPage::TProgressPage(TKRNImportForm& form, QWidget* parent)
    : TImportPageWidget(form, parent),
      FText(new QLabel(this)),
      FBar(new QProgressBar(this)),
      FFigures(new QLabel(this)),
      FNotes(new QLabel(this)),
      FLog(new TLogView(this)),
      FCopy(new QPushButton(GetLanguageString(u"cSGuiCopyLog"_s), this))
{
    FText->setFont(ThemeFont(fsBodyBold));
    // A long file name must not widen the wizard.
    FText->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    FText->setTextFormat(Qt::PlainText);
    FBar->setTextVisible(false);
    FBar->setFixedHeight(8);
    FBar->setAccessibleName(GetLanguageString(u"cSGuiProgress"_s));
    FCopy->setAutoDefault(false);
    FCopy->setFlat(true);
    auto* heading = new QLabel(GetLanguageString(u"cSGuiLog"_s), this);
    heading->setFont(ThemeFont(fsBodyBold));
    auto* row = new QHBoxLayout;
    row->addWidget(heading);
    row->addWidget(FNotes);
    row->addStretch(1);
    row->addWidget(FCopy);
    QVBoxLayout* column = PageColumn(this);
    column->addWidget(FText);
    column->addWidget(FBar);
    column->addWidget(FFigures);
    column->addLayout(row);
    column->addWidget(FLog, 1);
    connect(&form, &TKRNImportForm::logCleared, FLog, &TLogView::Reset);
    connect(&form, &TKRNImportForm::logLines, FLog, &TLogView::AddLines);
    connect(&form, &TKRNImportForm::logWarning, FLog, &TLogView::AddWarning);
    connect(FCopy, &QPushButton::clicked, this, [this] { QGuiApplication::clipboard()->setText(FLog->toPlainText()); });
}

void TProgressPage::Refresh()
{
    const TTheme& theme = CurrentTheme();
    FText->setText(FForm.ProgressText());
    SetTextColor(FText, FForm.HasFailed() ? theme.Error : theme.Text);
    QPalette bar = palette();
    bar.setColor(QPalette::Highlight, FForm.HasFailed() ? theme.Error : theme.AccentFill);
    FBar->setPalette(bar);
    if (const TImportRun* run = FForm.Importer()) {
        if (FBar->maximum() != run->Count())
            FBar->setMaximum(run->Count());
        FBar->setValue(run->Position());
    }
    FFigures->setText(FForm.ProgressFigures());
    const int notes = FLog->WarningCount();
    FNotes->setText(notes > 0 ? u"⚠ "_s + GetLanguageString(u"cSGuiNotes"_s).arg(notes) : QString());
    SetTextColor(FNotes, theme.Warn);
}

QWidget* TProgressPage::FirstWidget() { return FLog; }

TFinishPage::TFinishPage(TKRNImportForm& form, QWidget* parent)
    : TImportPageWidget(form, parent), FText(new QLabel(this))
{
    FText->setFont(ThemeFont(fsCardTitle));
    FText->setWordWrap(true);
    QVBoxLayout* column = PageColumn(this);
    column->addWidget(FText);
    column->addStretch(1);
}

void TFinishPage::Refresh() { FText->setText(FForm.FinishText()); }

} // namespace Kestrune
