#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QFile>
#include <QString>

#include <memory>

class QCommandLineParser;

/// Tells on a terminal how far a long input has been read: nothing in the first second, nothing
/// when stderr is no terminal.
class Progress
{
public:
    /// `total` is 0 when it is not known.
    Progress(const QString& name, qint64 total);
    ~Progress();
    void Advance(qint64 bytes);
    /// Takes the line off the terminal.
    void Clear();

private:
    QString m_name;
    qint64 m_total;
    qint64 m_done = 0;
    qint64 m_nextReport = 1000; // milliseconds
    bool m_shown = false;
    QElapsedTimer m_clock;
};

/// A file that is read from its start to its end, or standard input for "-". A failed open or
/// read throws a Failure that names it.
class Input
{
public:
    explicit Input(const QString& name);

    /// For a caller that prints as it reads: no progress between its lines.
    void HideProgress() { m_progress.reset(); }

    /// The next bytes, `most` at the most; empty at the end.
    QByteArray Read(qint64 most);
    /// All that is left; a Failure when that is more than `most` bytes, so that nothing is cut
    /// unnoticed.
    QByteArray ReadAll(qint64 most);
    const QString& GetName() const { return m_name; }

private:
    void RefuseAbove(qint64 size, qint64 most) const;

    QString m_name;
    QFile m_file;
    std::unique_ptr<Progress> m_progress;
};

/// Declares `-o, --out FILE`.
void DeclareOut(QCommandLineParser& parser);

/// Writes to the file of `--out`, which has its old content or all of the new one, or to standard
/// output where the option is not given. A Failure names what went wrong.
void WriteOutput(const QCommandLineParser& parser, const QByteArray& content);

/// The one positional argument, or "-" for standard input.
QString InputName(const QCommandLineParser& parser);
