// SPDX-License-Identifier: GPL-3.0-or-later
#include "uSQLite.h"

#include "uDebugLog.h"
#include "uFileLocks.h"
#include "uFilePath.h"
#include "uTHStrings.h"

#include <QDateTime>
#include <QFile>
#include <QUrl>

#include <sqlite3.h>
#include <sys/stat.h>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr size_t MaxCachedStatements = 200;
constexpr qint64 MapSize = 0x7fff0000; // the most that the engine maps
constexpr std::chrono::seconds LooksAtLocks(1);
constexpr qsizetype ReadBetweenReleases = 32 * 1024 * 1024;

[[noreturn]] void ThrowEngineError(sqlite3* connection, int code, const QString& what)
{
    const QString reason =
        connection ? QString::fromUtf8(sqlite3_errmsg(connection)) : QString::fromUtf8(sqlite3_errstr(code));
    DebugLog(u"[Database] %1: %2"_s.arg(what, reason));
    throw EDatabaseError(reason, code & 0xFF);
}

} // namespace

bool EDatabaseError::IsLocked() const { return FCode == SQLITE_BUSY || FCode == SQLITE_LOCKED; }

bool EDatabaseError::IsNoDatabase() const { return FCode == SQLITE_NOTADB || FCode == SQLITE_CORRUPT; }

bool EDatabaseError::NeedsWritableFolder() const
{
    // A full disk has no room for the index of the log either. What really cannot be read fails again without a log.
    return FCode == SQLITE_CANTOPEN || FCode == SQLITE_READONLY || FCode == SQLITE_PERM || FCode == SQLITE_FULL ||
           FCode == SQLITE_IOERR;
}

void TSQLiteStatement::TFinalize::operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }

TSQLiteStatement::TSQLiteStatement(sqlite3* connection, const QByteArray& sql, bool persistent)
    : FConnection(connection)
{
    sqlite3_stmt* statement = nullptr;
    const int code = sqlite3_prepare_v3(connection, sql.constData(), static_cast<int>(sql.size()) + 1,
                                        persistent ? SQLITE_PREPARE_PERSISTENT : 0, &statement, nullptr);
    FStatement.reset(statement);
    if (code != SQLITE_OK)
        ThrowEngineError(connection, code, QString::fromUtf8(sql));
    if (!statement)
        throw EDatabaseError(u"The statement is empty."_s);
}

TSQLiteStatement::TSQLiteStatement(sqlite3* connection, sqlite3_stmt* statement) : FConnection(connection)
{
    FStatement.reset(statement);
}

void TSQLiteStatement::Fail(int code) const
{
    const QString sql = QString::fromUtf8(sqlite3_sql(FStatement.get()));
    const QString reason = QString::fromUtf8(sqlite3_errmsg(FConnection));
    sqlite3_reset(FStatement.get());
    DebugLog(u"[Database] %1: %2"_s.arg(sql, reason));
    throw EDatabaseError(reason, code & 0xFF);
}

void TSQLiteStatement::Bind(int index, const TVariant& value)
{
    int code = SQLITE_OK;
    sqlite3_stmt* statement = FStatement.get();
    switch (value.typeId()) {
    case QMetaType::UnknownType: code = sqlite3_bind_null(statement, index); break;
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong: code = sqlite3_bind_int64(statement, index, value.toLongLong()); break;
    case QMetaType::Float:
    case QMetaType::Double: code = sqlite3_bind_double(statement, index, value.toDouble()); break;
    case QMetaType::QByteArray: {
        const QByteArray bytes = value.toByteArray();
        code = sqlite3_bind_blob64(statement, index, bytes.constData(), static_cast<sqlite3_uint64>(bytes.size()),
                                   SQLITE_TRANSIENT);
        break;
    }
    default: {
        const QByteArray text = VarToStr(value).toUtf8();
        code = sqlite3_bind_text64(statement, index, text.constData(), static_cast<sqlite3_uint64>(text.size()),
                                   SQLITE_TRANSIENT, SQLITE_UTF8);
    }
    }
    if (code != SQLITE_OK)
        Fail(code);
}

