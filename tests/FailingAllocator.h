#pragma once

/// Makes allocations fail on demand. A test program that links FailingAllocator.cpp gets its own
/// malloc(), operator new and their relatives, over those of the platform, which the libraries
/// use too. Everything here concerns the calling thread.

/// While it lives, the n-th array allocation without exceptions (`new (std::nothrow) T[]`) of
/// this thread finds no memory. One at a time.
class FailingAllocator
{
public:
    /// \param n  which one fails, counted from 1.
    explicit FailingAllocator(int n) { s_untilFailure = n; }
    ~FailingAllocator() { s_untilFailure = 0; }
    FailingAllocator(const FailingAllocator&) = delete;
    FailingAllocator& operator=(const FailingAllocator&) = delete;

    /// Whether that allocation was asked for.
    bool HasFailed() const { return s_untilFailure <= 0; }

    inline static thread_local int s_untilFailure = 0; ///< 0 or below: none is due
    /// Arrays, of any origin, that this thread has allocated and not freed: to find leaks.
    inline static thread_local int s_liveArrays = 0;
};

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
