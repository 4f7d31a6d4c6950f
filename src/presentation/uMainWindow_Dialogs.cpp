// SPDX-License-Identifier: GPL-3.0-or-later
#include "uMainWindow.h"

namespace Kestrune {

void TMainWindow::OpenDialog(TMainDialog) {}
void TMainWindow::Export(const QString&) {}

} // namespace Kestrune
