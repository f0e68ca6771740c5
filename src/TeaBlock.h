#pragma once

#include "ByteOrder.h"

#include <array>
#include <cstdint>
#include <cstring>

/// \file
/// The block cipher behind CCrypt: the Tiny Encryption Algorithm (Wheeler and Needham, 1994).
/// It is published with 32 cycles; the number is a parameter, so that the cipher can be checked
/// against the published test vectors although CCrypt runs fewer.

namespace Tea
{

/// One 64-bit block as two words, which lie most significant byte first in memory.
struct Block {
    std::uint32_t y = 0;
    std::uint32_t z = 0;

    friend Block operator^(const Block& a, const Block& b) { return {a.y ^ b.y, a.z ^ b.z}; }
};

constexpr int BlockSize = 8;

using Key = std::array<std::uint32_t, 4>;

constexpr std::uint32_t Delta = 0x9E3779B9;

inline std::uint32_t LoadWord(const unsigned char* p)
{
    unsigned char packed[4];
    std::memcpy(packed, p, sizeof packed);
    unsigned long word = 0;
    GetDWORD(word, packed);
    return static_cast<std::uint32_t>(word);
}

/// Reads a 128-bit key from 16 bytes.
inline Key LoadKey(const unsigned char* p)
{
    return {LoadWord(p), LoadWord(p + 4), LoadWord(p + 8), LoadWord(p + 12)};
}

inline Block Load(const unsigned char* p)
{
    return {LoadWord(p), LoadWord(p + 4)};
}

inline void Store(const Block& block, unsigned char* p)
{
    SetDWORD(p, block.y);
    SetDWORD(p + 4, block.z);
}

inline Block Encipher(Block b, const Key& k, int cycles)
{
    std::uint32_t sum = 0;
    for (int cycle = 0; cycle < cycles; ++cycle) {
        sum += Delta;
        b.y += ((b.z << 4) + k[0]) ^ (b.z + sum) ^ ((b.z >> 5) + k[1]);
        b.z += ((b.y << 4) + k[2]) ^ (b.y + sum) ^ ((b.y >> 5) + k[3]);
    }
    return b;
}

inline Block Decipher(Block b, const Key& k, int cycles)
{
    std::uint32_t sum = Delta * static_cast<std::uint32_t>(cycles);
    for (int cycle = 0; cycle < cycles; ++cycle) {
        b.z -= ((b.y << 4) + k[2]) ^ (b.y + sum) ^ ((b.y >> 5) + k[3]);
        b.y -= ((b.z << 4) + k[0]) ^ (b.z + sum) ^ ((b.z >> 5) + k[1]);
        sum -= Delta;
    }
    return b;
}

} // namespace Tea
