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
    Clear();
}

void Progress::Clear()
{
    if (m_shown) {
        std::fputs("\r\033[K", stderr);
        m_shown = false;
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
    if (m_progress && got > 0) {
        m_progress->Advance(got);
    } else if (m_progress) {
        m_progress->Clear(); // what the caller prints now has the line to itself
    }
    return bytes;
}

QByteArray Input::ReadAll(qint64 most)
{
    constexpr qint64 step = 1 << 20;
    RefuseAbove(m_file.size(), most); // 0 where it is not known
    QByteArray all;
    for (;;) {
        const QByteArray bytes = Read(step);
        if (bytes.isEmpty()) {
            return all;
        }
        RefuseAbove(all.size() + bytes.size(), most);
        all += bytes;
    }
}

void Input::RefuseAbove(qint64 size, qint64 most) const
{
    if (size > most) {
        throw Failure(QStringLiteral("%1: is longer than the %2 bytes that this command takes")
                          .arg(m_name)
                          .arg(most));
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
    const QString name = parser.value(QStringLiteral("out"));
    if (QFileInfo::exists(name) && !QFileInfo(name).isFile()) {
        throw Failure(name + QStringLiteral(": is no regular file, so it is not replaced"));
    }
    QSaveFile file(name);
    if (!file.open(QIODevice::WriteOnly)) {
        throw Failure(QStringLiteral("%1: %2").arg(name, file.errorString()));
    }
    if (file.write(content) != content.size() || !file.commit()) {
        throw Failure(name + QStringLiteral(": could not be written (is the disk full?)"));
    }
}

QString InputName(const QCommandLineParser& parser)
{
    RequireArguments(parser, 0, 1);
    return parser.positionalArguments().value(0, QStringLiteral("-"));
}
