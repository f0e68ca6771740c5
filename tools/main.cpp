// orvotool: looks into the client's files and makes them.
//
// Exit codes: 0 done; 1 something could not be done; 2 the command line is wrong.

#include "Command.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <algorithm>
#include <cstdio>
#include <new>

namespace
{

constexpr char introduction[] = "Looks into the data files of the messaging client and makes them.";

void PrintSummary()
{
    std::printf("Usage: orvotool COMMAND [OPTION]... [ARGUMENT]...\n\n%s\n\nCommands:\n",
                introduction);
    for (const Command& command : Commands()) {
        std::printf("  %-9s %s\n", command.name, command.summary);
    }
    std::printf("\nOptions:\n"
                "  -h, --help     Print this help, or that of COMMAND, and exit.\n"
                "  --help-all     Print the help of every command and exit.\n"
                "  -v, --version  Print the version and exit.\n");
}

void PrintEnd()
{
    std::printf("\nExit status:\n"
                "  0 done, 1 something could not be done, 2 wrong usage.\n"
                "\nThe cipher and MD5 protect nothing by today's standards; they read and write\n"
                "existing data.\n");
}

void PrintHelp()
{
    PrintSummary();
    std::printf("\nExamples:\n");
    for (const Command& command : Commands()) {
        std::printf("  $ %s\n", command.example);
    }
    PrintEnd();
}

const QCommandLineOption& HelpOption()
{
    static const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")},
                                         QStringLiteral("Print this help and exit."));
    return help;
}

void Declare(const Command& command, QCommandLineParser& parser)
{
    command.declare(parser);
    parser.addOption(HelpOption());
}

/// What a command does with its options and an example, behind the heading that is given.
void PrintBody(const Command& command, const QCommandLineParser& parser)
{
    std::printf("  %s\n\n", command.summary);
    // Behind the parser's own usage line, which knows no commands.
    const QString help = parser.helpText();
    const auto options = help.indexOf(QLatin1String("Options:\n"));
    std::fputs(help.mid(options + 9).toUtf8().constData(), stdout);
    std::printf("\n  $ %s\n", command.example);
}

void PrintHelp(const Command& command, const QCommandLineParser& parser)
{
    std::printf("Usage: orvotool %s [OPTION]...%s\n\n", command.name, command.arguments);
    PrintBody(command, parser);
}

/// The help of every command. The man page is made of it: an asterisk marks a section, a colon
/// what stands below it.
void PrintAllHelp()
{
    PrintSummary();
    std::printf("\n*Commands in detail*\n");
    for (const Command& command : Commands()) {
        QCommandLineParser parser;
        Declare(command, parser);
        std::printf("\norvotool %s [OPTION]...%s:\n", command.name, command.arguments);
        PrintBody(command, parser);
    }
    PrintEnd();
}

const Command& FindCommand(const QString& name)
{
    const auto& commands = Commands();
    const auto found = std::find_if(commands.begin(), commands.end(), [&](const Command& command) {
        return name == QLatin1String(command.name);
    });
    if (found == commands.end()) {
        throw UsageError(QStringLiteral("unknown command '%1'").arg(name));
    }
    return *found;
}

int RunCommand(const Command& command, const QStringList& arguments)
{
    QCommandLineParser parser;
    Declare(command, parser);
    if (!parser.parse(arguments)) {
        throw UsageError(parser.errorText());
    }
    if (parser.isSet(HelpOption())) {
        PrintHelp(command, parser);
        return 0;
    }
    return command.run(parser);
}

int Run(const QStringList& arguments)
{
    const QString first = arguments.value(1);
    if (first == QLatin1String("-h") || first == QLatin1String("--help")) {
        PrintHelp();
        return 0;
    }
    if (first == QLatin1String("--help-all")) {
        PrintAllHelp();
        return 0;
    }
    if (first == QLatin1String("-v") || first == QLatin1String("--version")) {
        std::printf("orvotool (orvobase) %s\n", ORVO_VERSION);
        return 0;
    }
    if (first.isEmpty()) {
        throw UsageError(QStringLiteral("a command is missing"));
    }
    return RunCommand(FindCommand(first), arguments.mid(1));
}

int Report(const char* command, const char* text, const char* advice)
{
    std::fflush(stdout);
    std::fprintf(stderr, "orvotool%s%s: %s%s\n", *command != '\0' ? " " : "", command, text,
                 advice);
    return *advice != '\0' ? 2 : 1;
}

int RunAndReport(const QStringList& arguments)
{
    const QByteArray command = arguments.value(1).toUtf8();
    const char* const name = command.startsWith('-') ? "" : command.constData();
    try {
        const int code = Run(arguments);
        if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
            return Report(name, "the output could not be written (disk full?)", "");
        }
        return code;
    } catch (const Failure& failure) {
        return Report(name, failure.what(), "");
    } catch (const UsageError& error) {
        return Report(name, error.what(), "; see orvotool --help or orvotool COMMAND --help");
    } catch (const std::bad_alloc&) {
        return Report(name, "out of memory", "");
    }
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    return RunAndReport(QCoreApplication::arguments());
}
