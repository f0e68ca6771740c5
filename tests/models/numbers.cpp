// Numbers as text: hexadecimal parsing, place markers filled with texts, byte order, the
// generator of pseudo-random numbers, and file sizes for display.

#include "Model.h"

#include <BaseUtil.h>
#include <CQWString.h>
#include <CSystemCall.h>

#include <QString>

#include <cerrno>
#include <cstring>

namespace
{

// The C library's own answer, reduced from its 64 bits.
void CheckStrToUL(std::string text, int base)
{
    errno = 0;
    const char* const number = text.c_str() + (text[0] == '#' ? 1 : 0);
    const unsigned long long value = std::strtoull(number, nullptr, 16);
    const bool isNegative = number[std::strspn(number, " \t\n\v\f\r")] == '-';
    const bool isLarge = errno == ERANGE || (isNegative ? 0 - value : value) > 0xFFFFFFFF;
    const auto length = static_cast<int>(text.size());
    text += "1"; // not to be read
    unsigned long out = 7;
    MODEL_CHECK(CBaseUtil::StrToUL(text.data(), length, base, out) == 1);
    MODEL_CHECK(out == (isLarge ? 0xFFFFFFFF : value & 0xFFFFFFFF));
}

void CheckWtoh(const std::wstring& text)
{
    const std::size_t start = text[0] == '-' ? 1 : 0;
    const std::size_t end = text.find_first_not_of(L"0123456789abcdefABCDEF", start);
    const QString digits = QString::fromStdWString(text.substr(start, end - start));
    const auto value = static_cast<std::uint32_t>(digits.toULongLong(nullptr, 16));
    MODEL_CHECK(CBaseUtil::wtoh((text + L"1").c_str(), static_cast<int>(text.size())) ==
                static_cast<int>(start == 1 ? 0 - value : value));
}

// Park and Miller's generator by 64-bit arithmetic, which needs none of Schrage's factors.
void CheckRand(unsigned long seed)
{
    if (seed != 0 && seed < 2147483647) {
        const auto expected = seed * std::uint64_t{16807} % 2147483647;
        MODEL_CHECK(CBaseUtil::Rand(seed) == static_cast<int>(expected) && seed == expected);
    }
}

void CheckSize(unsigned int bytes, bool shortUnit)
{
    const int unit = bytes < 1024 ? 0 : bytes <= 1024 * 1024 ? 1 : 2;
    double value = -1;
    CQWString text;
    CSystemCall::FileSizeExchange(bytes, value, text, shortUnit);
    MODEL_CHECK(value == bytes / (unit == 0 ? 1.0 : unit == 1 ? 1024.0 : 1048576.0));
    const wchar_t* const units[] = {L"B", L"KB", L"MB", L"B", L"K", L"M"};
    MODEL_CHECK(text.Compare(units[unit + (shortUnit ? 3 : 0)]) == 0);
}

} // namespace

void DriveModel(ByteSource& source)
{
    while (!source.IsEmpty()) {
        const std::string text = source.Text(3, "# \t\v-+") + source.Text(2, "0xX-#") +
                                 source.Text(12, std::string("0123456789abcdefABCDEFgG x\0", 27));
        if (const int base = source.Byte(); !text.empty()) {
            CheckStrToUL(text, base);
        }
        const std::string digits = source.Text(2, "-0") + source.Text(10, "0123456789abcdefABCDEF");
        CheckWtoh(std::wstring(digits.begin(), digits.end()) +
                  static_cast<wchar_t>(source.Word() >> source.Between(0, 31)));
        const std::uint32_t number = source.Word();
        CheckRand(number);
        CheckSize(number >> number % 32, source.Flag());
        CheckSize((number & 1023) + 1048000, source.Flag());
    }
}
