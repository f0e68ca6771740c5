// MD5 as RFC 1321 publishes it, and what the client derives from it.

#include "CCrypt.h"

#include "HexDigits.h"
#include "WordBytes.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdio>
#include <cstring>
#include <limits>
#include <utility>

namespace
{

constexpr int DigestSize = 16;
constexpr int HexDigestSize = 2 * DigestSize;
constexpr int Md5BlockSize = sizeof tagMD5State::m_Block;
constexpr int LengthPos = Md5BlockSize - 8;

// RFC 1321, section 3.4: the integer part of 4294967296 * abs(sin(i)), i from 1, in radians.
constexpr std::array<quint32, 64> SineTable = {
    0xd76aa478, 0xe8c7b756, 0x242070db, 0xc1bdceee, 0xf57c0faf, 0x4787c62a, 0xa8304613, 0xfd469501,
    0x698098d8, 0x8b44f7af, 0xffff5bb1, 0x895cd7be, 0x6b901122, 0xfd987193, 0xa679438e, 0x49b40821,
    0xf61e2562, 0xc040b340, 0x265e5a51, 0xe9b6c7aa, 0xd62f105d, 0x02441453, 0xd8a1e681, 0xe7d3fbc8,
    0x21e1cde6, 0xc33707d6, 0xf4d50d87, 0x455a14ed, 0xa9e3e905, 0xfcefa3f8, 0x676f02d9, 0x8d2a4c8a,
    0xfffa3942, 0x8771f681, 0x6d9d6122, 0xfde5380c, 0xa4beea44, 0x4bdecfa9, 0xf6bb4b60, 0xbebfbc70,
    0x289b7ec6, 0xeaa127fa, 0xd4ef3085, 0x04881d05, 0xd9d4d039, 0xe6db99e5, 0x1fa27cf8, 0xc4ac5665,
    0xf4292244, 0x432aff97, 0xab9423a7, 0xfc93a039, 0x655b59c3, 0x8f0ccc92, 0xffeff47d, 0x85845dd1,
    0x6fa87e4f, 0xfe2ce6e0, 0xa3014314, 0x4e0811a1, 0xf7537e82, 0xbd3af235, 0x2ad7d2bb, 0xeb86d391,
};

constexpr int Rotations[4][4] = {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};

// The round functions F, G, H, I, added to `sum`. The newest of the words is x: what does not wait
// for it comes first. G's two terms have no bit in common, so they can be added one by one.
template <int Round>
quint32 AddMixed(quint32 sum, quint32 x, quint32 y, quint32 z)
{
    if constexpr (Round == 0) {
        return sum + (z ^ (x & (y ^ z)));
    } else if constexpr (Round == 1) {
        return sum + (y & ~z) + (x & z);
    } else if constexpr (Round == 2) {
        return sum + (x ^ (y ^ z));
    } else {
        return sum + (y ^ (x | ~z));
    }
}

// Which word of the block a step takes: the first one of a round and the stride to the next.
constexpr int FirstWord[4] = {0, 1, 5, 0};
constexpr int WordStride[4] = {1, 5, 3, 7};

// The words trade places from step to step instead of being moved.
template <int Step>
void RunStep(quint32 (&words)[4], const unsigned char* block)
{
    constexpr int Round = Step / 16;
    constexpr int Position = Step % 16;
    constexpr int Word = (FirstWord[Round] + Position * WordStride[Round]) % 16;
    constexpr int Newest = 65 - Step;
    quint32& changed = words[(Newest - 1) % 4];
    const quint32 newest = words[Newest % 4];
    const quint32 sum =
        AddMixed<Round>(changed + WordBytes::LoadLittleEndian(block + 4 * Word) + SineTable[Step],
                        newest, words[(Newest + 1) % 4], words[(Newest + 2) % 4]);
    changed = newest + std::rotl(sum, Rotations[Round][Position % 4]);
}

// Inlined so that the words stay in registers.
template <int... Steps>
[[gnu::always_inline]] inline void RunSteps(quint32 (&words)[4], const unsigned char* block,
                                            std::integer_sequence<int, Steps...>)
{
    (RunStep<Steps>(words, block), ...);
}

// Takes whole blocks; the chaining words stay in registers from one to the next.
void Transform(quint32 (&chain)[4], const unsigned char* blocks, std::size_t count)
{
    quint32 words[4] = {chain[0], chain[1], chain[2], chain[3]};
    for (; count > 0; --count, blocks += Md5BlockSize) {
        const quint32 before[4] = {words[0], words[1], words[2], words[3]};
        RunSteps(words, blocks, std::make_integer_sequence<int, 64>());
        for (int i = 0; i < 4; ++i) {
            words[i] += before[i];
        }
    }
    std::copy_n(words, 4, chain);
}

} // namespace

