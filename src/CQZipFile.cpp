#include "CQZipFile.h"

#include "PathText.h"

#include <QByteArray>
#include <QFile>
#include <QtEndian>

#include <algorithm>
#include <limits>
#include <memory>
#include <new>
#include <optional>

namespace
{

constexpr int lengthFieldSize = 4;
// The most that a deflate stream expands: a match of 258 bytes takes two bits (RFC 1951).
constexpr qint64 maxExpansion = 1032;
constexpr qint64 maxBlockLength = std::numeric_limits<int>::max();

std::unique_ptr<QFile> MakeFile(wchar_t const* path)
{
    try {
        return std::make_unique<QFile>(PathText::FromWide(path));
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

QByteArray UncompressedOrNull(const QByteArray& stored)
{
    try {
        return qUncompress(stored);
    } catch (const std::bad_alloc&) {
        return QByteArray();
    }
}

// The block that \a stored holds, or nothing when it does not uncompress. qUncompress() makes a
// buffer of the size that the length field claims, so a wild claim is refused before. A claim
// of nothing is taken at its word: the rest is what a longer block has left behind it.
std::optional<QByteArray> BlockIn(const QByteArray& stored)
{
    if (stored.size() < lengthFieldSize) {
        return std::nullopt;
    }
    const auto claimed = qFromBigEndian<quint32>(stored.constData());
    if (claimed == 0) {
        return QByteArray();
    }
    const qint64 streamSize = stored.size() - lengthFieldSize;
    if (claimed > std::min(streamSize * maxExpansion, maxBlockLength)) {
        return std::nullopt;
    }
    QByteArray block = UncompressedOrNull(stored);
    if (block.isNull() || static_cast<qint64>(block.size()) > maxBlockLength) {
        return std::nullopt;
    }
    return block;
}

} // namespace

CQZipFile::CQZipFile() : m_pFile(nullptr) {}

CQZipFile::~CQZipFile()
{
    delete m_pFile;
}

void CQZipFile::Close()
{
    if (m_pFile != nullptr) {
        m_pFile->close();
    }
}

int CQZipFile::Open(wchar_t const* path)
{
    std::unique_ptr<QFile> file = path != nullptr ? MakeFile(path) : nullptr;
    if (file == nullptr) {
        return 0;
    }
    Adopt(file.release());
    // Not QIODevice::Text, which drops bytes of the value 0x0D on reading.
    return m_pFile->open(QIODevice::ReadWrite) ? 1 : 0;
}

// Makes pFile the current file. The one before it stays open, as callers know it, and becomes a
// child of the new one. When it is closed already it goes, and only its own child moves up: the
// chain never gets longer than the list of open files.
void CQZipFile::Adopt(QFile* pFile)
{
    if (m_pFile != nullptr && m_pFile->isOpen()) {
        m_pFile->setParent(pFile);
    } else if (m_pFile != nullptr) {
        const QObjectList earlierFiles = m_pFile->children();
        for (QObject* earlier : earlierFiles) {
            earlier->setParent(pFile);
        }
        delete m_pFile;
    }
    m_pFile = pFile;
}

int CQZipFile::Read(unsigned char** data, int* length, wchar_t const* path)
{
    if (data == nullptr || length == nullptr || Open(path) == 0) {
        return 0;
    }
    const QByteArray block = BlockIn(m_pFile->readAll()).value_or(QByteArray());
    if (*data != nullptr) {
        std::copy(block.cbegin(), block.cend(), *data);
    }
    *length = static_cast<int>(block.size());
    return 1;
}

int CQZipFile::Read(QByteArray& data, wchar_t const* path)
{
    if (Open(path) == 0) {
        return 0;
    }
    const std::optional<QByteArray> block = BlockIn(m_pFile->readAll());
    data = block.value_or(QByteArray());
    return block.has_value() ? 1 : 0;
}

int CQZipFile::Write(unsigned char** data, int* length, wchar_t const* path)
{
    if (data == nullptr || *data == nullptr || length == nullptr || *length < 0 ||
        Open(path) == 0) {
        return 0;
    }
    m_pFile->write(qCompress(*data, *length));
    m_pFile->flush();
    return 1;
}
