// SPDX-License-Identifier: GPL-3.0-or-later
#include "uKeptText.h"

#include "uDataSet.h"
#include "uObjs.h"
#include "uTHStrings.h"

#include <sqlite3.h>

#include <memory>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

// A row in memory with a column of the type that the collection gives to the user's own fields.
class TScratchColumn {
public:
    TScratchColumn()
    {
        sqlite3* handle = nullptr;
        if (sqlite3_open(":memory:", &handle) == SQLITE_OK)
            sqlite3_exec(handle, "CREATE TABLE Scratch (ID INTEGER PRIMARY KEY, Custom none)", nullptr, nullptr,
                         nullptr);
        FConnection.reset(handle);
        FWrite = Prepare("INSERT OR REPLACE INTO Scratch VALUES (1, ?1)");
        FRead = Prepare("SELECT Custom FROM Scratch");
    }

    QString Keep(const QString& text)
    {
        if (!FWrite || !FRead)
            return text;
        const QByteArray bytes = text.toUtf8();
        sqlite3_bind_text64(FWrite.get(), 1, bytes.constData(), static_cast<sqlite3_uint64>(bytes.size()),
                            SQLITE_TRANSIENT, SQLITE_UTF8);
        sqlite3_step(FWrite.get());
        sqlite3_reset(FWrite.get());
        QString kept = text;
        if (sqlite3_step(FRead.get()) == SQLITE_ROW) {
            const int type = sqlite3_column_type(FRead.get(), 0);
            if (type == SQLITE_INTEGER)
                kept = VarToStr(TVariant(static_cast<qint64>(sqlite3_column_int64(FRead.get(), 0))));
            else if (type == SQLITE_FLOAT)
                kept = VarToStr(TVariant(sqlite3_column_double(FRead.get(), 0)));
        }
        sqlite3_reset(FRead.get());
        return kept;
    }

private:
    struct TClose {
        void operator()(sqlite3* handle) const { sqlite3_close_v2(handle); }
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };
    using TStatement = std::unique_ptr<sqlite3_stmt, TClose>;

    TStatement Prepare(const char* sql)
    {
        sqlite3_stmt* statement = nullptr;
        sqlite3_prepare_v2(FConnection.get(), sql, -1, &statement, nullptr);
        return TStatement(statement);
    }

    std::unique_ptr<sqlite3, TClose> FConnection;
    TStatement FWrite, FRead;
};

} // namespace

QString KeptText(const QString& text)
{
    static TScratchColumn column;
    return column.Keep(text);
}

QString KeptTextNote(const TFieldDef& field, const QString& text, const TDefaults& settings)
{
    if (!field.Custom || ValueKindOf(field, settings) != fkString)
        return {};
    const QString kept = KeptText(text);
    return kept == text ? QString() : GetLanguageString(u"cSKeptAsNumber"_s).arg(text, kept);
}

QStringList KeptTextNotes(const TDataset& cursor, const TAlbumRelease& release, const TDefaults& settings)
{
    QStringList notes;
    for (const TFieldDef& field : cursor.Fields()) {
        if (!field.Custom)
            continue;
        const TVariant value = release.GetItem2(field.Name);
        if (value.typeId() != QMetaType::QString)
            continue;
        if (const QString note = KeptTextNote(field, value.toString(), settings); !note.isEmpty())
            notes << ColumnLabel(field, settings) + u": "_s + note;
    }
    return notes;
}

} // namespace Kestrune
