// SPDX-License-Identifier: GPL-3.0-or-later
// Core lies below the database: this file must not compile.
#include "dmMain.h"