void TSQLiteStatement::BindAll(const std::vector<TVariant>& values)
{
    for (size_t i = 0; i < values.size(); ++i)
        Bind(static_cast<int>(i) + 1, values[i]);
}

bool TSQLiteStatement::Step()
{
    const int code = sqlite3_step(FStatement.get());
    if (code == SQLITE_ROW)
        return true;
    if (code != SQLITE_DONE)
        Fail(code);
    return false;
}

void TSQLiteStatement::Execute()
{
    while (Step()) {
    }
    Reset();
}

void TSQLiteStatement::Reset()
{
    sqlite3_reset(FStatement.get());
    sqlite3_clear_bindings(FStatement.get());
}

int TSQLiteStatement::ColumnCount() const { return sqlite3_column_count(FStatement.get()); }

QString TSQLiteStatement::ColumnName(int column) const
{
    return QString::fromUtf8(sqlite3_column_name(FStatement.get(), column));
}

TVariant TSQLiteStatement::Column(int column) const
{
    sqlite3_stmt* statement = FStatement.get();
    switch (sqlite3_column_type(statement, column)) {
    case SQLITE_INTEGER: return static_cast<qint64>(sqlite3_column_int64(statement, column));
    case SQLITE_FLOAT: return sqlite3_column_double(statement, column);
    case SQLITE_TEXT: {
        const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
        return QString::fromUtf8(text, sqlite3_column_bytes(statement, column));
    }
    case SQLITE_BLOB: return ColumnBlob(column);
    default: return {};
    }
}

qint64 TSQLiteStatement::ColumnInt64(int column) const { return sqlite3_column_int64(FStatement.get(), column); }

bool TSQLiteStatement::ColumnIsNull(int column) const
{
    return sqlite3_column_type(FStatement.get(), column) == SQLITE_NULL;
}

bool TSQLiteStatement::ColumnIsNumber(int column) const
{
    const int type = sqlite3_column_type(FStatement.get(), column);
    return type == SQLITE_INTEGER || type == SQLITE_FLOAT;
}

double TSQLiteStatement::ColumnDouble(int column) const { return sqlite3_column_double(FStatement.get(), column); }

std::string_view TSQLiteStatement::ColumnBytes(int column) const
{
    // The bytes before their number: asking for the text may convert the value.
    const auto* bytes = static_cast<const char*>(sqlite3_column_blob(FStatement.get(), column));
    return {bytes, static_cast<size_t>(sqlite3_column_bytes(FStatement.get(), column))};
}

bool TSQLiteStatement::ColumnEquals(int column, const TVariant& value) const
{
    if (value.typeId() != QMetaType::QByteArray || sqlite3_column_type(FStatement.get(), column) != SQLITE_BLOB)
        return Column(column) == value;
    const auto* bytes = static_cast<const char*>(sqlite3_column_blob(FStatement.get(), column));
    return QByteArray::fromRawData(bytes, sqlite3_column_bytes(FStatement.get(), column)) == value.toByteArray();
}

QByteArray TSQLiteStatement::ColumnBlob(int column) const
{
    const auto* bytes = static_cast<const char*>(sqlite3_column_blob(FStatement.get(), column));
    return QByteArray(bytes, sqlite3_column_bytes(FStatement.get(), column));
}

TSQLiteConnection::~TSQLiteConnection() { Close(); }

