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

/// Unpacks a package over the folder. All is unpacked aside and looked at first: entries that lead out of the folder,
/// links and sizes beyond all reason refuse the whole package, and nothing is changed. Files that the package does not
/// have stay. False with a sentence in `error`.
/// `stop` is looked at until the first file is moved.
bool InstallServicePackage(const QString& zipPath, const QString& folder, QString& error,
                           const std::stop_token& stop = {});

} // namespace Kestrune
