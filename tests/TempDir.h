#pragma once

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>

#include <string>

/// A directory of its own for one test case. Names are relative to it.
class TempDir
{
public:
    QString Path(const QString& name = QString()) const { return m_dir.path() + '/' + name; }
    std::wstring Wide(const QString& name = QString()) const { return Path(name).toStdWString(); }

    /// Makes a file and its directories, or only a directory where \a name ends with a slash.
    void Put(const QString& name, const QByteArray& bytes = "x") const
    {
        QDir(m_dir.path()).mkpath(name.left(name.lastIndexOf('/') + 1).prepend("./"));
        QFile file(Path(name));
        if (!name.endsWith('/') && file.open(QIODevice::WriteOnly)) {
            file.write(bytes);
        }
    }
    /// Content of a file; "missing" when it cannot be read.
    std::string Get(const QString& name) const
    {
        QFile file(Path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : "missing";
    }
    /// Everything there is, sorted, each with a blank behind it: "name=content" of files, "name/"
    /// of directories, "name@" of links.
    std::string All() const
    {
        QStringList paths;
        for (QDirIterator it(m_dir.path(), QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                             QDirIterator::Subdirectories);
             it.hasNext();) {
            paths << it.next().mid(m_dir.path().size() + 1);
        }
        paths.sort();
        std::string all;
        for (const QString& path : paths) {
            const QFileInfo info(Path(path));
            all += path.toStdString();
            all += info.isSymLink() ? "@ " : info.isDir() ? "/ " : '=' + Get(path) + ' ';
        }
        return all;
    }

private:
    QTemporaryDir m_dir;
};
