#include "BlockReader.h"

#include <QByteArray>
#include <QFile>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <limits>
#include <memory>
#include <new>

#include <zlib.h>

namespace
{

constexpr qint64 lengthFieldSize = 4;
// The most that a deflate stream expands: a match of 258 bytes takes two bits (RFC 1951).
constexpr qint64 maxExpansion = 1032;
// In pieces smaller than this zlib's copies of its window begin to show.
constexpr qint64 maxInputSize = 256 * 1024;

// One pass over the zlib stream in a file.
class StreamPass
{
public:
    StreamPass(QFile& file, qint64 fileSize)
        : m_file(file), m_inputSize(std::min(fileSize, maxInputSize)),
          m_input(new (std::nothrow) Bytef[static_cast<std::size_t>(m_inputSize)])
    {
        m_isReady = m_input != nullptr && inflateInit(&m_stream) == Z_OK;
    }
    ~StreamPass() { inflateEnd(&m_stream); }
    StreamPass(const StreamPass&) = delete;
    StreamPass& operator=(const StreamPass&) = delete;

    // Inflates into the `capacity` bytes at `out`. What goes beyond them is only counted, and
    // what would go beyond `maxLength` is not looked at any more.
    BlockResult Run(char* out, qint64 capacity, qint64 maxLength)
    {
        if (!m_isReady) {
            return BlockResult::NoMemory;
        }
        m_file.seek(lengthFieldSize);
        SetOutput(out, capacity);
        int status = Z_OK;
        while (status == Z_OK || status == Z_BUF_ERROR) {
            if (m_stream.avail_in == 0 && !Refill()) {
                return BlockResult::NoBlock;
            }
            if (m_stream.avail_out == 0) {
                SetOutput(m_surplus.data(), static_cast<qint64>(m_surplus.size()));
            }
            const uInt room = m_stream.avail_out;
            status = inflate(&m_stream, Z_NO_FLUSH);
            m_length += room - m_stream.avail_out;
            if (m_length > maxLength) {
                return BlockResult::NoBlock;
            }
        }
        if (status == Z_MEM_ERROR) {
            return BlockResult::NoMemory;
        }
        return status == Z_STREAM_END ? BlockResult::Whole : BlockResult::NoBlock;
    }

    qint64 GetLength() const { return m_length; }

private:
    void SetOutput(char* out, qint64 size)
    {
        m_stream.next_out = reinterpret_cast<Bytef*>(out);
        m_stream.avail_out = static_cast<uInt>(size);
    }

    bool Refill()
    {
        const qint64 count = m_file.read(reinterpret_cast<char*>(m_input.get()), m_inputSize);
        m_stream.next_in = m_input.get();
        m_stream.avail_in = static_cast<uInt>(std::max<qint64>(count, 0));
        return count > 0;
    }

    QFile& m_file;
    qint64 m_inputSize;
    std::unique_ptr<Bytef[]> m_input;
    std::array<char, 16384> m_surplus;
    z_stream m_stream = {};
    qint64 m_length = 0;
    bool m_isReady;
};

// `capacity` is a guess at the block's length; one that is too small costs a second pass.
BlockResult InflateInto(QByteArray& block, qint64 capacity, QFile& file, qint64 fileSize,
                        int maxLength)
{
    for (;;) {
        QByteArray inflated(static_cast<int>(capacity), Qt::Uninitialized);
        StreamPass pass(file, fileSize);
        const BlockResult result = pass.Run(inflated.data(), capacity, maxLength);
        if (result != BlockResult::Whole) {
            return result;
        }
        if (pass.GetLength() <= capacity) {
            inflated.truncate(static_cast<int>(pass.GetLength()));
            block = inflated;
            return result;
        }
        capacity = pass.GetLength(); // known by now
    }
}

// A claim of nothing is taken at its word: the rest is what a longer block has left behind it.
BlockResult ReadOrThrow(QFile& file, int maxLength, QByteArray& block)
{
    std::array<char, lengthFieldSize> field;
    if (file.read(field.data(), lengthFieldSize) != lengthFieldSize) {
        return BlockResult::NoBlock;
    }
    const auto claimed = qFromBigEndian<quint32>(field.data());
    if (claimed == 0) {
        block = QByteArray("");
        return BlockResult::Whole;
    }
    const qint64 fileSize = file.size();
    constexpr qint64 maxClaim = std::numeric_limits<int>::max();
    if (maxLength <= 0 ||
        claimed > std::min((fileSize - lengthFieldSize) * maxExpansion, maxClaim)) {
        return BlockResult::NoBlock;
    }
    return InflateInto(block, std::min<qint64>(claimed, maxLength), file, fileSize, maxLength);
}

} // namespace

BlockResult ReadBlock(QFile& file, int maxLength, QByteArray& block)
{
    try {
        return ReadOrThrow(file, maxLength, block);
    } catch (const std::bad_alloc&) {
        return BlockResult::NoMemory;
    }
}
