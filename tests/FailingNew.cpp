#include "FailingNew.h"

#include <new>

static bool failing = false;

FailingNew::FailingNew()
{
    failing = true;
}

FailingNew::~FailingNew()
{
    failing = false;
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept
{
    try {
        return failing ? nullptr : ::operator new[](size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
