#include "CQWString.h"

#include "CQSString.h"
#include "OrvoAssert.h"
#include "TextUnits.h"
#include "WideCase.h"
#include "WideStore.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <functional>
#include <string_view>
#include <utility>

namespace
{

constexpr char Source[] = "src/CQWString";
constexpr wchar_t Blanks[] = L"\n\r \t";

// Room for any 32-bit number in a base from 10 up, with sign and terminator.
constexpr int NumberSize = 12;

std::wstring_view SafeView(const wchar_t* lpszStr)
{
    return lpszStr == nullptr ? std::wstring_view() : std::wstring_view(lpszStr);
}

enum class Side { Start, End };

// Reports the line of the operation.
template <class Equal>
int TestAffix(std::wstring_view text, Side side, const wchar_t* lpszSub, Equal equal,
              int nLine = __builtin_LINE())
{
    if (!OrvoAssert(lpszSub != nullptr, "lpszSub != NULL", Source, nLine)) {
        return 0;
    }
    const std::wstring_view sub(lpszSub);
    if (sub.size() > text.size()) {
        return 0;
    }
    const std::size_t nAt = side == Side::Start ? 0 : text.size() - sub.size();
    return equal(text.substr(nAt, sub.size()), sub) ? 1 : 0;
}

// Formats n as a terminated text and returns it; one copy serves all its callers.
template <class Number>
[[gnu::noinline]] const wchar_t* FormatNumber(Number n, int nBase, wchar_t (&buffer)[NumberSize])
{
    char digits[NumberSize];
    const char* pEnd = std::to_chars(digits, digits + NumberSize - 1, n, nBase).ptr;
    const auto toWide = [](char c) { return static_cast<wchar_t>(c >= 'a' ? c - 'a' + 'A' : c); };
    *std::transform(static_cast<const char*>(digits), pEnd, buffer, toWide) = L'\0';
    return buffer;
}

// These report the line of the operation.
bool AssertText(const CQWString& s, int nLine = __builtin_LINE())
{
    return OrvoAssert(!s.IsEmpty(), "m_pData != NULL && m_nDataLen > 0", Source, nLine);
}

// Both are asserted, so a string without a buffer fails twice.
bool AssertNumber(const CQWString& s, int nLine = __builtin_LINE())
{
    const bool bHasBuffer = OrvoAssert(s.GetDataPtr() != nullptr, "m_pData != NULL", Source, nLine);
    return OrvoAssert(!s.IsEmpty(), "m_nDataLen > 0", Source, nLine) && bHasBuffer;
}

bool IsInBuffer(const CQWString& s, std::wstring_view text)
{
    const wchar_t* const pFirst = s.GetDataPtr();
    const std::less_equal<const wchar_t*> isBefore;
    return isBefore(pFirst, text.data()) && isBefore(text.data(), pFirst + WideStore::Capacity(s));
}

// What does not get longer needs no room.
int ReplaceInPlace(CQWString& s, std::wstring_view oldText, std::wstring_view newText)
{
    const std::size_t nFirst = FindText(View(s), oldText);
    if (nFirst == std::wstring_view::npos) {
        return 0;
    }
    const auto nSize = static_cast<std::size_t>(s.GetLength());
    const Replaced replaced = ReplaceWithin(WideStore::Data(s), nSize, nFirst, oldText, newText);
    if (replaced.length == 0) {
        s.Empty();
    } else {
        WideStore::End(s, static_cast<int>(replaced.length));
    }
    return replaced.count;
}

// Builds the result apart from the buffer: the arguments may lie in it, and a failure leaves the
// string as it was.
int ReplaceAside(CQWString& s, std::wstring_view oldText, std::wstring_view newText)
{
    const std::wstring_view text = View(s);
    const Occurrences places(text, oldText);
    const int nCount = places.GetCount();
    if (nCount == 0 || newText.size() > INT_MAX) {
        return 0;
    }
    const qint64 nDelta = static_cast<qint64>(newText.size()) - static_cast<qint64>(oldText.size());
    const qint64 nNewLen = s.GetLength() + nCount * nDelta;
    if (nNewLen < 1) {
        s.Empty();
        return nCount;
    }
    const bool bGrows = nNewLen > WideStore::Capacity(s);
    const qint64 nCapacity = bGrows ? WideStore::CapacityFor(s, nNewLen) : nNewLen;
    WideStore::Units built = WideStore::New(nCapacity, nNewLen);
    if (built == nullptr) {
        return 0;
    }
    const wchar_t* pDstEnd = places.PutReplaced(built.get(), newText);
    OrvoAssert(pDstEnd - built.get() == nNewLen, "m_nDataLen == nDstStart", Source);
    if (bGrows) {
        WideStore::Exchange(s, std::move(built), nCapacity, static_cast<int>(nNewLen));
    } else {
        WideStore::Set(s, built.get(), nNewLen);
    }
    return nCount;
}

int ReplaceAll(CQWString& s, std::wstring_view oldText, std::wstring_view newText)
{
    const bool bInPlace =
        newText.size() <= oldText.size() && !IsInBuffer(s, oldText) && !IsInBuffer(s, newText);
    return bInPlace ? ReplaceInPlace(s, oldText, newText) : ReplaceAside(s, oldText, newText);
}

} // namespace

