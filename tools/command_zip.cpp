// zip and unzip: the compressed file of CQZipFile.

#include "Command.h"
#include "InputOutput.h"

#include <CQWString.h>
#include <CQZipFile.h>

#include <QCommandLineParser>
#include <QFileInfo>
#include <QTemporaryFile>

namespace
{

constexpr qint64 longestBlock = 2147483647LL; // what CQZipFile takes

/// A file that is gone with the object, for what comes from or goes to a pipe.
class Scratch
{
public:
    Scratch()
    {
        if (!m_file.open()) {
            throw Failure(QStringLiteral("no temporary file: ") + m_file.errorString());
        }
    }

    void Fill(const QByteArray& content)
    {
        if (m_file.write(content) != content.size() || !m_file.flush()) {
            throw Failure(m_file.fileName() +
                          QStringLiteral(": could not be written (is the disk full?)"));
        }
    }

    QString GetPath() const { return m_file.fileName(); }

private:
    QTemporaryFile m_file;
};

int RunZip(const QCommandLineParser& parser)
{
    Input input(InputName(parser));
    const QByteArray block = input.ReadAll(longestBlock);
    const auto* const data = reinterpret_cast<const unsigned char*>(block.constData());
    const Scratch scratch;
    const QString path = parser.isSet(QStringLiteral("out")) ? parser.value(QStringLiteral("out"))
                                                             : scratch.GetPath();
    CQZipFile zip;
    if (zip.Replace(data, int(block.size()), CQWString(path).GetDataPtr()) != 1) {
        throw Failure(path + QStringLiteral(": could not be written (no permission, disk full, or "
                                            "a block too long?)"));
    }
    if (!parser.isSet(QStringLiteral("out"))) {
        QFile written(path);
        if (!written.open(QIODevice::ReadOnly)) {
            throw Failure(QStringLiteral("%1: %2").arg(path, written.errorString()));
        }
        WriteOutput(parser, written.readAll());
    }
    return 0;
}

void DeclareUnzip(QCommandLineParser& parser)
{
    DeclareOut(parser);
    parser.addOption({QStringLiteral("limit"),
                      QStringLiteral("Refuse content of more than BYTES (default 2147483647)."),
                      QStringLiteral("BYTES"), QStringLiteral("2147483647")});
}

int RunUnzip(const QCommandLineParser& parser)
{
    const qint64 limit = ParseNumber(parser.value(QStringLiteral("limit")),
                                     QStringLiteral("--limit"), 0, longestBlock);
    const QString name = InputName(parser);
    QString path = name;
    Scratch scratch;
    Input input(name); // a Failure where it is missing: CQZipFile would make one
    const QFileInfo info(name);
    if (name == QLatin1String("-") || !info.isFile() || !info.isWritable()) {
        // A pipe is read once, and CQZipFile reads no file that it may not write.
        scratch.Fill(input.ReadAll(longestBlock));
        path = scratch.GetPath();
    }
    QByteArray block;
    CQZipFile zip;
    if (zip.Read(block, CQWString(path).GetDataPtr(), static_cast<int>(limit)) != 1) {
        throw Failure(QStringLiteral("%1: is no compressed file, or its content is above %2 bytes")
                          .arg(name)
                          .arg(limit));
    }
    WriteOutput(parser, block);
    return 0;
}

} // namespace

const Command commandZip = {"zip",
                            " [FILE]",
                            "Compress a file or standard input in the client's format.",
                            "orvotool zip -o history.z history.txt",
                            DeclareOut,
                            RunZip};

const Command commandUnzip = {"unzip",
                              " [FILE]",
                              "Take the content out of a compressed file.",
                              "orvotool unzip build/demo/10003/history.z",
                              DeclareUnzip,
                              RunUnzip};
