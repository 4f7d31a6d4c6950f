// SPDX-License-Identifier: GPL-3.0-or-later
// bench_import COLLECTION PATH...: imports folders of audio files into a new collection and prints what it took.
#include "dmMain.h"
#include "uDefaults.h"
#include "uImport_MP3s.h"
#include "uScriptedPrompt.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QStringList>

#include <sys/resource.h>

#include <cstdio>

using namespace Kestrune;
using namespace Qt::StringLiterals;

namespace {

void Print(const QString& line) { std::printf("%s\n", line.toUtf8().constData()); }

long PeakMegabytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
}

int Run(const QStringList& arguments)
{
    Defaults() = MakeDefaults();
    Kit::TScriptedPrompt prompt;
    TDataModuleMain data(prompt);
    data.CreateNewDB(arguments[1], data.GetNewDatabaseSQL());
    if (!data.ConnectToDB(arguments[1])) {
        Print(prompt.Errors.join(u' '));
        return 1;
    }
    int releases = 0, files = 0, errors = 0;
    QString failure;
    QElapsedTimer clock;
    clock.start();
    {
        TKRNImporter_MP3s importer(data);
        importer.SetOptions(TMP3ScanOptions::New());
        importer.SetInputPath(arguments.mid(2).join(u'|'));
        importer.SetOnDone([&](TKRNImporter&, int releasesCount, int filesCount) {
            releases = releasesCount;
            files = filesCount;
        });
        importer.SetOnError([&](TKRNImporter&, const QString& error) { failure = error; });
        importer.SetOnItemError([&](TKRNImporter&, const QString&, const QString&) { ++errors; });
        importer.Start();
        importer.WaitFor();
    }
    const double seconds = static_cast<double>(clock.nsecsElapsed()) / 1e9;
    if (!failure.isEmpty()) {
        Print(failure);
        return 1;
    }
    Print(u"releases %1 files %2 errors %3 seconds %4 files/s %5 peak MB %6"_s.arg(releases)
              .arg(files)
              .arg(errors)
              .arg(seconds, 0, 'f', 3)
              .arg(files / seconds, 0, 'f', 0)
              .arg(PeakMegabytes()));
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QGuiApplication::arguments();
    if (arguments.size() < 3) {
        Print(u"usage: bench_import COLLECTION PATH..."_s);
        return 2;
    }
    return Run(arguments);
}
