// A file object against what it is to be: a string of bytes, a position and a cache.

#include "Model.h"

#include <CQFile.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <map>
#include <utility>

namespace
{

enum Mode : unsigned { enRead, enWrite, enReadWrite, enAppend };

// The disk: what is there by name.
using Disk = std::map<char, std::string>;

struct PlainFile {
    Disk& disk;
    int Open(char path, unsigned openMode)
    {
        failed = true;
        if (path == 0 || openMode > enAppend || (openMode == enRead && disk.count(path) == 0)) {
            return 0;
        }
        content = &disk[path];
        content->resize(openMode == enWrite ? 0 : content->size());
        mode = openMode;
        position = openMode == enAppend ? static_cast<int>(content->size()) : 0;
        failed = !cache.empty(); // one that was not closed
        cache.clear();
        cacheSize = 0;
        return 1;
    }

    void Close()
    {
        WriteOut();
        cacheSize = 0;
        content = nullptr;
    }

    int Read(std::string& bytes, int length)
    {
        if (length == 0 || content == nullptr || mode == enWrite) {
            failed = failed || length != 0;
            return -1;
        }
        failed = failed || mode == enAppend;
        if (mode != enAppend && position < GetLength()) {
            bytes = content->substr(std::size_t(position), std::size_t(length));
        }
        position += static_cast<int>(bytes.size());
        return static_cast<int>(bytes.size());
    }

    int WriteData(const std::string& bytes)
    {
        if (content == nullptr || mode == enRead) {
            failed = failed || !bytes.empty();
            return -1;
        }
        const auto at = mode == enAppend ? content->size() : std::size_t(position);
        if (!bytes.empty()) {
            content->resize(std::max(content->size(), at + bytes.size()));
            content->replace(at, bytes.size(), bytes);
        }
        position += static_cast<int>(bytes.size());
        return static_cast<int>(bytes.size());
    }

    int Write(const std::string& bytes)
    {
        if (!bytes.empty() && bytes.size() >= cacheSize - cache.size()) {
            WriteOut();
        }
        if (bytes.empty() || bytes.size() > cacheSize) {
            return WriteData(bytes);
        }
        cache += bytes;
        return static_cast<int>(bytes.size());
    }

    int Seek(int offset, unsigned origin)
    {
        const int base = origin == 1 ? position : origin == 2 ? GetLength() : 0;
        const auto target =
            static_cast<int>(static_cast<unsigned>(base) + static_cast<unsigned>(offset));
        if (content == nullptr || origin > 2 || target < 0) {
            return 0;
        }
        position = target;
        return 1;
    }

    int SetSize(int size)
    {
        if (content == nullptr || mode == enRead || size < 0) {
            return 0;
        }
        content->resize(static_cast<std::size_t>(size));
        return 1;
    }

    int GetLength() const { return content == nullptr ? 0 : static_cast<int>(content->size()); }

    void WriteOut()
    {
        if (!cache.empty()) {
            WriteData(std::exchange(cache, ""));
        }
    }

    std::string* content = nullptr; // null while closed
    unsigned mode = enRead;
    int position = 0;
    std::string cache = {};
    std::size_t cacheSize = 0; // 0: none
    bool failed = false;
};

void CompareDisk(const Disk& disk)
{
    MODEL_CHECK(QDir().entryList(QDir::Files).size() == static_cast<int>(disk.size()));
    for (const auto& [name, content] : disk) {
        QFile file{QString(QLatin1Char(name))};
        MODEL_CHECK(file.open(QIODevice::ReadOnly) && file.readAll().toStdString() == content);
    }
}

// Opened again without a close, a file loses what it has cached.
void Open(ByteSource& source, CQFile& file, PlainFile& plain)
{
    const wchar_t path[] = {static_cast<wchar_t>(source.Between('a', 'b')), 0};
    const bool isNull = source.Byte() > 250;
    const auto mode = static_cast<unsigned>(source.Between(0, 4));
    if (mode == enRead || (mode <= enAppend && source.Flag())) { // others do not fail
        file.Close();
        plain.Close();
    }
    const int cacheSize = source.Between(-1, 40);
    const int opened = plain.Open(isNull ? '\0' : static_cast<char>(path[0]), mode);
    MODEL_CHECK(file.OpenWithWriteCache(isNull ? nullptr : path, mode, cacheSize) == opened);
    if (opened != 0 && mode != enRead && cacheSize > 0) {
        plain.cacheSize = std::size_t(cacheSize);
    }
}

void Operate(ByteSource& source, CQFile& file, PlainFile& plain)
{
    const int operation = source.Between(0, 10);
    if (operation == 0) {
        Open(source, file, plain);
    } else if (operation == 1) {
        const int offset = source.Between(-9, 60) * (source.Flag() ? 1 : -1);
        const auto origin = static_cast<unsigned>(source.Between(0, 3));
        MODEL_CHECK(file.Seek(offset, origin) == plain.Seek(offset, origin));
    } else if (operation == 2) {
        const int size = source.Between(-1, 99);
        MODEL_CHECK(file.SetSize(size) == plain.SetSize(size));
    } else if (operation < 7) {
        const std::string bytes = source.Bytes(60);
        const auto length = static_cast<unsigned>(bytes.size());
        MODEL_CHECK(operation == 3 ? static_cast<int>(file.WriteData(bytes.data(), length)) ==
                                         plain.WriteData(bytes)
                                   : file.Write(bytes.data(), length) == plain.Write(bytes));
    } else if (operation < 10) {
        std::string expected;
        std::string buffer(60, '#');
        const int length = source.Between(0, 60);
        const int count = plain.Read(expected, length);
        MODEL_CHECK(file.Read(buffer.data(), static_cast<unsigned>(length)) == count);
        expected.resize(60, '#');
        MODEL_CHECK(buffer == expected);
    } else {
        const bool toEnd = source.Flag();
        MODEL_CHECK((toEnd ? file.SeekToEnd() : file.SeekToBegin()) ==
                    plain.Seek(0, toEnd ? 2 : 0));
    }
}

} // namespace

void DriveModel(ByteSource& source)
{
    static const QTemporaryDir scratch;
    QDir::setCurrent(scratch.path());
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    QFile::remove(QStringLiteral("a"));
    QFile::remove(QStringLiteral("b"));
    Disk disk;
    {
        PlainFile plain{disk};
        CQFile file;
        Open(source, file, plain);
        while (!source.IsEmpty()) {
            Operate(source, file, plain);
            MODEL_CHECK(file.GetLength() == plain.GetLength());
            MODEL_CHECK(file.HasFailed() == plain.failed);
        }
        if (source.Flag()) { // without, the cache is lost
            file.Close();
            plain.Close();
        }
    }
    CompareDisk(disk);
}
