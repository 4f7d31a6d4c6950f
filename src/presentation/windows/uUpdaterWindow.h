// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uDialog.h"

class QLabel;
class QProgressBar;

namespace Kestrune {

class TServiceUpdaterForm;

/// Shows how the service package is being updated, with Cancel. Closes itself when that is over.
class TUpdaterWindow : public TDialog {
    Q_OBJECT
public:
    /// The form outlives the window.
    TUpdaterWindow(TServiceUpdaterForm& form, QWidget* parent);

protected:
    void reject() override;

private:
    void ShowState();

    TServiceUpdaterForm& FForm;
    QLabel* FLabel;
    QProgressBar* FBar;
};

} // namespace Kestrune
