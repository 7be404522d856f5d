#pragma once

#include "DebugTrace.h"

#include <new>
#include <stdexcept>
#include <utility>

/// Runs `operation`, which returns a Status, and lets nothing out of it: an exception ends as NoMemory or Failed.
/// Every operation that another component or the host calls has one around whatever may throw.
template <typename Operation>
Status WithoutExceptions(Operation &&operation) noexcept
{
    try
    {
        return std::forward<Operation>(operation)();
    }
    catch (const std::bad_alloc &)
    {
        return StatusCode::NoMemory;
    }
    catch (const std::length_error &) // a text larger than any memory
    {
        return StatusCode::NoMemory;
    }
    catch (...)
    {
        return StatusCode::Failed;
    }
}

/// The same for a function that traces: an exception is also its line for the way out.
template <typename Operation>
Status WithoutExceptions(FunctionTrace &trace, Operation &&operation) noexcept
{
    bool returned = false;
    const Status status = WithoutExceptions(
        [&]
        {
            const Status result = std::forward<Operation>(operation)();
            returned = true;
            return result;
        });
    return returned ? status : trace.Fail(status, "out of memory\n");
}
