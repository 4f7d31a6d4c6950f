// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uDictionaries.h"
#include "uOEM.h"
#include "uTHSettings.h"

#include <QString>
#include <QStringList>

#include <array>
#include <memory>
#include <span>
#include <variant>

namespace Kestrune {

/// What a user-defined field holds.
enum class TCustomFieldType : quint8 { cftText, cftInteger, cftFloat, cftCurrency, cftBoolean };
using enum TCustomFieldType;

/// One user-defined field of releases or tracks; slot 0 is the column `Custom1`.
struct TCustomFieldDef {
    QString DisplayName;
    int DataType = 0; ///< a TCustomFieldType; other numbers count as text
    bool Enabled = false;
};

/// The ten slots of one table.
struct TCustomFieldDefs {
    QString Prefix; ///< "Releases" or "Tracks"
    std::array<TCustomFieldDef, 10> Slots;

    /// The key stem of a slot, as in "Releases.CustomField0".
    QString Stem(int slot) const;
};

/// What a new release starts with where its source says nothing.
struct TDefaultValues {
    QString Channels, Condition, MediaCondition, Genre, Location, MediaType, Status, Country, Spars, Currency,
        PurchaseStore;
    int Quantity = 0;
    int Rating = 0; ///< half stars
    int Owner = 0;
    int BPM = 0;
    bool IsLive = false;
    bool IsRare = false;
};

/// All settings as plain variables: read once at start, written once at the end, changed by anyone in between.
/// Main thread only; a worker takes a copy of what it needs before it starts.
struct TDefaults {
    QString DBPath, Language;
    bool NonClientDrawing = false;
    int ThemeIndex = 0, ColorSchemeAccentIndex = 0;
    bool DesktopIcons = false;           ///< icons of the desktop's theme where it has them
    int LargeWidth = 0, LargeHeight = 0; ///< thumbnail size in pixels
    QString ProxyHost;
    int ProxyPort = 0;
    QString ProxyUsername, ProxyPassword;
    int InetAccess = 0; ///< 0 through ProxyHost where one is given, 1 always directly
    bool VerifyCertificates = false;
    int SearchByBarcode = 0, SearchByCatalogNo = 0, SearchByArtistRelease = 0, SearchByCD = 0;
    QString CurrencySymbol;
    int InfoPaneLocation = 0; ///< 0 bottom, 1 right, 2 top
    int CurrentView = 0;      ///< 0 thumbs, 1 cards, 2 shelf, 3 albums, 4 tracks
    int MainFormLeft = 0, MainFormTop = 0, MainFormWidth = 0, MainFormHeight = 0;
    bool MainFormMaximized = false;
    int ThumbSize = 0; ///< 0 small, 1 medium, 2 large
    int FrameWidth = 0, FrameHeight = 0;
    QString DefaultCD;
    bool FrameClosed = false;
    QString DiscogsCountry;
    int DiscogsMediaType = 0, DiscogsResultsPerPage = 0;
    QString MusicBrainzCountry;
    int MusicBrainzMediaType = 0, MusicBrainzResultsPerPage = 0;
    QString ITunesCountry;      ///< of the shop that is asked; empty: that of the locale
    QString ServicesContact;    ///< mail or web address that services are told; empty: that of the product, if any
    bool AutoUpdate = false;    ///< the service package is looked after at the start
    int AutoUpdateInterval = 0; ///< 0 each start, 1 three days, 2 weekly, 3 monthly
    QStringList RecentDBs;
    QString DefaultDBFolder;
    TDict Conditions, MediaTypes, Channels, Locations, Genres, Statuses, Instruments, Packaging;
    bool CustomFieldsEnabled = false;
    bool MP3ScanFindCovers = false, MP3ScanBackCover = false, MP3ScanMediaCover = false, MP3ScanOtherImages = false;
    bool ArticlesEnabled = false;
    int ArticlesDisplayMode = 0;
    bool ArticlesSortWithout = false;
    QStringList ArticlesList;
    bool ArticlesFieldArtist = false, ArticlesFieldReleaseName = false;
    bool PlayerTaskbarButtons = false, PlayerTaskbarProgress = false, PlayerKeyboardMediaKeys = false;
    bool PlayerShuffle = false, PlayerRepeat = false;
    TDefaultValues Values;
    TCustomFieldDefs ReleaseFields{QStringLiteral("Releases"), {}}, TrackFields{QStringLiteral("Tracks"), {}};

    /// The identity of the product; read by LoadSettings before the settings.
    TOEMInfo OEM;
    /// $XDG_DATA_HOME/Company/Product
    QString DataFolder;
    /// The service definitions of this user.
    QString InfoGrabberPath;
    /// Where a broken settings file was put at start, or empty; the user is told once.
    QString BrokenSettingsFile;
};

/// One row of the settings: its key, the variable behind it, the default and whether SaveSettings writes it.
struct TSettingDef {
    using TVariable =
        std::variant<int TDefaults::*, bool TDefaults::*, QString TDefaults::*, int TDefaultValues::*,
                     bool TDefaultValues::*, QString TDefaultValues::*, TDict TDefaults::*, QStringList TDefaults::*>;
    const char* Key;
    TVariable Variable;
    std::variant<int, bool, const char16_t*> Default; ///< unused for dictionaries, which bring their own
    bool Saved = true;
};

/// All settings but the custom field definitions, in the order in which they are read and written.
std::span<const TSettingDef> SettingDefs();

/// The settings of the process. Default values until LoadSettings has run.
TDefaults& Defaults();

/// As the program names itself to servers: the agent of the product, with the user's contact where one is given.
QString ServiceAgent(const TDefaults& settings);

/// A fresh set of settings with the default of every key.
TDefaults MakeDefaults();

/// Reads every key from the store; absent ones take their default.
TDefaults ReadSettings(const TTHCustomSettings& store);

/// Writes the keys that the load step reads, but those that belong to others. First drops recent files that are gone.
void WriteSettings(TDefaults& settings, TTHCustomSettings& store);

/// Start of the process: reads the product identity, opens the store, reads all settings, seeds the service
/// definitions and ensures the per-user data folder. Loads the language, falling back to the built-in English.
void LoadSettings();

/// Loads the language of the settings, falling back to the built-in English. What was made before keeps its texts.
void ApplyLanguage();

/// Writes all settings to the store of the process and the store to its file; false when the file was not written.
bool SaveSettings();

/// Writes one setting by its key now: for those that the user sets and SaveSettings leaves alone.
void KeepSetting(const char* key);

/// Reads all settings of the store of the process again, as after a restored backup. What belongs to the installation
/// stays.
void ReloadSettings();

/// The store of the process; only where there is one.
TTHIniSettings& SettingsStore();
/// True from LoadSettings or OpenSettingsStore on.
bool HasSettingsStore();
/// Makes a file the store of the process, without reading the settings from it. An empty path leaves none; what was not
/// written is forgotten.
void OpenSettingsStore(const QString& path);

/// Puts a path at the top of the recent list, once, and cuts the list to 8 entries.
void AddRecentDB(QStringList& recent, const QString& path);

} // namespace Kestrune
