// Files beside what a client would use instead. All in memory where there is a directory for
// that, so that the disk has no part in it.

#include "Row.h"

#include <CQFile.h>
#include <CQZipFile.h>

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace
{

QString Scratch(const QString& name)
{
    static const QTemporaryDir dir(QDir(QStringLiteral("/dev/shm")).exists()
                                       ? QStringLiteral("/dev/shm/bench-XXXXXX")
                                       : QDir::tempPath() + QStringLiteral("/bench-XXXXXX"));
    return dir.filePath(name);
}

std::wstring Wide(const QString& path)
{
    return path.toStdWString();
}

constexpr int enRecords = 20000;
const char record[16] = "fifteen letters";

const bool cachedWrites = [] {
    for (const int cache : {4096, 65536}) {
        const QString path = Scratch(QStringLiteral("records"));
        Row("20,000 records of 16 B, cache " + std::to_string(cache))
            .Library([=, wide = Wide(path)] {
                CQFile file;
                file.OpenWithWriteCache(wide.c_str(), 1, cache);
                for (int i = 0; i < enRecords; ++i) {
                    file.Write(record, sizeof record);
                }
                file.Close();
                return file.HasFailed();
            })
            .Peer("fwrite", 1.0, [=, name = path.toStdString()] {
                std::vector<char> buffer(static_cast<std::size_t>(cache));
                std::FILE* const file = std::fopen(name.c_str(), "wb");
                std::setvbuf(file, buffer.data(), _IOFBF, buffer.size());
                std::size_t written = 0;
                for (int i = 0; i < enRecords; ++i) {
                    written += std::fwrite(record, 1, sizeof record, file);
                }
                std::fclose(file);
                return written;
            });
    }
    return true;
}();

const bool openReadClose = [] {
    const QString path = Scratch(QStringLiteral("four"));
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    file.write("four");
    file.close();
    Row("open, read 4 B, close")
        .Library([wide = Wide(path)] {
            char bytes[4];
            CQFile opened;
            opened.Open(wide.c_str(), 0);
            opened.Read(bytes, sizeof bytes);
            opened.Close();
            return bytes[0];
        })
        .Peer("QFile", 0.95, [wide = Wide(path)] {
            char bytes[4];
            QFile opened(QString::fromWCharArray(wide.c_str()));
            opened.open(QIODevice::ReadOnly);
            opened.read(bytes, sizeof bytes);
            opened.close();
            return bytes[0];
        });
    return true;
}();

// Text of a log, which shrinks to about a fifth.
QByteArray MakeBlock(int size)
{
    QByteArray block;
    for (unsigned i = 1; block.size() < size; i = i * 1103515245U + 12345U) {
        block += "10:" + QByteArray::number(i >> 20) + " message received from user ";
    }
    block.truncate(size);
    return block;
}

const bool compressedFiles = [] {
    for (const int size : {4096, 1 << 20}) {
        const std::string name = size == 4096 ? "4 KiB" : "1 MiB";
        const QString path = Scratch(QString::number(size));
        const auto block = std::make_shared<QByteArray>(MakeBlock(size));
        Row("compressed file, write " + name)
            .Library([=, wide = Wide(path)] {
                auto* bytes = reinterpret_cast<unsigned char*>(block->data());
                int length = static_cast<int>(block->size());
                return CQZipFile().Write(&bytes, &length, wide.c_str());
            })
            .Peer("qCompress and QFile", 0.98, [=] {
                QFile file(path);
                file.open(QIODevice::ReadWrite);
                return file.write(qCompress(*block));
            });
        const int stored = CQZipFile().Replace(reinterpret_cast<unsigned char*>(block->data()),
                                               size, Wide(path).c_str());
        Row("compressed file, read " + name)
            .Library([=, wide = Wide(path)] {
                QByteArray data;
                CQZipFile().Read(data, wide.c_str());
                return data.size() * stored;
            })
            .Peer("QFile and qUncompress", 0.98, [=] {
                QFile file(path);
                file.open(QIODevice::ReadOnly);
                return qUncompress(file.readAll()).size();
            });
    }
    return true;
}();

} // namespace
