#include "FailingAllocator.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace
{

thread_local int untilFailure = 0; // 0: none is due
thread_local bool hasFailed = false;
thread_local int liveArrays = 0;

void* Allocate(std::size_t size) noexcept
{
    void* const p = std::malloc(size);
    liveArrays += p != nullptr ? 1 : 0;
    return p;
}

void Free(void* p) noexcept
{
    liveArrays -= p != nullptr ? 1 : 0;
    std::free(p);
}

} // namespace

void* operator new[](std::size_t size)
{
    void* const p = Allocate(size);
    if (p == nullptr) {
        throw std::bad_alloc();
    }
    return p;
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept
{
    if (untilFailure > 0 && --untilFailure == 0) {
        hasFailed = true;
        return nullptr;
    }
    return Allocate(size);
}

void operator delete[](void* p) noexcept
{
    Free(p);
}

void operator delete[](void* p, std::size_t) noexcept
{
    Free(p);
}

void operator delete[](void* p, const std::nothrow_t&) noexcept
{
    Free(p);
}

FailingAllocator::FailingAllocator(int n)
{
    hasFailed = false;
    untilFailure = n;
}

FailingAllocator::~FailingAllocator()
{
    untilFailure = 0;
}

bool FailingAllocator::HasFailed() const
{
    return hasFailed;
}

int FailingAllocator::LiveArrays()
{
    return liveArrays;
}
