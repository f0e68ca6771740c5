// The conversions of the byte string from wide text.

#include "CQSString.h"

#include "CQSStringBuffer.h"
#include "CQWString.h"
#include "CStrConvertor.h"
#include "Utf8Unit.h"

#include <algorithm>

namespace
{

constexpr bool IsHighSurrogate(std::uint32_t unit)
{
    return unit >= 0xD800 && unit < 0xDC00;
}

constexpr bool IsLowSurrogate(std::uint32_t unit)
{
    return unit >= 0xDC00 && unit < 0xE000;
}

// Reads one character and moves `p` behind it. Two units that form a surrogate pair are one
// character; whatever else is no code point becomes a question mark.
std::uint32_t NextCodePoint(const wchar_t*& p, const wchar_t* end)
{
    const auto unit = static_cast<std::uint32_t>(*p++);
    if (IsHighSurrogate(unit) && p != end && IsLowSurrogate(static_cast<std::uint32_t>(*p))) {
        const auto low = static_cast<std::uint32_t>(*p++);
        return 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
    }
    const bool isCodePoint = unit <= 0x10FFFF && !IsHighSurrogate(unit) && !IsLowSurrogate(unit);
    return isCodePoint ? unit : std::uint32_t{'?'};
}

} // namespace

CQSString::CQSString(const CQWString& other) : CQSString()
{
    const wchar_t* const begin = other.GetDataPtr();
    const wchar_t* const end = std::find(begin, begin + other.GetLength(), L'\0');
    if (begin == end) {
        *this = other;
        return;
    }
    std::int64_t size = 0;
    for (const wchar_t* p = begin; p != end;) {
        size += Utf8UnitSize(NextCodePoint(p, end));
    }
    char* const pFresh = CQSStringBuffer::New(size);
    if (pFresh == nullptr) {
        return;
    }
    char* out = pFresh;
    for (const wchar_t* p = begin; p != end;) {
        out = PutUtf8Unit(out, NextCodePoint(p, end));
    }
    CQSStringBuffer::Adopt(*this, pFresh, size);
}

int CQSString::SetData(const CQWString* pStr)
{
    if (pStr == nullptr) {
        return 0;
    }
    const std::int64_t size = BmpUtf8Size(pStr->GetDataPtr(), pStr->GetLength());
    if (size == 0) {
        return 1;
    }
    char* const pFresh = CQSStringBuffer::New(size);
    if (pFresh == nullptr) {
        return 0;
    }
    int capacity = static_cast<int>(size);
    CStrConvertor::Unicode2Utf8(pFresh, capacity, pStr->GetDataPtr(), pStr->GetLength());
    return CQSStringBuffer::Adopt(*this, pFresh, size);
}

CQSString& CQSString::operator=(const CQWString& other)
{
    SetData(&other);
    return *this;
}
