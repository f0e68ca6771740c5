#include "CIStream.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <new>

namespace OrvoStream
{

namespace
{

constexpr qint32 BufferSize = 20480;

} // namespace

CIStream::CIStream() : m_pBuffer(nullptr), m_nValidLen(BufferSize), m_nPos(0) {}

CIStream::~CIStream()
{
    delete[] m_pBuffer;
}

int CIStream::Read(char* dest, int len)
{
    if (len < 0 || (dest == nullptr && len > 0) || PrepareBuffer(len) == 0) {
        return 0;
    }
    const qint32 start = std::min(m_nPos, BufferSize);
    const qint32 held = std::min(len, BufferSize - start);
    std::copy_n(m_pBuffer + start, held, dest);
    std::fill_n(dest + held, len - held, '\0');
    // All positions behind the buffer act alike, so stopping at the largest one is not seen.
    m_nPos = static_cast<qint32>(
        std::min<qint64>(qint64{m_nPos} + len, std::numeric_limits<qint32>::max()));
    return len;
}

int CIStream::LoadBuffer(char*, int)
{
    return 0;
}

int CIStream::PrepareBuffer(int len)
{
    if (m_pBuffer == nullptr && !LoadFirst()) {
        return 0;
    }
    if (qint64{m_nPos} + len <= m_nValidLen) {
        return 1;
    }
    Refill();
    return m_nValidLen >= len ? 1 : 0;
}

bool CIStream::LoadFirst()
{
    std::unique_ptr<char[]> buffer(new (std::nothrow) char[BufferSize]());
    if (buffer == nullptr) {
        return false;
    }
    m_nValidLen = Load(buffer.get(), BufferSize);
    m_pBuffer = buffer.release();
    return true;
}

void CIStream::Refill()
{
    // The position stays, and only what had been read is asked for: see the header.
    const qint32 rest = std::max(m_nValidLen - m_nPos, 0);
    std::memmove(m_pBuffer, m_pBuffer + (m_nValidLen - rest), static_cast<std::size_t>(rest));
    m_nValidLen = rest + Load(m_pBuffer + rest, m_nValidLen - rest);
}

int CIStream::Load(char* dest, int len)
{
    return std::clamp(LoadBuffer(dest, len), 0, len);
}

} // namespace OrvoStream
