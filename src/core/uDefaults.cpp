// SPDX-License-Identifier: GPL-3.0-or-later
#include "uDefaults.h"

#include "uArticles.h"
#include "uDebugLog.h"
#include "uFilePath.h"
#include "uProgramFiles.h"
#include "uServiceFiles.h"
#include "uTHStrings.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>

#include <algorithm>
#include <filesystem>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

using D = TDefaults;
using V = TDefaultValues;

constexpr TSettingDef SettingRows[] = {
    {"DBPath", &D::DBPath, u""},
    {"Language", &D::Language, u"English"},
    {"NonClientDrawing", &D::NonClientDrawing, true},
    {"ThemeIndex", &D::ThemeIndex, 4},
    {"ColorSchemeAccentIndex", &D::ColorSchemeAccentIndex, 0},
    {"DesktopIcons", &D::DesktopIcons, false},
    {"LargeWidth", &D::LargeWidth, 250},
    {"LargeHeight", &D::LargeHeight, 250},
    {"ProxyHost", &D::ProxyHost, u""},
    {"ProxyPort", &D::ProxyPort, 0},
    {"ProxyUsername", &D::ProxyUsername, u""},
    {"ProxyPassword", &D::ProxyPassword, u""},
    {"InetAccess", &D::InetAccess, 0},
    {"VerifyCertificates", &D::VerifyCertificates, false},
    {"SearchByBarcode", &D::SearchByBarcode, 3},
    {"SearchByCatalogNo", &D::SearchByCatalogNo, 3},
    {"SearchByArtistRelease", &D::SearchByArtistRelease, 1},
    {"SearchByCD", &D::SearchByCD, 3},
    {"CurrencySymbol", &D::CurrencySymbol, u"$"},
    {"InfoPaneLocation", &D::InfoPaneLocation, 1},
    {"CurrentView", &D::CurrentView, 0},
    {"MainFormLeft", &D::MainFormLeft, 10},
    {"MainFormTop", &D::MainFormTop, 10},
    {"MainFormWidth", &D::MainFormWidth, 1040},
    {"MainFormHeight", &D::MainFormHeight, 830},
    {"MainFormMaximized", &D::MainFormMaximized, true},
    {"ThumbSize", &D::ThumbSize, 1},
    {"FrameWidth", &D::FrameWidth, 450},
    {"FrameHeight", &D::FrameHeight, 250},
    {"DefaultCD", &D::DefaultCD, u""},
    {"FrameClosed", &D::FrameClosed, false},
    {"DiscogsCountry", &D::DiscogsCountry, u""},
    {"DiscogsMediaType", &D::DiscogsMediaType, 0},
    {"DiscogsResultsPerPage", &D::DiscogsResultsPerPage, 20},
    {"MusicBrainzCountry", &D::MusicBrainzCountry, u""},
    {"MusicBrainzMediaType", &D::MusicBrainzMediaType, 0},
    {"MusicBrainzResultsPerPage", &D::MusicBrainzResultsPerPage, 20},
    {"iTunesCountry", &D::ITunesCountry, u""},
    {"ServicesContact", &D::ServicesContact, u""},
    {"Auto Update", &D::AutoUpdate, true},
    {"Auto Update Interval", &D::AutoUpdateInterval, 0},
    {"RecentDBs", &D::RecentDBs, u""},
    {"DefaultDBFolder", &D::DefaultDBFolder, u"", false},
    {"Dict.Conditions", &D::Conditions, u""},
    {"Dict.MediaTypes", &D::MediaTypes, u""},
    {"Dict.Channels", &D::Channels, u""},
    {"Dict.Locations", &D::Locations, u""},
    {"Dict.Genres", &D::Genres, u""},
    {"Dict.Statuses", &D::Statuses, u""},
    {"Dict.Instruments", &D::Instruments, u""},
    {"Dict.Packaging", &D::Packaging, u""},
    {"CustomFieldsEnabled", &D::CustomFieldsEnabled, false},
    {"MP3Scan.FindCoversLocally", &D::MP3ScanFindCovers, true},
    {"MP3Scan.LookForBackCover", &D::MP3ScanBackCover, true},
    {"MP3Scan.LookForMediaCover", &D::MP3ScanMediaCover, true},
    {"MP3Scan.ImportOtherImages", &D::MP3ScanOtherImages, false},
    {"Articles.Enabled", &D::ArticlesEnabled, true},
    {"Articles.DisplayMode", &D::ArticlesDisplayMode, 0},
    {"Articles.SortWithout", &D::ArticlesSortWithout, true},
    {"Articles.List", &D::ArticlesList,
     u"The, A, An, Der, Die, Das, Ein, Eine, Le, La, Les, L', Un, Une, El, Los, Las, Il, Lo, Gli, I, De, Het, Een"},
    {"Articles.FieldArtist", &D::ArticlesFieldArtist, true},
    {"Articles.FieldReleaseName", &D::ArticlesFieldReleaseName, false},
    {"Player.TaskbarButtons", &D::PlayerTaskbarButtons, true},
    {"Player.TaskbarProgress", &D::PlayerTaskbarProgress, true},
    {"Player.KeyboardMediaKeys", &D::PlayerKeyboardMediaKeys, false},
    {"Player.Shuffle", &D::PlayerShuffle, false, false},
    {"Player.Repeat", &D::PlayerRepeat, true, false},
    {"DefaultValues.Channels", &V::Channels, u"Stereo"},
    {"DefaultValues.Condition", &V::Condition, u"As New"},
    {"DefaultValues.MediaCondition", &V::MediaCondition, u"As New"},
    {"DefaultValues.Genre", &V::Genre, u""},
    {"DefaultValues.Location", &V::Location, u""},
    {"DefaultValues.MediaType", &V::MediaType, u""},
    {"DefaultValues.Status", &V::Status, u"In collection"},
    {"DefaultValues.Country", &V::Country, u""},
    {"DefaultValues.Spars", &V::Spars, u"DDD"},
    {"DefaultValues.Currency", &V::Currency, u"$"},
    {"DefaultValues.PurchaseStore", &V::PurchaseStore, u""},
    {"DefaultValues.Quantity", &V::Quantity, 1},
    {"DefaultValues.Rating", &V::Rating, 5},
    {"DefaultValues.Owner", &V::Owner, 0},
    {"DefaultValues.BPM", &V::BPM, 0},
    {"DefaultValues.IsLive", &V::IsLive, false},
    {"DefaultValues.IsRare", &V::IsRare, false},
};

