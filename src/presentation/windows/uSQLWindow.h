// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "frmExecSQL.h"
#include "uDialog.h"

class QLabel;
class QPlainTextEdit;
class QTableWidget;

namespace Kestrune {

/// The window for SQL: statements above, their result in a grid below, read-only unless the user switches writing on.
class TSQLWindow : public TDialog {
    Q_OBJECT
public:
    TSQLWindow(TExecSQLForm& form, QWidget* parent);
    ~TSQLWindow() override;

Q_SIGNALS:
    /// Statements wrote to the collection.
    void written();

protected:
    void reject() override;

private:
    void Run();
    void Show(const TSQLResult& result);
    void Copy();

    TExecSQLForm& FForm;
    QPlainTextEdit* FSQL;
    QTableWidget* FGrid;
    QLabel* FMessage;
    QPushButton* FRun;
    bool FRunning = false;
    bool FStop = false;
};

} // namespace Kestrune
