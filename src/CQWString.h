#pragma once

#include "OrvoExport.h"

#include <QString>

class CQSString;
struct WideStore;

/// Counted, zero-terminated text of 32-bit `wchar_t` units, one code point a unit: the form in
/// which visible text, names and paths travel.
///
/// Unlike CQSString it keeps a capacity beside its length. The first buffer is exact; later ones
/// are made for twice the requested length up to 512 units and for 512 units more than
/// requested above that, so appending a unit at a time costs the square of the length beyond 512
/// units. Only Destroy(), AllocBuffer() and PrepareBufferToWrite(0) release the buffer: Empty()
/// keeps it. Copies never share.
///
/// Text that is set ends at its first zero unit, also when it is counted; only appended units,
/// copies of another CQWString and CQWString(const QString&) keep zero units inside.
///
/// Arguments may lie in the string's own buffer; the operation behaves as if they had been
/// copied first. Null data is tolerated and ignored where nothing else is said. "Unchanged" means
/// the buffer and its capacity too.
///
/// Nothing throws. When memory cannot be had, an operation that makes a new buffer leaves a string
/// without one and returns 0; setters that decode, trims and replacements whose first step fails
/// leave the string unchanged, and case mapping needs no memory.
///
/// `s == L"text"` compares addresses, because either side turns into a pointer; write
/// `s.Compare(L"text") == 0`.
///
/// A plain value: one object must not be used from two threads at once.
class ORVO_EXPORT CQWString
{
public:
    /// Selects what ToNum() parses.
    enum enNumType : int {
        enHexNum = 0, ///< Hexadecimal digits.
        enDecNum = 1, ///< Decimal digits.
    };

    /// An empty string without a buffer.
    CQWString();
    /// An empty string with room for \a nLen units, unlike CQSString(int). A negative \a nLen
    /// counts as 0.
    CQWString(int nLen);
    /// A copy with a buffer of exactly its length; without one for an empty \a other.
    CQWString(const CQWString& other);
    /// Looks exactly like the copy: takes over the buffer of \a other, which is left without one,
    /// only where it is exact, and copies otherwise. There is no move assignment: assigning an
    /// empty string keeps the target's buffer, see operator=().
    CQWString(CQWString&& other) noexcept;
    /// The text of \a str in 32-bit units. The length is the count of UTF-16 units in \a str,
    /// also where surrogate pairs made fewer wide units; the surplus units are zero.
    CQWString(const QString& str);
    /// The UTF-8 text of \a other, up to its first zero byte, in correct 32-bit units, unlike the
    /// assignment. A byte-order mark at the start is left out; a text of nothing else gives the
    /// assignment's result. Each byte that belongs to no well-formed sequence becomes U+FFFD.
    CQWString(const CQSString& other);
    virtual ~CQWString();

    // Storage

    /// Frees any buffer and makes a zeroed one for \a nLen units; the length is then 0. With 0
    /// units there is no buffer afterwards, unlike with CQSString. A negative \a nLen changes
    /// nothing.
    void AllocBuffer(int nLen);
    /// Makes room for \a nLen units and keeps the contents. 0 units release the buffer.
    /// \return  1 when a new buffer was made, else 0. A negative \a nLen asserts "nLen >= 0"; 0.
    int PrepareBufferToWrite(int nLen);
    /// Sets the length after units were written through the buffer, and ends the text there.
    /// Nothing without a buffer or for a negative \a nLen. Above the capacity it asserts
    /// "nLen >= 0&& m_nMAXLen >= nLen" and writes nothing.
    void SetStrEnding(int nLen);
    /// Frees the buffer.
    void Destroy();
    /// Length 0; the used units become zero, the buffer and its capacity stay.
    void Empty();
    /// Length of the wide C string \a lpszStr; 0 for null.
    static int SafeStrlen(const wchar_t* lpszStr);
    /// Sets \a dest to the \a nCopyLen units from \a nCopyIndex on, or to those of them that lie
    /// in this string. With a count below 1, or nothing there, \a dest is left untouched.
    void AllocCopy(CQWString& dest, int nCopyLen, int nCopyIndex) const;

    // Setting. 1: the string was set. 0: nothing was done and the string is unchanged.

