// A file object against what it is to be: a string of bytes, a position and a cache.

#include "Model.h"

#include <CQFile.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <optional>
#include <utility>

namespace
{

enum Mode : unsigned { enRead, enWrite, enReadWrite, enAppend };

struct PlainFile {
    int Open(bool isNull, unsigned openMode, int newCacheSize)
    {
        failed = true;
        if (isNull || openMode > enAppend || (openMode == enRead && !content)) {
            return 0;
        }
        content = openMode == enWrite ? "" : content.value_or("");
        isOpen = true;
        mode = openMode;
        position = openMode == enAppend ? GetLength() : 0;
        failed = !std::exchange(cache, "").empty(); // one that was not closed
        cacheSize = openMode == enRead ? 0 : std::size_t(std::max(newCacheSize, 0));
        return 1;
    }
    void Close()
    {
        WriteOut();
        cacheSize = 0;
        isOpen = false;
    }
    int Read(char* to, std::size_t length)
    {
        const bool isRefused = !isOpen || mode == enWrite;
        failed |= length > 0 && (isRefused || mode == enAppend);
        if (length == 0 || isRefused) {
            return -1;
        }
        const bool isAtEnd = mode == enAppend || position > GetLength();
        const auto count = isAtEnd ? 0 : content->copy(to, length, std::size_t(position));
        position += static_cast<int>(count);
        return static_cast<int>(count);
    }
    int WriteData(const std::string& bytes)
    {
        if (!isOpen || mode == enRead) {
            failed |= !bytes.empty();
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
        const int target = offset + (origin == 1 ? position : origin == 2 ? GetLength() : 0);
        const bool moves = isOpen && origin <= 2 && target >= 0;
        position = moves ? target : position;
        return moves;
    }
    int SetSize(int size)
    {
        const bool sets = isOpen && mode != enRead && size >= 0;
        sets ? content->resize(std::size_t(size)) : void();
        return sets;
    }
    int GetLength() const { return isOpen ? static_cast<int>(content->size()) : 0; }
    void WriteOut()
    {
        if (!cache.empty()) {
            WriteData(std::exchange(cache, ""));
        }
    }

    std::optional<std::string> content; // of the file on the disk, if there is one
    bool isOpen = false;
    unsigned mode = enRead;
    int position = 0;
    std::string cache;
    std::size_t cacheSize = 0; // 0: none
    bool failed = false;
};

// Opened again without a close, a file loses what it has cached.
void Open(ByteSource& source, CQFile& file, PlainFile& plain)
{
    const bool isNull = source.Byte() > 250;
    const auto mode = static_cast<unsigned>(source.Between(0, 4));
    const int cacheSize = source.Between(-1, 40);
    if (mode == enRead || (mode <= enAppend && source.Flag())) { // others do not fail
        file.Close();
        plain.Close();
    }
    MODEL_CHECK(file.OpenWithWriteCache(isNull ? nullptr : L"a", mode, cacheSize) ==
                plain.Open(isNull, mode, cacheSize));
}

void Operate(ByteSource& source, CQFile& file, PlainFile& plain)
{
    const int operation = source.Between(0, 9);
    if (operation == 0) {
        Open(source, file, plain);
    } else if (operation == 1) {
        const int size = source.Between(-1, 99);
        MODEL_CHECK(file.SetSize(size) == plain.SetSize(size));
    } else if (operation == 2) {
        const auto origin = static_cast<unsigned>(source.Between(0, 3));
        const int offset = source.Between(-60, 60);
        MODEL_CHECK(file.Seek(offset, origin) == plain.Seek(offset, origin));
    } else if (operation == 3) {
        const bool toEnd = source.Flag();
        MODEL_CHECK((toEnd ? file.SeekToEnd() : file.SeekToBegin()) ==
                    plain.Seek(0, toEnd ? 2 : 0));
    } else if (operation < 7) {
        const std::string bytes = source.Bytes(60);
        const auto length = static_cast<unsigned>(bytes.size());
        MODEL_CHECK(operation == 4 ? static_cast<int>(file.WriteData(bytes.data(), length)) ==
                                         plain.WriteData(bytes)
                                   : file.Write(bytes.data(), length) == plain.Write(bytes));
    } else {
        std::string buffer(60, '#'), expected = buffer;
        const auto length = static_cast<unsigned>(source.Between(0, 60));
        const int count = plain.Read(expected.data(), length);
        MODEL_CHECK(file.Read(buffer.data(), length) == count);
        MODEL_CHECK(buffer == expected);
    }
}

} // namespace

void DriveModel(ByteSource& source)
{
    static const QTemporaryDir scratch;
    QDir::setCurrent(scratch.path());
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    PlainFile plain;
    {
        CQFile file;
        while (!source.IsEmpty()) {
            plain.isOpen || source.Flag() ? Operate(source, file, plain)
                                          : Open(source, file, plain);
            MODEL_CHECK(file.GetLength() == plain.GetLength());
            MODEL_CHECK(file.HasFailed() == plain.failed);
        }
        if (source.Flag()) { // without, the cache is lost
            file.Close();
            plain.Close();
        }
    }
    QFile left(QStringLiteral("a"));
    MODEL_CHECK(left.open(QIODevice::ReadOnly) == plain.content.has_value());
    MODEL_CHECK(left.readAll().toStdString() == plain.content.value_or(""));
    left.remove();
}
