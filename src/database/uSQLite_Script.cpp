// SPDX-License-Identifier: GPL-3.0-or-later
#include "uSQLite.h"
#include "uTHStrings.h"

#include <QScopeGuard>

#include <sqlite3.h>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int StepsBetweenQuestions = 200000; // of the engine: some milliseconds

// What a script that must not write may do: read. A pragma with a value would change the connection.
int AllowReading(void*, int action, const char* first, const char* second, const char*, const char*)
{
    switch (action) {
    case SQLITE_SELECT:
    case SQLITE_READ:
    case SQLITE_FUNCTION:
    case SQLITE_RECURSIVE: return SQLITE_OK;
    case SQLITE_PRAGMA: {
        // These take the name of a table or index, and only tell.
        const QLatin1StringView name(first);
        const bool tells = name == "table_info"_L1 || name == "table_xinfo"_L1 || name == "index_list"_L1 ||
                           name == "index_info"_L1 || name == "foreign_key_list"_L1 || name == "integrity_check"_L1 ||
                           name == "quick_check"_L1 || name == "foreign_key_check"_L1;
        return !second || tells ? SQLITE_OK : SQLITE_DENY;
    }
    default: return SQLITE_DENY;
    }
}

int AskProgress(void* context)
{
    const auto& progress = *static_cast<const std::function<bool()>*>(context);
    return progress() ? 0 : 1;
}

} // namespace

qint64 TSQLiteConnection::RunScript(const QString& script, bool canWrite, const std::function<bool()>& progress,
                                    const TReceiveRow& receive)
{
    const QByteArray sql = script.toUtf8();
    const char* rest = sql.constData();
    const auto restore = qScopeGuard([this] {
        sqlite3_set_authorizer(FConnection, nullptr, nullptr);
        sqlite3_progress_handler(FConnection, 0, nullptr, nullptr);
    });
    if (!canWrite)
        sqlite3_set_authorizer(FConnection, AllowReading, nullptr);
    std::function<bool()> ask = progress;
    if (progress)
        sqlite3_progress_handler(FConnection, StepsBetweenQuestions, AskProgress, &ask);
    const auto before = sqlite3_total_changes64(FConnection);
    while (*rest) {
        sqlite3_stmt* raw = nullptr;
        const int code = sqlite3_prepare_v2(FConnection, rest, -1, &raw, &rest);
        if (code == SQLITE_AUTH)
            throw EDatabaseError(GetLanguageString(u"cSSQLWritingIsOff"_s), code);
        if (code != SQLITE_OK)
            throw EDatabaseError(QString::fromUtf8(sqlite3_errmsg(FConnection)), code & 0xFF);
        if (!raw) // white space or a comment behind the last statement
            continue;
        TSQLiteStatement statement(FConnection, raw);
        if (!canWrite && sqlite3_stmt_readonly(raw) == 0)
            throw EDatabaseError(GetLanguageString(u"cSSQLWritingIsOff"_s), SQLITE_AUTH);
        if (sqlite3_column_count(raw) > 0)
            receive(statement, true);
        while (statement.Step())
            receive(statement, false);
    }
    return sqlite3_total_changes64(FConnection) - before;
}

} // namespace Kestrune
