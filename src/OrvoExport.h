#pragma once

/// \file
/// Marks what the library exports. Everything else is hidden.

/// Put before the name of an exported class or function.
#define ORVO_EXPORT __attribute__((visibility("default")))
