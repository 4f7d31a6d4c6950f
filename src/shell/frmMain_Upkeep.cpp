// SPDX-License-Identifier: GPL-3.0-or-later
#include "frmMain.h"
#include "uDebugLog.h"
#include "uDefaults.h"
#include "uFieldEditors.h"
#include "uFilePath.h"
#include "uHttpClient.h"
#include "uPrompt.h"
#include "uRegistryFile.h"
#include "uTHStrings.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QScopeGuard>

#include <filesystem>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int ServeEvents = 10; // rows between turns of the event loop

TFileDialogRequest DatabaseDialog(const QString& titleKey)
{
    TFileDialogRequest request;
    request.Title = GetLanguageString(titleKey);
    request.Filter = GetLanguageString(u"cSDatabaseFileFilter"_s);
    request.DefaultExtension = u"db"_s;
    request.Folder = Defaults().DefaultDBFolder;
    return request;
}

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

bool SameFile(const QString& a, const QString& b)
{
    std::error_code error;
    return std::filesystem::equivalent(TextToPath(a), TextToPath(b), error);
}

} // namespace

void TKRNMainForm::NewDatabase()
{
    FData.CommitTransaction();
    const QString path = FPrompt.AskSaveFile(DatabaseDialog(u"cSactNewDatabase"_s));
    if (path.isEmpty())
        return;
    FIndex->Close();
    try {
        FData.CreateNewDB(path, FData.GetNewDatabaseSQL());
    } catch (const EDatabaseError&) {
        AfterCollectionChange(); // it may have closed the one that was open
        throw;
    }
    OpenCollection(path);
}

void TKRNMainForm::OpenDatabase()
{
    const QString path = FPrompt.AskOpenFile(DatabaseDialog(u"cSactOpenDatabase"_s));
    if (path.isEmpty())
        return;
    FData.CommitTransaction();
    OpenCollection(path);
}

void TKRNMainForm::SaveDatabaseAs()
{
    TFileDialogRequest request = DatabaseDialog(u"cSactSaveDatabaseAs"_s);
    request.FileName = QFileInfo(FData.CurrentFile()).fileName();
    const QString path = FPrompt.AskSaveFile(request);
    if (path.isEmpty())
        return;
    FData.CommitTransaction();
    if (SameFile(path, FData.CurrentFile()))
        return;
    FData.CopyTo(path);
    OpenCollection(path);
}

void TKRNMainForm::RunJob(const QString& text, const std::function<void(const TJobProgress&)>& work)
{
    if (FWorking)
        return;
    FWorking = true;
    FCancelled = false;
    FActions.SetBlocked(true);
    Q_EMIT jobProgressed(text, 0, 1);
    const auto finish = qScopeGuard([this] {
        FWorking = false;
        Q_EMIT jobProgressed({}, 0, 0);
        FActions.SetBlocked(false);
    });
    work([&](int value, int maximum) {
        Q_EMIT jobProgressed(text, value, maximum);
        QCoreApplication::processEvents();
        return !FCancelled;
    });
}

void TKRNMainForm::RegenerateThumbnails()
{
    if (!FPrompt.AskYesNo(GetLanguageString(u"cSConfirmRegenerateThumbs"_s)))
        return;
    int made = 0;
    RunJob(GetLanguageString(u"cSactRegenerateThumbnails"_s), [&](const TJobProgress& progress) {
        made = FData.RegenerateThumbnails(
            [&](int row, int count) { return (row % ServeEvents != 0 && row != count) || progress(row, count); });
    });
    FData.qReleasesMain.Refresh();
    Q_EMIT thumbnailsChanged();
    RefreshDetail();
    Q_EMIT barRaised(FCancelled ? bkWarning : bkDone, GetLanguageString(u"cSThumbnailsMade"_s).arg(made), {});
}

void TKRNMainForm::BackupSettings()
{
    const QString path = FPrompt.AskSaveFile(SettingsDialog(u"cSactBackupSettings"_s));
    if (path.isEmpty())
        return;
    SaveSettings();
    if (HasSettingsStore())
        WriteSettings(Defaults(), SettingsStore());
    const TSettingValues values = HasSettingsStore() ? SettingsStore().AllValues() : TSettingValues();
    if (values.empty()) {
        FPrompt.ShowError(GetLanguageString(u"cSNoSettings"_s));
        return;
    }
    QSaveFile file(path);
    const QByteArray bytes = WriteRegistryFile(SettingsKey(), values);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
        Q_EMIT barRaised(bkError, GetLanguageString(u"cSFileCannotBeWritten"_s).replace(u"%s"_s, path),
                         file.errorString());
        return;
    }
    Q_EMIT barRaised(bkDone, GetLanguageString(u"cSSettingsSaved"_s), path);
}

void TKRNMainForm::RestoreSettingsBackup()
{
    const QString path = FPrompt.AskOpenFile(SettingsDialog(u"cSactRestoreSettings"_s));
    if (path.isEmpty() || !HasSettingsStore())
        return;
    QFile file(path);
    const auto values = file.open(QIODevice::ReadOnly) ? ReadRegistryFile(file.readAll(), SettingsKey()) : std::nullopt;
    if (!values || values->empty()) {
        Q_EMIT barRaised(bkError, GetLanguageString(u"cSNoSettingsFile"_s), path);
        return;
    }
    SettingsStore().TakeValues(*values);
    const QString open = Defaults().DBPath;
    ReloadSettings();
    Defaults().DBPath = open; // the collection that is open stays
    LoadSettings();
    ApplySettings();
    Q_EMIT barRaised(bkDone, GetLanguageString(u"cSSettingsRestored"_s),
                     GetLanguageString(u"cSSettingsAfterRestart"_s));
}

void TKRNMainForm::ApplySettings()
{
    KeepSetting("DefaultDBFolder");
    SetNetworkSettings(NetworkSettingsFrom(Defaults()));
    FData.ApplyArticleSettings();
    FData.qReleasesMain.ApplyFilter();
    if (FData.qTracksAll.Active())
        FData.qTracksAll.ApplyFilter();
    Q_EMIT settingsApplied();
    Q_EMIT paneChanged();
    RefreshDetail();
    FActions.Update();
}

void TKRNMainForm::SetDictionary(const QString& column, const QString& text)
{
    const PDict dict = DictionaryOf(column);
    if (!dict)
        return;
    dict->Text = text;
    Q_EMIT settingsApplied();
}

} // namespace Kestrune
