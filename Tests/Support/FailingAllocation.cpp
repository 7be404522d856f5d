#include "FailingAllocation.h"

#include <cstdlib>
#include <new>

thread_local long allocationsLeft = -1;

// Both ways to allocate are replaced: the sanitizers bring a second one that would not call the first.

void *operator new(std::size_t size, const std::nothrow_t &) noexcept
{
    if (allocationsLeft == 0)
        return nullptr;
    allocationsLeft -= allocationsLeft > 0 ? 1 : 0;
    return std::malloc(size);
}

void *operator new(std::size_t size)
{
    if (void *const memory = operator new(size, std::nothrow))
        return memory;
    throw std::bad_alloc();
}

void operator delete(void *memory) noexcept
{
    std::free(memory);
}
void operator delete(void *memory, std::size_t) noexcept
{
    std::free(memory);
}
