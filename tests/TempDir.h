#pragma once

#include "TestPrelude.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>

#include <map>

/// A directory of its own for one test case, current while it lives: names are relative to it.
class TempDir
{
public:
    explicit TempDir(std::initializer_list<const char*> names = {})
    {
        QDir::setCurrent(m_dir.path());
        for (const char* name : names) {
            Put(name);
        }
    }

    QString Absolute(const QString& name) const { return m_dir.filePath(name); }
    /// Makes a file and its directories, or only a directory where \a name ends with a slash.
    void Put(const QString& name, const QByteArray& bytes = "x") const
    {
        QDir().mkpath("./" + name.left(name.lastIndexOf('/') + 1));
        QFile file(name);
        if (!name.endsWith('/') && file.open(QIODevice::WriteOnly)) {
            file.write(bytes);
        }
    }
    /// Content of a file; "missing" when it cannot be read.
    std::string Get(const QString& name) const
    {
        QFile file(name);
        return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : "missing";
    }
    /// Everything there is, by name: the content of files, "/" for directories, "@" for links.
    std::map<std::string, std::string> Entries() const
    {
        constexpr auto all = QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot;
        std::map<std::string, std::string> entries;
        for (QDirIterator it(".", all, QDirIterator::Subdirectories); it.hasNext();) {
            const QString name = it.next().mid(2);
            const QFileInfo info = it.fileInfo();
            entries[name.toStdString()] = info.isSymLink() ? "@" : info.isDir() ? "/" : Get(name);
        }
        return entries;
    }
    /// The same in one text, each entry with a blank behind it, and "=" before contents.
    std::string All() const
    {
        std::string text;
        for (const auto& [name, value] : Entries()) {
            text += name + (value == "/" || value == "@" ? "" : "=") + value + ' ';
        }
        return text;
    }

private:
    QTemporaryDir m_dir;
};
