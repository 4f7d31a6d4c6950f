// SPDX-License-Identifier: GPL-3.0-or-later
#include "uSQLWindow.h"

#include "uTHStrings.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QFontDatabase>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScopeGuard>
#include <QShortcut>
#include <QSplitter>
#include <QTableWidget>
#include <QVBoxLayout>

namespace Kestrune {

using namespace Qt::StringLiterals;

TSQLWindow::TSQLWindow(TExecSQLForm& form, QWidget* parent)
    : TDialog(u"TExecSQLForm"_s, GetLanguageString(u"cSactExecSQL"_s), parent),
      FForm(form),
      FSQL(new QPlainTextEdit(this)),
      FGrid(new QTableWidget(this)),
      FMessage(new QLabel(this))
{
    auto* history = new QComboBox(this);
    history->setAccessibleName(GetLanguageString(u"cSSQLHistory"_s));
    history->addItem(GetLanguageString(u"cSSQLHistory"_s));
    for (const QString& sql : FForm.History())
        history->addItem(QString(sql).replace(u'\n', u' ').left(120), sql);
    connect(history, &QComboBox::activated, this, [this, history](int index) {
        if (index > 0)
            FSQL->setPlainText(history->itemData(index).toString());
    });
    auto* writing = new QCheckBox(GetLanguageString(u"cSSQLAllowWriting"_s), this);
    connect(writing, &QCheckBox::toggled, this, [this](bool on) { FForm.SetCanWrite(on); });
    FForm.SetCanWrite(false);
    FSQL->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    FSQL->setPlaceholderText(u"SELECT Artist, count(*) FROM Releases2 GROUP BY Artist ORDER BY 2 DESC"_s);
    FSQL->setAccessibleName(windowTitle());
    FSQL->setTabChangesFocus(true);
    FGrid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    FGrid->setAccessibleName(GetLanguageString(u"cSSQLResult"_s));
    FGrid->verticalHeader()->hide();
    FGrid->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    FMessage->setWordWrap(true);
    FMessage->setTextInteractionFlags(Qt::TextSelectableByMouse);
    FMessage->setAccessibleName(GetLanguageString(u"cSSQLResult"_s));
    auto* splitter = new QSplitter(Qt::Vertical, this);
    splitter->addWidget(FSQL);
    splitter->addWidget(FGrid);
    splitter->setSizes({140, 320});
    Body()->addWidget(history);
    Body()->addWidget(splitter, 1);
    Body()->addWidget(FMessage);
    Body()->addWidget(writing);
    connect(AddSideButton(GetLanguageString(u"cSSQLCopy"_s)), &QPushButton::clicked, this, &TSQLWindow::Copy);
    AddCloseButton();
    FRun = AddSideButton(GetLanguageString(u"cSSQLRun"_s));
    connect(FRun, &QPushButton::clicked, this, &TSQLWindow::Run);
    connect(new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_Return), this), &QShortcut::activated, this,
            &TSQLWindow::Run);
    SetFirstSize({900, 620});
    FSQL->setFocus();
}

TSQLWindow::~TSQLWindow() = default;

void TSQLWindow::Run()
{
    if (FRunning) {
        FStop = true; // the button says "Stop" meanwhile
        return;
    }
    FRunning = true;
    FStop = false;
    FRun->setText(GetLanguageString(u"cSSQLStop"_s));
    const auto done = qScopeGuard([this] {
        FRunning = false;
        FRun->setText(GetLanguageString(u"cSSQLRun"_s));
    });
    const TSQLResult result = FForm.Run(FSQL->toPlainText(), [this] {
        QApplication::processEvents();
        return !FStop;
    });
    Show(result);
    if (result.Changed > 0)
        Q_EMIT written();
}

void TSQLWindow::Show(const TSQLResult& result)
{
    FGrid->clear();
    FGrid->setColumnCount(static_cast<int>(result.Columns.size()));
    FGrid->setRowCount(static_cast<int>(result.Rows.size()));
    FGrid->setHorizontalHeaderLabels(result.Columns);
    for (size_t row = 0; row < result.Rows.size(); ++row)
        for (qsizetype column = 0; column < result.Rows[row].size(); ++column)
            FGrid->setItem(static_cast<int>(row), static_cast<int>(column),
                           new QTableWidgetItem(result.Rows[row][column]));
    if (result.Rows.size() <= 1000)
        FGrid->resizeColumnsToContents();
    for (int column = 0; column < FGrid->columnCount(); ++column)
        FGrid->setColumnWidth(column, std::min(FGrid->columnWidth(column), 400));
    QStringList parts;
    const QLocale locale;
    if (!result.Error.isEmpty())
        parts << result.Error;
    else if (!result.Columns.isEmpty())
        parts << GetLanguageString(result.Cut ? u"cSSQLRowsCut"_s : u"cSSQLRows"_s)
                     .arg(locale.toString(static_cast<qlonglong>(result.Rows.size())));
    if (result.Error.isEmpty() && (result.Changed > 0 || result.Columns.isEmpty()))
        parts << GetLanguageString(u"cSSQLChanged"_s).arg(locale.toString(result.Changed));
    parts << GetLanguageString(u"cSSQLSeconds"_s).arg(locale.toString(result.Seconds, 'f', 3));
    FMessage->setText(parts.join(u" · "_s));
}

void TSQLWindow::Copy()
{
    QStringList lines;
    QStringList cells;
    for (int column = 0; column < FGrid->columnCount(); ++column)
        cells << FGrid->horizontalHeaderItem(column)->text();
    lines << cells.join(u'\t');
    for (int row = 0; row < FGrid->rowCount(); ++row) {
        cells.clear();
        for (int column = 0; column < FGrid->columnCount(); ++column)
            cells << FGrid->item(row, column)->text().replace(u'\t', u' ').replace(u'\n', u' ');
        lines << cells.join(u'\t');
    }
    QApplication::clipboard()->setText(lines.join(u'\n') + u'\n');
}

void TSQLWindow::reject()
{
    if (FRunning) {
        FStop = true; // Esc stops the statement first
        return;
    }
    TDialog::reject();
}

} // namespace Kestrune
