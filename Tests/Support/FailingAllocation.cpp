#include "FailingAllocation.h"

#include <cstdlib>
#include <new>

thread_local long allocationsLeft = -1;
thread_local bool failsOnce = false;
std::atomic<long> liveBlocks = 0;

// Both ways to allocate are replaced: the sanitizers bring a second one that would not call the first.

void *operator new(std::size_t size, const std::nothrow_t &) noexcept
{
    void *const memory = TakeAllocation() ? std::malloc(size) : nullptr;
    liveBlocks += memory ? 1 : 0;
    return memory;
}

void *operator new(std::size_t size)
{
    if (void *const memory = operator new(size, std::nothrow))
        return memory;
    throw std::bad_alloc();
}

void operator delete(void *memory) noexcept
{
    liveBlocks -= memory ? 1 : 0;
    std::free(memory);
}
void operator delete(void *memory, std::size_t) noexcept
{
    operator delete(memory);
}
