#pragma once

/// Makes array allocations fail on demand. A test program that links this file gets its own
/// array forms of operator new and delete, over malloc() and free().

/// While it lives, the n-th array allocation without exceptions (`new (std::nothrow) T[]`) of
/// this thread finds no memory. One at a time.
class FailingAllocator
{
public:
    /// \param n  which one fails, counted from 1.
    explicit FailingAllocator(int n);
    ~FailingAllocator();
    FailingAllocator(const FailingAllocator&) = delete;
    FailingAllocator& operator=(const FailingAllocator&) = delete;

    /// Whether that allocation was asked for.
    bool HasFailed() const;

    /// Arrays, of any origin, that this thread has allocated and not freed: to find leaks.
    static int LiveArrays();
};
