#include "CQWString.h"

#include "CQSString.h"
#include "OrvoAssert.h"

#include <QVector>

#include <algorithm>
#include <charconv>
#include <functional>
#include <string>

namespace
{

constexpr char kSource[] = "src/CQWString";
constexpr wchar_t kBlanks[] = L"\n\r \t";

// Room for any 32-bit number in a base from 10 up, with sign and terminator.
constexpr int kNumberSize = 12;

// Stands for a unit that is no code point while the platform maps the case.
constexpr char16_t kOpaque = 0xFFFF;

std::wstring_view SafeView(const wchar_t* lpszStr)
{
    return lpszStr == nullptr ? std::wstring_view() : std::wstring_view(lpszStr);
}

bool IsCodePoint(quint32 unit)
{
    return unit <= QChar::LastValidCodePoint && !QChar::isSurrogate(unit);
}

// The text for the platform's case tables. Units that are no code point are set aside in opaque,
// with a placeholder that has no case in their place.
QString ToPlatform(std::wstring_view text, std::wstring& opaque)
{
    QString result;
    result.reserve(static_cast<int>(text.size()));
    for (const wchar_t c : text) {
        const auto unit = static_cast<quint32>(c);
        if (unit == kOpaque || !IsCodePoint(unit)) {
            opaque += c;
            result += QChar(kOpaque);
        } else if (QChar::requiresSurrogates(unit)) {
            result += QChar(QChar::highSurrogate(unit));
            result += QChar(QChar::lowSurrogate(unit));
        } else {
            result += QChar(static_cast<char16_t>(unit));
        }
    }
    return result;
}

wchar_t FoldCase(wchar_t c)
{
    const auto unit = static_cast<quint32>(c);
    return IsCodePoint(unit) ? static_cast<wchar_t>(QChar::toCaseFolded(unit)) : c;
}

bool EqualFolded(std::wstring_view a, std::wstring_view b)
{
    const auto sameLetter = [](wchar_t x, wchar_t y) { return FoldCase(x) == FoldCase(y); };
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), sameLetter);
}

enum class Side { Start, End };

template <class Equal>
int TestAffix(std::wstring_view text, Side side, const wchar_t* lpszSub, Equal equal)
{
    if (!OrvoAssert(lpszSub != nullptr, "lpszSub != NULL", kSource)) {
        return 0;
    }
    const std::wstring_view sub(lpszSub);
    if (sub.size() > text.size()) {
        return 0;
    }
    const std::size_t nAt = side == Side::Start ? 0 : text.size() - sub.size();
    return equal(text.substr(nAt, sub.size()), sub) ? 1 : 0;
}

int CountOf(std::wstring_view text, std::wstring_view sub)
{
    int nCount = 0;
    for (std::size_t nAt = text.find(sub); nAt != std::wstring_view::npos;
         nAt = text.find(sub, nAt + sub.size())) {
        ++nCount;
    }
    return nCount;
}

// Copies text with its occurrences of oldText replaced; returns the end of what was written.
wchar_t* CopyReplaced(wchar_t* pDst, std::wstring_view text, std::wstring_view oldText,
                      std::wstring_view newText)
{
    std::size_t nDone = 0;
    for (std::size_t nAt = text.find(oldText); nAt != std::wstring_view::npos;
         nAt = text.find(oldText, nDone)) {
        pDst += text.copy(pDst, nAt - nDone, nDone);
        pDst += newText.copy(pDst, newText.size());
        nDone = nAt + oldText.size();
    }
    return pDst + text.copy(pDst, text.size() - nDone, nDone);
}

// Value of a hexadecimal digit, or -1.
int DigitValue(wchar_t c)
{
    if (c >= L'0' && c <= L'9') {
        return static_cast<int>(c - L'0');
    }
    if (c >= L'a' && c <= L'f') {
        return static_cast<int>(c - L'a') + 10;
    }
    return c >= L'A' && c <= L'F' ? static_cast<int>(c - L'A') + 10 : -1;
}

// Value of the digits of the base that end the text, modulo 2^32; negated when the text begins
// with '-'.
int TrailingNumber(std::wstring_view text, int nBase)
{
    quint32 nValue = 0;
    quint32 nPlace = 1;
    for (auto it = text.rbegin(); it != text.rend(); ++it) {
        const int nDigit = DigitValue(*it);
        if (nDigit < 0 || nDigit >= nBase) {
            break;
        }
        nValue += static_cast<quint32>(nDigit) * nPlace;
        nPlace *= static_cast<quint32>(nBase);
    }
    return static_cast<int>(text.front() == L'-' ? 0 - nValue : nValue);
}

