// SPDX-License-Identifier: GPL-3.0-or-later
#include "dmMain.h"
#include "uCommand.h"
#include "uImport.h"
#include "uImportRun.h"

#include <QEventLoop>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

#include <cstdio>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

const QString JsonOption = u"json"_s;

// Runs one job to its end and serves the worker meanwhile.
void RunToEnd(TImportRun& run)
{
    QEventLoop loop;
    QObject::connect(&run, &TImportRun::finished, &loop, &QEventLoop::quit);
    if (!run.Start())
        throw ECommandError(u"%1 %2"_s.arg(run.MissingDriver()->Sentence, run.MissingDriver()->URL));
    loop.exec();
}

// The parts of a source that were passed over, printed as they come and kept for the JSON object.
class TRunErrors {
public:
    TRunErrors(TImportRun& run, bool print)
    {
        QObject::connect(&run, &TImportRun::itemFailed, &run, [this, print](const QString& item, const QString& why) {
            Add(item, why);
            if (print)
                std::fprintf(stderr, "%s: %s\n", qUtf8Printable(Printable(item)), qUtf8Printable(Printable(why)));
        });
    }
    void Add(const QString& item, const QString& sentence)
    {
        FList.append(QJsonObject{{u"file"_s, item}, {u"sentence"_s, sentence}});
    }
    const QJsonArray& List() const { return FList; }

private:
    QJsonArray FList;
};

// Imports by the job, prints a line per stored release and a summary; throws when the source fails.
void ImportWith(const QCommandLineParser& parser, const QString& file, const TImportJob& job)
{
    TOpenCollection collection(file);
    TImportRun run(collection.Data(), job);
    const bool json = parser.isSet(JsonOption);
    TRunErrors errors(run, !json);
    int tracks = 0;
    QObject::connect(&run, &TImportRun::releaseStored, &run, [&](qint64 id, const QString& name) {
        PrintLine(u"stored %1 %2"_s.arg(id).arg(OneLine(name)));
        FlushOutput();
        tracks += static_cast<int>(
            collection.Data().ExecSQLAndGetID(u"SELECT count(*) FROM Tracks2 WHERE ReleaseId = %1"_s.arg(id)));
    });
    RunToEnd(run);
    if (!run.Error().isEmpty())
        errors.Add(job.InputPath, run.Error());
    if (json)
        PrintJson(QJsonDocument(QJsonObject{{u"releases"_s, run.Releases()},
                                            {u"tracks"_s, tracks},
                                            {u"files"_s, run.Tracks()},
                                            {u"errors"_s, errors.List()},
                                            {u"seconds"_s, run.ElapsedSeconds()}}),
                  QJsonDocument::Compact);
    else
        PrintLine(u"%1 releases, %2 tracks from %3 files in %4 s"_s.arg(run.Releases())
                      .arg(tracks)
                      .arg(run.Tracks())
                      .arg(run.ElapsedSeconds(), 0, 'f', 2));
    if (!run.Error().isEmpty())
        throw ECommandError(run.Error());
}

// Prints what the source holds.
void ListWith(const QCommandLineParser& parser, const QString& file, const TImportJob& job)
{
    TOpenCollection collection(file);
    TImportRun run(collection.Data(), job);
    const bool json = parser.isSet(JsonOption);
    const TRunErrors errors(run, !json);
    QJsonArray releases;
    QObject::connect(&run, &TImportRun::releasesFound, &run, [&](const std::vector<TReleaseFoundItem>& items) {
        for (const TReleaseFoundItem& item : items) {
            const QString key = VarToStr(item.ReleaseID);
            if (json)
                releases.append(QJsonObject{{u"id"_s, key},
                                            {u"artist"_s, item.Artist},
                                            {u"release"_s, item.ReleaseName},
                                            {u"year"_s, item.ReleaseYear},
                                            {u"tracks"_s, item.TracksCount}});
            else
                PrintLine(QStringList{OneLine(key), OneLine(item.Artist), OneLine(item.ReleaseName),
                                      OneLine(item.ReleaseYear), QString::number(item.TracksCount)}
                              .join(u'\t'));
        }
    });
    RunToEnd(run);
    if (json)
        PrintJson(QJsonDocument(QJsonObject{{u"releases"_s, releases}, {u"errors"_s, errors.List()}}),
                  QJsonDocument::Compact);
    if (!run.Error().isEmpty())
        throw ECommandError(run.Error());
}

QString ExistingPath(const QString& path)
{
    if (!QFileInfo::exists(path))
        throw ECommandError(u"%1: no such file or folder"_s.arg(path));
    return QFileInfo(path).absoluteFilePath();
}

