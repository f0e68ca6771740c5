#include "FailingAllocator.h"

#include <cerrno>
#include <cstdlib>
#include <new>

#ifdef __SANITIZE_ADDRESS__
#define PLATFORMS(function) __interceptor_##function
#else
#define PLATFORMS(function) __libc_##function
#endif

extern "C" {
void* PLATFORMS(malloc)(std::size_t size);
void* PLATFORMS(calloc)(std::size_t count, std::size_t size);
void* PLATFORMS(realloc)(void* p, std::size_t size);
void PLATFORMS(free)(void* p);
}

namespace
{

bool FailsNow()
{
    AllocationFault& fault = currentFault;
    if (!fault.isOn || (--fault.untilFailure != 0 && !(fault.isLasting && fault.hasHappened))) {
        return false;
    }
    fault.hasHappened = true;
    errno = ENOMEM;
    return true;
}

void* Counted(void* p)
{
    liveAllocations += p != nullptr ? 1 : 0;
    return p;
}

void* OrThrow(void* p)
{
    return p != nullptr ? p : throw std::bad_alloc();
}

} // namespace

extern "C" {

void* malloc(std::size_t size)
{
    return FailsNow() ? nullptr : Counted(PLATFORMS(malloc)(size));
}

void* calloc(std::size_t count, std::size_t size)
{
    return FailsNow() ? nullptr : Counted(PLATFORMS(calloc)(count, size));
}

void* realloc(void* p, std::size_t size)
{
    if (FailsNow()) {
        return nullptr;
    }
    void* const moved = PLATFORMS(realloc)(p, size);
    return p == nullptr ? Counted(moved) : moved;
}

void free(void* p)
{
    liveAllocations -= p != nullptr ? 1 : 0;
    PLATFORMS(free)(p);
}
}

void* operator new(std::size_t size)
{
    return OrThrow(std::malloc(size));
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return std::malloc(size);
}

void* operator new[](std::size_t size)
{
    return OrThrow(std::malloc(size));
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept
{
    return std::malloc(size);
}

void operator delete(void* p) noexcept
{
    std::free(p);
}

void operator delete(void* p, std::size_t) noexcept
{
    std::free(p);
}

void operator delete[](void* p) noexcept
{
    std::free(p);
}

void operator delete[](void* p, std::size_t) noexcept
{
    std::free(p);
}
