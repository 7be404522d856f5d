#include "FailingAllocation.h"

#include <cerrno>
#include <cstddef>

// The C library calls these in the place of its own, and so does every other library in the program, operator new
// included. What they do is left to the C library. The names are its own.
// NOLINTBEGIN(readability-identifier-naming,bugprone-reserved-identifier)

extern "C"
{
    void *__libc_malloc(std::size_t size);
    void *__libc_calloc(std::size_t count, std::size_t size);
    void *__libc_realloc(void *memory, std::size_t size);
    void *__libc_memalign(std::size_t alignment, std::size_t size);
    void __libc_free(void *memory);
}

thread_local long allocationsLeft = -1;
thread_local bool failsOnce = false;
std::atomic<long> liveBlocks = 0;

namespace
{

template <typename Allocate>
void *Counted(const Allocate &allocate)
{
    void *const memory = TakeAllocation() ? allocate() : nullptr;
    if (memory)
        ++liveBlocks;
    else
        errno = ENOMEM;
    return memory;
}

} // namespace

extern "C"
{
    void *malloc(std::size_t size) noexcept
    {
        return Counted([=] { return __libc_malloc(size); });
    }

    void *calloc(std::size_t count, std::size_t size) noexcept
    {
        return Counted([=] { return __libc_calloc(count, size); });
    }

    void *realloc(void *memory, std::size_t size) noexcept
    {
        void *const moved = Counted([=] { return __libc_realloc(memory, size); });
        liveBlocks -= memory && moved ? 1 : 0;
        return moved;
    }

    void *aligned_alloc(std::size_t alignment, std::size_t size) noexcept
    {
        return Counted([=] { return __libc_memalign(alignment, size); });
    }

    void free(void *memory) noexcept
    {
        liveBlocks -= memory ? 1 : 0;
        __libc_free(memory);
    }
}

// NOLINTEND(readability-identifier-naming,bugprone-reserved-identifier)
