#pragma once

#include "WordBytes.h"

#include <array>
#include <cstdint>

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

/// Reads a 128-bit key from 16 bytes.
inline Key LoadKey(const unsigned char* p)
{
    using WordBytes::LoadBigEndian;
    return {LoadBigEndian(p), LoadBigEndian(p + 4), LoadBigEndian(p + 8), LoadBigEndian(p + 12)};
}

inline Block Load(const unsigned char* p)
{
    return {WordBytes::LoadBigEndian(p), WordBytes::LoadBigEndian(p + 4)};
}

inline void Store(const Block& block, unsigned char* p)
{
    WordBytes::StoreBigEndian(block.y, p);
    WordBytes::StoreBigEndian(block.z, p + 4);
}

/// One half of a block, and beside it (word << 4) + k. That sum is kept up to date rather than
/// made anew, which takes one step of five out of the chain that each half cycle waits for: a
/// fifth of the time.
class Half
{
public:
    Half(std::uint32_t word, std::uint32_t k) : m_word(word), m_shifted((word << 4) + k) {}

    std::uint32_t GetWord() const { return m_word; }

    void Add(std::uint32_t mixed)
    {
        m_word += mixed;
        m_shifted += mixed << 4;
    }

    void Subtract(std::uint32_t mixed)
    {
        m_word -= mixed;
        m_shifted -= mixed << 4;
    }

    /// ((word << 4) + k) ^ (word + sum) ^ ((word >> 5) + kRight), what is known first taken first.
    std::uint32_t Mix(std::uint32_t sum, std::uint32_t kRight) const
    {
        return (m_shifted ^ (m_word + sum)) ^ ((m_word >> 5) + kRight);
    }

private:
    std::uint32_t m_word;
    std::uint32_t m_shifted;
};

inline Block Encipher(const Block& b, const Key& k, int cycles)
{
    std::uint32_t sum = 0;
    Half y(b.y, k[2]);
    Half z(b.z, k[0]);
    for (int cycle = 0; cycle < cycles; ++cycle) {
        sum += Delta;
        y.Add(z.Mix(sum, k[1]));
        z.Add(y.Mix(sum, k[3]));
    }
    return {y.GetWord(), z.GetWord()};
}

inline Block Decipher(const Block& b, const Key& k, int cycles)
{
    std::uint32_t sum = Delta * static_cast<std::uint32_t>(cycles);
    Half y(b.y, k[2]);
    Half z(b.z, k[0]);
    for (int cycle = 0; cycle < cycles; ++cycle) {
        z.Subtract(y.Mix(sum, k[3]));
        y.Subtract(z.Mix(sum, k[1]));
        sum -= Delta;
    }
    return {y.GetWord(), z.GetWord()};
}

} // namespace Tea
