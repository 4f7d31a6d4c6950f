// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "frmImport.h"

#include <span>

class QWidget;

namespace Kestrune {

class TImportPageWidget;

/// One page of the import wizard.
struct TImportPageRow {
    TImportPage Page;
    // Keys of its texts: the heading, the name in the list of steps, one sentence (or empty).
    QString TitleKey, StepKey, HintKey;
    TImportPageWidget* (*Make)(TKRNImportForm& form, QWidget* parent);
};

/// All pages, those of single sources as well; which are shown, and in which order, says the form.
std::span<const TImportPageRow> ImportPages();

} // namespace Kestrune
