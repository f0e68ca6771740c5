#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

/// Hands out the bytes of one test input as the choices of a test: which operation, which
/// arguments, which foreign bytes. It never runs dry: past its end every choice is 0, so any
/// input is a finite script.
class ByteSource
{
public:
    ByteSource(const std::uint8_t* data, std::size_t size) : m_next(data), m_end(data + size) {}

    bool IsEmpty() const { return m_next == m_end; }
    std::size_t GetLeft() const { return static_cast<std::size_t>(m_end - m_next); }

    std::uint8_t Byte() { return IsEmpty() ? std::uint8_t(0) : *m_next++; }

    /// A whole number, little-endian.
    std::uint32_t Word()
    {
        std::uint32_t value = 0;
        for (int shift = 0; shift < 32; shift += 8) {
            value |= static_cast<std::uint32_t>(Byte()) << shift;
        }
        return value;
    }

    /// A number from `low` to `high`, both included; takes one byte for a span below 256.
    int Between(int low, int high)
    {
        const auto first = static_cast<std::uint32_t>(low);
        const std::uint32_t span = static_cast<std::uint32_t>(high) - first + 1;
        const std::uint32_t choice = span <= 256 && span != 0 ? Byte() : Word();
        return static_cast<int>(first + (span == 0 ? choice : choice % span));
    }

    bool Flag() { return (Byte() & 1) != 0; }

    /// Up to `longest` bytes as they come: a length first, then the bytes that are there.
    std::string Bytes(int longest)
    {
        const auto wanted = static_cast<std::size_t>(Between(0, longest));
        const std::size_t taken = std::min(wanted, GetLeft());
        std::string bytes(reinterpret_cast<const char*>(m_next), taken);
        m_next += taken;
        return bytes;
    }

    /// Up to `longest` bytes drawn from `alphabet`: short alphabets make matches likely.
    std::string Text(int longest, const std::string& alphabet)
    {
        std::string text = Bytes(longest);
        for (char& c : text) {
            c = alphabet[static_cast<unsigned char>(c) % alphabet.size()];
        }
        return text;
    }

    /// All that is left.
    std::string Rest()
    {
        std::string rest(reinterpret_cast<const char*>(m_next), GetLeft());
        m_next = m_end;
        return rest;
    }

private:
    const std::uint8_t* m_next;
    const std::uint8_t* m_end;
};
