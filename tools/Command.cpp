#include "Command.h"

#include <QCommandLineParser>

const std::vector<Command>& Commands()
{
    static const std::vector<Command> commands = {
        commandPaths, commandKey,  commandMd5,   commandEncrypt, commandDecrypt, commandZip,
        commandUnzip, commandDump, commandImage, commandHash,    commandUtf8,    commandUtf16};
    return commands;
}

void RequireArguments(const QCommandLineParser& parser, int least, int most)
{
    const auto count = parser.positionalArguments().size();
    if (count < least) {
        throw UsageError(QStringLiteral("an argument is missing"));
    }
    if (count > most) {
        throw UsageError(
            QStringLiteral("unexpected argument '%1'").arg(parser.positionalArguments().at(most)));
    }
}

void DeclareJson(QCommandLineParser& parser)
{
    parser.addOption({QStringLiteral("json"), QStringLiteral("Print JSON for programs.")});
}

qint64 ParseNumber(const QString& text, const QString& what, qint64 low, qint64 high)
{
    bool isNumber = false;
    const qint64 number = text.toLongLong(&isNumber, 0);
    if (!isNumber || number < low || number > high) {
        throw UsageError(QStringLiteral("%1 takes a number from %2 to %3, got '%4'")
                             .arg(what)
                             .arg(low)
                             .arg(high)
                             .arg(text));
    }
    return number;
}
