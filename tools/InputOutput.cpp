#include "InputOutput.h"

#include "Command.h"

#include <QCommandLineParser>
#include <QFileInfo>
#include <QSaveFile>

#include <cstdio>
#include <unistd.h>

Progress::Progress(const QString& name, qint64 total) : m_name(name), m_total(total)
{
    m_clock.start();
}

Progress::~Progress()
{
    if (m_shown) {
        std::fputs("\r\033[K", stderr);
    }
}

void Progress::Advance(qint64 bytes)
{
    m_done += bytes;
    if (m_clock.elapsed() < m_nextReport || isatty(STDERR_FILENO) == 0) {
        return;
    }
    m_nextReport = m_clock.elapsed() + 200;
    m_shown = true;
    const QString share =
        m_total > 0 ? QStringLiteral(" of %1 MiB").arg(m_total >> 20) : QStringLiteral(" MiB");
    std::fprintf(stderr, "\r%s: %lld%s\033[K", qUtf8Printable(m_name),
                 static_cast<long long>(m_done >> 20), qUtf8Printable(share));
    std::fflush(stderr);
}

Input::Input(const QString& name) : m_name(name), m_file(name)
{
    const bool standard = name == QLatin1String("-");
    if (standard) {
        m_name = QStringLiteral("standard input");
    } else if (QFileInfo(name).isDir()) {
        throw Failure(name + QStringLiteral(": is a directory, not a file"));
    }
    const bool open = standard ? m_file.open(stdin, QIODevice::ReadOnly | QIODevice::Unbuffered)
                               : m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    if (!open) {
        throw Failure(QStringLiteral("%1: %2").arg(m_name, m_file.errorString()));
    }
    m_progress = std::make_unique<Progress>(m_name, standard ? 0 : m_file.size());
}

QByteArray Input::Read(qint64 most)
{
    QByteArray bytes(static_cast<int>(most), Qt::Uninitialized);
    const qint64 got = m_file.read(bytes.data(), most);
    if (got < 0) {
        throw Failure(QStringLiteral("%1: %2").arg(m_name, m_file.errorString()));
    }
    bytes.truncate(static_cast<int>(got));
    m_progress->Advance(got);
    return bytes;
}

QByteArray Input::ReadAll(qint64 most)
{
    constexpr qint64 step = 1 << 20;
    QByteArray all;
    for (;;) {
        const QByteArray bytes = Read(step);
        if (bytes.isEmpty()) {
            return all;
        }
        if (all.size() + bytes.size() > most) {
            throw Failure(QStringLiteral("%1: is longer than %2 bytes, which the format does not "
                                         "hold")
                              .arg(m_name)
                              .arg(most));
        }
        all += bytes;
    }
}

void DeclareOut(QCommandLineParser& parser)
{
    parser.addOption({{QStringLiteral("o"), QStringLiteral("out")},
                      QStringLiteral("Write to FILE; without it, to standard output."),
                      QStringLiteral("FILE")});
}

void WriteOutput(const QCommandLineParser& parser, const QByteArray& content)
{
    if (!parser.isSet(QStringLiteral("out"))) {
        std::fwrite(content.constData(), 1, static_cast<std::size_t>(content.size()), stdout);
        return; // main() looks whether it has arrived
    }
    QSaveFile file(parser.value(QStringLiteral("out")));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size() ||
        !file.commit()) {
        throw Failure(QStringLiteral("%1: %2").arg(file.fileName(), file.errorString()));
    }
}

QString InputName(const QCommandLineParser& parser)
{
    RequireArguments(parser, 0, 1);
    return parser.positionalArguments().value(0, QStringLiteral("-"));
}
