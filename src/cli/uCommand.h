// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uPrompt.h"

#include <QCommandLineParser>
#include <QJsonDocument>
#include <QString>
#include <QStringList>

#include <memory>
#include <stdexcept>
#include <vector>

namespace Kestrune {

class TDataModuleMain;

/// A call with wrong words: exit code 2.
class EUsageError : public std::runtime_error {
public:
    explicit EUsageError(const QString& text) : std::runtime_error(text.toStdString()) {}
};

/// Work that could not be done: exit code 1, one sentence on standard error.
class ECommandError : public std::runtime_error {
public:
    explicit ECommandError(const QString& text) : std::runtime_error(text.toStdString()) {}
};

/// Keeps what the gateway tells the user, so that it becomes the command's error. The only question that a command
/// meets, whether a collection of the first format shall be converted, is answered by the option --convert.
class TConsolePrompt final : public TPrompt {
public:
    void ShowError(const QString& text) override { FMessage = text; }
    void ShowInformation(const QString&) override {}
    bool AskBeforeLoss(const QString& text, const QString&) override { return AskYesNo(text); }
    bool AskYesNo(const QString& text) override
    {
        FMessage = FConverts ? QString() : text + QStringLiteral(" (--convert)");
        return FConverts;
    }
    static void SetConverts(bool converts) { FConverts = converts; }
    QString AskOpenFile(const TFileDialogRequest&) override { return {}; }
    QString AskSaveFile(const TFileDialogRequest&) override { return {}; }
    QString AskFolder(const QString&, const QString&) override { return {}; }
    const QString& Message() const { return FMessage; }

private:
    QString FMessage;
    inline static bool FConverts = false;
};

/// Exit code 1 when standard error has told why already.
class EToldError : public std::exception {};

/// One subcommand.
class TCommand {
public:
    virtual ~TCommand() = default;
    virtual QString Name() const = 0;
    /// One line for the list of commands.
    virtual QString Summary() const = 0;
    virtual void Describe(QCommandLineParser& parser) const = 0;
    /// Does the work; throws EUsageError, ECommandError or any other std::exception.
    virtual void Run(const QCommandLineParser& parser) = 0;
};

/// All subcommands in the order of the help.
std::vector<std::unique_ptr<TCommand>> AllCommands();

std::unique_ptr<TCommand> MakeNewCommand();
std::unique_ptr<TCommand> MakeInfoCommand();
std::unique_ptr<TCommand> MakeAddFolderCommand();
std::unique_ptr<TCommand> MakeImportCommand();
std::unique_ptr<TCommand> MakeListCommand();
std::unique_ptr<TCommand> MakeExportCommand();
std::unique_ptr<TCommand> MakeShowCommand();
std::unique_ptr<TCommand> MakeTagsCommand();
std::unique_ptr<TCommand> MakeImageCommand();
std::unique_ptr<TCommand> MakeDiscIdCommand();
std::unique_ptr<TCommand> MakeSearchCommand();

/// Opens a collection for a command, or throws ECommandError with the reason.
class TOpenCollection {
public:
    explicit TOpenCollection(const QString& path);
    ~TOpenCollection();
    TDataModuleMain& Data() { return *FData; }

private:
    TConsolePrompt FPrompt;
    std::unique_ptr<TDataModuleMain> FData;
};

/// The positional arguments; throws EUsageError unless there are `least` to `most` of them.
QStringList Arguments(const QCommandLineParser& parser, int least, int most = -1);

/// Prints a line in UTF-8; throws ECommandError when standard output takes it no more.
void PrintLine(const QString& line);
/// Hands what was printed on at once.
void FlushOutput();
/// A sentence on standard error, behind what was printed.
void PrintError(const QString& sentence);
/// Control characters become blanks: they belong to no terminal.
QString Printable(QString text);
/// A text for one cell of a line: control characters become blanks, and what is very long is cut.
QString OneLine(const QString& text);
void PrintJson(const QJsonDocument& document, QJsonDocument::JsonFormat format = QJsonDocument::Indented);

} // namespace Kestrune
