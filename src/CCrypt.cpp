#include "CCrypt.h"

#include "RandomBytes.h"
#include "TeaBlock.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace
{

// Half of what TEA is published with; part of the format.
constexpr int Cycles = 16;

constexpr quint8 TeaEnvelope = 0;

constexpr int SaltSize = 2;
constexpr int TrailerSize = 7;
constexpr int FixedSize = 1 + SaltSize + TrailerSize;
constexpr unsigned char FillMask = 7;

constexpr qint64 EnvelopeSize(qint64 payloadSize)
{
    return (payloadSize + FixedSize + Tea::BlockSize - 1) & -qint64{Tea::BlockSize};
}

// Header, fill and salt: what stands before the payload.
constexpr int PrefixSize(int fill)
{
    return 1 + fill + SaltSize;
}

constexpr int MaxPrefixSize = PrefixSize(FillMask);

void MakePrefix(unsigned char* prefix, int fill)
{
    const auto bytes = DrawRandomBytes();
    static_assert(bytes.size() >= MaxPrefixSize);
    std::copy_n(bytes.data(), PrefixSize(fill), prefix);
    prefix[0] = static_cast<unsigned char>((prefix[0] & ~FillMask) | fill);
}

// The feedback mode; its states start as zero blocks. Each block waits for the cipher's output for
// the one before, so whatever else the next input is made of is loaded and joined by then, and
// before the current output is stored: the loops come within a twentieth of the bare cipher.

void EncipherInPlace(const unsigned char* key, unsigned char* blocks, int size)
{
    const Tea::Key words = Tea::LoadKey(key);
    Tea::Block input = Tea::Load(blocks);
    Tea::Block lastInput;
    for (int pos = 0; pos < size; pos += Tea::BlockSize) {
        const Tea::Block enciphered = Tea::Encipher(input, words, Cycles);
        const int next = std::min(pos + Tea::BlockSize, size - Tea::BlockSize);
        const Tea::Block joined = Tea::Load(blocks + next) ^ lastInput;
        Tea::Store(enciphered ^ lastInput, blocks + pos);
        lastInput = input;
        input = enciphered ^ joined;
    }
}

class Decipherer
{
public:
    Decipherer(const unsigned char* key, const unsigned char* in, int size)
        : m_key(Tea::LoadKey(key)), m_in(in), m_lastPos(size - Tea::BlockSize),
          m_cipher(Tea::Load(in)), m_input(m_cipher)
    {
    }

    void Next(unsigned char* plain)
    {
        const Tea::Block deciphered = Tea::Decipher(m_input, m_key, Cycles);
        m_pos = std::min(m_pos + Tea::BlockSize, m_lastPos);
        const Tea::Block next = Tea::Load(m_in + m_pos);
        Tea::Store(deciphered ^ m_lastCipher, plain);
        m_lastCipher = m_cipher;
        m_cipher = next;
        m_input = deciphered ^ next;
    }

private:
    Tea::Key m_key;
    const unsigned char* m_in;
    int m_lastPos;
    int m_pos = 0;
    Tea::Block m_lastCipher;
    Tea::Block m_cipher;
    Tea::Block m_input;
};

} // namespace

CCrypt::CCrypt() : m_Key{}, m_EncryptArith(1), m_DecryptArith(TeaEnvelope) {}

CCrypt::CCrypt(unsigned char* key, unsigned char encryptArith, unsigned char decryptArith)
    : m_Key{}, m_EncryptArith(encryptArith), m_DecryptArith(decryptArith)
{
    SetKey(key, sizeof m_Key);
}

CCrypt::~CCrypt() = default;

void CCrypt::SetKey(unsigned char* key, int len)
{
    if (key != nullptr && len == sizeof m_Key) {
        std::memmove(m_Key, key, sizeof m_Key);
    }
}

void CCrypt::SetArith(unsigned char encryptArith, unsigned char decryptArith)
{
    m_EncryptArith = encryptArith;
    m_DecryptArith = decryptArith;
}

int CCrypt::FindEncryptSize(int len) const
{
    const qint64 size = EnvelopeSize(len);
    if (m_EncryptArith > 1 || size > std::numeric_limits<int>::max()) {
        return 0;
    }
    return static_cast<int>(size);
}

void CCrypt::Encrypt(const unsigned char* in, int inLen, unsigned char* out, int& outLen) const
{
    if (m_EncryptArith != TeaEnvelope || inLen < 0 || (in == nullptr && inLen > 0) ||
        out == nullptr) {
        return;
    }
    const int size = FindEncryptSize(inLen);
    if (size == 0) {
        return;
    }
    const int fill = size - inLen - FixedSize;
    const int prefixSize = PrefixSize(fill);

    // The plain envelope is laid out where the cipher then runs over it in place, which costs
    // less than handing it over block by block. The payload goes first: it may lie in `out`.
    if (inLen > 0) {
        std::memmove(out + prefixSize, in, static_cast<std::size_t>(inLen));
    }
    std::fill_n(out + prefixSize + inLen, TrailerSize, 0);
    MakePrefix(out, fill);
    EncipherInPlace(m_Key, out, size);
    outLen = size;
}

bool CCrypt::Decrypt(const unsigned char* in, int inLen, unsigned char* out, int& outLen) const
{
    if (m_DecryptArith != TeaEnvelope || in == nullptr || inLen < 2 * Tea::BlockSize ||
        inLen % Tea::BlockSize != 0) {
        return false;
    }
    unsigned char plain[Tea::BlockSize];
    Decipherer cipher(m_Key, in, inLen);
    cipher.Next(plain);
    const int fill = plain[0] & FillMask;
    const int payloadSize = inLen - fill - FixedSize;
    const int room = out != nullptr ? outLen : 0;
    if (payloadSize < 0 || payloadSize > room) {
        return false;
    }
    outLen = payloadSize;

    const int payloadStart = PrefixSize(fill);
    const int payloadEnd = payloadStart + payloadSize;
    const auto emitPart = [&](int pos) {
        const int first = std::clamp(payloadStart - pos, 0, Tea::BlockSize);
        const int last = std::clamp(payloadEnd - pos, first, Tea::BlockSize);
        out = std::copy(plain + first, plain + last, out);
    };
    emitPart(0);
    for (int pos = Tea::BlockSize; pos < inLen; pos += Tea::BlockSize) {
        if (pos >= payloadStart && pos + Tea::BlockSize <= payloadEnd) {
            cipher.Next(out);
            out += Tea::BlockSize;
        } else {
            cipher.Next(plain);
            emitPart(pos);
        }
    }
    return std::all_of(plain + 1, plain + Tea::BlockSize,
                       [](unsigned char byte) { return byte == 0; });
}
