#pragma once

#include "OrvoExport.h"

class CQWString;

/// Counted byte string: ASCII, UTF-8 or arbitrary bytes, zero bytes included.
///
/// The string owns a buffer of exactly its length + 1 bytes, the last one zero. There is no
/// spare capacity and no sharing: every change of length makes a fresh buffer, and clients
/// tell one content from another by the address of the buffer. Do not add a reserve. All this
/// holds but for FilterInvisibleChar(), which shortens the text within its buffer.
///
/// Arguments may lie in the string's own buffer; the operation behaves as if they had been
/// copied first. Null data is tolerated and ignored where nothing else is said.
///
/// When memory cannot be had, or a length would reach 2^31 - 1, an operation that makes a new
/// buffer leaves an empty string and returns 0; the conversions from CQWString, the trims,
/// Replace() and ToHexString() leave the string unchanged. Nothing here throws.
///
/// A plain value: one object must not be used from two threads at once.
class ORVO_EXPORT CQSString
{
public:
    /// An empty string without a buffer.
    CQSString();
    /// A string of \a nLen zero bytes: length \a nLen, not an empty string with room for them.
    /// A negative \a nLen counts as 0.
    CQSString(int nLen);
    /// A copy with a buffer of its own.
    CQSString(const CQSString& other);
    /// What the copy would be, in the buffer of \a other, which is left empty. There is no move
    /// assignment: assigning an empty string keeps the target's contents, see operator=().
    CQSString(CQSString&& other) noexcept;
    /// The UTF-8 form of \a other, up to its first zero unit. Characters beyond U+FFFF are kept,
    /// unlike in the assignment, and a pair of surrogate units is one of them; other surrogates
    /// and units beyond U+10FFFF become '?'. Where nothing stands before the first zero unit,
    /// the result is that of the assignment.
    CQSString(const CQWString& other);
    virtual ~CQSString();

    // Storage

    /// Makes this a string of \a nLen zero bytes in a fresh buffer. With 0 nothing happens: the
    /// old contents stay, and operator=() and the setters rely on it. A negative \a nLen
    /// asserts "nLen >= 0" and changes nothing. Without memory the string is left empty.
    void AllocBuffer(int nLen);
    /// Sets \a dest to the \a nCopyLen bytes from \a nCopyIndex on, or to those of them that lie
    /// in this string. With a count below 1, or nothing there, \a dest is left untouched.
    void AllocCopy(CQSString& dest, int nCopyLen, int nCopyIndex) const;
    /// Frees the buffer; length 0.
    void Empty();
    /// Length of the C string \a lpszStr, at most 2^31 - 1; 0 for null.
    static int SafeStrlen(const char* lpszStr);

    // Setting. 1: the string was set. 0: nothing was done and the string is unchanged (without
    // memory see above).

    /// Copies \a nLen bytes from \a pData. 0 for null and for a length below 1.
    int SetData(unsigned char* pData, int nLen);
    /// Copies a C string. 0 for null and for an empty text, which leaves the old contents.
    int SetData(const char* lpszStr);
    /// Sets the UTF-8 form of \a pStr, without characters beyond U+FFFF. 0 for null or without
    /// memory, and then the string is unchanged; 1 also when nothing was there to convert, which
    /// leaves the old contents.
    int SetData(const CQWString* pStr);
    /// Copies \a other. Assigning an empty string leaves the old contents: callers rely on it,
    /// and use Empty() to clear.
    CQSString& operator=(const CQSString& other);
    /// Sets the UTF-8 form of \a other, without characters beyond U+FFFF. A text that gives no
    /// bytes leaves the old contents, and so does want of memory.
    CQSString& operator=(const CQWString& other);

    // Appending. 1: appended. 0: nothing was appended (without memory see above).

    /// Appends one byte, also a zero byte. Always 1 where there is memory.
    int AppendChar(char c);
    /// Appends a C string; 0 for null or an empty text.
    /// @{
    int AppendData(char* lpszStr);
    int AppendData(const char* lpszStr);
    /// @}
    /// Appends \a nLen bytes; 0 for null or a length below 1.
    int AppendData(unsigned char* pData, int nLen);

