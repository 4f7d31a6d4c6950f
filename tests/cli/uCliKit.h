// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uTestFiles.h"

#include <QJsonDocument>
#include <QProcess>
#include <QProcessEnvironment>

#include <gtest/gtest.h>

namespace Kestrune {

struct TCliResult {
    int Code = -1;
    QByteArray Out;
    QByteArray Err;
    QJsonDocument Json() const { return QJsonDocument::fromJson(Out); }
};

/// Runs the command-line program as a process of its own, with settings of its own.
class TCliTest : public testing::Test {
protected:
    void Prepare(QProcess& process, const QStringList& arguments)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), FDir.File(QStringLiteral("config")));
        environment.insert(QStringLiteral("XDG_DATA_HOME"), FDir.File(QStringLiteral("data")));
        process.setProcessEnvironment(environment);
        process.setProgram(QString::fromUtf8(KESTRUNE_CLI));
        process.setArguments(arguments);
    }
    TCliResult Run(const QStringList& arguments)
    {
        QProcess process;
        Prepare(process, arguments);
        process.start();
        process.waitForFinished(120000);
        return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1, process.readAllStandardOutput(),
                process.readAllStandardError()};
    }

    Kit::TTempDir FDir;
    QString FPath = FDir.File(QStringLiteral("x.db"));
};

} // namespace Kestrune
