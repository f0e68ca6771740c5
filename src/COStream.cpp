#include "COStream.h"

#include <algorithm>
#include <new>

namespace OrvoStream
{

namespace
{

constexpr qint32 BufferSize = 20480;

} // namespace

COStream::COStream() : m_pBuffer(nullptr), m_nCapacity(0), m_nUsed(0) {}

COStream::~COStream()
{
    delete[] m_pBuffer;
}

int COStream::Write(char const* data, int len)
{
    if (len < 0 || (data == nullptr && len > 0)) {
        return 0;
    }
    // Asked again, because a derived PrepareBuffer() may promise room that is not there.
    if (PrepareBuffer(len) == 0 || !Fits(len)) {
        return 0;
    }
    const qint32 position = m_nUsed;
    std::copy_n(data, len, m_pBuffer + position);
    m_nUsed += len;
    return position;
}

void COStream::Flush()
{
    SaveBuffer(m_pBuffer, m_nUsed);
    // The bytes behind the used ones are zero already, so this leaves the whole buffer zero.
    std::fill_n(m_pBuffer, m_nUsed, '\0');
    m_nUsed = 0;
}

void COStream::SaveBuffer(char const*, int) {}

int COStream::PrepareBuffer(int len)
{
    if (m_nCapacity <= 0) {
        m_nCapacity = BufferSize;
    }
    if (m_nUsed > 0 && qint64{m_nUsed} + len >= m_nCapacity) {
        Flush();
    }
    if (m_pBuffer == nullptr) {
        m_pBuffer = new (std::nothrow) char[static_cast<std::size_t>(m_nCapacity)]();
        if (m_pBuffer == nullptr) {
            m_nCapacity = 0;
        }
    }
    return Fits(len) ? 1 : 0;
}

bool COStream::Fits(int len) const
{
    return m_pBuffer != nullptr && qint64{m_nUsed} + len <= m_nCapacity;
}

} // namespace OrvoStream
