#include "DataOutputStream.h"

#include "CQSString.h"
#include "ISerializable.h"

#include <climits>
#include <cstring>

namespace
{

template <typename T>
int WriteItem(DataOutputStream& out, T value)
{
    char bytes[sizeof value];
    std::memcpy(bytes, &value, sizeof value);
    return out.Write(bytes, static_cast<int>(sizeof bytes));
}

} // namespace

DataOutputStream::DataOutputStream(OrvoStream::COStream& out) : m_pOut(&out) {}

DataOutputStream::~DataOutputStream() = default;

int DataOutputStream::Write(char const* data, int len)
{
    return m_pOut->Write(data, len);
}

void DataOutputStream::Flush()
{
    m_pOut->Flush();
}

void DataOutputStream::Close()
{
    m_pOut->Close();
}

int DataOutputStream::Write(int v)
{
    return WriteItem(*this, v);
}

int DataOutputStream::Write(short v)
{
    return WriteItem(*this, v);
}

int DataOutputStream::Write(char v)
{
    return WriteItem(*this, v);
}

int DataOutputStream::Write(CQSString const& s)
{
    return Write(s.GetDataPtr(), s.GetLength());
}

DataOutputStream& DataOutputStream::operator<<(char v)
{
    Write(v);
    return *this;
}

DataOutputStream& DataOutputStream::operator<<(unsigned char v)
{
    return *this << static_cast<char>(v);
}

DataOutputStream& DataOutputStream::operator<<(short v)
{
    Write(v);
    return *this;
}

DataOutputStream& DataOutputStream::operator<<(unsigned short v)
{
    return *this << static_cast<short>(v);
}

DataOutputStream& DataOutputStream::operator<<(int v)
{
    Write(v);
    return *this;
}

DataOutputStream& DataOutputStream::operator<<(unsigned int v)
{
    return *this << static_cast<int>(v);
}

DataOutputStream& DataOutputStream::operator<<(unsigned long v)
{
    return *this << static_cast<int>(v);
}

DataOutputStream& DataOutputStream::operator<<(char const* s)
{
    // A length beyond int cannot be passed on; no stream of the library would take it either.
    if (s != nullptr && std::strlen(s) <= INT_MAX) {
        Write(s, static_cast<int>(std::strlen(s)));
    }
    return *this;
}

DataOutputStream& DataOutputStream::operator<<(ISerializable const& obj)
{
    obj.Serialize(*this);
    return *this;
}
