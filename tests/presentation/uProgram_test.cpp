// SPDX-License-Identifier: GPL-3.0-or-later
// The window program as a process.
#include "dmMain.h"
#include "uScriptedPrompt.h"
#include "uTestFiles.h"

#include <QFile>
#include <QProcess>
#include <QTest>

#include <gtest/gtest.h>

#include <csignal>

namespace Kestrune {

using namespace Qt::StringLiterals;

TEST(Program, ASignalToEndClosesItInOrder)
{
    Kit::TTempDir dir;
    const QString collection = dir.File(u"c.db"_s);
    {
        Kit::TScriptedPrompt prompt;
        TDataModuleMain data(prompt);
        data.CreateNewDB(collection, data.GetNewDatabaseSQL());
    }
    const QString settings = dir.Write(u"config/Kestrune/Kestrune/Kestrune.ini"_s,
                                       "[General]\nDBPath=" + collection.toUtf8() + "\nCurrentView=2\n");
    for (const int signal : {SIGTERM, SIGHUP, SIGINT}) {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"XDG_CONFIG_HOME"_s, dir.File(u"config"_s));
        environment.insert(u"XDG_DATA_HOME"_s, dir.File(u"data"_s));
        environment.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
        process.setProcessEnvironment(environment);
        process.start(QString::fromUtf8(KESTRUNE_PROGRAM), QStringList());
        // The collection is open as soon as its log is there.
        ASSERT_TRUE(QTest::qWaitFor([&] { return QFile::exists(collection + u"-shm"_s); }, 30000));
        ::kill(static_cast<pid_t>(process.processId()), signal);
        ASSERT_TRUE(process.waitForFinished(30000)) << signal;
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit) << signal;
        EXPECT_EQ(process.exitCode(), 0) << signal;
        EXPECT_FALSE(QFile::exists(collection + u"-wal"_s)) << "the collection was closed";
        EXPECT_TRUE(Kit::ReadAll(settings).contains("MainForm")) << "the settings were written";
        Kit::WriteAll(settings, "[General]\nDBPath=" + collection.toUtf8() + "\n");
    }
}

} // namespace Kestrune
