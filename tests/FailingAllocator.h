#pragma once

/// Makes array allocations fail on demand. A test program that links FailingAllocator.cpp gets its
/// own array forms of operator new and delete, over malloc() and free().

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
