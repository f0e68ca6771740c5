#pragma once

// A test program that links FailingAllocator.cpp gets its own malloc(), operator new and their
// relatives, over those of the platform, which the libraries use too. Everything here concerns
// the calling thread.

/// Which of all allocations fails, of those that are made while it is on.
struct AllocationFault {
    int untilFailure = 0;   ///< counted from 1; 0 or below: none is due any more
    bool isLasting = false; ///< all that follow fail as well
    bool isOn = false;
    bool hasHappened = false;
};
inline thread_local constinit AllocationFault currentFault{};
/// What this thread has allocated less what it has freed.
inline thread_local constinit int liveAllocations = 0;