// Substrings between delimiters

int CQWString::GetSubString(CQWString& out, const wchar_t* lpszStart, const wchar_t* lpszEnd,
                            int nStart, bool bKeepStart, bool bKeepEnd) const
{
    if (!AssertText(*this) || lpszStart == nullptr || lpszEnd == nullptr) {
        return -1;
    }
    return CopyBetween(*this, out, lpszStart, lpszEnd, nStart, bKeepStart, bKeepEnd);
}

int CQWString::GetSubString(CQWString& out, wchar_t cStart, wchar_t cEnd, int nStart,
                            bool bKeepStart, bool bKeepEnd) const
{
    if (!AssertText(*this)) {
        return -1;
    }
    return CopyBetween(*this, out, {&cStart, 1}, {&cEnd, 1}, nStart, bKeepStart, bKeepEnd);
}

// Changing the text

void CQWString::TrimRightAndLeft()
{
    const std::wstring_view text = View(*this);
    const std::size_t nFirst = text.find_first_not_of(Blanks);
    if (nFirst == std::wstring_view::npos) {
        Empty();
        return;
    }
    const int nStartPos = static_cast<int>(nFirst);
    const int nEndPos = static_cast<int>(text.find_last_not_of(Blanks));
    OrvoAssert(nEndPos >= nStartPos, "nEndPos >= nStartPos", Source);
    // Never shrinks the buffer, so the kept units move within it.
    WideStore::Set(*this, m_pData + nStartPos, nEndPos - nStartPos + 1);
}

void CQWString::MakeUpper()
{
    if (AssertText(*this)) {
        WideCase::MakeUpper(m_pData, m_nDataLen);
    }
}

void CQWString::MakeLower()
{
    if (AssertText(*this)) {
        WideCase::MakeLower(m_pData, m_nDataLen);
    }
}

int CQWString::Replace(const wchar_t* lpszOld, const wchar_t* lpszNew)
{
    const std::wstring_view oldText = SafeView(lpszOld);
    const std::wstring_view newText = SafeView(lpszNew);
    if (oldText.empty() || oldText == newText) {
        return 0;
    }
    return ReplaceAll(*this, oldText, newText);
}

int CQWString::DeleteSubString(const wchar_t* lpszSub)
{
    return Replace(lpszSub, nullptr);
}

// Tests

int CQWString::IsStartWith(const wchar_t* lpszSub) const
{
    return TestAffix(View(*this), Side::Start, lpszSub, std::equal_to<>());
}

int CQWString::IsStartWithNoCase(const wchar_t* lpszSub) const
{
    return TestAffix(View(*this), Side::Start, lpszSub, WideCase::EqualFolded);
}

int CQWString::IsEndWith(const wchar_t* lpszSub) const
{
    return TestAffix(View(*this), Side::End, lpszSub, std::equal_to<>());
}

int CQWString::IsEndWithNoCase(const wchar_t* lpszSub) const
{
    return TestAffix(View(*this), Side::End, lpszSub, WideCase::EqualFolded);
}

// Numbers

void CQWString::ToString(int n)
{
    wchar_t buffer[NumberSize];
    SetData(FormatNumber(n, 10, buffer));
}

void CQWString::ToString(unsigned int n)
{
    wchar_t buffer[NumberSize];
    SetData(FormatNumber(n, 10, buffer));
}

void CQWString::ToStringEx(unsigned int n)
{
    wchar_t buffer[NumberSize];
    SetData(FormatNumber(n, 16, buffer));
}

int CQWString::AppendNum(int n)
{
    wchar_t buffer[NumberSize];
    return AppendData(FormatNumber(n, 10, buffer));
}

int CQWString::ToINT() const
{
    return AssertNumber(*this) ? SignedTrailingNumber(View(*this), 10) : -1;
}

int CQWString::ToINT(short nBase) const
{
    if (!AssertNumber(*this) || nBase < 2) {
        return -1;
    }
    quint32 nValue = 0;
    for (const wchar_t c : View(*this)) {
        nValue =
            nValue * static_cast<quint32>(nBase) + static_cast<quint32>(std::max(HexDigit(c), 0));
    }
    return static_cast<int>(nValue);
}

int CQWString::ToHEX() const
{
    return AssertNumber(*this) ? SignedTrailingNumber(View(*this), 16) : -1;
}

int CQWString::ToNum(enNumType eType) const
{
    switch (eType) {
    case enHexNum:
        return ToHEX();
    case enDecNum:
        return ToINT();
    }
    return -1;
}

int CQWString::EncryptStrToInt(CQWString& s)
{
    const CQSString bytes(s);
    quint32 nValue = 0;
    for (int i = 0; i < bytes.GetLength(); ++i) {
        nValue = nValue * 10 + static_cast<unsigned char>(bytes.GetDataPtr()[i]) % 10U;
    }
    return static_cast<int>(nValue);
}