// Formats n as a terminated text and returns it.
template <class Number>
const wchar_t* FormatNumber(Number n, int nBase, wchar_t (&buffer)[kNumberSize])
{
    char digits[kNumberSize];
    const char* pEnd = std::to_chars(digits, digits + kNumberSize - 1, n, nBase).ptr;
    const auto toWide = [](char c) { return static_cast<wchar_t>(c >= 'a' ? c - 'a' + 'A' : c); };
    *std::transform(static_cast<const char*>(digits), pEnd, buffer, toWide) = L'\0';
    return buffer;
}

} // namespace

// Substrings between delimiters

bool CQWString::AssertText() const
{
    return OrvoAssert(m_pData != nullptr && m_nDataLen > 0, "m_pData != NULL && m_nDataLen > 0",
                      kSource);
}

int CQWString::Extract(CQWString& out, std::wstring_view start, std::wstring_view end, int nStart,
                       bool bKeepStart, bool bKeepEnd) const
{
    nStart = std::max(nStart, 0);
    if (nStart >= m_nDataLen - 1) {
        return -1;
    }
    const std::wstring_view text = View();
    const std::size_t nOpen = text.find(start, static_cast<std::size_t>(nStart));
    if (nOpen == std::wstring_view::npos || nOpen + start.size() >= text.size()) {
        return -1;
    }
    const std::size_t nInner = nOpen + start.size();
    const std::size_t nClose = text.find(end, nInner);
    if (nClose == std::wstring_view::npos) {
        return -1;
    }
    const std::size_t nFrom = bKeepStart ? nOpen : nInner;
    const std::size_t nTo = bKeepEnd ? nClose + end.size() : nClose;
    AllocCopy(out, static_cast<int>(nTo - nFrom), static_cast<int>(nFrom));
    return static_cast<int>(nFrom);
}

int CQWString::GetSubString(CQWString& out, const wchar_t* lpszStart, const wchar_t* lpszEnd,
                            int nStart, bool bKeepStart, bool bKeepEnd) const
{
    if (!AssertText() || lpszStart == nullptr || lpszEnd == nullptr) {
        return -1;
    }
    return Extract(out, lpszStart, lpszEnd, nStart, bKeepStart, bKeepEnd);
}

int CQWString::GetSubString(CQWString& out, wchar_t cStart, wchar_t cEnd, int nStart,
                            bool bKeepStart, bool bKeepEnd) const
{
    if (!AssertText()) {
        return -1;
    }
    return Extract(out, {&cStart, 1}, {&cEnd, 1}, nStart, bKeepStart, bKeepEnd);
}

// Changing the text

void CQWString::TrimRightAndLeft()
{
    const std::wstring_view text = View();
    const std::size_t nFirst = text.find_first_not_of(kBlanks);
    if (nFirst == std::wstring_view::npos) {
        Empty();
        return;
    }
    const int nStartPos = static_cast<int>(nFirst);
    const int nEndPos = static_cast<int>(text.find_last_not_of(kBlanks));
    OrvoAssert(nEndPos >= nStartPos, "nEndPos >= nStartPos", kSource);
    // Never shrinks the buffer, so the kept units move within it.
    Store(m_pData + nStartPos, nEndPos - nStartPos + 1);
}

// Writes at most the length back, and zero units where the mapped text is shorter.
void CQWString::StoreMapped(const QString& mapped, std::wstring_view opaque)
{
    const auto codePoints = mapped.toUcs4();
    const int nCount = std::min(static_cast<int>(codePoints.size()), m_nDataLen);
    auto kept = opaque.begin();
    for (int i = 0; i < nCount; ++i) {
        m_pData[i] = codePoints[i] == kOpaque ? *kept++ : static_cast<wchar_t>(codePoints[i]);
    }
    std::fill(m_pData + nCount, m_pData + m_nDataLen, L'\0');
}

void CQWString::MakeUpper()
{
    if (AssertText()) {
        std::wstring opaque;
        StoreMapped(ToPlatform(View(), opaque).toUpper(), opaque);
    }
}

