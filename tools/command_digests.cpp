// key, md5 and hash: what is computed from bytes.

#include "Command.h"
#include "InputOutput.h"
#include "Key.h"

#include <CCrypt.h>
#include <CQSString.h>

#include <QCommandLineParser>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>

namespace
{

// --- key -----------------------------------------------------------------------------------

void DeclareNothing(QCommandLineParser&) {}

int RunKey(const QCommandLineParser& parser)
{
    RequireArguments(parser, 2, 2);
    const QStringList arguments = parser.positionalArguments();
    std::printf("%s\n", qUtf8Printable(HexText(DeriveKey(arguments[0], arguments[1]))));
    return 0;
}

// --- md5 -----------------------------------------------------------------------------------

QByteArray HexDigestOf(Input& input)
{
    constexpr qint64 step = 1 << 18;
    tagMD5State state;
    CCrypt::MD5_Init(&state);
    for (QByteArray bytes = input.Read(step); !bytes.isEmpty(); bytes = input.Read(step)) {
        CCrypt::MD5_Update(&state, reinterpret_cast<const unsigned char*>(bytes.constData()),
                           static_cast<unsigned long>(bytes.size()));
    }
    QByteArray digest(16, '\0');
    CCrypt::MD5_Final(reinterpret_cast<unsigned char*>(digest.data()), &state);
    return digest.toHex();
}

/// As md5sum: a name with a backslash or a line break is escaped, and the line says so.
QByteArray SumLine(const QByteArray& digest, const QString& name)
{
    QByteArray escaped = name.toUtf8();
    escaped.replace('\\', "\\\\").replace('\n', "\\n").replace('\r', "\\r");
    const bool isEscaped = escaped != name.toUtf8();
    return (isEscaped ? "\\" : "") + digest + "  " + escaped + '\n';
}

QString UnescapedName(QByteArray name)
{
    QByteArray plain;
    for (int i = 0; i < name.size(); ++i) {
        const bool escape = name[i] == '\\' && i + 1 < name.size();
        const char c = escape ? name[++i] : name[i];
        plain += escape && c == 'n' ? '\n' : escape && c == 'r' ? '\r' : c;
    }
    return QString::fromUtf8(plain);
}

/// One line of a list of sums; false when it is none.
bool ParseSumLine(QByteArray line, QByteArray& digest, QString& name)
{
    const bool escaped = line.startsWith('\\');
    line.remove(0, escaped ? 1 : 0);
    digest = line.left(32).toLower();
    const bool isSum = line.size() > 34 && QByteArray::fromHex(digest).toHex() == digest &&
                       line[32] == ' ' && (line[33] == ' ' || line[33] == '*');
    name = escaped ? UnescapedName(line.mid(34)) : QString::fromUtf8(line.mid(34));
    return isSum;
}

struct CheckCounts {
    int checked = 0;
    int different = 0;
    int unreadable = 0;
    int noSums = 0;
};

void CheckOne(const QByteArray& digest, const QString& name, CheckCounts& counts)
{
    ++counts.checked;
    const QByteArray shown = name.toUtf8();
    try {
        Input file(name);
        const bool same = HexDigestOf(file) == digest;
        counts.different += same ? 0 : 1;
        std::printf("%s: %s\n", shown.constData(), same ? "OK" : "FAILED");
    } catch (const Failure& failure) {
        ++counts.unreadable;
        std::fprintf(stderr, "orvotool md5: %s\n", failure.what());
        std::printf("%s: FAILED open or read\n", shown.constData());
    }
}

void Warn(int count, const char* what)
{
    if (count > 0) {
        std::fprintf(stderr, "orvotool md5: %s: %d\n", what, count);
    }
}

int CheckSums(const QString& listName)
{
    Input list(listName);
    CheckCounts counts;
    const QList<QByteArray> lines = list.ReadAll(1LL << 30).split('\n');
    for (const QByteArray& line : lines) {
        QByteArray digest;
        QString name;
        if (ParseSumLine(line, digest, name)) {
            CheckOne(digest, name, counts);
        } else {
            counts.noSums += line.isEmpty() ? 0 : 1;
        }
    }
    std::fflush(stdout);
    if (counts.checked == 0) {
        throw Failure(list.GetName() + QStringLiteral(": holds no line of a sum and a name"));
    }
    Warn(counts.noSums, "lines that are no sums");
    Warn(counts.unreadable, "files that could not be read");
    Warn(counts.different, "computed sums that did NOT match");
    return counts.different + counts.unreadable > 0 ? 1 : 0;
}

void DeclareMd5(QCommandLineParser& parser)
{
    parser.addOption({{QStringLiteral("c"), QStringLiteral("check")},
                      QStringLiteral("Read sums from FILE and check them.")});
}

int RunMd5(const QCommandLineParser& parser)
{
    QStringList names = parser.positionalArguments();
    if (names.isEmpty()) {
        names.append(QStringLiteral("-"));
    }
    int code = 0;
    for (const QString& name : names) {
        try {
            if (parser.isSet(QStringLiteral("check"))) {
                code |= CheckSums(name);
            } else {
                Input input(name);
                std::fputs(SumLine(HexDigestOf(input), name).constData(), stdout);
            }
        } catch (const Failure& failure) {
            // As with md5sum, the other files still get their sums.
            std::fflush(stdout);
            std::fprintf(stderr, "orvotool md5: %s\n", failure.what());
            code = 1;
        }
    }
    return code;
}

// --- hash ----------------------------------------------------------------------------------

int RunHash(const QCommandLineParser& parser)
{
    RequireArguments(parser, 1, 1);
    const QByteArray bytes = parser.positionalArguments()[0].toUtf8();
    CQSString text;
    text.SetData(bytes.constData());
    const unsigned int hash = CQSString::GetHashCode(text);
    CQSString decimal;
    text.ToHashString(decimal);
    if (parser.isSet(QStringLiteral("json"))) {
        const QJsonObject json{{QStringLiteral("hash"), qint64(hash)},
                               {QStringLiteral("text"), QString::fromUtf8(decimal.GetDataPtr())}};
        std::fputs(QJsonDocument(json).toJson().constData(), stdout);
    } else {
        std::printf("0x%08X  %u  %s\n", hash, hash, decimal.GetDataPtr());
    }
    return 0;
}

} // namespace

const Command commandKey = {"key",
                            " NUMBER TEXT",
                            "Print the key that the client derives from a number and a text.",
                            "orvotool key 10001 'correct horse'",
                            DeclareNothing,
                            RunKey};

const Command commandMd5 = {"md5",
                            " [FILE]...",
                            "Print or check MD5 sums, in the form of md5sum.",
                            "orvotool md5 build/demo/10001/*.info",
                            DeclareMd5,
                            RunMd5};

const Command commandHash = {"hash",
                             " TEXT",
                             "Print the hash of a text: hexadecimal, unsigned, as stored.",
                             "orvotool hash buddylist",
                             DeclareJson,
                             RunHash};