void TSQLiteConnection::Open(const QString& path, TSQLiteOpenMode mode)
{
    Close();
    QByteArray name = QByteArray::fromStdString(TextToPath(path).native());
    int flags = SQLITE_OPEN_NOMUTEX | (mode == somReadWrite ? SQLITE_OPEN_READWRITE : SQLITE_OPEN_READONLY);
    if (mode == somImmutable) {
        name = "file:" + name.toPercentEncoding("/") + "?immutable=1";
        flags |= SQLITE_OPEN_URI;
    }
    sqlite3* connection = nullptr;
    const int code = sqlite3_open_v2(name.constData(), &connection, flags, nullptr);
    if (code != SQLITE_OK) {
        const QString reason = QString::fromUtf8(sqlite3_errstr(code));
        sqlite3_close_v2(connection);
        throw EDatabaseError(u"%1: %2"_s.arg(path, reason), code & 0xFF);
    }
    FConnection = connection;
    FPath = path;
    FMode = mode;
    FGuard = TFileGuard(TextToPath(path));
    struct stat info = {};
    if (::stat(TextToPath(path).c_str(), &info) == 0) {
        FDevice = info.st_dev;
        FInode = info.st_ino;
    }
    sqlite3_extended_result_codes(connection, 1);
    sqlite3_busy_timeout(connection, FLockWait);
    RegisterFunctions();
}

void TSQLiteConnection::Close()
{
    FCache.clear();
    if (FConnection)
        sqlite3_close_v2(FConnection);
    FConnection = nullptr;
    FPath.clear();
    FGuard = {};
    FWatchesLocks = false;
}

void TSQLiteConnection::SetLockWait(int milliseconds)
{
    FLockWait = milliseconds;
    if (FConnection)
        sqlite3_busy_timeout(FConnection, milliseconds);
}

void TSQLiteConnection::LeaveLogAlone()
{
    sqlite3_db_config(FConnection, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
}

void TSQLiteConnection::WatchLocks()
{
    // Not without a log, where nothing is locked between statements, nor where the system does not tell.
    FWatchesLocks = false;
    FWatchesLocks = FMode != somImmutable && Scalar(u"PRAGMA journal_mode"_s) == TVariant(u"wal"_s) &&
                    HoldsLockOn(TextToPath(FPath));
    FLocksSeen = std::chrono::steady_clock::now();
}

bool TSQLiteConnection::HoldsLocks() const
{
    return !FConnection || !FWatchesLocks ||
           (HoldsLockOn(TextToPath(FPath)) && HoldsLockOn(TextToPath(FPath + u"-shm"_s)));
}

bool TSQLiteConnection::Reopen()
{
    for (sqlite3_stmt* statement = sqlite3_next_stmt(FConnection, nullptr); statement;
         statement = sqlite3_next_stmt(FConnection, statement))
        if (sqlite3_stmt_busy(statement) != 0)
            return false;
    // The log may have been taken over by another program meanwhile: what stands in it must not be written back.
    LeaveLogAlone();
    const QString path = FPath;
    Close(); // all of it first: connections of one process share their locks
    Open(path, FMode);
    return true;
}

void TSQLiteConnection::CheckFileIsThere()
{
    struct stat info = {};
    if (::stat(TextToPath(FPath).c_str(), &info) != 0 || info.st_dev != FDevice || info.st_ino != FInode)
        throw EDatabaseError(GetLanguageString(u"cSFileGone"_s));
    const auto now = std::chrono::steady_clock::now();
    if (!FWatchesLocks || now - FLocksSeen < LooksAtLocks)
        return;
    FLocksSeen = now;
    if (OnLocksGone && !HoldsLocks())
        OnLocksGone();
}

bool TSQLiteConnection::IsReadOnly() const { return FConnection && sqlite3_db_readonly(FConnection, "main") == 1; }

void TSQLiteConnection::Exec(const QString& script)
{
    const QByteArray sql = script.toUtf8();
    const char* rest = sql.constData();
    while (*rest) {
        sqlite3_stmt* raw = nullptr;
        int code = sqlite3_prepare_v2(FConnection, rest, -1, &raw, &rest);
        const std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)> statement(raw, sqlite3_finalize);
        if (code == SQLITE_OK && !raw) // white space or a comment behind the last statement
            continue;
        while (code == SQLITE_OK || code == SQLITE_ROW)
            code = sqlite3_step(raw);
        if (code != SQLITE_DONE)
            ThrowEngineError(FConnection, code, QString());
    }
}

TSQLiteStatement& TSQLiteConnection::Cached(const QString& sql)
{
    if (FCache.size() >= MaxCachedStatements && !FCache.contains(sql))
        FCache.clear();
    auto& statement = FCache[sql];
    if (statement)
        statement->Reset();
    else
        statement = std::make_unique<TSQLiteStatement>(FConnection, sql.toUtf8(), true);
    return *statement;
}

