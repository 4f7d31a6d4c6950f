// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "frmImport.h"

#include <QWidget>

class QLabel;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;
class QRadioButton;
class QSortFilterProxyModel;
class QTreeView;

namespace Kestrune {

class TImportRowsModel;
class TLogView;

/// One page of the import wizard.
class TImportPageWidget : public QWidget {
    Q_OBJECT
public:
    TImportPageWidget(TKRNImportForm& form, QWidget* parent) : QWidget(parent), FForm(form) {}

    /// The page comes into sight.
    virtual void Enter() {}
    /// The form's state changed.
    virtual void Refresh() {}
    /// The sentence under the heading, given as the table has it.
    virtual QString Hint(const QString& text) const { return text; }
    /// What takes the keyboard first.
    virtual QWidget* FirstWidget() { return nullptr; }

protected:
    TKRNImportForm& FForm;
};

/// Sources on the left, what they are on the right.
class TWelcomePage final : public TImportPageWidget {
public:
    TWelcomePage(TKRNImportForm& form, QWidget* parent);
    void Refresh() override;
    QWidget* FirstWidget() override;

private:
    QListWidget* FList;
    QLabel* FDescription;
};

/// Path, text line or memo, as the source asks for.
class TSourcePage final : public TImportPageWidget {
public:
    TSourcePage(TKRNImportForm& form, QWidget* parent);
    void Enter() override;
    void Refresh() override;
    QWidget* FirstWidget() override;

private:
    QLabel* FDescription;
    QRadioButton* FChooseFile;
    QRadioButton* FCopyPaste;
    QLineEdit* FSource;
    QPushButton* FBrowse;
    QPlainTextEdit* FMemo;
};

/// The releases of the source with their ticks.
class TSelectPage final : public TImportPageWidget {
public:
    TSelectPage(TKRNImportForm& form, QWidget* parent);
    void Refresh() override;
    QString Hint(const QString& text) const override;
    QWidget* FirstWidget() override;

private:
    void TickShown(bool ticked);
    void TickSelected(bool ticked);
    bool eventFilter(QObject* watched, QEvent* event) override;

    TImportRowsModel* FModel;
    QSortFilterProxyModel* FFiltered;
    QTreeView* FList;
    QList<QPushButton*> FTickButtons;
    QProgressBar* FBar;
    QLabel* FError;
    TLogView* FNotes; // what the listing passed over
    QLabel* FTicked;
};

/// What is being imported, how far it is, and the log.
class TProgressPage final : public TImportPageWidget {
public:
    TProgressPage(TKRNImportForm& form, QWidget* parent);
    void Refresh() override;
    QWidget* FirstWidget() override;

private:
    QLabel* FText;
    QProgressBar* FBar;
    QLabel* FFigures;
    QLabel* FNotes;
    TLogView* FLog;
    QPushButton* FCopy;
};

/// What came of it.
class TFinishPage final : public TImportPageWidget {
public:
    TFinishPage(TKRNImportForm& form, QWidget* parent);
    void Refresh() override;

private:
    QLabel* FText;
};

} // namespace Kestrune