    /// Copies \a nLen units, but the text ends at the first zero unit among them. 0 for null and
    /// for a length below 1.
    int SetData(const wchar_t* pData, int nLen);
    /// The same: \a pData is read as \a nLen wide units, not bytes, at any alignment.
    int SetData(unsigned char* pData, int nLen);
    /// Copies a wide C string. 0 for null and for an empty text, which leaves the old contents.
    int SetData(const wchar_t* lpszStr);
    /// Copies \a str up to its first zero. 0 for an empty text and for one with characters above
    /// U+FFFF.
    int SetData(QString& str);
    /// Copies \a other; an empty one empties this string and keeps its buffer.
    CQWString& operator=(const CQWString& other);
    /// Decodes UTF-8 into the packed layout of CStrConvertor::Utf82Unicode(): every wide unit
    /// carries two characters, the first in its low 16 bits. Clients rely on it; for correct
    /// 32-bit text use CQWString(const CQSString&). An empty \a other leaves the string
    /// unchanged.
    CQWString& operator=(const CQSString& other);

    // Setting from encoded bytes. All byte text is UTF-8, whatever the setter's name says.

    /// Decodes \a nLen bytes into the packed layout of operator=(const CQSString&).
    /// \return  1, also when nothing could be decoded and the string is unchanged; 0 without
    ///          memory.
    int SeASCIIData(const unsigned char* pData, int nLen);
    /// The same; 0 for null.
    int SetGBKByteData(const unsigned char* pData, int nLen);
    /// Decodes \a nLen bytes of UTF-8 into correct 32-bit text. 0, with nothing changed, for
    /// null, for a length of 0 or below, for an empty text and for one with characters above
    /// U+FFFF.
    int SetUTF8Data(const unsigned char* pData, int nLen);
    /// The same from \a nLen 16-bit units (not bytes) of UTF-16, at any alignment, in host order
    /// unless a byte-order mark says otherwise. The mark is left out, here and in SetUTF8Data().
    int SetUTF16Data(const unsigned char* pData, int nLen);
    /// As SetUTF8Data(), but 1 also when the text was refused; 0 only for null and a length below
    /// 1.
    int SetByteData(const unsigned char* pData, int nLen);
    /// The text as zero-terminated UTF-16 in host order, never null for an empty one. Surrogate
    /// values are kept, units above U+10FFFF become U+FFFD. The string owns the result, which is
    /// valid until the string is next changed, destroyed, or asked again. Null without memory.
    const unsigned short* WCharToUtf16() const;

    // Appending. 1: appended. 0: nothing was appended.

    /// Appends a wide C string; 0 for null or an empty text.
    int AppendData(const wchar_t* lpszStr);
    /// Appends \a nLen wide units (not bytes) read from \a pData, at any alignment; 0 for null or
    /// a length below 1.
    int AppendData(unsigned char* pData, int nLen);
    /// Appends one unit; 0 only without memory.
    int AppendChar(wchar_t c);
    /// Appends the decimal text of \a n.
    int AppendNum(int n);

    // Access

    /// Number of units, without the terminator.
    int GetLength() const;
    /// Whether the length is 0.
    bool IsEmpty() const;
    /// The units, zero-terminated; null when there is no buffer. Valid until the next change.
    /// @{
    const wchar_t* GetDataPtr() const;
    operator const wchar_t*() const;
    /// @}
    /// The unit at \a nIndex. Asserts "nIndex >= 0" and "nIndex < m_nDataLen"; outside, 0.
    /// @{
    wchar_t GetAt(int nIndex) const;
    wchar_t operator[](int nIndex) const;
    /// @}
    /// Stores \a c at \a nIndex, with the assertions of GetAt(); outside, nothing is stored.
    void SetAt(int nIndex, wchar_t c);

    // Comparing

    /// Compares as wide C strings. Against null: 1 with a buffer, 0 without one. Without a buffer
    /// against a text: -1.
    int Compare(const wchar_t* lpszStr) const;
    /// True when Compare() gives 0. Two strings without buffers are equal, unlike with CQSString;
    /// one emptied by Empty() does not equal one that never had a buffer.
    bool operator==(const CQWString& other) const;
    /// The negation of operator==().
    bool operator!=(const CQWString& other) const;
    /// 0 when equal but for the case of ASCII letters, else -1: there is no order. -1 when either
    /// side is null.
    int CompareNoCase(const wchar_t* lpszStr) const;

    // Searching. The result is an index into the whole string, or -1. A negative start counts as
    // 0, but for FindBefore(). Case counts, and all is done on 32-bit units.

    /// First \a c at or after \a nStart, or in the whole string.
    /// @{
    int Find(wchar_t c, int nStart) const;
    int Find(wchar_t c) const;
    /// @}
    /// First occurrence of \a lpszSub; an empty one is found at the start, unless that is at or
    /// behind the end. Null asserts "lpszSub != NULL"; -1.
    /// @{
    int Find(const wchar_t* lpszSub, int nStart) const;
    int Find(const wchar_t* lpszSub) const;
    /// @}
    /// Last \a c at or before \a nStart. -1 when \a nStart is outside the string.
    int FindBefore(wchar_t c, int nStart) const;
    /// Last \a c in the whole string.
    int FindofLast(wchar_t c) const;

