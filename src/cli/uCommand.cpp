// SPDX-License-Identifier: GPL-3.0-or-later
#include "uCommand.h"

#include "dmMain.h"

#include <cstdio>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int LockWait = 2000; // milliseconds; nothing else waits here

} // namespace

std::vector<std::unique_ptr<TCommand>> AllCommands()
{
    std::vector<std::unique_ptr<TCommand>> commands;
    commands.push_back(MakeNewCommand());
    commands.push_back(MakeInfoCommand());
    commands.push_back(MakeAddFolderCommand());
    commands.push_back(MakeImportCommand());
    commands.push_back(MakeListCommand());
    commands.push_back(MakeExportCommand());
    commands.push_back(MakeShowCommand());
    commands.push_back(MakeTagsCommand());
    commands.push_back(MakeImageCommand());
    commands.push_back(MakeDiscIdCommand());
    commands.push_back(MakeSearchCommand());
    return commands;
}

TOpenCollection::TOpenCollection(const QString& path) : FData(std::make_unique<TDataModuleMain>(FPrompt))
{
    FData->SetLockWait(LockWait);
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
    const auto size = static_cast<size_t>(utf8.size());
    if (std::fwrite(utf8.constData(), 1, size, stdout) != size)
        throw ECommandError(u"standard output cannot be written"_s);
}

void FlushOutput()
{
    if (std::fflush(stdout) != 0)
        throw ECommandError(u"standard output cannot be written"_s);
}

void PrintError(const QString& sentence)
{
    std::fflush(stdout);
    std::fprintf(stderr, "kestrune-cli: %s\n", qUtf8Printable(Printable(sentence)));
}

QString Printable(QString text)
{
    for (QChar& c : text) {
        if (c.category() == QChar::Other_Control || c == QChar::LineSeparator || c == QChar::ParagraphSeparator)
            c = u' ';
    }
    return text;
}

QString OneLine(const QString& text)
{
    constexpr qsizetype longest = 500;
    const QString line = Printable(text.left(longest));
    return text.size() > longest ? line + u'…' : line;
}

void PrintJson(const QJsonDocument& document, QJsonDocument::JsonFormat format)
{
    PrintLine(QString::fromUtf8(document.toJson(format)).trimmed());
}

} // namespace Kestrune
