#include "DataOutputStream.h"

#include "CQSString.h"
#include "FileOutputStream.h"
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

DataOutputStream::DataOutputStream(OrvoStream::COStream& out) : m_pOut(&out), m_bFailed(false) {}

DataOutputStream::~DataOutputStream() = default;

int DataOutputStream::Write(char const* data, int len)
{
    const int position = m_pOut->Write(data, len);
    // A wrapped data stream keeps its own record: what it answers is another stream's position.
    if (position <= 0 && !HasTaken(*m_pOut, position, len) &&
        dynamic_cast<DataOutputStream*>(m_pOut) == nullptr) {
        m_bFailed = true;
    }
    return position;
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
    const std::size_t length = s != nullptr ? std::strlen(s) : 0;
    if (length > INT_MAX) {
        m_bFailed = true;
    } else if (s != nullptr) {
        Write(s, static_cast<int>(length));
    }
    return *this;
}

DataOutputStream& DataOutputStream::operator<<(ISerializable const& obj)
{
    obj.Serialize(*this);
    return *this;
}

bool DataOutputStream::HasFailed() const
{
    const auto* const file = dynamic_cast<const OrvoStream::FileOutputStream*>(m_pOut);
    const auto* const data = dynamic_cast<const DataOutputStream*>(m_pOut);
    return m_bFailed || (file != nullptr && file->HasFailed()) ||
           (data != nullptr && data->HasFailed());
}
