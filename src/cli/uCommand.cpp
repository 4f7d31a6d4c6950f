// SPDX-License-Identifier: GPL-3.0-or-later
#include "uCommand.h"

#include "dmMain.h"

#include <cstdio>

namespace Kestrune {

using namespace Qt::StringLiterals;

std::vector<std::unique_ptr<TCommand>> AllCommands()
{
    std::vector<std::unique_ptr<TCommand>> commands;
    commands.push_back(MakeNewCommand());
    commands.push_back(MakeInfoCommand());
    commands.push_back(MakeAddFolderCommand());
    commands.push_back(MakeListCommand());
    commands.push_back(MakeShowCommand());
    commands.push_back(MakeTagsCommand());
    return commands;
}

TOpenCollection::TOpenCollection(const QString& path) : FData(std::make_unique<TDataModuleMain>(FPrompt))
{
    if (!FData->ConnectToDB(path))
        throw ECommandError(u"%1: %2"_s.arg(path, FPrompt.Message()));
}

TOpenCollection::~TOpenCollection() = default;

QStringList Arguments(const QCommandLineParser& parser, int least, int most)
{
    const QStringList arguments = parser.positionalArguments().mid(1);
    if (arguments.size() < least)
        throw EUsageError(u"too few arguments"_s);
    if (most >= 0 && arguments.size() > most)
        throw EUsageError(u"too many arguments"_s);
    return arguments;
}

void PrintLine(const QString& line)
{
    const QByteArray utf8 = line.toUtf8() + '\n';
    std::fwrite(utf8.constData(), 1, static_cast<size_t>(utf8.size()), stdout);
    std::fflush(stdout);
}

void PrintJson(const QJsonDocument& document, QJsonDocument::JsonFormat format)
{
    PrintLine(QString::fromUtf8(document.toJson(format)).trimmed());
}

} // namespace Kestrune