    // Access

    /// Number of bytes, without the terminator.
    int GetLength() const;
    /// Whether the length is 0.
    bool IsEmpty() const;
    /// The bytes, zero-terminated but for FilterInvisibleChar(); null when there is no buffer.
    /// Valid until the next change.
    /// @{
    const char* GetDataPtr() const;
    operator const char*() const;
    /// @}
    /// The byte at \a nIndex. Asserts "nIndex >= 0" and "nIndex < m_nLen"; outside, 0.
    /// @{
    char GetAt(int nIndex) const;
    char operator[](int nIndex) const;
    /// @}
    /// Stores \a c at \a nIndex, with the assertions of GetAt(); outside, nothing is stored.
    void SetAt(int nIndex, char c);

    // Comparing

    /// Compares as C strings: what stands behind a zero byte does not count. Negative, 0 or
    /// positive; -1 when either side is null.
    int Compare(const char* lpszStr) const;
    /// True when Compare() gives 0. So two strings without buffers are not equal; callers rely
    /// on an unset string equalling nothing.
    ///
    /// Only strings are compared so: `s == "text"` compares addresses, since a string is also a
    /// pointer to its bytes. Write `s.Compare("text") == 0`.
    /// @{
    bool operator==(const CQSString& other) const;
    bool operator!=(const CQSString& other) const { return !(*this == other); }
    /// @}
    /// 0 when equal but for the case of ASCII letters, else -1: there is no order. -1 when this
    /// string has no buffer or the C string is null.
    /// @{
    int CompareNoCase(CQSString& other) const;
    int CompareNoCase(char* lpszStr) const;
    int CompareNoCase(const char* lpszStr) const;
    /// @}

    // Searching. The result is an index into the whole string, or -1.

    /// First \a c at or after \a nStart, or in the whole string. -1 when \a nStart is outside it.
    /// @{
    int Find(char c, int nStart) const;
    int Find(char c) const;
    /// @}
    /// First \a c in [nStart, nEnd), the end clipped to the length.
    int Find(char c, int nStart, int nEnd) const;
    /// First occurrence of the C string \a lpszSub at or after \a nStart; an empty one is found
    /// at \a nStart. A negative start counts as 0. Null asserts "lpszSub != NULL"; -1.
    /// @{
    int Find(const char* lpszSub, int nStart) const;
    int Find(const char* lpszSub) const;
    /// @}
    /// Last \a c at or before \a nStart. -1 when \a nStart is outside the string.
    int FindBefore(char c, int nStart) const;
    /// First byte at or after \a nStart that is no blank (see TrimLeft()). -1 when \a nStart is
    /// outside the string.
    int FindFirstValidChar(int nStart) const;

    // Substrings

    /// Sets \a out to the \a nCount bytes from \a nFirst on, clipped to the string; negatives
    /// count as 0. An empty result leaves \a out as it was. A start beyond the length asserts
    /// "nFirst + nCount <= m_nLen".
    void GetSubString(CQSString& out, int nFirst, int nCount) const;
    /// Sets \a out to the text between the first \a lpszStart at or after \a nStart and the next
    /// \a lpszEnd behind it. Nothing between them leaves \a out as it was.
    /// \param bKeepStart, bKeepEnd  take the delimiter into \a out too.
    /// \return  index at which the extracted text begins, or -1: a delimiter is missing or null,
    ///          nothing follows the first one, or \a nStart is not at least two bytes before the
    ///          end. An empty string asserts "m_pData != NULL && m_nLen > 0".
    /// @{
    int GetSubString(CQSString& out, const char* lpszStart, const char* lpszEnd, int nStart,
                     bool bKeepStart, bool bKeepEnd) const;
    int GetSubString(CQSString& out, char cStart, char cEnd, int nStart, bool bKeepStart,
                     bool bKeepEnd) const;
    /// @}

    // Trimming. Blanks are line feed, carriage return, space and tab, and nothing else.

