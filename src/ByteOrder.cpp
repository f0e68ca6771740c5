#include "ByteOrder.h"

#include "WordBytes.h"

#include <cstdint>
#include <cstring>

void SetWORD(unsigned char* p, unsigned short v)
{
    p[0] = static_cast<unsigned char>(v >> 8);
    p[1] = static_cast<unsigned char>(v);
}

void SetDWORD(unsigned char* p, unsigned long v)
{
    WordBytes::StoreBigEndian(static_cast<std::uint32_t>(v), p);
}

void GetWORD(unsigned short& v, unsigned char* p)
{
    v = static_cast<unsigned short>(p[0] << 8 | p[1]);
}

void GetDWORD(unsigned long& v, unsigned char* p)
{
    v = WordBytes::LoadBigEndian(p);
}

void GetLLONG(unsigned long long& v, unsigned char* p)
{
    v = std::uint64_t{WordBytes::LoadBigEndian(p)} << 32 | WordBytes::LoadBigEndian(p + 4);
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
