// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "frmMultiEdit.h"
#include "frmSorting.h"
#include "uDialog.h"

class QGridLayout;
class QLabel;
class QListWidget;
class QPlainTextEdit;
class QScrollArea;

namespace Kestrune {

class TActionSet;
class TAlbumTable;
class TDataModuleMain;
class TFieldEditor;
class TKRNMainForm;

/// Sorting by several columns: a row for each, first one first.
class TSortDialog : public TDialog {
    Q_OBJECT
public:
    /// The sort form outlives the dialog; accepting it leaves the levels there.
    TSortDialog(TSortForm& sort, QWidget* parent);

    void accept() override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Rebuild();
    void Move(int direction);
    /// The level on which the buttons act: its radio button is set, the arrows follow.
    void SetCurrent(int row);

    TSortForm& FSort;
    QWidget* FRows;
    QGridLayout* FGrid;
    QLabel* FMessage;
    int FCurrent = 0;
    QPushButton* FUp;
    QPushButton* FDown;
    QPushButton* FDelete;
};

/// Fields and the values that all selected rows shall get.
class TMultiEditDialog : public TDialog {
    Q_OBJECT
public:
    TMultiEditDialog(TMultiEditForm& edit, TDataModuleMain& dataModule, QWidget* parent);

    void accept() override;

private:
    void Rebuild();
    void AddRow(int row);

    TMultiEditForm& FEdit;
    TDataModuleMain& FData;
    QWidget* FRows;
    QGridLayout* FGrid;
    QLabel* FMessage;
    QList<TFieldEditor*> FEditors;
};

/// The columns of a table: which are shown and in which order. Acts at once.
class TColumnsDialog : public TDialog {
    Q_OBJECT
public:
    TColumnsDialog(TAlbumTable& table, QWidget* parent);

private:
    void Fill(const QString& text);

    TAlbumTable& FTable;
    QListWidget* FList;
};

/// One suggestion list as lines of text.
class TDictionaryDialog : public TDialog {
    Q_OBJECT
public:
    TDictionaryDialog(const QString& caption, const QString& text, const QString& defaultText, QWidget* parent);
    /// The items, with CR LF between them.
    QString Text() const;

private:
    QPlainTextEdit* FLines;
};

/// All commands that can be given now, found by their captions.
class TCommandPalette : public TDialog {
    Q_OBJECT
public:
    TCommandPalette(const TActionSet& actions, QWidget* parent);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Fill(const QString& text);
    /// To the next command that is possible now.
    void Step(int direction);
    void Run();

    const TActionSet& FActions;
    QListWidget* FList;
};

/// Asks for a name; empty when the user cancelled.
QString AskName(const QString& title, const QString& label, const QStringList& known, QWidget* parent);

} // namespace Kestrune
