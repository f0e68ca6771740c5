#include "ByteOrder.h"

#include <cstdint>
#include <cstring>

void SetWORD(unsigned char* p, unsigned short v)
{
    p[0] = static_cast<unsigned char>(v >> 8);
    p[1] = static_cast<unsigned char>(v);
}

void SetDWORD(unsigned char* p, unsigned long v)
{
    p[0] = static_cast<unsigned char>(v >> 24);
    p[1] = static_cast<unsigned char>(v >> 16);
    p[2] = static_cast<unsigned char>(v >> 8);
    p[3] = static_cast<unsigned char>(v);
}

void GetWORD(unsigned short& v, unsigned char* p)
{
    v = static_cast<unsigned short>(p[0] << 8 | p[1]);
}

void GetDWORD(unsigned long& v, unsigned char* p)
{
    v = static_cast<std::uint32_t>(p[0]) << 24 | static_cast<std::uint32_t>(p[1]) << 16 |
        static_cast<std::uint32_t>(p[2]) << 8 | p[3];
}

void GetLLONG(unsigned long long& v, unsigned char* p)
{
    unsigned long high = 0;
    unsigned long low = 0;
    GetDWORD(high, p);
    GetDWORD(low, p + 4);
    v = static_cast<std::uint64_t>(high) << 32 | low;
}

unsigned long HTONL(unsigned long v)
{
    unsigned char packed[4];
    SetDWORD(packed, v);
    std::uint32_t hostOrder;
    std::memcpy(&hostOrder, packed, sizeof hostOrder);
    return hostOrder;
}

unsigned long NTOHL(unsigned long v)
{
    return HTONL(v);
}

unsigned short HTONS(unsigned short v)
{
    unsigned char packed[2];
    SetWORD(packed, v);
    std::uint16_t hostOrder;
    std::memcpy(&hostOrder, packed, sizeof hostOrder);
    return hostOrder;
}

unsigned short NTOHS(unsigned short v)
{
    return HTONS(v);
}
