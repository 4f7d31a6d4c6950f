// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uGuardedFiles.h"
#include "uTHTypes.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <chrono>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace Kestrune {

/// A failure of the collection file: what() is one sentence in UTF-8, with the engine's own reason.
class EDatabaseError : public std::runtime_error {
public:
    explicit EDatabaseError(const QString& text, int code = 0) : std::runtime_error(text.toStdString()), FCode(code) {}
    QString Text() const { return QString::fromUtf8(what()); }
    /// SQLite's primary result code, 0 when the engine was not involved.
    int Code() const { return FCode; }
    /// Another process holds the file.
    bool IsLocked() const;
    /// The file is no database, or damaged where it begins.
    bool IsNoDatabase() const;
    /// The file or its folder cannot be written or the disk is full: a file with a write-ahead log needs room even for
    /// reading.
    bool NeedsWritableFolder() const;

private:
    int FCode;
};

/// A prepared statement. Values come and go as variants: null, qint64, double, QString, QByteArray; a bool is bound
/// as 0 or 1, dates as text. Every failure throws EDatabaseError.
class TSQLiteStatement {
public:
    TSQLiteStatement(sqlite3* connection, const QByteArray& sql, bool persistent);
    /// Takes over a prepared statement.
    TSQLiteStatement(sqlite3* connection, sqlite3_stmt* statement);

    /// Binds the parameter at a 1-based index.
    void Bind(int index, const TVariant& value);
    /// Binds the parameters in order, from the first on.
    void BindAll(const std::vector<TVariant>& values);
    /// True while there is a row.
    bool Step();
    /// Runs to the end and makes the statement ready for the next use.
    void Execute();
    /// Makes the statement ready for the next use and drops its bindings.
    void Reset();

    // Of the row that Step has reached; columns count from 0.
    int ColumnCount() const;
    QString ColumnName(int column) const;
    TVariant Column(int column) const;
    qint64 ColumnInt64(int column) const;
    bool ColumnIsNull(int column) const;
    bool ColumnIsNumber(int column) const;
    double ColumnDouble(int column) const;
    /// Text or blob as bytes, valid until the next step.
    std::string_view ColumnBytes(int column) const;
    QByteArray ColumnBlob(int column) const;
    /// Whether Column() would give this value, without making it where it is a blob.
    bool ColumnEquals(int column, const TVariant& value) const;

private:
    struct TFinalize {
        void operator()(sqlite3_stmt* statement) const;
    };
    [[noreturn]] void Fail(int code) const;

    sqlite3* FConnection;
    std::unique_ptr<sqlite3_stmt, TFinalize> FStatement;
};

/// What the text functions of a connection need to know of the settings.
struct TTextRules {
    QStringList Articles;                                        ///< left out by the function krn_article_key
    std::unordered_map<qint64, std::unordered_set<qint64>> Hits; ///< keys for which krn_hit is true, by search
};

/// How a file is opened. Immutable: nobody else writes it and it is read as it lies there, without locks or journal.
enum class TSQLiteOpenMode : quint8 { somReadWrite, somReadOnly, somImmutable };
using enum TSQLiteOpenMode;

/// One connection to an existing SQLite file.
///
/// It knows, for its queries only (never for the stored schema): LIKE that ignores case in all scripts, the collation
/// KRN_NOCASE of the same kind, krn_key(text) and krn_article_key(text) that give keys to sort by, and krn_hit(key, n)
/// that tells whether a key is among the hits of search number n.
class TSQLiteConnection {
public:
    TSQLiteConnection() = default;
    ~TSQLiteConnection();
    TSQLiteConnection(const TSQLiteConnection&) = delete;
    TSQLiteConnection& operator=(const TSQLiteConnection&) = delete;

