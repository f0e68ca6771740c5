#pragma once

#include "ByteOrder.h"
#include "OrvoExport.h"

#include <QByteArray>
#include <QString>

class CQSString;
class CQWString;

/// \file
/// Text, URL, number and memory utilities without state of their own.

/// Copies nLen / 2 16-bit units from \a pSrc to \a pDst with the bytes of each unit swapped. An
/// odd last byte is not copied. Despite the names no UTF-8 is involved: the two do the same, and
/// exist so that callers can name the direction. \a pDst may be \a pSrc. A null pointer or a
/// negative length asserts "false"; nothing is copied.
/// @{
ORVO_EXPORT void SetUTF8(unsigned char* pDst, const unsigned char* pSrc, int nLen);
ORVO_EXPORT void GetUTF8(unsigned char* pDst, const unsigned char* pSrc, int nLen);
/// @}

/// Swaps the bytes of (nLen + 1) / 2 16-bit units at \a p in place. For an odd \a nLen the last
/// unit takes in the byte just past it, so the buffer must hold one byte more; callers pass even
/// counts. Nothing for null or a length below 1.
ORVO_EXPORT void ChangeUnicodeEnd(char* p, int nLen);

/// Seconds since 1970-01-01 00:00:00 UTC as a 32-bit count: negative from January 2038 on. On a
/// 32-bit host it throws `std::bad_alloc` without memory.
ORVO_EXPORT int GetCurTime();

/// Returns at once. An empty entry point for code written for the older platform; it must not
/// block.
ORVO_EXPORT void QSleep(unsigned int ms);

/// Static utilities: formatting with the slash rule, URL and CGI text, hexadecimal numbers,
/// pseudo-random numbers, memory search, and the packing and encoding wrappers under the names
/// that clients know.
///
/// No member keeps state but Random(), which shares the C library's; all may be called on any
/// thread, each call on its own data.
/// Without memory a member that fills a string of this library leaves it empty. Only those that
/// give or change an object of Qt (UrlEncode(), UrlDecode(), DecodeCgi()) throw `std::bad_alloc`,
/// and then change nothing.
/// Arguments may lie in the string that receives the result.
class ORVO_EXPORT CBaseUtil
{
public:
    // Formatting. Every backslash of the result becomes a slash, whether the text is a path or
    // not: the main callers write paths in the older platform's form. An empty result empties
    // `out`; a null format counts as an empty one.

    /// Formats by the rules of QString::vasprintf(): C locale, %s reads UTF-8, %ls reads 16-bit
    /// units and not the wide text that the compiler's format check asks for. The text is stored
    /// as UTF-8; bytes that are none become U+FFFD, and a byte-order mark in front of an argument
    /// or of a piece of the format is dropped. A null text counts as empty, a width or precision
    /// of 2^31 - 1 and more as 0.
    [[gnu::format(printf, 2, 3)]] static void FormatString(CQSString& out, char const* format, ...);
    /// The same with a wide format; %s still reads UTF-8 bytes, not wide text. \a out receives
    /// one wide unit a character, also above U+FFFF. A U+FEFF of the format stays wherever it
    /// stands; surrogates that form no pair become '?', units beyond U+10FFFF become U+FFFD.
    static void FormatString(CQWString& out, wchar_t const* format, ...);
    /// Fills the place markers '%1', '%2', ... of \a format in order, as QString::arg() does.
    /// Texts go in unit by unit, U+FEFF included.
    /// \param arg  first of a list of wide C strings that ends with a null pointer of pointer
    ///             type. When it is null itself, only the slash rule is applied.
    static void FormatStringArg(CQWString& out, wchar_t const* format, wchar_t const* arg, ...);

    // URL and CGI text

    /// True for A-Z, a-z, 0-9 and ! ' ( ) * - . _ and for nothing else: '~', space, '+' and all
    /// bytes from 0x80 on are unsafe.
    static bool IsCharSafe(char c);
    /// The client's own encoding, which is not percent-encoding: safe bytes of the UTF-8 text are
    /// appended as they are; in place of an unsafe byte the lower-case hexadecimal form of
    /// everything written so far is appended. 'a b' becomes 'a61b'. Callers depend on it.
    ///
    /// Every unsafe byte triples the output. A result beyond 2^31 - 1 bytes throws
    /// `std::bad_alloc` before anything is allocated, and \a *out is untouched.
    /// \param out  receives a new array that the caller deletes; null is ignored.
    /// \return     1
    static int UrlEncode(QString const& in, QByteArray** out);
    /// Checks that every "%" of \a in is followed by two more bytes, whatever they are.
    /// \param out  on success receives a new, empty string that the caller deletes: the decoded
    ///             text is not delivered, and callers use the result only. Null is ignored.
    /// \return     1, or 0 for a cut-off escape, with \a *out untouched.
    static int UrlDecode(QByteArray const& in, QString** out);
    /// Replaces each "%" and the two characters behind it by the character of that hexadecimal
    /// value, in place and in one pass: a "%" that results is not decoded again. What wtoh()
    /// takes for 0, such as characters that are no digits, gives the character 0. Nothing for
    /// null and for more than 2048 characters.
    static void DecodeCgi(QString* s);
    /// Returns the UTF-8 form of \a in with each byte as one wide unit; the bytes 1 to 32 and
    /// ? > < % # " are written as "%" and two lower-case hexadecimal digits. Characters beyond
    /// U+FFFF are dropped. Empty when memory cannot be had. The flag is not used.
    static CQWString EscapeString(CQWString& in, bool);
    /// Extracts the value of the query argument \a name, which must be followed by blanks or
    /// nothing and then "=".
    ///
    /// The value ends before the next "&" behind a non-empty text, else at the end of \a url
    /// (so of 'a=&b=1' the value of a is '&b=1'), and loses the blanks at both ends. The first
    /// occurrence of \a name is sought in the lower-cased \a url, hence \a name must be lower
    /// case. Later ones are sought with regard to case, and their offsets, counted from the
    /// place where that search began, are used on \a url as they are. Clients were tuned to
    /// those results; do not correct the offsets.
    /// \param value  emptied when a "=" was found but no value; untouched without "=".
    /// \return       true for a non-empty value. False also for a null or empty \a name and
    ///               without memory.
    static bool GetArgumentFormURL(CQSString const& url, char const* name, CQSString& value);

