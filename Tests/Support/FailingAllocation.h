#pragma once

/// A test program with FailingAllocation.cpp in it can run out of memory.

/// Allocations of this thread that still succeed; all of them when negative.
extern thread_local long allocationsLeft;

/// Makes `call` while only its first `succeeding` allocations succeed.
template <typename Call>
auto WithoutMemory(long succeeding, Call call)
{
    allocationsLeft = succeeding;
    const auto result = call();
    allocationsLeft = -1;
    return result;
}
