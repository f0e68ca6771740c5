#pragma once

#include <cstdio>
#include <cstdlib>

/// Ends the program when an example does not give what it shows.
#define REQUIRE(claim)                                                                             \
    ((claim) ? static_cast<void>(0)                                                                \
             : (std::fprintf(stderr, "%s:%d: not so: %s\n", __FILE__, __LINE__, #claim),           \
                std::exit(1)))
