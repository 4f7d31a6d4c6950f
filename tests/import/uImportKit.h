// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dmMain.h"
#include "uDefaults.h"
#include "uImport_MP3s.h"
#include "uSQLite.h"
#include "uScriptedPrompt.h"
#include "uTagBuilders.h"
#include "uTestFiles.h"

#include <QStringList>

#include <gtest/gtest.h>

namespace Kestrune::Kit {

/// A FLAC file without sound frames: its length stands in its head.
inline QByteArray FlacFile(int seconds, const QList<QByteArray>& comments = {}, const QByteArray& picture = {})
{
    QByteArray bytes = "fLaC" + FlacBlock(0, FlacStreamInfo(44100, 2, 16, static_cast<quint64>(seconds) * 44100));
    if (!picture.isEmpty())
        bytes += FlacBlock(6, FlacPicture(3, "image/x", "", picture));
    return bytes + FlacBlock(4, VorbisComments(comments), true);
}

/// A fresh collection, and the answers to questions about what is in its file.
class TImportCollection : public testing::Test {
protected:
    TImportCollection()
    {
        Defaults() = MakeDefaults();
        FData.CreateNewDB(FPath, FData.GetNewDatabaseSQL());
    }
    void SetUp() override { ASSERT_TRUE(FData.ConnectToDB(FPath)); }

    /// The rows of a query, columns joined by "|" and rows by line feeds.
    QString Rows(const QString& sql)
    {
        TSQLiteConnection other;
        other.Open(FPath, somReadOnly);
        TSQLiteStatement statement = other.Prepare(sql);
        QStringList rows;
        while (statement.Step()) {
            QStringList cells;
            for (int i = 0; i < statement.ColumnCount(); ++i)
                cells += VarToStr(statement.Column(i));
            rows += cells.join(u'|');
        }
        return rows.join(u'\n');
    }

    TTempDir FDir;
    TScriptedPrompt FPrompt;
    QString FPath = FDir.File(QStringLiteral("x.db"));
    TDataModuleMain FData{FPrompt};
};

} // namespace Kestrune::Kit
