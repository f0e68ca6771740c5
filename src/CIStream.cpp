#include "CIStream.h"

#include "StreamBufferSize.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <limits>
#include <memory>
#include <new>

namespace OrvoStream
{

namespace
{

// What lies behind the buffer reads as zero.
void CopyZeroExtended(const char* buffer, qint32 position, char* dest, int len)
{
    const qint32 start = std::min(position, StreamBufferSize);
    const qint32 held = std::min(len, StreamBufferSize - start);
    std::copy_n(buffer + start, held, dest);
    std::fill_n(dest + held, len - held, '\0');
}

} // namespace

CIStream::CIStream() : m_pBuffer(nullptr), m_nValidLen(StreamBufferSize), m_nPos(0) {}

CIStream::~CIStream()
{
    delete[] m_pBuffer;
}

int CIStream::Read(char* dest, int len)
{
    if (len < 0 || (dest == nullptr && len > 0) || PrepareBuffer(len) == 0) {
        return 0;
    }
    const qint64 end = qint64{m_nPos} + len;
    if (end > StreamBufferSize) {
        CopyZeroExtended(m_pBuffer, m_nPos, dest, len);
    } else if (len == sizeof(qint32)) {
        // Most items are of this size; a store in place of a call saves a quarter of their time.
        std::memcpy(dest, m_pBuffer + m_nPos, sizeof(qint32));
    } else {
        std::copy_n(m_pBuffer + m_nPos, len, dest);
    }
    // All positions behind the buffer act alike, so stopping at the largest one is not seen.
    m_nPos = static_cast<qint32>(std::min<qint64>(end, std::numeric_limits<qint32>::max()));
    return len;
}

int CIStream::LoadBuffer(char*, int)
{
    return 0;
}

// Apart from PrepareBuffer(), which then needs no stack frame for what is buffered.
[[gnu::noinline]] int Load(CIStream& in, int len)
{
    if (in.m_pBuffer == nullptr) {
        std::unique_ptr<char[]> buffer(new (std::nothrow) char[StreamBufferSize]());
        if (buffer == nullptr) {
            return 0;
        }
        in.m_nValidLen =
            std::clamp(in.LoadBuffer(buffer.get(), StreamBufferSize), 0, StreamBufferSize);
        in.m_pBuffer = buffer.release();
    }
    if (qint64{in.m_nPos} + len <= in.m_nValidLen) {
        return 1;
    }
    // The position stays, and only what had been read is asked for: see the header.
    const qint32 rest = std::max(in.m_nValidLen - in.m_nPos, 0);
    const qint32 asked = in.m_nValidLen - rest;
    std::memmove(in.m_pBuffer, in.m_pBuffer + asked, static_cast<std::size_t>(rest));
    in.m_nValidLen = rest + std::clamp(in.LoadBuffer(in.m_pBuffer + rest, asked), 0, asked);
    return in.m_nValidLen >= len ? 1 : 0;
}

int CIStream::PrepareBuffer(int len)
{
    if (m_pBuffer != nullptr && qint64{m_nPos} + len <= m_nValidLen) {
        return 1;
    }
    return Load(*this, len);
}

bool HasBuffer(const CIStream& in)
{
    return in.m_pBuffer != nullptr;
}

bool IsRefill(const CIStream& in, const char* dest)
{
    const std::less_equal<const char*> isUpTo;
    return in.m_pBuffer != nullptr && isUpTo(in.m_pBuffer, dest) &&
           isUpTo(dest, in.m_pBuffer + StreamBufferSize);
}

} // namespace OrvoStream