TSQLiteStatement TSQLiteConnection::Prepare(const QString& sql)
{
    return TSQLiteStatement(FConnection, sql.toUtf8(), false);
}

TVariant TSQLiteConnection::Scalar(const QString& sql, const std::vector<TVariant>& values)
{
    TSQLiteStatement& statement = Cached(sql);
    statement.BindAll(values);
    const TVariant result = statement.Step() ? statement.Column(0) : TVariant();
    statement.Reset();
    return result;
}

qint64 TSQLiteConnection::LastInsertRowId() const { return sqlite3_last_insert_rowid(FConnection); }

qint64 TSQLiteConnection::RowsChanged() const { return sqlite3_changes64(FConnection); }

bool TSQLiteConnection::InTransaction() const { return FConnection && sqlite3_get_autocommit(FConnection) == 0; }

void TSQLiteConnection::BackupTo(const QString& path)
{
    // Made before the engine opens it, so that an existing file is never touched.
    QFile target(path);
    if (!target.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        throw EDatabaseError(u"%1: %2"_s.arg(path, target.errorString()));
    target.close();
    sqlite3* copy = nullptr;
    int code = sqlite3_open_v2(TextToPath(path).c_str(), &copy, SQLITE_OPEN_READWRITE, nullptr);
    if (code == SQLITE_OK) {
        if (sqlite3_backup* backup = sqlite3_backup_init(copy, "main", FConnection, "main")) {
            sqlite3_backup_step(backup, -1);
            code = sqlite3_backup_finish(backup);
        } else {
            code = sqlite3_errcode(copy);
        }
    }
    const QString reason = QString::fromUtf8(sqlite3_errstr(code));
    sqlite3_close_v2(copy);
    if (code != SQLITE_OK) {
        QFile::remove(path);
        throw EDatabaseError(u"%1: %2"_s.arg(path, reason), code & 0xFF);
    }
}

qint64 TSQLiteConnection::ChangeStamp()
{
    TSQLiteStatement& others = Cached(u"PRAGMA data_version"_s);
    const qint64 version = others.Step() ? others.ColumnInt64(0) : 0;
    others.Reset();
    return version * (qint64{1} << 40) + sqlite3_total_changes64(FConnection);
}

void TSQLiteConnection::NoteRead(qsizetype bytes)
{
    FReadThroughMap += bytes;
    if (FReadThroughMap > ReadBetweenReleases)
        ReleaseFileMap();
}

void TSQLiteConnection::ReleaseFileMap()
{
    FReadThroughMap = 0;
    if (FConnection)
        Exec(u"PRAGMA mmap_size = 0; PRAGMA mmap_size = %1"_s.arg(MapSize));
}

TSQLiteTransaction::TSQLiteTransaction(TSQLiteConnection& connection)
    : FConnection(connection), FNested(connection.InTransaction())
{
    if (!FNested)
        FConnection.CheckFileIsThere();
    FConnection.Cached(FNested ? u"SAVEPOINT krn"_s : u"BEGIN IMMEDIATE"_s).Execute();
}

TSQLiteTransaction::~TSQLiteTransaction()
{
    if (FDone)
        return;
    try {
        // A full disk may have rolled the transaction back already.
        if (FNested && FConnection.InTransaction()) {
            FConnection.Exec(u"ROLLBACK TO krn; RELEASE krn"_s);
            if (FConnection.OnRollback) // the engine tells of whole transactions only
                FConnection.OnRollback();
        } else if (FConnection.InTransaction()) {
            FConnection.Exec(u"ROLLBACK"_s);
        }
    } catch (const EDatabaseError&) {
        DebugLog(u"[Database] rollback failed"_s);
    }
}

void TSQLiteTransaction::Commit()
{
    FConnection.Cached(FNested ? u"RELEASE krn"_s : u"COMMIT"_s).Execute();
    FDone = true;
}

} // namespace Kestrune
