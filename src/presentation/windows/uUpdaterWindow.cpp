// SPDX-License-Identifier: GPL-3.0-or-later
#include "uUpdaterWindow.h"

#include "frmServiceUpdater.h"
#include "uTHStrings.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace Kestrune {

using namespace Qt::StringLiterals;

TUpdaterWindow::TUpdaterWindow(TServiceUpdaterForm& form, QWidget* parent)
    : TDialog(u"TServiceUpdaterForm"_s, GetLanguageString(u"cSUpdatesCaption"_s), parent),
      FForm(form),
      FLabel(new QLabel(this)),
      FBar(new QProgressBar(this))
{
    FBar->setTextVisible(false);
    FBar->setAccessibleName(windowTitle());
    Body()->addWidget(FLabel);
    Body()->addWidget(FBar);
    auto* cancel = new QPushButton(GetLanguageString(u"cSUpdatesCancelButton"_s), this);
    connect(cancel, &QPushButton::clicked, this, &TUpdaterWindow::reject);
    auto* row = new QHBoxLayout;
    row->addStretch(1);
    row->addWidget(cancel);
    Body()->addLayout(row);
    connect(&form, &TServiceUpdaterForm::updated, this, &TUpdaterWindow::ShowState);
    connect(&form, &TServiceUpdaterForm::closed, this, [this] { done(QDialog::Accepted); });
    SetFirstSize({420, 140});
    ShowState();
}

void TUpdaterWindow::ShowState()
{
    FLabel->setText(FForm.LabelText());
    FBar->setMaximum(FForm.ProgressMaximum());
    FBar->setValue(FForm.ProgressPosition());
}

// The run ends by itself once it was cancelled, and the window with it.
void TUpdaterWindow::reject() { FForm.btnCancelClick(); }

} // namespace Kestrune