    // Substrings

    /// Sets \a out to the \a nCount units from \a nFirst on, clipped to the string; negatives
    /// count as 0. An empty result leaves \a out as it was. A start beyond the length asserts
    /// "nFirst + nCount <= m_nDataLen".
    void GetSubString(CQWString& out, int nFirst, int nCount) const;
    /// Sets \a out to the text between the first \a lpszStart at or after \a nStart and the next
    /// \a lpszEnd behind it. Nothing between them leaves \a out as it was.
    /// \param bKeepStart, bKeepEnd  take the delimiter into \a out too.
    /// \return  index at which the extracted text begins, or -1: a delimiter is missing or null,
    ///          nothing follows the first one, or \a nStart is not at least two units before the
    ///          end. An empty string asserts "m_pData != NULL && m_nDataLen > 0".
    /// @{
    int GetSubString(CQWString& out, const wchar_t* lpszStart, const wchar_t* lpszEnd, int nStart,
                     bool bKeepStart, bool bKeepEnd) const;
    int GetSubString(CQWString& out, wchar_t cStart, wchar_t cEnd, int nStart, bool bKeepStart,
                     bool bKeepEnd) const;
    /// @}

    // Changing the text

    /// Removes line feeds, carriage returns, spaces and tabs at both ends. A text of blanks only
    /// is emptied; the buffer always stays.
    void TrimRightAndLeft();
    /// Maps the case by the full Unicode rules. The length stays: a longer result is cut to it. A
    /// surrogate pair in two units becomes its character in one, and zero units fill up the end.
    /// Units that are no code point stay. An empty string asserts
    /// "m_pData != NULL && m_nDataLen > 0".
    /// @{
    void MakeUpper();
    void MakeLower();
    /// @}
    /// Replaces every occurrence of \a lpszOld, left to right without overlap, minding the case;
    /// null \a lpszNew deletes them. The buffer grows by its rule and never shrinks.
    /// \return  number of replacements; 0 when nothing was done, also for null \a lpszOld.
    int Replace(const wchar_t* lpszOld, const wchar_t* lpszNew);
    /// Removes every occurrence of \a lpszSub; returns their number, 0 for null or an empty text.
    int DeleteSubString(const wchar_t* lpszSub);

    // Tests: 1 or 0. Null asserts "lpszSub != NULL"; 0.

    /// Minding the case.
    /// @{
    int IsStartWith(const wchar_t* lpszSub) const;
    int IsEndWith(const wchar_t* lpszSub) const;
    /// @}
    /// By Unicode case folding; unlike the byte string's, these do ignore case.
    /// @{
    int IsStartWithNoCase(const wchar_t* lpszSub) const;
    int IsEndWithNoCase(const wchar_t* lpszSub) const;
    /// @}

    // Numbers. The parsing operations assert "m_pData != NULL" and "m_nDataLen > 0"; -1 for an
    // empty string.

    /// Sets the decimal text of \a n.
    /// @{
    void ToString(int n);
    void ToString(unsigned int n);
    /// @}
    /// Sets \a n in upper-case hexadecimal, without prefix or padding.
    void ToStringEx(unsigned int n);
    /// Value of the decimal digits at the end of the text, modulo 2^32; negated when the first
    /// unit is '-', whatever lies between.
    int ToINT() const;
    /// Value of the whole text in base \a nBase, modulo 2^32: every unit takes a place, foreign
    /// ones count 0, digits are not checked against the base, and there is no sign. -1 for a base
    /// below 2.
    int ToINT(short nBase) const;
    /// Value of the hexadecimal digits at the end of the text, modulo 2^32; negated when the first
    /// unit is '-'. Unlike the byte string's, it stops at the first foreign unit.
    int ToHEX() const;
    /// ToHEX() for CQWString::enHexNum, ToINT() for CQWString::enDecNum, else -1.
    int ToNum(enNumType eType) const;
    /// The last decimal digits of the UTF-8 bytes of \a s, read as one decimal number modulo
    /// 2^32. 0 for an empty text or without memory.
    static int EncryptStrToInt(CQWString& s);

private:
    friend struct WideStore;

    wchar_t* m_pData; // m_nMAXLen + 1 units from array new, or null
    int m_nDataLen;
    int m_nMAXLen;
    mutable unsigned short* m_pUtf16; // last result of WCharToUtf16()
};
