#include "FailingAllocator.h"

#include <cstdlib>
#include <new>

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept
{
    if (FailingAllocator::s_untilFailure > 0 && --FailingAllocator::s_untilFailure == 0) {
        return nullptr;
    }
    void* const p = std::malloc(size);
    FailingAllocator::s_liveArrays += p != nullptr ? 1 : 0;
    return p;
}

void* operator new[](std::size_t size)
{
    void* const p = std::malloc(size);
    if (p == nullptr) {
        throw std::bad_alloc();
    }
    ++FailingAllocator::s_liveArrays;
    return p;
}

void operator delete[](void* p) noexcept
{
    FailingAllocator::s_liveArrays -= p != nullptr ? 1 : 0;
    std::free(p);
}

void operator delete[](void* p, std::size_t) noexcept
{
    operator delete[](p);
}

void operator delete[](void* p, const std::nothrow_t&) noexcept
{
    operator delete[](p);
}
