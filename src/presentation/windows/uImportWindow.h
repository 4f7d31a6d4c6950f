// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "frmImport.h"
#include "uImportPageTable.h"

#include <QDialog>
#include <QHash>
#include <QPointer>
#include <QTimer>

class QLabel;
class QPushButton;
class QStackedWidget;

namespace Kestrune {

class TImportPageWidget;
class TStepRail;

/// The import wizard: a rail with the steps, one page at a time, Cancel, Back and Next. It shows what TKRNImportForm
/// holds and decides nothing.
class TImportWindow : public QDialog {
    Q_OBJECT
public:
    /// The form may go before the window; the table outlives it.
    TImportWindow(TKRNImportForm& form, QWidget* parent, std::span<const TImportPageRow> pages = ImportPages());
    ~TImportWindow() override;

protected:
    void reject() override;
    void paintEvent(QPaintEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void BuildButtons();
    const TImportPageRow* RowOf(const TImportPage& page) const;
    TImportPageWidget* WidgetOf(const TImportPage& page);
    void ShowPage();
    void UpdateState();
    void ShowBusy(bool busy);

    QPointer<TKRNImportForm> FForm;
    std::span<const TImportPageRow> FPages;
    QHash<TImportPage, TImportPageWidget*> FWidgets; // those that were shown
    TStepRail* FRail;
    QLabel* FTitle;
    QLabel* FHint;
    QStackedWidget* FStack;
    QPushButton* FCancel;
    QPushButton* FBack;
    QPushButton* FNext;
    QTimer FClock; // elapsed and remaining time move on between the worker's reports
    bool FBusy = false;
};

} // namespace Kestrune