const QString ArticlesKey = QStringLiteral("Articles.List");
constexpr qsizetype MaxRecentDBs = 8;
constexpr int SmallestThumb = 16; // pixels
constexpr int LargestThumb = 2048;
constexpr qsizetype LongestContact = 200;
constexpr int LargestPicture = 512; // MiB of a decoded picture

template <class... Ts>
struct TOverloaded : Ts... {
    using Ts::operator()...;
};
template <class... Ts>
TOverloaded(Ts...) -> TOverloaded<Ts...>;

QString DefaultText(const TSettingDef& def) { return QString::fromUtf16(std::get<const char16_t*>(def.Default)); }

// The kinds that a plain read serves, in the settings themselves and in the default values of fields.
void ReadInto(int& value, const QString& key, const TSettingDef& def, const TTHCustomSettings& store)
{
    value = store.ReadInteger(key, std::get<int>(def.Default));
}
void ReadInto(bool& value, const QString& key, const TSettingDef& def, const TTHCustomSettings& store)
{
    value = store.ReadBoolean(key, std::get<bool>(def.Default));
}
void ReadInto(QString& value, const QString& key, const TSettingDef& def, const TTHCustomSettings& store)
{
    value = store.ReadString(key, DefaultText(def));
}
void ReadInto(TDict& value, const QString& key, const TSettingDef&, const TTHCustomSettings& store)
{
    for (const TDictDef& dict : DictionaryDefs()) {
        if (key == QLatin1StringView(dict.Key))
            value.DefaultText = dict.DefaultText();
    }
    value.Text = store.ReadString(key, value.DefaultText);
}
void ReadInto(QStringList& value, const QString& key, const TSettingDef& def, const TTHCustomSettings& store)
{
    const QString text = store.ReadString(key, DefaultText(def));
    value = key == ArticlesKey ? ParseArticleList(text) : SplitLines(text);
}

