#pragma once

#include <QString>

#include <stdexcept>
#include <vector>

class QCommandLineParser;

/// One command of the tool. The table of all of them is the one source of the help texts, the
/// man page and the shell completion.
struct Command {
    const char* name;
    const char*
        arguments; ///< What follows the options in the usage line, behind a space; or nothing.
    const char* summary;
    const char* example;
    void (*declare)(QCommandLineParser& parser);
    /// Returns the exit code, 0 or 1; throws what follows.
    int (*run)(const QCommandLineParser& parser);
};

const std::vector<Command>& Commands();

extern const Command commandPaths, commandKey, commandMd5, commandEncrypt, commandDecrypt,
    commandZip, commandUnzip, commandDump, commandImage, commandHash, commandUtf8, commandUtf16;

/// Ends the program with one line on stderr and the exit code 1: something could not be done.
struct Failure : std::runtime_error {
    explicit Failure(const QString& text) : std::runtime_error(text.toStdString()) {}
};

/// The same with 2: the command line is wrong, and nothing was done.
struct UsageError : std::runtime_error {
    explicit UsageError(const QString& text) : std::runtime_error(text.toStdString()) {}
};

/// Throws a UsageError unless there are `least` to `most` positional arguments.
void RequireArguments(const QCommandLineParser& parser, int least, int most);

/// Declares `--json`.
void DeclareJson(QCommandLineParser& parser);

/// A whole number within bounds, decimal or 0x...; throws a UsageError naming `what`.
qint64 ParseNumber(const QString& text, const QString& what, qint64 low, qint64 high);
