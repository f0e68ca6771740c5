#pragma once

// Strings of either class as tests write and read them.

#include "TestPrelude.h"

#include <CQSString.h>
#include <CQWString.h>

#include <type_traits>

template <class String>
using Unit = std::remove_cv_t<std::remove_pointer_t<decltype(String().GetDataPtr())>>;

template <class String>
constexpr bool IsWide = sizeof(Unit<String>) > 1;

// A string that holds each byte of the text, zeros too, as one unit.
template <class String>
String Make(const std::string& text)
{
    std::basic_string<Unit<String>> units(text.begin(), text.end());
    String s;
    s.AppendData(reinterpret_cast<unsigned char*>(units.data()), static_cast<int>(units.size()));
    return s;
}

inline CQWString Wide(const std::wstring& text)
{
    CQWString s;
    s.SetData(text.c_str());
    return s;
}

// The whole content, zeros too.
std::string Content(const auto& s)
{
    const auto* const p = s.GetDataPtr();
    EXPECT_TRUE(p == nullptr ? s.GetLength() == 0 : p[s.GetLength()] == 0);
    return {p, p + s.GetLength()};
}
