#include "DataInputStream.h"

#include <cstring>
#include <memory>

namespace OrvoStream
{

namespace
{

template <typename T>
T ReadItem(DataInputStream& in)
{
    constexpr int size = sizeof(T);
    char bytes[size];
    if (in.Read(bytes, size) != size) {
        throw -1;
    }
    T value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

} // namespace

DataInputStream::DataInputStream(CIStream& in) : m_pIn(&in) {}

DataInputStream::~DataInputStream()
{
    m_pIn->Close();
}

int DataInputStream::Read(char* dest, int len)
{
    return m_pIn->Read(dest, len);
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
    return ReadItem<int>(*this);
}

short DataInputStream::ReadShort()
{
    return ReadItem<short>(*this);
}

char DataInputStream::ReadChar()
{
    return ReadItem<char>(*this);
}

char* DataInputStream::ReadBytes(int& len)
{
    if (len < 1) {
        return nullptr;
    }
    auto bytes = std::make_unique<char[]>(static_cast<std::size_t>(len));
    len = Read(bytes.get(), len);
    return bytes.release();
}

} // namespace OrvoStream
