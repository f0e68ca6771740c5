#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// \file
/// Hexadecimal digits of byte and wide text, independent of the locale. Internal; not installed.

/// Values of the ASCII characters as digits; -1 for those that are none. A look-up, as digits and
/// letters in turns are what a branch predicts worst.
inline constexpr std::array<signed char, 128> HexDigitValues = [] {
    std::array<signed char, 128> values{};
    values.fill(-1);
    for (signed char digit = 0; digit < 16; ++digit) {
        values[static_cast<unsigned char>("0123456789abcdef"[digit])] = digit;
        values[static_cast<unsigned char>("0123456789ABCDEF"[digit])] = digit;
    }
    return values;
}();

/// Value of a digit of either case, or -1.
template <typename Unit>
constexpr int HexDigit(Unit c)
{
    const auto unit = static_cast<std::uint32_t>(c);
    return unit < HexDigitValues.size() ? HexDigitValues[unit] : -1;
}

/// Writes \a byte as two lower-case digits at \a p and returns the place behind them.
template <typename Unit>
constexpr Unit* PutHexByte(Unit* p, unsigned char byte)
{
    constexpr char Digits[] = "0123456789abcdef";
    p[0] = static_cast<Unit>(Digits[byte >> 4]);
    p[1] = static_cast<Unit>(Digits[byte & 0x0F]);
    return p + 2;
}
