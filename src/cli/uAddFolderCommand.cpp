// SPDX-License-Identifier: GPL-3.0-or-later
#include "dmMain.h"
#include "frmAddFiles.h"
#include "uCommand.h"

#include <QEventLoop>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

#include <cstdio>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

class TAddFolderCommand final : public TCommand {
public:
    QString Name() const override { return u"add-folder"_s; }
    QString Summary() const override { return u"add audio folders and files to a collection"_s; }
    void Describe(QCommandLineParser& parser) const override
    {
        parser.addPositionalArgument(u"FILE"_s, u"the collection"_s);
        parser.addPositionalArgument(u"PATH..."_s, u"folders and files to add"_s);
        parser.addOption({u"json"_s, u"end with one JSON object"_s});
    }
    void Run(const QCommandLineParser& parser) override
    {
        const QStringList arguments = Arguments(parser, 2);
        QStringList paths;
        for (const QString& path : arguments.mid(1)) {
            if (!QFileInfo::exists(path))
                throw ECommandError(u"%1: no such file or folder"_s.arg(path));
            paths.append(QFileInfo(path).absoluteFilePath());
        }
        TOpenCollection collection(arguments.front());
        TAddFilesRun run(collection.Data(), paths);
        QJsonArray errors;
        int tracks = 0;
        QObject::connect(&run, &TAddFilesRun::releaseStored, &run, [&](qint64 id, const QString& name) {
            PrintLine(u"stored %1 %2"_s.arg(id).arg(OneLine(name)));
            FlushOutput();
            tracks += static_cast<int>(
                collection.Data().ExecSQLAndGetID(u"SELECT count(*) FROM Tracks2 WHERE ReleaseId = %1"_s.arg(id)));
        });
        QObject::connect(&run, &TAddFilesRun::fileFailed, &run, [&](const QString& file, const QString& sentence) {
            errors.append(QJsonObject{{u"file"_s, file}, {u"sentence"_s, sentence}});
            if (!parser.isSet(u"json"_s))
                std::fprintf(stderr, "%s: %s\n", qUtf8Printable(file), qUtf8Printable(sentence));
        });
        QEventLoop loop;
        QObject::connect(&run, &TAddFilesRun::finished, &loop, &QEventLoop::quit);
        run.Start();
        loop.exec();
        if (!run.Error().isEmpty())
            errors.append(QJsonObject{{u"file"_s, arguments.front()}, {u"sentence"_s, run.Error()}});
        if (parser.isSet(u"json"_s))
            PrintJson(QJsonDocument(QJsonObject{{u"releases"_s, run.Releases()},
                                                {u"tracks"_s, tracks},
                                                {u"files"_s, run.Files()},
                                                {u"errors"_s, errors},
                                                {u"seconds"_s, run.ElapsedSeconds()}}),
                      QJsonDocument::Compact);
        else
            PrintLine(u"%1 releases, %2 tracks from %3 files in %4 s"_s.arg(run.Releases())
                          .arg(tracks)
                          .arg(run.Files())
                          .arg(run.ElapsedSeconds(), 0, 'f', 2));
        if (!run.Error().isEmpty())
            throw ECommandError(run.Error());
    }
};

} // namespace

std::unique_ptr<TCommand> MakeAddFolderCommand() { return std::make_unique<TAddFolderCommand>(); }

} // namespace Kestrune
