#pragma once

#include <array>
#include <cstddef>

/// Random bytes that cost nothing to speak of, for what only has to differ from one time to the
/// next. Each thread has a generator of its own, seeded from the platform's secure source when
/// the thread first draws and, in a forked child, once more: parent and child draw differently.
/// Never blocks on a lock, so that it also works in a child of a process with several threads.
std::array<unsigned char, 16> DrawRandomBytes();