void CCrypt::MD5_Init(tagMD5State* state)
{
    *state = {{0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476}, {}, {}, 0};
}

void CCrypt::MD5_Update(tagMD5State* state, const unsigned char* data, unsigned long len)
{
    if (data == nullptr || len == 0 || len != static_cast<quint32>(len)) {
        return;
    }
    const quint64 bits =
        (quint64{state->m_dwBits[1]} << 32 | state->m_dwBits[0]) + quint64{len} * 8;
    state->m_dwBits[0] = static_cast<quint32>(bits);
    state->m_dwBits[1] = static_cast<quint32>(bits >> 32);

    if (state->m_nBlockLen > 0) {
        const auto held = static_cast<unsigned long>(state->m_nBlockLen);
        const unsigned long taken = std::min(len, Md5BlockSize - held);
        std::memcpy(state->m_Block + held, data, taken);
        data += taken;
        len -= taken;
        state->m_nBlockLen += static_cast<qint32>(taken);
        if (state->m_nBlockLen < Md5BlockSize) {
            return;
        }
        Transform(state->m_dwChain, state->m_Block, 1);
    }
    Transform(state->m_dwChain, data, len / Md5BlockSize);
    const unsigned long left = len % Md5BlockSize;
    std::memcpy(state->m_Block, data + (len - left), left);
    state->m_nBlockLen = static_cast<qint32>(left);
}

void CCrypt::MD5_Final(unsigned char* digest, tagMD5State* state)
{
    unsigned char* const block = state->m_Block;
    int used = state->m_nBlockLen;
    block[used++] = 0x80;
    if (used > LengthPos) {
        std::fill(block + used, block + Md5BlockSize, 0);
        Transform(state->m_dwChain, block, 1);
        used = 0;
    }
    std::fill(block + used, block + LengthPos, 0);
    WordBytes::StoreLittleEndian(state->m_dwBits[0], block + LengthPos);
    WordBytes::StoreLittleEndian(state->m_dwBits[1], block + LengthPos + 4);
    Transform(state->m_dwChain, block, 1);
    for (int i = 0; i < 4; ++i) {
        WordBytes::StoreLittleEndian(state->m_dwChain[i], digest + 4 * i);
    }
}

void CCrypt::Md5Hash(unsigned char* digest, const unsigned char* data, int len)
{
    tagMD5State state;
    MD5_Init(&state);
    MD5_Update(&state, data, static_cast<unsigned long>(std::max(len, 0)));
    MD5_Final(digest, &state);
}

int CCrypt::MD5HashHexString(const char* text, _tag_THashHexString8& hex)
{
    const std::size_t len = text != nullptr ? std::strlen(text) : 0;
    if (text == nullptr || len > std::numeric_limits<int>::max()) {
        return 0;
    }
    unsigned char digest[DigestSize];
    Md5Hash(digest, reinterpret_cast<const unsigned char*>(text), static_cast<int>(len));
    char* next = hex.m_szHex;
    for (const unsigned char byte : digest) {
        next = PutHexByte(next, byte);
    }
    *next = '\0';
    return 1;
}

unsigned char* CCrypt::GetMd5Key(int number, char* text)
{
    if (text == nullptr) {
        return nullptr;
    }
    constexpr char Salt[] = "7A3F09B2C4D8E615";
    char joined[10 + 16 + sizeof Salt];
    std::snprintf(joined, sizeof joined, "%u%.16s%s", static_cast<unsigned>(number), text, Salt);
    _tag_THashHexString8 hex;
    MD5HashHexString(joined, hex);

    constexpr int KeySize = 16;
    auto* key = new unsigned char[KeySize];
    std::transform(hex.m_szHex + KeySize, hex.m_szHex + HexDigestSize, key, [](char digit) {
        return static_cast<unsigned char>(digit > 96 ? digit - 33 : digit);
    });
    return key;
}
