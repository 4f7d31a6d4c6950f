// SPDX-License-Identifier: GPL-3.0-or-later
#include "dmMain.h"
#include "uDBValidator.h"
#include "uDebugLog.h"
#include "uDefaults.h"
#include "uFilePath.h"
#include "uProgramFiles.h"
#include "uPrompt.h"
#include "uTHStrings.h"
#include "uThreads.h"

#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>

#include <filesystem>
#include <fstream>

static void InitDatabaseResources() { Q_INIT_RESOURCE(database); }

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

QString SQLScript(const QString& name)
{
    InitDatabaseResources();
    // A file beside the program wins over the text that is compiled in.
    const QString override = ProgramFile(name + u".sql"_s);
    QFile file(QFile::exists(override) ? override : u":/sql/%1.sql"_s.arg(name));
    if (!file.open(QIODevice::ReadOnly))
        throw EDatabaseError(u"script %1 is missing"_s.arg(name));
    return QString::fromUtf8(file.readAll());
}

// Creates or empties the file, and removes the journal files of one that was there, which belong to the old content.
void MakeEmptyFile(const QString& path)
{
    const std::filesystem::path file = TextToPath(path);
    std::error_code error;
    if (!std::ofstream(file, std::ios::binary | std::ios::trunc))
        throw EDatabaseError(GetLanguageString(u"cSFileCannotBeWritten"_s).replace(u"%s"_s, path));
    for (const char* suffix : {"-wal", "-shm", "-journal"})
        std::filesystem::remove(file.native() + suffix, error);
}

} // namespace

QString TDataModuleMain::GetNewDatabaseSQL() const { return SQLScript(u"AD_SQL_CreateNewDB"_s); }

void TDataModuleMain::ApplyParameters()
{
    // secure_delete would overwrite what is deleted, at several times the cost.
    FConnection.Exec(u"PRAGMA locking_mode = NORMAL; PRAGMA foreign_keys = ON; PRAGMA secure_delete = OFF;"
                     "PRAGMA synchronous = FULL; PRAGMA cache_size = -16384"_s);
    FConnection.ReleaseFileMap(); // sets the size of the map as well
}

void TDataModuleMain::UseWriteAheadLog()
{
    if (FConnection.IsReadOnly())
        return;
    try {
        FConnection.Exec(u"PRAGMA journal_mode = WAL"_s);
    } catch (const EDatabaseError& failure) {
        // Another process that reads the file keeps it in its mode, which serves as well.
        if (!failure.IsLocked())
            throw;
    }
}

void TDataModuleMain::OpenConnection(const QString& filepath)
{
    try {
        FConnection.Open(filepath, somReadWrite);
        ApplyParameters();
        FConnection.Scalar(u"SELECT count(*) FROM sqlite_master"_s);
    } catch (const EDatabaseError& failure) {
        // A write-ahead log needs a folder that can be written: without one the file is read as it lies there.
        if (!failure.NeedsWritableFolder())
            throw;
        FConnection.Open(filepath, somImmutable);
        ApplyParameters();
        FConnection.Scalar(u"SELECT count(*) FROM sqlite_master"_s);
    }
}

void TDataModuleMain::CreateNewDB(const QString& filepath, const QString& sql)
{
    Q_ASSERT(OnMainThread());
    // A file that cannot be made leaves the open collection alone, unless it is that one.
    if (QFileInfo(filepath) == QFileInfo(FConnection.Path()))
        Disconnect();
    MakeEmptyFile(filepath);
    Disconnect();
    auto discard = qScopeGuard([&] {
        FConnection.Close();
        std::error_code error;
        std::filesystem::remove(TextToPath(filepath), error);
    });
    FConnection.Open(filepath, somReadWrite);
    // Both must stand in the header before the first table and before the journal mode is set.
    FConnection.Exec(u"PRAGMA auto_vacuum = INCREMENTAL; PRAGMA application_id = %1"_s.arg(CollectionApplicationId));
    ApplyParameters();
    UseWriteAheadLog();
    StartTransaction();
    FConnection.Exec(sql);
    CommitTransaction();
    FConnection.Close();
    discard.dismiss();
}

void TDataModuleMain::CloseCursors()
{
    for (TDataset* cursor : AllCursors())
        cursor->Close();
}

void TDataModuleMain::Disconnect()
{
    CloseCursors();
    FConnection.Close();
    Q_EMIT collectionChanged();
}

