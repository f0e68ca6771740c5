#include "CQWString.h"

#include "CQSString.h"
#include "CStrConvertor.h"
#include "TextUnits.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <string>

namespace
{

constexpr quint32 FirstSupplementary = 0x10000;

bool NeedsPair(wchar_t c)
{
    const auto unit = static_cast<quint32>(c);
    return unit >= FirstSupplementary && unit <= QChar::LastValidCodePoint;
}

bool HasPairs(const QString& text)
{
    const auto isPair = [](QChar a, QChar b) { return a.isHighSurrogate() && b.isLowSurrogate(); };
    return std::adjacent_find(text.cbegin(), text.cend(), isPair) != text.cend();
}

// A terminated copy, so that a decoder that looks for the zero stays within counted bytes.
std::unique_ptr<char[]> Terminated(const unsigned char* pData, int nLen)
{
    const auto nSize = static_cast<std::size_t>(nLen);
    std::unique_ptr<char[]> copy(new (std::nothrow) char[nSize + 1]);
    if (copy != nullptr) {
        std::memcpy(copy.get(), pData, nSize);
        copy[nSize] = '\0';
    }
    return copy;
}

} // namespace

// Platform strings

// Sets the length to the count of UTF-16 units; what surrogate pairs leave over is zero.
int CQWString::Load(QStringView text)
{
    Units replaced;
    if (text.isEmpty() || !MakeRoom(text.size(), 0, replaced)) {
        return 0;
    }
    static_cast<void>(text.toWCharArray(m_pData));
    SetStrEnding(static_cast<int>(text.size()));
    return 1;
}

CQWString::CQWString(const QString& str) : CQWString()
{
    Load(str);
}

CQWString::CQWString(const CQSString& other) : CQWString()
{
    const QString text = QString::fromUtf8(other.GetDataPtr());
    if (text.isEmpty()) {
        *this = other;
    } else if (Load(text) != 0) {
        m_nDataLen = SafeStrlen(m_pData);
    }
}

int CQWString::SetData(QString& str)
{
    if (HasPairs(str)) {
        return 0;
    }
    const auto nZero = str.indexOf(QChar(0));
    const QStringView text(str);
    return Load(nZero < 0 ? text : text.left(nZero));
}

// UTF-8 in the packed layout

// The count of 16-bit units is taken as one of wide units; the zeros behind the packed units
// then end the text. The decoder goes by the terminator, which in a filtered byte string stands
// far behind the length: the count can then exceed the wide units that there are.
int CQWString::StorePacked(const char* lpszUtf8, int nLen)
{
    const Units scratch = NewUnits(qint64{nLen} + 1);
    if (scratch == nullptr) {
        return 0;
    }
    const int nRoom = nLen + 1;
    const int nUnits =
        CStrConvertor::Utf82Unicode(scratch.get(), nRoom, const_cast<char*>(lpszUtf8), nLen);
    return nUnits < 1 ? 1 : StoreCut(scratch.get(), std::min(nUnits, nRoom));
}

CQWString& CQWString::operator=(const CQSString& other)
{
    if (!other.IsEmpty()) {
        StorePacked(other.GetDataPtr(), other.GetLength());
    }
    return *this;
}

int CQWString::SeASCIIData(const unsigned char* pData, int nLen)
{
    if (pData == nullptr || nLen < 1) {
        return 1;
    }
    const auto text = Terminated(pData, nLen);
    return text == nullptr ? 0 : StorePacked(text.get(), nLen);
}

int CQWString::SetGBKByteData(const unsigned char* pData, int nLen)
{
    return pData == nullptr ? 0 : SeASCIIData(pData, nLen);
}

// UTF-8 and UTF-16 in 32-bit units

int CQWString::SetUTF8Data(const unsigned char* pData, int nLen)
{
    if (pData == nullptr || nLen < 1) {
        return 0;
    }
    QString text = QString::fromUtf8(reinterpret_cast<const char*>(pData), nLen);
    return SetData(text);
}

int CQWString::SetUTF16Data(const unsigned char* pData, int nLen)
{
    if (pData == nullptr || nLen < 1) {
        return 0;
    }
    std::u16string units(static_cast<std::size_t>(nLen), u'\0');
    std::memcpy(units.data(), pData, units.size() * sizeof(char16_t));
    QString text = QString::fromUtf16(units.data(), nLen);
    return SetData(text);
}

int CQWString::SetByteData(const unsigned char* pData, int nLen)
{
    if (pData == nullptr || nLen < 1) {
        return 0;
    }
    SetUTF8Data(pData, nLen);
    return 1;
}

const unsigned short* CQWString::WCharToUtf16() const
{
    delete[] m_pUtf16;
    const std::wstring_view text = View(*this);
    const auto nPairs =
        static_cast<std::size_t>(std::count_if(text.begin(), text.end(), NeedsPair));
    m_pUtf16 = new (std::nothrow) unsigned short[text.size() + nPairs + 1];
    if (m_pUtf16 == nullptr) {
        return nullptr;
    }
    unsigned short* pOut = m_pUtf16;
    for (const wchar_t c : text) {
        const auto unit = static_cast<quint32>(c);
        if (unit < FirstSupplementary) {
            *pOut++ = static_cast<unsigned short>(unit);
        } else if (NeedsPair(c)) {
            *pOut++ = static_cast<unsigned short>(0xD7C0 + (unit >> 10));
            *pOut++ = static_cast<unsigned short>(0xDC00 | (unit & 0x3FF));
        } else {
            *pOut++ = QChar::ReplacementCharacter;
        }
    }
    *pOut = 0;
    return m_pUtf16;
}
