#pragma once

/// \file
/// Marks what the library exports, and what it does not. Everything else is hidden.

/// Put before the name of an exported class or function.
#define ORVO_EXPORT __attribute__((visibility("default")))

/// Put before a private helper of an exported class, which clients have no call for. Not before a
/// virtual one, which their vtables name, nor before one that a header calls.
#define ORVO_HIDDEN __attribute__((visibility("hidden")))