    // Numbers

    /// Reads \a len bytes of hexadecimal text as a 32-bit strtoul() does in base 16: leading
    /// blanks, sign and 0x are accepted, parsing stops at the first foreign byte, larger values
    /// saturate at 0xFFFFFFFF, a minus wraps. One leading "#" is skipped.
    /// \param base  ignored: every caller passes hexadecimal text.
    /// \return      1. Null or a length below 1 asserts "str != NULL && len > 0"; \a out is then
    ///              0 and the result 0.
    static int StrToUL(char* str, int len, int base, unsigned long& out);
    /// Value of the hexadecimal digits at \a s, at most \a len units with an optional minus
    /// counted in, modulo 2^32. Stops at the first unit that is no digit; 0 without digits, for
    /// null and for a negative length.
    static int wtoh(wchar_t const* s, int len);
    /// Next number of the Park-Miller minimal standard generator (Schrage's method), 31 bits.
    /// \param seed  state, a 32-bit value. The seeds 0 and 2147483647 stay at 2147483647.
    static int Rand(unsigned long& seed);
    /// The C library's rand().
    static int Random();
    /// A rand() number from [a, a + |b - a|): the upper end is exclusive, and with b below a the
    /// range lies above a, not between the two. \a a when both are equal.
    static int Random(int a, int b);

    // Memory

    /// First place in \a mem where the \a patLen bytes of \a pattern stand; \a mem itself for an
    /// empty pattern. Null when there is none, for null arguments and for negative lengths.
    static unsigned char* SearchMem(unsigned char* mem, int memLen, char* pattern, int patLen);
    /// The same without regard to the case of A-Z; here an empty pattern gives null.
    static unsigned char* SearchMemNoCase(unsigned char* mem, int memLen, char* pattern,
                                          int patLen);
    /// Turns A-Z into a-z in place. Null or a length below 1 asserts "pSrc != NULL && iLen > 0";
    /// nothing is done.
    static void MakeLowerCase(unsigned char* p, int len);
    /// Turns every line break of UTF-16LE text into the single unit 12, in place: CR, LF, and CR
    /// LF, whose CR becomes a space so that the length stays. A tab becomes a space.
    /// \param len  in bytes; an odd last byte is left alone. Nothing for null.
    static void CheckErrorWords(unsigned char* text, unsigned short len);

    // Encoding: CStrConvertor under the names that the strings' callers know.

    /// CStrConvertor::Unicode2Utf8(): bytes written, or -1.
    static int UnicodeToUTF8(char* pDst, int nDstLen, const wchar_t* pSrc, int nSrcLen);
    /// The same; \a nLen is the capacity and receives the result, also when that is -1.
    /// \return  1, always.
    static int Unicode2Char(char* pDst, int& nLen, const wchar_t* pSrc, int nSrcLen);
    /// CStrConvertor::Utf82Unicode(), with its packed 16-bit layout: units written, or -1.
    /// @{
    static int UTF8ToUnicode(wchar_t* pDst, int nDstLen, char* pSrc, int nSrcLen);
    static int Char2Unicode(wchar_t* pDst, int nDstLen, char* pSrc, int nSrcLen);
    /// @}

    // Packing, most significant byte first: SetWORD(), SetDWORD(), GetWORD() and GetDWORD() with
    // signed types. GetLong() extends the sign where `long` is wider than 32 bits.

    /// Packs 16 bits into two bytes.
    static void SetShort(unsigned char* p, short v);
    /// Packs the low 32 bits into four bytes.
    static void SetLong(unsigned char* p, long v);
    /// Reads two bytes.
    static void GetShort(short* v, unsigned char* p);
    /// Reads four bytes.
    static void GetLong(long* v, unsigned char* p);

    // Without counterpart on this platform

    /// Always 0: there is no tick counter, and callers cope with a constant.
    static unsigned int GetTickCount();
    /// Does nothing; \a out stays as it is. 0, always.
    static int FormatDate(CQWString& out, wchar_t const* format, int time);
};