void CQWString::MakeLower()
{
    if (AssertText()) {
        std::wstring opaque;
        StoreMapped(ToPlatform(View(), opaque).toLower(), opaque);
    }
}

// Builds the result apart from the buffer: the arguments may lie in it, and a failure leaves the
// string as it was.
int CQWString::ReplaceAll(std::wstring_view oldText, std::wstring_view newText)
{
    const std::wstring_view text = View();
    const int nCount = CountOf(text, oldText);
    if (nCount == 0 || newText.size() > 0x7FFFFFFF) {
        return 0;
    }
    const qint64 nDelta = static_cast<qint64>(newText.size()) - static_cast<qint64>(oldText.size());
    const qint64 nNewLen = m_nDataLen + nCount * nDelta;
    if (nNewLen < 1) {
        Empty();
        return nCount;
    }
    const bool bGrows = nNewLen > m_nMAXLen;
    const qint64 nCapacity = bGrows ? CapacityFor(nNewLen) : nNewLen;
    Units built = NewUnits(nCapacity);
    if (built == nullptr) {
        return 0;
    }
    const wchar_t* pDstEnd = CopyReplaced(built.get(), text, oldText, newText);
    OrvoAssert(pDstEnd - built.get() == nNewLen, "m_nDataLen == nDstStart", kSource);
    if (bGrows) {
        delete[] m_pData;
        m_pData = built.release();
        m_nMAXLen = static_cast<int>(nCapacity);
        m_nDataLen = static_cast<int>(nNewLen);
        return nCount;
    }
    Store(built.get(), nNewLen);
    return nCount;
}

int CQWString::Replace(const wchar_t* lpszOld, const wchar_t* lpszNew)
{
    const std::wstring_view oldText = SafeView(lpszOld);
    const std::wstring_view newText = SafeView(lpszNew);
    if (oldText.empty() || oldText == newText) {
        return 0;
    }
    return ReplaceAll(oldText, newText);
}

int CQWString::DeleteSubString(const wchar_t* lpszSub)
{
    return Replace(lpszSub, nullptr);
}

// Tests

int CQWString::IsStartWith(const wchar_t* lpszSub) const
{
    return TestAffix(View(), Side::Start, lpszSub, std::equal_to<>());
}

int CQWString::IsStartWithNoCase(const wchar_t* lpszSub) const
{
    return TestAffix(View(), Side::Start, lpszSub, EqualFolded);
}

int CQWString::IsEndWith(const wchar_t* lpszSub) const
{
    return TestAffix(View(), Side::End, lpszSub, std::equal_to<>());
}

int CQWString::IsEndWithNoCase(const wchar_t* lpszSub) const
{
    return TestAffix(View(), Side::End, lpszSub, EqualFolded);
}

// Numbers

void CQWString::ToString(int n)
{
    wchar_t buffer[kNumberSize];
    SetData(FormatNumber(n, 10, buffer));
}

void CQWString::ToString(unsigned int n)
{
    wchar_t buffer[kNumberSize];
    SetData(FormatNumber(n, 10, buffer));
}

void CQWString::ToStringEx(unsigned int n)
{
    wchar_t buffer[kNumberSize];
    SetData(FormatNumber(n, 16, buffer));
}

int CQWString::AppendNum(int n)
{
    wchar_t buffer[kNumberSize];
    return AppendData(FormatNumber(n, 10, buffer));
}

// Both are asserted, so a string without a buffer fails twice.
bool CQWString::AssertNumber() const
{
    const bool bHasBuffer = OrvoAssert(m_pData != nullptr, "m_pData != NULL", kSource);
    return OrvoAssert(m_nDataLen > 0, "m_nDataLen > 0", kSource) && bHasBuffer;
}

int CQWString::ToINT() const
{
    return AssertNumber() ? TrailingNumber(View(), 10) : -1;
}

int CQWString::ToINT(short nBase) const
{
    if (!AssertNumber() || nBase < 2) {
        return -1;
    }
    quint32 nValue = 0;
    for (const wchar_t c : View()) {
        nValue =
            nValue * static_cast<quint32>(nBase) + static_cast<quint32>(std::max(DigitValue(c), 0));
    }
    return static_cast<int>(nValue);
}

int CQWString::ToHEX() const
{
    return AssertNumber() ? TrailingNumber(View(), 16) : -1;
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
