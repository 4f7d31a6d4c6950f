// SPDX-License-Identifier: GPL-3.0-or-later
#include "dmMain.h"
#include "uCommand.h"
#include "uFilePath.h"

#include <QFileInfo>
#include <QJsonObject>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

class TNewCommand final : public TCommand {
public:
    QString Name() const override { return u"new"_s; }
    QString Summary() const override { return u"make an empty collection"_s; }
    void Describe(QCommandLineParser& parser) const override
    {
        parser.addPositionalArgument(u"FILE"_s, u"the file to make; it must not exist"_s);
    }
    void Run(const QCommandLineParser& parser) override
    {
        const QString path = Arguments(parser, 1, 1).front();
        if (QFileInfo::exists(path))
            throw ECommandError(u"%1 exists already"_s.arg(path));
        TConsolePrompt prompt;
        TDataModuleMain data(prompt);
        data.CreateNewDB(path, data.GetNewDatabaseSQL());
    }
};

class TInfoCommand final : public TCommand {
public:
    QString Name() const override { return u"info"_s; }
    QString Summary() const override { return u"tell what a collection holds"_s; }
    void Describe(QCommandLineParser& parser) const override
    {
        parser.addPositionalArgument(u"FILE"_s, u"the collection"_s);
        parser.addOption({u"json"_s, u"print one JSON object"_s});
    }
    void Run(const QCommandLineParser& parser) override
    {
        const QString path = Arguments(parser, 1, 1).front();
        TOpenCollection collection(path);
        const auto count = [&](const QString& sql) { return collection.Data().ExecSQLAndGetID(sql); };
        const std::pair<QString, qint64> figures[] = {
            {u"version"_s, collection.Data().GetDBVersion()},
            {u"releases"_s, count(u"SELECT count(*) FROM Releases2"_s)},
            {u"tracks"_s, count(u"SELECT count(*) FROM Tracks2"_s)},
            {u"credits"_s, count(u"SELECT count(*) FROM Musicians2"_s)},
            {u"pictures"_s, count(u"SELECT (SELECT count(LargePicture) + count(LargePictureBack) + "
                                  "count(LargePictureMedia) FROM Releases2) + "
                                  "(SELECT count(Picture) FROM OtherPictures2)"_s)},
            {u"fileBytes"_s, QFileInfo(path).size()},
        };
        QJsonObject object;
        for (const auto& [name, value] : figures) {
            object.insert(name, value);
            if (!parser.isSet(u"json"_s))
                PrintLine(u"%1\t%2"_s.arg(name).arg(value));
        }
        if (parser.isSet(u"json"_s))
            PrintJson(QJsonDocument(object));
    }
};

} // namespace

std::unique_ptr<TCommand> MakeNewCommand() { return std::make_unique<TNewCommand>(); }
std::unique_ptr<TCommand> MakeInfoCommand() { return std::make_unique<TInfoCommand>(); }

} // namespace Kestrune