void WriteFrom(int value, const QString& key, const TSettingDef& def, TTHCustomSettings& store)
{
    store.WriteInteger(key, std::get<int>(def.Default), value);
}
void WriteFrom(bool value, const QString& key, const TSettingDef& def, TTHCustomSettings& store)
{
    store.WriteBoolean(key, std::get<bool>(def.Default), value);
}
void WriteFrom(const QString& value, const QString& key, const TSettingDef& def, TTHCustomSettings& store)
{
    store.WriteString(key, DefaultText(def), value);
}
void WriteFrom(const TDict& value, const QString& key, const TSettingDef&, TTHCustomSettings& store)
{
    store.WriteString(key, value.DefaultText, value.Text);
}
void WriteFrom(const QStringList& value, const QString& key, const TSettingDef& def, TTHCustomSettings& store)
{
    store.WriteString(key, DefaultText(def), value.join(key == ArticlesKey ? u", "_s : u"\r\n"_s));
}

// Calls `fn` with the variable of the row, wherever it lives.
template <typename TSettings, typename TFunction>
void VisitVariable(const TSettingDef& def, TSettings& settings, const TFunction& fn)
{
    std::visit(TOverloaded{[&](int V::*field) { fn(settings.Values.*field); },
                           [&](bool V::*field) { fn(settings.Values.*field); },
                           [&](QString V::*field) { fn(settings.Values.*field); },
                           [&](auto D::*field) { fn(settings.*field); }},
               def.Variable);
}

void ReadCustomFields(TCustomFieldDefs& defs, const TTHCustomSettings& store)
{
    for (int i = 0; i < static_cast<int>(defs.Slots.size()); ++i) {
        const QString stem = defs.Stem(i);
        TCustomFieldDef& slot = defs.Slots[static_cast<size_t>(i)];
        slot.DisplayName = store.ReadString(stem + u".DisplayName"_s, stem);
        slot.DataType = store.ReadInteger(stem + u".DataType"_s, 0);
        slot.Enabled = store.ReadBoolean(stem + u".Enabled"_s, false);
    }
}

void WriteCustomFields(const TCustomFieldDefs& defs, TTHCustomSettings& store)
{
    for (int i = 0; i < static_cast<int>(defs.Slots.size()); ++i) {
        const QString stem = defs.Stem(i);
        const TCustomFieldDef& slot = defs.Slots[static_cast<size_t>(i)];
        store.WriteString(stem + u".DisplayName"_s, stem, slot.DisplayName);
        store.WriteInteger(stem + u".DataType"_s, 0, slot.DataType);
        store.WriteBoolean(stem + u".Enabled"_s, false, slot.Enabled);
    }
}

// A store that holds nothing: what is read from it are the defaults.
class TEmptyStore final : public TTHCustomSettings {
public:
    int ReadInteger(const QString&, int absent) const override { return absent; }
    QString ReadString(const QString&, const QString& absent) const override { return absent; }
    bool ReadBoolean(const QString&, bool absent) const override { return absent; }
    double ReadDouble(const QString&, double absent) const override { return absent; }
    void WriteInteger(const QString&, int, int) override {}
    void WriteString(const QString&, const QString&, const QString&) override {}
    void WriteBoolean(const QString&, bool, bool) override {}
    void WriteDouble(const QString&, double, double) override {}
};

std::unique_ptr<TTHIniSettings>& ProcessStore()
{
    static std::unique_ptr<TTHIniSettings> store;
    return store;
}

} // namespace

QString TCustomFieldDefs::Stem(int slot) const { return u"%1.CustomField%2"_s.arg(Prefix).arg(slot); }

std::span<const TSettingDef> SettingDefs() { return SettingRows; }

TDefaults& Defaults()
{
    static TDefaults settings = MakeDefaults();
    return settings;
}

QString ServiceAgent(const TDefaults& settings)
{
    // It goes into a header and between brackets there.
    QString contact = settings.ServicesContact.simplified().left(LongestContact);
    contact.removeIf([](QChar c) { return c == u'(' || c == u')' || !c.isPrint(); });
    if (!contact.contains(u'@') && !contact.contains(u'.')) // neither a mail nor a web address
        return settings.OEM.HTTPAgent;
    const QString product = settings.OEM.HTTPAgent.section(u" ("_s, 0, 0);
    return product.isEmpty() ? BuiltInAgent(contact) : u"%1 ( %2 )"_s.arg(product, contact);
}

TDefaults MakeDefaults() { return ReadSettings(TEmptyStore()); }