class TAddFolderCommand final : public TCommand {
public:
    QString Name() const override { return u"add-folder"_s; }
    QString Summary() const override { return u"add audio folders and files to a collection"_s; }
    void Describe(QCommandLineParser& parser) const override
    {
        parser.addPositionalArgument(u"FILE"_s, u"the collection"_s);
        parser.addPositionalArgument(u"PATH..."_s, u"folders and files to add"_s);
        parser.addOption({JsonOption, u"end with one JSON object"_s});
    }
    void Run(const QCommandLineParser& parser) override
    {
        const QStringList arguments = Arguments(parser, 2);
        QStringList paths;
        for (const QString& path : arguments.mid(1))
            paths.append(ExistingPath(path));
        ImportWith(parser, arguments.front(), AddFilesJob(paths));
    }
};

class TImportCommand final : public TCommand {
public:
    QString Name() const override { return u"import"_s; }
    QString Summary() const override { return u"import from a source: audio folders, other programs"_s; }
    void Describe(QCommandLineParser& parser) const override
    {
        QStringList names;
        for (const TImporterClass& source : ImporterClasses())
            names += u"%1 (%2)"_s.arg(ShortName(source), source.GetDisplayName());
        parser.addPositionalArgument(u"FILE"_s, u"the collection"_s);
        parser.addPositionalArgument(u"SOURCE"_s, u"file, folder or text that the source asks for"_s);
        parser.addOption({u"from"_s, u"kind of source: "_s + names.join(u", "_s), u"CLASS"_s});
        parser.addOption({u"list"_s, u"print the releases of the source and change nothing"_s});
        parser.addOption(
            {u"ids"_s, u"import only these keys, as --list prints them; further keys may follow"_s, u"KEY..."_s});
        parser.addOption({u"option"_s, u"an option of the source, once for each"_s + OptionNames(), u"NAME=VALUE"_s});
        parser.addOption({JsonOption, u"end with one JSON object"_s});
    }
    void Run(const QCommandLineParser& parser) override
    {
        const bool someOnly = parser.isSet(u"ids"_s);
        const QStringList arguments = Arguments(parser, 2, someOnly ? -1 : 2);
        TImportJob job;
        job.Class = SourceOf(parser.value(u"from"_s));
        const TKRNImporterInputType input = job.Class->ImporterType;
        job.InputPath = input == iitFile || input == iitFolder ? ExistingPath(arguments[1]) : arguments[1];
        if (input == iitMemo)
            job.Data = arguments[1];
        for (const QString& key : parser.values(u"ids"_s) + arguments.mid(2))
            job.IDsArray.emplace_back(key);
        job.Options = OptionsOf(*job.Class, parser.values(u"option"_s));
        if (parser.isSet(u"list"_s)) {
            job.JobType = ijtGetReleasesList;
            return ListWith(parser, arguments.front(), job);
        }
        ImportWith(parser, arguments.front(), job);
    }

private:
    static inline const QString ClassPrefix = u"TKRNImporter_"_s;

    static QString ShortName(const TImporterClass& source) { return source.ClassName.mid(ClassPrefix.size()); }

    // "; MP3s: covers=yes, back-cover=yes" for each source that has some.
    static QString OptionNames()
    {
        QString text;
        for (const TImporterClass& source : ImporterClasses()) {
            const std::unique_ptr<TImportOptions> options = source.MakeOptions();
            QStringList names;
            for (const QString& name : options->Names())
                names += u"%1=%2"_s.arg(name, options->Get(name));
            if (!names.isEmpty())
                text += u"; %1: %2"_s.arg(ShortName(source), names.join(u", "_s));
        }
        return text;
    }

    static std::shared_ptr<const TImportOptions> OptionsOf(const TImporterClass& source, const QStringList& given)
    {
        std::shared_ptr<TImportOptions> options = source.MakeOptions();
        for (const QString& text : given)
            if (!options->Set(text.section(u'=', 0, 0), text.section(u'=', 1)))
                throw EUsageError(u"%1 is no option of %2"_s.arg(text, ShortName(source)));
        return options;
    }

    static const TImporterClass* SourceOf(const QString& name)
    {
        if (name.isEmpty())
            throw EUsageError(u"--from is missing"_s);
        const TImporterClass* found = FindImporterClass(name);
        if (!found)
            found = FindImporterClass(ClassPrefix + name);
        if (!found)
            throw EUsageError(u"%1 is no kind of source"_s.arg(name));
        return found;
    }
};

} // namespace

std::unique_ptr<TCommand> MakeAddFolderCommand() { return std::make_unique<TAddFolderCommand>(); }

std::unique_ptr<TCommand> MakeImportCommand() { return std::make_unique<TImportCommand>(); }

} // namespace Kestrune
