#include "CQWString.h"

#include "CQSString.h"
#include "OrvoAssert.h"
#include "TextUnits.h"

#include <QVector>

#include <algorithm>
#include <charconv>
#include <climits>
#include <functional>
#include <string>

namespace
{

constexpr char Source[] = "src/CQWString";
constexpr wchar_t Blanks[] = L"\n\r \t";

// Room for any 32-bit number in a base from 10 up, with sign and terminator.
constexpr int NumberSize = 12;

// Stands for a unit that is no code point while the platform maps the case.
constexpr char16_t Opaque = 0xFFFF;

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
        if (unit == Opaque || !IsCodePoint(unit)) {
            opaque += c;
            result += QChar(Opaque);
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
    if (!OrvoAssert(lpszSub != nullptr, "lpszSub != NULL", Source)) {
        return 0;
    }
    const std::wstring_view sub(lpszSub);
    if (sub.size() > text.size()) {
        return 0;
    }
    const std::size_t nAt = side == Side::Start ? 0 : text.size() - sub.size();
    return equal(text.substr(nAt, sub.size()), sub) ? 1 : 0;
}

// Formats n as a terminated text and returns it.
template <class Number>
const wchar_t* FormatNumber(Number n, int nBase, wchar_t (&buffer)[NumberSize])
{
    char digits[NumberSize];
    const char* pEnd = std::to_chars(digits, digits + NumberSize - 1, n, nBase).ptr;
    const auto toWide = [](char c) { return static_cast<wchar_t>(c >= 'a' ? c - 'a' + 'A' : c); };
    *std::transform(static_cast<const char*>(digits), pEnd, buffer, toWide) = L'\0';
    return buffer;
}

} // namespace

// Substrings between delimiters

bool CQWString::AssertText() const
{
    return OrvoAssert(m_pData != nullptr && m_nDataLen > 0, "m_pData != NULL && m_nDataLen > 0",
                      Source);
}

int CQWString::GetSubString(CQWString& out, const wchar_t* lpszStart, const wchar_t* lpszEnd,
                            int nStart, bool bKeepStart, bool bKeepEnd) const
{
    if (!AssertText() || lpszStart == nullptr || lpszEnd == nullptr) {
        return -1;
    }
    return CopyBetween(*this, out, lpszStart, lpszEnd, nStart, bKeepStart, bKeepEnd);
}

int CQWString::GetSubString(CQWString& out, wchar_t cStart, wchar_t cEnd, int nStart,
                            bool bKeepStart, bool bKeepEnd) const
{
    if (!AssertText()) {
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
    Store(m_pData + nStartPos, nEndPos - nStartPos + 1);
}

// Writes at most the length back, and zero units where the mapped text is shorter.
void CQWString::StoreMapped(const QString& mapped, std::wstring_view opaque)
{
    const auto codePoints = mapped.toUcs4();
    const int nCount = std::min(static_cast<int>(codePoints.size()), m_nDataLen);
    auto kept = opaque.begin();
    for (int i = 0; i < nCount; ++i) {
        m_pData[i] = codePoints[i] == Opaque ? *kept++ : static_cast<wchar_t>(codePoints[i]);
    }
    std::fill(m_pData + nCount, m_pData + m_nDataLen, L'\0');
}

void CQWString::MakeUpper()
{
    if (AssertText()) {
        std::wstring opaque;
        StoreMapped(ToPlatform(View(*this), opaque).toUpper(), opaque);
    }
}

void CQWString::MakeLower()
{
    if (AssertText()) {
        std::wstring opaque;
        StoreMapped(ToPlatform(View(*this), opaque).toLower(), opaque);
    }
}

// Builds the result apart from the buffer: the arguments may lie in it, and a failure leaves the
// string as it was.
int CQWString::ReplaceAll(std::wstring_view oldText, std::wstring_view newText)
{
    const std::wstring_view text = View(*this);
    const int nCount = CountOccurrences(text, oldText);
    if (nCount == 0 || newText.size() > INT_MAX) {
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
    const wchar_t* pDstEnd = PutReplaced(built.get(), text, oldText, newText);
    OrvoAssert(pDstEnd - built.get() == nNewLen, "m_nDataLen == nDstStart", Source);
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
    return TestAffix(View(*this), Side::Start, lpszSub, std::equal_to<>());
}

int CQWString::IsStartWithNoCase(const wchar_t* lpszSub) const
{
    return TestAffix(View(*this), Side::Start, lpszSub, EqualFolded);
}

int CQWString::IsEndWith(const wchar_t* lpszSub) const
{
    return TestAffix(View(*this), Side::End, lpszSub, std::equal_to<>());
}

int CQWString::IsEndWithNoCase(const wchar_t* lpszSub) const
{
    return TestAffix(View(*this), Side::End, lpszSub, EqualFolded);
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

// Both are asserted, so a string without a buffer fails twice.
bool CQWString::AssertNumber() const
{
    const bool bHasBuffer = OrvoAssert(m_pData != nullptr, "m_pData != NULL", Source);
    return OrvoAssert(m_nDataLen > 0, "m_nDataLen > 0", Source) && bHasBuffer;
}

int CQWString::ToINT() const
{
    return AssertNumber() ? SignedTrailingNumber(View(*this), 10) : -1;
}

int CQWString::ToINT(short nBase) const
{
    if (!AssertNumber() || nBase < 2) {
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
    return AssertNumber() ? SignedTrailingNumber(View(*this), 16) : -1;
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
