// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uChanges.h"
#include "uCollectionQueries.h"
#include "uDataSet.h"
#include "uDeletedRows.h"
#include "uObjs.h"
#include "uReleaseCursors.h"
#include "uSQLite.h"
#include "uTouchedReleases.h"

#include <QObject>
#include <QSet>
#include <QString>
#include <QTimer>

#include <functional>
#include <optional>
#include <unordered_set>
#include <vector>

namespace Kestrune {

class TPrompt;

/// The one gateway to the collection: its connection, its long-lived cursors, and the roads between them and
/// TAlbumRelease. Main thread only. Operations on the file throw EDatabaseError.
class TDataModuleMain : public QObject {
    Q_OBJECT

public:
    /// `prompt` is asked and told about files that are opened; it outlives the module.
    explicit TDataModuleMain(TPrompt& prompt);
    ~TDataModuleMain() override;

    /// The creation script of a collection at the current version.
    QString GetNewDatabaseSQL() const;
    /// How long an operation waits while another process holds the file, in milliseconds; 40 at first, so that a window
    /// stays live. A program without one may wait longer.
    void SetLockWait(int milliseconds);
    /// Makes a new file, replacing any of that name, and leaves it closed. Closes the open collection once the new one
    /// is whole; one that cannot be made leaves it alone.
    void CreateNewDB(const QString& filepath, const QString& sql);
    /// Opens a collection and raises it to the current version. A file that is none gives the user the reason and
    /// leaves everything as it was: false. A declined conversion leaves the connection open without cursors: false.
    /// One that is locked, or names no version, throws and leaves everything as it was. What fails later leaves the
    /// connection open without cursors.
    bool ConnectToDB(const QString& filepath);
    /// Opens the connection anew where the file's locks are gone, because somebody in this process opened the file and
    /// closed it again. Throws when that cost a transaction. Quick; to be called after whatever may look at files.
    void RestoreLocks();
    /// Closes the cursors and the connection.
    void Disconnect();
    /// Closes the cursors and keeps the connection.
    void CloseCursors();
    /// The version number of the open file; 0 when its text is no number.
    int GetDBVersion();
    /// Rewrites the file without free space; an old one also gains incremental vacuum and the application id.
    void VacuumDB();
    /// Copies the open collection into a new file while it stays open; an existing one is replaced once the copy is
    /// whole.
    void CopyTo(const QString& filepath);
    /// Makes the front thumbnails anew from the large pictures, with a cursor of its own; LastModified stays.
    /// `progress` is told the rows that are done of all and stops the work by giving false. The number of thumbnails.
    int RegenerateThumbnails(const std::function<bool(int row, int count)>& progress);
    /// Deletes rows of a list in one transaction and keeps what went with them; gives the number by which UndoDeletion
    /// takes it back. Where there is no room to keep it they are deleted all the same, and the number is 0. None when
    /// `progress` has taken it back.
    std::optional<qint64> DeleteUndoably(TListDataset& list, const std::vector<qint64>& keys,
                                         const TProgress& progress = {});
    /// Brings back what a deletion took, with its keys; a second time does nothing. Gives the number of rows that stay
    /// away because what they belong to is gone; none when `progress` has stopped it, and then nothing has come back.
    /// Throws the reason when nothing can come back.
    std::optional<qint64> UndoDeletion(qint64 number, const TProgress& progress = {});
    /// True when the cursors are open.
    bool HasData() const { return qReleasesMain.Active(); }
    /// True when the open file can only be read.
    bool IsReadOnly() const { return FConnection.IsReadOnly(); }
    /// Path of the open file, or empty.
    QString CurrentFile() const { return FConnection.Path(); }

    /// Stores a release with its tracks, credits and pictures in one transaction. On failure nothing is stored and
    /// the cursors stay usable.
    void AddAlbumReleaseToDB(const TAlbumRelease& release, bool assignNewNo);
    /// The row that AddAlbumReleaseToDB stored last.
    qint64 LastAddedReleaseID() const { return FLastAddedReleaseID; }
    /// True while AddAlbumReleaseToDB runs: handlers that would redraw per row look at it.
    bool AddingReleases() const { return FAddingReleases; }
    /// A copy of the release on which qReleaseInfo and the child cursors stand.
    TAlbumRelease CurrentReleaseToAlbumRelease();
    /// Moves the release cursors and the main list, where it holds the release, to a release.
    void SelectRelease(qint64 id);
    /// A release with its children as the file has them now, for showing and copying: other cursors than those in which
    /// something is edited. Valid until the next call.
    TReleaseCursors& ReadRelease(qint64 id);
    /// The release on which such cursors stand, as an object of its own.
    static TAlbumRelease ToAlbumRelease(TReleaseCursors& cursors);

