#pragma once

#include "StatusCode.h"

#include <new>
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
    catch (...)
    {
        return StatusCode::Failed;
    }
}
