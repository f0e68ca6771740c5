#pragma once

#include "ByteSource.h"

#include <cstdio>
#include <cstdlib>

/// One model: a short, obviously right reference for a family of operations, and the script that
/// drives the library and the reference with the same input. Each source file in this folder
/// defines it once; tests drive it with fixed random inputs, fuzz targets with libFuzzer. Any
/// deviation aborts.
void DriveModel(ByteSource& source);

#define MODEL_CHECK(claim)                                                                         \
    ((claim)                                                                                       \
         ? static_cast<void>(0)                                                                    \
         : (std::fprintf(stderr, "%s:%d: the library deviates: %s\n", __FILE__, __LINE__, #claim), \
            std::abort()))