TDefaults ReadSettings(const TTHCustomSettings& store)
{
    TDefaults settings;
    for (const TSettingDef& def : SettingRows) {
        const QString key = QString::fromLatin1(def.Key);
        VisitVariable(def, settings, [&](auto& variable) { ReadInto(variable, key, def, store); });
    }
    ReadCustomFields(settings.ReleaseFields, store);
    ReadCustomFields(settings.TrackFields, store);
    // A hand-edited size would otherwise ask for thumbnails of any number of bytes.
    settings.LargeWidth = std::clamp(settings.LargeWidth, SmallestThumb, LargestThumb);
    settings.LargeHeight = std::clamp(settings.LargeHeight, SmallestThumb, LargestThumb);
    settings.AutoUpdateInterval = std::clamp(settings.AutoUpdateInterval, 0, 3);
    settings.Values.Rating = std::clamp(settings.Values.Rating, 0, 10);
    return settings;
}

void WriteSettings(TDefaults& settings, TTHCustomSettings& store)
{
    settings.RecentDBs.removeIf([](const QString& path) {
        std::error_code error;
        return !std::filesystem::exists(TextToPath(path), error);
    });
    for (const TSettingDef& def : SettingRows) {
        if (!def.Saved)
            continue;
        const QString key = QString::fromLatin1(def.Key);
        VisitVariable(def, settings, [&](const auto& variable) { WriteFrom(variable, key, def, store); });
    }
    WriteCustomFields(settings.ReleaseFields, store);
    WriteCustomFields(settings.TrackFields, store);
}

void LoadSettings()
{
    QImageReader::setAllocationLimit(LargestPicture);
    const TOEMInfo oem = LoadOEMInfo(OEMInfoPath());
    const QDir configFolder(ConfigFolder(oem.Company, oem.Product));
    OpenSettingsStore(configFolder.filePath(oem.Product + u".ini"_s));

    TDefaults settings = ReadSettings(*ProcessStore());
    settings.OEM = oem;
    settings.BrokenSettingsFile = ProcessStore()->BrokenFile();
    settings.DataFolder = DataFolder(oem.Company, oem.Product);
    const QString services = settings.DataFolder + u"/InfoGrabber"_s;
    SeedServiceDefinitions(ProgramFile(u"InfoGrabber"_s), services);
    QDir().mkpath(services);
    settings.InfoGrabberPath = services + u"/infograbber.xml"_s;
    Defaults() = settings;
    PictureUserAgents() = {ServiceAgent(settings)};

    ApplyLanguage();
}

void ApplyLanguage()
{
    if (!Language().LoadLanguage(Defaults().Language))
        Language().InitLanguageFromResources(u"ENGLISHLANG"_s, u"English"_s);
}

bool SaveSettings()
{
    if (!ProcessStore())
        return false;
    WriteSettings(Defaults(), *ProcessStore());
    if (ProcessStore()->Flush())
        return true;
    DebugLog(u"[Settings] the settings file could not be written"_s);
    return false;
}

void KeepSetting(const char* key)
{
    const auto row =
        std::ranges::find_if(SettingRows, [&](const TSettingDef& def) { return qstrcmp(def.Key, key) == 0; });
    Q_ASSERT(row != std::end(SettingRows));
    if (ProcessStore())
        VisitVariable(*row, Defaults(), [&](const auto& variable) {
            WriteFrom(variable, QString::fromLatin1(row->Key), *row, *ProcessStore());
        });
}

void ReloadSettings()
{
    TDefaults settings = ReadSettings(*ProcessStore());
    settings.OEM = Defaults().OEM;
    settings.DataFolder = Defaults().DataFolder;
    settings.InfoGrabberPath = Defaults().InfoGrabberPath;
    Defaults() = settings;
}

TTHIniSettings& SettingsStore() { return *ProcessStore(); }

bool HasSettingsStore() { return ProcessStore() != nullptr; }

void OpenSettingsStore(const QString& path)
{
    ProcessStore() = path.isEmpty() ? nullptr : std::make_unique<TTHIniSettings>(path);
}

void AddRecentDB(QStringList& recent, const QString& path)
{
    recent.removeAll(path);
    recent.prepend(path);
    recent.resize(std::min(recent.size(), MaxRecentDBs));
}

} // namespace Kestrune
