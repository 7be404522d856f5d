#pragma once

#include "DebugTrace.h"
#include "ExceptionBarrier.h"

#include <utility>

/// The line that tells of an operation that ended with an exception of `status` (StatusOfException).
constexpr const char *ExceptionText(Status status)
{
    return status == StatusCode::NoMemory ? "out of memory\n" : "unexpected exception\n";
}

/// WithoutExceptions for a function that traces: an exception is also its line for the way out, and says what it was.
template <typename Operation>
Status WithoutExceptions(FunctionTrace &trace, Operation &&operation) noexcept
{
    try
    {
        return std::forward<Operation>(operation)();
    }
    catch (...)
    {
        const Status status = StatusOfException();
        return trace.Fail(status, ExceptionText(status));
    }
}
