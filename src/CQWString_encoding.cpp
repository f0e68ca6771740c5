#include "CQWString.h"

#include "CQSStringBuffer.h"
#include "CStrConvertor.h"
#include "TextUnits.h"
#include "Utf16Unit.h"
#include "Utf8Text.h"
#include "WideStore.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>

namespace
{

bool HasPairs(QStringView text)
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

// Sets the length to the count of UTF-16 units; what surrogate pairs leave over is zero.
int Load(CQWString& s, QStringView text)
{
    WideStore::Units replaced;
    const auto nLen = static_cast<int>(text.size());
    if (nLen == 0 || !WideStore::MakeRoom(s, nLen, 0, nLen, replaced)) {
        return 0;
    }
    wchar_t* const pData = WideStore::Data(s);
    std::fill(pData + text.toWCharArray(pData), pData + nLen, L'\0');
    WideStore::End(s, nLen);
    return 1;
}

// The count of 16-bit units is taken as one of wide units; the zeros behind the packed units
// then end the text. The decoder goes by the terminator, which in a filtered byte string stands
// far behind the length: the count can then exceed the wide units that there are.
int StorePacked(CQWString& s, const char* lpszUtf8, int nLen)
{
    const int nRoom = nLen + 1;
    const WideStore::Units scratch = WideStore::New(qint64{nLen} + 1, 0);
    if (scratch == nullptr) {
        return 0;
    }
    const int nUnits =
        CStrConvertor::Utf82Unicode(scratch.get(), nRoom, const_cast<char*>(lpszUtf8), nLen);
    return nUnits < 1 ? 1 : WideStore::SetCut(s, scratch.get(), std::min(nUnits, nRoom));
}

// Text that a setter has decoded to 32-bit units: refused with characters above U+FFFF, and cut at
// the first zero.
int StoreDecoded(CQWString& s, const wchar_t* pUnits, std::ptrdiff_t nLen, bool bBeyondBmp)
{
    const wchar_t* const pEnd = std::find(pUnits, pUnits + nLen, L'\0');
    return bBeyondBmp || pEnd == pUnits ? 0 : WideStore::Set(s, pUnits, pEnd - pUnits);
}

char16_t ReadUtf16(const unsigned char* p, bool bSwapped)
{
    char16_t unit = 0;
    std::memcpy(&unit, p, sizeof unit);
    return bSwapped ? static_cast<char16_t>(unit << 8 | unit >> 8) : unit;
}

} // namespace

// Platform strings

CQWString::CQWString(const QString& str) : CQWString()
{
    Load(*this, str);
}

int CQWString::SetData(QString& str)
{
    if (HasPairs(str)) {
        return 0;
    }
    const auto nZero = str.indexOf(QChar(0));
    const QStringView text(str);
    return Load(*this, nZero < 0 ? text : text.left(nZero));
}

// UTF-8 in the packed layout

CQWString& CQWString::operator=(const CQSString& other)
{
    if (!other.IsEmpty()) {
        StorePacked(*this, other.GetDataPtr(), other.GetLength());
    }
    return *this;
}

int CQWString::SeASCIIData(const unsigned char* pData, int nLen)
{
    if (pData == nullptr || nLen < 1) {
        return 1;
    }
    const auto text = Terminated(pData, nLen);
    return text == nullptr ? 0 : StorePacked(*this, text.get(), nLen);
}

int CQWString::SetGBKByteData(const unsigned char* pData, int nLen)
{
    return pData == nullptr ? 0 : SeASCIIData(pData, nLen);
}

// UTF-8 and UTF-16 in 32-bit units

namespace
{

// Counts of a text if it is well-formed.
struct TextCount {
    qint64 nCharacters = 0;
    qint64 nBeyondBmp = 0;
};

TextCount CountText(const unsigned char* p, const unsigned char* end)
{
    // In pieces whose counts fit a byte, so that the compiler counts sixteen bytes at once.
    constexpr std::ptrdiff_t Piece = 240;
    TextCount count;
    while (p != end) {
        const std::ptrdiff_t nSize = std::min(end - p, Piece);
        unsigned char nCharacters = 0;
        unsigned char nBeyondBmp = 0;
        for (std::ptrdiff_t i = 0; i < nSize; ++i) {
            nCharacters = static_cast<unsigned char>(nCharacters + ((p[i] & 0xC0) != 0x80 ? 1 : 0));
            nBeyondBmp = static_cast<unsigned char>(nBeyondBmp + (p[i] >= 0xF0 ? 1 : 0));
        }
        count.nCharacters += nCharacters;
        count.nBeyondBmp += nBeyondBmp;
        p += nSize;
    }
    return count;
}

// The text is stored twice by the rules, first packed and then as it is, with a count of UTF-16
// units. Only the capacity tells of the first time.
qint64 CapacityAfterBoth(qint64 nPacked, qint64 nUtf16)
{
    if (nPacked == 0 || nUtf16 <= nPacked) {
        return std::max(nPacked, nUtf16);
    }
    return nUtf16 <= 512 ? nUtf16 * 2 : nUtf16 + 512;
}

// The text of a byte string.
struct Utf8Source {
    const unsigned char* whole;
    const unsigned char* text; // behind a byte-order mark
    const unsigned char* end;
    qint64 nPackedRoom;