    /// Opens an existing file; never creates one. Until it is closed nobody else in this process reads its bytes.
    void Open(const QString& path, TSQLiteOpenMode mode = somReadWrite);
    /// Ends the statements of the cache and the connection.
    void Close();
    /// How long a statement waits for another process that holds the file, in milliseconds; 2000 at first. Kept over
    /// closing and opening.
    void SetLockWait(int milliseconds);
    /// Closing writes nothing back: the file and its log stay as they are for those to whom they belong.
    void LeaveLogAlone();
    /// From now on HoldsLocks tells of the locks that an open file with a write-ahead log always has.
    void WatchLocks();
    /// False when the locks of this process on the file are gone, because something closed another descriptor of it: a
    /// second program may then delete the log that is written here. True where that cannot be told.
    bool HoldsLocks() const;
    /// Opens the same file anew, in the same mode. A transaction is lost. False, and nothing done, while a statement
    /// stands on a row.
    bool Reopen();
    /// True when the file can only be read.
    bool IsReadOnly() const;
    QString Path() const { return FPath; }
    TSQLiteOpenMode Mode() const { return FMode; }
    /// Throws when the file was removed or replaced while it is open: what is written now would be lost. Looks at the
    /// locks too, once a second.
    void CheckFileIsThere();
    /// Called by CheckFileIsThere when the locks are gone.
    std::function<void()> OnLocksGone;
    TTextRules& TextRules() { return FTextRules; }

    /// Runs a script of any number of statements through the engine's own statement loop.
    void Exec(const QString& script);
    using TReceiveRow = std::function<void(TSQLiteStatement& row, bool first)>;
    /// Runs a script of the user's. `receive` gets each statement that gives rows once with `first`, then once for each
    /// row. Without `canWrite` nothing is let through that would write or change the connection. `progress` is called
    /// now and then and stops the script by giving false. The number of rows written.
    qint64 RunScript(const QString& script, bool canWrite, const std::function<bool()>& progress,
                     const TReceiveRow& receive);
    /// A statement from the cache, reset and with no bindings: valid until the next call with the same text.
    TSQLiteStatement& Cached(const QString& sql);
    /// A statement of its own, for use once.
    TSQLiteStatement Prepare(const QString& sql);
    /// First column of the first row; null without rows.
    TVariant Scalar(const QString& sql, const std::vector<TVariant>& values = {});

    qint64 LastInsertRowId() const;
    /// Rows that the last statement wrote.
    qint64 RowsChanged() const;
    /// A number that is another one after any change of the file, by this connection or another.
    qint64 ChangeStamp();
    bool InTransaction() const;
    /// Called with the table and the row of every row that is written or deleted through this connection, while it is
    /// done: it must not touch the connection. `cameOrWent`: the row is new or gone.
    std::function<void(const char* table, qint64 row, bool cameOrWent)> OnChange;
    /// Called when a transaction or a part of one was undone; it must not touch the connection either.
    std::function<void()> OnRollback;
    /// Copies the whole database to a new file by the engine's backup interface. An existing file is not overwritten.
    void BackupTo(const QString& path);
    /// Gives the pages of the file map back to the system; they are mapped again when they are next looked at.
    void ReleaseFileMap();
    /// Tells of so many bytes that were read here and there: once many have come together the map is given back, so
    /// that a walk through a large file does not keep all of it in memory.
    void NoteRead(qsizetype bytes);

private:
    struct TStringHash {
        size_t operator()(const QString& text) const { return qHash(text); }
    };
    void RegisterFunctions();

    sqlite3* FConnection = nullptr;
    QString FPath;
    TSQLiteOpenMode FMode = somReadWrite;
    qsizetype FReadThroughMap = 0;
    quint64 FDevice = 0; // of the file that was opened
    quint64 FInode = 0;
    int FLockWait = 2000;
    bool FWatchesLocks = false;
    std::chrono::steady_clock::time_point FLocksSeen;
    TFileGuard FGuard;
    TTextRules FTextRules;
    std::unordered_map<QString, std::unique_ptr<TSQLiteStatement>, TStringHash> FCache;
};

/// A transaction that rolls back unless it is committed. Inside another one it is a savepoint.
class TSQLiteTransaction {
public:
    explicit TSQLiteTransaction(TSQLiteConnection& connection);
    ~TSQLiteTransaction();
    TSQLiteTransaction(const TSQLiteTransaction&) = delete;
    TSQLiteTransaction& operator=(const TSQLiteTransaction&) = delete;
    /// Throws when the commit failed; the destructor then rolls back.
    void Commit();

private:
    TSQLiteConnection& FConnection;
    bool FNested;
    bool FDone = false;
};

} // namespace Kestrune
