#include "HeapMeter.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <malloc.h>

// The GNU C library's own allocator behind the functions replaced here.
extern "C"
{
    void *__libc_malloc(std::size_t size);
    void *__libc_calloc(std::size_t count, std::size_t size);
    void *__libc_realloc(void *block, std::size_t size);
    void __libc_free(void *block);
}

namespace
{

bool metering = false;
std::int64_t heldBytes = 0;
std::int64_t peakBytes = 0;

void *Count(void *block)
{
    if (metering && block)
    {
        heldBytes += static_cast<std::int64_t>(malloc_usable_size(block));
        peakBytes = std::max(peakBytes, heldBytes);
    }
    return block;
}

void Discount(void *block)
{
    if (metering && block)
        heldBytes -= static_cast<std::int64_t>(malloc_usable_size(block));
}

} // namespace

extern "C"
{
    void *malloc(std::size_t size)
    {
        return Count(__libc_malloc(size));
    }

    void *calloc(std::size_t count, std::size_t size)
    {
        return Count(__libc_calloc(count, size));
    }

    void *realloc(void *block, std::size_t size)
    {
        Discount(block);
        return Count(__libc_realloc(block, size));
    }

    void free(void *block)
    {
        Discount(block);
        __libc_free(block);
    }
}

HeapMeter::HeapMeter()
{
    heldBytes = 0;
    peakBytes = 0;
    metering = true;
}

HeapMeter::~HeapMeter()
{
    metering = false;
}

std::int64_t HeapMeter::PeakBytes() const
{
    return peakBytes;
}
