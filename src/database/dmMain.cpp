// SPDX-License-Identifier: GPL-3.0-or-later
#include "dmMain.h"

#include "uArticles.h"
#include "uColumnNames.h"
#include "uDatasetDefs.h"
#include "uDefaults.h"
#include "uTHStrings.h"
#include "uThreads.h"

#include <QScopeGuard>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int MapKeptFor = 10000; // milliseconds

} // namespace

TDataModuleMain::TDataModuleMain(TPrompt& prompt)
    : qReleasesMain(FConnection, ReleasesMainDef()),
      qTracksAll(FConnection, TracksAllDef()),
      FEdited(FConnection),
      FRead(FConnection),
      FStored(FConnection),
      qReleaseInfo(FEdited.Info),
      qTracksDetail(FEdited.Tracks),
      qMusiciansPerRelease(FEdited.Credits),
      qMusiciansPerTrack(FEdited.TrackCredits),
      qOtherPictures(FEdited.Pictures),
      qFriends(FConnection, FriendsDef()),
      qLoans(FConnection, LoansDef()),
      qStats(FConnection, StatsDef()),
      FPrompt(prompt)
{
    qTracksDetail.SetMaster(&qReleasesMain);
    qMusiciansPerRelease.SetMaster(&qReleasesMain);
    SetRules();
    FConnection.SetLockWait(FLockWait);
    FConnection.OnLocksGone = [this] { RestoreLocks(); };
    FConnection.OnChange = [this](const char* table, qint64 row, bool cameOrWent) {
        NoteChange(table, row, cameOrWent);
    };
    FConnection.OnRollback = [this] { NoteRollback(); };
    // Pages that a scan has mapped count as memory of the process, but mapping them again is what a scan waits for:
    // they go when no filter or sort has followed for a while.
    FMapTimer.setSingleShot(true);
    FMapTimer.setInterval(MapKeptFor);
    connect(&FMapTimer, &QTimer::timeout, this, [this] { FConnection.ReleaseFileMap(); });
    for (const TListDataset* list : {&qReleasesMain, &qTracksAll})
        connect(list, &TDataset::dataReset, &FMapTimer, qOverload<>(&QTimer::start));
}

TDataModuleMain::~TDataModuleMain() = default;

void TDataModuleMain::SetLockWait(int milliseconds)
{
    FLockWait = milliseconds;
    FConnection.SetLockWait(milliseconds);
}

std::vector<TDataset*> TDataModuleMain::AllCursors()
{
    return {&qFriends,      &qLoans,     &qReleasesMain,        &qOtherPictures,
            &qTracksDetail, &qTracksAll, &qMusiciansPerRelease, &qMusiciansPerTrack,
            &qReleaseInfo,  &qStats};
}

void TDataModuleMain::ExecSQL(const QString& sql)
{
    Q_ASSERT(OnMainThread());
    FConnection.Exec(sql);
}

qint64 TDataModuleMain::ExecSQLAndGetID(const QString& sql)
{
    Q_ASSERT(OnMainThread());
    TSQLiteStatement query = FConnection.Prepare(sql);
    return query.Step() && !query.ColumnIsNull(0) ? query.ColumnInt64(0) : -1;
}

qint64 TDataModuleMain::RunQuery(const QString& sql, bool canWrite, const std::function<bool()>& progress,
                                 const std::function<void(TSQLiteStatement& row, bool first)>& receive)
{
    Q_ASSERT(OnMainThread());
    // `progress` may serve events, and those read the collection: not on a connection within one of its steps.
    TSQLiteConnection connection;
    connection.Open(FConnection.Path(),
                    canWrite || FConnection.Mode() == somImmutable ? FConnection.Mode() : somReadOnly);
    connection.TextRules().Articles = FConnection.TextRules().Articles;
    connection.Exec(u"PRAGMA foreign_keys = ON"_s);
    if (!canWrite)
        return connection.RunScript(sql, false, progress, receive);
    connection.OnChange = FConnection.OnChange;
    connection.OnRollback = FConnection.OnRollback;
    TSQLiteTransaction transaction(connection);
    const qint64 changed = connection.RunScript(sql, true, progress, receive);
    transaction.Commit();
    return changed;
}

void TDataModuleMain::StartTransaction()
{
    if (!FConnection.InTransaction())
        FConnection.Exec(u"BEGIN"_s);
}

void TDataModuleMain::CommitTransaction()
{
    if (FConnection.InTransaction())
        FConnection.Exec(u"COMMIT"_s);
}

void TDataModuleMain::RollbackTransaction()
{
    if (!FConnection.InTransaction())
        return;
    FConnection.Exec(u"ROLLBACK"_s);
    TakeBack();
}

void TDataModuleMain::PostIfApplicable(TDataset& dataSet)
{
    if (dataSet.State() == dsEdit || dataSet.State() == dsInsert)
        dataSet.Post();
}

void TDataModuleMain::CancelIfApplicable(TDataset& dataSet)
{
    if (dataSet.State() == dsEdit || dataSet.State() == dsInsert)
        dataSet.Cancel();
}

void TDataModuleMain::EditIfApplicable(TDataset& dataSet)
{
    if (dataSet.State() == dsBrowse && dataSet.RecNo() >= 0)
        dataSet.Edit();
}

void TDataModuleMain::DisableControlsAll()
{
    for (TDataset* cursor : AllCursors())
        cursor->DisableControls();
}

void TDataModuleMain::EnableControlsAll()
{
    for (TDataset* cursor : AllCursors())
        cursor->EnableControls();
}

void TDataModuleMain::RefreshAll()
{
    qReleasesMain.DisableControls();
    qTracksAll.DisableControls();
    const auto enable = qScopeGuard([this] {
        qTracksAll.EnableControls();
        qReleasesMain.EnableControls();
    });
    for (TDataset* cursor : AllCursors())
        cursor->Refresh();
}

void TDataModuleMain::ApplyArticleSettings()
{
    const TDefaults& settings = Defaults();
    FConnection.TextRules().Articles = settings.ArticlesList;
    QStringList columns;
    if (settings.ArticlesEnabled && settings.ArticlesSortWithout) {
        if (settings.ArticlesFieldArtist)
            columns << Col::Artist << Col::ReleaseArtist;
        if (settings.ArticlesFieldReleaseName)
            columns << Col::ReleaseName;
    }
    qReleasesMain.SetArticleColumns(columns);
    qTracksAll.SetArticleColumns(columns);
}

void TDataModuleMain::FollowList(bool follow)
{
    for (TDetailDataset* children : {&qTracksDetail, &qMusiciansPerRelease}) {
        TDataset* master = follow ? &qReleasesMain : nullptr;
        if (children->Master() != master)
            children->SetMaster(master);
    }
}

void TDataModuleMain::SelectRelease(qint64 id)
{
    // A release that the filter hides has no place in the list: then its children are asked for by its key.
    const bool listed = qReleasesMain.Locate(id);
    FollowList(listed && !FSession);
    FEdited.Select(id);
}

void TDataModuleMain::BeginSession(qint64 release)
{
    if (FSession)
        throw EDatabaseError(GetLanguageString(u"cSEditInProgress"_s));
    for (TDetailDataset* cursor : FEdited.All())
        cursor->Post();
    FSession = true;
    FollowList(false);
    FEdited.Select(release);
}

void TDataModuleMain::EndSession()
{
    FSession = false;
    FollowList(true);
}

TReleaseCursors& TDataModuleMain::ReadRelease(qint64 id)
{
    for (TDetailDataset* cursor : FRead.All())
        cursor->ForgetRecords();
    FRead.Select(id);
    return FRead;
}

} // namespace Kestrune
