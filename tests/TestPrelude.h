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
