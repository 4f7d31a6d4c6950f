// SPDX-License-Identifier: GPL-3.0-or-later
#include "uCommand.h"
#include "uDebugLog.h"
#include "uDefaults.h"
#include "uFilePath.h"

#include <QGuiApplication>

#include <algorithm>
#include <cstdio>

using namespace Kestrune;
using namespace Qt::StringLiterals;

namespace {

void PrintHelp(const std::vector<std::unique_ptr<TCommand>>& commands)
{
    PrintLine(u"Usage: kestrune-cli COMMAND [options] [arguments]\n\nCommands:"_s);
    for (const auto& command : commands)
        PrintLine(u"  %1%2"_s.arg(command->Name(), -14).arg(command->Summary()));
    PrintLine(u"\n--help, also behind a command, and --version are understood.\n"
              "Exit code: 0 done, 1 failed, 2 wrong usage."_s);
}

int Fail(const QString& sentence, int code)
{
    PrintError(sentence);
    return code;
}

int RunCommand(TCommand& command, const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(command.Summary());
    const QCommandLineOption help({u"h"_s, u"help"_s}, u"show this help"_s);
    const QCommandLineOption version({u"v"_s, u"version"_s}, u"show the version"_s);
    parser.addOption(help);
    parser.addOption(version);
    const QCommandLineOption convert(u"convert"_s, u"convert a collection of the first format when it is opened"_s);
    parser.addOption(convert);
    parser.addPositionalArgument(command.Name(), command.Summary());
    command.Describe(parser);
    if (!parser.parse(arguments))
        return Fail(parser.errorText(), 2);
    if (parser.isSet(help)) {
        PrintLine(parser.helpText());
        return 0;
    }
    if (parser.isSet(version)) {
        PrintLine(u"kestrune-cli "_s + QCoreApplication::applicationVersion());
        return 0;
    }
    TConsolePrompt::SetConverts(parser.isSet(convert));
    try {
        command.Run(parser);
        FlushOutput();
        return 0;
    } catch (const EToldError&) {
        return 1;
    } catch (const EUsageError& error) {
        return Fail(QString::fromUtf8(error.what()), 2);
    } catch (const std::exception& error) {
        return Fail(QString::fromUtf8(error.what()), 1);
    }
}

} // namespace

int main(int argc, char** argv)
{
    // Standard error belongs to our own sentences.
    qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext&, const QString& text) { DebugLog(u"[Qt] "_s + text); });
    // Image plugins need a GUI application; no display is needed for it.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    int programOnly = std::min(argc, 1); // Qt has no options of its own here
    const QGuiApplication application(programOnly, argv);
    QCoreApplication::setApplicationName(u"kestrune-cli"_s);
    QCoreApplication::setApplicationVersion(QStringLiteral(KESTRUNE_VERSION));
    QStringList arguments; // in the text form of paths, so that any file name can be given
    for (int i = 0; i < argc; ++i)
        arguments << PathToText(argv[i]);
    const auto commands = AllCommands();
    const QString word = arguments.value(1);
    if (word == "--help"_L1 || word == "-h"_L1) {
        PrintHelp(commands);
        return 0;
    }
    if (word == "--version"_L1 || word == "-v"_L1) {
        PrintLine(u"kestrune-cli "_s + QCoreApplication::applicationVersion());
        return 0;
    }
    for (const auto& command : commands) {
        if (command->Name() != word)
            continue;
        LoadSettings();
        if (const QString broken = Defaults().BrokenSettingsFile; !broken.isEmpty())
            Fail(u"the settings file could not be read and was kept as %1; default settings apply"_s.arg(broken), 0);
        return RunCommand(*command, arguments);
    }
    return Fail(word.isEmpty() ? u"a command is needed; see --help"_s : u"no command %1; see --help"_s.arg(word), 2);
}
