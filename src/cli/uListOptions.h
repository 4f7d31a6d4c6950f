// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCommandLineParser>

namespace Kestrune {

class TDataModuleMain;
class TListDataset;

/// The options that choose a list, narrow it down and put it in order: --tracks --search --by --letter --status --sort
/// --group.
void AddListOptions(QCommandLineParser& parser);

/// Opens the list that the options ask for; throws EUsageError for fields that are not there.
TListDataset& OpenList(const QCommandLineParser& parser, TDataModuleMain& data);

} // namespace Kestrune
