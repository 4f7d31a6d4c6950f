// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>

#include <optional>
#include <stop_token>

namespace Kestrune {

class TTHCustomSettings;

/// What the updates of the service package keep in the settings.
struct TServiceUpdates {
    int Version = -1;       ///< of the installed package
    QDateTime LastUpdated;  ///< of the last finished check or update; invalid: never
    bool AutoUpdate = true; ///< checks at the start of the program
    int Interval = 0;       ///< 0 at each start, 1 three days, 2 weekly, 3 monthly

    static TServiceUpdates Read(const TTHCustomSettings& store);
};

void WriteServicesVersion(TTHCustomSettings& store, int version);
void WriteLastUpdated(TTHCustomSettings& store, const QDateTime& when);

/// True when the check at the start has to run.
bool IsServicesUpdateDue(const TServiceUpdates& updates, const QString& definitionsPath, const QDateTime& now);

/// The number in a published version file; none when it is no whole number.
std::optional<int> ParseServicesVersion(const QString& text);

/// Addresses of the two published files.
QString ServicesVersionURL(const QString& endpoint);
QString ServicesZipURL(const QString& endpoint);

/// Puts a package in the place of the folder's content, as a whole or not at all. It is unpacked beside the folder and
/// looked at first: entries that lead out of the folder, links and sizes beyond all reason refuse it, and so does
/// CheckServicePackage. A folder around all of it is taken off. Files that the package does not have stay. `version` is
/// kept with it, -1 when it is unknown. False with a sentence in `error`. `stop` is looked at until it is put in place.
bool InstallServicePackage(const QString& zipPath, const QString& folder, int version, QString& error,
                           const std::stop_token& stop = {});

/// True when the package in a folder can work: its definitions can be read, a service takes part in a search, and every
/// stylesheet that they name is there and compiles. Blocks for as long as these take, at most some seconds.
bool CheckServicePackage(const QString& folder, QString& error, const std::stop_token& stop = {});

} // namespace Kestrune