    qint64 Capacity(qint64 nPacked, qint64 nUtf16) const
    {
        return CapacityAfterBoth(std::min(nPacked, nPackedRoom), nUtf16);
    }

    // That of a well-formed text.
    qint64 Capacity(const TextCount& count) const
    {
        return Capacity(count.nCharacters - count.nBeyondBmp + (text == whole ? 0 : 1),
                        count.nCharacters + count.nBeyondBmp);
    }
};

// Decodes a well-formed text straight into its buffer. False for a malformed one.
bool LoadWellFormed(CQWString& s, const Utf8Source& source)
{
    const TextCount count = CountText(source.text, source.end);
    const qint64 nCapacity = source.Capacity(count);
    WideStore::Units units = WideStore::New(nCapacity, count.nCharacters);
    if (units == nullptr) {
        return true;
    }
    if (!DecodeUtf8(units.get(), source.text, source.end, true).isWellFormed) {
        return false;
    }
    WideStore::Exchange(s, std::move(units), nCapacity, static_cast<int>(count.nCharacters));
    return true;
}

// Decodes any text by way of pScratch, which has room for a unit for each byte.
void LoadAside(CQWString& s, const Utf8Source& source, wchar_t* pScratch)
{
    const DecodedUtf8 decoded = DecodeUtf8(pScratch, source.text, source.end, false);
    const qint64 nLen = decoded.end - pScratch;
    const qint64 nCapacity =
        decoded.isWellFormed
            ? source.Capacity({nLen, decoded.beyondBmp})
            : source.Capacity(CountBmpUnits(source.whole, source.end), nLen + decoded.beyondBmp);
    WideStore::Units units = WideStore::New(nCapacity, nLen);
    if (units != nullptr) {
        std::copy_n(pScratch, nLen, units.get());
        WideStore::Exchange(s, std::move(units), nCapacity, static_cast<int>(nLen));
    }
}

} // namespace

CQWString::CQWString(const CQSString& other) : CQWString()
{
    const std::string_view bytes = View(other);
    if (bytes.data() == nullptr) {
        return;
    }
    const auto* const whole = reinterpret_cast<const unsigned char*>(bytes.data());
    const unsigned char* const end = whole + std::strlen(bytes.data());
    const unsigned char* const text = SkipByteOrderMark(whole, end);
    if (text == end) {
        *this = other;
        return;
    }
    const Utf8Source source{whole, text, end,
                            bytes.empty() ? 0 : static_cast<qint64>(bytes.size()) + 1};
    // A short text is decoded sooner than it is counted.
    constexpr std::ptrdiff_t ShortSize = 128;
    if (end - text <= ShortSize) {
        wchar_t scratch[ShortSize];
        LoadAside(*this, source, scratch);
    } else if (!LoadWellFormed(*this, source)) {
        const WideStore::Units scratch = WideStore::New(end - text, end - text);
        if (scratch != nullptr) {
            LoadAside(*this, source, scratch.get());
        }
    }
}

int CQWString::SetUTF8Data(const unsigned char* pData, int nLen)
{
    if (pData == nullptr || nLen < 1) {
        return 0;
    }
    const WideStore::Units scratch = WideStore::New(nLen, nLen);
    if (scratch == nullptr) {
        return 0;
    }
    const unsigned char* const end = pData + nLen;
    const DecodedUtf8 decoded =
        DecodeUtf8(scratch.get(), SkipByteOrderMark(pData, end), end, false);
    return StoreDecoded(*this, scratch.get(), decoded.end - scratch.get(), decoded.beyondBmp > 0);
}

// A byte-order mark at the start tells the order of the bytes and is no text; a surrogate without
// its other half becomes U+FFFD.
int CQWString::SetUTF16Data(const unsigned char* pData, int nLen)
{
    if (pData == nullptr || nLen < 1) {
        return 0;
    }
    const WideStore::Units scratch = WideStore::New(nLen, nLen);
    if (scratch == nullptr) {
        return 0;
    }
    const bool bSwapped = ReadUtf16(pData, true) == 0xFEFF;
    const bool bMarked = bSwapped || ReadUtf16(pData, false) == 0xFEFF;
    wchar_t* pOut = scratch.get();
    bool bHasPair = false;
    char16_t previous = 0;
    for (qint64 i = bMarked ? 1 : 0; i < nLen; ++i) {
        const char16_t unit = ReadUtf16(pData + 2 * i, bSwapped);
        bHasPair = bHasPair || (QChar::isHighSurrogate(previous) && QChar::isLowSurrogate(unit));
        *pOut++ = QChar::isSurrogate(unit) ? L'\uFFFD' : static_cast<wchar_t>(unit);
        previous = unit;
    }
    return StoreDecoded(*this, scratch.get(), pOut - scratch.get(), bHasPair);
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
    m_pUtf16 = new (std::nothrow) unsigned short[Utf16Size(text) + 1];
    if (m_pUtf16 != nullptr) {
        *PutUtf16(m_pUtf16, text) = 0;
    }
    return m_pUtf16;
}
