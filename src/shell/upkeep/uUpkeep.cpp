// SPDX-License-Identifier: GPL-3.0-or-later
#include "uUpkeep.h"

#include "uColumnNames.h"
#include "uDefaults.h"
#include "uFieldEditors.h"
#include "uFilePath.h"
#include "uGuardedFiles.h"
#include "uHttpClient.h"
#include "uLists.h"
#include "uObjs.h"
#include "uPrompt.h"
#include "uRegistryFile.h"
#include "uShell.h"
#include "uTHStrings.h"

#include <QFile>
#include <QSaveFile>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int ServeEvents = 10; // rows between turns of the event loop

TFileDialogRequest SettingsDialog(const QString& titleKey)
{
    TFileDialogRequest request;
    request.Title = GetLanguageString(titleKey);
    request.Filter = GetLanguageString(u"cSRegistryFileFilter"_s);
    request.DefaultExtension = u"reg"_s;
    request.FileName = u"KRN_Settings.reg"_s;
    return request;
}

QString SettingsKey()
{
    const TOEMInfo& oem = Defaults().OEM;
    return u"HKEY_CURRENT_USER\\Software\\%1\\%2"_s.arg(oem.Company, oem.Product);
}

} // namespace

TUpkeep::TUpkeep(TShell& shell, TLists& lists) : FShell(shell), FLists(lists) { BindActions(); }

void TUpkeep::BindActions()
{
    TActionList& actions = FShell.Actions();
    const auto canWork = [this] { return FShell.CanWork(); };
    const auto canWrite = [this] { return FShell.CanWrite(); };
    const auto idle = [this] { return !FShell.Busy(); };
    actions.Bind(
        u"actRefresh"_s,
        [this] {
            FShell.Data().RefreshAll();
            Q_EMIT refreshed();
        },
        canWork);
    actions.Bind(
        u"actVacuumDB"_s,
        [this] {
            if (!FShell.Prompt().AskYesNo(GetLanguageString(u"cSConfirmOptimization"_s)))
                return;
            FShell.Data().VacuumDB();
            FShell.Tell(bkDone, GetLanguageString(u"cSOptimizationDone"_s));
        },
        canWrite);
    actions.Bind(
        u"actRegenerateThumbnails"_s, [this] { RegenerateThumbnails(); }, canWrite);
    FShell.BindWindow(u"actExecSQL"_s, canWork);
    FShell.BindWindow(u"actOptions"_s, idle);
    actions.Bind(
        u"actBackupSettings"_s, [this] { BackupSettings(); }, idle);
    actions.Bind(
        u"actRestoreSettings"_s, [this] { RestoreSettingsBackup(); }, idle);
    actions.Bind(
        u"actToggleDebug"_s, [this] { Q_EMIT debugWindowToggled(); }, [this] { return FDebugMode; });
    const std::pair<QString, QString> dictionaries[] = {
        {u"actEditMediaTypes"_s, Col::MediaType},   {u"actEditGenres"_s, Col::Genre},
        {u"actEditConditions"_s, Col::Condition},   {u"actEditPackaging"_s, Col::Packaging},
        {u"actEditStatuses"_s, Col::Status},        {u"actEditChannels"_s, Col::Channels},
        {u"actEditInstruments"_s, Col::Instrument}, {u"actEditLocations"_s, Col::Location}};
    for (const auto& [action, column] : dictionaries)
        actions.Bind(action, [this, column = column] { Q_EMIT dictionaryRequested(column); });
}

void TUpkeep::RegenerateThumbnails()
{
    if (!FShell.Prompt().AskYesNo(GetLanguageString(u"cSConfirmRegenerateThumbs"_s)))
        return;
    int made = 0;
    FShell.RunJob(GetLanguageString(u"cSactRegenerateThumbnails"_s), [&](const TShell::TJobProgress& progress) {
        made = FShell.Data().RegenerateThumbnails(
            [&](int row, int count) { return (row % ServeEvents != 0 && row != count) || progress(row, count); });
    });
    FLists.Releases().List().Refresh();
    Q_EMIT thumbnailsChanged();
    FShell.Tell(FShell.Cancelled() ? bkWarning : bkDone, GetLanguageString(u"cSThumbnailsMade"_s).arg(made), {});
}

bool TUpkeep::IsOpenCollection(const QString& path)
{
    if (!IsGuardedFile(TextToPath(path)))
        return false;
    FShell.Tell(bkError, GetLanguageString(u"cSFileIsOpen"_s), path);
    return true;
}

void TUpkeep::BackupSettings()
{
    const QString path = FShell.Prompt().AskSaveFile(SettingsDialog(u"cSactBackupSettings"_s));
    if (path.isEmpty() || IsOpenCollection(path))
        return;
    Q_EMIT settingsNeeded();
    if (HasSettingsStore())
        WriteSettings(Defaults(), SettingsStore());
    const TSettingValues values = HasSettingsStore() ? SettingsStore().AllValues() : TSettingValues();
    if (values.empty()) {
        FShell.Prompt().ShowError(GetLanguageString(u"cSNoSettings"_s));
        return;
    }
    QSaveFile file(path);
    const QByteArray bytes = WriteRegistryFile(SettingsKey(), values);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
        FShell.Tell(bkError, GetLanguageString(u"cSFileCannotBeWritten"_s).replace(u"%s"_s, path), file.errorString());
        return;
    }
    FShell.Tell(bkDone, GetLanguageString(u"cSSettingsSaved"_s), path);
}

void TUpkeep::RestoreSettingsBackup()
{
    const QString path = FShell.Prompt().AskOpenFile(SettingsDialog(u"cSactRestoreSettings"_s));
    if (path.isEmpty() || !HasSettingsStore() || IsOpenCollection(path))
        return;
    QFile file(path);
    const auto values = file.open(QIODevice::ReadOnly) ? ReadRegistryFile(file.readAll(), SettingsKey()) : std::nullopt;
    if (!values || values->empty()) {
        FShell.Tell(bkError, GetLanguageString(u"cSNoSettingsFile"_s), path);
        return;
    }
    SettingsStore().TakeValues(*values);
    const QString open = Defaults().DBPath;
    ReloadSettings();
    Defaults().DBPath = open; // the collection that is open stays
    Q_EMIT settingsReplaced();
    ApplySettings();
    FShell.Tell(bkDone, GetLanguageString(u"cSSettingsRestored"_s), GetLanguageString(u"cSSettingsAfterRestart"_s));
}

void TUpkeep::ApplySettings()
{
    KeepSetting("DefaultDBFolder");
    SetNetworkSettings(NetworkSettingsFrom(Defaults()));
    PictureUserAgents() = {ServiceAgent(Defaults())};
    FShell.Data().ApplyArticleSettings();
    for (TListSession* list : FLists.All())
        if (list->List().Active())
            list->List().ApplyFilter();
    Q_EMIT settingsApplied();
    FShell.Actions().Update();
}

void TUpkeep::SetDictionary(const QString& column, const QString& text)
{
    const PDict dict = DictionaryOf(column);
    if (!dict)
        return;
    dict->Text = text;
    Q_EMIT settingsApplied();
}

} // namespace Kestrune