    /// Removes blanks at the start, the end or both. A string of blanks loses its buffer; any
    /// other gets a fresh one, even when nothing was removed.
    /// @{
    void TrimLeft();
    void TrimRight();
    void TrimRightAndLeft();
    /// @}
    /// Sets \a out to this string without its first (last) \a n bytes; negative counts as 0.
    /// Nothing happens when no byte would be left.
    /// @{
    void TrimLeft(int n, CQSString& out) const;
    void TrimRight(int n, CQSString& out) const;
    /// @}
    /// Both at once; here \a out is emptied when no byte would be left. An empty string does
    /// nothing.
    void TrimRightAndLeft(int nLeft, int nRight, CQSString& out) const;

    // Changing the text

    /// Maps Latin-1 letters to upper case in place; 0xB5, 0xDF and 0xFF stay. An empty string
    /// asserts "m_pData != NULL && m_nLen > 0".
    void MakeUpper();
    /// Maps Latin-1 letters to lower case in place. Unlike MakeUpper(), nothing is asserted for
    /// an empty string.
    void MakeLower();
    /// Lower-cases \a nLen bytes in place, Latin-1. Null or a length below 1 asserts
    /// "lpszStart != NULL && nLen > 0" and does nothing.
    static void MakeLower(const char* lpszStart, int nLen);
    /// Replaces every occurrence of \a lpszOld, left to right without overlap; null \a lpszNew
    /// deletes them. When nothing is left the buffer is freed.
    /// \return  number of replacements; -1 for null \a lpszOld; 0 when nothing was done: an empty
    ///          string (also with null), an empty \a lpszOld, equal texts, no occurrence.
    int Replace(const char* lpszOld, const char* lpszNew);
    /// Removes bytes outside 0x20 to 0x7E in place, without a new buffer. The byte that moves into
    /// the place of a removed one is not looked at, so of a run every second one stays. The byte
    /// at the new length is not reset to zero: the removed places hold the old last byte, and the
    /// terminator stays at the old length. Callers rely on both.
    void FilterInvisibleChar();

    // Tests: 1 or 0. Null asserts "lpszSub != NULL"; 0. An empty text gives 1.

    /// All four mind the case, also the two named NoCase: callers that want a case-blind test
    /// lower-case both texts first.
    /// @{
    int IsStartWith(const char* lpszSub) const;
    int IsStartWithNoCase(const char* lpszSub) const;
    int IsEndWith(const char* lpszSub) const;
    int IsEndWithNoCase(const char* lpszSub) const;
    /// @}

    // Numbers

    /// Sets the decimal text of \a n.
    /// @{
    void ToString(int n);
    void ToString(unsigned int n);
    void UToString(unsigned int n);
    /// @}
    /// Value of the decimal digits at the end of the string, modulo 2^32; negated when the first
    /// byte is '-', whatever lies between. An empty string asserts "m_pData != NULL" and
    /// "m_nLen > 0"; -1.
    int ToINT() const;
    /// The same without a sign: a '-' is not looked at. The same assertions; 0.
    unsigned int ToUINT() const;
    /// Value of all hexadecimal digits in the string, modulo 2^32; other bytes are skipped, so a
    /// prefix and separators do not matter. Asserts as ToINT(); -1.
    int ToHEX() const;
    /// Converts in place to the hexadecimal text of the number, as big-endian 16-bit units.
    ///
    /// Only the first byte is validated: 1 to 9, a to f, or A to F; else 0 and nothing changes.
    /// A first letter takes the whole string as hexadecimal text already and upper-cases its a to
    /// f. A first digit parses it, up to its first zero byte, as a decimal number; 0 is taken when
    /// any other byte than a digit is among them, blanks too, or the number is beyond 64 bits.
    /// \return  1 when converted; 0 when refused, empty, or without memory.
    int ToHexString();
    /// 32-bit FNV-1a over the bytes of \a s with a final mix; the same on every platform.
    static unsigned int GetHashCode(CQSString& s);
    /// Sets \a out to the hash of this string as signed decimal text.
    void ToHashString(CQSString& out) const;

private:
    friend struct CQSStringBuffer;

    char* m_pData; // m_nLen + 1 bytes from array new, or null
    int m_nLen;
};
