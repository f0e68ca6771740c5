#pragma once

#include "TestPrelude.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>

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
    /// Everything there is, sorted, each with a blank behind it: "name=content" of files, "name/"
    /// of directories, "name@" of links.
    std::string All() const
    {
        constexpr auto all = QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot;
        QStringList texts;
        for (QDirIterator it(".", all, QDirIterator::Subdirectories); it.hasNext();) {
            const QString name = it.next().mid(2);
            const QString content = '=' + QString::fromStdString(Get(name));
            const QFileInfo info = it.fileInfo();
            texts << name + (info.isSymLink() ? "@" : info.isDir() ? "/" : content) + ' ';
        }
        texts.sort();
        return texts.join("").toStdString();
    }

private:
    QTemporaryDir m_dir;
};
