#pragma once

// What nearly every test needs of the test framework and the standard library.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <climits>
#include <cstddef>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

/// Several results that should be the same.
template <class T>
void ExpectAll(T expected, const std::vector<T>& results)
{
    EXPECT_EQ(std::vector<T>(results.size(), expected), results);
}

/// The results of several claims, taken in the order in which they are written.
struct Claims {
    template <class... Claim>
    Claims(Claim&&... claims) : results{static_cast<bool>(claims)...}
    {
    }
    std::vector<bool> results;
};

/// Reports each claim that is not as expected, by its place in the text.
inline void ExpectClaims(const char* file, int line, const char* text, bool expected,
                         const Claims& claims)
{
    for (size_t i = 0; i < claims.results.size(); ++i) {
        if (claims.results[i] != expected) {
            ADD_FAILURE_AT(file, line) << "claim " << i + 1 << " of " << text;
        }
    }
}

#define EXPECT_EACH(...) ExpectClaims(__FILE__, __LINE__, #__VA_ARGS__, true, Claims{__VA_ARGS__})
#define EXPECT_NONE(...) ExpectClaims(__FILE__, __LINE__, #__VA_ARGS__, false, Claims{__VA_ARGS__})
