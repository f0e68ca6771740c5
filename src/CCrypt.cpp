#include "CCrypt.h"

#include "TeaBlock.h"

#include <QRandomGenerator>

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
    quint32 words[(MaxPrefixSize + sizeof(quint32) - 1) / sizeof(quint32)];
    QRandomGenerator::global()->fillRange(words);
    std::memcpy(prefix, words, static_cast<std::size_t>(PrefixSize(fill)));
    prefix[0] = static_cast<unsigned char>((prefix[0] & ~FillMask) | fill);
}

// The feedback mode. Both states start as zero blocks.
class Encipherer
{
public:
    explicit Encipherer(const unsigned char* key) : m_key(Tea::LoadKey(key)) {}

    void Next(const unsigned char* plain, unsigned char* out)
    {
        const Tea::Block input = Tea::Load(plain) ^ m_lastCipher;
        m_lastCipher = Tea::Encipher(input, m_key, Cycles) ^ m_lastInput;
        m_lastInput = input;
        Tea::Store(m_lastCipher, out);
    }

private:
    Tea::Key m_key;
    Tea::Block m_lastInput;
    Tea::Block m_lastCipher;
};

class Decipherer
{
public:
    explicit Decipherer(const unsigned char* key) : m_key(Tea::LoadKey(key)) {}

    void Next(const unsigned char* in, unsigned char* plain)
    {
        const Tea::Block cipher = Tea::Load(in);
        m_lastInput = Tea::Decipher(cipher ^ m_lastInput, m_key, Cycles);
        Tea::Store(m_lastInput ^ m_lastCipher, plain);
        m_lastCipher = cipher;
    }

private:
    Tea::Key m_key;
    Tea::Block m_lastInput;
    Tea::Block m_lastCipher;
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

    // The window holds what of the envelope comes next. It reads the payload ahead by the
    // prefix, so that a block of it is read before the output in the same place is written.
    unsigned char window[MaxPrefixSize + Tea::BlockSize];
    unsigned char* const incoming = window + prefixSize;
    MakePrefix(window, fill);
    Encipherer cipher(m_Key);
    for (int pos = 0; pos < size; pos += Tea::BlockSize) {
        const int fresh = std::clamp(inLen - pos, 0, Tea::BlockSize);
        std::copy_n(in + std::min(pos, inLen), fresh, incoming);
        std::fill(incoming + fresh, incoming + Tea::BlockSize, 0);
        cipher.Next(window, out + pos);
        std::memmove(window, window + Tea::BlockSize, static_cast<std::size_t>(prefixSize));
    }
    outLen = size;
}

bool CCrypt::Decrypt(const unsigned char* in, int inLen, unsigned char* out, int& outLen) const
{
    if (m_DecryptArith != TeaEnvelope || in == nullptr || inLen < 2 * Tea::BlockSize ||
        inLen % Tea::BlockSize != 0) {
        return false;
    }
    unsigned char plain[Tea::BlockSize];
    Decipherer cipher(m_Key);
    cipher.Next(in, plain);
    const int fill = plain[0] & FillMask;
    const int payloadSize = inLen - fill - FixedSize;
    const int room = out != nullptr ? outLen : 0;
    if (payloadSize < 0 || payloadSize > room) {
        return false;
    }
    outLen = payloadSize;

    const int payloadStart = PrefixSize(fill);
    const int payloadEnd = payloadStart + payloadSize;
    for (int pos = 0;;) {
        const int first = std::clamp(payloadStart - pos, 0, Tea::BlockSize);
        const int last = std::clamp(payloadEnd - pos, first, Tea::BlockSize);
        std::copy(plain + first, plain + last, out);
        out += last - first;
        pos += Tea::BlockSize;
        if (pos == inLen) {
            break;
        }
        cipher.Next(in + pos, plain);
    }
    return std::all_of(plain + 1, plain + Tea::BlockSize,
                       [](unsigned char byte) { return byte == 0; });
}