bool TDataModuleMain::ConnectToDB(const QString& filepath)
{
    Q_ASSERT(OnMainThread());
    const TDBValidationResult result = ValidateDatabaseFile(filepath);
    if (result != dvrOK) {
        FPrompt.ShowError(DatabaseValidationMessage(result));
        return false;
    }
    Disconnect();
    OpenConnection(filepath);
    Defaults().DBPath = filepath;
    if (!PrepareUpgrade())
        return false;
    if (!FConnection.IsReadOnly())
        FConnection.Exec(u"DROP TRIGGER IF EXISTS 'Releases2UpdateTrigger';"
                         "DROP TRIGGER IF EXISTS 'Tracks2UpdateTrigger';"_s);
    UpgradeFile();
    UseWriteAheadLog();
    MakePerformanceIndices();
    ApplyArticleSettings();
    OpenCursors();
    AddRecentDB(Defaults().RecentDBs, filepath);
    Q_EMIT collectionChanged();
    return true;
}

int TDataModuleMain::GetDBVersion()
{
    return static_cast<int>(VarToInt64(FConnection.Scalar(u"select version from version"_s)).toLongLong());
}

void TDataModuleMain::CopyBeforeUpgrade(int version)
{
    const QFileInfo file(FConnection.Path());
    const QString stem = u"%1/%2.before-%3"_s.arg(file.path(), file.completeBaseName()).arg(version);
    QString copy = stem + u".db"_s;
    for (int i = 2; QFile::exists(copy); ++i) // an earlier copy is somebody's last way back
        copy = u"%1-%2.db"_s.arg(stem).arg(i);
    try {
        FConnection.BackupTo(copy);
    } catch (const EDatabaseError& failure) {
        throw EDatabaseError(GetLanguageString(u"cSDBBackupFailed"_s).replace(u"%s"_s, failure.Text()), failure.Code());
    }
}

void TDataModuleMain::RunUpgradeScript(const QString& name) { FConnection.Exec(SQLScript(name)); }

bool TDataModuleMain::PrepareUpgrade()
{
    const int version = GetDBVersion();
    if (version == 1000 && !FPrompt.AskYesNo(GetLanguageString(u"cSDBUpgdate1To2Confirmation"_s)))
        return false;
    if (version < CurrentSchemaVersion)
        CopyBeforeUpgrade(version);
    return true;
}

void TDataModuleMain::ConvertFirstFormat()
{
    // The old tables go one by one, in an order that their references to each other need not allow.
    FConnection.Exec(u"PRAGMA foreign_keys = OFF"_s);
    const auto restore = qScopeGuard([this] { FConnection.Exec(u"PRAGMA foreign_keys = ON"_s); });
    TSQLiteTransaction transaction(FConnection);
    RunUpgradeScript(u"Upgrade1000To2000"_s);
    transaction.Commit();
}

void TDataModuleMain::UpgradeFile()
{
    if (GetDBVersion() == 1000) {
        ConvertFirstFormat();
        VacuumDB();
    }
    if (GetDBVersion() < 2001)
        RunUpgradeScript(u"Upgrade2001"_s);
    if (GetDBVersion() < 3001)
        RunUpgradeScript(u"Upgrade3001"_s);
}

void TDataModuleMain::MakePerformanceIndices()
{
    // Without the first the next number costs a scan of all rows, without the second the end of a release one of all
    // credits. A file that cannot be written does without.
    if (FConnection.IsReadOnly())
        return;
    try {
        FConnection.Exec(u"CREATE INDEX IF NOT EXISTS idx_releases_no ON Releases2(No);"
                         "CREATE INDEX IF NOT EXISTS idx_musicians_trackid ON Musicians2(TrackId)"_s);
    } catch (const EDatabaseError& failure) {
        DebugLog(u"[Database] indices: "_s + failure.Text());
    }
}

void TDataModuleMain::OpenCursors()
{
    const struct {
        TDataset& Cursor;
        QString SplashKey;
    } steps[] = {
        {qReleasesMain, u"cSSplashLoadingReleases"_s},
        {qOtherPictures, u"cSSplashLoadingPictures"_s},
        {qReleaseInfo, u"cSSplashLoadingReleasesInfo"_s},
        {qMusiciansPerRelease, {}},
        {qMusiciansPerTrack, {}},
        {qFriends, u"cSSplashLoadingFrieds"_s},
        {qLoans, u"cSSplashLoadingLoans"_s},
        {qTracksDetail, u"cSSplashLoadingTracks"_s},
    };
    for (const auto& step : steps) {
        if (!step.SplashKey.isEmpty())
            SetSplashText(GetLanguageString(step.SplashKey));
        step.Cursor.Open();
    }
    qStats.Open();
}

void TDataModuleMain::VacuumDB()
{
    Q_ASSERT(OnMainThread());
    CommitTransaction();
    FConnection.Exec(
        u"PRAGMA auto_vacuum = INCREMENTAL; PRAGMA application_id = %1; VACUUM;"_s.arg(CollectionApplicationId));
}

} // namespace Kestrune
