// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace Kestrune {

class TPrompt;
class TSQLiteConnection;

/// What identifies a collection in its file header (bytes 68 to 71).
constexpr int CollectionApplicationId = 0x4B524E31;
/// The schema version of new files: the highest that an upgrade script leads to.
int CurrentSchemaVersion();

/// A script of the collection by its name: a file beside the program wins over the text that is compiled in.
QString DatabaseScript(const QString& name);

/// Version number of a collection: 0 when its text is no number.
int VersionOf(TSQLiteConnection& connection);

/// Throws when the file names no version: there is no row, or it is empty, or beyond any number that there will be.
void CheckVersion(TSQLiteConnection& connection);

/// Rewrites the file without free space; an old one also gains incremental vacuum and the application id.
void Vacuum(TSQLiteConnection& connection);

/// Raises an open file to the current version, one step after the other, each in one transaction. Operations throw
/// EDatabaseError.
class TSchemaUpgrade {
public:
    /// Both outlive it.
    TSchemaUpgrade(TSQLiteConnection& connection, TPrompt& prompt) : FConnection(connection), FPrompt(prompt) {}

    /// Asks where the user has a say, and puts a copy of an old file beside it; false when the user declined.
    bool Prepare();
    /// Runs the steps; a failure names the copy with the old state.
    void Run();

private:
    void CopyFile(int version);

    TSQLiteConnection& FConnection;
    TPrompt& FPrompt;
    QString FCopy; // path, empty without one
};

} // namespace Kestrune
