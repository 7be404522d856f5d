#pragma once

#include <atomic>
#include <utility>

/// A test program with FailingAllocation.cpp in it can run out of memory for what C++ allocates; with
/// Posix/FailingMalloc.cpp in its place, for whatever any library in it allocates.

/// Allocations of this thread that still succeed; all of them when negative.
extern thread_local long allocationsLeft;
/// Whether only the one behind these fails, or all from there on.
extern thread_local bool failsOnce;

/// Blocks that the program has allocated and not freed.
extern std::atomic<long> liveBlocks;

/// Counts one allocation; false when it is to fail.
inline bool TakeAllocation()
{
    if (allocationsLeft > 0)
        --allocationsLeft;
    else if (allocationsLeft == 0)
    {
        allocationsLeft = failsOnce ? -1 : 0;
        return false;
    }
    return true;
}

/// Makes `call` while only its first `succeeding` allocations succeed, and those behind the next one if `once`.
template <typename Call>
auto WithoutMemory(long succeeding, Call call, bool once = false)
{
    failsOnce = once;
    allocationsLeft = succeeding;
    const auto result = call();
    allocationsLeft = -1;
    return result;
}

/// How many allocations `call` makes.
template <typename Call>
long CountAllocations(Call call)
{
    constexpr long kMany = 1'000'000'000;
    allocationsLeft = kMany;
    call();
    return kMany - std::exchange(allocationsLeft, -1);
}
