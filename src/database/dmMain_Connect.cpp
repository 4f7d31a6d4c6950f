// SPDX-License-Identifier: GPL-3.0-or-later
#include "dmMain.h"
#include "uDBValidator.h"
#include "uDebugLog.h"
#include "uFilePath.h"
#include "uPrompt.h"
#include "uSchema.h"
#include "uTHStrings.h"
#include "uThreads.h"

#include <QFileInfo>
#include <QScopeGuard>

#include <filesystem>
#include <fstream>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

// The file cannot be written, and why.
[[noreturn]] void ThrowFileError(const QString& path, const std::error_code& error)
{
    throw EDatabaseError(GetLanguageString(u"cSFileCannotBeWritten"_s).replace(u"%s"_s, path) + u' ' +
                         QString::fromStdString(error.message()));
}

void RemoveJournals(const std::filesystem::path& file)
{
    std::error_code error;
    for (const char* suffix : {"-wal", "-shm", "-journal"})
        std::filesystem::remove(file.native() + suffix, error);
}

void SetParameters(TSQLiteConnection& connection)
{
    // secure_delete would overwrite what is deleted, at several times the cost.
    connection.Exec(u"PRAGMA locking_mode = NORMAL; PRAGMA foreign_keys = ON; PRAGMA secure_delete = OFF;"
                    "PRAGMA synchronous = FULL; PRAGMA cache_size = -16384"_s);
    connection.ReleaseFileMap(); // sets the size of the map as well
}

void OpenReadable(TSQLiteConnection& connection, const QString& path)
{
    const auto tryMode = [&](TSQLiteOpenMode mode) {
        connection.Open(path, mode);
        SetParameters(connection);
        connection.Scalar(u"SELECT count(*) FROM sqlite_master"_s);
    };
    try {
        tryMode(somReadWrite);
    } catch (const EDatabaseError& failure) {
        // A write-ahead log needs a folder that can be written: without one the file is read as it lies there.
        if (!failure.NeedsWritableFolder())
            throw;
        tryMode(somImmutable);
    }
}

void UseWriteAheadLog(TSQLiteConnection& connection)
{
    if (connection.IsReadOnly())
        return;
    try {
        connection.Exec(u"PRAGMA journal_mode = WAL"_s);
    } catch (const EDatabaseError& failure) {
        // Another process that reads the file keeps it in its mode, which serves as well.
        if (!failure.IsLocked())
            throw;
    }
}

void MakePerformanceIndices(TSQLiteConnection& connection)
{
    // Without the first the next number costs a scan of all rows, without the second the end of a release one of all
    // credits. A file that cannot be written does without.
    if (connection.IsReadOnly())
        return;
    try {
        connection.Exec(u"CREATE INDEX IF NOT EXISTS idx_releases_no ON Releases2(No);"
                        "CREATE INDEX IF NOT EXISTS idx_musicians_trackid ON Musicians2(TrackId)"_s);
    } catch (const EDatabaseError& failure) {
        DebugLog(u"[Database] indices: "_s + failure.Text());
    }
}

void TestFile(const QString& filepath, int lockWait)
{
    TSQLiteConnection probe;
    probe.SetLockWait(lockWait);
    OpenReadable(probe, filepath);
    CheckVersion(probe);
    if (probe.IsReadOnly() || VersionOf(probe) >= CurrentSchemaVersion())
        return;
    const TSQLiteTransaction writable(probe); // it will have to be raised
}

} // namespace

QString TDataModuleMain::GetNewDatabaseSQL() const { return DatabaseScript(u"AD_SQL_CreateNewDB"_s); }

void TDataModuleMain::CreateNewDB(const QString& filepath, const QString& sql)
{
    Q_ASSERT(OnMainThread());
    // A link stays a link; the file is made aside, so that whatever ends this leaves no half file under its name.
    const QString known = QFileInfo(filepath).canonicalFilePath();
    const std::filesystem::path file = TextToPath(known.isEmpty() ? filepath : known);
    const std::filesystem::path aside = file.native() + ".part";
    std::error_code error;
    std::filesystem::remove(aside, error);
    RemoveJournals(aside);
    auto discard = qScopeGuard([&] {
        std::filesystem::remove(aside, error);
        RemoveJournals(aside);
    });
    if (!std::ofstream(aside, std::ios::binary))
        throw EDatabaseError(GetLanguageString(u"cSFileCannotBeWritten"_s).replace(u"%s"_s, filepath));
    {
        TSQLiteConnection connection;
        connection.Open(PathToText(aside), somReadWrite);
        // Both must stand in the header before the first table and before the journal mode is set.
        connection.Exec(u"PRAGMA auto_vacuum = INCREMENTAL; PRAGMA application_id = %1"_s.arg(CollectionApplicationId));
        SetParameters(connection);
        connection.Exec(u"PRAGMA journal_mode = WAL"_s);
        TSQLiteTransaction transaction(connection);
        connection.Exec(sql);
        transaction.Commit();
    }
    // A file that cannot be made has left the open collection alone.
    Disconnect();
    RemoveJournals(file); // they belong to the content that goes
    std::filesystem::rename(aside, file, error);
    if (error)
        ThrowFileError(filepath, error);
    discard.dismiss();
}

void TDataModuleMain::CloseCursors()
{
    FSession = false;
    for (TDataset* cursor : AllCursors())
        cursor->Close();
    for (TReleaseCursors* cursors : {&FRead, &FStored})
        for (TDetailDataset* cursor : cursors->All())
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
    TestFile(filepath, FLockWait); // what cannot be opened now costs nobody the collection that is open
    Disconnect();
    auto closed = qScopeGuard([this] { CloseCursors(); });
    OpenReadable(FConnection, filepath);
    TSchemaUpgrade upgrade(FConnection, FPrompt);
    if (!upgrade.Prepare())
        return false;
    if (!FConnection.IsReadOnly())
        FConnection.Exec(u"DROP TRIGGER IF EXISTS 'Releases2UpdateTrigger';"
                         "DROP TRIGGER IF EXISTS 'Tracks2UpdateTrigger';"_s);
    upgrade.Run();
    UseWriteAheadLog(FConnection);
    MakePerformanceIndices(FConnection);
    FDeleted.Begin();
    ApplyArticleSettings();
    OpenCursors();
    FConnection.WatchLocks();
    closed.dismiss();
    Q_EMIT collectionChanged();
    return true;
}

void TDataModuleMain::RestoreLocks()
{
    Q_ASSERT(OnMainThread());
    if (!HasData() || FConnection.HoldsLocks())
        return;
    DebugLog(u"[Database] the locks of the collection are gone: it is opened anew"_s);
    const bool inWork = FConnection.InTransaction();
    if (!FConnection.Reopen())
        return; // a list is being read: looked at again with the next write
    SetParameters(FConnection);
    UseWriteAheadLog(FConnection);
    FConnection.Scalar(u"SELECT count(*) FROM sqlite_master"_s);
    FConnection.WatchLocks();
    for (TDataset* cursor : AllCursors())
        cursor->ForgetRecords(); // another program may have written meanwhile
    if (inWork)
        throw EDatabaseError(GetLanguageString(u"cSTransactionLost"_s));
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
    for (TReleaseCursors* cursors : {&FRead, &FStored})
        for (TDetailDataset* cursor : cursors->All())
            cursor->Open();
}

} // namespace Kestrune