    /// Runs a statement or a script.
    void ExecSQL(const QString& sql);
    /// First column of the first row as a number; -1 when it is null or there is no row.
    qint64 ExecSQLAndGetID(const QString& sql);

    /// Runs the user's own script, statement by statement (qRunQuery), on a connection of its own, so that `progress`
    /// may serve events; it gives false to stop. The receiver gets each statement that gives rows once with `first`,
    /// then once for each row. Without `canWrite` a statement that would write fails; with it all stand in one
    /// transaction. The number of rows written.
    qint64 RunQuery(const QString& sql, bool canWrite, const std::function<bool()>& progress,
                    const std::function<void(TSQLiteStatement& row, bool first)>& receive);

    // On the connection. Start and commit do nothing where there is nothing to do.
    void StartTransaction();
    void CommitTransaction();
    void RollbackTransaction();
    bool InTransaction() const { return FConnection.InTransaction(); }

    // Post or cancel an edit when there is one; begin one when there is a record and none is open. Never throw else.
    static void PostIfApplicable(TDataset& dataSet);
    static void CancelIfApplicable(TDataset& dataSet);
    static void EditIfApplicable(TDataset& dataSet);

    /// Stops and resumes the signals of all cursors; calls nest.
    void DisableControlsAll();
    void EnableControlsAll();
    /// Reads all open cursors again.
    void RefreshAll();
    /// Hands the article settings to the connection and the list cursors; a change acts with their next sort.
    void ApplyArticleSettings();

    TCollectionQueries& Queries() { return FQueries; }
    /// Releases that were written since somebody last asked.
    TTouchedReleases& Touched() { return FTouched; }
    /// Notes a release of which something was or will be written in another way.
    void TouchRelease(qint64 id) { NoteChange("Releases2", id, false); }

    /// Called after qReleaseInfo has posted.
    std::function<void(TDataset&)> OnReleaseInfoAfterPost;

private:
    TSQLiteConnection FConnection; // before the cursors, which use it
    TDeletedRows FDeleted{FConnection};
    TTouchedReleases FTouched{FConnection, qReleasesMain};
    TCollectionQueries FQueries{FConnection, qReleasesMain};

public:
    TListDataset qReleasesMain; ///< all releases, under filter and sort
    TListDataset qTracksAll;    ///< all tracks with their release; closed until it is needed

private:
    TReleaseCursors FEdited; // for who edits
    TReleaseCursors FRead;   // for who shows
    TReleaseCursors FStored; // for AddAlbumReleaseToDB

public:
    TDetailDataset& qReleaseInfo;         ///< one release with its large pictures, by parameter
    TDetailDataset& qTracksDetail;        ///< tracks of the current release of qReleasesMain
    TDetailDataset& qMusiciansPerRelease; ///< credits of the current release
    TDetailDataset& qMusiciansPerTrack;   ///< credits of one track, by parameter
    TDetailDataset& qOtherPictures;       ///< further pictures of one release, by parameter
    TDetailDataset qFriends;
    TDetailDataset qLoans;
    TDetailDataset qStats; ///< one row of totals

Q_SIGNALS:
    /// Another collection was opened, or the open one was closed.
    void collectionChanged();
    /// Rows were written or taken back, by whatever way; told once for many, after it was done. The cursors of the
    /// collection know it already.
    void changed(const Kestrune::TChanges& changes);

private:
    std::vector<TDataset*> AllCursors();
    void OpenCursors();
    void SetRules();
    void SetReleaseRules(TReleaseCursors& cursors);
    /// Tracks and credits follow the main list, or stand where they were put.
    void FollowList(bool follow);
    friend class TEditSession;
    void BeginSession(qint64 release);
    void EndSession();
    void NoteChange(const char* table, qint64 row, bool cameOrWent);
    void NoteRollback();
    void TellLater();
    void TellChanges();
    void TakeBack();
    QByteArray ThumbnailOf(const QByteArray& largePicture) const;

    TPrompt& FPrompt;
    int FLockWait = 40;
    QTimer FMapTimer; // gives the file map back some time after the last scan
    bool FAddingReleases = false;
    qint64 FLastAddedReleaseID = 0;
    const TAlbumRelease* FReleaseInWork = nullptr;
    bool FSession = false;
    TChanges FUntold; // not yet told
    bool FTelling = false;
};

} // namespace Kestrune
