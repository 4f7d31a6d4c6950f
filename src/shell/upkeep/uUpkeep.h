// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>

namespace Kestrune {

class TLists;
class TShell;

/// What keeps the collection and the program in order: refreshing, optimizing, thumbnails, the user's SQL, options,
/// lists of suggestions, copies of the settings. Binds these actions.
class TUpkeep : public QObject {
    Q_OBJECT

public:
    /// Both outlive it.
    TUpkeep(TShell& shell, TLists& lists);

    /// After the options window: what was changed in the settings acts.
    void ApplySettings();
    /// Stores a suggestion list and fills all editors of its kind anew.
    void SetDictionary(const QString& column, const QString& text);
    void SetDebugMode(bool on) { FDebugMode = on; }

Q_SIGNALS:
    /// All lists were read anew.
    void refreshed();
    /// The settings of the windows are to be written before they are copied, or were replaced by a copy.
    void settingsNeeded();
    void settingsReplaced();
    /// Articles, custom fields or lists changed: what shows them reads them anew.
    void settingsApplied();
    /// The same releases have other thumbnails.
    void thumbnailsChanged();
    void dictionaryRequested(const QString& column);
    void debugWindowToggled();

private:
    void BindActions();
    void RegenerateThumbnails();
    /// True, and told, for a file that must be neither read nor replaced while it is open.
    bool IsOpenCollection(const QString& path);
    void BackupSettings();
    void RestoreSettingsBackup();

    TShell& FShell;
    TLists& FLists;
    bool FDebugMode = false;
};

} // namespace Kestrune
