// The data streams over a file, beside what a client would write typed items with instead.

#include "Row.h"

#include <CQWString.h>
#include <DataInputStream.h>
#include <DataOutputStream.h>
#include <FileInputStream.h>
#include <FileOutputStream.h>

#include <QDataStream>
#include <QFile>
#include <QTemporaryDir>

#include <fstream>

namespace
{

constexpr int enWritten = 1000000;
constexpr int enRead = 5000; // as many as one load brings

struct Files {
    QTemporaryDir dir;
    QString out = dir.filePath("out");
    QString in = dir.filePath("in");
    CQWString wideOut{out}, wideIn{in};
    std::string narrowOut = out.toStdString(), narrowIn = in.toStdString();
};

const Files& GetFiles()
{
    static const Files files;
    return files;
}

// Every peer writes to the same file, which it empties first, and closes it.
void Write(const CQWString& path, int count)
{
    OrvoStream::FileOutputStream file(path);
    DataOutputStream out(file);
    for (int i = 0; i < count; ++i) {
        out << i;
    }
    out.Flush();
    out.Close();
}

int WriteByQt(const QString& path)
{
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    QDataStream out(&file);
    out.setByteOrder(QDataStream::LittleEndian);
    for (int i = 0; i < enWritten; ++i) {
        out << i;
    }
    return static_cast<int>(out.status());
}

bool WriteByFstream(const std::string& path)
{
    std::ofstream out(path, std::ios::binary);
    for (int i = 0; i < enWritten; ++i) {
        out.write(reinterpret_cast<const char*>(&i), sizeof i);
    }
    return out.good();
}

int Read(const CQWString& path)
{
    OrvoStream::FileInputStream file(path);
    OrvoStream::DataInputStream in(file);
    int sum = 0;
    for (int i = 0; i < enRead; ++i) {
        sum ^= in.ReadInt();
    }
    return sum;
}

int ReadByQt(const QString& path)
{
    QFile file(path);
    file.open(QIODevice::ReadOnly);
    QDataStream in(&file);
    in.setByteOrder(QDataStream::LittleEndian);
    int sum = 0;
    for (int i = 0; i < enRead; ++i) {
        int value;
        in >> value;
        sum ^= value;
    }
    return sum;
}

int ReadByFstream(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    int sum = 0;
    for (int i = 0; i < enRead; ++i) {
        int value;
        in.read(reinterpret_cast<char*>(&value), sizeof value);
        sum ^= value;
    }
    return sum;
}

bool MakeRows()
{
    const Files& files = GetFiles();
    Write(files.wideIn, enRead);
    Row("stream, write 1e6 x 4 B")
        .Library([&] { return Write(files.wideOut, enWritten), enWritten; })
        .Peer("QDataStream", 2.2, [&] { return WriteByQt(files.out); })
        .Peer("std::ofstream", 1.5, [&] { return WriteByFstream(files.narrowOut); });
    Row("stream, read 5000 x 4 B")
        .Library([&] { return Read(files.wideIn); })
        .Peer("QDataStream", 2.2, [&] { return ReadByQt(files.in); })
        .Peer("std::ifstream", 1.5, [&] { return ReadByFstream(files.narrowIn); });
    return true;
}

const bool rows = MakeRows();

} // namespace
