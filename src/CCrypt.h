#pragma once

#include "OrvoExport.h"

#include <QtGlobal>

/// The running state of one MD5 digest. Set up with CCrypt::MD5_Init().
struct tagMD5State {
    quint32 m_dwChain[4];      ///< Chaining words A, B, C, D.
    quint32 m_dwBits[2];       ///< Message length in bits, low word first.
    unsigned char m_Block[64]; ///< Input that does not fill a block yet.
    qint32 m_nBlockLen;        ///< Bytes held in the block, 0 to 63.
};

/// Receives a digest as 32 lower-case hexadecimal digits and a terminating zero.
struct _tag_THashHexString8 {
    char m_szHex[33]; ///< 32 digits and the zero.
};

/// Enciphers byte payloads into self-describing envelopes with a 16-byte key, and deciphers
/// them; beside that, MD5 digests (RFC 1321) and keys derived from them.
///
/// Both are kept for compatibility with existing data. By today's standards neither protects
/// anything: use them for the client's formats only. An envelope is not authenticated: whoever
/// has the key's envelopes can alter them, and all that Decrypt() checks are seven zero bytes.
///
/// What is random in an envelope only makes two envelopes of one payload differ. It comes from a
/// generator of each thread, seeded from the platform's secure source when the thread first
/// enciphers and once more in a child after fork(); no seeding by the client has any part in it.
///
/// Nothing is wiped: key, plain text and the words between them stay behind in the object, on
/// the stack and in the client's buffers until something else is stored there.
///
/// A client sets key and algorithms, `CCrypt crypt(key, 0, 0)`, and gives Encrypt() a buffer
/// of FindEncryptSize() bytes. An envelope is the block cipher TEA at 16 cycles over, in order,
/// \verbatim
///   1 byte   random, the low three bits replaced by P
///   P bytes  random; P (0 to 7) makes the whole a multiple of 8
///   2 bytes  random
///   L bytes  the payload
///   7 bytes  zero
/// \endverbatim
/// where each block of 8 is XORed with the previous cipher block before it is enciphered, and
/// with the previous block so XORed after it. Words of key and blocks are big-endian.
///
/// Objects keep nothing between calls but key and algorithms. Different objects may be used on
/// different threads, and the static operations anywhere. Only GetMd5Key() throws.
class ORVO_EXPORT CCrypt
{
public:
    /// Enciphering algorithm 1, deciphering algorithm 0, and no key yet (16 zero bytes). Callers
    /// rely on such an object deciphering after SetKey() while Encrypt() does nothing.
    CCrypt();
    /// Copies 16 bytes from \a key, whatever the algorithms; null leaves the key unset.
    CCrypt(unsigned char* key, unsigned char encryptArith, unsigned char decryptArith);
    virtual ~CCrypt();

    /// Copies the key if \a len is exactly 16; any other length, or null, keeps the old one.
    void SetKey(unsigned char* key, int len);

    /// Selects the algorithms; 0 is the only one that Encrypt() and Decrypt() implement.
    void SetArith(unsigned char encryptArith, unsigned char decryptArith);

    /// The size of the envelope of \a len bytes: \a len + 10, rounded up to a multiple of 8.
    /// Returns 0 if that is above 2^31 - 1, or when the enciphering algorithm is neither 0 nor
    /// 1. That 1 has a size although Encrypt() refuses it is what default objects answer.
    /// Negative lengths are put into the same sum, and the result, below 16 and itself negative
    /// from -18 down, is no size of any envelope: Encrypt() refuses them.
    int FindEncryptSize(int len) const;

    /// Writes the envelope of \a in to \a out, which has room for FindEncryptSize(\a inLen)
    /// bytes, and its size to \a outLen. Each call draws fresh random bytes. \a in may lie
    /// in \a out, at its start or anywhere else.
    ///
    /// Does nothing, not even to \a outLen, when the enciphering algorithm is not 0, for a
    /// negative length or one without an envelope size, for a null \a out, and for a null \a in
    /// with a length.
    void Encrypt(const unsigned char* in, int inLen, unsigned char* out, int& outLen) const;

    /// Deciphers the envelope \a in to \a out. \a outLen holds the room in \a out, and then the
    /// length of the payload. \a in and \a out may be the same buffer, but not overlap otherwise.
    ///
    /// Returns false, \a outLen unchanged, when the deciphering algorithm is not 0, when
    /// \a inLen is below 16 or no multiple of 8, when the header contradicts the length, when
    /// the payload does not fit (null has no room), and for a null \a in. Returns false with
    /// \a out and \a outLen already set, and not to be used, when the zero trailer does not
    /// come out: a wrong key or altered data. The bytes are handed out before that is known, so
    /// a caller that must not see them has to clear \a out itself.
    bool Decrypt(const unsigned char* in, int inLen, unsigned char* out, int& outLen) const;

    /// Starts a digest: clears \a state and sets its chaining words.
    static void MD5_Init(tagMD5State* state);

    /// Adds \a len bytes. Any split of a message over calls gives the same digest. Ignores null
    /// and, on 64-bit hosts, lengths beyond 32 bits.
    static void MD5_Update(tagMD5State* state, const unsigned char* data, unsigned long len);

    /// Ends the digest and writes its 16 bytes. \a state needs MD5_Init() before further use.
    static void MD5_Final(unsigned char* digest, tagMD5State* state);

    /// Writes the 16-byte digest of \a len bytes. A negative length counts as 0, and so does null.
    static void Md5Hash(unsigned char* digest, const unsigned char* data, int len);

    /// Writes the digest of a zero-terminated text and returns 1. Returns 0 with \a hex untouched
    /// for null or a text above 2^31 - 1 bytes.
    static int MD5HashHexString(const char* text, _tag_THashHexString8& hex);

    /// Derives a key of 16 bytes, without terminator, which the caller frees with `delete[]`.
    ///
    /// It is the second half of the hexadecimal MD5 digest of the number as unsigned decimal, the
    /// first 16 characters of \a text at most, and a fixed salt. Letters a to f come out as "@"
    /// and A to E, one below their capitals, which existing keys depend on. Returns null for null,
    /// and throws `std::bad_alloc` if there is no memory for the key.
    static unsigned char* GetMd5Key(int number, char* text);

private:
    unsigned char m_Key[16];
    quint8 m_EncryptArith;
    quint8 m_DecryptArith;
};
