#include "DataInputStream.h"

#include "FileInputStream.h"

#include <cstring>
#include <memory>
#include <utility>

namespace OrvoStream
{

namespace
{

template <typename T>
T ReadItem(DataInputStream& in, bool& hasFailed)
{
    constexpr int size = sizeof(T);
    char bytes[size];
    if (in.Read(bytes, size) != size) {
        hasFailed = true;
        throw -1;
    }
    T value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

} // namespace

DataInputStream::DataInputStream(CIStream& in) : m_pIn(&in), m_bFailed(false) {}

DataInputStream::~DataInputStream()
{
    m_pIn->Close();
}

int DataInputStream::Read(char* dest, int len)
{
    const int count = m_pIn->Read(dest, len);
    m_bFailed |= count != len;
    return count;
}

int DataInputStream::Available()
{
    return m_pIn->Available();
}

void DataInputStream::Close()
{
    m_pIn->Close();
}

int DataInputStream::ReadInt()
{
    return ReadItem<int>(*this, m_bFailed);
}

short DataInputStream::ReadShort()
{
    return ReadItem<short>(*this, m_bFailed);
}

char DataInputStream::ReadChar()
{
    return ReadItem<char>(*this, m_bFailed);
}

char* DataInputStream::ReadBytes(int& len)
{
    if (len < 1) {
        return nullptr;
    }
    const bool hadFailed = std::exchange(m_bFailed, true); // stays so without memory
    auto bytes = std::make_unique<char[]>(static_cast<std::size_t>(len));
    m_bFailed = hadFailed;
    const int asked = len;
    len = Read(bytes.get(), asked);
    m_bFailed |= len != asked;
    return bytes.release();
}

bool DataInputStream::HasFailed() const
{
    const auto* const file = dynamic_cast<const FileInputStream*>(m_pIn);
    const auto* const data = dynamic_cast<const DataInputStream*>(m_pIn);
    return m_bFailed || (file != nullptr && file->HasFailed()) ||
           (data != nullptr && data->HasFailed());
}

} // namespace OrvoStream
