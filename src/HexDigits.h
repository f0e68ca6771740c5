#pragma once

/// \file
/// Hexadecimal digits of byte and wide text, independent of the locale. Internal; not installed.

/// Value of a digit of either case, or -1.
template <typename Unit>
constexpr int HexDigit(Unit c)
{
    if (c >= '0' && c <= '9') {
        return static_cast<int>(c - '0');
    }
    if (c >= 'a' && c <= 'f') {
        return static_cast<int>(c - 'a') + 10;
    }
    if (c >= 'A' && c <= 'F') {
        return static_cast<int>(c - 'A') + 10;
    }
    return -1;
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
